// SPDX-License-Identifier: MIT
#pragma once

#include "core/Text.h"
#include "querybuilder/ORVQDState.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "support/TestTools.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDSProc.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScrollBar>
#include <QSet>
#include <QStringList>

#include <algorithm>

// What tests of the whole control share.
namespace orvtest {

/// A data set of string columns.
inline TDataSet stringFields(const QStringList& names) {
    TDataSet dataSet;
    for (const QString& name : names) dataSet.FieldDefs.push_back({name, ftString});
    return dataSet;
}

/// A host with a few tables, which it knows ignoring case. It remembers what it was asked for.
class Host {
public:
    Host() {
        add("T", {"A", "B", "C", "D", "E"});
        add("U", {"A", "X", "Y"});
        add("EMPLOYEE", {"EMP_NO", "FIRST_NAME", "SALARY", "DEPT_NO"});
        add("DEPT", {"DEPT_NO", "DEPARTMENT", "BUDGET"});
        add("ORDERS", {"ORDER_NO", "CUST_NO", "PRICE", "NAME"});
        add("my table", {"my field", "PLAIN", "a.b", "q\"q"});
        add("S.T", {"A", "Z"});
    }

    void add(const QString& name, const QStringList& fields) { add(name, stringFields(fields)); }
    void add(const QString& name, const TDataSet& dataSet) { m_tables[name.toUpper()] = dataSet; }
    void addProc(const QString& name, const QStringList& fields, const TParams& params) {
        add(name, fields);
        setParams(name, params);
    }
    void setParams(const QString& name, const TParams& params) {
        m_params[name.toUpper()] = params;
    }
    [[nodiscard]] const TDataSet& table(const QString& name) const {
        return m_tables.find(name.toUpper()).value();
    }
    [[nodiscard]] const TParams& params(const QString& name) const {
        return m_params.find(name.toUpper()).value();
    }
    void attach(TorvQueryBuilder& builder) {
        builder.OnGetTableFields = [this](const QString& name, std::unique_ptr<TDataSet>& dataSet,
                                          std::unique_ptr<TParams>& params) {
            asked << name;
            const auto found = m_tables.find(name.toUpper());
            if (found != m_tables.end()) dataSet = std::make_unique<TDataSet>(*found);
            const auto given = m_params.constFind(name.toUpper());
            if (given != m_params.constEnd()) params = std::make_unique<TParams>(*given);
        };
    }

    QStringList asked;

private:
    QHash<QString, TDataSet> m_tables;
    QHash<QString, TParams> m_params;
};

/// A builder with that host, and counters of its signals.
class HostedBuilder {
public:
    explicit HostedBuilder(bool keepMeaning = false) {
        host.attach(builder);
        builder.setKeepMeaning(keepMeaning);
        QObject::connect(&builder, &TorvQueryBuilder::StatementChanged, &builder,
                         [this] { ++changes; });
        QObject::connect(&builder, &TorvQueryBuilder::LoadReported, &builder,
                         [this](const orv::Findings&) { ++reports; });
    }

    TorvQDTable* addTable(const QString& name) {
        return builder.ListOfTables->AddTable(name, host.table(name));
    }
    TorvQDSProc* addProc(const QString& name) {
        return qobject_cast<TorvQDSProc*>(
            builder.ListOfTables->AddProc(name, host.table(name), host.params(name)));
    }
    [[nodiscard]] TorvQDSProc* proc(const QString& alias) const {
        return qobject_cast<TorvQDSProc*>(table(alias));
    }
    [[nodiscard]] TorvQDTable* table(const QString& alias) const {
        return builder.ListOfTables->tableByAlias(alias);
    }
    [[nodiscard]] TorvQDSelectGrid* grid() const { return builder.SelectPanel->grid(); }

    /// Ticks or unticks a row as a press on its check square does.
    void tick(const QString& alias, const QString& field, bool on = true) {
        TorvQDListItem* item = table(alias)->GetFieldItem(field);
        item->SetCheck(on);
        item->UpdateCheck(on ? -1 : 0);
    }

    /// The boxes in the order of their creation, as "NAME" or "NAME ALIAS".
    [[nodiscard]] QStringList tables() const {
        QStringList names;
        for (const TorvQDTable* box : builder.WorkArea->tablesByCreation()) {
            const QString alias = box->GetAlias();
            names << (alias == box->TableName ? alias : box->TableName + u' ' + alias);
        }
        return names;
    }
    /// The boxes from the front to the back, by alias.
    [[nodiscard]] QStringList stacking() const {
        QStringList names;
        for (int index = 0; index < builder.WorkArea->TablesCount(); ++index) {
            names << builder.WorkArea->Tables(index)->GetAlias();
        }
        return names;
    }
    /// The columns, as "name|aggregate|source".
    [[nodiscard]] QStringList columns() const {
        QStringList texts;
        for (const orv::OutputColumn& column : grid()->columns()) {
            texts << column.name + u'|' + column.aggregate + u'|' + column.source;
        }
        return texts;
    }
    /// The texts of the findings.
    [[nodiscard]] QStringList findings() const {
        QStringList texts;
        for (const orv::Finding& finding : builder.LoadReport()) texts << finding.text;
        return texts;
    }

    Host host;
    TorvQueryBuilder builder;
    int changes = 0;
    int reports = 0;
};

/// Everything that the control shows, without the report of the last load.
inline QByteArray visibleState(TorvQueryBuilder& builder) {
    QJsonObject state = QJsonDocument::fromJson(orv::stateJson(builder, {})).object();
    state.remove(QStringLiteral("report"));
    return QJsonDocument(state).toJson();
}

/// The fields whose tick and whose plain output column are not there together.
inline QSet<QString> looseFields(TorvQueryBuilder& builder) {
    QSet<QString> ticked;
    for (const TorvQDTable* box : builder.WorkArea->tablesByCreation()) {
        for (const auto& item : box->Items) {
            const bool isField = item->ParamType == ptOutput;
            if (isField && item->Checked) ticked.insert(box->GetAlias() + u'.' + item->Name);
        }
    }
    QSet<QString> columns;
    for (const orv::OutputColumn& column : builder.SelectPanel->grid()->columns()) {
        const std::optional<PageField> field = builder.resolveField(column.source);
        if (field && orv::isBlank(column.aggregate)) columns.insert(field->qualifiedName());
    }
    return (ticked - columns) + (columns - ticked);
}

/// The fields with a column that has an aggregate: it leaves their ticks alone.
inline QSet<QString> aggregatedFields(TorvQueryBuilder& builder) {
    QSet<QString> names;
    for (const orv::OutputColumn& column : builder.SelectPanel->grid()->columns()) {
        const std::optional<PageField> field = builder.resolveField(column.source);
        if (field && !orv::isBlank(column.aggregate)) names.insert(field->qualifiedName());
    }
    return names;
}

namespace detail {

inline QString brokenNameRule(TorvQueryBuilder& builder) {
    QSet<QString> aliases;
    QStringList fields;
    for (TorvQDTable* box : builder.WorkArea->tablesByCreation()) {
        const QString alias = box->GetAlias();
        if (aliases.contains(alias)) return "two boxes have the alias " + alias;
        aliases.insert(alias);
        if (builder.WorkArea->GetTable(alias) != box) return "alias is not found: " + alias;
        for (const auto& item : box->Items) {
            const QString name = alias + u'.' + item->Name;
            if (item->ParamType == ptOutput && !fields.contains(name)) fields << name;
        }
    }
    if (builder.AllFields().names() != fields) {
        return "AllFields is " + builder.AllFields().names().join(u' ') + ", not " +
               fields.join(u' ');
    }
    return {};
}

// Fields of which it is in order that their tick and the grid say different things are `loose`.
inline QString brokenTickRule(TorvQueryBuilder& builder, const QSet<QString>& loose) {
    QSet<QString> ticked;
    for (const TorvQDTable* box : builder.WorkArea->tablesByCreation()) {
        int count = 0;
        int fields = 0;
        for (const auto& item : box->Items) {
            if (item->ParamType == ptOutput) ++fields;
            if (!item->Checked || item->ParamType != ptOutput) continue;
            ++count;
            ticked.insert(box->GetAlias() + u'.' + item->Name);
        }
        const int state = count == 0 ? 0 : count == fields ? 2 : 1;
        if (fields > 0 && box->FieldState != state) {
            return QStringLiteral("FieldState of %1 is %2, not %3")
                .arg(box->GetAlias())
                .arg(box->FieldState)
                .arg(state);
        }
    }
    const auto resolved = [&](const QString& source) {
        const std::optional<PageField> field = builder.resolveField(source);
        return field ? field->qualifiedName() : QString();
    };
    QSet<QString> listed;
    for (const QString& name : builder.SelectedFields().names()) listed.insert(resolved(name));
    if (listed != ticked) {
        return "SelectedFields is " + builder.SelectedFields().names().join(u' ') +
               ", ticked are " + QStringList(ticked.begin(), ticked.end()).join(u' ');
    }
    const QSet<QString> different = looseFields(builder) - loose;
    if (different.isEmpty()) return {};
    return "tick and columns differ: " + QStringList(different.begin(), different.end()).join(u' ');
}

inline QString brokenStackingRule(TorvQueryBuilder& builder) {
    const TorvQDWorkArea& area = *builder.WorkArea;
    const std::vector<TorvQDTable*> created = area.tablesByCreation();
    if (int(created.size()) != area.TablesCount()) return "a box is missing in an order";
    int selected = 0;
    for (int index = 0; index < area.TablesCount(); ++index) {
        TorvQDTable* box = area.Tables(index);
        if (std::count(created.begin(), created.end(), box) != 1) return "orders differ in boxes";
        if (!box->Selected) continue;
        ++selected;
        if (index != 0) return "the selected box is not in front: " + box->GetAlias();
        if (area.selectedObject() != box) return "another object is known as the selected one";
    }
    return selected > 1 ? "several boxes are selected" : QString();
}

inline QString brokenGridRule(TorvQueryBuilder& builder) {
    const TorvQDSelectGrid& grid = *builder.SelectPanel->grid();
    const QAbstractItemModel& model = *grid.model();
    if (model.rowCount() != grid.RowCount() - 1) return "the grid shows another number of rows";
    for (int row = 1; row < grid.RowCount(); ++row) {
        for (int column = 0; column < 3; ++column) {
            const QString shown = model.index(row - 1, column).data().toString();
            if (shown != grid.Cells(column, row)) return "the grid shows another text: " + shown;
            const bool isLast = row == grid.RowCount() - 1;
            if (isLast && !shown.isEmpty()) return "the last row is not empty: " + shown;
        }
    }
    return {};
}

inline QString brokenLinkRule(TorvQueryBuilder& builder) {
    const TorvQDWorkArea& area = *builder.WorkArea;
    const auto isThere = [&](const TorvQDTable* box) {
        const std::vector<TorvQDTable*>& boxes = area.tablesByCreation();
        return std::find(boxes.begin(), boxes.end(), box) != boxes.end();
    };
    const auto hasRow = [](const TorvQDTable& box, const TorvQDListItem* row) {
        return std::any_of(box.Items.begin(), box.Items.end(),
                           [&](const auto& item) { return item.get() == row; });
    };
    const std::vector<TorvQDJoin*> joins = area.Joins();
    QSet<std::pair<const TorvQDTable*, const TorvQDTable*>> pairs;
    for (const TorvQDJoin* join : joins) {
        if (!isThere(join->Table1) || !isThere(join->Table2)) return "a join has lost a box";
        const std::pair pair(join->Table1, join->Table2);
        if (pairs.contains(pair) || pairs.contains(std::pair(pair.second, pair.first))) {
            return "two joins between " + pair.first->GetAlias() + " and " +
                   pair.second->GetAlias();
        }
        pairs.insert(pair);
        bool reversed = true;
        if (area.FindJoin(join->Table1, join->Table2, reversed) != join) {
            return "a join is not found by its boxes";
        }
        if (area.linksOf(join).empty()) return "a join has no link";
    }
    for (TorvQDLink* link : area.Links()) {
        if (std::find(joins.begin(), joins.end(), link->Join) == joins.end()) {
            return "the join of a link is gone";
        }
        if (!hasRow(*link->Join->Table1, link->Item1) ||
            !hasRow(*link->Join->Table2, link->Item2)) {
            return "a row of a link is none of its join's boxes";
        }
        const std::vector<TorvQDLink*> own = area.linksOf(link->Join);
        if (std::find(own.begin(), own.end(), link) == own.end()) {
            return "a join does not know its link";
        }
        if (link->Selected && area.selectedObject() != link) {
            return "a link is selected that is not known as such";
        }
    }
    return {};
}

inline QString brokenSelectionRule(TorvQueryBuilder& builder) {
    const TorvQDWorkArea& area = *builder.WorkArea;
    if (const TorvQDFloatObject* selected = area.selectedObject()) {
        if (!area.holds(selected)) return "the selected object is none of the diagram's";
        if (!selected->Selected) return "the selected object does not know it";
    }
    for (const TorvQDTable* box : area.tablesByCreation()) {
        if (!box->CurrentItem) continue;
        const bool isOwn = std::any_of(box->Items.begin(), box->Items.end(), [&](const auto& item) {
            return item.get() == box->CurrentItem;
        });
        if (!isOwn) return "the current row is none of its box: " + box->GetAlias();
    }
    return {};
}

// A box as it is made shows its rows, however few; one that somebody sized keeps to the minimums,
// which here are those of the smallest font.
inline QString brokenSizeRule(TorvQueryBuilder& builder) {
    constexpr int leastWidthPx = 20 + 40 + 20;
    constexpr int leastHeightPx = 20 + 2 * 16 + 4;
    const TorvQDWorkArea& area = *builder.WorkArea;
    const QSize view = area.viewport()->size() / area.zoom();
    const int right = area.horizontalScrollBar()->maximum() + view.width();
    const int bottom = area.verticalScrollBar()->maximum() + view.height();
    for (const TorvQDTable* box : area.tablesByCreation()) {
        const int natural = (box->ItemHeight + 1) * box->VisibleCount + box->CaptionHeight +
                            box->BorderWidth + 2 * box->Indent;
        const bool isHighEnough = box->Height >= leastHeightPx || box->Height == natural;
        if (box->Width < leastWidthPx || !isHighEnough) {
            return QStringLiteral("%1 is too small: %2 x %3")
                .arg(box->GetAlias())
                .arg(box->Width)
                .arg(box->Height);
        }
        // A fraction of a pixel of the view may be rounded off.
        const TRect bounds = box->GetBoundsRect();
        if (bounds.Left < 0 || bounds.Top < 0 || bounds.Right > right + 1 ||
            bounds.Bottom > bottom + 1) {
            return QStringLiteral("%1 cannot be scrolled to: %2, %3")
                .arg(box->GetAlias())
                .arg(bounds.Left)
                .arg(bounds.Top);
        }
    }
    return {};
}

inline QString brokenStatementRule(TorvQueryBuilder& builder) {
    try {
        const QString text = builder.GetSQLStatment();
        const bool isEmpty = builder.WorkArea->TablesCount() == 0;
        return text.isEmpty() && !isEmpty ? "there is no statement" : QString();
    } catch (const orv::Error& error) {
        return error.Message().isEmpty() ? "the statement fails without a reason" : QString();
    }
}

}  // namespace detail

/// What is wrong between the diagram, the name lists and the grid; empty when all agrees.
inline QString brokenRule(TorvQueryBuilder& builder, const QSet<QString>& loose = {}) {
    QString ticks = detail::brokenTickRule(builder, loose);
    if (!ticks.isEmpty()) return ticks;
    for (const auto rule :
         {detail::brokenNameRule, detail::brokenStackingRule, detail::brokenGridRule,
          detail::brokenLinkRule, detail::brokenSelectionRule, detail::brokenSizeRule,
          detail::brokenStatementRule}) {
        QString broken = rule(builder);
        if (!broken.isEmpty()) return broken;
    }
    return {};
}

}  // namespace orvtest

/// Fails the test when the parts of the builder do not agree.
#define verifyBuilder(builder) QCOMPARE(orvtest::brokenRule(builder), QString())
