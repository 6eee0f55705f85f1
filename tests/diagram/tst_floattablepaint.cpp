// SPDX-License-Identifier: MIT
#include "diagram/ORVQDFloatTable.h"
#include "support/FakeCanvas.h"
#include "support/TestTools.h"
#include "toolkit/Glyph.h"

#include <QFontMetrics>
#include <QImage>
#include <QPaintEngine>
#include <QPainter>

#include <functional>
#include <memory>

using orvtest::FakeCanvas;
using orvtest::numberedFields;

namespace {

const QColor behind(1, 2, 3);  // what lies around a box
const QColor face(0xE0, 0xE1, 0xE2);
const QColor light(250, 0, 0);
const QColor midlight(0, 250, 0);
const QColor dark(0, 0, 250);
const QColor shadow(0, 250, 250);
const QColor mid(250, 250, 0);
const QColor silver(0xC0, 0xC0, 0xC0);
const QColor grey(0x80, 0x80, 0x80);
const QColor teal(0, 128, 128);
const QColor white(Qt::white);
const QColor black(Qt::black);

constexpr QPoint oddScroll(17, 23);
constexpr int buttonPx = 11;  // the side of a caption button's glyph

/// A box of ten rows, six of them visible, on a canvas of its own whose palette has other colours
/// for everything. The box is at (30, 40), 160 wide and 128 high; its caption is 20 high, a row 16.
struct PaintedBox {
    explicit PaintedBox(int rows = 10) : fields(numberedFields(rows)), box(&canvas, &fields, "T") {
        QPalette palette;
        palette.setColor(QPalette::Button, face);
        palette.setColor(QPalette::ButtonText, black);
        palette.setColor(QPalette::Light, light);
        palette.setColor(QPalette::Midlight, midlight);
        palette.setColor(QPalette::Dark, dark);
        palette.setColor(QPalette::Shadow, shadow);
        palette.setColor(QPalette::Mid, mid);
        canvas.setPalette(palette);
        QFont font(QStringLiteral("Arial"));
        font.setPixelSize(11);
        canvas.workAreaOptions.SetFont(font);
        box.SetLeft(30);
        box.SetTop(40);
        box.SetWidth(160);
    }
    TorvQDListItem* row(int index) const { return box.Items[std::size_t(index)].get(); }
    /// Selects without the scroll bar that would cover the ends of the rows.
    void select() {
        box.SetSelect(true);
        canvas.scrollBarVisible = false;
    }
    QImage paint(qreal scale = 1) {
        QImage image((QSizeF(300, 220) * scale).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        image.fill(behind);
        QPainter painter(&image);
        box.Paint(painter);
        return image;
    }
    /// A pixel of the picture by its diagram coordinates.
    QColor at(const QImage& image, int x, int y) const {
        return image.pixelColor(QPoint(x, y) - canvas.scroll);
    }
    /// The part of the picture that a rectangle in diagram coordinates covers.
    QImage part(const QImage& image, const TRect& rect) const {
        return image.copy(box.toView(rect).toQRect());
    }
    QColor pixel(int x, int y) { return at(paint(), x, y); }
    /// The row area of a row as it is drawn, in view coordinates.
    TRect drawnRow(int index) const {
        TRect rect = box.GetItemRect(row(index));
        rect.Top += 1;
        return rect;
    }
    TRect textOf(int index) const {
        TRect rect = drawnRow(index);
        rect.Left += box.ItemHeight;
        return rect;
    }

    FakeCanvas canvas;
    TDataSet fields;
    TorvQDTable box;
};

QImage viewPart(const QImage& image, const TRect& viewRect) {
    return image.copy(viewRect.toQRect());
}

int pixelsOf(const QImage& image, const QColor& color) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) count += image.pixelColor(x, y) == color ? 1 : 0;
    }
    return count;
}

bool isPlain(const QImage& image, const QColor& color) {
    return pixelsOf(image, color) == image.width() * image.height();
}

/// How dark the picture is altogether: bold letters have more ink than regular ones.
int inkOf(const QImage& image) {
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) ink += 255 - qGray(image.pixel(x, y));
    }
    return ink;
}

QImage glyphOn(const QString& name, const QColor& ground) {
    const orv::Glyph& glyph = orv::glyph(name);
    QImage image(glyph.size(), QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    glyph.paint(painter, image.rect());
    return image;
}

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

void addScrollRows() {
    QTest::addColumn<QPoint>("scroll");
    QTest::newRow("not scrolled") << QPoint();
    QTest::newRow("scrolled") << oddScroll;
}

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
