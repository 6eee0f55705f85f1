// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "SmallDisk.h"
#include "database/SqliteDatabase.h"
#include "text/SavedFile.h"
#include "window/RowsExport.h"

#include <QDir>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace orvquery;
#ifdef Q_OS_UNIX
using apptest::SmallDisk;
#endif
using namespace std::chrono_literals;

namespace {

constexpr int timeoutMs = 60000;

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

}  // namespace

class TestExport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void formatFollowsName();
    void rowsOfListAreWritten_data();
    void rowsOfListAreWritten();
    void allRowsOfQueryAreWritten();
    void hugeValueIsWrittenWhole();
    void fileIsReplacedInTheEnd();
    void nothingIsLeftAfterStop();
    void nothingIsLeftAfterError();
    void nothingIsLeftAfterAbandoning();
    void nothingIsLeftWhenTheProgramEnds();
    void fullDiskIsOneSentence();
    void placeThatCannotBeWrittenIsOneSentence();
    void folderThatCannotBeWrittenIsOneSentence();
    void linkStaysOne();
    void permissionsStay();
    void secondStartIsIgnored();
    void discardedFileIsNotSaved();
    void discardedFileIsNotOpened();

private:
    [[nodiscard]] QString path(const char* name) const {
        return m_folder->filePath(QLatin1String(name));
    }
    [[nodiscard]] QStringList files() const {
        return QDir(m_folder->path()).entryList(QDir::Files, QDir::Name);
    }
    /// How the export ended.
    [[nodiscard]] QueryEnd exported(const RowSource& source, const QString& file) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QTemporaryDir m_databaseFolder;
    std::unique_ptr<SqliteDatabase> m_database;
};

void TestExport::initTestCase() {
    const QString file = m_databaseFolder.filePath(QStringLiteral("a.db"));
    QVERIFY(apptest::runStatements(file, {"CREATE TABLE t (x)"}));
    m_database = std::make_unique<SqliteDatabase>(file);
}

void TestExport::init() {
    m_folder = std::make_unique<QTemporaryDir>();
}

void TestExport::cleanup() {
    QVERIFY(QTest::qWaitFor([] { return QueryThread::threadsAtLarge() == 0; }, timeoutMs));
}

QueryEnd TestExport::exported(const RowSource& source, const QString& file) const {
    RowsExport exporting;
    QSignalSpy finished(&exporting, &RowsExport::finished);
    exporting.start(source, file, rowFormatOfFile(file).value_or(RowFormat::Csv));
    if (!finished.wait(timeoutMs)) return {QStringLiteral("(does not end)")};
    return finished[0][0].value<QueryEnd>();
}

void TestExport::formatFollowsName() {
    QCOMPARE(rowFormatOfFile("/a/b.csv"), RowFormat::Csv);
    QCOMPARE(rowFormatOfFile("b.TSV"), RowFormat::Tsv);
    QCOMPARE(rowFormatOfFile("b.csv.json"), RowFormat::Json);
    QVERIFY(!rowFormatOfFile("b.xlsx"));
    QVERIFY(!rowFormatOfFile("csv"));
    QVERIFY(!rowFormatOfFile(""));
}

void TestExport::rowsOfListAreWritten_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("CSV") << "a.csv" << QByteArray("id,city\r\n1,\"Rome, Italy\"\r\n2,\r\n");
    QTest::newRow("TSV") << "a.tsv" << QByteArray("id\tcity\n1\tRome, Italy\n2\t\n");
    QTest::newRow("JSON") << "a.json"
                          << QByteArray(
                                 "[\n  {\"id\": 1, \"city\": \"Rome, Italy\"},\n"
                                 "  {\"id\": 2, \"city\": null}\n]\n");
}

void TestExport::rowsOfListAreWritten() {
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    const QString file = m_folder->filePath(name);
    const std::vector<Row> rows = {{1, "Rome, Italy"},
                                   {2, QVariant(QMetaType::fromType<QString>())}};
    const QueryEnd end = exported(rowsOfList({"id", "city"}, rows), file);
    QCOMPARE(end.error, QString());
    QVERIFY(!end.isStopped);
    QCOMPARE(contentOf(file), content);
    QCOMPARE(files(), QStringList{name});
}

void TestExport::allRowsOfQueryAreWritten() {
    RowsExport exporting;
    QSignalSpy finished(&exporting, &RowsExport::finished);
    QCOMPARE(exporting.rowsWritten(), 0);
    exporting.start(rowsOfQuery(m_database->settings(),
                                "WITH RECURSIVE n(x) AS (VALUES(1) UNION ALL SELECT x + 1 FROM n "
                                "LIMIT 250000) SELECT x FROM n",
                                {}),
                    path("a.csv"), RowFormat::Csv);
    QVERIFY(exporting.isRunning());
    QVERIFY(finished.wait(timeoutMs));
    QCOMPARE(finished[0][0].value<QueryEnd>().error, QString());
    QCOMPARE(exporting.rowsWritten(), 250000);
    const QByteArray content = contentOf(path("a.csv"));
    QCOMPARE(content.count('\n'), 250001);
    QVERIFY(content.endsWith("\r\n250000\r\n"));
}

void TestExport::hugeValueIsWrittenWhole() {
    const RowSource source =
        rowsOfQuery(m_database->settings(), "SELECT zeroblob(5000000) AS b", {});
    QCOMPARE(exported(source, path("a.csv")).error, QString());
    QCOMPARE(QFileInfo(path("a.csv")).size(), 3 + 2 * 5000000 + 2);
}

void TestExport::fileIsReplacedInTheEnd() {
    const QString file = path("a.csv");
    QVERIFY(apptest::writeFile(file, "old"));
    QByteArray meanwhile;
    const RowSource source = [&](RowSink& sink, StopPoint&) {
        sink.begin({"a"});
        sink.row({1});
        meanwhile = contentOf(file);
    };
    QCOMPARE(exported(source, file).error, QString());
    QCOMPARE(meanwhile, QByteArray("old"));
    QCOMPARE(contentOf(file), QByteArray("a\r\n1\r\n"));
    QCOMPARE(files(), QStringList{"a.csv"});
}

void TestExport::nothingIsLeftAfterStop() {
    QVERIFY(apptest::writeFile(path("old.csv"), "old"));
    for (const char* name : {"new.csv", "old.csv"}) {
        RowsExport exporting;
        QSignalSpy finished(&exporting, &RowsExport::finished);
        QSemaphore hasBegun;
        exporting.start(
            [&](RowSink& sink, StopPoint&) {
                sink.begin({"a"});
                hasBegun.release();
                while (sink.row({1})) {
                }
            },
            path(name), RowFormat::Csv);
        hasBegun.acquire();
        exporting.stop();
        QVERIFY(finished.wait(timeoutMs));
        QVERIFY(finished[0][0].value<QueryEnd>().isStopped);
        QCOMPARE(finished[0][0].value<QueryEnd>().error, QString());
        QCOMPARE(files(), QStringList{"old.csv"});
        QCOMPARE(contentOf(path("old.csv")), QByteArray("old"));
    }
}

void TestExport::nothingIsLeftAfterError() {
    const RowSource source = [](RowSink& sink, StopPoint&) {
        sink.begin({"a"});
        sink.row({1});
        throw orv::Error(QStringLiteral("The database says: gone"));
    };
    QCOMPARE(exported(source, path("a.csv")).error, QStringLiteral("The database says: gone"));
    QCOMPARE(files(), QStringList());
}

void TestExport::nothingIsLeftAfterAbandoning() {
    RowsExport exporting;
    exporting.setPatience(0ms);
    QSignalSpy finished(&exporting, &RowsExport::finished);
    QSemaphore hasBegun;
    QSemaphore released;
    exporting.start(
        [&](RowSink& sink, StopPoint&) {
            sink.begin({"a"});
            sink.row({1});
            hasBegun.release();
            released.acquire();
        },
        path("a.csv"), RowFormat::Csv);
    hasBegun.acquire();
    QCOMPARE(files().size(), 1);
    exporting.stop();
    QVERIFY(finished.wait(timeoutMs));
    QVERIFY(finished[0][0].value<QueryEnd>().isAbandoned);
    QVERIFY(!exporting.isRunning());
    QCOMPARE(files(), QStringList());
    released.release();
    QVERIFY(QTest::qWaitFor([] { return QueryThread::threadsAtLarge() == 0; }, timeoutMs));
    QCOMPARE(files(), QStringList());
}

void TestExport::nothingIsLeftWhenTheProgramEnds() {
    QSemaphore hasBegun;
    QSemaphore released;
    {
        RowsExport exporting;
        exporting.setPatience(0ms);
        exporting.start(
            [&](RowSink& sink, StopPoint&) {
                sink.begin({"a"});
                hasBegun.release();
                released.acquire();
            },
            path("a.csv"), RowFormat::Csv);
        hasBegun.acquire();
        QCOMPARE(files().size(), 1);
    }
    QCOMPARE(files(), QStringList());
    released.release();
    QVERIFY(QTest::qWaitFor([] { return QueryThread::threadsAtLarge() == 0; }, timeoutMs));
}

void TestExport::fullDiskIsOneSentence() {
#ifdef Q_OS_UNIX
    QVERIFY(apptest::writeFile(path("a.csv"), "old"));
    std::vector<Row> rows(1000, Row{QString(1000, u'x')});
    {
        const SmallDisk disk(100000);
        QCOMPARE(exported(rowsOfList({"a"}, rows), path("a.csv")).error,
                 QStringLiteral("The file \"%1\" cannot be written: File too large.")
                     .arg(path("a.csv")));
    }
    QCOMPARE(files(), QStringList{"a.csv"});
    QCOMPARE(contentOf(path("a.csv")), QByteArray("old"));
    // Also when only the last bytes do not fit.
    {
        const SmallDisk disk(100);
        QVERIFY(
            !exported(rowsOfList({"a"}, {{QString(200, u'x')}}), path("a.csv")).error.isEmpty());
    }
    QCOMPARE(contentOf(path("a.csv")), QByteArray("old"));
    QCOMPARE(files(), QStringList{"a.csv"});
#else
    QSKIP("Only Unix has setrlimit(), which stands for a full disk.");
#endif
}

void TestExport::placeThatCannotBeWrittenIsOneSentence() {
    const RowSource rows = rowsOfList({"a"}, {{1}});
    const QString missing = path("none/a.csv");
    QCOMPARE(exported(rows, missing).error,
             QStringLiteral("The file \"%1\" cannot be written: its folder does not exist.")
                 .arg(missing));
    QVERIFY(QDir(m_folder->path()).mkdir("f.csv"));
    QCOMPARE(
        exported(rows, path("f.csv")).error,
        QStringLiteral("The file \"%1\" cannot be written: it is a folder.").arg(path("f.csv")));
#ifdef Q_OS_UNIX
    QCOMPARE(exported(rows, QStringLiteral("/dev/full")).error,
             QStringLiteral("The file \"/dev/full\" cannot be written: it is no regular file."));
#endif
    QCOMPARE(files(), QStringList());
}

void TestExport::folderThatCannotBeWrittenIsOneSentence() {
#ifdef Q_OS_UNIX
    // No right is missing to the administrator, but nothing can be made in here.
    const QString file = QStringLiteral("/proc/orvquery-test.csv");
    const QString error = exported(rowsOfList({"a"}, {{1}}), file).error;
    QVERIFY2(error.startsWith(QStringLiteral("The file \"%1\" cannot be written: ").arg(file)),
             qPrintable(error));
    QVERIFY2(error.endsWith(u'.'), qPrintable(error));
#else
    QSKIP("Only Unix has /proc, where nobody can make a file.");
#endif
}

void TestExport::linkStaysOne() {
#ifdef Q_OS_UNIX
    QVERIFY(apptest::writeFile(path("real.csv"), "old"));
    QVERIFY(QFile::link(path("real.csv"), path("link.csv")));
    QCOMPARE(exported(rowsOfList({"a"}, {}), path("link.csv")).error, QString());
    QVERIFY(QFileInfo(path("link.csv")).isSymLink());
    QCOMPARE(contentOf(path("real.csv")), QByteArray("a\r\n"));
#else
    QSKIP("Elsewhere QFile::link() makes no symbolic links, but files of shortcuts.");
#endif
}

void TestExport::permissionsStay() {
#ifdef Q_OS_UNIX
    QVERIFY(apptest::writeFile(path("a.csv"), "old"));
    const auto wanted = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(path("a.csv"), wanted));
    const auto before = QFile::permissions(path("a.csv"));
    QCOMPARE(exported(rowsOfList({"a"}, {}), path("a.csv")).error, QString());
    QCOMPARE(QFile::permissions(path("a.csv")), before);
#else
    QSKIP("Only Unix has the permissions of a group that this sets.");
#endif
}

void TestExport::secondStartIsIgnored() {
    RowsExport exporting;
    QSignalSpy finished(&exporting, &RowsExport::finished);
    exporting.start(rowsOfList({"a"}, {{1}}), path("a.csv"), RowFormat::Csv);
    exporting.start(rowsOfList({"a"}, {{2}}), path("b.csv"), RowFormat::Csv);
    QVERIFY(finished.wait(timeoutMs));
    QCOMPARE(files(), QStringList{"a.csv"});
    exporting.start(rowsOfList({"a"}, {{2}}), path("b.csv"), RowFormat::Csv);
    QVERIFY(finished.wait(timeoutMs));
    QCOMPARE(files(), (QStringList{"a.csv", "b.csv"}));
    QCOMPARE(exporting.rowsWritten(), 1);
}

void TestExport::discardedFileIsNotSaved() {
    SavedFile file(path("a.csv"));
    file.open();
    file.device().write("half");
    file.discard();
    file.save();
    QCOMPARE(files(), QStringList());
    {
        SavedFile forgotten(path("b.csv"));
        forgotten.open();
        QCOMPARE(files().size(), 1);
    }
    QCOMPARE(files(), QStringList());
}

// As when an export is given up before its thread has begun.
void TestExport::discardedFileIsNotOpened() {
    SavedFile file(path("a.csv"));
    file.discard();
    QCOMPARE(
        apptest::errorOf([&] { file.open(); }),
        QStringLiteral("The file \"%1\" cannot be written: it was given up.").arg(path("a.csv")));
    QCOMPARE(files(), QStringList());
}

QTEST_GUILESS_MAIN(TestExport)
#include "tst_app_export.moc"
