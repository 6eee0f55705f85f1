// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

class TorvQueryBuilder;

namespace orv {

/// What a program adds to the state of a query that it writes.
struct StateNotes {
    QString error;         ///< the text that LoadSQL raised; none when empty
    QStringList messages;  ///< texts of the message boxes raised on the way
};

/// Over several lines with two blanks a level, or on one line.
enum class JsonLayout { Indented, Compact };

/// The state of a query as one JSON document in UTF-8: statement, tables, columns and all else that
/// the control holds, keys in a fixed order. A procedure has "parameters": name, type, direction
/// and, but for outputs, kind and value of each; "brackets" is false where its call was loaded
/// without any. Conditions and links that are muted have "muted", and "mutedColumns" numbers the
/// muted output columns from 1 on. `statement` is null when it cannot be written; its error then
/// stands under `error`, unless `notes` has one.
[[nodiscard]] ORV_EXPORT QByteArray stateJson(TorvQueryBuilder& builder, const StateNotes& notes,
                                              JsonLayout layout = JsonLayout::Indented);

/// The same as RestoreState() needs it: behind the keys of stateJson(), without notes, what a
/// reader of the picture does not miss. "creationOrder" are indices of the tables in the order in
/// which they were made, "groupedColumns" the numbers of the output columns whose source stood in
/// the loaded GROUP BY list, "sortedRows" the output column of each sort line, 0 for the first of
/// its name.
[[nodiscard]] ORV_EXPORT QByteArray savedState(TorvQueryBuilder& builder);

/// The part of savedState() that a user works on: without the statement as text, the report of the
/// last load and what is scrolled to. Compact. Equal texts are equal queries in equal layouts.
[[nodiscard]] ORV_EXPORT QByteArray editedState(TorvQueryBuilder& builder);

}  // namespace orv
