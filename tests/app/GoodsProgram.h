// SPDX-License-Identifier: MIT
#pragma once

#include "ProgramRun.h"
#include "support/Sanitizers.h"

#include <QRegularExpression>

namespace apptest {

/// The program from outside on the same small table in every database. A test class derives from
/// it.
class GoodsProgram : protected ProgramRun {
protected:
    /// Makes the table, in words that every database knows.
    [[nodiscard]] static QStringList goods();

    // The database calls columns as the table has them, or in capitals.
    enum class Names { AsMade, InCapitals };
    void checkFormats(const QString& database, Names names) const;
    void checkParameters(const QString& database) const;
    void checkMistakes(const QString& database, const QByteArray& nothingThere,
                       bool areTypesStrict = true) const;
    /// Compares the memory that the program takes for a few rows and for that many: all of them
    /// would take a hundred megabytes. It may take so many kilobytes more for the many.
    void checkThatRowsAreNotKept(const QString& database, const char* query, int most,
                                 int kilobytes = 40000) const;

    [[nodiscard]] Result runGoods(const QString& database, const QByteArray& query,
                                  const QStringList& further = {}) const {
        return run(
            QStringList{"--database", database, "--load", written("query.sql", query), "--run"} +
            further);
    }

private:
    struct Peak {
        qint64 lines = 0;
        qint64 kilobytes = 0;
    };
    [[nodiscard]] Peak peakOf(const QStringList& arguments) const;
};

inline QStringList GoodsProgram::goods() {
    return {QStringLiteral("CREATE TABLE goods (id INTEGER NOT NULL PRIMARY KEY, "
                           "name VARCHAR(20) NOT NULL, price NUMERIC(8,2), made DATE, "
                           "note VARCHAR(20))"),
            QStringLiteral("INSERT INTO goods VALUES (1, 'Tea, green', 2.5, '2024-02-29', "
                           "'says \"hi\"')"),
            QStringLiteral("INSERT INTO goods VALUES (2, 'Zo\u00eb', -10, NULL, '')"),
            QStringLiteral("INSERT INTO goods VALUES (3, 'it''s', NULL, '1999-12-31', NULL)")};
}

inline void GoodsProgram::checkFormats(const QString& database, Names names) const {
    const auto run = [&](const char* format) {
        const Result result =
            runGoods(database, "select id, name, price, made, note from goods order by id",
                     {"--format", QLatin1String(format)});
        // Only the names of columns differ.
        return QString::number(result.status) + QString::fromUtf8(result.errors) + u'\n' +
               QString::fromUtf8(result.output);
    };
    const auto expected = [&](const char* text) {
        QString lines = QString::fromUtf8(text);
        const QStringList columns = {"id", "name", "price", "made", "note"};
        for (const QString& column : columns) {
            const QRegularExpression word(QStringLiteral("\\b%1\\b").arg(column));
            if (names == Names::InCapitals) lines.replace(word, column.toUpper());
        }
        return QStringLiteral("0\n") + lines;
    };
    QCOMPARE(run("csv"), expected("id,name,price,made,note\r\n"
                                  "1,\"Tea, green\",2.5,2024-02-29,\"says \"\"hi\"\"\"\r\n"
                                  "2,Zo\u00eb,-10,,\"\"\r\n"
                                  "3,it's,,1999-12-31,\r\n"));
    QCOMPARE(run("tsv"), expected("id\tname\tprice\tmade\tnote\n"
                                  "1\tTea, green\t2.5\t2024-02-29\t\"says \"\"hi\"\"\"\n"
                                  "2\tZo\u00eb\t-10\t\t\"\"\n"
                                  "3\tit's\t\t1999-12-31\t\n"));
    QCOMPARE(run("json"), expected("[\n"
                                   "  {\"id\": 1, \"name\": \"Tea, green\", \"price\": 2.5, "
                                   "\"made\": \"2024-02-29\", \"note\": \"says \\\"hi\\\"\"},\n"
                                   "  {\"id\": 2, \"name\": \"Zo\u00eb\", \"price\": -10, "
                                   "\"made\": null, \"note\": \"\"},\n"
                                   "  {\"id\": 3, \"name\": \"it's\", \"price\": null, "
                                   "\"made\": \"1999-12-31\", \"note\": null}\n"
                                   "]\n"));
    QCOMPARE(run("table"), expected("id  name        price  made        note\n"
                                    "--  ----------  -----  ----------  ---------\n"
                                    " 1  Tea, green    2.5  2024-02-29  says \"hi\"\n"
                                    " 2  Zo\u00eb           -10  NULL\n"
                                    " 3  it's         NULL  1999-12-31  NULL\n"
                                    "(3 rows)\n"));
}

inline void GoodsProgram::checkParameters(const QString& database) const {
    struct Case {
        const char* condition;
        QStringList given;
        const char* ids;
    };
    const std::vector<Case> cases = {
        {"id = :x", {"--param", "X=2"}, "2"},
        {"id = :X", {"--param", "x=2"}, "2"},
        {"id > :low and id < :high", {"--param", "low=1", "--param", "high=3"}, "2"},
        {"name = :x", {"--param", "x=Tea, green"}, "1"},
        {"name = :x", {"--param", QString::fromUtf8("x=Zo\u00eb")}, "2"},
        {"name = :x", {"--param", "x=it's"}, "3"},
        {"name = :x", {"--param", "x=' or 1=1 --"}, ""},
        {"name <> :x", {"--param", "x=it's"}, "1 2"},
        {"note = :x", {"--param", "x="}, "2"},
        {"price = :x", {"--param", "x=2.5"}, "1"},
        {"price < :x", {"--param", "x=-1"}, "2"},
        {"made = :x", {"--param", "x=2024-02-29"}, "1"},
        {"made < :x", {"--param", "x=2000-01-01"}, "3"},
        {"id <> :x", {"--param-null", "x"}, ""},
        {"id = :x or id = :x + 1", {"--param", "x=1"}, "1 2"},
    };
    for (const Case& one : cases) {
        const Result result = runGoods(
            database, QByteArray("select id from goods where ") + one.condition + " order by id",
            QStringList{"--format", "tsv"} + one.given);
        QStringList lines = QString::fromUtf8(result.output).split(u'\n', Qt::SkipEmptyParts);
        if (!lines.isEmpty()) lines.removeFirst();
        const QString found = QString::number(result.status) + QString::fromUtf8(result.errors) +
                              u' ' + lines.join(u' ');
        QVERIFY2(found == QStringLiteral("0 ") + QLatin1String(one.ids),
                 qPrintable(QLatin1String(one.condition) + QStringLiteral(": ") + found));
    }
}

inline void GoodsProgram::checkMistakes(const QString& database, const QByteArray& nothingThere,
                                        bool areTypesStrict) const {
    const auto told = [&](const QByteArray& query, const QStringList& given) {
        const Result result = runGoods(database, query, given);
        return QByteArray::number(result.status) + ' ' + result.output + result.errors;
    };
    if (areTypesStrict) {
        QCOMPARE(
            told("select id from goods where id = :x", {"--param", "x=two"}),
            QByteArray("1 orvquery: The value of :X cannot be \"two\". A whole number is expected, "
                       "such as 42.\n"));
        const QByteArray noDay =
            told("select id from goods where made = :x", {"--param", "x=2023-02-29"});
        QVERIFY2(noDay.startsWith("1 orvquery: The value of :X cannot be \"2023-02-29\". "),
                 noDay.constData());
    }
    QCOMPARE(told("select id from goods where id = :x", {}),
             QByteArray("1 orvquery: There is no value for :X; --param NAME=VALUE or --param-null "
                        "NAME gives one.\n"));
    const QByteArray failed = told("select id from goods where id / 0 = nonsense(id)", {});
    QVERIFY2(failed.startsWith("1 orvquery: The database says: ") && failed.count('\n') == 1 &&
                 failed.contains(nothingThere),
             failed.constData());
}

inline GoodsProgram::Peak GoodsProgram::peakOf(const QStringList& arguments) const {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), m_folder.path());
    // Sanitizers keep what was freed for a while.
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("quarantine_size_mb=1"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(ORVQUERY_PROGRAM), arguments);
    Peak peak;
    const auto look = [&] {
        QFile status(QStringLiteral("/proc/%1/status").arg(process.processId()));
        if (!status.open(QIODevice::ReadOnly)) return;
        const QByteArray text = status.readAll();
        const qsizetype at = text.indexOf("VmHWM:");
        if (at < 0) return;
        const QByteArray line = text.mid(at + 6, text.indexOf('\n', at) - at - 6);
        peak.kilobytes = qMax(peak.kilobytes, line.simplified().split(' ').front().toLongLong());
    };
    while (process.waitForReadyRead(60000)) {
        look();
        peak.lines += process.readAllStandardOutput().count('\n');
    }
    process.waitForFinished(60000);
    peak.lines += process.readAllStandardOutput().count('\n');
    return peak;
}

inline void GoodsProgram::checkThatRowsAreNotKept(const QString& database, const char* query,
                                                  int most, int kilobytes) const {
#ifdef Q_OS_LINUX
    const auto peak = [&](int rows) {
        const QByteArray text = QByteArray(query) + " where x <= " + QByteArray::number(rows);
        return peakOf({"--database", database, "--load", written("many.sql", text), "--run",
                       "--format", "csv"});
    };
    // More than a pipe holds, so that the program is still there when it is looked at.
    const int least = 30000;
    const Peak few = peak(least);
    QCOMPARE(few.lines, least + 1);
    QVERIFY(few.kilobytes > 0);
    const Peak many = peak(most);
    QCOMPARE(many.lines, most + 1);
    QVERIFY2(many.kilobytes < few.kilobytes + kilobytes,
             qPrintable(QStringLiteral("%1 and %2").arg(few.kilobytes).arg(many.kilobytes)));
#else
    Q_UNUSED(database);
    Q_UNUSED(query);
    Q_UNUSED(most);
    Q_UNUSED(kilobytes);
#endif
}

}  // namespace apptest
