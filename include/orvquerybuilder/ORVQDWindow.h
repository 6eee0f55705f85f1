// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDWindow.h"
