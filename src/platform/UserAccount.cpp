// SPDX-License-Identifier: MIT
#include "UserAccount.h"
