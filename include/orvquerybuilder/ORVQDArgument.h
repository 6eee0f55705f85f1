// SPDX-License-Identifier: MIT
#include "parser/ORVQDArgument.h"
