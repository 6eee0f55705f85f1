// SPDX-License-Identifier: MIT
// The hint over the diagram, and the search of a field by typing.
#include "support/ShownBuilder.h"
#include "workarea/ORVQDFieldSearch.h"
#include "workarea/ORVQDHints.h"

#include <QFocusEvent>
#include <QGuiApplication>
#include <QScreen>

using orvtest::ShownBuilder;

namespace {

constexpr int hintTimer = TorvQDWorkArea::hintTimer;
constexpr int hintEndTimer = TorvQDWorkArea::hintEndTimer;

class HintedBuilder : public ShownBuilder {
public:
    HintedBuilder() {
        place("T", {20, 20});
        place("U", {200, 20});
        builder.activateWindow();
    }
    void place(const QString& alias, const QPoint& at) const {
        TorvQDTable* box = table(alias);
        box->MoveTable(at.x() - box->Left, at.y() - box->Top);
    }
    orv::HintPopup* hint() const { return area().findChild<orv::HintPopup*>(); }
    TEditEx* search() const { return view()->findChild<TEditEx*>(); }
    /// The hint's text after the mouse has rested there; nothing when none appears.
    QString hintAt(const QPoint& point) const {
        hover(point);
        if (!area().isTimerActive(hintTimer)) return {};
        area().timerFired(hintTimer);
        return hint()->isVisible() ? hint()->text() : QString();
    }
    QString currentRow(const QString& alias) const {
        const TorvQDListItem* item = table(alias)->CurrentItem;
        return item ? item->Name : QString();
    }
    /// A box for the search.
    TorvQDTable* addNames() {
        host.add(QStringLiteral("NAMES"),
                 {"ZERO", "ALPHA", "BETA", "my beta", "BETTER", "GAMMA", "DELTA", "BEST"});
        TorvQDTable* box = addTable(QStringLiteral("NAMES"));
        place("NAMES", {400, 20});
        changes = 0;
        return box;
    }
};

}  // namespace

class HintsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- the hint

    void hintAppearsWhenTheMouseRests() {
        const HintedBuilder on;
        on.hover(on.captionOf("T"));
        QVERIFY(on.area().isTimerActive(hintTimer));
        QVERIFY(!on.hint()->isVisible());
        on.area().timerFired(hintTimer);
        QVERIFY(on.hint()->isVisible());
        QVERIFY(!on.area().isTimerActive(hintTimer));
        QVERIFY(on.area().isTimerActive(hintEndTimer));
        QCOMPARE(on.hint()->text(), "Double click for edit alias");
        on.area().timerFired(hintEndTimer);
        QVERIFY(!on.hint()->isVisible());
        QVERIFY(!on.area().isTimerActive(hintEndTimer));
    }

    void hintComesAfterHalfASecondAndGoesAfterTwo() {
        const HintedBuilder on;
        QCOMPARE(on.timerIntervals(), QList<int>());
        on.hover(on.captionOf("T"));
        QCOMPARE(on.timerIntervals(), QList<int>({500}));
        on.area().timerFired(hintTimer);
        QCOMPARE(on.timerIntervals(), QList<int>({2000}));
        on.area().timerFired(hintEndTimer);
        QCOMPARE(on.timerIntervals(), QList<int>());
    }

    void textsOfTheHints() {
        HintedBuilder on;
        QCOMPARE(on.hintAt(on.rowTextOf("T", "B")), "B (String)");
        QCOMPARE(on.hintAt(on.captionCheckOf("T")), "Select all fields");
        const QPoint buttons = ShownBuilder::centre(on.table("T")->GetButtonRect());
        QCOMPARE(on.hintAt(buttons), "Unlink table");
        QCOMPARE(on.hintAt(buttons + QPoint(14, 0)), "Close table");
        QCOMPARE(on.hintAt(buttons - QPoint(14, 0)), "Collapse/Expand table");
        TorvQDLink* link = on.link("T", "A", "U", "X");
        link->setOperatorText("<=");
        QCOMPARE(on.hintAt((link->GetPoint(1) + link->GetPoint(2)) / 2), "T.A<=U.X");
        QCOMPARE(on.hintAt({600, 10}), QString());
        QCOMPARE(on.hintAt({21, 60}), QString());  // an edge
    }

    void doubledAmpersandsOfTypesAreReduced() {
        const HintedBuilder on;
        const TDataSet fields({{"A&&B", ftDateTime}, {"X&&Y", ftString}});
        on.builder.ListOfTables->AddTable("Q", fields);
        on.place("Q", {400, 20});
        QCOMPARE(on.hintAt(on.rowTextOf("Q", "\"A&&B\"")), "\"A&&B\" (Date&Time)");
        TorvQDLink* link = on.link("U", "A", "Q", "\"X&&Y\"");
        QCOMPARE(on.hintAt((link->GetPoint(1) + link->GetPoint(2)) / 2), "U.A=Q.\"X&&Y\"");
    }

    void hintStandsBelowThePointer() {
        const HintedBuilder on;
        const QPoint point = on.captionOf("T");
        QVERIFY(!on.hintAt(point).isEmpty());
        QCOMPARE(on.hint()->pos(), on.view()->mapToGlobal(point) + QPoint(10, 20));
        QVERIFY(on.hint()->width() <= 200);
    }

    // A pixel of frame and three of padding on each side, and one for the last letter.
    void hintIsAsLargeAsItsText() {
        const HintedBuilder on;
        QVERIFY(!on.hintAt(on.captionOf("T")).isEmpty());
        const QFontMetrics metrics(on.hint()->font());
        const QSize text = metrics.boundingRect(0, 0, 1000, 1000, 0, on.hint()->text()).size();
        QCOMPARE(on.hint()->size(), text + QSize(9, 8));
    }

    void longHintIsWrapped() {
        HintedBuilder on;
        on.host.add("LONG", {"A FIELD WITH A NAME THAT IS FAR TOO LONG FOR ONE LINE OF A HINT"});
        on.addTable("LONG");
        on.place("LONG", {20, 180});
        QVERIFY(!on.hintAt(on.captionOf("T")).isEmpty());
        const int line = on.hint()->height();
        const QPoint row = on.rowTextOf(
            "LONG", "\"A FIELD WITH A NAME THAT IS FAR TOO LONG FOR ONE LINE OF A HINT\"");
        QVERIFY(!on.hintAt(row).isEmpty());
        QVERIFY(on.hint()->width() <= 200);
        QVERIFY(on.hint()->height() > line);
    }

    void hintStaysOnTheScreen() {
        const HintedBuilder on;
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        on.hint()->showAt(screen.bottomRight() - QPoint(5, 5), "hint");
        QVERIFY(screen.contains(on.hint()->geometry()));
        QVERIFY(!on.hint()->geometry().contains(screen.bottomRight() - QPoint(5, 5)));
    }

    void cutCaptionIsShownWhole() {
        HintedBuilder on;
        QCOMPARE(on.hintAt(on.captionOf("T")), "Double click for edit alias");
        on.area().renameTable(on.table("T"), "AN_ALIAS_FAR_TOO_LONG");
        QCOMPARE(on.hintAt(on.captionOf("AN_ALIAS_FAR_TOO_LONG")),
                 "Double click for edit alias\nT (AN_ALIAS_FAR_TOO_LONG)");
    }

    void hintGoesWith_data() {
        QTest::addColumn<QString>("what");
        for (const char* what : {"move", "press", "wheel", "key", "leave", "scrolling", "focus",
                                 "double click", "closing", "clearing", "hiding", "right click"}) {
            QTest::newRow(what) << QString(what);
        }
    }
    void hintGoesWith() {
        QFETCH(QString, what);
        for (const bool isShown : {false, true}) {
            HintedBuilder on;
            const QPoint point = on.rowTextOf("T", "B");
            on.hover(point);
            QVERIFY(on.area().isTimerActive(hintTimer));
            if (isShown) on.area().timerFired(hintTimer);
            QCOMPARE(on.hint()->isVisible(), isShown);
            if (what == "move") on.hover({600, 10});
            if (what == "press") on.press(point);
            if (what == "wheel") on.wheel(point, 120);
            if (what == "key") QTest::keyClick(&on.area(), Qt::Key_Shift);
            if (what == "double click") on.doubleClick(point);
            if (what == "scrolling") on.scrollTo({5, 5});
            if (what == "closing") on.table("T")->CloseTable();
            if (what == "clearing") on.builder.Clear();
            if (what == "hiding") on.builder.hide();
            if (what == "right click") QTest::mouseClick(on.view(), Qt::RightButton, {}, point);
            if (what == "leave") {
                QEvent event(QEvent::Leave);
                QCoreApplication::sendEvent(on.view(), &event);
            }
            if (what == "focus") {
                QFocusEvent event(QEvent::FocusOut, Qt::TabFocusReason);
                QCoreApplication::sendEvent(&on.area(), &event);
            }
            QVERIFY(!on.hint()->isVisible());
            QVERIFY(!on.area().isTimerActive(hintTimer));
            QVERIFY(!on.area().isTimerActive(hintEndTimer));
        }
    }

    void heldMouseShowsNoHint() {
        const HintedBuilder on;
        on.press(on.captionOf("T"));
        on.moveTo(on.captionOf("T") + QPoint(9, 9));
        QVERIFY(!on.area().isTimerActive(hintTimer));
    }

    // --- the search

    void letterOpensTheSearchBelowTheSelectedBox() {
        HintedBuilder on;
        const TorvQDTable* box = on.addNames();
        QTest::keyClick(&on.area(), Qt::Key_B);
        QVERIFY(on.search()->isVisible());
        QCOMPARE(on.search()->text(), "b");
        QVERIFY(!on.search()->hasFrame());
        const TRect bounds = box->GetBoundsRect();
        QCOMPARE(on.search()->geometry().topLeft(), QPoint(bounds.Left, bounds.Bottom + 1));
        QCOMPARE(on.search()->height(), 15);
        QCOMPARE(on.search()->palette().color(QPalette::Base),
                 on.area().palette().color(QPalette::Window));
        QCOMPARE(on.currentRow("NAMES"), "BETA");
        QCOMPARE(on.changes, 0);
    }

    void letterOverAnUnselectedBoxSelectsItAndSearchesThere() {
        HintedBuilder on;
        on.hover(on.rowTextOf("U", "A"));
        QTest::keyClick(&on.area(), Qt::Key_X);
        QCOMPARE(on.area().selectedObject(), on.table("U"));
        QVERIFY(on.search()->isVisible());
        QCOMPARE(on.search()->table(), on.table("U"));
        QCOMPARE(on.currentRow("U"), "X");
        QCOMPARE(on.search()->x(), on.table("U")->Left);
    }

    // A window's shortcuts on them would end the search, or leave it standing.
    void keysOfTheSearchAreItsOwn() {
        HintedBuilder on;
        on.addNames();
        QTest::keyClick(&on.area(), Qt::Key_B);
        QVERIFY(on.search() && on.search()->isVisible());
        for (const int key :
             {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_Up, Qt::Key_Down}) {
            for (const auto modifier : {Qt::NoModifier, Qt::KeypadModifier, Qt::AltModifier}) {
                QKeyEvent event(QEvent::ShortcutOverride, key, modifier);
                event.ignore();
                QCoreApplication::sendEvent(on.search(), &event);
                QCOMPARE(event.isAccepted(), modifier != Qt::AltModifier);
            }
        }
    }

    void typingGoesOnInTheEdit() {
        HintedBuilder on;
        on.addNames();
        QVERIFY(QTest::qWaitForWindowActive(&on.builder));
        QTest::keyClick(&on.area(), Qt::Key_B);
        QVERIFY(on.search()->hasFocus());
        QTest::keyClicks(on.search(), "ett");
        QCOMPARE(on.currentRow("NAMES"), "BETTER");
        QTest::keyClick(on.search(), Qt::Key_Backspace);
        QCOMPARE(on.currentRow("NAMES"), "BETA");
        QTest::keyClicks(on.search(), "?");
        QCOMPARE(on.currentRow("NAMES"), "BETA");
        QTest::keyClick(on.search(), Qt::Key_Escape);
        QTest::keyClick(&on.area(), Qt::Key_M);
        QCOMPARE(on.currentRow("NAMES"), "\"my beta\"");
    }

    void arrowsGoThroughTheMatches() {
        HintedBuilder on;
        const TorvQDTable* box = on.addNames();
        QTest::keyClick(&on.area(), Qt::Key_B);
        QStringList rows;
        for (const Qt::Key key :
             {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Up}) {
            QTest::keyClick(on.search(), key);
            rows << on.currentRow("NAMES");
        }
        QCOMPARE(rows, QStringList({"BETTER", "BEST", "BEST", "BETTER", "BETA", "BETA"}));
        QCOMPARE(box->FirstVisibleItem, 2);  // BEST was scrolled in, and BETA stayed in view
        QVERIFY(on.search()->isVisible());
    }

    void searchEndsWith_data() {
        QTest::addColumn<QString>("what");
        QTest::addColumn<bool>("returnsFocus");
        QTest::newRow("enter") << "enter" << true;
        QTest::newRow("escape") << "escape" << true;
        QTest::newRow("focus") << "focus" << false;
        QTest::newRow("another box") << "another box" << true;
        QTest::newRow("closing") << "closing" << true;
        QTest::newRow("clearing") << "clearing" << true;
    }
    void searchEndsWith() {
        QFETCH(QString, what);
        QFETCH(bool, returnsFocus);
        HintedBuilder on;
        on.addNames();
        QVERIFY(QTest::qWaitForWindowActive(&on.builder));
        on.area().setFocus();
        QTest::keyClick(&on.area(), Qt::Key_B);
        QVERIFY(on.search()->isVisible());
        if (what == "enter") QTest::keyClick(on.search(), Qt::Key_Return);
        if (what == "escape") QTest::keyClick(on.search(), Qt::Key_Escape);
        if (what == "focus") on.grid()->setFocus(Qt::MouseFocusReason);
        if (what == "another box") on.area().selectObject(on.table("T"));
        if (what == "closing") on.table("NAMES")->CloseTable();
        if (what == "clearing") on.builder.Clear();
        QVERIFY(!on.search()->isVisible());
        QVERIFY(!on.search()->table());
        QCOMPARE(on.area().hasFocus(), returnsFocus);
        if (on.table("NAMES")) QCOMPARE(on.currentRow("NAMES"), "BETA");
        verifyBuilder(on.builder);
    }

    void otherWindowsAndMenusLeaveTheSearchOpen() {
        HintedBuilder on;
        on.addNames();
        QTest::keyClick(&on.area(), Qt::Key_B);
        for (const Qt::FocusReason reason : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason}) {
            QFocusEvent event(QEvent::FocusOut, reason);
            QCoreApplication::sendEvent(on.search(), &event);
            QVERIFY(on.search()->isVisible());
        }
    }

    void searchStandsAboveABoxAtTheLowerEdge() {
        HintedBuilder on;
        const TorvQDTable* box = on.addNames();
        const int bottom = on.view()->height() - 15;  // of the box: the edit would end one below
        on.place("NAMES", {400, bottom - box->Height});
        QTest::keyClick(&on.area(), Qt::Key_B);
        QCOMPARE(on.search()->geometry().topLeft(), QPoint(box->Left, box->Top - 15 - 1));
        QTest::keyClick(on.search(), Qt::Key_Escape);
        on.place("NAMES", {400, bottom - 1 - box->Height});
        QTest::keyClick(&on.area(), Qt::Key_B);
        QCOMPARE(on.search()->geometry().topLeft(), QPoint(box->Left, bottom));
    }

    void searchFollowsItsBox() {
        HintedBuilder on;
        TorvQDTable* box = on.addNames();
        QTest::keyClick(&on.area(), Qt::Key_B);
        const QPoint before = on.search()->pos();
        on.scrollTo({30, 12});
        QCOMPARE(on.search()->pos(), before - QPoint(30, 12));
        box->MoveTable(5, 7);
        QCOMPARE(on.search()->pos(), before - QPoint(25, 5));
    }

    void collapsedBoxIsSearchedBelowItsCaption() {
        HintedBuilder on;
        TorvQDTable* box = on.addNames();
        box->SetExpand(0);
        QTest::keyClick(&on.area(), Qt::Key_G);
        QCOMPARE(on.search()->y(), box->Top + box->CaptionHeight + 1);
        QCOMPARE(on.currentRow("NAMES"), "GAMMA");
    }

    void keysOfTheHostDoNotSearch() {
        HintedBuilder on;
        on.addNames();
        QTest::keyClick(&on.area(), Qt::Key_B, Qt::ControlModifier);
        QTest::keyClick(&on.area(), Qt::Key_B, Qt::AltModifier);
        QTest::keyClick(&on.area(), Qt::Key_Comma);
        QVERIFY(!on.search()->isVisible());
    }
};

QTEST_MAIN(HintsTest)
#include "tst_hints.moc"
