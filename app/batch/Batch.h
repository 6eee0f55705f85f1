// SPDX-License-Identifier: MIT
#pragma once

#include "batch/Options.h"
#include "documents/GivenQuery.h"
#include "parameters/Placeholders.h"
#include "parser/ORVQDFindings.h"
#include "querybuilder/ORVQDState.h"
#include "querybuilder/ORVQDStateReader.h"
#include "tables/TableSource.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

class QIODevice;
class TorvQueryBuilder;

namespace orvquery {

class Database;

/// Does without a window what a command line asks for. While it lives, message boxes of the control
/// become lines on its error device. Lives for one command line; the devices must outlive it.
class Batch {
public:
    Batch(Options options, QIODevice& output, QIODevice& errors);
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;
    ~Batch();

    /// Does it and returns the exit status. Raises nothing.
    int run();

private:
    /// A query that the command line names, or why it could not be read.
    struct Given {
        QString path;
        GivenQuery query;
        QString problem;
    };

    /// What is compared of a query: its state, and what that does not hold of its statement.
    struct Compared {
        orv::QueryState state;
        orv::Findings notHeld;
    };

    void readGiven();
    [[nodiscard]] static Given read(const QString& path);
    void openTables();
    void use(std::unique_ptr<Database> database);
    void openTablesOf(const DocumentDatabase& wanted);
    [[nodiscard]] DocumentDatabase wantedDatabase() const;
    [[nodiscard]] bool hasStatementToLoad() const;
    void runOutput();
    void runState();
    void runExplain();
    void runList();
    void runCompare();
    void runQueryOfStatement();
    [[nodiscard]] PlaceholderValues parameterValues(const QString& statement) const;

    [[nodiscard]] QString load(const Given& given);
    [[nodiscard]] QString loadText(const QString& name, const QString& text);
    [[nodiscard]] QString restore(const Given& given);
    void tellMissingTables(const Given& given);
    void requireQuery() const;
    [[nodiscard]] std::optional<Compared> comparedOf(const Given& given);
    void writeState(const QString& error, orv::JsonLayout layout);
    [[nodiscard]] QString statement();
    void tellFindings(const QString& path, const QString& text, const orv::Findings& findings);
    void tell(const QString& text);
    void fail(const QString& text);
    [[nodiscard]] int failure() const;
    void write(const QByteArray& bytes);
    void requireWritten();

    Options m_options;
    QIODevice& m_output;
    QIODevice& m_errors;
    std::vector<Given> m_given;
    std::unique_ptr<TableSource> m_tables;
    Database* m_database = nullptr;  ///< m_tables, when it is a database
    bool m_knowsTables = true;       ///< false where there is no database, and none is needed
    std::unique_ptr<TorvQueryBuilder> m_builder;
    orv::Findings m_findings;  ///< of the statement that was loaded last
    QStringList m_messages;    ///< of the statement that is worked on
    int m_status = 0;
};

}  // namespace orvquery
