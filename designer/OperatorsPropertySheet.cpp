// SPDX-License-Identifier: MIT
#include "OperatorsPropertySheet.h"

#include "querybuilder/ORVQDWindow.h"

#include <QStringList>
#include <QVariant>

namespace orvdesigner {

namespace {

QStringList defaultOperators() {
    TOperatorList list;
    orv::fillOperators(list);
    return list.toStrings();
}

}  // namespace

OperatorsPropertySheet::OperatorsPropertySheet(TorvQueryBuilder* builder,
                                               QDesignerPropertySheetExtension* sheet,
                                               QObject* parent)
    : QObject(parent), m_builder(builder), m_sheet(sheet) {}

bool OperatorsPropertySheet::isOperators(int index) const {
    return m_sheet->propertyName(index) == QLatin1String("OperatorsList");
}

void OperatorsPropertySheet::setProperty(int index, const QVariant& value) {
    m_sheet->setProperty(index, value);
}

bool OperatorsPropertySheet::isChanged(int index) const {
    if (!isOperators(index)) return m_sheet->isChanged(index);
    const QStringList texts = m_builder->OperatorsList();
    return !texts.isEmpty() && texts != defaultOperators();
}

// --- as the designer's own sheet has it ---

int OperatorsPropertySheet::count() const {
    return m_sheet->count();
}

int OperatorsPropertySheet::indexOf(const QString& name) const {
    return m_sheet->indexOf(name);
}

QString OperatorsPropertySheet::propertyName(int index) const {
    return m_sheet->propertyName(index);
}

QString OperatorsPropertySheet::propertyGroup(int index) const {
    return m_sheet->propertyGroup(index);
}

void OperatorsPropertySheet::setPropertyGroup(int index, const QString& group) {
    m_sheet->setPropertyGroup(index, group);
}

bool OperatorsPropertySheet::hasReset(int index) const {
    return m_sheet->hasReset(index);
}

bool OperatorsPropertySheet::reset(int index) {
    return m_sheet->reset(index);
}

bool OperatorsPropertySheet::isVisible(int index) const {
    return m_sheet->isVisible(index);
}

void OperatorsPropertySheet::setVisible(int index, bool visible) {
    m_sheet->setVisible(index, visible);
}

bool OperatorsPropertySheet::isAttribute(int index) const {
    return m_sheet->isAttribute(index);
}

void OperatorsPropertySheet::setAttribute(int index, bool attribute) {
    m_sheet->setAttribute(index, attribute);
}

QVariant OperatorsPropertySheet::property(int index) const {
    return m_sheet->property(index);
}

void OperatorsPropertySheet::setChanged(int index, bool changed) {
    m_sheet->setChanged(index, changed);
}

bool OperatorsPropertySheet::isEnabled(int index) const {
    return m_sheet->isEnabled(index);
}

}  // namespace orvdesigner
