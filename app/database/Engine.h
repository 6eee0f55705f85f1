// SPDX-License-Identifier: MIT
#pragma once

#include "database/DatabaseAddress.h"

#include <QStringList>

#include <memory>
#include <vector>

namespace orvquery {

class Database;

/// One kind of database: what a person is asked for to connect to it, and how it is opened. The
/// file of each engine's class has one function that gives its own.
struct Engine {
    /// Where its databases are.
    enum class Place {
        File,          ///< each is a file
        Server,        ///< on a server, with a user and a password
        FileOrServer,  ///< either
        DataSource     ///< the system knows them by name
    };

    QString scheme;            ///< of its addresses, in lower case: "postgresql"
    QStringList otherSchemes;  ///< that mean the same
    QString title;             ///< as people call it: "PostgreSQL"
    QString driver;            ///< Qt's, as QSqlDatabase calls it
    Place place = Place::File;
    int defaultPort = -1;
    /// Opens a database; raises orv::Error, or LoginError when another user or password may help.
    std::unique_ptr<Database> (*open)(const DatabaseAddress& address) = nullptr;
    /// Gives one sentence when an address that is no file's lacks what the engine cannot do
    /// without, else an empty one. None when it makes something of every address.
    QString (*missingPart)(const DatabaseAddress& address) = nullptr;
};

/// All engines that the program knows, in the order in which people read them.
[[nodiscard]] const std::vector<Engine>& engines();

/// The engine with that scheme, in lower case; none when there is none.
[[nodiscard]] const Engine* engineOf(const QString& scheme);

/// The engine of an address. Raises orv::Error when there is none, or its driver is missing.
[[nodiscard]] const Engine& requireEngine(const DatabaseAddress& address);

/// One sentence that says what nobody has filled in yet, without which the database cannot be
/// opened; empty when all is there.
[[nodiscard]] QString missingPart(const DatabaseAddress& address);

/// One sentence that says what has to be installed for the engine; empty when all is there.
[[nodiscard]] QString driverProblem(const Engine& engine);

/// Replaces the engines (tests have some of their own); none brings the program's own back.
void setEngines(std::vector<Engine> engines);

}  // namespace orvquery
