// SPDX-License-Identifier: MIT
#include "window/KeptOperators.h"

#include "core/Error.h"
#include "querybuilder/ORVQDWindow.h"
#include "text/KeptSettings.h"
#include "toolkit/Services.h"

#include <QCoreApplication>

namespace orvquery {

namespace {

const QString operatorsKey = QStringLiteral("operators");

}  // namespace

void restoreOperators(TorvQueryBuilder& builder) {
    const QStringList texts = keptSettings().value(operatorsKey).toStringList();
    if (texts.isEmpty()) return;
    TOperatorList kept;
    try {
        kept.fromStrings(texts);
    } catch (const orv::Error& error) {
        orv::reportError(QCoreApplication::translate(
                             "orvquery", "The operators of the last session are not used.\n%1")
                             .arg(error.Message()));
        return;
    }
    builder.setOperators(kept);
}

void keepOperators(const TorvQueryBuilder& builder) {
    TOperatorList defaults;
    orv::fillOperators(defaults);
    const QStringList texts = builder.OperatorsList();
    QSettings kept = keptSettings();
    if (texts == defaults.toStrings()) {
        kept.remove(operatorsKey);
    } else {
        kept.setValue(operatorsKey, texts);
    }
}

void restoreDefaultOperators(TorvQueryBuilder& builder) {
    TOperatorList defaults;
    orv::fillOperators(defaults);
    TOperatorList operators;
    operators.Assign(&defaults);
    for (int index = 0; index < builder.Operators->Count(); ++index) {
        const TOperatorList::Entry entry = builder.Operators->Items(index);
        if (!defaults.FindName(entry->Name)) operators.Add(*entry);
    }
    builder.setOperators(operators);
}

}  // namespace orvquery
