// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "FirebirdTestTools.h"
#include "data/SqlText.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"
#include "window/MainWindow.h"
#include "window/ParameterDialog.h"
#include "window/PlaceholderDialog.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDSProc.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

using namespace orvquery;

namespace {

const QVariant sqlNull = QVariant::fromValue(nullptr);

// Only the active window has shortcuts.
void activate(QWidget& window) {
    window.show();
    window.activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), &window);
}

template <typename Widget>
Widget* childOf(const QWidget& parent, const char* name) {
    return parent.findChild<Widget*>(QLatin1String(name));
}

// By its letter; a button shows for a moment that it is pressed.
void choose(QDialog& dialog, const char* name, Qt::Key letter) {
    QTest::keyClick(&dialog, letter, Qt::AltModifier);
    QTRY_VERIFY(childOf<QRadioButton>(dialog, name)->isChecked());
}

// Beside its text a wide one takes no click.
void clickOn(QAbstractButton& button) {
    QTest::mouseClick(&button, Qt::LeftButton, {}, {8, button.height() / 2});
}

}  // namespace

// Procedures in the window, from the list of tables to the rows, by mouse and keys.
class TestParameterDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

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
    void sharedPlaceholderNamesItsTakers();
    void placeholdersBeginWithAnswers();
    void hundredsOfPlaceholdersScroll();
    void problemsNeedNoScrolling();

    void functionsStandBehindTables();
    void functionFromListToRows();
    void keysReachParameters();
    void unsetParameterIsAskedFor();
    void loadedPlaceholderIsNoValue();
    void unsetParameterStaysUnset();
    void procedureBoxesShareAnswer();
    void answersAreRemembered();
    void cancelledDialogCancelsRun();
    void nullIsAnAnswer();
    void typedStatementHasPlaceholders();
    void questionMarkIsRefused();
    void boxClosedWhileDialogIsOpen();
    void diagramClearedWhileDialogIsOpen();
    void databaseChangedWhileDialogIsOpen();
    void windowGoesWhileDialogIsOpen();
    void schemaProcedureTakesValues();
    void firebirdProcedureFromListToRows();
    void firebirdProcedureTakesMoments();

private:
    template <typename Widget>
    Widget* child(const char* name) const {
        return childOf<Widget>(*m_window, name);
    }
    [[nodiscard]] TorvQueryBuilder& builder() const {
        return *m_window->findChild<TorvQueryBuilder*>();
    }
    [[nodiscard]] QString text() const { return child<QPlainTextEdit>("statement")->toPlainText(); }
    [[nodiscard]] QStringList column(int number) const;
    [[nodiscard]] QModelIndex listIndex(const QString& name) const;
    [[nodiscard]] TorvQDSProc* box() const {
        return qobject_cast<TorvQDSProc*>(builder().ListOfTables->Tables(0));
    }
    [[nodiscard]] static TorvQDListItem* rowOf(TorvQDTable& table, const char* name) {
        return table.GetFieldItem(QLatin1String(name));
    }

    void open(const QString& database);
    void doubleClickInList(const QString& name) const;
    void doubleClickRow(const char* name) const;
    void run() const;
    [[nodiscard]] bool waitForRows() const;
    // Does that with the next dialogs, one after the other, once they are shown.
    void answer(const std::function<void(QDialog& dialog)>& next);

    std::unique_ptr<MainWindow> m_window;
    QStringList m_messages;
    std::vector<std::function<void(QDialog&)>> m_answers;
    std::size_t m_answered = 0;
    QTemporaryDir m_folder;
    QString m_database;
};

void TestParameterDialogs::initTestCase() {
    QLocale::setDefault(QLocale::c());
    firebirdtest::setLockFolder(m_folder.path());
    m_database = m_folder.filePath(QStringLiteral("shop.db"));
    QVERIFY(apptest::runStatements(
        m_database, {"CREATE TABLE orders (id INTEGER PRIMARY KEY, city TEXT, total DECIMAL)",
                     "CREATE TABLE \"it's\" (a, b)",
                     "INSERT INTO orders VALUES (1, 'Rome', 10.5), (2, NULL, 3)"}));
}

void TestParameterDialogs::init() {
    QTest::failOnWarning(
        QRegularExpression(QStringLiteral("^(?!This plugin does not support propagateSizeHints)")));
    QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery")).clear();
    m_messages.clear();
    m_answers.clear();
    m_answered = 0;
    orv::setMessageService([this](const orv::MessageRequest& request) {
        m_messages += request.text;
        return orv::MessageAnswer::Ok;
    });
    // As exec() does it, but a dialog that is not expected does not wait for a person.
    orv::setDialogRunner([this](QDialog& dialog) {
        if (m_answered == m_answers.size()) return int(QDialog::Rejected);
        const auto answer = m_answers[m_answered++];
        QTimer::singleShot(0, &dialog, [answer, &dialog] {
            activate(dialog);
            answer(dialog);
        });
        return dialog.exec();
    });
    open(m_database);
}

void TestParameterDialogs::cleanup() {
    QCOMPARE(m_answered, m_answers.size());
    m_window.reset();
    orv::setMessageService({});
    orv::setDialogRunner({});
    QCOMPARE(m_messages, QStringList());
    QCOMPARE(QSqlDatabase::connectionNames(), QStringList());
}

void TestParameterDialogs::open(const QString& database) {
    m_window = std::make_unique<MainWindow>();
    activate(*m_window);
    Options options;
    options.database = database;
    m_window->begin(options);
}

void TestParameterDialogs::answer(const std::function<void(QDialog& dialog)>& next) {
    m_answers.push_back(next);
}

QStringList TestParameterDialogs::column(int number) const {
    const QAbstractItemModel* model = child<QTableView>("rows")->model();
    QStringList cells;
    for (int row = 0; row < model->rowCount(); ++row) {
        cells += model->index(row, number).data().toString();
    }
    return cells;
}

QModelIndex TestParameterDialogs::listIndex(const QString& name) const {
    const QAbstractItemModel* model = child<QAbstractItemView>("tables")->model();
    const QModelIndexList found = model->match(model->index(0, 0), Qt::DisplayRole, name, 1,
                                               Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? QModelIndex() : found.front();
}

// As a mouse does it: press, release, double click, release.
void TestParameterDialogs::doubleClickInList(const QString& name) const {
    auto* list = child<QAbstractItemView>("tables");
    list->scrollTo(listIndex(name));
    const QPoint place = list->visualRect(listIndex(name)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
}

void TestParameterDialogs::doubleClickRow(const char* name) const {
    TorvQDWorkArea* area = builder().WorkArea;
    TorvQDSProc* table = box();
    TorvQDListItem* item = rowOf(*table, name);
    table->SetFirstVisibleItem(item->GetIndex());
    const TRect rect = table->GetItemRect(item);
    const QPoint place((rect.Left + rect.Right) / 2, (rect.Top + rect.Bottom) / 2);
    QTest::mouseClick(area->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(area->viewport(), Qt::LeftButton, {}, place);
}

void TestParameterDialogs::run() const {
    activate(*m_window);
    QTest::keyClick(m_window.get(), Qt::Key_F5);
}

bool TestParameterDialogs::waitForRows() const {
    auto* stop = child<QToolButton>("stopButton");
    if (!QTest::qWaitFor([&] { return !stop->isEnabled(); }, 30000)) return false;
    if (child<QTableView>("rows")->isVisible()) return true;
    qWarning("no rows: %s", qPrintable(child<QLabel>("resultText")->text()));
    return false;
}

// --- the dialogs alone ---

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

// Whoever only looks changes nothing, also where the field cannot show all of it.
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

// --- in the window ---

void TestParameterDialogs::functionsStandBehindTables() {
    auto* list = child<QTreeView>("tables");
    const QAbstractItemModel* model = list->model();
    QCOMPARE(model->rowCount(), 3);
    const QModelIndex group = model->index(2, 0);
    QVERIFY(group.data().toString().startsWith(QStringLiteral("Functions (")));
    QVERIFY(!list->isExpanded(group));
    const QModelIndex function = listIndex(QStringLiteral("pragma_table_info"));
    QCOMPARE(function.parent(), group);
    QVERIFY(function.data(Qt::ToolTipRole)
                .toString()
                .contains(QStringLiteral("pragma_table_info(arg, schema)")));
    // Enter unfolds; a filter shows what it finds.
    list->setCurrentIndex(group);
    QTest::keyClick(list, Qt::Key_Return);
    QVERIFY(list->isExpanded(group));
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
    auto* filter = child<QLineEdit>("filter");
    QTest::keyClicks(filter, "json_e");
    QCOMPARE(model->rowCount(), 1);
    QVERIFY(list->isExpanded(model->index(0, 0)));
    QTest::keyClick(filter, Qt::Key_Return);
    QCOMPARE(builder().ListOfTables->TablesCount(), 1);
    QVERIFY(box() != nullptr);
    QTest::keyClick(filter, Qt::Key_Escape);
    QVERIFY(!list->isExpanded(model->index(2, 0)));
}

void TestParameterDialogs::functionFromListToRows() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("pragma_table_info"));
    QVERIFY(box() != nullptr);
    rowOf(*box(), "NAME")->SetCheck(true);
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "it's");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("ARG");
    QCOMPARE(text(), QStringLiteral("SELECT PRAGMA_TABLE_INFO.NAME\n"
                                    "FROM PRAGMA_TABLE_INFO('it''s', NULL)"));
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"a", "b"}));
}

void TestParameterDialogs::keysReachParameters() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("json_each"));
    rowOf(*box(), "VALUE")->SetCheck(true);
    TorvQDWorkArea* area = builder().WorkArea;
    area->setFocus();
    box()->SetCurrentItem(rowOf(*box(), "JSON"));
    answer([](QDialog& dialog) {
        QTest::keyClicks(dialog.focusWidget(), "[3, \"x\"]");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    QTest::keyClick(area, Qt::Key_Return);
    QVERIFY2(text().endsWith(QStringLiteral("JSON_EACH('[3, \"x\"]', '$')")), qPrintable(text()));
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"3", "x"}));
}

void TestParameterDialogs::unsetParameterIsAskedFor() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("pragma_table_info"));
    rowOf(*box(), "NAME")->SetCheck(true);
    answer([](QDialog& dialog) {
        clickOn(*childOf<QRadioButton>(dialog, "unset"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("SCHEMA");
    QVERIFY(text().endsWith(QStringLiteral("PRAGMA_TABLE_INFO(:ARG, :SCHEMA)")));
    answer([](QDialog& dialog) {
        // It has a default, so that nobody needs to know what it is for.
        QVERIFY(childOf<QCheckBox>(dialog, "null SCHEMA")->isChecked());
        QTest::keyClicks(childOf<QLineEdit>(dialog, "ARG"), "orders");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"id", "city", "total"}));
}

// A placeholder of another name stands in the row as a piece of SQL.
void TestParameterDialogs::loadedPlaceholderIsNoValue() {
    builder().LoadSQL("select i.name from pragma_table_info(:t, null) i");
    answer([](QDialog& dialog) {
        QCOMPARE(childOf<QLineEdit>(dialog, "T")->text(), QString());
        QTest::keyClicks(childOf<QLineEdit>(dialog, "T"), "orders");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"id", "city", "total"}));
    answer([](QDialog& dialog) {
        QCOMPARE(childOf<QLabel>(dialog, "subject")->text(),
                 QStringLiteral("Parameter ARG (String) of PRAGMA_TABLE_INFO (I)"));
        QVERIFY(childOf<QRadioButton>(dialog, "asSql")->isChecked());
        QCOMPARE(childOf<QLineEdit>(dialog, "value")->text(), QStringLiteral(":t"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("ARG");
    QVERIFY2(text().contains(QStringLiteral("PRAGMA_TABLE_INFO(:t, NULL) I")), qPrintable(text()));
    answer([](QDialog& dialog) {
        choose(dialog, "asValue", Qt::Key_V);
        childOf<QLineEdit>(dialog, "value")->selectAll();
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "it's");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("ARG");
    QVERIFY2(text().contains(QStringLiteral("PRAGMA_TABLE_INFO('it''s', NULL) I")),
             qPrintable(text()));
}

void TestParameterDialogs::unsetParameterStaysUnset() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("pragma_table_info"));
    rowOf(*box(), "NAME")->SetCheck(true);
    answer([](QDialog& dialog) { QTest::keyClick(dialog.focusWidget(), Qt::Key_Return); });
    doubleClickRow("ARG");
    QVERIFY2(text().endsWith(QStringLiteral("PRAGMA_TABLE_INFO(:ARG, NULL)")), qPrintable(text()));
}

void TestParameterDialogs::procedureBoxesShareAnswer() {
    builder().LoadSQL(
        "select a.name, b.name from pragma_table_info(:arg) a, pragma_index_list(:arg) b");
    answer([](QDialog& dialog) {
        auto* takers = childOf<QLabel>(dialog, "takers ARG");
        QVERIFY(takers != nullptr);
        QCOMPARE(takers->text(), QStringLiteral("For ARG of PRAGMA_INDEX_LIST (B), "
                                                "ARG of PRAGMA_TABLE_INFO (A)"));
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    run();
}

void TestParameterDialogs::answersAreRemembered() {
    child<QPlainTextEdit>("statement")->setPlainText("select :x, :y");
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "X"), "one");
        clickOn(*childOf<QCheckBox>(dialog, "null Y"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{"one"});
    answer([](QDialog& dialog) {
        QCOMPARE(childOf<QLineEdit>(dialog, "X")->text(), QStringLiteral("one"));
        QVERIFY(childOf<QCheckBox>(dialog, "null Y")->isChecked());
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(1), QStringList{"NULL"});
}

void TestParameterDialogs::cancelledDialogCancelsRun() {
    child<QPlainTextEdit>("statement")->setPlainText("select 'before'");
    run();
    QVERIFY(waitForRows());
    child<QPlainTextEdit>("statement")->setPlainText("select :x");
    answer([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    run();
    QVERIFY(!child<QToolButton>("stopButton")->isEnabled());
    QVERIFY(child<QTableView>("rows")->isVisible());
    QCOMPARE(column(0), QStringList{"before"});
}

void TestParameterDialogs::nullIsAnAnswer() {
    child<QPlainTextEdit>("statement")->setPlainText("select id from orders where city is :c");
    answer([](QDialog& dialog) {
        clickOn(*childOf<QCheckBox>(dialog, "null C"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{"2"});
}

void TestParameterDialogs::typedStatementHasPlaceholders() {
    child<QPlainTextEdit>("statement")
        ->setPlainText("select ':no', value -- isn't :one\nfrom json_each(:j) where value > :v");
    answer([](QDialog& dialog) {
        QCOMPARE(dialog.findChildren<QLineEdit*>().size(), 2);
        QTest::keyClicks(childOf<QLineEdit>(dialog, "J"), "[1, 2, 3]");
        QTest::keyClicks(childOf<QLineEdit>(dialog, "V"), "1");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{":no", ":no"}));
    QCOMPARE(column(1), (QStringList{"2", "3"}));
}

// --- what may happen meanwhile ---

// Nobody is asked for the other values first.
void TestParameterDialogs::questionMarkIsRefused() {
    child<QPlainTextEdit>("statement")
        ->setPlainText("select id from orders where id = ? or 1 = :x");
    run();
    QVERIFY(!child<QToolButton>("stopButton")->isEnabled());
    QCOMPARE(child<QLabel>("resultText")->text(),
             QStringLiteral("The statement has a parameter \"?\", which has no name by which it "
                            "could get a value; please write it as :NAME."));
}

void TestParameterDialogs::boxClosedWhileDialogIsOpen() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("json_each"));
    QPointer<QDialog> shown;
    answer([&](QDialog& dialog) {
        shown = &dialog;
        builder().ListOfTables->DeleteTable(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    doubleClickRow("JSON");
    QVERIFY(!shown || !shown->isVisible());
    QCOMPARE(builder().ListOfTables->TablesCount(), 0);
}

void TestParameterDialogs::diagramClearedWhileDialogIsOpen() {
    child<QTreeView>("tables")->expandAll();
    doubleClickInList(QStringLiteral("json_each"));
    answer([&](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "[]");
        builder().Clear();
        builder().LoadSQL("select id from orders");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("JSON");
    QCOMPARE(text(), QStringLiteral("SELECT ID\nFROM ORDERS"));
}

void TestParameterDialogs::databaseChangedWhileDialogIsOpen() {
    child<QPlainTextEdit>("statement")->setPlainText("select :x");
    answer([&](QDialog& dialog) {
        QVERIFY(m_window->openDatabase(m_database));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(!child<QToolButton>("stopButton")->isEnabled());
    QVERIFY(!child<QTableView>("rows")->isVisible());
}

void TestParameterDialogs::windowGoesWhileDialogIsOpen() {
    child<QPlainTextEdit>("statement")->setPlainText("select :x");
    orv::setDialogRunner([this](QDialog&) {
        m_window.reset();
        return int(QDialog::Accepted);
    });
    QToolButton* button = child<QToolButton>("runButton");
    QVERIFY(button != nullptr);
    QMetaObject::invokeMethod(m_window.get(), [button] { button->defaultAction()->trigger(); });
    QVERIFY(m_window == nullptr);
}

void TestParameterDialogs::schemaProcedureTakesValues() {
    const QString schema = m_folder.filePath(QStringLiteral("s.json"));
    QVERIFY(apptest::writeFile(schema, R"({"P": {"fields": [["A", "ftInteger"]],
                          "params": [["X", "ftDate", "ptInput"], ["Y", "ftFloat", "ptInput", 2.5]]}})"));
    Options options;
    options.schema = schema;
    m_window->begin(options);
    QVERIFY(
        child<QTreeView>("tables")->isExpanded(child<QTreeView>("tables")->model()->index(0, 0)));
    doubleClickInList(QStringLiteral("P"));
    rowOf(*box(), "A")->SetCheck(true);
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "2024-01-31");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("X");
    QCOMPARE(text(), QStringLiteral("SELECT P.A\nFROM P('2024-01-31', 2.5)"));
    answer([](QDialog& dialog) {
        choose(dialog, "asNull", Qt::Key_N);
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("Y");
    QCOMPARE(text(), QStringLiteral("SELECT P.A\nFROM P('2024-01-31', NULL)"));
}

void TestParameterDialogs::firebirdProcedureFromListToRows() {
    const QString missing = firebirdtest::whatIsMissing();
    if (!missing.isEmpty()) QSKIP(qPrintable(missing));
    const QString path = m_folder.filePath(QStringLiteral("shop.fdb"));
    QVERIFY(firebirdtest::makeDatabase(
        path,
        "CREATE PROCEDURE SERIES (LOW INTEGER, HIGH INTEGER) RETURNS (N INTEGER) AS "
        "BEGIN N = LOW; WHILE (N <= HIGH) DO BEGIN SUSPEND; N = N + 1; END END^"
        "CREATE TABLE T (ID INTEGER)^"));
    QVERIFY(m_window->openDatabase(path));
    QCOMPARE(m_window->windowTitle(), QStringLiteral("shop.fdb - orvquery"));
    doubleClickInList(QStringLiteral("SERIES"));
    rowOf(*box(), "N")->SetCheck(true);
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "value"), "2");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClickRow("LOW");
    QCOMPARE(text(), QStringLiteral("SELECT SERIES.N\nFROM SERIES(2, :HIGH)"));
    answer([](QDialog& dialog) {
        auto* field = childOf<QLineEdit>(dialog, "HIGH");
        QCOMPARE(field->accessibleName(), QStringLiteral(":HIGH (Integer)"));
        QTest::keyClicks(field, "4x");
        QVERIFY(!childOf<QPushButton>(dialog, "run")->isEnabled());
        QTest::keyClick(field, Qt::Key_Backspace);
        QTest::keyClick(field, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), (QStringList{"2", "3", "4"}));
}

// What is typed runs, be it in the box or when the query runs.
void TestParameterDialogs::firebirdProcedureTakesMoments() {
    const QString missing = firebirdtest::whatIsMissing();
    if (!missing.isEmpty()) QSKIP(qPrintable(missing));
    const QString path = m_folder.filePath(QStringLiteral("moments.fdb"));
    QVERIFY(firebirdtest::makeDatabase(
        path,
        "CREATE PROCEDURE MOMENTS (S TIMESTAMP, D DATE, T TIME) RETURNS (R VARCHAR(80)) AS "
        "BEGIN R = DATEADD(1 SECOND TO S) || '/' || DATEADD(1 DAY TO D) || '/' || "
        "DATEADD(1 MINUTE TO T); SUSPEND; END^"));
    QVERIFY(m_window->openDatabase(path));
    doubleClickInList(QStringLiteral("MOMENTS"));
    rowOf(*box(), "R")->SetCheck(true);
    const QString expected = QStringLiteral("2024-01-02 03:04:01.0000/2024-03-01/18:31:15.0000");
    answer([](QDialog& dialog) {
        QTest::keyClicks(childOf<QLineEdit>(dialog, "S"), "2024-01-02 03:04");
        QTest::keyClicks(childOf<QLineEdit>(dialog, "D"), "2024-02-29");
        QTest::keyClicks(childOf<QLineEdit>(dialog, "T"), "18:30:15");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{expected});
    const std::vector<std::pair<const char*, QString>> typed = {
        {"S", "2024-01-02 03:04"}, {"D", "2024-02-29"}, {"T", "18:30:15"}};
    for (const auto& [name, text] : typed) {
        answer([text](QDialog& dialog) {
            QTest::keyClicks(dialog.focusWidget(), text);
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        doubleClickRow(name);
    }
    QCOMPARE(text(), QStringLiteral("SELECT MOMENTS.R\nFROM MOMENTS('2024-01-02 03:04:00', "
                                    "'2024-02-29', '18:30:15')"));
    run();
    QVERIFY(waitForRows());
    QCOMPARE(column(0), QStringList{expected});
}

QTEST_MAIN(TestParameterDialogs)
#include "tst_app_parameterdialogs.moc"
