// SPDX-License-Identifier: MIT
#include "differences/ComparedQuery.h"

#include "core/Text.h"
#include "parser/ORVQDExpressions.h"

namespace orvquery {

namespace {

constexpr QChar between = u'\x1f';

}  // namespace

QString mutedKey(const QString& key, bool isMuted) {
    return isMuted ? u'\x1d' + key : key;
}

QString ComparedQuery::fieldKey(int table, const QString& name) const {
    return tableKeys[table] + u'.' + orv::withoutQuotes(name);
}

// In a sub-query a name without its table may mean a column of the sub-query's own tables.
QString ComparedQuery::textKey(const QString& sql) const {
    const orv::SqlTokens tokens = orv::tokenise(sql);
    const orv::TokenRun run(sql, tokens.data(), tokens.data() + tokens.size());
    const std::vector<bool> inSubQuery = orv::insideSubQueries(run);
    QString key;
    for (int index = 0; index < run.size(); ++index) {
        const QString text = run.textOf(index).toString();
        const bool isCall = index + 1 < run.size() && run[index + 1].kind == orv::SqlToken::Open;
        const bool isBare = orv::firstFullStop(text) < 0;
        const bool isOwn = inSubQuery[std::size_t(index)] && isBare;
        const bool mayBeField = run[index].kind == orv::SqlToken::Word && !isCall && !isOwn;
        const auto field = mayBeField ? names.field(text) : std::nullopt;
        key += field ? fieldKey(field->table, field->name) : orv::upperOutsideQuotes(text);
        key += u' ';
    }
    return key;
}

QString ComparedQuery::rowKey(const orv::QueryState::Row& row) const {
    return mutedKey(contentKey(row), row.muted);
}

QString ComparedQuery::contentKey(const orv::QueryState::Row& row) const {
    if (row.group.isEmpty()) {
        QStringList parts = {textKey(row.func), textKey(row.field), textKey(row.operation),
                             textKey(row.argFunc)};
        for (const QString& argument : row.arguments) parts += textKey(argument);
        return parts.join(between);
    }
    if (const auto plain = plainNegation(row)) return contentKey(*plain);
    QStringList rows;
    for (const orv::QueryState::Row& inner : row.rows) rows += rowKey(inner);
    const GroupKind kind = groupKind(row.group);
    const bool isPlain = kind == GroupKind::All || kind == GroupKind::Any;
    // A group of one says what that one says.
    if (isPlain && rows.size() == 1) return rows.front();
    if (kind != GroupKind::Other) rows.sort();
    return QStringLiteral("%1{%2}").arg(row.group.toUpper(), rows.join(u'\x1e'));
}

}  // namespace orvquery
