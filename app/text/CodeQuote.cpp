// SPDX-License-Identifier: MIT
#include "text/CodeQuote.h"

#include <QStringList>

namespace orvquery {

namespace {

using Kind = SqlPieces::Kind;

// Three digits always: a digit of the text may follow.
QString octal(char32_t character) {
    return QStringLiteral("\\%1").arg(uint(character), 3, 8, QChar(u'0'));
}

QString hexadecimal(char32_t character, CodeLanguage language) {
    if (character <= 0xffff) {
        return QStringLiteral("\\u%1").arg(uint(character), 4, 16, QChar(u'0'));
    }
    if (language == CodeLanguage::Java) {
        return hexadecimal(QChar::highSurrogate(character), language) +
               hexadecimal(QChar::lowSurrogate(character), language);
    }
    return QStringLiteral("\\U%1").arg(uint(character), 8, 16, QChar(u'0'));
}

bool isSeen(char32_t character) {
    return QChar::isPrint(character) && (character == U' ' || !QChar::isSpace(character));
}

QString escaped(char32_t character, CodeLanguage language) {
    switch (character) {
    case U'\\': return QStringLiteral("\\\\");
    case U'"': return QStringLiteral("\\\"");
    case U'\n': return QStringLiteral("\\n");
    case U'\r': return QStringLiteral("\\r");
    case U'\t': return QStringLiteral("\\t");
    default: break;
    }
    if (isSeen(character)) return QString::fromUcs4(&character, 1);
    return character < 0x80 ? octal(character) : hexadecimal(character, language);
}

QString literal(QStringView text, CodeLanguage language) {
    QString result(u'"');
    char32_t previous = 0;
    const QList<uint> characters = text.toUcs4();
    for (const uint code : characters) {
        const bool isHalf = code >= 0xd800 && code <= 0xdfff;
        const char32_t character = isHalf ? U'\ufffd' : char32_t(code);
        // Older compilers take two question marks and a third sign for one of another kind.
        const bool isTrigraph =
            language == CodeLanguage::Cpp && character == U'?' && previous == U'?';
        result += isTrigraph ? QStringLiteral("\\?") : escaped(character, language);
        previous = character;
    }
    return result + u'"';
}

QStringList literalsOfLines(const QString& text, CodeLanguage language) {
    QStringList literals;
    qsizetype start = 0;
    do {
        const qsizetype found = text.indexOf(u'\n', start);
        const qsizetype end = found < 0 ? text.size() : found + 1;
        literals += literal(QStringView(text).sliced(start, end - start), language);
        start = end;
    } while (start < text.size());
    return literals;
}

// A constant takes up to 65,535 bytes, joined literals together.
constexpr qsizetype mostJavaBytes = 60'000;

// As a class file has it: halves of surrogate pairs on their own.
qsizetype javaBytes(QStringView text) {
    qsizetype bytes = 0;
    for (const QChar unit : text) {
        bytes += unit.unicode() >= 0x800 ? 3 : unit.unicode() >= 0x80 || unit.isNull() ? 2 : 1;
    }
    return bytes;
}

// As much of the text as a constant takes.
qsizetype javaPart(QStringView text) {
    qsizetype end = 0;
    qsizetype bytes = 0;
    while (end < text.size()) {
        bytes += javaBytes(text.sliced(end, 1));
        if (bytes > mostJavaBytes) return text[end].isLowSurrogate() ? end - 1 : end;
        ++end;
    }
    return end;
}

QString joinedForJava(const QStringList& literals) {
    return literals.join(QStringLiteral(" +\n"));
}

// Constants that are joined when the program runs.
QString longTextForJava(const QString& text) {
    QStringList parts;
    QStringList literals;
    qsizetype room = mostJavaBytes;
    qsizetype start = 0;
    while (start < text.size()) {
        const qsizetype found = text.indexOf(u'\n', start);
        const qsizetype end = found < 0 ? text.size() : found + 1;
        const QStringView rest = QStringView(text).sliced(start, end - start);
        const QStringView part = rest.first(javaPart(rest));
        const qsizetype bytes = javaBytes(part);
        if (bytes > room) {
            parts += joinedForJava(literals);
            literals.clear();
            room = mostJavaBytes;
        }
        literals += literal(part, CodeLanguage::Java);
        room -= bytes;
        start += part.size();
    }
    parts += joinedForJava(literals);
    return QStringLiteral("String.join(\"\",\n") + parts.join(QStringLiteral(",\n")) + u')';
}

// Comments within comments would end at another place for some databases than for others.
QString closedComment(QStringView content) {
    QString text = content.toString().simplified();
    text.replace(QStringLiteral("*/"), QStringLiteral("* /"));
    text.replace(QStringLiteral("/*"), QStringLiteral("/ *"));
    return QStringLiteral("/* ") + text + QStringLiteral(" */");
}

QString commentOnOneLine(QStringView comment) {
    if (comment.startsWith(u"--")) return closedComment(comment.sliced(2));
    if (comment.startsWith(u"#")) return closedComment(comment.sliced(1));
    QString text = comment.toString();
    for (QChar& character : text) {
        if (character.isSpace()) character = u' ';
    }
    return text;
}

}  // namespace

QString codeOf(const QString& text, CodeLanguage language) {
    if (language == CodeLanguage::Java && javaBytes(text) > mostJavaBytes) {
        return longTextForJava(text);
    }
    const QStringList literals = literalsOfLines(text, language);
    switch (language) {
    case CodeLanguage::Cpp: return literals.join(u'\n');
    case CodeLanguage::Java: return joinedForJava(literals);
    case CodeLanguage::Python: break;
    }
    if (literals.size() == 1) return literals.front();
    return QStringLiteral("(\n    ") + literals.join(QStringLiteral("\n    ")) +
           QStringLiteral("\n)");
}

QString withPlainBreaks(const QString& statement, SqlRules rules) {
    QString result;
    SqlPieces pieces(statement, rules);
    while (pieces.next()) {
        if (pieces.kind() == Kind::Quoted) {
            result += pieces.text();
        } else if (pieces.kind() == Kind::Comment) {
            result +=
                pieces.text().toString().replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        } else if (pieces.text() == u"\n" && result.endsWith(u'\r')) {
            result.back() = u'\n';
        } else {
            result += pieces.text();
        }
    }
    return result;
}

QString onOneLine(const QString& statement, SqlRules rules) {
    QString result;
    bool isBlankWanted = false;
    SqlPieces pieces(statement, rules);
    while (pieces.next()) {
        // What begins a comment that is run counts as blank too.
        if (pieces.kind() == Kind::Blank && pieces.text().trimmed().isEmpty()) {
            isBlankWanted = true;
            continue;
        }
        if (isBlankWanted && !result.isEmpty()) result += u' ';
        isBlankWanted = false;
        if (pieces.kind() != Kind::Comment) {
            result += pieces.text();
            continue;
        }
        result += commentOnOneLine(pieces.text());
        // The end of the line went with the comment.
        isBlankWanted = pieces.text().endsWith(u'\n');
    }
    return result;
}

}  // namespace orvquery
