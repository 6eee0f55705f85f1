// SPDX-License-Identifier: MIT
#include "documents/DocumentLines.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace orvquery {

namespace {

constexpr int indentWidth = 2;

// In whatever object they stand.
int placeOfKey(const QString& key) {
    static const QStringList order = {
        // Of the document.
        QStringLiteral("format"), QStringLiteral("version"), QStringLiteral("recovery"),
        QStringLiteral("database"),
        // Of a part of the query.
        QStringLiteral("name"), QStringLiteral("address"), QStringLiteral("alias"),
        QStringLiteral("procedure"), QStringLiteral("type"), QStringLiteral("direction"),
        QStringLiteral("kind"), QStringLiteral("value"), QStringLiteral("checked"),
        QStringLiteral("table1"), QStringLiteral("field1"), QStringLiteral("group"),
        QStringLiteral("func"), QStringLiteral("field"), QStringLiteral("operator"),
        QStringLiteral("argFunc"), QStringLiteral("arguments"), QStringLiteral("table2"),
        QStringLiteral("field2"), QStringLiteral("text"), QStringLiteral("muted"),
        QStringLiteral("bounds"), QStringLiteral("collapsed"), QStringLiteral("firstRow"),
        QStringLiteral("brackets"), QStringLiteral("points"), QStringLiteral("fields"),
        QStringLiteral("parameters"), QStringLiteral("rows"),
        // Of the document and the query.
        QStringLiteral("statement"), QStringLiteral("typed"), QStringLiteral("query"),
        QStringLiteral("tables"), QStringLiteral("joins"), QStringLiteral("links"),
        QStringLiteral("where"), QStringLiteral("having"), QStringLiteral("distinct"),
        QStringLiteral("tail"), QStringLiteral("columns"), QStringLiteral("order"),
        QStringLiteral("selectedFields"), QStringLiteral("allFields"),
        QStringLiteral("creationOrder"), QStringLiteral("joinTables"), QStringLiteral("linkJoins"),
        QStringLiteral("groupedColumns"), QStringLiteral("sortedRows"), QStringLiteral("shownRows"),
        QStringLiteral("view")};
    static const QHash<QString, int> places = [] {
        QHash<QString, int> result;
        for (const QString& each : order) result.insert(each, int(result.size()));
        return result;
    }();
    return places.value(key, int(order.size()));
}

QStringList orderedKeys(const QJsonObject& object) {
    QStringList keys = object.keys();  // by their names
    std::stable_sort(keys.begin(), keys.end(), [](const QString& left, const QString& right) {
        return placeOfKey(left) < placeOfKey(right);
    });
    return keys;
}

// Qt writes lists and objects alone.
QByteArray scalar(const QJsonValue& value) {
    return QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).sliced(1).chopped(1);
}

bool hasObject(const QJsonArray& array) {
    return std::any_of(array.begin(), array.end(), [](const QJsonValue& item) {
        return item.isObject() || (item.isArray() && hasObject(item.toArray()));
    });
}

bool isNumbers(const QJsonArray& array) {
    return std::all_of(array.begin(), array.end(),
                       [](const QJsonValue& item) { return item.isDouble(); });
}

// As an item of a list.
bool isOneLine(const QJsonValue& value) {
    if (value.isArray()) return !hasObject(value.toArray());
    const QJsonObject object = value.toObject();
    return std::none_of(object.begin(), object.end(), [](const QJsonValue& member) {
        return member.isObject() || (member.isArray() && hasObject(member.toArray()));
    });
}

class Writer {
public:
    void inLine(const QJsonValue& value) {
        if (value.isArray()) {
            m_text += '[';
            const QJsonArray array = value.toArray();
            for (qsizetype index = 0; index < array.size(); ++index) {
                if (index > 0) m_text += ", ";
                inLine(array[index]);
            }
            m_text += ']';
        } else if (value.isObject()) {
            m_text += '{';
            const QJsonObject object = value.toObject();
            const QStringList keys = orderedKeys(object);
            for (const QString& key : keys) {
                if (key != keys.front()) m_text += ", ";
                m_text += scalar(key) + ": ";
                inLine(object.value(key));
            }
            m_text += '}';
        } else {
            m_text += scalar(value);
        }
    }

    void object(const QJsonObject& object) {
        if (object.isEmpty()) return inLine(object);
        begin('{');
        for (const QString& key : orderedKeys(object)) {
            line();
            m_text += scalar(key) + ": ";
            member(object.value(key));
        }
        end('}');
    }

    [[nodiscard]] const QByteArray& text() const { return m_text; }

private:
    void member(const QJsonValue& value) {
        if (value.isObject()) return object(value.toObject());
        if (!value.isArray() || isNumbers(value.toArray())) return inLine(value);
        list(value.toArray());
    }

    void list(const QJsonArray& array) {
        if (array.isEmpty()) return inLine(array);
        begin('[');
        for (const auto& item : array) {
            line();
            if (isOneLine(item)) {
                inLine(item);
            } else if (item.isArray()) {
                list(item.toArray());
            } else {
                object(item.toObject());
            }
        }
        end(']');
    }

    void begin(char bracket) {
        m_text += bracket;
        ++m_depth;
        m_isFirst = true;
    }

    void line() {
        if (!m_isFirst) m_text += ',';
        m_isFirst = false;
        newLine();
    }

    void end(char bracket) {
        --m_depth;
        m_isFirst = false;
        newLine();
        m_text += bracket;
    }

    void newLine() { m_text += '\n' + QByteArray(qsizetype(m_depth) * indentWidth, ' '); }

    QByteArray m_text;
    int m_depth = 0;
    bool m_isFirst = true;
};

}  // namespace

QByteArray documentLines(const QJsonObject& object) {
    Writer writer;
    writer.object(object);
    return writer.text() + '\n';
}

}  // namespace orvquery
