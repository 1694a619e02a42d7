// SPDX-License-Identifier: MIT
#include "ChildProcess.h"
