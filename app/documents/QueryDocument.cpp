// SPDX-License-Identifier: MIT
#include "documents/QueryDocument.h"

#include "core/Error.h"
#include "database/DatabaseAddress.h"
#include "documents/DocumentLines.h"
#include "querybuilder/ORVQDStateReader.h"
#include "text/TextFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace orvquery {

namespace {

const QString formatKey = QStringLiteral("format");
const QString formatName = QStringLiteral("orvquery query");
const QString versionKey = QStringLiteral("version");
const QString databaseKey = QStringLiteral("database");
const QString statementKey = QStringLiteral("statement");
const QString typedKey = QStringLiteral("typed");
const QString queryKey = QStringLiteral("query");

QString tr(const char* text) {
    return QCoreApplication::translate("orvquery", text);
}

// One line of the text on one line of the file.
QJsonArray linesOf(const QString& text) {
    QString unified = text;
    unified.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return QJsonArray::fromStringList(unified.split(u'\n'));
}

bool isFileAddress(const QString& address) {
    try {
        return DatabaseAddress::fromUrl(address).isFile();
    } catch (const orv::Error&) {
        return false;
    }
}

QString withDatabaseFile(const QString& address, const QString& path) {
    DatabaseAddress changed = DatabaseAddress::fromUrl(address);
    changed.database = path;
    return changed.toUrl();
}

QString databaseFile(const QString& address) {
    return DatabaseAddress::pathFromHome(DatabaseAddress::fromUrl(address).database);
}

// A path that leads out of the folder is no use where the folder goes.
QString relativePath(const QString& path, const QString& folder) {
    const QString relative = QDir(folder).relativeFilePath(path);
    const bool isInside = !relative.startsWith(QStringLiteral("../")) && relative != u".." &&
                          QDir::isRelativePath(relative);
    return isInside ? relative : path;
}

QString absolutePath(const QString& path, const QString& folder) {
    return QDir::isRelativePath(path) ? QDir::cleanPath(QDir(folder).filePath(path)) : path;
}

// Somebody may have written one by hand.
QString withoutPassword(const QString& address) {
    try {
        return DatabaseAddress::fromUrl(address).toUrl();
    } catch (const orv::Error&) {
        return address;  // opening it will say what is wrong
    }
}

/// Takes a file's object apart, key by key; what was not taken remains.
class Reader {
public:
    Reader(QJsonObject object, QString name) : m_rest(std::move(object)), m_name(std::move(name)) {}

    [[noreturn]] void fail(const QString& what) const {
        throw orv::Error(tr("%1 is no query file: %2.").arg(m_name, what));
    }

    [[nodiscard]] QString text(const QString& key) {
        const QJsonValue value = m_rest.take(key);
        if (value.isUndefined() || value.isNull()) return {};
        if (!value.isString()) fail(tr("\"%1\" is no text").arg(key));
        return value.toString();
    }

    [[nodiscard]] bool flag(const QString& key) {
        const QJsonValue value = m_rest.take(key);
        if (value.isUndefined() || value.isNull()) return false;
        if (!value.isBool()) fail(tr("\"%1\" is neither true nor false").arg(key));
        return value.toBool();
    }

    /// A text, or the list of its lines.
    [[nodiscard]] std::optional<QString> lines(const QString& key, const QString& lineBreak) {
        const QJsonValue value = m_rest.take(key);
        if (value.isUndefined() || value.isNull()) return std::nullopt;
        if (value.isString()) return value.toString();
        QStringList lines;
        const QJsonArray array = value.toArray();
        for (const auto& line : array) {
            if (line.isString()) lines += line.toString();
        }
        if (!value.isArray() || lines.size() != array.size()) {
            fail(tr("\"%1\" is no list of lines").arg(key));
        }
        return lines.join(lineBreak);
    }

    [[nodiscard]] QJsonObject object(const QString& key) {
        const QJsonValue value = m_rest.take(key);
        if (value.isUndefined() || value.isNull()) return {};
        if (!value.isObject()) fail(tr("\"%1\" is no object").arg(key));
        return value.toObject();
    }

    [[nodiscard]] QJsonValue take(const QString& key) { return m_rest.take(key); }
    [[nodiscard]] const QJsonObject& rest() const { return m_rest; }
    [[nodiscard]] const QString& name() const { return m_name; }

private:
    QJsonObject m_rest;
    QString m_name;
};

QJsonObject parsed(const QByteArray& content, const QString& name) {
    const auto fail = [&](const QString& what) {
        throw orv::Error(tr("%1 is no query file: %2.").arg(name, what));
    };
    const QByteArray text = decodeUtf8(content, name).toUtf8();
    if (text.trimmed().isEmpty()) fail(tr("it is empty"));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        const qsizetype line = text.left(error.offset).count('\n') + 1;
        fail(tr("it is no JSON from line %1 on (%2)").arg(line).arg(error.errorString()));
    }
    if (!document.isObject()) fail(tr("it is no JSON object"));
    return document.object();
}

void requireVersion(Reader& reader) {
    if (reader.take(formatKey).toString() != formatName) {
        reader.fail(tr("it does not begin with \"%1\": \"%2\"").arg(formatKey, formatName));
    }
    const QJsonValue value = reader.take(versionKey);
    const int version = value.toInt(0);
    if (!value.isDouble() || version < 1) reader.fail(tr("it has no version"));
    if (version > QueryDocument::currentVersion) {
        throw orv::Error(tr("%1 was saved by a later version of orvquery (its format is %2, this "
                            "program knows up to %3); it is left as it is.")
                             .arg(reader.name())
                             .arg(version)
                             .arg(QueryDocument::currentVersion));
    }
}

DocumentDatabase readDatabase(Reader& reader) {
    DocumentDatabase database;
    database.name = reader.text(QStringLiteral("name"));
    database.address = withoutPassword(reader.text(QStringLiteral("address")));
    database.schema = reader.text(QStringLiteral("schema"));
    database.isSample = reader.flag(QStringLiteral("sample"));
    return database;
}

QJsonObject databaseObject(const QueryDocument& document) {
    QJsonObject object = document.otherDatabaseKeys;
    const DocumentDatabase& database = document.database;
    if (!database.name.isEmpty()) object.insert(QStringLiteral("name"), database.name);
    if (!database.address.isEmpty()) {
        object.insert(QStringLiteral("address"), withoutPassword(database.address));
    }
    if (!database.schema.isEmpty()) object.insert(QStringLiteral("schema"), database.schema);
    if (database.isSample) object.insert(QStringLiteral("sample"), true);
    return object;
}

// They follow from the rest, and would be told twice.
void removeNotes(QJsonObject& state) {
    for (const char* key : {"statement", "error", "messages", "report"}) {
        state.remove(QLatin1String(key));
    }
}

}  // namespace

DocumentDatabase DocumentDatabase::relativeTo(const QString& folder) const {
    DocumentDatabase result = *this;
    if (isFileAddress(address)) {
        result.address = withDatabaseFile(address, relativePath(databaseFile(address), folder));
    }
    if (!schema.isEmpty()) result.schema = relativePath(schema, folder);
    return result;
}

DocumentDatabase DocumentDatabase::absoluteIn(const QString& folder) const {
    DocumentDatabase result = *this;
    if (isFileAddress(address)) {
        result.address = withDatabaseFile(address, absolutePath(databaseFile(address), folder));
    }
    if (!schema.isEmpty()) result.schema = absolutePath(schema, folder);
    return result;
}

bool DocumentDatabase::isSame(const DocumentDatabase& other) const {
    return address == other.address && schema == other.schema && isSample == other.isSample;
}

QByteArray QueryDocument::state() const {
    return QJsonDocument(query).toJson(QJsonDocument::Compact);
}

void QueryDocument::setState(const QByteArray& state) {
    query = QJsonDocument::fromJson(state).object();
    statement = query.value(statementKey).toString();
    removeNotes(query);
}

QueryDocument readDocument(const QByteArray& content, const QString& name) {
    Reader reader(parsed(content, name), name);
    requireVersion(reader);
    QueryDocument document;
    Reader database(reader.object(databaseKey), name);
    document.database = readDatabase(database);
    document.otherDatabaseKeys = database.rest();
    document.statement = reader.lines(statementKey, QStringLiteral("\r\n")).value_or(QString());
    document.typed = reader.lines(typedKey, QStringLiteral("\n"));
    document.query = reader.object(queryKey);
    removeNotes(document.query);
    document.otherKeys = reader.rest();
    try {
        const orv::QueryState state = orv::readState(document.state());
        Q_UNUSED(state);
    } catch (const orv::Error& error) {
        throw orv::Error(tr("%1 cannot be opened. %2.").arg(name, error.Message()));
    }
    return document;
}

QByteArray documentText(const QueryDocument& document) {
    QJsonObject object = document.otherKeys;
    object.insert(formatKey, formatName);
    object.insert(versionKey, QueryDocument::currentVersion);
    const QJsonObject database = databaseObject(document);
    if (!database.isEmpty()) object.insert(databaseKey, database);
    if (!document.statement.isEmpty()) object.insert(statementKey, linesOf(document.statement));
    if (document.typed) object.insert(typedKey, linesOf(*document.typed));
    if (!document.query.isEmpty()) object.insert(queryKey, document.query);
    return documentLines(object);
}

}  // namespace orvquery
