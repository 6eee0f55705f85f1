// SPDX-License-Identifier: MIT
#include "support/TestTools.h"
#include "toolkit/Glyph.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPicture>

namespace {

QByteArray svgOf(const QByteArray& shapes) {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"8\" height=\"8\" viewBox=\"0 0 8 "
           "8\">" +
           shapes + "</svg>";
}

/// A shape painted at a place of a white picture of that scale.
QImage painted(const QByteArray& shapes, qreal scale = 1, const QRectF& rect = {0, 0, 8, 8},
               const QColor& ink = {}) {
    QImage image((QSizeF(12, 12) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::white);
    QPainter painter(&image);
    orv::Glyph::fromSvg(svgOf(shapes)).paint(painter, rect, ink);
    return image;
}

/// The rectangle of the pixels that are not white, in pixels of the device.
QRect inkOf(const QImage& image) {
    QRect rect;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::white)) rect |= QRect(x, y, 1, 1);
        }
    }
    return rect;
}

/// Whether every pixel has one of the two colours: nothing was smoothed.
bool isCrisp(const QImage& image, const QColor& color) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (pixel != color && pixel != QColor(Qt::white)) return false;
        }
    }
    return true;
}

const QByteArray ring = "<rect x='1.5' y='1.5' width='5' height='5' fill='none' stroke='#000000'/>";

}  // namespace

class GlyphTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void everyResourceIsRead() {
        (void)orv::glyph(QStringLiteral("BTN1"));  // the resources of a static library are there
        const QStringList files = QDir(QStringLiteral(":/orv")).entryList({"*.svg"});
        QVERIFY(files.size() >= 13);
        for (const QString& name : files) {
            QFile file(QStringLiteral(":/orv/") + name);
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray content = file.readAll();
            QCOMPARE(orvtest::errorOf([&] { (void)orv::Glyph::fromSvg(content); }),
                     QStringLiteral("(no error)"));
        }
    }

    void glyphsHaveTheSizesOfTheirPlaces_data() {
        QTest::addColumn<QString>("names");
        QTest::addColumn<int>("size");
        QTest::newRow("caption buttons") << "BTN1 BTN2 BTN3" << 11;
        QTest::newRow("caption check box") << "BOX1 BOX2 BOX3" << 12;
        QTest::newRow("rows") << "UNCHECKBMP CHECKBMP INPUTNULL INPUTPARAM" << 13;
        QTest::newRow("lists") << "TABLEBMP FIELDBMP" << 16;
        QTest::newRow("dragging") << "DragCursor" << 32;
    }
    void glyphsHaveTheSizesOfTheirPlaces() {
        QFETCH(QString, names);
        QFETCH(int, size);
        for (const QString& name : names.split(u' ')) {
            QCOMPARE(orv::glyph(name).size(), QSize(size, size));
        }
    }

    void missingGlyphIsEmptyAndWarns() {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Glyph NONESUCH: "));
        const orv::Glyph& none = orv::glyph(QStringLiteral("NONESUCH"));
        QVERIFY(none.size().isEmpty());
        QCOMPARE(&orv::glyph(QStringLiteral("NONESUCH")), &none);  // and warns once
        QPicture picture;
        QPainter painter(&picture);
        none.paint(painter, QRectF(0, 0, 8, 8));
    }

    // --- what is not drawn

    void whatIsNotDrawnIsAnError_data() {
        QTest::addColumn<QByteArray>("svg");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* name, const QByteArray& shapes, const QString& error) {
            QTest::newRow(name) << svgOf(shapes) << "line 1: " + error;
        };
        row("group", "<g><path d='M0 0H1'/></g>", "element <g> is not supported");
        row("line", "<line x1='0' y1='0' x2='1' y2='1'/>", "element <line> is not supported");
        row("transform", "<rect width='1' height='1' transform='scale(2)'/>",
            "attribute transform is not supported");
        row("second radius", "<rect width='1' height='1' ry='1'/>",
            "attribute ry is not supported");
        row("opacity", "<rect width='1' height='1' opacity='0.5'/>",
            "attribute opacity is not supported");
        row("style", "<path d='M0 0H1' style='fill:none'/>", "attribute style is not supported");
        row("named colour", "<rect width='1' height='1' fill='red'/>",
            "colour \"red\" is not supported");
        row("arc", "<path d='M0 0A1 1 0 0 1 2 2'/>",
            "the path \"M0 0A1 1 0 0 1 2 2\" is not supported");
        row("smooth curve", "<path d='M0 0S1 1 2 2'/>",
            "the path \"M0 0S1 1 2 2\" is not supported");
        row("lines after a move", "<path d='M0 0 1 1'/>", "the path \"M0 0 1 1\" is not supported");
        row("path without a start", "<path d='L1 1'/>", "the path \"L1 1\" is not supported");
        row("missing number", "<path d='M0 0L1'/>", "the path \"M0 0L1\" is not supported");
        row("no path", "<path fill='none' stroke='#000'/>", "the path \"\" is not supported");
        row("unit", "<rect width='1mm' height='1'/>", "\"1mm\" is no number");
        row("cap", "<path d='M0 0H1' stroke='#000' stroke-linecap='pointed'/>",
            "stroke-linecap=\"pointed\" is not supported");
        row("join", "<path d='M0 0H1' stroke='#000' stroke-linejoin='arcs'/>",
            "stroke-linejoin=\"arcs\" is not supported");
        row("invisible", "<rect width='1' height='1' fill='none'/>", "nothing is drawn");
        row("no size", "<circle cx='1' cy='1'/>", "the ellipse is empty");
        row("child", "<rect width='1' height='1'><title/></rect>", "a shape has content");
        row("text", "<rect width='1' height='1'/>text", "text is not supported");
        row("nothing", "", "there is no shape");
        QTest::newRow("no picture") << QByteArray("<html/>") << "line 1: there is no <svg>";
        QTest::newRow("no box") << QByteArray("<svg width='1'/>")
                                << "line 1: a viewBox of four numbers is missing";
    }
    void whatIsNotDrawnIsAnError() {
        QFETCH(QByteArray, svg);
        QFETCH(QString, error);
        QCOMPARE(orvtest::errorOf([&] { (void)orv::Glyph::fromSvg(svg); }), error);
    }

    void brokenFileIsAnError() {
        const QString error =
            orvtest::errorOf([] { (void)orv::Glyph::fromSvg("<svg viewBox='0 0 8 8'><rect "); });
        QVERIFY2(error.startsWith("line 1: "), qPrintable(error));
    }

    // --- pixels

    void straightLinesAreCrispAtEveryScale_data() {
        QTest::addColumn<qreal>("scale");
        QTest::addColumn<QRect>("ink");  // 1..7 times the scale, to whole pixels
        QTest::newRow("100 %") << 1.0 << QRect(1, 1, 6, 6);
        QTest::newRow("200 %") << 2.0 << QRect(2, 2, 12, 12);
        QTest::newRow("300 %") << 3.0 << QRect(3, 3, 18, 18);
    }
    void straightLinesAreCrispAtEveryScale() {
        QFETCH(qreal, scale);
        QFETCH(QRect, ink);
        const QImage image = painted(ring, scale);
        QVERIFY(isCrisp(image, Qt::black));
        QCOMPARE(inkOf(image), ink);
    }

    void linesKeepOneWidthBetweenTheScales() {
        const QImage image = painted(ring, 1.5);
        QVERIFY(isCrisp(image, Qt::black));
        const QRect ink = inkOf(image);
        QCOMPARE(ink.width(), ink.height());
        // One and a half pixels are two on each of the four sides.
        QCOMPARE(inkOf(image.copy(ink.adjusted(2, 2, -2, -2))), QRect());
        const int middle = ink.center().y();
        for (const int x : {ink.left(), ink.left() + 1, ink.right() - 1, ink.right()}) {
            QCOMPARE(image.pixelColor(x, middle), QColor(Qt::black));
        }
    }

    void pictureIsPutOnWholePixels() {
        const QImage image = painted(ring, 1.5, QRectF(1, 1, 8, 8));
        QVERIFY(isCrisp(image, Qt::black));
        const QImage between = painted(ring, 1, QRectF(1.3, 0.6, 8, 8));
        QVERIFY(isCrisp(between, Qt::black));
        QCOMPARE(inkOf(between), QRect(1 + 1, 1 + 1, 6, 6));
    }

    void slantedLinesAreSmooth() {
        const QByteArray slant =
            "<path d='M1 1L7 6' fill='none' stroke='#000000' stroke-width='1.5'/>";
        QVERIFY(!isCrisp(painted(slant), Qt::black));
        QVERIFY(!isCrisp(painted("<circle cx='4' cy='4' r='3'/>"), Qt::black));
    }

    void commandsOfAPath_data() {
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("absolute") << QByteArray("M2 1L6 1L6 5L2 5Z");
        QTest::newRow("relative") << QByteArray("m2,1l4,0l0,4l-4,0z");
        QTest::newRow("straight") << QByteArray("M2 1H6V5H2Z");
        QTest::newRow("straight relative") << QByteArray("m2 1h4v4h-4z");
        QTest::newRow("repeated") << QByteArray("M2 1L6 1 6 5 2 5");
        QTest::newRow("numbers without blanks") << QByteArray("M2 1l4-0 0 4-4 .0Z");
    }
    void commandsOfAPath() {
        QFETCH(QByteArray, data);
        const QImage image = painted("<path d='" + data + "'/>");
        QCOMPARE(inkOf(image), QRect(2, 1, 4, 4));
        QVERIFY(isCrisp(image, Qt::black));
    }

    void openLineEndsWhereItStops() {
        const auto line = [](const QByteArray& data, const QByteArray& cap) {
            return inkOf(
                painted("<path d='" + data + "' fill='none' stroke='#000000'" + cap + "/>"));
        };
        QCOMPARE(line("M2 3.5H6", ""), QRect(2, 3, 4, 1));
        QCOMPARE(line("M3.5 2V6", ""), QRect(3, 2, 1, 4));
        QCOMPARE(line("M2 3.5H6.5V7", ""), QRect(2, 3, 5, 4));
        QCOMPARE(line("M2.5 3.5H5.5", " stroke-linecap='square'"), QRect(2, 3, 4, 1));
        QCOMPARE(line("M1 1.5H3M5 1.5H7", ""), QRect(1, 1, 6, 1));
    }

    void curveCommandReachesItsEnd() {
        // All four points on one line: the curve is that line.
        const QImage image =
            painted("<path d='M1 2.5C3 2.5 5 2.5 7 2.5' fill='none' stroke='#000000'/>");
        QCOMPARE(inkOf(image), QRect(1, 2, 6, 1));
        const QImage relative =
            painted("<path d='M1 2.5c2 0 4 0 6 0' fill='none' stroke='#000000'/>");
        QCOMPARE(relative, image);
    }

    void inkReplacesTheColours() {
        const QImage image = painted(ring, 1, {0, 0, 8, 8}, QColor(0, 0, 200));
        QVERIFY(isCrisp(image, QColor(0, 0, 200)));
        QCOMPARE(inkOf(image), QRect(1, 1, 6, 6));
    }

    void inksOfOneGlyphAreKeptApart() {
        const orv::Glyph glyph = orv::Glyph::fromSvg(svgOf(ring));
        QImage image(8, 8, QImage::Format_RGB32);
        QPainter painter(&image);
        for (const QColor& ink : {QColor(1, 2, 3), QColor(), QColor(1, 2, 3)}) {
            glyph.paint(painter, QRectF(0, 0, 8, 8), ink);
            QCOMPARE(image.pixelColor(1, 1), ink.isValid() ? ink : QColor(Qt::black));
        }
    }

    void manySizesAreAllPaintedRight() {
        const orv::Glyph glyph = orv::Glyph::fromSvg(svgOf("<rect width='8' height='8'/>"));
        for (int round = 0; round < 2; ++round) {
            for (int size = 1; size < 30; ++size) {
                QImage image(32, 32, QImage::Format_RGB32);
                image.fill(Qt::white);
                QPainter painter(&image);
                glyph.paint(painter, QRectF(1, 1, size, size));
                painter.end();
                QCOMPARE(inkOf(image), QRect(1, 1, size, size));
            }
        }
    }

    void mirroredOrTurnedPainterPaintsTheLines() {
        QImage image(12, 12, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.translate(12, 0);
        painter.rotate(90);
        orv::Glyph::fromSvg(svgOf("<rect x='1' y='2' width='4' height='2'/>"))
            .paint(painter, QRectF(0, 0, 8, 8));
        painter.end();
        QCOMPARE(inkOf(image), QRect(12 - 4, 1, 2, 4));
    }

    void vectorFilesGetLinesInsteadOfPixels() {
        QPicture picture;
        QPainter painter(&picture);
        QVERIFY(orv::paintsVectors(painter));
        orv::Glyph::fromSvg(svgOf(ring)).paint(painter, QRectF(0, 0, 8, 8));
        painter.end();
        // Eight times as large the recorded picture is as sharp as ever.
        QImage image(64, 64, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter large(&image);
        QVERIFY(!orv::paintsVectors(large));
        large.scale(8, 8);
        large.drawPicture(0, 0, picture);
        large.end();
        QCOMPARE(inkOf(image), QRect(8, 8, 48, 48));
        QVERIFY(isCrisp(image, Qt::black));
    }

    // --- icons

    void iconIsTheGlyphAtEverySize() {
        const QIcon icon = orv::glyphIcon(QStringLiteral("TABLEBMP"));
        QCOMPARE(icon.actualSize(QSize(16, 16)), QSize(16, 16));
        QCOMPARE(icon.availableSizes(), QList<QSize>({QSize(16, 16)}));
        for (const int size : {16, 24, 32}) {
            QImage expected(size, size, QImage::Format_ARGB32_Premultiplied);
            expected.fill(Qt::transparent);
            QPainter painter(&expected);
            orv::glyph(QStringLiteral("TABLEBMP")).paint(painter, QRectF(0, 0, size, size));
            painter.end();
            QCOMPARE(
                icon.pixmap(QSize(size, size), 1.0).toImage().convertToFormat(expected.format()),
                expected);
        }
        QCOMPARE(QIcon(icon).pixmap(16).size(), icon.pixmap(16).size());
    }
};

QTEST_MAIN(GlyphTest)
#include "tst_glyph.moc"
