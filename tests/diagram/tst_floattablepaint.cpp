// SPDX-License-Identifier: MIT
#include "diagram/ORVQDFloatTable.h"
#include "diagram/PaintedBox.h"
#include "support/TestTools.h"

#include <QFontMetrics>
#include <QPaintEngine>

#include <functional>
#include <memory>

using namespace orvtest;

namespace {

/// Keeps what it is told to paint, as a vector file does that knows no clip.
class VectorEngine : public QPaintEngine {
public:
    VectorEngine() : QPaintEngine(AllFeatures) {}
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override { ++images; }
    void drawImage(const QRectF&, const QImage&, const QRectF&, Qt::ImageConversionFlags) override {
        ++images;
    }
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawPath(const QPainterPath&) override { ++paths; }
    void drawTextItem(const QPointF& at, const QTextItem& item) override {
        texts << item.text();
        rightmost = std::max(rightmost, at.x() + item.width());
    }
    Type type() const override { return SVG; }

    QStringList texts;
    qreal rightmost = 0;
    int images = 0;
    int paths = 0;
};

class VectorDevice : public QPaintDevice {
public:
    QPaintEngine* paintEngine() const override { return &engine; }
    mutable VectorEngine engine;

protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
        case PdmHeight: return 300;
        case PdmWidthMM:
        case PdmHeightMM: return 79;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY: return 96;
        case PdmNumColors: return 0;
        case PdmDepth: return 32;
        case PdmDevicePixelRatio: return 1;
        case PdmDevicePixelRatioScaled: return int(devicePixelRatioFScale());
        }
        return 0;
    }
};

}  // namespace

class FloatTablePaintTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- caption strip and borders

    void captionStripTellsWhetherTheBoxIsSelected_data() { addScrollRows(); }
    void captionStripTellsWhetherTheBoxIsSelected() {
        QFETCH(QPoint, scroll);
        PaintedBox on;
        on.canvas.scroll = scroll;
        QCOMPARE(on.pixel(34, 50), face);
        on.select();
        const QImage image = on.paint();
        for (const int y : {42, 50, 59}) QCOMPARE(on.at(image, 34, y), silver);
        QCOMPARE(on.at(image, 30, 60), midlight);  // below it the border goes on
    }

    void nothingIsPaintedAroundTheBox_data() { addScrollRows(); }
    void nothingIsPaintedAroundTheBox() {
        QFETCH(QPoint, scroll);
        PaintedBox on;
        on.canvas.scroll = scroll;
        on.row(0)->Name = QString(100, u'W');
        on.box.TableName = QString(100, u'W');
        QImage image = on.paint();
        QPainter painter(&image);
        painter.fillRect(on.box.toView({30, 40, 190, 168}).toQRect(), behind);
        painter.end();
        QVERIFY(isPlain(image, behind));
    }

    void borderIsThatOfTheOptions_data() {
        QTest::addColumn<int>("border");
        QTest::addColumn<bool>("isFlat");
        QTest::addColumn<QList<QColor>>("leftTop");  // from outside
        QTest::addColumn<QList<QColor>>("rightBottom");
        using Colors = QList<QColor>;
        QTest::newRow("bump") << int(edgeBump) << false << Colors{midlight, shadow}
                              << Colors{shadow, midlight};
        QTest::newRow("etched") << int(edgeEtched) << false << Colors{dark, light}
                                << Colors{light, dark};
        QTest::newRow("raised") << int(edgeRaised) << false << Colors{midlight, light}
                                << Colors{shadow, dark};
        QTest::newRow("sunken") << int(edgeSunken) << false << Colors{dark, shadow}
                                << Colors{light, midlight};
        QTest::newRow("unknown") << 77 << false << Colors{midlight, light} << Colors{shadow, dark};
        QTest::newRow("flat raised")
            << int(edgeRaised) << true << Colors{mid, face} << Colors{mid, face};
        QTest::newRow("flat bump")
            << int(edgeBump) << true << Colors{mid, face} << Colors{mid, face};
    }
    void borderIsThatOfTheOptions() {
        QFETCH(int, border);
        QFETCH(bool, isFlat);
        QFETCH(QList<QColor>, leftTop);
        QFETCH(QList<QColor>, rightBottom);
        for (const QPoint& scroll : {QPoint(), oddScroll}) {
            PaintedBox on;
            on.canvas.scroll = scroll;
            on.canvas.workAreaOptions.SetTableBorder(TBorderKind(border));
            on.canvas.workAreaOptions.SetFlat(isFlat);
            const QImage image = on.paint();
            for (int ring = 0; ring < 2; ++ring) {
                QCOMPARE(on.at(image, 30 + ring, 100), leftTop[ring]);
                QCOMPARE(on.at(image, 100, 40 + ring), leftTop[ring]);
                QCOMPARE(on.at(image, 189 - ring, 100), rightBottom[ring]);
                QCOMPARE(on.at(image, 100, 167 - ring), rightBottom[ring]);
            }
        }
    }

    void rowAreaHasASunkenEdge_data() { addScrollRows(); }
    void rowAreaHasASunkenEdge() {
        QFETCH(QPoint, scroll);
        PaintedBox on(0);
        on.canvas.scroll = scroll;
        on.box.SetHeight(128);
        const QImage image = on.paint();
        QCOMPARE(on.at(image, 32, 100), dark);
        QCOMPARE(on.at(image, 33, 100), shadow);
        QCOMPARE(on.at(image, 187, 100), light);
        QCOMPARE(on.at(image, 186, 100), midlight);
        // It begins right below the caption.
        QCOMPARE(on.at(image, 100, 60), dark);
        QCOMPARE(on.at(image, 100, 61), shadow);
        QCOMPARE(on.at(image, 100, 165), light);
        QCOMPARE(on.at(image, 100, 164), midlight);
        QCOMPARE(on.box.GetClientRect(), TRect({34, 62, 186, 164}));
        QVERIFY(isPlain(on.part(image, {34, 62, 186, 164}), white));
    }

    void flatBoxHasAFlatEdgeAroundItsRows() {
        PaintedBox on(0);
        on.box.SetHeight(128);
        on.canvas.workAreaOptions.SetFlat(true);
        const QImage image = on.paint();
        QCOMPARE(on.at(image, 32, 100), mid);
        QCOMPARE(on.at(image, 33, 100), face);
        QCOMPARE(on.at(image, 187, 100), mid);
        QCOMPARE(on.at(image, 186, 100), face);
        QCOMPARE(on.at(image, 100, 60), mid);
        QCOMPARE(on.at(image, 100, 61), face);
        QVERIFY(isPlain(on.part(image, {34, 62, 186, 164}), white));
    }

    void rowAreaHasTheColourOfTheOptions() {
        PaintedBox on(0);
        on.box.SetHeight(128);
        on.canvas.workAreaOptions.SetTableColor(QColor(200, 220, 240));
        QVERIFY(isPlain(on.part(on.paint(), {34, 62, 186, 164}), QColor(200, 220, 240)));
    }

    void collapsedBoxIsItsCaption() {
        PaintedBox on;
        on.box.SetExpand(0);
        const QImage image = on.paint();
        QVERIFY(isPlain(image.copy(0, 60, 300, 160), behind));
        QCOMPARE(on.at(image, 100, 59), shadow);
        QCOMPARE(on.at(image, 100, 58), dark);
        QCOMPARE(on.at(image, 34, 50), face);
    }

    void bordersArePlainPixelsAtTwiceTheSize() {
        PaintedBox on;
        const QImage image = on.paint(2);
        const QList<QColor> expected{behind, midlight, light, dark, shadow, white};
        for (int index = 0; index < expected.size(); ++index) {
            for (const int half : {0, 1}) {
                QCOMPARE(image.pixelColor(2 * (29 + index) + half, 2 * 63), expected[index]);
            }
        }
    }

    // --- caption text

    void captionIsBoldAndInThePalettesColour() {
        PaintedBox on;
        on.box.TableName = QStringLiteral("HHHH");
        const QImage image = on.part(on.paint(), on.box.GetCaptionRect());
        QVERIFY(pixelsOf(image, black) > 0);
        // A row of the same letters is regular, and the one that is marked is as bold.
        on.row(0)->Name = on.row(1)->Name = QStringLiteral("HHHH");
        on.row(1)->SetSelect(true);
        const QImage rows = on.paint();
        const auto letters = [](const QImage& picture, const QColor& ground) {
            return picture.width() * picture.height() - pixelsOf(picture, ground);
        };
        const int regular = letters(viewPart(rows, on.textOf(0)), white);
        const int bold = letters(viewPart(rows, on.textOf(1)), white);
        QVERIFY(bold > regular);
        const int caption = letters(image, face);
        QVERIFY(std::abs(caption - bold) < std::abs(caption - regular));
    }

    void captionStartsBesideTheCheckBox() {
        PaintedBox on;
        on.box.TableName = QStringLiteral("HHHH");
        const QImage image = on.paint();
        // From the check box to the text, which begins at 30 + 20 + 2 at the earliest.
        QVERIFY(isPlain(on.part(image, {48, 42, 52, 58}), face));
        QVERIFY(!isPlain(on.part(image, {52, 42, 56, 58}), face));
    }

    void longCaptionEndsWithAnEllipsisBeforeTheButtons() {
        PaintedBox shorter;
        const QImage plain = shorter.paint();
        PaintedBox on;
        on.box.TableName = QString(60, u'W');
        const QImage image = on.paint();
        const TRect text = on.box.GetCaptionRect();
        QVERIFY(on.part(image, text) != on.part(plain, text));
        QCOMPARE(on.part(image, on.box.GetButtonRect()), on.part(plain, on.box.GetButtonRect()));
        QFont bold = on.canvas.workAreaOptions.GetFont();
        bold.setBold(true);
        const QString cut =
            QFontMetrics(bold).elidedText(on.box.TableName, Qt::ElideRight, text.width());
        QVERIFY(cut.endsWith(QChar(0x2026)));
        shorter.box.TableName = cut;
        QCOMPARE(shorter.paint(), image);
    }

    void emptyCaptionIsBlank() {
        PaintedBox on;
        on.box.TableName.clear();
        QVERIFY(isPlain(on.part(on.paint(), on.box.GetCaptionRect()), face));
    }

    void captionWithoutRoomIsLeftOut() {
        PaintedBox on;
        on.box.ButtonsWidth = 200;
        QVERIFY(!on.paint().isNull());
    }

    void captionFollowsNameAliasWidthAndFont() {
        QFont italic = PaintedBox().canvas.workAreaOptions.GetFont();
        italic.setItalic(true);
        const std::function<void(PaintedBox&)> changes[] = {
            [](PaintedBox& on) { on.box.TableName = QStringLiteral("CUSTOMER"); },
            [](PaintedBox& on) { on.box.SetAlias(QStringLiteral("A")); },
            [](PaintedBox& on) { on.box.SetWidth(120); },
            [](PaintedBox& on) { on.box.SetWidth(200); },
            [&](PaintedBox& on) { on.canvas.workAreaOptions.SetFont(italic); }};
        PaintedBox on;
        QImage before = on.paint();
        for (std::size_t count = 1; count <= std::size(changes); ++count) {
            changes[count - 1](on);
            const QImage image = on.paint();
            QVERIFY(image != before);
            before = image;
            PaintedBox fresh;
            for (std::size_t index = 0; index < count; ++index) changes[index](fresh);
            QCOMPARE(image, fresh.paint());
        }
    }

    void captionCanBeReadInDarkPalettes() {
        PaintedBox on;
        on.box.TableName = QStringLiteral("HHHH");
        QPalette palette = on.canvas.palette();
        palette.setColor(QPalette::Button, QColor(0x30, 0x30, 0x30));
        palette.setColor(QPalette::ButtonText, white);
        on.canvas.setPalette(palette);
        QVERIFY(pixelsOf(on.part(on.paint(), on.box.GetCaptionRect()), white) > 0);
        // Glyphs are light there, too: the buttons' frames are grey and their ground is dark.
        QVERIFY(pixelsOf(on.part(on.paint(), on.box.GetButtonRect()), white) > 0);
        on.select();  // on light grey
        QCOMPARE(pixelsOf(on.part(on.paint(), on.box.GetCaptionRect()), white), 0);
        QVERIFY(pixelsOf(on.part(on.paint(), on.box.GetCaptionRect()), black) > 0);
    }

    // --- caption check box

    void checkBoxIsDrawnAtItsPlace_data() { addScrollRows(); }
    void checkBoxIsDrawnAtItsPlace() {
        QFETCH(QPoint, scroll);
        const QString glyphs[] = {QStringLiteral("BOX1"), QStringLiteral("BOX2"),
                                  QStringLiteral("BOX3")};
        for (int state = 0; state < 3; ++state) {
            PaintedBox on;
            on.canvas.scroll = scroll;
            on.box.FieldState = state;
            QCOMPARE(on.box.checkBoxRect(), TRect({36, 44, 48, 56}));
            QCOMPARE(on.part(on.paint(), {36, 44, 48, 56}), glyphOn(glyphs[state], face));
            on.select();
            QCOMPARE(on.part(on.paint(), {36, 44, 48, 56}), glyphOn(glyphs[state], silver));
        }
        QVERIFY(glyphOn(glyphs[0], face) != glyphOn(glyphs[1], face));
        QVERIFY(glyphOn(glyphs[1], face) != glyphOn(glyphs[2], face));
    }

    void checkBoxIsDrawnTwoPixelsRightOfWhereItIsHit() {
        PaintedBox on;
        const QImage image = on.paint();
        const QColor outline(0x60, 0x60, 0x60);
        int firstDrawn = 0;
        while (image.pixelColor(firstDrawn, 50) != outline) ++firstDrawn;
        int firstHit = 0;
        while (on.box.HitTest({firstHit, 50}) != htTCheck) ++firstHit;
        QCOMPARE(firstDrawn, firstHit + 2);
    }

    // --- caption buttons

    void buttonsShowWhatTheMouseDoes_data() {
        QTest::addColumn<int>("pressed");
        QTest::addColumn<int>("hot");
        QTest::addColumn<bool>("isFlat");
        QTest::addColumn<QString>("looks");  // of the three: Normal, Flat, Hot, Pressed
        QTest::newRow("nothing, flat") << -1 << -1 << true << "FFF";
        QTest::newRow("nothing") << -1 << -1 << false << "NNN";
        QTest::newRow("hot 0") << -1 << 0 << true << "HFF";
        QTest::newRow("hot 1") << -1 << 1 << true << "FHF";
        QTest::newRow("hot 2") << -1 << 2 << true << "FFH";
        QTest::newRow("hot, not flat") << -1 << 2 << false << "NNH";
        QTest::newRow("pressed and hot 0") << 0 << 0 << true << "PFF";
        QTest::newRow("pressed and hot 2") << 2 << 2 << false << "NNP";
        QTest::newRow("pressed, another hot") << 1 << 0 << true << "FFF";
        QTest::newRow("pressed, mouse outside") << 1 << -1 << false << "NNN";
    }
    void buttonsShowWhatTheMouseDoes() {
        QFETCH(int, pressed);
        QFETCH(int, hot);
        QFETCH(bool, isFlat);
        QFETCH(QString, looks);
        for (const QPoint& scroll : {QPoint(), oddScroll}) {
            PaintedBox on;
            on.canvas.scroll = scroll;
            on.canvas.workAreaOptions.SetFlatCaptionBtns(isFlat);
            on.box.PressedButton = pressed;
            on.box.HotButton = hot;
            const QImage image = on.paint();
            QCOMPARE(on.box.GetButtonRect(), TRect({148, 42, 188, 60}));
            for (int index = 0; index < 3; ++index) {
                const QChar look = looks[index];
                const QColor leftTop = look == u'P' ? black : look == u'F' ? grey : white;
                const QColor rightBottom = look == u'P' ? white : grey;
                const int left = 148 + 12 * index;
                const int top = 42 + (18 - buttonPx - 2) / 2;
                for (int step = 0; step < buttonPx; ++step) {
                    QCOMPARE(on.at(image, left, top + step), leftTop);
                    QCOMPARE(on.at(image, left + step, top), leftTop);
                    QCOMPARE(on.at(image, left + buttonPx, top + step), rightBottom);
                    QCOMPARE(on.at(image, left + 1 + step, top + buttonPx), rightBottom);
                }
                QCOMPARE(on.at(image, left, top + buttonPx), leftTop);
            }
        }
    }

    void glyphOfAButtonLiesWhereAClickMeansTheButton() {
        const PaintedBox on;
        const TRect place{10, 10, 50, 28};
        for (int index = 0; index < 3; ++index) {
            QImage image(60, 40, QImage::Format_RGB32);
            image.fill(face);
            QPainter painter(&image);
            on.box.DrawButton(painter, 1, index, place);
            painter.end();
            int found = 0;
            for (int x = 0; x < image.width(); ++x) {
                for (int y = 0; y < image.height(); ++y) {
                    const QColor color = image.pixelColor(x, y);
                    if (color == face || color == grey) continue;
                    ++found;
                    const int meant = x < place.Left + buttonPx + 1    ? 0
                                      : x > place.Right - buttonPx - 2 ? 2
                                                                       : 1;
                    QCOMPARE(meant, index);
                    QVERIFY(y >= place.Top && y < place.Bottom);
                }
            }
            QVERIFY(found > 10);
        }
    }

    void buttonsHaveGlyphsOfTheirOwn() {
        PaintedBox on;
        const QImage image = on.paint();
        QList<QImage> inside;
        for (int index = 0; index < 3; ++index) {
            inside << on.part(image, {149 + 12 * index, 45, 159 + 12 * index, 55});
        }
        QVERIFY(inside[0] != inside[1] && inside[1] != inside[2] && inside[0] != inside[2]);
    }

    void otherButtonsAreNotDrawn() {
        const PaintedBox on;
        QImage image(60, 40, QImage::Format_RGB32);
        image.fill(face);
        QPainter painter(&image);
        on.box.DrawButton(painter, 1, -1, {10, 10, 50, 28});
        on.box.DrawButton(painter, 1, 3, {10, 10, 50, 28});
        painter.end();
        QVERIFY(isPlain(image, face));
    }

    // --- painters

    void painterIsLeftAsItWas() {
        PaintedBox on;
        on.select();
        on.box.SetCurrentItem(on.row(0));
        QImage image(300, 220, QImage::Format_RGB32);
        QPainter painter(&image);
        painter.setPen(QColor(9, 9, 9));
        painter.setBrush(QColor(8, 8, 8));
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setClipRect(QRect(5, 5, 250, 200));
        const QFont font = painter.font();
        on.box.Paint(painter);
        QCOMPARE(painter.pen().color(), QColor(9, 9, 9));
        QCOMPARE(painter.brush().color(), QColor(8, 8, 8));
        QVERIFY(painter.testRenderHint(QPainter::Antialiasing));
        QCOMPARE(painter.clipBoundingRect(), QRectF(5, 5, 250, 200));
        QCOMPARE(painter.font(), font);
    }

    void clipOfThePainterHolds() {
        PaintedBox on;
        QImage image(300, 220, QImage::Format_RGB32);
        image.fill(behind);
        QPainter painter(&image);
        painter.setClipRect(QRect(0, 0, 100, 100));
        on.box.Paint(painter);
        painter.setClipRect(QRect(220, 0, 50, 100));  // beside the box
        on.box.Paint(painter);
        painter.end();
        QCOMPARE(image.copy(0, 0, 100, 100), on.paint().copy(0, 0, 100, 100));
        QVERIFY(isPlain(image.copy(100, 0, 200, 220), behind));
        QVERIFY(isPlain(image.copy(0, 100, 300, 120), behind));
    }

    void smoothingOfThePainterChangesNothing() {
        PaintedBox on;
        on.select();
        on.box.SetCurrentItem(on.row(0));
        QImage image(300, 220, QImage::Format_RGB32);
        image.fill(behind);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        on.box.Paint(painter);
        painter.end();
        QCOMPARE(image, on.paint());
    }

    void repaintIsTheSamePicture() {
        PaintedBox on;
        on.canvas.workAreaOptions.SetShowFieldsType(true);
        const QImage first = on.paint();
        const QImage large = on.paint(2);
        QCOMPARE(on.paint(), first);
        QCOMPARE(on.paint(2), large);
    }

    void vectorFilesGetLettersAndLines() {
        PaintedBox on;
        VectorDevice device;
        QPainter painter(&device);
        on.box.Paint(painter);
        painter.end();
        // The pixel that is seen of the seventh row is not worth its text.
        QCOMPARE(device.engine.texts, QStringList({"T", " F0", " F1", " F2", " F3", " F4", " F5"}));
        QCOMPARE(device.engine.images, 0);
        QVERIFY(device.engine.paths > 0);
    }

    void hardlySeenRowsAreLeftOutOfVectorFiles_data() {
        QTest::addColumn<int>("seen");  // pixels of the seventh row
        QTest::addColumn<bool>("isDrawn");
        QTest::newRow("less than half") << 7 << false;
        QTest::newRow("half") << 8 << true;
    }
    void hardlySeenRowsAreLeftOutOfVectorFiles() {
        QFETCH(int, seen);
        QFETCH(bool, isDrawn);
        PaintedBox on;
        const int seventh = 40 + 20 + 1 + 6 * 17 + 1;
        on.box.SetHeight(seventh + seen + 4 - 40);
        QCOMPARE(on.box.GetClientRect().Bottom, seventh + seen);
        VectorDevice device;
        QPainter painter(&device);
        on.box.Paint(painter);
        painter.end();
        QCOMPARE(device.engine.texts.contains(QStringLiteral(" F6")), isDrawn);
        QVERIFY(device.engine.texts.contains(QStringLiteral(" F5")));
    }

    void longTextsEndInsideTheBoxInVectorFiles() {
        PaintedBox on;
        const QString name(60, u'W');
        on.row(0)->Name = name;
        VectorDevice device;
        QPainter painter(&device);
        on.box.Paint(painter);
        painter.end();
        const QString text = device.engine.texts.value(1);
        QVERIFY(text.size() > 5);
        QVERIFY((u' ' + name).startsWith(text));
        QVERIFY(device.engine.rightmost <= 186);
        QVERIFY(device.engine.rightmost > 186 - 2 * 11);  // not more than the last letter is lost
    }

    void boxWhoseCanvasIsGonePaintsNothing() {
        auto canvas = std::make_unique<FakeCanvas>();
        const TDataSet fields = numberedFields(2);
        TorvQDTable box(canvas.get(), &fields, QStringLiteral("T"));
        canvas.reset();
        QImage image(100, 100, QImage::Format_RGB32);
        image.fill(behind);
        QPainter painter(&image);
        box.Paint(painter);
        box.Items[0]->DrawItem(painter, QRect(0, 0, 100, 16), 1, true);
        painter.end();
        QVERIFY(isPlain(image, behind));
        QCOMPARE(box.GetTableBorder(), orv::Bevel::Raised);
        QVERIFY(!box.GetFlat() && !box.GetbtnFlat() && !box.GetHideSelection());
    }

    void readersTellTheOptions() {
        PaintedBox on;
        QVERIFY(!on.box.GetFlat());
        QVERIFY(on.box.GetbtnFlat());
        QVERIFY(on.box.GetHideSelection());
        on.canvas.workAreaOptions.SetFlat(true);
        on.canvas.workAreaOptions.SetFlatCaptionBtns(false);
        on.canvas.workAreaOptions.SetHideSelection(false);
        QVERIFY(on.box.GetFlat());
        QVERIFY(!on.box.GetbtnFlat());
        QVERIFY(!on.box.GetHideSelection());
    }
};

QTEST_MAIN(FloatTablePaintTest)
#include "tst_floattablepaint.moc"
