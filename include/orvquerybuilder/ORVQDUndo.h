// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDUndo.h"
