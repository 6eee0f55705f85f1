// SPDX-License-Identifier: MIT
// Linking rows of the diagram by keys, and what keys do with the selected link.
#include "workarea/DiagramKeyboard.h"

#include <QComboBox>
#include <QPushButton>

using orvtest::Keyboard;
using orvtest::RecordedServices;

class LinkKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- linking

    void insertTwiceLinksTwoRows() {
        const Keyboard on;
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList("EMPLOYEE.DEPT_NO=DEPT.DEPT_NO"));
        // That link is done: the next one begins anew.
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links().size(), 1);
    }

    void escapeGivesUpTheLink() {
        const Keyboard on;
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        on.press(Qt::Key_Escape);
        QVERIFY(on.window.isVisible());
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
        on.goTo("EMPLOYEE", "EMP_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList("DEPT.DEPT_NO=EMPLOYEE.EMP_NO"));
    }

    void identicalLinkIsRefused() {
        const Keyboard on;
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links().size(), 1);
    }

    void insertInTheSameBoxBeginsAnew() {
        const Keyboard on;
        on.goTo("EMPLOYEE", "EMP_NO");
        on.press(Qt::Key_Insert);
        on.press(Qt::Key_End);
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList("EMPLOYEE.DEPT_NO=DEPT.DEPT_NO"));
    }

    void insertWithoutACurrentRowBeginsAtTheFirstOne() {
        const Keyboard on;
        on.goTo("EMPLOYEE");
        QVERIFY(!on.table("EMPLOYEE")->CurrentItem);
        on.press(Qt::Key_Insert);
        QCOMPARE(on.table("EMPLOYEE")->CurrentItem->Name, "EMP_NO");
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList("EMPLOYEE.EMP_NO=DEPT.DEPT_NO"));
    }

    void begunLinkIsSeen() {
        const Keyboard on;
        on.goTo("DEPT", "DEPT_NO");
        on.goTo("EMPLOYEE", "DEPT_NO");
        const QImage without = on.picture();
        on.press(Qt::Key_Insert);
        const QImage begun = on.picture();
        QVERIFY(begun != without);
        on.press(Qt::Key_Escape);
        QCOMPARE(on.picture(), without);

        on.press(Qt::Key_Insert);
        on.goTo("DEPT");
        const QImage reaching = on.picture();
        on.press(Qt::Key_Escape);
        QVERIFY(on.picture() != reaching);
    }

    void begunLinkEndsWithItsBox() {
        Keyboard on;
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        on.press(Qt::Key_Delete);
        on.goTo("DEPT", "DEPT_NO");
        const QImage without = on.picture();
        on.press(Qt::Key_Escape);
        QVERIFY2(!on.window.isVisible(), "nothing is going on: the dialog has the key");
        on.window.show();
        on.area().setFocus();
        QCOMPARE(on.picture(), without);
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
    }

    void begunLinkEndsWhenAllGoes() {
        Keyboard on;
        on.goTo("EMPLOYEE", "DEPT_NO");
        on.press(Qt::Key_Insert);
        on.builder.Clear();
        on.addTable("DEPT");
        on.goTo("DEPT", "DEPT_NO");
        on.press(Qt::Key_Insert);
        QCOMPARE(on.links(), QStringList());
    }

    // --- a link

    void deleteAsksBeforeTheLinkGoes() {
        RecordedServices services;
        const Keyboard on;
        on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.nextLink();
        services.answer = orv::MessageAnswer::No;
        on.press(Qt::Key_Delete);
        QCoreApplication::processEvents();
        QCOMPARE(services.messages.size(), 1);
        QCOMPARE(on.links().size(), 1);
        services.answer = orv::MessageAnswer::Yes;
        on.press(Qt::Key_Delete);
        QCoreApplication::processEvents();
        QCOMPARE(services.messages.size(), 2);
        QCOMPARE(on.links(), QStringList());
        QVERIFY(!on.area().selectedObject());
    }

    void enterSpaceAndF2ShowTheProperties() {
        RecordedServices services;
        const Keyboard on;
        const TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.nextLink();
        int shown = 0;
        services.onDialog = [&](QDialog& dialog) {
            ++shown;
            dialog.findChild<QComboBox*>()->setCurrentIndex(shown);
            for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
                if (button->isDefault()) button->click();
            }
            return int(QDialog::Accepted);
        };
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_F2}) {
            on.press(key);
            QCOMPARE(link->Operator, shown);
        }
        QCOMPARE(shown, 3);
    }

    void keysInsertChooseMoveAndDeleteBends() {
        const Keyboard on;
        on.table("DEPT")->MoveTable(300, 100);
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        on.nextLink();
        const QPoint middle = (link->points()[1] + link->points()[2]) / 2;
        on.press(Qt::Key_Insert);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>{middle});
        QCOMPARE(link->chosenBend(), 2);

        on.press(Qt::Key_Up, Qt::ControlModifier);
        on.press(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
        const QPoint moved = middle + QPoint(1, -10);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>{moved});

        on.press(Qt::Key_Insert);
        QCOMPARE(link->bendPoints().size(), std::size_t(2));
        const std::vector<QPoint> two = link->bendPoints();
        const int added = link->chosenBend();
        QVERIFY(link->points()[std::size_t(added)] != moved);
        on.press(Qt::Key_Right);
        on.press(Qt::Key_Right);
        QCOMPARE(link->chosenBend(), 3);
        on.press(Qt::Key_Left);
        QCOMPARE(link->chosenBend(), 2);

        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>{two[1]});
        QCOMPARE(link->chosenBend(), 2);
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>());
        QCOMPARE(link->chosenBend(), -1);
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(on.links().size(), 1);
    }

    void theChosenBendIsTheOneThatIsDeleted() {
        const Keyboard on;
        on.table("DEPT")->MoveTable(300, 100);
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        link->setBendPoints({{300, 200}, {302, 201}});
        on.nextLink();
        on.press(Qt::Key_Left);
        QCOMPARE(link->chosenBend(), 3);
        on.press(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(link->bendPoints(), std::vector<QPoint>{QPoint(300, 200)});
    }

    void chosenBendIsSeen() {
        const Keyboard on;
        on.table("DEPT")->MoveTable(300, 100);
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        link->setBendPoints({{300, 200}, {360, 220}});
        on.nextLink();
        const QImage none = on.picture();
        on.press(Qt::Key_Right);
        QCOMPARE(link->chosenBend(), 2);
        const QImage first = on.picture();
        on.press(Qt::Key_Right);
        const QImage second = on.picture();
        QVERIFY(none != first);
        QVERIFY(first != second);
        // A white ring in the place of the dot, and nothing else.
        QCOMPARE(none.pixelColor(300, 200), QColor(Qt::black));
        QCOMPARE(first.pixelColor(300, 200), QColor(Qt::white));
        QCOMPARE(first.pixelColor(304, 200), QColor(Qt::black));
        QImage beside = first;
        for (int y = 196; y <= 204; ++y) {
            for (int x = 296; x <= 304; ++x) beside.setPixelColor(x, y, none.pixelColor(x, y));
        }
        QCOMPARE(beside, none);
        on.nextTable();
        QCOMPARE(on.picture().pixelColor(300, 200), QColor(Qt::black));
        QCOMPARE(on.picture().pixelColor(360, 220), QColor(Qt::black));
    }

    void chosenBendComesIntoView() {
        const Keyboard on;
        TorvQDLink* link = on.addLink("EMPLOYEE", "DEPT_NO", "DEPT", "DEPT_NO");
        link->setBendPoints({{200, 100}, {2000, 1500}});
        on.nextLink();
        on.press(Qt::Key_Left);
        QCOMPARE(link->chosenBend(), 3);
        QVERIFY(on.sees({1995, 1495, 2005, 1505}));
        on.press(Qt::Key_Left);
        QVERIFY(on.sees({195, 95, 205, 105}));
    }
};

QTEST_MAIN(LinkKeysTest)
#include "tst_linkkeys.moc"
