// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "pictures/Pages.h"
#include "pictures/Picture.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "tables/SchemaFile.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QPdfWriter>
#include <QPrinter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>

using namespace orvquery;

namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The objects of the pages; their common parent is "/Type /Pages".
int pagesOf(const QByteArray& pdf) {
    static const QRegularExpression page(QStringLiteral("/Type\\s*/Page(?!s)"));
    auto found = page.globalMatch(QString::fromLatin1(pdf));
    int count = 0;
    for (; found.hasNext(); found.next()) ++count;
    return count;
}

bool isWholePdf(const QByteArray& pdf) {
    return pdf.startsWith("%PDF-1.") && pdf.trimmed().endsWith("%%EOF") &&
           pdf.contains("startxref");
}

}  // namespace

class TestPictures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_builder.reset(); }

    void formatFollowsFromTheName();
    void tiles_data();
    void tiles();
    void tilesCoverEverythingOnce_data();
    void tilesCoverEverythingOnce();
    void nothingNeedsNoPage();
    void pdfIsOnePageAsLargeAsThePicture();
    void svgHasTheTexts();
    void pngIsAsLargeAsThePicture();
    void emptyDiagramIsNoPicture();
    void otherNamesAreRefused();
    void failureKeepsWhatIsThere();
    void paperHasThePagesThatThePictureTakes_data();
    void paperHasThePagesThatThePictureTakes();
    void marginsTakeRoom();
    void emptyDiagramIsNotPrinted();
    void marginsMayLeaveNoRoom();

private:
    void placeBoxes(const QSize& extent) const;
    [[nodiscard]] TorvQDWorkArea& area() const { return *m_builder->WorkArea; }
    [[nodiscard]] QString file(const char* name) const {
        return m_folder.filePath(QLatin1String(name));
    }

    QTemporaryDir m_folder;
    std::unique_ptr<SchemaFile> m_tables;
    std::unique_ptr<TorvQueryBuilder> m_builder;
};

void TestPictures::init() {
    orvtest::failOnAnyWarning();
    m_tables = std::make_unique<SchemaFile>(
        QByteArray(R"({"ORDERS": [["NUMBER", "ftInteger"], ["PLACED", "ftDate"]],
                       "PEOPLE": [["NAME", "ftString"], ["CITY", "ftString"]]})"),
        QStringLiteral("tables"));
    m_builder = std::make_unique<TorvQueryBuilder>();
    connectTables(*m_builder, *m_tables);
    m_builder->LoadSQL(QStringLiteral("select number, name from orders, people"));
}

// The bounds of the diagram are as large as that.
void TestPictures::placeBoxes(const QSize& extent) const {
    TorvQDTable* first = m_builder->ListOfTables->Tables(0);
    TorvQDTable* last = m_builder->ListOfTables->Tables(1);
    first->SetLeft(0);
    first->SetTop(0);
    const QSize box = last->GetBoundsRect().toQRect().size();
    last->SetLeft(extent.width() - box.width());
    last->SetTop(extent.height() - box.height());
    QCOMPARE(area().diagramBounds(), QRect(QPoint(0, 0), extent));
}

void TestPictures::formatFollowsFromTheName() {
    QCOMPARE(pictureFormatOfFile(QStringLiteral("a.png")), PictureFormat::Png);
    QCOMPARE(pictureFormatOfFile(QStringLiteral("a.b.SVG")), PictureFormat::Svg);
    QCOMPARE(pictureFormatOfFile(QStringLiteral("/x.y/a.Pdf")), PictureFormat::Pdf);
    for (const char* name : {"", "png", "a", "a.jpg", "a.pdf.txt", "x.png/a"}) {
        QVERIFY2(!pictureFormatOfFile(QLatin1String(name)), name);
    }
}

void TestPictures::tiles_data() {
    QTest::addColumn<QSizeF>("picture");
    QTest::addColumn<QSizeF>("page");
    QTest::addColumn<bool>("isFull");
    QTest::addColumn<qreal>("factor");
    QTest::addColumn<QList<QRectF>>("parts");
    const QSizeF page(200, 100);
    QTest::newRow("small, to the width")
        << QSizeF(100, 50) << page << false << 1.0 << QList<QRectF>{{0, 0, 100, 50}};
    QTest::newRow("small, full") << QSizeF(100, 50) << page << true << 1.0
                                 << QList<QRectF>{{0, 0, 100, 50}};
    QTest::newRow("as large as the page, full")
        << page << page << true << 1.0 << QList<QRectF>{{0, 0, 200, 100}};
    QTest::newRow("twice as wide, to the width")
        << QSizeF(400, 200) << page << false << 0.5 << QList<QRectF>{{0, 0, 400, 200}};
    QTest::newRow("twice as wide and higher, to the width")
        << QSizeF(400, 300) << page << false << 0.5
        << QList<QRectF>{{0, 0, 400, 200}, {0, 200, 400, 100}};
    QTest::newRow("row by row, full")
        << QSizeF(400, 150) << page << true << 1.0
        << QList<QRectF>{
               {0, 0, 200, 100}, {200, 0, 200, 100}, {0, 100, 200, 50}, {200, 100, 200, 50}};
    QTest::newRow("one pixel too wide, full") << QSizeF(201, 100) << page << true << 1.0
                                              << QList<QRectF>{{0, 0, 200, 100}, {200, 0, 1, 100}};
    // 700 / 3 is no whole number: three pages all the same, not four.
    QTest::newRow("thirds, full") << QSizeF(700, 10) << QSizeF(700.0 / 3, 10) << true << 1.0
                                  << QList<QRectF>{{0, 0, 700.0 / 3, 10},
                                                   {700.0 / 3, 0, 700.0 / 3, 10},
                                                   {1400.0 / 3, 0, 700.0 / 3, 10}};
}

void TestPictures::tiles() {
    QFETCH(QSizeF, picture);
    QFETCH(QSizeF, page);
    QFETCH(bool, isFull);
    QFETCH(qreal, factor);
    QFETCH(QList<QRectF>, parts);
    const PageTiles tiles =
        tilesOf(picture, page, isFull ? PrintScale::FullSize : PrintScale::FitWidth);
    QCOMPARE(tiles.factor, factor);
    QCOMPARE(QList<QRectF>(tiles.parts.begin(), tiles.parts.end()), parts);
}

void TestPictures::tilesCoverEverythingOnce_data() {
    QTest::addColumn<QSizeF>("picture");
    for (const QSizeF& size : {QSizeF(1, 1), QSizeF(733, 1), QSizeF(1, 991), QSizeF(734, 992),
                               QSizeF(5000, 4999), QSizeF(733.5, 3000.25)}) {
        QTest::addRow("%g x %g", size.width(), size.height()) << size;
    }
}

void TestPictures::tilesCoverEverythingOnce() {
    QFETCH(QSizeF, picture);
    const QSizeF page(733, 991);
    for (const PrintScale scale : {PrintScale::FitWidth, PrintScale::FullSize}) {
        const PageTiles tiles = tilesOf(picture, page, scale);
        qreal area = 0;
        for (std::size_t index = 0; index < tiles.parts.size(); ++index) {
            const QRectF& part = tiles.parts[index];
            QVERIFY(!part.isEmpty());
            QVERIFY(
                QRectF(QPointF(0, 0), picture).adjusted(-1e-6, -1e-6, 1e-6, 1e-6).contains(part));
            QVERIFY(part.width() * tiles.factor <= page.width() + 1e-6);
            QVERIFY(part.height() * tiles.factor <= page.height() + 1e-6);
            area += part.width() * part.height();
            for (std::size_t other = 0; other < index; ++other) {
                QVERIFY((part & tiles.parts[other]).isEmpty());
            }
        }
        // Parts that lie within the picture and beside each other leave nothing out.
        QVERIFY(qAbs(area - picture.width() * picture.height()) < 1e-3);
    }
}

void TestPictures::nothingNeedsNoPage() {
    QVERIFY(tilesOf({0, 10}, {100, 100}, PrintScale::FullSize).parts.empty());
    QVERIFY(tilesOf({10, 10}, {100, 0}, PrintScale::FitWidth).parts.empty());
    QVERIFY(tilesOf({10, 10}, {100, -5}, PrintScale::FullSize).parts.empty());
}

void TestPictures::pdfIsOnePageAsLargeAsThePicture() {
    placeBoxes({2840, 920});
    writePicture(area(), file("a.pdf"));
    const QByteArray pdf = contentOf(file("a.pdf"));
    QVERIFY(isWholePdf(pdf));
    QCOMPARE(pagesOf(pdf), 1);
    // 2880 x 960 pixels with the margin.
    const int dpi = area().logicalDpiY();
    const QByteArray box = "/MediaBox [0 0 " + QByteArray::number(2880.0 * 72 / dpi) + ' ' +
                           QByteArray::number(960.0 * 72 / dpi);
    static const QRegularExpression zeros(QStringLiteral("(\\.\\d*?)0+(?=\\D)"));
    QString text = QString::fromLatin1(pdf);
    text.replace(zeros, QStringLiteral("\\1")).replace(QStringLiteral(". "), QStringLiteral(" "));
    QVERIFY2(text.contains(QString::fromLatin1(box)),
             qPrintable(text.mid(text.indexOf(QStringLiteral("/MediaBox")), 60)));
}

void TestPictures::svgHasTheTexts() {
    layOut(area());  // no text is cut
    writePicture(area(), file("a.svg"));
    QXmlStreamReader reader(contentOf(file("a.svg")));
    QStringList texts;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == u"text") {
            texts += reader.readElementText().simplified();
        }
    }
    QVERIFY(!reader.hasError());
    for (const char* text : {"ORDERS", "NUMBER", "PLACED", "PEOPLE", "NAME", "CITY"}) {
        QVERIFY2(texts.contains(QLatin1String(text)), qPrintable(texts.join(u'|')));
    }
}

void TestPictures::pngIsAsLargeAsThePicture() {
    placeBoxes({460, 260});
    writePicture(area(), file("a.png"));
    const QImage image(file("a.png"));
    QCOMPARE(image.size(), QSize(500, 300) * area().devicePixelRatioF());
    QCOMPARE(pictureSize(area()), QSize(500, 300));
}

void TestPictures::emptyDiagramIsNoPicture() {
    m_builder->Clear();
    for (const char* name : {"none.png", "none.svg", "none.pdf"}) {
        QCOMPARE(orvtest::errorOf([&] { writePicture(area(), file(name)); }),
                 QStringLiteral("There is nothing to draw: the statement has no tables."));
        QVERIFY(!QFile::exists(file(name)));
    }
}

void TestPictures::otherNamesAreRefused() {
    QCOMPARE(orvtest::errorOf([&] { writePicture(area(), file("a.jpg")); }),
             QStringLiteral("A picture is written into a file named .png, .svg or .pdf, not "
                            "\"a.jpg\"."));
    QVERIFY(!QFile::exists(file("a.jpg")));
}

void TestPictures::failureKeepsWhatIsThere() {
    const QString path = file("kept.pdf");
    QVERIFY(apptest::writeFile(path, "old"));
    m_builder->Clear();
    (void)orvtest::errorOf([&] { writePicture(area(), path); });
    QCOMPARE(contentOf(path), QByteArray("old"));
    QVERIFY(QDir(m_folder.path()).mkdir(QStringLiteral("folder.svg")));
    m_builder->LoadSQL(QStringLiteral("select number from orders"));
    const QString folder = file("folder.svg");
    QCOMPARE(orvtest::errorOf([&] { writePicture(area(), folder); }),
             QStringLiteral("The file \"%1\" cannot be written: it is a folder.").arg(folder));
    QVERIFY(QFileInfo(folder).isDir());
}

// Pages of 400 x 300 pixels without margins, of which the footer takes a little: between 1 and 21
// pixels a line, two lines. The picture is 40 pixels larger than the diagram.
void TestPictures::paperHasThePagesThatThePictureTakes_data() {
    QTest::addColumn<QSize>("diagram");
    QTest::addColumn<bool>("isFull");
    QTest::addColumn<int>("pages");
    QTest::newRow("fits") << QSize(300, 180) << false << 1;
    QTest::newRow("fits, full") << QSize(300, 180) << true << 1;
    // 400 / 700 of the size: 450 to 525 pixels of the picture a page.
    QTest::newRow("900 high, to the width") << QSize(660, 860) << false << 2;
    // Two pages wide, and 258 to 298 pixels of the picture a page.
    QTest::newRow("900 high, full") << QSize(660, 860) << true << 8;
    // A tenth of the size: all on one page, far smaller.
    QTest::newRow("wide, to the width") << QSize(3960, 160) << false << 1;
    QTest::newRow("wide, full") << QSize(3960, 160) << true << 10;
}

void TestPictures::paperHasThePagesThatThePictureTakes() {
    QFETCH(QSize, diagram);
    QFETCH(bool, isFull);
    QFETCH(int, pages);
    placeBoxes(diagram);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QPdfWriter writer(&buffer);
    const int dpi = area().logicalDpiY();
    writer.setResolution(dpi);
    writer.setPageLayout(QPageLayout(
        QPageSize(QSizeF(400, 300) * 72 / dpi, QPageSize::Point, {}, QPageSize::ExactMatch),
        QPageLayout::Portrait, QMarginsF()));
    printDiagram(area(), writer, isFull ? PrintScale::FullSize : PrintScale::FitWidth,
                 QStringLiteral("orders"));
    QVERIFY(isWholePdf(buffer.data()));
    QCOMPARE(pagesOf(buffer.data()), pages);
}

// 100 millimetres are 378 pixels of 96 to an inch; margins of 30 leave 151 of them.
void TestPictures::marginsTakeRoom() {
    placeBoxes({300, 100});
    const auto pages = [&](qreal margin) {
        QPrinter printer;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file("printed.pdf"));
        printer.setResolution(area().logicalDpiY());
        printer.setPageSize(
            QPageSize(QSizeF(100, 100), QPageSize::Millimeter, {}, QPageSize::ExactMatch));
        printer.setPageMargins({margin, 0, margin, 0}, QPageLayout::Millimeter);
        printDiagram(area(), printer, PrintScale::FullSize, QStringLiteral("orders"));
        return pagesOf(contentOf(file("printed.pdf")));
    };
    QCOMPARE(area().logicalDpiX(), 96);
    QCOMPARE(pages(0), 1);
    QCOMPARE(pages(30), 3);
}

void TestPictures::emptyDiagramIsNotPrinted() {
    m_builder->Clear();
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QPdfWriter writer(&buffer);
    QCOMPARE(orvtest::errorOf(
                 [&] { printDiagram(area(), writer, PrintScale::FitWidth, QStringLiteral("x")); }),
             QStringLiteral("There is nothing to draw: the statement has no tables."));
}

void TestPictures::marginsMayLeaveNoRoom() {
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QPdfWriter writer(&buffer);
    writer.setResolution(area().logicalDpiY());
    writer.setPageLayout(
        QPageLayout(QPageSize(QSizeF(400, 14), QPageSize::Point, {}, QPageSize::ExactMatch),
                    QPageLayout::Portrait, QMarginsF()));
    QCOMPARE(orvtest::errorOf(
                 [&] { printDiagram(area(), writer, PrintScale::FitWidth, QStringLiteral("x")); }),
             QStringLiteral("The margins leave no room on the page."));
}

QTEST_MAIN(TestPictures)
#include "tst_app_pictures.moc"
