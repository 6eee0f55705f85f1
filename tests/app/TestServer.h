// SPDX-License-Identifier: MIT
#pragma once

#include "database/Connection.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A server of databases of its own for one test program: on the loopback, with its data in a
/// folder that goes with it. It ends with this object.
class TestServer {
public:
    virtual ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    /// Makes and starts it; false, with a warning, when that fails.
    [[nodiscard]] bool start();
    /// Ends it at once, as a crash of the machine would.
    void kill();
    /// Starts it again after that, at the same port with the same data.
    [[nodiscard]] bool startAgain();
    /// Lets it answer nobody until it is ended.
    void hold() const;

    /// Runs statements as its owner, on the database or on the one that the kind of server has
    /// without one; false, with a warning, when one fails.
    [[nodiscard]] bool run(const QStringList& statements, const QString& database = {}) const;
    /// The first value of a query of its owner; an invalid variant when it fails.
    [[nodiscard]] QVariant value(const QString& statement) const;

    [[nodiscard]] int port() const { return m_port; }
    [[nodiscard]] static QString owner() { return QStringLiteral("orv"); }
    [[nodiscard]] static QString password() { return QStringLiteral("it's secret"); }
    /// The address of a database for its owner, with the password.
    [[nodiscard]] QString address(const QString& database) const;

protected:
    /// What one kind of server has that another has not.
    struct Kind {
        const char* scheme;         ///< of addresses
        const char* driver;         ///< Qt's
        const char* user;           ///< as whom it runs
        int endSignal;              ///< ends it at once
        const char* readyText;      ///< what it says once it takes connections
        const char* usualDatabase;  ///< the one without a name
    };
    explicit TestServer(const Kind& kind) : m_kind(kind) {}

    /// Makes its data in the folder, whose owner the user is not yet; false when that fails.
    [[nodiscard]] virtual bool initialise() = 0;
    /// Gives the process program and arguments that start it.
    virtual void prepare(QProcess& server) const = 0;

    [[nodiscard]] QString pathOf(const char* name) const {
        return m_folder.filePath(QLatin1String(name));
    }
    /// Hands the folder over to the user.
    [[nodiscard]] bool giveFolder() const;
    /// Runs a process in the folder, as the user, to its end.
    [[nodiscard]] bool runInFolder(QProcess& process) const;

private:
    void placeInFolder(QProcess& process) const;
    [[nodiscard]] bool launch();
    [[nodiscard]] orvquery::ConnectionSettings settings(const QString& database) const;

    Kind m_kind;
    QTemporaryDir m_folder;
    QProcess m_server;
    int m_port = 0;
};
