// SPDX-License-Identifier: MIT
#include "JsonEdits.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace orvfuzz {

namespace {

constexpr int mostEdits = 8;

QJsonValue oddValue(ByteReader& bytes) {
    static const QList<QJsonValue> values = {
        QJsonValue::Null,
        true,
        false,
        0,
        1,
        -1,
        2.5,
        1e300,
        -1e300,
        2147483647,
        -2147483648.0,
        4294967296.0,
        100000,
        "",
        " ",
        "ORDERS",
        "T",
        "T.A",
        "O.CUSTNO",
        "\"a.b\"",
        "klInnerJoin",
        "klFOuterJoin",
        "ftInteger",
        "ptInput",
        "All",
        "None",
        "=",
        "IN",
        "IS NULL",
        "BETWEEN",
        "SUM",
        "Ascending",
        "'it''s'",
        "(",
        "); --",
        "\u00e4\U0001F600",
        QJsonArray(),
        QJsonArray{1, 2},
        QJsonArray{"A", "B"},
        QJsonArray{QJsonObject()},
        QJsonObject(),
        QJsonObject{{"x", 1}, {"y", -1}},
        QJsonObject{{"group", "Any"}, {"rows", QJsonArray()}},
    };
    return values[bytes.below(int(values.size()))];
}

QJsonArray editedArray(QJsonArray array, ByteReader& bytes);
QJsonObject editedObject(QJsonObject object, ByteReader& bytes);

// One value somewhere below it is changed, or it is itself.
QJsonValue editedValue(const QJsonValue& value, ByteReader& bytes) {
    if (value.isArray() && !value.toArray().isEmpty() && !bytes.oneIn(8)) {
        return editedArray(value.toArray(), bytes);
    }
    if (value.isObject() && !value.toObject().isEmpty() && !bytes.oneIn(8)) {
        return editedObject(value.toObject(), bytes);
    }
    if (value.isDouble() && bytes.oneIn(2)) return value.toDouble() + bytes.byte() - 128;
    if (value.isString() && bytes.oneIn(2)) {
        return value.toString().mid(bytes.below(4)) + oddValue(bytes).toString();
    }
    return oddValue(bytes);
}

QJsonArray editedArray(QJsonArray array, ByteReader& bytes) {
    const int at = bytes.below(int(array.size()));
    const int other = bytes.below(int(array.size()));
    switch (bytes.below(8)) {
    case 0: array.removeAt(at); break;
    case 1: array.insert(other, QJsonValue(array.at(at))); break;
    case 2: {
        const QJsonValue moved = array.at(at);
        array[at] = QJsonValue(array.at(other));
        array[other] = moved;
        break;
    }
    default: array[at] = editedValue(array.at(at), bytes);
    }
    return array;
}

QJsonObject editedObject(QJsonObject object, ByteReader& bytes) {
    const QStringList keys = object.keys();
    const QString key = bytes.oneOf(keys);
    switch (bytes.below(12)) {
    case 0: object.remove(key); break;
    case 1: object[key] = QJsonValue(object.value(bytes.oneOf(keys))); break;
    default: object[key] = editedValue(object.value(key), bytes);
    }
    return object;
}

}  // namespace

QByteArray editedJson(const QByteArray& json, ByteReader& bytes) {
    QJsonObject object = QJsonDocument::fromJson(json).object();
    for (int edit = 0; edit < mostEdits && !bytes.atEnd() && !object.isEmpty(); ++edit) {
        object = editedObject(object, bytes);
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

}  // namespace orvfuzz
