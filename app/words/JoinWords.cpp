// SPDX-License-Identifier: MIT
#include "words/JoinWords.h"

#include "core/Text.h"
#include "data/SqlText.h"
#include "parser/ORVQDTokens.h"
#include "words/ConditionWords.h"
#include "words/ExpressionWords.h"
#include "workarea/ORVQDSProc.h"

#include <QHash>

#include <algorithm>
#include <numeric>

namespace orvquery {

namespace {

bool isBlankSql(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<orv::SqlText>() &&
           orv::isBlank(value.value<orv::SqlText>().text);
}

}  // namespace

JoinWords::JoinWords(const QueryNames& names, bool keepMeaning)
    : m_names(names), m_state(names.state()), m_keepMeaning(keepMeaning) {
    readDiagram();
    readItems();
}

void JoinWords::readDiagram() {
    m_order.resize(m_state.tables.size());
    std::iota(m_order.begin(), m_order.end(), 0);
    if (m_keepMeaning && m_state.creationOrder.size() == m_order.size()) {
        m_order = m_state.creationOrder;
    }
    std::vector<int> numbers(m_order.size());
    for (std::size_t number = 0; number < m_order.size(); ++number) {
        numbers[std::size_t(m_order[number])] = int(number);
        const orv::QueryState::Table& table = m_state.tables[std::size_t(m_order[number])];
        m_diagram.tables.push_back({table.name, table.alias, table.name});
    }
    // A join of which all links are muted is not written, unless it has a text.
    std::vector<orv::FromJoin> joins;
    for (const orv::QueryState::Join& join : m_state.joins) {
        joins.push_back({numbers[std::size_t(join.table1)],
                         numbers[std::size_t(join.table2)],
                         join.kind,
                         {},
                         join.text});
    }
    for (const orv::QueryState::Link& link : m_state.links) {
        if (link.muted) continue;
        joins[std::size_t(link.join)].links.push_back({link.field1, link.operation, link.field2});
    }
    std::copy_if(
        joins.begin(), joins.end(), std::back_inserter(m_diagram.joins),
        [](const orv::FromJoin& join) { return !join.links.empty() || !join.text.isEmpty(); });
}

// What begins a line of FROM brings a table in; other joins add their conditions to such a line.
void JoinWords::readItems() {
    orv::FromPlaces places;
    if (m_keepMeaning) {
        (void)orv::fromTextKeepingMeaning(m_diagram, &places);
    } else {
        (void)orv::fromText(m_diagram, &places);
    }
    const auto tableOf = [&](int number) { return m_order[std::size_t(number)]; };
    struct Line {
        int place;
        Step step;
        int from;
    };
    std::vector<Line> lines;
    QHash<int, std::size_t> lineOf;  // by the join that begins it
    std::vector<bool> isJoined(m_diagram.tables.size(), false);
    for (std::size_t index = 0; index < m_diagram.joins.size(); ++index) {
        const orv::JoinPlace& place = places.joins[index];
        if (place.line != int(index)) continue;
        const orv::FromJoin& join = m_diagram.joins[index];
        const int to = place.swapped ? join.table1 : join.table2;
        const int from = place.swapped ? join.table2 : join.table1;
        const TKindOfJoin kind = place.swapped ? orv::mirrored(join.kind) : join.kind;
        lineOf.insert(int(index), lines.size());
        lines.push_back({places.tables[std::size_t(to)],
                         {tableOf(to), kind, {int(index)}, place.closesCycle},
                         from});
        if (!place.closesCycle) isJoined[std::size_t(to)] = true;
    }
    for (std::size_t index = 0; index < m_diagram.joins.size(); ++index) {
        const int line = places.joins[index].line;
        if (line < 0 || line == int(index) || !lineOf.contains(line)) continue;
        lines[lineOf.value(line)].step.joins.push_back(int(index));
    }
    // A repeated table is written behind all that was there by then.
    for (Line& line : lines) {
        if (line.step.isRepeated) line.place = int(m_diagram.tables.size());
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const Line& one, const Line& other) { return one.place < other.place; });

    std::vector<int> byPlace(m_diagram.tables.size());
    for (std::size_t number = 0; number < byPlace.size(); ++number) {
        byPlace[std::size_t(places.tables[number])] = int(number);
    }
    std::vector<std::size_t> itemOf(m_diagram.tables.size());
    for (const int number : byPlace) {
        if (isJoined[std::size_t(number)]) continue;
        itemOf[std::size_t(number)] = m_items.size();
        m_items.push_back({tableOf(number), {}});
    }
    std::vector<int> numbers(m_order.size());
    for (std::size_t number = 0; number < m_order.size(); ++number) {
        numbers[std::size_t(m_order[number])] = int(number);
    }
    for (const Line& line : lines) {
        const std::size_t item = itemOf[std::size_t(line.from)];
        if (!line.step.isRepeated)
            itemOf[std::size_t(numbers[std::size_t(line.step.table)])] = item;
        m_items[item].steps.push_back(line.step);
    }
}

QStringList JoinWords::arguments(int index) const {
    const orv::QueryState::Table& table = m_state.tables[std::size_t(index)];
    const std::vector<TParam>& params = table.params.Items;
    std::size_t count = params.size();
    const auto isDropped = [&](const TParam& param) {
        return param.ParamType != ptInput || isBlankSql(param.Value);
    };
    while (count > 0 && isDropped(params[count - 1])) --count;
    QStringList texts;
    for (std::size_t number = 0; number < count; ++number) {
        const TParam& param = params[number];
        if (param.ParamType != ptInput) continue;
        const bool isGiven =
            param.Value.isValid() && TorvQDSProc::hasText(param.Value) && !isBlankSql(param.Value);
        const int row = int(table.fields.FieldDefs.size() + number);
        texts += isGiven ? TorvQDSProc::valueText(param.Value, param.DataType, m_keepMeaning)
                         : u':' + TorvQDSProc::placeholderName(param.Name, row);
        if (texts.back().isEmpty()) {
            texts.removeLast();
            continue;
        }
        const QString value = param.Value.isNull() && isGiven ? QStringLiteral("NULL")
                                                              : m_names.operand(texts.back());
        texts.back() = QStringLiteral("%1 = %2").arg(orv::withoutQuotes(param.Name), value);
    }
    return texts;
}

QString JoinWords::call(int table) const {
    QString text =
        QStringLiteral("the rows that the procedure %1 returns").arg(m_names.table(table));
    const QStringList values = arguments(table);
    if (values.isEmpty()) return text;
    return text + QStringLiteral(" for ") + enumeration(values);
}

QString JoinWords::rowsOf(int table) const {
    if (m_state.tables[std::size_t(table)].isProcedure) return call(table);
    return QStringLiteral("the rows of ") + m_names.table(table);
}

QString JoinWords::fieldWords(int table, const QString& name) const {
    const auto field = m_names.fieldOf(table, name);
    return m_names.theColumn(field ? *field
                                   : QueryNames::Field{table, orv::withoutQuotes(name), ftUnknown});
}

std::vector<JoinWords::Comparison> JoinWords::comparisons(const Step& step) const {
    std::vector<Comparison> list;
    for (const int index : step.joins) {
        const orv::FromJoin& join = m_diagram.joins[std::size_t(index)];
        const int table1 = m_order[std::size_t(join.table1)];
        const int table2 = m_order[std::size_t(join.table2)];
        const bool ownIsSecond = table2 == step.table;
        for (const orv::FromLink& link : join.links) {
            if (ownIsSecond) {
                list.push_back(
                    {table1, link.field2, orv::mirroredOperator(link.operation), link.field1});
            } else {
                list.push_back({table2, link.field1, link.operation, link.field2});
            }
        }
    }
    return list;
}

QString JoinWords::linkWords(const orv::QueryState::Link& link) const {
    const orv::QueryState::Join& join = m_state.joins[std::size_t(link.join)];
    const auto field = m_names.fieldOf(join.table1, link.field1);
    return ConditionWords(m_names).comparison(
        fieldWords(join.table1, link.field1), field ? scaleOf(field->type) : Scale::Unknown,
        link.operation, fieldWords(join.table2, link.field2), false);
}

// Each stands beside others in an enumeration: words that would not be clear there stay a text.
QStringList JoinWords::textWords(const QString& sql) const {
    QStringList list;
    if (orv::isBlank(sql)) return list;
    for (const TextCondition& part : conditionsOfText(sql)) {
        const QString words = ConditionWords(m_names).condition(part.row);
        list += joinsClearly(words) ? words : quotedSql(part.text) + QStringLiteral(" is true");
    }
    return list;
}

std::vector<std::vector<std::vector<int>>> JoinWords::tablesInOrder() const {
    std::vector<std::vector<std::vector<int>>> items;
    for (const Item& item : m_items) {
        std::vector<std::vector<int>> tables = {{item.table}};
        for (std::size_t number = 0; number < item.steps.size(); ++number) {
            const int table = item.steps[number].table;
            if (number == 0) {
                tables.front().push_back(table);
            } else {
                tables.push_back({table});
            }
        }
        items.push_back(std::move(tables));
    }
    return items;
}

// What a right or full join keeps depends on what was joined before it.
bool JoinWords::dependsOnOrder() const {
    return std::any_of(m_items.begin(), m_items.end(), [](const Item& item) {
        if (item.steps.size() < 2) return false;
        return std::any_of(item.steps.begin() + 1, item.steps.end(), [](const Step& step) {
            return step.kind == klROuterJoin || step.kind == klFOuterJoin;
        });
    });
}

// "the same A and B" where all columns have one name on both sides; else empty.
QString JoinWords::sameFields(const std::vector<Comparison>& list) const {
    QStringList fields;
    for (const Comparison& comparison : list) {
        const bool isSame =
            comparison.operation == u"=" && comparison.otherTable == list.front().otherTable &&
            orv::withoutQuotes(comparison.ownField) == orv::withoutQuotes(comparison.otherField);
        if (!isSame) return {};
        fields += orv::withoutQuotes(comparison.ownField);
    }
    return fields.isEmpty() ? QString() : QStringLiteral("the same ") + enumeration(fields);
}

// What rows have to do with each other to come together.
QString JoinWords::matchWords(const Item& item, std::size_t number) const {
    const Step& step = item.steps[number];
    const std::vector<Comparison> list = comparisons(step);
    QStringList texts;
    for (const int index : step.joins) {
        const QString& text = m_diagram.joins[std::size_t(index)].text;
        texts += textWords(text);
    }
    const QString same = sameFields(list);
    const bool isSelf = !list.empty() && list.front().otherTable == step.table;
    const bool isProcedure = m_state.tables[std::size_t(step.table)].isProcedure;
    if (!same.isEmpty() && !isSelf && !isProcedure) {
        QString words = QStringLiteral(" that have ") + same;
        if (number > 0 || item.table != list.front().otherTable) {
            words += QStringLiteral(" as ") + m_names.table(list.front().otherTable);
        }
        if (texts.isEmpty()) return words;
        return words + QStringLiteral(", where ") + enumeration(texts);
    }
    const ConditionWords conditions(m_names);
    QStringList parts;
    for (const Comparison& comparison : list) {
        const auto field = m_names.fieldOf(step.table, comparison.ownField);
        parts += conditions.comparison(
            fieldWords(step.table, comparison.ownField),
            field ? scaleOf(field->type) : Scale::Unknown, comparison.operation,
            fieldWords(comparison.otherTable, comparison.otherField), false);
    }
    parts += texts;
    return parts.isEmpty() ? QString() : QStringLiteral(", where ") + enumeration(parts);
}

QString JoinWords::keptWords(const Item& item, std::size_t number) const {
    const Step& step = item.steps[number];
    const bool isFirst = number == 0;
    const QString own = m_names.table(step.table);
    const QString before = m_names.table(item.table);
    const QString rowsBefore =
        isFirst ? QStringLiteral("rows of ") + before : QStringLiteral("rows so far");
    const QString emptyBefore = isFirst ? before : QStringLiteral("all tables so far");
    switch (step.kind) {
    case klInnerJoin: return QStringLiteral("rows without a match are left out");
    case klLOuterJoin:
        return QStringLiteral("%1 without a match are kept, with empty values for %2")
            .arg(rowsBefore, own);
    case klROuterJoin:
        return QStringLiteral(
                   "rows of %1 without a match are kept, with empty values for %2; %3 "
                   "without a match are left out")
            .arg(own, emptyBefore, rowsBefore);
    case klFOuterJoin:
        return QStringLiteral(
            "rows of either side without a match are kept, with empty values for "
            "the other side");
    }
    return {};
}

QString JoinWords::stepSentence(const Item& item, std::size_t number) const {
    const Step& step = item.steps[number];
    const QString lead = number == 0 ? QStringLiteral("Takes ") + rowsOf(item.table) +
                                           QStringLiteral(" together with ")
                                     : QStringLiteral("Joins to these ");
    const QString again = step.isRepeated ? QStringLiteral(" once more") : QString();
    return lead + rowsOf(step.table) + again + matchWords(item, number) + QStringLiteral("; ") +
           keptWords(item, number) + u'.';
}

QString JoinWords::itemNames(const Item& item) const {
    QStringList tables = {m_names.table(item.table)};
    for (const Step& step : item.steps) {
        if (!step.isRepeated) tables += m_names.table(step.table);
    }
    return enumeration(tables);
}

// Whether an argument of the call names a column of another table.
bool JoinWords::dependsOnOthers(int table) const {
    for (const TParam& param : m_state.tables[std::size_t(table)].params.Items) {
        if (param.Value.metaType() != QMetaType::fromType<orv::SqlText>()) continue;
        const QString text = param.Value.value<orv::SqlText>().text;
        for (const orv::SqlToken& token : orv::tokenise(text)) {
            const auto field = m_names.field(text.mid(token.start, token.end - token.start));
            if (field && field->table != table) return true;
        }
    }
    return false;
}

// One sentence for tables alone that nothing links; empty when there is more to say.
QString JoinWords::simpleProduct() const {
    QStringList rows;
    for (const Item& item : m_items) {
        const bool isPlain =
            item.steps.empty() && !m_state.tables[std::size_t(item.table)].isProcedure;
        if (!isPlain) return {};
        rows += QStringLiteral("a row of ") + m_names.table(item.table);
    }
    if (rows.size() < 2) return {};
    return QStringLiteral("Takes every combination of %1 (a product): no join links them.")
        .arg(enumeration(rows));
}

std::vector<WordsLine> JoinWords::sentences() const {
    if (const QString product = simpleProduct(); !product.isEmpty()) return {{0, product}};
    std::vector<WordsLine> lines;
    QString before;
    for (const Item& item : m_items) {
        const bool isFirst = before.isEmpty();
        const bool isCalledForEach = !isFirst && item.steps.empty() && dependsOnOthers(item.table);
        if (isCalledForEach) {
            lines.push_back({0, QStringLiteral("For each row so far takes %1; rows for which there "
                                               "is none are left out.")
                                    .arg(rowsOf(item.table))});
        } else if (item.steps.empty()) {
            lines.push_back({0, QStringLiteral("Takes ") + rowsOf(item.table) + u'.'});
        }
        for (std::size_t number = 0; number < item.steps.size(); ++number) {
            lines.push_back({0, stepSentence(item, number)});
        }
        if (!isFirst && !isCalledForEach) {
            lines.push_back({0, QStringLiteral("No join links %1 with %2: each row of the one side "
                                               "is combined with each row of the other (a "
                                               "product).")
                                    .arg(before, itemNames(item))});
        }
        before = isFirst ? itemNames(item) : QStringLiteral("all of these");
    }
    return lines;
}

}  // namespace orvquery
