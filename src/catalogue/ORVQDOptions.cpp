// SPDX-License-Identifier: MIT
#include "catalogue/ORVQDOptions.h"

#include <QGuiApplication>
#include <QPalette>

namespace {

// The form toolkits' customary size; boxes are laid out for it.
constexpr int defaultFontPointSize = 8;

}  // namespace

TorvQDWorkAreaOptions::TorvQDWorkAreaOptions(QObject* parent)
    : TPersistent(parent), m_font(QStringLiteral("Arial"), defaultFontPointSize) {}

template <typename Value>
void TorvQDWorkAreaOptions::store(Value& member, const Value& value) {
    if (member == value) return;
    member = value;
    if (changed) changed();
}

void TorvQDWorkAreaOptions::SetHideSelection(bool Value) {
    store(m_hideSelection, Value);
}

void TorvQDWorkAreaOptions::SetDragFieldName(bool Value) {
    store(m_dragFieldName, Value);
}

void TorvQDWorkAreaOptions::SetFlat(bool Value) {
    store(m_flat, Value);
}

void TorvQDWorkAreaOptions::SetShowFieldsType(bool Value) {
    store(m_showFieldsType, Value);
}

void TorvQDWorkAreaOptions::SetFlatCaptionBtns(bool Value) {
    store(m_flatCaptionBtns, Value);
}

void TorvQDWorkAreaOptions::SetTableBorder(TBorderKind Value) {
    store(m_tableBorder, Value);
}

void TorvQDWorkAreaOptions::SetFont(const QFont& Value) {
    if (m_font == Value) return;
    m_font = Value;
    _ChangeFont();
}

void TorvQDWorkAreaOptions::SetTableColor(const QColor& Value) {
    store(m_tableColor, Value);
}

QColor TorvQDWorkAreaOptions::GetProcedureColor() const {
    return m_procedureColor.isValid() ? m_procedureColor
                                      : QGuiApplication::palette().color(QPalette::ToolTipBase);
}

void TorvQDWorkAreaOptions::SetProcedureColor(const QColor& Value) {
    store(m_procedureColor, Value);
}

void TorvQDWorkAreaOptions::AssignTo(TPersistent* Dest) const {
    auto* options = qobject_cast<TorvQDWorkAreaOptions*>(Dest);
    if (!options) {
        TPersistent::AssignTo(Dest);
        return;
    }
    options->SetHideSelection(m_hideSelection);
    options->SetDragFieldName(m_dragFieldName);
    options->SetFlat(m_flat);
    options->SetShowFieldsType(m_showFieldsType);
    options->SetFlatCaptionBtns(m_flatCaptionBtns);
    options->SetTableBorder(m_tableBorder);
    options->SetFont(m_font);
    options->SetTableColor(m_tableColor);
    options->SetProcedureColor(m_procedureColor);
}

void TorvQDWorkAreaOptions::_ChangeFont() {
    if (const TSetFontEvent handler = OnChangeFont) handler(m_font);
}

TorvQDConditionOptions::TorvQDConditionOptions(QObject* parent) : TPersistent(parent) {}

template <typename Value>
void TorvQDConditionOptions::store(Value& member, const Value& value) {
    if (member == value) return;
    member = value;
    if (changed) changed();
}

void TorvQDConditionOptions::SetSelectRow(bool Value) {
    store(m_selectRow, Value);
}

void TorvQDConditionOptions::SetBtnsStyle(TbtnStyle Value) {
    store(m_btnsStyle, Value);
}

void TorvQDConditionOptions::SetActiveRowColor(const QColor& Value) {
    store(m_activeRowColor, Value);
}

void TorvQDConditionOptions::AssignTo(TPersistent* Dest) const {
    auto* options = qobject_cast<TorvQDConditionOptions*>(Dest);
    if (!options) {
        TPersistent::AssignTo(Dest);
        return;
    }
    options->SetSelectRow(m_selectRow);
    options->SetBtnsStyle(m_btnsStyle);
    options->SetActiveRowColor(m_activeRowColor);
}
