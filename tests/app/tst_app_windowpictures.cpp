// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "window/Contrast.h"
#include "window/DocumentController.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>

using namespace orvquery;

namespace {

// The pixel of the picture near the place that is furthest from the colour.
QColor furthestFrom(const QColor& color, const QImage& image, const QPoint& place) {
    QColor found = color;
    for (int y = place.y() - 1; y <= place.y() + 1; ++y) {
        for (int x = place.x() - 1; x <= place.x() + 1; ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (contrastRatio(pixel, color) > contrastRatio(found, color)) found = pixel;
        }
    }
    return found;
}

}  // namespace

// Pictures and paper in the program's window.
class TestWindowPictures : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void exportProposesTheTable();
    void namesFollowTheDocument();
    void endFollowsTheFormat();
    void unknownEndIsTold();
    void emptyDiagramIsTold();
    void previewShowsThePages();
    void printingGoesToThePrinter();
    void fullSizeIsRemembered();
    void linksFollowTheLook();

private:
    void trigger(const char* name) const { child<QAction>(name)->trigger(); }
};

void TestWindowPictures::exportProposesTheTable() {
    load("select id from orders");
    orvtest::RecordedServices services;
    const QString path = m_folder.filePath(QStringLiteral("orders.png"));
    services.onDialog = [&](QDialog& dialog) {
        auto& chooser = dynamic_cast<QFileDialog&>(dialog);
        const QString proposed = QFileInfo(chooser.selectedFiles().value(0)).fileName();
        if (proposed != QStringLiteral("orders.png")) return int(QDialog::Rejected);
        chooser.selectFile(path);
        return int(QDialog::Accepted);
    };
    trigger("exportPicture");
    QCOMPARE(services.dialogs, QStringList{"Export picture"});
    QCOMPARE(services.errors, QStringList());
    QVERIFY(QImage(path).width() > 40);
}

void TestWindowPictures::namesFollowTheDocument() {
    load("select id from orders");
    orvtest::RecordedServices services;
    QStringList names;
    services.onDialog = [&](QDialog& dialog) {
        if (auto* paper = qobject_cast<QPrintDialog*>(&dialog)) {
            names += paper->printer()->docName();
            return int(QDialog::Rejected);
        }
        auto& files = dynamic_cast<QFileDialog&>(dialog);
        names += QFileInfo(files.selectedFiles().value(0)).fileName();
        if (files.windowTitle() == u"Export picture") return int(QDialog::Rejected);
        files.selectFile(m_folder.filePath(QStringLiteral("open orders.v2.orvq")));
        return int(QDialog::Accepted);
    };
    trigger("print");
    QCOMPARE(names, QStringList{"orders"});
    QVERIFY(m_window->documents().saveAs());
    names.clear();
    trigger("exportPicture");
    trigger("print");
    QCOMPARE(names, QStringList({"open orders.v2.png", "open orders.v2"}));
    startAnew();
    load("select id from orders");
    names.clear();
    trigger("print");
    QCOMPARE(names, QStringList{"orders"});
    QCOMPARE(services.errors, QStringList());
}

void TestWindowPictures::endFollowsTheFormat() {
    load("select id from orders");
    orvtest::RecordedServices services;
    QStringList names;
    services.onDialog = [&](QDialog& dialog) {
        auto& chooser = dynamic_cast<QFileDialog&>(dialog);
        for (const QString& filter : chooser.nameFilters()) {
            chooser.selectNameFilter(filter);
            Q_EMIT chooser.filterSelected(filter);
            names += QFileInfo(chooser.selectedFiles().value(0)).fileName();
        }
        return int(QDialog::Rejected);
    };
    trigger("exportPicture");
    QCOMPARE(names, QStringList({"orders.png", "orders.svg", "orders.pdf"}));
}

void TestWindowPictures::unknownEndIsTold() {
    load("select id from orders");
    orvtest::RecordedServices services;
    services.onDialog = [&](QDialog& dialog) {
        auto& chooser = dynamic_cast<QFileDialog&>(dialog);
        chooser.setDefaultSuffix({});
        chooser.selectFile(m_folder.filePath(QStringLiteral("orders.bmp")));
        return int(QDialog::Accepted);
    };
    trigger("exportPicture");
    QCOMPARE(services.errors,
             QStringList{"A picture is written into a file named .png, .svg or .pdf, not "
                         "\"orders.bmp\"."});
}

void TestWindowPictures::emptyDiagramIsTold() {
    orvtest::RecordedServices services;
    for (const char* action : {"exportPicture", "printPreview", "print"}) {
        services.errors.clear();
        trigger(action);
        QCOMPARE(services.errors,
                 QStringList{"There is nothing to draw: the statement has no tables."});
    }
    QCOMPARE(services.dialogs, QStringList());
}

void TestWindowPictures::previewShowsThePages() {
    load("select id from orders");
    orvtest::RecordedServices services;
    int pages = 0;
    services.onDialog = [&](QDialog& dialog) {
        auto* preview = dialog.findChild<QPrintPreviewWidget*>();
        preview->updatePreview();
        pages = preview->pageCount();
        return int(QDialog::Rejected);
    };
    trigger("printPreview");
    QCOMPARE(services.dialogs, QStringList{"Print preview"});
    QCOMPARE(services.errors, QStringList());
    QCOMPARE(pages, 1);
}

void TestWindowPictures::printingGoesToThePrinter() {
    load("select id from orders");
    orvtest::RecordedServices services;
    const QString path = m_folder.filePath(QStringLiteral("paper.pdf"));
    services.onDialog = [&](QDialog& dialog) {
        QPrinter* printer = dynamic_cast<QPrintDialog&>(dialog).printer();
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(path);
        return int(QDialog::Accepted);
    };
    press(Qt::Key_P, Qt::ControlModifier);
    QCOMPARE(services.dialogs, QStringList{"Print"});
    QCOMPARE(services.errors, QStringList());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray pdf = file.readAll();
    QVERIFY(pdf.startsWith("%PDF-") && pdf.trimmed().endsWith("%%EOF"));
    QVERIFY(file.remove());
    services.onDialog = {};
    trigger("print");
    QVERIFY(!QFile::exists(path));
}

void TestWindowPictures::fullSizeIsRemembered() {
    QVERIFY(!child<QAction>("printFullSize")->isChecked());
    trigger("printFullSize");
    Options options;
    options.database = m_database;
    open(options);
    QVERIFY(child<QAction>("printFullSize")->isChecked());
}

// Also while the program runs; on paper they stay as they are.
void TestWindowPictures::linksFollowTheLook() {
    load("select o.id, p.name from orders o join people p on o.city = p.name");
    TorvQDWorkArea& area = *builder().WorkArea;
    QCOMPARE(int(area.Links().size()), 1);
    const TorvQDLink& link = *area.Links().front();
    const QPoint middle = (link.GetPoint(1) + link.GetPoint(link.GetCountPoints() - 2)) / 2;
    const auto ink = [&](const QColor& ground) {
        return furthestFrom(ground, area.viewport()->grab().toImage(), middle);
    };
    const QImage picture = area.picture();
    const QPoint onPicture =
        middle + area.scrollPosition() - area.diagramBounds().topLeft() + QPoint(20, 20);
    QCOMPARE(furthestFrom(Qt::white, picture, onPicture), QColor(Qt::black));
    QCOMPARE(ink(area.palette().color(QPalette::Window)), QColor(Qt::black));
    QApplication::setPalette(QPalette(QColor(0x31, 0x36, 0x3b)));
    QCoreApplication::processEvents();
    const QColor ground = area.palette().color(QPalette::Window);
    QVERIFY(ground.lightness() < 80);
    QVERIFY(contrastRatio(ink(ground), ground) >= readableContrast);
    QCOMPARE(furthestFrom(Qt::white, area.picture(), onPicture), QColor(Qt::black));
    QApplication::setPalette(QPalette());
    QCoreApplication::processEvents();
    QCOMPARE(ink(area.palette().color(QPalette::Window)), QColor(Qt::black));
    QCOMPARE(area.picture(), picture);
}

QTEST_MAIN(TestWindowPictures)
#include "tst_app_windowpictures.moc"
