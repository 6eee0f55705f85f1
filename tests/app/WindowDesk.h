// SPDX-License-Identifier: MIT
#pragma once

#include "AppTestTools.h"
#include "documents/RecoveryFolder.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"
#include "window/KeepQueryDialog.h"
#include "window/MainWindow.h"
#include "window/RunController.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSemaphore>
#include <QSettings>
#include <QSplitter>
#include <QStandardPaths>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolButton>

namespace apptest {

/// A window of the program with small databases, as a person uses it: mouse and keys in, what can
/// be seen out. A base of test classes; setUp comes before the first test, begin and end around
/// each.
class WindowDesk {
protected:
    void setUp();
    void begin();
    void end();

    template <typename Widget>
    Widget* child(const char* name) const {
        return m_window->findChild<Widget*>(QLatin1String(name));
    }
    [[nodiscard]] TorvQueryBuilder& builder() const {
        return *m_window->findChild<TorvQueryBuilder*>();
    }
    [[nodiscard]] QPlainTextEdit& editor() const { return *child<QPlainTextEdit>("statement"); }
    [[nodiscard]] QString text() const { return editor().toPlainText(); }
    [[nodiscard]] QString label(const char* name) const { return child<QLabel>(name)->text(); }
    [[nodiscard]] bool isShown(const char* name) const { return child<QWidget>(name)->isVisible(); }
    [[nodiscard]] QString cell(int row, int column) const;
    [[nodiscard]] QModelIndex tableIndex(const char* name) const;

    void open(const orvquery::Options& options);
    void type(const QString& text) const;
    void load(const QString& text) const;
    void openNumbers() const;
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    void click(const char* button) const;
    void doubleClickTable(const char* name) const;
    /// A new query, in place of one that nobody saves.
    void startAnew() const;
    [[nodiscard]] bool runAndWait() const;

    std::unique_ptr<orvquery::MainWindow> m_window;
    QStringList m_messages;
    QTemporaryDir m_folder;
    QString m_database;
    QString m_numbers;
};

inline void WindowDesk::setUp() {
    m_database = m_folder.filePath(QStringLiteral("shop.db"));
    QVERIFY(runStatements(
        m_database, {"CREATE TABLE orders (id INTEGER PRIMARY KEY, city TEXT, total DECIMAL)",
                     "CREATE TABLE people (name TEXT)",
                     "CREATE VIEW rich AS SELECT id FROM orders WHERE total > 5",
                     "INSERT INTO orders VALUES (1, 'Rome', 10.5), (2, NULL, 3), (3, '', NULL)"}));
    m_numbers = m_folder.filePath(QStringLiteral("numbers.db"));
    const QString recursive = QStringLiteral(
        "AS WITH RECURSIVE n(x) AS (VALUES(1) UNION ALL SELECT x + 1 FROM n%1) SELECT %2 FROM n");
    QVERIFY(runStatements(m_numbers,
                          {"CREATE VIEW many " + recursive.arg(" LIMIT 150000", "x"),
                           "CREATE VIEW endless " + recursive.arg("", "max(x) AS x"),
                           "CREATE VIEW large AS SELECT 'a' AS name, zeroblob(2000000) AS data",
                           "CREATE VIEW lowest AS SELECT 5 AS x UNION ALL "
                           "SELECT -9223372036854775807 - 1"}));
}

inline void WindowDesk::begin() {
    orvtest::failOnAnyWarning();
    QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery")).clear();
    // A run that was broken off must not concern this one.
    QDir(orvquery::RecoveryFolder().path()).removeRecursively();
    m_messages.clear();
    orv::setMessageService([this](const orv::MessageRequest& request) {
        m_messages += request.text;
        return orv::MessageAnswer::Ok;
    });
    orvquery::Options options;
    options.database = m_database;
    open(options);
}

inline void WindowDesk::end() {
    m_window.reset();
    orv::setMessageService({});
    orv::setDialogRunner({});
    // A connection that is slow to close goes on by itself for a moment after its window.
    QTRY_COMPARE(QSqlDatabase::connectionNames(), QStringList());
}

inline void WindowDesk::open(const orvquery::Options& options) {
    m_window = std::make_unique<orvquery::MainWindow>();
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_window->begin(options);
}

inline QString WindowDesk::cell(int row, int column) const {
    const QAbstractItemModel* model = child<QTableView>("rows")->model();
    return model->index(row, column).data().toString();
}

inline QModelIndex WindowDesk::tableIndex(const char* name) const {
    const QAbstractItemModel* model = child<QAbstractItemView>("tables")->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->index(row, 0).data().toString() == QLatin1String(name)) {
            return model->index(row, 0);
        }
    }
    return {};
}

inline void WindowDesk::type(const QString& text) const {
    editor().setFocus();
    editor().selectAll();
    QTest::keyClicks(&editor(), text);
}

inline void WindowDesk::load(const QString& text) const {
    type(text);
    press(Qt::Key_Return, Qt::ControlModifier);
}

inline void WindowDesk::openNumbers() const {
    QVERIFY(m_window->openDatabase(m_numbers));
}

inline void WindowDesk::press(Qt::Key key, Qt::KeyboardModifiers modifiers) const {
    QTest::keyClick(m_window.get(), key, modifiers);
}

inline void WindowDesk::click(const char* button) const {
    QTest::mouseClick(child<QWidget>(button), Qt::LeftButton);
}

// As a mouse does it: press, release, double click, release.
inline void WindowDesk::doubleClickTable(const char* name) const {
    auto* list = child<QAbstractItemView>("tables");
    const QPoint place = list->visualRect(tableIndex(name)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
}

inline void WindowDesk::startAnew() const {
    const orv::DialogRunner before = orv::setDialogRunner([](QDialog& dialog) {
        dialog.findChild<QPushButton*>(QStringLiteral("discardChanges"))->click();
        return dialog.result();
    });
    press(Qt::Key_N, Qt::ControlModifier);
    orv::setDialogRunner(before);
}

inline bool WindowDesk::runAndWait() const {
    auto* stop = child<QToolButton>("stopButton");
    press(Qt::Key_F5);
    return QTest::qWaitFor([&] { return !stop->isEnabled(); }, 30000);
}

}  // namespace apptest
