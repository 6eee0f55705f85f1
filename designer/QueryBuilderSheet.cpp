// SPDX-License-Identifier: MIT
#include "QueryBuilderSheet.h"

#include "querybuilder/ORVQDWindow.h"

#include <QStringList>
#include <QVariant>

namespace orvdesigner {

namespace {

constexpr const char* operatorsName = "OperatorsList";
constexpr const char* tabsHeightName = "TabsHeight";
constexpr const char* tailName = "TailText";
constexpr int firstTabsHeightPx = 100;

QStringList defaultOperators() {
    TOperatorList list;
    orv::fillOperators(list);
    return list.toStrings();
}

}  // namespace

QueryBuilderSheet::QueryBuilderSheet(TorvQueryBuilder* builder,
                                     QDesignerPropertySheetExtension* sheet, QObject* parent)
    : QObject(parent), m_builder(builder), m_sheet(sheet) {}

bool QueryBuilderSheet::is(const char* name, int index) const {
    return m_sheet->propertyName(index) == QLatin1String(name);
}

// The editor of operators hands over a plain list. From a form comes the designer's own type, whose
// empty list the control ignores.
void QueryBuilderSheet::setProperty(int index, const QVariant& value) {
    if (is(operatorsName, index) && value.metaType() == QMetaType::fromType<QStringList>()) {
        setOperators(value.toStringList());
    } else if (is(tabsHeightName, index) && value.toInt() == firstTabsHeightPx) {
        m_builder->resetTabsHeight();
    } else {
        m_sheet->setProperty(index, value);
    }
}

void QueryBuilderSheet::setOperators(const QStringList& texts) {
    if (texts.isEmpty()) {
        m_builder->Operators->Clear();
    } else {
        m_builder->setOperatorsList(texts);
    }
}

// To be undone, no operators are handed over as plainly as they came.
QVariant QueryBuilderSheet::property(int index) const {
    if (is(operatorsName, index) && m_builder->Operators->Count() == 0) return QStringList();
    return m_sheet->property(index);
}

bool QueryBuilderSheet::isChanged(int index) const {
    if (is(operatorsName, index)) {
        const QStringList texts = m_builder->OperatorsList();
        return !texts.isEmpty() && texts != defaultOperators();
    }
    if (is(tabsHeightName, index) && m_builder->TabsHeight() == firstTabsHeightPx) return false;
    if (is(tailName, index) && m_builder->TailText().isEmpty()) return false;
    return m_sheet->isChanged(index);
}

// --- as the designer's own sheet has it ---

int QueryBuilderSheet::count() const {
    return m_sheet->count();
}

int QueryBuilderSheet::indexOf(const QString& name) const {
    return m_sheet->indexOf(name);
}

QString QueryBuilderSheet::propertyName(int index) const {
    return m_sheet->propertyName(index);
}

QString QueryBuilderSheet::propertyGroup(int index) const {
    return m_sheet->propertyGroup(index);
}

void QueryBuilderSheet::setPropertyGroup(int index, const QString& group) {
    m_sheet->setPropertyGroup(index, group);
}

bool QueryBuilderSheet::hasReset(int index) const {
    return m_sheet->hasReset(index);
}

bool QueryBuilderSheet::reset(int index) {
    return m_sheet->reset(index);
}

bool QueryBuilderSheet::isVisible(int index) const {
    return m_sheet->isVisible(index);
}

void QueryBuilderSheet::setVisible(int index, bool visible) {
    m_sheet->setVisible(index, visible);
}

bool QueryBuilderSheet::isAttribute(int index) const {
    return m_sheet->isAttribute(index);
}

void QueryBuilderSheet::setAttribute(int index, bool attribute) {
    m_sheet->setAttribute(index, attribute);
}

void QueryBuilderSheet::setChanged(int index, bool changed) {
    m_sheet->setChanged(index, changed);
}

bool QueryBuilderSheet::isEnabled(int index) const {
    return m_sheet->isEnabled(index);
}

}  // namespace orvdesigner
