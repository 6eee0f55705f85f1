// SPDX-License-Identifier: MIT
#include "batch/Options.h"

#include "core/Error.h"
#include "database/DatabaseAddress.h"
#include "documents/DocumentFile.h"
#include "pictures/Picture.h"

#include <QFileInfo>
#include <QUrl>

#include <utility>

namespace orvquery {

namespace {

// Options whose value follows behind "=" or as the next argument.
const QStringList& optionsWithValue() {
    static const QStringList names = {
        QStringLiteral("--database"), QStringLiteral("--schema"),     QStringLiteral("--load"),
        QStringLiteral("--list"),     QStringLiteral("--format"),     QStringLiteral("--render"),
        QStringLiteral("--param"),    QStringLiteral("--param-null"), QStringLiteral("--diff")};
    return names;
}

// Those of them that may be there several times.
bool isRepeatable(const QString& name) {
    return name == u"--param" || name == u"--param-null";
}

const QStringList& optionsWithoutValue() {
    static const QStringList names = {QStringLiteral("--classic"), QStringLiteral("--strict"),
                                      QStringLiteral("--print"),   QStringLiteral("--state"),
                                      QStringLiteral("--explain"), QStringLiteral("--run"),
                                      QStringLiteral("--help"),    QStringLiteral("--version")};
    return names;
}

// A query file named alone; no option has that name.
constexpr char documentName[] = "FILE.orvq";

// What is told of an argument, which may be an address.
QString withoutPassword(const QString& argument) {
    if (!DatabaseAddress::isUrl(argument)) return argument;
    try {
        return DatabaseAddress::fromUrl(argument).toUrl();
    } catch (const orv::Error&) {
        return argument.trimmed().section(u':', 0, 0) + QStringLiteral("://...");
    }
}

// Desktops name a file by its address, too; empty for what is no file of this computer.
QString localFile(const QString& argument) {
    if (!DatabaseAddress::isUrl(argument)) return argument;
    const QUrl url(argument);
    return url.isLocalFile() ? url.toLocalFile() : QString();
}

// The arguments as options and their values, before anything is made of them. Lives for one
// command line.
class Arguments {
public:
    explicit Arguments(const QStringList& arguments) {
        for (qsizetype index = 0; index < arguments.size(); ++index) take(arguments, index);
    }

    [[nodiscard]] bool has(const char* name) const { return value(name).has_value(); }

    [[nodiscard]] std::optional<QString> value(const char* name) const {
        const auto found = m_values.constFind(QLatin1String(name));
        return found == m_values.cend() ? std::nullopt : std::optional<QString>(*found);
    }

    /// The values of an option that may be there several times, in their order.
    [[nodiscard]] QStringList values(const char* name) const {
        return m_lists.value(QLatin1String(name));
    }

    // Raises UsageError when more than one of the options is there.
    void requireAtMostOne(std::initializer_list<const char*> names) const {
        QString first;
        for (const char* name : names) {
            if (!has(name)) continue;
            if (!first.isEmpty()) {
                throw UsageError(
                    QStringLiteral("%1 and %2 exclude each other").arg(first, QLatin1String(name)));
            }
            first = QLatin1String(name);
        }
    }

private:
    // Takes the argument at the index, and the next one when it is its value.
    void take(const QStringList& arguments, qsizetype& index) {
        const QString& argument = arguments[index];
        const QString name = canonicalName(argument.section(u'=', 0, 0));
        const bool hasEquals = argument.contains(u'=');
        if (!argument.startsWith(u'-') || argument == u"-") {
            // A file named alone is a query or a database, as a file manager hands it over.
            const QString file = localFile(argument);
            if (documentKind(file) != DocumentKind::None) {
                return add(QLatin1String(documentName), file);
            }
            if (!argument.isEmpty() && argument != u"-") return add(databaseOption(), argument);
            throw UsageError(QStringLiteral("unexpected argument \"%1\"").arg(argument));
        }
        if (optionsWithValue().contains(name)) {
            add(name, hasEquals ? argument.section(u'=', 1) : next(arguments, index, name));
            if (name == u"--diff") m_lists[name] += next(arguments, index, name);
        } else if (!optionsWithoutValue().contains(name)) {
            // Its value may be an address.
            throw UsageError(QStringLiteral("unknown option \"%1\"").arg(name));
        } else if (hasEquals) {
            throw UsageError(QStringLiteral("%1 takes no value").arg(name));
        } else {
            add(name, QString());
        }
    }

    static QString databaseOption() { return QStringLiteral("--database"); }

    static QString canonicalName(const QString& name) {
        if (name == u"-h") return QStringLiteral("--help");
        return name;
    }

    static QString next(const QStringList& arguments, qsizetype& index, const QString& name) {
        const bool isThere =
            index + 1 < arguments.size() && !arguments[index + 1].startsWith(QLatin1String("--"));
        if (!isThere) {
            throw UsageError((name == u"--diff" ? QStringLiteral("%1 needs two files")
                                                : QStringLiteral("%1 needs a value"))
                                 .arg(name));
        }
        return arguments[++index];
    }

    void add(const QString& name, const QString& value) {
        if (value.isEmpty() && optionsWithValue().contains(name)) {
            throw UsageError(QStringLiteral("%1 needs a value").arg(name));
        }
        if (name == databaseOption() && m_values.contains(name)) {
            throw UsageError(QStringLiteral("two databases are named, \"%1\" and \"%2\"")
                                 .arg(withoutPassword(m_values[name]), withoutPassword(value)));
        }
        if (name == QLatin1String(documentName) && m_values.contains(name)) {
            throw UsageError(QStringLiteral("two queries are named, \"%1\" and \"%2\"")
                                 .arg(m_values[name], value));
        }
        if (m_values.contains(name) && !isRepeatable(name)) {
            throw UsageError(QStringLiteral("%1 is there twice").arg(name));
        }
        m_values.insert(name, value);
        m_lists[name] += value;
    }

    QHash<QString, QString> m_values;
    QHash<QString, QStringList> m_lists;
};

RowFormat formatOf(const QString& name) {
    if (name == u"table") return RowFormat::Table;
    if (name == u"csv") return RowFormat::Csv;
    if (name == u"tsv") return RowFormat::Tsv;
    if (name == u"json") return RowFormat::Json;
    throw UsageError(
        QStringLiteral("unknown format \"%1\": it is table, csv, tsv or json").arg(name));
}

QString pictureOf(const QString& file) {
    if (pictureFormatOfFile(file)) return file;
    throw UsageError(
        QStringLiteral("--render writes a file named .png, .svg or .pdf, not \"%1\"").arg(file));
}

QString parameterName(QString name) {
    if (name.startsWith(u':')) name.remove(0, 1);
    return name.trimmed().toUpper();
}

QMap<QString, std::optional<QString>> parametersOf(const Arguments& arguments) {
    QMap<QString, std::optional<QString>> parameters;
    const auto add = [&](const QString& name, const std::optional<QString>& value) {
        if (parameters.contains(name)) {
            throw UsageError(QStringLiteral("the parameter %1 is there twice").arg(name));
        }
        parameters.insert(name, value);
    };
    const QStringList given = arguments.values("--param");
    for (const QString& text : given) {
        const QString name = parameterName(text.section(u'=', 0, 0));
        if (!text.contains(u'=') || name.isEmpty()) {
            throw UsageError(QStringLiteral("--param needs NAME=VALUE, not \"%1\"").arg(text));
        }
        add(name, text.section(u'=', 1));
    }
    const QStringList nulls = arguments.values("--param-null");
    for (const QString& text : nulls) add(parameterName(text), std::nullopt);
    return parameters;
}

Output outputOf(const Arguments& arguments) {
    // Whoever asks for help gets it, whatever else is there.
    if (arguments.has("--help")) return Output::Help;
    if (arguments.has("--version")) return Output::Version;
    // The states are what --list prints, so --state beside it says nothing new.
    arguments.requireAtMostOne({"--list", "--print", "--explain", "--run", "--render", "--diff"});
    arguments.requireAtMostOne({"--print", "--explain", "--state", "--run", "--render", "--diff"});
    if (arguments.has("--list")) return Output::StateOfEach;
    if (arguments.has("--print")) return Output::Print;
    if (arguments.has("--explain")) return Output::Explain;
    if (arguments.has("--state")) return Output::State;
    if (arguments.has("--diff")) return Output::Compare;
    if (arguments.has("--run")) return Output::Run;
    if (arguments.has("--render")) return Output::Render;
    return Output::Window;
}

void requireSenseOf(const Arguments& arguments) {
    arguments.requireAtMostOne({"--database", "--schema"});
    arguments.requireAtMostOne({"--load", "--list", "--diff"});
    if (arguments.values("--diff") == QStringList{QStringLiteral("-"), QStringLiteral("-")}) {
        throw UsageError(QStringLiteral("--diff reads standard input once"));
    }
    for (const char* name : {"--load", "--list", "--diff"}) {
        if (!arguments.has(documentName) || !arguments.has(name)) continue;
        throw UsageError(QStringLiteral("\"%1\" and %2 exclude each other")
                             .arg(*arguments.value(documentName), QLatin1String(name)));
    }
    if (arguments.has("--format") && !arguments.has("--run")) {
        throw UsageError(QStringLiteral("--format goes with --run alone"));
    }
    for (const char* name : {"--param", "--param-null"}) {
        if (arguments.has(name) && !arguments.has("--run")) {
            throw UsageError(QStringLiteral("%1 goes with --run alone").arg(QLatin1String(name)));
        }
    }
    if (arguments.has("--schema") && arguments.has("--run")) {
        throw UsageError(QStringLiteral("--run needs a database; a --schema file has no rows"));
    }
}

// The state of a diagram without a statement says something; the others would have nothing.
void requireStatement(const Arguments& arguments) {
    for (const char* name : {"--print", "--explain", "--run", "--render"}) {
        if (arguments.has(name) && !arguments.has("--load") && !arguments.has(documentName)) {
            throw UsageError(QStringLiteral("%1 needs a query, which --load FILE names")
                                 .arg(QLatin1String(name)));
        }
    }
}

// However it is named: the window opens a query file as a document, other outputs load a query.
void shareQuery(Options& options) {
    if (options.output != Output::Window) {
        if (options.document) options.load = std::exchange(options.document, std::nullopt);
    } else if (options.load && documentKind(*options.load) == DocumentKind::Query) {
        options.document = std::exchange(options.load, std::nullopt);
    }
}

}  // namespace

Options parseOptions(const QStringList& list) {
    const Arguments arguments(list);
    Options options;
    options.output = outputOf(arguments);
    if (options.output == Output::Help || options.output == Output::Version) return options;
    requireSenseOf(arguments);
    options.database = arguments.value("--database");
    options.schema = arguments.value("--schema");
    options.load = arguments.value("--load");
    options.compared = arguments.values("--diff");
    options.document = arguments.value(documentName);
    shareQuery(options);
    options.list = arguments.value("--list").value_or(QString());
    if (const auto format = arguments.value("--format")) options.format = formatOf(*format);
    options.parameters = parametersOf(arguments);
    if (const auto file = arguments.value("--render")) options.picture = pictureOf(*file);
    requireStatement(arguments);
    options.keepMeaning = !arguments.has("--classic");
    options.strict = arguments.has("--strict");
    return options;
}

QString helpText() {
    return QStringLiteral(
        "usage: orvquery [[--database] FILE | --schema FILE] [QUERY | --load FILE] [--classic]\n"
        "                [--strict] [--print | --explain | --state | --run [--format FORMAT]\n"
        "                [--param NAME=VALUE | --param-null NAME] ... | --render FILE]\n"
        "       orvquery [[--database] FILE | --schema FILE] [--classic] [--strict] --list FILE\n"
        "       orvquery [[--database] FILE | --schema FILE] [--classic] [--strict] --diff FILE "
        "FILE\n"
        "\n"
        "Puts a SQL query together by mouse and runs it. Without one of the outputs below it "
        "opens\n"
        "its window; with one it needs no display.\n"
        "\n"
        "Tables\n"
        "  --database FILE  a database of SQLite or Firebird, opened for reading only; also an\n"
        "                   address, postgresql://USER@HOST/NAME, mariadb://, firebird:// or\n"
        "                   odbc://, whose password is taken from the environment variable\n"
        "                   ORVQUERY_PASSWORD; without it and --schema a sample database, made\n"
        "                   on first use\n"
        "  --schema FILE    a JSON file that describes tables: {\"ORDERS\": [[\"CUSTNO\",\n"
        "                   \"ftInteger\"], [\"PRICE\", \"ftFloat\"]]}; no rows, so no --run\n"
        "\n"
        "Statement\n"
        "  QUERY            the query file (.orvq) or statement file (.sql); a query file knows "
        "its\n"
        "                   database and where the boxes stand\n"
        "  --load FILE      load the query file, or the SELECT statement in FILE (UTF-8); - is\n"
        "                   standard input\n"
        "  --classic        load and write by the control's plain rules, also where these change\n"
        "                   what a statement asks for; each change is reported\n"
        "  --strict         exit with status 1 when the statement could not be held in full, or "
        "the\n"
        "                   database lacks tables of the query\n"
        "\n"
        "Output\n"
        "  --print          the statement as the control writes it\n"
        "  --explain        what the statement asks for, in plain English\n"
        "  --state          all that the control holds, as JSON\n"
        "  --run            the rows; --format table (default), csv, tsv or json\n"
        "  --param NAME=VALUE\n"
        "                   the value for :NAME in the statement that --run runs; repeatable\n"
        "  --param-null NAME\n"
        "                   the same for NULL\n"
        "  --render FILE    the diagram as a picture, by the name .png, .svg or .pdf\n"
        "  --list FILE      FILE names a statement or query file on each line; the state of each "
        "as\n"
        "                   one line of JSON\n"
        "  --diff FILE FILE in what the second query differs from the first one, in plain "
        "English;\n"
        "                   each is a query file, a statement or, as --state writes it, a state\n"
        "  --help           this text\n"
        "  --version        the version\n"
        "\n"
        "What a loaded statement says and the control cannot hold is told on standard error, as\n"
        "FILE:line:column: \"text\": what became of it.\n"
        "\n"
        "Exit status: 0; 1 when a file, the statement or the database could not be used; 2 when "
        "the\n"
        "command line makes no sense. With --diff: 0 without differences, 1 with some, 2 when a "
        "file\n"
        "or statement could not be used.\n");
}

}  // namespace orvquery
