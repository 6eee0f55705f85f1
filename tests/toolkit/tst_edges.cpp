// SPDX-License-Identifier: MIT
#include "support/TestTools.h"
#include "toolkit/Edges.h"

#include <QImage>
#include <QPainter>
#include <QPalette>

using orv::Bevel;

namespace {

const QColor ground(1, 2, 3);

/// A palette whose colours are named by letters: L Light, M Midlight, D Dark, S Shadow, m Mid.
QPalette letterPalette() {
    QPalette palette;
    palette.setColor(QPalette::Light, QColor(250, 0, 0));
    palette.setColor(QPalette::Midlight, QColor(0, 250, 0));
    palette.setColor(QPalette::Dark, QColor(0, 0, 250));
    palette.setColor(QPalette::Shadow, QColor(0, 250, 250));
    palette.setColor(QPalette::Mid, QColor(250, 250, 0));
    return palette;
}

QChar letterOf(const QColor& color) {
    const QPalette palette = letterPalette();
    if (color == palette.color(QPalette::Light)) return u'L';
    if (color == palette.color(QPalette::Midlight)) return u'M';
    if (color == palette.color(QPalette::Dark)) return u'D';
    if (color == palette.color(QPalette::Shadow)) return u'S';
    if (color == palette.color(QPalette::Mid)) return u'm';
    return color == ground ? u'.' : u'?';
}

/// The picture of a border around `rect`, a line of letters for each line of pixels.
QStringList lettersOf(const QSize& size, const QRect& rect, Bevel bevel, bool isFlat) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(ground);
    QPainter painter(&image);
    orv::drawBevel(painter, rect, letterPalette(), bevel, isFlat);
    painter.end();
    QStringList lines;
    for (int y = 0; y < size.height(); ++y) {
        QString line;
        for (int x = 0; x < size.width(); ++x) line += letterOf(image.pixelColor(x, y));
        lines << line;
    }
    return lines;
}

}  // namespace

class EdgesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void twoRingsLieInsideTheRectangle_data() {
        QTest::addColumn<int>("bevel");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("raised") << int(Bevel::Raised)
                                << QStringList{".......", ".MMMMS.", ".MLLDS.", ".ML.DS.",
                                               ".MDDDS.", ".SSSSS.", "......."};
        QTest::newRow("sunken") << int(Bevel::Sunken)
                                << QStringList{".......", ".DDDDL.", ".DSSML.", ".DS.ML.",
                                               ".DMMML.", ".LLLLL.", "......."};
        QTest::newRow("etched") << int(Bevel::Etched)
                                << QStringList{".......", ".DDDDL.", ".DLLDL.", ".DL.DL.",
                                               ".DDDDL.", ".LLLLL.", "......."};
        QTest::newRow("bump") << int(Bevel::Bump)
                              << QStringList{".......", ".MMMMS.", ".MSSMS.", ".MS.MS.",
                                             ".MMMMS.", ".SSSSS.", "......."};
    }
    void twoRingsLieInsideTheRectangle() {
        QFETCH(int, bevel);
        QFETCH(QStringList, expected);
        QCOMPARE(lettersOf({7, 7}, {1, 1, 5, 5}, Bevel(bevel), false), expected);
    }

    void flatBorderIsOneRingForEveryKind() {
        const QStringList expected{".....", ".mmm.", ".m.m.", ".mmm.", "....."};
        for (const Bevel bevel : {Bevel::Bump, Bevel::Etched, Bevel::Raised, Bevel::Sunken}) {
            QCOMPARE(lettersOf({5, 5}, {1, 1, 3, 3}, bevel, true), expected);
        }
    }

    void rectangleWithoutRoomForTheInnerRingHasTheOuterOne() {
        QCOMPARE(lettersOf({4, 4}, {0, 0, 3, 3}, Bevel::Raised, false),
                 QStringList({"MMS.", "M.S.", "SSS.", "...."}));
        QCOMPARE(lettersOf({2, 2}, {0, 0, 1, 2}, Bevel::Raised, false), QStringList({"..", ".."}));
    }
};

QTEST_MAIN(EdgesTest)
#include "tst_edges.moc"
