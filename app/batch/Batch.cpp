// SPDX-License-Identifier: MIT
#include "batch/Batch.h"

#include "batch/TableIdentity.h"
#include "database/OpenDatabase.h"
#include "database/QueryThread.h"
#include "differences/Differences.h"
#include "names/KeptCase.h"
#include "parameters/DiagramParameters.h"
#include "parameters/ParameterText.h"
#include "pictures/Picture.h"
#include "querybuilder/ORVQDState.h"
#include "querybuilder/ORVQDWindow.h"
#include "sample/SampleDatabase.h"
#include "tables/Host.h"
#include "tables/SchemaFile.h"
#include "text/Completeness.h"
#include "text/FindingLines.h"
#include "text/Refusal.h"
#include "text/TextFile.h"
#include "text/TextPosition.h"
#include "toolkit/Services.h"
#include "words/Explanation.h"

#include <QFileDevice>

#include <algorithm>

namespace orvquery {

namespace {

constexpr qsizetype mostFindingText = 100;

// A finding's text on one line of bearable length.
QString shortText(const QString& text) {
    QString line = text.simplified();
    if (line.size() <= mostFindingText) return line;
    const qsizetype cut =
        line[mostFindingText - 1].isHighSurrogate() ? mostFindingText - 1 : mostFindingText;
    return line.left(cut) + QStringLiteral("...");
}

QVariant parameterValue(const ParameterDescription& parameter, const std::optional<QString>& text) {
    if (!text) return QVariant(QMetaType::fromType<QString>());
    const ParameterReading reading = readParameter(*text, parameter.type, QLocale::c());
    if (reading.problem.isEmpty()) return reading.value;
    throw orv::Error(QStringLiteral("The value of :%1 cannot be \"%2\". %3")
                         .arg(parameter.name, *text, reading.problem));
}

std::unique_ptr<TableSource> noTables() {
    return std::make_unique<SchemaFile>(QByteArray("{}"), QString());
}

}  // namespace

Batch::Batch(Options options, QIODevice& output, QIODevice& errors)
    : m_options(std::move(options)), m_output(output), m_errors(errors) {
    orv::setMessageService([this](const orv::MessageRequest& request) {
        m_messages += request.text;
        tell(request.text.simplified());
        return request.buttons == orv::MessageButtons::YesNo ? orv::MessageAnswer::No
                                                             : orv::MessageAnswer::Ok;
    });
    orv::setErrorHandler([this](const QString& text) { fail(text); });
}

Batch::~Batch() {
    // The control may still speak while it goes.
    m_builder.reset();
    orv::setMessageService({});
    orv::setErrorHandler({});
}

int Batch::run() {
    try {
        readGiven();
        openTables();
        runOutput();
        requireWritten();
    } catch (const orv::Error& error) {
        fail(error.Message());
    } catch (const std::exception& error) {
        fail(QString::fromUtf8(error.what()));
    }
    return m_status;
}

// Before the tables are opened: a query file knows which ones it needs.
void Batch::readGiven() {
    if (m_options.load) m_given.push_back(read(*m_options.load));
    for (const QString& path : m_options.compared) m_given.push_back(read(path));
}

Batch::Given Batch::read(const QString& path) {
    try {
        return {path, readGivenQuery(path), {}};
    } catch (const orv::Error& error) {
        const bool namesFile = error.Message().contains(path);
        return {
            path, {}, namesFile ? error.Message() : path + QStringLiteral(": ") + error.Message()};
    }
}

void Batch::openTables() {
    const DocumentDatabase wanted = wantedDatabase();
    if (m_options.schema) {
        m_tables = SchemaFile::read(*m_options.schema);
    } else if (m_options.database) {
        use(orvquery::openDatabase(*m_options.database));
    } else if (!wanted.isNone()) {
        openTablesOf(wanted);
    } else if (m_options.output == Output::Compare && !hasStatementToLoad()) {
        m_tables = noTables();
        m_knowsTables = false;
    } else {
        use(orvquery::openDatabase(sampleDatabasePath()));
    }
    m_builder = std::make_unique<TorvQueryBuilder>();
    m_builder->setKeepMeaning(m_options.keepMeaning);
    connectTables(*m_builder, *m_tables);
}

void Batch::use(std::unique_ptr<Database> database) {
    m_database = database.get();
    m_tables = std::move(database);
}

// A query file holds what is drawn and written; the database is needed for rows, and to load a
// statement.
void Batch::openTablesOf(const DocumentDatabase& wanted) {
    const bool needsRows = m_options.output == Output::Run;
    if (needsRows && !wanted.schema.isEmpty()) {
        throw orv::Error(
            QStringLiteral("The query is for the tables of the file \"%1\", which has no "
                           "rows; --database FILE names a database.")
                .arg(wanted.schema));
    }
    try {
        if (!wanted.schema.isEmpty()) {
            m_tables = SchemaFile::read(wanted.schema);
        } else {
            use(orvquery::openDatabase(wanted.isSample ? sampleDatabasePath() : wanted.address));
        }
    } catch (const orv::Error& error) {
        const QString name = wanted.name.isEmpty() ? wanted.address : wanted.name;
        const QString problem =
            QStringLiteral("The query's database %1 is not open. ").arg(name) + error.Message();
        if (needsRows || hasStatementToLoad()) throw orv::Error(problem);
        fail(problem);
        m_tables = noTables();
        m_knowsTables = false;
    }
}

// That of the first query file that names one. Two diagrams are compared without any.
DocumentDatabase Batch::wantedDatabase() const {
    if (m_options.output == Output::Compare && !hasStatementToLoad()) return {};
    for (const Given& given : m_given) {
        if (!given.query.document) continue;
        const DocumentDatabase& database = given.query.document->database;
        if (!database.isNone()) return database;
    }
    return {};
}

bool Batch::hasStatementToLoad() const {
    return std::any_of(m_given.begin(), m_given.end(), [](const Given& given) {
        return given.problem.isEmpty() && !given.query.hasDiagram();
    });
}

void Batch::runOutput() {
    if (m_options.output == Output::StateOfEach) return runList();
    if (m_options.output == Output::State) return runState();
    if (m_options.output == Output::Compare) return runCompare();
    if (!m_given.empty() && !load(m_given.front()).isEmpty()) return;
    if (m_options.output != Output::Render) requireQuery();
    switch (m_options.output) {
    case Output::Print: write(statement().toUtf8() + '\n'); return;
    case Output::Explain: runExplain(); return;
    case Output::Run: runQueryOfStatement(); return;
    case Output::Render:
        if (!m_given.front().query.hasDiagram()) layOut(*m_builder->WorkArea);
        writePicture(*m_builder->WorkArea, m_options.picture);
        return;
    case Output::State:
    case Output::StateOfEach:
    case Output::Compare:
    case Output::Window:
    case Output::Help:
    case Output::Version: break;
    }
    Q_ASSERT_X(false, "Batch::runOutput", "the output is for others");
}

// A statement without a table is one all the same.
void Batch::requireQuery() const {
    const Given& given = m_given.front();
    const bool isEmpty = given.query.isEmpty() ||
                         (given.query.hasDiagram() && m_builder->ListOfTables->TablesCount() == 0);
    if (isEmpty) {
        throw orv::Error(QStringLiteral("There is no query on the diagram of %1.").arg(given.path));
    }
}

void Batch::runState() {
    writeState(m_given.empty() ? QString() : load(m_given.front()), orv::JsonLayout::Indented);
}

void Batch::runExplain() {
    m_builder->CommitPendingEdits();
    const orv::QueryState state = orv::readState(m_builder->SaveState());
    write(plainText(explain(state, m_options.keepMeaning)).toUtf8());
}

void Batch::runList() {
    const QStringList paths = readTextFile(m_options.list).split(u'\n');
    for (const QString& line : paths) {
        const QString path = line.trimmed();
        if (path.isEmpty()) continue;
        m_messages.clear();
        m_builder->Clear();
        writeState(load(read(path)), orv::JsonLayout::Compact);
        requireWritten();
    }
}

void Batch::runCompare() {
    const std::optional<Compared> before = comparedOf(m_given.front());
    const std::optional<Compared> after = comparedOf(m_given.back());
    if (!before || !after) return;
    std::vector<Difference> found =
        differences(before->state, after->state, m_options.keepMeaning, tableKeyOf(*m_tables));
    const auto notHeld = differencesNotHeld(before->notHeld, after->notHeld);
    found.insert(found.end(), notHeld.begin(), notHeld.end());
    write(plainText(inWords(found)).toUtf8());
    if (!found.empty() && m_status == 0) m_status = 1;
}

// None was told.
std::optional<Batch::Compared> Batch::comparedOf(const Given& given) {
    if (given.problem.isEmpty() && given.query.hasDiagram()) {
        return Compared{orv::readState(given.query.document->state()), {}};
    }
    m_findings.clear();
    if (!load(given).isEmpty()) return std::nullopt;
    Compared compared = {orv::readState(m_builder->SaveState()), m_findings};
    const QString problem = whyNotComparable(compared.state, compared.notHeld);
    if (problem.isEmpty()) return compared;
    fail(given.path + QStringLiteral(": ") + problem);
    return std::nullopt;
}

void Batch::runQueryOfStatement() {
    const QString text = statement();
    const QString missing = whatIsMissing(text);
    if (!missing.isEmpty()) throw orv::Error(missing);
    const PlaceholderValues values = parameterValues(text);
    for (const QString& line : findingLines(m_builder->Validate())) tell(line);
    const std::unique_ptr<RowWriter> writer = makeRowWriter(m_options.format, m_output);
    StopPoint stop;
    rowsOfQuery(m_database->settings(), text, values)(*writer, stop);
    writer->finish();
}

PlaceholderValues Batch::parameterValues(const QString& statement) const {
    const std::vector<ParameterDescription> parameters = describeParameters(
        statement, *m_builder,
        m_database->hasStrictTypes() ? ColumnTypes::AreStrict : ColumnTypes::AreLoose);
    PlaceholderValues values;
    QStringList missing;
    QStringList unknown = m_options.parameters.keys();
    for (const ParameterDescription& parameter : parameters) {
        unknown.removeAll(parameter.name);
        const auto given = m_options.parameters.constFind(parameter.name);
        if (given != m_options.parameters.cend()) {
            values.insert(parameter.name, parameterValue(parameter, *given));
        } else if (parameter.byDefault.isValid()) {
            values.insert(parameter.name, parameter.byDefault);
        } else {
            missing += u':' + parameter.name;
        }
    }
    if (!missing.isEmpty()) {
        throw orv::Error(QStringLiteral("There is no value for %1; --param NAME=VALUE or "
                                        "--param-null NAME gives one.")
                             .arg(missing.join(QStringLiteral(", "))));
    }
    if (!unknown.isEmpty()) {
        throw orv::Error(QStringLiteral("The statement has no parameter :%1.")
                             .arg(unknown.join(QStringLiteral(", :"))));
    }
    return values;
}

// The text says what went wrong; it was told.
QString Batch::load(const Given& given) {
    if (!given.problem.isEmpty()) {
        fail(given.problem);
        return given.problem;
    }
    if (given.query.document && given.query.document->typed) {
        tell(QStringLiteral("%1 has a text besides that was typed and not loaded; it is left out.")
                 .arg(given.path));
    }
    if (given.query.hasDiagram()) return restore(given);
    if (given.query.isEmpty()) return {};
    // Its lines are not those of the file.
    const QString name =
        given.query.document ? given.path + QStringLiteral(" (statement)") : given.path;
    return loadText(name, given.query.statement);
}

QString Batch::restore(const Given& given) {
    try {
        m_builder->RestoreState(given.query.document->state());
        if (m_knowsTables) tellMissingTables(given);
    } catch (const orv::Error& error) {
        QString text = given.path + QStringLiteral(": ") + error.Message();
        fail(text);
        return text;
    }
    return {};
}

// The query is whole all the same: what it knows of its tables is in its file.
void Batch::tellMissingTables(const Given& given) {
    QStringList missing;
    const orv::QueryState state = orv::readState(given.query.document->state());
    for (const auto& table : state.tables) {
        const bool isNew = !missing.contains(table.name);
        if (isNew && !m_tables->find(table.name)) missing += table.name;
    }
    if (missing.isEmpty()) return;
    tell(QStringLiteral("%1: %2 has no %3; the query keeps what it knows of them.")
             .arg(given.path, m_tables->title(), missing.join(QStringLiteral(", "))));
    if (m_options.strict) m_status = failure();
}

QString Batch::loadText(const QString& name, const QString& text) {
    QString loaded;
    try {
        loaded = m_tables->forLoading(text);
        m_builder->LoadSQL(loaded);
    } catch (const orv::Error& error) {
        fail(name + QStringLiteral(": ") + refusalText(error.Message(), text));
        return error.Message();
    }
    m_findings = findingsBefore(m_builder->LoadReport(), loaded, text);
    tellFindings(name, text, m_findings);
    if (m_options.strict && !m_findings.empty()) m_status = failure();
    return {};
}

void Batch::writeState(const QString& error, orv::JsonLayout layout) {
    try {
        (void)statement();
    } catch (const orv::Error& raised) {
        // The document says it too; a statement that cannot be written is no success.
        if (error.isEmpty()) fail(raised.Message());
    }
    const QByteArray json = orv::stateJson(*m_builder, {error, m_messages}, layout);
    write(json.endsWith('\n') ? json : json + '\n');
}

QString Batch::statement() {
    m_builder->CommitPendingEdits();
    return m_builder->GetSQLStatment();
}

void Batch::tellFindings(const QString& path, const QString& text, const orv::Findings& findings) {
    for (const orv::Finding& finding : findings) {
        const TextPosition place = textPosition(QStringView(text).left(finding.start));
        const QString line = path + QStringLiteral(":%1:%2: ").arg(place.line).arg(place.column) +
                             u'"' + shortText(finding.text) + QStringLiteral("\": ") +
                             finding.what + u'\n';
        m_errors.write(line.toUtf8());
    }
}

void Batch::tell(const QString& text) {
    m_errors.write((QStringLiteral("orvquery: ") + text + u'\n').toUtf8());
}

void Batch::fail(const QString& text) {
    tell(text);
    m_status = failure();
}

// Where differences are told by a status of their own, trouble has another one.
int Batch::failure() const {
    return m_options.output == Output::Compare ? 2 : 1;
}

void Batch::write(const QByteArray& bytes) {
    if (m_output.write(bytes) != bytes.size()) {
        throw orv::Error(QStringLiteral("The output cannot be written: ") + m_output.errorString());
    }
}

void Batch::requireWritten() {
    auto* file = qobject_cast<QFileDevice*>(&m_output);
    if (file == nullptr || (file->flush() && file->error() == QFileDevice::NoError)) return;
    throw orv::Error(QStringLiteral("The output cannot be written: ") + file->errorString());
}

}  // namespace orvquery
