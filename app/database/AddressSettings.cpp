// SPDX-License-Identifier: MIT
#include "database/AddressSettings.h"

#include "core/Error.h"

namespace orvquery {

QString nameOnServer(const DatabaseAddress& address) {
    const bool isRooted = address.host.isEmpty() && address.database.startsWith(u'/');
    return isRooted ? address.database.mid(1) : address.database;
}

QString titleOnServer(const DatabaseAddress& address) {
    const QString name = nameOnServer(address);
    if (name.isEmpty()) return address.host.isEmpty() ? address.scheme : address.host;
    return address.host.isEmpty() ? name : QStringLiteral("%1 on %2").arg(name, address.host);
}

ConnectionSettings settingsOnServer(const char* driver, const DatabaseAddress& address) {
    ConnectionSettings settings;
    settings.driver = QLatin1String(driver);
    settings.databaseName = nameOnServer(address);
    settings.host = address.host;
    settings.port = address.port;
    settings.user = address.user;
    settings.password = address.password;
    return settings;
}

void refuseOption(const QString& name) {
    throw orv::Error(QStringLiteral("The option \"%1\" of the address cannot be used.").arg(name));
}

// Qt takes the options apart at semicolons.
QStringList driverOptions(const DatabaseAddress& address, const QStringList& known) {
    QStringList options;
    for (const auto& [name, value] : address.options.queryItems(QUrl::FullyDecoded)) {
        const QString option = name.toUpper();
        if (!known.contains(option) || value.contains(u';')) refuseOption(name);
        options += option + u'=' + value;
    }
    return options;
}

}  // namespace orvquery
