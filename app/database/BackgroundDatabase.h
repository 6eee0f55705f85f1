// SPDX-License-Identifier: MIT
#pragma once

#include "database/Database.h"
#include "database/DatabaseAddress.h"

#include <QHash>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace orvquery {

class WorkerThread;

/// A database whose catalog is read in a thread of its own, for the window's thread: that stays
/// alive however long the database takes. What was listed and described once is known from then on,
/// until the list is read again. A question about a table that is not known yet waits for the
/// answer, after a moment with a box that can be cancelled. Whenever something fails or is
/// cancelled the connection is given up, also one that does not answer, and what is asked next
/// makes a new one.
class BackgroundDatabase : public QObject, public QueryableSource {
    Q_OBJECT

public:
    /// Opens the database, in the thread to which it will belong. May be called again.
    using Opener = std::function<std::unique_ptr<Database>()>;

    explicit BackgroundDatabase(const DatabaseAddress& address, QObject* parent = nullptr);
    explicit BackgroundDatabase(Opener opener, QObject* parent = nullptr);
    ~BackgroundDatabase() override;

    /// Reads the list of tables, on the connection that is there or else on a new one. Ends with
    /// listed, failed or cancelled; nothing when it is under way already.
    void refresh();
    /// Gives up the reading of the list, and all that waits for an answer.
    void cancel();
    [[nodiscard]] bool isListing() const { return m_isListing; }
    [[nodiscard]] bool isListed() const { return m_isListed; }

    /// Reads the columns of a table; described comes, or notDescribed, also when they are known.
    void fetch(const TableName& name);
    /// The table as it is known by now, without asking; none when it is not.
    [[nodiscard]] const TableDescription* known(const TableName& name) const;

    // Of the database as it was listed last; nothing before.
    [[nodiscard]] QString title() const override { return m_facts.title; }
    [[nodiscard]] std::vector<TableEntry> tables() const override { return m_entries; }
    [[nodiscard]] std::vector<ForeignKey> foreignKeys() const override;
    [[nodiscard]] QStringList reservedWords() const override { return m_facts.reservedWords; }
    [[nodiscard]] QString inStatement(const TableName& name) const override;
    [[nodiscard]] QString forLoading(const QString& statement) const override;
    [[nodiscard]] const ConnectionSettings& settings() const override { return m_facts.settings; }
    [[nodiscard]] bool hasStrictTypes() const override { return m_facts.hasStrictTypes; }
    [[nodiscard]] QStringList defaultSchemas() const override { return m_facts.defaultSchemas; }

    // These wait for an answer. They raise orv::Error also when that is cancelled.
    [[nodiscard]] std::optional<TableDescription> find(
        const QString& nameInStatement) const override;
    [[nodiscard]] std::optional<TableDescription> describe(const TableName& name) const override;

    /// How long a question waits for its answer until a box says so.
    void setShortWait(std::chrono::milliseconds time) { m_shortWait = time; }
    /// How long the end of this object waits for the connection's; then it is left to itself.
    void setPatience(std::chrono::milliseconds time) { m_patience = time; }

Q_SIGNALS:
    /// The database was opened; its list is being read.
    void opened();
    void progressed(int tables);
    void listed(const std::vector<orvquery::TableEntry>& entries,
                const std::vector<orvquery::ForeignKey>& keys);
    /// The list cannot be read, in one sentence; another user or password may help against some.
    void failed(const QString& sentence, bool isLogin);
    void cancelled();
    void described(const orvquery::TableName& name, const orvquery::TableDescription& table);
    void notDescribed(const orvquery::TableName& name, const QString& sentence);
    /// Something that was waited for has come.
    void answered();

private:
    struct Facts {
        QString title;
        ConnectionSettings settings;
        bool hasStrictTypes = true;
        QStringList reservedWords;
        QStringList defaultSchemas;
        std::optional<NameFolding> folding;
    };
    struct List;
    struct Answer;
    class Mailbox;
    class Session;
    using Question = std::function<std::optional<TableDescription>(const Database&)>;

    Session& session();
    [[nodiscard]] bool isPresent(int session) const;
    void giveUp();
    void takeFacts(const Facts& facts);
    void takeList(const List& list);
    void takeFailure(const QString& sentence, bool isLogin);
    void takeAnswer(const std::shared_ptr<Answer>& answer);
    void tellOf(const Answer& answer);
    std::shared_ptr<Answer> put(const QString& name, const std::optional<TableName>& fetched,
                                const Question& question);
    [[nodiscard]] std::optional<TableDescription> ask(const QString& name,
                                                      const Question& question);
    [[nodiscard]] std::shared_ptr<Answer> waitFor(const QString& name, const Question& question);
    void waitWithBox(const QString& name, const Answer& answer);
    void remember(const TableDescription& table);

    Opener m_opener;
    std::shared_ptr<Mailbox> m_mailbox;
    std::shared_ptr<Session> m_session;
    std::unique_ptr<WorkerThread> m_thread;          ///< of the session
    int m_sessions = 0;                              ///< so far
    std::vector<std::shared_ptr<Answer>> m_waiting;  ///< for an answer, or to be told of it
    std::chrono::milliseconds m_shortWait;
    std::chrono::milliseconds m_patience;
    bool m_isListing = false;
    bool m_isListed = false;
    Facts m_facts;
    std::vector<TableEntry> m_entries;
    std::vector<ForeignKey> m_keys;
    QString m_keysProblem;
    QHash<TableName, std::shared_ptr<const TableDescription>> m_known;
    QHash<QString, TableName> m_found;  ///< by the names in statements that have been asked
};

}  // namespace orvquery
