// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "text/Completeness.h"
#include "window/Contrast.h"
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
    void contrastIsThatOfTheEye();
    void coloursCanBeRead_data();
    void coloursCanBeRead();
    void readableColoursStay();
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

void TestHighlighter::contrastIsThatOfTheEye() {
    QCOMPARE(contrastRatio(Qt::black, Qt::white), 21.0);
    QCOMPARE(contrastRatio(Qt::white, Qt::black), 21.0);
    QCOMPARE(contrastRatio(Qt::red, Qt::red), 1.0);
    // (1 + 0.05) / (0.2126 + 0.05)
    QVERIFY(qAbs(contrastRatio(Qt::red, Qt::white) - 3.998) < 0.001);
}

void TestHighlighter::coloursCanBeRead_data() {
    QTest::addColumn<QColor>("background");
    for (const char* name : {"#ffffff", "#fcfcfc", "#efefef", "#c0c0c0", "#808080", "#7f7f7f",
                             "#505050", "#2d2d2d", "#1e1e1e", "#000000", "#002b36", "#fdf6e3"}) {
        QTest::newRow(name) << QColor(QLatin1String(name));
    }
}

// Also when the background becomes that one later.
void TestHighlighter::coloursCanBeRead() {
    QFETCH(QColor, background);
    QTextDocument document(QStringLiteral("select 'text', 17 -- comment"));
    SqlHighlighter highlighter(&document, background.lightness() < 128 ? Qt::white : Qt::black);
    highlighter.setBackground(background);
    const auto formats = document.firstBlock().layout()->formats();
    QCOMPARE(formats.size(), 4);
    for (const QTextLayout::FormatRange& range : formats) {
        const QColor colour = range.format.foreground().color();
        QVERIFY2(contrastRatio(background, colour) >= 4.5, qPrintable(colour.name()));
    }
}

void TestHighlighter::readableColoursStay() {
    QCOMPARE(readableOn(Qt::white, QColor(0x1f4e8c)), QColor(0x1f4e8c));
    QCOMPARE(readableOn(Qt::white, Qt::black), QColor(Qt::black));
    QVERIFY(contrastRatio(Qt::white, readableOn(Qt::white, Qt::white)) >= 4.5);
    QVERIFY(contrastRatio(Qt::black, readableOn(Qt::black, Qt::black)) >= 4.5);
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
