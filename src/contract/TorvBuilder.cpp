// SPDX-License-Identifier: MIT
#include "contract/TorvBuilder.h"

TorvPreBuilder::TorvPreBuilder(QWidget* parent) : QFrame(parent) {}

TorvPreBuilder::~TorvPreBuilder() = default;

TorvBuilder::TorvBuilder(QWidget* parent) : TorvPreBuilder(parent) {}

TorvBuilder::~TorvBuilder() = default;
