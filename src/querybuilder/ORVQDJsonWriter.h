// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDState.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace orv {

/// Writes JSON (RFC 8259) in UTF-8 with keys in the order in which they come; Qt's own documents
/// sort them. Indented by two blanks, or compact on one line.
class JsonWriter {
public:
    explicit JsonWriter(JsonLayout layout) : m_indented(layout == JsonLayout::Indented) {}

    JsonWriter& beginObject() { return begin('{'); }
    JsonWriter& endObject() { return end('}'); }
    JsonWriter& beginArray() { return begin('['); }
    JsonWriter& endArray() { return end(']'); }
    JsonWriter& key(const char* name);
    JsonWriter& value(const QString& text);
    JsonWriter& value(int number);
    JsonWriter& value(bool flag);
    JsonWriter& null();

    [[nodiscard]] const QByteArray& result() const { return m_out; }

private:
    JsonWriter& begin(char bracket);
    JsonWriter& end(char bracket);
    void separate();
    void newLine();
    void writeText(const QString& text);
    void writeCharacters(QStringView text);

    const bool m_indented;
    bool m_afterKey = false;
    std::vector<bool> m_empty;  // per open bracket: nothing was written in it yet
    QByteArray m_out;
};

}  // namespace orv
