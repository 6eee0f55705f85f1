// SPDX-License-Identifier: MIT
// How the user goes from page to page, and what is taken over before he is there.
#include "querybuilder/ORVQDPageTabs.h"
#include "querybuilder/ORVQDTailLine.h"
#include "support/BuilderTools.h"

#include <QApplication>
#include <QDragMoveEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPointer>
#include <QProxyStyle>
#include <QShortcut>
#include <QTabBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWheelEvent>

using orvtest::HostedBuilder;
using orvtest::RecordedServices;

namespace {

constexpr int sortingPage = 3;

/// What is dragged need not rest on a tab for long.
class HastyStyle : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        if (hint == SH_TabBar_ChangeCurrentDelay) return 0;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
};

void press(QTabWidget* pages, int index, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseClick(pages->tabBar(), button, {}, pages->tabBar()->tabRect(index).center());
}

void wheel(QTabWidget* pages, int eighths) {
    QTabBar* bar = pages->tabBar();
    const QPoint point = bar->rect().center();
    QWheelEvent event(point, bar->mapToGlobal(point), {}, {0, eighths}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(bar, &event);
}

// A drag enters above the tab, moves on it and rests there.
void rest(QTabWidget* pages, int index) {
    QTabBar* bar = pages->tabBar();
    const QPoint point = bar->tabRect(index).center();
    const QMimeData data;
    QDragEnterEvent enter(point, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(bar, &enter);
    QDragMoveEvent move(point, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(bar, &move);
    QCoreApplication::processEvents();
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(bar, &leave);
}

/// Four shown pages with an edit on each; it remembers on which page a change was announced.
class Pages {
public:
    Pages() {
        for (int index = 0; index < 4; ++index) {
            auto* page = new QWidget;
            auto* layout = new QVBoxLayout(page);
            layout->addWidget(new QLineEdit(page));
            layout->addWidget(new QListWidget(page));
            pages->addTab(page, QString("Page %1").arg(index));
        }
        layout.addWidget(outside);
        layout.addWidget(pages);
        pages->addNumberKeys(&window);
        pages->tabBar()->setStyle(&style);
        pages->aboutToChange = [this] {
            announced << pages->currentIndex();
            wasVisible = wasVisible && pages->currentWidget()->isVisible();
        };
        window.resize(600, 300);
        window.show();
        window.activateWindow();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QLineEdit* edit(int page) const {
        return pages->widget(page)->findChild<QLineEdit*>();
    }
    [[nodiscard]] QListWidget* list(int page) const {
        return pages->widget(page)->findChild<QListWidget*>();
    }

    HastyStyle style;
    QWidget window;
    QVBoxLayout layout{&window};
    QLineEdit* outside = new QLineEdit;
    orv::PageTabs* pages = new orv::PageTabs;
    QList<int> announced;
    bool wasVisible = true;
};

}  // namespace

class PageTabsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- ways to change the page

    void pressAnnouncesThePageThatGoes() {
        Pages on;
        press(on.pages, 2);
        QCOMPARE(on.pages->currentIndex(), 2);
        QCOMPARE(on.announced, QList<int>({0}));
        QVERIFY(on.wasVisible);
    }

    void pressThatChangesNothingAnnouncesNothing() {
        Pages on;
        press(on.pages, 0);
        press(on.pages, 1, Qt::RightButton);
        on.pages->setTabEnabled(1, false);
        press(on.pages, 1);
        QTest::mouseClick(on.pages->tabBar(), Qt::LeftButton, {},
                          QPoint(on.pages->tabBar()->width() + 40, 5));
        QCOMPARE(on.pages->currentIndex(), 0);
        QCOMPARE(on.announced, QList<int>());
    }

    void wheelAnnounces() {
        Pages on;
        wheel(on.pages, -120);
        QCOMPARE(on.pages->currentIndex(), 1);
        QCOMPARE(on.announced, QList<int>({0}));
        wheel(on.pages, 120);
        QCOMPARE(on.pages->currentIndex(), 0);
        QCOMPARE(on.announced, QList<int>({0, 1}));
        QVERIFY(on.wasVisible);
    }

    void arrowsOnTheTabsAnnounce() {
        Pages on;
        on.pages->tabBar()->setFocus();
        QTest::keyClick(on.pages->tabBar(), Qt::Key_Right);
        QCOMPARE(on.pages->currentIndex(), 1);
        QTest::keyClick(on.pages->tabBar(), Qt::Key_Left);
        QCOMPARE(on.pages->currentIndex(), 0);
        QTest::keyClick(on.pages->tabBar(), Qt::Key_Down);
        QCOMPARE(on.announced, QList<int>({0, 1}));
        QVERIFY(on.wasVisible);
    }

    void keysWithinAPageAnnounce_data() {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<int>("expected");
        const Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
        QTest::newRow("Ctrl+Tab") << Qt::Key_Tab << ctrl << 2;
        QTest::newRow("Ctrl+Shift+Tab") << Qt::Key_Backtab << (ctrl | Qt::ShiftModifier) << 0;
        QTest::newRow("Ctrl+Page Down") << Qt::Key_PageDown << ctrl << 2;
        QTest::newRow("Ctrl+Page Up") << Qt::Key_PageUp << ctrl << 0;
        QTest::newRow("Alt+1") << Qt::Key_1 << Qt::KeyboardModifiers(Qt::AltModifier) << 0;
        QTest::newRow("Alt+4") << Qt::Key_4 << Qt::KeyboardModifiers(Qt::AltModifier) << 3;
    }
    void keysWithinAPageAnnounce() {
        QFETCH(Qt::Key, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(int, expected);
        for (const bool inList : {false, true}) {
            Pages on;
            on.pages->setCurrentIndex(1);
            QWidget* focused = on.edit(1);
            if (inList) focused = on.list(1);
            focused->setFocus();
            QTest::keyClick(focused, key, modifiers);
            QCOMPARE(on.pages->currentIndex(), expected);
            QCOMPARE(on.announced, QList<int>({1}));
            QVERIFY(on.wasVisible);
            // The keyboard is on the new page then.
            QVERIFY(on.pages->widget(expected)->isAncestorOf(QApplication::focusWidget()));
        }
    }

    void keysGoRoundAndPassOverDisabledPages() {
        Pages on;
        on.pages->setTabEnabled(1, false);
        on.pages->setTabVisible(3, false);
        on.edit(0)->setFocus();
        QTest::keyClick(on.edit(0), Qt::Key_PageDown, Qt::ControlModifier);
        QCOMPARE(on.pages->currentIndex(), 2);
        QTest::keyClick(on.edit(2), Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(on.pages->currentIndex(), 0);
        QTest::keyClick(on.edit(0), Qt::Key_2, Qt::AltModifier);
        QTest::keyClick(on.edit(0), Qt::Key_4, Qt::AltModifier);
        QTest::keyClick(on.edit(0), Qt::Key_1, Qt::AltModifier);
        QCOMPARE(on.pages->currentIndex(), 0);
        QCOMPARE(on.announced, QList<int>({0, 2}));
    }

    void numbersReachThePagesFromOutside() {
        Pages on;
        on.outside->setFocus();
        QTest::keyClick(on.outside, Qt::Key_3, Qt::AltModifier);
        QCOMPARE(on.pages->currentIndex(), 2);
        QVERIFY(on.edit(2)->hasFocus());
        on.list(2)->setFocus();
        on.outside->setFocus();
        QTest::keyClick(on.outside, Qt::Key_3, Qt::AltModifier);
        QVERIFY(on.list(2)->hasFocus());
        QCOMPARE(on.announced, QList<int>({0}));
        on.outside->setFocus();
        QTest::keyClick(on.outside, Qt::Key_PageDown, Qt::ControlModifier);
        QCOMPARE(on.pages->currentIndex(), 2);
    }

    // Both a page's key and the host's are called ambiguous then.
    void keyThatTheWindowHasTooStillChangesThePage() {
        Pages on;
        const QShortcut shortcut(QKeySequence("Ctrl+PgDown"), &on.window);
        on.edit(0)->setFocus();
        QTest::keyClick(on.edit(0), Qt::Key_PageDown, Qt::ControlModifier);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown, Qt::ControlModifier);
        QVERIFY(on.pages->currentIndex() > 0);
    }

    void somethingDraggedThatRestsOnATabAnnounces() {
        Pages on;
        QVERIFY(on.pages->tabBar()->changeCurrentOnDrag());
        rest(on.pages, 2);
        QCOMPARE(on.pages->currentIndex(), 2);
        QCOMPARE(on.announced, QList<int>({0}));
        QVERIFY(on.wasVisible);
        rest(on.pages, 2);
        on.pages->setTabEnabled(1, false);
        rest(on.pages, 1);
        QCOMPARE(on.pages->currentIndex(), 2);
        QCOMPARE(on.announced, QList<int>({0}));
    }

    void mnemonicOfATabAnnounces() {
        Pages on;
        on.pages->setTabText(1, "&Xyz");
        on.edit(0)->setFocus();
        QTest::keyClick(on.edit(0), Qt::Key_X, Qt::AltModifier);
        QCOMPARE(on.pages->currentIndex(), 1);
        QCOMPARE(on.announced, QList<int>({0}));
        QVERIFY(on.wasVisible);
    }

    void programDoesNotAsk() {
        Pages on;
        on.pages->setCurrentIndex(2);
        QCOMPARE(on.announced, QList<int>());
    }

    // --- what the announcement may do

    void pagesMayGoWhenAChangeIsAnnounced_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("press") << 0;
        QTest::newRow("wheel") << 1;
        QTest::newRow("key") << 2;
        QTest::newRow("number") << 3;
    }
    void pagesMayGoWhenAChangeIsAnnounced() {
        QFETCH(int, way);
        Pages on;
        on.edit(0)->setFocus();
        const QPointer<orv::PageTabs> pages = on.pages;
        bool isAnnounced = false;
        pages->aboutToChange = [&] {
            isAnnounced = true;
            pages->setParent(nullptr);
            pages->deleteLater();
            QCoreApplication::sendPostedEvents(pages, QEvent::DeferredDelete);
        };
        switch (way) {
        case 0:
            QTest::mousePress(pages->tabBar(), Qt::LeftButton, {},
                              pages->tabBar()->tabRect(2).center());
            break;
        case 1: wheel(pages, -120); break;
        case 2: QTest::keyClick(on.edit(0), Qt::Key_Tab, Qt::ControlModifier); break;
        default: QTest::keyClick(on.edit(0), Qt::Key_3, Qt::AltModifier); break;
        }
        QVERIFY(isAnnounced);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!pages);
    }

    void errorDoesNotKeepThePage() {
        Pages on;
        const RecordedServices services;
        on.pages->aboutToChange = [] { throw orv::Error(QStringLiteral("no")); };
        press(on.pages, 1);
        QCOMPARE(services.errors, QStringList("no"));
        QCOMPARE(on.pages->currentIndex(), 1);
    }

    // --- the control

    void whatIsTypedIsTakenOverBeforeThePageGoes_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("press") << 0;
        QTest::newRow("wheel") << 1;
        QTest::newRow("Ctrl+Tab") << 2;
        QTest::newRow("Alt+1") << 3;
        QTest::newRow("drag") << 4;
    }
    void whatIsTypedIsTakenOverBeforeThePageGoes() {
        QFETCH(int, way);
        HastyStyle style;
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        on.builder.resize(800, 600);
        on.builder.PageCtrl->setCurrentIndex(sortingPage);
        on.builder.PageCtrl->tabBar()->setStyle(&style);
        on.builder.setTabsHeight(200);
        on.builder.show();
        on.builder.activateWindow();
        QCoreApplication::processEvents();
        auto* edit = on.builder.findChild<orv::TailLine*>()->findChild<QLineEdit*>();
        edit->setFocus();
        QTest::keyClicks(edit, "LIMIT 3");
        QStringList told;
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] {
            told << on.builder.TailText() + (edit->isVisible() ? " visible" : " hidden");
        });
        switch (way) {
        case 0: press(on.builder.PageCtrl, 0); break;
        case 1: wheel(on.builder.PageCtrl, 120); break;
        case 2: QTest::keyClick(edit, Qt::Key_Tab, Qt::ControlModifier); break;
        case 3: QTest::keyClick(edit, Qt::Key_1, Qt::AltModifier); break;
        default: rest(on.builder.PageCtrl, 0); break;
        }
        QCOMPARE(told, QStringList("LIMIT 3 visible"));
        QVERIFY(on.builder.PageCtrl->currentIndex() != sortingPage);
    }

    void numbersReachThePagesFromTheDiagram() {
        HostedBuilder on;
        on.builder.LoadSQL("select t.a from t");
        on.builder.show();
        on.builder.activateWindow();
        QCoreApplication::processEvents();
        on.builder.WorkArea->setFocus();
        QTest::keyClick(on.builder.WorkArea, Qt::Key_4, Qt::AltModifier);
        QCOMPARE(on.builder.PageCtrl->currentIndex(), sortingPage);
        QVERIFY(on.builder.OrderPanel->findChild<QListWidget*>()->hasFocus());
        on.builder.WorkArea->setFocus();
        QTest::keyClick(on.builder.WorkArea, Qt::Key_2, Qt::AltModifier);
        QVERIFY(on.builder.SelectPanel->isAncestorOf(QApplication::focusWidget()));
    }

    // The keys of pages are the diagram's while it has the focus.
    void diagramKeepsItsKeys() {
        HostedBuilder on;
        on.addTable("T");
        on.addTable("U");
        on.builder.show();
        on.builder.activateWindow();
        QCoreApplication::processEvents();
        on.builder.WorkArea->setFocus();
        const TorvQDFloatObject* before = on.builder.WorkArea->selectedObject();
        QTest::keyClick(on.builder.WorkArea, Qt::Key_PageDown, Qt::ControlModifier);
        QCOMPARE(on.builder.PageCtrl->currentIndex(), 0);
        QVERIFY(on.builder.WorkArea->selectedObject() != before);
    }

    void captionsHaveNoMnemonics() {
        const TorvQueryBuilder builder;
        for (int index = 0; index < builder.PageCtrl->count(); ++index) {
            QVERIFY(!builder.PageCtrl->tabText(index).contains('&'));
        }
    }

    void designModeHasPagesWithoutPanels() {
        TorvQueryBuilder builder(nullptr, true);
        builder.resize(800, 600);
        builder.show();
        QCoreApplication::processEvents();
        press(builder.PageCtrl, 2);
        QCOMPARE(builder.PageCtrl->currentIndex(), 2);
        builder.HideFieldList();
        builder.setTailText("LIMIT 1");
        QCOMPARE(builder.TailText(), "LIMIT 1");
    }
};

QTEST_MAIN(PageTabsTest)
#include "tst_pagetabs.moc"
