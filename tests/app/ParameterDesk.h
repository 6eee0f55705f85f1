// SPDX-License-Identifier: MIT
#pragma once

#include "AppTestTools.h"
#include "database/WaitingBox.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"
#include "window/MainWindow.h"
#include "workarea/ORVQDFloatPanel.h"
#include "workarea/ORVQDSProc.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <functional>
#include <memory>
#include <vector>

// What the tests of procedures and their parameters share.
namespace apptest {

/// Only the active window has shortcuts.
inline void activate(QWidget& window) {
    window.show();
    window.activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), &window);
}

template <typename Widget>
Widget* childOf(const QWidget& parent, const char* name) {
    return parent.findChild<Widget*>(QLatin1String(name));
}

/// Chooses a button by its letter; it shows for a moment that it is pressed.
inline void choose(QDialog& dialog, const char* name, Qt::Key letter) {
    QTest::keyClick(&dialog, letter, Qt::AltModifier);
    QTRY_VERIFY(childOf<QRadioButton>(dialog, name)->isChecked());
}

/// Beside its text a wide button takes no click.
inline void clickOn(QAbstractButton& button) {
    QTest::mouseClick(&button, Qt::LeftButton, {}, {8, button.height() / 2});
}

/// The window on a small database, and somebody with a mouse and a keyboard at it. A test class
/// derives from it.
class ParameterDesk {
protected:
    // For the slots of the same purpose.
    [[nodiscard]] bool makeDatabase();
    void begin();
    void end();

    template <typename Widget>
    [[nodiscard]] Widget* child(const char* name) const {
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

    void doubleClickInList(const QString& name) const;
    void doubleClickRow(const char* name) const;
    void load(const char* statement) const;
    void run() const;
    [[nodiscard]] bool waitForEnd() const;
    [[nodiscard]] bool waitForRows() const;
    /// Does that with the next dialogs, one after the other, once they are shown.
    void answer(const std::function<void(QDialog& dialog)>& next) { m_answers.push_back(next); }

    QTemporaryDir m_folder;
    QString m_database;
    std::unique_ptr<orvquery::MainWindow> m_window;
    QStringList m_messages;

private:
    std::vector<std::function<void(QDialog&)>> m_answers;
    std::size_t m_answered = 0;
};

inline bool ParameterDesk::makeDatabase() {
    QLocale::setDefault(QLocale::c());
    m_database = m_folder.filePath(QStringLiteral("shop.db"));
    return runStatements(m_database,
                         {"CREATE TABLE orders (id INTEGER PRIMARY KEY, city TEXT, total DECIMAL)",
                          "CREATE TABLE \"it's\" (a, b)",
                          "INSERT INTO orders VALUES (1, 'Rome', 10.5), (2, NULL, 3)"});
}

inline void ParameterDesk::begin() {
    orvtest::failOnAnyWarning();
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
        // A slow server has its box shown, which ends by itself and asks nothing.
        if (qobject_cast<orvquery::WaitingBox*>(&dialog)) return dialog.exec();
        if (m_answered == m_answers.size()) return int(QDialog::Rejected);
        const auto answer = m_answers[m_answered++];
        QTimer::singleShot(0, &dialog, [answer, &dialog] {
            activate(dialog);
            answer(dialog);
        });
        return dialog.exec();
    });
    m_window = std::make_unique<orvquery::MainWindow>();
    activate(*m_window);
    orvquery::Options options;
    options.database = m_database;
    m_window->begin(options);
}

inline void ParameterDesk::end() {
    QCOMPARE(m_answered, m_answers.size());
    m_window.reset();
    orv::setMessageService({});
    orv::setDialogRunner({});
    QCOMPARE(m_messages, QStringList());
    // A connection that is slow to close goes on by itself for a moment after its window.
    QTRY_COMPARE(QSqlDatabase::connectionNames(), QStringList());
}

inline QStringList ParameterDesk::column(int number) const {
    const QAbstractItemModel* model = child<QTableView>("rows")->model();
    QStringList cells;
    for (int row = 0; row < model->rowCount(); ++row) {
        cells += model->index(row, number).data().toString();
    }
    return cells;
}

inline QModelIndex ParameterDesk::listIndex(const QString& name) const {
    const QAbstractItemModel* model = child<QAbstractItemView>("tables")->model();
    const QModelIndexList found = model->match(model->index(0, 0), Qt::DisplayRole, name, 1,
                                               Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? QModelIndex() : found.front();
}

// As a mouse does it: press, release, double click, release.
inline void ParameterDesk::doubleClickInList(const QString& name) const {
    auto* list = child<QAbstractItemView>("tables");
    list->scrollTo(listIndex(name));
    const QPoint place = list->visualRect(listIndex(name)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
}

inline void ParameterDesk::doubleClickRow(const char* name) const {
    TorvQDWorkArea* area = builder().WorkArea;
    TorvQDSProc* table = box();
    TorvQDListItem* item = rowOf(*table, name);
    table->SetFirstVisibleItem(item->GetIndex());
    const TRect rect = table->GetItemRect(item);
    const QPoint place((rect.Left + rect.Right) / 2, (rect.Top + rect.Bottom) / 2);
    QTest::mouseClick(area->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(area->viewport(), Qt::LeftButton, {}, place);
}

inline void ParameterDesk::load(const char* statement) const {
    child<QPlainTextEdit>("statement")->setPlainText(QLatin1String(statement));
    activate(*m_window);
    QTest::keyClick(m_window.get(), Qt::Key_Return, Qt::ControlModifier);
}

inline void ParameterDesk::run() const {
    activate(*m_window);
    QTest::keyClick(m_window.get(), Qt::Key_F5);
}

inline bool ParameterDesk::waitForEnd() const {
    auto* stop = child<QToolButton>("stopButton");
    return QTest::qWaitFor([&] { return !stop->isEnabled(); }, 30000);
}

inline bool ParameterDesk::waitForRows() const {
    if (!waitForEnd()) return false;
    if (child<QTableView>("rows")->isVisible()) return true;
    qWarning("no rows: %s", qPrintable(child<QLabel>("resultText")->text()));
    return false;
}

}  // namespace apptest
