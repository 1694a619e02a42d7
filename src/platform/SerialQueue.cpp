// SPDX-License-Identifier: MIT
#include "SerialQueue.h"
