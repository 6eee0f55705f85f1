// SPDX-License-Identifier: MIT
#include "MariadbServer.h"

#include "AppTestTools.h"
#include "ServerTestTools.h"

#include <csignal>

namespace {

QString findProgram(const char* name) {
    return servertest::findProgram(
        QLatin1String(name),
        {QStringLiteral("/usr/bin"), QStringLiteral("/usr/libexec"), QStringLiteral("/usr/sbin")});
}

}  // namespace

// The user "nobody" has nothing of its own anywhere.
MariadbServer::MariadbServer()
    : TestServer({"mariadb", "QMYSQL", "nobody", SIGKILL, "ready for connections", ""}) {}

QString MariadbServer::whatIsMissing() {
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QMYSQL"))) {
        return QStringLiteral("Qt's driver QMYSQL is not installed (libqt6sql6-mysql)");
    }
    const bool isThere =
        !findProgram("mariadb-install-db").isEmpty() && !findProgram("mariadbd").isEmpty();
    return isThere ? QString()
                   : QStringLiteral("MariaDB's server is not installed (mariadb-server-core)");
}

bool MariadbServer::initialise() {
    if (!giveFolder()) return false;
    QProcess install;
    // In a folder of temporary files that they share, servers that start remove each other's.
    install.setProgram(findProgram("mariadb-install-db"));
    install.setArguments({"--no-defaults", "--datadir=" + pathOf("data"),
                          "--auth-root-authentication-method=normal", "--skip-test-db",
                          "--skip-log-bin", "--innodb-log-file-size=4M", "--tmpdir=" + pathOf("")});
    // Its owner is made in the server's own way to set itself up.
    QString password = MariadbServer::password();
    password.replace(u'\'', QLatin1String("''"));
    return runInFolder(install) &&
           apptest::writeFile(
               pathOf("owner.sql"),
               QStringLiteral("CREATE USER IF NOT EXISTS %1@localhost IDENTIFIED BY '%2';\n"
                              "GRANT ALL ON *.* TO %1@localhost "
                              "WITH GRANT OPTION;\n")
                   .arg(owner(), password)
                   .toUtf8());
}

void MariadbServer::prepare(QProcess& server) const {
    server.setProgram(findProgram("mariadbd"));
    // A name of a socket without folders is one in the folder of the data.
    server.setArguments({"--no-defaults", "--datadir=" + pathOf("data"),
                         "--init-file=" + pathOf("owner.sql"), "--bind-address=127.0.0.1",
                         "--tmpdir=" + pathOf(""), "--port=" + QString::number(port()),
                         "--socket=socket", "--pid-file=pid", "--skip-log-bin",
                         "--innodb-flush-log-at-trx-commit=0", "--innodb-log-file-size=4M",
                         "--log-warnings=0", "--lower-case-table-names=0",
                         "--max-allowed-packet=256M", "--character-set-server=utf8mb4"});
}
