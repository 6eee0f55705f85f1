// SPDX-License-Identifier: MIT
#include "differences/Differences.h"

#include "core/Text.h"
#include "data/SqlText.h"
#include "differences/ComparedQuery.h"
#include "differences/ConditionDifferences.h"
#include "differences/Pairing.h"
#include "parser/ORVQDExpressions.h"
#include "workarea/ORVQDSProc.h"

#include <algorithm>
#include <functional>

namespace orvquery {

namespace {

using Part = Difference::Part;
using Kind = Difference::Kind;
using orv::QueryState;

// How the tables of a query are told apart: what they are, and how the query calls them.
struct TableIdentities {
    QStringList names;
    QStringList aliases;  ///< the names where the tables have no aliases of their own

    TableIdentities(const QueryState& state, const TableKey& tableKey) {
        for (const QueryState::Table& table : state.tables) {
            names += tableKey ? tableKey(table.name) : table.name;
            const QString alias = orv::withoutQuotes(table.alias);
            const bool isOwn = alias != orv::withoutQuotes(table.name);
            aliases += isOwn ? alias : u'\x1f' + names.back();
        }
    }
};

// Boxes with one alias belong together, else those of one table.
Pairing pairTables(const TableIdentities& before, const TableIdentities& after) {
    Pairing pairing(std::size_t(before.names.size()), std::size_t(after.names.size()));
    const auto both = [](const TableIdentities& tables) {
        QStringList list;
        for (qsizetype place = 0; place < tables.names.size(); ++place) {
            list += tables.aliases[place] + u'\x1e' + tables.names[place];
        }
        return list;
    };
    pairing.pairByKeys(both(before), both(after));
    pairing.pairByKeys(before.aliases, after.aliases);
    pairing.pairByKeys(before.names, after.names);
    return pairing;
}

QStringList tableKeys(const Pairing& pairing, std::size_t count, bool isBefore) {
    QStringList keys;
    for (std::size_t place = 0; place < count; ++place) {
        const int partner = isBefore ? pairing.after(place) : pairing.before(place);
        if (partner == Pairing::none) {
            keys += QStringLiteral("#%1%2").arg(isBefore ? u'-' : u'+').arg(place);
        } else {
            keys += QStringLiteral("#%1").arg(isBefore ? int(place) : partner);
        }
    }
    return keys;
}

bool namesTables(const TableIdentities& before, const TableIdentities& after) {
    return before.names.size() != 1 || after.names.size() != 1 || before.names != after.names ||
           before.aliases != after.aliases;
}

class Comparer {
public:
    Comparer(const QueryState& before, const QueryState& after, bool keepMeaning,
             const TableKey& tableKey)
        : m_identitiesBefore(before, tableKey),
          m_identitiesAfter(after, tableKey),
          m_tables(pairTables(m_identitiesBefore, m_identitiesAfter)),
          m_before(before, tableKeys(m_tables, before.tables.size(), true),
                   namesTables(m_identitiesBefore, m_identitiesAfter), keepMeaning),
          m_after(after, tableKeys(m_tables, after.tables.size(), false),
                  namesTables(m_identitiesBefore, m_identitiesAfter), keepMeaning) {}

    std::vector<Difference> compare() {
        compareColumns();
        compareDistinct();
        compareTables();
        compareJoins();
        compareJoinOrder();
        compareConditions(Part::Conditions, m_before.state.where, m_after.state.where);
        compareConditions(Part::GroupConditions, m_before.state.having, m_after.state.having);
        compareOrder();
        compareTail();
        return std::move(m_found);
    }

private:
    Difference& tell(Part part, Kind kind, const QString& words) {
        Difference difference;
        difference.part = part;
        difference.kind = kind;
        (kind == Kind::Added ? difference.after : difference.before) = words;
        m_found.push_back(difference);
        return m_found.back();
    }
    void tellOrder(Part part, const QString& what, const QStringList& before,
                   const QStringList& after) {
        m_found.push_back(changeOf(part, what, what, before.join(QStringLiteral("; ")),
                                   after.join(QStringLiteral("; "))));
    }

    // Lists whose order counts: each element has words, and keys from the strictest on.
    struct Element {
        QString words;
        QStringList keys;
        bool muted = false;
        int column = -1;  ///< index of the output columns

        [[nodiscard]] QString marked() const { return words + muteMark(muted); }
    };
    void compareLists(Part part, const QString& whatOrder, const std::vector<Element>& before,
                      const std::vector<Element>& after) {
        Pairing pairing(before.size(), after.size());
        const auto keys = [](const std::vector<Element>& list, qsizetype number) {
            QStringList result;
            for (const Element& element : list) result += element.keys.value(number);
            return result;
        };
        const auto mutedKeys = [](const std::vector<Element>& list) {
            QStringList result;
            for (const Element& element : list) {
                result += mutedKey(element.keys.front(), element.muted);
            }
            return result;
        };
        pairing.pairByKeys(mutedKeys(before), mutedKeys(after));
        qsizetype count = 0;
        for (const Element& element : before) count = std::max(count, element.keys.size());
        for (qsizetype number = 0; number < count; ++number) {
            pairing.pairByKeys(keys(before, number), keys(after, number));
        }
        QStringList orderBefore;
        QStringList orderAfter;
        for (std::size_t place = 0; place < before.size(); ++place) {
            if (pairing.after(place) == Pairing::none) {
                tell(part, Kind::Removed, before[place].marked()).columnBefore =
                    before[place].column;
                continue;
            }
            orderBefore += before[place].words;
            const Element& partner = after[std::size_t(pairing.after(place))];
            const std::size_t first = m_found.size();
            if (before[place].muted != partner.muted) {
                m_found.push_back(
                    mutingOf(part, {}, {}, before[place].words, partner.words, partner.muted));
            }
            if (before[place].keys.front() != partner.keys.front()) {
                m_found.push_back(changeOf(part, {}, {}, before[place].marked(), partner.marked()));
            }
            for (std::size_t number = first; number < m_found.size(); ++number) {
                m_found[number].columnBefore = before[place].column;
                m_found[number].columnAfter = partner.column;
            }
        }
        for (std::size_t place = 0; place < after.size(); ++place) {
            if (pairing.before(place) == Pairing::none) {
                tell(part, Kind::Added, after[place].marked()).columnAfter = after[place].column;
            } else {
                orderAfter += after[place].words;
            }
        }
        if (!pairing.keepsOrder()) tellOrder(part, whatOrder, orderBefore, orderAfter);
    }

    static std::vector<Element> columns(const ComparedQuery& query) {
        std::vector<Element> list;
        for (std::size_t index = 0; index < query.state.columns.size(); ++index) {
            const orv::OutputColumn& column = query.state.columns[index];
            if (orv::isBlank(column.source)) continue;
            const QString source = query.textKey(column.source);
            const QString made = source + u'\x1f' + orv::orvTrim(column.aggregate).toUpper();
            const bool isNamed = query.result.hasOwnName(column);
            const QString name = isNamed ? orv::withoutQuotes(column.name) : QString();
            list.push_back({query.result.column(column),
                            {made + u'\x1f' + name, made, source, name},
                            column.muted,
                            int(index)});
        }
        return list;
    }

    void compareColumns() {
        compareLists(Part::Columns, QStringLiteral("in the order of the columns"),
                     columns(m_before), columns(m_after));
    }

    void compareDistinct() {
        if (m_before.state.distinct == m_after.state.distinct) return;
        tell(Part::Columns, m_after.state.distinct ? Kind::Added : Kind::Removed,
             QStringLiteral("rows that are alike in all columns are returned once"));
    }

    // --- tables ---

    static QString tableWords(const ComparedQuery& query, int table) {
        QString words = query.names.table(table);
        if (!query.state.tables[std::size_t(table)].isProcedure) return words;
        return QStringLiteral("the procedure ") + words;
    }

    void compareTables() {
        for (std::size_t place = 0; place < m_before.state.tables.size(); ++place) {
            const int before = int(place);
            const int after = m_tables.after(place);
            if (after == Pairing::none) {
                tell(Part::Tables, Kind::Removed, tableWords(m_before, before)).tableBefore =
                    before;
                continue;
            }
            compareTable(before, after);
        }
        for (std::size_t place = 0; place < m_after.state.tables.size(); ++place) {
            if (m_tables.before(place) != Pairing::none) continue;
            tell(Part::Tables, Kind::Added, tableWords(m_after, int(place))).tableAfter =
                int(place);
        }
    }

    void compareTable(int before, int after) {
        const QString one = tableWords(m_before, before);
        const QString other = tableWords(m_after, after);
        const bool isSame = m_identitiesBefore.names[before] == m_identitiesAfter.names[after] &&
                            m_identitiesBefore.aliases[before] == m_identitiesAfter.aliases[after];
        if (!isSame && one != other)
            tellTable(changeOf(Part::Tables, {}, {}, one, other), before, after);
        const QString callBefore = callWords(m_before, before);
        const QString callAfter = callWords(m_after, after);
        const bool isSameCall =
            callBefore == callAfter || callKey(m_before, before) == callKey(m_after, after);
        if (isSameCall) return;
        tellTable(changeOf(Part::Tables, QStringLiteral("in the call of ") + one,
                           QStringLiteral("in the call of ") + other, callBefore, callAfter),
                  before, after);
    }

    static QString callWords(const ComparedQuery& query, int table) {
        const QStringList arguments = query.joins.arguments(table);
        return arguments.isEmpty() ? QStringLiteral("no arguments") : enumeration(arguments);
    }

    // Arguments may name columns of tables whose aliases have changed.
    static QString callKey(const ComparedQuery& query, int table) {
        QString key;
        for (const TParam& param : query.state.tables[std::size_t(table)].params.Items) {
            const bool isSql = param.Value.metaType() == QMetaType::fromType<orv::SqlText>();
            key += isSql ? query.textKey(param.Value.value<orv::SqlText>().text)
                         : TorvQDSProc::valueText(param.Value, param.DataType, true);
            key += param.Value.isValid() ? u'\x1f' : u'\x1e';
        }
        return key;
    }

    void tellTable(Difference difference, int before, int after) {
        difference.tableBefore = before;
        difference.tableAfter = after;
        m_found.push_back(std::move(difference));
    }

    // --- joins ---

    static QString joinKey(const ComparedQuery& query, const QueryState::Join& join) {
        QStringList tables = {query.tableKeys[join.table1], query.tableKeys[join.table2]};
        tables.sort();
        return tables.join(u'\x1f');
    }

    // The same from whichever side the join was made.
    static QString joinName(const ComparedQuery& query, const QueryState::Join& join) {
        QStringList tables = {query.names.table(join.table1), query.names.table(join.table2)};
        tables.sort();
        return tables.join(QStringLiteral(" with "));
    }

    static QString inJoin(const ComparedQuery& query, const QueryState::Join& join) {
        return QStringLiteral("in the join of ") + joinName(query, join);
    }

    static QString keptWords(const ComparedQuery& query, const QueryState::Join& join) {
        const QString kept = QStringLiteral("rows of %1 without a match are kept");
        switch (join.kind) {
        case klInnerJoin: return QStringLiteral("rows without a match are left out");
        case klLOuterJoin: return kept.arg(query.names.table(join.table1));
        case klROuterJoin: return kept.arg(query.names.table(join.table2));
        case klFOuterJoin: break;
        }
        return QStringLiteral("rows of either side without a match are kept");
    }

    // Whose rows are kept.
    static QString keptKey(const ComparedQuery& query, const QueryState::Join& join) {
        switch (join.kind) {
        case klInnerJoin: return {};
        case klLOuterJoin: return query.tableKeys[join.table1];
        case klROuterJoin: return query.tableKeys[join.table2];
        case klFOuterJoin: break;
        }
        return QStringLiteral("both");
    }

    static std::vector<const QueryState::Link*> linksOf(const ComparedQuery& query, int join) {
        std::vector<const QueryState::Link*> links;
        for (const QueryState::Link& link : query.state.links) {
            if (link.join == join) links.push_back(&link);
        }
        return links;
    }

    // Of the two sides and, when wanted, the operator, whichever side stands first.
    static QString linkKey(const ComparedQuery& query, const QueryState::Link& link,
                           bool withOperator) {
        const QueryState::Join& join = query.state.joins[std::size_t(link.join)];
        const QString one = query.fieldKey(join.table1, link.field1);
        const QString other = query.fieldKey(join.table2, link.field2);
        const bool isSwapped = other < one;
        const QString operation =
            isSwapped ? orv::mirroredOperator(link.operation) : link.operation;
        return (isSwapped ? other : one) + u'\x1f' + (isSwapped ? one : other) + u'\x1f' +
               (withOperator ? operation : QString());
    }

    static QString linkWords(const ComparedQuery& query, const QueryState::Link& link) {
        return query.joins.linkWords(link) + muteMark(link.muted);
    }

    static QString joinWords(const ComparedQuery& query, int index) {
        const QueryState::Join& join = query.state.joins[std::size_t(index)];
        QStringList parts;
        for (const QueryState::Link* link : linksOf(query, index)) {
            parts += linkWords(query, *link);
        }
        parts += query.joins.textWords(join.text);
        return joinName(query, join) +
               (parts.isEmpty() ? QString() : QStringLiteral(", where ") + enumeration(parts)) +
               QStringLiteral("; ") + keptWords(query, join);
    }

    void compareJoins() {
        const auto keys = [](const ComparedQuery& query) {
            QStringList list;
            for (const QueryState::Join& join : query.state.joins) list += joinKey(query, join);
            return list;
        };
        Pairing pairing(m_before.state.joins.size(), m_after.state.joins.size());
        pairing.pairByKeys(keys(m_before), keys(m_after));
        for (std::size_t place = 0; place < m_before.state.joins.size(); ++place) {
            if (pairing.after(place) == Pairing::none) {
                tell(Part::Joins, Kind::Removed, joinWords(m_before, int(place))).joinBefore =
                    int(place);
            } else {
                const std::size_t first = m_found.size();
                compareJoin(int(place), pairing.after(place));
                for (std::size_t number = first; number < m_found.size(); ++number) {
                    m_found[number].joinBefore = int(place);
                    m_found[number].joinAfter = pairing.after(place);
                }
            }
        }
        for (std::size_t place = 0; place < m_after.state.joins.size(); ++place) {
            if (pairing.before(place) != Pairing::none) continue;
            tell(Part::Joins, Kind::Added, joinWords(m_after, int(place))).joinAfter = int(place);
        }
    }

    void compareJoin(int before, int after) {
        const QueryState::Join& one = m_before.state.joins[std::size_t(before)];
        const QueryState::Join& other = m_after.state.joins[std::size_t(after)];
        const QString whatBefore = inJoin(m_before, one);
        const QString whatAfter = inJoin(m_after, other);
        if (keptKey(m_before, one) != keptKey(m_after, other)) {
            m_found.push_back(changeOf(Part::Joins, whatBefore, whatAfter, keptWords(m_before, one),
                                       keptWords(m_after, other)));
        }
        compareLinks(before, after);
        if (m_before.textKey(one.text) == m_after.textKey(other.text)) return;
        const QString words = enumeration(m_before.joins.textWords(one.text));
        const QString wordsAfter = enumeration(m_after.joins.textWords(other.text));
        if (orv::isBlank(other.text)) {
            tell(Part::Joins, Kind::Removed, words).what = whatBefore;
        } else if (orv::isBlank(one.text)) {
            tell(Part::Joins, Kind::Added, wordsAfter).what = whatAfter;
        } else {
            m_found.push_back(changeOf(Part::Joins, whatBefore, whatAfter, words, wordsAfter));
        }
    }

    void compareLinks(int before, int after) {
        const auto one = linksOf(m_before, before);
        const auto other = linksOf(m_after, after);
        const auto keys = [](const ComparedQuery& query, const auto& links, bool withOperator) {
            QStringList list;
            for (const QueryState::Link* link : links) list += linkKey(query, *link, withOperator);
            return list;
        };
        const QString whatBefore = inJoin(m_before, m_before.state.joins[std::size_t(before)]);
        const QString whatAfter = inJoin(m_after, m_after.state.joins[std::size_t(after)]);
        const auto mutedKeys = [](const ComparedQuery& query, const auto& links) {
            QStringList list;
            for (const QueryState::Link* link : links) {
                list += mutedKey(linkKey(query, *link, true), link->muted);
            }
            return list;
        };
        Pairing pairing(one.size(), other.size());
        pairing.pairByKeys(mutedKeys(m_before, one), mutedKeys(m_after, other));
        pairing.pairByKeys(keys(m_before, one, true), keys(m_after, other, true));
        Pairing exact = pairing;
        pairing.pairByKeys(keys(m_before, one, false), keys(m_after, other, false));
        for (std::size_t place = 0; place < one.size(); ++place) {
            if (pairing.after(place) == Pairing::none) {
                tell(Part::Joins, Kind::Removed, linkWords(m_before, *one[place])).what =
                    whatBefore;
                continue;
            }
            const QueryState::Link& partner = *other[std::size_t(pairing.after(place))];
            if (one[place]->muted != partner.muted) {
                m_found.push_back(mutingOf(Part::Joins, whatBefore, whatAfter,
                                           m_before.joins.linkWords(*one[place]),
                                           m_after.joins.linkWords(partner), partner.muted));
            }
            if (exact.after(place) != Pairing::none) continue;
            m_found.push_back(changeOf(Part::Joins, whatBefore, whatAfter,
                                       linkWords(m_before, *one[place]),
                                       linkWords(m_after, partner)));
        }
        for (std::size_t place = 0; place < other.size(); ++place) {
            if (pairing.before(place) != Pairing::none) continue;
            tell(Part::Joins, Kind::Added, linkWords(m_after, *other[place])).what = whatAfter;
        }
    }

    void compareJoinOrder() {
        if (!m_before.joins.dependsOnOrder() && !m_after.joins.dependsOnOrder()) return;
        const auto keys = [](const ComparedQuery& query) {
            return joinOrder(query, [&](int table) { return query.tableKeys[table]; });
        };
        const auto words = [](const ComparedQuery& query) {
            return joinOrder(query, [&](int table) { return query.names.table(table); });
        };
        if (hasOtherTables() || keys(m_before) == keys(m_after)) return;
        tellOrder(Part::Joins, QStringLiteral("in the order in which tables are joined"),
                  words(m_before), words(m_after));
    }

    [[nodiscard]] bool hasOtherTables() const {
        QStringList before = m_before.tableKeys;
        QStringList after = m_after.tableKeys;
        before.sort();
        after.sort();
        return before != after;
    }

    // Two tables that are joined at once have no order, nor have the items of FROM.
    static QStringList joinOrder(const ComparedQuery& query,
                                 const std::function<QString(int)>& textOf) {
        QStringList items;
        for (const auto& item : query.joins.tablesInOrder()) {
            QStringList steps;
            for (const std::vector<int>& tables : item) {
                QStringList texts;
                for (const int table : tables) texts += textOf(table);
                texts.sort();
                steps += texts.join(QStringLiteral(" with "));
            }
            items += steps.join(QStringLiteral(", then "));
        }
        items.sort();
        return items;
    }

    // --- the rest ---

    void compareConditions(Part part, const QueryState::Row& before, const QueryState::Row& after) {
        const std::vector<Difference> found =
            ConditionDifferences(part, m_before, m_after).compare(before, after);
        m_found.insert(m_found.end(), found.begin(), found.end());
    }

    static std::vector<Element> sortLines(const ComparedQuery& query) {
        std::vector<Element> list;
        for (const orv::SortList::Line& line : query.state.order) {
            const orv::OutputColumn* column = query.result.sortedColumn(line);
            const QString what = column ? query.textKey(column->source) + u'\x1f' +
                                              orv::orvTrim(column->aggregate).toUpper()
                                        : orv::withoutQuotes(line.name);
            list.push_back({query.result.sortLine(line), {what + u'\x1f' + line.direction, what}});
        }
        return list;
    }

    void compareOrder() {
        compareLists(Part::Order, QStringLiteral("in what is sorted by first"), sortLines(m_before),
                     sortLines(m_after));
    }

    void compareTail() {
        const QString& before = m_before.state.tail;
        const QString& after = m_after.state.tail;
        if (orv::tokenKey(before) == orv::tokenKey(after)) return;
        if (orv::isBlank(before)) {
            tell(Part::FurtherText, Kind::Added, quotedSql(after));
        } else if (orv::isBlank(after)) {
            tell(Part::FurtherText, Kind::Removed, quotedSql(before));
        } else {
            m_found.push_back(
                changeOf(Part::FurtherText, {}, {}, quotedSql(before), quotedSql(after)));
        }
    }

    TableIdentities m_identitiesBefore;
    TableIdentities m_identitiesAfter;
    Pairing m_tables;
    ComparedQuery m_before;
    ComparedQuery m_after;
    std::vector<Difference> m_found;
};

}  // namespace

std::vector<Difference> differences(const QueryState& before, const QueryState& after,
                                    bool keepMeaning, const TableKey& tableKey) {
    return Comparer(before, after, keepMeaning, tableKey).compare();
}

}  // namespace orvquery
