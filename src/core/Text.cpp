// SPDX-License-Identifier: MIT
#include "core/Text.h"

#include <algorithm>
#include <span>

namespace orv {

namespace {

bool isBlankCharacter(QChar character) {
    return character.unicode() <= u' ';
}

bool isQuote(QChar character) {
    return character == u'"' || character == u'\'';
}

// Letters beyond ASCII may need more room in upper case, all others are changed in place.
void appendUpper(QString& result, QStringView text) {
    const bool isAscii = std::all_of(text.begin(), text.end(),
                                     [](QChar character) { return character.unicode() < 0x80; });
    if (!isAscii) {
        result += text.toString().toUpper();
        return;
    }
    const qsizetype first = result.size();
    result += text;
    for (QChar& letter : std::span(result.begin() + first, result.end())) {
        if (letter >= u'a' && letter <= u'z') letter = QChar(letter.unicode() - (u'a' - u'A'));
    }
}

}  // namespace

QStringView orvTrim(QStringView text) {
    while (!text.isEmpty() && isBlankCharacter(text.front())) text = text.mid(1);
    while (!text.isEmpty() && isBlankCharacter(text.back())) text.chop(1);
    return text;
}

QString orvTrim(const QString& text) {
    const QStringView view = orvTrim(QStringView(text));
    return view.size() == text.size() ? text : view.toString();
}

void appendUpperOutsideQuotes(QString& result, QStringView text) {
    qsizetype position = 0;
    while (position < text.size()) {
        qsizetype quote = position;
        while (quote < text.size() && !isQuote(text[quote])) ++quote;
        appendUpper(result, text.mid(position, quote - position));
        if (quote == text.size()) break;
        qsizetype close = text.indexOf(text[quote], quote + 1);
        close = close < 0 ? text.size() : close + 1;
        result += text.mid(quote, close - quote);
        position = close;
    }
}

QString upperOutsideQuotes(QStringView text) {
    QString result;
    result.reserve(text.size());
    appendUpperOutsideQuotes(result, text);
    return result;
}

qsizetype firstFullStop(QStringView text) {
    QChar open;
    for (qsizetype position = 0; position < text.size(); ++position) {
        const QChar character = text[position];
        if (!open.isNull()) {
            if (character == open) open = QChar();
        } else if (isQuote(character)) {
            open = character;
        } else if (character == u'.') {
            return position;
        }
    }
    return -1;
}

QualifiedName splitQualifiedName(const QString& text) {
    const qsizetype stop = firstFullStop(text);
    if (stop < 0) return {QString(), text};
    return {text.left(stop), text.mid(stop + 1)};
}

bool isQuotedName(QStringView text) {
    if (text.size() < 2 || text.front() != u'"' || text.back() != u'"') return false;
    for (qsizetype position = 1; position + 1 < text.size(); ++position) {
        if (text[position] != u'"') continue;
        if (position + 2 >= text.size() || text[position + 1] != u'"') return false;
        ++position;
    }
    return true;
}

QString unquotedName(const QString& text) {
    if (!isQuotedName(text)) return text;
    return text.mid(1, text.size() - 2).replace(QStringLiteral("\"\""), QStringLiteral("\""));
}

QString withoutQuotes(const QString& text) {
    const bool isText = text.size() > 1 && text.front() == u'\'' && text.back() == u'\'';
    return isText ? text.mid(1, text.size() - 2) : unquotedName(text);
}

bool isBlank(QStringView text) {
    return orvTrim(text).isEmpty();
}

QString quotedName(const QString& text) {
    QString inner = text;
    inner.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    return u'"' + inner + u'"';
}

bool isPlainIdentifier(QStringView text) {
    const auto startsName = [](QChar character) {
        return (character >= u'A' && character <= u'Z') ||
               (character >= u'a' && character <= u'z') || character == u'_';
    };
    if (text.isEmpty() || !startsName(text.front())) return false;
    return std::all_of(text.begin(), text.end(), [&](QChar character) {
        return startsName(character) || (character >= u'0' && character <= u'9') ||
               character == u'$';
    });
}

}  // namespace orv
