// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDState.h"

#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDWherePanel.h"
#include "querybuilder/ORVQDJsonWriter.h"
#include "querybuilder/ORVQDSavedValue.h"
#include "querybuilder/ORVQDStateReader.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDSProc.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace orv {

namespace {

void writeTexts(JsonWriter& json, const QStringList& texts) {
    json.beginArray();
    for (const QString& text : texts) json.value(text);
    json.endArray();
}

// An output parameter is ticked as a field is; another one holds a value of a kind, or none.
void writeParameter(JsonWriter& json, const TorvQDListItem& item) {
    json.beginObject();
    json.key("name").value(item.Name);
    json.key("type").value(item.GetDataName());
    json.key("direction").value(paramTypeIdentifier(item.ParamType));
    if (item.ParamType == ptOutput) {
        json.key("checked").value(item.Checked);
    } else if (const QVariant value = TorvQDSProc::valueOf(item); value.isValid()) {
        if (const std::optional<SavedValue> saved = savedValue(value)) {
            json.key("kind").value(saved->kind);
            if (!value.isNull()) json.key("value").value(saved->text);
        }
    }
    json.endObject();
}

// What is scrolled to is no work of the user's.
enum class Scrolling { Written, LeftOut };

void writeTable(JsonWriter& json, const TorvQDTable& table, Scrolling scrolling) {
    json.beginObject();
    json.key("name").value(table.TableName);
    json.key("alias").value(table.GetAlias());
    const auto* procedure = qobject_cast<const TorvQDSProc*>(&table);
    json.key("procedure").value(procedure != nullptr);
    json.key("bounds").beginArray();
    json.value(withinReach(table.Left)).value(withinReach(table.Top));
    json.value(table.Width).value(table.Height);
    json.endArray();
    json.key("fields").beginArray();
    const std::vector<TorvQDListItem*> parameters =
        procedure ? procedure->parameterRows() : std::vector<TorvQDListItem*>();
    for (std::size_t index = 0; index < table.Items.size() - parameters.size(); ++index) {
        const TorvQDListItem& item = *table.Items[index];
        json.beginObject();
        json.key("name").value(item.Name);
        json.key("type").value(item.GetDataName());
        json.key("checked").value(item.Checked);
        json.endObject();
    }
    json.endArray();
    if (procedure) {
        json.key("parameters").beginArray();
        for (const TorvQDListItem* item : parameters) writeParameter(json, *item);
        json.endArray();
        if (procedure->isWithoutBrackets()) json.key("brackets").value(false);
    }
    if (!table.Expanded) json.key("collapsed").value(true);
    const bool isScrolled = table.FirstVisibleItem != 0 && scrolling == Scrolling::Written;
    if (isScrolled) json.key("firstRow").value(table.FirstVisibleItem);
    json.endObject();
}

void writeJoins(JsonWriter& json, const TorvQDWorkArea& area) {
    json.beginArray();
    for (const auto& join : area.Joins()) {
        json.beginObject();
        json.key("kind").value(joinKindIdentifier(join->KindOfJoin));
        json.key("table1").value(join->Table1->GetAlias());
        json.key("table2").value(join->Table2->GetAlias());
        if (!join->Text.isEmpty()) json.key("text").value(join->Text);
        json.endObject();
    }
    json.endArray();
}

void writePoints(JsonWriter& json, const std::vector<QPoint>& points) {
    json.beginArray();
    for (const QPoint& point : points) {
        json.beginArray().value(point.x()).value(point.y()).endArray();
    }
    json.endArray();
}

void writeLinks(JsonWriter& json, const TorvQDWorkArea& area) {
    json.beginArray();
    for (const auto& link : area.Links()) {
        json.beginObject();
        json.key("table1").value(link->Join->Table1->GetAlias());
        json.key("field1").value(link->Item1->Name);
        json.key("operator").value(link->operatorText());
        json.key("table2").value(link->Join->Table2->GetAlias());
        json.key("field2").value(link->Item2->Name);
        if (!link->bendPoints().empty()) writePoints(json.key("points"), link->bendPoints());
        if (link->Muted) json.key("muted").value(true);
        json.endObject();
    }
    json.endArray();
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

QString filled(const QString& text) {
    return isBlank(text) ? QString() : text;
}

void writeRow(JsonWriter& json, const TorvQDWhereRow& row) {
    json.beginObject();
    if (row.isGroup()) {
        json.key("group").value(row.GroupOper);
        json.key("rows").beginArray();
        for (int index = 0; index < row.SubRows->GetCount(); ++index) {
            writeRow(json, *row.SubRows->Row(index));
        }
        json.endArray();
    } else {
        json.key("func").value(filled(row.FieldFunc));
        json.key("field").value(filled(row.FieldName));
        json.key("operator").value(row.Operator ? row.Operator->Name : QString());
        json.key("argFunc").value(filled(row.ArgFunc));
        QStringList arguments;
        for (const QString& argument : row.Arguments) arguments << filled(argument);
        writeTexts(json.key("arguments"), arguments);
    }
    if (row.Muted) json.key("muted").value(true);
    json.endObject();
}

// A box that is on its way out is still there, but its fields are on the list no more. With them,
// the state can be restored.
QStringList fieldsOfAll(TorvQueryBuilder& builder) {
    QStringList names = builder.AllFields().names();
    qsizetype place = 0;
    for (const TorvQDTable* table : builder.WorkArea->tablesByCreation()) {
        const QString prefix = table->GetAlias() + u'.';
        const auto isOwn = [&] { return place < names.size() && names[place].startsWith(prefix); };
        if (table->leaving && !isOwn()) {
            for (const auto& item : table->Items) {
                const QString name = prefix + item->Name;
                if (item->ParamType == ptOutput && !names.contains(name)) {
                    names.insert(place++, name);
                }
            }
        }
        while (isOwn()) ++place;
    }
    return names;
}

void writeOrder(JsonWriter& json, const SortList& list) {
    json.beginArray();
    for (const SortList::Line& line : list.lines()) writeTexts(json, {line.name, line.direction});
    json.endArray();
}

void writeColumns(JsonWriter& json, const OutputColumns& columns) {
    json.beginArray();
    for (const OutputColumn& column : columns) {
        const bool hasAggregate = !orvTrim(column.aggregate).isEmpty();
        writeTexts(json, {column.name, hasAggregate ? column.aggregate : QString(), column.source});
    }
    json.endArray();
}

void writeMutedColumns(JsonWriter& json, const OutputColumns& columns) {
    const bool isAny = std::any_of(columns.begin(), columns.end(),
                                   [](const OutputColumn& column) { return column.muted; });
    if (!isAny) return;
    json.key("mutedColumns").beginArray();
    for (std::size_t index = 0; index < columns.size(); ++index) {
        if (columns[index].muted) json.value(int(index) + 1);
    }
    json.endArray();
}

// An invalid statement may give two boxes one alias, which then does not tell them apart.
void writeJoinKeys(JsonWriter& json, const TorvQDWorkArea& area,
                   const QHash<const TorvQDTable*, int>& indices) {
    QSet<QString> aliases;
    for (const TorvQDTable* table : area.tablesByCreation()) aliases.insert(table->GetAlias());
    if (int(aliases.size()) == area.TablesCount()) return;
    QHash<const TorvQDJoin*, int> joins;
    json.key("joinTables").beginArray();
    for (const TorvQDJoin* join : area.Joins()) {
        joins.insert(join, int(joins.size()));
        json.beginArray().value(indices.value(join->Table1)).value(indices.value(join->Table2));
        json.endArray();
    }
    json.endArray();
    json.key("linkJoins").beginArray();
    for (const TorvQDLink* link : area.Links()) json.value(joins.value(link->Join));
    json.endArray();
}

void writeRestoringKeys(JsonWriter& json, TorvQueryBuilder& builder) {
    const TorvQDWorkArea& area = *builder.WorkArea;
    QHash<const TorvQDTable*, int> indices;
    for (int index = 0; index < area.TablesCount(); ++index)
        indices.insert(area.Tables(index), index);
    json.key("creationOrder").beginArray();
    for (const TorvQDTable* table : area.tablesByCreation()) json.value(indices.value(table));
    json.endArray();
    writeJoinKeys(json, area, indices);
    json.key("groupedColumns").beginArray();
    const OutputColumns& columns = builder.SelectPanel->grid()->columns();
    for (std::size_t index = 0; index < columns.size(); ++index) {
        if (columns[index].grouped) json.value(int(index) + 1);
    }
    json.endArray();
    json.key("sortedRows").beginArray();
    for (const SortList::Line& line : builder.OrderPanel->sortList().lines()) json.value(line.row);
    json.endArray();
    json.key("shownRows").beginArray();
    for (int index = 0; index < area.TablesCount(); ++index) {
        json.value(area.Tables(index)->VisibleCount);
    }
    json.endArray();
}

void writeView(JsonWriter& json, const TorvQDWorkArea& area) {
    const QPoint view = area.scrollPosition();
    json.key("view").beginArray().value(view.x()).value(view.y()).endArray();
}

void writeStatement(JsonWriter& json, TorvQueryBuilder& builder, const StateNotes& notes) {
    QString statement;
    QString error = notes.error;
    bool written = true;
    try {
        statement = builder.GetSQLStatment();
    } catch (const Error& raised) {
        written = false;
        if (error.isEmpty()) error = raised.Message();
    }
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
}

void writeParts(JsonWriter& json, TorvQueryBuilder& builder, Scrolling scrolling) {
    json.key("tables").beginArray();
    for (int index = 0; index < builder.WorkArea->TablesCount(); ++index) {
        writeTable(json, *builder.WorkArea->Tables(index), scrolling);
    }
    json.endArray();
    writeJoins(json.key("joins"), *builder.WorkArea);
    writeLinks(json.key("links"), *builder.WorkArea);
    writeRow(json.key("where"), *builder.WherePanel->rootRow());
    writeRow(json.key("having"), *builder.HavingPanel->rootRow());
    json.key("distinct").value(builder.SelectPanel->GetDistinct() != 0);
    json.key("tail").value(builder.TailText());
    writeColumns(json.key("columns"), builder.SelectPanel->grid()->columns());
    writeMutedColumns(json, builder.SelectPanel->grid()->columns());
    writeOrder(json.key("order"), builder.OrderPanel->sortList());
    writeTexts(json.key("selectedFields"), builder.SelectedFields().names());
    writeTexts(json.key("allFields"), fieldsOfAll(builder));
}

}  // namespace

QByteArray stateJson(TorvQueryBuilder& builder, const StateNotes& notes, JsonLayout layout) {
    JsonWriter json(layout);
    json.beginObject();
    writeStatement(json, builder, notes);
    writeParts(json, builder, Scrolling::Written);
    json.endObject();
    return json.result();
}

QByteArray savedState(TorvQueryBuilder& builder) {
    JsonWriter json(JsonLayout::Indented);
    json.beginObject();
    writeStatement(json, builder, {});
    writeParts(json, builder, Scrolling::Written);
    writeRestoringKeys(json, builder);
    writeView(json, *builder.WorkArea);
    json.endObject();
    return json.result();
}

QByteArray editedState(TorvQueryBuilder& builder) {
    JsonWriter json(JsonLayout::Compact);
    json.beginObject();
    writeParts(json, builder, Scrolling::LeftOut);
    writeRestoringKeys(json, builder);
    json.endObject();
    return json.result();
}

}  // namespace orv
