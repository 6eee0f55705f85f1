// SPDX-License-Identifier: MIT
#include "database/SqliteFunctions.h"

#include <QSqlQuery>
#include <QVariant>

namespace orvquery {

namespace {

// A module gives rows by its bare name only when it needs no table of its own; SQLite does not say
// which ones do, and the others of its own are about its inner workings.
const QStringList& knownModules() {
    static const QStringList names = {QStringLiteral("json_each"), QStringLiteral("json_tree"),
                                      QStringLiteral("generate_series")};
    return names;
}

// Rows of a function's name and one of its parameters, which are hidden columns of it. One query
// for all: each one would take longer than what it tells.
std::vector<TableEntry> functionsOf(const QSqlDatabase& database, const QString& rows) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    std::vector<TableEntry> functions;
    if (!query.exec(rows)) return functions;
    while (query.next()) {
        const QString name = query.value(0).toString();
        if (functions.empty() || functions.back().name != name) {
            functions.push_back({name, TableKind::Function});
        }
        functions.back().parameters += query.value(1).toString();
    }
    return functions;
}

QString parametersOf(const QString& names) {
    return QStringLiteral(
               "SELECT f.name, c.name FROM (%1) f, pragma_table_xinfo(f.name) c "
               "WHERE c.hidden = 1 ORDER BY f.name, c.cid")
        .arg(names);
}

}  // namespace

std::vector<TableEntry> sqliteFunctions(const QSqlDatabase& database) {
    // Constant texts, without a quote.
    std::vector<TableEntry> functions = functionsOf(
        database, parametersOf(QStringLiteral("SELECT column1 AS name FROM (VALUES ('%1'))")
                                   .arg(knownModules().join(QStringLiteral("'), ('")))));
    // "optimize" is there to change what the planner knows, and gives no rows worth a query.
    std::vector<TableEntry> pragmas = functionsOf(
        database, parametersOf(QStringLiteral("SELECT DISTINCT 'pragma_' || name AS name FROM "
                                              "pragma_pragma_list WHERE name <> 'optimize'")));
    for (TableEntry& pragma : pragmas) {
        // Without an argument of its own it is a setting: one value, and nobody joins that.
        if (pragma.parameters.contains(QLatin1String("arg"))) {
            functions.push_back(std::move(pragma));
        }
    }
    return functions;
}

std::vector<TParam> sqliteFunctionParameters(const TableEntry& function) {
    const bool isSeries = function.name == QLatin1String("generate_series");
    const QVariant sqlNull(QMetaType::fromType<QString>());
    std::vector<TParam> parameters;
    for (const QString& name : function.parameters) {
        TParam parameter{name, isSeries ? ftLargeint : ftString, ptInput};
        if (name == QLatin1String("schema")) parameter.Value = sqlNull;
        if (name == QLatin1String("root")) parameter.Value = QStringLiteral("$");
        if (name == QLatin1String("step")) parameter.Value = 1;
        parameters.push_back(std::move(parameter));
    }
    return parameters;
}

}  // namespace orvquery
