// SPDX-License-Identifier: MIT
#include "ShellQuote.h"
