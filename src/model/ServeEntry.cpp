// SPDX-License-Identifier: MIT
#include "ServeEntry.h"
