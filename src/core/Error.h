// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

#include <stdexcept>

namespace orv {

/// The exception that every operation of the control raises. It carries one English text, as fixed
/// by the operation that raises it; hosts show it to their user or test it.
class ORV_EXPORT Error : public std::runtime_error {
public:
    /// `message` is the text for the user.
    explicit Error(const QString& message);
    ~Error() override;

    /// The text with which the error was raised.
    [[nodiscard]] const QString& Message() const noexcept { return m_message; }

private:
    QString m_message;
};

}  // namespace orv
