// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDState.h"

#include "core/Error.h"
#include "core/Text.h"
#include "querybuilder/ORVQDJsonWriter.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "workarea/ORVQDFloatPanel.h"

namespace orv {

namespace {

void writeTexts(JsonWriter& json, const QStringList& texts) {
    json.beginArray();
    for (const QString& text : texts) json.value(text);
    json.endArray();
}

void writeTable(JsonWriter& json, const TorvQDTable& table) {
    json.beginObject();
    json.key("name").value(table.TableName);
    json.key("alias").value(table.GetAlias());
    json.key("procedure").value(false);
    json.key("bounds").beginArray();
    for (const int number : {table.Left, table.Top, table.Width, table.Height}) json.value(number);
    json.endArray();
    json.key("fields").beginArray();
    for (const auto& item : table.Items) {
        json.beginObject();
        json.key("name").value(item->Name);
        json.key("type").value(item->GetDataName());
        json.key("checked").value(item->Checked);
        json.endObject();
    }
    json.endArray();
    if (!table.Expanded) json.key("collapsed").value(true);
    if (table.FirstVisibleItem != 0) json.key("firstRow").value(table.FirstVisibleItem);
    json.endObject();
}

void writeReport(JsonWriter& json, const Findings& findings) {
    json.beginArray();
    for (const Finding& finding : findings) {
        json.beginObject();
        json.key("start").value(finding.start);
        json.key("length").value(finding.length);
        json.key("text").value(finding.text);
        json.key("what").value(finding.what);
        json.endObject();
    }
    json.endArray();
}

// A criteria group without conditions: the pages that hold them are still to come.
void writeEmptyGroup(JsonWriter& json) {
    json.beginObject();
    json.key("group").value(QStringLiteral("All"));
    json.key("rows").beginArray().endArray();
    json.endObject();
}

void writeColumns(JsonWriter& json, const OutputColumns& columns) {
    json.beginArray();
    for (const OutputColumn& column : columns) {
        const bool hasAggregate = !orvTrim(column.aggregate).isEmpty();
        writeTexts(json, {column.name, hasAggregate ? column.aggregate : QString(), column.source});
    }
    json.endArray();
}

}  // namespace

QByteArray stateJson(TorvQueryBuilder& builder, const StateNotes& notes, JsonLayout layout) {
    QString statement;
    QString error = notes.error;
    bool written = true;
    try {
        statement = builder.GetSQLStatment();
    } catch (const Error& raised) {
        written = false;
        if (error.isEmpty()) error = raised.Message();
    }
    JsonWriter json(layout);
    json.beginObject();
    json.key("statement");
    if (written)
        json.value(statement);
    else
        json.null();
    json.key("error");
    if (error.isEmpty())
        json.null();
    else
        json.value(error);
    writeTexts(json.key("messages"), notes.messages);
    writeReport(json.key("report"), builder.LoadReport());
    json.key("tables").beginArray();
    for (int index = 0; index < builder.WorkArea->TablesCount(); ++index) {
        writeTable(json, *builder.WorkArea->Tables(index));
    }
    json.endArray();
    json.key("joins").beginArray().endArray();
    json.key("links").beginArray().endArray();
    writeEmptyGroup(json.key("where"));
    writeEmptyGroup(json.key("having"));
    json.key("distinct").value(builder.SelectPanel->GetDistinct() != 0);
    json.key("tail").value(builder.TailText());
    writeColumns(json.key("columns"), builder.SelectPanel->grid()->columns());
    json.key("order").beginArray().endArray();
    writeTexts(json.key("selectedFields"), builder.SelectedFields().names());
    writeTexts(json.key("allFields"), builder.AllFields().names());
    json.endObject();
    return json.result();
}

}  // namespace orv
