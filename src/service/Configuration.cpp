// SPDX-License-Identifier: MIT
#include "Configuration.h"
