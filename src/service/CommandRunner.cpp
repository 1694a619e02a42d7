// SPDX-License-Identifier: MIT
#include "CommandRunner.h"
