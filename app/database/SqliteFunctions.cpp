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

QStringList pragmas(const QSqlDatabase& database) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    QStringList names;
    if (!query.exec(QStringLiteral("SELECT DISTINCT name FROM pragma_pragma_list"))) return names;
    while (query.next()) names += query.value(0).toString();
    // It is there to change what the planner knows, and gives no rows worth a query.
    names.removeAll(QStringLiteral("optimize"));
    return names;
}

// The hidden columns of a table-valued function are its parameters.
QStringList hiddenColumns(const QSqlDatabase& database, const QString& function) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    query.prepare(
        QStringLiteral("SELECT name FROM pragma_table_xinfo(?) WHERE hidden = 1 ORDER BY cid"));
    query.addBindValue(function);
    QStringList names;
    if (!query.exec()) return names;
    while (query.next()) names += query.value(0).toString();
    return names;
}

}  // namespace

std::vector<TableEntry> sqliteFunctions(const QSqlDatabase& database) {
    std::vector<TableEntry> functions;
    for (const QString& module : knownModules()) {
        const QStringList parameters = hiddenColumns(database, module);
        if (!parameters.isEmpty()) functions.push_back({module, TableKind::Function, parameters});
    }
    for (const QString& pragma : pragmas(database)) {
        const QString name = QStringLiteral("pragma_") + pragma;
        const QStringList parameters = hiddenColumns(database, name);
        // Without an argument of its own it is a setting: one value, and nobody joins that.
        if (parameters.contains(QLatin1String("arg"))) {
            functions.push_back({name, TableKind::Function, parameters});
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
