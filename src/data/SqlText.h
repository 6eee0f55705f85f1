// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QString>

namespace orv {

/// A value of a procedure's parameter that is SQL itself: a column of another table, an expression,
/// a placeholder of another name. It is written as it stands, without quotes. As a variant it is
/// made by QVariant::fromValue.
struct SqlText {
    QString text;  ///< written as it stands

    /// Equal when the texts are.
    friend bool operator==(const SqlText& a, const SqlText& b) { return a.text == b.text; }
};

}  // namespace orv

Q_DECLARE_METATYPE(orv::SqlText)
