// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/LifetimeScene.h"

#include <functional>
#include <vector>

namespace orvtest {

/// What a handler of the host does when its time has come. `allowed` is what a question can be
/// answered with, none for what is no question. It may raise, and all of the scene may be gone
/// afterwards.
using Strike = std::function<void(bool* allowed)>;

/// One way on which the control comes to its host: what a user or a program does, and the handler
/// or service of the host that hears of it.
struct FaultPath {
    enum class By {
        Call,  ///< of the program, to which errors pass
        Hand   ///< of the user: errors go to the error handler
    };
    enum Trait {
        None = 0,
        Asks = 1,      ///< the host can refuse it
        Keeps = 2,     ///< when the host raises or refuses, all stays as it was
        Twice = 4,     ///< it is two changes, such as a name that is taken over, and a new box; or
                       ///< a step back that the host breaks off, and what is put back then
        Reports = 8,   ///< it takes over by the way what was being typed, of which the user is told
        QtGoesOn = 16  ///< Qt looks at the receiver of the event afterwards, or at the widget that
                       ///< it hides or gives the focus to: it has to be there
    };

    const char* name;
    By by;
    int traits;
    /// Gets to the moment before.
    std::function<void(Scene& on)> prepare;
    /// Has the host strike when it hears of it.
    std::function<void(Scene& on, RecordedServices& services, const Strike& strike)> arm;
    /// What is done; goes on with what there is no stopping of.
    std::function<void(Scene& on)> act;
};

/// Those of the diagram and of whole statements, and those of the pages.
[[nodiscard]] std::vector<FaultPath> diagramFaultPaths();
[[nodiscard]] std::vector<FaultPath> noticeFaultPaths();
[[nodiscard]] std::vector<FaultPath> pageFaultPaths();

// What is done to the scene on many ways.

void selectBox(Scene& on);
void selectLink(Scene& on);
void addDept(Scene& on);
/// From T.B to WIDE.W2; none when the host refuses it.
TorvQDLink* addLinkToWide(Scene& on);
/// What has the text in the menu that the view shows at a point of it, in pixels.
void chooseFromMenu(Scene& on, const QPoint& point, const QString& text);

/// The host strikes where it hears of every change of the statement.
void armStatementChanged(Scene& on, RecordedServices& services, const Strike& strike);
/// The host strikes when it is asked for what a message says.
void armMessage(Scene& on, RecordedServices& services, const Strike& strike);

}  // namespace orvtest
