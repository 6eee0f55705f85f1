// SPDX-License-Identifier: MIT
#include "window/ConnectionTest.h"

#include "database/Engine.h"
#include "database/OpenDatabase.h"

#include <algorithm>

namespace orvquery {

namespace {

QString connectedText(const DatabaseAddress& address, const std::vector<TableEntry>& entries) {
    const auto tables = std::count_if(entries.begin(), entries.end(), [](const TableEntry& entry) {
        return !isCalled(entry.kind);
    });
    const Engine* engine = engineOf(address.scheme);
    const QString title = engine == nullptr ? address.scheme : engine->title;
    return tables == 1 ? ConnectionTest::tr("Connected: %1, 1 table").arg(title)
                       : ConnectionTest::tr("Connected: %1, %2 tables").arg(title).arg(tables);
}

}  // namespace

ConnectionTest::ConnectionTest(QObject* parent)
    : QObject(parent),
      m_open([](const DatabaseAddress& address) { return openDatabase(address); }) {}

ConnectionTest::~ConnectionTest() {
    cancel();
}

void ConnectionTest::start(const DatabaseAddress& address) {
    cancel();
    m_database = new BackgroundDatabase([open = m_open, address] { return open(address); }, this);
    connect(m_database, &BackgroundDatabase::listed, this,
            [this, address](const std::vector<TableEntry>& entries) {
                end(true, connectedText(address, entries));
            });
    connect(m_database, &BackgroundDatabase::failed, this,
            [this](const QString& sentence) { end(false, sentence); });
    m_database->refresh();
}

// The database may be telling of its end at this moment.
void ConnectionTest::cancel() {
    if (m_database == nullptr) return;
    BackgroundDatabase* const database = std::exchange(m_database, nullptr);
    disconnect(database, nullptr, this, nullptr);
    database->cancel();
    database->deleteLater();
}

void ConnectionTest::end(bool isConnected, const QString& sentence) {
    cancel();
    Q_EMIT finished(isConnected, sentence);
}

}  // namespace orvquery
