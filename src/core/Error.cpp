// SPDX-License-Identifier: MIT
#include "core/Error.h"

namespace orv {

Error::Error(const QString& message)
    : std::runtime_error(message.toStdString()), m_message(message) {}

Error::~Error() = default;

}  // namespace orv
