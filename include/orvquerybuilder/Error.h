// SPDX-License-Identifier: MIT
#include "core/Error.h"
