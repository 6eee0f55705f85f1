// SPDX-License-Identifier: MIT
#pragma once

#include "text/CodeQuote.h"

#include <QObject>

#include <functional>

class QAction;
class QMenu;

namespace orvquery {

class StatementPane;

/// Copies the text of the statement pane as it is wanted elsewhere: as one line, or as an
/// expression of a program.
class StatementCopies : public QObject {
    Q_OBJECT

public:
    /// The rules are those of the database that is open.
    StatementCopies(StatementPane* statement, std::function<SqlRules()> rules);

    void addTo(QMenu& menu);

private:
    void copyOneLine() const;
    void copyFor(CodeLanguage language) const;

    StatementPane* m_statement;
    std::function<SqlRules()> m_rules;
};

}  // namespace orvquery
