// SPDX-License-Identifier: MIT
#include "meaning/SqlDress.h"

namespace orvtest {

namespace {

enum class Letters : quint8 { Upper, Lower, Mixed };

bool isWordPart(QChar character) {
    return character.isLetterOrNumber() || character == u'_' || character == u'"' ||
           character == u'\'' || character == u'`' || character == u'[' || character == u']';
}

class Dresser {
public:
    Dresser(Dice& dice, const QString& text) : m_dice(dice), m_text(text) {
        m_letters = Letters(dice.below(3));
        m_blanks = dice.chance(50);
        m_comments = dice.chance(25);
    }

    QString run() {
        while (m_at < m_text.size()) {
            const QChar character = m_text[m_at];
            if (character == u'\'' || character == u'"' || character == u'`') {
                copyQuoted(character);
            } else if (character == u'[') {
                copyQuoted(u']');
            } else if (character == u' ') {
                m_result += gap();
                ++m_at;
            } else if (character.isLetter()) {
                copyWord();
            } else {
                m_result += character;
                ++m_at;
            }
        }
        if (m_dice.chance(6)) m_result += QStringLiteral(" ; ");
        return m_result;
    }

private:
    void copyQuoted(QChar close) {
        const qsizetype end = m_text.indexOf(close, m_at + 1) + 1;
        m_result += QStringView(m_text).mid(m_at, end - m_at);
        m_at = end;
    }

    void copyWord() {
        const bool upper = m_letters == Letters::Mixed ? m_dice.chance(50) : true;
        while (m_at < m_text.size() && isWordPart(m_text[m_at]) && m_text[m_at] != u'\'') {
            const QChar character = m_text[m_at++];
            const bool lowers = m_letters == Letters::Lower ||
                                (m_letters == Letters::Mixed && (!upper || m_dice.chance(20)));
            m_result += lowers ? character.toLower() : character;
        }
    }

    QString gap() {
        if (m_comments && m_dice.chance(8)) {
            return m_dice.pick({" /* a note */ ", " /* don't; SELECT ( */ ", " -- a \"note\n",
                                "/**/", " -- (\r\n"});
        }
        if (!m_blanks) return QStringLiteral(" ");
        if (mayClose() && m_dice.chance(25)) return QString();
        if (m_dice.chance(80)) return QStringLiteral(" ");
        return m_dice.pick({"  ", "\n", "\t", "\r\n  ", "   \n"});
    }

    // Whether the neighbours stay two signs without a blank.
    [[nodiscard]] bool mayClose() const {
        if (m_result.isEmpty() || m_at + 1 >= m_text.size()) return false;
        const QChar before = m_result.back();
        const QChar behind = m_text[m_at + 1];
        if (isWordPart(before) && isWordPart(behind)) return false;
        if (before.isSpace() || before == u'.' || behind == u'.') return false;
        const QString pair = QString(before) + behind;
        return pair != u"--" && pair != u"/*" && pair != u"*/" && pair != u"->";
    }

    Dice& m_dice;
    const QString& m_text;
    qsizetype m_at = 0;
    Letters m_letters;
    bool m_blanks;
    bool m_comments;
    QString m_result;
};

}  // namespace

QString dressed(Dice& dice, const QString& text) {
    return Dresser(dice, text).run();
}

}  // namespace orvtest
