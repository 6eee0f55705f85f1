// SPDX-License-Identifier: MIT
#include "parser/ORVQDParseRun.h"

#include "core/Text.h"

#include <algorithm>

namespace {

TTypeOfTie kindOfValue(const QString& word) {
    if (word == u"*" || word == u"NULL" || word == u"USER") return otConst;
    const QChar first = word.front();
    if (first >= u'0' && first <= u'9') return otConst;
    if (first != u'"' && first != u'\'') return otField;
    return word.size() > 1 && word.back() == first ? otConst : otField;
}

constexpr QStringView joinWord = u"JOIN";

QString joinText(int joinIndex) {
    switch (joinIndex) {
    case 0:
    case 1: return QStringLiteral("INNER JOIN");
    case 2: return QStringLiteral("LEFT OUTER JOIN");
    case 3: return QStringLiteral("RIGHT OUTER JOIN");
    default: return QStringLiteral("FULL OUTER JOIN");
    }
}

// The usual operators share their texts.
QString operatorText(QStringView signs) {
    static const QString usual[] = {QStringLiteral("="), QStringLiteral("<>"), QStringLiteral("<"),
                                    QStringLiteral(">"), QStringLiteral("<="), QStringLiteral(">="),
                                    QStringLiteral("*"), QStringLiteral("+"),  QStringLiteral("-")};
    for (const QString& text : usual) {
        if (text == signs) return text;
    }
    return signs.toString();
}

bool isRightOrLeft(const QString& word) {
    return word == u"LEFT" || word == u"RIGHT";
}

}  // namespace

TorvQDParseRun::TorvQDParseRun(const QString& text, int start, int end)
    : m_text(text), m_position(start), m_end(end) {
    findBrackets();
}

int TorvQDParseRun::parse(TorvQDParser& node) {
    m_stack.push_back({&node, m_end, m_end, false, false, false});
    while (!m_stack.empty()) step();
    return m_position;
}

// Brackets inside quotes do not count: 'a)' is data.
void TorvQDParseRun::findBrackets() {
    std::vector<std::size_t> opened;
    for (int position = m_position; position < m_end; ++position) {
        const QChar character = m_text[position];
        if (character == u'(') {
            opened.push_back(m_brackets.size());
            m_brackets.push_back({position, -1});
        } else if (character == u')') {
            if (opened.empty()) continue;
            m_brackets[opened.back()].close = position;
            opened.pop_back();
        } else if (character == u'"' || character == u'\'') {
            const qsizetype close = m_text.indexOf(character, position + 1);
            if (close < 0) return;
            position = int(close);
        }
    }
}

// The group that opens at `open`, at most up to `end`. Without a matching bracket it is all the
// rest, and its last character is taken off only when it is a bracket.
TorvQDParseRun::Group TorvQDParseRun::groupAt(int open, int end) {
    while (m_brackets[m_nextBracket].open < open) ++m_nextBracket;
    Q_ASSERT(m_brackets[m_nextBracket].open == open);
    const int close = m_brackets[m_nextBracket].close;
    if (close >= 0 && close < end) return {open + 1, close, close + 1};
    const bool endsWithBracket = end - 1 > open && m_text[end - 1] == u')';
    return {open + 1, endsWithBracket ? end - 1 : end, end};
}

void TorvQDParseRun::step() {
    const Frame frame = m_stack.back();
    if (m_position >= frame.end) {
        finish();
        return;
    }
    if (readBlankOrComma(frame)) return;
    const int operatorEnd = endOfOperator(frame);
    if (operatorEnd > m_position) {
        readOperator(frame, operatorEnd);
    } else if (m_text[m_position] == u'(') {
        const Group group = groupAt(m_position, frame.end);
        const TLocationKinds location = frame.node->Location();
        TorvQDParser* node =
            add(*frame.node, otBrakets, location, QStringLiteral("(...)"), m_position, group.end);
        openGroup(node, group, location == inSelect);
    } else {
        readWord(frame);
    }
}

// Ends the innermost open node.
void TorvQDParseRun::finish() {
    const Frame frame = m_stack.back();
    m_stack.pop_back();
    if (!frame.bounded) {
        frame.node->m_end = m_position;
        return;
    }
    m_position = frame.resume;
    if (frame.takesAlias) GetAlias(*frame.node, m_stack.back().end);
}

// A comma ends an ON condition and its join: what follows is the next table of FROM, not a part of
// the condition.
bool TorvQDParseRun::readBlankOrComma(const Frame& frame) {
    const QChar character = m_text[m_position];
    if (character != u' ' && character != u',') return false;
    const bool endsNode = character == u',' &&
                          (frame.inOn || (frame.node->Kind() == otJoin && frame.node->Count() > 0));
    if (endsNode) {
        finish();
        return true;
    }
    ++m_position;
    while (m_position < frame.end && m_text[m_position] == u' ') ++m_position;
    return true;
}

int TorvQDParseRun::endOfOperator(const Frame& frame) const {
    int position = m_position;
    while (position < frame.end && orv::isOperatorCharacter(m_text[position])) ++position;
    return position;
}

void TorvQDParseRun::readOperator(const Frame& frame, int operatorEnd) {
    const int start = m_position;
    const QString text = operatorText(QStringView(m_text).mid(start, operatorEnd - start));
    m_position = operatorEnd;
    const std::vector<TorvQDParser::Node>& before = frame.node->Children();
    const bool isStar = text == u"*" && (before.empty() || before.back()->Kind() == otMatchingType);
    if (isStar) {
        DoParseOfValue(frame, text, start, operatorEnd);
    } else {
        add(*frame.node, otOperator, inItem, text, start, operatorEnd);
    }
}

void TorvQDParseRun::readWord(const Frame& frame) {
    const orv::ScannedWord word = orv::scanWord(m_text, m_position, frame.end);
    m_wordStart = m_position;
    if (word.text.isEmpty()) {  // a closing bracket that nothing opened
        ++m_position;
        return;
    }
    m_position = word.next;
    const orv::WordInfo info = word.info;
    if (info.is(orv::wordMatching)) {
        add(*frame.node, otMatchingType, inItem, word.text, m_wordStart, word.end);
    } else if (info.is(orv::wordClause) && !isPartOfComparison(word)) {
        readClause(frame, word, info.clause);
    } else if (info.is(orv::wordFunction) && isFollowedByBracket(m_position, frame.end)) {
        const Group group = groupAt(orv::skipBlanks(m_text, m_position, frame.end), frame.end);
        TorvQDParser* node =
            add(*frame.node, otFunc, inFunction, word.text, m_wordStart, group.end);
        openGroup(node, group, frame.node->Location() == inSelect);
    } else if (!DoParseOf(frame, word)) {
        m_position = m_wordStart;
        finish();
    }
}

// IS DISTINCT FROM and IS NOT DISTINCT FROM compare; they begin no clause.
bool TorvQDParseRun::isPartOfComparison(const orv::ScannedWord& word) const {
    if (word.text != u"FROM") return false;
    QStringView before = QStringView(m_text).left(m_wordStart).trimmed();
    const auto takeWord = [&before](QStringView wanted) {
        if (!before.endsWith(wanted, Qt::CaseInsensitive)) return false;
        const QStringView rest = before.chopped(wanted.size());
        if (!rest.isEmpty() && !orv::isSeparator(rest.back())) return false;
        before = rest.trimmed();
        return true;
    };
    if (!takeWord(u"DISTINCT")) return false;
    (void)takeWord(u"NOT");
    return takeWord(u"IS");
}

void TorvQDParseRun::readClause(const Frame& frame, const orv::ScannedWord& word,
                                TLocationKinds clause) {
    const std::vector<TorvQDParser::Node>& before = frame.node->Children();
    const bool belongsAround = frame.node->Location() != inSelect && clause != inSelect;
    const bool outOfOrder = !before.empty() && before.back()->Location() >= clause;
    if (belongsAround || outOfOrder) {
        m_position = m_wordStart;
        finish();
        return;
    }
    open(add(*frame.node, otCompound, clause, word.text, m_wordStart, word.end), frame, false);
}

// An ordinary word, by the place where it stands; false ends the node, with the word put back.
bool TorvQDParseRun::DoParseOf(const Frame& frame, const orv::ScannedWord& word) {
    switch (frame.node->Location()) {
    case inFunction:
    case inSelect: DoParseOfValue(frame, word.text, m_wordStart, word.end); return true;
    case inFrom: return DoParseOfTable(frame, word);
    case inWhere:
    case inHaving: return DoParseOfCondition(frame, word);
    case inGroupBy:
    case inOrderBy: DoParseOfOrderList(frame, word); return true;
    case inUnknown:
    case inItem: break;
    }
    add(*frame.node, otConst, inItem, word.text, m_wordStart, word.end);
    return true;
}

void TorvQDParseRun::DoParseOfValue(const Frame& frame, const QString& word, int start, int end) {
    if (orv::isBlank(word)) return;
    TorvQDParser* leaf = add(*frame.node, kindOfValue(word), inItem, word, start, end);
    if (frame.node->Location() == inSelect) GetAlias(*leaf, frame.end);
}

bool TorvQDParseRun::DoParseOfTable(const Frame& frame, const orv::ScannedWord& word) {
    if (orv::isBlank(word.text)) return true;
    bool goOn = true;
    if (word.info.is(orv::wordUnheldJoin) && readUnheldJoin(frame, word, goOn)) return goOn;
    if (word.info.is(orv::wordOn)) {
        open(add(*frame.node, otCompound, inWhere, word.text, m_wordStart, word.end), frame, true);
        return true;
    }
    if (!word.info.is(orv::wordJoin)) {
        readTableName(frame, word);
        return true;
    }
    if (frame.node->Kind() != otCompound) return false;
    readJoin(frame, word, word.info.joinIndex);
    return true;
}

// CROSS JOIN is a comma. NATURAL and USING stay in the tree as words, so that whoever loads it can
// say that they are not held.
bool TorvQDParseRun::readUnheldJoin(const Frame& frame, const orv::ScannedWord& word, bool& goOn) {
    const bool inJoin = frame.node->Kind() == otJoin;
    const bool isCross = word.text == u"CROSS" && isFollowedByJoin(word, frame.end, false);
    const bool isNatural = word.text == u"NATURAL" && isFollowedByJoin(word, frame.end, true);
    if (isCross || isNatural) {
        goOn = !inJoin;
        if (inJoin) return true;
        if (isNatural) {
            add(*frame.node, otMatchingType, inItem, word.text, m_wordStart, word.end);
        } else {
            m_position =
                orv::scanPlainWord(m_text, orv::skipBlanks(m_text, word.next, frame.end), frame.end)
                    .next;
        }
        return true;
    }
    const bool isUsing = word.text == u"USING" && inJoin && frame.node->Count() > 0 &&
                         isFollowedByBracket(word.next, frame.end);
    if (isUsing) add(*frame.node, otMatchingType, inItem, word.text, m_wordStart, word.end);
    return isUsing;
}

void TorvQDParseRun::readTableName(const Frame& frame, const orv::ScannedWord& word) {
    const int next = orv::skipBlanks(m_text, m_position, frame.end);
    if (isFollowedByBracket(m_position, frame.end)) {
        const Group group = groupAt(next, frame.end);
        TorvQDParser* node =
            add(*frame.node, otTable, inFunction, word.text, m_wordStart, group.end);
        openGroup(node, group, true);
        return;
    }
    TorvQDParser* leaf = add(*frame.node, otTable, inItem, word.text, m_wordStart, word.end);
    m_position = next;
    // Behind a table any number of blanks stands for the one that an alias needs.
    if (next > word.end && next < frame.end) readAlias(*leaf, frame.end);
}

void TorvQDParseRun::readJoin(const Frame& frame, const orv::ScannedWord& word, int joinIndex) {
    if (joinIndex > 0) m_position = behindNextJoin(frame.end);
    TorvQDParser* node = add(*frame.node, otJoin, frame.node->Location(), joinText(joinIndex),
                             m_wordStart, word.end);
    open(node, frame, false);
}

bool TorvQDParseRun::DoParseOfCondition(const Frame& frame, const orv::ScannedWord& word) {
    const orv::WordInfo& info = word.info;
    if (info.is(orv::wordJoin)) {
        const bool isCall = isRightOrLeft(word.text) && isFollowedByBracket(word.next, frame.end);
        if (!isCall) return false;
    }
    if (frame.inOn && info.is(orv::wordUnheldJoin)) {
        if (word.text == u"CROSS" && isFollowedByJoin(word, frame.end, false)) return false;
        if (word.text == u"NATURAL" && isFollowedByJoin(word, frame.end, true)) return false;
    }
    if (info.is(orv::wordLogical)) {
        const bool isCondition = frame.node->Kind() == otCondition;
        const bool ownAnd = frame.node->Text() == u"BETWEEN" && frame.node->Count() < 2;
        if (isCondition && !ownAnd) return false;
        add(*frame.node, otLogical, inItem, word.text, m_wordStart, word.end);
    } else if (info.is(orv::wordConditionFunc)) {
        TorvQDParser* node =
            add(*frame.node, otCondition, frame.node->Location(), word.text, m_wordStart, word.end);
        open(node, frame, frame.inOn);
    } else {
        DoParseOfValue(frame, word.text, m_wordStart, word.end);
    }
    return true;
}

void TorvQDParseRun::DoParseOfOrderList(const Frame& frame, const orv::ScannedWord& word) {
    if (!word.info.is(orv::wordDirection)) {
        DoParseOfValue(frame, word.text, m_wordStart, word.end);
        return;
    }
    if (frame.node->m_children.empty()) return;
    TorvQDParser& last = *frame.node->m_children.back();
    if (last.Kind() != otField && last.Kind() != otConst) return;
    add(last, otMatchingType, inItem, word.text, m_wordStart, word.end);
}

// An alias follows its item behind exactly one blank, with or without AS.
void TorvQDParseRun::GetAlias(TorvQDParser& node, int end) {
    if (end - m_position < 2 || m_text[m_position] != u' ') return;
    ++m_position;
    readAlias(node, end);
}

void TorvQDParseRun::readAlias(TorvQDParser& node, int end) {
    int start = m_position;
    orv::ScannedWord word = orv::scanWord(m_text, start, end);
    const orv::WordInfo info = word.info;
    const bool belongsAround = info.is(orv::wordJoin) || info.is(orv::wordNeverAlias) ||
                               (info.is(orv::wordClause) && info.clause != inSelect) ||
                               info.is(orv::wordOn) || orv::isBlank(word.text);
    if (belongsAround) return;
    if (info.is(orv::wordAs)) {
        start = std::min(word.next + 1, end);
        word = orv::scanWord(m_text, start, end);
        m_position = start;
    }
    if (orv::isBlank(word.text)) return;
    m_position = word.next;
    add(node, otAlias, inItem, word.text, start, word.end);
}

bool TorvQDParseRun::isFollowedByBracket(int at, int end) const {
    const int next = orv::skipBlanks(m_text, at, end);
    return next < end && m_text[next] == u'(';
}

bool TorvQDParseRun::isFollowedByJoin(const orv::ScannedWord& word, int end,
                                      bool anyJoinWord) const {
    const orv::ScannedWord follower =
        orv::scanPlainWord(m_text, orv::skipBlanks(m_text, word.next, end), end);
    return anyJoinWord ? follower.info.is(orv::wordJoin) : follower.info.joinIndex == 0;
}

// Position behind the next "JOIN"; the present one when there is none. What was found is kept, so
// that a text of many LEFTs without a JOIN is not searched to its end for each of them.
int TorvQDParseRun::behindNextJoin(int end) {
    if (m_nextJoin < m_position) m_nextJoin = findJoinOutsideQuotes();
    const int behind = m_nextJoin + int(joinWord.size());
    return behind <= end ? behind : m_position;
}

// A JOIN inside quotes is data.
int TorvQDParseRun::findJoinOutsideQuotes() const {
    const int size = int(m_text.size());
    for (int position = m_position; position < size; ++position) {
        const QChar character = m_text[position];
        if (character == u'"' || character == u'\'') {
            const qsizetype close = m_text.indexOf(character, position + 1);
            if (close < 0) break;
            position = int(close);
        } else if ((character == u'J' || character == u'j') &&
                   QStringView(m_text).mid(position).startsWith(joinWord, Qt::CaseInsensitive)) {
            return position;
        }
    }
    return size;
}

TorvQDParser* TorvQDParseRun::add(TorvQDParser& parent, TTypeOfTie kind, TLocationKinds location,
                                  const QString& text, int start, int end) {
    TorvQDParser* node = parent.Append(std::make_unique<TorvQDParser>(kind, location, text));
    node->m_start = start;
    node->m_end = end;
    return node;
}

// Goes on with a node that shares the rest of the text with the one around it.
void TorvQDParseRun::open(TorvQDParser* node, const Frame& around, bool inOn) {
    m_stack.push_back({node, around.end, around.end, false, inOn, false});
}

// Goes on with the content of a group.
void TorvQDParseRun::openGroup(TorvQDParser* node, const Group& group, bool takesAlias) {
    m_position = group.contentStart;
    m_stack.push_back({node, group.contentEnd, group.end, true, false, takesAlias});
}
