// SPDX-License-Identifier: MIT
#include "workarea/ORVQDSProc.h"
