// SPDX-License-Identifier: MIT
#pragma once

#include "norows/FromOrder.h"
#include "querybuilder/ORVQDStateReader.h"

#include <QList>
#include <QString>

#include <memory>
#include <vector>

class TorvQDLink;
class TorvQDWhereRow;
class TorvQueryBuilder;

namespace orvquery {

/// One part of a query that may keep rows away. A plain value.
struct QueryPart {
    enum class Kind {
        Condition,       ///< on rows
        GroupCondition,  ///< on groups
        Join,            ///< as a whole: a table that is joined to those before
        Link,            ///< one comparison of a join that has others, too
        End              ///< the text behind the last clause
    };

    Kind kind = Kind::Condition;
    QString text;          ///< as it is written, on one line, with what negates it
    int parent = -1;       ///< the group or the join that it is a part of
    QList<int> path = {};  ///< of a condition: its place in each group, from the outermost on
    int number = -1;       ///< of a link among those of the diagram; of a join its line
    QString table = {};    ///< the one that a join brings in
    bool isInner = true;   ///< of a join: rows without a match are lost
    /// Parts that go along with it: if one of them brings rows, so does this.
    std::vector<int> covered = {};
    QString ownText = {};  ///< conditionText() or linkText(), of what can be muted

    [[nodiscard]] bool isCondition() const {
        return kind == Kind::Condition || kind == Kind::GroupCondition;
    }
    [[nodiscard]] bool isTop() const { return isCondition() && path.size() == 1; }
    /// Whether it can be muted: nothing else would be lost with it.
    [[nodiscard]] bool canBeMuted() const { return isCondition() || kind == Kind::Link; }
};

/// The text of a condition, or of a group, on one line and without the brackets around it.
[[nodiscard]] QString conditionText(const TorvQDWhereRow& row);
[[nodiscard]] QString linkText(const TorvQDLink& link);

/// A query on a diagram that nobody sees, which is written again and again without some of its
/// parts. The control that shows it is left alone. Belongs to the thread of the user interface.
class TrialQuery {
public:
    /// What the control shows now. Raises orv::Error when that cannot be written.
    explicit TrialQuery(TorvQueryBuilder& shown);
    TrialQuery(const TrialQuery&) = delete;
    TrialQuery& operator=(const TrialQuery&) = delete;
    ~TrialQuery();

    /// The parts that the statement has: conditions, groups after groups that they are in, joins in
    /// the order of the text with their links, the end. Of conditions within groups not more than
    /// can be tried in some time.
    [[nodiscard]] const std::vector<QueryPart>& parts() const { return m_parts; }
    /// Conditions within groups that were too many.
    [[nodiscard]] int passedOver() const { return m_passedOver; }

    /// The query as it is.
    [[nodiscard]] const QString& whole() const { return m_whole; }

    enum class Conditions { Kept, Dropped };

    /// The query without these parts: conditions and links are muted, joins keep rows that have no
    /// match. Dropped conditions are all of them, and the end. Rows are in no order where that
    /// makes no difference to their number.
    [[nodiscard]] QString without(const std::vector<int>& parts,
                                  Conditions conditions = Conditions::Kept);

    /// The tables that the FROM begins its items with.
    [[nodiscard]] const QStringList& firstTables() const { return m_firstTables; }
    /// Whether the query has one row in any case, as aggregates without groups have.
    [[nodiscard]] bool isAlwaysOneRow() const { return m_isAlwaysOneRow; }
    /// Whether tables are brought in by inner and left joins alone.
    [[nodiscard]] bool hasPlainJoins() const;

private:
    class Dropped;

    [[nodiscard]] TorvQDWhereRow& rowOf(const QueryPart& part) const;
    void addPart(QueryPart part);
    void addRows(QueryPart::Kind kind);
    void addNested();
    void addJoins();
    void addLinks(int line, int parent);
    [[nodiscard]] bool isBridge(int join) const;

    orv::QueryState m_state;
    std::unique_ptr<TorvQueryBuilder> m_builder;
    FromOrder m_from;
    QString m_whole;
    QString m_base;  ///< without(nothing)
    QStringList m_firstTables;
    std::vector<QueryPart> m_parts;
    int m_passedOver = 0;
    bool m_isAlwaysOneRow = false;
};

}  // namespace orvquery
