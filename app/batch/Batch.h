// SPDX-License-Identifier: MIT
#pragma once

#include "batch/Options.h"
#include "parameters/Placeholders.h"
#include "parser/ORVQDFindings.h"
#include "querybuilder/ORVQDState.h"
#include "tables/TableSource.h"

#include <QStringList>

#include <memory>

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
    void openTables();
    void runOutput();
    void runState();
    void runList();
    void runQueryOfStatement();
    [[nodiscard]] PlaceholderValues parameterValues(const QString& statement) const;

    [[nodiscard]] QString load(const QString& path);
    void writeState(const QString& error, orv::JsonLayout layout);
    [[nodiscard]] QString statement();
    void tellFindings(const QString& path, const QString& text, const orv::Findings& findings);
    void tell(const QString& text);
    void fail(const QString& text);
    void write(const QByteArray& bytes);
    void requireWritten();

    Options m_options;
    QIODevice& m_output;
    QIODevice& m_errors;
    std::unique_ptr<TableSource> m_tables;
    Database* m_database = nullptr;  ///< m_tables, when it is a database
    std::unique_ptr<TorvQueryBuilder> m_builder;
    QStringList m_messages;  ///< of the statement that is worked on
    int m_status = 0;
};

}  // namespace orvquery
