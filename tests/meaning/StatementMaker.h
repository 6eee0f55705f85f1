// SPDX-License-Identifier: MIT
#pragma once

#include "meaning/ExpressionMaker.h"

namespace orvtest {

/// A statement and what is known about the order of its rows.
struct RandomStatement {
    QString text;
    bool isSorted = false;
    bool sortsTotally = false;     ///< rows that sort alike are alike
    std::vector<int> sortColumns;  ///< output columns that the rows are sorted by, from 0
};

/// Makes one SELECT statement over the tables of a database.
class StatementMaker {
public:
    StatementMaker(Dice& dice, const RandomDatabase& database)
        : m_dice(dice), m_data(database), m_expressions(dice, database) {}

    [[nodiscard]] RandomStatement make();

private:
    /// An output column: its text, its name if it has one, and whether it is a column of a table.
    struct Output {
        QString text;
        QString name;
        bool isColumn = false;
    };
    enum class Joins : quint8 { Inner, InnerAndLeft, All };
    /// What the statement is about; all else is kept simple, so that it seldom hides what comes.
    enum class Subject : quint8 { Joins, Conditions, Columns, Groups, Everything };

    // FROM
    [[nodiscard]] bool isAbout(Subject subject) const {
        return m_subject == subject || m_subject == Subject::Everything;
    }
    void mentionTables();
    [[nodiscard]] const RandomTable& newTable();
    [[nodiscard]] bool isMentioned(const RandomTable& table) const;
    [[nodiscard]] QString whereText();
    [[nodiscard]] QString newQualifier(const RandomTable& table, bool isNeeded);
    [[nodiscard]] bool isTaken(const QString& qualifier) const;
    [[nodiscard]] QString fromText();
    [[nodiscard]] QString tableText(int mention);
    [[nodiscard]] QString joinWords();
    [[nodiscard]] QString onText(int mention);
    [[nodiscard]] QString onPart(int mention, int partner);
    [[nodiscard]] QString link(int first, int second);
    [[nodiscard]] int partnerOf(int mention);
    [[nodiscard]] QString oddFrom();

    // SELECT
    void makeColumns();
    void addColumn();
    void addStar(int mention);
    void addOutput(const QString& text, bool isColumn);
    [[nodiscard]] QString outputName();
    void makeGroupedColumns();
    void addKey();
    [[nodiscard]] QString aggregate();
    [[nodiscard]] QString aggregateCall();
    [[nodiscard]] QString groupByText();
    [[nodiscard]] QString havingText();
    [[nodiscard]] QString havingPart();

    // the end
    [[nodiscard]] QString orderText();
    [[nodiscard]] QString sortItem();
    [[nodiscard]] QString tailText();
    [[nodiscard]] QString limitText();

    Dice& m_dice;
    const RandomDatabase& m_data;
    ExpressionMaker m_expressions;
    RandomStatement m_statement;
    std::vector<Output> m_outputs;
    QStringList m_selected;   // items of the select list
    std::vector<int> m_keys;  // outputs that are grouped by
    QStringList m_unselectedKeys;
    std::vector<QString> m_tableTexts;
    Subject m_subject = Subject::Everything;
    Joins m_joins = Joins::Inner;
    bool m_linksOnly = false;  // no filters in ON
    bool m_isGrouped = false;
    bool m_isDistinct = false;
};

}  // namespace orvtest
