// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"
#include "database/Engine.h"

namespace orvquery {

[[nodiscard]] Engine firebirdEngine();

/// A Firebird database: a file opened by the engine within this program, or one of a server. What
/// has parameters in it are its selectable procedures.
class FirebirdDatabase : public Database {
public:
    /// Opens a file, or with a host a database of its server. Raises orv::Error with one sentence
    /// that says what is wrong; LoginError where a server refuses the user or the password.
    explicit FirebirdDatabase(const DatabaseAddress& address);

    /// Whether a file that begins with these bytes is a Firebird database.
    [[nodiscard]] static bool isBeginning(const QByteArray& bytes);
    /// As many bytes as it takes to see that.
    static constexpr qsizetype beginningSize = 20;

    [[nodiscard]] QString title() const override;

protected:
    [[nodiscard]] std::vector<TableEntry> readEntries() const override;
    [[nodiscard]] std::vector<ColumnEntry> readColumns(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<TParam> readParameters(const TableEntry& entry) const override;
    [[nodiscard]] std::vector<ForeignKey> readForeignKeys() const override;
    [[nodiscard]] QStringList defaultSchemas() const override { return {}; }
    [[nodiscard]] bool takesEmptyBrackets() const override { return false; }

private:
    [[nodiscard]] QHash<QString, QStringList> inputNames() const;
};

}  // namespace orvquery
