// SPDX-License-Identifier: MIT
#include "DocumentDesk.h"
#include "criteria/ORVQDWherePanel.h"

using namespace apptest;
using namespace orvquery;

// The ways from a text back to the statement of the diagram.
class TestStatementBack : public QObject, private apptest::DocumentDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void typedTextIsGivenUp();
    void refusedTextIsGivenUp();
    void textOfADocumentIsGivenUp();
    void nothingToGoBackTo();
    void backToADiagramWithoutAStatement();
    void runOffersTheWayBack();
    void emptiedTextIsNone();
    void emptiedTextIsLoadedAsTheStatement();
    void emptiedTextGivesWayToAChange();
    void emptyTextOfADocumentIsNone();

    void textsLeaveTheWidthAlone();

private:
    void empty() const {
        editor().setFocus();
        editor().selectAll();
        QTest::keyClick(&editor(), Qt::Key_Delete);
    }

    const QString m_statement = QStringLiteral("SELECT NAME\nFROM PEOPLE");
};

void TestStatementBack::typedTextIsGivenUp() {
    load("select name from people");
    QVERIFY(!isShown("backToStatement"));
    type("select * from");
    QVERIFY(isShown("backToStatement"));
    click("backToStatement");
    QCOMPARE(text(), m_statement);
    QCOMPARE(label("statementState"), QString());
    QVERIFY(!isShown("backToStatement"));
    editor().setFocus();
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(text(), QStringLiteral("select * from"));
    QVERIFY(isShown("backToStatement"));
}

void TestStatementBack::refusedTextIsGivenUp() {
    load("select name from people");
    load("select * from");
    QVERIFY(isShown("refusal"));
    QVERIFY(isShown("backToStatement"));
    click("backToStatement");
    QCOMPARE(text(), m_statement);
    QVERIFY(!isShown("refusal"));
}

void TestStatementBack::textOfADocumentIsGivenUp() {
    load("select name from people");
    type("select * from");
    QVERIFY(saveAs(path("a.orvq")));
    openNew(path("a.orvq"));
    QCOMPARE(text(), QStringLiteral("select * from"));
    QVERIFY(isShown("backToStatement"));
    click("backToStatement");
    QCOMPARE(text(), m_statement);
    QVERIFY(m_window->isWindowModified());
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestStatementBack::nothingToGoBackTo() {
    load("select * from");
    QVERIFY(isShown("refusal"));
    QVERIFY(!isShown("backToStatement"));
    press(Qt::Key_F5);
    QCOMPARE(label("resultText"),
             QStringLiteral("The text was changed but not loaded; Load (Ctrl+Enter) it first."));
    QVERIFY(isShown("remedyButton"));
    QVERIFY(!isShown("otherRemedyButton"));
}

void TestStatementBack::backToADiagramWithoutAStatement() {
    load("select 1, count(*) from orders");
    click("loadAnyway");
    QCOMPARE(text(), QString());
    const QString problem = editor().placeholderText();
    QVERIFY(!isShown("backToStatement"));
    type("select * from");
    QVERIFY(isShown("backToStatement"));
    click("backToStatement");
    QCOMPARE(text(), QString());
    QCOMPARE(editor().placeholderText(), problem);
    QVERIFY(!isShown("backToStatement"));
}

void TestStatementBack::runOffersTheWayBack() {
    load("select name from people");
    const QStringList texts = {QStringLiteral("select * from"),
                               QStringLiteral("select o.id from orders o, nowhere n")};
    const QStringList answers = {
        QStringLiteral("The text was changed but not loaded; Load (Ctrl+Enter) it first, or choose "
                       "Back to the statement."),
        QStringLiteral("The text is not loaded, because something would be lost by that; change "
                       "it, or choose Load anyway or Back to the statement.")};
    for (int index = 0; index < texts.size(); ++index) {
        load(texts[index]);
        press(Qt::Key_F5);
        QCOMPARE(label("resultText"), answers[index]);
        QCOMPARE(child<QToolButton>("otherRemedyButton")->text(),
                 QStringLiteral("Back to the statement"));
        click("otherRemedyButton");
        QCOMPARE(text(), m_statement);
        QCOMPARE(label("resultText"),
                 QStringLiteral("Run the statement (F5) to see its rows here."));
        QVERIFY(!isShown("remedyButton"));
        QVERIFY(!isShown("otherRemedyButton"));
    }
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestStatementBack::emptiedTextIsNone() {
    load("select name from people");
    QVERIFY(saveAs(path("a.orvq")));
    load("select * from");
    QVERIFY(isShown("refusal"));
    QVERIFY(m_window->isWindowModified());
    for (const char* blank : {"", " "}) {
        empty();
        QTest::keyClicks(&editor(), QLatin1String(blank));
        QCOMPARE(text(), QLatin1String(blank));
        QCOMPARE(label("statementState"), QString());
        QVERIFY(!isShown("refusal"));
        QVERIFY(!m_window->isWindowModified());
        QVERIFY(isShown("backToStatement"));
        QVERIFY(runAndWait());
        QVERIFY(isShown("rows"));
        QCOMPARE(text(), m_statement);
        QVERIFY(!isShown("backToStatement"));
    }
    // It is emptied to be filled again.
    empty();
    QTest::keyClicks(&editor(), QStringLiteral("select id from orders"));
    QCOMPARE(text(), QStringLiteral("select id from orders"));
    QCOMPARE(label("statementState"), QStringLiteral("edited, not loaded"));
}

void TestStatementBack::emptiedTextIsLoadedAsTheStatement() {
    load("select name from people");
    empty();
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(!isShown("refusal"));
    QCOMPARE(text(), m_statement);
    QCOMPARE(boxes(), 1);
}

void TestStatementBack::emptiedTextGivesWayToAChange() {
    load("select name from people");
    empty();
    doubleClickTable("orders");
    QCOMPARE(text(), QStringLiteral("SELECT NAME\nFROM PEOPLE,\nORDERS"));
    QVERIFY(!isShown("changedBar"));
}

void TestStatementBack::emptyTextOfADocumentIsNone() {
    load("select name from people");
    QVERIFY(saveAs(path("a.orvq")));
    QueryDocument document = openFile(path("a.orvq")).document;
    document.typed = QString();
    QVERIFY(writeFile(path("b.orvq"), documentText(document)));
    openNew(path("b.orvq"));
    QCOMPARE(text(), m_statement);
    QVERIFY(!isShown("backToStatement"));
}

// What stands around the text must not take room from the rows.
void TestStatementBack::textsLeaveTheWidthAlone() {
    const auto* pane = child<QWidget>("backToStatement")->parentWidget();
    load("select id from orders where total > 5");
    const int plain = pane->minimumSizeHint().width();
    builder().WherePanel->setCurrentElement(
        builder().WherePanel->rootRow()->SubRows->Row(0)->Controls[ekFieldName].get());
    builder().WherePanel->MuteCondition();
    load("select * from");
    const auto* state = child<QLabel>("statementState");
    const int widest = plain + state->fontMetrics().horizontalAdvance(state->text());
    const auto isNarrow = [&] {
        QCoreApplication::processEvents();
        return pane->minimumSizeHint().width() <= widest;
    };
    QVERIFY(isShown("backToStatement"));
    QVERIFY(isShown("refusal"));
    QVERIFY(isNarrow());
    load("select o.id from orders o, nowhere n, nothing m");
    QVERIFY(label("findingsTitle").contains(QStringLiteral("; 1 muted part")));
    QVERIFY(isNarrow());
    const auto* title = child<QLabel>("findingsTitle");
    QVERIFY(title->height() >= title->heightForWidth(title->width()));
    QVERIFY(!child<QWidget>("findings")->geometry().intersects(title->geometry()));
    QVERIFY(
        !child<QWidget>("findings")->geometry().intersects(child<QWidget>("offerBar")->geometry()));
    click("keepAsText");
    QVERIFY(isNarrow());
    doubleClickTable("people");
    QVERIFY(isShown("changedBar"));
    QVERIFY(isNarrow());
    load("select o.id from orders o, nowhere n, nothing m");
    click("loadAnyway");
    QVERIFY(isShown("showLoaded"));
    QVERIFY(isNarrow());
    click("showLoaded");
    QVERIFY(isNarrow());
}

QTEST_MAIN(TestStatementBack)
#include "tst_app_statementback.moc"
