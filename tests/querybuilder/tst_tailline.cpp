// SPDX-License-Identifier: MIT
// The line of what stands behind the last clause: edited, shown, marked and placed.
#include "querybuilder/ORVQDTailLine.h"
#include "support/BuilderTools.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>

using orvtest::HostedBuilder;
using orvtest::RecordedServices;

namespace {

constexpr int sortingPage = 3;

/// A shown builder on its sorting page, with the focus in the tail line.
class Desk : public HostedBuilder {
public:
    explicit Desk(const QString& tail = {}, int pagesHeight = 200) {
        builder.resize(800, 600);
        builder.setTabsHeight(pagesHeight);
        builder.LoadSQL("select t.a, t.b from t " + tail);
        builder.PageCtrl->setCurrentIndex(sortingPage);
        builder.show();
        builder.activateWindow();
        QCoreApplication::processEvents();
        edit()->setFocus();
        changes = 0;
    }
    [[nodiscard]] orv::TailLine* line() const { return builder.findChild<orv::TailLine*>(); }
    [[nodiscard]] QLineEdit* edit() const { return line()->findChild<QLineEdit*>(); }
    [[nodiscard]] QLabel* label() const { return line()->findChild<QLabel*>(); }
    [[nodiscard]] QString tail() const { return builder.TailText(); }
    [[nodiscard]] QAction* mark() const { return edit()->actions().front(); }

    /// Replaces what is there by typing.
    void type(const QString& text) const {
        edit()->selectAll();
        QTest::keyClicks(edit(), text);
    }
    void key(Qt::Key pressed) const { QTest::keyClick(edit(), pressed); }
    void loseFocus(Qt::FocusReason reason) const {
        QFocusEvent event(QEvent::FocusOut, reason);
        QCoreApplication::sendEvent(edit(), &event);
    }
};

bool overrides(QWidget* widget, Qt::Key key) {
    QKeyEvent event(QEvent::ShortcutOverride, key, Qt::NoModifier);
    event.ignore();
    QCoreApplication::sendEvent(widget, &event);
    return event.isAccepted();
}

const auto loadsAnother = "select t.c from t limit 7";

}  // namespace

class TailLineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void partsSayWhatTheyAre() {
        const Desk on;
        QCOMPARE(on.label()->text(), "Behind the statement");
        QCOMPARE(on.label()->buddy(), on.edit());
        QCOMPARE(on.edit()->accessibleName(), "Behind the statement");
        QCOMPARE(on.edit()->placeholderText(), "LIMIT 10, UNION SELECT ...");
        QVERIFY(!on.edit()->toolTip().isEmpty());
        QVERIFY(!on.edit()->acceptDrops());
    }

    // --- showing

    void everyWayToSetTheTailShowsIt() {
        Desk on("limit 5");
        QCOMPARE(on.edit()->text(), "limit 5");
        on.builder.setTailText("OFFSET 2");
        QCOMPARE(on.edit()->text(), "OFFSET 2");
        const QByteArray state = on.builder.SaveState();
        on.builder.Clear();
        QCOMPARE(on.edit()->text(), QString());
        on.builder.RestoreState(state);
        QCOMPARE(on.edit()->text(), "OFFSET 2");
        on.builder.LoadSQL("select t.a from t");
        QCOMPARE(on.edit()->text(), QString());
    }

    // --- committing

    void enterCommitsOnce() {
        Desk on;
        on.type("LIMIT 10");
        QCOMPARE(on.tail(), QString());
        QCOMPARE(on.changes, 0);
        on.key(Qt::Key_Return);
        QCOMPARE(on.tail(), "LIMIT 10");
        QCOMPARE(on.builder.GetSQLStatment(), "SELECT T.A,\r\n       T.B\r\nFROM T\r\nLIMIT 10");
        QVERIFY(on.edit()->hasFocus());
        on.key(Qt::Key_Return);
        on.loseFocus(Qt::TabFocusReason);
        QCOMPARE(on.changes, 1);
    }

    void lossOfTheFocusCommits_data() {
        QTest::addColumn<Qt::FocusReason>("reason");
        QTest::addColumn<bool>("commits");
        QTest::newRow("mouse") << Qt::MouseFocusReason << true;
        QTest::newRow("tab") << Qt::TabFocusReason << true;
        QTest::newRow("menu bar") << Qt::MenuBarFocusReason << true;
        QTest::newRow("context menu") << Qt::PopupFocusReason << false;
        QTest::newRow("other window") << Qt::ActiveWindowFocusReason << false;
    }
    void lossOfTheFocusCommits() {
        QFETCH(Qt::FocusReason, reason);
        QFETCH(bool, commits);
        Desk on;
        on.type("LIMIT 1");
        on.loseFocus(reason);
        QCOMPARE(on.tail(), commits ? "LIMIT 1" : "");
        QCOMPARE(on.changes, commits ? 1 : 0);
        QCOMPARE(on.edit()->text(), "LIMIT 1");
    }

    void tabLeavesTheLine() {
        Desk on;
        on.type("LIMIT 1");
        on.key(Qt::Key_Backtab);
        QVERIFY(!on.edit()->hasFocus());
        QCOMPARE(on.tail(), "LIMIT 1");
    }

    void sameTextIsNoChange() {
        Desk on("limit 5");
        on.type("limit 5");
        on.key(Qt::Key_Return);
        on.type("  limit 5 ");
        on.key(Qt::Key_Return);
        QCOMPARE(on.edit()->text(), "limit 5");
        QCOMPARE(on.changes, 0);
    }

    void blanksAroundTheTextAreDropped() {
        Desk on;
        on.type("  LIMIT 5  ");
        on.key(Qt::Key_Return);
        QCOMPARE(on.tail(), "LIMIT 5");
        QCOMPARE(on.edit()->text(), "LIMIT 5");
        on.type(" ");
        on.key(Qt::Key_Return);
        QCOMPARE(on.tail(), QString());
        QCOMPARE(on.changes, 2);
    }

    void escapeBringsBackWhatWasThere() {
        Desk on("limit 5");
        on.type("LIMIT 99");
        on.key(Qt::Key_Escape);
        QCOMPARE(on.edit()->text(), "limit 5");
        on.loseFocus(Qt::TabFocusReason);
        QCOMPARE(on.tail(), "limit 5");
        QCOMPARE(on.changes, 0);
    }

    // A dialog has its own use for the keys.
    void keysAreTheWindowsWhileNothingIsTyped() {
        Desk on("limit 5");
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
            QVERIFY(!overrides(on.edit(), key));
        }
        on.type("x");
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
            QVERIFY(overrides(on.edit(), key));
        }
    }

    void hostCommits() {
        Desk on;
        on.type("LIMIT 3");
        on.builder.CommitPendingEdits();
        QCOMPARE(on.tail(), "LIMIT 3");
        on.type("LIMIT 4");
        on.builder.HideFieldList();
        QCOMPARE(on.tail(), "LIMIT 4");
        QCOMPARE(on.changes, 2);
        on.builder.CommitPendingEdits();
        QCOMPARE(on.changes, 2);
    }

    // --- discarding

    void whatReplacesTheStateDropsWhatIsTyped() {
        Desk on("limit 5");
        const QByteArray state = on.builder.SaveState();
        on.type("LIMIT 99");
        on.builder.LoadSQL(loadsAnother);
        QCOMPARE(on.edit()->text(), "limit 7");
        on.type("LIMIT 99");
        on.builder.RestoreState(state);
        QCOMPARE(on.edit()->text(), "limit 5");
        on.type("LIMIT 99");
        on.builder.Clear();
        QCOMPARE(on.edit()->text(), QString());
        on.type("LIMIT 99");
        on.builder.setTailText("LIMIT 8");
        on.loseFocus(Qt::TabFocusReason);
        QCOMPARE(on.tail(), "LIMIT 8");
        QCOMPARE(on.changes, 4);
    }

    void loadingTheShownStatementKeepsWhatIsTyped() {
        Desk on("limit 5");
        on.type("LIMIT 99");
        on.builder.LoadSQL(on.builder.GetSQLStatment());
        on.builder.setTailText("limit 5");
        QCOMPARE(on.edit()->text(), "LIMIT 99");
        on.key(Qt::Key_Return);
        QCOMPARE(on.tail(), "LIMIT 99");
        QCOMPARE(on.changes, 1);
    }

    // --- line breaks

    void lineBreaksSurvive() {
        const QString tail = "UNION ALL\r\nSELECT X\nFROM U";
        Desk on;
        on.builder.setTailText(tail);
        QCOMPARE(on.edit()->displayText().simplified(), "UNION ALL SELECT X FROM U");
        QVERIFY(!on.edit()->displayText().contains('\n'));
        on.key(Qt::Key_Return);
        on.loseFocus(Qt::TabFocusReason);
        on.builder.PageCtrl->setCurrentIndex(0);
        on.builder.CommitPendingEdits();
        QCOMPARE(on.tail(), tail);
        QCOMPARE(on.changes, 1);
    }

    // A comment that ends at a break would swallow what follows.
    void lineBreaksSurviveAnEditBesideThem() {
        Desk on;
        on.builder.setTailText("LIMIT 5 -- few\nOFFSET 2");
        on.edit()->end(false);
        QTest::keyClicks(on.edit(), "0");
        on.key(Qt::Key_Return);
        QCOMPARE(on.tail(), "LIMIT 5 -- few\nOFFSET 20");
    }

    // --- pages

    void programThatChangesThePageLosesNothing() {
        Desk on;
        on.type("LIMIT 3");
        on.builder.PageCtrl->setCurrentIndex(0);
        QCOMPARE(on.tail(), "LIMIT 3");
        QCOMPARE(on.changes, 1);
        on.builder.PageCtrl->setCurrentIndex(sortingPage);
        QCOMPARE(on.edit()->text(), "LIMIT 3");
    }

    // Also when the focus is elsewhere, as after a deactivated window.
    void hiddenLineLosesNothing() {
        Desk on;
        on.type("LIMIT 3");
        on.loseFocus(Qt::ActiveWindowFocusReason);
        on.builder.hide();
        QCOMPARE(on.tail(), "LIMIT 3");
        QCOMPARE(on.changes, 1);
    }

    // --- the host

    void errorOfASlotGoesToTheHandler() {
        Desk on;
        const RecordedServices services;
        connect(&on.builder, &TorvQueryBuilder::StatementChanged, this,
                [] { throw orv::Error(QStringLiteral("slot")); });
        on.type("LIMIT 3");
        on.key(Qt::Key_Return);
        QCOMPARE(services.errors, QStringList("slot"));
        on.type("LIMIT 4");
        QCOMPARE(orvtest::errorOf([&] { on.builder.CommitPendingEdits(); }), "slot");
        QCOMPARE(on.tail(), "LIMIT 4");
        on.builder.disconnect(this);
    }

    void destroyingTellsNobody() {
        int told = 0;
        {
            Desk on;
            on.type("LIMIT 3");
            connect(&on.builder, &TorvQueryBuilder::StatementChanged, this, [&] { ++told; });
        }
        QCOMPARE(told, 0);
    }

    void hostMayDestroyTheControlWhenItCommits() {
        for (const bool byHost : {false, true}) {
            auto on = std::make_unique<Desk>();
            connect(&on->builder, &TorvQueryBuilder::StatementChanged, this,
                    [builder = &on->builder] { builder->OrderPanel->parentWidget()->hide(); });
            on->type("LIMIT 3");
            byHost ? on->builder.CommitPendingEdits() : on->key(Qt::Key_Return);
            QCOMPARE(on->tail(), "LIMIT 3");
            QCOMPARE(on->changes, 1);
        }
    }

    // --- what is wrong

    void wrongTailsAreMarked() {
        Desk on("limit 5");
        QVERIFY(!on.mark()->isVisible());
        on.type("NONSENSE");
        QVERIFY(!on.mark()->isVisible());
        on.key(Qt::Key_Return);
        QVERIFY(on.mark()->isVisible());
        const QString what = "This is nothing that may follow a statement.";
        QCOMPARE(on.edit()->toolTip(), what);
        QCOMPARE(on.mark()->toolTip(), what);
        QCOMPARE(on.edit()->accessibleDescription(), what);
        QCOMPARE(on.builder.Validate().back().what, what);
        on.type("LIMIT 5");
        on.key(Qt::Key_Return);
        QVERIFY(!on.mark()->isVisible());
        QVERIFY(on.edit()->toolTip() != what);
    }

    // The tail is right in itself: a change on another part of the page makes it wrong.
    void sortingInFrontOfAUnionIsMarked() {
        Desk on("union select x from u");
        QVERIFY(!on.mark()->isVisible());
        on.builder.OrderPanel->setSortedLines({{"A", orv::ascendingText(), 1, {}}});
        on.builder.statementChanged();
        QVERIFY(on.mark()->isVisible());
        QCOMPARE(on.edit()->toolTip(), "Sorting cannot stand in front of UNION.");
        on.tick("T", "A", false);
        QVERIFY(!on.mark()->isVisible());
    }

    void clearingTakesTheMarkAway() {
        Desk on;
        on.builder.setTailText("NONSENSE");
        QVERIFY(on.mark()->isVisible());
        on.builder.Clear();
        QVERIFY(!on.mark()->isVisible());
    }

    // --- its place

    void liesBelowThePanel() {
        const Desk on({}, 200);
        const QRect panel = on.builder.OrderPanel->geometry();
        const QRect line = on.line()->geometry();
        QVERIFY(line.top() > panel.bottom());
        QVERIFY(panel.height() >= 100);
        QCOMPARE(panel.width(), on.builder.PageCtrl->widget(sortingPage)->width());
        QVERIFY(on.label()->isVisible());
        QVERIFY(on.edit()->geometry().left() > on.label()->geometry().right());
    }

    void liesBesideThePanelOnALowSheet() {
        const Desk on({}, 101);
        const QWidget* sheet = on.builder.PageCtrl->widget(sortingPage);
        const QRect panel = on.builder.OrderPanel->geometry();
        QCOMPARE(panel.height(), sheet->height());
        QVERIFY(on.line()->geometry().left() > panel.right());
        QVERIFY(panel.width() > on.line()->width());
        QVERIFY(on.edit()->geometry().top() > on.label()->geometry().bottom());
        QVERIFY(sheet->rect().contains(on.edit()->geometry().translated(on.line()->pos())));
    }

    void movesWithTheHeightOfThePages() {
        Desk on({}, 101);
        on.type("LIMIT 3");
        on.builder.setTabsHeight(220);
        QCoreApplication::processEvents();
        QVERIFY(on.line()->geometry().top() > on.builder.OrderPanel->geometry().bottom());
        QVERIFY(on.edit()->hasFocus());
        QCOMPARE(on.edit()->text(), "LIMIT 3");
        on.builder.setTabsHeight(120);
        QCoreApplication::processEvents();
        QVERIFY(on.line()->geometry().left() > on.builder.OrderPanel->geometry().right());
    }

    void hasNoPlaceOnALowAndNarrowSheet() {
        Desk on({}, 101);
        on.builder.resize(300, 600);
        QCoreApplication::processEvents();
        QVERIFY(on.line()->isHidden());
        QCOMPARE(on.builder.OrderPanel->size(), on.builder.PageCtrl->widget(sortingPage)->size());
        on.builder.setTabsHeight(200);
        QCoreApplication::processEvents();
        QVERIFY(on.line()->isVisible());
    }

    void doesNotKeepTheControlFromBeingNarrow() {
        TorvQueryBuilder builder;
        const int width = builder.PageCtrl->widget(sortingPage)->minimumSizeHint().width();
        QVERIFY2(width < 60, QByteArray::number(width));
    }
};

QTEST_MAIN(TailLineTest)
#include "tst_tailline.moc"
