// SPDX-License-Identifier: MIT
// Writes the seeds of each fuzzer into a folder: fuzz_seeds FOLDER makes FOLDER/NAME/0001 and so
// on.
#include "Surroundings.h"
#include "Targets.h"

#include <QDir>
#include <QSaveFile>
#include <QTextStream>

namespace {

void write(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        throw orvfuzz::Broken(path + QStringLiteral(": ") + file.errorString());
    }
}

void writeSeeds(const QDir& folder, const orvfuzz::Target& target) {
    const QString name = QString::fromLatin1(target.name);
    QDir own(folder.filePath(name));
    own.removeRecursively();
    own.mkpath(QStringLiteral("."));
    int number = 0;
    for (const QByteArray& seed : target.seeds()) {
        write(own.filePath(QStringLiteral("%1").arg(++number, 4, 10, QLatin1Char('0'))), seed);
    }
    QTextStream(stdout) << name << ": " << number << " seeds" << Qt::endl;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 2) throw orvfuzz::Broken(QStringLiteral("usage: fuzz_seeds FOLDER"));
        const orvfuzz::Surroundings surroundings(true, argv[0]);
        const QDir folder(QString::fromLocal8Bit(argv[1]));
        for (const orvfuzz::Target& target : orvfuzz::targets()) writeSeeds(folder, target);
    } catch (const std::exception& error) {
        QTextStream(stderr) << QString::fromUtf8(error.what()) << Qt::endl;
        return 1;
    }
    return 0;
}
