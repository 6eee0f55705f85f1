// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOperators.h"
#include "core/Export.h"

#include <QFlags>
#include <QString>

#include <functional>

class QWidget;

/// What a form designer's property grid offers for a property.
enum TPropertyAttribute : quint8 { paValueList = 1, paSubProperties = 2, paDialog = 4 };
Q_DECLARE_FLAGS(TPropertyAttributes, TPropertyAttribute)
Q_DECLARE_OPERATORS_FOR_FLAGS(TPropertyAttributes)

/// The editor of properties of type TOperatorList in a form designer. It knows no designer: the
/// plugin for one asks it what to show, and calls Edit.
class ORV_EXPORT TOperatorsListProperty {
public:
    /// Takes the edited list over as the property's value.
    using Writer = std::function<void(const TOperatorList& edited)>;

    /// A dialog and nothing else: no list of values, no sub-properties.
    [[nodiscard]] TPropertyAttributes GetAttributes() const;

    /// What stands for the value: the name of its type, in brackets.
    [[nodiscard]] QString GetValue() const;

    /// What the dialog's caption says of the operators of that object.
    [[nodiscard]] static QString nameOfItem(const QString& objectName);

    /// Lets the user edit a copy of the list in the operator dialog, without restrictions, and
    /// hands it to `write` when OK closed the dialog; true then. The caption names the edited item.
    /// The dialog runs through orv::runDialog(): everything may die meanwhile, `list` and `parent`
    /// included. What `write` raises passes through.
    bool Edit(const TOperatorList& list, const QString& itemName, QWidget* parent,
              const Writer& write) const;
};
