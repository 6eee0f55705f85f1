// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDOperatorsProperty.h"
