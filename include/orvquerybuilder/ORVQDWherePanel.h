// SPDX-License-Identifier: MIT
#include "criteria/ORVQDWherePanel.h"
