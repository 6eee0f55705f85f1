// SPDX-License-Identifier: MIT
#pragma once

#include "documents/QueryDocument.h"

#include <QByteArray>
#include <QString>

namespace orvquery {

/// What a file's name says that it holds.
enum class DocumentKind {
    None,      ///< no query
    Query,     ///< .orvq: all of it
    Statement  ///< .sql: the statement alone
};

[[nodiscard]] DocumentKind documentKind(const QString& path);

/// A query file or a statement file as it was read. A plain value.
struct OpenedFile {
    QueryDocument document;  ///< of a statement file: the statement alone
    QByteArray mark;         ///< tells whether the file has changed since
    QString lineBreak;       ///< of a statement file
};

/// Raises orv::Error with one sentence.
[[nodiscard]] OpenedFile openFile(const QString& path);

/// The mark of what is in the file now; empty when it cannot be read.
[[nodiscard]] QByteArray markOfFile(const QString& path);

/// Replaces the file as a whole, or raises orv::Error with one sentence and leaves it as it was.
/// Returns its mark.
QByteArray saveFile(const QString& path, const QByteArray& content);

/// The content of a statement file; without a line break it takes that of the platform. Line breaks
/// in quotes are part of the statement and stay, but for a typed text, which has lost what they
/// were.
[[nodiscard]] QByteArray statementText(const QString& statement, const QString& lineBreak,
                                       bool isTyped);

}  // namespace orvquery
