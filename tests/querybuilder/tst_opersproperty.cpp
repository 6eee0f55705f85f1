// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDOperatorsProperty.h"
#include "querybuilder/OpersForm.h"

#include <QPointer>
#include <QTimer>

namespace {

/// The property editor over a list of its own, and what it was told to write.
struct Edited {
    Edited() {
        list = std::make_unique<TOperatorList>();
        orv::fillSmallOperators(*list);
    }

    /// Opens the dialog, lets the user do that, and returns what Edit tells.
    bool edit(const std::function<void(TorvQDOperatorsPropertyDlg&)>& user) {
        services.onDialog = [&](QDialog& shown) {
            dialog = qobject_cast<TorvQDOperatorsPropertyDlg*>(&shown);
            const orvtest::OpersUser atDialog(*dialog);
            user(*dialog);
            return dialog ? dialog->result() : int(QDialog::Rejected);
        };
        return TOperatorsListProperty().Edit(
            *list, "query.Operators", &parent,
            [this](const TOperatorList& edited) { written << edited.toStrings().join('|'); });
    }

    orvtest::RecordedServices services;
    QWidget parent;
    std::unique_ptr<TOperatorList> list;
    QPointer<TorvQDOperatorsPropertyDlg> dialog;
    QStringList written;
};

void deleteAllButTheFirst(TorvQDOperatorsPropertyDlg& dialog) {
    while (dialog.Operators.Count() > 1) {
        dialog.lbOperators->setCurrentRow(1);
        dialog.btnDelete->click();
    }
}

}  // namespace

class OpersPropertyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void showsADialogAndNothingElse() {
        const TOperatorsListProperty property;
        QVERIFY(property.GetAttributes() == TPropertyAttributes(paDialog));
        QVERIFY(!property.GetAttributes().testFlag(paValueList));
        QVERIFY(!property.GetAttributes().testFlag(paSubProperties));
        QCOMPARE(property.GetValue(), "(TOperatorList)");
        QCOMPARE(TOperatorsListProperty::nameOfItem("query"), "query.Operators");
    }

    void okWritesTheEditedList() {
        Edited on;
        QVERIFY(on.edit([](TorvQDOperatorsPropertyDlg& dialog) {
            deleteAllButTheFirst(dialog);
            dialog.btnOK->click();
        }));
        QCOMPARE(on.written, QStringList("=|=||||1"));
        QCOMPARE(on.list->Count(), 6);
        QCOMPARE(on.services.dialogs, QStringList("Operator properties - query.Operators"));
        QVERIFY(!on.dialog);
    }

    void cancelWritesNothing() {
        Edited on;
        QVERIFY(!on.edit([](TorvQDOperatorsPropertyDlg& dialog) {
            deleteAllButTheFirst(dialog);
            dialog.btnCancel->click();
        }));
        QCOMPARE(on.written, QStringList());
        QCOMPARE(on.list->Count(), 6);
        QVERIFY(!on.dialog);
    }

    void listIsACopyWhileItIsEdited() {
        Edited on;
        QVERIFY(on.edit([&](TorvQDOperatorsPropertyDlg& dialog) {
            QCOMPARE(dialog.Operators.toStrings(), on.list->toStrings());
            dialog.Operators.Items(0)->Name = "changed";
            QCOMPARE(on.list->Items(0)->Name, "=");
            dialog.btnOK->click();
        }));
        QVERIFY(on.written.value(0).startsWith("changed|"));
    }

    void everyEditIsAllowed() {
        Edited on;
        QVERIFY(!on.edit([](TorvQDOperatorsPropertyDlg& dialog) {
            QVERIFY(dialog.restrictions().isEmpty());
            QVERIFY(dialog.btnAdd->isVisible());
            QVERIFY(dialog.btnDelete->isVisible());
            dialog.lbOperators->setCurrentRow(0);
            QVERIFY(dialog.ebName->isEnabled());
            QVERIFY(dialog.ebCount->isEnabled());
        }));
    }

    void dialogLiesAboveItsParent() {
        Edited on;
        QVERIFY(!on.edit([&](TorvQDOperatorsPropertyDlg& dialog) {
            QCOMPARE(dialog.parentWidget(), &on.parent);
            QVERIFY(dialog.isWindow());
        }));
    }

    void withoutAnItemTheCaptionIsPlain() {
        Edited on;
        QVERIFY(!orv::editOperators(*on.list, {}, {}, nullptr));
        QCOMPARE(on.services.dialogs, QStringList("Operator properties"));
    }

    void listMayDieWhileItIsEdited() {
        Edited on;
        QVERIFY(on.edit([&](TorvQDOperatorsPropertyDlg& dialog) {
            on.list.reset();
            deleteAllButTheFirst(dialog);
            dialog.btnOK->click();
        }));
        QCOMPARE(on.written, QStringList("=|=||||1"));
    }

    void dialogMayDieWhileItIsOpen() {
        Edited on;
        QVERIFY(!on.edit([](TorvQDOperatorsPropertyDlg& dialog) { delete &dialog; }));
        QCOMPARE(on.written, QStringList());
    }

    void parentMayDieInTheLoopOfTheDialog() {
        orv::setDialogRunner({});
        auto* parent = new QWidget;
        TOperatorList list;
        QTimer::singleShot(0, parent, [parent] { delete parent; });
        QVERIFY(!orv::editOperators(list, {}, {}, parent));
    }

    void okEndsTheLoopOfTheDialog() {
        orv::setDialogRunner({});
        TOperatorList list;
        orv::fillSmallOperators(list);
        QTimer::singleShot(0, this, [] {
            auto* dialog =
                qobject_cast<TorvQDOperatorsPropertyDlg*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            deleteAllButTheFirst(*dialog);
            QTest::keyClick(dialog, Qt::Key_Return);
        });
        const std::unique_ptr<TOperatorList> edited = orv::editOperators(list, {}, {}, nullptr);
        QVERIFY(edited);
        QCOMPARE(edited->toStrings(), QStringList({"=", "=", "", "", "", "1"}));
    }

    void whatTheWriterRaisesPassesThrough() {
        Edited on;
        on.services.onDialog = [&](QDialog& shown) {
            on.dialog = static_cast<TorvQDOperatorsPropertyDlg*>(&shown);
            return int(QDialog::Accepted);
        };
        const auto raise = [](const TOperatorList&) { throw orv::Error("read only"); };
        QCOMPARE(
            orvtest::errorOf([&] { TOperatorsListProperty().Edit(*on.list, "", nullptr, raise); }),
            "read only");
        QVERIFY(!on.dialog);
    }

    void withoutAWriterNothingHappens() {
        Edited on;
        on.services.onDialog = [](QDialog&) { return int(QDialog::Accepted); };
        QVERIFY(TOperatorsListProperty().Edit(*on.list, "", nullptr, {}));
    }
};

QTEST_MAIN(OpersPropertyTest)
#include "tst_opersproperty.moc"
