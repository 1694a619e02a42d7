// SPDX-License-Identifier: MIT
#include "JsonDecoding.h"
