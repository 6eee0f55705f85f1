// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

#include <vector>

namespace orvquery {

/// How a server reads quotes and comments, where servers differ.
enum class SqlRules {
    Postgresql,  ///< $tag$ quotes, comments within comments, backslashes in E'texts'
    Mariadb      ///< back-ticks, # and executed comments; backslashes are plain characters
};

/// Walks over a statement as a server reads it, piece by piece.
class SqlPieces {
public:
    enum class Kind {
        Word,     ///< a name or word without quotes, or a number
        Quoted,   ///< a text or a name, with its quotes
        Comment,  ///< which the server does not read
        Blank,    ///< one blank
        Other     ///< one character
    };

    SqlPieces(QStringView statement, SqlRules rules) : m_text(statement), m_rules(rules) {}

    /// Goes to the next piece; false at the end.
    bool next();

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] QStringView text() const { return m_text.sliced(m_start, m_end - m_start); }
    [[nodiscard]] qsizetype start() const { return m_start; }

private:
    void read(Kind kind, qsizetype length);
    void readUntil(Kind kind, QStringView end, qsizetype from);
    void readWord();
    void readEscapedText(qsizetype from);
    void readComment();
    [[nodiscard]] qsizetype dollarQuoteSize() const;
    [[nodiscard]] bool startsLineComment() const;

    QStringView m_text;
    SqlRules m_rules;
    Kind m_kind = Kind::Other;
    qsizetype m_start = 0;
    qsizetype m_end = 0;
};

/// One piece; the text is that of the statement.
struct SqlPiece {
    SqlPieces::Kind kind;
    QStringView text;
    qsizetype start;
};

/// The pieces that count: no blanks and comments, and quotes with doubled ones inside as one.
[[nodiscard]] std::vector<SqlPiece> countingPieces(QStringView statement, SqlRules rules);

/// Whether there is another statement behind the first.
[[nodiscard]] bool hasSecondStatement(const QString& statement, SqlRules rules);

/// Whether the word stands in the statement outside quotes and comments, in any case.
[[nodiscard]] bool hasWord(const QString& statement, QStringView word, SqlRules rules);

}  // namespace orvquery
