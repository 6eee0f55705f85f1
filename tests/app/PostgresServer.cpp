// SPDX-License-Identifier: MIT
#include "PostgresServer.h"

#include "AppTestTools.h"
#include "ServerTestTools.h"

#include <csignal>

namespace {

QString findProgram(const char* name) {
    return servertest::findProgram(
        QLatin1String(name),
        {QStringLiteral("/usr/pgsql-*/bin"), QStringLiteral("/usr/lib/postgresql/*/bin")});
}

}  // namespace

// The signal is its way of ending at once, without writing everything down.
PostgresServer::PostgresServer()
    : TestServer({"postgresql", "QPSQL", "postgres", SIGQUIT, "ready to accept connections",
                  "postgres"}) {}

QString PostgresServer::whatIsMissing() {
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QPSQL"))) {
        return QStringLiteral("Qt's driver QPSQL is not installed (libqt6sql6-psql)");
    }
    const bool isThere = !findProgram("initdb").isEmpty() && !findProgram("postgres").isEmpty();
    return isThere ? QString()
                   : QStringLiteral("PostgreSQL's server is not installed (postgresql)");
}

bool PostgresServer::initialise() {
    const QString passwordFile = pathOf("password");
    if (!apptest::writeFile(passwordFile, password().toUtf8()) || !giveFolder()) return false;
    QProcess initdb;
    initdb.setProgram(findProgram("initdb"));
    initdb.setArguments({"-D", pathOf("data"), "-U", owner(), "--auth=scram-sha-256",
                         "--pwfile=" + passwordFile, "-E", "UTF8", "--locale=C", "--no-sync"});
    return runInFolder(initdb);
}

void PostgresServer::prepare(QProcess& server) const {
    server.setProgram(findProgram("postgres"));
    QStringList arguments = {"-D", pathOf("data"), "-p", QString::number(port())};
    // Nobody reads its messages once it is up; they would fill the pipe.
    for (const char* setting :
         {"listen_addresses=127.0.0.1", "unix_socket_directories=", "fsync=off",
          "log_min_messages=log", "autovacuum=off", "shared_buffers=16MB", "jit=off"}) {
        arguments << QStringLiteral("-c") << QString::fromLatin1(setting);
    }
    server.setArguments(arguments);
}
