// SPDX-License-Identifier: MIT
#include "diagram/ORVQDFloatTable.h"
