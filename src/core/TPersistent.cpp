// SPDX-License-Identifier: MIT
#include "core/TPersistent.h"

#include "core/Error.h"

namespace {

QString className(const QObject* object) {
    return object ? QString::fromLatin1(object->metaObject()->className()) : QStringLiteral("nil");
}

}  // namespace

TPersistent::TPersistent(QObject* parent) : QObject(parent) {}

void TPersistent::Assign(const TPersistent* Source) {
    if (!Source) raiseAssignError(nullptr, this);
    Source->AssignTo(this);
}

void TPersistent::AssignTo(TPersistent* Dest) const {
    raiseAssignError(this, Dest);
}

void TPersistent::raiseAssignError(const QObject* source, const QObject* dest) {
    throw orv::Error(
        QStringLiteral("Cannot assign a %1 to a %2").arg(className(source), className(dest)));
}
