// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QLabel>

namespace orv {

/// The hint over the diagram: a tool-tip-like window of limited width that takes no focus. Owned by
/// its parent.
class ORV_EXPORT HintPopup : public QLabel {
    Q_OBJECT

public:
    explicit HintPopup(QWidget* parent);

    /// Shows the text a little right of and below the place, on the screen of it.
    void showAt(const QPoint& globalPoint, const QString& text);
};

}  // namespace orv
