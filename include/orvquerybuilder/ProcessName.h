// SPDX-License-Identifier: MIT
#include "data/ProcessName.h"
