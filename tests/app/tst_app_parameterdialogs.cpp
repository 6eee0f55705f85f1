// SPDX-License-Identifier: MIT
#include "ParameterDesk.h"
#include "data/SqlText.h"
#include "window/ParameterDialog.h"
#include "window/PlaceholderDialog.h"

#include <QDialogButtonBox>
#include <QScrollBar>

using namespace apptest;
using namespace orvquery;

namespace {

const QVariant sqlNull = QVariant::fromValue(nullptr);

}  // namespace

// The dialogs for parameters and placeholders, without the window, by mouse and keys.
class TestParameterDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }
    void init() { orvtest::failOnAnyWarning(); }

    void valueIsTyped();
    void wrongTextIsToldInPlace();
    void sqlStandsForValue();
    void wrongSqlIsToldInPlace();
    void untouchedDialogChangesNothing_data();
    void untouchedDialogChangesNothing();
    void typingReplacesUnset();
    void momentIsTextWithBlank();
    void nullAndBack();
    void typingMeansValue();
    void typingBehindChoiceGoesToField();
    void longValueStays();
    void everyWidgetHasName();
    void allPlaceholdersAreAskedFor();
    void placeholdersBeginWithAnswers();
    void sharedPlaceholderNamesItsTakers();
    void hundredsOfPlaceholdersScroll();
    void problemsNeedNoScrolling();
};

void TestParameterDialogs::valueIsTyped() {
    ParameterDialog dialog({"SERIES", "LOW", ftInteger, ":LOW"}, {});
    activate(dialog);
    QCOMPARE(childOf<QLabel>(dialog, "subject")->text(),
             QStringLiteral("Parameter LOW (Integer) of SERIES"));
    auto* field = childOf<QLineEdit>(dialog, "value");
    QVERIFY(field->hasFocus() || dialog.focusWidget() == field);
    QCOMPARE(dialog.value(), QVariant());
    QTest::keyClicks(field, "42");
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.value(), QVariant(42LL));
}

void TestParameterDialogs::wrongTextIsToldInPlace() {
    ParameterDialog dialog({"SERIES", "LOW", ftInteger, ":LOW"}, 7);
    activate(dialog);
    auto* field = childOf<QLineEdit>(dialog, "value");
    auto* problem = childOf<QLabel>(dialog, "problem");
    auto* ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    QCOMPARE(field->text(), QStringLiteral("7"));
    QVERIFY(ok->isEnabled());
    QTest::keyClicks(field, "4x");
    QCOMPARE(problem->text(), QStringLiteral("A whole number is expected, such as 42."));
    QVERIFY(!ok->isEnabled());
    QTest::keyClick(field, Qt::Key_Return);
    QVERIFY(dialog.isVisible());
    // Nothing is wrong with it when it does not count.
    clickOn(*childOf<QRadioButton>(dialog, "asNull"));
    QCOMPARE(problem->text(), QString());
    QVERIFY(ok->isEnabled());
    clickOn(*childOf<QRadioButton>(dialog, "asValue"));
    QTest::keyClick(field, Qt::Key_Backspace);
    QCOMPARE(problem->text(), QString());
    QVERIFY(ok->isEnabled());
    field->clear();
    QCOMPARE(problem->text(), QString());
    QVERIFY(!ok->isEnabled());
    QTest::keyClick(field, Qt::Key_Escape);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
}

void TestParameterDialogs::sqlStandsForValue() {
    ParameterDialog dialog({"JSON_EACH", "JSON", ftString, ":JSON"}, {});
    activate(dialog);
    QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), " ORDERS.DATA ");
    choose(dialog, "asSql", Qt::Key_S);
    QCOMPARE(dialog.value(), QVariant::fromValue(orv::SqlText{QStringLiteral("ORDERS.DATA")}));
    ParameterDialog again({"JSON_EACH", "JSON", ftString, ":JSON"}, dialog.value());
    QVERIFY(childOf<QRadioButton>(again, "asSql")->isChecked());
    QCOMPARE(childOf<QLineEdit>(again, "value")->text(), QStringLiteral("ORDERS.DATA"));
    QCOMPARE(again.value(), dialog.value());
}

// It would shift the arguments behind it, or break the statement.
void TestParameterDialogs::wrongSqlIsToldInPlace() {
    ParameterDialog dialog({"P", "X", ftInteger, ":X"}, {});
    activate(dialog);
    auto* field = childOf<QLineEdit>(dialog, "value");
    auto* ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    choose(dialog, "asSql", Qt::Key_S);
    const auto problemOf = [&](const char* text) {
        field->selectAll();
        QTest::keyClicks(field, QLatin1String(text));
        const auto* label = childOf<QLabel>(dialog, "problem");
        const QString problem = label->text();
        QCoreApplication::processEvents();
        if (label->height() < label->heightForWidth(label->width())) {
            return QStringLiteral("(cut off)");
        }
        return problem.isEmpty() == ok->isEnabled() ? problem : QStringLiteral("(OK differs)");
    };
    QCOMPARE(problemOf("1, 2"),
             QStringLiteral("A comma outside brackets makes more than one argument of this."));
    QCOMPARE(problemOf("T.A -- c"), QStringLiteral("An argument has no comments."));
    QCOMPARE(problemOf("("), QStringLiteral("The brackets do not match."));
    QCOMPARE(problemOf("it's"), QStringLiteral("A quote is not closed."));
    QVERIFY(problemOf("?").contains(QStringLiteral(":NAME")));
    QCOMPARE(problemOf("COALESCE(T.A, 0)"), QString());
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(dialog.value(), QVariant::fromValue(orv::SqlText{QStringLiteral("COALESCE(T.A, 0)")}));
}

void TestParameterDialogs::untouchedDialogChangesNothing_data() {
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("choice");
    const auto sql = [](const char* text) {
        return QVariant::fromValue(orv::SqlText{QString::fromLatin1(text)});
    };
    QTest::newRow("unset") << QVariant() << "unset";
    QTest::newRow("null") << sqlNull << "asNull";
    QTest::newRow("text") << QVariant("Rome") << "asValue";
    QTest::newRow("no text") << QVariant("") << "asValue";
    QTest::newRow("SQL") << sql("T.A") << "asSql";
    QTest::newRow("other placeholder") << sql(":OTHER") << "asSql";
    QTest::newRow("SQL of two lines") << sql("T.A\n+ 1") << "asSql";
    QTest::newRow("left out") << sql("") << "asSql";
}

void TestParameterDialogs::untouchedDialogChangesNothing() {
    QFETCH(QVariant, value);
    QFETCH(QString, choice);
    ParameterDialog dialog({"P", "X", ftString, ":X"}, value);
    activate(dialog);
    QVERIFY(dialog.findChild<QRadioButton*>(choice)->isChecked());
    QCOMPARE(dialog.focusWidget(), childOf<QLineEdit>(dialog, "value"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.value().isValid(), value.isValid());
    QCOMPARE(dialog.value(), value);
}

void TestParameterDialogs::typingReplacesUnset() {
    ParameterDialog dialog({"P", "X", ftString, ":X"}, {});
    activate(dialog);
    QTest::keyClicks(dialog.focusWidget(), "a");
    QVERIFY(childOf<QRadioButton>(dialog, "asValue")->isChecked());
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    QCOMPARE(dialog.value(), QVariant("a"));
}

// With a "T" between date and time Firebird refuses it, and SQLite compares it wrongly.
void TestParameterDialogs::momentIsTextWithBlank() {
    ParameterDialog dialog({"P", "X", ftDateTime, ":X"}, {});
    activate(dialog);
    QTest::keyClicks(dialog.focusWidget(), "2024-01-02T03:04");
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    QCOMPARE(dialog.value(), QVariant("2024-01-02 03:04:00"));
    ParameterDialog again({"P", "X", ftDateTime, ":X"}, dialog.value());
    QVERIFY(childOf<QRadioButton>(again, "asValue")->isChecked());
    QCOMPARE(childOf<QLineEdit>(again, "value")->text(), QStringLiteral("2024-01-02 03:04:00"));
}

void TestParameterDialogs::nullAndBack() {
    ParameterDialog dialog({"P", "X", ftDate, ":X"}, QDate(2024, 1, 31));
    activate(dialog);
    choose(dialog, "asNull", Qt::Key_N);
    QVERIFY(dialog.value().isValid());
    QVERIFY(dialog.value().isNull());
    choose(dialog, "unset", Qt::Key_T);
    QVERIFY(!dialog.value().isValid());
    QVERIFY(childOf<QRadioButton>(dialog, "unset")->text().contains(QStringLiteral(":X")));
    choose(dialog, "asValue", Qt::Key_V);
    QCOMPARE(dialog.value(), QVariant(QDate(2024, 1, 31)));
    ParameterDialog null({"P", "X", ftDate, ":X"}, sqlNull);
    QVERIFY(childOf<QRadioButton>(null, "asNull")->isChecked());
    QCOMPARE(childOf<QLineEdit>(null, "value")->text(), QString());
}

void TestParameterDialogs::typingMeansValue() {
    ParameterDialog dialog({"P", "X", ftFloat, ":X"}, sqlNull);
    activate(dialog);
    QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "1,5");
    QVERIFY(childOf<QRadioButton>(dialog, "asValue")->isChecked());
    QCOMPARE(dialog.value(), QVariant(1.5));
}

void TestParameterDialogs::typingBehindChoiceGoesToField() {
    ParameterDialog dialog({"P", "X", ftInteger, ":X"}, {});
    activate(dialog);
    auto* sql = childOf<QRadioButton>(dialog, "asSql");
    sql->setFocus();
    QTest::keyClick(sql, Qt::Key_Space);
    QVERIFY(sql->isChecked());
    QTest::keyClick(sql, Qt::Key_A);
    auto* field = childOf<QLineEdit>(dialog, "value");
    QCOMPARE(dialog.focusWidget(), field);
    QCOMPARE(field->text(), QStringLiteral("a"));
    QVERIFY(sql->isChecked());
}

// Whoever only looks changes nothing, also where the field cannot show all of it.
void TestParameterDialogs::longValueStays() {
    const QVariant value = QStringLiteral("[1,\n 2]");
    ParameterDialog dialog({"P", "X", ftMemo, ":X"}, value);
    activate(dialog);
    choose(dialog, "asNull", Qt::Key_N);
    choose(dialog, "asValue", Qt::Key_V);
    QCOMPARE(dialog.value(), value);
}

void TestParameterDialogs::everyWidgetHasName() {
    const ParameterDialog dialog({"P", "X", ftInteger, ":X"}, {});
    QCOMPARE(childOf<QLineEdit>(dialog, "value")->accessibleName(), QStringLiteral("Value of X"));
    const PlaceholderDialog all({{"X", ftInteger}, {"Y"}}, {});
    QCOMPARE(childOf<QLineEdit>(all, "X")->accessibleName(), QStringLiteral(":X (Integer)"));
    QCOMPARE(childOf<QLineEdit>(all, "Y")->accessibleName(), QStringLiteral(":Y"));
    QCOMPARE(childOf<QCheckBox>(all, "null Y")->accessibleName(), QStringLiteral(":Y is NULL"));
}

void TestParameterDialogs::allPlaceholdersAreAskedFor() {
    PlaceholderDialog dialog({{"A", ftInteger}, {"B", ftDate}, {"C"}}, {});
    activate(dialog);
    auto* run = childOf<QPushButton>(dialog, "run");
    QVERIFY(!run->isEnabled());
    // By keys alone, from field to field.
    QCOMPARE(dialog.focusWidget(), childOf<QLineEdit>(dialog, "A"));
    QTest::keyClicks(dialog.focusWidget(), "x");
    QVERIFY(childOf<QLabel>(dialog, "problem A")->isVisible());
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Backspace);
    QTest::keyClicks(dialog.focusWidget(), "5");
    QVERIFY(!childOf<QLabel>(dialog, "problem A")->isVisible());
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QCOMPARE(dialog.focusWidget(), childOf<QCheckBox>(dialog, "null A"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QCOMPARE(dialog.focusWidget(), childOf<QLineEdit>(dialog, "B"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Space);
    QVERIFY(run->isEnabled());
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QTest::keyClicks(dialog.focusWidget(), "it's");
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    const PlaceholderValues values = dialog.values();
    QCOMPARE(values.value("A"), QVariant(5LL));
    QVERIFY(values.contains("B") && values.value("B").isNull());
    QCOMPARE(values.value("C"), QVariant("it's"));
}

void TestParameterDialogs::placeholdersBeginWithAnswers() {
    const std::vector<ParameterDescription> parameters = {
        {"A", ftString, sqlNull}, {"B", ftString, "$"}, {"C", ftInteger, 3}, {"D"}};
    const PlaceholderDialog first(parameters, {});
    QVERIFY(childOf<QCheckBox>(first, "null A")->isChecked());
    QCOMPARE(childOf<QLineEdit>(first, "B")->text(), QStringLiteral("$"));
    QCOMPARE(childOf<QLineEdit>(first, "C")->text(), QStringLiteral("3"));
    const PlaceholderDialog next(parameters, {{"A", {"x", false}}, {"C", {"3", true}}});
    QVERIFY(!childOf<QCheckBox>(next, "null A")->isChecked());
    QCOMPARE(childOf<QLineEdit>(next, "A")->text(), QStringLiteral("x"));
    QVERIFY(next.values().value("C").isNull());
    // No text is a text, too.
    QCOMPARE(next.values().value("D"), QVariant(QString("")));
    QVERIFY(!next.values().value("D").isNull());
}

void TestParameterDialogs::sharedPlaceholderNamesItsTakers() {
    PlaceholderDialog dialog(
        {{"X", ftInteger, {}, {"X of P", "X of Q"}}, {"Y", ftInteger, {}, {"Y of P"}}}, {});
    activate(dialog);
    auto* takers = childOf<QLabel>(dialog, "takers X");
    QVERIFY(takers != nullptr && takers->isVisible());
    QCOMPARE(takers->text(), QStringLiteral("For X of P, X of Q"));
    QCOMPARE(childOf<QLineEdit>(dialog, "X")->accessibleDescription(), takers->text());
    QVERIFY(childOf<QLabel>(dialog, "takers Y") == nullptr);
}

void TestParameterDialogs::hundredsOfPlaceholdersScroll() {
    std::vector<ParameterDescription> parameters;
    parameters.reserve(200);
    for (int number = 0; number < 200; ++number) {
        parameters.push_back({QStringLiteral("P%1").arg(number), ftString});
    }
    PlaceholderDialog dialog(parameters, {});
    activate(dialog);
    QVERIFY(dialog.height() <= dialog.screen()->availableGeometry().height());
    QVERIFY(childOf<QPushButton>(dialog, "run")->isVisible());
    QCOMPARE(dialog.values().size(), 200);
}

void TestParameterDialogs::problemsNeedNoScrolling() {
    PlaceholderDialog dialog({{"FROM_DAY", ftDate}}, {});
    activate(dialog);
    QTest::keyClicks(childOf<QLineEdit>(dialog, "FROM_DAY"), "31.12.2024");
    QCoreApplication::processEvents();
    const auto* problem = childOf<QLabel>(dialog, "problem FROM_DAY");
    QVERIFY(!problem->text().isEmpty());
    QCOMPARE(problem->visibleRegion().boundingRect(), problem->rect());
    for (const QScrollBar* bar : dialog.findChildren<QScrollBar*>()) QVERIFY(!bar->isVisible());
}

QTEST_MAIN(TestParameterDialogs)
#include "tst_app_parameterdialogs.moc"
