// SPDX-License-Identifier: MIT
#pragma once

#include "batch/RowsText.h"
#include "database/QueryThread.h"

#include <QObject>

#include <memory>
#include <optional>

namespace orvquery {

/// The format that the name of a file asks for by its end; none when it is no known one.
[[nodiscard]] std::optional<RowFormat> rowFormatOfFile(const QString& path);

/// Rows that are there already.
[[nodiscard]] RowSource rowsOfList(QStringList columns, std::vector<Row> rows);

/// Writes rows into a file, in a thread of its own. The file is there in the end, with all of them,
/// or stays as it was.
class RowsExport : public QObject {
    Q_OBJECT

public:
    explicit RowsExport(QObject* parent = nullptr);
    ~RowsExport() override;

    [[nodiscard]] bool isRunning() const { return m_thread.isRunning(); }
    /// Since the start.
    [[nodiscard]] qint64 milliseconds() const { return m_thread.milliseconds(); }
    /// How many rows were written so far.
    [[nodiscard]] qint64 rowsWritten() const;

    /// Starts to write the rows of the source; nothing when an export runs.
    void start(const RowSource& source, const QString& path, RowFormat format);

    /// Ends it early; finished comes nevertheless.
    void stop();

    /// How long a stopped source may take until its thread is abandoned.
    void setPatience(std::chrono::milliseconds patience) { m_thread.setPatience(patience); }

Q_SIGNALS:
    void finished(const orvquery::QueryEnd& end);

private:
    class Sink;

    void end(const QueryEnd& end);

    QueryThread m_thread;
    std::shared_ptr<Sink> m_sink;  ///< of the last export
};

}  // namespace orvquery
