// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

#include <memory>
#include <optional>

class QMimeData;

namespace orv {

/// A field that is being dragged from a diagram. It is named, not pointed to: what it names may be
/// gone by the time of the drop.
struct DraggedField {
    quint64 builder = 0;  ///< tells the query builders of all running programs apart
    QString alias;        ///< effective alias of the box
    QString field;        ///< name of the row

    /// "ALIAS.FIELD", as conditions and columns name it.
    [[nodiscard]] QString qualifiedName() const { return alias + u'.' + field; }
};

/// The data of the drag: the field for the diagram and the pages of the same builder, and its
/// qualified name as plain text for everybody else.
[[nodiscard]] ORV_EXPORT std::unique_ptr<QMimeData> toMimeData(const DraggedField& field);

/// The field in the data of a drag; none when there is none.
[[nodiscard]] ORV_EXPORT std::optional<DraggedField> draggedField(const QMimeData* data);

}  // namespace orv
