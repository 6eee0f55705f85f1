// SPDX-License-Identifier: MIT
#include "documents/RefreshedQuery.h"

#include "core/Error.h"
#include "core/Text.h"
#include "data/ProcessName.h"
#include "tables/TableSource.h"

#include <QJsonArray>
#include <QRegularExpression>

#include <optional>
#include <set>

namespace orvquery {

namespace {

const QString nameKey = QStringLiteral("name");
const QString aliasKey = QStringLiteral("alias");
const QString fieldsKey = QStringLiteral("fields");
const QString typeKey = QStringLiteral("type");

/// Which columns the parts of a query name.
class Uses {
public:
    explicit Uses(const QJsonObject& query) {
        const QJsonArray links = query.value(QStringLiteral("links")).toArray();
        for (const auto& link : links) {
            for (const char* end : {"1", "2"}) {
                const QString number = QString::fromLatin1(end);
                m_linked.insert({link[QStringLiteral("table") + number].toString(),
                                 link[QStringLiteral("field") + number].toString().toUpper()});
            }
        }
        const QJsonArray joins = query.value(QStringLiteral("joins")).toArray();
        for (const auto& join : joins) add(join[QStringLiteral("text")]);
        const QJsonArray columns = query.value(QStringLiteral("columns")).toArray();
        for (const auto& column : columns) add(column[2]);
        addRow(query.value(QStringLiteral("where")).toObject());
        addRow(query.value(QStringLiteral("having")).toObject());
        add(query.value(QStringLiteral("tail")));
    }

    [[nodiscard]] bool has(const QString& alias, const QString& column) const {
        if (m_linked.contains({alias, column.toUpper()})) return true;
        // Behind another table's name it is a column of that one; in quotes it may be a text.
        const QRegularExpression name(
            QStringLiteral("(?<![\\w$.\"'])(%1\\s*\\.\\s*)?%2(?![\\w$\"'])")
                .arg(QRegularExpression::escape(alias), QRegularExpression::escape(column)),
            QRegularExpression::CaseInsensitiveOption |
                QRegularExpression::UseUnicodePropertiesOption);
        return name.match(m_text).hasMatch();
    }

private:
    void add(const QJsonValue& text) { m_text += text.toString() + u'\n'; }

    void addRow(const QJsonObject& row) {
        add(row.value(QStringLiteral("field")));
        const QJsonArray arguments = row.value(QStringLiteral("arguments")).toArray();
        for (const auto& argument : arguments) add(argument);
        const QJsonArray rows = row.value(QStringLiteral("rows")).toArray();
        for (const auto& each : rows) addRow(each.toObject());
    }

    std::set<std::pair<QString, QString>> m_linked;  ///< alias and column in upper case
    QString m_text;
};

// The column of that name among those that the query knows, or -1. One that is spelled alike comes
// before one that differs in case or quotes, which is the same one to most databases.
qsizetype placeOf(const QString& column, const QJsonArray& known) {
    const QString written = ProcessName(column);
    const QString bare = orv::unquotedName(written);
    qsizetype alike = -1;
    for (qsizetype place = 0; place < known.size(); ++place) {
        const QString name = known[place][nameKey].toString();
        if (name == written) return place;
        const bool isAlike = orv::unquotedName(name).compare(bare, Qt::CaseInsensitive) == 0;
        if (isAlike && alike < 0) alike = place;
    }
    return alike;
}

/// Brings the tables of a query up to date, one by one.
class Refresher {
public:
    Refresher(const QJsonObject& query, const TableSource& source)
        : m_source(source), m_uses(query), m_result({query, {}, {}, {}}) {}

    [[nodiscard]] RefreshedQuery result() {
        const QString tablesKey = QStringLiteral("tables");
        QJsonArray tables = m_result.query.value(tablesKey).toArray();
        for (qsizetype index = 0; index < tables.size(); ++index) {
            tables[index] = refreshed(tables[index].toObject());
        }
        m_result.query.insert(tablesKey, tables);
        // The names of all columns follow from those of the tables.
        if (m_hasChanged) m_result.query.remove(QStringLiteral("allFields"));
        return m_result;
    }

private:
    [[nodiscard]] QJsonObject refreshed(QJsonObject table) {
        const QString name = table.value(nameKey).toString();
        const bool isProcedure = table.value(QStringLiteral("procedure")).toBool();
        std::optional<TableDescription> found;
        try {
            found = m_source.find(name);
        } catch (const orv::Error& error) {
            if (!m_result.problems.contains(error.Message())) m_result.problems += error.Message();
            return table;
        }
        if (!found || found->parameters.has_value() != isProcedure) {
            if (!m_result.missingTables.contains(name)) m_result.missingTables += name;
            return table;
        }
        const QJsonArray fields = fieldsOf(*found, table);
        if (fields == table.value(fieldsKey).toArray()) return table;
        m_hasChanged = true;
        table.insert(fieldsKey, fields);
        table.remove(QStringLiteral("firstRow"));
        return table;
    }

    [[nodiscard]] QJsonArray fieldsOf(const TableDescription& found, const QJsonObject& table) {
        const QJsonArray known = table.value(fieldsKey).toArray();
        const QString tableName = table.value(nameKey).toString();
        const QString alias = table.value(aliasKey).toString(tableName);
        QJsonArray fields;
        std::set<qsizetype> places;
        for (const TFieldDef& column : found.columns.FieldDefs) {
            const qsizetype place = placeOf(column.Name, known);
            const bool isKnown = place >= 0 && places.insert(place).second;
            QJsonObject field = isKnown ? known[place].toObject() : QJsonObject();
            if (!isKnown) field.insert(nameKey, ProcessName(column.Name));
            field.insert(typeKey, orv::fieldTypeDisplayName(column.DataType));
            if (!isKnown) field.insert(QStringLiteral("checked"), false);
            fields += field;
        }
        for (qsizetype place = 0; place < known.size(); ++place) {
            const QJsonObject field = known[place].toObject();
            const QString name = field.value(nameKey).toString();
            const bool isNeeded =
                field.value(QStringLiteral("checked")).toBool() || m_uses.has(alias, name);
            if (places.contains(place) || !isNeeded) continue;
            fields += field;
            const QString missing = tableName + u'.' + name;
            if (!m_result.missingColumns.contains(missing)) m_result.missingColumns += missing;
        }
        return fields;
    }

    const TableSource& m_source;
    Uses m_uses;
    RefreshedQuery m_result;
    bool m_hasChanged = false;
};

}  // namespace

RefreshedQuery refreshed(const QJsonObject& query, const TableSource& tables) {
    return Refresher(query, tables).result();
}

}  // namespace orvquery
