// SPDX-License-Identifier: MIT
#include "parser/ORVQDNormalise.h"
