// SPDX-License-Identifier: MIT
#include "ServerTestTools.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <arpa/inet.h>
#include <grp.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

namespace servertest {

namespace {

constexpr int patienceMs = 20000;

const passwd* userToBecome(const QString& user) {
    return geteuid() == 0 ? getpwnam(user.toLocal8Bit().constData()) : nullptr;
}

}  // namespace

int freePort() {
    const int probe = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    const bool isBound = bind(probe, any, size) == 0 && getsockname(probe, any, &size) == 0;
    close(probe);
    return isBound ? ntohs(address.sin_port) : 0;
}

QString findProgram(const QString& name, const QStringList& folders) {
    QStringList found;
    for (const QString& pattern : folders) {
        const QString parent = pattern.section(u'*', 0, 0);
        const QString rest = pattern.section(u'*', 1);
        QStringList candidates = {pattern};
        if (pattern.contains(u'*')) {
            candidates.clear();
            for (const QString& entry : QDir(parent).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
                candidates += parent + entry + rest;
            }
        }
        for (const QString& folder : candidates) {
            const QFileInfo file(folder + u'/' + name);
            if (file.isExecutable()) found += file.filePath();
        }
    }
    return found.isEmpty() ? QStandardPaths::findExecutable(name) : found.back();
}

void setUser(QProcess& process, const QString& user, int endSignal) {
    const passwd* const entry = userToBecome(user);
    const uid_t uid = entry != nullptr ? entry->pw_uid : 0;
    const gid_t gid = entry != nullptr ? entry->pw_gid : 0;
    process.setChildProcessModifier([uid, gid, endSignal] {
        const bool isOther = uid != 0;
        if (isOther && (setgroups(0, nullptr) != 0 || setgid(gid) != 0 || setuid(uid) != 0)) {
            _exit(1);
        }
#ifdef Q_OS_LINUX
        prctl(PR_SET_PDEATHSIG, endSignal);
#endif
    });
}

bool giveFolder(const QString& folder, const QString& user) {
    const passwd* const entry = userToBecome(user);
    if (entry == nullptr) return geteuid() != 0;
    const auto give = [&](const QString& path) {
        return chown(QFile::encodeName(path).constData(), entry->pw_uid, entry->pw_gid) == 0;
    };
    bool isGiven = give(folder);
    QDirIterator inside(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
    while (inside.hasNext()) isGiven = give(inside.next()) && isGiven;
    return isGiven;
}

bool runToEnd(QProcess& process, const QByteArray& input) {
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start();
    process.write(input);
    process.closeWriteChannel();
    const bool isDone = process.waitForFinished(patienceMs) &&
                        process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    if (!isDone) {
        qWarning("%s: %s", qPrintable(process.program()), process.readAll().constData());
    }
    return isDone;
}

bool waitForText(QProcess& process, const QByteArray& text) {
    QByteArray output;
    while (!output.contains(text)) {
        if (!process.waitForReadyRead(patienceMs)) {
            qWarning("%s: %s", qPrintable(process.program()), output.constData());
            return false;
        }
        output += process.readAll();
    }
    return true;
}

void end(QProcess& process, int signal) {
    if (process.state() == QProcess::NotRunning) return;
    ::kill(pid_t(process.processId()), signal);
    if (process.waitForFinished(patienceMs)) return;
    process.kill();
    process.waitForFinished(patienceMs);
}

}  // namespace servertest
