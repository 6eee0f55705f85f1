// SPDX-License-Identifier: MIT
#include "connections/SavedConnections.h"

#include "core/Error.h"
#include "text/KeptSettings.h"

#include <QCoreApplication>

#include <algorithm>
#include <optional>

namespace orvquery {

namespace {

const QString namedKey = QStringLiteral("connections");
const QString recentKey = QStringLiteral("recent");

std::optional<DatabaseAddress> readAddress(const QString& url) {
    try {
        DatabaseAddress address = DatabaseAddress::fromUrl(url);
        address.password.clear();
        return address;
    } catch (const orv::Error&) {
        return std::nullopt;
    }
}

// As it is read back; what cannot be written is lost now rather than later.
DatabaseAddress remembered(const DatabaseAddress& address) {
    DatabaseAddress result = address.absolute();
    result.password.clear();
    return readAddress(result.toUrl()).value_or(result);
}

QString cleanName(const QString& name) {
    QString clean = name.simplified();
    if (!clean.isEmpty()) return clean;
    throw orv::Error(
        QCoreApplication::translate("orvquery", "A connection is saved under a name."));
}

// An address has no blanks, so that the name can follow it.
void writeNamed(const std::vector<SavedConnection>& connections) {
    QStringList lines;
    for (const SavedConnection& connection : connections) {
        lines += connection.address.toUrl() + u' ' + connection.name;
    }
    keptSettings().setValue(namedKey, lines);
}

void writeRecent(const std::vector<DatabaseAddress>& addresses) {
    QStringList lines;
    for (const DatabaseAddress& address : addresses) lines += address.toUrl();
    keptSettings().setValue(recentKey, lines);
}

auto findName(std::vector<SavedConnection>& connections, const QString& name) {
    return std::find_if(connections.begin(), connections.end(),
                        [&](const SavedConnection& each) { return each.name == name; });
}

}  // namespace

std::vector<SavedConnection> SavedConnections::named() const {
    std::vector<SavedConnection> connections;
    const QStringList lines = keptSettings().value(namedKey).toStringList();
    for (const QString& line : lines) {
        const std::optional<DatabaseAddress> address = readAddress(line.section(u' ', 0, 0));
        const QString name = line.section(u' ', 1).simplified();
        const bool isNew = findName(connections, name) == connections.end();
        if (address && isNew && !name.isEmpty()) connections.push_back({name, *address});
    }
    return connections;
}

std::vector<DatabaseAddress> SavedConnections::recent() const {
    std::vector<DatabaseAddress> addresses;
    const QStringList lines = keptSettings().value(recentKey).toStringList();
    for (const QString& line : lines) {
        const std::optional<DatabaseAddress> address = readAddress(line);
        if (!address || addresses.size() == mostRecent) continue;
        const bool isNew =
            std::find(addresses.begin(), addresses.end(), *address) == addresses.end();
        if (isNew) addresses.push_back(*address);
    }
    return addresses;
}

void SavedConnections::use(const DatabaseAddress& address) {
    const DatabaseAddress used = remembered(address);
    std::vector<DatabaseAddress> addresses = recent();
    std::erase(addresses, used);
    addresses.insert(addresses.begin(), used);
    if (addresses.size() > mostRecent) addresses.resize(mostRecent);
    writeRecent(addresses);

    std::vector<SavedConnection> connections = named();
    std::stable_partition(connections.begin(), connections.end(),
                          [&](const SavedConnection& each) { return each.address == used; });
    writeNamed(connections);
}

void SavedConnections::save(const SavedConnection& connection) {
    const SavedConnection saved = {cleanName(connection.name), remembered(connection.address)};
    std::vector<SavedConnection> connections = named();
    std::erase_if(connections,
                  [&](const SavedConnection& each) { return each.name == saved.name; });
    connections.insert(connections.begin(), saved);
    writeNamed(connections);
}

void SavedConnections::rename(const QString& name, const QString& newName) {
    const QString clean = cleanName(newName);
    if (clean == name) return;
    std::vector<SavedConnection> connections = named();
    if (findName(connections, clean) != connections.end()) {
        throw orv::Error(
            QCoreApplication::translate("orvquery", "There is a connection called \"%1\" already.")
                .arg(clean));
    }
    const auto found = findName(connections, name);
    if (found == connections.end()) return;
    found->name = clean;
    writeNamed(connections);
}

void SavedConnections::forget(const QString& name) {
    std::vector<SavedConnection> connections = named();
    std::erase_if(connections, [&](const SavedConnection& each) { return each.name == name; });
    writeNamed(connections);
}

void SavedConnections::forgetRecent(const DatabaseAddress& address) {
    std::vector<DatabaseAddress> addresses = recent();
    std::erase(addresses, remembered(address));
    writeRecent(addresses);
}

void SavedConnections::forgetAllRecent() {
    keptSettings().remove(recentKey);
}

}  // namespace orvquery
