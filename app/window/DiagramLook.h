// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class TorvQDWorkArea;

namespace orvquery {

/// Keeps the links of a diagram readable on its ground, also when the desktop turns dark while the
/// program runs. The diagram owns it.
class DiagramLook : public QObject {
public:
    explicit DiagramLook(TorvQDWorkArea& diagram);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();

    TorvQDWorkArea& m_diagram;
};

}  // namespace orvquery
