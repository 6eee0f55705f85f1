// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDJsonWriter.h"

namespace orv {

namespace {

constexpr int indentBlanks = 2;

}  // namespace

void JsonWriter::newLine() {
    if (m_indented) m_out += '\n' + QByteArray(qsizetype(m_empty.size()) * indentBlanks, ' ');
}

void JsonWriter::separate() {
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_empty.empty()) return;
    if (!m_empty.back()) m_out += ',';
    m_empty.back() = false;
    newLine();
}

JsonWriter& JsonWriter::begin(char bracket) {
    separate();
    m_out += bracket;
    m_empty.push_back(true);
    return *this;
}

JsonWriter& JsonWriter::end(char bracket) {
    const bool empty = m_empty.back();
    m_empty.pop_back();
    if (!empty) newLine();
    m_out += bracket;
    return *this;
}

JsonWriter& JsonWriter::key(const char* name) {
    separate();
    writeText(QString::fromLatin1(name));
    m_out += m_indented ? ": " : ":";
    m_afterKey = true;
    return *this;
}

JsonWriter& JsonWriter::value(const QString& text) {
    separate();
    writeText(text);
    return *this;
}

JsonWriter& JsonWriter::value(int number) {
    separate();
    m_out += QByteArray::number(number);
    return *this;
}

JsonWriter& JsonWriter::value(bool flag) {
    separate();
    m_out += flag ? "true" : "false";
    return *this;
}

JsonWriter& JsonWriter::null() {
    separate();
    m_out += "null";
    return *this;
}

// Half of a surrogate pair, which UTF-8 has no bytes for, goes as an escape: read again it is the
// same character.
void JsonWriter::writeText(const QString& text) {
    m_out += '"';
    qsizetype start = 0;
    for (qsizetype index = 0; index < text.size(); ++index) {
        if (!text[index].isSurrogate()) continue;
        const bool isPair = text[index].isHighSurrogate() && index + 1 < text.size() &&
                            text[index + 1].isLowSurrogate();
        if (isPair) {
            ++index;
            continue;
        }
        writeCharacters(QStringView(text).mid(start, index - start));
        m_out += "\\u" + QByteArray::number(text[index].unicode(), 16);
        start = index + 1;
    }
    writeCharacters(QStringView(text).mid(start));
    m_out += '"';
}

// What needs no escape is copied a run at a time.
void JsonWriter::writeCharacters(QStringView text) {
    const QByteArray bytes = text.toUtf8();
    qsizetype written = 0;
    for (qsizetype position = 0; position < bytes.size(); ++position) {
        const char character = bytes[position];
        if (uchar(character) >= 0x20 && character != '"' && character != '\\') continue;
        m_out.append(bytes.constData() + written, position - written);
        written = position + 1;
        switch (character) {
        case '"': m_out += "\\\""; break;
        case '\\': m_out += "\\\\"; break;
        case '\n': m_out += "\\n"; break;
        case '\r': m_out += "\\r"; break;
        case '\t': m_out += "\\t"; break;
        default: m_out += "\\u00" + QByteArray::number(uchar(character), 16).rightJustified(2, '0');
        }
    }
    m_out.append(bytes.constData() + written, bytes.size() - written);
}

}  // namespace orv
