// SPDX-License-Identifier: MIT
#pragma once

#include "diagram/ORVQDLinks.h"
#include "support/BuilderTools.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <random>
#include <vector>

class TorvQDWhereRow;
class TorvQDWherePanel;

namespace orvtest {

/// What a state is made from: the host's operators and the mode.
struct StateSetting {
    bool keepMeaning = false;
    bool ownOperators = false;  ///< a catalogue with operators of the host's own behind the default
};

/// The host's tables and operators for random states, given to a builder once.
void prepareForRandomStates(HostedBuilder& on, StateSetting setting);

/// A state of the control, made from a seed and built through the public operations. It consists of
/// numbered pieces (a table, a link, a condition row, a column ...) that can be left out one by
/// one, so that a failing state can be made smaller. A piece that needs a table that was left out
/// is left out, too. Texts name fields as {table,field}, both numbers.
class RandomState {
public:
    RandomState(unsigned seed, StateSetting setting);

    [[nodiscard]] int pieceCount() const { return m_pieces; }
    [[nodiscard]] QSet<int> leftOut() const { return m_leftOut; }
    void setLeftOut(const QSet<int>& pieces) { m_leftOut = pieces; }

    /// Empties the builder and builds the state in it.
    void build(HostedBuilder& on) const;

private:
    struct Table {
        int piece;
        QString name;
        QString alias;     // as the user types it; empty for the one that is made
        bool closes;       // before anything names it
        QString newAlias;  // typed when all else is there; empty for none
    };
    struct Link {
        int piece;
        int table1;
        int field1;
        int table2;
        int field2;
        QString operation;
        TKindOfJoin kind;
        QString text;  // of its join
        bool goes;     // and is drawn anew behind all others
    };
    struct Tick {
        int piece;
        int table;
        int field;
    };
    struct Column {
        int piece;
        QString expression;
        QString alias;
        bool aggregates;
        bool isNumber;
    };
    struct Row {
        int piece;
        QString group;  // empty for a condition
        std::vector<Row> rows;
        QString fieldFunc;
        QString field;
        QString operation;  // empty for a text as a whole
        QString argFunc;
        QStringList arguments;
    };
    struct Sort {
        int piece;
        int column;
        bool descends;
    };
    class Target;  // a builder with what was built in it

    // --- making ---
    int below(int limit) { return int(m_random() % unsigned(limit)); }
    bool oneIn(int count) { return below(count) == 0; }
    QString oneOf(const QStringList& texts) { return texts[below(int(texts.size()))]; }
    int newPiece() { return m_pieces++; }
    void makeTables();
    void makeLinks();
    void addLink(int table1, int table2);
    void makeColumns();
    Column makeColumn(bool aggregates);
    QString aliasOfColumn();
    void makeRows();
    Row makeGroup(int depth, bool having);
    Row makeCondition(bool having);
    Row makeExpression(bool having);
    TorvQDOperator anyOperator();
    void fillOperands(Row& row, const TorvQDOperator& operation, bool having);
    void makeRest();
    QString withFields(QString text);
    [[nodiscard]] QString anyField();

    // --- building ---
    [[nodiscard]] bool has(int piece) const { return !m_leftOut.contains(piece); }
    static bool mayRename(const Target& target, const TorvQDTable& box, const QString& alias);
    void buildTables(Target& target) const;
    void buildLinks(Target& target) const;
    static TorvQDLink* drawLink(Target& target, const Link& link);
    void renameLate(Target& target) const;
    void buildColumns(Target& target) const;
    void buildPanel(Target& target, TorvQDWherePanel& panel, const Row& root) const;
    void buildGroup(Target& target, TorvQDWhereRow& group, const Row& from) const;
    bool buildRow(Target& target, TorvQDWhereRow& row, const Row& from) const;
    void buildOrder(Target& target) const;

    const StateSetting m_setting;
    std::mt19937 m_random;
    int m_pieces = 0;
    QSet<int> m_leftOut;
    std::vector<Table> m_tables;
    std::vector<Link> m_links;
    std::vector<Tick> m_ticks;
    std::vector<Column> m_columns;
    std::vector<Row> m_where;   // one row, the root
    std::vector<Row> m_having;  // the same
    std::vector<Sort> m_sorts;
    int m_distinct = -1;  // pieces
    int m_tail = -1;
    QString m_tailText;
    int m_front = -1;
    int m_frontTable = 0;
};

}  // namespace orvtest
