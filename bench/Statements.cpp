// SPDX-License-Identifier: MIT
#include "Statements.h"

#include <QStringList>

namespace bench {

QString oneTable() {
    return QStringLiteral(
        "SELECT C.CUSTNO, C.NAME, C.CITY FROM CUSTOMERS C WHERE C.CITY = 'Oslo' "
        "ORDER BY C.NAME");
}

QString join() {
    return QStringLiteral(
        "SELECT C.NAME, O.ORDERNO, O.PLACED FROM CUSTOMERS C INNER JOIN ORDERS O "
        "ON (C.CUSTNO = O.CUSTNO) WHERE O.PLACED > '2024-01-01' AND C.CITY <> "
        "'Oslo'");
}

QString grouped() {
    return QStringLiteral(
        "SELECT C.CITY, COUNT(O.ORDERNO) AS ORDERS, SUM(O.TOTAL) AS TOTAL FROM "
        "CUSTOMERS C INNER JOIN ORDERS O ON (C.CUSTNO = O.CUSTNO) GROUP BY "
        "C.CITY HAVING SUM(O.TOTAL) > 1000 ORDER BY 3 DESC");
}

QString large() {
    return ofTables(largeTables);
}

QString ofTables(int tables) {
    QStringList columns;
    QStringList conditions;
    QString from = QStringLiteral("T0 A0");
    for (int table = 0; table < tables; ++table) {
        columns << QStringLiteral("A%1.NAME, A%1.AMOUNT").arg(table);
        if (table == 0) continue;
        from += QStringLiteral(" INNER JOIN T%1 A%1 ON (A%2.ID = A%1.PARENT)")
                    .arg(table)
                    .arg(table - 1);
    }
    for (int condition = 0; condition < conditionsPerTable * tables; ++condition) {
        conditions << QStringLiteral("(A%1.AMOUNT > %2)").arg(condition % tables).arg(condition);
    }
    return QStringLiteral("SELECT %1 FROM %2 WHERE %3")
        .arg(columns.join(QStringLiteral(", ")), from, conditions.join(QStringLiteral(" AND ")));
}

std::string schema() {
    std::string text =
        "CREATE TABLE CUSTOMERS (CUSTNO INTEGER PRIMARY KEY, NAME TEXT, CITY TEXT);"
        "CREATE TABLE ORDERS (ORDERNO INTEGER PRIMARY KEY, CUSTNO INTEGER, PLACED TEXT, TOTAL "
        "NUMERIC);";
    for (int table = 0; table < largeTables; ++table) {
        text += "CREATE TABLE T" + std::to_string(table) +
                " (ID INTEGER PRIMARY KEY, PARENT INTEGER, NAME TEXT, AMOUNT NUMERIC);";
    }
    return text;
}

QString ofLength(int characters) {
    QString columns = QStringLiteral("SELECT A0.NAME");
    QString conditions = QStringLiteral(" WHERE A0.AMOUNT > 0");
    for (int item = 1; columns.size() + conditions.size() < characters; ++item) {
        columns += QStringLiteral(", A%1.NAME AS NAME%1").arg(item);
        conditions +=
            QStringLiteral(" AND (A%1.AMOUNT BETWEEN %1 AND 9 OR A%1.NAME LIKE 'x%')").arg(item);
    }
    return columns + QStringLiteral(" FROM T0 A0") + conditions;
}

QString ofColumns(int columns) {
    QStringList items;
    for (int column = 0; column < columns; ++column) items << QStringLiteral("T.F%1").arg(column);
    return QStringLiteral("SELECT ") + items.join(QStringLiteral(", ")) + QStringLiteral(" FROM T");
}

QString orderedColumns(int columns) {
    QStringList items;
    for (int column = 0; column < columns; ++column) {
        items << QStringLiteral("T.F%1").arg(columns - 1 - column);
        if (column % 2 == 0) items.back() += QStringLiteral(" DESC");
    }
    return ofColumns(columns) + QStringLiteral(" ORDER BY ") + items.join(QStringLiteral(", "));
}

QString groupedColumns(int columns) {
    QStringList items;
    for (int column = 0; column < columns; ++column) items << QStringLiteral("T.F%1").arg(column);
    const QString list = items.join(QStringLiteral(", "));
    return QStringLiteral("SELECT %1, SUM(T.F0) AS TOTAL FROM T GROUP BY %1").arg(list);
}

QString ofConditions(int conditions) {
    QStringList items;
    for (int item = 0; item < conditions; ++item) items << QStringLiteral("(T.F0 > %1)").arg(item);
    return QStringLiteral("SELECT T.F0 FROM T WHERE ") + items.join(QStringLiteral(" AND "));
}

QString nestedGroups(int groups) {
    QString text = QStringLiteral("SELECT T.F0 FROM T WHERE ");
    for (int group = 0; group < groups; ++group) {
        text += QStringLiteral("(T.F0 > %1) %2 (")
                    .arg(group)
                    .arg(group % 2 == 0 ? QStringLiteral("AND") : QStringLiteral("OR"));
    }
    return text + QStringLiteral("(T.F0 = 1) AND (T.F0 = 2)") + QString(groups, u')');
}

QString treeOfTables(int tables) {
    QString text = QStringLiteral("SELECT A0.NAME FROM T0 A0");
    for (int table = 1; table < tables; ++table) {
        const int parent = (table - 1) / 2;
        text += QStringLiteral(
                    " INNER JOIN T%1 A%1 ON (A%2.ID = A%1.PARENT) AND (A%2.AMOUNT = A%1.AMOUNT)")
                    .arg(table)
                    .arg(parent);
        if (table == 1) {
            text += QStringLiteral(" AND (A0.NAME = A1.NAME) AND (A0.PARENT = A1.ID)");
        }
    }
    return text;
}

}  // namespace bench
