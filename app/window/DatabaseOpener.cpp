// SPDX-License-Identifier: MIT
#include "window/DatabaseOpener.h"

#include "toolkit/Services.h"
#include "window/PasswordDialog.h"

#include <QWidget>

namespace orvquery {

struct DatabaseOpener::Job {
    DatabaseAddress address;
    Opened opened;
    Failed failed;
};

DatabaseOpener::DatabaseOpener(QWidget* window)
    : QObject(window),
      m_window(window),
      m_call([this](const DatabaseAddress& address, const std::function<void(Opening)>& callBack) {
          openInBackground(address, callBack);
      }) {}

int DatabaseOpener::open(const DatabaseAddress& address, const Opened& opened,
                         const Failed& failed) {
    giveUp();
    const int number = ++m_number;
    m_job = std::make_shared<Job>(Job{address, opened, failed});
    if (address.password.isEmpty()) m_job->address.password = passwordOf(address);
    tryTo(m_job);
    return number;
}

void DatabaseOpener::giveUp() {
    if (!m_job) return;
    end();
    if (m_reading) m_reading->cancel();
}

void DatabaseOpener::end() {
    m_job.reset();
    Q_EMIT ended();
}

// The database is handed over, or goes, once its signal is over.
void DatabaseOpener::openInBackground(const DatabaseAddress& address,
                                      const std::function<void(Opening)>& callBack) {
    const auto database = std::make_shared<std::unique_ptr<BackgroundDatabase>>(
        std::make_unique<BackgroundDatabase>(address));
    BackgroundDatabase* const reading = database->get();
    const auto callLater = [this, database, callBack](bool isListed, const QString& problem,
                                                      bool isLogin) {
        QMetaObject::invokeMethod(
            this,
            [database, callBack, isListed, problem, isLogin] {
                if (!*database) return;
                Opening opening{std::move(*database), problem, isLogin};
                opening.database->disconnect();
                if (!isListed) opening.database.reset();
                callBack(std::move(opening));
            },
            Qt::QueuedConnection);
    };
    connect(reading, &BackgroundDatabase::listed, this,
            [callLater] { callLater(true, {}, false); });
    connect(reading, &BackgroundDatabase::cancelled, this,
            [callLater] { callLater(false, {}, false); });
    connect(
        reading, &BackgroundDatabase::failed, this,
        [callLater](const QString& problem, bool isLogin) { callLater(false, problem, isLogin); });
    m_reading = reading;
    Q_EMIT this->reading(*reading);
    reading->refresh();
}

void DatabaseOpener::tryTo(const std::shared_ptr<Job>& job) {
    const QPointer<DatabaseOpener> self(this);
    m_call(job->address, [self, job](Opening opening) {
        if (self && self->m_job == job) self->take(job, std::move(opening));
    });
}

void DatabaseOpener::take(const std::shared_ptr<Job>& job, Opening opening) {
    if (opening.database) {
        end();
        passwordOf(job->address) = job->address.password;
        return job->opened(std::move(opening.database), job->address);
    }
    if (opening.isLogin) return askPerson(job, opening.problem);
    end();
    job->failed(opening.problem);
}

// That the database wants a password is no news before one was given.
void DatabaseOpener::askPerson(const std::shared_ptr<Job>& job, const QString& problem) {
    const QPointer<DatabaseOpener> self(this);
    const QString told = job->address.password.isEmpty() ? QString() : problem;
    const QPointer<PasswordDialog> dialog = new PasswordDialog(job->address, told, m_window);
    const bool isAccepted = orv::runDialog(*dialog) == QDialog::Accepted;
    if (!self || !dialog) return;
    dialog->deleteLater();
    if (m_job != job) return;
    if (!isAccepted) {
        end();
        return job->failed({});
    }
    job->address = dialog->address();
    tryTo(job);
}

QString& DatabaseOpener::passwordOf(const DatabaseAddress& address) {
    return m_passwords[address.absolute().toUrl()];
}

}  // namespace orvquery
