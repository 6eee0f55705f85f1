// SPDX-License-Identifier: MIT
#include "documents/GivenQuery.h"

#include "core/Error.h"
#include "documents/DocumentFile.h"
#include "querybuilder/ORVQDStateReader.h"
#include "text/TextFile.h"

#include <QFileInfo>
#include <QJsonDocument>

namespace orvquery {

namespace {

// A state says nothing of its format.
bool isQueryFile(const QString& path, const QString& text) {
    if (documentKind(path) == DocumentKind::Query) return true;
    return QJsonDocument::fromJson(text.toUtf8()).object().contains(QStringLiteral("format"));
}

QString nameOf(const QString& path) {
    if (path == QStringView(standardInputName)) return QStringLiteral("Standard input");
    return QStringLiteral("The file \"%1\"").arg(path);
}

QueryDocument documentOfState(const QByteArray& state) {
    // Raises what is wrong with it.
    const orv::QueryState read = orv::readState(state);
    Q_UNUSED(read);
    QueryDocument document;
    document.setState(state);
    return document;
}

}  // namespace

GivenQuery readGivenQuery(const QString& path) {
    const QString text = readTextFile(path);
    GivenQuery given;
    const bool isObject = text.trimmed().startsWith(u'{');
    if (documentKind(path) != DocumentKind::Query && !isObject) {
        given.statement = text;
        return given;
    }
    if (isQueryFile(path, text)) {
        given.document = readDocument(text.toUtf8(), nameOf(path));
        DocumentDatabase& database = given.document->database;
        database = database.absoluteIn(QFileInfo(path).absolutePath());
    } else {
        given.isState = true;
        given.document = documentOfState(text.toUtf8());
    }
    if (!given.hasDiagram()) given.statement = given.document->statement;
    return given;
}

}  // namespace orvquery
