// SPDX-License-Identifier: MIT
#include "window/RowsExport.h"

#include "core/Error.h"
#include "text/SavedFile.h"

#include <QFileInfo>

#include <atomic>

namespace orvquery {

std::optional<RowFormat> rowFormatOfFile(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == u"csv") return RowFormat::Csv;
    if (suffix == u"tsv") return RowFormat::Tsv;
    if (suffix == u"json") return RowFormat::Json;
    return std::nullopt;
}

RowSource rowsOfList(QStringList columns, std::vector<Row> rows) {
    const auto list = std::make_shared<const std::vector<Row>>(std::move(rows));
    return [columns = std::move(columns), list](RowSink& sink, StopPoint&) {
        sink.begin(columns);
        for (const Row& row : *list) {
            if (!sink.row(row)) return;
        }
    };
}

/// Writes the rows; shared with the thread.
class RowsExport::Sink : public RowSink {
public:
    Sink(const QString& path, RowFormat format)
        : m_file(path), m_writer(makeRowWriter(format, m_file.device())) {}

    void open() { m_file.open(); }
    void begin(const QStringList& columns) override { m_writer->begin(columns); }
    bool row(const Row& values) override {
        m_writer->row(values);
        m_file.requireWritten();
        ++m_rows;
        return true;
    }
    void save() {
        m_writer->finish();
        m_file.save();
    }
    void discard() { m_file.discard(); }
    [[nodiscard]] qint64 rows() const { return m_rows; }

private:
    SavedFile m_file;
    std::unique_ptr<RowWriter> m_writer;
    std::atomic<qint64> m_rows = 0;
};

RowsExport::RowsExport(QObject* parent) : QObject(parent) {
    connect(&m_thread, &QueryThread::ended, this, &RowsExport::end);
}

// An abandoned thread would leave its file behind when the program ends.
RowsExport::~RowsExport() {
    if (isRunning()) m_sink->discard();
}

qint64 RowsExport::rowsWritten() const {
    return m_sink ? m_sink->rows() : 0;
}

void RowsExport::start(const RowSource& source, const QString& path, RowFormat format) {
    if (isRunning()) return;
    m_sink = std::make_shared<Sink>(path, format);
    m_thread.start(
        [source, sink = m_sink](RowSink& rows, StopPoint& stop) {
            sink->open();
            source(rows, stop);
            // Stopped in the midst of the rows, the source may end like one that has no more.
            if (stop.isWanted()) throw orv::Error(QStringLiteral("Stopped."));
            sink->save();
        },
        m_sink);
}

void RowsExport::stop() {
    m_thread.stop();
}

void RowsExport::end(const QueryEnd& end) {
    if (end.isStopped || !end.error.isEmpty()) m_sink->discard();
    Q_EMIT finished(end);
}

}  // namespace orvquery
