// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

class QWidget;

namespace orvquery {

/// Lets files be dropped onto a widget from other programs. The widget owns it; its own drags and
/// those of its children go their way.
class FileDrop : public QObject {
    Q_OBJECT

public:
    explicit FileDrop(QWidget* widget);

    /// A widget inside that takes dropped texts of its own, and would take files for one.
    void watch(QWidget* inside);

    /// The one file that was dropped. Raises orv::Error when it is not exactly one.
    [[nodiscard]] static QString singleFile(const QList<QUrl>& urls);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// Comes once the drag is over.
    void dropped(const QList<QUrl>& urls);
};

}  // namespace orvquery
