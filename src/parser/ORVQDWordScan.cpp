// SPDX-License-Identifier: MIT
#include "parser/ORVQDWordScan.h"

#include "core/Text.h"

#include <array>

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

// What the parser knows of a word of any case, without a text of its own for it.
WordInfo knownWord(QStringView word) {
    if (word.size() > longestKnownWord) return {};
    std::array<char16_t, longestKnownWord> upper{};
    for (qsizetype index = 0; index < word.size(); ++index) {
        const char16_t unit = word[index].unicode();
        if (unit >= 0x80) return wordInfo(upperWord(word));
        upper[std::size_t(index)] =
            unit >= u'a' && unit <= u'z' ? char16_t(unit - u'a' + u'A') : unit;
    }
    return wordInfo(QStringView(upper.data(), word.size()));
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
    bool hasLower = false;
    for (const QChar character : text) {
        if (character.unicode() >= 0x80) return upperOutsideQuotes(text);
        if (character == u'"' || character == u'\'') return upperOutsideQuotes(text);
        hasLower = hasLower || (character >= u'a' && character <= u'z');
    }
    QString word = text.toString();
    if (!hasLower) return word;
    for (QChar& character : word) {
        if (character >= u'a' && character <= u'z') character.unicode() -= u'a' - u'A';
    }
    return word;
}

ScannedWord scanPlainWord(QStringView text, int at, int end) {
    int boundary = wordBoundary(text, at, end);
    if (boundary == end - 1) boundary = end;
    const QStringView word = text.mid(at, boundary - at);
    const WordInfo info = knownWord(word);
    return {info, info.spelling ? *info.spelling : upperWord(word), boundary, boundary};
}

ScannedWord scanWord(QStringView text, int at, int end) {
    ScannedWord word = scanPlainWord(text, at, end);
    if (!word.info.is(wordPair)) return word;
    if (word.text != u"IS") {
        const int by = skipBlanks(text, word.next, end);
        if (beginsWithBy(text, by, end)) {
            word.text += QStringLiteral(" BY");
            word.end = by + 2;
            word.next = skipBlanks(text, word.end, end);
        }
    } else {
        joinIsNull(text, end, word);
    }
    word.info = wordInfo(word.text);
    return word;
}

}  // namespace orv
