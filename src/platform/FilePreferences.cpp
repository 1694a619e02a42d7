// SPDX-License-Identifier: MIT
#include "FilePreferences.h"
