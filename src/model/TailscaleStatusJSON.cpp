// SPDX-License-Identifier: MIT
#include "TailscaleStatusJSON.h"
