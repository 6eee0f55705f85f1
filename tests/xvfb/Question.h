// SPDX-License-Identifier: MIT
#pragma once

#include "xvfb/Picture.h"
#include "xvfb/ProgramHand.h"

// The question that is asked in several ways: which customers in two cities have ordered for more
// than a sum, and which customers anywhere have ordered nothing?
namespace orvtest {

/// Its output columns.
inline const std::vector<std::pair<QString, QString>> questionFields = {
    {"CUSTOMERS", "NAME"}, {"CUSTOMERS", "CITY"}, {"ORDERS", "TOTAL"}, {"ORDERS", "ORDER_NO"}};

/// Its answer, from a statement that is written as nothing that the control writes.
inline std::vector<QStringList> answerOfSample() {
    return rowsOfSample(
        "with sales as (select customer_no, sum(total) as total, count(*) as many from orders"
        " group by customer_no) "
        "select name, city, total, coalesce(many, 0) from customers natural left join sales "
        "where many is null or city in ('Hamburg', 'Lyon') and total > 6000 "
        "order by total desc, name");
}

/// Compares what the window shows with the answer.
inline void compareAnswer(const ProgramDesk& desk) {
    const std::vector<QStringList> expected = answerOfSample();
    const auto isNull = [](const QStringList& row) { return row[2] == u"NULL"; };
    const auto nulls = std::count_if(expected.begin(), expected.end(), isNull);
    QVERIFY2(nulls > 5 && int(expected.size()) > nulls + 3, "the question has lost its point");
    QCOMPARE(desk.rows(), expected);
    QCOMPARE(desk.errors, QStringList());
}

}  // namespace orvtest
