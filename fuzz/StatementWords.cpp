// SPDX-License-Identifier: MIT
#include "StatementWords.h"

#include <QMap>
#include <QSet>
#include <QStringList>

#include <algorithm>

namespace orvfuzz {

namespace {

struct Piece {
    enum Kind { Word, Number, Text, Sign, Comma } kind;
    QString text;          // as it is compared
    int depth = 0;         // open brackets around it
    bool isPlain = false;  // a word without quotes, which may be a keyword

    [[nodiscard]] bool is(const char* keyword) const {
        return isPlain && text == QLatin1String(keyword);
    }
};
using Pieces = QList<Piece>;

bool isWordPart(QChar character) {
    return character.isLetterOrNumber() || character.isMark() || character.isSurrogate() ||
           QStringLiteral("_$#@").contains(character);
}

/// Reads a statement into pieces.
class PieceReader {
public:
    explicit PieceReader(const QString& text) : m_text(text) {}

    Pieces read() {
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
            addName(quoted(character), false);
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

    void readWord() {
        const qsizetype start = m_at;
        const bool number = at(0).isDigit() || at(0) == u'.';
        while (number ? isNumberPart(start) : isWordPart(at(0))) ++m_at;
        const QString text = m_text.mid(start, m_at - start);
        if (number) {
            add(Piece::Number, text.toUpper());
        } else {
            addName(text, true);
        }
    }

    // A word may be glued to a number: "1or".
    [[nodiscard]] bool isNumberPart(qsizetype start) const {
        const QChar before = m_at > start ? m_text[m_at - 1].toUpper() : QChar();
        if (at(0).isDigit()) return true;
        if (at(0) == u'.') return at(1) != u'.';
        if (at(0).toUpper() == u'E') {
            const bool isSigned = at(1) == u'+' || at(1) == u'-';
            return at(isSigned ? 2 : 1).isDigit() && before != u'E';
        }
        return before == u'E' && (at(0) == u'+' || at(0) == u'-');
    }

    // Behind a full stop the word in front of it was its qualifier.
    void addName(const QString& name, bool isPlain) {
        const bool isQualified = m_glued && !m_pieces.isEmpty();
        if (isQualified) m_pieces.removeLast();
        m_glued = false;
        add(Piece::Word, name.toUpper());
        m_pieces.back().isPlain = isPlain && !isQualified;
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
        if (character == u',') add(Piece::Comma, QString(character));
        if (QStringLiteral("(),").contains(character)) return;
        if (character == u'!' && at(0) == u'=') {
            ++m_at;
            add(Piece::Sign, QStringLiteral("<"));
            add(Piece::Sign, QStringLiteral(">"));
            return;
        }
        add(Piece::Sign, QString(character));
    }

    void add(Piece::Kind kind, const QString& text) {
        m_pieces << Piece{kind, kind == Piece::Text ? u'\'' + text + u'\'' : text, m_depth};
        if (kind != Piece::Word) m_glued = false;
    }

    const QString& m_text;
    qsizetype m_at = 0;
    int m_depth = 0;
    bool m_glued = false;  // a full stop stands behind the last word
    Pieces m_pieces;
};

/// A statement by its clauses.
using Clauses = QMap<QString, Pieces>;

const QString tail = QStringLiteral("tail");

// What stands behind the last clause, to the end.
bool beginsTail(const Pieces& pieces, qsizetype index, const Pieces& before) {
    static const QMap<QString, QStringList> tails = {{"UNION", {}},  {"INTERSECT", {}},
                                                     {"EXCEPT", {}}, {"LIMIT", {}},
                                                     {"OFFSET", {}}, {"FETCH", {"FIRST", "NEXT"}},
                                                     {"WINDOW", {}}, {"FOR", {"UPDATE", "SHARE"}}};
    const Piece& piece = pieces[index];
    if (!piece.isPlain || piece.depth > 0 || !tails.contains(piece.text)) return false;
    if (before.isEmpty() || index + 1 == pieces.size()) return false;
    const QStringList next = tails.value(piece.text);
    if (!next.isEmpty() && !next.contains(pieces[index + 1].text)) return false;
    // Columns may be called so: behind these an operand is still to come.
    static const QSet<QString> open = {"AS", "AND", "OR", "NOT", "ON", "LIKE", "BETWEEN"};
    const Piece& last = before.back();
    if (last.isPlain && open.contains(last.text)) return false;
    return last.kind != Piece::Comma && last.kind != Piece::Sign;
}

Clauses clausesOf(const QString& text) {
    // They follow each other in this order: one that goes back is none.
    static const QStringList words = {"SELECT", "FROM", "WHERE", "GROUP", "HAVING", "ORDER"};
    static const QStringList names = {"SELECT", "FROM", "WHERE", "GROUP BY", "HAVING", "ORDER BY"};
    Clauses result;
    QString clause;
    const Pieces pieces = PieceReader(text).read();
    for (qsizetype index = 0; index < pieces.size(); ++index) {
        const Piece& piece = pieces[index];
        if (clause != tail && beginsTail(pieces, index, result.value(clause))) clause = tail;
        const Pieces& before = result[clause];
        const bool isDistinctFrom =
            piece.is("FROM") && !before.isEmpty() && before.back().is("DISTINCT");
        const bool needsBy = piece.is("GROUP") || piece.is("ORDER");
        const bool hasBy = index + 1 < pieces.size() && pieces[index + 1].is("BY");
        const qsizetype next = needsBy && !hasBy ? -1 : words.indexOf(piece.text);
        const bool begins = clause != tail && piece.isPlain && piece.depth == 0 &&
                            !isDistinctFrom && next > names.indexOf(clause);
        if (begins) clause = names[next];
        const bool isSilent = begins || piece.is("BY") || piece.is("INNER") || piece.is("OUTER");
        if (!isSilent) result[clause] << piece;
    }
    return result;
}

QList<Pieces> itemsOf(const Pieces& pieces) {
    QList<Pieces> items(1);
    for (const Piece& piece : pieces) {
        if (piece.kind == Piece::Comma && piece.depth == 0) {
            items << Pieces();
        } else {
            items.back() << piece;
        }
    }
    return items;
}

// What pieces say, in no order.
QStringList wordsOf(const Pieces& pieces) {
    QStringList words;
    for (const Piece& piece : pieces) {
        const bool says = piece.kind != Piece::Comma && !piece.is("AS") && !piece.is("ASC");
        if (says) words << piece.text;
    }
    words.sort();
    // Two negations are none.
    const qsizetype negations = words.count(QStringLiteral("NOT"));
    for (qsizetype pair = 0; pair < negations / 2; ++pair) {
        words.removeOne(QStringLiteral("NOT"));
        words.removeOne(QStringLiteral("NOT"));
    }
    return words;
}

QString difference(const QString& place, QStringList given, QStringList written) {
    QStringList lines;
    for (const QString& word : given) {
        if (!written.removeOne(word)) lines << "- " + place + ": " + word;
    }
    for (const QString& word : written) lines << "+ " + place + ": " + word;
    return lines.join(u'\n');
}

// --- the select list ---

/// An output column: with a name behind AS, or behind nothing.
struct Column {
    explicit Column(const Pieces& item) : whole(item), expression(item) {
        if (expression.isEmpty() || expression.back().kind != Piece::Word) return;
        const bool named = expression.size() > 1 && expression.back().depth == 0;
        if (!named) return;
        const Piece& before = expression[expression.size() - 2];
        const bool behindOperand = before.kind != Piece::Sign;
        if (!before.is("AS") && !behindOperand) return;
        name = expression.takeLast().text;
        behindAs = expression.back().is("AS");
        if (behindAs) expression.removeLast();
    }

    Pieces whole;
    Pieces expression;
    QString name;
    bool behindAs = false;
};

QList<Column> columnsOf(const Clauses& clauses) {
    Pieces list = clauses.value(QStringLiteral("SELECT"));
    if (!list.isEmpty() && list.front().is("DISTINCT")) list.removeFirst();
    QList<Column> columns;
    for (const Pieces& item : itemsOf(list)) columns << Column(item);
    return columns;
}

bool isStar(const Column& column) {
    return column.whole.size() == 1 && column.whole.front().text == u"*";
}

bool saysTheSame(const Column& given, const Column& written) {
    const QStringList whole = wordsOf(given.whole);
    if (whole == wordsOf(written.whole)) return true;
    if (written.behindAs && whole == wordsOf(written.expression)) return true;
    const bool isOwnName = !given.expression.isEmpty() && given.expression.size() == 1 &&
                           given.expression.back().text == given.name;
    return isOwnName && wordsOf(given.expression) == wordsOf(written.expression);
}

QString differenceOfColumns(const QList<Column>& given, const QList<Column>& written) {
    if (given.size() != written.size()) return QStringLiteral("another number of columns");
    QStringList lines;
    for (qsizetype index = 0; index < given.size(); ++index) {
        if (saysTheSame(given[index], written[index])) continue;
        lines << difference(QStringLiteral("column %1").arg(index + 1), wordsOf(given[index].whole),
                            wordsOf(written[index].whole));
    }
    return lines.join(u'\n');
}

// --- the other clauses ---

// DISTINCT stands in front of the list.
bool isDistinct(const Clauses& clauses) {
    const Pieces list = clauses.value(QStringLiteral("SELECT"));
    return !list.isEmpty() && list.front().is("DISTINCT");
}

QStringList wordsOfFrom(const Pieces& clause, bool keepMeaning) {
    Pieces said;
    for (qsizetype index = 0; index < clause.size(); ++index) {
        Piece piece = clause[index];
        const Piece* before = index > 0 ? &clause[index - 1] : nullptr;
        if (piece.is("CROSS") || (piece.is("JOIN") && before && before->is("CROSS"))) continue;
        // The table's own name as its alias, with AS or without.
        const Piece* named = before && before->is("AS") && index > 1 ? &clause[index - 2] : before;
        const bool isWord = piece.kind == Piece::Word && named && named->kind == Piece::Word;
        if (isWord && named->text == piece.text) continue;
        if (piece.text == u">" && piece.kind == Piece::Sign) piece.text = QStringLiteral("<");
        if (!keepMeaning && piece.is("RIGHT")) piece.text = QStringLiteral("LEFT");
        said << piece;
    }
    return wordsOf(said);
}

// What an item of GROUP BY or ORDER BY may mean: itself, or the column that it numbers or names.
QList<QStringList> meaningsOf(Pieces item, const QList<Column>& columns) {
    QStringList direction;
    const auto isDirection = [](const Piece& piece) {
        return piece.is("DESC") || piece.is("ASC") || piece.is("ASCENDING") ||
               piece.is("DESCENDING");
    };
    if (item.size() > 1 && isDirection(item.back())) {
        const bool falls = item.takeLast().text.startsWith(u"DESC");
        if (falls) direction << QStringLiteral("DESC");
    }
    QList<QStringList> meanings = {wordsOf(item) + direction};
    if (item.size() != 1) return meanings;
    const Piece& piece = item.front();
    for (qsizetype index = 0; index < columns.size(); ++index) {
        const bool numbered =
            piece.kind == Piece::Number && piece.text == QString::number(index + 1);
        const bool named = piece.kind == Piece::Word && piece.text == columns[index].name;
        if (numbered || named) meanings << wordsOf(columns[index].expression) + direction;
    }
    return meanings;
}

QString differenceOfLists(const QString& place, const Clauses& given, const Clauses& written) {
    const QList<Pieces> items = itemsOf(given.value(place));
    QList<Pieces> left = itemsOf(written.value(place));
    const QList<Column> givenColumns = columnsOf(given);
    const QList<Column> writtenColumns = columnsOf(written);
    const bool hasStar = std::any_of(givenColumns.begin(), givenColumns.end(), isStar);
    if (items.size() != left.size()) return "another number of items in " + place;
    if (hasStar && place == u"ORDER BY") return {};
    for (const Pieces& item : items) {
        const QList<QStringList> meanings = meaningsOf(item, givenColumns);
        const auto same = std::find_if(left.begin(), left.end(), [&](const Pieces& other) {
            const QList<QStringList> others = meaningsOf(other, writtenColumns);
            return std::any_of(others.begin(), others.end(), [&](const QStringList& meaning) {
                return meanings.contains(meaning);
            });
        });
        if (same == left.end()) return "- " + place + ": " + wordsOf(item).join(u' ');
        left.erase(same);
    }
    return {};
}

}  // namespace

QString wordsDifference(const QString& given, const QString& written, bool keepMeaning) {
    if (given.contains(u'[')) return {};
    const Clauses left = clausesOf(given);
    const Clauses right = clausesOf(written);
    const QList<Column> columns = columnsOf(left);
    QStringList lines;
    if (isDistinct(left) != isDistinct(right)) lines << QStringLiteral("DISTINCT");
    if (!std::any_of(columns.begin(), columns.end(), isStar)) {
        lines << differenceOfColumns(columns, columnsOf(right));
    }
    const QString from = QStringLiteral("FROM");
    lines << difference(from, wordsOfFrom(left.value(from), keepMeaning),
                        wordsOfFrom(right.value(from), keepMeaning));
    for (const QString& clause : {QStringLiteral("WHERE"), QStringLiteral("HAVING"), tail}) {
        lines << difference(clause, wordsOf(left.value(clause)), wordsOf(right.value(clause)));
    }
    lines << differenceOfLists(QStringLiteral("GROUP BY"), left, right);
    lines << differenceOfLists(QStringLiteral("ORDER BY"), left, right);
    lines.removeAll(QString());
    return lines.join(u'\n');
}

}  // namespace orvfuzz
