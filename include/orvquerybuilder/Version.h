// SPDX-License-Identifier: MIT
#include "core/Version.h"
