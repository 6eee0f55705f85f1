// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace orvquery {

/// Which database a query is for. A plain value; all is empty when there is none.
struct DocumentDatabase {
    QString name;           ///< as people read it
    QString address;        ///< never with a password
    QString schema;         ///< in its place: a file that describes tables
    bool isSample = false;  ///< in its place: the sample database, wherever the program keeps it

    [[nodiscard]] bool isNone() const { return address.isEmpty() && schema.isEmpty() && !isSample; }

    /// Files in the folder or below it are named by their way from there, so that the folder can be
    /// moved and sent; and back.
    [[nodiscard]] DocumentDatabase relativeTo(const QString& folder) const;
    [[nodiscard]] DocumentDatabase absoluteIn(const QString& folder) const;

    /// Whether both are the same one, by whatever name.
    [[nodiscard]] bool isSame(const DocumentDatabase& other) const;
};

/// What a query file (docs/query-files.md) holds. A plain value.
struct QueryDocument {
    static constexpr int currentVersion = 1;

    DocumentDatabase database;
    QString statement;             ///< for people and other programs; the query says the same
    std::optional<QString> typed;  ///< text of the statement pane that was not loaded
    QJsonObject query;             ///< as SaveState() gives it, without what follows from the rest
    QJsonObject otherKeys;         ///< of the document; what other programs have written stays
    QJsonObject otherDatabaseKeys;

    /// What RestoreState() takes.
    [[nodiscard]] QByteArray state() const;
    /// Takes what SaveState() has given, with its statement.
    void setState(const QByteArray& state);
};

/// Reads the content of a query file; `name` is what errors call it. Raises orv::Error with one
/// sentence when it is none, is one of a later version of the program, or says what makes no sense.
[[nodiscard]] QueryDocument readDocument(const QByteArray& content, const QString& name);

/// The same as the content of a file: UTF-8 with line feeds, keys in a fixed order.
[[nodiscard]] QByteArray documentText(const QueryDocument& document);

}  // namespace orvquery
