// SPDX-License-Identifier: MIT
#include "DocumentDesk.h"
#include "criteria/ORVQDWherePanel.h"
#include "documents/DocumentLock.h"
#include "querybuilder/ORVQDTailLine.h"
#include "selection/ORVQDSelectOrder.h"
#include "window/RecoveryDialog.h"

#ifdef Q_OS_UNIX
#include "window/EndSignals.h"
#endif

#include <QProcess>
#include <QTreeWidget>

using namespace apptest;
using namespace orvquery;

namespace {

// The program as it is killed: it opens what it is told, changes it, saves it for the case of a
// crash unless a signal is to make it do so, says so and waits.
int runDoomedProgram(const QStringList& arguments, bool isKilled) {
    MainWindow window;
#ifdef Q_OS_UNIX
    const EndSignals ending([&] { window.documents().endAtOnce(); });
#endif
    Options options;
    options.database = arguments[0];
    if (arguments.size() > 1) options.document = arguments[1];
    window.show();
    window.begin(options);
    auto& builder = *window.findChild<TorvQueryBuilder*>();
    builder.LoadSQL(QStringLiteral("SELECT city FROM orders WHERE total > 5"));
    window.findChild<QPlainTextEdit*>(QStringLiteral("statement"))
        ->setPlainText(QStringLiteral("SELECT half"));
    if (isKilled) window.documents().autosave();
    QFile output;
    if (!output.open(stdout, QIODevice::WriteOnly)) return 1;
    output.write("ready\n");
    output.flush();
    return QApplication::exec();
}

// As if the person's list of operators lacked one of the query.
bool renameOperator(const QString& file) {
    QByteArray content = apptest::contentOf(file);
    const QByteArray key = "\"operator\": \"";
    const qsizetype start = content.indexOf(key) + key.size();
    if (start < key.size()) return false;
    content.replace(start, content.indexOf('"', start) - start, "no such operator");
    return apptest::writeFile(file, content);
}

}  // namespace

// Crashes and ends of the session, and what they leave for the next start.
class TestDocumentRecovery : public QObject, private apptest::DocumentDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void lockOfADeadProgramIsTakenOver();
    void autosaveComesWithinTenSeconds();
    void autosaveComesByItself();
    void autosaveWaitsForTheEndOfALoad();
    void textOfAnOpenEditorIsKept_data();
    void textOfAnOpenEditorIsKept();
    void nothingIsLeftAfterAProperEnd();
    void savingRemovesTheCopy();
    void crashIsRecovered_data();
    void crashIsRecovered();
    void recoveredStatementFileStillAsks();
    void endOfTheSessionKeepsTheQuery_data();
    void endOfTheSessionKeepsTheQuery();
    void recoveryTellsWhatWasNotOpened();
    void recoveredStatementFileKeepsItsLineBreaks();
    void recoveredReadOnlyStaysSo();
    void severalCopiesAreOfferedOneByOne();
    void copyCutShortIsToldOnce();
    void windowMayGoWhileRecovering();
    void refusedCopyIsRecoveredAsText();
    void refusedQueryIsOpenedAsText();
    void leftCopiesWaitOrGo();
    void failedAutosaveIsToldOnce();
    void failedAutosaveIsTriedAgain();

private:
    void openEditor(const QByteArray& editor) const;
    void leaveCopy(const char* statement, const QString& name = QStringLiteral("left"));
    void keepCopy(const QString& name = QStringLiteral("left"));
    void answerRecovery(int line = 0);
    [[nodiscard]] QString kill(const QStringList& arguments) const;
};

// The place in which the recovery files of a killed program are.
QString TestDocumentRecovery::kill(const QStringList& arguments) const {
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), QStringList("--doomed") + arguments);
    if (!process.waitForReadyRead(60000) || process.readLine() != "ready\n") return {};
    process.kill();
    process.waitForFinished();
    return RecoveryFolder().path();
}

// As a program that has died leaves its query, which is for the shop.
void TestDocumentRecovery::leaveCopy(const char* statement, const QString& name) {
    openNew({}, m_database);
    load(QLatin1String(statement));
    keepCopy(name);
}

void TestDocumentRecovery::keepCopy(const QString& name) {
    documents().autosave();
    const QString file = RecoveryFolder().path() + u'/' + name + QStringLiteral(".orvq");
    QVERIFY(QFile::copy(documents().recoveryPath(), file));
    m_window.reset();
}

void TestDocumentRecovery::answerRecovery(int line) {
    m_answers += [line](QDialog& dialog) {
        auto* list = dialog.findChild<QTreeWidget*>(QStringLiteral("left"));
        if (list == nullptr) return -1;
        list->setCurrentItem(list->topLevelItem(line));
        return int(RecoveryDialog::Recover);
    };
}

// On its page, with nothing typed.
void TestDocumentRecovery::openEditor(const QByteArray& editor) const {
    TorvQueryBuilder& control = builder();
    if (editor == "condition") {
        TorvQDWherePanel& panel = *control.WherePanel;
        control.PageCtrl->setCurrentWidget(panel.parentWidget());
        panel.editText(*panel.rootRow()->SubRows->Row(0)->Controls[ekArgument]);
    } else if (editor == "cell") {
        control.PageCtrl->setCurrentWidget(control.SelectPanel->parentWidget());
        control.SelectPanel->grid()->_EditText(0, 1);
    } else {
        auto* line = control.PageCtrl->findChild<orv::TailLine*>()->findChild<QLineEdit*>();
        control.PageCtrl->setCurrentWidget(line->parentWidget()->parentWidget());
        line->setFocus();
    }
}

void TestDocumentRecovery::lockOfADeadProgramIsTakenOver() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    m_window->close();
    QVERIFY(!QFileInfo::exists(DocumentLock::lockPath(path("a.orvq"))));
    QVERIFY(!kill({m_database, path("a.orvq")}).isEmpty());
    QVERIFY(QFileInfo::exists(DocumentLock::lockPath(path("a.orvq"))));
    QDir(RecoveryFolder().path()).removeRecursively();
    openNew(path("a.orvq"));
    QCOMPARE(m_questions, QStringList());
    QCOMPARE(documents().path(), path("a.orvq"));
}

void TestDocumentRecovery::autosaveComesWithinTenSeconds() {
    QVERIFY(documents().autosaveInterval() > 0);
    QVERIFY(documents().autosaveInterval() <= 10000);
}

void TestDocumentRecovery::autosaveComesByItself() {
    documents().setAutosaveInterval(0);
    QCOMPARE(leftFiles(), QStringList());
    doubleClickTable("orders");
    QVERIFY(QTest::qWaitFor([&] { return QFileInfo::exists(documents().recoveryPath()); }));
    QVERIFY(contentOf(documents().recoveryPath()).contains("ORDERS"));
    // It is a query file like any other.
    QCOMPARE(openFile(documents().recoveryPath()).document.statement, statement());
    // As long as this window lives nobody is offered it.
    QVERIFY(RecoveryFolder().left().empty());
}

void TestDocumentRecovery::autosaveWaitsForTheEndOfALoad() {
    documents().setAutosaveInterval(0);
    int changes = 0;
    int early = 0;
    // Loading may wait for a database, and the window lives on meanwhile.
    connect(&builder(), &TorvQueryBuilder::StatementChanged, m_window.get(), [&] {
        ++changes;
        for (int round = 0; round < 5; ++round) QCoreApplication::processEvents();
        if (QFileInfo::exists(documents().recoveryPath())) ++early;
    });
    editor().setPlainText(QStringLiteral("select id from orders, people"));
    child<QToolButton>("loadButton")->click();
    QVERIFY(changes > 0);
    QCOMPARE(early, 0);
    QVERIFY(QTest::qWaitFor([&] { return QFileInfo::exists(documents().recoveryPath()); }));
    QCOMPARE(openFile(documents().recoveryPath()).document.statement, statement());
}

void TestDocumentRecovery::textOfAnOpenEditorIsKept_data() {
    QTest::addColumn<QByteArray>("editor");
    QTest::newRow("behind the statement") << QByteArray("tail");
    QTest::newRow("cell of the output") << QByteArray("cell");
    QTest::newRow("condition") << QByteArray("condition");
}

void TestDocumentRecovery::textOfAnOpenEditorIsKept() {
    QFETCH(QByteArray, editor);
    load("select id from orders where total > 5");
    QVERIFY(saveAs(path("a.orvq")));
    const QString before = statement();
    documents().setAutosaveInterval(0);
    openEditor(editor);
    QWidget* typedInto = QApplication::focusWidget();
    QVERIFY(typedInto != nullptr);
    QCoreApplication::processEvents();
    QCOMPARE(leftFiles(), QStringList());
    QTest::keyClicks(typedInto, QStringLiteral("half"));
    QVERIFY(QTest::qWaitFor([&] { return QFileInfo::exists(documents().recoveryPath()); }));
    QTest::keyClicks(typedInto, QStringLiteral("_way"));
    QVERIFY(QTest::qWaitFor(
        [&] { return contentOf(documents().recoveryPath()).contains("half_way"); }));
    // The person types on as if nothing were.
    QCOMPARE(QApplication::focusWidget(), typedInto);
    QCOMPARE(statement(), before);
    // As a crash leaves it.
    const QString left = RecoveryFolder().path() + QStringLiteral("/left.orvq");
    QVERIFY(QFile::copy(documents().recoveryPath(), left));
    QTest::keyClick(typedInto, Qt::Key_Escape);
    QVERIFY(QTest::qWaitFor([&] { return !QFileInfo::exists(documents().recoveryPath()); }));
    m_answers += [](QDialog&) { return int(RecoveryDialog::Recover); };
    openNew();
    QCOMPARE(statement(), before);
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(m_services->messages[0].contains(QStringLiteral("half_way\" was being typed")));
}

void TestDocumentRecovery::nothingIsLeftAfterAProperEnd() {
    doubleClickTable("orders");
    documents().autosave();
    QCOMPARE(leftFiles().size(), 2);  // and its lock
    answer("discardChanges");
    QVERIFY(m_window->close());
    QCOMPARE(leftFiles(), QStringList());
    openNew({}, m_database);
    doubleClickTable("orders");
    documents().autosave();
    m_window.reset();
    QCOMPARE(leftFiles(), QStringList());
}

void TestDocumentRecovery::savingRemovesTheCopy() {
    doubleClickTable("orders");
    documents().autosave();
    QVERIFY(saveAs(path("a.orvq")));
    QCOMPARE(leftFiles(), QStringList());
    doubleClickTable("people");
    documents().autosave();
    QCOMPARE(leftFiles().size(), 2);
    press(Qt::Key_N, Qt::ControlModifier);  // cancelled
    QCOMPARE(leftFiles().size(), 2);
    answer("discardChanges");
    press(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(leftFiles(), QStringList());
}

void TestDocumentRecovery::crashIsRecovered_data() {
    QTest::addColumn<bool>("isNamed");
    QTest::newRow("untitled") << false;
    QTest::newRow("of a file") << true;
}

void TestDocumentRecovery::crashIsRecovered() {
    QFETCH(bool, isNamed);
    QStringList arguments = {m_database};
    if (isNamed) {
        load("select id from people");
        QVERIFY(saveAs(path("a.orvq")));
        arguments += path("a.orvq");
    }
    const QByteArray before = contentOf(path("a.orvq"));
    m_window.reset();
    QVERIFY(!kill(arguments).isEmpty());
    QStringList shown;
    m_answers += [&](QDialog& dialog) {
        auto* list = dialog.findChild<QTreeWidget*>(QStringLiteral("left"));
        if (list == nullptr) return -1;
        for (int column = 0; column < 2; ++column) shown += list->topLevelItem(0)->text(column);
        return int(RecoveryDialog::Recover);
    };
    openNew();
    QCOMPARE(shown, (QStringList{isNamed ? "a.orvq" : "Untitled", "shop.db"}));
    QVERIFY(statement().contains(QStringLiteral("TOTAL > 5")));
    QCOMPARE(text(), QStringLiteral("SELECT half"));
    QVERIFY(tableIndex("orders").isValid());
    QVERIFY(m_window->isWindowModified());
    QCOMPARE(documents().path(), isNamed ? path("a.orvq") : QString());
    QCOMPARE(contentOf(path("a.orvq")), before);
    // Until it is saved it is safe from the next crash.
    QVERIFY(QFileInfo::exists(documents().recoveryPath()));
    QCOMPARE(leftFiles().size(), 2);
    if (!isNamed) return;
    QVERIFY(documents().save());
    QVERIFY(contentOf(path("a.orvq")).contains("TOTAL > 5"));
    QVERIFY(!contentOf(path("a.orvq")).contains("\"recovery\":"));
    QCOMPARE(leftFiles(), QStringList());
}

void TestDocumentRecovery::recoveredStatementFileStillAsks() {
    const QByteArray before = "select id from people -- all of them";
    QVERIFY(apptest::writeFile(path("a.sql"), before));
    m_window.reset();
    QVERIFY(!kill({m_database, path("a.sql")}).isEmpty());
    m_answers += [](QDialog&) { return int(RecoveryDialog::Recover); };
    openNew();
    QCOMPARE(text(), QStringLiteral("SELECT half"));
    answer("saveText");
    QVERIFY(!documents().save());
    QCOMPARE(m_questions.size(), 2);
    QVERIFY(m_questions[0].startsWith(QStringLiteral("a.sql can hold either the text")));
    QVERIFY(m_questions[1].startsWith(QStringLiteral("Saving a.sql would lose 1 comment.")));
    QCOMPARE(contentOf(path("a.sql")), before);
}

void TestDocumentRecovery::endOfTheSessionKeepsTheQuery_data() {
    QTest::addColumn<int>("signal");
#ifdef Q_OS_UNIX
    QTest::newRow("logging out") << SIGTERM;
    QTest::newRow("terminal gone") << SIGHUP;
#else
    QTest::newRow("none") << 0;
#endif
}

void TestDocumentRecovery::endOfTheSessionKeepsTheQuery() {
#ifdef Q_OS_UNIX
    QFETCH(int, signal);
    load("select id from people");
    QVERIFY(saveAs(path("a.orvq")));
    const QByteArray before = contentOf(path("a.orvq"));
    m_window.reset();
    QProcess process;
    // What starts the tests may have it ignored, which is then left so.
    process.setChildProcessModifier([signal] { std::signal(signal, SIG_DFL); });
    process.start(QCoreApplication::applicationFilePath(), {"--ended", m_database, path("a.orvq")});
    QVERIFY(process.waitForReadyRead(60000));
    QCOMPARE(process.readLine(), QByteArray("ready\n"));
    QCOMPARE(leftFiles(), QStringList());
    QCOMPARE(::kill(pid_t(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), signal);
    const std::vector<LeftCopy> left = RecoveryFolder().left();
    QCOMPARE(left.size(), std::size_t(1));
    const RecoveryCopy& copy = left.front().copy();
    QCOMPARE(copy.path, path("a.orvq"));
    QVERIFY(copy.document.statement.contains(QStringLiteral("TOTAL > 5")));
    QCOMPARE(copy.document.typed.value_or(QString()), QStringLiteral("SELECT half"));
    QCOMPARE(contentOf(path("a.orvq")), before);
    QVERIFY(!QFileInfo::exists(DocumentLock::lockPath(path("a.orvq"))));
#else
    QSKIP("Only Unix ends programs by the signals that this sends.");
#endif
}

void TestDocumentRecovery::recoveryTellsWhatWasNotOpened() {
    QVERIFY(apptest::writeFile(path("a.sql"), "select name from people"));
    leaveCopy("select city from orders");
    answerRecovery();
    openNew(path("a.sql"), m_numbers);
    QVERIFY(statement().contains(QStringLiteral("CITY")));
    QCOMPARE(m_services->messages,
             QStringList{"As a query was recovered, this was not opened: a.sql, numbers.db."});
    m_services->messages.clear();
    leaveCopy("select city from orders");
    answerRecovery();
    openNew({}, m_database);
    QCOMPARE(m_services->messages, QStringList());
}

void TestDocumentRecovery::recoveredStatementFileKeepsItsLineBreaks() {
    QVERIFY(apptest::writeFile(path("a.sql"), "select id\r\nfrom orders\r\n"));
    documents().open(path("a.sql"));
    doubleClickTable("people");
    keepCopy();
    answerRecovery();
    openNew();
    QVERIFY(documents().save());
    const QByteArray written = contentOf(path("a.sql"));
    QVERIFY(written.contains("PEOPLE"));
    QCOMPARE(written.count("\r\n"), written.count('\n'));
}

void TestDocumentRecovery::recoveredReadOnlyStaysSo() {
    load("select id from orders");
    QVERIFY(saveAs(path("a.orvq")));
    const QByteArray before = contentOf(path("a.orvq"));
    std::unique_ptr<MainWindow> first = std::move(m_window);
    Options options;
    options.database = m_database;
    open(options);
    answer("openReadOnly");
    documents().open(path("a.orvq"));
    doubleClickTable("people");
    keepCopy();
    first.reset();
    answerRecovery();
    openNew();
    QCOMPARE(boxes(), 2);
    QCOMPARE(title(), QStringLiteral("a.orvq[*] (read only) - shop.db - orvquery"));
    QVERIFY(m_window->isWindowModified());
    answerFile(path("mine.orvq"));
    QVERIFY(documents().save());
    QCOMPARE(contentOf(path("a.orvq")), before);
    QVERIFY(contentOf(path("mine.orvq")).contains("PEOPLE"));
}

void TestDocumentRecovery::severalCopiesAreOfferedOneByOne() {
    leaveCopy("select id from orders", QStringLiteral("first"));
    leaveCopy("select city from orders", QStringLiteral("second"));
    QCOMPARE(RecoveryFolder().left().size(), std::size_t(2));
    // The latest is the first of the list.
    answerRecovery(1);
    openNew();
    QVERIFY(statement().contains(QStringLiteral("ID")));
    QCOMPARE(RecoveryFolder().left().size(), std::size_t(1));
    answerRecovery(0);
    openNew();
    QVERIFY(statement().contains(QStringLiteral("CITY")));
    QVERIFY(RecoveryFolder().left().empty());
}

void TestDocumentRecovery::copyCutShortIsToldOnce() {
    leaveCopy("select city from orders");
    const QString folder = RecoveryFolder().path();
    const QByteArray whole = contentOf(folder + QStringLiteral("/left.orvq"));
    const QByteArray half = whole.left(whole.size() / 2);
    QVERIFY(apptest::writeFile(folder + QStringLiteral("/short.orvq"), half));
    // The one that can be read is offered all the same.
    answerRecovery();
    openNew({}, m_database);
    QCOMPARE(boxes(), 1);
    const QString told = QStringLiteral(
                             "What was kept of a query when orvquery ended could not be read; it "
                             "is kept in %1: short.orvq.")
                             .arg(folder);
    QCOMPARE(m_services->messages, QStringList{told});
    QCOMPARE(contentOf(folder + QStringLiteral("/short.orvq")), half);
    openNew({}, m_database);
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(apptest::writeFile(folder + QStringLiteral("/other.orvq"), half));
    openNew({}, m_database);
    QVERIFY(m_services->messages.last().endsWith(QStringLiteral(": other.orvq.")));
}

void TestDocumentRecovery::windowMayGoWhileRecovering() {
    leaveCopy("select id from orders");
    m_answers += [this](QDialog&) {
        m_window.reset();
        return int(QDialog::Accepted);
    };
    openNew({}, m_database);
    QVERIFY(!m_window);
    // It is offered again.
    QCOMPARE(RecoveryFolder().left().size(), std::size_t(1));
}

void TestDocumentRecovery::refusedCopyIsRecoveredAsText() {
    leaveCopy("select city from orders where total > 5");
    QVERIFY(renameOperator(RecoveryFolder().path() + QStringLiteral("/left.orvq")));
    answerRecovery();
    openNew();
    QCOMPARE(boxes(), 0);
    QVERIFY(text().contains(QStringLiteral("TOTAL > 5")));
    QVERIFY(m_window->isWindowModified());
    QCOMPARE(documents().path(), QString());
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(m_services->messages[0].startsWith(
        QStringLiteral("Untitled cannot be shown in the diagram, and its statement is there as "
                       "text: ")));
    // The rest of it stays where it is.
    QCOMPARE(RecoveryFolder().left().size(), std::size_t(1));
}

void TestDocumentRecovery::refusedQueryIsOpenedAsText() {
    load("select city from orders where total > 5");
    QVERIFY(saveAs(path("a.orvq")));
    QVERIFY(QFile::copy(path("a.orvq"), path("b.orvq")));
    QVERIFY(renameOperator(path("b.orvq")));
    const QByteArray before = contentOf(path("b.orvq"));
    QVERIFY(documents().open(path("b.orvq")));
    QCOMPARE(boxes(), 0);
    QVERIFY(text().contains(QStringLiteral("TOTAL > 5")));
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(m_services->messages[0].startsWith(QStringLiteral("b.orvq cannot be shown ")));
    // It is not that file, which keeps what it has.
    QCOMPARE(documents().path(), QString());
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(contentOf(path("b.orvq")), before);
    // The text can be loaded.
    press(Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(boxes(), 1);
}

void TestDocumentRecovery::leftCopiesWaitOrGo() {
    m_window.reset();
    QVERIFY(!kill({m_database}).isEmpty());
    m_answers += [](QDialog&) { return int(RecoveryDialog::Later); };
    openNew({}, m_database);
    QCOMPARE(boxes(), 0);
    QCOMPARE(RecoveryFolder().left().size(), std::size_t(1));
    answer("discard");
    openNew({}, m_database);
    QCOMPARE(m_services->messages,
             QStringList{"Discard what was kept of Untitled? It cannot be brought back."});
    QCOMPARE(leftFiles(), QStringList());
    m_services->dialogs.clear();
    openNew({}, m_database);
    QCOMPARE(m_services->dialogs, QStringList());
}

void TestDocumentRecovery::failedAutosaveIsToldOnce() {
    QVERIFY(QDir().mkpath(QFileInfo(RecoveryFolder().path()).absolutePath()));
    QVERIFY(apptest::writeFile(RecoveryFolder().path(), "no folder"));
    doubleClickTable("orders");
    documents().autosave();
    documents().autosave();
    QFile::remove(RecoveryFolder().path());
    QCOMPARE(m_services->messages.size(), 1);
    QVERIFY(m_services->messages[0].startsWith(
        QStringLiteral("The query cannot be kept for the case of a crash. The file ")));
    documents().autosave();
    QCOMPARE(leftFiles().size(), 2);
}

void TestDocumentRecovery::failedAutosaveIsTriedAgain() {
    QVERIFY(QDir().mkpath(QFileInfo(RecoveryFolder().path()).absolutePath()));
    QVERIFY(apptest::writeFile(RecoveryFolder().path(), "no folder"));
    documents().setAutosaveInterval(0);
    doubleClickTable("orders");
    QVERIFY(QTest::qWaitFor([&] { return !m_services->messages.isEmpty(); }));
    // Nothing changes any more but the disk.
    QVERIFY(QFile::remove(RecoveryFolder().path()));
    QVERIFY(QTest::qWaitFor([&] { return QFileInfo::exists(documents().recoveryPath()); }));
    QCOMPARE(m_services->messages.size(), 1);
}

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == u"--doomed") return runDoomedProgram(arguments.mid(2), true);
    if (arguments.value(1) == u"--ended") return runDoomedProgram(arguments.mid(2), false);
    TestDocumentRecovery test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_app_documentrecovery.moc"
