// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDOpersEditor.h"
