// SPDX-License-Identifier: MIT
#include "window/OpenEditor.h"

#include "criteria/ORVQDFieldEdit.h"
#include "criteria/ORVQDFieldList.h"
#include "querybuilder/ORVQDWindow.h"
#include "workarea/ORVQDFieldSearch.h"

#include <QApplication>
#include <QLineEdit>

#include <utility>

namespace orvquery {

namespace {

// What is typed to find something is no part of a query.
bool isSearch(const QWidget* widget) {
    if (qobject_cast<const TEditEx*>(widget) != nullptr) return true;
    for (const QObject* each = widget; each != nullptr; each = each->parent()) {
        if (dynamic_cast<const orv::FieldList*>(each) != nullptr) return true;
    }
    return false;
}

}  // namespace

OpenEditor::OpenEditor(TorvQueryBuilder& builder) : m_builder(builder) {
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { focusChanged(now); });
    // An editor that stays in sight may have been read.
    connect(&builder, &TorvQueryBuilder::StatementChanged, this, [this] { m_isTyped = false; });
}

OpenEditor::~OpenEditor() = default;

// Popups and other windows end no edit, and neither does the list of fields.
void OpenEditor::focusChanged(QWidget* now) {
    if (now == nullptr || now == m_editor || now->window() != m_builder.window()) return;
    if (isSearch(now)) return;
    if (m_editor) disconnect(m_editor, nullptr, this, nullptr);
    m_editor.clear();
    const bool wasTyped = std::exchange(m_isTyped, false);
    if (m_builder.isAncestorOf(now)) {
        if (auto* line = qobject_cast<QLineEdit*>(now)) {
            m_editor = now;
            connect(line, &QLineEdit::textChanged, this, &OpenEditor::typed);
        } else if (auto* memo = qobject_cast<TMemoEx*>(now)) {
            m_editor = now;
            connect(memo, &TMemoEx::textChanged, this, &OpenEditor::typed);
        }
    }
    if (wasTyped) Q_EMIT edited();
}

void OpenEditor::typed() {
    m_isTyped = true;
    Q_EMIT edited();
}

QString OpenEditor::text() const {
    if (!m_editor || !m_isTyped || !m_editor->isVisibleTo(m_builder.window())) return {};
    if (const auto* memo = qobject_cast<const TMemoEx*>(m_editor.data())) {
        return memo->isChanged() ? memo->text() : QString();
    }
    const auto* line = qobject_cast<const QLineEdit*>(m_editor.data());
    return line != nullptr && line->isModified() ? line->text() : QString();
}

}  // namespace orvquery
