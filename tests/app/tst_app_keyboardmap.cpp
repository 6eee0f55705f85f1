// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "window/AboutText.h"
#include "window/KeyboardMap.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QTreeWidget>

using namespace orvquery;

// Help: the keyboard map, and what the program says about itself.
class TestKeyboardMap : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() { end(); }

    void documentsAreRead();
    void menusAreRead();
    void mapHasMenusAndDocuments();
    void placesAreThereOnce();
    void everyShortcutIsInTheMap();
    void everyShortcutOfAMenuIsInTheDocument();
    void searchNarrowsTheMap();
    void mapIsThereOnce();
    void noShortcutIsThereTwice();
    void noLetterIsThereTwiceInAMenu();
    void pagesHaveTheirKeysAnywhere_data();
    void pagesHaveTheirKeysAnywhere();
    void aboutNamesTheVersions();

private:
    [[nodiscard]] QStringList shownKeys() const;
};

// Place, keys and meaning of each line that is shown.
QStringList TestKeyboardMap::shownKeys() const {
    QStringList lines;
    const auto* list = child<QTreeWidget>("keyList");
    for (int index = 0; index < list->topLevelItemCount(); ++index) {
        const QTreeWidgetItem* place = list->topLevelItem(index);
        for (int row = 0; row < place->childCount() && !place->isHidden(); ++row) {
            const QTreeWidgetItem* line = place->child(row);
            if (line->isHidden()) continue;
            lines += place->text(0) + u'|' + line->text(0) + u'|' + line->text(1);
        }
    }
    return lines;
}

void TestKeyboardMap::documentsAreRead() {
    const std::vector<KeyEntry> expected = {{"Box", "F2", "rename"},
                                            {"Box", "Up, Down", "choose a | b"},
                                            {"Link", "Delete", "delete it"}};
    QVERIFY(keysOfDocument(QStringLiteral("# Keys\n\nText | with a line.\n\n## Box\n\n"
                                          "| key | |\n|---|---|\n| F2 | rename |\n"
                                          "| Up, Down | choose a | b |\n\nMore.\n\n## Link\n\n"
                                          "| key while typing | |\n|---|---|\n"
                                          "| Delete | delete it |\n")) == expected);
    QVERIFY(keysOfDocument(QString()).empty());
}

void TestKeyboardMap::menusAreRead() {
    load("select id from orders");
    QVERIFY(child<QAction>("undo")->text() != u"&Undo");
    const std::vector<KeyEntry> entries = keysOfMenus(*m_window);
    const auto has = [&](const KeyEntry& entry) {
        return std::find(entries.begin(), entries.end(), entry) != entries.end();
    };
    QVERIFY(has({"File menu", "Ctrl+O", "Open file"}));
    QVERIFY(has({"Edit menu", "Ctrl+Z", "Undo"}));
    QVERIFY(has({"Query menu", "F5", "Run"}));
    QVERIFY(has({"Diagram menu", "Ctrl+P", "Print"}));
    QVERIFY(has({"Help menu", "F1", "Keyboard map"}));
}

void TestKeyboardMap::mapHasMenusAndDocuments() {
    press(Qt::Key_F1);
    const QStringList keys = shownKeys();
    QVERIFY(keys.contains(QStringLiteral("Diagram menu|Ctrl+P|Print")));
    QVERIFY(keys.contains(QStringLiteral("Box|Ctrl+Space|tick all rows, or none")));
    QVERIFY(keys.contains(QStringLiteral("Link|Ctrl+Delete|delete the chosen bend point")));
    QVERIFY(
        keys.contains(QStringLiteral("Window of orvquery|Alt+A, Alt+K|when loading a statement "
                                     "asks first: load anyway, keep as text")));
    // The menus say it themselves.
    QVERIFY(keys.filter(QStringLiteral("Menus of orvquery")).isEmpty());
    QVERIFY(!child<QWidget>("keyboardMap")->isModal());
}

void TestKeyboardMap::placesAreThereOnce() {
    press(Qt::Key_F1);
    const auto* list = child<QTreeWidget>("keyList");
    QStringList places;
    for (int index = 0; index < list->topLevelItemCount(); ++index) {
        places += list->topLevelItem(index)->text(0);
    }
    QVERIFY(places.contains(QStringLiteral("Diagram")));
    QVERIFY(places.contains(QStringLiteral("Diagram menu")));
    QCOMPARE(places.removeDuplicates(), 0);
}

// Of the menus and of all panes, whoever adds one. The control has places of its own.
void TestKeyboardMap::everyShortcutIsInTheMap() {
    press(Qt::Key_F1);
    QStringList keys;
    QStringList keysOfWindow;
    for (const QString& line : shownKeys()) {
        const QString place = line.section(u'|', 0, 0);
        const QStringList found = line.section(u'|', 1, 1).split(QStringLiteral(", "));
        const bool isOfWindow =
            place.endsWith(QStringLiteral(" menu")) || place == u"Window of orvquery";
        (isOfWindow ? keysOfWindow : keys) += found;
    }
    int count = 0;
    const QList<QAction*> actions = m_window->findChildren<QAction*>();
    for (const QAction* action : actions) {
        bool isOfControl = false;
        for (const QObject* each = action; each != nullptr; each = each->parent()) {
            isOfControl = isOfControl || each == &builder();
        }
        for (const QKeySequence& shortcut : action->shortcuts()) {
            const QString text = shortcut.toString(QKeySequence::NativeText);
            QVERIFY2((isOfControl ? keys + keysOfWindow : keysOfWindow).contains(text),
                     qPrintable(text + u' ' + action->text()));
            ++count;
        }
    }
    QVERIFY(count > 30);
}

// For who reads it elsewhere. One of the keys of each action is enough.
void TestKeyboardMap::everyShortcutOfAMenuIsInTheDocument() {
    QFile file(QStringLiteral(":/orvquery/keys.md"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList keys;
    for (const KeyEntry& entry : keysOfDocument(QString::fromUtf8(file.readAll()))) {
        if (entry.place != u"Menus of orvquery") continue;
        QString text = entry.keys;
        keys +=
            text.replace(QStringLiteral(" or "), QStringLiteral(", ")).split(QStringLiteral(", "));
    }
    for (const KeyEntry& entry : keysOfMenus(*m_window)) {
        const QStringList shortcuts = entry.keys.split(QStringLiteral(", "));
        const bool isThere =
            std::any_of(shortcuts.begin(), shortcuts.end(),
                        [&](const QString& shortcut) { return keys.contains(shortcut); });
        QVERIFY2(isThere, qPrintable(entry.keys + u' ' + entry.meaning));
    }
}

void TestKeyboardMap::searchNarrowsTheMap() {
    press(Qt::Key_F1);
    auto* search = child<QLineEdit>("keySearch");
    search->setText(QStringLiteral("BEND POINT IN"));
    QCOMPARE(shownKeys(),
             QStringList{"Link|Insert|make a bend point in the middle of the longest piece"});
    search->setText(QStringLiteral("no such key"));
    QCOMPARE(shownKeys(), QStringList());
    search->clear();
    QVERIFY(shownKeys().size() > 50);
}

void TestKeyboardMap::mapIsThereOnce() {
    press(Qt::Key_F1);
    auto* map = child<QWidget>("keyboardMap");
    QVERIFY(QTest::qWaitForWindowActive(map));
    QTest::keyClick(child<QLineEdit>("keySearch"), Qt::Key_Escape);
    QVERIFY(!map->isVisible());
    child<QAction>("showKeyboardMap")->trigger();
    QVERIFY(map->isVisible());
    QCOMPARE(m_window->findChildren<KeyboardMap*>().size(), 1);
}

void TestKeyboardMap::noShortcutIsThereTwice() {
    QStringList keys;
    for (const KeyEntry& entry : keysOfMenus(*m_window)) {
        keys += entry.keys.split(QStringLiteral(", "));
    }
    for (const QString& key : keys) QVERIFY2(keys.count(key) == 1, qPrintable(key));
}

// A letter that two items have chooses neither.
void TestKeyboardMap::noLetterIsThereTwiceInAMenu() {
    QStringList letters;
    const auto visit = [&](const QString& menu, const QList<QAction*>& actions,
                           auto&& again) -> void {
        for (const QAction* action : actions) {
            if (action->isSeparator()) continue;
            const QString letter = QKeySequence::mnemonic(action->text()).toString();
            if (!letter.isEmpty()) letters += menu + u'|' + letter;
            if (action->menu())
                again(menu + u'/' + action->text(), action->menu()->actions(), again);
        }
    };
    visit(QString(), m_window->menuBar()->actions(), visit);
    QVERIFY(letters.size() > 30);
    QStringList twice;
    for (const QString& letter : std::as_const(letters)) {
        if (letters.count(letter) > 1 && !twice.contains(letter)) twice += letter;
    }
    QCOMPARE(twice.join(u' '), QString());
}

void TestKeyboardMap::pagesHaveTheirKeysAnywhere_data() {
    QTest::addColumn<QString>("focus");
    QTest::newRow("filter of the tables") << QStringLiteral("filter");
    QTest::newRow("tables") << QStringLiteral("tables");
    QTest::newRow("statement") << QStringLiteral("statement");
    QTest::newRow("diagram") << QString();
    QTest::newRow("rows") << QStringLiteral("rows");
}

void TestKeyboardMap::pagesHaveTheirKeysAnywhere() {
    QFETCH(QString, focus);
    load("select id from orders");
    if (focus == u"rows") QVERIFY(runAndWait());
    const QString before = text();
    for (const Qt::Key key : {Qt::Key_4, Qt::Key_1, Qt::Key_3, Qt::Key_2, Qt::Key_1}) {
        auto* widget = focus.isEmpty() ? builder().WorkArea : m_window->findChild<QWidget*>(focus);
        widget->setFocus();
        QVERIFY(widget->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), key, Qt::AltModifier);
        QCOMPARE(builder().PageCtrl->currentIndex(), int(key) - int(Qt::Key_1));
        QVERIFY(builder().PageCtrl->isAncestorOf(QApplication::focusWidget()));
    }
    QCOMPARE(text(), before);
    QCOMPARE(child<QLineEdit>("filter")->text(), QString());
    press(Qt::Key_F1);
    QVERIFY(shownKeys().contains(QStringLiteral(
        "Window of orvquery|Alt+1 to Alt+4|the page of that number below the diagram")));
}

void TestKeyboardMap::aboutNamesTheVersions() {
    const QString text = aboutText();
    for (const QString& part :
         {QStringLiteral("OrvQueryBuilder"), QStringLiteral("SQLite"),
          QString::fromLatin1(qVersion()), QStringLiteral("QSQLITE"), QStringLiteral("MIT")}) {
        QVERIFY2(text.contains(part), qPrintable(part));
    }
}

QTEST_MAIN(TestKeyboardMap)
#include "tst_app_keyboardmap.moc"
