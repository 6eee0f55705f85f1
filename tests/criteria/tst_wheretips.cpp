// SPDX-License-Identifier: MIT
#include "criteria/ShownConditions.h"

#include <QHelpEvent>
#include <QTextDocumentFragment>
#include <QToolTip>

using orvtest::ShownConditions;

namespace {

// The window of the last tool tip goes away after a while only.
void forgetTips() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "qtooltip_label") delete window;
    }
}

/// What the tool tip of a place in the view says; empty without one.
QString tipAt(const ShownConditions& on, const QPoint& point) {
    forgetTips();
    QHelpEvent event(QEvent::ToolTip, point, on.view()->mapToGlobal(point));
    QCoreApplication::sendEvent(on.view(), &event);
    QString tip = QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText();
    return tip.replace(QChar::Nbsp, u' ');
}
QString tipAt(const ShownConditions& on, const QString& number, int kind) {
    return tipAt(on, on.at(number, kind));
}

}  // namespace

class WhereTipsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }
    void cleanup() { forgetTips(); }

    void cutTextsAreShownInFull() {
        const QString text = "'" + QString(40, u'i') + "'";
        const ShownConditions on("t.a = " + text + " and t.b = 'short'");
        QCOMPARE(on.row("1.")->Arguments, QStringList(text));
        QCOMPARE(tipAt(on, "1.", 5), text);
        QCOMPARE(tipAt(on, "2.", 5), "");
        QCOMPARE(tipAt(on, "1.", 2), "");
        QCOMPARE(tipAt(on, "1.", 0), "");
    }

    void textsAreNoMarkup() {
        const QString text = "'<b>bold</b> &amp; " + QString(30, u'i') + "'";
        const ShownConditions on("t.a = " + text);
        QCOMPARE(tipAt(on, "1.", 5), text);
    }

    void groupsShowTheirSql() {
        const ShownConditions on("t.c = 3 and not (t.a = 1 or t.b = 2)");
        QCOMPARE(tipAt(on, "2.", 1), "not((T.A = 1) or (T.B = 2))");
        QCOMPARE(tipAt(on, "", 1), "((T.C = 3) and not((T.A = 1) or (T.B = 2)))");
        on.row("2.")->SetExpanded(false);
        QCOMPARE(tipAt(on, "2.", 1), "not((T.A = 1) or (T.B = 2))");
    }

    void longConditionsAreCut() {
        QStringList many;
        for (int index = 0; index < 500; ++index) many << "t.a = " + QString::number(index);
        const ShownConditions on(many.join(" and "));
        const QString tip = tipAt(on, "", 1);
        QVERIFY(tip.endsWith("..."));
        QVERIFY(tip.size() > 1000 && tip.size() < 3000);
    }

    void problemsAreTold() {
        const ShownConditions on("t.nope = 1");
        on.root()->SubRows->AddRow();
        on.root()->SubRows->AddRow()->SetGroupOper("Any");
        on.panel->refreshView();
        QCOMPARE(tipAt(on, "2.", 0), "This condition is not filled in.");
        QCOMPARE(tipAt(on, "2.", 2), "A field or an expression belongs here.");
        QCOMPARE(tipAt(on, QPoint(5, on.at("2.", 0).y())), "This condition is not filled in.");
        QCOMPARE(tipAt(on, "3.", 0), "This group has no conditions.");
        QCOMPARE(tipAt(on, "", 0), "");
        QVERIFY(tipAt(on, "1.", 2).contains("NOPE"));
        QCOMPARE(tipAt(on, QPoint(50, 200)), "");
    }

    void scrolledRowsHaveTheirOwnTips() {
        QStringList many;
        for (int index = 0; index < 60; ++index) many << "t.a = " + QString::number(index);
        const ShownConditions on(many.join(" and "));
        on.root()->SubRows->Row(40)->FieldName = "T.GONE";
        on.panel->verticalScrollBar()->setValue(700);
        QVERIFY(tipAt(on, "41.", 2).contains("GONE"));
        QCOMPARE(tipAt(on, "42.", 2), "");
    }
};

QTEST_MAIN(WhereTipsTest)
#include "tst_wheretips.moc"
