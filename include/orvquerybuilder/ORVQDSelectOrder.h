// SPDX-License-Identifier: MIT
#include "selection/ORVQDSelectOrder.h"
