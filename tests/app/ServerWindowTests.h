// SPDX-License-Identifier: MIT
#pragma once

#include "ParameterDesk.h"
#include "database/DatabaseAddress.h"

/// What holds in the window for every server that tests start: a person at it, and a server that
/// has bad days. The test class of a server derives from it and has these tests beside its own.
class ServerWindowTests : public QObject, protected apptest::ParameterDesk {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { end(); }

    void sessionAtTheWindow();
    void longRunIsCancelled();
    void passwordIsAskedForUntilItIsRight();
    void passwordQuestionIsCancelled();
    void serverDiesDuringARun();
    void serverDiesBetweenRows();
    void serverDiesDuringAListing();
    void serverDiesBeforeColumnsAreRead();
    void tableIsDroppedAfterTheListing();
    void columnIsDroppedAfterTheListing();
    void tableIsDenied();
    void whyThereAreNoRows();
    void rowsAreCut();
    void hugeValueIsShortened();

protected:
    /// Tables and views that these tests use, made once by the server's own class: orders (id,
    /// city) with the rows (1, Rome) and (2, NULL); secret (id); denied (id), a view that a reader
    /// sees but may not read; slow (x), whose row takes minutes; trickling (n, x), whose eleventh
    /// row does, behind large ones; many (x) of 10 million rows from 1 on; huge (x) of one text of
    /// `hugeCharacters`.
    static constexpr int hugeCharacters = 100000000;

    /// The address for its owner, with the password.
    [[nodiscard]] virtual QString address() const = 0;
    /// Runs statements as its owner.
    [[nodiscard]] virtual bool execute(const QStringList& statements) const = 0;
    /// Ends the server at once.
    virtual void kill() = 0;
    [[nodiscard]] virtual bool startAgain() = 0;
    /// Lets what reads the list of tables wait until the server is killed.
    virtual void holdListing() = 0;
    /// Whether a statement with this text runs there.
    [[nodiscard]] virtual bool runs(const char* text) const = 0;
    /// What the database says to those who may not read "denied", and without "passing".
    [[nodiscard]] virtual QString deniedSentence() const = 0;
    [[nodiscard]] virtual QString goneSentence() const = 0;
    [[nodiscard]] virtual QString columnGoneSentence() const = 0;

    [[nodiscard]] bool open() { return m_window->openDatabase(address()); }
    [[nodiscard]] QString label(const char* name) const { return child<QLabel>(name)->text(); }
    [[nodiscard]] bool isShown(const char* name) const { return child<QWidget>(name)->isVisible(); }
    /// The owner's address with other words in it.
    [[nodiscard]] QString addressOf(const char* user, const char* password) const;
    /// Runs the statement, and the first column of its rows.
    [[nodiscard]] QStringList rowsOf(const char* statement);
    void refresh() const;
    void start(const char* statement, const char* text);
    void checkThatItWorksAgain();
};
