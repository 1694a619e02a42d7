// SPDX-License-Identifier: MIT
#include "FileHTTPServer.h"
