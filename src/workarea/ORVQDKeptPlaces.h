// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "diagram/ORVQDFloatTable.h"

#include <QHash>
#include <QPoint>
#include <QString>

#include <vector>

class TorvQDLink;
class TorvQDWorkArea;

namespace orv {

/// The places of the boxes and bend points of a diagram, kept over the loading of an edited
/// statement: a table that is still there under its alias comes back where it was.
class ORV_EXPORT KeptPlaces {
public:
    /// Remembers the diagram as it is.
    explicit KeptPlaces(const TorvQDWorkArea& area);

    /// Puts boxes and bend points of the diagram, which was loaded anew, where they were. Boxes
    /// that were not there before are placed beside the others.
    void apply(TorvQDWorkArea& area) const;

    /// Whether the diagram has a box that comes back.
    [[nodiscard]] bool keepsAny(const TorvQDWorkArea& area) const;

private:
    struct Box {
        QString tableName;
        int rowCount = 0;
        TorvQDTable::Shape shape;
        bool expanded = true;
    };

    [[nodiscard]] const Box* find(const TorvQDTable& table) const;
    [[nodiscard]] static QString keyOf(const QString& alias);
    [[nodiscard]] static QString keyOf(const TorvQDLink& link);

    QHash<QString, Box> m_boxes;  // by alias, case and quotes aside
    QHash<QString, std::vector<QPoint>> m_bends;
};

}  // namespace orv
