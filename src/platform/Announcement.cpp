// SPDX-License-Identifier: MIT
#include "Announcement.h"
