// SPDX-License-Identifier: MIT
#include "parser/ORVQDParser.h"
