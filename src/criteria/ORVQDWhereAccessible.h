// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "criteria/ORVQDWhereRows.h"

#include <QString>

#include <vector>

class QAction;
class TorvQDWherePanel;

/// What screen readers know of a criteria panel: a list of the rows that are shown, each with its
/// elements. Interfaces are made when somebody asks for them, and are invalid once their row is
/// gone or hidden.
namespace orv {

/// Makes Qt ask for these interfaces. Further calls do nothing.
ORV_EXPORT void installCriteriaAccessibility();

/// What readers say for an item of a menu whose text says nothing.
ORV_EXPORT void setReadName(QAction& item, const QString& name);

/// Tells readers, where there are any, what changes in a panel. Changes are only noted while they
/// go on, and told when all is in order again. Owned by the panel.
class ConditionTeller {
public:
    explicit ConditionTeller(TorvQDWherePanel& panel) : m_panel(panel) {}

    /// One row's content changed, or, with none, rows came, went, moved or opened.
    void rowsChanged(const TorvQDWhereRow* row);
    /// Tells what was noted, and where the focus is when that is another element.
    void tell();
    /// The panel got the focus: where it is in it is told anew.
    void focusCame();

private:
    void tellFocus();

    TorvQDWherePanel& m_panel;
    bool m_haveRowsMoved = false;
    std::vector<ElementRef> m_changed;
    ElementRef m_toldFocus;
};

}  // namespace orv
