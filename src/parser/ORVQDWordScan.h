// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDKeywords.h"

#include <QString>
#include <QStringView>

/// Scanning of words over a text, shared by the statement parser and its public word functions.
/// Positions are indices of the text; `end` is exclusive.
namespace orv {

[[nodiscard]] inline bool isOperatorCharacter(QChar character) {
    switch (character.unicode()) {
    case u'=':
    case u'<':
    case u'>':
    case u'!':
    case u'+':
    case u'-':
    case u'*':
    case u'/':
    case u'|': return true;
    default: return false;
    }
}

/// The parser's operator characters, and those that only some dialects have.
[[nodiscard]] inline bool isSignCharacter(QChar character) {
    return isOperatorCharacter(character) || character == u'%' || character == u'&' ||
           character == u'^' || character == u'~';
}

/// A blank, a comma or a bracket.
[[nodiscard]] inline bool isSeparator(QChar character) {
    switch (character.unicode()) {
    case u' ':
    case u',':
    case u'(':
    case u')': return true;
    default: return false;
    }
}

/// A word that was read: its text as it is compared and stored, and where reading goes on.
struct ScannedWord {
    WordInfo info;
    QString text;  ///< upper-cased outside quotes; "GROUP BY", "IS NOT NULL" as one word
    int end = 0;   ///< behind the word's last character
    int next = 0;  ///< where the rest begins (behind the blanks that follow "GROUP BY")
};

/// Position behind blanks and control characters, from `at`.
[[nodiscard]] int skipBlanks(QStringView text, int at, int end);

/// Reads the word at `at`. Empty when a separator or operator stands there, unless that is the last
/// character: a separator that is the last character belongs to the word in front of it.
[[nodiscard]] ScannedWord scanWord(QStringView text, int at, int end);

/// The same without joining "GROUP BY", "ORDER BY" and "IS NULL".
[[nodiscard]] ScannedWord scanPlainWord(QStringView text, int at, int end);

/// Upper-cases outside quotes; cheap for texts that are upper case already.
[[nodiscard]] QString upperWord(QStringView text);

}  // namespace orv
