// SPDX-License-Identifier: MIT
#include "words/ConditionWords.h"

#include "core/Text.h"
#include "parser/ORVQDTokens.h"
#include "words/ExpressionWords.h"

#include <algorithm>

namespace orvquery {

namespace {

using Row = orv::QueryState::Row;

constexpr std::size_t mostInOneSentence = 3;

bool isGroup(const Row& row) {
    return !row.group.isEmpty();
}

bool isNegation(GroupKind kind) {
    return kind == GroupKind::NotAll || kind == GroupKind::NotAny;
}

// Recursive, as all below: readers of states limit how deeply groups nest.
bool mayBeUnknown(const Row& row) {
    if (!isGroup(row)) return !isNeverUnknown(row);
    return std::any_of(row.rows.begin(), row.rows.end(), mayBeUnknown);
}

// Negates what is neither true nor false for some rows, and does not make it true so.
bool negatesUnknown(const Row& row) {
    if (isGroup(row) && isNegation(groupKind(row.group)) && mayBeUnknown(row)) return true;
    return std::any_of(row.rows.begin(), row.rows.end(), negatesUnknown);
}

// A negation of one condition that can be said without it is gone.
Row withoutPlainNegations(const Row& row) {
    if (const auto plain = plainNegation(row)) return *plain;
    Row made = row;
    made.rows.clear();
    for (const Row& inner : row.rows) made.rows.push_back(withoutPlainNegations(inner));
    return made;
}

// A pattern without any other wildcard or escape than "%" at its ends, as words.
std::optional<QString> patternWords(const QString& pattern, bool isNegated) {
    const QString given = isNegated ? QStringLiteral("is given and ") : QString();
    if (pattern.size() < 3 || !pattern.startsWith(u'\'') || !pattern.endsWith(u'\'')) {
        return std::nullopt;
    }
    QString text = pattern.mid(1, pattern.size() - 2);
    const bool isOpenInFront = text.startsWith(u'%');
    if (isOpenInFront) text.remove(0, 1);
    const bool isOpenBehind = text.endsWith(u'%');
    if (isOpenBehind) text.chop(1);
    const bool isPlain = std::none_of(text.begin(), text.end(), [](QChar character) {
        return QStringLiteral("%_\\[").contains(character);
    });
    const bool fitsAll = isOpenInFront && text.count(u'%') == text.size();
    if (fitsAll) {
        return isNegated
                   ? QStringLiteral("does not fit the pattern %1, which is never true").arg(pattern)
                   : QStringLiteral("is given (each value fits the pattern %1)").arg(pattern);
    }
    if (text.isEmpty() || !isPlain) return std::nullopt;
    // Many databases take LIKE to pass over the case of letters, other than "=".
    if (!isOpenInFront && !isOpenBehind) {
        return given + (isNegated ? QStringLiteral("is not %1 as LIKE compares")
                                  : QStringLiteral("is %1 as LIKE compares"))
                           .arg(pattern);
    }
    QString verb = QStringLiteral("contain");
    if (!isOpenInFront) verb = QStringLiteral("begin");
    if (!isOpenBehind) verb = QStringLiteral("end");
    const QString with = isOpenInFront && isOpenBehind ? QString() : QStringLiteral(" with");
    return given + (isNegated ? QStringLiteral("does not ") + verb : verb + u's') + with +
           QStringLiteral(" '") + text + u'\'';
}

// None of them finds what has no value.
bool isPlainComparison(const QString& operation) {
    static const QStringList list = {
        QStringLiteral("="),  QStringLiteral("<>"), QStringLiteral("<"), QStringLiteral(">"),
        QStringLiteral("<="), QStringLiteral(">="), QStringLiteral("!=")};
    return list.contains(operation);
}

QString comparedWithNull(const QString& operation) {
    return QStringLiteral("is compared with NULL by %1, which is never true").arg(operation);
}

QString emptyGroup() {
    return QStringLiteral("(a group that has no conditions yet)");
}

}  // namespace

GroupKind groupKind(const QString& name) {
    const QString upper = name.toUpper();
    if (upper == u"ALL") return GroupKind::All;
    if (upper == u"ANY") return GroupKind::Any;
    if (upper == u"NONE") return GroupKind::NotAll;
    if (upper == u"NOT ALL") return GroupKind::NotAny;
    return GroupKind::Other;
}

QString groupWords(const QString& name) {
    switch (groupKind(name)) {
    case GroupKind::All: return QStringLiteral("all of these are true");
    case GroupKind::Any: return QStringLiteral("at least one of these is true");
    case GroupKind::NotAll: return QStringLiteral("at least one of these is false");
    case GroupKind::NotAny: return QStringLiteral("each of these is false");
    case GroupKind::Other: break;
    }
    return QStringLiteral("%1 of these holds").arg(quotedSql(name));
}

std::optional<Row> writtenPart(const Row& row) {
    if (row.muted) return std::nullopt;
    Row part = row;
    part.rows.clear();
    for (const Row& inner : row.rows) {
        std::optional<Row> written = writtenPart(inner);
        if (!written) continue;
        const bool isAlone = written->rows.size() == 1 && inner.rows.size() > 1;
        const GroupKind kind = groupKind(inner.group);
        const bool isPlain = kind == GroupKind::All || kind == GroupKind::Any;
        part.rows.push_back(isAlone && isPlain ? written->rows.front() : *written);
    }
    const bool isGone = part.rows.empty() && !row.rows.empty();
    return isGone ? std::nullopt : std::optional<Row>(std::move(part));
}

std::optional<Row> plainNegation(const Row& row) {
    const bool negatesOne = isGroup(row) && isNegation(groupKind(row.group)) &&
                            row.rows.size() == 1 && !row.rows.front().muted;
    if (!negatesOne) return std::nullopt;
    std::optional<Row> plain = opposite(row.rows.front());
    if (plain) plain->muted = row.muted;
    return plain;
}

bool joinsClearly(const QString& text) {
    if (text.contains(QLatin1String(" or ")) || text.contains(QLatin1String(" and "))) return false;
    int depth = 0;
    bool isQuoted = false;
    for (const QChar character : text) {
        if (character == u'\'') isQuoted = !isQuoted;
        if (isQuoted) continue;
        if (character == u'(') ++depth;
        if (character == u')') --depth;
        if (character == u',' && depth == 0) return false;
    }
    return true;
}

bool isUnfilled(const Row& row) {
    if (isGroup(row)) {
        return row.rows.empty() || std::any_of(row.rows.begin(), row.rows.end(), isUnfilled);
    }
    return orv::isBlank(row.field) ||
           std::any_of(row.arguments.begin(), row.arguments.end(),
                       [](const QString& argument) { return orv::isBlank(argument); });
}

bool hasUnfilled(const Row& root) {
    return std::any_of(root.rows.begin(), root.rows.end(), isUnfilled);
}

QString muteMark(bool isMuted) {
    return isMuted ? QStringLiteral(" (muted)") : QString();
}

QString ConditionWords::leftSide(const Row& row) const {
    if (orv::isBlank(row.field)) return QStringLiteral("something not chosen yet");
    return orv::isBlank(row.func) ? m_names.operand(row.field)
                                  : m_names.aggregate(row.func, row.field);
}

QString ConditionWords::condition(const Row& row) const {
    const bool isExpression = row.operation.isEmpty() && row.arguments.isEmpty();
    if (isExpression) {
        if (orv::isBlank(row.field)) return notFilledIn() + QStringLiteral(" is true");
        return expression(row.field);
    }
    const QString operation = orv::orvTrim(row.operation).toUpper();
    const QString placeholder = orv::orvTrim(row.field);
    if (isPlaceholder(placeholder) && orv::isBlank(row.func)) {
        if (operation == u"IS NULL") return QStringLiteral("no value is given for ") + placeholder;
        if (operation == u"IS NOT NULL")
            return QStringLiteral("a value is given for ") + placeholder;
    }
    Scale scale = Scale::Unknown;
    const QString function = orv::orvTrim(row.func).toUpper();
    const bool keepsType = function.isEmpty() || function == u"MIN" || function == u"MAX";
    if (const auto field = m_names.field(row.field); field && keepsType) {
        scale = scaleOf(field->type);
    }
    return leftSide(row) + u' ' + predicate(row, scale);
}

// A text that is true or not.
QString ConditionWords::expression(const QString& sql) const {
    const auto read = readExpression(sql);
    if (!read) return quotedSql(sql) + QStringLiteral(" is true");
    const auto either = [&](const char* plain, const char* negated) {
        return QString::fromLatin1(read->isNegated ? negated : plain);
    };
    switch (read->kind) {
    case ReadExpression::Kind::Exists:
        return either("there is at least one row of ", "there is no row of ") +
               quotedSql(read->left);
    case ReadExpression::Kind::Truth: {
        const QString left = m_names.operand(read->left) + u' ';
        if (read->right == u"TRUE") return left + either("is true", "is false or not given");
        if (read->right == u"FALSE") return left + either("is false", "is true or not given");
        return left + either("is neither true nor false", "is true or false");
    }
    case ReadExpression::Kind::Starting:
        return m_names.operand(read->left) + u' ' +
               either("begins with ", "is given and does not begin with ") +
               m_names.operand(read->right);
    case ReadExpression::Kind::Containing: break;
    }
    return m_names.operand(read->left) + u' ' +
           either("contains ", "is given and does not contain ") + m_names.operand(read->right) +
           QStringLiteral(" in capital or small letters");
}

QString ConditionWords::comparison(const QString& left, Scale scale, const QString& operation,
                                   const QString& right, bool isConstant) const {
    const auto put = [&](const char* words) {
        return left + u' ' + QLatin1String(words) + u' ' + right;
    };
    const auto words = [&](const char* plain, const char* time, const char* text) {
        if (scale == Scale::Time) return put(time);
        return put(scale == Scale::Text ? text : plain);
    };
    if (operation == u"=" || operation == u"==") return put(isConstant ? "is" : "is the same as");
    if (operation == u"<>" || operation == u"!=" || operation == u"^=") {
        return put("is something other than");
    }
    if (operation == u"<") return words("is less than", "is earlier than", "comes before");
    if (operation == u">") return words("is greater than", "is later than", "comes after");
    if (operation == u"<=") {
        return words("is at most", "is not later than", "does not come after");
    }
    if (operation == u">=") {
        return words("is at least", "is not earlier than", "does not come before");
    }
    return left + QStringLiteral(" stands in the relation ") + quotedSql(operation) +
           QStringLiteral(" to ") + right;
}

// The list of IN: constants and other operands, or a sub-query.
QString ConditionWords::membership(const QString& list, bool isNegated) const {
    const QString lead =
        isNegated ? QStringLiteral("is given and is none of ") : QStringLiteral("is one of ");
    if (orv::isBlank(list)) return lead + notFilledIn();
    const orv::SqlTokens tokens = orv::tokenise(list);
    const orv::TokenRun run(list, tokens.data(), tokens.data() + tokens.size());
    const bool isQuery = run.is(0, u"SELECT") || run.is(0, u"WITH");
    if (isQuery) {
        return lead + QStringLiteral("the values of ") + quotedSql(list) +
               (isNegated ? QStringLiteral(" (which is never true once one of these is NULL)")
                          : QString());
    }
    QStringList values;
    bool hasNull = false;
    for (const orv::TokenRun& part : run.splitAtCommas()) {
        const QString value = list.mid(part.start(), part.endPosition() - part.start());
        values += m_names.operand(value);
        hasNull = hasNull || isNull(value);
    }
    const QString operation =
        quotedSql(isNegated ? QStringLiteral("NOT IN") : QStringLiteral("IN"));
    if (hasNull && values.size() == 1) return comparedWithNull(operation);
    if (hasNull && isNegated) {
        return QStringLiteral(
                   "is compared by %1 with (%2), which is never true because of the NULL")
            .arg(operation, values.join(QStringLiteral(", ")));
    }
    if (hasNull) {
        return QStringLiteral("is one of (%1), of which NULL matches nothing")
            .arg(values.join(QStringLiteral(", ")));
    }
    if (values.size() == 1) {
        return (isNegated ? QStringLiteral("is something other than ") : QStringLiteral("is ")) +
               values.front();
    }
    return lead + u'(' + values.join(QStringLiteral(", ")) + u')';
}

QString ConditionWords::predicate(const Row& row, Scale scale) const {
    const QString operation = orv::orvTrim(row.operation).toUpper();
    QStringList sides;
    for (const QString& argument : row.arguments) sides += m_names.operand(argument);
    const bool callsArgument = row.arguments.size() == 1 && !orv::isBlank(row.argFunc);
    if (callsArgument) sides.front() = m_names.aggregate(row.argFunc, row.arguments.front());
    const QString first = sides.value(0);
    const QString second = sides.value(1);
    if (operation == u"IS NULL") return QStringLiteral("is not given");
    if (operation == u"IS NOT NULL") return QStringLiteral("is given");
    if (operation == u"BETWEEN" && sides.size() == 2) {
        return QStringLiteral("is from %1 to %2").arg(first, second);
    }
    if (operation == u"NOT BETWEEN" && sides.size() == 2) {
        QString words = QStringLiteral("is less than %1 or greater than %2");
        if (scale == Scale::Time) words = QStringLiteral("is earlier than %1 or later than %2");
        if (scale == Scale::Text) words = QStringLiteral("comes before %1 or after %2");
        return words.arg(first, second);
    }
    if (operation == u"IN" || operation == u"NOT IN") {
        const bool isNegated = operation != u"IN";
        if (!callsArgument) return membership(row.arguments.value(0), isNegated);
        return (isNegated ? QStringLiteral("is something other than ") : QStringLiteral("is ")) +
               first;
    }
    if (operation == u"LIKE" || operation == u"NOT LIKE") {
        const bool isNegated = operation != u"LIKE";
        const auto words = patternWords(orv::orvTrim(row.arguments.value(0)), isNegated);
        if (words && !callsArgument) return *words;
        return (isNegated ? QStringLiteral("is given and does not fit the pattern ")
                          : QStringLiteral("fits the pattern ")) +
               first;
    }
    const bool isComparison = sides.size() == 1;
    const bool isWithNull = isComparison && !callsArgument && isNull(row.arguments.front());
    if (isWithNull && isPlainComparison(operation)) {
        return comparedWithNull(quotedSql(operation));
    }
    if (isComparison) {
        const bool isColumn = callsArgument || m_names.field(row.arguments.front()).has_value();
        return comparison({}, scale, operation, first, !isColumn).mid(1);
    }
    return QStringLiteral("stands in the relation ") + quotedSql(row.operation) +
           (sides.isEmpty() ? QString() : QStringLiteral(" to ") + enumeration(sides));
}

// As part of a longer line: brackets keep apart what belongs together.
QString ConditionWords::onOneLine(const Row& row) const {
    return bareLine(row) + muteMark(row.muted);
}

QString ConditionWords::bareLine(const Row& row) const {
    if (!isGroup(row)) return condition(row);
    if (row.rows.empty()) return emptyGroup();
    if (const auto plain = plainNegation(row)) return condition(*plain);
    const GroupKind kind = groupKind(row.group);
    const bool isOne = row.rows.size() == 1 && kind != GroupKind::Other;
    if (isOne) {
        const QString inner = onOneLine(row.rows.front());
        return isNegation(kind) ? QStringLiteral("it is false that ") + inner : inner;
    }
    QStringList parts;
    for (const Row& part : row.rows) parts += onOneLine(part);
    return groupWords(row.group) + QStringLiteral(": (") + parts.join(QStringLiteral("; ")) + u')';
}

// Without a list, where nobody can misread that.
std::optional<QString> ConditionWords::clearLine(const Row& row) const {
    if (!isGroup(row)) return condition(row);
    if (row.rows.empty()) return emptyGroup();
    const GroupKind kind = groupKind(row.group);
    if (kind == GroupKind::Other) return std::nullopt;
    if (row.rows.size() == 1) {
        const std::optional<QString> inner = clearLine(row.rows.front());
        if (!isNegation(kind) || !inner) return isNegation(kind) ? std::nullopt : inner;
        const bool isSimple = !isGroup(row.rows.front());
        return isSimple ? QStringLiteral("it is false that ") + *inner : std::optional<QString>();
    }
    const bool isFlat = std::none_of(row.rows.begin(), row.rows.end(), isGroup);
    if (!isFlat || isNegation(kind) || row.rows.size() > mostInOneSentence) return std::nullopt;
    const QString connective =
        kind == GroupKind::All ? QStringLiteral(" and ") : QStringLiteral(" or ");
    QStringList parts;
    for (const Row& part : row.rows) {
        const QString text = condition(part);
        if (!joinsClearly(text)) return std::nullopt;
        parts += text;
    }
    return parts.join(connective);
}

void ConditionWords::list(const Row& group, int depth, std::vector<WordsLine>& lines) const {
    const auto unwrapped = [](const Row& row) -> const Row& {
        const Row* inner = &row;
        while (isGroup(*inner) && inner->rows.size() == 1 &&
               (groupKind(inner->group) == GroupKind::All ||
                groupKind(inner->group) == GroupKind::Any)) {
            inner = &inner->rows.front();
        }
        return *inner;
    };
    for (const Row& wrapped : group.rows) {
        const Row& row = unwrapped(wrapped);
        if (const std::optional<QString> line = clearLine(row)) {
            lines.push_back({depth, *line});
        } else {
            lines.push_back({depth, groupWords(row.group) + u':'});
            list(row, depth + 1, lines);
        }
    }
}

std::vector<WordsLine> ConditionWords::sentences(const QString& lead, const Row& given) const {
    std::vector<WordsLine> lines;
    const std::optional<Row> written = writtenPart(given);
    if (!written || written->rows.empty()) return lines;
    const Row root = withoutPlainNegations(*written);
    if (const std::optional<QString> line = clearLine(root)) {
        lines.push_back({0, lead + u' ' + *line + u'.'});
    } else {
        const Row* group = &root;
        while (group->rows.size() == 1 && isGroup(group->rows.front()) &&
               (groupKind(group->group) == GroupKind::All ||
                groupKind(group->group) == GroupKind::Any)) {
            group = &group->rows.front();
        }
        lines.push_back({0, lead + u' ' + groupWords(group->group) + u':'});
        list(*group, 1, lines);
    }
    if (negatesUnknown(root)) {
        lines.push_back({0, QStringLiteral("A comparison with a value that is not given is neither "
                                           "true nor false.")});
    }
    if (hasUnfilled(root)) {
        lines.push_back(
            {0, QStringLiteral("The statement is not complete before all conditions are filled "
                               "in.")});
    }
    return lines;
}

}  // namespace orvquery
