// SPDX-License-Identifier: MIT
#include "Text.h"
