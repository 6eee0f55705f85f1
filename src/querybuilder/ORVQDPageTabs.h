// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QTabWidget>

#include <functional>

namespace orv {

/// The pages below the diagram. It tells before the user goes to another page, however he does it:
/// with the mouse, the wheel, a key, or something that he drags over a tab. A program that changes
/// the page does not ask. Owned by the query builder.
class ORV_EXPORT PageTabs : public QTabWidget {
    Q_OBJECT

public:
    explicit PageTabs(QWidget* parent = nullptr);

    /// Runs while the old page is still shown. It cannot refuse; what it does may end in the
    /// destruction of all this.
    std::function<void()> aboutToChange;

    /// Alt with a digit goes to the page of that number while the focus is in the scope.
    void addNumberKeys(QWidget* scope);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Bar;

    bool announce();
    bool change(int index);
    void step(int by);
    void goTo(int index);
    void focusPage();
};

}  // namespace orv
