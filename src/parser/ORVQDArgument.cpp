// SPDX-License-Identifier: MIT
#include "parser/ORVQDArgument.h"

#include "core/Text.h"
#include "parser/ORVQDNormalise.h"

namespace orv {

namespace {

// A comment has become a blank that stands for more than a blank.
bool hasComment(const NormalisedSQL& sql, const QString& given) {
    for (int index = 0; index < int(sql.text.size()); ++index) {
        if (sql.text[index] != u' ') continue;
        const QChar first = given[sql.givenPosition(index)];
        if (first == u'-' || first == u'/') return true;
    }
    return false;
}

enum class Break { None, Quote, Semicolon, Bracket, Comma };

// What ends the argument too early, or leaves it open. Quotes come first: what stands behind an
// open one is none of the others.
Break breakIn(QStringView text) {
    Break found = Break::None;
    QString open;
    for (qsizetype index = 0; index < text.size(); ++index) {
        const QChar character = text[index];
        Break here = Break::None;
        if (character == u'\'' || character == u'"' || character == u'`') {
            index = text.indexOf(character, index + 1);
            if (index < 0) return Break::Quote;
        } else if (character == u'(' || character == u'[') {
            open += character;
        } else if (character == u')' || character == u']') {
            const QChar opening = character == u')' ? u'(' : u'[';
            if (open.endsWith(opening)) {
                open.chop(1);
            } else {
                here = Break::Bracket;
            }
        } else if (character == u';') {
            here = Break::Semicolon;
        } else if (character == u',' && open.isEmpty()) {
            here = Break::Comma;
        }
        if (found == Break::None) found = here;
    }
    return found == Break::None && !open.isEmpty() ? Break::Bracket : found;
}

}  // namespace

QString argumentProblem(const QString& sql) {
    if (isBlank(sql)) return QStringLiteral("An argument must not be blank.");
    // Between the brackets of a call a final ";" and what begins a name are what they are there.
    const QString call = u'(' + sql + u')';
    const NormalisedSQL normalised = NormaliseSQL(call);
    // One that ends nowhere takes the bracket with it, and a ";" in front of it leaves no trace.
    const bool isSwallowed = !normalised.text.endsWith(u')');
    if (isSwallowed || hasComment(normalised, call)) {
        return QStringLiteral("An argument has no comments.");
    }
    switch (breakIn(QStringView(normalised.text).sliced(1).chopped(1))) {
    case Break::None: return {};
    case Break::Quote: return QStringLiteral("A quote is not closed.");
    case Break::Semicolon: return QStringLiteral("A semicolon ends the statement.");
    case Break::Bracket: return QStringLiteral("The brackets do not match.");
    case Break::Comma:
        return QStringLiteral("A comma outside brackets makes more than one argument of this.");
    }
    return {};
}

}  // namespace orv
