// SPDX-License-Identifier: MIT
#include "parser/ORVQDWordScan.h"

#include "core/Text.h"

namespace orv {

namespace {

// Position of the first separator or operator outside quotes, `end` when there is none.
int wordBoundary(QStringView text, int at, int end) {
    for (int position = at; position < end; ++position) {
        const QChar character = text[position];
        if (character == u'"' || character == u'\'') {
            const qsizetype close = text.first(end).indexOf(character, position + 1);
            if (close < 0) return end;
            position = int(close);
        } else if (isSeparator(character) || isOperatorCharacter(character)) {
            return position;
        }
    }
    return end;
}

bool beginsWithBy(QStringView text, int at, int end) {
    return end - at >= 2 && text[at].toUpper() == u'B' && text[at + 1].toUpper() == u'Y';
}

// Behind "IS": whether NULL or NOT NULL follows, and then the one word of both.
void joinIsNull(QStringView text, int end, ScannedWord& word) {
    ScannedWord follower = scanPlainWord(text, skipBlanks(text, word.next, end), end);
    const bool negated = follower.text == u"NOT";
    if (negated) follower = scanPlainWord(text, skipBlanks(text, follower.next, end), end);
    if (orvTrim(follower.text) != u"NULL") return;
    word.text = negated ? QStringLiteral("IS NOT NULL") : QStringLiteral("IS NULL");
    word.end = follower.end;
    word.next = follower.next;
}

}  // namespace

int skipBlanks(QStringView text, int at, int end) {
    while (at < end && text[at].unicode() <= u' ') ++at;
    return at;
}

QString upperWord(QStringView text) {
    for (const QChar character : text) {
        const bool settled = (character >= u'A' && character <= u'Z') ||
                             (character >= u'0' && character <= u'9') || character == u'_' ||
                             character == u'.';
        if (!settled) return upperOutsideQuotes(text);
    }
    return text.toString();
}

ScannedWord scanPlainWord(QStringView text, int at, int end) {
    int boundary = wordBoundary(text, at, end);
    if (boundary == end - 1) boundary = end;
    return {upperWord(text.mid(at, boundary - at)), boundary, boundary};
}

ScannedWord scanWord(QStringView text, int at, int end) {
    ScannedWord word = scanPlainWord(text, at, end);
    if (word.text == u"GROUP" || word.text == u"ORDER") {
        const int by = skipBlanks(text, word.next, end);
        if (beginsWithBy(text, by, end)) {
            word.text += QStringLiteral(" BY");
            word.end = by + 2;
            word.next = skipBlanks(text, word.end, end);
        }
    } else if (word.text == u"IS") {
        joinIsNull(text, end, word);
    }
    return word;
}

}  // namespace orv
