// SPDX-License-Identifier: MIT
#include "words/QueryNames.h"

#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDTokens.h"

#include <algorithm>

namespace orvquery {

namespace {

constexpr int noTable = -1;

bool isSameName(const QString& one, const QString& other) {
    return orv::withoutQuotes(one) == orv::withoutQuotes(other);
}

// A name may have a schema in front, and each of its parts may stand in quotes.
QString plainName(const QString& name) {
    QStringList parts;
    QString rest = name;
    while (!rest.isEmpty()) {
        const qsizetype stop = orv::firstFullStop(rest);
        parts += orv::withoutQuotes(stop < 0 ? rest : rest.left(stop));
        rest = stop < 0 ? QString() : rest.mid(stop + 1);
    }
    return parts.join(u'.');
}

bool isWord(const QString& text, QStringView upper) {
    return text.compare(upper, Qt::CaseInsensitive) == 0;
}

bool isConstant(const QString& text) {
    const orv::SqlTokens tokens = orv::tokenise(text);
    if (tokens.empty()) return false;
    const orv::SqlToken::Kind kind = tokens.back().kind;
    if (tokens.size() == 1 && kind == orv::SqlToken::Word) {
        return isWord(text, u"TRUE") || isWord(text, u"FALSE") || isNull(text);
    }
    if (tokens.size() == 1) return kind == orv::SqlToken::Number || kind == orv::SqlToken::Text;
    const bool isSigned = text.startsWith(u'-') || text.startsWith(u'+');
    return tokens.size() == 2 && isSigned && kind == orv::SqlToken::Number;
}

// What stands behind DISTINCT; nothing without it.
std::optional<QString> behindDistinct(const QString& source) {
    const orv::SqlTokens tokens = orv::tokenise(source);
    const orv::TokenRun run(source, tokens.data(), tokens.data() + tokens.size());
    if (run.size() < 2 || !run.is(0, u"DISTINCT")) return std::nullopt;
    return orv::orvTrim(source.mid(run[0].end));
}

}  // namespace

QString enumeration(const QStringList& parts, const QString& last) {
    if (parts.size() < 2) return parts.join(QString());
    return parts.mid(0, parts.size() - 1).join(QStringLiteral(", ")) + u' ' + last + u' ' +
           parts.back();
}

QString quotedSql(const QString& sql) {
    QString line = orv::orvTrim(sql);
    line.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    line.replace(u'\n', u' ');
    line.replace(u'\r', u' ');
    return QChar(0x201c) + line + QChar(0x201d);
}

bool isPlaceholder(const QString& text) {
    return text.startsWith(u':') && orv::isPlainIdentifier(QStringView(text).mid(1));
}

bool isNull(const QString& text) {
    return isWord(orv::orvTrim(text), u"NULL");
}

QString notFilledIn() {
    return QStringLiteral("(not filled in)");
}

int QueryNames::tableByAlias(const QString& alias) const {
    for (std::size_t index = 0; index < m_state.tables.size(); ++index) {
        if (isSameName(m_state.tables[index].alias, alias)) return int(index);
    }
    return noTable;
}

// A database that passes over the case of names finds a column by another one, too.
std::optional<QueryNames::Field> QueryNames::fieldOf(int table, const QString& name) const {
    const orv::QueryState::Table& owner = m_state.tables[std::size_t(table)];
    std::vector<Field> fields;
    for (const TFieldDef& field : owner.fields.FieldDefs) {
        fields.push_back({table, orv::withoutQuotes(field.Name), field.DataType});
    }
    for (const TParam& param : owner.params.Items) {
        if (param.ParamType != ptOutput) continue;
        fields.push_back({table, orv::withoutQuotes(param.Name), param.DataType});
    }
    const QString wanted = orv::withoutQuotes(name);
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        const auto isWanted = [&](const Field& field) {
            return field.name.compare(wanted, sensitivity) == 0;
        };
        const auto found = std::find_if(fields.begin(), fields.end(), isWanted);
        if (found != fields.end()) return *found;
    }
    return std::nullopt;
}

// A name without its table means a column that but one of them has.
std::optional<QueryNames::Field> QueryNames::field(const QString& text) const {
    const QString name = orv::orvTrim(text);
    if (!orv::isFieldName(name)) return std::nullopt;
    const orv::QualifiedName parts = orv::splitQualifiedName(name);
    if (!parts.alias.isEmpty()) {
        const int table = tableByAlias(parts.alias);
        return table == noTable ? std::nullopt : fieldOf(table, parts.field);
    }
    std::optional<Field> found;
    for (std::size_t index = 0; index < m_state.tables.size(); ++index) {
        const std::optional<Field> field = fieldOf(int(index), parts.field);
        if (field && found) return std::nullopt;
        if (field) found = field;
    }
    return found;
}

QString QueryNames::table(int index) const {
    const orv::QueryState::Table& table = m_state.tables[std::size_t(index)];
    const QString name = plainName(table.name);
    const QString alias = orv::withoutQuotes(table.alias);
    return alias == name ? name : QStringLiteral("%1 (%2)").arg(name, alias);
}

QString QueryNames::column(const Field& field) const {
    if (!m_namesTables) return field.name;
    return field.name + QStringLiteral(" of ") + table(field.table);
}

QString QueryNames::theColumn(const Field& field) const {
    return QStringLiteral("the ") + column(field);
}

QString QueryNames::operand(const QString& text) const {
    QString trimmed = orv::orvTrim(text);
    if (trimmed.isEmpty()) return notFilledIn();
    if (const std::optional<Field> named = field(trimmed)) return theColumn(*named);
    if (isConstant(trimmed)) return trimmed;
    if (isPlaceholder(trimmed)) return QStringLiteral("the value given for ") + trimmed;
    return quotedSql(trimmed);
}

QString QueryNames::aggregate(const QString& function, const QString& source) const {
    const QString name = orv::orvTrim(function).toUpper();
    const QString trimmed = orv::orvTrim(source);
    const std::optional<QString> distinct = behindDistinct(trimmed);
    const QString values = operand(distinct.value_or(trimmed));
    if (name == u"COUNT" && trimmed == u"*") return QStringLiteral("the number of rows");
    if (name == u"COUNT") {
        return (distinct ? QStringLiteral("the number of different values of ")
                         : QStringLiteral("the number of values of ")) +
               values;
    }
    if (name == u"MIN" || name == u"MAX") {
        const std::optional<Field> named = field(distinct.value_or(trimmed));
        const bool isTime = named && scaleOf(named->type) == Scale::Time;
        const QString first =
            isTime ? QStringLiteral("the earliest ") : QStringLiteral("the smallest ");
        const QString last =
            isTime ? QStringLiteral("the latest ") : QStringLiteral("the greatest ");
        return (name == u"MIN" ? first : last) +
               (named ? column(*named) : QStringLiteral("value of ") + values);
    }
    QString made = QStringLiteral("the %1 of ").arg(name);
    if (name == u"SUM") made = QStringLiteral("the sum of ");
    if (name == u"AVG") made = QStringLiteral("the average of ");
    return made + (distinct ? QStringLiteral("the different values of ") : QString()) + values;
}

Scale scaleOf(TFieldType type) {
    switch (type) {
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftFloat:
    case ftCurrency:
    case ftBCD:
    case ftAutoInc:
    case ftLargeint: return Scale::Number;
    case ftDate:
    case ftTime:
    case ftDateTime: return Scale::Time;
    case ftString:
    case ftMemo:
    case ftFmtMemo:
    case ftFixedChar:
    case ftWideString: return Scale::Text;
    default: return Scale::Unknown;
    }
}

}  // namespace orvquery
