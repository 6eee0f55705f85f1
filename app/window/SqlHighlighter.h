// SPDX-License-Identifier: MIT
#pragma once

#include <QSyntaxHighlighter>
#include <QTextCharFormat>

namespace orvquery {

/// Colours the keywords, texts, numbers and comments of SQL in a text document. The document owns
/// it.
class SqlHighlighter : public QSyntaxHighlighter {
    Q_OBJECT

public:
    /// Picks colours that can be read on the background.
    SqlHighlighter(QTextDocument* document, const QColor& background);

    /// The background has become another.
    void setBackground(const QColor& background);

protected:
    void highlightBlock(const QString& text) override;

private:
    enum State { Plain = -1, InComment = 1, InText = 2 };

    void chooseColours(const QColor& background);
    [[nodiscard]] qsizetype endOfSpan(const QString& text, qsizetype start, State state);
    [[nodiscard]] qsizetype highlightAt(const QString& text, qsizetype start);
    [[nodiscard]] qsizetype highlightWord(const QString& text, qsizetype start);
    [[nodiscard]] qsizetype highlightNumber(const QString& text, qsizetype start);

    QTextCharFormat m_keyword;
    QTextCharFormat m_text;
    QTextCharFormat m_number;
    QTextCharFormat m_comment;
};

}  // namespace orvquery
