// SPDX-License-Identifier: MIT
// What the host is asked, and the mouse, keys and drags that it hears of.
#include "contract/DiagramEvents.h"
#include "diagram/Orvqdlnkprop.h"
#include "querybuilder/FaultPaths.h"
#include "querybuilder/ORVQDOpersEditor.h"

#include <QCheckBox>
#include <QComboBox>

namespace orvtest {

namespace {

using By = FaultPath::By;

// --- the hand ---

void key(Scene& on, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    on.key(key, modifiers);
}

void select(Scene& on, TorvQDFloatObject* object) {
    on.area()->selectObject(object);
}

QPoint closeButtonOf(const TorvQDTable& box) {
    const TRect buttons = box.toView(box.GetButtonRect());
    return {buttons.Right - 5, (buttons.Top + buttons.Bottom) / 2};
}

/// Deletes of links are done when the event is over.
void handlePosted(Scene& on) {
    if (on.builder) QCoreApplication::sendPostedEvents(on.area(), CMDELETELINK);
}

/// Drags the row T.B to the second row of WIDE. A drag runner that is there already is that of the
/// host, which is asked first.
void dragRow(Scene& on) {
    const QPoint target = Scene::rowOf(*on.table("WIDE"), 2);
    orv::DragRunner host;
    const auto hand = [&](QDrag& drag) {
        const QPointer<QDrag> running(&drag);
        on.dragTo(drag, target);
        on.drop(drag, target);
        if (host) return host(drag);
        return running ? Qt::CopyAction : Qt::IgnoreAction;
    };
    host = orv::setDragRunner(hand);
    const QPoint at = Scene::rowOf(*on.box, 1);
    on.press(at);
    on.move(at + QPoint(15, 5));
    on.release(at + QPoint(15, 5));
    orv::setDragRunner(host);
}

/// Drags the end of the link from U.X to a row of WIDE.
void dragEnd(Scene& on) {
    const QPoint at = on.link->GetPoint(on.link->GetCountPoints() - 1) - QPoint(2, 0);
    const QPoint target = Scene::rowOf(*on.table("WIDE"), 1);
    on.press(at);
    on.move(at - QPoint(20, 20));
    on.move(target);
    on.release(target);
}

/// Something of another program, over the empty part of the view.
class Foreign {
public:
    Foreign() { m_data.setText("DEPT"); }
    void enter(Scene& on) { send<QDragEnterEvent>(on); }
    void move(Scene& on) { send<QDragMoveEvent>(on); }
    // Qt knows where a drop goes from the drag that has come there before.
    void drop(Scene& on) {
        enter(on);
        send<QDropEvent>(on);
    }

private:
    template <typename Event>
    void send(Scene& on) {
        if (!on.builder) return;
        Event event(QPoint(30, 30), Qt::CopyAction, &m_data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(on.view(), &event);
    }

    QMimeData m_data;
};

void linkByKeys(Scene& on) {
    key(on, Qt::Key_Insert);
    key(on, Qt::Key_PageUp, Qt::ControlModifier);
    key(on, Qt::Key_Down);
    key(on, Qt::Key_Insert);
}

// --- the scene ---

void lookAtRow(Scene& on) {
    selectBox(on);
    key(on, Qt::Key_Down);
}

void freeEverything(Scene& on) {
    select(on, nullptr);
}

/// A procedure in front of the others, with a parameter in its third row.
void addProcedure(Scene& on) {
    on.host.addProc("P", {"A", "B"}, TParams({{"X", ftInteger, ptInput}}));
    TorvQDTable* proc =
        on.builder->ListOfTables->AddProc("P", on.host.table("P"), on.host.params("P"));
    proc->MoveTable(20 - proc->Left, 380 - proc->Top);
    proc->SetCurrentItem(proc->Items.back().get());
}

// --- what the host hears ---

void armTableFields(Scene& on, RecordedServices&, const Strike& strike) {
    on.builder->OnGetTableFields = [strike, answer = on.builder->OnGetTableFields](
                                       const QString& name, std::unique_ptr<TDataSet>& dataSet,
                                       std::unique_ptr<TParams>& params) {
        strike(nullptr);
        answer(name, dataSet, params);
    };
}

void armTable(Scene& on, RecordedServices&, const Strike& strike) {
    on.builder->OnAddRemoveTable = [strike](QObject*, TorvQDTable*, TAddRemove, bool& allowed) {
        strike(&allowed);
    };
}

template <TAddRemove wanted>
void armLink(Scene& on, RecordedServices&, const Strike& strike) {
    on.builder->OnAddRemoveLink = [strike](QObject*, TorvQDLink*, TAddRemove action,
                                           bool& allowed) {
        if (action == wanted) strike(&allowed);
    };
}

void armParameter(Scene& on, RecordedServices&, const Strike& strike) {
    on.builder->OnEnterProcParameter = [strike](QObject*, TorvQDTable* table, TorvQDListItem* row) {
        const QPointer<TorvQDTable> box(table);
        const int version = table->rowsVersion();
        strike(nullptr);
        auto* proc = qobject_cast<TorvQDSProc*>(box.data());
        if (proc && proc->rowsVersion() == version) proc->setParameter(row, 5);
    };
}

void armStartDrag(Scene& on, RecordedServices&, const Strike& strike) {
    on.builder->OnStartDrag = [strike](QObject*, const orv::DraggedField&) { strike(nullptr); };
}

void armEndDrag(Scene& on, RecordedServices&, const Strike& strike) {
    on.builder->OnEndDrag = [strike](QObject*, QObject*, int, int) { strike(nullptr); };
}

void armDragRunner(Scene&, RecordedServices&, const Strike& strike) {
    orv::setDragRunner([strike](QDrag& drag) {
        const QPointer<QDrag> running(&drag);
        strike(nullptr);
        return running ? Qt::CopyAction : Qt::IgnoreAction;
    });
}

void armDragOver(Scene& on, RecordedServices&, const Strike& strike) {
    on.builder->OnDragOver = [strike](QObject*, QObject*, int, int, bool& accept) {
        accept = true;
        strike(nullptr);
    };
}

// The host adds a table, as hosts do.
void armDragDrop(Scene& on, RecordedServices&, const Strike& strike) {
    on.builder->OnDragOver = [](QObject*, QObject*, int, int, bool& accept) { accept = true; };
    on.builder->OnDragDrop = [&on, strike](QObject*, QObject*, int, int) {
        strike(nullptr);
        if (on.builder) on.builder->ListOfTables->AddTable("DEPT", on.host.table("DEPT"));
    };
}

template <auto event>
void armMouse(TorvQDFloatObject& object, const Strike& strike) {
    object.*event = [strike](auto&&...) { strike(nullptr); };
}

template <auto event>
void armBox(Scene& on, RecordedServices&, const Strike& strike) {
    armMouse<event>(*on.box, strike);
}

template <auto event>
void armLine(Scene& on, RecordedServices&, const Strike& strike) {
    armMouse<event>(*on.link, strike);
}

void armDialog(Scene&, RecordedServices& services, const Strike& strike) {
    services.onDialog = [strike](QDialog& shown) {
        const QPointer<TdlgLnkProp> dialog(qobject_cast<TdlgLnkProp*>(&shown));
        strike(nullptr);
        if (!dialog) return int(QDialog::Rejected);
        dialog->btnLeftOuter->setChecked(true);
        dialog->btnOK->click();
        return int(QDialog::Accepted);
    };
}

void armOperatorsDialog(Scene&, RecordedServices& services, const Strike& strike) {
    services.onDialog = [strike](QDialog& shown) {
        const QPointer<TorvQDOperatorsPropertyDlg> dialog(
            qobject_cast<TorvQDOperatorsPropertyDlg*>(&shown));
        strike(nullptr);
        if (!dialog) return int(QDialog::Rejected);
        dialog->btnOK->click();
        return int(QDialog::Accepted);
    };
}

const QString joined = "SELECT D.BUDGET FROM DEPT D JOIN EMPLOYEE E ON D.DEPT_NO = E.DEPT_NO";

}  // namespace

std::vector<FaultPath> diagramFaultPaths() {
    constexpr int veto = FaultPath::Asks | FaultPath::Keeps;
    constexpr int some = FaultPath::Asks;
    constexpr int none = FaultPath::None;
    constexpr int keeps = FaultPath::Keeps;
    const auto still = [](Scene&) {};
    const auto load = [](Scene& on) { on.builder->LoadSQL(joined); };
    return {
        // A program asks for it.
        {"table fields, LoadSQL", By::Call, none, still, armTableFields, load},
        {"veto of a table, AddTable", By::Call, veto, still, armTable,
         [](Scene& on) { addDept(on); }},
        {"veto of a table, AddTable before a link", By::Call, veto, selectLink, armTable,
         [](Scene& on) { addDept(on); }},
        {"veto of a table, AddProc", By::Call, veto, still, armTable,
         [](Scene& on) {
             on.builder->ListOfTables->AddProc("Q", on.host.table("DEPT"), TParams());
         }},
        {"veto of a table, LoadSQL", By::Call, some, still, armTable, load},
        {"veto of a table, DeleteTable", By::Call, veto, still, armTable,
         [](Scene& on) { on.builder->ListOfTables->DeleteTable(on.box); }},
        {"veto of a table, CloseTable", By::Call, veto, still, armTable,
         [](Scene& on) { on.box->CloseTable(); }},
        {"veto of a link, AddLink", By::Call, veto, still, armLink<araAdd>,
         [](Scene& on) { addLinkToWide(on); }},
        {"veto of a link, LoadSQL", By::Call, some, still, armLink<araAdd>, load},
        {"veto of a link, deleteLink", By::Call, veto, still, armLink<araRemove>,
         [](Scene& on) { on.area()->deleteLink(on.link); }},
        {"veto of a link's end, replaceLink", By::Call, veto, still, armLink<araRemove>,
         [](Scene& on) {
             on.area()->replaceLink(on.link, false, on.table("WIDE")->GetFieldItem("W1"));
         }},
        {"veto of a new link, replaceLink", By::Call, veto, still, armLink<araAdd>,
         [](Scene& on) {
             on.area()->replaceLink(on.link, false, on.table("WIDE")->GetFieldItem("W1"));
         }},
        {"parameter, SetCheck", By::Call, none, addProcedure, armParameter,
         [](Scene& on) { on.table("P")->Items.back()->SetCheck(true); }},
        {"dialog of a link, editLink", By::Call, none, still, armDialog,
         [](Scene& on) { on.area()->editLink(on.link); }},
        {"dialog of operators, ModifyOperators", By::Call, none, still, armOperatorsDialog,
         [](Scene& on) { on.builder->ModifyOperators(); }},

        // A user does.
        {"veto of a table, close button", By::Hand, veto, selectBox, armTable,
         [](Scene& on) {
             const QPoint at = closeButtonOf(*on.box);
             on.press(at);
             on.release(at);
         }},
        {"veto of a table, Delete key", By::Hand, veto, selectBox, armTable,
         [](Scene& on) { key(on, Qt::Key_Delete); }},
        {"veto of a table, menu", By::Hand, veto, selectBox, armTable,
         [](Scene& on) { chooseFromMenu(on, Scene::captionOf(*on.box), "Delete table"); }},
        {"veto of a table, message", By::Hand, veto, still, armTable,
         [](Scene& on) {
             TorvDiagramEvent message(CMCLOSETABLE, on.box);
             QCoreApplication::sendEvent(on.area(), &message);
         }},
        {"veto of a table, foreign drop", By::Hand, veto,
         [](Scene& on) {
             on.builder->OnDragOver = [](QObject*, QObject*, int, int, bool& accept) {
                 accept = true;
             };
             on.builder->OnDragDrop = [&on](QObject*, QObject*, int, int) { addDept(on); };
         },
         armTable, [](Scene& on) { Foreign().drop(on); }},
        {"veto of a link, Delete key", By::Hand, veto, selectLink, armLink<araRemove>,
         [](Scene& on) {
             key(on, Qt::Key_Delete);
             handlePosted(on);
         }},
        {"veto of a link, menu", By::Hand, veto, selectLink, armLink<araRemove>,
         [](Scene& on) {
             chooseFromMenu(on, on.middleOfLink(), "Delete link");
             handlePosted(on);
         }},
        {"veto of a link, dragged row", By::Hand, veto, selectBox, armLink<araAdd>, dragRow},
        {"veto of a link, Insert", By::Hand, some, lookAtRow, armLink<araAdd>, linkByKeys},
        {"veto of a link's end, dragged end", By::Hand, veto, selectLink, armLink<araRemove>,
         dragEnd},
        {"veto of a new link, dragged end", By::Hand, veto, selectLink, armLink<araAdd>, dragEnd},
        {"parameter, double click", By::Hand, none, addProcedure, armParameter,
         [](Scene& on) {
             const QPoint at = Scene::rowOf(*on.table("P"), 2);
             on.press(at);
             on.release(at);
             QTest::mouseDClick(on.view(), Qt::LeftButton, {}, at);
             on.release(at);
         }},
        {"parameter, Space", By::Hand, none, addProcedure, armParameter,
         [](Scene& on) { on.key(Qt::Key_Space, {}, " "); }},
        {"dialog of a link, F2", By::Hand, none, selectLink, armDialog,
         [](Scene& on) { key(on, Qt::Key_F2); }},
        {"dialog of a link, double click", By::Hand, none, selectLink, armDialog,
         [](Scene& on) {
             const QPoint at = on.middleOfLink();
             on.press(at);
             on.release(at);
             if (on.builder) QTest::mouseDClick(on.view(), Qt::LeftButton, {}, at);
             on.release(at);
         }},
        {"question about a link, Delete key", By::Hand, keeps, selectLink, armMessage,
         [](Scene& on) {
             key(on, Qt::Key_Delete);
             handlePosted(on);
         }},

        // Drags.
        {"start of a drag", By::Hand, keeps, selectBox, armStartDrag, dragRow},
        {"drag", By::Hand, none, selectBox, armDragRunner, dragRow},
        {"end of a drag", By::Hand, none, selectBox, armEndDrag, dragRow},
        {"foreign drag that enters", By::Hand, FaultPath::QtGoesOn, still, armDragOver,
         [](Scene& on) {
             Foreign drag;
             drag.enter(on);
             drag.move(on);
         }},
        {"foreign drag that moves", By::Hand, none,
         [](Scene& on) {
             on.builder->OnDragOver = [](QObject*, QObject*, int, int, bool& accept) {
                 accept = true;
             };
             Foreign().enter(on);
         },
         armDragOver, [](Scene& on) { Foreign().move(on); }},
        {"foreign drop", By::Hand, none, still, armDragDrop, [](Scene& on) { Foreign().drop(on); }},

        // Mouse and keys.
        {"OnMouseDown of a box", By::Hand, none, selectBox, armBox<&TorvQDFloatObject::OnMouseDown>,
         [](Scene& on) {
             const QPoint at = Scene::captionOf(*on.box);
             on.press(at);
             on.move(at + QPoint(20, 0));
             on.release(at + QPoint(20, 0));
         }},
        {"OnMouseMove of a box", By::Hand, none, selectBox, armBox<&TorvQDFloatObject::OnMouseMove>,
         [](Scene& on) { on.move(Scene::captionOf(*on.box), Qt::NoButton); }},
        {"OnMouseMove of a dragged box", By::Hand, none, selectBox,
         armBox<&TorvQDFloatObject::OnMouseMove>,
         [](Scene& on) {
             const QPoint at = Scene::captionOf(*on.box);
             on.press(at);
             on.move(at + QPoint(20, 0));
             on.move(at + QPoint(30, 0));
             on.release(at + QPoint(30, 0));
         }},
        {"OnMouseUp of a box", By::Hand, none, selectBox, armBox<&TorvQDFloatObject::OnMouseUp>,
         [](Scene& on) {
             const QPoint at = Scene::captionOf(*on.box);
             on.press(at);
             on.move(at + QPoint(20, 0));
             on.release(at + QPoint(20, 0));
         }},
        {"OnKeyDown of a box", By::Hand, none, selectBox, armBox<&TorvQDFloatObject::OnKeyDown>,
         [](Scene& on) { on.key(Qt::Key_B, {}, "b"); }},
        {"OnKeyUp of a box", By::Hand, none, selectBox, armBox<&TorvQDFloatObject::OnKeyUp>,
         [](Scene& on) { QTest::keyRelease(on.area(), Qt::Key_Down); }},
        {"OnMouseDown of a link", By::Hand, none, selectLink,
         armLine<&TorvQDFloatObject::OnMouseDown>,
         [](Scene& on) {
             const QPoint at = on.link->GetPoint(2);
             on.press(at);
             on.move(at + QPoint(20, 20));
             on.release(at + QPoint(20, 20));
         }},
        {"OnMouseMove of a link", By::Hand, none, selectLink,
         armLine<&TorvQDFloatObject::OnMouseMove>,
         [](Scene& on) { on.move(on.middleOfLink(), Qt::NoButton); }},
        {"OnMouseUp of a link", By::Hand, none, selectLink, armLine<&TorvQDFloatObject::OnMouseUp>,
         [](Scene& on) {
             const QPoint at = on.link->GetPoint(2);
             on.press(at);
             on.move(at + QPoint(20, 20));
             on.release(at + QPoint(20, 20));
         }},
        {"OnKeyDown of a link", By::Hand, none, selectLink, armLine<&TorvQDFloatObject::OnKeyDown>,
         [](Scene& on) { key(on, Qt::Key_M, Qt::ControlModifier); }},
        {"OnKeyUp of a link", By::Hand, none, selectLink, armLine<&TorvQDFloatObject::OnKeyUp>,
         [](Scene& on) { QTest::keyRelease(on.area(), Qt::Key_Down); }},
        {"OnMouseMove of a free box", By::Hand, none, freeEverything,
         armBox<&TorvQDFloatObject::OnMouseMove>,
         [](Scene& on) { on.move(Scene::captionOf(*on.box), Qt::NoButton); }},
    };
}

}  // namespace orvtest
