// SPDX-License-Identifier: MIT
#pragma once

#include "documents/QueryDocument.h"

#include <QDateTime>
#include <QLockFile>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace orvquery {

/// What is saved by itself while a person works. A plain value.
struct RecoveryCopy {
    QueryDocument document;
    QString path;             ///< of the document; empty when it has none yet
    QByteArray mark;          ///< of the file at that path when it was read or saved
    QString unfinished = {};  ///< what was being typed in the diagram
    QString lineBreak = {};   ///< of a statement file
    bool isReadOnly = false;  ///< it was only to be looked at
    QDateTime time = {};      ///< when it was saved; set by saving
};

/// The one place of a window for that in the recovery folder. While it is there its program lives,
/// which a lock tells.
class RecoveryFile {
public:
    explicit RecoveryFile(QString folder);
    RecoveryFile(const RecoveryFile&) = delete;
    RecoveryFile& operator=(const RecoveryFile&) = delete;
    /// Leaves nothing behind.
    ~RecoveryFile();

    /// Replaces what was there. Raises orv::Error with one sentence, and leaves that.
    void save(const RecoveryCopy& copy);
    void remove();

    [[nodiscard]] const QString& path() const { return m_path; }

private:
    QString m_folder;
    QString m_path;
    std::unique_ptr<QLockFile> m_lock;
};

/// What a program that has died has left. Nobody else is offered it as long as this lives.
class LeftCopy {
public:
    LeftCopy(QString file, std::unique_ptr<QLockFile> lock, RecoveryCopy copy)
        : m_file(std::move(file)), m_lock(std::move(lock)), m_copy(std::move(copy)) {}

    [[nodiscard]] const RecoveryCopy& copy() const { return m_copy; }
    /// Removes it for good.
    void discard();

private:
    QString m_file;
    std::unique_ptr<QLockFile> m_lock;
    RecoveryCopy m_copy;
};

/// Where windows save by themselves what is not saved otherwise.
class RecoveryFolder {
public:
    /// By default below the folder in which the program keeps its data.
    explicit RecoveryFolder(QString path = {});

    [[nodiscard]] const QString& path() const { return m_path; }
    [[nodiscard]] std::unique_ptr<RecoveryFile> newFile() const;
    /// What was left, the latest first. What cannot be read stays where it is; its names.
    [[nodiscard]] std::vector<LeftCopy> left(QStringList* unreadable = nullptr) const;
    /// Those of the names of which no start of the program has told yet. This one has then.
    [[nodiscard]] QStringList untold(const QStringList& unreadable) const;

private:
    QString m_path;
};

}  // namespace orvquery
