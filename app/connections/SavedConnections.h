// SPDX-License-Identifier: MIT
#pragma once

#include "database/DatabaseAddress.h"

#include <vector>

namespace orvquery {

/// A database that a person gave a name. A plain value.
struct SavedConnection {
    QString name;
    DatabaseAddress address;  ///< without the password

    friend bool operator==(const SavedConnection&, const SavedConnection&) = default;
};

/// The databases that the program remembers between its runs, in its settings: those with a name,
/// and those that were opened last. Passwords are never among them. Every call looks into the
/// settings anew, so that all windows know the same; what is unreadable there is passed over.
class SavedConnections {
public:
    static constexpr std::size_t mostRecent = 10;

    /// Those with a name, the one used last in front.
    [[nodiscard]] std::vector<SavedConnection> named() const;
    /// Those that were opened, with or without a name, the last one in front.
    [[nodiscard]] std::vector<DatabaseAddress> recent() const;

    /// Remembers that the database was opened.
    void use(const DatabaseAddress& address);

    /// Remembers it under its name, in place of what had that name. Raises orv::Error when the name
    /// is empty.
    void save(const SavedConnection& connection);
    /// Raises orv::Error when the new name is empty or taken; does nothing when the old one is not
    /// there.
    void rename(const QString& name, const QString& newName);
    void forget(const QString& name);
    void forgetRecent(const DatabaseAddress& address);
    void forgetAllRecent();
};

}  // namespace orvquery
