// SPDX-License-Identifier: MIT
#include "ManagedServers.h"
