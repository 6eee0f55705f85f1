// SPDX-License-Identifier: MIT
// Runs what the fuzzers run on their seeds, and on the inputs with which they have found something
// before: those stand in fuzz/found-cases, in a folder for each fuzzer.
#include "Targets.h"
#include "support/TestTools.h"

#include <QDir>
#include <QFile>

using orvfuzz::Target;

namespace {

Target targetNamed(const QString& name) {
    const QList<Target>& all = orvfuzz::targets();
    return *std::find_if(all.begin(), all.end(),
                         [&](const Target& target) { return name == QLatin1String(target.name); });
}

// What is broken when the target runs on the input; empty when nothing is.
QString brokenBy(const Target& target, const QByteArray& input) {
    try {
        target.run(input);
    } catch (const std::exception& broken) {
        return QString::fromUtf8(broken.what());
    }
    return {};
}

}  // namespace

class FuzzSeedsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void nothingIsBrokenBySeeds_data();
    void nothingIsBrokenBySeeds();
    void nothingIsBrokenByFoundCases_data();
    void nothingIsBrokenByFoundCases();
};

void FuzzSeedsTest::nothingIsBrokenBySeeds_data() {
    QTest::addColumn<QString>("name");
    for (const Target& target : orvfuzz::targets()) {
        QTest::newRow(target.name) << QString::fromLatin1(target.name);
    }
}

void FuzzSeedsTest::nothingIsBrokenBySeeds() {
    QFETCH(QString, name);
    const Target target = targetNamed(name);
    const QList<QByteArray> seeds = target.seeds();
    QVERIFY(seeds.size() > 5);
    int broken = 0;
    for (const QByteArray& seed : seeds) {
        const QString what = brokenBy(target, seed);
        if (what.isEmpty()) continue;
        ++broken;
        qInfo("%s\n%s\n", seed.constData(), qPrintable(what));
    }
    QCOMPARE(broken, 0);
}

void FuzzSeedsTest::nothingIsBrokenByFoundCases_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");
    for (const Target& target : orvfuzz::targets()) {
        const QDir folder(QStringLiteral(ORV_FOUND_CASES "/") + QLatin1String(target.name));
        for (const QFileInfo& file : folder.entryInfoList(QDir::Files, QDir::Name)) {
            QTest::addRow("%s/%s", target.name, qPrintable(file.fileName()))
                << QString::fromLatin1(target.name) << file.filePath();
        }
    }
}

void FuzzSeedsTest::nothingIsBrokenByFoundCases() {
    QFETCH(QString, name);
    QFETCH(QString, path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(brokenBy(targetNamed(name), file.readAll()), QString());
}

QTEST_MAIN(FuzzSeedsTest)
#include "tst_fuzzseeds.moc"
