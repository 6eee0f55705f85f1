// SPDX-License-Identifier: MIT
#include "text/TextPosition.h"

namespace orvquery {

TextPosition textPosition(QStringView before) {
    TextPosition place;
    QChar previous;
    for (const QChar character : before) {
        if (character == u'\r' || (character == u'\n' && previous != u'\r')) {
            ++place.line;
            place.column = 1;
        } else if (character != u'\n' && !character.isLowSurrogate()) {
            ++place.column;
        }
        previous = character;
    }
    return place;
}

}  // namespace orvquery
