// SPDX-License-Identifier: MIT
#include "text/Comments.h"

#include <vector>

namespace orvquery {

namespace {

constexpr std::size_t mostSingly = 3;

struct Span {
    qsizetype start;
    qsizetype end;
};

qsizetype endBehind(const QString& text, QStringView mark, qsizetype from) {
    const qsizetype found = text.indexOf(mark, from);
    return found < 0 ? text.size() : found + mark.size();
}

qsizetype endOfLine(const QString& text, qsizetype from) {
    while (from < text.size() && text[from] != u'\n' && text[from] != u'\r') ++from;
    return from;
}

std::vector<Span> commentsOf(const QString& text) {
    std::vector<Span> comments;
    qsizetype at = 0;
    while (at < text.size()) {
        const QStringView rest = QStringView(text).sliced(at);
        const QChar first = rest.front();
        qsizetype end = at + 1;
        if (first == u'\'' || first == u'"' || first == u'`') {
            end = endBehind(text, rest.first(1), at + 1);
        } else if (rest.startsWith(u"--")) {
            end = endOfLine(text, at);
            comments.push_back({at, end});
        } else if (rest.startsWith(u"/*")) {
            end = endBehind(text, u"*/", at + 2);
            comments.push_back({at, end});
        }
        at = end;
    }
    return comments;
}

}  // namespace

orv::Findings commentFindings(const QString& statement, const QString& written) {
    std::vector<Span> comments = commentsOf(statement);
    std::erase_if(comments, [&](const Span& comment) {
        return written.contains(statement.mid(comment.start, comment.end - comment.start));
    });
    const bool areMany = comments.size() > mostSingly;
    const std::size_t singly = areMany ? mostSingly - 1 : comments.size();
    const auto finding = [&](std::size_t index, const QString& what) {
        const Span& comment = comments[index];
        const qsizetype length = comment.end - comment.start;
        return orv::Finding{int(comment.start), int(length), statement.mid(comment.start, length),
                            what};
    };
    orv::Findings findings;
    for (std::size_t index = 0; index < singly; ++index) {
        findings.push_back(finding(
            index,
            QStringLiteral("The diagram has no place for comments; the loaded text has it.")));
    }
    if (areMany) {
        findings.push_back(finding(
            singly,
            QStringLiteral("The diagram has no place for this comment and %1 more; the loaded "
                           "text has them.")
                .arg(comments.size() - singly - 1)));
    }
    return findings;
}

}  // namespace orvquery
