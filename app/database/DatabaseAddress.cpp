// SPDX-License-Identifier: MIT
#include "database/DatabaseAddress.h"

#include "core/Error.h"
#include "database/Engine.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace orvquery {

namespace {

constexpr int highestPort = 65535;
constexpr char localHost[] = "localhost";

// QUrl is no help here: it knows hosts only, whose case does not count, and is strict about what
// people write by hand.

// A "%" that begins no code stands for itself.
QString decoded(QStringView text) {
    const QByteArray bytes = text.toUtf8();
    QByteArray result;
    for (qsizetype index = 0; index < bytes.size(); ++index) {
        bool isCode = false;
        const int code = bytes[index] == '%' && index + 2 < bytes.size()
                             ? bytes.mid(index + 1, 2).toInt(&isCode, 16)
                             : 0;
        result += isCode ? char(code) : bytes[index];
        if (isCode) index += 2;
    }
    return QString::fromUtf8(result);
}

QString encoded(const QString& text, const char* kept = "") {
    return QString::fromLatin1(QUrl::toPercentEncoding(text, kept));
}

Engine::Place placeOf(const QString& scheme) {
    const Engine* engine = engineOf(scheme);
    return engine == nullptr ? Engine::Place::Server : engine->place;
}

bool isPasswordOption(const QString& name) {
    static const QStringList names = {QStringLiteral("password"), QStringLiteral("pwd"),
                                      QStringLiteral("passwd")};
    return names.contains(name, Qt::CaseInsensitive);
}

bool isUserOption(const QString& name) {
    static const QStringList names = {QStringLiteral("user"), QStringLiteral("uid"),
                                      QStringLiteral("username")};
    return names.contains(name, Qt::CaseInsensitive);
}

bool isSecret(const QString& optionName) {
    static const QRegularExpression secret(QStringLiteral("password|passwd|pwd|secret|token"),
                                           QRegularExpression::CaseInsensitiveOption);
    return secret.match(optionName).hasMatch();
}

// Both sides in their encoded form, so that equal options are equal however they were written.
void addOption(QUrlQuery& options, const QString& name, const QString& value) {
    options.addQueryItem(encoded(name), encoded(value));
}

// Semicolons part options as well, as data sources have it; within braces they are text.
QStringList partsOf(QStringView text, bool hasAmpersands) {
    QStringList parts = {QString()};
    int depth = 0;
    for (const QChar sign : text) {
        if (sign == u'{') ++depth;
        if (sign == u'}') depth = std::max(0, depth - 1);
        const bool isEnd = depth == 0 && (sign == u';' || (hasAmpersands && sign == u'&'));
        if (isEnd) {
            parts += QString();
        } else {
            parts.back() += sign;
        }
    }
    return parts;
}

// Who asks is no option, however it is written.
void readOption(DatabaseAddress& address, const QString& name, const QString& value) {
    if (name.isEmpty()) return;
    if (isPasswordOption(name)) {
        if (address.password.isEmpty()) address.password = value;
    } else if (isUserOption(name) && address.user.isEmpty()) {
        address.user = value;
    } else {
        addOption(address.options, name, value);
    }
}

void readOptions(DatabaseAddress& address, QStringView query) {
    const QStringList parts = partsOf(query, true);
    for (const QString& part : parts) {
        readOption(address, decoded(part.section(u'=', 0, 0)).trimmed(),
                   decoded(part.section(u'=', 1)));
    }
}

// Where the options of a data source begin that stand beside or in place of its name, as in
// "shop;UID=me"; -1 when there are none.
qsizetype firstSourceOption(QStringView text) {
    static const QRegularExpression option(QStringLiteral("(^|;)[^;=?@:{}]*="));
    return option.match(text.toString()).capturedStart();
}

// Takes "user:password@" from the beginning.
void readPerson(DatabaseAddress& address, QStringView& rest) {
    const qsizetype end = rest.lastIndexOf(u'@');
    if (end < 0) return;
    const QStringView person = rest.left(end);
    const qsizetype colon = person.indexOf(u':');
    address.user = decoded(colon < 0 ? person : person.left(colon));
    if (colon >= 0) address.password = decoded(person.mid(colon + 1));
    rest = rest.mid(end + 1);
}

// What stands there may be the rest of a password.
[[noreturn]] void failWithPort() {
    throw orv::Error(
        QStringLiteral("The address cannot be read: what follows the host and a colon is a port "
                       "from 1 to ") +
        QString::number(highestPort) +
        QStringLiteral(", and in a user name or password /, ?, @ and : are written as %2F, %3F, "
                       "%40 and %3A."));
}

void readPort(DatabaseAddress& address, QStringView text) {
    if (text.isEmpty()) return;
    bool isNumber = false;
    const int port = text.toInt(&isNumber);
    if (!isNumber || port < 1 || port > highestPort) failWithPort();
    address.port = port;
}

void readHost(DatabaseAddress& address, QStringView text) {
    if (text.startsWith(u'[')) {
        const qsizetype end = text.indexOf(u']');
        const bool isClosed = end > 1 && (end + 1 == text.size() || text[end + 1] == u':');
        if (!isClosed) {
            throw orv::Error(
                QStringLiteral("The address cannot be read: a host in brackets ends "
                               "with ], and only a port may follow it."));
        }
        address.host = decoded(text.mid(1, end - 1));
        return readPort(address, text.mid(end + 2));
    }
    const qsizetype colon = text.lastIndexOf(u':');
    address.host = decoded(colon < 0 ? text : text.left(colon)).trimmed();
    if (colon >= 0) readPort(address, text.mid(colon + 1));
    const bool isWrong = std::any_of(address.host.cbegin(), address.host.cend(), [](QChar sign) {
        return sign.isSpace() || sign == u':' || sign == u'@';
    });
    if (isWrong) {
        throw orv::Error(
            QStringLiteral("The address cannot be read: a host has no blanks and no "
                           "colons, unless it stands in brackets."));
    }
}

bool isDrivePath(QStringView path) {
    return path.size() >= 2 && path[0].isLetter() && path[0].unicode() < 0x80 && path[1] == u':' &&
           (path.size() == 2 || path[2] == u'/' || path[2] == u'\\');
}

bool beginsAtHome(QStringView path) {
    return path == u'~' || path.startsWith(QLatin1String("~/"));
}

// The path of a file as it stands in an address.
QString readPath(QStringView path) {
    if (path.startsWith(u'/') && (isDrivePath(path.mid(1)) || beginsAtHome(path.mid(1)))) {
        path = path.mid(1);
    }
    if (beginsAtHome(path)) return QDir::homePath() + decoded(path.mid(1));
    if (path.startsWith(QLatin1String("./"))) path = path.mid(2);
    return decoded(path);
}

QString writtenPath(const QString& path) {
    const char* const kept = "/\\:@!$&'()*+,;=~";
    if (isDrivePath(path)) return u'/' + encoded(path, kept);
    if (!path.startsWith(u'/')) {
        return path.isEmpty() ? QString() : QStringLiteral("./") + encoded(path, kept);
    }
    // Such a folder of the root is none of the two that readPath takes it for.
    const bool isMistaken =
        isDrivePath(QStringView(path).mid(1)) || beginsAtHome(QStringView(path).mid(1));
    if (!isMistaken) return encoded(path, kept);
    return path.startsWith(QLatin1String("/~"))
               ? QStringLiteral("/%7E") + encoded(path.mid(2), kept)
               : encoded(path, "/");
}

// Of other computers as well: file://host/share/shop.db.
QString readFileUrl(QStringView text) {
    if (text.startsWith(u'/')) return readPath(text);
    const QLatin1String here("localhost/");
    if (text.startsWith(here)) return readPath(text.mid(here.size() - 1));
    return readPath(text);
}

// Where it begins with neither a host nor a slash, a path may stand as well.
bool isPathBeginning(QStringView host) {
    return host == u'~' || host == u'.' || host == QLatin1String("..");
}

// A slash in the password would end the host early, and the password be taken for a name.
void requireNoPerson(QStringView host, QStringView path) {
    if (host.contains(u':') && !host.contains(u'@') && path.contains(u'@')) failWithPort();
}

void readServer(DatabaseAddress& address, QStringView text, Engine::Place place) {
    const qsizetype slash = text.indexOf(u'/');
    QStringView host = slash < 0 ? text : text.left(slash);
    QStringView path = slash < 0 ? QStringView() : text.mid(slash);
    requireNoPerson(host, path);
    readPerson(address, host);
    const bool mayBeFile = place == Engine::Place::FileOrServer;
    if (mayBeFile && isPathBeginning(host)) {
        address.database = readPath(text.mid(host.data() - text.data()));
        return;
    }
    if (mayBeFile && host.isEmpty()) {
        address.database = readPath(path);
        return;
    }
    readHost(address, host);
    if (address.host.isEmpty()) address.host = QLatin1String(localHost);
    path = path.mid(1);
    // A server's name for a file has no slashes: these are of a path, which begins at the root.
    const bool isPath =
        mayBeFile && path.contains(u'/') && !path.startsWith(u'/') && !isDrivePath(path);
    address.database = isPath ? u'/' + decoded(path) : decoded(path);
}

// A name, beside which or in whose place options may stand.
void readSourceText(DatabaseAddress& address, const QString& text) {
    const QStringList parts = partsOf(text, false);
    for (const QString& part : parts) {
        const bool isName = !part.contains(u'=');
        const QString name = part.section(u'=', 0, 0).trimmed();
        if (isName && address.database.isEmpty()) {
            address.database = name;
        } else {
            readOption(address, name, part.section(u'=', 1).trimmed());
        }
    }
}

void readDataSource(DatabaseAddress& address, QStringView text) {
    // What stands behind "@" may be the rest of a password that is an option.
    const qsizetype options = firstSourceOption(text);
    QStringView name = options < 0 ? text : text.left(options);
    readPerson(address, name);
    text = text.mid(name.data() - text.data());
    while (text.startsWith(u'/')) text = text.mid(1);
    while (options < 0 && text.endsWith(u'/')) text.chop(1);
    readSourceText(address, decoded(text));
}

QString writtenHost(const DatabaseAddress& address) {
    QString host = encoded(address.host, ",");
    if (address.host.contains(u':')) host = u'[' + encoded(address.host, ":") + u']';
    if (address.port > 0) host += u':' + QString::number(address.port);
    return host;
}

QString writtenName(const DatabaseAddress& address, Engine::Place place) {
    const bool isRelativePath = place == Engine::Place::FileOrServer &&
                                !address.database.startsWith(u'/') &&
                                !isDrivePath(address.database);
    return encoded(address.database, isRelativePath ? "" : "/:");
}

QString writtenOptions(const QUrlQuery& options) {
    QStringList parts;
    const auto items = options.queryItems(QUrl::FullyDecoded);
    for (const auto& [name, value] : items) {
        if (!isSecret(name)) parts += encoded(name) + u'=' + encoded(value, "/:,");
    }
    return parts.join(u'&');
}

}  // namespace

bool DatabaseAddress::isUrl(const QString& text) {
    static const QRegularExpression beginning(QStringLiteral("^\\s*[A-Za-z][A-Za-z0-9+.-]+://"));
    return beginning.match(text).hasMatch();
}

QString DatabaseAddress::pathFromHome(const QString& path) {
    return beginsAtHome(path) ? QDir::homePath() + path.mid(1) : path;
}

DatabaseAddress DatabaseAddress::fromUrl(const QString& text) {
    if (!isUrl(text)) {
        throw orv::Error(
            QStringLiteral("An address of a database begins with its kind, as sqlite:// does."));
    }
    const QString trimmed = text.trimmed();
    const qsizetype colon = trimmed.indexOf(u':');
    DatabaseAddress address{trimmed.left(colon).toLower()};
    const QStringView rest = QStringView(trimmed).mid(colon + 3);
    qsizetype question = rest.indexOf(u'?');
    const Engine::Place place = placeOf(address.scheme);
    if (place == Engine::Place::DataSource && firstSourceOption(rest.left(question)) >= 0) {
        question = -1;
    }
    const QStringView where = question < 0 ? rest : rest.left(question);
    const QStringView query = question < 0 ? QStringView() : rest.mid(question + 1);
    switch (place) {
    case Engine::Place::File:
        address.database = address.scheme == u"file" ? readFileUrl(where) : readPath(where);
        break;
    case Engine::Place::Server:
    case Engine::Place::FileOrServer:
        if (!where.contains(u'/')) requireNoPerson(where, query);
        readServer(address, where, place);
        break;
    case Engine::Place::DataSource: readDataSource(address, where); break;
    }
    readOptions(address, query);
    return address;
}

QString DatabaseAddress::toUrl() const {
    const Engine::Place place = placeOf(scheme);
    QString url = scheme + QLatin1String("://");
    if (place != Engine::Place::File && !user.isEmpty()) url += encoded(user) + u'@';
    if (isFile()) {
        url += writtenPath(database);
    } else if (place == Engine::Place::DataSource) {
        url += database.isEmpty() ? QStringLiteral("/") : encoded(database);
    } else {
        url += writtenHost(*this) + u'/' + writtenName(*this, place);
    }
    const QString query = writtenOptions(options);
    return query.isEmpty() ? url : url + u'?' + query;
}

bool DatabaseAddress::isFile() const {
    switch (placeOf(scheme)) {
    case Engine::Place::File: return true;
    case Engine::Place::FileOrServer: return host.isEmpty();
    case Engine::Place::Server:
    case Engine::Place::DataSource: break;
    }
    return false;
}

DatabaseAddress DatabaseAddress::absolute() const {
    DatabaseAddress result = *this;
    if (isFile() && !database.isEmpty()) {
        result.database = QFileInfo(pathFromHome(database)).absoluteFilePath();
    }
    return result;
}

QString DatabaseAddress::title() const {
    if (isFile()) return QFileInfo(database).fileName();
    const QString name = database.section(u'/', -1);
    if (host.isEmpty())
        return name.isEmpty() ? options.queryItemValue(QStringLiteral("Server")) : name;
    return name.isEmpty() ? host : QStringLiteral("%1 on %2").arg(name, host);
}

QString DatabaseAddress::optionsText() const {
    QStringList parts;
    const auto items = options.queryItems(QUrl::FullyDecoded);
    for (const auto& [name, value] : items) parts += name + u'=' + value;
    return parts.join(QStringLiteral("; "));
}

void DatabaseAddress::setOptionsText(const QString& text) {
    options = QUrlQuery();
    const QStringList parts = partsOf(text, false);
    for (const QString& part : parts) {
        const QString name = part.section(u'=', 0, 0).trimmed();
        if (!name.isEmpty()) addOption(options, name, part.section(u'=', 1).trimmed());
    }
}

bool isSameDatabase(const DatabaseAddress& left, const DatabaseAddress& right) {
    const auto comparable = [](const DatabaseAddress& address) {
        DatabaseAddress result = address.absolute();
        result.password.clear();
        const QString path =
            result.isFile() ? QFileInfo(result.database).canonicalFilePath() : QString();
        if (!path.isEmpty()) result.database = path;
        return result;
    };
    return comparable(left) == comparable(right);
}

}  // namespace orvquery
