// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// What a node of the parse tree is.
enum TTypeOfTie : quint8 {
    otCompound = 0,
    otBrakets = 1,
    otMatchingType = 2,
    otConst = 3,
    otField = 4,
    otTable = 5,
    otCondition = 6,
    otJoin = 7,
    otFunc = 8,
    otOperator = 9,
    otLogical = 10,
    otAlias = 11
};
static_assert(otCompound == 0 && otBrakets == 1 && otMatchingType == 2 && otConst == 3);
static_assert(otField == 4 && otTable == 5 && otCondition == 6 && otJoin == 7 && otFunc == 8);
static_assert(otOperator == 9 && otLogical == 10 && otAlias == 11);

/// In which part of a statement a node stands. The clause locations, inSelect to inOrderBy, are
/// ordered as the clauses must stand in a statement.
enum TLocationKinds : quint8 {
    inUnknown = 0,
    inFunction = 1,
    inItem = 2,
    inSelect = 3,
    inFrom = 4,
    inWhere = 5,
    inGroupBy = 6,
    inHaving = 7,
    inOrderBy = 8
};
static_assert(inUnknown == 0 && inFunction == 1 && inItem == 2 && inSelect == 3 && inFrom == 4);
static_assert(inWhere == 5 && inGroupBy == 6 && inHaving == 7 && inOrderBy == 8);
