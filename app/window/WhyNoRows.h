// SPDX-License-Identifier: MIT
#pragma once

#include "window/WhyNoRowsDialog.h"

#include <QObject>
#include <QPointer>

class QAction;
class TorvQueryBuilder;

namespace orvquery {

class QueryableSource;
class RunController;

/// Finds out for the person which part of the query on the diagram keeps its rows away.
class WhyNoRows : public QObject {
    Q_OBJECT

public:
    /// Borrows the control; `running` knows how its statement is run.
    WhyNoRows(TorvQueryBuilder& builder, RunController& running, QWidget* window);

    [[nodiscard]] QAction* action() const { return m_action; }

    /// What has its keys also while the answer is in front.
    void setCommonActions(const QList<QAction*>& actions) { m_common = actions; }

    /// The database whose rows are asked for from now on; none, when only tables are known.
    void setDatabase(const QueryableSource* database);

private:
    void ask();
    [[nodiscard]] QString mute(const QueryPart& part);
    [[nodiscard]] QString muteCondition(const QueryPart& part);
    [[nodiscard]] QString muteLink(const QueryPart& part);

    TorvQueryBuilder& m_builder;
    RunController& m_running;
    QWidget* m_window;
    QAction* m_action;
    QList<QAction*> m_common;
    QPointer<WhyNoRowsDialog> m_dialog;
};

}  // namespace orvquery
