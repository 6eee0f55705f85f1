// SPDX-License-Identifier: MIT
#pragma once

#include <QLockFile>
#include <QString>

#include <memory>

namespace orvquery {

/// Tells other windows and programs that a document is open here, by a file beside it. A program
/// that has died without removing that file holds nothing any more.
class DocumentLock {
public:
    /// Takes the lock of the document if nobody else has it. Where no file can be made beside it,
    /// there is nothing to tell others by, and nobody is refused.
    explicit DocumentLock(const QString& path);

    [[nodiscard]] bool isElsewhere() const { return m_isElsewhere; }
    /// Who has it then: "process 123 on HOST".
    [[nodiscard]] const QString& holder() const { return m_holder; }
    [[nodiscard]] const QString& path() const { return m_path; }

    [[nodiscard]] static QString lockPath(const QString& path);

private:
    QString m_path;
    QString m_holder;
    bool m_isElsewhere = false;
    std::unique_ptr<QLockFile> m_lock;
};

}  // namespace orvquery
