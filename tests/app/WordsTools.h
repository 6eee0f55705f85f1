// SPDX-License-Identifier: MIT
#pragma once

#include "core/Error.h"
#include "querybuilder/ORVQDStateReader.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "tables/SchemaFile.h"
#include "words/Explanation.h"

#include <QTest>

#include <memory>

namespace apptest {

/// A small shop whose statements become states, as the program reads them.
class StatementDesk {
public:
    StatementDesk() : StatementDesk(true) {}
    explicit StatementDesk(bool keepMeaning)
        : m_schema(R"({
            "CUSTOMERS": [["CUST_NO", "ftInteger"], ["NAME", "ftString"], ["CITY", "ftString"],
                          ["SINCE", "ftDate"], ["REP_NO", "ftInteger"]],
            "ORDERS": [["ORDER_NO", "ftInteger"], ["CUST_NO", "ftInteger"], ["PRICE", "ftFloat"],
                       ["ORDERED", "ftDate"], ["STATUS", "ftString"]],
            "ITEMS": [["ORDER_NO", "ftInteger"], ["LINE", "ftInteger"], ["AMOUNT", "ftInteger"]],
            "REPS": [["REP_NO", "ftInteger"], ["REP_NAME", "ftString"], ["BOSS_NO", "ftInteger"]],
            "Big Table": [["First Name", "ftString"], ["B", "ftInteger"]],
            "TOP_CUSTOMERS": {"fields": [["TOP_NO", "ftInteger"]],
                              "params": [["YEAR", "ftInteger", "ptInput"],
                                         ["TOWN", "ftString", "ptInput"]]}})",
                   QString()) {
        m_builder.setKeepMeaning(keepMeaning);
        orvquery::connectTables(m_builder, m_schema);
    }

    /// The state of a statement; an empty text stands for an empty diagram.
    [[nodiscard]] orv::QueryState state(const QString& statement) {
        return orv::readState(json(statement));
    }
    [[nodiscard]] QByteArray json(const QString& statement) {
        m_builder.Clear();
        if (!statement.isEmpty()) m_builder.LoadSQL(statement);
        return m_builder.SaveState();
    }
    [[nodiscard]] TorvQueryBuilder& builder() { return m_builder; }

private:
    orvquery::SchemaFile m_schema;
    TorvQueryBuilder m_builder;
};

/// The lines of a part, each with a dash for each level of a list.
[[nodiscard]] inline QStringList linesOf(const orvquery::Explanation& explanation,
                                         const QString& title) {
    QStringList lines;
    for (const orvquery::WordsSection& section : explanation.sections) {
        if (section.title != title) continue;
        for (const orvquery::WordsLine& line : section.lines) {
            lines += QString(line.depth, u'-') +
                     (line.depth > 0 ? QStringLiteral(" ") : QString()) + line.text;
        }
    }
    return lines;
}

/// A text of SQL as sentences have it.
[[nodiscard]] inline QString quoted(const char* sql) {
    return QChar(0x201c) + QString::fromLatin1(sql) + QChar(0x201d);
}

}  // namespace apptest
