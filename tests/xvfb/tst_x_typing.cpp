// SPDX-License-Identifier: MIT
// What becomes of a half-typed text when a person goes on somewhere else, among real windows: it
// counts or it is still there, and the focus is where the person went.
#include "xvfb/ProgramDesk.h"

using orvtest::Hand;
using orvtest::ProgramDesk;

class tst_x_typing : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void nothingTypedIsLost_data();
    void nothingTypedIsLost();
    void clickBesideAMenuChangesNothing_data();
    void clickBesideAMenuChangesNothing();
    void statementIsLoadedAfterTypingInACondition();
    void draggedFieldGoesToAPageThatWasNotShown_data();
    void draggedFieldGoesToAPageThatWasNotShown();

private:
    void begin(const QString& edited);
    [[nodiscard]] bool isTaken(const QString& edited) const;
    [[nodiscard]] bool isStillTyped(const QString& edited) const;

    void goToAnotherPage();
    void clickIntoTheDiagram();
    void closeABox();
    void lookIntoAMenu();
    void leaveTheMenuBar();
    void escapeFromAMenu();
    void escapeFromAMenuByKey();
    void runByTheMenu();
    void goToAnotherWindowAndBack();
    void clickOnTheStatement();
    void runByKey();

    [[nodiscard]] Hand::Place emptyDiagram() const {
        const QWidget* view = m_desk->area().viewport();
        return [view] { return view->mapToGlobal(view->rect().bottomRight() - QPoint(30, 30)); };
    }

    std::unique_ptr<ProgramDesk> m_desk;
    std::unique_ptr<Hand> m_hand;
    std::unique_ptr<QWidget> m_other;
    QString m_edited;
};

void tst_x_typing::init() {
    orvtest::failOnAnyWarning();
    m_desk = std::make_unique<ProgramDesk>();
    m_hand = std::make_unique<Hand>();
    QVERIFY(m_desk->show());
}

void tst_x_typing::cleanup() {
    m_hand.reset();
    m_other.reset();
    m_desk.reset();
}

// --- what is typed ---

// Each time another text than there is in the query.
void tst_x_typing::begin(const QString& edited) {
    m_edited = edited;
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    const bool isCondition = edited == "condition" || edited == "field list";
    const QString page = isCondition ? "Criterions" : "Selection";
    hand.click(desk.tab(page)).until("the page is shown", desk.pageIs(page));
    if (isCondition) {
        hand.click(ProgramDesk::element(desk.where(), "1.", ekArgument))
            .until("the editor is there",
                   [&] { return ProgramDesk::memo(desk.where()) != nullptr; })
            .type("'open'");
        if (edited == "field list") {
            hand.key("shift+Return")
                .until("the list is there",
                       [&] { return ProgramDesk::fieldList(desk.where()) != nullptr; })
                .type("street");
        }
    } else if (edited == "output name") {
        hand.doubleClick(desk.cell("C.NAME", 0))
            .until("the editor is there", [&] { return desk.nameEdit() != nullptr; })
            .type("customer");
    } else {
        hand.doubleClick(desk.cell("C.CITY", 2))
            .until("the editor is there", [&] { return desk.combo() != nullptr; })
            .type("C.STREET");
    }
    hand.until("it is typed", [this] { return isStillTyped(m_edited); });
    perform(hand);
    QVERIFY(!isTaken(edited));
}

bool tst_x_typing::isTaken(const QString& edited) const {
    const ProgramDesk& desk = *m_desk;
    if (edited == "output name") return !desk.nameEdit() && desk.grid().Cells(0, 1) == "customer";
    if (edited == "source") return !desk.combo() && desk.grid().Cells(2, 2) == "C.STREET";
    const TorvQDWhereRow& row = *ProgramDesk::row(desk.where(), "1.");
    return !desk.where().isEditing() && row.Arguments == QStringList("'open'");
}

bool tst_x_typing::isStillTyped(const QString& edited) const {
    const ProgramDesk& desk = *m_desk;
    if (edited == "output name") return desk.nameEdit() && desk.nameEdit()->text() == "customer";
    if (edited == "source") return desk.combo() && desk.combo()->currentText() == "C.STREET";
    const QPlainTextEdit* memo = ProgramDesk::memo(desk.where());
    if (!memo || memo->toPlainText() != "'open'") return false;
    const orv::FieldList* list = ProgramDesk::fieldList(desk.where());
    return edited == "field list" ? list && list->filter()->text() == "street" : !list;
}

// --- where a person goes ---

void tst_x_typing::goToAnotherPage() {
    ProgramDesk& desk = *m_desk;
    m_hand->click(desk.tab("Sorting")).until("the page is shown", desk.pageIs("Sorting"));
    perform(*m_hand);
    const QWidget* focus = QApplication::focusWidget();
    QVERIFY(focus);
    QVERIFY(focus->isVisible());
    QVERIFY(desk.builder().PageCtrl->isAncestorOf(focus));
}

void tst_x_typing::clickIntoTheDiagram() {
    m_hand->click(emptyDiagram())
        .until("the diagram has the focus", ProgramDesk::hasFocus(&m_desk->area()));
    perform(*m_hand);
}

void tst_x_typing::closeABox() {
    ProgramDesk& desk = *m_desk;
    const auto cross = desk.at([&desk] {
        const QRect buttons = desk.table("I")->GetButtonRect().toQRect();
        return QPoint(buttons.right() - buttons.height() / 2, buttons.center().y());
    });
    m_hand->click(cross).until("the box is gone", [&desk] { return !desk.table("I"); });
    perform(*m_hand);
    QVERIFY(desk.area().hasFocus());
}

// The text waits for what the person does next.
void tst_x_typing::lookIntoAMenu() {
    ProgramDesk& desk = *m_desk;
    const QPointer<QWidget> focus(QApplication::focusWidget());
    m_hand->click(desk.menuTitle("File"))
        .until("the menu is up", ProgramDesk::menuIsUp())
        .call([&] { QVERIFY(isStillTyped(m_edited)); })
        .click(desk.menuTitle("File"))
        .until("the menu is gone", ProgramDesk::noMenuIsUp())
        .until("the focus is back", ProgramDesk::hasFocus(focus));
    perform(*m_hand);
    QVERIFY(isStillTyped(m_edited));
    clickIntoTheDiagram();
}

// From the menu Escape goes to the menu bar, from there back.
void tst_x_typing::leaveTheMenuBar() {
    const ProgramDesk& desk = *m_desk;
    m_hand->key("Escape")
        .until("the menu is gone", ProgramDesk::noMenuIsUp())
        .until("the text is taken over", [this] { return isTaken(m_edited); })
        .until("the menu bar has the focus", ProgramDesk::hasFocus(desk.window->menuBar()))
        .key("Escape")
        .until("the focus is back where it was", [&desk] {
            const QWidget* focus = QApplication::focusWidget();
            return focus && focus->isVisible() && desk.builder().PageCtrl->isAncestorOf(focus);
        });
    perform(*m_hand);
}

void tst_x_typing::escapeFromAMenu() {
    m_hand->click(m_desk->menuTitle("File")).until("the menu is up", ProgramDesk::menuIsUp());
    leaveTheMenuBar();
}

void tst_x_typing::escapeFromAMenuByKey() {
    m_hand->key("alt+h").until("the menu is up", ProgramDesk::menuIsUp());
    leaveTheMenuBar();
}

void tst_x_typing::runByTheMenu() {
    ProgramDesk& desk = *m_desk;
    m_hand->click(desk.menuTitle("Query"))
        .until("the menu is up", ProgramDesk::menuIsUp())
        .click(ProgramDesk::menuEntry("Run"))
        .until("the rows are there", [&desk] { return desk.hasRun(); });
    perform(*m_hand);
}

void tst_x_typing::goToAnotherWindowAndBack() {
    ProgramDesk& desk = *m_desk;
    const QPointer<QWidget> focus(QApplication::focusWidget());
    m_other = std::make_unique<QWidget>();
    m_other->setGeometry(900, 600, 200, 100);
    m_other->show();
    m_hand->until("the other window is active", [this] { return m_other->isActiveWindow(); })
        .call([&] {
            QVERIFY(isStillTyped(m_edited));
            desk.window->activateWindow();
        })
        .until("the window is active", [&] { return desk.window->isActiveWindow(); })
        .until("the focus is back", ProgramDesk::hasFocus(focus));
    perform(*m_hand);
    QVERIFY(isStillTyped(m_edited));
    m_other->hide();
    clickIntoTheDiagram();
}

void tst_x_typing::clickOnTheStatement() {
    const QPlainTextEdit& statement = m_desk->statement();
    m_hand->click(ProgramDesk::middleOf(statement.viewport()))
        .until("the statement has the focus", ProgramDesk::hasFocus(&statement));
    perform(*m_hand);
}

void tst_x_typing::runByKey() {
    ProgramDesk& desk = *m_desk;
    m_hand->key("F5").until("the rows are there", [&desk] { return desk.hasRun(); });
    perform(*m_hand);
    const QWidget* focus = QApplication::focusWidget();
    QVERIFY(focus);
    QVERIFY(focus->isVisible());
    QVERIFY(desk.builder().PageCtrl->isAncestorOf(focus));
}

// --- the tests ---

namespace {

const QStringList editedThings = {"condition", "field list", "output name", "source"};

}  // namespace

void tst_x_typing::nothingTypedIsLost_data() {
    QTest::addColumn<QString>("edited");
    QTest::addColumn<int>("deed");
    const QStringList deeds = {"another page",       "diagram",
                               "closing a box",      "menu",
                               "Escape from a menu", "Escape from a menu by key",
                               "Run of the menu",    "other window",
                               "statement",          "F5"};
    for (const QString& edited : editedThings) {
        for (int deed = 0; deed < deeds.size(); ++deed) {
            QTest::addRow("%s, %s", qPrintable(edited), qPrintable(deeds[deed])) << edited << deed;
        }
    }
}

void tst_x_typing::nothingTypedIsLost() {
    QFETCH(QString, edited);
    QFETCH(int, deed);
    using Deed = void (tst_x_typing::*)();
    static constexpr Deed deeds[] = {
        &tst_x_typing::goToAnotherPage,     &tst_x_typing::clickIntoTheDiagram,
        &tst_x_typing::closeABox,           &tst_x_typing::lookIntoAMenu,
        &tst_x_typing::escapeFromAMenu,     &tst_x_typing::escapeFromAMenuByKey,
        &tst_x_typing::runByTheMenu,        &tst_x_typing::goToAnotherWindowAndBack,
        &tst_x_typing::clickOnTheStatement, &tst_x_typing::runByKey};
    begin(edited);
    if (QTest::currentTestFailed()) return;
    (this->*deeds[deed])();
    if (QTest::currentTestFailed()) return;
    QVERIFY(isTaken(edited));
    QCOMPARE(m_desk->errors, QStringList());
}

void tst_x_typing::clickBesideAMenuChangesNothing_data() {
    QTest::addColumn<int>("kind");
    QTest::newRow("operators") << int(ekOperator);
    QTest::newRow("row") << int(ekButton);
}

void tst_x_typing::clickBesideAMenuChangesNothing() {
    QFETCH(int, kind);
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    const QString before = desk.builder().GetSQLStatment();
    hand.click(desk.tab("Criterions"))
        .until("the page is shown", desk.pageIs("Criterions"))
        .click(ProgramDesk::element(desk.where(), "1.", kind))
        .until("the menu is up", ProgramDesk::menuIsUp());
    // The press that closes the menu may count for nothing else.
    hand.moveTo(emptyDiagram())
        .press()
        .release()
        .until("the menu is gone", ProgramDesk::noMenuIsUp())
        .click(ProgramDesk::middleOf(desk.statement().viewport()))
        .until("the statement has the focus", ProgramDesk::hasFocus(&desk.statement()));
    perform(hand);
    QCOMPARE(desk.builder().GetSQLStatment(), before);
    QCOMPARE(desk.errors, QStringList());
}

void tst_x_typing::statementIsLoadedAfterTypingInACondition() {
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    begin("condition");
    if (QTest::currentTestFailed()) return;
    clickOnTheStatement();
    if (QTest::currentTestFailed()) return;
    QVERIFY(isTaken("condition"));
    hand.until("the statement says so",
               [&] { return desk.statement().toPlainText().contains("'open'"); })
        .key("ctrl+End")
        .type(", c.name")
        .until("it is typed", [&] { return desk.statement().toPlainText().endsWith(", c.name"); })
        .key("ctrl+Return")
        .until("it is loaded",
               [&] { return desk.builder().OrderPanel->sortList().lines().size() == 2; });
    perform(hand);
    QVERIFY(isTaken("condition"));
    QVERIFY(desk.statement().hasFocus());
    QCOMPARE(desk.errors, QStringList());
}

// --- dragging ---

void tst_x_typing::draggedFieldGoesToAPageThatWasNotShown_data() {
    QTest::addColumn<QString>("edited");
    QTest::addColumn<QString>("page");
    QTest::newRow("condition") << QString() << "Criterions";
    QTest::newRow("condition, while a column is edited") << "output name"
                                                         << "Criterions";
    QTest::newRow("column") << QString() << "Selection";
    QTest::newRow("column, while a condition is edited") << "condition"
                                                         << "Selection";
    QTest::newRow("column, while the fields are listed") << "field list"
                                                         << "Selection";
}

void tst_x_typing::draggedFieldGoesToAPageThatWasNotShown() {
    QFETCH(QString, edited);
    QFETCH(QString, page);
    ProgramDesk& desk = *m_desk;
    Hand& hand = *m_hand;
    hand.click(desk.tab("Sorting")).until("the page is shown", desk.pageIs("Sorting"));
    perform(hand);
    if (!edited.isEmpty()) begin(edited);
    if (QTest::currentTestFailed()) return;
    const int before = hand.dragMoves();
    const int far = QApplication::startDragDistance();
    const int rows = desk.grid().RowCount();
    hand.moveTo(desk.field("C", "STREET"))
        .press()
        .moveTo(desk.field("C", "STREET", {4, 0}))
        .moveTo(desk.field("C", "STREET", {far + 4, 0}))
        .moveTo(desk.field("C", "STREET", {far + 6, 0}))
        .until("the field is dragged", [&hand, before] { return hand.dragMoves() > before; })
        .moveTo(desk.tab(page))
        .until("the page is shown", desk.pageIs(page));
    if (page == "Criterions") {
        hand.moveTo(ProgramDesk::element(desk.where(), "1.", ekFieldName))
            .release()
            .until("the field is there", [&desk] {
                return ProgramDesk::row(desk.where(), "1.")->FieldName == "C.STREET";
            });
    } else {
        // The last row, which is empty.
        hand.moveTo([&desk] {
                const QRect rect = desk.grid().visualRect(
                    desk.grid().model()->index(desk.grid().RowCount() - 2, 0));
                return desk.grid().viewport()->mapToGlobal(rect.topLeft() + QPoint(20, 3));
            })
            .release()
            .until("there is a column", [&desk, rows] { return desk.grid().RowCount() > rows; });
    }
    perform(hand);
    if (page == "Selection") {
        QCOMPARE(desk.grid().Cells(2, rows - 1), QString("C.STREET"));
        QVERIFY(desk.table("C")->GetFieldItem("STREET")->Checked);
    }
    if (!edited.isEmpty()) QVERIFY(isTaken(edited));
    QVERIFY(!desk.area().isGesturing());
    QCOMPARE(desk.errors, QStringList());
}

QTEST_MAIN(tst_x_typing)
#include "tst_x_typing.moc"
