// SPDX-License-Identifier: MIT
// What a form stores of the query builder: its options and its operators.
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"

void TorvQueryBuilder::setWorkAreaOptions(const TorvQDWorkAreaOptions& options) {
    WorkAreaOptions->Assign(&options);
}

void TorvQueryBuilder::setConditionOptions(const TorvQDConditionOptions& options) {
    ConditionOptions->Assign(&options);
}

void TorvQueryBuilder::setOperators(const TOperatorList& operators) {
    Operators->Assign(&operators);
}

QStringList TorvQueryBuilder::OperatorsList() const {
    return Operators->toStrings();
}

void TorvQueryBuilder::setOperatorsList(const QStringList& texts) {
    if (texts.isEmpty()) return;
    orv::guarded([&] { Operators->fromStrings(texts); });
}

void TorvQueryBuilder::resetOperatorsList() {
    TOperatorList defaults;
    orv::fillOperators(defaults);
    setOperators(defaults);
}

// --- the options one by one ---

bool TorvQueryBuilder::WorkAreaHideSelection() const {
    return WorkAreaOptions->GetHideSelection();
}

void TorvQueryBuilder::setWorkAreaHideSelection(bool hide) {
    WorkAreaOptions->SetHideSelection(hide);
}

bool TorvQueryBuilder::WorkAreaDragFieldName() const {
    return WorkAreaOptions->GetDragFieldName();
}

void TorvQueryBuilder::setWorkAreaDragFieldName(bool drag) {
    WorkAreaOptions->SetDragFieldName(drag);
}

bool TorvQueryBuilder::WorkAreaFlat() const {
    return WorkAreaOptions->GetFlat();
}

void TorvQueryBuilder::setWorkAreaFlat(bool flat) {
    WorkAreaOptions->SetFlat(flat);
}

bool TorvQueryBuilder::WorkAreaShowFieldsType() const {
    return WorkAreaOptions->GetShowFieldsType();
}

void TorvQueryBuilder::setWorkAreaShowFieldsType(bool show) {
    WorkAreaOptions->SetShowFieldsType(show);
}

bool TorvQueryBuilder::WorkAreaFlatCaptionBtns() const {
    return WorkAreaOptions->GetFlatCaptionBtns();
}

void TorvQueryBuilder::setWorkAreaFlatCaptionBtns(bool flat) {
    WorkAreaOptions->SetFlatCaptionBtns(flat);
}

TBorderKind TorvQueryBuilder::WorkAreaTableBorder() const {
    return WorkAreaOptions->GetTableBorder();
}

void TorvQueryBuilder::setWorkAreaTableBorder(TBorderKind border) {
    WorkAreaOptions->SetTableBorder(border);
}

QFont TorvQueryBuilder::WorkAreaFont() const {
    return WorkAreaOptions->GetFont();
}

void TorvQueryBuilder::setWorkAreaFont(const QFont& font) {
    WorkAreaOptions->SetFont(font);
}

QColor TorvQueryBuilder::WorkAreaTableColor() const {
    return WorkAreaOptions->GetTableColor();
}

void TorvQueryBuilder::setWorkAreaTableColor(const QColor& color) {
    WorkAreaOptions->SetTableColor(color);
}

QColor TorvQueryBuilder::WorkAreaProcedureColor() const {
    return WorkAreaOptions->GetProcedureColor();
}

void TorvQueryBuilder::setWorkAreaProcedureColor(const QColor& color) {
    WorkAreaOptions->SetProcedureColor(color);
}

void TorvQueryBuilder::resetWorkAreaProcedureColor() {
    WorkAreaOptions->ResetProcedureColor();
}

bool TorvQueryBuilder::ConditionSelectRow() const {
    return ConditionOptions->GetSelectRow();
}

void TorvQueryBuilder::setConditionSelectRow(bool select) {
    ConditionOptions->SetSelectRow(select);
}

TbtnStyle TorvQueryBuilder::ConditionBtnsStyle() const {
    return ConditionOptions->GetBtnsStyle();
}

void TorvQueryBuilder::setConditionBtnsStyle(TbtnStyle style) {
    ConditionOptions->SetBtnsStyle(style);
}

QColor TorvQueryBuilder::ConditionActiveRowColor() const {
    return ConditionOptions->GetActiveRowColor();
}

void TorvQueryBuilder::setConditionActiveRowColor(const QColor& color) {
    ConditionOptions->SetActiveRowColor(color);
}
