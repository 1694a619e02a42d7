// SPDX-License-Identifier: MIT
#include "UrlPort.h"
