// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>

namespace orvquery {

/// The keys of a loaded query that the program does not know, of the query itself and of all its
/// parts: somebody else has written them, and saving must not lose them. Other keys are those that
/// are in what was read, and missing in what the program makes of it when nothing has changed.
class OtherKeys {
public:
    OtherKeys() = default;
    OtherKeys(QJsonObject read, QJsonObject understood)
        : m_read(std::move(read)), m_understood(std::move(understood)) {}

    /// The present state of the query with those keys. Parts are found again by their names; what a
    /// part had that is gone is gone too, and there again when the part comes back.
    [[nodiscard]] QJsonObject addedTo(const QJsonObject& query) const;

private:
    QJsonObject m_read;
    QJsonObject m_understood;
};

}  // namespace orvquery
