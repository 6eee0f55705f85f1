// SPDX-License-Identifier: MIT
#pragma once

#include "words/Explanation.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QAction;
class QTextBrowser;
class TorvQueryBuilder;

namespace orvquery {

/// Says in plain English what the query on the diagram asks for. It is hidden at first, and
/// computes nothing while it is; else it follows the query, once per pass of the event loop.
class WordsPanel : public QWidget {
    Q_OBJECT

public:
    /// `isBusy` tells that a statement is being loaded, when the query must not be read.
    WordsPanel(TorvQueryBuilder& builder, std::function<bool()> isBusy, QWidget* parent = nullptr);

    /// The query has changed.
    void queryChanged();

    /// Shows and hides the panel.
    [[nodiscard]] QAction* switchAction() const { return m_switch; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh();
    [[nodiscard]] Explanation words() const;

    TorvQueryBuilder& m_builder;
    std::function<bool()> m_isBusy;
    QAction* m_switch;
    QTextBrowser* m_text;
    QTimer m_timer;
    QString m_shown;  ///< as it was given to the view, which keeps a form of its own
    QString m_plainText;
};

}  // namespace orvquery
