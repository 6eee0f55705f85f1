// SPDX-License-Identifier: MIT
#include "tables/SchemaReader.h"

#include "core/Error.h"
#include "text/TextPosition.h"

#include <QDateTime>
#include <QJsonDocument>

#include <algorithm>

namespace orvquery {

namespace {

QString quotedInMessage(const QString& text) {
    return u'"' + text + u'"';
}

QString described(const QJsonValue& value) {
    switch (value.type()) {
    case QJsonValue::String: return quotedInMessage(value.toString());
    case QJsonValue::Double: return QStringLiteral("a number");
    case QJsonValue::Bool: return QStringLiteral("true or false");
    case QJsonValue::Array: return QStringLiteral("a list");
    case QJsonValue::Object: return QStringLiteral("an object");
    case QJsonValue::Null: return QStringLiteral("null");
    case QJsonValue::Undefined: break;
    }
    return QStringLiteral("nothing");
}

// The position behind the string of JSON that starts at `open`.
qsizetype endOfString(const QByteArray& json, qsizetype open) {
    qsizetype position = open + 1;
    while (position < json.size() && json[position] != '"') {
        position += json[position] == '\\' ? 2 : 1;
    }
    return position + 1;
}

bool isFollowedByColon(const QByteArray& json, qsizetype position) {
    while (position < json.size() && static_cast<uchar>(json[position]) <= ' ') ++position;
    return position < json.size() && json[position] == ':';
}

// The names of the outermost object in the order of the file, also those that stand there twice,
// of which a QJsonObject keeps one. The text is valid JSON.
QStringList outermostNames(const QByteArray& json) {
    QStringList names;
    int depth = 0;
    for (qsizetype position = 0; position < json.size(); ++position) {
        const char character = json[position];
        if (character == '{' || character == '[') ++depth;
        if (character == '}' || character == ']') --depth;
        if (character != '"') continue;
        const qsizetype end = endOfString(json, position);
        if (depth == 1 && isFollowedByColon(json, end)) {
            const QByteArray list = '[' + json.mid(position, end - position) + ']';
            names += QJsonDocument::fromJson(list).array().at(0).toString();
        }
        position = end - 1;
    }
    return names;
}

// Most errors of Qt's reader tell the position behind the character at which it stopped.
qsizetype placeOf(const QJsonParseError& error) {
    const bool isExact = error.error == QJsonParseError::GarbageAtEnd ||
                         error.error == QJsonParseError::IllegalUTF8String;
    return std::max(0, isExact ? error.offset : error.offset - 1);
}

}  // namespace

SchemaReader::SchemaReader(QString fileName) : m_fileName(std::move(fileName)) {}

std::vector<TableDescription> SchemaReader::read(const QByteArray& json) {
    const QJsonObject object = parse(json);
    std::vector<TableDescription> tables;
    KnownNames known;
    const QStringList names = outermostNames(json);
    for (const QString& name : names) {
        m_table.clear();
        if (name.trimmed().isEmpty()) fail(QStringLiteral("a table has no name"));
        requireNewName(known, name);
        m_table = name;
        tables.push_back(table(name, object.value(name)));
    }
    return tables;
}

QJsonObject SchemaReader::parse(const QByteArray& json) const {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        const TextPosition place = textPosition(QString::fromUtf8(json.left(placeOf(error))));
        throw orv::Error(QStringLiteral("%1:%2:%3: this is not valid JSON: %4")
                             .arg(m_fileName)
                             .arg(place.line)
                             .arg(place.column)
                             .arg(error.errorString()));
    }
    if (!document.isObject()) {
        fail(QStringLiteral("expected an object of tables: {\"NAME\": [fields], ...}"));
    }
    return document.object();
}

TableDescription SchemaReader::table(const QString& name, const QJsonValue& value) {
    if (value.isObject()) return procedure(name, value.toObject());
    if (!value.isArray()) {
        fail(QStringLiteral("expected a list of fields, or an object with \"fields\" and "
                            "\"params\", not %1")
                 .arg(described(value)));
    }
    return {name, TDataSet(fields(value.toArray())), std::nullopt};
}

TableDescription SchemaReader::procedure(const QString& name, const QJsonObject& object) {
    const QStringList keys = object.keys();
    for (const QString& key : keys) {
        if (key != QLatin1String("fields") && key != QLatin1String("params")) {
            fail(QStringLiteral("expected \"fields\" and \"params\", not \"%1\"").arg(key));
        }
        if (!object.value(key).isArray()) {
            fail(QStringLiteral("\"%1\" must be a list, not %2")
                     .arg(key, described(object.value(key))));
        }
    }
    return {name, TDataSet(fields(object.value(QLatin1String("fields")).toArray())),
            params(object.value(QLatin1String("params")).toArray())};
}

TFieldDefs SchemaReader::fields(const QJsonArray& entries) {
    m_entry = QStringLiteral("field");
    m_entryNo = 0;
    TFieldDefs result;
    KnownNames known;
    for (const QJsonValue entry : entries) {
        ++m_entryNo;
        result.push_back(field(entry));
        requireNewName(known, result.back().Name);
    }
    m_entryNo = 0;
    return result;
}

TFieldDef SchemaReader::field(const QJsonValue& entry) {
    const QJsonArray parts = entry.toArray();
    if (!entry.isArray() || parts.size() != 2) {
        fail(QStringLiteral("expected a name and a type: [\"NAME\", \"ftInteger\"]"));
    }
    return {entryName(parts[0]), fieldType(parts[1])};
}

TParams SchemaReader::params(const QJsonArray& entries) {
    m_entry = QStringLiteral("parameter");
    m_entryNo = 0;
    TParams result;
    KnownNames known;
    for (const QJsonValue entry : entries) {
        ++m_entryNo;
        result.Items.push_back(param(entry));
        requireNewName(known, result.Items.back().Name);
    }
    m_entryNo = 0;
    return result;
}

TParam SchemaReader::param(const QJsonValue& entry) {
    const QJsonArray parts = entry.toArray();
    if (!entry.isArray() || parts.size() < 3 || parts.size() > 4) {
        fail(
            QStringLiteral("expected a name, a type, a direction and perhaps a value: "
                           "[\"NAME\", \"ftInteger\", \"ptInput\", 5]"));
    }
    TParam result;
    result.Name = entryName(parts[0]);
    result.DataType = fieldType(parts[1]);
    result.ParamType = direction(parts[2]);
    if (parts.size() == 4) result.Value = paramValue(parts[3], result.DataType);
    return result;
}

TFieldType SchemaReader::fieldType(const QJsonValue& value) const {
    const std::optional<TFieldType> type = orv::fieldTypeFromIdentifier(value.toString());
    if (!type) {
        fail(QStringLiteral("expected a field type such as \"ftInteger\" or \"ftString\", not %1")
                 .arg(described(value)));
    }
    return *type;
}

TParamType SchemaReader::direction(const QJsonValue& value) const {
    const std::optional<TParamType> type = orv::paramTypeFromIdentifier(value.toString());
    if (!type) {
        fail(QStringLiteral("expected a direction such as \"ptInput\" or \"ptOutput\", not %1")
                 .arg(described(value)));
    }
    return *type;
}

QVariant SchemaReader::paramValue(const QJsonValue& value, TFieldType type) const {
    switch (value.type()) {
    case QJsonValue::Null: return QVariant(QMetaType::fromType<QString>());
    case QJsonValue::Bool:
    case QJsonValue::Double: return value.toVariant();
    case QJsonValue::String: return timeValue(value.toString(), type);
    case QJsonValue::Array:
    case QJsonValue::Object:
    case QJsonValue::Undefined: break;
    }
    fail(QStringLiteral("expected a text, a number, true, false or null as the value, not %1")
             .arg(described(value)));
}

QVariant SchemaReader::timeValue(const QString& text, TFieldType type) const {
    if (type == ftDate) return requireValid(QDate::fromString(text, Qt::ISODate), text, type);
    if (type == ftTime) return requireValid(QTime::fromString(text, Qt::ISODate), text, type);
    if (type == ftDateTime) {
        return requireValid(QDateTime::fromString(text, Qt::ISODate), text, type);
    }
    return text;
}

template <typename Time>
QVariant SchemaReader::requireValid(const Time& time, const QString& text, TFieldType type) const {
    if (time.isValid()) return time;
    fail(QStringLiteral("the value \"%1\" is not of type %2; expected it as in ISO 8601, such as "
                        "\"2024-12-31\" or \"2024-12-31T18:30:00\"")
             .arg(text, orv::fieldTypeIdentifier(type)));
}

QString SchemaReader::entryName(const QJsonValue& value) const {
    if (!value.isString()) {
        fail(QStringLiteral("expected a text as the name, not %1").arg(described(value)));
    }
    QString name = value.toString();
    if (name.trimmed().isEmpty()) fail(QStringLiteral("the name is empty"));
    return name;
}

void SchemaReader::requireNewName(KnownNames& known, const QString& name) const {
    const QString key = name.toCaseFolded();
    // What is alike there may still differ: a sharp s from two.
    for (auto found = known.constFind(key); found != known.cend() && found.key() == key; ++found) {
        if (found->compare(name, Qt::CaseInsensitive) != 0) continue;
        fail(QStringLiteral("the name \"%1\" is there twice (case makes no difference)").arg(name));
    }
    known.insert(key, name);
}

void SchemaReader::fail(const QString& mistake) const {
    QString place = m_fileName + QStringLiteral(": ");
    if (!m_table.isEmpty()) {
        place += QStringLiteral("table \"%1\"").arg(m_table);
        if (m_entryNo > 0) place += QStringLiteral(", %1 %2").arg(m_entry).arg(m_entryNo);
        place += QStringLiteral(": ");
    }
    throw orv::Error(place + mistake);
}

}  // namespace orvquery
