// SPDX-License-Identifier: MIT
#include "toolkit/Services.h"
