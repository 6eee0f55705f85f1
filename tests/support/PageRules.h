// SPDX-License-Identifier: MIT
#pragma once

#include "support/BuilderTools.h"

namespace orvtest {

/// What is wrong on the pages: rows, elements and their places, editors, the grid's cells, the
/// lists of the sorting page; empty when all agrees.
[[nodiscard]] QString brokenPageRule(TorvQueryBuilder& builder);

/// How many texts are being typed: aliases, operands, cells, the tail.
[[nodiscard]] int openEdits(const TorvQueryBuilder& builder);

}  // namespace orvtest

/// Fails the test when something is wrong on the pages.
#define verifyPages(builder) QCOMPARE(orvtest::brokenPageRule(builder), QString())
