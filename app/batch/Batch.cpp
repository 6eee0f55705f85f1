// SPDX-License-Identifier: MIT
#include "batch/Batch.h"

#include "batch/Picture.h"
#include "database/OpenDatabase.h"
#include "database/RunQuery.h"
#include "database/SqlErrorText.h"
#include "parameters/DiagramParameters.h"
#include "parameters/ParameterText.h"
#include "querybuilder/ORVQDState.h"
#include "querybuilder/ORVQDWindow.h"
#include "sample/SampleDatabase.h"
#include "tables/Host.h"
#include "tables/SchemaFile.h"
#include "text/Completeness.h"
#include "text/FindingLines.h"
#include "text/TextFile.h"
#include "text/TextPosition.h"
#include "toolkit/Services.h"

#include <QFileDevice>

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

void Batch::openTables() {
    if (m_options.schema) {
        m_tables = SchemaFile::read(*m_options.schema);
    } else {
        const QString path = m_options.database ? *m_options.database : sampleDatabasePath();
        auto database = orvquery::openDatabase(path);
        m_database = database.get();
        m_tables = std::move(database);
    }
    m_builder = std::make_unique<TorvQueryBuilder>();
    m_builder->setKeepMeaning(m_options.keepMeaning);
    connectTables(*m_builder, *m_tables);
}

void Batch::runOutput() {
    if (m_options.output == Output::StateOfEach) return runList();
    if (m_options.output == Output::State) return runState();
    if (m_options.load && !load(*m_options.load).isEmpty()) return;
    switch (m_options.output) {
    case Output::Print: write(statement().toUtf8() + '\n'); return;
    case Output::Run: runQueryOfStatement(); return;
    case Output::Render:
        layOut(*m_builder->WorkArea);
        writePicture(*m_builder->WorkArea, m_options.picture);
        return;
    case Output::State:
    case Output::StateOfEach:
    case Output::Window:
    case Output::Help:
    case Output::Version: break;
    }
    Q_ASSERT_X(false, "Batch::runOutput", "the output is for others");
}

void Batch::runState() {
    writeState(m_options.load ? load(*m_options.load) : QString(), orv::JsonLayout::Indented);
}

void Batch::runList() {
    const QStringList paths = readTextFile(m_options.list).split(u'\n');
    for (const QString& line : paths) {
        const QString path = line.trimmed();
        if (path.isEmpty()) continue;
        m_messages.clear();
        m_builder->Clear();
        writeState(load(path), orv::JsonLayout::Compact);
        requireWritten();
    }
}

void Batch::runQueryOfStatement() {
    const QString text = statement();
    const QString missing = whatIsMissing(text);
    if (!missing.isEmpty()) throw orv::Error(missing);
    const PlaceholderValues values = parameterValues(text);
    for (const QString& line : findingLines(m_builder->Validate())) tell(line);
    Connection connection(m_database->settings());
    const QSqlError error = connection.open();
    if (error.isValid()) throw orv::Error(sqlErrorText(error));
    const std::unique_ptr<RowWriter> writer = makeRowWriter(m_options.format, m_output);
    runQuery(connection.database(), text, *writer, values);
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

QString Batch::load(const QString& path) {
    QString text;
    try {
        text = readTextFile(path);
    } catch (const orv::Error& error) {
        fail(error.Message());
        return error.Message();
    }
    try {
        m_builder->LoadSQL(text);
    } catch (const orv::Error& error) {
        fail(path + QStringLiteral(": ") + error.Message());
        return error.Message();
    }
    const orv::Findings& findings = m_builder->LoadReport();
    tellFindings(path, text, findings);
    if (m_options.strict && !findings.empty()) m_status = 1;
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
    m_status = 1;
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
