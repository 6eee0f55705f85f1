// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDStateReader.h"

#include "core/Error.h"
#include "core/Text.h"
#include "querybuilder/ORVQDSavedValue.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orv {

namespace {

[[noreturn]] void fail(const QString& path, const QString& what) {
    throw Error(QStringLiteral("The state cannot be restored: %1 %2")
                    .arg(path.isEmpty() ? QStringLiteral("the text") : path, what));
}

/// A value of the document and the place where it stands, for messages.
class Value {
public:
    Value(QJsonValue value, QString path) : m_value(std::move(value)), m_path(std::move(path)) {}

    [[nodiscard]] bool isMissing() const { return m_value.isUndefined() || m_value.isNull(); }
    [[nodiscard]] const QString& path() const { return m_path; }

    [[nodiscard]] Value key(const char* name) const {
        const QString word = QString::fromLatin1(name);
        if (!m_value.isObject()) fail(m_path, QStringLiteral("is no object"));
        return {m_value.toObject().value(word), m_path.isEmpty() ? word : m_path + u'.' + word};
    }

    [[nodiscard]] std::vector<Value> items() const {
        std::vector<Value> values;
        if (isMissing()) return values;
        if (!m_value.isArray()) fail(m_path, QStringLiteral("is no list"));
        const QJsonArray array = m_value.toArray();
        values.reserve(std::size_t(array.size()));
        for (const auto& item : array) {
            values.emplace_back(item, QStringLiteral("%1[%2]").arg(m_path).arg(values.size()));
        }
        return values;
    }

    [[nodiscard]] QString text() const {
        if (!m_value.isString()) fail(m_path, QStringLiteral("is no text"));
        return m_value.toString();
    }
    [[nodiscard]] QString textOr(const QString& other) const {
        return isMissing() ? other : text();
    }

    [[nodiscard]] bool flagOr(bool other) const {
        if (isMissing()) return other;
        if (!m_value.isBool()) fail(m_path, QStringLiteral("is neither true nor false"));
        return m_value.toBool();
    }

    [[nodiscard]] int number() const {
        constexpr int largest = 1000000;  // far beyond any diagram, and safe to add up
        const double value = m_value.toDouble(std::numeric_limits<double>::quiet_NaN());
        if (std::isnan(value) || value != std::floor(value) || std::abs(value) > largest) {
            fail(m_path, QStringLiteral("is no whole number from -%1 to %1").arg(largest));
        }
        return int(value);
    }

    [[nodiscard]] QStringList texts() const {
        QStringList list;
        for (const Value& item : items()) list << item.text();
        return list;
    }

    [[nodiscard]] std::vector<int> numbers() const {
        std::vector<int> list;
        for (const Value& item : items()) list.push_back(item.number());
        return list;
    }

    /// The texts of a list of that many.
    [[nodiscard]] QStringList texts(int count) const {
        QStringList list = texts();
        if (list.size() != count) fail(m_path, QStringLiteral("has not %1 texts").arg(count));
        return list;
    }

private:
    QJsonValue m_value;
    QString m_path;
};

TFieldType readType(const Value& value) {
    const QString type = value.key("type").textOr(QString());
    const auto known = fieldTypeFromDisplayName(type);
    if (!known) fail(value.path(), QStringLiteral("has an unknown type: ") + type);
    return *known;
}

QString readName(const Value& value) {
    QString name = value.key("name").text();
    if (name.isEmpty()) fail(value.path(), QStringLiteral("has no name"));
    return name;
}

void readParameter(const Value& value, QueryState::Table& table) {
    TParam param{readName(value), readType(value)};
    const QString direction = value.key("direction").text();
    const auto known = paramTypeFromIdentifier(direction);
    if (!known) fail(value.path(), QStringLiteral("has an unknown direction: ") + direction);
    param.ParamType = *known;
    if (!value.key("kind").isMissing()) {
        const SavedValue saved{value.key("kind").text(), value.key("value").textOr(QString())};
        const std::optional<QVariant> restored = restoredValue(saved);
        if (!restored) {
            fail(value.path(), QStringLiteral("has no value of the kind ") + saved.kind);
        }
        param.Value = *restored;
    }
    table.params.Items.push_back(param);
    table.paramChecked.push_back(value.key("checked").flagOr(false));
}

QueryState::Table readTable(const Value& value) {
    QueryState::Table table;
    table.name = value.key("name").text();
    if (isBlank(table.name)) fail(value.path(), QStringLiteral("has no name"));
    table.alias = value.key("alias").textOr(table.name);
    table.isProcedure = value.key("procedure").flagOr(false);
    const std::vector<int> bounds = value.key("bounds").numbers();
    if (bounds.size() == 4) {
        table.bounds = {withinReach(bounds[0]), withinReach(bounds[1]), bounds[2], bounds[3]};
    } else if (!bounds.empty()) {
        fail(value.path(), QStringLiteral("has bounds that are not four numbers"));
    }
    for (const Value& field : value.key("fields").items()) {
        const TFieldType type = readType(field);
        table.fields.FieldDefs.push_back({readName(field), type});
        table.checked.push_back(field.key("checked").flagOr(false));
    }
    if (table.isProcedure) {
        for (const Value& param : value.key("parameters").items()) readParameter(param, table);
        table.withoutBrackets = !value.key("brackets").flagOr(true);
    }
    table.collapsed = value.key("collapsed").flagOr(false);
    if (!value.key("firstRow").isMissing()) table.firstRow = value.key("firstRow").number();
    return table;
}

int indexOfTable(const Value& value, const std::vector<QueryState::Table>& tables) {
    const QString alias = value.text();
    const auto found =
        std::find_if(tables.begin(), tables.end(),
                     [&](const QueryState::Table& table) { return table.alias == alias; });
    // The place is that of the join or link: the key is told by what it names.
    if (found == tables.end()) {
        fail(value.path().section(u'.', 0, 0), QStringLiteral("names an unknown table: ") + alias);
    }
    return int(found - tables.begin());
}

QueryState::Join readJoin(const Value& value, const std::vector<QueryState::Table>& tables) {
    QueryState::Join join;
    const QString kind = value.key("kind").text();
    const auto known = joinKindFromIdentifier(kind);
    if (!known) fail(value.path(), QStringLiteral("has an unknown kind: ") + kind);
    join.kind = *known;
    join.table1 = indexOfTable(value.key("table1"), tables);
    join.table2 = indexOfTable(value.key("table2"), tables);
    join.text = value.key("text").textOr(QString());
    return join;
}

// Where two boxes have one alias, a list of its own tells which of them a join is about; without it
// the front-most one is meant.
void readJoins(const Value& root, QueryState& state) {
    for (const Value& join : root.key("joins").items()) {
        state.joins.push_back(readJoin(join, state.tables));
    }
    const Value list = root.key("joinTables");
    if (list.isMissing()) return;
    const std::vector<Value> items = list.items();
    if (items.size() != state.joins.size()) {
        fail(list.path(), QStringLiteral("is not as long as the joins"));
    }
    const auto hasAliasOf = [&](int index, int table) {
        return index >= 0 && index < int(state.tables.size()) &&
               state.tables[std::size_t(index)].alias == state.tables[std::size_t(table)].alias;
    };
    for (std::size_t index = 0; index < items.size(); ++index) {
        QueryState::Join& join = state.joins[index];
        const std::vector<int> numbers = items[index].numbers();
        if (numbers.size() != 2 || !hasAliasOf(numbers[0], join.table1) ||
            !hasAliasOf(numbers[1], join.table2)) {
            fail(items[index].path(), QStringLiteral("does not name the tables of its join"));
        }
        join.table1 = numbers[0];
        join.table2 = numbers[1];
    }
}

QueryState::Link readLink(const Value& value) {
    QueryState::Link link;
    link.field1 = value.key("field1").text();
    link.operation = value.key("operator").text();
    link.field2 = value.key("field2").text();
    for (const Value& point : value.key("points").items()) {
        const std::vector<int> numbers = point.numbers();
        if (numbers.size() != 2) fail(point.path(), QStringLiteral("is no point"));
        link.points.emplace_back(numbers[0], numbers[1]);
    }
    link.muted = value.key("muted").flagOr(false);
    return link;
}

// As with the tables of joins, a list of its own tells which join a link is of when the aliases do
// not.
void readLinks(const Value& root, QueryState& state) {
    using Aliases = std::pair<QString, QString>;
    const auto aliasOf = [&](int table) { return state.tables[std::size_t(table)].alias; };
    std::vector<Aliases> joins;
    for (const QueryState::Join& join : state.joins) {
        joins.emplace_back(aliasOf(join.table1), aliasOf(join.table2));
    }
    QHash<Aliases, int> joinOf;
    for (int index = int(joins.size()) - 1; index >= 0; --index) {
        joinOf.insert(joins[std::size_t(index)], index);
    }
    const Value list = root.key("linkJoins");
    const std::vector<int> numbers = list.numbers();
    const std::vector<Value> links = root.key("links").items();
    if (!list.isMissing() && numbers.size() != links.size()) {
        fail(list.path(), QStringLiteral("is not as long as the links"));
    }
    for (std::size_t index = 0; index < links.size(); ++index) {
        QueryState::Link link = readLink(links[index]);
        const Aliases aliases(aliasOf(indexOfTable(links[index].key("table1"), state.tables)),
                              aliasOf(indexOfTable(links[index].key("table2"), state.tables)));
        link.join = list.isMissing() ? joinOf.value(aliases, -1) : numbers[index];
        if (list.isMissing() && link.join < 0) {
            fail(
                links[index].path(),
                QStringLiteral("has no join between %1 and %2").arg(aliases.first, aliases.second));
        }
        const bool isKnown = link.join >= 0 && link.join < int(joins.size());
        if (!isKnown || joins[std::size_t(link.join)] != aliases) {
            fail(list.path(), QStringLiteral("does not name the join of each link"));
        }
        state.links.push_back(std::move(link));
    }
}

QueryState::Row readRow(const Value& value) {
    QueryState::Row row;
    row.group = value.key("group").textOr(QString());
    row.muted = value.key("muted").flagOr(false);
    if (!row.group.isEmpty()) {
        for (const Value& item : value.key("rows").items()) row.rows.push_back(readRow(item));
        return row;
    }
    row.func = value.key("func").textOr(QString());
    row.field = value.key("field").textOr(QString());
    row.operation = value.key("operator").textOr(QString());
    row.argFunc = value.key("argFunc").textOr(QString());
    row.arguments = value.key("arguments").texts();
    return row;
}

QueryState::Row readRoot(const Value& value) {
    if (value.isMissing()) return {QStringLiteral("All"), {}, {}, {}, {}, {}, {}, false};
    QueryState::Row root = readRow(value);
    if (root.group.isEmpty()) fail(value.path(), QStringLiteral("is no group"));
    if (root.muted) fail(value.path(), QStringLiteral("cannot be muted as a whole"));
    return root;
}

// Without a list of their own the fields of all boxes tell the order in which these were made: they
// are listed box by box. Boxes without fields come last.
std::vector<int> impliedCreationOrder(const QueryState& state) {
    const int count = int(state.tables.size());
    QHash<QString, std::vector<int>> tablesOf;  // by alias
    for (int index = 0; index < count; ++index) {
        tablesOf[state.tables[std::size_t(index)].alias].push_back(index);
    }
    std::vector<int> order;
    const auto take = [&](const QString& alias) {
        for (const int index : tablesOf.take(alias)) order.push_back(index);
    };
    for (const QString& name : state.allFields) take(splitQualifiedName(name).alias);
    for (int index = count - 1; index >= 0; --index) take(state.tables[std::size_t(index)].alias);
    return order;
}

std::vector<int> readCreationOrder(const Value& value, const QueryState& state) {
    const int count = int(state.tables.size());
    std::vector<int> order = value.numbers();
    if (order.empty()) return impliedCreationOrder(state);
    std::vector<int> sorted = order;
    std::sort(sorted.begin(), sorted.end());
    bool isComplete = int(sorted.size()) == count;
    for (int index = 0; isComplete && index < count; ++index) {
        isComplete = sorted[std::size_t(index)] == index;
    }
    if (!isComplete) fail(value.path(), QStringLiteral("does not name each table once"));
    return order;
}

// Of a list of numbers, from 1 on.
std::vector<OutputColumn*> columnsIn(const Value& numbers, QueryState& state) {
    std::vector<OutputColumn*> columns;
    for (const int row : numbers.numbers()) {
        if (row < 1 || row > int(state.columns.size())) {
            fail(numbers.path(), QStringLiteral("names no output column"));
        }
        columns.push_back(&state.columns[std::size_t(row - 1)]);
    }
    return columns;
}

void readColumns(const Value& root, QueryState& state) {
    for (const Value& column : root.key("columns").items()) {
        const QStringList texts = column.texts(3);
        state.columns.push_back({texts[0], texts[1], texts[2]});
    }
    for (OutputColumn* column : columnsIn(root.key("groupedColumns"), state)) {
        column->grouped = true;
    }
    for (OutputColumn* column : columnsIn(root.key("mutedColumns"), state)) column->muted = true;
}

void readOrder(const Value& root, QueryState& state) {
    for (const Value& line : root.key("order").items()) {
        const QStringList texts = line.texts(2);
        if (texts[1] != ascendingText() && texts[1] != descendingText()) {
            fail(line.path(), QStringLiteral("has an unknown direction: ") + texts[1]);
        }
        state.order.push_back({texts[0], texts[1], 0, {}});
    }
    const Value rows = root.key("sortedRows");
    const std::vector<int> numbers = rows.numbers();
    if (numbers.empty()) return;
    if (numbers.size() != state.order.size()) {
        fail(rows.path(), QStringLiteral("is not as long as the order"));
    }
    for (std::size_t line = 0; line < numbers.size(); ++line) state.order[line].row = numbers[line];
}

// One height can show another number of rows in a box that was sized than in one that was not.
void readShownRows(const Value& value, QueryState& state) {
    const std::vector<int> numbers = value.numbers();
    if (numbers.empty()) return;
    if (numbers.size() != state.tables.size()) {
        fail(value.path(), QStringLiteral("is not as long as the tables"));
    }
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        if (numbers[index] < 0) fail(value.path(), QStringLiteral("has a number below 0"));
        state.tables[index].shownRows = numbers[index];
    }
}

QPoint readView(const Value& value) {
    const std::vector<int> numbers = value.numbers();
    if (numbers.empty()) return {};
    if (numbers.size() != 2) fail(value.path(), QStringLiteral("is no place"));
    return {numbers[0], numbers[1]};
}

}  // namespace

QueryState readState(const QByteArray& json) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        fail(
            {},
            QStringLiteral("is no JSON: %1 at byte %2").arg(error.errorString()).arg(error.offset));
    }
    if (!document.isObject()) fail({}, QStringLiteral("is no object"));
    const Value root(document.object(), {});
    QueryState state;
    for (const Value& table : root.key("tables").items()) state.tables.push_back(readTable(table));
    readJoins(root, state);
    readLinks(root, state);
    state.where = readRoot(root.key("where"));
    state.having = readRoot(root.key("having"));
    state.distinct = root.key("distinct").flagOr(false);
    state.tail = root.key("tail").textOr(QString());
    readColumns(root, state);
    readOrder(root, state);
    state.selectedFields = root.key("selectedFields").texts();
    state.allFields = root.key("allFields").texts();
    state.creationOrder = readCreationOrder(root.key("creationOrder"), state);
    readShownRows(root.key("shownRows"), state);
    state.view = readView(root.key("view"));
    return state;
}

}  // namespace orv
