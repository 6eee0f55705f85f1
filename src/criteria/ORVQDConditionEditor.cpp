// SPDX-License-Identifier: MIT
#include "criteria/ORVQDConditionEditor.h"

#include "contract/IPagesHost.h"
#include "core/Text.h"
#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDWherePanel.h"

#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace orv {

namespace {

constexpr int roomForTypingPx = 8;

}  // namespace

ConditionEditor::ConditionEditor(TorvQDWherePanel& panel)
    : m_panel(panel),
      m_memo(new TMemoEx(panel.viewport())),
      m_list(new FieldList(panel.viewport())) {
    m_memo->setCompanion(m_list);
    m_memo->committed = [this] {
        m_list->discard();
        m_panel.SetFieldText();
    };
    m_memo->dropped = [this] { discard(); };
    m_memo->exited = [this](Qt::FocusReason, QWidget* newFocus) { leaveTo(newFocus); };
    m_memo->insertField = [this] { m_panel.InsertField(); };
    m_memo->changed = [this] { m_panel.SetBoundText(); };
    m_list->chosen = [this](const QString& name) { m_panel.DblClickOnFieldList(name); };
    m_list->cancelled = [this] { m_panel.KeyUpOnFieldList(Qt::Key_Escape); };
    m_list->exited = [this](QWidget* newFocus) { m_panel.SetFieldFromList(newFocus); };
}

// The two outlive this for a moment, and lose the focus in it.
ConditionEditor::~ConditionEditor() {
    if (m_memo) m_memo->disarm();
    if (m_list) m_list->disarm();
}

// --- opening and closing ---

void ConditionEditor::open(const TorvQDControl& given) {
    const ElementRef element(&given);
    const QPointer<TorvQDWherePanel> panel(&m_panel);
    const bool wasVisible = m_panel.isVisible();
    commit();
    if (!panel || panel->isVisible() != wasVisible) return;  // the host went to another page
    const TorvQDControl* control = element.get();
    const QString* text = control ? control->Row->textOf(control->Kind) : nullptr;
    if (!text) return;
    m_panel.showElement(*control);
    m_element = element;
    m_isOpen = true;
    m_memo->open(isBlank(*text) ? QString() : *text);
    if (!panel || !m_isOpen) return;
    followText();
}

void ConditionEditor::commit() {
    if (!std::exchange(m_isOpen, false)) return;
    const ElementRef element = std::exchange(m_element, {});
    const QPointer<TorvQDWherePanel> panel(&m_panel);
    const bool isChanged = m_memo->isChanged();
    const QString typed = m_memo->text();
    close();
    TorvQDControl* control = panel ? element.get() : nullptr;
    const QString* text = control ? control->Row->textOf(control->Kind) : nullptr;
    if (!text) {
        if (panel) m_panel.relay();
        return;
    }
    const QString trimmed = orvTrim(typed);
    const QString filled = trimmed.isEmpty() ? blankText() : trimmed;
    m_panel.storeText(*control, isChanged ? filled : *text);
}

void ConditionEditor::discard() {
    if (!std::exchange(m_isOpen, false)) return;
    const ElementRef element = std::exchange(m_element, {});
    const QPointer<TorvQDWherePanel> panel(&m_panel);
    close();
    if (!panel) return;
    if (TorvQDWhereRow* row = element.row()) row->Changed(false);  // its elements move back
    m_panel.relay();
}

// Both are disarmed before they are hidden; the panel gets the focus when one of them has it.
void ConditionEditor::close() {
    const QPointer<TMemoEx> memo = m_memo;
    m_list->discard();
    if (memo) memo->discard();
}

void ConditionEditor::leaveTo(QWidget* newFocus) {
    const QPointer<TorvQDWherePanel> panel(&m_panel);
    const QPointer<QWidget> there(newFocus);
    const bool isElsewhere = newFocus && !m_panel.isAncestorOf(newFocus);
    commit();
    if (panel && !isElsewhere && panel->isVisible()) panel->setFocus();
}

// --- the list of fields ---

void ConditionEditor::showFieldList() {
    const IPagesHost* host = m_panel.host();
    if (!m_isOpen || !host) return;
    placeList();
    m_list->open(*host);
}

bool ConditionEditor::isFieldListOpen() const {
    return m_list->isOpen();
}

void ConditionEditor::hideFieldList() {
    m_memo->setFocus();
    m_list->discard();
}

void ConditionEditor::insertField(const QString& qualifiedName) {
    m_memo->replaceSelection(qualifiedName);
    hideFieldList();
}

// --- where they lie ---

void ConditionEditor::fit() {
    if (!m_isOpen) return;
    TorvQDControl* control = m_element.get();
    if (!control || !control->Row->textOf(control->Kind)) return discard();
    m_panel.m_layout->ensure();
    TorvQDWhereRow& row = *control->Row;
    if (row.GetTopBound() < 0) return commit();  // its group was collapsed
    const QSize view = m_panel.viewport()->size();
    const int rowHeight = m_panel.rowHeight();
    m_memo->setFirstLineHeight(rowHeight);
    row.SetDimentionControls(row.GetLeftBound());
    const QSize wanted = m_memo->textSize() + QSize(roomForTypingPx, 0);
    m_size = wanted.expandedTo(QSize(control->Width, rowHeight)).boundedTo(view);
    row.OffsetControls(control->Kind + 1, control->Width - m_size.width());
    m_panel.setScrollRanges();
    place();
    m_panel.viewport()->update();
}

void ConditionEditor::place() {
    const TorvQDControl* control = m_isOpen ? m_element.get() : nullptr;
    if (!control || control->Row->GetTopBound() < 0) return;
    const QPoint at(control->Left, control->Row->GetTopBound());
    m_memo->setGeometry(QRect(at - m_panel.contentOffset(), m_size));
    if (m_list->isOpen()) placeList();
}

void ConditionEditor::placeList() {
    m_list->setGeometry(FieldList::rectBeside(m_memo->geometry(), m_panel.viewport()->rect()));
}

void ConditionEditor::followText() {
    fit();
    if (m_isOpen) scrollIn();
}

// As far to the left and up as it takes to see all of the editor, but not the start of it less.
void ConditionEditor::scrollIn() {
    const auto bring = [](QScrollBar& bar, int start, int end, int view) {
        if (end > view) bar.setValue(bar.value() + std::min(end - view, start));
        if (start < 0) bar.setValue(bar.value() + start);
    };
    const QRect text = m_memo->geometry();
    const QSize view = m_panel.viewport()->size();
    bring(*m_panel.horizontalScrollBar(), text.left(), text.left() + text.width(), view.width());
    bring(*m_panel.verticalScrollBar(), text.top(), text.top() + text.height(), view.height());
}

QSize ConditionEditor::contentExtent() const {
    const TorvQDControl* control = m_isOpen ? m_element.get() : nullptr;
    if (!control || control->Row->GetTopBound() < 0) return {};
    return {std::max(control->Left + m_size.width(), control->Row->rightBound()),
            control->Row->GetTopBound() + m_size.height()};
}

}  // namespace orv
