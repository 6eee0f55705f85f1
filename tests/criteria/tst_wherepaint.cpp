// SPDX-License-Identifier: MIT
#include "catalogue/ORVQDOptions.h"
#include "criteria/ORVQDFieldEdit.h"
#include "criteria/ShownConditions.h"
#include "diagram/PaintedBox.h"
#include "support/PaintedRegions.h"

#include <QPaintEngine>
#include <QPainter>

using namespace orvtest;

namespace {

const QColor ground(200, 210, 220);
const QColor activeGround(250, 240, 180);
const QColor buttonFace(190, 200, 190);
const QColor navy(0, 0, 128);
const QColor red(255, 0, 0);
const QColor markYellow(0xFF, 0xD2, 0x4A);
const QString nested = "t.a = 1 and (t.b = 2 or t.c between 3 and 4) and t.d = 5";

/// Conditions on a page with colours of its own for everything; the row of "1." is the active one,
/// which is seen by its ground alone.
class Painted : public ShownConditions {
public:
    explicit Painted(const QString& condition = nested, Page page = Where)
        : ShownConditions(condition, page) {
        setColors(ground, Qt::black);
        builder.ConditionOptions->SetActiveRowColor(activeGround);
        select(condition.isEmpty() ? "" : "1.", 0);
    }
    void setColors(const QColor& window, const QColor& text) const {
        QPalette palette = panel->parentWidget()->palette();
        palette.setColor(QPalette::Window, window);
        palette.setColor(QPalette::Button, buttonFace);
        palette.setColor(QPalette::ButtonText, text);
        panel->parentWidget()->setPalette(palette);
        panel->setPalette(palette);
    }
    [[nodiscard]] QImage paint() const { return view()->grab().toImage(); }
    [[nodiscard]] QRect rectOf(const QString& number, int kind) const {
        return panel->elementRect(*element(number, kind));
    }
    [[nodiscard]] QImage part(const QString& number, int kind) const {
        return paint().copy(rectOf(number, kind));
    }
    [[nodiscard]] QImage band(const QString& number) const {
        return paint().copy(0, rectOf(number, 0).top(), view()->width(), 20);
    }
    /// A text on the ground as it must be drawn in a rectangle of that size.
    [[nodiscard]] QImage text(const QString& text, const QSize& size, bool isEmphasised,
                              const QColor& ink, const QColor& on = ground,
                              Qt::Alignment across = Qt::AlignLeft) const {
        QImage image(size, QImage::Format_RGB32);
        image.fill(on);
        QFont font = panel->font();
        font.setBold(isEmphasised);
        font.setUnderline(isEmphasised);
        QPainter painter(&image);
        painter.setFont(font);
        painter.setPen(ink);
        painter.drawText(image.rect(), int(across | Qt::AlignVCenter) | Qt::TextSingleLine, text);
        return image;
    }
};

QImage rgb(const QImage& image) {
    return image.convertToFormat(QImage::Format_RGB32);
}

/// Which pixel columns and rows of an image's edge have one colour: left, top, right, bottom.
QList<QColor> edges(const QImage& image, const QRect& rect) {
    const auto plain = [&](const QRect& line) {
        const QColor color = image.pixelColor(line.topLeft());
        return isPlain(image.copy(line), color) ? color : QColor();
    };
    // Without the corners, which belong to two edges.
    return {plain({rect.left(), rect.top() + 1, 1, rect.height() - 2}),
            plain({rect.left() + 1, rect.top(), rect.width() - 2, 1}),
            plain({rect.right(), rect.top() + 1, 1, rect.height() - 2}),
            plain({rect.left() + 1, rect.bottom(), rect.width() - 2, 1})};
}

/// Keeps the texts that are painted.
class TextEngine : public QPaintEngine {
public:
    TextEngine() : QPaintEngine(AllFeatures) {}
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawPath(const QPainterPath&) override {}
    void drawTextItem(const QPointF&, const QTextItem& item) override { texts << item.text(); }
    Type type() const override { return User; }

    QStringList texts;
};

class TextDevice : public QPaintDevice {
public:
    QPaintEngine* paintEngine() const override { return &engine; }
    mutable TextEngine engine;

protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
        case PdmHeight: return 1000;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY: return 96;
        case PdmDepth: return 32;
        case PdmDevicePixelRatio: return 1;
        case PdmDevicePixelRatioScaled: return int(devicePixelRatioFScale());
        default: return 0;
        }
    }
};

}  // namespace

class WherePaintTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { failOnAnyWarning(); }

    // --- grounds

    void bandOfTheActiveRowHasItsColour() {
        Painted on;
        const int right = on.view()->width() - 1;
        const auto grounds = [&] {
            const QImage image = on.paint();
            QStringList names;
            for (int y = 0; y < 6 * 20; y += 20) {
                const QImage end = image.copy(right - 9, y, 10, 20);
                names << (isPlain(end, ground) ? "-" : isPlain(end, activeGround) ? "active" : "?");
            }
            return names.join(u' ');
        };
        QCOMPARE(grounds(), "- active - - - -");
        on.panel->setActiveElement(on.element("2.2.", 6));
        QCOMPARE(grounds(), "- - - - active -");
        on.panel->setActiveElement(on.element("", 1));
        QCOMPARE(grounds(), "active - - - - -");
        on.builder.ConditionOptions->SetSelectRow(false);
        QCOMPARE(grounds(), "- - - - - -");
        on.builder.ConditionOptions->SetSelectRow(true);
        on.panel->setActiveElement(nullptr);
        QCOMPARE(grounds(), "- - - - - -");
    }

    void groundIsThatOfTheParent() {
        const Painted on;
        const QImage image = on.paint();
        QVERIFY(isPlain(image.copy(0, 6 * 20, image.width(), image.height() - 6 * 20), ground));
        on.setColors(Qt::yellow, Qt::black);
        QCOMPARE(on.paint().pixelColor(image.width() - 1, image.height() - 1), QColor(Qt::yellow));
    }

    void optionsRepaintAtOnce() {
        const Painted on;
        PaintedRegions painted(on.view());
        on.builder.ConditionOptions->SetActiveRowColor(Qt::cyan);
        QVERIFY(painted.take().contains(on.rectOf("1.", 2)));
    }

    // --- texts

    void elementsAreBoldUnderlinedAndNavyOrRed() {
        Painted on;
        for (const bool isValid : {true, false}) {
            on.row("2.2.")->Valid = isValid;
            const QColor ink = isValid ? navy : red;
            for (const int kind : {2, 3, 5, 6}) {
                const QImage part = rgb(on.part("2.2.", kind));
                const QString text = on.element("2.2.", kind)->GetText();
                QCOMPARE(part, on.text(text, part.size(), true, ink));
                QVERIFY(pixelsOf(part, ink) > 0);
            }
            QCOMPARE(pixelsOf(on.band("2.1."), red), 0);
        }
    }

    void invalidRowTurnsNavyWhenItIsValidAgain() {
        Painted on;
        on.row("3.")->Valid = false;
        QVERIFY(pixelsOf(on.band("3."), red) > 0);
        QCOMPARE(pixelsOf(on.band("3."), navy), 0);
        on.row("3.")->Valid = true;
        QCOMPARE(pixelsOf(on.band("3."), red), 0);
        QVERIFY(pixelsOf(on.band("3."), navy) > 0);
    }

    void functionsArePaintedWhereThereAreSome() {
        const Painted on("sum(t.a) > 1", ShownConditions::Having);
        on.panel->setActiveElement(on.element("", 0));
        const QImage part = rgb(on.part("1.", 1));
        QCOMPARE(part, on.text("SUM", part.size(), true, navy));
        // Nine blanks are underlined: there is something to click at.
        QVERIFY(pixelsOf(on.part("1.", 4), navy) > 9);
    }

    void groupSaysThatItsConditionsFollow() {
        const Painted on;
        const QRect name = on.rectOf("2.", 1);
        const QImage image = rgb(on.paint());
        QCOMPARE(image.copy(name), on.text("Any", name.size(), true, navy));
        const QRect rest(name.right() + 1, name.top(), 200, 20);
        QCOMPARE(image.copy(rest), on.text(" of following are met", rest.size(), false, Qt::black));
    }

    void collapsedGroupShowsItsConditionInsteadOfTheSentence() {
        Painted on;
        on.row("2.")->SetExpanded(false);
        const QRect rect = on.rectOf("2.", 1);
        const QImage image = rgb(on.paint());
        const QString text = " ((T.B = 2) or (T.C BETWEEN 3 ...";
        QCOMPARE(on.element("2.", 1)->GetText(), text);
        QCOMPARE(image.copy(rect), on.text(text, rect.size(), true, navy));
        QVERIFY(isPlain(image.copy(rect.right() + 2, rect.top(), 200, 20), ground));
        // The row behind it comes next.
        QCOMPARE(on.rectOf("3.", 0).top(), rect.top() + 20);
    }

    void relateTextStandsInTheMiddleOfTheGap() {
        const Painted on;
        const QRect first = on.rectOf("2.2.", 5);
        const QRect second = on.rectOf("2.2.", 6);
        const QRect gap(first.right() + 1, first.top(), second.left() - first.right() - 1, 20);
        const QImage part = rgb(on.paint().copy(gap));
        QCOMPARE(part, on.text(" and ", gap.size(), false, Qt::black, ground, Qt::AlignHCenter));
        QVERIFY(pixelsOf(part, navy) == 0);
    }

    // --- the frame

    void activeElementHasAFrame_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<int>("kind");
        QTest::newRow("field") << "1." << 2;
        QTest::newRow("argument") << "2.2." << 6;
        QTest::newRow("group") << "2." << 1;
        QTest::newRow("root") << "" << 1;
        QTest::newRow("collapsed group") << "2." << 1;
    }
    void activeElementHasAFrame() {
        QFETCH(QString, number);
        QFETCH(int, kind);
        Painted on;
        if (QTest::currentDataTag() == QString("collapsed group")) on.row("2.")->SetExpanded(false);
        on.select(number, kind);
        const QRect frame = on.rectOf(number, kind).adjusted(-1, 0, 1, 0);
        const QList<QColor> focused = edges(on.paint(), frame);
        QCOMPARE(focused, QList<QColor>({grey, grey, white, white}));
        // One pixel, and nothing outside it.
        const QImage image = on.paint();
        QVERIFY(image.pixelColor(frame.right() - 1, frame.top() + 1) == activeGround);
        QVERIFY(image.pixelColor(frame.left() - 1, frame.center().y()) == activeGround);
        // It tells whether keys come here.
        on.before->setFocus();
        QCOMPARE(edges(on.paint(), frame), QList<QColor>({white, white, grey, grey}));
    }

    void noOtherElementHasAFrame() {
        const Painted on;
        on.panel->setActiveElement(on.element("2.1.", 3));
        for (const QString number : {"", "1.", "2.", "2.2.", "3."}) {
            QCOMPARE(pixelsOf(on.band(number), white), 0);
        }
        on.panel->setActiveElement(on.element("3.", 0));
        QCOMPARE(pixelsOf(on.band("2.1."), white), 0);
        QCOMPARE(pixelsOf(on.band("3."), white), 0);
    }

    // --- buttons

    void buttonsFollowTheirStyle() {
        Painted on;
        const QRect button = on.rectOf("3.", 0).adjusted(0, 1, 0, -1);
        const QRect inner = button.adjusted(1, 1, -1, -1);
        const auto setStyle = [&](TbtnStyle style) {
            on.builder.ConditionOptions->SetBtnsStyle(style);
        };
        const auto outside = [&] { return edges(on.paint(), button); };
        const QList<QColor> ring = {grey, grey, grey, grey};
        const QList<QColor> raised = {white, white, black, black};
        const QList<QColor> sunken = {grey, grey, white, white};
        const QList<QColor> flush = {buttonFace, buttonFace, buttonFace, buttonFace};
        QCOMPARE(outside(), ring);
        QCOMPARE(edges(on.paint(), inner), flush);
        setStyle(btn3DLook);
        QCOMPARE(outside(), raised);
        QCOMPARE(edges(on.paint(), inner), QList<QColor>({buttonFace, buttonFace, grey, grey}));
        setStyle(btnRaise);
        QCOMPARE(outside(), flush);
        // Under the mouse, under the pressed button, and with the button held elsewhere.
        on.hover(button.center());
        QCOMPARE(outside(), raised);
        on.press(button.center());
        QCOMPARE(outside(), sunken);
        on.hover(QPoint(300, 200), Qt::LeftButton);
        QCOMPARE(outside(), flush);
        on.hover(button.center(), Qt::LeftButton);
        QCOMPARE(outside(), sunken);
        setStyle(btn3DLook);
        QCOMPARE(outside(), sunken);
        on.release(QPoint(300, 200));
        QCOMPARE(outside(), raised);
        setStyle(btnFlat);
        QCOMPARE(outside(), ring);
        on.hover(on.at("2.", 0));
        setStyle(btnRaise);
        QCOMPARE(outside(), flush);
    }

    void leavingTheViewLowersTheButton() {
        const Painted on;
        on.builder.ConditionOptions->SetBtnsStyle(btnRaise);
        const QImage before = on.paint();
        on.hover(on.at("3.", 0));
        QVERIFY(on.paint() != before);
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(on.view(), &leave);
        QCOMPARE(on.paint(), before);
    }

    void buttonsShowTheirNumbers() {
        const Painted on;
        for (const QString number : {"1.", "2.1.", "3."}) {
            const QRect rect = on.rectOf(number, 0).adjusted(2, 3, -2, -3);
            const QImage part = rgb(on.paint().copy(rect));
            QCOMPARE(part,
                     on.text(number, rect.size(), false, Qt::black, buttonFace, Qt::AlignHCenter));
        }
        // The root row's has no number, but shows that there is a menu.
        const QImage root = on.paint().copy(on.rectOf("", 0).adjusted(2, 3, -2, -3));
        QCOMPARE(pixelsOf(root, Qt::black), 7 + 5 + 3 + 1);
    }

    // --- problems

    void rowsWithAProblemAreMarked_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<bool>("isMarked");
        QTest::newRow("root") << "" << false;
        QTest::newRow("condition") << "1." << false;
        QTest::newRow("unknown field") << "2." << true;
        QTest::newRow("unknown field in an argument") << "3." << true;
        QTest::newRow("filled group") << "4." << false;
        QTest::newRow("unfilled") << "5." << true;
        QTest::newRow("empty group") << "6." << true;
        QTest::newRow("unfilled argument") << "7." << true;
    }
    void rowsWithAProblemAreMarked() {
        QFETCH(QString, number);
        QFETCH(bool, isMarked);
        Painted on("t.a = 1 and t.nope = 2 and t.a = t.gone and (t.a = 1 or t.b = 2)");
        on.root()->SubRows->AddRow();
        on.root()->SubRows->AddRow()->SetGroupOper("Any");
        on.root()->SubRows->AddRow()->FieldName = "T.A";
        QCOMPARE(on.panel->rowProblem(*on.row(number)).isEmpty(), !isMarked);
        QCOMPARE(pixelsOf(on.band(number), markYellow) > 0, isMarked);
        QCOMPARE(pixelsOf(on.band(number).copy(0, 0, 15, 20), markYellow) > 0, isMarked);
    }

    // --- scrolling and regions

    void scrolledRowsArePaintedAtTheirPlaces() {
        QStringList many = {nested, "t.gone = 7"};
        for (int index = 0; index < 40; ++index) many << "t.a = " + QString::number(index);
        many << "'" + QString(30, u'W') + "' = '" + QString(30, u'W') + "' and t.b = ''";
        Painted on(many.join(" and "));
        on.window.resize(500, 560);
        QCoreApplication::processEvents();
        on.panel->setActiveElement(on.element("4.", 2));
        const QImage still = on.paint();
        on.panel->horizontalScrollBar()->setValue(17);
        on.panel->verticalScrollBar()->setValue(33);
        QCOMPARE(on.panel->horizontalScrollBar()->value(), 17);
        const QImage scrolled = on.paint();
        const QSize size = still.size() - QSize(17, 33);
        QCOMPARE(scrolled.copy(QRect(QPoint(), size)), still.copy(QRect(QPoint(17, 33), size)));
        QVERIFY(scrolled != still);
    }

    void textIsIndentedWhereverThePanelIsScrolled() {
        QStringList many = {nested};
        for (int index = 0; index < 40; ++index) many << "t.a = " + QString::number(index);
        many << "'" + QString(80, u'W') + "' = '" + QString(80, u'W') + "' and t.b = ''";
        Painted on(many.join(" and "));
        const auto texts = [&] {
            return QStringList({on.panel->GetSQLStatment(), on.row("2.2.")->GetSQLCondition(true),
                                on.builder.GetSQLStatment()});
        };
        const QStringList still = texts();
        QVERIFY(still[0].contains("\r\n         (T.B = 2)\r\n"));
        for (const QPoint& scroll : {QPoint(17, 0), QPoint(0, 33), QPoint(61, 400)}) {
            on.panel->horizontalScrollBar()->setValue(scroll.x());
            on.panel->verticalScrollBar()->setValue(scroll.y());
            QCOMPARE(on.panel->horizontalScrollBar()->value(), scroll.x());
            QCOMPARE(on.panel->verticalScrollBar()->value(), scroll.y());
            (void)on.paint();
            QCOMPARE(texts(), still);
        }
    }

    void onlyRowsInTheRegionArePainted() {
        QStringList many;
        for (int index = 1; index <= 200; ++index) many << "t.a = " + QString::number(1000 + index);
        const Painted on(many.join(" and "));
        on.panel->verticalScrollBar()->setValue(107 * 20);
        const auto painted = [&](const QRegion& region) {
            TextDevice device;
            on.view()->render(&device, {}, region, QWidget::RenderFlags());
            QStringList numbers;
            for (const QString& text : device.engine.texts) {
                if (text.endsWith(u'.')) numbers << text;
            }
            return numbers;
        };
        QCOMPARE(painted(QRect(0, 40, 300, 40)), QStringList({"109.", "110."}));
        QCOMPARE(painted(QRect(0, 39, 300, 2)), QStringList({"108.", "109."}));
        QCOMPARE(painted(QRect(0, 40, 300, 1)), QStringList({"109."}));
        on.panel->verticalScrollBar()->setValue(0);
        QCOMPARE(painted(QRect(0, 0, 300, 25)), QStringList({"1."}));
        on.panel->verticalScrollBar()->setValue(on.panel->verticalScrollBar()->maximum());
        QCOMPARE(painted(on.view()->rect()).last(), "200.");
        QVERIFY(painted(on.view()->rect()).size() <= on.view()->height() / 20 + 2);
    }

    void frameRepaintsTheTwoRows() {
        const Painted on;
        PaintedRegions painted(on.view());
        on.panel->setActiveElement(on.element("2.1.", 2));
        const int width = on.view()->width();
        QCOMPARE(painted.take(), QRegion(0, 20, width, 20) + QRegion(0, 60, width, 20));
    }

    void hoveringRepaintsButtonsOnly() {
        const Painted on;
        PaintedRegions painted(on.view());
        on.hover(on.at("2.1.", 2));
        on.hover(on.at("2.1.", 3));
        QVERIFY(painted.take().isEmpty());
        on.hover(on.at("2.1.", 0));
        QCOMPARE(painted.take(), QRegion(0, 60, on.view()->width(), 20));
    }

    // --- other looks

    void darkPalettesAreReadable() {
        Painted on;
        const QColor night(40, 40, 40);
        on.setColors(night, Qt::white);
        on.builder.ConditionOptions->SetSelectRow(false);
        int darkest = 255;  // of the image that was looked at last
        const auto lightest = [&](const QImage& image) {
            darkest = 255;
            int most = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    most = std::max(most, image.pixelColor(x, y).lightness());
                    darkest = std::min(darkest, image.pixelColor(x, y).lightness());
                }
            }
            return most;
        };
        on.row("3.")->Valid = false;
        QVERIFY(lightest(on.part("2.1.", 2)) > 150);
        QVERIFY(lightest(on.part("2.", 1)) > 150);
        QVERIFY(lightest(on.part("3.", 2)) >= 127);
        QCOMPARE(pixelsOf(on.paint(), navy), 0);
        // The sentence and the text between two arguments are white.
        const QRect sentence = on.rectOf("2.", 1).translated(on.rectOf("2.", 1).width(), 0);
        QVERIFY(lightest(on.paint().copy(sentence)) > 200);
        const QRect first = on.rectOf("2.2.", 5);
        const QRect gap(first.right() + 2, first.top(), 20, 20);
        QVERIFY(lightest(on.paint().copy(gap)) > 200);
        // On the light ground of the active row they are as ever.
        on.builder.ConditionOptions->SetSelectRow(true);
        on.panel->setActiveElement(on.element("2.", 0));
        QVERIFY(pixelsOf(on.part("2.", 1), navy) > 0);
        (void)lightest(on.paint().copy(sentence));
        QVERIFY(darkest < 60);
    }

    void emptyPanelInvitesToAddACondition() {
        Painted on("");
        const auto inkBelow = [&] {
            const QImage image = on.paint();
            return !isPlain(image.copy(0, 20, image.width(), image.height() - 20), ground);
        };
        QVERIFY(inkBelow());
        on.select("", 0);
        on.panel->AddCondition();
        on.root()->SubRows->Row(0)->SetGroupOper("All");
        QVERIFY(isPlain(on.paint().copy(0, 40, on.view()->width(), 60), ground));
        on.root()->SubRows->Clear();
        QVERIFY(inkBelow());
    }

    void panelThatIsNotActiveIsBlank() {
        TorvTabSheet sheet;
        QPalette palette;
        palette.setColor(QPalette::Window, ground);
        sheet.setPalette(palette);
        TorvQDWherePanel panel(&sheet);
        panel.resize(200, 100);
        QVERIFY(isPlain(panel.viewport()->grab().toImage(), ground));
    }

    void rowHeightAndFontChangeThePicture() {
        const Painted on;
        on.panel->SetRowHeight(30);
        QCOMPARE(on.rectOf("2.1.", 2).top(), 90);
        QCOMPARE(on.rectOf("2.1.", 2).height(), 30);
        const QImage part = rgb(on.part("2.1.", 2));
        QCOMPARE(part, on.text("T.B", part.size(), true, navy));
        QFont font = on.panel->font();
        font.setPointSize(font.pointSize() * 2);
        on.panel->setFont(font);
        const QImage large = rgb(on.part("2.1.", 2));
        QVERIFY(large.width() > part.width() * 3 / 2);
        QCOMPARE(large, on.text("T.B", large.size(), true, navy));
    }

    // The row that has the focus is painted for that alone, so the edited one is another.
    void editRepaintsTheRowThatItChecks() {
        Painted on;
        on.host.add("N", TDataSet({{"I", ftInteger}}));
        on.builder.LoadSQL("select n.i from n where n.i = 5 and n.i = 6");
        on.select("2.", ekFieldName);
        PaintedRegions painted(on.view());
        for (const bool fits : {false, true}) {
            on.panel->editText(*on.element("1.", ekArgument));
            auto* memo = on.view()->findChild<TMemoEx*>();
            memo->selectAll();
            memo->insertPlainText(fits ? "7" : "7x");
            (void)painted.take();
            on.panel->commitEdit();
            const QRegion region = painted.take();
            QCOMPARE(on.row("1.")->Valid, fits);
            QCOMPARE(QRegion(on.rectOf("1.", ekFieldName)) - region, QRegion());
            QCOMPARE(pixelsOf(on.part("1.", ekFieldName), red) > 0, !fits);
            QCOMPARE(pixelsOf(on.part("1.", ekFieldName), navy) > 0, fits);
        }
        QCOMPARE(on.services.messages, QStringList("Type mismatch in expression"));
    }

    // What stands behind a text moves on while that is typed.
    void growingEditorHasItsRowPainted() {
        Painted on;
        on.panel->editText(*on.element("1.", ekFieldName));
        auto* memo = on.view()->findChild<TMemoEx*>();
        QVERIFY(memo && memo->isVisible());
        QCoreApplication::processEvents();
        const QRect before = on.rectOf("1.", ekOperator);
        PaintedRegions painted(on.view());
        memo->insertPlainText(QString(30, u'N'));
        const QRegion region = painted.take();
        const QRect after = on.rectOf("1.", ekOperator);
        QVERIFY(after.left() > before.left() + 50);
        QVERIFY((QRegion(after) - region - QRegion(memo->geometry())).isEmpty());
        QVERIFY((QRegion(before) - region - QRegion(memo->geometry())).isEmpty());
    }
};

QTEST_MAIN(WherePaintTest)
#include "tst_wherepaint.moc"
