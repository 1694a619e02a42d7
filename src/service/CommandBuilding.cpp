// SPDX-License-Identifier: MIT
#include "CommandBuilding.h"
