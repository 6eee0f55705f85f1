// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

class TorvQDTable;
class TorvQueryBuilder;

namespace orv {

/// Calls `visit` with each name of the text that is qualified by a table; what stands in a
/// sub-query may mean tables of its own and is passed over.
void visitQualifiedNames(const QString& text, const std::function<void(const QString&)>& visit);

/// Calls `visit` with each name of the text whose table or field is not on the diagram, or that
/// several tables have, and with a sentence saying so. A word alone may be something that databases
/// know by themselves, so only a whole text counts as a field that is gone.
void visitNameProblems(const TorvQueryBuilder& builder, const QString& text,
                       const std::function<void(const QString& name, const QString& what)>& visit);

/// The same for an argument of the procedure, whose own columns an argument cannot mean.
void visitArgumentProblems(
    const TorvQueryBuilder& builder, const QString& text, const TorvQDTable& procedure,
    const std::function<void(const QString& name, const QString& what)>& visit);

}  // namespace orv
