// SPDX-License-Identifier: MIT
// What the host and the program do in a random session, and what is looked at besides the rules.
#include "data/SqlText.h"
#include "support/PageRules.h"
#include "support/RandomSession.h"

#include <QTabWidget>

#include <algorithm>
#include <stdexcept>

namespace orvtest {

namespace {

constexpr int mostTables = 8;

const QStringList statements = {
    "SELECT T.A FROM T",
    "SELECT T.A, U.X FROM T, U WHERE T.B = 1 AND U.Y LIKE 'x%' ORDER BY U.X DESC",
    "SELECT T.A FROM T INNER JOIN U ON (T.A = U.A) AND (T.B = U.X)",
    ("SELECT E.SALARY, SUM(D.BUDGET) AS S FROM EMPLOYEE E LEFT JOIN DEPT D "
     "ON E.DEPT_NO = D.DEPT_NO GROUP BY E.SALARY HAVING SUM(D.BUDGET) > 5"),
    "SELECT * FROM WIDE, \"my table\"",
    "SELECT A.W1, B.W2 FROM WIDE A FULL JOIN WIDE B ON A.W1 = B.W2 WHERE A.W3 > -5",
    "SELECT X.A FROM T X JOIN T Y ON X.A = Y.B JOIN T Z ON Y.B = Z.C",
    "SELECT COUNT(*), T.A FROM T, GONE WHERE EXISTS (SELECT 1 FROM U) GROUP BY T.A",
    "SELECT P.R1, T.A FROM T, PROC(1, T.B) P WHERE P.R2 = 'x'",
    "SELECT PROC.R1 FROM PROC(:X, 'it''s') JOIN U ON U.X = PROC.R2",
    "UPDATE T SET A = 1",
};

const QStringList tables = {"T",        "U",   "EMPLOYEE", "DEPT", "ORDERS",
                            "my table", "S.T", "WIDE",     "PROC"};

// Without the report of the last load, which is not restored.
QStringList stateLines(const QByteArray& json) {
    QJsonObject state = QJsonDocument::fromJson(json).object();
    state.remove(QStringLiteral("report"));
    return QString::fromUtf8(QJsonDocument(state).toJson()).split(u'\n');
}

}  // namespace

// Inside a question of the control.
void RandomSession::answerHost() {
    if (m_dice.chance(20)) (void)errorOf([&] { (void)m_on.builder.GetSQLStatment(); });
    if (m_dice.chance(3)) {
        const QString error = errorOf([&] { m_on.builder.Clear(); });
        if (error != "LoadSQL is running") m_complaint = "Clear is not refused in a question";
    }
    beAwkward();
}

void RandomSession::addSessionTables(Host& host) {
    host.add("WIDE", {"W1", "W2", "W3", "W4", "W5", "W6", "W7", "W8", "W9", "X1", "X2"});
    host.addProc(
        "PROC", {"R1", "R2"},
        TParams(
            {{"X", ftInteger, ptInput, 5}, {"R2", ftString, ptInput}, {"Z", ftFloat, ptOutput}}));
}

void RandomSession::enterValue(TorvQDSProc& proc, TorvQDListItem* row) {
    static const QList<QVariant> values = {{},
                                           QVariant::fromValue(nullptr),
                                           5,
                                           -1.5,
                                           "it's",
                                           true,
                                           QDate(2024, 2, 3),
                                           QVariant::fromValue(orv::SqlText{"T.A"}),
                                           QVariant::fromValue(orv::SqlText{})};
    const QVariant& value = values[m_dice.below(int(values.size()))];
    note("  value " + TorvQDSProc::valueText(value, row->FieldType, true));
    proc.setParameter(row, value);
}

void RandomSession::addTable() {
    if (area().TablesCount() >= mostTables) return deleteTable();
    const QString name = m_dice.pick(tables);
    note("AddTable " + name);
    if (name == "PROC") {
        m_on.addProc(name);
    } else {
        m_on.addTable(name);
    }
}

void RandomSession::deleteTable() {
    TorvQDTable* box = anyTable();
    if (!box) return;
    note("DeleteTable " + box->GetAlias());
    m_on.builder.ListOfTables->DeleteTable(box);
}

void RandomSession::clearAll() {
    note("Clear");
    m_on.builder.Clear();
}

void RandomSession::load() {
    const QString text = m_dice.pick(statements);
    note("LoadSQL " + text);
    m_on.builder.LoadSQL(text);
}

void RandomSession::restore() {
    if (m_states.isEmpty() || m_dice.chance(50))
        m_states << Saved{m_on.builder.SaveState(), m_loose};
    note("RestoreState");
    const Saved saved = m_states[m_dice.below(int(m_states.size()))];
    while (m_states.size() > 5) m_states.removeFirst();
    m_loose += saved.loose;
    m_on.builder.RestoreState(saved.state);
}

// What was undone and redone is as it was, and any step may be the one that is left.
void RandomSession::undo() {
    m_recorder->record();
    if (!m_undoStack.canUndo()) return;
    note("undo " + m_undoStack.undoText());
    m_loose += m_everLoose;
    const QByteArray before = orv::editedState(m_on.builder);
    const int disturbances = m_disturbances;
    m_undoStack.undo();
    m_undoStack.redo();
    const bool isAsBefore = orv::editedState(m_on.builder) == before;
    if (!isAsBefore && m_services.errors.isEmpty() && m_disturbances == disturbances) {
        m_complaint = "what was undone and redone is not as it was";
    }
    for (int steps = m_dice.below(4); steps > 0 && m_undoStack.canUndo(); --steps) {
        m_undoStack.undo();
    }
    if (m_dice.chance(30)) m_undoStack.redo();
}

void RandomSession::zoom() {
    const qreal zoom = m_dice.chance(50) ? 1 : m_dice.between(20, 420) / 100.0;
    note(QStringLiteral("zoom %1").arg(zoom));
    area().setZoom(zoom);
}

void RandomSession::arrangeOrFit() {
    const bool arranges = m_dice.chance(50);
    note(arranges ? "arrange" : "fit");
    if (arranges) {
        area().arrange();
    } else {
        area().fit();
    }
}

void RandomSession::changeOption() {
    TorvQDWorkAreaOptions& options = *m_on.builder.WorkAreaOptions;
    const bool on = m_dice.chance(50);
    switch (m_dice.below(6)) {
    case 0: {
        const int points = m_dice.between(6, 14);
        note(QStringLiteral("font of %1 points").arg(points));
        options.SetFont(QFont("Arial", points));
        keepToMinimums();
        return;
    }
    case 1: options.SetHideSelection(on); break;
    case 2: options.SetDragFieldName(on); break;
    case 3: options.SetFlat(on); break;
    case 4: options.SetShowFieldsType(on); break;
    default: options.SetTableBorder(TBorderKind(m_dice.below(4))); break;
    }
    note("option");
}

// Another font may leave boxes that were sized below its minimums, to which a restored state keeps.
void RandomSession::keepToMinimums() {
    constexpr int mostRowsOfNewBox = 6;
    for (TorvQDTable* box : area().tablesByCreation()) {
        box->SetWidth(box->Width);
        if (box->VisibleCount != std::min(int(box->Items.size()), mostRowsOfNewBox)) {
            box->SetHeight(box->Height + box->ItemHeight);
        }
    }
}

void RandomSession::tick() {
    TorvQDTable* box = anyTable();
    if (!box || box->Items.empty()) return addTable();
    TorvQDListItem* item = box->Items[std::size_t(m_dice.below(int(box->Items.size())))].get();
    note("tick " + box->GetAlias() + u'.' + item->Name);
    box->toggle(item);
}

void RandomSession::changeGrid() {
    TorvQDSelectGrid& grid = *m_on.grid();
    switch (m_dice.below(4)) {
    case 0:
        note("Validate");
        (void)m_on.builder.Validate();
        break;
    case 1:
        note("DISTINCT");
        m_on.builder.SelectPanel->SetDistinct(m_dice.chance(50) ? -1 : 0);
        break;
    case 2:
        note("tail");
        m_on.builder.setTailText(m_dice.pick({"", "LIMIT 5"}));
        break;
    default: {
        orv::OutputColumns columns = grid.columns();
        if (columns.empty()) return addTable();
        const int column = m_dice.below(int(columns.size()));
        note(QStringLiteral("name of column %1").arg(column));
        columns[std::size_t(column)].name = m_dice.pick({"N", "A", "a b"});
        grid.setColumns(columns);
        grid.refreshView();
        break;
    }
    }
}

void RandomSession::addLinks() {
    TorvQDTable* first = anyTable();
    TorvQDTable* second = anyTable();
    if (!first || first == second || first->Items.empty() || second->Items.empty()) {
        return addTable();
    }
    TorvQDListItem* row1 = first->Items[std::size_t(m_dice.below(int(first->Items.size())))].get();
    TorvQDListItem* row2 =
        second->Items[std::size_t(m_dice.below(int(second->Items.size())))].get();
    note("AddLink " + first->GetAlias() + u'.' + row1->Name + " to " + second->GetAlias() + u'.' +
         row2->Name);
    TorvQDLink* link = area().AddLink(first, second, row1, row2);
    if (link && m_dice.chance(50)) link->setBendPoints({anyPoint(), anyPoint()});
}

void RandomSession::callBox() {
    TorvQDTable* box = anyTable();
    if (!box) return addTable();
    note("call of " + box->GetAlias());
    switch (m_dice.below(7)) {
    case 0: box->SetExpand(box->Expanded ? 0 : -1); break;
    case 1: box->UnlinkTable(); break;
    case 2: box->SetFieldState(m_dice.chance(50) ? 2 : 0); break;
    case 3: box->SetWidth(m_dice.between(1, 400)); break;
    case 4: box->SetHeight(m_dice.between(1, 400)); break;
    case 5: box->SetLeft(m_dice.between(0, 6000)); break;
    default: area().cancelGesture(); break;
    }
}

void RandomSession::keepMeaning() {
    note("KeepMeaning");
    m_on.builder.setKeepMeaning(!m_on.builder.KeepMeaning());
}

// --- on the pages ---

void RandomSession::usePages() {
    if (m_held) return release();
    m_pages.act();
}

// --- a host that is no help ---

// What happens while the user is in the middle of something.
void RandomSession::disturb() {
    if (m_isQuiet || std::exchange(m_isDisturbing, true)) return;
    ++m_disturbances;
    note("  meanwhile");
    const QString error = anyErrorOf([&] {
        switch (m_dice.below(24)) {
        case 0: return clearAll();
        case 1: return load();
        case 2: return m_on.builder.LoadSQL(m_on.builder.GetSQLStatment());
        case 3: return restore();
        case 4: return deleteTable();
        case 5: return addTable();
        case 6: {
            TorvQDTable* box = anyTable();
            note("alias");
            if (box) area().renameTable(box, m_dice.pick({"N", "T", "Q1", "ZZ"}));
            return;
        }
        case 7: return m_on.builder.CommitPendingEdits();
        case 8: return m_on.builder.PageCtrl->setCurrentIndex(m_dice.below(4));
        case 9: {
            TOperatorList all;
            orv::fillOperators(all);
            note("setOperators");
            return m_on.builder.setOperators(all);
        }
        case 10: return changeGrid();
        case 11: return addLinks();
        case 12: {
            TorvQDLink* link = anyLink();
            note("RemoveLink");
            if (link) area().RemoveLink(link, m_dice.chance(50));
            return;
        }
        case 13: return m_dice.chance(50) ? zoom() : arrangeOrFit();
        case 14: return changeOption();
        case 15: return callBox();
        case 16: {
            TorvQDLink* link = m_dice.chance(50) ? anyLink() : nullptr;
            note("selection");
            if (link) return area().selectObject(link);
            return area().selectObject(m_dice.chance(70) ? anyTable() : nullptr);
        }
        case 17: note("an event loop"); return settle();
        case 18:
            note("undo");
            m_loose += m_everLoose;
            return m_undoStack.undo();
        case 19: return keepMeaning();
        default: return tick();
        }
    });
    if (error != "(no error)") note("  raised: " + error);
    m_isDisturbing = false;
}

void RandomSession::disturbAtChange() {
    if (m_dice.chance(2)) disturb();
    mayRaise();
}

void RandomSession::mayRaise() {
    if (m_isQuiet || !m_dice.chance(2)) return;
    ++m_disturbances;
    note("  raises");
    switch (m_dice.below(3)) {
    case 0: throw orv::Error(QStringLiteral("raised by the host"));
    case 1: throw std::runtime_error("raised by the host");
    default: throw 5;
    }
}

void RandomSession::beAwkward() {
    if (m_dice.chance(3)) disturb();
    mayRaise();
}

// Behind what the control itself does then.
void RandomSession::beAwkwardAtNotices() {
    area().OnAddTable = [this, tell = area().OnAddTable](QObject* sender, QObject* added) {
        if (auto* box = qobject_cast<TorvQDTable*>(added)) watchMouseAndKeys(*box);
        tell(sender, added);
        mayRaise();
    };
    area().OnAddLink = [this](QObject*, QObject* added) {
        if (auto* link = qobject_cast<TorvQDLink*>(added)) watchMouseAndKeys(*link);
        beAwkward();
    };
    area().OnRemoveTable = [this, tell = area().OnRemoveTable](QObject* sender, QObject* removed) {
        tell(sender, removed);
        mayRaise();
    };
    area().OnRemoveLink = [this](QObject*, QObject*) { mayRaise(); };
    area().OnSelectionLink = [this](QObject*, TorvQDTable*, TorvQDTable*, TorvQDListItem*,
                                    TorvQDListItem*, bool) { beAwkward(); };
    orv::setErrorHandler([this](const QString& text) {
        m_services.errors << text;
        beAwkward();
    });
}

void RandomSession::watchMouseAndKeys(TorvQDFloatObject& object) {
    object.OnMouseDown = object.OnMouseUp = [this](QObject*, Qt::MouseButton, Qt::KeyboardModifiers,
                                                   int, int) { beAwkward(); };
    object.OnMouseMove = [this](QObject*, Qt::KeyboardModifiers, int, int) { mayRaise(); };
    object.OnKeyDown =
        object.OnKeyUp = [this](QObject*, int&, Qt::KeyboardModifiers) { beAwkward(); };
}

// --- ticks and columns ---

QHash<QString, bool> RandomSession::columnsOfFields() {
    QHash<QString, bool> result;
    for (const orv::OutputColumn& column : m_on.grid()->columns()) {
        const std::optional<PageField> field = m_on.builder.resolveField(column.source);
        if (!field) continue;
        bool& isAggregated = result[field->qualifiedName()];
        isAggregated = isAggregated || !orv::isBlank(column.aggregate);
    }
    return result;
}

QSet<QString> RandomSession::unknownSources() {
    QSet<QString> sources;
    for (const orv::OutputColumn& column : m_on.grid()->columns()) {
        if (!m_on.builder.resolveField(column.source)) sources.insert(column.source);
    }
    return sources;
}

// An aggregate that comes or goes leaves the tick of its field alone, and so does a box whose
// fields columns have named before.
void RandomSession::watchTicks(const QHash<QString, bool>& before, const QSet<QString>& unknown) {
    const QHash<QString, bool> now = columnsOfFields();
    for (const QString& source : unknown) {
        const std::optional<PageField> field = m_on.builder.resolveField(source);
        if (field) m_loose.insert(field->qualifiedName());
    }
    QSet<QString> loose;
    const QSet<QString> different = looseFields(m_on.builder);
    for (const QString& name : different) {
        if (before.value(name) || now.value(name) || m_loose.contains(name)) loose.insert(name);
    }
    m_loose = loose;
}

void RandomSession::renameLoose(const QString& alias, const QString& old) {
    QSet<QString> renamed;
    for (const QString& name : std::as_const(m_loose)) {
        const bool isOld = name.startsWith(old + u'.');
        renamed.insert(isOld ? alias + name.mid(old.size()) : name);
    }
    m_loose = renamed;
}

// --- states ---

// Conditions keep their operators while the host has emptied the list, which no other control has.
QString RandomSession::brokenState() {
    if (m_on.builder.Operators->Count() == 0) return {};
    const QByteArray saved = m_on.builder.SaveState();
    HostedBuilder other(m_on.builder.KeepMeaning());
    other.builder.setWorkAreaOptions(*m_on.builder.WorkAreaOptions);
    other.builder.setOperators(*m_on.builder.Operators);
    const QString error = errorOf([&] { other.builder.RestoreState(saved); });
    if (error != "(no error)") return "the saved state cannot be read: " + error;
    const QStringList before = stateLines(saved);
    const QStringList after = stateLines(other.builder.SaveState());
    if (after == before) return brokenWayBack(saved);
    qsizetype line = 0;
    while (line < before.size() && line < after.size() && before[line] == after[line]) ++line;
    return "the restored state differs: " + before.value(line) + " became " + after.value(line);
}

// Where meanings are kept, what is complete and can be written is loaded without a finding.
QString RandomSession::brokenWayBack(const QByteArray& saved) const {
    if (saved.contains(PageHand::oddWord.toUtf8())) return {};
    HostedBuilder other(true);
    addSessionTables(other.host);
    other.builder.setOperators(*m_on.builder.Operators);
    other.builder.RestoreState(saved);
    for (const orv::Finding& finding : other.builder.Validate()) {
        if (!finding.what.startsWith("Nothing links this")) return {};
    }
    QString text;
    if (other.grid()->columns().empty()) return {};
    const QString error = errorOf([&] { text = other.builder.GetSQLStatment(); });
    if (error != "(no error)") return {};
    HostedBuilder second(true);
    addSessionTables(second.host);
    second.builder.setOperators(*m_on.builder.Operators);
    second.builder.LoadSQL(text);
    // A typed function that the list of aggregates lacks is an expression when it is loaded: then
    // it may be told of the grouping, and of nothing else.
    const auto isUnlisted = [&](const orv::OutputColumn& column) {
        return !orv::isBlank(column.aggregate) &&
               !other.grid()->AgrFuncs->contains(column.aggregate);
    };
    const auto& columns = other.grid()->columns();
    const bool mayLoseGroups = std::any_of(columns.begin(), columns.end(), isUnlisted);
    for (const orv::Finding& finding : second.builder.LoadReport()) {
        if (mayLoseGroups && finding.what.startsWith("No column has an aggregate")) continue;
        return "loading the statement is told of: " + finding.text + ": " + finding.what + u'\n' +
               text;
    }
    return {};
}

}  // namespace orvtest
