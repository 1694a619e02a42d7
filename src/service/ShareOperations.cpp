// SPDX-License-Identifier: MIT
#include "TailscaleService.h"
