// SPDX-License-Identifier: MIT
#include "SqlCaseFile.h"

#include <QFile>

namespace {

const QStringList& sectionNames() {
    static const QStringList names = {
        "mode",    "sql",   "text", "tables",   "joins",    "links",    "where", "having",
        "columns", "order", "tail", "distinct", "findings", "messages", "error", "reload"};
    return names;
}

// "ORDERS: CUSTNO ftInteger, "my field" ftString"
bool readTable(const QString& text, QMap<QString, TDataSet>& tables) {
    const qsizetype colon = text.indexOf(u':');
    if (colon < 0) return false;
    TDataSet dataSet;
    for (const QString& part : text.mid(colon + 1).split(u',', Qt::SkipEmptyParts)) {
        const QString item = part.trimmed();
        const qsizetype blank = item.lastIndexOf(u' ');
        const auto type = orv::fieldTypeFromIdentifier(item.mid(blank + 1));
        if (blank < 0 || !type) return false;
        dataSet.FieldDefs.push_back({item.left(blank), *type});
    }
    tables.insert(text.left(colon).trimmed().toUpper(), dataSet);
    return true;
}

// "P(X ftInteger, Y ftString): A ftInteger": the parameters are input ones.
bool readProcedure(const QString& text, SqlCaseFile& file) {
    const qsizetype open = text.indexOf(u'(');
    const qsizetype close = text.indexOf(u')');
    if (open < 0 || close < open) return false;
    const QString name = text.left(open).trimmed();
    QMap<QString, TDataSet> parameters;
    if (!readTable(name + u':' + text.mid(open + 1, close - open - 1), parameters)) return false;
    if (!readTable(name + text.mid(close + 1), file.tables)) return false;
    TParams& params = file.procedures[name.toUpper()];
    for (const TFieldDef& field : parameters.first().FieldDefs) {
        params.Items.push_back({field.Name, field.DataType, ptInput});
    }
    return true;
}

QString sectionOf(const QString& line) {
    const qsizetype colon = line.indexOf(u':');
    if (colon < 0) return {};
    const QString name = line.left(colon);
    return sectionNames().contains(name) ? name : QString();
}

}  // namespace

SqlCaseFile readSqlCases(const QString& path) {
    SqlCaseFile file;
    QFile input(path);
    if (!input.open(QIODevice::ReadOnly)) {
        file.error = path + QStringLiteral(": cannot be read");
        return file;
    }
    QString section;
    int number = 0;
    for (const QString& line : QString::fromUtf8(input.readAll()).split(u'\n')) {
        ++number;
        const QString place = path + u':' + QString::number(number) + QStringLiteral(": ");
        if (line.startsWith(u'#') || (line.isEmpty() && section.isEmpty())) continue;
        if (line.startsWith(QStringLiteral("table "))) {
            if (!readTable(line.mid(6), file.tables))
                file.error = place + QStringLiteral("no table");
        } else if (line.startsWith(QStringLiteral("procedure "))) {
            if (!readProcedure(line.mid(10), file))
                file.error = place + QStringLiteral("no procedure");
        } else if (line.startsWith(QStringLiteral("== "))) {
            file.cases.push_back({line.mid(3).trimmed(), {}});
            section.clear();
        } else if (file.cases.empty()) {
            file.error = place + QStringLiteral("a case was expected");
        } else if (const QString name = sectionOf(line); !name.isEmpty()) {
            section = name;
            QStringList& lines = file.cases.back().sections[section];
            const QString rest = line.mid(name.size() + 1).trimmed();
            if (!rest.isEmpty()) lines << rest;
        } else if (!section.isEmpty() && !line.isEmpty()) {
            file.cases.back().sections[section] << line;
        }
    }
    return file;
}
