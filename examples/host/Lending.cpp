// SPDX-License-Identifier: MIT
#include "Lending.h"

#include <map>

namespace lending {

namespace {

const std::map<QString, TDataSet>& tables() {
    static const std::map<QString, TDataSet> all{
        {"AUTHORS", {{{"AUTHOR_ID", ftInteger}, {"NAME", ftString}, {"COUNTRY", ftString}}}},
        {"BOOKS",
         {{{"BOOK_ID", ftInteger},
           {"AUTHOR_ID", ftInteger},
           {"TITLE", ftString},
           {"PUBLISHED", ftSmallint},
           {"PRICE", ftCurrency}}}},
        {"LOANS",
         {{{"LOAN_ID", ftInteger},
           {"BOOK_ID", ftInteger},
           {"MEMBER_ID", ftInteger},
           {"LENT", ftDate},
           {"RETURNED", ftDate}}}},
        {"MEMBERS",
         {{{"MEMBER_ID", ftInteger}, {"NAME", ftString}, {"CITY", ftString}, {"JOINED", ftDate}}}},
        {"SALARIES", {{{"STAFF_ID", ftInteger}, {"AMOUNT", ftCurrency}}}},
    };
    return all;
}

}  // namespace

QStringList tableNames() {
    QStringList names;
    for (const auto& [name, columns] : tables()) names << name;
    return names;
}

const TDataSet* describe(const QString& name) {
    const auto found = tables().find(name.toUpper());
    return found == tables().end() ? nullptr : &found->second;
}

QString whyClosed(const QString& name) {
    if (name.compare("SALARIES", Qt::CaseInsensitive) != 0) return {};
    return "SALARIES is confidential";
}

QString firstStatement() {
    return "SELECT M.NAME, B.TITLE, L.LENT\n"
           "FROM MEMBERS M\n"
           "INNER JOIN LOANS L ON M.MEMBER_ID = L.MEMBER_ID\n"
           "INNER JOIN BOOKS B ON L.BOOK_ID = B.BOOK_ID\n"
           "WHERE B.TITLE CONTAINING 'sea' AND M.CITY STARTING WITH 'New' AND L.RETURNED IS NULL\n"
           "ORDER BY L.LENT";
}

}  // namespace lending
