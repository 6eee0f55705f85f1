// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"

#include <QObject>
#include <QTextCursor>

#include <vector>

class QPlainTextEdit;

namespace orvquery {

/// Marks in a text editor: findings are waved under, with what became of them as tool tips; hits of
/// a search get a background. Marks move with the text when it is edited.
class TextMarks : public QObject {
    Q_OBJECT

public:
    explicit TextMarks(QPlainTextEdit* editor);

    /// Findings at places of the editor's text.
    void setFindings(const orv::Findings& findings);
    void setHits(const std::vector<int>& starts, int length);

    /// What is found at a place of the text, a line for each; empty when nothing is.
    [[nodiscard]] QString tipAt(int position) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// A part of the text, and what is told of it.
    struct Mark {
        QTextCursor place;
        QString tip;
    };

    [[nodiscard]] QTextCursor placeOf(int start, int length) const;
    void show();

    QPlainTextEdit* m_editor;
    std::vector<Mark> m_findings;
    std::vector<QTextCursor> m_hits;
};

}  // namespace orvquery
