// SPDX-License-Identifier: MIT
#include "parameters/Placeholders.h"

#include "core/Error.h"

#include <QCoreApplication>

#include <algorithm>

namespace orvquery {

namespace {

bool isNamePart(QChar character) {
    return character.isLetterOrNumber() || character.isMark() || character == u'_' ||
           character == u'$';
}

// Walks over a statement once. What it is at is a placeholder, with a name or without one, a
// comment or anything else.
class Scanner {
public:
    enum class Kind { Other, Comment, Placeholder, QuestionMark };

    explicit Scanner(QStringView text) : m_text(text) {}

    [[nodiscard]] bool isAtEnd() const { return m_position >= m_text.size(); }
    [[nodiscard]] qsizetype position() const { return m_position; }

    // Goes behind the next piece and says what it was.
    Kind next() {
        const QStringView rest = m_text.sliced(m_position);
        if (rest.startsWith(u"--")) return comment(u"\n", 2, 0);
        if (rest.startsWith(u"/*")) return comment(u"*/", 2, 2);
        const QChar first = rest.front();
        if (first == u'\'' || first == u'"' || first == u'`') return quoted(first);
        if (first == u'[' && startsName()) return quoted(u']');
        if (first == u':') return colons();
        ++m_position;
        return first == u'?' ? Kind::QuestionMark : Kind::Other;
    }

private:
    Kind comment(QStringView end, qsizetype from, qsizetype endSize) {
        const qsizetype found = m_text.indexOf(end, m_position + from);
        m_position = found < 0 ? m_text.size() : found + endSize;
        return Kind::Comment;
    }

    // A doubled quote ends here and begins anew, which comes to the same.
    Kind quoted(QChar close) {
        const qsizetype found = m_text.indexOf(close, m_position + 1);
        m_position = found < 0 ? m_text.size() : found + 1;
        return Kind::Other;
    }

    // A[1] is an element; [A] is a name.
    [[nodiscard]] bool startsName() const {
        if (m_position == 0) return true;
        const QChar before = m_text[m_position - 1];
        return !isNamePart(before) && before != u']' && before != u')' && before != u'"';
    }

    Kind colons() {
        const qsizetype start = m_position;
        while (!isAtEnd() && m_text[m_position] == u':') ++m_position;
        const bool isSingle = m_position == start + 1;
        if (!isSingle || isAtEnd() || !isNamePart(m_text[m_position])) return Kind::Other;
        // A[1:2] are elements.
        if (m_text[m_position].isDigit() && start > 0 && isNamePart(m_text[start - 1])) {
            return Kind::Other;
        }
        while (!isAtEnd() && isNamePart(m_text[m_position])) ++m_position;
        return Kind::Placeholder;
    }

    QStringView m_text;
    qsizetype m_position = 0;
};

// Line breaks stay, so that the database counts its lines as the user does.
QString blanked(QStringView comment) {
    QString result(comment.size(), u' ');
    for (qsizetype index = 0; index < comment.size(); ++index) {
        if (comment[index] == u'\n') result[index] = u'\n';
    }
    return result;
}

}  // namespace

std::vector<Placeholder> placeholders(const QString& statement) {
    std::vector<Placeholder> result;
    Scanner scanner(statement);
    while (!scanner.isAtEnd()) {
        const qsizetype start = scanner.position();
        if (scanner.next() != Scanner::Kind::Placeholder) continue;
        const qsizetype length = scanner.position() - start;
        result.push_back({start, length, statement.mid(start + 1, length - 1).toUpper()});
    }
    return result;
}

QStringList placeholderNames(const QString& statement) {
    QStringList names;
    for (const Placeholder& placeholder : placeholders(statement)) names += placeholder.name;
    names.removeDuplicates();
    return names;
}

QString questionMarkProblem(const QString& statement) {
    Scanner scanner(statement);
    while (!scanner.isAtEnd()) {
        if (scanner.next() != Scanner::Kind::QuestionMark) continue;
        return QCoreApplication::translate(
            "orvquery",
            "The statement has a parameter \"?\", which has no name by which it could get a value; "
            "please write it as :NAME.");
    }
    return {};
}

BoundStatement boundStatement(const QString& statement, const PlaceholderValues& values) {
    BoundStatement result;
    Scanner scanner(statement);
    while (!scanner.isAtEnd()) {
        const qsizetype start = scanner.position();
        const Scanner::Kind kind = scanner.next();
        const QStringView piece = QStringView(statement).sliced(start, scanner.position() - start);
        if (kind == Scanner::Kind::QuestionMark) {
            throw orv::Error(questionMarkProblem(statement));
        }
        if (kind == Scanner::Kind::Other) {
            result.text += piece;
        } else if (kind == Scanner::Kind::Comment) {
            result.text += blanked(piece);
        } else {
            const auto value = values.constFind(piece.sliced(1).toString().toUpper());
            if (value == values.cend()) {
                throw orv::Error(QStringLiteral("The parameter %1 has no value.").arg(piece));
            }
            result.text += u'?';
            result.values += *value;
        }
    }
    return result;
}

}  // namespace orvquery
