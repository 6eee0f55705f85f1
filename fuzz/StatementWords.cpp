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
    QString qualifier;     // the last word in front of it that a full stop joins to it

    [[nodiscard]] bool is(const char* keyword) const {
        return isPlain && text == QLatin1String(keyword);
    }
};
using Pieces = QList<Piece>;

bool isWordPart(QChar character) {
    return character.isLetterOrNumber() || character.isMark() || character.isSurrogate() ||
           character == QChar::ReplacementCharacter || QStringLiteral("_$#@?").contains(character);
}

bool isBlank(QChar character) {
    return character.unicode() <= u' ' || character.isSpace();
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
            skipLine();
        } else if (character == u'/' && at(1) == u'*') {
            m_at += 2;
            skipTo(QStringLiteral("*/"));
        } else if (character == u'\'') {
            add(Piece::Text, quoted(u'\''));
        } else if (character == u'"' || (character == u'`' && isClosed(character))) {
            addName(quoted(character), false);
        } else if (QStringLiteral("#@").contains(character) && !isWordPart(at(1))) {
            readSign(character);
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

    void skipLine() {
        while (m_at < m_text.size() && at(0) != u'\n' && at(0) != u'\r') ++m_at;
    }

    [[nodiscard]] bool isClosed(QChar sign) const {
        qsizetype end = m_text.indexOf(sign, m_at + 1);
        while (end >= 0 && end + 1 < m_text.size() && m_text[end + 1] == sign) {
            end = m_text.indexOf(sign, end + 2);
        }
        return end >= 0;
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
            if (text == u"0" && at(0).toUpper() == u'X' && at(1).isDigit()) readHexDigits();
            readGluedWords();
        } else {
            addName(text, true);
        }
    }

    // Words that are glued to a number end at signs: "1$and", "1d$and".
    void readGluedWords() {
        const auto isSign = [this] { return QStringLiteral("_$#@").contains(at(0)); };
        while (isWordPart(at(0))) {
            const qsizetype start = m_at;
            while (isWordPart(at(0)) && !isSign()) ++m_at;
            if (m_at > start) addName(m_text.mid(start, m_at - start), true);
            while (isSign()) readSign(at(0));
        }
    }

    // What is glued to the last digit is a word of its own: "0x1from".
    void readHexDigits() {
        const qsizetype start = m_at++;
        while (at(0).isDigit()) ++m_at;
        addName(m_text.mid(start, m_at - start), true);
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
        if (m_loose && isPlain && isNoQualifier(name.toUpper())) m_glued = false;
        const bool isQualified = m_glued && !m_pieces.isEmpty();
        const QString qualifier = isQualified ? m_pieces.takeLast().text : QString();
        m_glued = false;
        // "AS .A" names a column ".A".
        const qsizetype stops =
            std::find_if(name.begin(), name.end(), [](QChar c) { return c != u'.'; }) -
            name.begin();
        if (name.isEmpty() && isGluedToWord()) {
            m_pieces.back().text += QStringLiteral("\"\"");
            return;
        }
        add(Piece::Word, name.mid(stops).toUpper());
        m_pieces.back().isPlain = isPlain && !isQualified;
        m_pieces.back().qualifier = qualifier;
    }

    // The two signs behind a word are a part of it.
    [[nodiscard]] bool isGluedToWord() const {
        return m_at > 2 && isWordPart(m_text[m_at - 3]) && !m_pieces.isEmpty() &&
               m_pieces.back().isPlain;
    }

    // With blanks beside a full stop these are no parts of a name: "ON .A", "A. OR", "JOIN .T".
    static bool isNoQualifier(const QString& word) {
        static const QSet<QString> words = {"ON",     "AND",  "OR",   "NOT",     "WHERE",
                                            "HAVING", "FROM", "JOIN", "SELECT",  "BY",
                                            "AS",     "LIKE", "IN",   "BETWEEN", "DISTINCT"};
        return words.contains(word);
    }

    void readSign(QChar character) {
        ++m_at;
        m_loose = isBlank(character);
        if (m_loose) return;
        if (character == u'.') {
            if (m_at > 1 && m_text[m_at - 2] == u'.') return;
            const bool behindBlank = m_at > 1 && isBlank(m_text[m_at - 2]);
            const bool behindWord =
                !m_bracket && !m_pieces.isEmpty() && m_pieces.back().kind == Piece::Word;
            m_glued = behindWord && !(behindBlank && m_pieces.back().isPlain &&
                                      isNoQualifier(m_pieces.back().text));
            return;
        }
        if (character == u'*' && m_glued) m_pieces.removeLast();
        m_glued = false;
        m_bracket = character == u'(' || character == u')';
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
        m_pieces << Piece{
            kind, kind == Piece::Text ? u'\'' + text + u'\'' : text, m_depth, false, {}};
        if (kind != Piece::Word) m_glued = false;
        m_bracket = false;
    }

    const QString& m_text;
    qsizetype m_at = 0;
    int m_depth = 0;
    bool m_glued = false;    // a full stop stands behind the last word
    bool m_loose = false;    // the last sign was a blank
    bool m_bracket = false;  // a bracket stands behind the last piece
    Pieces m_pieces;
};

/// A statement by its clauses.
using Clauses = QMap<QString, Pieces>;

const QString tail = QStringLiteral("tail");

// What stands behind the last clause, to the end.
bool beginsTail(const Pieces& pieces, qsizetype index, const Pieces& before) {
    static const QStringList queries = {"SELECT", "ALL", "DISTINCT"};
    static const QMap<QString, QStringList> tails = {
        {"UNION", queries},  {"INTERSECT", queries},
        {"EXCEPT", queries}, {"LIMIT", {}},
        {"OFFSET", {}},      {"FETCH", {"FIRST", "NEXT"}},
        {"WINDOW", {}},      {"FOR", {"UPDATE", "SHARE"}}};
    const Piece& piece = pieces[index];
    if (!piece.isPlain || piece.depth > 0 || !tails.contains(piece.text)) return false;
    if (before.isEmpty() || index + 1 == pieces.size()) return false;
    const QStringList next = tails.value(piece.text);
    if (!next.isEmpty() && !next.contains(pieces[index + 1].text)) return false;
    // Columns may be called so: behind these an operand is still to come.
    static const QSet<QString> open = {"AS",   "AND",     "OR",  "NOT", "ON",
                                       "LIKE", "BETWEEN", "ALL", "IS"};
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

// Whether a NOT and another one behind it are about the same, with brackets between them or not:
// in NOT (NOT a AND b) the second one is about "a" alone.
bool isDoubleNegation(const Pieces& pieces, qsizetype at) {
    if (at + 1 >= pieces.size() || !pieces[at].is("NOT") || !pieces[at + 1].is("NOT")) return false;
    const int outside = pieces[at].depth;
    const int inside = pieces[at + 1].depth;
    int open = 0;  // BETWEENs whose AND is still to come
    for (qsizetype next = at + 2; next < pieces.size(); ++next) {
        const Piece& piece = pieces[next];
        if (inside == outside || piece.depth <= outside) return true;
        if (piece.depth > inside) continue;
        if (piece.is("BETWEEN")) ++open;
        if (piece.is("OR") || (piece.is("AND") && open-- == 0)) return false;
    }
    return true;
}

// What pieces say, in no order.
QStringList wordsOf(const Pieces& pieces) {
    QStringList words;
    for (qsizetype index = 0; index < pieces.size(); ++index) {
        const Piece& piece = pieces[index];
        if (isDoubleNegation(pieces, index)) {
            ++index;
            continue;
        }
        const bool says = piece.kind != Piece::Comma && !piece.is("AS") && !piece.is("ASC");
        if (says) words << piece.text;
    }
    words.sort();
    return words;
}

QString difference(const QString& place, const QStringList& given, QStringList written) {
    QStringList lines;
    for (const QString& word : given) {
        if (!written.removeOne(word)) lines << "- " + place + ": " + word;
    }
    for (const QString& word : written) lines << "+ " + place + ": " + word;
    return lines.join(u'\n');
}

// --- the select list ---

QString fullTextOf(const Piece& word) {
    return word.qualifier.isEmpty() ? word.text : word.qualifier + u'.' + word.text;
}

/// An output column: with a name behind AS, or behind nothing.
struct Column {
    explicit Column(const Pieces& item) : whole(item), expression(item) {
        if (expression.isEmpty() || expression.back().kind != Piece::Word) return;
        const bool named = expression.size() > 1 && expression.back().depth == 0;
        if (!named) return;
        const Piece& before = expression[expression.size() - 2];
        const bool behindOperand = before.kind != Piece::Sign;
        if (!before.is("AS") && !behindOperand) return;
        fullName = fullTextOf(expression.back());
        name = expression.takeLast().text;
        behindAs = expression.back().is("AS");
        if (behindAs) expression.removeLast();
    }

    Pieces whole;
    Pieces expression;
    QString name;
    QString fullName;  // with its qualifier, which no database takes: it is written as one name
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
    const bool isSameExpression = wordsOf(given.expression) == wordsOf(written.expression);
    const bool isSameName = !given.name.isEmpty() && given.fullName == written.name;
    if (isSameName && isSameExpression) return true;
    const bool isOwnName = !given.expression.isEmpty() && given.expression.size() == 1 &&
                           given.expression.back().text == given.name;
    return isOwnName && isSameExpression;
}

// A star is written as fields, or as itself where its table has none.
bool mayBeOfStar(const Column& column) {
    Pieces whole = column.whole;
    if (whole.size() == 2 && whole.front().text == u":") whole.removeFirst();  // of an alias ":A"
    return whole.size() == 1 && (whole.front().kind == Piece::Word || isStar(column));
}

// Whether the written columns are the given ones in their order, with any number of fields in the
// place of a star.
bool fitsStars(const QList<Column>& given, const QList<Column>& written) {
    // Behind how many of the written ones those looked at so far may end.
    QList<bool> ends(written.size() + 1, false);
    ends[0] = true;
    for (const Column& column : given) {
        QList<bool> next(ends.size(), false);
        for (qsizetype at = 0; at < ends.size(); ++at) {
            const bool goesOn = at > 0 && isStar(column) && next[at - 1];
            if (isStar(column)) next[at] = ends[at] || (goesOn && mayBeOfStar(written[at - 1]));
            if (isStar(column) || at == 0) continue;
            next[at] = ends[at - 1] && saysTheSame(column, written[at - 1]);
        }
        ends = next;
    }
    return ends.back();
}

QString differenceOfColumns(const QList<Column>& given, const QList<Column>& written) {
    if (std::any_of(given.begin(), given.end(), isStar)) {
        const bool fits = fitsStars(given, written);
        return fits ? QString() : QStringLiteral("other columns beside the star");
    }
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
        // A kind of join says so without the word.
        const bool isKind = before && (before->is("CROSS") || before->is("LEFT") ||
                                       before->is("RIGHT") || before->is("FULL"));
        if (piece.is("CROSS") || (piece.is("JOIN") && isKind)) continue;
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

// --- comparisons in FROM ---

/// One by "<", "<=", ">" or ">=", as it reads with the smaller side in front.
struct Comparison {
    Pieces smaller;
    Pieces greater;
    bool orEqual = false;

    [[nodiscard]] QString text() const {
        return wordsOf(smaller).join(u' ') + (orEqual ? " <= " : " < ") +
               wordsOf(greater).join(u' ');
    }
};

bool endsOperand(const Piece& piece, int depth) {
    static const QSet<QString> words = {"ON",    "AND",  "OR",    "NOT",    "WHERE", "CASE",
                                        "WHEN",  "THEN", "ELSE",  "END",    "JOIN",  "LEFT",
                                        "RIGHT", "FULL", "CROSS", "SELECT", "FROM"};
    if (piece.depth != depth) return piece.depth < depth;
    return piece.kind == Piece::Comma || (piece.isPlain && words.contains(piece.text));
}

// Whether the sign alone is an operator, or the first of an operator's two signs: no part of "<>",
// "->" and their like.
bool isOrderSign(const Pieces& clause, qsizetype at) {
    const auto isOneOf = [&](qsizetype index, const char* signs) {
        const bool isThere = index >= 0 && index < clause.size() &&
                             clause[index].kind == Piece::Sign &&
                             clause[index].depth == clause[at].depth;
        return isThere && QLatin1String(signs).contains(clause[index].text);
    };
    const bool isLong = isOneOf(at + 1, "=") && isOneOf(at + 2, "<>");
    return isOneOf(at, "<>") && !isLong && !isOneOf(at - 1, "<>=!-~&|^") &&
           !isOneOf(at + 1, "<>~&|^");
}

QList<Comparison> comparisonsOf(const Pieces& clause) {
    QList<Comparison> found;
    for (qsizetype at = 0; at < clause.size(); ++at) {
        if (!isOrderSign(clause, at)) continue;
        const int depth = clause[at].depth;
        Comparison comparison;
        comparison.orEqual = at + 1 < clause.size() && clause[at + 1].text == u"=";
        const qsizetype behind = at + (comparison.orEqual ? 2 : 1);
        qsizetype first = at;
        while (first > 0 && !endsOperand(clause[first - 1], depth)) --first;
        qsizetype last = behind;
        while (last < clause.size() && !endsOperand(clause[last], depth)) ++last;
        comparison.smaller = clause.mid(first, at - first);
        comparison.greater = clause.mid(behind, last - behind);
        if (clause[at].text == u">") std::swap(comparison.smaller, comparison.greater);
        found << comparison;
    }
    return found;
}

// Here qualifiers count, where both have one: joined fields often have the same name.
bool isSameOperand(const Pieces& given, const Pieces& written) {
    if (wordsOf(given) != wordsOf(written)) return false;
    if (given.size() != 1 || written.size() != 1) return true;
    const QString& one = given.front().qualifier;
    const QString& other = written.front().qualifier;
    return one == other || one.isEmpty() || other.isEmpty();
}

QString differenceOfComparisons(const Pieces& given, const Pieces& written) {
    QList<Comparison> left = comparisonsOf(written);
    QStringList lines;
    for (const Comparison& one : comparisonsOf(given)) {
        const auto same = std::find_if(left.begin(), left.end(), [&](const Comparison& other) {
            return one.orEqual == other.orEqual && isSameOperand(one.smaller, other.smaller) &&
                   isSameOperand(one.greater, other.greater);
        });
        if (same == left.end()) {
            lines << "- FROM: " + one.text();
        } else {
            left.erase(same);
        }
    }
    return lines.join(u'\n');
}

// --- lists ---

// What an item of GROUP BY or ORDER BY may mean: itself, or the column that it numbers or names.
// With a star the columns that are numbered are those that it is written as.
QList<QStringList> meaningsOf(Pieces item, const QList<Column>& columns,
                              const QList<Column>& numberedColumns) {
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
    for (qsizetype index = 0; index < numberedColumns.size(); ++index) {
        if (piece.kind != Piece::Number || piece.text != QString::number(index + 1)) continue;
        meanings << wordsOf(numberedColumns[index].expression) + direction;
    }
    for (const Column& column : columns) {
        const bool named = piece.kind == Piece::Word && piece.text == column.name;
        if (named) meanings << wordsOf(column.expression) + direction;
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
    const bool isOrdered = place == u"ORDER BY";
    for (const Pieces& item : items) {
        const QList<QStringList> meanings =
            meaningsOf(item, givenColumns, hasStar ? writtenColumns : givenColumns);
        const auto isSame = [&](const Pieces& other) {
            const QList<QStringList> others = meaningsOf(other, writtenColumns, writtenColumns);
            return std::any_of(others.begin(), others.end(), [&](const QStringList& meaning) {
                return meanings.contains(meaning);
            });
        };
        const auto end = isOrdered ? left.begin() + 1 : left.end();
        const auto same = std::find_if(left.begin(), end, isSame);
        if (same == end) return "- " + place + ": " + wordsOf(item).join(u' ');
        left.erase(same);
    }
    return {};
}

// One that quotes nothing: neither in a text nor in a name.
bool hasSquareBracket(const QString& text) {
    const Pieces pieces = PieceReader(text).read();
    return std::any_of(pieces.begin(), pieces.end(), [](const Piece& piece) {
        return piece.kind == Piece::Sign && piece.text == u"[";
    });
}

}  // namespace

QString wordsDifference(const QString& given, const QString& written, bool keepMeaning) {
    if (hasSquareBracket(given)) return {};
    const Clauses left = clausesOf(given);
    const Clauses right = clausesOf(written);
    QStringList lines;
    if (isDistinct(left) != isDistinct(right)) lines << QStringLiteral("DISTINCT");
    lines << differenceOfColumns(columnsOf(left), columnsOf(right));
    const QString from = QStringLiteral("FROM");
    lines << difference(from, wordsOfFrom(left.value(from), keepMeaning),
                        wordsOfFrom(right.value(from), keepMeaning));
    lines << differenceOfComparisons(left.value(from), right.value(from));
    for (const QString& clause : {QStringLiteral("WHERE"), QStringLiteral("HAVING"), tail}) {
        lines << difference(clause, wordsOf(left.value(clause)), wordsOf(right.value(clause)));
    }
    lines << differenceOfLists(QStringLiteral("GROUP BY"), left, right);
    lines << differenceOfLists(QStringLiteral("ORDER BY"), left, right);
    lines.removeAll(QString());
    return lines.join(u'\n');
}

}  // namespace orvfuzz
