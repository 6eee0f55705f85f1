// SPDX-License-Identifier: MIT
#include "documents/DocumentLock.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace orvquery {

DocumentLock::DocumentLock(const QString& path)
    : m_path(path), m_lock(std::make_unique<QLockFile>(lockPath(path))) {
    // A document may be open for days.
    m_lock->setStaleLockTime(0);
    if (m_lock->tryLock(0)) return;
    m_isElsewhere = m_lock->error() == QLockFile::LockFailedError;
    qint64 process = 0;
    QString host;
    QString program;
    if (m_isElsewhere && m_lock->getLockInfo(&process, &host, &program)) {
        m_holder = QCoreApplication::translate("orvquery", "process %1 on %2")
                       .arg(process)
                       .arg(host.isEmpty() ? QStringLiteral("this computer") : host);
    }
    m_lock.reset();
}

// Whatever link leads to the document, the lock is the same.
QString DocumentLock::lockPath(const QString& path) {
    const QString canonical = QFileInfo(path).canonicalFilePath();
    const QFileInfo info(canonical.isEmpty() ? QFileInfo(path).absoluteFilePath() : canonical);
    return QStringLiteral("%1/.%2.lock").arg(info.absolutePath(), info.fileName());
}

}  // namespace orvquery
