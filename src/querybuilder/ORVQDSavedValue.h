// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace orv {

/// A parameter's value as a state file has it. Kinds: "null", "integer", "float", "text", "boolean"
/// ("true", "false"), "date", "time", "datetime" (ISO 8601) and "sql", which is written as it
/// stands.
struct SavedValue {
    QString kind;
    QString text;
};

/// The value in that form; none for one that no SQL can stand for, which would not come back.
[[nodiscard]] std::optional<SavedValue> savedValue(const QVariant& value);
/// The value back; none when the text is not one of its kind, or the kind is unknown.
[[nodiscard]] std::optional<QVariant> restoredValue(const SavedValue& saved);

}  // namespace orv
