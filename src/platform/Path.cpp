// SPDX-License-Identifier: MIT
#include "Path.h"
