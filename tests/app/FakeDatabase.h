// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"

#include <QSemaphore>
#include <QSqlError>
#include <QThread>

#include <atomic>
#include <memory>
#include <mutex>

// A database without a server, which blocks, fails and grows as a test wants it.
namespace apptest {

/// What the test's thread and that of the database share.
struct Script {
    std::vector<orvquery::TableEntry> entries;
    std::vector<orvquery::ForeignKey> keys;
    QStringList defaultSchemas = {};
    /// What a step does besides; empty does nothing. Replaced only while no thread is at it.
    std::function<void()> onOpen = {};
    std::function<void()> onEntries = {};
    std::function<void()> onColumns = {};
    std::function<void()> onKeys = {};
    orvquery::StopSwitchMaker makeStopSwitch = nullptr;
    std::atomic<int> opened = 0;
    std::atomic<int> described = 0;
    std::atomic<bool> hasListed = false;
    std::atomic<QThread*> thread = nullptr;
};

class FakeDatabase : public orvquery::Database {
public:
    explicit FakeDatabase(std::shared_ptr<Script> script)
        : Database(settingsFor(*script), orvquery::NameFolding::sqlite()),
          m_script(std::move(script)) {
        ++m_script->opened;
        m_script->thread = QThread::currentThread();
        if (m_script->onOpen) m_script->onOpen();
        openCatalog();
    }

    [[nodiscard]] QString title() const override { return QStringLiteral("fake"); }
    [[nodiscard]] bool hasStrictTypes() const override { return false; }

protected:
    [[nodiscard]] std::vector<orvquery::TableEntry> readEntries() const override {
        if (m_script->onEntries) m_script->onEntries();
        for (std::size_t index = 0; index < m_script->entries.size(); ++index) countEntry();
        m_script->hasListed = true;
        return m_script->entries;
    }
    [[nodiscard]] std::vector<orvquery::ColumnEntry> readColumns(
        const orvquery::TableEntry& entry) const override {
        ++m_script->described;
        if (m_script->onColumns) m_script->onColumns();
        if (entry.name.startsWith(QStringLiteral("gone"))) return {};
        return {
            {QStringLiteral("id"), ftInteger, QStringLiteral("INTEGER"), true, true},
            {QStringLiteral("of_") + entry.name, ftString, QStringLiteral("TEXT"), false, false}};
    }
    [[nodiscard]] std::vector<TParam> readParameters(const orvquery::TableEntry&) const override {
        return {};
    }
    [[nodiscard]] std::vector<orvquery::ForeignKey> readForeignKeys() const override {
        if (m_script->onKeys) m_script->onKeys();
        return m_script->keys;
    }
    [[nodiscard]] QStringList defaultSchemas() const override { return m_script->defaultSchemas; }

private:
    static orvquery::ConnectionSettings settingsFor(const Script& script) {
        orvquery::ConnectionSettings settings;
        settings.driver = QStringLiteral("QSQLITE");
        settings.databaseName = QStringLiteral(":memory:");
        settings.makeStopSwitch = script.makeStopSwitch;
        return settings;
    }

    std::shared_ptr<Script> m_script;
};

inline std::shared_ptr<Script> makeScript(const QStringList& tables) {
    auto script = std::make_shared<Script>();
    for (const QString& table : tables) script->entries.push_back({table});
    return script;
}

inline std::function<std::unique_ptr<orvquery::Database>()> openerOf(
    const std::shared_ptr<Script>& script) {
    return [script] { return std::make_unique<FakeDatabase>(script); };
}

}  // namespace apptest
