// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "querybuilder/ORVQDOpersEditor.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"
#include "window/KeptOperators.h"
#include "window/MainWindow.h"

#include <QAction>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSettings>

#include <functional>

using namespace orvquery;

namespace {

QSettings settings() {
    return QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery"));
}

QStringList defaultOperators() {
    TOperatorList list;
    orv::fillOperators(list);
    return list.toStrings();
}

QStringList operatorsOf(const MainWindow& window) {
    return window.findChild<TorvQueryBuilder*>()->OperatorsList();
}

void choose(const MainWindow& window, const QString& item) {
    for (const QAction* menu : window.menuBar()->actions()) {
        for (QAction* action : menu->menu()->actions()) {
            if (action->text().remove(u'&') == item) action->trigger();
        }
    }
}

void deleteTheFirst(TorvQDOperatorsPropertyDlg& dialog) {
    dialog.lbOperators->setCurrentRow(0);
    dialog.btnDelete->click();
    dialog.btnOK->click();
}

}  // namespace

class TestOperators : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        settings().clear();
        m_errors.clear();
        m_dialogs = 0;
        orv::setErrorHandler([this](const QString& text) { m_errors << text; });
    }
    void cleanup() {
        orv::setErrorHandler({});
        orv::setDialogRunner({});
        settings().clear();
    }

    void operatorsAreEditedAndRemembered() {
        {
            MainWindow window;
            QCOMPARE(operatorsOf(window), defaultOperators());
            answer(deleteTheFirst);
            choose(window, "Operators...");
            QCOMPARE(m_dialogs, 1);
            QCOMPARE(operatorsOf(window), defaultOperators().mid(6));
        }
        const MainWindow next;
        QCOMPARE(operatorsOf(next), defaultOperators().mid(6));
        QCOMPARE(m_errors, QStringList());
    }

    void cancelledEditIsNotRemembered() {
        MainWindow window;
        answer([](TorvQDOperatorsPropertyDlg& dialog) {
            dialog.lbOperators->setCurrentRow(0);
            dialog.btnDelete->click();
            dialog.btnCancel->click();
        });
        choose(window, "Operators...");
        QCOMPARE(operatorsOf(window), defaultOperators());
        QVERIFY(!settings().contains("operators"));
    }

    void defaultOperatorsAreNotKept() {
        MainWindow window;
        answer(deleteTheFirst);
        choose(window, "Operators...");
        QVERIFY(settings().contains("operators"));
        choose(window, "Restore default operators");
        QCOMPARE(operatorsOf(window), defaultOperators());
        QVERIFY(!settings().contains("operators"));
    }

    void damagedOperatorsAreLeftAside_data() {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("damage");
        QTest::newRow("no count") << QVariant(QStringList({"=", "=", "", "", "", "one"}))
                                  << "the count of operator 1 is no number";
        QTest::newRow("cut") << QVariant(defaultOperators().mid(0, 9))
                             << "it breaks off at operator 2";
        QTest::newRow("a text") << QVariant("=") << "it breaks off at operator 1";
    }
    void damagedOperatorsAreLeftAside() {
        QFETCH(QVariant, stored);
        QFETCH(QString, damage);
        settings().setValue("operators", stored);
        const MainWindow window;
        QCOMPARE(operatorsOf(window), defaultOperators());
        QCOMPARE(m_errors, QStringList("The operators of the last session are not used.\n"
                                       "The stored operator list is damaged: " +
                                       damage));
    }

    void restoringDefaultsKeepsWhatIsTheUsersOwn() {
        TorvQueryBuilder builder;
        builder.setOperatorsList({"SOUNDS LIKE", "sounds like", "", "", "", "1",  //
                                  "IN", "one of", "", "[", "]", "7"});
        restoreDefaultOperators(builder);
        QCOMPARE(builder.OperatorsList(),
                 defaultOperators() + QStringList({"SOUNDS LIKE", "sounds like", "", "", "", "1"}));
        restoreDefaultOperators(builder);
        QCOMPARE(builder.Operators->Count(), 15);
    }

    void everyTextComesBack() {
        const QStringList texts = {"=",
                                   "a, b",
                                   " \"x\" ",
                                   "\\n",
                                   QString(),
                                   "-5",
                                   "",
                                   "@Invalid()",
                                   "\n",
                                   "%1",
                                   QString(QChar(0xe9)),
                                   "0"};
        TorvQueryBuilder builder;
        builder.setOperatorsList(texts);
        keepOperators(builder);
        TorvQueryBuilder next;
        restoreOperators(next);
        QCOMPARE(next.OperatorsList(), texts);
        QCOMPARE(m_errors, QStringList());
    }

private:
    /// Lets the user do that at the next dialogs.
    void answer(const std::function<void(TorvQDOperatorsPropertyDlg&)>& user) {
        orv::setDialogRunner([this, user](QDialog& dialog) {
            ++m_dialogs;
            dialog.show();
            user(dynamic_cast<TorvQDOperatorsPropertyDlg&>(dialog));
            return dialog.result();
        });
    }

    QStringList m_errors;
    int m_dialogs = 0;
};

QTEST_MAIN(TestOperators)
#include "tst_app_operators.moc"
