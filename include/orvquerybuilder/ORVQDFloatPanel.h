// SPDX-License-Identifier: MIT
#include "workarea/ORVQDFloatPanel.h"
