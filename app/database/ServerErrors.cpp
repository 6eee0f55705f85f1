// SPDX-License-Identifier: MIT
#include "database/ServerErrors.h"

#include "database/AddressSettings.h"
#include "database/Database.h"
#include "database/SqlErrorText.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace orvquery {

namespace {

enum class Trouble { Login, NotAllowed, NotAdmitted, NoDatabase, NoServer, NoHost, Timeout, Other };

struct Sign {
    const char* text;
    Trouble trouble;
};

// Failed connections have no codes with these drivers, but for MariaDB's, which are among the texts
// as "#1045"; Firebird's driver has the same one for all of them.
constexpr std::array signs = {
    Sign{"password authentication failed", Trouble::Login},
    Sign{"no password supplied", Trouble::Login},
    Sign{"authentication failed", Trouble::Login},
    Sign{"no pg_hba.conf entry", Trouble::NotAdmitted},
    Sign{"role \"", Trouble::Login},
    Sign{"permission denied for database", Trouble::NotAllowed},
    Sign{"user name and password are not defined", Trouble::Login},
    Sign{"Error occurred during login", Trouble::Login},
    Sign{"#1045", Trouble::Login},
    Sign{"#1698", Trouble::Login},
    Sign{"#1044", Trouble::NotAllowed},
    Sign{"#1049", Trouble::NoDatabase},
    Sign{"Error while trying to open file - No such file", Trouble::NoDatabase},
    Sign{"#2005", Trouble::NoHost},
    Sign{"could not translate host name", Trouble::NoHost},
    Sign{"Unknown MySQL server host", Trouble::NoHost},
    Sign{"Unknown server host", Trouble::NoHost},
    Sign{"Failed to locate host machine", Trouble::NoHost},
    Sign{"timeout expired", Trouble::Timeout},
    Sign{"(110", Trouble::Timeout},
    Sign{"Connection refused", Trouble::NoServer},
    Sign{"Is the server running", Trouble::NoServer},
    Sign{"Unable to complete network request to host", Trouble::NoServer},
    Sign{"#2002", Trouble::NoServer},
    Sign{"#2003", Trouble::NoServer},
};

Trouble troubleOf(const QString& text) {
    static const QRegularExpression noDatabase(QStringLiteral("database \".*\" does not exist"));
    if (text.contains(noDatabase)) return Trouble::NoDatabase;
    const auto found = std::find_if(signs.begin(), signs.end(), [&](const Sign& sign) {
        return text.contains(QLatin1String(sign.text));
    });
    return found == signs.end() ? Trouble::Other : found->trouble;
}

QString placeOf(const DatabaseAddress& address, int defaultPort) {
    if (address.host.isEmpty()) return QStringLiteral("this computer");
    const int port = address.port < 0 ? defaultPort : address.port;
    const bool isNumeric = address.host.contains(u':');
    const QString host = isNumeric ? u'[' + address.host + u']' : address.host;
    return QStringLiteral("%1:%2").arg(host).arg(port);
}

QString personOf(const DatabaseAddress& address) {
    return address.user.isEmpty() ? QStringLiteral("This user")
                                  : QStringLiteral("The user \"%1\"").arg(address.user);
}

QString loginSentence(const QString& text, const DatabaseAddress& address, const QString& place) {
    if (address.user.isEmpty()) {
        return QStringLiteral("The server at %1 wants a user and a password.").arg(place);
    }
    const bool isAsked = text.contains(QLatin1String("no password supplied")) ||
                         text.contains(QLatin1String("using password: NO"));
    const QString sentence =
        !address.password.isEmpty()
            ? QStringLiteral("The server at %1 refuses the user \"%2\" with this password.")
        : isAsked ? QStringLiteral("The server at %1 asks for a password of the user \"%2\".")
                  : QStringLiteral("The server at %1 refuses the user \"%2\".");
    return sentence.arg(place, address.user);
}

// PostgreSQL's library puts the attempts in front of what the server said.
QString withoutAttempts(const QString& text) {
    static const QRegularExpression attempts(QStringLiteral("^.*(FATAL|failed): +"));
    return QString(text).remove(attempts);
}

}  // namespace

void failToOpen(const QSqlError& error, const DatabaseAddress& address, int defaultPort) {
    QString text = sqlErrorText(error);
    const QString place = placeOf(address, defaultPort);
    QString name = nameOnServer(address);
    // PostgreSQL takes the user's for one that is not given.
    if (name.isEmpty()) name = address.user;
    const QString code = error.nativeErrorCode();
    switch (troubleOf(code.isEmpty() ? text : text + QStringLiteral(" #") + code)) {
    case Trouble::Login: throw LoginError(loginSentence(text, address, place));
    case Trouble::NotAllowed:
        throw orv::Error(
            QStringLiteral("%1 may not open the database \"%2\".").arg(personOf(address), name));
    case Trouble::NotAdmitted:
        throw orv::Error(
            QStringLiteral("%1 may not open the database \"%2\" from this computer: the "
                           "server at %3 has no entry for that.")
                .arg(personOf(address), name, place));
    case Trouble::NoDatabase:
        throw orv::Error(
            QStringLiteral("The server at %1 has no database \"%2\".").arg(place, name));
    case Trouble::NoHost:
        throw orv::Error(QStringLiteral("No host of that name is known: %1.").arg(place));
    case Trouble::NoServer: throw orv::Error(QStringLiteral("No server answers at %1.").arg(place));
    case Trouble::Timeout:
        throw orv::Error(QStringLiteral("The server at %1 does not answer in time.").arg(place));
    case Trouble::Other: break;
    }
    text = withoutAttempts(text);
    if (!text.endsWith(u'.')) text += u'.';
    throw orv::Error(
        QStringLiteral("The database \"%1\" at %2 cannot be opened: %3").arg(name, place, text));
}

}  // namespace orvquery
