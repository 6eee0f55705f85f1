// SPDX-License-Identifier: MIT
// What the host is told of afterwards: the notices of the work area, and the signals.
#include "contract/DiagramEvents.h"
#include "querybuilder/FaultPaths.h"
#include "querybuilder/ORVQDUndo.h"
#include "toolkit/ExitEdit.h"

#include <QUndoStack>

namespace orvtest {

namespace {

using By = FaultPath::By;

void tickSome(Scene& on) {
    on.box->toggle(on.box->GetFieldItem("A"));
    on.table("U")->toggle(on.table("U")->GetFieldItem("X"));
}

void tickSomeAndUndo(Scene& on) {
    tickSome(on);
    on.undo->undo();
}

// Changes of the layout become a step when the event is over.
void moveTheBox(Scene& on) {
    selectBox(on);
    on.key(Qt::Key_Right, Qt::ControlModifier);
    runLoopOnce();
}

QPoint checkSquareOf(const TorvQDTable& box, int row) {
    const TRect rect = box.GetItemRect(box.Items[std::size_t(row)].get());
    return {rect.Left + 5, rect.Top + 8};
}

void click(Scene& on, const QPoint& point) {
    on.press(point);
    on.release(point);
}

/// The host's part of a notice comes behind the control's own.
template <auto event>
void armNotice(Scene& on, RecordedServices&, const Strike& strike) {
    on.area()->*event = [strike, own = on.area()->*event](auto&&... arguments) {
        if (own) own(arguments...);
        strike(nullptr);
    };
}

void armLayoutChanged(Scene& on, RecordedServices&, const Strike& strike) {
    QObject::connect(on.builder, &TorvQueryBuilder::LayoutChanged, on.builder,
                     [strike = Strike(strike)] { strike(nullptr); });
}

void armLoadReported(Scene& on, RecordedServices&, const Strike& strike) {
    QObject::connect(on.builder, &TorvQueryBuilder::LoadReported, on.builder,
                     [strike = Strike(strike)](const orv::Findings& findings) {
                         const qsizetype count = findings.size();
                         strike(nullptr);
                         QCOMPARE(findings.size(), count);
                     });
}

const QString simple = "SELECT D.BUDGET FROM DEPT D";
const QString joined = "SELECT D.BUDGET FROM DEPT D JOIN T ON D.DEPT_NO = T.A";
const QString withFindings = "SELECT D.BUDGET FROM DEPT D, NOWHERE N LIMIT 5";
const QString withWrongJoin = "SELECT D.BUDGET FROM DEPT D JOIN U ON D.NOTHING = NOWHERE.X";

QByteArray otherState() {
    HostedBuilder other;
    other.addTable("T");
    other.addTable("DEPT");
    other.tick("T", "C");
    return other.builder.SaveState();
}

// Two links of one join, and one of another.
QByteArray linkedState() {
    HostedBuilder other;
    TorvQDTable* t = other.addTable("T");
    TorvQDTable* u = other.addTable("U");
    TorvQDTable* dept = other.addTable("DEPT");
    TorvQDWorkArea& area = *other.builder.WorkArea;
    area.AddLink(t, u, t->GetFieldItem("A"), u->GetFieldItem("X"));
    area.AddLink(u, dept, u->GetFieldItem("Y"), dept->GetFieldItem("DEPT_NO"));
    area.AddLink(t, u, t->GetFieldItem("B"), u->GetFieldItem("Y"));
    other.tick("T", "C");
    other.tick("U", "X");
    return other.builder.SaveState();
}

void typeAlias(Scene& on) {
    selectBox(on);
    on.key(Qt::Key_F2);
    on.view()->findChild<orv::ExitEdit*>()->setText("OTHER");
}

void pressReturn(QWidget* editor) {
    QTest::keyClick(editor, Qt::Key_Return);
}

using Area = TorvQDWorkArea;

std::vector<FaultPath> areaNotices() {
    constexpr int none = FaultPath::None;
    const auto still = [](Scene&) {};
    const auto load = [](Scene& on) { on.builder->LoadSQL(simple); };
    const auto restore = [](Scene& on) { on.builder->RestoreState(otherState()); };
    const auto close = [](Scene& on) { on.builder->ListOfTables->DeleteTable(on.box); };
    return {
        {"OnCheckItem, click", By::Hand, none, selectBox, armNotice<&Area::OnCheckItem>,
         [](Scene& on) { click(on, checkSquareOf(*on.box, 0)); }},
        {"OnCheckItem, all by click", By::Hand, none, selectBox, armNotice<&Area::OnCheckItem>,
         [](Scene& on) {
             const TRect bounds = on.box->toView(on.box->GetBoundsRect());
             click(on, {bounds.Left + 8, bounds.Top + 10});
         }},
        {"OnCheckItem, all by key", By::Hand, none, selectBox, armNotice<&Area::OnCheckItem>,
         [](Scene& on) { on.key(Qt::Key_Space, Qt::ControlModifier); }},
        {"OnCheckItem, toggle", By::Call, none, still, armNotice<&Area::OnCheckItem>,
         [](Scene& on) { on.box->toggle(on.box->GetFieldItem("A")); }},
        {"OnCheckItem, SetFieldState", By::Call, none, still, armNotice<&Area::OnCheckItem>,
         [](Scene& on) { on.box->SetFieldState(2); }},
        {"OnCheckItem, DeleteTable", By::Call, none, tickSome, armNotice<&Area::OnCheckItem>,
         close},
        {"OnAddTable, AddTable", By::Call, none, still, armNotice<&Area::OnAddTable>, addDept},
        {"OnAddTable, LoadSQL", By::Call, none, still, armNotice<&Area::OnAddTable>, load},
        {"OnAddTable, RestoreState", By::Call, none, still, armNotice<&Area::OnAddTable>, restore},
        {"OnRemoveTable, DeleteTable", By::Call, none, tickSome, armNotice<&Area::OnRemoveTable>,
         close},
        {"OnRemoveTable, Delete key", By::Hand, none, selectBox, armNotice<&Area::OnRemoveTable>,
         [](Scene& on) { on.key(Qt::Key_Delete); }},
        {"OnChangeAlias, renameTable", By::Call, none, tickSome, armNotice<&Area::OnChangeAlias>,
         [](Scene& on) { on.area()->renameTable(on.box, "OTHER"); }},
        {"OnChangeAlias, F2", By::Hand, none, typeAlias, armNotice<&Area::OnChangeAlias>,
         [](Scene& on) { pressReturn(on.view()->findChild<orv::ExitEdit*>()); }},
        {"OnChangeAlias, CommitPendingEdits", By::Call, none, typeAlias,
         armNotice<&Area::OnChangeAlias>, [](Scene& on) { on.builder->CommitPendingEdits(); }},
        {"OnAddLink, AddLink", By::Call, none, still, armNotice<&Area::OnAddLink>,
         [](Scene& on) { addLinkToWide(on); }},
        {"OnAddLink, LoadSQL", By::Call, none, still, armNotice<&Area::OnAddLink>,
         [](Scene& on) { on.builder->LoadSQL(joined); }},
        {"OnAddLink, RestoreState", By::Call, none, still, armNotice<&Area::OnAddLink>,
         [](Scene& on) { on.builder->RestoreState(linkedState()); }},
        {"OnRemoveLink, deleteLink", By::Call, none, still, armNotice<&Area::OnRemoveLink>,
         [](Scene& on) { on.area()->deleteLink(on.link); }},
        {"OnRemoveLink, UnlinkTable", By::Call, none, [](Scene& on) { addLinkToWide(on); },
         armNotice<&Area::OnRemoveLink>, [](Scene& on) { on.box->UnlinkTable(); }},
        {"OnRemoveLink, DeleteTable", By::Call, none, [](Scene& on) { addLinkToWide(on); },
         armNotice<&Area::OnRemoveLink>, close},
        {"OnRemoveLink, Ctrl+Delete", By::Hand, none, selectBox, armNotice<&Area::OnRemoveLink>,
         [](Scene& on) { on.key(Qt::Key_Delete, Qt::ControlModifier); }},
        {"OnSelectionLink, selectObject", By::Call, none, still, armNotice<&Area::OnSelectionLink>,
         [](Scene& on) { on.area()->selectObject(on.link); }},
        {"OnSelectionLink, deselecting", By::Call, none, selectLink,
         armNotice<&Area::OnSelectionLink>, [](Scene& on) { on.area()->selectObject(nullptr); }},
        {"OnSelectionLink, another box", By::Call, none, selectLink,
         armNotice<&Area::OnSelectionLink>,
         [](Scene& on) { on.area()->selectObject(on.table("U")); }},
        {"OnSelectionLink, AddTable", By::Call, none, selectLink, armNotice<&Area::OnSelectionLink>,
         addDept},
        {"OnSelectionLink, RemoveLink", By::Call, none, selectLink,
         armNotice<&Area::OnSelectionLink>,
         [](Scene& on) { on.area()->RemoveLink(on.link, true); }},
        {"OnSelectionLink, attachLink", By::Call, none, selectLink,
         armNotice<&Area::OnSelectionLink>,
         [](Scene& on) { on.area()->attachLink(on.link, true, on.box->GetFieldItem("C")); }},
        {"OnSelectionLink, DeleteTable", By::Call, none, selectLink,
         armNotice<&Area::OnSelectionLink>, close},
        {"OnSelectionLink, click", By::Hand, none, selectBox, armNotice<&Area::OnSelectionLink>,
         [](Scene& on) { click(on, on.middleOfLink()); }},
        {"OnSelectionLink, Alt+PageDown", By::Hand, none, selectBox,
         armNotice<&Area::OnSelectionLink>,
         [](Scene& on) { on.key(Qt::Key_PageDown, Qt::AltModifier); }},
        {"OnSelectionLink, Ctrl+PageDown", By::Hand, none, selectLink,
         armNotice<&Area::OnSelectionLink>,
         [](Scene& on) { on.key(Qt::Key_PageDown, Qt::ControlModifier); }},
        {"OnSelectionLink, menu Rename", By::Hand, none, selectLink,
         armNotice<&Area::OnSelectionLink>,
         [](Scene& on) { chooseFromMenu(on, Scene::captionOf(*on.box), "Rename table"); }},
        {"OnAddTable, undo", By::Hand, FaultPath::Twice, close, armNotice<&Area::OnAddTable>,
         [](Scene& on) { on.undo->undo(); }},
        {"contentsCleared, undo", By::Hand, FaultPath::Twice, tickSome,
         armNotice<&Area::contentsCleared>, [](Scene& on) { on.undo->undo(); }},
        {"contentsCleared, Clear", By::Call, none, tickSome, armNotice<&Area::contentsCleared>,
         [](Scene& on) { on.builder->Clear(); }},
        {"contentsCleared, LoadSQL", By::Call, none, tickSome, armNotice<&Area::contentsCleared>,
         load},
        {"contentsCleared, RestoreState", By::Call, none, tickSome,
         armNotice<&Area::contentsCleared>, restore},
    };
}

// Told by the signals.
std::vector<FaultPath> signalNotices() {
    constexpr int none = FaultPath::None;
    const auto still = [](Scene&) {};
    const auto told = armStatementChanged;
    const auto close = [](Scene& on) { on.builder->ListOfTables->DeleteTable(on.box); };
    return {
        {"StatementChanged, AddTable", By::Call, none, still, told, addDept},
        {"StatementChanged, DeleteTable", By::Call, none, tickSome, told, close},
        {"StatementChanged, AddLink", By::Call, none, still, told,
         [](Scene& on) { addLinkToWide(on); }},
        {"StatementChanged, deleteLink", By::Call, none, still, told,
         [](Scene& on) { on.area()->deleteLink(on.link); }},
        {"StatementChanged, attachLink", By::Call, none, selectLink, told,
         [](Scene& on) { on.area()->attachLink(on.link, true, on.box->GetFieldItem("C")); }},
        {"StatementChanged, replaceLink", By::Call, none, selectLink, told,
         [](Scene& on) {
             on.area()->replaceLink(on.link, false, on.table("WIDE")->GetFieldItem("W1"));
         }},
        {"StatementChanged, UnlinkTable", By::Call, none, [](Scene& on) { addLinkToWide(on); },
         told, [](Scene& on) { on.box->UnlinkTable(); }},
        {"StatementChanged, Clear", By::Call, none, tickSome, told,
         [](Scene& on) { on.builder->Clear(); }},
        {"StatementChanged, LoadSQL", By::Call, none, tickSome, told,
         [](Scene& on) { on.builder->LoadSQL(simple); }},
        {"StatementChanged, LoadSQL with findings", By::Call, none, tickSome, told,
         [](Scene& on) { on.builder->LoadSQL(withFindings); }},
        {"StatementChanged, RestoreState", By::Call, none, tickSome, told,
         [](Scene& on) { on.builder->RestoreState(otherState()); }},
        {"StatementChanged, setTailText", By::Call, none, still, told,
         [](Scene& on) { on.builder->setTailText("LIMIT 5"); }},
        {"StatementChanged, setKeepMeaning", By::Call, none, still, told,
         [](Scene& on) { on.builder->setKeepMeaning(!on.builder->KeepMeaning()); }},
        {"StatementChanged, setOperators", By::Call, none, still, told,
         [](Scene& on) {
             TOperatorList all;
             orv::fillOperators(all);
             on.builder->setOperators(all);
         }},
        {"StatementChanged, renameTable", By::Call, none, tickSome, told,
         [](Scene& on) { on.area()->renameTable(on.box, "OTHER"); }},
        {"StatementChanged, toggle", By::Call, none, still, told,
         [](Scene& on) { on.box->toggle(on.box->GetFieldItem("A")); }},
        {"StatementChanged, SetFieldState", By::Call, none, still, told,
         [](Scene& on) { on.box->SetFieldState(2); }},
        {"StatementChanged, selectObject", By::Call, none, selectBox, told,
         [](Scene& on) { on.area()->selectObject(on.table("U")); }},
        {"StatementChanged, muteLink", By::Call, none, still, told,
         [](Scene& on) { on.area()->muteLink(on.link, true); }},
        {"StatementChanged, click on a tick", By::Hand, none, selectBox, told,
         [](Scene& on) { click(on, checkSquareOf(*on.box, 0)); }},
        {"StatementChanged, press on a box behind", By::Hand, none, selectBox, told,
         [](Scene& on) { click(on, Scene::captionOf(*on.table("U"))); }},
        {"StatementChanged, box behind is dragged", By::Hand, none, selectBox, told,
         [](Scene& on) {
             const QPoint at = Scene::captionOf(*on.table("U"));
             on.press(at);
             on.move(at + QPoint(20, 20));
             on.release(at + QPoint(20, 20));
         }},
        {"StatementChanged, Ctrl+PageDown", By::Hand, none, selectBox, told,
         [](Scene& on) { on.key(Qt::Key_PageDown, Qt::ControlModifier); }},
        {"StatementChanged, menu Rename of a box behind", By::Hand, none, selectBox, told,
         [](Scene& on) { chooseFromMenu(on, Scene::captionOf(*on.table("U")), "Rename table"); }},
        {"StatementChanged, Delete key", By::Hand, none, selectBox, told,
         [](Scene& on) { on.key(Qt::Key_Delete); }},
        {"StatementChanged, alias and Enter", By::Hand, none, typeAlias, told,
         [](Scene& on) { pressReturn(on.view()->findChild<orv::ExitEdit*>()); }},
        {"StatementChanged, alias and press elsewhere", By::Hand, FaultPath::Twice, typeAlias, told,
         [](Scene& on) { click(on, Scene::captionOf(*on.table("U"))); }},
        {"StatementChanged, alias and Clear", By::Call, none, typeAlias, told,
         [](Scene& on) { on.builder->Clear(); }},
        {"StatementChanged, alias and AddTable", By::Call, FaultPath::Twice | FaultPath::Reports,
         typeAlias, told, addDept},
        {"StatementChanged, muting by key", By::Hand, none, selectLink, told,
         [](Scene& on) { on.key(Qt::Key_M, Qt::ControlModifier); }},
        {"StatementChanged, muting by menu", By::Hand, none, selectLink, told,
         [](Scene& on) { chooseFromMenu(on, on.middleOfLink(), "Mute link"); }},
        {"LayoutChanged, dragged box", By::Hand, none, selectBox, armLayoutChanged,
         [](Scene& on) {
             const QPoint at = Scene::captionOf(*on.box);
             on.press(at);
             on.move(at + QPoint(20, 20));
             on.release(at + QPoint(20, 20));
         }},
        {"LayoutChanged, moved by key", By::Hand, none, selectBox, armLayoutChanged,
         [](Scene& on) { on.key(Qt::Key_Right, Qt::ControlModifier); }},
        {"LayoutChanged, arrange", By::Hand, none, selectBox, armLayoutChanged,
         [](Scene& on) { on.area()->arrange(); }},
        {"StatementChanged, undo", By::Hand, none, tickSome, told,
         [](Scene& on) { on.undo->undo(); }},
        {"StatementChanged, redo", By::Hand, none, tickSomeAndUndo, told,
         [](Scene& on) { on.undo->redo(); }},
        {"LayoutChanged, undo", By::Hand, none, moveTheBox, armLayoutChanged,
         [](Scene& on) { on.undo->undo(); }},
        {"LoadReported", By::Call, none, still, armLoadReported,
         [](Scene& on) { on.builder->LoadSQL(withFindings); }},
        {"message about a join, LoadSQL", By::Call, none, still, armMessage,
         [](Scene& on) { on.builder->LoadSQL(withWrongJoin); }},
    };
}

}  // namespace

std::vector<FaultPath> noticeFaultPaths() {
    std::vector<FaultPath> paths = areaNotices();
    for (FaultPath& path : signalNotices()) paths.push_back(std::move(path));
    return paths;
}

}  // namespace orvtest
