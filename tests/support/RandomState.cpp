// SPDX-License-Identifier: MIT
#include "support/RandomState.h"

#include "catalogue/ORVQDOperators.h"
#include "core/Error.h"
#include "criteria/ORVQDWherePanel.h"
#include "data/ProcessName.h"
#include "parser/ORVQDParser.h"
#include "support/RandomTexts.h"

#include <QListWidget>
#include <QRegularExpression>
#include <QTreeWidget>

#include <optional>

namespace orvtest {

namespace {

// The same name for SQL, whatever its quotes and its case.
QString nameKey(const QString& name) {
    return orv::unquotedName(name).toUpper();
}

}  // namespace

void prepareForRandomStates(HostedBuilder& on, StateSetting setting) {
    on.host.add("lower", {"a", "B", "c d"});
    on.host.add("q\"q", {"x\"y", "Z"});
    on.host.add("a'b", {"it's", "[x]", "--"});
    on.host.add("x; (z)", {"a, b", "1", "\u00e4 \u20ac"});
    on.host.add("ORDER", {"GROUP", "SELECT", "NO"});
    on.host.add(texts::qualifiedTable, {"A", "Z"});
    lReservedWords() = texts::reservedWords;
    on.builder.setKeepMeaning(setting.keepMeaning);
    if (!setting.ownOperators) return;
    for (const TorvQDOperator& operation : texts::ownOperators())
        on.builder.Operators->Add(operation);
}

// --- making
// ---------------------------------------------------------------------------------------

RandomState::RandomState(unsigned seed, StateSetting setting) : m_setting(setting), m_random(seed) {
    makeTables();
    makeLinks();
    makeColumns();
    makeRows();
    makeRest();
}

void RandomState::makeTables() {
    const int count = 1 + below(oneIn(3) ? 6 : 3);
    for (int index = 0; index < count; ++index) {
        Table table{newPiece(),
                    oneOf(oneIn(4) ? texts::quotedTables : texts::plainTables),
                    {},
                    oneIn(12),
                    {}};
        const bool isTwice = std::any_of(m_tables.begin(), m_tables.end(), [&](const auto& other) {
            return other.name == table.name;
        });
        // A second box of a table may be taken for the first then: it is seldom made.
        if (isTwice && !m_setting.keepMeaning && !oneIn(6)) {
            table.name = texts::plainTables[index % int(texts::plainTables.size())];
        }
        const bool needsAlias = table.name == texts::qualifiedTable;
        if (needsAlias || oneIn(3)) table.alias = oneOf(texts::typedAliases);
        if (needsAlias) table.alias = QStringLiteral("Q%1").arg(index);
        if (oneIn(6)) table.newAlias = oneOf(texts::typedAliases);
        m_tables.push_back(table);
    }
}

// A tree over some of the tables, and now and then links that close circles.
void RandomState::makeLinks() {
    const int count = int(m_tables.size());
    for (int table = 1; table < count; ++table) {
        if (!oneIn(4)) addLink(below(table), table);
    }
    // A circle that a text of a join belongs to is closed by its last link: no load gives a text to
    // a join that others make superfluous.
    const bool hasText = std::any_of(m_links.begin(), m_links.end(),
                                     [](const Link& link) { return !link.text.isEmpty(); });
    if (hasText) std::shuffle(m_links.begin(), m_links.end(), m_random);
    if (count > 2 && oneIn(m_setting.keepMeaning ? 3 : 12)) {
        const int table1 = below(count);
        addLink(table1, (table1 + 1 + below(count - 1)) % count);
        m_links.back().text.clear();
    }
    if (!hasText) std::shuffle(m_links.begin(), m_links.end(), m_random);
    const int more = m_links.empty() ? 0 : below(3);
    for (int index = 0; index < more; ++index) {
        const Link first = m_links[std::size_t(below(int(m_links.size())))];
        addLink(first.table1, first.table2);
        m_links.back().kind = first.kind;
        m_links.back().text = first.text;
    }
}

void RandomState::addLink(int table1, int table2) {
    if (oneIn(2)) std::swap(table1, table2);
    Link link{newPiece(), table1, below(10), table2, below(10), {}, klInnerJoin, {}, oneIn(6)};
    const bool asymmetric = oneIn(m_setting.keepMeaning ? 2 : 8);
    link.operation = asymmetric ? oneOf({"<", ">", "<=", ">="}) : oneOf({"=", "=", "<>"});
    if (oneIn(3)) link.kind = TKindOfJoin(below(4));
    if (m_setting.keepMeaning && oneIn(8)) {
        link.text = oneOf(texts::joinTexts);
        link.text.replace("{0,", QStringLiteral("{%1,").arg(table1));
        link.text.replace("{1,", QStringLiteral("{%1,").arg(table2));
    }
    m_links.push_back(link);
}

QString RandomState::anyField() {
    return QStringLiteral("{%1,%2}").arg(below(int(m_tables.size()))).arg(below(10));
}

// Each field of a pattern becomes a field of the state.
QString RandomState::withFields(QString text) {
    const QString first = anyField();
    const QString second = anyField();
    text.replace("{0,0}", first).replace("{0,1}", first);
    return text.replace("{1,0}", second).replace("{1,1}", second);
}

QString RandomState::aliasOfColumn() {
    switch (below(8)) {
    case 0: return QStringLiteral("N%1").arg(below(3));
    case 1:
        return oneOf({"\"full name\"", "\"a\"\"b\"", "\"it's\"", "\"x, y\"", "\"FROM\"", "\"1ST\"",
                      "\"a.b\"", "\"(\"", "\"plain\"", "\"PLAIN\"", "\" \"", "\"N1\"", "\"--\"",
                      "\"\u00e4\"", "'in text'", "\"\"\"\""});
    case 2: return QStringLiteral("Total%1").arg(m_pieces);
    case 3: return oneOf({"", "A", "X", "SALARY", "PRICE"});
    default: return QStringLiteral("N%1").arg(m_pieces);
    }
}

RandomState::Column RandomState::makeColumn(bool aggregates) {
    Column column{newPiece(), anyField(), {}, false, false};
    if (aggregates) {
        column.expression = withFields(oneOf(texts::aggregates));
        column.aggregates = true;
        // The name that is made from a quoted field or "*" is written as it is, and none in SQL.
        const bool named = m_setting.keepMeaning ? oneIn(2) : !oneIn(10);
        if (named) column.alias = aliasOfColumn();
        if (!m_setting.keepMeaning && !oneIn(10) && column.alias.isEmpty()) {
            column.alias = QStringLiteral("N%1").arg(m_pieces);
        }
        return column;
    }
    if (oneIn(3))
        column.expression =
            withFields(oneOf(oneIn(2) ? texts::expressions : texts::moreExpressions));
    if (oneIn(12)) {
        column.expression = oneOf(texts::numbers);
        column.isNumber = true;
    }
    if (oneIn(2)) column.alias = aliasOfColumn();
    return column;
}

void RandomState::makeColumns() {
    const bool aggregated = oneIn(2);
    const int count = below(4);
    for (int index = 0; index < count; ++index) {
        Column column = makeColumn(false);
        // Nothing groups by a number: it would be taken for a column's position.
        if (!(aggregated && column.isNumber)) m_columns.push_back(column);
    }
    const int calls = aggregated ? 1 + below(2) : 0;
    for (int index = 0; index < calls; ++index) m_columns.push_back(makeColumn(true));
    const int ticks = below(4) + (m_columns.empty() ? 1 : 0);
    for (int index = 0; index < ticks; ++index) {
        m_ticks.push_back({newPiece(), below(int(m_tables.size())), below(10)});
    }
}

void RandomState::makeRows() {
    if (!oneIn(4)) m_where.push_back(makeGroup(1, false));
    const bool grouped = std::any_of(m_columns.begin(), m_columns.end(),
                                     [](const Column& column) { return column.aggregates; });
    if (oneIn(grouped ? 2 : 20)) m_having.push_back(makeGroup(2, true));
}

RandomState::Row RandomState::makeGroup(int depth, bool having) {
    Row group;
    group.piece = newPiece();
    group.group = oneOf({"All", "Any", "None", "Not all"});
    const int count = oneIn(8) ? 1 : 2 + below(2);
    for (int index = 0; index < count; ++index) {
        const bool nests = depth < 5 && oneIn(3 + depth);
        group.rows.push_back(nests ? makeGroup(depth + 1, having) : makeCondition(having));
    }
    return group;
}

RandomState::Row RandomState::makeExpression(bool having) {
    Row row;
    row.piece = newPiece();
    const bool ofDefaults = !m_setting.ownOperators && oneIn(3);
    row.field = withFields(oneOf(ofDefaults ? texts::wholeTextsOfDefaults : texts::wholeTexts));
    if (having && oneIn(2)) row.field = QStringLiteral("SUM(%1) IS OF (INTEGER)").arg(anyField());
    return row;
}

RandomState::Row RandomState::makeCondition(bool having) {
    if (oneIn(8)) return makeExpression(having);
    Row row;
    row.piece = newPiece();
    row.field = oneIn(2) ? anyField() : withFields(oneOf(texts::leftSides));
    if (having && oneIn(2)) {
        row.fieldFunc = oneOf(texts::aggregateNames);
        row.field = oneOf({anyField(), anyField() + " * 2", "DISTINCT " + anyField(), "*"});
    }
    const TorvQDOperator operation = anyOperator();
    row.operation = operation.Name;
    fillOperands(row, operation, having);
    return row;
}

TorvQDOperator RandomState::anyOperator() {
    TOperatorList list;
    orv::fillOperators(list);
    if (m_setting.ownOperators) {
        for (const TorvQDOperator& operation : texts::ownOperators()) list.Add(operation);
    }
    return *list.Items(below(list.Count()));
}

void RandomState::fillOperands(Row& row, const TorvQDOperator& operation, bool having) {
    const bool isBare = operation.Prefix.isEmpty() && operation.Postfix.isEmpty();
    for (int index = 0; index < operation.Count; ++index) {
        row.arguments << withFields(oneOf(texts::rightSides));
    }
    if (operation.Count != 1) return;
    if (row.operation == "HAS ANY") {
        row.arguments = {QStringLiteral("A FROM U WHERE X = 1 AND Y IN (1, 2)")};
    } else if (operation.Postfix == ")") {
        row.arguments = {withFields(oneOf(texts::lists))};
    } else if (row.operation.endsWith("LIKE") && oneIn(2)) {
        row.arguments = {withFields(oneOf(texts::likeTexts))};
    } else if (row.operation == "=" && oneIn(4)) {
        row.arguments = {withFields(oneOf(texts::rightOfSigns))};
    } else if (having && isBare && oneIn(4)) {
        // With a prefix and a postfix the written brackets do not match.
        row.argFunc = oneOf(texts::aggregateNames);
        row.arguments = {oneOf({anyField(), anyField() + " + 1", "*"})};
    }
}

void RandomState::makeRest() {
    const int sorts = below(4);
    for (int index = 0; index < sorts; ++index) {
        m_sorts.push_back({newPiece(), below(10), oneIn(2)});
    }
    if (oneIn(4)) m_distinct = newPiece();
    if (oneIn(4)) {
        m_tail = newPiece();
        m_tailText = oneOf(texts::tails);
    }
    if (oneIn(2)) m_front = newPiece();
    m_frontTable = below(int(m_tables.size()));
}

// --- building
// -------------------------------------------------------------------------------------

class RandomState::Target {
public:
    explicit Target(HostedBuilder& on) : hosted(on), builder(on.builder) {}

    [[nodiscard]] TorvQDTable* box(int table) const {
        return table < int(boxes.size()) ? boxes[std::size_t(table)] : nullptr;
    }
    [[nodiscard]] TorvQDListItem* item(int table, int field) const {
        TorvQDTable* found = box(table);
        return found ? found->Items[std::size_t(field) % found->Items.size()].get() : nullptr;
    }
    /// The text with the names of its fields; none when one of its tables is left out.
    [[nodiscard]] std::optional<QString> text(const QString& pattern) const {
        static const QRegularExpression field("\\{(\\d+),(\\d+)\\}");
        QString result;
        qsizetype copied = 0;
        auto matches = field.globalMatch(pattern);
        while (matches.hasNext()) {
            const QRegularExpressionMatch match = matches.next();
            // Patterns name a first and a second table; a state may have one only.
            const TorvQDListItem* found =
                item(match.captured(1).toInt(), match.captured(2).toInt());
            if (!found) return std::nullopt;
            result += QStringView(pattern).mid(copied, match.capturedStart() - copied);
            result += found->Table->GetAlias() + u'.' + found->Name;
            copied = match.capturedEnd();
        }
        return result + pattern.mid(copied);
    }

    HostedBuilder& hosted;
    TorvQueryBuilder& builder;
    std::vector<TorvQDTable*> boxes;  // by the number of the table; none where it is left out
};

void RandomState::build(HostedBuilder& on) const {
    Target target(on);
    on.builder.Clear();
    on.builder.beginChange();
    buildTables(target);
    buildLinks(target);
    buildColumns(target);
    on.builder.endChange();
    on.builder.beginChange();
    for (const Row& root : m_where) buildPanel(target, *on.builder.WherePanel, root);
    for (const Row& root : m_having) buildPanel(target, *on.builder.HavingPanel, root);
    on.builder.endChange();
    buildOrder(target);
    renameLate(target);
    on.builder.SelectPanel->SetDistinct(m_distinct >= 0 && has(m_distinct) ? -1 : 0);
    if (m_tail >= 0 && has(m_tail)) on.builder.setTailText(m_tailText);
    if (m_front < 0 || !has(m_front) || !target.box(m_frontTable)) return;
    on.builder.WorkArea->TableToFront(target.box(m_frontTable));
}

// An alias that is another box's but for quotes or case would make no valid statement. By design a
// rename also takes names of boxes whose alias only begins with the old one: it is not done then.
bool RandomState::mayRename(const Target& target, const TorvQDTable& box, const QString& alias) {
    const std::vector<TorvQDTable*>& boxes = target.builder.WorkArea->tablesByCreation();
    return std::none_of(boxes.begin(), boxes.end(), [&](const TorvQDTable* other) {
        return other != &box && (nameKey(other->GetAlias()) == nameKey(alias) ||
                                 other->GetAlias().startsWith(box.GetAlias()));
    });
}

void RandomState::buildTables(Target& target) const {
    for (const Table& table : m_tables) {
        TorvQDTable* box = nullptr;
        if (has(table.piece)) box = target.hosted.addTable(table.name);
        target.boxes.push_back(box);
        if (!box || table.alias.isEmpty()) continue;
        QString alias = table.alias;
        alias.remove(u'.');
        if (mayRename(target, *box, alias)) target.builder.WorkArea->renameTable(box, table.alias);
    }
}

TorvQDLink* RandomState::drawLink(Target& target, const Link& link) {
    TorvQDWorkArea& area = *target.builder.WorkArea;
    TorvQDTable* table1 = target.box(link.table1);
    TorvQDTable* table2 = target.box(link.table2);
    if (!table1 || !table2) return nullptr;
    TorvQDListItem* item1 = target.item(link.table1, link.field1);
    TorvQDListItem* item2 = target.item(link.table2, link.field2);
    if (area.FindLink(table1, table2, item1, item2)) return nullptr;
    TorvQDLink* added = area.AddLink(table1, table2, item1, item2);
    added->setOperatorText(link.operation);
    added->Join->KindOfJoin = link.kind;
    if (!link.text.isEmpty()) added->Join->Text = *target.text(link.text);
    return added;
}

void RandomState::buildLinks(Target& target) const {
    TorvQDWorkArea& area = *target.builder.WorkArea;
    std::vector<std::pair<const Link*, TorvQDLink*>> drawn;
    for (const Link& link : m_links) {
        if (!has(link.piece)) continue;
        if (TorvQDLink* added = drawLink(target, link)) drawn.emplace_back(&link, added);
    }
    for (const auto& [link, added] : drawn) {
        if (!link->goes) continue;
        area.RemoveLink(added, true);
        Link again = *link;
        again.text.clear();  // it goes with its join
        (void)drawLink(target, again);
    }
    for (std::size_t table = 0; table < m_tables.size(); ++table) {
        if (!m_tables[table].closes || !target.boxes[table]) continue;
        if (target.builder.ListOfTables->TablesCount() == 1) continue;
        target.builder.ListOfTables->DeleteTable(target.boxes[table]);
        target.boxes[table] = nullptr;
    }
}

// Named and computed columns come from a select list, others from ticks.
void RandomState::buildColumns(Target& target) const {
    QStringList list;
    QStringList grouped;
    for (const Column& column : m_columns) {
        const std::optional<QString> expression = target.text(column.expression);
        if (!has(column.piece) || !expression) continue;
        list << *expression + (column.alias.isEmpty() ? QString() : " AS " + column.alias);
        if (!column.aggregates) grouped << *expression;
    }
    const bool isGrouped = grouped.size() < list.size() && !grouped.isEmpty();
    QString text = "SELECT " + list.join(", ") + " FROM ANY_TABLE";
    if (isGrouped) text += " GROUP BY " + grouped.join(", ");
    if (!list.isEmpty()) target.builder.SelectPanel->grid()->LoadSQL(TorvQDParser(text));
    for (const Tick& tick : m_ticks) {
        TorvQDListItem* item = target.item(tick.table, tick.field);
        if (!has(tick.piece) || !item || item->Checked) continue;
        item->SetCheck(true);
        item->UpdateCheck(-1);
    }
}

void RandomState::buildPanel(Target& target, TorvQDWherePanel& panel, const Row& root) const {
    buildGroup(target, *panel.rootRow(), root);
    if (panel.rootRow()->SubRows->GetCount() == 0) panel.ClearContents();
}

void RandomState::buildGroup(Target& target, TorvQDWhereRow& group, const Row& from) const {
    group.SetGroupOper(from.group);
    for (const Row& row : from.rows) {
        if (!has(row.piece)) continue;
        TorvQDWhereRow* added = group.SubRows->AddRow();
        if (!buildRow(target, *added, row)) group.SubRows->Delete(added->GetIndex());
    }
}

bool RandomState::buildRow(Target& target, TorvQDWhereRow& row, const Row& from) const {
    if (!from.group.isEmpty()) {
        buildGroup(target, row, from);
        return row.SubRows->GetCount() > 0;
    }
    const std::optional<QString> field = target.text(from.field);
    if (!field) return false;
    row.FieldName = *field;
    if (!from.fieldFunc.isEmpty()) row.FieldFunc = from.fieldFunc;
    row.setOperator(from.operation.isEmpty() ? orv::expressionOperator()
                                             : target.builder.Operators->FindName(from.operation));
    if (!from.argFunc.isEmpty()) row.ArgFunc = from.argFunc;
    for (qsizetype index = 0; index < row.Arguments.size(); ++index) {
        const std::optional<QString> argument = target.text(from.arguments.value(index));
        if (!argument) return false;
        row.Arguments[index] = *argument;
    }
    return true;
}

// Columns follow by plain text: an alias that others end with is not renamed.
void RandomState::renameLate(Target& target) const {
    for (std::size_t table = 0; table < m_tables.size(); ++table) {
        TorvQDTable* box = target.boxes[table];
        QString alias = m_tables[table].newAlias;
        alias.remove(u'.');
        if (!box || alias.isEmpty() || !mayRename(target, *box, alias)) continue;
        const std::vector<TorvQDTable*>& boxes = target.builder.WorkArea->tablesByCreation();
        const bool endsAnother = std::any_of(boxes.begin(), boxes.end(), [&](const auto* other) {
            return other != box && other->GetAlias().endsWith(box->GetAlias());
        });
        if (!endsAnother) target.builder.WorkArea->renameTable(box, m_tables[table].newAlias);
    }
}

// As the user does it: on the lists and buttons of the page.
void RandomState::buildOrder(Target& target) const {
    TorvQDOrderPanel& panel = *target.builder.OrderPanel;
    auto* unsorted = panel.findChild<QListWidget*>();
    auto* sorted = panel.findChild<QTreeWidget*>();
    for (const Sort& sort : m_sorts) {
        if (!has(sort.piece) || unsorted->count() == 0) continue;
        unsorted->setCurrentRow(sort.column % unsorted->count());
        panel._AddClick();
        if (!sort.descends) continue;
        sorted->setCurrentItem(sorted->topLevelItem(sorted->topLevelItemCount() - 1));
        panel._ChangeOrder();
    }
}

}  // namespace orvtest
