// SPDX-License-Identifier: MIT
#pragma once

// A host may have folders and headers that are called like those of the library.
constexpr int hostStatus = 3;
