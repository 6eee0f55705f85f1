// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "documents/QueryDocument.h"
#include "window/QueryComparer.h"
#include "window/WordsPanel.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QDialog>
#include <QSignalSpy>
#include <QTextBrowser>

using namespace orvquery;

namespace {

const QColor addedColor(0x1b, 0x7f, 0x3b);
const QColor removedColor(0xb3, 0x26, 0x1e);
const QColor changedColor(0x9a, 0x5b, 0x00);

int countPixels(const QPixmap& picture, const QColor& color) {
    const QImage image = picture.toImage().convertToFormat(QImage::Format_RGB32);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == color.rgb() ? 1 : 0;
    }
    return count;
}

}  // namespace

// What the window says of its query in words, alone and compared with another one.
class TestWordsWindow : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init();
    void cleanup();

    void panelIsHiddenAtFirst();
    void buttonShowsTheWords();
    void wordsFollowTheQuery();
    void changesOfOnePassAreOne();
    void hiddenPanelComputesNothing();
    void wordsAreEscaped();
    void copyTakesPlainText();
    void switchIsRemembered();

    void compareWithStatement();
    void compareWithState();
    void compareWithQueryFile();
    void compareTellsWhatIsNotHeld();
    void columnsAndJoinsAreMarkedInThePictures();
    void compareWithEmptyDiagram();
    void compareWithFileThatCannotBeUsed_data();
    void compareWithFileThatCannotBeUsed();
    void compareLeavesTheQueryAlone();

private:
    [[nodiscard]] QTextBrowser& words() const { return *child<QTextBrowser>("words"); }
    [[nodiscard]] QString said() const { return words().toPlainText(); }
    void compareWith(const QString& path) const {
        m_window->findChild<QueryComparer*>()->compareWith(path);
    }
    [[nodiscard]] QString written(const char* name, const QByteArray& content) const {
        const QString path = m_folder.filePath(QLatin1String(name));
        return apptest::writeFile(path, content) ? path : QString();
    }

    // Of the dialog that was shown last.
    QString m_differences;
    QPixmap m_before;
    QPixmap m_after;
    QString m_note;
    int m_dialogs = 0;
};

void TestWordsWindow::init() {
    m_dialogs = 0;
    m_differences.clear();
    m_note.clear();
    begin();
    orv::setDialogRunner([this](QDialog& dialog) {
        ++m_dialogs;
        m_differences = dialog.findChild<QTextBrowser*>("differences")->toPlainText();
        m_before = dialog.findChild<QLabel*>("before")->pixmap(Qt::ReturnByValue);
        m_after = dialog.findChild<QLabel*>("after")->pixmap(Qt::ReturnByValue);
        const auto* note = dialog.findChild<QLabel*>("beforeNote");
        m_note = note ? note->text() : QString();
        return int(QDialog::Rejected);
    });
}

void TestWordsWindow::cleanup() {
    orv::setDialogRunner({});
    end();
}

void TestWordsWindow::panelIsHiddenAtFirst() {
    QVERIFY(!isShown("words"));
    QVERIFY(!child<QToolButton>("wordsButton")->isChecked());
}

void TestWordsWindow::buttonShowsTheWords() {
    load("select o.city from orders o");
    click("wordsButton");
    QVERIFY(isShown("words"));
    QVERIFY2(said().contains("Returns the CITY."), qPrintable(said()));
    QVERIFY(said().contains("Takes the rows of ORDERS (O)."));
    click("wordsButton");
    QVERIFY(!isShown("words"));
}

void TestWordsWindow::wordsFollowTheQuery() {
    click("wordsButton");
    QVERIFY2(said().contains("There is no table yet"), qPrintable(said()));
    load("select o.city from orders o where o.total > 5");
    QTRY_VERIFY(said().contains("Only rows count where the TOTAL is greater than 5."));
    startAnew();
    QTRY_VERIFY(said().contains("There is no table yet"));
}

void TestWordsWindow::changesOfOnePassAreOne() {
    load("select o.city from orders o");
    click("wordsButton");
    QSignalSpy spy(&words(), &QTextBrowser::textChanged);
    builder().setTailText("limit 1");
    QTRY_VERIFY(said().contains("limit 1"));
    const auto signalsOfOne = spy.count();
    spy.clear();
    builder().setTailText("limit 2");
    builder().setTailText("limit 3");
    builder().setTailText("limit 4");
    QVERIFY(said().contains("limit 1"));
    QTRY_VERIFY(said().contains("limit 4"));
    QCOMPARE(spy.count(), signalsOfOne);
}

void TestWordsWindow::hiddenPanelComputesNothing() {
    click("wordsButton");
    const QString before = said();
    click("wordsButton");
    load("select o.city from orders o");
    QCoreApplication::processEvents();
    QCOMPARE(said(), before);
    click("wordsButton");
    QVERIFY(said().contains("Returns the CITY."));
}

void TestWordsWindow::wordsAreEscaped() {
    load("select o.city from orders o where o.city = '<i>&amp;</i>'");
    click("wordsButton");
    QVERIFY2(said().contains("the CITY is '<i>&amp;</i>'."), qPrintable(said()));
}

void TestWordsWindow::copyTakesPlainText() {
    load("select o.city from orders o");
    click("wordsButton");
    QCoreApplication::processEvents();  // the panel takes its place
    click("copyWords");
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QStringLiteral("Result\n  Returns the CITY.\n\nTables\n  Takes the rows of ORDERS "
                            "(O).\n\nOrder\n  The rows come in no certain order.\n"));
}

void TestWordsWindow::switchIsRemembered() {
    click("wordsButton");
    m_window->close();
    Options options;
    options.database = m_database;
    open(options);
    QVERIFY(isShown("words"));
}

void TestWordsWindow::compareWithStatement() {
    load("select o.city from orders o where o.total > 5");
    compareWith(written("other.sql", "select p.city from orders p, people where p.total > 6"));
    QCOMPARE(m_messages, QStringList());
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(m_differences.split(u'\n'),
             QStringList({"Tables", "Removed: PEOPLE", "Changed: ORDERS (P); now ORDERS (O)",
                          "Conditions",
                          ("Changed: the TOTAL of ORDERS (P) is greater than 6; now the TOTAL of "
                           "ORDERS (O) is greater than 5")}));
    QVERIFY(countPixels(m_before, removedColor) > 100);
    QVERIFY(countPixels(m_before, changedColor) > 100);
    QCOMPARE(countPixels(m_before, addedColor), 0);
    QCOMPARE(countPixels(m_after, removedColor), 0);
    QVERIFY(countPixels(m_after, changedColor) > 100);
}

void TestWordsWindow::compareWithState() {
    load("select o.city from orders o");
    const QString saved = written("saved.json", builder().SaveState());
    compareWith(saved);
    QCOMPARE(m_differences, QStringLiteral("Differences\nThere are none."));
    load("select o.city from orders o, people p");
    compareWith(saved);
    QCOMPARE(m_differences, QStringLiteral("Tables\nAdded: PEOPLE (P)"));
    QVERIFY(countPixels(m_after, addedColor) > 100);
    QCOMPARE(countPixels(m_before, removedColor), 0);
    QCOMPARE(m_messages, QStringList());
}

void TestWordsWindow::compareWithQueryFile() {
    load("select o.city from orders o");
    QueryDocument document;
    document.setState(builder().SaveState());
    const QString saved = written("saved.orvq", documentText(document));
    compareWith(saved);
    QCOMPARE(m_differences, QStringLiteral("Differences\nThere are none."));
    load("select o.city from orders o, people p");
    compareWith(saved);
    QCOMPARE(m_differences, QStringLiteral("Tables\nAdded: PEOPLE (P)"));
    document = {};
    document.statement = QStringLiteral("select o.city from orders o, people p");
    compareWith(written("statement.orvq", documentText(document)));
    QCOMPARE(m_differences, QStringLiteral("Differences\nThere are none."));
    QCOMPARE(m_messages, QStringList());
}

void TestWordsWindow::compareTellsWhatIsNotHeld() {
    load("select o.city from orders o");
    compareWith(written("gone.sql", "select o.city from orders o, nowhere n"));
    QCOMPARE(m_note, QStringLiteral("1 part of this statement is not held as it stands."));
    compareWith(written("plain.sql", "select o.city from orders o"));
    QCOMPARE(m_note, QString());
    QCOMPARE(m_differences, QStringLiteral("Differences\nThere are none."));
    compareWith(written("sorted.sql", "select o.city from orders o order by o.total"));
    QVERIFY2(m_differences.startsWith("Not compared\nNot held by the diagram, and so not compared: "
                                      "in the first query \u201co.total\u201d ("),
             qPrintable(m_differences));
    QCOMPARE(m_differences.count(u'\n'), 1);
}

void TestWordsWindow::columnsAndJoinsAreMarkedInThePictures() {
    load("select o.id, o.city from orders o join people p on o.city = p.name");
    compareWith(
        written("column.sql", "select o.id from orders o join people p on o.city = p.name"));
    // The row that has come, and nothing else.
    QCOMPARE(countPixels(m_before, addedColor) + countPixels(m_before, changedColor), 0);
    const int row = countPixels(m_after, addedColor);
    QVERIFY(row > 100);
    QCOMPARE(countPixels(m_after, changedColor) + countPixels(m_after, removedColor), 0);
    compareWith(written("join.sql",
                        "select o.id, o.city from orders o left join people p on o.city = p.name"));
    QVERIFY(countPixels(m_before, changedColor) > 100);
    QVERIFY(countPixels(m_after, changedColor) > 100);
    QCOMPARE(countPixels(m_after, addedColor) + countPixels(m_after, removedColor), 0);
    builder().WorkArea->muteLink(builder().WorkArea->Links().front(), true);
    compareWith(
        written("plain.sql", "select o.id, o.city from orders o join people p on o.city = p.name"));
    QVERIFY(countPixels(m_before, changedColor) > 100);
    builder().WorkArea->muteLink(builder().WorkArea->Links().front(), false);
    // An expression is no row.
    load("select o.id, o.total * 2 as twice from orders o");
    compareWith(written("expression.sql", "select o.id from orders o"));
    QCOMPARE(countPixels(m_after, addedColor), 0);
}

void TestWordsWindow::compareWithEmptyDiagram() {
    compareWith(written("plain.sql", "select o.city from orders o"));
    QVERIFY(m_after.isNull());
    QVERIFY(countPixels(m_before, removedColor) > 100);
}

void TestWordsWindow::compareWithFileThatCannotBeUsed_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");
    QTest::newRow("no select") << "a.sql" << QByteArray("drop table orders")
                               << "\"a.sql\" cannot be compared: Given statement is not SELECT "
                                  "clause";
    QTest::newRow("with") << "h.sql" << QByteArray("with a as (select 1) select * from a")
                          << "is not SELECT clause. The text begins with WITH, and a common table "
                             "expression is not read.";
    QTest::newRow("nothing") << "i.sql" << QByteArray()
                             << "is not SELECT clause. The text is empty.";
    QTest::newRow("nothing loaded") << "g.sql" << QByteArray("select from where")
                                    << "\"g.sql\" cannot be compared: No table of this statement "
                                       "could be loaded";
    QTest::newRow("no state") << "b.json" << QByteArray("{\"tables\": 1}")
                              << "\"b.json\" cannot be compared: ";
    QTest::newRow("no query file") << "d.orvq" << QByteArray("select city from orders")
                                   << "d.orvq\" is no query file: it is no JSON from line 1 on";
    QTest::newRow("query file cut short")
        << "e.orvq" << QByteArray("{\"format\": \"orvquery query\",\n\"version\": 1,\n\"query")
        << "e.orvq\" is no query file: it is no JSON from line 3 on";
    QTest::newRow("later query file")
        << "f.orvq" << QByteArray("{\"format\": \"orvquery query\", \"version\": 7}")
        << "was saved by a later version of orvquery (its format is 7, this program knows up to 1)";
    QTest::newRow("no text") << "c.sql" << QByteArray("select '\xfc' from orders")
                             << "is not valid UTF-8 text (line 1).";
}

void TestWordsWindow::compareWithFileThatCannotBeUsed() {
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    compareWith(written(qPrintable(name), content));
    QCOMPARE(m_dialogs, 0);
    QCOMPARE(m_messages.size(), 1);
    QVERIFY2(m_messages.front().contains(message), qPrintable(m_messages.front()));
}

void TestWordsWindow::compareLeavesTheQueryAlone() {
    load("select o.city from orders o where o.total > 5");
    const QByteArray before = builder().SaveState();
    QSignalSpy spy(&builder(), &TorvQueryBuilder::StatementChanged);
    compareWith(written("other.sql", "select p.name from people p"));
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(builder().SaveState(), before);
    QCOMPARE(spy.count(), 0);
}

QTEST_MAIN(TestWordsWindow)
#include "tst_app_wordswindow.moc"
