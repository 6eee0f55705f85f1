// SPDX-License-Identifier: MIT
#pragma once

#include "AppTestTools.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"
#include "window/JoinDialog.h"
#include "window/KeepQueryDialog.h"
#include "window/MainWindow.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAbstractItemView>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSettings>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <functional>

namespace apptest {

/// The window on tables that refer to each other, and somebody who adds them and answers what is
/// asked about their joins. A base of test classes.
class JoinDesk {
protected:
    // For the slots of the same purpose.
    void setUp();
    void begin();
    void end();

    [[nodiscard]] TorvQueryBuilder& builder() const {
        return *m_window->findChild<TorvQueryBuilder*>();
    }
    [[nodiscard]] TorvQDWorkArea& area() const { return *builder().WorkArea; }
    [[nodiscard]] QString text() const {
        return m_window->findChild<QPlainTextEdit*>(QStringLiteral("statement"))->toPlainText();
    }
    [[nodiscard]] QStringList links() const;
    [[nodiscard]] QStringList boxes() const;
    void add(const char* table) const;
    void load(const char* statement) const { builder().LoadSQL(QString::fromLatin1(statement)); }
    void answer(std::function<void(orvquery::JoinDialog& dialog)> answer) {
        m_answer = std::move(answer);
    }
    static QTreeWidget& listOf(const orvquery::JoinDialog& dialog) {
        return *dialog.findChild<QTreeWidget*>(QStringLiteral("proposals"));
    }

    std::unique_ptr<orvquery::MainWindow> m_window;
    std::function<void(orvquery::JoinDialog& dialog)> m_answer;
    QStringList m_asked;  ///< the sentences of the last dialog
    int m_dialogs = 0;
    QStringList m_messages;
    QTemporaryDir m_folder;
    QString m_database;
};

inline void JoinDesk::setUp() {
    m_database = m_folder.filePath(QStringLiteral("shop.db"));
    QVERIFY(runStatements(
        m_database,
        {"CREATE TABLE customers (custno INTEGER PRIMARY KEY, name TEXT)",
         "CREATE TABLE orders (orderno INTEGER PRIMARY KEY, custno INT REFERENCES customers)",
         ("CREATE TABLE items (orderno INT REFERENCES orders, line INT, prodno INT REFERENCES "
          "products, PRIMARY KEY (orderno, line))"),
         "CREATE TABLE products (prodno INTEGER PRIMARY KEY)",
         ("CREATE TABLE returns (id INTEGER PRIMARY KEY, o INT, l INT, "
          "FOREIGN KEY (o, l) REFERENCES items)"),
         "CREATE TABLE staff (no INTEGER PRIMARY KEY, boss INT REFERENCES staff)",
         "CREATE TABLE trips (start INT REFERENCES places, goal INT REFERENCES places)",
         "CREATE TABLE places (id INTEGER PRIMARY KEY)",
         "CREATE TABLE \"Guest Book\" (\"Place Id\" INT REFERENCES places)",
         "CREATE TABLE tags (id INTEGER PRIMARY KEY)", "CREATE TABLE pins (tag_id INT)",
         "CREATE TABLE stock (prodno INT REFERENCES products, placeno INT REFERENCES places)",
         "CREATE TABLE lost (ref INT REFERENCES nowhere)"}));
}

inline void JoinDesk::begin() {
    QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery")).clear();
    m_messages.clear();
    m_asked.clear();
    m_dialogs = 0;
    m_answer = {};
    orv::setMessageService([this](const orv::MessageRequest& request) {
        m_messages += request.text;
        return orv::MessageAnswer::Ok;
    });
    orv::setErrorHandler([this](const QString& text) { m_messages += text; });
    orv::setDialogRunner([this](QDialog& dialog) {
        if (qobject_cast<orvquery::KeepQueryDialog*>(&dialog)) {
            return int(orvquery::KeepQueryDialog::Choice::Empty);
        }
        ++m_dialogs;
        auto& joins = dynamic_cast<orvquery::JoinDialog&>(dialog);
        m_asked.clear();
        for (int row = 0; row < listOf(joins).topLevelItemCount(); ++row) {
            m_asked += listOf(joins).topLevelItem(row)->toolTip(0);
        }
        const QPointer<QDialog> alive(&dialog);
        dialog.show();
        dialog.activateWindow();
        // A window counts as active already when the one behind it is.
        [&] { QTRY_VERIFY(dialog.isActiveWindow()); }();
        if (m_answer) m_answer(joins);
        return alive ? alive->result() : int(QDialog::Accepted);
    });
    m_window = std::make_unique<orvquery::MainWindow>();
    m_window->show();
    QVERIFY(m_window->openDatabase(m_database));
}

inline void JoinDesk::end() {
    m_window.reset();
    orv::setMessageService({});
    orv::setErrorHandler({});
    orv::setDialogRunner({});
    // A connection that is slow to close goes on by itself for a moment after its window.
    QTRY_COMPARE(QSqlDatabase::connectionNames(), QStringList());
}

inline QStringList JoinDesk::links() const {
    QStringList texts;
    for (const TorvQDLink* link : area().Links()) {
        texts += link->Join->GetTable(0)->GetAlias() + u'.' + link->Item1->Name + u'=' +
                 link->Join->GetTable(1)->GetAlias() + u'.' + link->Item2->Name;
    }
    return texts;
}

inline QStringList JoinDesk::boxes() const {
    QStringList names;
    for (const TorvQDTable* box : area().tablesByCreation()) names += box->GetAlias();
    return names;
}

// As a mouse does it: press, release, double click, release.
inline void JoinDesk::add(const char* table) const {
    auto* list = m_window->findChild<QAbstractItemView*>(QStringLiteral("tables"));
    const QModelIndexList found =
        list->model()->match(list->model()->index(0, 0), Qt::DisplayRole,
                             QString::fromLatin1(table), 1, Qt::MatchExactly);
    QVERIFY(!found.isEmpty());
    list->scrollTo(found.front());
    const QPoint place = list->visualRect(found.front()).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
}

}  // namespace apptest
