// SPDX-License-Identifier: MIT
#include "support/StateText.h"

#include "core/Text.h"
#include "criteria/ORVQDWherePanel.h"
#include "data/ProcessName.h"
#include "diagram/ORVQDLinks.h"
#include "parser/ORVQDTokens.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <functional>
#include <map>

namespace orvtest {

namespace {

// --- texts
// ----------------------------------------------------------------------------------------

bool isNameCharacter(QChar character) {
    return character.isLetterOrNumber() || character == u'_' || character == u'$';
}

// The pieces of a text that lie outside quotes, changed; quoted ones stay as they are.
QString outsideQuotes(const QString& text, const std::function<QString(const QString&)>& change) {
    QString result;
    qsizetype position = 0;
    while (position < text.size()) {
        qsizetype quote = position;
        while (quote < text.size() && text[quote] != u'\'' && text[quote] != u'"') ++quote;
        result += change(text.mid(position, quote - position));
        if (quote == text.size()) break;
        qsizetype close = text.indexOf(text[quote], quote + 1);
        close = close < 0 ? text.size() : close + 1;
        result += text.mid(quote, close - quote);
        position = close;
    }
    return result;
}

// Upper case; a parameter keeps its own.
QString upperPiece(const QString& piece) {
    QString result;
    bool parameter = false;
    for (qsizetype at = 0; at < piece.size(); ++at) {
        const QChar character = piece[at];
        const bool cast = character == u':' && (piece.mid(at, 2) == "::" || result.endsWith(u':'));
        if (!isNameCharacter(character))
            parameter = !cast && (character == u':' || character == u'@');
        result += parameter ? QString(character) : QString(character).toUpper();
    }
    return result;
}

QString upper(const QString& text) {
    return outsideQuotes(text, upperPiece);
}

// Without the blanks beside brackets and commas.
QString squeezed(const QString& text) {
    const QString bars = QStringLiteral("(),");
    QString result;
    QChar open;
    for (const QChar character : upper(text)) {
        if (open.isNull() && character == u' ' && !result.isEmpty() &&
            bars.contains(result.back())) {
            continue;
        }
        if (open.isNull() && bars.contains(character)) {
            while (result.endsWith(u' ')) result.chop(1);
        }
        if (open.isNull() && (character == u'\'' || character == u'"')) {
            open = character;
        } else if (character == open) {
            open = QChar();
        }
        result += character;
    }
    return orv::orvTrim(result);
}

// Upper case, and blanks around brackets and commas as they are put when operands are loaded.
bool hasLoadedSpacing(const QString& text) {
    if (upper(text) != text || orv::orvTrim(text) != text) return false;
    bool plain = true;
    QString previous;
    (void)outsideQuotes(text, [&](const QString& piece) {
        for (const QChar character : piece + (piece.isEmpty() ? "" : "\x01")) {
            if (character == u'\x01') break;
            const bool behindComma = previous.endsWith(u',');
            if (behindComma && character != u' ') plain = false;
            if (previous.endsWith(u'(') && character == u' ') plain = false;
            if (previous.endsWith(u' ') && (character == u')' || character == u',')) plain = false;
            if (previous.endsWith(u' ') && character == u'(') {
                const QString word = previous.chopped(1).section(u' ', -1).section(u'(', -1);
                static const QStringList functions = {"COUNT", "MAX",  "MIN",   "SUM",
                                                      "AVG",   "CAST", "UPPER", "GEN_ID"};
                if (functions.contains(word)) plain = false;
            }
            previous += character;
        }
        return piece;
    });
    return plain && !text.contains(QStringLiteral(",'")) && !text.contains(QStringLiteral("( '"));
}

// Fields with operators between them, and nothing else, without blanks.
QString withoutChainBlanks(const QString& text) {
    static const QString quoted = QStringLiteral("(?:\"[^\"]*\")+");
    static const QString field =
        QStringLiteral("(?:[A-Z_][\\w$]*|%1)(?:\\.(?:[\\w$]+|%1))*").arg(quoted);
    static const QString operation = QStringLiteral(" *[-+*/|<>=!]+ *");
    static const QRegularExpression chain(QStringLiteral("^%1(?:%2%1)+$").arg(field, operation));
    return chain.match(text).hasMatch()
               ? outsideQuotes(text, [](QString piece) { return piece.remove(u' '); })
               : text;
}

QString filled(const QString& text) {
    return orv::isBlank(text) ? QString() : text;
}

// --- the order in which a diagram is written
// ------------------------------------------------------

/// How the joins of a work area come out in its FROM text.
struct Writing {
    std::vector<const TorvQDTable*> tables;                  // in the order of the text, each once
    QSet<const TorvQDJoin*> swapped;                         // their second table is written first
    QSet<const TorvQDJoin*> circles;                         // both tables were written before
    QHash<const TorvQDTable*, const TorvQDJoin*> broughtBy;  // the join of the table's line
};

// Boxes from the front on; from each, depth first along its joins.
Writing writingByStacking(const TorvQDWorkArea& area) {
    Writing writing;
    QSet<const TorvQDTable*> written;
    QSet<const TorvQDJoin*> used;
    const std::function<void(const TorvQDTable*)> follow = [&](const TorvQDTable* from) {
        for (const auto& join : area.Joins()) {
            const bool touches = join->Table1 == from || join->Table2 == from;
            if (!touches || used.contains(join)) continue;
            used.insert(join);
            const TorvQDTable* to = join->Table1 == from ? join->Table2 : join->Table1;
            if (join->Table1 != from) writing.swapped.insert(join);
            if (written.contains(to)) {
                writing.circles.insert(join);
            } else {
                writing.tables.push_back(to);
                writing.broughtBy.insert(to, join);
            }
            written.insert(to);
            follow(to);
        }
    };
    for (int index = 0; index < area.TablesCount(); ++index) {
        const TorvQDTable* table = area.Tables(index);
        if (written.contains(table)) continue;
        written.insert(table);
        writing.tables.push_back(table);
        follow(table);
    }
    return writing;
}

// Boxes in the order of creation; in each group the earliest join that brings in a new box.
Writing writingByCreation(const TorvQDWorkArea& area) {
    Writing writing;
    QSet<const TorvQDTable*> written;
    const auto add = [&](const TorvQDTable* table, const TorvQDJoin* join) {
        written.insert(table);
        writing.tables.push_back(table);
        if (join) writing.broughtBy.insert(table, join);
    };
    for (const TorvQDTable* first : area.tablesByCreation()) {
        if (written.contains(first)) continue;
        add(first, nullptr);
        for (bool found = true; found;) {
            found = false;
            for (const auto& join : area.Joins()) {
                if (written.contains(join->Table1) == written.contains(join->Table2)) continue;
                const bool swapped = written.contains(join->Table2);
                if (swapped) writing.swapped.insert(join);
                add(swapped ? join->Table1 : join->Table2, join);
                found = true;
                break;
            }
        }
    }
    for (const auto& join : area.Joins()) {
        const bool bringsIn = writing.broughtBy.value(join->Table1) == join ||
                              writing.broughtBy.value(join->Table2) == join;
        if (!bringsIn) writing.circles.insert(join);
    }
    return writing;
}

Writing writingOf(TorvQueryBuilder& builder) {
    return builder.KeepMeaning() ? writingByCreation(*builder.WorkArea)
                                 : writingByStacking(*builder.WorkArea);
}

// --- tables and joins
// -----------------------------------------------------------------------------

QStringList tableLines(TorvQueryBuilder& builder) {
    QStringList lines;
    for (const TorvQDTable* table : builder.WorkArea->tablesByCreation()) {
        QStringList ticked;
        for (const auto& item : table->Items) {
            if (item->Checked) ticked << item->Name;
        }
        lines << QStringLiteral("table %1 alias %2 ticked %3 of %4")
                     .arg(table->TableName, upper(table->GetAlias()), ticked.join(u' '))
                     .arg(table->Items.size());
    }
    lines.sort();
    return lines;
}

// Seen from the table whose alias comes first in the alphabet: a join has no direction of its own.
QStringList joinLines(TorvQueryBuilder& builder, StateView view) {
    const bool turnsSides = view == StateView::Reloaded && !builder.KeepMeaning();
    const Writing writing = turnsSides ? writingOf(builder) : Writing();
    QStringList lines;
    for (const auto& join : builder.WorkArea->Joins()) {
        const QString alias1 = upper(join->Table1->GetAlias());
        const QString alias2 = upper(join->Table2->GetAlias());
        const bool turned = alias2 < alias1;
        const TKindOfJoin kind = turned ? orv::mirrored(join->KindOfJoin) : join->KindOfJoin;
        QStringList links;
        for (const TorvQDLink* link : builder.WorkArea->linksOf(join)) {
            QString operation = link->operatorText();
            if (writing.swapped.contains(join)) operation = orv::mirroredOperator(operation);
            if (turned) operation = orv::mirroredOperator(operation);
            const TorvQDListItem* left = turned ? link->Item2 : link->Item1;
            const TorvQDListItem* right = turned ? link->Item1 : link->Item2;
            links << left->Name + u' ' + operation + u' ' + right->Name;
        }
        lines << QStringLiteral("join %1 %2 %3 links %4 text %5")
                     .arg(turned ? alias2 : alias1, orv::joinKindIdentifier(kind),
                          turned ? alias1 : alias2, links.join(QStringLiteral(" | ")),
                          upper(join->Text));
    }
    lines.sort();
    return lines;
}

// --- conditions
// -----------------------------------------------------------------------------------

/// A condition as a tree: a leaf with its text, or a group with its caption and parts.
struct Condition {
    QString leaf;
    QString group;
    std::vector<Condition> parts;

    [[nodiscard]] bool isLeaf() const { return group.isEmpty(); }
};

/// A condition with its negations counted: leaf, conjunction or disjunction, negated or not.
struct Negatable {
    bool negated = false;
    Condition condition;  // a leaf, or "All" or "Any" of two parts at least
};

QString cell(const QString& text, StateForm form) {
    return form == StateForm::Exact ? filled(text) : squeezed(filled(text));
}

// "SUM(T.A)" is SUM of "T.A".
void splitCall(QString& function, QString& text, const QStringList* functions) {
    if (!functions || !function.isEmpty()) return;
    for (const QString& name : *functions) {
        if (orv::isBlank(name) || !text.startsWith(name + u'(') || !text.endsWith(u')')) continue;
        int depth = 0;
        qsizetype closes = -1;
        QChar open;
        for (qsizetype at = name.size(); at < text.size() && closes < 0; ++at) {
            if (!open.isNull()) {
                if (text[at] == open) open = QChar();
                continue;
            }
            if (text[at] == u'\'' || text[at] == u'"') open = text[at];
            if (text[at] == u'(') ++depth;
            if (text[at] == u')' && --depth == 0) closes = at;
        }
        if (closes != text.size() - 1) return;
        text = text.mid(name.size() + 1).chopped(1);
        function = name;
        return;
    }
}

QString leafText(const TorvQDWhereRow& row, const QStringList* functions, StateForm form) {
    QString function = filled(row.FieldFunc);
    QString field = cell(row.FieldName, form);
    QString argFunc = filled(row.ArgFunc);
    QStringList arguments;
    for (const QString& argument : row.Arguments) arguments << cell(argument, form);
    if (form == StateForm::Normal && !row.isExpression()) {
        splitCall(function, field, functions);
        const bool bare = orv::isBlank(row.Operator->Prefix) && orv::isBlank(row.Operator->Postfix);
        if (arguments.size() == 1 && bare) splitCall(argFunc, arguments.front(), functions);
    }
    const QString name = row.isExpression() ? QStringLiteral("(expression)") : row.Operator->Name;
    return QStringList{function, field, name, argFunc, arguments.join(QStringLiteral(" ; "))}.join(
        QStringLiteral(" | "));
}

Condition exactCondition(const TorvQDWhereRow& row, const QStringList* functions, StateForm form) {
    Condition condition;
    if (!row.isGroup()) {
        condition.leaf = leafText(row, functions, form);
        return condition;
    }
    condition.group = row.GroupOper;
    for (int index = 0; index < row.SubRows->GetCount(); ++index) {
        condition.parts.push_back(exactCondition(*row.SubRows->Row(index), functions, form));
    }
    return condition;
}

Condition withGroup(const Negatable& from);

// Allowances 3 and 4: a group of one row is the row, and negations of negations cancel out.
Negatable counted(const Condition& condition) {
    if (condition.isLeaf()) return {false, condition};
    const bool negates = condition.group == "None" || condition.group == "Not all";
    if (condition.parts.size() == 1) {
        Negatable only = counted(condition.parts.front());
        only.negated = only.negated != negates;
        return only;
    }
    const bool conjunction = condition.group == "All" || condition.group == "None";
    Negatable result{negates,
                     {{}, conjunction ? QStringLiteral("All") : QStringLiteral("Any"), {}}};
    for (const Condition& part : condition.parts) {
        result.condition.parts.push_back(withGroup(counted(part)));
    }
    return result;
}

Condition withGroup(const Negatable& from) {
    Condition result = from.condition;
    if (!from.negated) return result;
    if (result.isLeaf()) return {{}, QStringLiteral("None"), {result}};
    result.group = result.group == "All" ? QStringLiteral("None") : QStringLiteral("Not all");
    return result;
}

// The root is always a group.
Condition normalCondition(const Condition& root) {
    Condition result = withGroup(counted(root));
    if (result.isLeaf()) return {{}, QStringLiteral("All"), {result}};
    return result;
}

void appendLines(const Condition& condition, const QString& indent, QStringList& lines) {
    lines << indent + (condition.isLeaf() ? condition.leaf : condition.group);
    for (const Condition& part : condition.parts) appendLines(part, indent + "  ", lines);
}

QStringList panelLines(const QString& name, const TorvQDWherePanel& panel, StateForm form) {
    const TorvQDWhereRow& root = *panel.rootRow();
    if (root.SubRows->GetCount() == 0) return {};
    QStringList lines;
    const Condition exact = exactCondition(root, panel.Functions, form);
    appendLines(form == StateForm::Exact ? exact : normalCondition(exact), name + "  ", lines);
    return lines;
}

// --- columns and the rest
// -------------------------------------------------------------------------

// Allowance 8: ORDER BY names a field, not one of several columns of it.
int sortedRow(TorvQueryBuilder& builder, int row, StateForm form) {
    const orv::OutputColumns& columns = builder.SelectPanel->grid()->columns();
    const QString source = columns[std::size_t(row - 1)].source;
    const bool byField = builder.SelectPanel->grid()->GetFieldName(row) == source;
    if (form == StateForm::Exact || !byField) return row;
    const auto first = std::find_if(columns.begin(), columns.end(), [&](const auto& column) {
        return column.source == source && orv::isBlank(column.aggregate);
    });
    return int(first - columns.begin()) + 1;
}

QStringList pageLines(TorvQueryBuilder& builder, StateForm form) {
    QStringList lines;
    QStringList names;
    for (const orv::OutputColumn& column : builder.SelectPanel->grid()->columns()) {
        names << column.name;
        lines << QStringLiteral("column %1 | %2 | %3")
                     .arg(column.name, filled(column.aggregate),
                          form == StateForm::Exact ? upper(column.source)
                                                   : withoutChainBlanks(upper(column.source)));
    }
    const orv::SortList& list = builder.OrderPanel->sortList();
    for (const orv::SortList::Line& line : list.lines()) {
        const int row = sortedRow(builder, list.rowOf(line, names), form);
        lines << QStringLiteral("sorted by %1 %2 row %3")
                     .arg(names.value(row - 1), line.direction)
                     .arg(row);
    }
    if (builder.SelectPanel->GetDistinct() != 0) lines << QStringLiteral("distinct");
    if (!builder.TailText().isEmpty()) lines << "tail " + builder.TailText();
    return lines;
}

bool writesHaving(TorvQueryBuilder& builder) {
    return !orv::isBlank(builder.SelectPanel->grid()->GetSQLStatment().groupBy);
}

}  // namespace

QStringList stateLines(TorvQueryBuilder& builder, StateForm form, StateView view) {
    QStringList lines = tableLines(builder) + joinLines(builder, view);
    lines << panelLines(QStringLiteral("where"), *builder.WherePanel, form);
    const bool lost = view == StateView::Reloaded && !writesHaving(builder);
    if (!lost) lines << panelLines(QStringLiteral("having"), *builder.HavingPanel, form);
    return lines + pageLines(builder, form);
}

namespace {

bool isPlainRow(const TorvQDWhereRow& row) {
    for (int index = 0; index < row.SubRows->GetCount(); ++index) {
        if (!isPlainRow(*row.SubRows->Row(index))) return false;
    }
    if (row.isGroup()) return true;
    return hasLoadedSpacing(filled(row.FieldName)) &&
           std::all_of(row.Arguments.begin(), row.Arguments.end(),
                       [](const QString& argument) { return hasLoadedSpacing(argument); });
}

bool isPlainPanel(const TorvQDWherePanel& panel) {
    QStringList exact;
    QStringList normal;
    const Condition root = exactCondition(*panel.rootRow(), panel.Functions, StateForm::Normal);
    appendLines(root, {}, exact);
    appendLines(normalCondition(root), {}, normal);
    return panel.rootRow()->SubRows->GetCount() == 0 ||
           (exact == normal && isPlainRow(*panel.rootRow()));
}

}  // namespace

bool isPlainState(TorvQueryBuilder& builder) {
    if (!isPlainPanel(*builder.WherePanel)) return false;
    if (writesHaving(builder) && !isPlainPanel(*builder.HavingPanel)) return false;
    const QString from = builder.WorkArea->GetSQLStatment();
    const std::vector<orv::OutputColumn>& columns = builder.SelectPanel->grid()->columns();
    return upper(from) == from &&
           std::all_of(columns.begin(), columns.end(), [](const orv::OutputColumn& column) {
               return withoutChainBlanks(upper(column.source)) == column.source;
           });
}

// --- promises
// -------------------------------------------------------------------------------------

namespace {

// The table's name as it is asked for, without quotes.
QString lookupName(const TorvQDTable& table) {
    QStringList parts;
    QString rest = table.TableName;
    for (qsizetype stop = orv::firstFullStop(rest); stop >= 0; stop = orv::firstFullStop(rest)) {
        parts << orv::unquotedName(rest.left(stop));
        rest = rest.mid(stop + 1);
    }
    return (parts << orv::unquotedName(rest)).join(u'.');
}

bool isTakenForAnother(const Writing& writing) {
    QSet<QString> aliases;
    for (const TorvQDTable* table : writing.tables) {
        const QString name = lookupName(*table);
        if (aliases.contains(name) || aliases.contains(orv::quotedName(name))) return true;
        aliases.insert(upper(table->GetAlias()));
    }
    return false;
}

// A qualified name comes back, though no database takes it.
bool isOneWord(const QString& name) {
    const orv::SqlTokens tokens = orv::tokenise(name);
    return tokens.size() == 1 && tokens.front().kind == orv::SqlToken::Word &&
           tokens.front().end == int(name.size());
}

QStringList invalidOutputNames(TorvQueryBuilder& builder) {
    QStringList names;
    for (const orv::OutputColumn& column : builder.SelectPanel->grid()->columns()) {
        const bool written = column.name != orv::createFieldName(QString(), column.source);
        if (written && !orv::isBlank(column.name) && !orv::isPlainIdentifier(column.name) &&
            !orv::isQuotedName(column.name) && !column.name.startsWith(u'\'') &&
            !isOneWord(column.name)) {
            names << column.name;
        }
    }
    return names;
}

bool hasUnwrittenName(TorvQueryBuilder& builder) {
    const orv::OutputColumns& columns = builder.SelectPanel->grid()->columns();
    return std::any_of(columns.begin(), columns.end(), [](const orv::OutputColumn& column) {
        const bool computed =
            !orv::isBlank(column.aggregate) || orv::tokenise(column.source).size() > 1;
        return computed && column.name == orv::createFieldName(QString(), column.source);
    });
}

/// What the order of outer joins does to the report.
enum class OrderReport { None, Some, Open };

// The table whose rows a left or right join fills up with nothing; none for the other kinds.
const TorvQDTable* filledUp(const TorvQDJoin& join) {
    if (join.KindOfJoin == klLOuterJoin) return join.Table2;
    return join.KindOfJoin == klROuterJoin ? join.Table1 : nullptr;
}

bool touches(const TorvQDJoin& join, const TorvQDTable* table) {
    return join.Table1 == table || join.Table2 == table;
}

// Outer joins may be turned round when no table that they fill up takes part in another join but as
// the side that this one preserves, and when full joins stand alone or among their like.
OrderReport orderOfOuterJoins(const TorvQDWorkArea& area, const Writing& writing) {
    const std::vector<TorvQDJoin*> joins = area.Joins();
    const auto count = [&](const auto& is) {
        return std::count_if(joins.begin(), joins.end(),
                             [&](const TorvQDJoin* join) { return is(*join); });
    };
    const auto isOuter = [](const TorvQDJoin& join) { return join.KindOfJoin != klInnerJoin; };
    const auto isFull = [](const TorvQDJoin& join) { return join.KindOfJoin == klFOuterJoin; };
    if (count(isOuter) == 0) return OrderReport::None;
    // Behind a comma a right or full join is told of; what a comma beside others does is open.
    if (writing.broughtBy.size() + 1 < area.TablesCount()) return OrderReport::Open;
    const auto total = std::ptrdiff_t(joins.size());
    if (count(isFull) > 0 && total > 1 && count(isFull) < total) return OrderReport::Some;
    for (const auto& join : area.Joins()) {
        const TorvQDTable* empty = filledUp(*join);
        const auto disturbs = [&](const TorvQDJoin& other) {
            const bool preserves = filledUp(other) && filledUp(other) != empty;
            return &other != join && empty && touches(other, empty) && !preserves;
        };
        if (count(disturbs) > 0) return OrderReport::Some;
    }
    return OrderReport::None;
}

/// A join that closes a circle, with the join of the line that its conditions go to.
struct Circle {
    bool hasOuter = false;  // one of the two is an outer join
    bool isOuterLine = false;
};

Circle outerCircle(const Writing& writing) {
    const std::vector<const TorvQDTable*>& order = writing.tables;
    Circle found;
    for (const TorvQDJoin* join : writing.circles) {
        const auto place1 = std::find(order.begin(), order.end(), join->Table1);
        const auto place2 = std::find(order.begin(), order.end(), join->Table2);
        const TorvQDJoin* line = writing.broughtBy.value(place1 < place2 ? *place2 : *place1);
        const bool outerLine = line->KindOfJoin != klInnerJoin;
        found.isOuterLine = found.isOuterLine || outerLine;
        found.hasOuter = found.hasOuter || outerLine || join->KindOfJoin != klInnerJoin;
    }
    return found;
}

}  // namespace

Promise promiseOf(TorvQueryBuilder& builder) {
    const Writing writing = writingOf(builder);
    Promise promise;
    if (builder.KeepMeaning()) {
        const Circle circle = outerCircle(writing);
        if (circle.hasOuter) promise.lost = QStringLiteral("an outer join is part of a circle");
        promise.mayReport = circle.hasOuter && !circle.isOuterLine;
    } else if (!writing.circles.isEmpty()) {
        promise.lost = QStringLiteral("a circle names a table twice");
    } else if (isTakenForAnother(writing)) {
        promise.lost = QStringLiteral("a table is taken for one with its name as alias");
    } else if (const QStringList names = invalidOutputNames(builder); !names.isEmpty()) {
        promise.lost = QStringLiteral("an output name is no name in SQL");
        // What stands behind a comma is read as a column.
        promise.mayReport = names.join(QString()).contains(u',');
    } else if (hasUnwrittenName(builder)) {
        promise.lost =
            QStringLiteral("a computed column has its field's name, which is not written");
        promise.mayReport = true;
    }
    if (!promise.mayReport) promise.reported = promise.lost;
    if (builder.KeepMeaning() || !promise.lost.isEmpty()) return promise;
    switch (orderOfOuterJoins(*builder.WorkArea, writing)) {
    case OrderReport::None: break;
    case OrderReport::Some:
        promise.reported = QStringLiteral("the order of outer joins matters");
        break;
    case OrderReport::Open: promise.mayReport = true; break;
    }
    return promise;
}

QString changedByWriting(TorvQueryBuilder& loaded) {
    if (loaded.KeepMeaning()) return {};
    for (const TorvQDJoin* join : writingOf(loaded).swapped) {
        for (const TorvQDLink* link : loaded.WorkArea->linksOf(join)) {
            const QString text = link->operatorText();
            if (orv::mirroredOperator(text) != text) {
                return QStringLiteral("the sides of %1 are written the other way round").arg(text);
            }
        }
    }
    return {};
}

QString difference(const QStringList& expected, const QStringList& actual) {
    if (expected == actual) return {};
    QStringList lines;
    QStringList unmatched = actual;
    for (const QString& line : expected) {
        const qsizetype at = unmatched.indexOf(line);
        if (at < 0) {
            lines << "  - " + line;
        } else {
            unmatched.removeAt(at);
        }
    }
    for (const QString& line : unmatched) lines << "  + " + line;
    if (lines.isEmpty()) lines << QStringLiteral("  (another order)") << expected << actual;
    return lines.join(u'\n');
}

}  // namespace orvtest
