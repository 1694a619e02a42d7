// SPDX-License-Identifier: MIT
#include "EntryExtraction.h"
