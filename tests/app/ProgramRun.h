// SPDX-License-Identifier: MIT
#pragma once

#include "AppTestTools.h"

#include <QProcess>
#include <QTemporaryDir>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace apptest {

/// The program from outside, in a folder of its own: arguments and standard input in, outputs and
/// exit status back. A test class derives from it.
class ProgramRun {
protected:
    struct Result {
        int status = -1;
        QByteArray output;
        QByteArray errors;
    };

    [[nodiscard]] Result run(const QStringList& arguments, const QByteArray& input = {},
                             bool asNobody = false) const;
    [[nodiscard]] QString file(const char* name) const {
        return m_folder.filePath(QLatin1String(name));
    }
    [[nodiscard]] QString written(const char* name, const QByteArray& content) const {
        const QString path = file(name);
        return writeFile(path, content) ? path : QString();
    }

    QTemporaryDir m_folder;
};

inline ProgramRun::Result ProgramRun::run(const QStringList& arguments, const QByteArray& input,
                                          bool asNobody) const {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The program must find out for itself that it needs no display.
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.insert(QStringLiteral("HOME"), m_folder.path());
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_folder.path());
#ifdef Q_OS_UNIX
    // Nothing is forbidden to root.
    if (asNobody && geteuid() == 0) {
        process.setChildProcessModifier([] {
            if (setgid(65534) != 0 || setuid(65534) != 0) _exit(99);
        });
    }
#else
    Q_UNUSED(asNobody);
#endif
    process.start(QStringLiteral(ORVQUERY_PROGRAM), arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000)) return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}

}  // namespace apptest
