// SPDX-License-Identifier: MIT
#pragma once

#include "AppTestTools.h"
#include "connections/SavedConnections.h"
#include "database/Engine.h"
#include "database/SqliteDatabase.h"
#include "window/ConnectionDialog.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QSemaphore>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace apptest {

/// The dialog over engines that exist for their places alone, and somebody with a mouse and a
/// keyboard at it. A base of test classes.
class ConnectionDesk {
protected:
    // For the slots of the same purpose.
    void setUp();
    static void tearDown();
    void begin();
    void end() { m_dialog.reset(); }

    template <typename Widget>
    Widget* child(const char* name) const {
        return m_dialog->findChild<Widget*>(QLatin1String(name));
    }
    [[nodiscard]] QString field(const char* name) const { return child<QLineEdit>(name)->text(); }
    [[nodiscard]] QString state() const { return child<QLabel>("state")->text(); }
    [[nodiscard]] QComboBox& kind() const { return *child<QComboBox>("kind"); }
    [[nodiscard]] QListWidget& list() const { return *child<QListWidget>("connections"); }
    void choose(const char* scheme) const {
        kind().setCurrentIndex(kind().findData(QLatin1String(scheme)));
        Q_EMIT kind().activated(kind().currentIndex());
    }
    void type(const char* name, const QString& text) const {
        auto* edit = child<QLineEdit>(name);
        edit->setFocus();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Backspace);
        QTest::keyClicks(edit, text);
    }
    void click(const char* name) const {
        QTest::mouseClick(child<QPushButton>(name), Qt::LeftButton);
    }
    void reopen();
    std::unique_ptr<orvquery::Database> open(const orvquery::DatabaseAddress& address);

    std::unique_ptr<orvquery::ConnectionDialog> m_dialog;
    QTemporaryDir m_folder;
    QString m_database;
    QSemaphore m_started;  ///< for each trial that has begun
    QSemaphore m_let;      ///< lets trials that are held end
    bool m_isHeld = false;
    QAtomicInt m_ended;  ///< counts trials that have ended
};

inline void ConnectionDesk::setUp() {
    m_database = m_folder.filePath(QStringLiteral("shop.db"));
    QVERIFY(runStatements(
        m_database, {"CREATE TABLE a (x)", "CREATE TABLE b (x)", "CREATE VIEW c AS SELECT 1"}));
    const auto missingPart = [](const orvquery::DatabaseAddress& address) {
        return address.database.isEmpty() ? QStringLiteral("No database.")
               : address.user.isEmpty()   ? QStringLiteral("No user.")
                                          : QString();
    };
    const auto engine = [](const char* scheme, const char* title, orvquery::Engine::Place place,
                           int port, const char* driver,
                           decltype(orvquery::Engine::missingPart) missing = nullptr) {
        return orvquery::Engine{QLatin1String(scheme),
                                {},
                                QLatin1String(title),
                                QLatin1String(driver),
                                place,
                                port,
                                nullptr,
                                missing};
    };
    orvquery::setEngines(
        {engine("sqlite", "SQLite", orvquery::Engine::Place::File, -1, "QSQLITE"),
         engine("firebird", "Firebird", orvquery::Engine::Place::FileOrServer, 3050, "QSQLITE",
                missingPart),
         engine("postgresql", "PostgreSQL", orvquery::Engine::Place::Server, 5432, "QSQLITE"),
         engine("absent", "Absent", orvquery::Engine::Place::Server, 1, "QNONE"),
         engine("odbc", "ODBC", orvquery::Engine::Place::DataSource, -1, "QSQLITE")});
}

inline void ConnectionDesk::tearDown() {
    orvquery::setEngines({});
    QTRY_COMPARE(QSqlDatabase::connectionNames(), QStringList());
}

inline void ConnectionDesk::begin() {
    QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery")).clear();
    m_isHeld = false;
    reopen();
}

inline void ConnectionDesk::reopen() {
    m_dialog = std::make_unique<orvquery::ConnectionDialog>();
    m_dialog->setOpen([this](const orvquery::DatabaseAddress& address) { return open(address); });
    m_dialog->show();
    m_dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
}

inline std::unique_ptr<orvquery::Database> ConnectionDesk::open(
    const orvquery::DatabaseAddress& address) {
    m_started.release();
    if (m_isHeld) m_let.acquire();
    // Behind it nothing here is used any more.
    const auto end = qScopeGuard([this] { m_ended.fetchAndAddOrdered(1); });
    if (address.password != u"right") throw orvquery::LoginError(QStringLiteral("Wrong password."));
    return std::make_unique<orvquery::SqliteDatabase>(m_database);
}

}  // namespace apptest
