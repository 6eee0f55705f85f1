// SPDX-License-Identifier: MIT
#include "documents/RecoveryFolder.h"

#include "core/Error.h"
#include "documents/DocumentFile.h"
#include "text/KeptSettings.h"
#include "text/TextFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QStandardPaths>
#include <QUuid>

#include <algorithm>

namespace orvquery {

namespace {

const QString recoveryKey = QStringLiteral("recovery");
const QString pathKey = QStringLiteral("document");
const QString markKey = QStringLiteral("contents");
const QString unfinishedKey = QStringLiteral("unfinished");
const QString lineBreakKey = QStringLiteral("lineBreak");
const QString readOnlyKey = QStringLiteral("readOnly");
const QString timeKey = QStringLiteral("saved");
const QString toldKey = QStringLiteral("unreadableRecoveryCopies");
const QString suffix = QStringLiteral(".orvq");

QString lockOf(const QString& file) {
    return file + QStringLiteral(".lock");
}

std::unique_ptr<QLockFile> locked(const QString& file) {
    auto lock = std::make_unique<QLockFile>(lockOf(file));
    lock->setStaleLockTime(0);
    if (!lock->tryLock(0)) lock.reset();
    return lock;
}

// Also what was being written when the program died.
void removeAllOf(const QString& file) {
    const QFileInfo info(file);
    const QStringList names =
        QDir(info.absolutePath())
            .entryList({info.fileName(), info.fileName() + QStringLiteral(".*.part")},
                       QDir::Files | QDir::Hidden);
    for (const QString& name : names) QFile::remove(info.absolutePath() + u'/' + name);
}

RecoveryCopy readCopy(const QString& file) {
    RecoveryCopy copy;
    copy.document = readDocument(readTextFile(file).toUtf8(), file);
    const QJsonObject notes = copy.document.otherKeys.take(recoveryKey).toObject();
    copy.path = notes.value(pathKey).toString();
    copy.mark = notes.value(markKey).toString().toLatin1();
    copy.unfinished = notes.value(unfinishedKey).toString();
    copy.lineBreak = notes.value(lineBreakKey).toString();
    copy.isReadOnly = notes.value(readOnlyKey).toBool();
    copy.time = QDateTime::fromString(notes.value(timeKey).toString(), Qt::ISODateWithMs);
    return copy;
}

}  // namespace

RecoveryFile::RecoveryFile(QString folder)
    : m_folder(std::move(folder)),
      m_path(QStringLiteral("%1/%2%3").arg(m_folder, QUuid::createUuid().toString(QUuid::Id128),
                                           suffix)) {}

RecoveryFile::~RecoveryFile() {
    remove();
}

void RecoveryFile::save(const RecoveryCopy& copy) {
    if (!QFileInfo::exists(m_folder) && QDir().mkpath(m_folder)) {
        // Statements may say what is nobody else's concern.
        QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    if (!m_lock) m_lock = locked(m_path);
    QueryDocument document = copy.document;
    QJsonObject notes;
    if (!copy.path.isEmpty()) notes.insert(pathKey, copy.path);
    if (!copy.mark.isEmpty()) notes.insert(markKey, QString::fromLatin1(copy.mark));
    if (!copy.unfinished.isEmpty()) notes.insert(unfinishedKey, copy.unfinished);
    if (!copy.lineBreak.isEmpty()) notes.insert(lineBreakKey, copy.lineBreak);
    if (copy.isReadOnly) notes.insert(readOnlyKey, true);
    notes.insert(timeKey, QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
    document.otherKeys.insert(recoveryKey, notes);
    saveFile(m_path, documentText(document));
}

void RecoveryFile::remove() {
    QFile::remove(m_path);
    m_lock.reset();
}

// The lock goes last: nobody must find the file without it.
void LeftCopy::discard() {
    removeAllOf(m_file);
    m_lock.reset();
}

RecoveryFolder::RecoveryFolder(QString path) : m_path(std::move(path)) {
    if (!m_path.isEmpty()) return;
    m_path = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
             QStringLiteral("/recovery");
}

std::unique_ptr<RecoveryFile> RecoveryFolder::newFile() const {
    return std::make_unique<RecoveryFile>(m_path);
}

std::vector<LeftCopy> RecoveryFolder::left(QStringList* unreadable) const {
    QSet<QString> names;
    const QStringList entries = QDir(m_path).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    for (const QString& entry : entries) {
        const qsizetype end = entry.indexOf(suffix);
        if (end > 0) names.insert(entry.left(end + suffix.size()));
    }
    std::vector<LeftCopy> copies;
    QStringList sorted(names.cbegin(), names.cend());
    sorted.sort();
    for (const QString& name : std::as_const(sorted)) {
        const QString file = m_path + u'/' + name;
        std::unique_ptr<QLockFile> lock = locked(file);
        if (!lock) continue;
        if (!QFileInfo::exists(file)) {
            removeAllOf(file);  // it died over the first one
            continue;
        }
        try {
            RecoveryCopy copy = readCopy(file);
            copies.emplace_back(file, std::move(lock), std::move(copy));
        } catch (const orv::Error&) {
            // One of a later version, say, which can read it.
            if (unreadable != nullptr) *unreadable += name;
        }
    }
    std::sort(copies.begin(), copies.end(), [](const LeftCopy& left, const LeftCopy& right) {
        return left.copy().time > right.copy().time;
    });
    return copies;
}

QStringList RecoveryFolder::untold(const QStringList& unreadable) const {
    QSettings settings = keptSettings();
    const QStringList told = settings.value(toldKey).toStringList();
    if (told != unreadable) settings.setValue(toldKey, unreadable);
    QStringList names = unreadable;
    names.removeIf([&](const QString& name) { return told.contains(name); });
    return names;
}

}  // namespace orvquery
