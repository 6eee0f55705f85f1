// SPDX-License-Identifier: MIT
#include "database/BackgroundDatabase.h"

#include "database/OpenDatabase.h"
#include "database/Problem.h"
#include "database/WaitingBox.h"
#include "database/WorkerThread.h"
#include "toolkit/Services.h"

#include <QApplication>
#include <QPointer>

#include <condition_variable>
#include <mutex>

namespace orvquery {

namespace {

// Shorter than what a person takes for a freeze.
constexpr std::chrono::milliseconds usualShortWait(250);

// Whoever closes the window waits for this.
constexpr std::chrono::milliseconds usualPatience(1000);

// A query that was about to begin would miss a single call.
constexpr std::chrono::milliseconds stopAgain(50);

QString stoppedSentence(const QString& name) {
    return QStringLiteral("Reading the columns of %1 was stopped.").arg(name);
}

QString goneSentence(const QString& name) {
    return QStringLiteral("The table \"%1\" is not there any more.").arg(name);
}

}  // namespace

struct BackgroundDatabase::List {
    std::vector<TableEntry> entries;
    std::vector<ForeignKey> keys;
    QString keysProblem;
};

/// The answer to a question about one table. Shared by the threads.
struct BackgroundDatabase::Answer {
    explicit Answer(QString asked) : name(std::move(asked)) {}

    const QString name;                ///< as it was asked for
    int session = 0;                   ///< that is to answer it
    std::optional<TableName> fetched;  ///< nobody waits for it: a signal tells of it

    void set(std::optional<TableDescription> table, const QString& problem);
    [[nodiscard]] bool waitFor(std::chrono::milliseconds time) const;
    [[nodiscard]] bool isThere() const { return waitFor(std::chrono::milliseconds(0)); }
    // Not before it is there.
    [[nodiscard]] const std::optional<TableDescription>& table() const { return m_table; }
    [[nodiscard]] const QString& problem() const { return m_problem; }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_change;
    bool m_isThere = false;
    std::optional<TableDescription> m_table;
    QString m_problem;
};

// The first one counts.
void BackgroundDatabase::Answer::set(std::optional<TableDescription> table,
                                     const QString& problem) {
    const std::lock_guard lock(m_mutex);
    if (m_isThere) return;
    m_table = std::move(table);
    m_problem = problem;
    m_isThere = true;
    m_change.notify_all();
}

bool BackgroundDatabase::Answer::waitFor(std::chrono::milliseconds time) const {
    std::unique_lock lock(m_mutex);
    return m_change.wait_for(lock, time, [this] { return m_isThere; });
}

/// Brings what a thread has found to the object, as long as there is one. Shared by the threads.
class BackgroundDatabase::Mailbox {
public:
    using Letter = std::function<void(BackgroundDatabase&)>;

    explicit Mailbox(BackgroundDatabase* receiver) : m_receiver(receiver) {}

    void close() {
        const std::lock_guard lock(m_mutex);
        m_receiver = nullptr;
    }

    /// What comes from a session that was given up is of no interest any more.
    void post(int session, Letter letter) {
        const std::lock_guard lock(m_mutex);
        if (m_receiver == nullptr) return;
        const auto take = [receiver = m_receiver, session, letter = std::move(letter)] {
            if (receiver->isPresent(session)) letter(*receiver);
        };
        QMetaObject::invokeMethod(m_receiver, take, Qt::QueuedConnection);
    }

private:
    std::mutex m_mutex;
    BackgroundDatabase* m_receiver;
};

/// One connection, from its opening until it is given up. Shared by the threads.
class BackgroundDatabase::Session : public std::enable_shared_from_this<Session> {
public:
    Session(int number, Opener opener, std::shared_ptr<Mailbox> mailbox);

    [[nodiscard]] int number() const { return m_number; }
    void post(Mailbox::Letter letter) const { m_mailbox->post(m_number, std::move(letter)); }

    /// Lets what the thread does fail soon.
    void stop();

    // In the thread of the connection.
    [[nodiscard]] bool isOpen() const { return m_database != nullptr; }
    [[nodiscard]] const Database& database();
    void list();
    void answer(const Question& question, Answer& answer);
    void close();

private:
    [[nodiscard]] List read();
    void keepStopping();

    const int m_number;
    const Opener m_opener;
    const std::shared_ptr<Mailbox> m_mailbox;
    const std::shared_ptr<CatalogWatch> m_watch = std::make_shared<CatalogWatch>();
    std::unique_ptr<Database> m_database;  ///< the thread's
    std::mutex m_mutex;
    std::condition_variable m_change;
    StopCall m_stopCall;  ///< as long as the connection is open
    bool m_isClosed = false;
};

BackgroundDatabase::Session::Session(int number, Opener opener, std::shared_ptr<Mailbox> mailbox)
    : m_number(number), m_opener(std::move(opener)), m_mailbox(std::move(mailbox)) {
    m_watch->progress = [number, box = m_mailbox](int tables) {
        box->post(number, [tables](BackgroundDatabase& self) { Q_EMIT self.progressed(tables); });
    };
}

const Database& BackgroundDatabase::Session::database() {
    if (!m_database) {
        m_database = m_opener();
        StopCall call = m_database->setWatch(m_watch);
        const std::lock_guard lock(m_mutex);
        m_stopCall = std::move(call);
    }
    return *m_database;
}

void BackgroundDatabase::Session::list() {
    bool isLogin = false;
    const QString problem = problemOf([&] {
        try {
            post([list = read()](BackgroundDatabase& self) { self.takeList(list); });
        } catch (const LoginError&) {
            isLogin = true;
            throw;
        }
    });
    if (problem.isEmpty()) return;
    post([=](BackgroundDatabase& self) { self.takeFailure(problem, isLogin); });
}

BackgroundDatabase::List BackgroundDatabase::Session::read() {
    const bool wasOpen = isOpen();
    const Database& source = database();
    if (!wasOpen) {
        const Facts facts = {source.title(),          source.settings(),
                             source.hasStrictTypes(), source.reservedWords(),
                             source.defaultSchemas(), source.folding()};
        post([facts](BackgroundDatabase& self) { self.takeFacts(facts); });
    }
    List list;
    list.entries = source.tables();
    // Some may read the tables but not these.
    list.keysProblem = problemOf([&] { list.keys = source.foreignKeys(); });
    return list;
}

void BackgroundDatabase::Session::answer(const Question& question, Answer& answer) {
    std::optional<TableDescription> table;
    const QString problem = problemOf([&] { table = question(database()); });
    answer.set(std::move(table), problem);
}

void BackgroundDatabase::Session::close() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopCall = {};
        m_isClosed = true;
        m_change.notify_all();
    }
    m_database.reset();
}

void BackgroundDatabase::Session::stop() {
    m_watch->isStopped = true;
    const std::lock_guard lock(m_mutex);
    if (m_stopCall) WorkerThread([self = shared_from_this()] { self->keepStopping(); });
}

// In a thread of its own: the call may wait for a server that is no longer there. A connection on
// which nothing runs closes at once.
void BackgroundDatabase::Session::keepStopping() {
    std::unique_lock lock(m_mutex);
    while (!m_change.wait_for(lock, stopAgain, [this] { return m_isClosed; })) {
        if (m_stopCall) m_stopCall();
    }
}

// ---------------------------------------------------------------------- in the window's thread

BackgroundDatabase::BackgroundDatabase(const DatabaseAddress& address, QObject* parent)
    : BackgroundDatabase([address] { return openDatabase(address); }, parent) {}

BackgroundDatabase::BackgroundDatabase(Opener opener, QObject* parent)
    : QObject(parent),
      m_opener(std::move(opener)),
      m_mailbox(std::make_shared<Mailbox>(this)),
      m_shortWait(usualShortWait),
      m_patience(usualPatience) {}

BackgroundDatabase::~BackgroundDatabase() {
    m_mailbox->close();
    for (const std::shared_ptr<Answer>& answer : m_waiting) {
        answer->set({}, stoppedSentence(answer->name));
    }
    if (!m_session) return;
    m_session->stop();
    m_thread->end(m_patience);
}

bool BackgroundDatabase::isPresent(int session) const {
    return m_session && m_session->number() == session;
}

BackgroundDatabase::Session& BackgroundDatabase::session() {
    if (!m_session) {
        m_session = std::make_shared<Session>(++m_sessions, m_opener, m_mailbox);
        m_thread = std::make_unique<WorkerThread>([session = m_session] { session->close(); });
    }
    return *m_session;
}

void BackgroundDatabase::giveUp() {
    if (!m_session) return;
    m_session->stop();
    m_session.reset();
    m_thread.reset();
    m_isListing = false;
    const auto waiting = std::exchange(m_waiting, {});
    const QPointer<BackgroundDatabase> self(this);
    for (const std::shared_ptr<Answer>& answer : waiting) {
        // One that is there already is on its way here, where it is not awaited any more.
        answer->set({}, stoppedSentence(answer->name));
        if (self && answer->fetched) tellOf(*answer);
    }
    if (self) Q_EMIT answered();
}

// ------------------------------------------------------------------------------------- the list

void BackgroundDatabase::refresh() {
    if (m_isListing) return;
    m_isListing = true;
    session();
    m_thread->run([session = m_session] { session->list(); });
}

void BackgroundDatabase::cancel() {
    const bool wasListing = m_isListing;
    const QPointer<BackgroundDatabase> self(this);
    giveUp();
    if (self && wasListing) Q_EMIT cancelled();
}

void BackgroundDatabase::takeFacts(const Facts& facts) {
    m_facts = facts;
    Q_EMIT opened();
}

void BackgroundDatabase::takeList(const List& list) {
    m_isListing = false;
    m_isListed = true;
    m_entries = list.entries;
    m_keys = list.keys;
    m_keysProblem = list.keysProblem;
    m_known.clear();
    m_found.clear();
    Q_EMIT listed(m_entries, m_keys);
}

void BackgroundDatabase::takeFailure(const QString& sentence, bool isLogin) {
    const QPointer<BackgroundDatabase> self(this);
    giveUp();
    if (self) Q_EMIT failed(sentence, isLogin);
}

std::vector<ForeignKey> BackgroundDatabase::foreignKeys() const {
    if (!m_keysProblem.isEmpty()) throw orv::Error(m_keysProblem);
    return m_keys;
}

QString BackgroundDatabase::inStatement(const TableName& name) const {
    if (!m_facts.folding) return TableSource::inStatement(name);
    return orvquery::inStatement(name, *m_facts.folding, m_facts.defaultSchemas);
}

QString BackgroundDatabase::forLoading(const QString& statement) const {
    if (!m_facts.folding) return TableSource::forLoading(statement);
    return orvquery::forLoading(statement, *m_facts.folding, m_entries);
}

// ---------------------------------------------------------------------------------- one table

const TableDescription* BackgroundDatabase::known(const TableName& name) const {
    return m_known.value(name).get();
}

void BackgroundDatabase::remember(const TableDescription& table) {
    m_known.insert(table.source, std::make_shared<const TableDescription>(table));
}

std::shared_ptr<BackgroundDatabase::Answer> BackgroundDatabase::put(
    const QString& name, const std::optional<TableName>& fetched, const Question& question) {
    auto answer = std::make_shared<Answer>(name);
    answer->fetched = fetched;
    m_waiting.push_back(answer);
    answer->session = session().number();
    m_thread->run([session = m_session, question, answer] {
        session->answer(question, *answer);
        session->post([answer](BackgroundDatabase& self) { self.takeAnswer(answer); });
    });
    return answer;
}

void BackgroundDatabase::takeAnswer(const std::shared_ptr<Answer>& answer) {
    std::erase(m_waiting, answer);
    const QPointer<BackgroundDatabase> self(this);
    Q_EMIT answered();
    if (!self || !answer->fetched) return;
    // What reads the list now will tell by itself what is wrong.
    if (!answer->problem().isEmpty() && !m_isListing) giveUp();
    if (self) tellOf(*answer);
}

void BackgroundDatabase::tellOf(const Answer& answer) {
    if (answer.table()) {
        remember(*answer.table());
        Q_EMIT described(*answer.fetched, *answer.table());
        return;
    }
    const bool isGone = answer.problem().isEmpty();
    Q_EMIT notDescribed(*answer.fetched, isGone ? goneSentence(answer.name) : answer.problem());
}

void BackgroundDatabase::fetch(const TableName& name) {
    if (const std::shared_ptr<const TableDescription> table = m_known.value(name)) {
        Q_EMIT described(name, *table);
        return;
    }
    put(name.name, name, [name](const Database& database) { return database.describe(name); });
}

// What is known grows by asking; the database is the same for whoever asks.
std::optional<TableDescription> BackgroundDatabase::find(const QString& nameInStatement) const {
    const auto found = m_found.constFind(nameInStatement);
    if (found != m_found.constEnd()) {
        if (const TableDescription* table = known(*found)) return *table;
    }
    auto* self = const_cast<BackgroundDatabase*>(this);
    auto table = self->ask(nameInStatement, [nameInStatement](const Database& database) {
        return database.find(nameInStatement);
    });
    if (table) self->m_found.insert(nameInStatement, table->source);
    return table;
}

std::optional<TableDescription> BackgroundDatabase::describe(const TableName& name) const {
    if (const TableDescription* table = known(name)) return *table;
    return const_cast<BackgroundDatabase*>(this)->ask(
        name.name, [name](const Database& database) { return database.describe(name); });
}

// The connection may have been lost since it was used last: then a new one answers.
std::optional<TableDescription> BackgroundDatabase::ask(const QString& name,
                                                        const Question& question) {
    const bool isConnected = m_session != nullptr;
    std::shared_ptr<Answer> answer = waitFor(name, question);
    if (isConnected && !answer->problem().isEmpty() && !m_isListing && isPresent(answer->session)) {
        giveUp();
        answer = waitFor(name, question);
    }
    if (!answer->problem().isEmpty()) {
        if (!m_isListing && isPresent(answer->session)) giveUp();
        throw orv::Error(answer->problem());
    }
    if (answer->table()) remember(*answer->table());
    return answer->table();
}

std::shared_ptr<BackgroundDatabase::Answer> BackgroundDatabase::waitFor(const QString& name,
                                                                        const Question& question) {
    std::shared_ptr<Answer> answer = put(name, {}, question);
    if (!answer->waitFor(m_shortWait)) {
        const QPointer<BackgroundDatabase> self(this);
        waitWithBox(name, *answer);
        // The end of this object has answered it as well.
        if (self && !answer->isThere()) cancel();
        if (!self) throw orv::Error(stoppedSentence(name));
    }
    return answer;
}

void BackgroundDatabase::waitWithBox(const QString& name, const Answer& answer) {
    const QPointer<WaitingBox> box =
        new WaitingBox(tr("Reading the columns of %1 ...").arg(name), QApplication::activeWindow());
    connect(this, &BackgroundDatabase::answered, box, [&answer, box = box.data()] {
        if (answer.isThere()) box->accept();
    });
    connect(this, &QObject::destroyed, box, &QDialog::reject);
    orv::runDialog(*box);
    delete box;
}

}  // namespace orvquery
