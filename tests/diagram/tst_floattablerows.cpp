// SPDX-License-Identifier: MIT
#include "diagram/ORVQDFloatTable.h"
#include "diagram/PaintedBox.h"
#include "support/TestTools.h"

using namespace orvtest;

class FloatTableRowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- rows

    void rowShowsItsGlyphAtItsLeftTopCorner_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("checked");
        QTest::addColumn<bool>("isNull");
        QTest::addColumn<QString>("glyph");
        QTest::newRow("not ticked") << int(ptOutput) << false << true << "UNCHECKBMP";
        QTest::newRow("ticked") << int(ptOutput) << true << true << "CHECKBMP";
        QTest::newRow("parameter") << int(ptInput) << false << true << "INPUTNULL";
        QTest::newRow("parameter with a value") << int(ptInput) << true << false << "INPUTPARAM";
        QTest::newRow("parameter that is null") << int(ptInput) << true << true << "INPUTNULL";
        QTest::newRow("value not given") << int(ptInput) << false << false << "INPUTNULL";
        QTest::newRow("both ways") << int(ptInputOutput) << true << false << "INPUTPARAM";
        QTest::newRow("result") << int(ptResult) << true << false << "INPUTPARAM";
    }
    void rowShowsItsGlyphAtItsLeftTopCorner() {
        QFETCH(int, type);
        QFETCH(bool, checked);
        QFETCH(bool, isNull);
        QFETCH(QString, glyph);
        for (const QPoint& scroll : {QPoint(), oddScroll}) {
            PaintedBox on;
            on.canvas.scroll = scroll;
            on.row(2)->ParamType = TParamType(type);
            on.row(2)->Checked = checked;
            on.row(2)->IsNull = isNull;
            // The third row of 16 pixels and a gap of one, each a pixel below its rectangle.
            const int top = 40 + 20 + 1 + 2 * 17 + 1;
            QCOMPARE(on.part(on.paint(), {34, top, 47, top + 13}), glyphOn(glyph, white));
        }
    }

    void glyphOfARowLiesInItsCheckSquare() {
        PaintedBox on;
        QVERIFY(orv::glyph(QStringLiteral("CHECKBMP")).size().width() <= on.box.ItemHeight);
        QCOMPARE(on.textOf(0).Left, 34 + 16);
        // The text begins with a blank behind the square.
        QVERIFY(isPlain(on.part(on.paint(), {47, 62, 52, 77}), white));
    }

    void rowsTextIsBlackWhateverThePalette() {
        PaintedBox on;
        on.row(0)->Name = QStringLiteral("HHHH");
        QPalette palette = on.canvas.palette();
        palette.setColor(QPalette::Text, light);
        palette.setColor(QPalette::WindowText, light);
        palette.setColor(QPalette::ButtonText, light);
        on.canvas.setPalette(palette);
        QVERIFY(pixelsOf(viewPart(on.paint(), on.textOf(0)), black) > 0);
    }

    void markedRowIsBold() {
        PaintedBox on;
        const int regular = inkOf(viewPart(on.paint(), on.textOf(0)));
        on.row(0)->SetSelect(true);
        QVERIFY(inkOf(viewPart(on.paint(), on.textOf(0))) > regular);
        on.row(0)->SetSelect(false);
        QCOMPARE(inkOf(viewPart(on.paint(), on.textOf(0))), regular);
    }

    void rowsAreRegularInABoldFont() {
        PaintedBox on;
        const QImage regular = viewPart(on.paint(), on.textOf(0));
        QFont font = on.canvas.workAreaOptions.GetFont();
        font.setBold(true);
        on.canvas.workAreaOptions.SetFont(font);
        QCOMPARE(viewPart(on.paint(), on.textOf(0)), regular);
    }

    void longTextIsCutAtTheRightEdge() {
        PaintedBox on;
        on.row(0)->Name = QString(60, u'W');
        const QImage narrow = on.paint();
        const TRect text = on.textOf(0);
        on.box.SetWidth(250);
        QCOMPARE(viewPart(on.paint(), text), viewPart(narrow, text));
        QVERIFY(!isPlain(narrow.copy(text.Right - 3, text.Top, 3, text.height()), white));
        QCOMPARE(narrow.pixelColor(text.Right, text.Top + 7), midlight);
        QCOMPARE(narrow.pixelColor(text.Right + 1, text.Top + 7), light);
    }

    void namesAreDrawnAsTheyAre_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("drawn");
        QTest::newRow("letters") << "NAME"
                                 << "NAME";
        QTest::newRow("ampersand") << "A&B"
                                   << "A&B";
        QTest::newRow("two ampersands") << "A&&B"
                                        << "A&&B";
        QTest::newRow("mark-up") << "<b>A</b>"
                                 << "<b>A</b>";
        QTest::newRow("line break") << "A\nB"
                                    << "A B";
        QTest::newRow("other line breaks")
            << QString::fromUtf16(u"A\u2028B\u2029C\rD") << "A B C D";
    }
    void namesAreDrawnAsTheyAre() {
        QFETCH(QString, name);
        QFETCH(QString, drawn);
        PaintedBox on;
        on.row(0)->Name = name;
        const QRect place = on.textOf(0).toQRect();
        const QImage image = on.paint();
        QImage expected = image;
        QPainter painter(&expected);
        painter.fillRect(place, white);
        painter.setFont(on.canvas.workAreaOptions.GetFont());
        painter.setPen(black);
        painter.drawText(place, Qt::AlignVCenter | Qt::TextSingleLine, u' ' + drawn);
        painter.end();
        QCOMPARE(image, expected);
    }

    void typesStandInBracketsBehindTheNames_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        QTest::newRow("one word") << int(ftInteger) << "F (Integer)";
        QTest::newRow("ampersand") << int(ftDateTime) << "F (Date&Time)";
    }
    void typesStandInBracketsBehindTheNames() {
        QFETCH(int, type);
        QFETCH(QString, text);
        PaintedBox on;
        on.row(0)->Name = QStringLiteral("F");
        on.row(0)->FieldType = TFieldType(type);
        const QImage without = viewPart(on.paint(), on.textOf(0));
        on.canvas.workAreaOptions.SetShowFieldsType(true);
        const QImage with = viewPart(on.paint(), on.textOf(0));
        QVERIFY(with != without);
        on.canvas.workAreaOptions.SetShowFieldsType(false);
        QCOMPARE(viewPart(on.paint(), on.textOf(0)), without);
        on.row(0)->Name = text;
        QCOMPARE(viewPart(on.paint(), on.textOf(0)), with);
    }

    void shownTypeFollowsTheRow() {
        PaintedBox on;
        on.canvas.workAreaOptions.SetShowFieldsType(true);
        const QImage integer = on.paint();
        on.row(0)->FieldType = ftBlob;
        QVERIFY(on.paint() != integer);
        on.row(0)->FieldType = ftInteger;
        QCOMPARE(on.paint(), integer);
    }

    // --- states of rows

    void currentRowIsMarked_data() {
        QTest::addColumn<bool>("hides");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<bool>("isMarked");
        QTest::newRow("hidden selection, other box selected") << true << false << false;
        QTest::newRow("hidden selection, box selected") << true << true << true;
        QTest::newRow("shown selection, other box selected") << false << false << true;
        QTest::newRow("shown selection, box selected") << false << true << true;
    }
    void currentRowIsMarked() {
        QFETCH(bool, hides);
        QFETCH(bool, selected);
        QFETCH(bool, isMarked);
        for (const QPoint& scroll : {QPoint(), oddScroll}) {
            PaintedBox on;
            on.canvas.scroll = scroll;
            on.canvas.workAreaOptions.SetHideSelection(hides);
            on.row(1)->Name = QStringLiteral("HHHH");
            on.box.SetCurrentItem(on.row(1));
            if (selected) on.select();
            const QImage image = on.paint();
            TRect text = on.textOf(1);
            // The edge belongs to the dots of the focus.
            const QImage edge = viewPart(image, {text.Left, text.Top, text.Right, text.Top + 1});
            const QImage inside =
                viewPart(image, {text.Left + 1, text.Top + 1, text.Right - 1, text.Bottom - 1});
            QCOMPARE(pixelsOf(inside, silver) > 500, isMarked);
            QCOMPARE(pixelsOf(inside, isMarked ? black : silver), 0);
            if (isMarked) QVERIFY(pixelsOf(inside, white) > 0);
            const int width = text.width();
            if (selected) {  // every second pixel
                QVERIFY(std::abs(pixelsOf(edge, black) - width / 2) <= 1);
                QCOMPARE(pixelsOf(edge, black) + pixelsOf(edge, silver), width);
            } else {
                QVERIFY(isPlain(edge, isMarked ? silver : white));
            }
            // Check square and neighbours stay as they are.
            QCOMPARE(
                viewPart(image, {34 - scroll.x(), text.Top, 34 - scroll.x() + 13, text.Top + 13}),
                glyphOn(QStringLiteral("UNCHECKBMP"), white));
            QCOMPARE(pixelsOf(viewPart(image, on.textOf(0)), silver), 0);
            QCOMPARE(pixelsOf(viewPart(image, on.textOf(2)), silver), 0);
        }
    }

    void markFillsTheRowBehindTheCheckSquare() {
        PaintedBox on;
        on.row(1)->Name.clear();
        on.canvas.workAreaOptions.SetHideSelection(false);
        on.box.SetCurrentItem(on.row(1));
        const QImage image = on.paint();
        const int top = 40 + 20 + 1 + 17 + 1;
        QVERIFY(isPlain(on.part(image, {50, top, 186, top + 15}), silver));
        QVERIFY(isPlain(on.part(image, {50, top - 2, 186, top}), white));
        QVERIFY(isPlain(on.part(image, {50, top + 15, 186, top + 17}), white));
        QVERIFY(isPlain(on.part(image, {47, top, 50, top + 15}), white));
        QCOMPARE(on.at(image, 186, top + 7), midlight);
    }

    void markEndsBeforeTheScrollBar() {
        PaintedBox on;
        on.row(1)->Name.clear();
        on.box.SetCurrentItem(on.row(1));
        on.box.SetSelect(true);
        QVERIFY(on.canvas.scrollBarVisible);
        const QImage image = on.paint();
        const int top = 40 + 20 + 1 + 17 + 1;
        QCOMPARE(on.at(image, 186 - 16 - 2, top + 7), silver);
        QVERIFY(isPlain(on.part(image, {186 - 16, top, 186, top + 15}), white));
        // The dots go all around what is seen.
        const QImage edge = on.part(image, {186 - 16 - 1, top, 186 - 16, top + 15});
        QVERIFY(std::abs(pixelsOf(edge, black) - 15 / 2) <= 1);
    }

    void rowUnderADraggedFieldIsTeal() {
        PaintedBox on;
        on.row(0)->Name = on.row(1)->Name = QStringLiteral("HHHH");
        on.box.DropItem = on.row(0);
        const QImage image = on.paint();
        QCOMPARE(image.pixelColor(on.textOf(0).toQRect().topLeft()), teal);
        QVERIFY(pixelsOf(viewPart(image, on.textOf(0)), white) > 0);
        QCOMPARE(pixelsOf(viewPart(image, on.textOf(0)), black), 0);
        QCOMPARE(pixelsOf(viewPart(image, on.textOf(1)), teal), 0);
    }

    void dropWinsOverTheCurrentRow() {
        PaintedBox on;
        on.select();
        on.box.SetCurrentItem(on.row(0));
        on.box.DropItem = on.row(0);
        const QImage text = viewPart(on.paint(), on.textOf(0));
        QVERIFY(pixelsOf(text, teal) > 500);
        QCOMPARE(pixelsOf(text, silver), 0);
        QVERIFY(pixelsOf(text, black) > 0);  // the dots
    }

    void newRowsAreNotDroppedOn() {
        PaintedBox on;
        on.box.DropItem = on.row(0);
        on.box.AssignItems(&on.fields);
        QVERIFY(!on.box.DropItem);
    }

    void rowIsDrawnOnItsGroundWhenAsked() {
        PaintedBox on;
        on.canvas.workAreaOptions.SetTableColor(QColor(200, 220, 240));
        on.row(0)->Name.clear();
        for (const bool fills : {false, true}) {
            QImage image(100, 20, QImage::Format_RGB32);
            image.fill(behind);
            QPainter painter(&image);
            on.row(0)->DrawItem(painter, QRect(0, 0, 100, 16), 0, fills);
            painter.end();
            QVERIFY(isPlain(image.copy(16, 1, 84, 15), fills ? QColor(200, 220, 240) : behind));
            QVERIFY(isPlain(image.copy(0, 0, 100, 1), behind));
            QVERIFY(isPlain(image.copy(0, 16, 100, 4), behind));
        }
    }

    void statesOfARowHaveTheirOrder() {
        PaintedBox on;
        on.row(0)->Name.clear();
        const auto drawn = [&](TSetOfItemStates state) {
            QImage image(100, 20, QImage::Format_RGB32);
            image.fill(white);
            QPainter painter(&image);
            on.row(0)->DrawItem(painter, QRect(0, 0, 100, 16), state, false);
            painter.end();
            return image;
        };
        QVERIFY(isPlain(drawn(1).copy(16, 1, 84, 15), silver));
        QVERIFY(isPlain(drawn(2).copy(16, 1, 84, 15), white));  // focused, but not current
        QVERIFY(isPlain(drawn(4).copy(16, 1, 84, 15), teal));
        QVERIFY(isPlain(drawn(1 | 4).copy(16, 1, 84, 15), teal));
        QVERIFY(pixelsOf(drawn(1 | 2), black) > 0);
    }

    // --- scrolled and cut rows

    void scrolledRowsStayInTheRowArea_data() { addScrollRows(); }
    void scrolledRowsStayInTheRowArea() {
        QFETCH(QPoint, scroll);
        PaintedBox on;
        on.canvas.scroll = scroll;
        const QImage first = on.paint();
        on.box.SetFirstVisibleItem(4);
        const QImage image = on.paint();
        QVERIFY(image != first);
        const TRect caption{30, 40, 190, 62};
        QCOMPARE(on.part(image, caption), on.part(first, caption));
        const TRect below{30, 164, 190, 168};
        QCOMPARE(on.part(image, below), on.part(first, below));
        // The fifth row stands where the first one stood.
        on.row(0)->Name = on.row(4)->Name;
        const QImage text = viewPart(image, on.textOf(4));
        on.box.SetFirstVisibleItem(0);
        QCOMPARE(viewPart(on.paint(), on.textOf(0)), text);
    }

    void negativeFirstRowLeavesRoomAboveTheRows() {
        PaintedBox on(3);
        on.box.SetHeight(128);
        on.box.FirstVisibleItem = -2;
        const QImage image = on.paint();
        const int firstRow = 40 + 20 + 1 + 2 * 17 + 1;
        QVERIFY(isPlain(on.part(image, {34, 62, 186, firstRow}), white));
        QCOMPARE(on.part(image, {34, firstRow, 47, firstRow + 13}),
                 glyphOn(QStringLiteral("UNCHECKBMP"), white));
    }

    void partOfARowIsShownAtTheBottom() {
        PaintedBox on;
        on.box.SetHeight(128 + 9);
        QCOMPARE(on.box.VisibleCount, 6);
        const QImage image = on.paint();
        const int seventh = 40 + 20 + 1 + 6 * 17 + 1;
        QCOMPARE(on.part(image, {34, seventh, 47, 173}),
                 glyphOn(QStringLiteral("UNCHECKBMP"), white).copy(0, 0, 13, 173 - seventh));
        QCOMPARE(on.at(image, 100, 173), midlight);
        QCOMPARE(on.at(image, 100, 176), shadow);
    }

    void lettersOfALargeFontStayInTheirRow() {
        PaintedBox on;
        QFont font = on.canvas.workAreaOptions.GetFont();
        font.setPixelSize(40);
        on.canvas.workAreaOptions.SetFont(font);
        on.row(0)->Name = QStringLiteral("[g]");
        on.row(1)->Name.clear();
        const QImage image = on.paint();
        QVERIFY(!isPlain(viewPart(image, on.textOf(0)), white));
        QVERIFY(isPlain(viewPart(image, on.textOf(1)), white));
    }
};

QTEST_MAIN(FloatTableRowsTest)
#include "tst_floattablerows.moc"
