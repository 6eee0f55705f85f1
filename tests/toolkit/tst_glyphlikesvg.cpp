// SPDX-License-Identifier: MIT
// The glyphs beside what the SVG module of Qt makes of the same files.
#include "support/TestTools.h"
#include "toolkit/Glyph.h"

#include <QDir>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>

namespace {

struct Difference {
    int most = 0;     // of one channel of one pixel
    double mean = 0;  // of the channels of all pixels
};

Difference differenceOf(const QImage& a, const QImage& b) {
    Difference result;
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb one = a.pixel(x, y);
            const QRgb other = b.pixel(x, y);
            for (const int each :
                 {std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                  std::abs(qBlue(one) - qBlue(other))}) {
                result.most = std::max(result.most, each);
                sum += each;
            }
        }
    }
    result.mean = sum / (3.0 * a.width() * a.height());
    return result;
}

/// What the SVG module makes of a glyph's file: painted many times as large and then reduced,
/// because it paints lines of one pixel in a coarser way.
QImage fileOf(const QString& name, const QSize& size, qreal scale) {
    constexpr int times = 8;
    QImage large(size * times, QImage::Format_RGB32);
    large.fill(Qt::white);
    QPainter painter(&large);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale * times, scale * times);
    QSvgRenderer renderer(QStringLiteral(":/orv/%1.svg").arg(name));
    renderer.render(&painter, QRectF(QPointF(), QSizeF(orv::glyph(name).size())));
    painter.end();
    QImage reduced(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            int sums[3] = {};
            for (int part = 0; part < times * times; ++part) {
                const QRgb pixel = large.pixel(x * times + part % times, y * times + part / times);
                sums[0] += qRed(pixel);
                sums[1] += qGreen(pixel);
                sums[2] += qBlue(pixel);
            }
            constexpr int parts = times * times;
            reduced.setPixel(x, y, qRgb(sums[0] / parts, sums[1] / parts, sums[2] / parts));
        }
    }
    return reduced;
}

}  // namespace

class GlyphLikeSvgTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // Between the scales lines are moved to whole pixels, where the file has half of one: there a
    // pixel may be different by half of its colour, and somewhat more where two lines meet.
    void glyphLooksLikeItsFile_data() {
        (void)orv::glyph(QStringLiteral("BTN1"));
        QTest::addColumn<QString>("name");
        QTest::addColumn<qreal>("scale");
        QTest::addColumn<int>("most");
        QTest::addColumn<double>("mean");
        for (QString name : QDir(QStringLiteral(":/orv")).entryList({"*.svg"})) {
            name.chop(4);
            QTest::addRow("%s, 100 %%", qPrintable(name)) << name << 1.0 << 48 << 1.5;
            QTest::addRow("%s, 150 %%", qPrintable(name)) << name << 1.5 << 160 << 30.0;
            QTest::addRow("%s, 200 %%", qPrintable(name)) << name << 2.0 << 48 << 1.5;
            QTest::addRow("%s, 500 %%", qPrintable(name)) << name << 5.0 << 48 << 1.5;
        }
    }
    void glyphLooksLikeItsFile() {
        QFETCH(QString, name);
        QFETCH(qreal, scale);
        QFETCH(int, most);
        QFETCH(double, mean);
        const orv::Glyph& glyph = orv::glyph(name);
        QImage painted((QSizeF(glyph.size()) * scale).toSize(), QImage::Format_RGB32);
        painted.fill(Qt::white);
        {
            QPainter painter(&painted);
            painter.scale(scale, scale);
            glyph.paint(painter, QRectF(QPointF(), QSizeF(glyph.size())));
        }
        const QImage expected = fileOf(name, painted.size(), scale);
        QImage blank = expected;
        blank.fill(Qt::white);
        QVERIFY(differenceOf(expected, blank).mean > 10);  // there is something to see
        const Difference difference = differenceOf(painted, expected);
        QVERIFY2(difference.most <= most && difference.mean <= mean,
                 qPrintable(
                     QStringLiteral("most %1, mean %2").arg(difference.most).arg(difference.mean)));
    }
};

QTEST_MAIN(GlyphLikeSvgTest)
#include "tst_glyphlikesvg.moc"
