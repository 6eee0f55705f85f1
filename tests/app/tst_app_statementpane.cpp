// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "criteria/ORVQDWherePanel.h"
#include "text/Comments.h"
#include "text/EditorText.h"
#include "window/StatementEditor.h"
#include "window/TextMarks.h"

#include <QAction>
#include <QMimeData>

using namespace orvquery;

// The pane of the statement: what is asked before a text is loaded, finding, copying.
class TestStatementPane : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void findingsAreAskedAboutFirst();
    void messagesAreToldOnce();
    void offerTellsWhatTheDiagramHas();
    void findingsAreWavedUnderWithTips();
    void loadingAnyway();
    void loadedTextCanBeSeenAgain();
    void keptAsText();
    void changedTextIsNoLongerOffered();
    void backToTheStatement();
    void runTellsWhatIsToBeDone();
    void statementWithoutFindingsIsNotAskedAbout();
    void findingOfTheLoadedTextLeavesWhatIsTyped();
    void loadedOnceMoreIsAskedOnceMore();
    void otherDatabaseForgetsWhatWasOffered();

    void textWithoutATableIsRefused_data();
    void textWithoutATableIsRefused();
    void onlyMostReasonsOfARefusalAreTold();
    void commentsAreToldOf();
    void manyCommentsAreToldOfTogether();
    void commentsAreFound_data();
    void commentsAreFound();

    void mutedPartsAreAskedAbout();
    void mutedPartsAreAskedAboutBeforeRunning();
    void mutedPartsComeBehindTheFindings();
    void ownStatementLeavesMutedParts();

    void longTextIsNotPasted();
    void longTextIsNotDropped();

    void findCountsAndMarks();
    void findGoesRound();
    void findBeginsWithTheSelection();
    void findFollowsTheText();
    void findIsClosed();
    void findKeysAreThePanes();

    void copiesOneLine();
    void lineBreaksOfACopyAreTold();
    void copiesForPrograms();
    void nothingToCopy();

    void placesInTheEditor();

private:
    [[nodiscard]] int boxes() const { return builder().ListOfTables->TablesCount(); }
    [[nodiscard]] QAction& action(const char* name) const { return *child<QAction>(name); }
    [[nodiscard]] TorvQDWhereRow& condition(int index) const {
        return *builder().WherePanel->rootRow()->SubRows->Row(index);
    }
    void mute(int index) const {
        builder().WherePanel->setCurrentElement(condition(index).Controls[ekFieldName].get());
        builder().WherePanel->MuteCondition();
    }
    [[nodiscard]] QStringList waved() const;
    [[nodiscard]] QStringList hits() const;
    void find(const QString& text) const;
    [[nodiscard]] QString copied(const char* name) const;

    const QString m_doubtful = QStringLiteral("select o.id from orders o, nowhere n");
};

QStringList TestStatementPane::waved() const {
    QStringList texts;
    const auto selections = editor().extraSelections();
    for (const QTextEdit::ExtraSelection& selection : selections) {
        const bool isWaved = selection.format.underlineStyle() == QTextCharFormat::WaveUnderline;
        if (isWaved) texts += selection.cursor.selectedText();
    }
    return texts;
}

QStringList TestStatementPane::hits() const {
    QStringList texts;
    const auto selections = editor().extraSelections();
    for (const QTextEdit::ExtraSelection& selection : selections) {
        const bool isHit = selection.format.hasProperty(QTextFormat::BackgroundBrush);
        if (isHit) texts += selection.cursor.selectedText();
    }
    return texts;
}

void TestStatementPane::find(const QString& text) const {
    editor().setFocus();
    QTest::keyClick(&editor(), Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(child<QLineEdit>("findText"), text);
}

QString TestStatementPane::copied(const char* name) const {
    action(name).trigger();
    return QGuiApplication::clipboard()->text();
}

void TestStatementPane::findingsAreAskedAboutFirst() {
    load("select name from people");
    const QString statement = builder().GetSQLStatment();
    load(m_doubtful);
    QCOMPARE(builder().GetSQLStatment(), statement);
    QCOMPARE(text(), m_doubtful);
    QVERIFY(isShown("offerBar"));
    QCOMPARE(child<QListWidget>("findings")->count(), 1);
    QCOMPARE(label("findingsTitle"),
             QStringLiteral("1 part of the statement would not be held as it stands:"));
    QCOMPARE(label("statementState"), QStringLiteral("edited, not loaded"));
    QVERIFY(!isShown("refusal"));
}

// What the control says while it loads is of no interest before it does.
void TestStatementPane::messagesAreToldOnce() {
    load("select o.id from orders o left join people p on o.nothing = p.name");
    QVERIFY(isShown("offerBar"));
    QCOMPARE(m_messages, QStringList());
    click("loadAnyway");
    m_messages.removeDuplicates();
    QVERIFY(m_messages.size() <= 1);
    QCOMPARE(boxes(), 2);
}

void TestStatementPane::offerTellsWhatTheDiagramHas() {
    const QString other = QStringLiteral("This text is not loaded; the diagram has another query.");
    load(m_doubtful);
    QVERIFY(isShown("offerText"));
    QCOMPARE(label("offerText"), QStringLiteral("This text is not loaded; the diagram is empty."));
    load("select name from people");
    load(m_doubtful);
    QVERIFY(isShown("offerText"));
    QCOMPARE(label("offerText"), other);
    // One that cannot be written is there all the same.
    load("select 1, count(*) from orders");
    click("loadAnyway");
    QCOMPARE(text(), QString());
    load(m_doubtful);
    QVERIFY(isShown("offerText"));
    QCOMPARE(label("offerText"), other);
}

void TestStatementPane::findingsAreWavedUnderWithTips() {
    load(m_doubtful);
    QCOMPARE(waved(), QStringList{QStringLiteral("nowhere n")});
    auto* marks = editor().findChild<TextMarks*>();
    const int place = int(m_doubtful.indexOf(QStringLiteral("nowhere")));
    const QString tip = marks->tipAt(place + 3);
    QVERIFY(!tip.isEmpty());
    QVERIFY(child<QListWidget>("findings")->item(0)->text().endsWith(tip));
    QCOMPARE(marks->tipAt(place - 2), QString());
}

void TestStatementPane::loadingAnyway() {
    load(m_doubtful);
    click("loadAnyway");
    QCOMPARE(boxes(), 1);
    QVERIFY(text().startsWith(QStringLiteral("SELECT O.ID\nFROM ORDERS O")));
    QVERIFY(!isShown("offerBar"));
    QCOMPARE(waved(), QStringList());
    QCOMPARE(child<QListWidget>("findings")->count(), 1);
    QVERIFY(isShown("findings"));
    QVERIFY(label("findingsTitle").startsWith(QStringLiteral("1 part of the loaded statement is")));
    QCOMPARE(label("statementState"), QString());
}

void TestStatementPane::loadedTextCanBeSeenAgain() {
    load(m_doubtful);
    QVERIFY(!isShown("showLoaded"));
    click("loadAnyway");
    click("showLoaded");
    QCOMPARE(text(), m_doubtful);
    QCOMPARE(waved(), QStringList{QStringLiteral("nowhere n")});
    QVERIFY(!isShown("showLoaded"));
    click("backToStatement");
    QVERIFY(text().startsWith(QStringLiteral("SELECT O.ID")));
}

void TestStatementPane::keptAsText() {
    load("select name from people");
    const QString statement = builder().GetSQLStatment();
    load(m_doubtful);
    click("keepAsText");
    QVERIFY(!isShown("offerBar"));
    QVERIFY(editor().hasFocus());
    QCOMPARE(text(), m_doubtful);
    QCOMPARE(label("statementState"), QStringLiteral("kept as text, not loaded"));
    QCOMPARE(builder().GetSQLStatment(), statement);
    QCOMPARE(waved(), QStringList{QStringLiteral("nowhere n")});
    // Loading it asks again.
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(isShown("offerBar"));
    QCOMPARE(builder().GetSQLStatment(), statement);
}

void TestStatementPane::changedTextIsNoLongerOffered() {
    load(m_doubtful);
    QTest::keyClick(&editor(), Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(&editor(), QStringLiteral(" x"));
    QVERIFY(!isShown("offerBar"));
    QVERIFY(!isShown("findings"));
    QCOMPARE(waved(), QStringList());
    QTest::keyClick(&editor(), Qt::Key_Backspace);
    QTest::keyClick(&editor(), Qt::Key_Backspace);
    QVERIFY(isShown("offerBar"));
    QCOMPARE(waved().size(), 1);
    // It is loaded as it is now, when nothing is left to ask.
    type("select id from orders");
    action("loadAnywayAction").trigger();
    QCOMPARE(text(), QStringLiteral("SELECT ID\nFROM ORDERS"));
    QVERIFY(!isShown("findings"));
}

void TestStatementPane::backToTheStatement() {
    load(m_doubtful);
    // Nothing to go back to.
    QVERIFY(!isShown("backToStatement"));
    load("select name from people");
    load(m_doubtful);
    click("backToStatement");
    QCOMPARE(text(), QStringLiteral("SELECT NAME\nFROM PEOPLE"));
    QVERIFY(!isShown("offerBar"));
    QVERIFY(!isShown("findings"));
}

void TestStatementPane::runTellsWhatIsToBeDone() {
    load(m_doubtful);
    for (const bool isKept : {false, true}) {
        if (isKept) click("keepAsText");
        press(Qt::Key_F5);
        QVERIFY(label("resultText").startsWith(QStringLiteral("The text is not loaded")));
        QVERIFY(label("resultText").contains(QStringLiteral("Load anyway")));
        QCOMPARE(boxes(), 0);
    }
    click("remedyButton");
    QCOMPARE(boxes(), 1);
    QVERIFY(!isShown("remedyButton"));
    QVERIFY(runAndWait());
    QVERIFY(isShown("rows"));
}

void TestStatementPane::statementWithoutFindingsIsNotAskedAbout() {
    load("select o.id, o.city from orders o where o.total > 5 order by o.id");
    QVERIFY(!isShown("offerBar"));
    QCOMPARE(boxes(), 1);
    QVERIFY(builder().LoadReport().empty());
}

// The diagram may have been changed since.
void TestStatementPane::loadedOnceMoreIsAskedOnceMore() {
    load(m_doubtful);
    click("loadAnyway");
    doubleClickTable("people");
    QCOMPARE(boxes(), 2);
    load(m_doubtful);
    QVERIFY(isShown("offerBar"));
    QCOMPARE(boxes(), 2);
}

void TestStatementPane::otherDatabaseForgetsWhatWasOffered() {
    load(m_doubtful);
    openNumbers();
    QVERIFY(!isShown("offerBar"));
    QVERIFY(!isShown("findings"));
    QCOMPARE(waved(), QStringList());
    QCOMPARE(text(), m_doubtful);
    QCOMPARE(label("statementState"), QStringLiteral("edited, not loaded"));
}

void TestStatementPane::textWithoutATableIsRefused_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no FROM") << QStringLiteral("select a")
                             << QStringLiteral(
                                    "A statement without FROM cannot be shown: nothing "
                                    "is loaded.");
    QTest::newRow("unknown table")
        << QStringLiteral("select a from nowhere")
        << QStringLiteral("\"nowhere\": This table is not known and is not loaded.");
}

void TestStatementPane::textWithoutATableIsRefused() {
    QFETCH(QString, text);
    QFETCH(QString, reason);
    load("select name from people");
    const QByteArray before = builder().SaveState();
    type(QStringLiteral("x"));
    QTest::keyClick(&editor(), Qt::Key_Backspace);
    QTest::keyClicks(&editor(), text);
    press(Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(label("refusal"), QStringLiteral("Not loaded: ") + reason);
    QVERIFY(isShown("refusal"));
    QVERIFY(!isShown("offerBar"));
    QVERIFY(!isShown("findings"));
    action("loadAnywayAction").trigger();
    QCOMPARE(builder().SaveState(), before);
    QCOMPARE(this->text(), text);
}

void TestStatementPane::onlyMostReasonsOfARefusalAreTold() {
    load("select a, b from n1, n2, n3, n4");
    QCOMPARE(label("refusal").count(QStringLiteral("is not known")), 3);
    QVERIFY(!label("refusal").contains(QStringLiteral("No table")));
}

void TestStatementPane::commentsAreToldOf() {
    type("select id from orders -- all of them");
    const QString typed = text();
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(!isShown("offerBar"));
    QCOMPARE(text(), QStringLiteral("SELECT ID\nFROM ORDERS"));
    QVERIFY(isShown("findings"));
    QCOMPARE(child<QListWidget>("findings")->count(), 1);
    QCOMPARE(child<QListWidget>("findings")->item(0)->text(),
             QStringLiteral("\"-- all of them\": The diagram has no place for comments; the loaded "
                            "text has it."));
    click("showLoaded");
    QCOMPARE(text(), typed);
    QCOMPARE(waved(), QStringList{QStringLiteral("-- all of them")});
    load("select city from orders");
    QVERIFY(!isShown("findings"));
}

void TestStatementPane::findingOfTheLoadedTextLeavesWhatIsTyped() {
    load("select id from orders order by city");
    click("loadAnyway");
    auto* findings = child<QListWidget>("findings");
    Q_EMIT findings->itemClicked(findings->item(0));
    QCOMPARE(editor().textCursor().selectedText(), QStringLiteral("city"));
    type(QStringLiteral("select half"));
    Q_EMIT findings->itemClicked(findings->item(0));
    QCOMPARE(text(), QStringLiteral("select half"));
}

void TestStatementPane::manyCommentsAreToldOfTogether() {
    load("/*1*/ select /*2*/ id /*3*/ from orders, nowhere /*4*/");
    click("loadAnyway");
    const auto* findings = child<QListWidget>("findings");
    QCOMPARE(findings->count(), 4);
    QVERIFY(findings->item(0)->text().startsWith(QStringLiteral("\"nowhere")));
    QVERIFY(findings->item(2)->text().startsWith(QStringLiteral("\"/*2*/\"")));
    QCOMPARE(findings->item(3)->text(),
             QStringLiteral("\"/*3*/\": The diagram has no place for this comment and 1 more; the "
                            "loaded text has them."));
}

void TestStatementPane::commentsAreFound_data() {
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QStringList>("comments");
    const auto row = [](const char* name, const char* statement, const char* written,
                        const QStringList& comments) {
        QTest::newRow(name) << QString::fromLatin1(statement) << QString::fromLatin1(written)
                            << comments;
    };
    row("none", "select a - -b / *c", "", {});
    row("lines", "--a\r\nselect 1 --b\nfrom --c", "", {"--a", "--b", "--c"});
    row("blocks", "/**/ /*a /* b*/ c*/", "", {"/**/", "/*a /* b*/"});
    row("not closed", "a /* b -- c", "", {"/* b -- c"});
    row("quotes", "'--a' \"/*b*/\" `--c` 'it''s --d' --e", "", {"--e"});
    row("quote not closed", "'--a", "", {});
    row("kept", "select 1 /*a*/ limit /*b*/ 1", "SELECT 1 limit /*b*/ 1", {"/*a*/"});
}

void TestStatementPane::commentsAreFound() {
    QFETCH(QString, statement);
    QFETCH(QString, written);
    QFETCH(QStringList, comments);
    QStringList found;
    for (const orv::Finding& finding : commentFindings(statement, written)) {
        QCOMPARE(statement.mid(finding.start, finding.length), finding.text);
        found += finding.text;
    }
    QCOMPARE(found, comments);
}

void TestStatementPane::mutedPartsAreAskedAbout() {
    load("select id from orders where total > 5 and city = 'Rome'");
    mute(0);
    const QByteArray before = builder().SaveState();
    QTest::keyClick(&editor(), Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(&editor(), QStringLiteral(" "));
    press(Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(builder().SaveState(), before);
    QVERIFY(isShown("offerBar"));
    QCOMPARE(label("findingsTitle"),
             QStringLiteral("1 muted part of the diagram would be removed:"));
    QCOMPARE(child<QListWidget>("findings")->count(), 1);
    const QString finding = child<QListWidget>("findings")->item(0)->text();
    QVERIFY(finding.contains(QStringLiteral("TOTAL > 5")));
    QVERIFY(finding.endsWith(
        QStringLiteral("\": It is muted, so the text does not have it; loading removes it.")));
    QCOMPARE(waved(), QStringList());
    click("keepAsText");
    QVERIFY(condition(0).Muted);
    action("loadAnywayAction").trigger();
    QCOMPARE(builder().WherePanel->rootRow()->SubRows->GetCount(), 1);
    QVERIFY(!isShown("findings"));
}

void TestStatementPane::mutedPartsAreAskedAboutBeforeRunning() {
    load("select id from orders where total > 5");
    mute(0);
    type("select city from orders");
    press(Qt::Key_F5);
    click("remedyButton");
    QVERIFY(isShown("offerBar"));
    QVERIFY(condition(0).Muted);
    press(Qt::Key_F5);
    QVERIFY(label("resultText").startsWith(QStringLiteral("The text is not loaded")));
    click("remedyButton");
    QCOMPARE(text(), QStringLiteral("SELECT CITY\nFROM ORDERS"));
}

void TestStatementPane::mutedPartsComeBehindTheFindings() {
    load("select id from orders where total > 5 and id > 1");
    mute(0);
    mute(1);
    load(m_doubtful);
    QCOMPARE(label("findingsTitle"),
             QStringLiteral("1 part of the statement would not be held as it stands; 2 muted parts "
                            "of the diagram would be removed:"));
    QCOMPARE(waved(), QStringList{QStringLiteral("nowhere n")});
    auto* findings = child<QListWidget>("findings");
    QCOMPARE(findings->count(), 3);
    QTest::keyClick(&editor(), Qt::Key_End, Qt::ControlModifier);
    Q_EMIT findings->itemActivated(findings->item(1));
    QVERIFY(!editor().textCursor().hasSelection());
    Q_EMIT findings->itemActivated(findings->item(0));
    QCOMPARE(editor().textCursor().selectedText(), QStringLiteral("nowhere n"));
}

// It is the diagram's, which has them.
void TestStatementPane::ownStatementLeavesMutedParts() {
    load("select id from orders where total > 5");
    mute(0);
    editor().setFocus();
    press(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(!isShown("offerBar"));
    QVERIFY(condition(0).Muted);
}

void TestStatementPane::longTextIsNotPasted() {
    const int most = int(StatementEditor::mostCharacters);
    QCOMPARE(most, 2000000);
    type("ab");
    QGuiApplication::clipboard()->setText(QString(most - 1, u' '));
    QTest::keyClick(&editor(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(text(), QStringLiteral("ab"));
    QTRY_VERIFY(isShown("statementNote"));
    const QLocale locale;
    QCOMPARE(label("statementNote"),
             QStringLiteral("Nothing was inserted: the statement would have %1 characters, and "
                            "takes %2.")
                 .arg(locale.toString(2000001), locale.toString(2000000)));
    // The text can be used, and the note goes with the next edit.
    QTest::keyClicks(&editor(), QStringLiteral("c"));
    QVERIFY(!isShown("statementNote"));
    QCOMPARE(text(), QStringLiteral("abc"));
    // What is selected makes room.
    editor().selectAll();
    QGuiApplication::clipboard()->setText(QString(most + 1, u' '));
    QTest::keyClick(&editor(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(text(), QStringLiteral("abc"));
    QGuiApplication::clipboard()->setText(QString(most / 100, u'\n'));
    QTest::keyClick(&editor(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(text().size(), most / 100);
    QVERIFY(!isShown("statementNote"));
}

void TestStatementPane::longTextIsNotDropped() {
    type("ab");
    QMimeData data;
    const auto drop = [&](const QString& text) {
        data.setText(text);
        QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(editor().viewport(), &enter);
        QDropEvent event(QPointF(1, 1), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(editor().viewport(), &event);
    };
    drop(QString(int(StatementEditor::mostCharacters), u' '));
    QCOMPARE(text(), QStringLiteral("ab"));
    QTRY_VERIFY(isShown("statementNote"));
    drop(QStringLiteral("xy"));
    QCOMPARE(text().size(), 4);
}

void TestStatementPane::findCountsAndMarks() {
    load("select id, city from orders where city is not null");
    QVERIFY(!isShown("findText"));
    find(QStringLiteral("city"));
    QVERIFY(isShown("findText"));
    QCOMPARE(label("findCount"), QStringLiteral("1 of 2"));
    QCOMPARE(hits(), QStringList({QStringLiteral("CITY"), QStringLiteral("CITY")}));
    QCOMPARE(editor().textCursor().selectedText(), QStringLiteral("CITY"));
    QTest::keyClicks(child<QLineEdit>("findText"), QStringLiteral("x"));
    QCOMPARE(label("findCount"), QStringLiteral("Not found"));
    QCOMPARE(hits(), QStringList());
}

void TestStatementPane::findGoesRound() {
    type("a b a c a");
    QTest::keyClick(&editor(), Qt::Key_Home, Qt::ControlModifier);
    find(QStringLiteral("A"));
    const auto start = [this] { return editor().textCursor().selectionStart(); };
    auto* field = child<QLineEdit>("findText");
    QCOMPARE(start(), 0);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(start(), 4);
    QTest::keyClick(field, Qt::Key_F3);
    QCOMPARE(start(), 8);
    QCOMPARE(label("findCount"), QStringLiteral("3 of 3"));
    QTest::keyClick(field, Qt::Key_F3);
    QCOMPARE(start(), 0);
    QTest::keyClick(field, Qt::Key_F3, Qt::ShiftModifier);
    QCOMPARE(start(), 8);
    QTest::keyClick(field, Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(start(), 4);
    click("findNext");
    QCOMPARE(start(), 8);
    click("findPrevious");
    QCOMPARE(start(), 4);
}

void TestStatementPane::findBeginsWithTheSelection() {
    type("one two one");
    QTest::keyClick(&editor(), Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(&editor(), Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(child<QLineEdit>("findText")->text(), QStringLiteral("one"));
    QCOMPARE(label("findCount"), QStringLiteral("2 of 2"));
}

void TestStatementPane::findFollowsTheText() {
    type("one");
    find(QStringLiteral("one"));
    QCOMPARE(label("findCount"), QStringLiteral("1 of 1"));
    type("one one two");
    QCOMPARE(hits().size(), 2);
    QCOMPARE(label("findCount"), QStringLiteral("2 hits"));
}

void TestStatementPane::findIsClosed() {
    type("one");
    find(QStringLiteral("one"));
    QTest::keyClick(child<QLineEdit>("findText"), Qt::Key_Escape);
    QVERIFY(!isShown("findText"));
    QVERIFY(editor().hasFocus());
    QCOMPARE(hits(), QStringList());
    // What was searched for is not forgotten.
    QTest::keyClick(&editor(), Qt::Key_F3);
    QVERIFY(isShown("findText"));
    QCOMPARE(label("findCount"), QStringLiteral("1 of 1"));
    QTest::keyClick(&editor(), Qt::Key_Escape);
    QVERIFY(!isShown("findText"));
}

void TestStatementPane::findKeysAreThePanes() {
    child<QLineEdit>("filter")->setFocus();
    QTest::keyClick(child<QLineEdit>("filter"), Qt::Key_F, Qt::ControlModifier);
    QVERIFY(!isShown("findText"));
    editor().setFocus();
    QTest::keyClick(&editor(), Qt::Key_F, Qt::ControlModifier);
    QVERIFY(isShown("findText"));
    QVERIFY(child<QLineEdit>("findText")->hasFocus());
}

void TestStatementPane::copiesOneLine() {
    load("select id, city from orders");
    QCOMPARE(copied("copyOneLine"), QStringLiteral("SELECT ID, CITY FROM ORDERS"));
    editor().setPlainText(QStringLiteral("select id -- the key\nfrom orders"));
    QCOMPARE(copied("copyOneLine"), QStringLiteral("select id /* the key */ from orders"));
}

void TestStatementPane::lineBreaksOfACopyAreTold() {
    editor().setPlainText(QStringLiteral("select 'a\nb\n'\nfrom orders"));
    QCOMPARE(copied("copyOneLine"), QStringLiteral("select 'a\nb\n' from orders"));
    QVERIFY(isShown("statementNote"));
    QCOMPARE(label("statementNote"),
             QStringLiteral("The copy has 3 lines: what stands in quotes keeps its line breaks."));
    editor().setPlainText(QStringLiteral("select 'a'\nfrom orders"));
    QVERIFY(!isShown("statementNote"));
    QCOMPARE(copied("copyOneLine"), QStringLiteral("select 'a' from orders"));
    QVERIFY(!isShown("statementNote"));
}

void TestStatementPane::copiesForPrograms() {
    load("select id from orders");
    QCOMPARE(copied("copyForCpp"), QStringLiteral("\"SELECT ID\\n\"\n\"FROM ORDERS\""));
    QCOMPARE(copied("copyForPython"),
             QStringLiteral("(\n    \"SELECT ID\\n\"\n    \"FROM ORDERS\"\n)"));
    QCOMPARE(copied("copyForJava"), QStringLiteral("\"SELECT ID\\n\" +\n\"FROM ORDERS\""));
}

void TestStatementPane::nothingToCopy() {
    QVERIFY(!action("copyOneLine").isEnabled());
    QVERIFY(!action("copyFor").isEnabled());
    type("x");
    QVERIFY(action("copyOneLine").isEnabled());
    QVERIFY(action("copyFor").isEnabled());
}

void TestStatementPane::placesInTheEditor() {
    const QString text = QStringLiteral("a\r\nb\rc\r\n\r\nd");
    QCOMPARE(withSingleBreaks(text), QStringLiteral("a\nb\nc\n\nd"));
    const EditorPlaces place(text);
    QList<int> places;
    for (int position = 0; position <= text.size(); ++position) places += place(position);
    QCOMPARE(places, QList<int>({0, 1, 2, 2, 3, 4, 5, 6, 6, 7, 7, 8}));
}

QTEST_MAIN(TestStatementPane)
#include "tst_app_statementpane.moc"
