// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "text/Completeness.h"
#include "window/SqlHighlighter.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

using namespace orvquery;

namespace {

// The coloured parts of a text, line by line, each with the first letter of its kind: keyword,
// text, number, comment.
QStringList coloured(const QString& text) {
    QTextDocument document(text);
    SqlHighlighter highlighter(&document, Qt::white);
    highlighter.rehighlight();
    QStringList parts;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const auto formats = block.layout()->formats();
        for (const QTextLayout::FormatRange& range : formats) {
            const QRgb colour = range.format.foreground().color().rgb() & 0xffffff;
            const QString kind = colour == 0x1f4e8c   ? QStringLiteral("k:")
                                 : colour == 0x2e6b34 ? QStringLiteral("t:")
                                 : colour == 0x9a4a00 ? QStringLiteral("n:")
                                                      : QStringLiteral("c:");
            parts += kind + block.text().mid(range.start, range.length);
        }
    }
    return parts;
}

}  // namespace

class TestHighlighter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void colours_data();
    void colours();
    void longLinesStayPlain();
    void missingParts();
};

void TestHighlighter::colours_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("parts");
    const auto row = [](const char* text, const QStringList& parts) {
        QTest::newRow(text) << QString::fromLatin1(text) << parts;
    };
    row("", {});
    row("select a from b", {"k:select", "k:from"});
    row("SELECTED o.order FROMAGE", {});
    row("x = 'it''s' and y = 1.5e3", {"t:'it''s'", "k:and", "n:1.5e3"});
    row("\"from\" + \"select", {});
    row("a -- select 'b'\nfrom", {"c:-- select 'b'", "k:from"});
    row("/* from\n'x */ on /**/", {"c:/* from", "c:'x */", "k:on", "c:/**/"});
    row("'a\nfrom b' from", {"t:'a", "t:from b'", "k:from"});
    row("a/b -c", {});
    row("/*/ from", {"c:/*/ from"});
}

void TestHighlighter::colours() {
    QFETCH(QString, text);
    QFETCH(QStringList, parts);
    QCOMPARE(coloured(text), parts);
}

void TestHighlighter::longLinesStayPlain() {
    QCOMPARE(coloured(QStringLiteral("select ") + QString(20000, u'x')), QStringList());
}

void TestHighlighter::missingParts() {
    const QString noTables = QStringLiteral("There are no tables in the diagram yet.");
    const QString noColumns = QStringLiteral("No columns are ticked yet.");
    QCOMPARE(whatIsMissing(QString()), noTables);
    QCOMPARE(whatIsMissing(QStringLiteral("SELECT \r\nFROM ")), noTables);
    QCOMPARE(whatIsMissing(QStringLiteral("SELECT \r\nFROM A")), noColumns);
    QCOMPARE(whatIsMissing(QStringLiteral("SELECT DISTINCT \r\nFROM A\r\nWHERE B")), noColumns);
    QCOMPARE(whatIsMissing(QStringLiteral("SELECT A\r\nFROM A")), QString());
    QCOMPARE(whatIsMissing(QStringLiteral("SELECT *")), QString());
}

QTEST_MAIN(TestHighlighter)
#include "tst_app_highlighter.moc"
