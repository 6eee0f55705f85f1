// SPDX-License-Identifier: MIT
#include "tables/BareFields.h"

#include "core/Text.h"
#include "data/ProcessName.h"
#include "names/BareNames.h"
#include "querybuilder/ORVQDWindow.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <functional>

namespace orvquery {

namespace {

using Rename = std::function<QString(const QString& text)>;

QString key(const QString& name) {
    return orv::unquotedName(name).toCaseFolded();
}

QSet<QString> fieldsOf(const std::vector<TableDescription>& tables) {
    QSet<QString> fields;
    for (const TableDescription& table : tables) {
        for (const TFieldDef& field : table.columns.FieldDefs)
            fields += key(ProcessName(field.Name));
    }
    return fields;
}

QJsonArray renamedTexts(const QJsonArray& texts, const Rename& rename) {
    QJsonArray result;
    for (const auto& text : texts) result += rename(text.toString());
    return result;
}

QJsonArray renamedObjects(const QJsonArray& objects,
                          const std::function<QJsonObject(const QJsonObject&)>& rename) {
    QJsonArray result;
    for (const auto& object : objects) result += rename(object.toObject());
    return result;
}

QJsonObject renamedCondition(QJsonObject row, const Rename& rename) {
    if (row.contains(u"rows")) {
        row[u"rows"] = renamedObjects(row[u"rows"].toArray(), [&](const QJsonObject& inner) {
            return renamedCondition(inner, rename);
        });
        return row;
    }
    row[u"field"] = rename(row[u"field"].toString());
    row[u"arguments"] = renamedTexts(row[u"arguments"].toArray(), rename);
    return row;
}

QJsonArray renamedColumns(const QJsonArray& columns, const Rename& rename) {
    QJsonArray result;
    for (const auto& value : columns) {
        QJsonArray column = value.toArray();
        column[2] = rename(column[2].toString());
        result += column;
    }
    return result;
}

// The texts of a saved state in which a person may write fields.
QJsonObject renamedState(QJsonObject state, const Rename& rename) {
    for (const char* panel : {"where", "having"}) {
        const QLatin1String name(panel);
        state[name] = renamedCondition(state[name].toObject(), rename);
    }
    state[u"columns"] = renamedColumns(state[u"columns"].toArray(), rename);
    state[u"selectedFields"] = renamedTexts(state[u"selectedFields"].toArray(), rename);
    state[u"joins"] = renamedObjects(state[u"joins"].toArray(), [&](QJsonObject join) {
        if (join.contains(u"text")) join[u"text"] = rename(join[u"text"].toString());
        return join;
    });
    return state;
}

}  // namespace

bool qualifyBareFields(TorvQueryBuilder& builder, const std::vector<TableDescription>& toCome) {
    builder.CommitPendingEdits();
    const QSet<QString> fields = fieldsOf(toCome);
    const auto qualified = [&](const QString& name) -> QString {
        if (!fields.contains(key(name))) return {};
        const auto field = builder.resolveField(name);
        return field ? field->alias + u'.' + field->name : QString();
    };
    bool isChanged = false;
    const QJsonObject state = QJsonDocument::fromJson(builder.SaveState()).object();
    const QJsonObject renamed = renamedState(state, [&](const QString& text) {
        QString result = withBareNamesRenamed(text, qualified);
        isChanged = isChanged || result != text;
        return result;
    });
    if (isChanged) builder.RestoreState(QJsonDocument(renamed).toJson());
    return isChanged;
}

}  // namespace orvquery
