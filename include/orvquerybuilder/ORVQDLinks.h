// SPDX-License-Identifier: MIT
#include "diagram/ORVQDLinks.h"
