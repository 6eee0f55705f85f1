// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QObject>

/// Base of the objects whose content can be assigned to one another (operator list, option groups).
/// They are owned by the component that publishes them; assigning copies and never replaces them.
class ORV_EXPORT TPersistent : public QObject {
    Q_OBJECT

public:
    /// The parent, if any, owns it.
    explicit TPersistent(QObject* parent = nullptr);

    /// Copies the content of `Source` into this object. Raises orv::Error when `Source` is none or
    /// of a class from which this object cannot be assigned.
    virtual void Assign(const TPersistent* Source);

    /// Copies the content of this object into `Dest`. Raises orv::Error like Assign.
    virtual void AssignTo(TPersistent* Dest) const;

protected:
    /// Raises the assignment error: "Cannot assign a %s to a %s".
    [[noreturn]] static void raiseAssignError(const QObject* source, const QObject* dest);
};
