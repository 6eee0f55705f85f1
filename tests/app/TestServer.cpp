// SPDX-License-Identifier: MIT
#include "TestServer.h"

#include "AppTestTools.h"
#include "ServerTestTools.h"

#include <QUrl>

#include <csignal>

namespace {

constexpr int mostAttempts = 5;
constexpr char loopback[] = "127.0.0.1";

}  // namespace

TestServer::~TestServer() {
    kill();
}

// Somebody else may take the port meanwhile.
bool TestServer::start() {
    if (!initialise()) return false;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        m_port = servertest::freePort();
        if (launch()) return true;
    }
    return false;
}

bool TestServer::startAgain() {
    return m_server.state() != QProcess::NotRunning || launch();
}

void TestServer::kill() {
    servertest::end(m_server, m_kind.endSignal);
}

void TestServer::hold() const {
    ::kill(pid_t(m_server.processId()), SIGSTOP);
}

bool TestServer::launch() {
    m_server.setProcessChannelMode(QProcess::MergedChannels);
    prepare(m_server);
    placeInFolder(m_server);
    m_server.start();
    if (servertest::waitForText(m_server, m_kind.readyText)) return true;
    kill();
    return false;
}

void TestServer::placeInFolder(QProcess& process) const {
    process.setWorkingDirectory(m_folder.path());
    servertest::setUser(process, QLatin1String(m_kind.user), m_kind.endSignal);
}

bool TestServer::giveFolder() const {
    return servertest::giveFolder(m_folder.path(), QLatin1String(m_kind.user));
}

bool TestServer::runInFolder(QProcess& process) const {
    placeInFolder(process);
    return servertest::runToEnd(process);
}

orvquery::ConnectionSettings TestServer::settings(const QString& database) const {
    orvquery::ConnectionSettings settings;
    settings.driver = QLatin1String(m_kind.driver);
    settings.databaseName =
        database.isEmpty() ? QString::fromLatin1(m_kind.usualDatabase) : database;
    settings.host = QLatin1String(loopback);
    settings.port = m_port;
    settings.user = owner();
    settings.password = password();
    return settings;
}

bool TestServer::run(const QStringList& statements, const QString& database) const {
    return apptest::runStatements(settings(database), statements);
}

QVariant TestServer::value(const QString& statement) const {
    return apptest::valueOf(settings({}), statement);
}

QString TestServer::address(const QString& database) const {
    QUrl url;
    url.setScheme(QLatin1String(m_kind.scheme));
    url.setHost(QLatin1String(loopback));
    url.setPort(m_port);
    url.setUserName(owner());
    url.setPassword(password());
    url.setPath(u'/' + database);
    return url.toString(QUrl::FullyEncoded);
}
