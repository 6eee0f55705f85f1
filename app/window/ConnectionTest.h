// SPDX-License-Identifier: MIT
#pragma once

#include "database/BackgroundDatabase.h"

#include <QObject>

namespace orvquery {

/// Tries in the background whether a database can be opened and its tables be listed. A cancelled
/// trial is left to itself and ends soon; where it waits for a server, nobody waits for it.
class ConnectionTest : public QObject {
    Q_OBJECT

public:
    /// Opens a database, in any thread; raises orv::Error.
    using Open = std::function<std::unique_ptr<Database>(const DatabaseAddress& address)>;

    explicit ConnectionTest(QObject* parent = nullptr);
    ~ConnectionTest() override;

    /// Replaces how databases are opened; openDatabase() to begin with.
    void setOpen(Open open) { m_open = std::move(open); }

    /// Tries an address; one that is under way is cancelled.
    void start(const DatabaseAddress& address);
    void cancel();
    [[nodiscard]] bool isRunning() const { return m_database != nullptr; }

Q_SIGNALS:
    /// The trial has ended; one sentence about it.
    void finished(bool isConnected, const QString& sentence);

private:
    void end(bool isConnected, const QString& sentence);

    Open m_open;
    BackgroundDatabase* m_database = nullptr;  ///< as long as it is tried
};

}  // namespace orvquery
