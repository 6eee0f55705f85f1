// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>

#include <mutex>

namespace orvquery {

/// A file that is written as a whole or not at all: what is written goes to another file beside it,
/// which takes its place in the end. One thread writes; another may discard it meanwhile.
class SavedFile {
public:
    explicit SavedFile(QString path);
    SavedFile(const SavedFile&) = delete;
    SavedFile& operator=(const SavedFile&) = delete;
    /// Discards it, unless it was saved.
    ~SavedFile();

    /// Opens the file beside it. Raises orv::Error with one sentence, also when it was discarded.
    void open();
    /// What is to be written to.
    [[nodiscard]] QIODevice& device() { return m_file; }
    /// Raises orv::Error with one sentence when something could not be written.
    void requireWritten() const;
    /// Puts what was written in its place; nothing when it was discarded. Raises orv::Error.
    void save();
    /// Leaves nothing behind; what is at its place stays.
    void discard();

private:
    [[noreturn]] void fail(const QString& reason) const;

    QString m_path;
    QFile m_file;
    std::mutex m_mutex;
    QString m_partPath;  ///< of the file that is there until the end; empty when there is none
    bool m_isDiscarded = false;
};

}  // namespace orvquery
