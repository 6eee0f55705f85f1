// SPDX-License-Identifier: MIT
// The editor in place of a criteria panel, and what is typed there.
#include "criteria/ORVQDConditionEditor.h"
#include "criteria/ORVQDWherePanel.h"
#include "toolkit/Services.h"

#include <QKeyEvent>
#include <QPointer>

namespace {

// Shown once the event is over: inside a loss of focus or a drop no box can be waited for. It is
// forgotten when the panel dies.
void queueTypeMessage(TorvQDWherePanel* panel) {
    const auto show = [panel] {
        orv::guarded([panel] {
            orv::showMessage({panel, QStringLiteral("Type mismatch in expression"),
                              QStringLiteral("Error!"), orv::MessageIcon::Exclamation,
                              orv::MessageButtons::Ok});
        });
    };
    QMetaObject::invokeMethod(panel, show, Qt::QueuedConnection);
}

}  // namespace

void TorvQDWherePanel::editText(const TorvQDControl& element) {
    if (m_editor) m_editor->open(element);
}

void TorvQDWherePanel::commitEdit() {
    if (m_editor) m_editor->commit();
}

void TorvQDWherePanel::discardEdit() {
    if (m_editor) m_editor->discard();
}

void TorvQDWherePanel::HideFieldList() {
    commitEdit();
}

bool TorvQDWherePanel::isEditing() const {
    return m_editor && m_editor->isOpen();
}

void TorvQDWherePanel::repositionEditor() {
    if (m_editor) m_editor->fit();
}

// What does not fit stays; the row is laid out in any case, as its elements made room for the
// editor. The types are checked before anybody is told of the change.
void TorvQDWherePanel::storeText(const TorvQDControl& element, const QString& text) {
    TorvQDWhereRow& row = *element.Row;
    QString& stored = *row.textOf(element.Kind);
    bool fits = true;
    const auto store = [&] {
        stored = text;
        row.Changed(false);
        fits = CheckTypeMisMatch(text, element);
        row.Valid = fits;
    };
    const QPointer<TorvQDWherePanel> self(this);
    if (stored == text) {
        store();
        relay();
    } else {
        edit(store);
    }
    if (self && !fits) queueTypeMessage(this);
}

// --- handlers ---

void TorvQDWherePanel::SetFieldText() {
    if (m_editor && !m_editor->isFieldListOpen()) m_editor->commit();
}

void TorvQDWherePanel::SetBoundText() {
    if (m_editor) m_editor->followText();
}

void TorvQDWherePanel::KeyDownOnFieldText(QKeyEvent* Event) {
    if (isEditing() && m_editor->memo().keyDown(*Event)) Event->accept();
}

void TorvQDWherePanel::KeyPressOnFieldText(QKeyEvent* Event) {
    if (isEditing() && TMemoEx::isSwallowed(*Event)) Event->accept();
}

void TorvQDWherePanel::InsertField() {
    if (m_editor) m_editor->showFieldList();
}

void TorvQDWherePanel::SetFieldFromList(QWidget* NewFocus) {
    if (isEditing() && NewFocus != &m_editor->memo()) m_editor->leaveTo(NewFocus);
}

void TorvQDWherePanel::DblClickOnFieldList(const QString& Name) {
    if (isEditing()) m_editor->insertField(Name);
}

void TorvQDWherePanel::KeyUpOnFieldList(int Key) {
    if (isEditing() && Key == Qt::Key_Escape) m_editor->hideFieldList();
}
