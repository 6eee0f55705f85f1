// SPDX-License-Identifier: MIT
#include "text/SqlPieces.h"

namespace orvquery {

namespace {

bool isWordPart(QChar character) {
    return character.isLetterOrNumber() || character == u'_' || character == u'$' ||
           character.unicode() > 0x7f;
}

}  // namespace

bool SqlPieces::next() {
    m_start = m_end;
    if (m_start >= m_text.size()) return false;
    const QStringView rest = m_text.sliced(m_start);
    const QChar first = rest.front();
    const bool isMariadb = m_rules == SqlRules::Mariadb;
    if (startsLineComment()) {
        readUntil(Kind::Comment, u"\n", 1);
    } else if (rest.startsWith(u"/*")) {
        readComment();
    } else if (first == u'\'' || first == u'"' || (first == u'`' && isMariadb)) {
        // A doubled quote ends here and begins anew, which comes to the same.
        readUntil(Kind::Quoted, rest.first(1), 1);
    } else if (const qsizetype size = dollarQuoteSize(); size > 0) {
        readUntil(Kind::Quoted, rest.first(size), size);
    } else if (isWordPart(first)) {
        readWord();
    } else {
        read(first.isSpace() ? Kind::Blank : Kind::Other, 1);
    }
    return true;
}

void SqlPieces::read(Kind kind, qsizetype length) {
    m_kind = kind;
    m_end = m_start + length;
}

void SqlPieces::readUntil(Kind kind, QStringView end, qsizetype from) {
    const qsizetype found = m_text.indexOf(end, m_start + from);
    read(kind, (found < 0 ? m_text.size() : found + end.size()) - m_start);
}

void SqlPieces::readWord() {
    const QStringView rest = m_text.sliced(m_start);
    if (m_rules == SqlRules::Postgresql && rest.startsWith(u"E'", Qt::CaseInsensitive)) {
        return readEscapedText(2);
    }
    qsizetype length = 1;
    while (length < rest.size() && isWordPart(rest[length])) ++length;
    read(Kind::Word, length);
}

void SqlPieces::readEscapedText(qsizetype from) {
    qsizetype position = m_start + from;
    while (position < m_text.size() && m_text[position] != u'\'') {
        position += m_text[position] == u'\\' ? 2 : 1;
    }
    read(Kind::Quoted, qMin(position + 1, m_text.size()) - m_start);
}

void SqlPieces::readComment() {
    const QStringView rest = m_text.sliced(m_start);
    if (m_rules == SqlRules::Mariadb) {
        // What is in such a comment is run.
        if (rest.startsWith(u"/*!") || rest.startsWith(u"/*M!")) return read(Kind::Blank, 4);
        return readUntil(Kind::Comment, u"*/", 2);
    }
    int depth = 0;
    qsizetype position = m_start;
    do {
        const QStringView ahead = m_text.sliced(position);
        const bool isOpening = ahead.startsWith(u"/*");
        const bool isClosing = ahead.startsWith(u"*/");
        depth += isOpening ? 1 : isClosing ? -1 : 0;
        position += isOpening || isClosing ? 2 : 1;
    } while (depth > 0 && position < m_text.size());
    read(Kind::Comment, position - m_start);
}

// Of the opening "$tag$"; 0 when there is none.
qsizetype SqlPieces::dollarQuoteSize() const {
    if (m_rules != SqlRules::Postgresql || m_text[m_start] != u'$') return 0;
    const qsizetype close = m_text.indexOf(u'$', m_start + 1);
    if (close < 0) return 0;
    const QStringView tag = m_text.sliced(m_start + 1, close - m_start - 1);
    if (!tag.isEmpty() && tag.front().isDigit()) return 0;
    for (const QChar character : tag) {
        if (!isWordPart(character)) return 0;
    }
    return tag.size() + 2;
}

bool SqlPieces::startsLineComment() const {
    const QStringView rest = m_text.sliced(m_start);
    if (m_rules == SqlRules::Mariadb) {
        if (rest.front() == u'#') return true;
        const bool isBlank = rest.size() < 3 || rest[2].isSpace() || rest[2] < u' ';
        return rest.startsWith(u"--") && isBlank;
    }
    return rest.startsWith(u"--");
}

std::vector<SqlPiece> countingPieces(QStringView statement, SqlRules rules) {
    using Kind = SqlPieces::Kind;
    std::vector<SqlPiece> result;
    SqlPieces pieces(statement, rules);
    while (pieces.next()) {
        const QStringView text = pieces.text();
        if (pieces.kind() == Kind::Blank || pieces.kind() == Kind::Comment) continue;
        if (pieces.kind() == Kind::Quoted && !result.empty()) {
            SqlPiece& last = result.back();
            const bool isBehind = last.start + last.text.size() == pieces.start();
            if (last.kind == Kind::Quoted && isBehind && last.text.back() == text.front()) {
                last.text = statement.sliced(last.start, last.text.size() + text.size());
                continue;
            }
        }
        result.push_back({pieces.kind(), text, pieces.start()});
    }
    return result;
}

bool hasSecondStatement(const QString& statement, SqlRules rules) {
    SqlPieces pieces(statement, rules);
    bool isFirstOver = false;
    while (pieces.next()) {
        if (pieces.kind() == SqlPieces::Kind::Blank || pieces.kind() == SqlPieces::Kind::Comment) {
            continue;
        }
        if (pieces.text() == u";") {
            isFirstOver = true;
        } else if (isFirstOver) {
            return true;
        }
    }
    return false;
}

bool hasWord(const QString& statement, QStringView word, SqlRules rules) {
    SqlPieces pieces(statement, rules);
    while (pieces.next()) {
        const bool isWord = pieces.kind() == SqlPieces::Kind::Word;
        if (isWord && pieces.text().compare(word, Qt::CaseInsensitive) == 0) return true;
    }
    return false;
}

}  // namespace orvquery
