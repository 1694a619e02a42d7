// SPDX-License-Identifier: MIT
#include "ServeConfigJSON.h"
