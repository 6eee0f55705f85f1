// SPDX-License-Identifier: MIT
#pragma once

#include "database/BackgroundDatabase.h"
#include "database/DatabaseAddress.h"

#include <QHash>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class QWidget;

namespace orvquery {

/// How the opening of a database has ended.
struct Opening {
    std::unique_ptr<BackgroundDatabase> database;  ///< listed; none when it failed
    QString problem;       ///< one sentence then; empty when it was cancelled
    bool isLogin = false;  ///< another user or password may help
};

/// Opens databases for a window and asks for the password when one is needed. Passwords are kept
/// until the program ends, and nowhere else. The window owns it.
class DatabaseOpener : public QObject {
    Q_OBJECT

public:
    /// Opens a database and calls back once, before it returns or later.
    using EngineCall = std::function<void(const DatabaseAddress& address,
                                          const std::function<void(Opening)>& callBack)>;
    /// What becomes of a database, with the address under which it was opened.
    using Opened = std::function<void(std::unique_ptr<BackgroundDatabase>, const DatabaseAddress&)>;
    /// What becomes of the sentence that says why there is none; empty when a person gave up.
    using Failed = std::function<void(const QString& problem)>;

    explicit DatabaseOpener(QWidget* window);

    /// Replaces how databases are opened; to begin with they are so in a thread of their own.
    void setEngineCall(EngineCall call) { m_call = std::move(call); }

    /// One of the two is called, before this returns or later, as the engine call does. Opening
    /// another one meanwhile gives this one up, and neither is called. Returns its number.
    int open(const DatabaseAddress& address, const Opened& opened, const Failed& failed);

    /// Whether the one of that number is still being opened.
    [[nodiscard]] bool isOpening(int number) const { return m_job && m_number == number; }
    /// Gives up what is being opened.
    void giveUp();

Q_SIGNALS:
    /// The list of a database is being read in the background, as it may show and cancel.
    void reading(orvquery::BackgroundDatabase& database);
    /// What was being opened is open, has failed or was given up.
    void ended();

private:
    struct Job;
    void openInBackground(const DatabaseAddress& address,
                          const std::function<void(Opening)>& callBack);
    void end();
    void tryTo(const std::shared_ptr<Job>& job);
    void take(const std::shared_ptr<Job>& job, Opening opening);
    void askPerson(const std::shared_ptr<Job>& job, const QString& problem);
    [[nodiscard]] QString& passwordOf(const DatabaseAddress& address);

    QWidget* m_window;
    EngineCall m_call;
    std::shared_ptr<Job> m_job;
    int m_number = 0;  ///< of the last one
    QPointer<BackgroundDatabase> m_reading;
    QHash<QString, QString> m_passwords;  ///< by addresses
};

}  // namespace orvquery
