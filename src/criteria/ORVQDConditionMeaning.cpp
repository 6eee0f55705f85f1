// SPDX-License-Identifier: MIT
#include "criteria/ORVQDConditionMeaning.h"

#include "core/Text.h"

#include <algorithm>

namespace orv {

namespace {

using Elements = std::vector<ConditionElement>::const_iterator;

constexpr QChar noneSign = u' ';
constexpr QChar allSign = u'&';
constexpr QChar anySign = u'|';

// Signs are compared one by one: ">-5" is "> -5", and "!=" is "<>".
void appendSigns(QString& text, QStringView signs) {
    for (qsizetype at = 0; at < signs.size(); ++at) {
        if (signs.mid(at).startsWith(QLatin1String("!="))) {
            text += QLatin1String("< > ");
            ++at;
        } else {
            text += signs[at];
            text += u' ';
        }
    }
}

void appendCondition(QString& text, const TokenRun& run) {
    for (int index = 0; index < run.size(); ++index) {
        if (run[index].kind == SqlToken::Sign) {
            appendSigns(text, run.textOf(index));
        } else {
            appendUpperOutsideQuotes(text, run.textOf(index));
            text += u' ';
        }
    }
    text += u';';
}

class MeaningWriter {
public:
    // Brackets inside brackets with the same connective vanish, and so does what is negated twice.
    void write(Elements first, Elements last, QChar around, bool negated) {
        const bool isAny = has(first, last, ConditionElement::Or);
        const bool isAll = !isAny && has(first, last, ConditionElement::And);
        if (!isAny && !isAll) {
            writeOne(first, last, around, negated);
            return;
        }
        const QChar connective = isAny ? anySign : allSign;
        const bool isOwn = negated || connective != around;
        if (negated) text += u'!';
        if (isOwn) text += connective;
        if (isOwn) text += u'(';
        const ConditionElement::Kind kind = isAny ? ConditionElement::Or : ConditionElement::And;
        for (Elements part = first; part <= last;) {
            const Elements end = std::find_if(
                part, last, [&](const ConditionElement& element) { return element.kind == kind; });
            write(part, end, connective, false);
            if (end == last) break;
            part = end + 1;
        }
        if (isOwn) text += QStringLiteral(");");
    }

    QString text;

private:
    static bool has(Elements first, Elements last, ConditionElement::Kind kind) {
        return std::any_of(first, last,
                           [&](const ConditionElement& element) { return element.kind == kind; });
    }

    void writeOne(Elements first, Elements last, QChar around, bool negated) {
        for (Elements element = first; element != last; ++element) {
            switch (element->kind) {
            case ConditionElement::Not: negated = !negated; break;
            case ConditionElement::Bracket:
                write(element->children.begin(), element->children.end(), around, negated);
                break;
            case ConditionElement::Condition:
                if (negated) text += u'!';
                appendCondition(text, element->run);
                break;
            case ConditionElement::And:
            case ConditionElement::Or: break;
            }
        }
    }
};

}  // namespace

QString meaningOf(const std::vector<ConditionElement>& level) {
    MeaningWriter writer;
    writer.write(level.begin(), level.end(), noneSign, false);
    return writer.text;
}

}  // namespace orv
