// SPDX-License-Identifier: MIT
#include "text/SavedFile.h"

#include "core/Error.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

#include <filesystem>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace orvquery {

namespace {

constexpr int mostNames = 100;

// A link stays one; what it leads to is replaced.
QString withoutLinks(const QString& path) {
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QFileInfo(path).absoluteFilePath() : canonical;
}

QString partOf(const QString& path) {
    constexpr quint32 mostNumber = 0x1000000;
    return QStringLiteral("%1.%2.part")
        .arg(path)
        .arg(QRandomGenerator::global()->bounded(mostNumber), 6, 16, QLatin1Char('0'));
}

}  // namespace

SavedFile::SavedFile(QString path) : m_path(std::move(path)) {}

SavedFile::~SavedFile() {
    m_file.close();
    discard();
}

void SavedFile::fail(const QString& reason) const {
    throw orv::Error(QStringLiteral("The file \"%1\" cannot be written: %2.").arg(m_path, reason));
}

void SavedFile::open() {
    const QFileInfo info(m_path);
    if (info.isDir()) fail(QStringLiteral("it is a folder"));
    if (info.exists() && !info.isFile()) fail(QStringLiteral("it is no regular file"));
    if (info.exists() && !info.isWritable()) fail(QStringLiteral("it is write-protected"));
    if (!info.absoluteDir().exists()) fail(QStringLiteral("its folder does not exist"));
    const std::lock_guard lock(m_mutex);
    // Nobody would remove it any more.
    if (m_isDiscarded) fail(QStringLiteral("it was given up"));
    for (int name = 0; name < mostNames && !m_file.isOpen(); ++name) {
        m_file.setFileName(partOf(withoutLinks(m_path)));
        if (m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) break;
        if (!m_file.exists()) fail(m_file.errorString());
    }
    if (!m_file.isOpen()) fail(m_file.errorString());
    m_partPath = m_file.fileName();
    if (info.exists()) m_file.setPermissions(info.permissions());
}

void SavedFile::requireWritten() const {
    if (m_file.error() != QFileDevice::NoError) fail(m_file.errorString());
}

// The name must not lead to content that a power failure can still lose.
void SavedFile::save() {
    // Where a part could be written, the reason comes with the rest.
    if (!m_file.flush()) m_file.flush();
    requireWritten();
#ifdef Q_OS_UNIX
    fsync(m_file.handle());
#endif
    m_file.close();
    requireWritten();
    const std::lock_guard lock(m_mutex);
    if (m_partPath.isEmpty()) return;
    std::error_code error;
    std::filesystem::rename(QFileInfo(m_partPath).filesystemFilePath(),
                            QFileInfo(withoutLinks(m_path)).filesystemFilePath(), error);
    if (error) fail(QString::fromLocal8Bit(error.message().c_str()));
    m_partPath.clear();
}

void SavedFile::discard() {
    const std::lock_guard lock(m_mutex);
    m_isDiscarded = true;
    if (m_partPath.isEmpty()) return;
    QFile::remove(m_partPath);
    m_partPath.clear();
}

}  // namespace orvquery
