// SPDX-License-Identifier: MIT
#include "querybuilder/Faults.h"

#include <QUndoStack>

#include <stdexcept>

namespace orvtest {

namespace {

constexpr const char* raised = "raised by the host";

[[noreturn]] void raiseError(Scene&, QUndoStack&) {
    throw orv::Error(QString::fromLatin1(raised));
}

[[noreturn]] void raiseException(Scene&, QUndoStack&) {
    throw std::runtime_error(raised);
}

[[noreturn]] void raiseNumber(Scene&, QUndoStack&) {
    throw 5;
}

// --- calls of the control from within ---

void clear(Scene& on, QUndoStack&) {
    on.builder->Clear();
}

void clearAndWait(Scene& on, QUndoStack&) {
    on.builder->Clear();
    runLoopOnce();
    runLoopOnce();
}

// With the table's name: a bare one means none of two fields once the way adds the table again.
void load(Scene& on, QUndoStack&) {
    on.builder->LoadSQL("SELECT DEPT.BUDGET FROM DEPT");
}

void loadOwn(Scene& on, QUndoStack&) {
    on.builder->LoadSQL(on.builder->GetSQLStatment() + ' ');
}

void restore(Scene& on, QUndoStack&) {
    HostedBuilder other;
    other.addTable("T");
    other.tick("T", "C");
    on.builder->RestoreState(other.builder.SaveState());
}

void restoreOwn(Scene& on, QUndoStack&) {
    on.builder->RestoreState(on.builder->SaveState());
}

void deleteBox(Scene& on, QUndoStack&) {
    if (on.box) on.builder->ListOfTables->DeleteTable(on.box);
}

void deleteAllBoxes(Scene& on, QUndoStack&) {
    while (on.area()->TablesCount() > 0) {
        const int count = on.area()->TablesCount();
        on.builder->ListOfTables->DeleteTable(0);
        if (on.area()->TablesCount() == count) return;
    }
}

void deleteAllBoxesAndWait(Scene& on, QUndoStack& undo) {
    deleteAllBoxes(on, undo);
    runLoopOnce();
    runLoopOnce();
}

void addTable(Scene& on, QUndoStack&) {
    on.builder->ListOfTables->AddTable("EMPLOYEE", on.host.table("EMPLOYEE"));
}

void addLink(Scene& on, QUndoStack&) {
    TorvQDTable* other = on.table("U");
    if (!on.box || !other) return;
    on.area()->AddLink(on.box, other, on.box->GetFieldItem("C"), other->GetFieldItem("Y"));
}

void removeLink(Scene& on, QUndoStack&) {
    if (on.link) on.area()->RemoveLink(on.link, true);
}

void unlinkBox(Scene& on, QUndoStack&) {
    if (on.box) on.box->UnlinkTable();
}

void renameBox(Scene& on, QUndoStack&) {
    if (on.box) on.area()->renameTable(on.box, "QQ");
}

void tickRow(Scene& on, QUndoStack&) {
    if (on.box) on.box->toggle(on.box->GetFieldItem("E"));
}

void setOperators(Scene& on, QUndoStack&) {
    TOperatorList all;
    orv::fillOperators(all);
    on.builder->setOperators(all);
}

void setOptions(Scene& on, QUndoStack&) {
    on.builder->setWorkAreaFont(QFont("Arial", 12));
    on.builder->setWorkAreaShowFieldsType(true);
    on.builder->setConditionSelectRow(!on.builder->ConditionSelectRow());
    on.builder->setKeepMeaning(!on.builder->KeepMeaning());
}

void setTail(Scene& on, QUndoStack&) {
    on.builder->setTailText("LIMIT 7");
}

void selectOther(Scene& on, QUndoStack&) {
    on.area()->selectObject(on.table("WIDE"));
}

void selectNothing(Scene& on, QUndoStack&) {
    on.area()->selectObject(nullptr);
}

void selectLink(Scene& on, QUndoStack&) {
    if (on.link) on.area()->selectObject(on.link);
}

void askEverything(Scene& on, QUndoStack&) {
    (void)errorOf([&] { (void)on.builder->GetSQLStatment(); });
    (void)on.builder->SaveState();
    (void)on.builder->Validate();
    on.view()->grab();
}

void commit(Scene& on, QUndoStack&) {
    on.builder->CommitPendingEdits();
}

void changePage(Scene& on, QUndoStack&) {
    QTabWidget* pages = on.builder->PageCtrl;
    pages->setCurrentIndex((pages->currentIndex() + 1) % pages->count());
}

void cancelGesture(Scene& on, QUndoStack&) {
    on.area()->cancelGesture();
}

void arrange(Scene& on, QUndoStack&) {
    on.area()->arrange();
    on.area()->setZoom(1.5);
}

void editOperators(Scene& on, QUndoStack&) {
    on.builder->ModifyOperators();
}

void wait(Scene&, QUndoStack&) {
    runLoopOnce();
    runLoopOnce();
}

void closeWindow(Scene& on, QUndoStack&) {
    on.builder->close();
    runLoopOnce();
}

void undoStep(Scene&, QUndoStack& undo) {
    undo.undo();
}

void deleteBuilder(Scene& on, QUndoStack&) {
    delete on.builder;
}

void deleteBuilderAndWait(Scene& on, QUndoStack&) {
    on.builder->deleteLater();
    QCoreApplication::sendPostedEvents(on.builder, QEvent::DeferredDelete);
    runLoopOnce();
}

// --- error handlers ---

void clearInHandler(Scene& on) {
    (void)errorOf([&] { on.builder->Clear(); });
    runLoopOnce();
    runLoopOnce();
}

void deleteInHandler(Scene& on) {
    delete on.builder;
}

void raiseInHandler(Scene&) {
    throw orv::Error(QStringLiteral("raised by the error handler"));
}

using Kind = Fault::Kind;

const Fault faults[] = {
    {"Error", Kind::Raises, raiseError, raised},
    {"exception", Kind::Raises, raiseException, raised},
    {"number", Kind::Raises, raiseNumber, "Unknown error"},
    {"Error, and the handler clears", Kind::Raises, raiseError, raised, false, true,
     clearInHandler},
    {"Error, and the handler deletes the builder", Kind::Raises, raiseError, raised, true, true,
     deleteInHandler},
    {"Error, and the handler raises", Kind::Raises, raiseError, raised, false, true,
     raiseInHandler},
    {"refusal", Kind::Refuses, nullptr},
    {"Clear", Kind::Enters, clear},
    {"Clear and a loop", Kind::Enters, clearAndWait},
    {"LoadSQL", Kind::Enters, load},
    {"LoadSQL of the same", Kind::Enters, loadOwn},
    {"RestoreState", Kind::Enters, restore},
    {"RestoreState of the same", Kind::Enters, restoreOwn},
    {"DeleteTable", Kind::Enters, deleteBox},
    {"DeleteTable of all", Kind::Enters, deleteAllBoxes},
    {"DeleteTable of all and a loop", Kind::Enters, deleteAllBoxesAndWait},
    {"AddTable", Kind::Enters, addTable},
    {"AddLink", Kind::Enters, addLink},
    {"RemoveLink", Kind::Enters, removeLink},
    {"UnlinkTable", Kind::Enters, unlinkBox},
    {"renameTable", Kind::Enters, renameBox},
    {"toggle", Kind::Enters, tickRow},
    {"setOperators", Kind::Enters, setOperators},
    {"options", Kind::Enters, setOptions, "", false, false},
    {"setTailText", Kind::Enters, setTail},
    {"another box selected", Kind::Enters, selectOther},
    {"nothing selected", Kind::Enters, selectNothing},
    {"link selected", Kind::Enters, selectLink},
    {"questions", Kind::Enters, askEverything},
    {"CommitPendingEdits", Kind::Enters, commit},
    {"another page", Kind::Enters, changePage},
    {"cancelGesture", Kind::Enters, cancelGesture},
    {"arrange", Kind::Enters, arrange},
    {"ModifyOperators", Kind::Enters, editOperators},
    {"a loop", Kind::Enters, wait},
    {"window closed", Kind::Enters, closeWindow},
    {"undo", Kind::Enters, undoStep, "", false, false},
    {"builder deleted", Kind::Enters, deleteBuilder, "", true},
    {"builder deleted, and a loop", Kind::Enters, deleteBuilderAndWait, "", true},
};

}  // namespace

std::span<const Fault> allFaults() {
    return faults;
}

}  // namespace orvtest
