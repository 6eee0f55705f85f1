// SPDX-License-Identifier: MIT
// An explanation as plain and as rich text.
#include "words/Explanation.h"

#include <QStringList>

namespace orvquery {

namespace {

constexpr int indentBlanks = 2;

// The words in lines of at most `width` characters; the first line begins with `first`, the others
// with as many blanks.
QString wrapped(const QString& text, const QString& first, int width) {
    const QString blanks(first.size(), u' ');
    QString result;
    QString line = first;
    for (const QString& word : text.split(u' ')) {
        const bool isStart = line.size() == first.size();
        if (!isStart && line.size() + 1 + word.size() > width) {
            result += line + u'\n';
            line = blanks;
        }
        if (line.size() > blanks.size()) line += u' ';
        line += word;
    }
    return result + line + u'\n';
}

QString bullet(int depth) {
    return depth == 0 ? QString()
                      : QString((depth - 1) * indentBlanks, u' ') + QStringLiteral("- ");
}

// Lists that are open, as a chain of elements: <ul><li>...<ul><li>.
class RichWriter {
public:
    QString write(const Explanation& explanation) {
        for (const WordsSection& section : explanation.sections) {
            m_text += QStringLiteral("<p><b>%1</b></p>").arg(section.title.toHtmlEscaped());
            for (const WordsLine& line : section.lines) writeLine(line);
            goTo(0);
        }
        return m_text;
    }

private:
    void writeLine(const WordsLine& line) {
        goTo(line.depth);
        m_text += (line.depth == 0 ? QStringLiteral("<p>%1</p>") : QStringLiteral("<li>%1"))
                      .arg(line.text.toHtmlEscaped());
    }

    // An item stays open while a deeper list may follow that belongs to it.
    void goTo(int depth) {
        for (; m_depth > depth; --m_depth) m_text += QStringLiteral("</li></ul>");
        if (m_depth == depth && depth > 0) m_text += QStringLiteral("</li>");
        for (; m_depth < depth; ++m_depth) m_text += QStringLiteral("<ul>");
    }

    QString m_text;
    int m_depth = 0;  // open lists, each with an open item
};

}  // namespace

QString plainText(const Explanation& explanation, int width) {
    QString text;
    for (const WordsSection& section : explanation.sections) {
        if (!text.isEmpty()) text += u'\n';
        text += section.title + u'\n';
        for (const WordsLine& line : section.lines) {
            text += wrapped(line.text, QString(indentBlanks, u' ') + bullet(line.depth), width);
        }
    }
    return text;
}

QString richText(const Explanation& explanation) {
    return RichWriter().write(explanation);
}

}  // namespace orvquery
