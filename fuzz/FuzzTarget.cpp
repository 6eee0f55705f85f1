// SPDX-License-Identifier: MIT
#include "FuzzTarget.h"

#include <QDir>

namespace orvfuzz {

const std::vector<SqlCaseFile>& sqlCaseFiles() {
    static const std::vector<SqlCaseFile> files = [] {
        const QDir folder(QStringLiteral(ORV_SQL_CASES));
        std::vector<SqlCaseFile> read;
        for (const QString& name : folder.entryList({QStringLiteral("*.txt")}, QDir::Files)) {
            read.push_back(readSqlCases(folder.filePath(name)));
            require(read.back().error.isEmpty(), read.back().error);
        }
        require(!read.empty(), "There are no SQL cases.");
        return read;
    }();
    return files;
}

QList<QByteArray> statementsOfCases() {
    QList<QByteArray> statements;
    for (const SqlCaseFile& file : sqlCaseFiles()) {
        for (const SqlCase& sqlCase : file.cases) {
            statements << sqlCase.lines(QStringLiteral("sql")).join(u'\n').toUtf8();
        }
    }
    return statements;
}

}  // namespace orvfuzz
