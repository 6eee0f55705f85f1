// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDState.h"
