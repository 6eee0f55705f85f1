// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

// What the servers that tests start have in common.
namespace servertest {

/// A port of the loopback that nobody has at the moment.
[[nodiscard]] int freePort();

/// Where one of the programs is that servers consist of, most of which are in nobody's path: the
/// folders are patterns, and the last that fits counts. Empty when it is nowhere.
[[nodiscard]] QString findProgram(const QString& name, const QStringList& folders);

/// Lets a process run as that user, when this one is the system's administrator, as whom servers
/// refuse to run; it ends with this program in any case.
void setUser(QProcess& process, const QString& user, int endSignal);

/// Hands a folder with all that is in it over to that user, on the same condition.
[[nodiscard]] bool giveFolder(const QString& folder, const QString& user);

/// Runs a prepared process to its end; false, with its output as a warning, when it fails.
[[nodiscard]] bool runToEnd(QProcess& process, const QByteArray& input = {});

/// Waits until the text stands in the output of a process that runs on; false, with the output as a
/// warning, when it ends before or nothing comes.
[[nodiscard]] bool waitForText(QProcess& process, const QByteArray& text);

/// Sends a process a signal and waits for its end.
void end(QProcess& process, int signal);

}  // namespace servertest
