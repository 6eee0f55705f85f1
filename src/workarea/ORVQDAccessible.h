// SPDX-License-Identifier: MIT
#pragma once

#include "contract/IDiagramCanvas.h"
#include "core/Export.h"
#include "toolkit/AccessibleEvents.h"

class TorvQDWorkArea;

/// What screen readers know of the diagram: the work area with its boxes and links, a box with its
/// rows. The order is that of creation: that of stacking changes with each selection, and a reader
/// would lose its place.
///
/// The interfaces of boxes and links belong to Qt and die with their objects. Rows are no QObjects:
/// their interfaces belong to that of their box, and are invalid once their row is gone.
namespace orv {

/// Makes Qt ask for these interfaces. Further calls do nothing.
ORV_EXPORT void installAccessibility();

/// Telling screen readers, where there are any, what has changed. Objects are on the diagram.
namespace accessible {

/// The focus is at the selected object now, or at its current row; nothing when it is elsewhere.
void tellFocus(TorvQDWorkArea& area);
void tellSelected(TorvQDFloatObject* object, bool selected);
void tellAdded(TorvQDFloatObject* object);
/// Before it goes.
void tellRemoved(TorvQDFloatObject* object);
void tellRenamed(TorvQDFloatObject* object);
void tellChange(TorvQDTable* table, IDiagramCanvas::BoxChange change, const TorvQDListItem* row);

}  // namespace accessible

}  // namespace orv
