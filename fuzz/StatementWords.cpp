// SPDX-License-Identifier: MIT
#include "StatementWords.h"

#include <QMap>
#include <QSet>
#include <QStringList>

namespace orvfuzz {

namespace {

struct Piece {
    enum Kind { Word, Number, Text, Sign } kind;
    QString text;   // as it is compared
    int depth = 0;  // open brackets around it
};

bool isWordPart(QChar character) {
    return character.isLetterOrNumber() || character.isMark() || character.isSurrogate() ||
           QStringLiteral("_$#@:").contains(character);
}

/// Reads a statement into pieces.
class PieceReader {
public:
    explicit PieceReader(const QString& text) : m_text(text) {}

    QList<Piece> read() {
        while (m_at < m_text.size()) readNext();
        while (!m_pieces.isEmpty() && m_pieces.back().text == u";") m_pieces.removeLast();
        return m_pieces;
    }

private:
    [[nodiscard]] QChar at(qsizetype offset) const {
        return m_at + offset < m_text.size() ? m_text[m_at + offset] : QChar();
    }

    void readNext() {
        const QChar character = at(0);
        if (character == u'-' && at(1) == u'-') {
            skipTo(QStringLiteral("\n"));
        } else if (character == u'/' && at(1) == u'*') {
            m_at += 2;
            skipTo(QStringLiteral("*/"));
        } else if (character == u'\'') {
            add(Piece::Text, quoted(u'\''));
        } else if (character == u'"' || character == u'`') {
            addName(quoted(character));
        } else if (character == u'[' && mayBeginName()) {
            addName(quoted(u']'));
        } else if (isWordPart(character) || (character == u'.' && at(1).isDigit() && !m_glued)) {
            readWord();
        } else {
            readSign(character);
        }
    }

    void skipTo(const QString& end) {
        const qsizetype found = m_text.indexOf(end, m_at);
        m_at = found < 0 ? m_text.size() : found + end.size();
    }

    // Its content, in which the closing sign doubled stands for itself.
    QString quoted(QChar close) {
        QString content;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            if (at(0) == close) {
                if (at(1) != close) break;
                ++m_at;
            }
            content += at(0);
        }
        ++m_at;
        return content;
    }

    [[nodiscard]] bool mayBeginName() const {
        if (m_text.indexOf(u']', m_at) < 0) return false;
        return m_at == 0 || QStringLiteral(" \t\r\n.,(=<>+-*/|").contains(m_text[m_at - 1]);
    }

    void readWord() {
        const qsizetype start = m_at;
        const bool number = at(0).isDigit() || at(0) == u'.';
        while (isWordPart(at(0)) || (number && isNumberPart())) ++m_at;
        const QString text = m_text.mid(start, m_at - start);
        // A name of a parameter keeps its case, which says nothing either.
        if (number) {
            add(Piece::Number, text.toUpper());
        } else {
            addName(text);
        }
    }

    [[nodiscard]] bool isNumberPart() const {
        if (at(0) == u'.') return at(1) != u'.';
        const bool exponent = m_at > 0 && m_text[m_at - 1].toUpper() == u'E' && at(1).isDigit();
        return exponent && (at(0) == u'-' || at(0) == u'+');
    }

    // Behind a full stop the word in front of it was its qualifier.
    void addName(const QString& name) {
        if (m_glued && !m_pieces.isEmpty()) m_pieces.removeLast();
        m_glued = false;
        add(Piece::Word, name.toUpper());
    }

    void readSign(QChar character) {
        ++m_at;
        if (character.unicode() <= u' ' || character.isSpace()) return;
        if (character == u'.') {
            m_glued = !m_pieces.isEmpty() && m_pieces.back().kind == Piece::Word;
            return;
        }
        if (character == u'*' && m_glued) m_pieces.removeLast();
        m_glued = false;
        if (character == u'(') ++m_depth;
        if (character == u')') --m_depth;
        if (!QStringLiteral("(),").contains(character)) add(Piece::Sign, QString(character));
    }

    void add(Piece::Kind kind, const QString& text) {
        m_pieces << Piece{kind, kind == Piece::Text ? u'\'' + text + u'\'' : text, m_depth};
        if (kind != Piece::Word) m_glued = false;
    }

    const QString& m_text;
    qsizetype m_at = 0;
    int m_depth = 0;
    bool m_glued = false;  // a full stop stands behind the last word
    QList<Piece> m_pieces;
};

/// How often each clause says a thing.
using Counts = QMap<QString, int>;

// A condition that links two tables may stand behind ON or behind WHERE: both are one clause here.
QString clauseOf(const Piece& piece, const QString& before) {
    if (piece.kind != Piece::Word || piece.depth > 0) return before;
    static const QMap<QString, QString> clauses = {{"SELECT", "SELECT"}, {"FROM", "FROM"},
                                                   {"WHERE", "FROM"},    {"GROUP", "GROUP BY"},
                                                   {"HAVING", "HAVING"}, {"ORDER", "ORDER BY"}};
    return clauses.value(piece.text, before);
}

Counts countsOf(const QString& text) {
    static const QSet<QString> silent = {"AS", "INNER", "OUTER", "ASC"};
    Counts counts;
    QString clause;
    for (const Piece& piece : PieceReader(text).read()) {
        clause = clauseOf(piece, clause);
        const bool says = piece.kind != Piece::Word || !silent.contains(piece.text);
        if (says) ++counts[clause + u' ' + piece.text];
    }
    return counts;
}

}  // namespace

QString wordsDifference(const QString& given, const QString& written) {
    Counts left = countsOf(written);
    QStringList lines;
    const Counts expected = countsOf(given);
    for (auto count = expected.begin(); count != expected.end(); ++count) {
        for (int missing = count.value() - left.value(count.key()); missing > 0; --missing) {
            lines << "- " + count.key();
        }
        left[count.key()] -= count.value();
    }
    for (auto count = left.begin(); count != left.end(); ++count) {
        for (int more = count.value(); more > 0; --more) lines << "+ " + count.key();
    }
    return lines.join(u'\n');
}

}  // namespace orvfuzz
