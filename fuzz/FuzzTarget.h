// SPDX-License-Identifier: MIT
#pragma once

#include "sqlcases/SqlCaseFile.h"

#include <QByteArrayView>
#include <QList>
#include <QString>

#include <stdexcept>
#include <vector>

/// What is run on the inputs that a fuzzer makes: by libFuzzer in a program for each target, and on
/// the seeds and the findings of old by a test.
namespace orvfuzz {

/// Raised when a run shows that something does not hold.
class Broken : public std::runtime_error {
public:
    explicit Broken(const QString& what) : std::runtime_error(what.toStdString()) {}
};

/// Raises Broken with that sentence unless `holds`.
inline void require(bool holds, const char* what) {
    if (!holds) throw Broken(QString::fromLatin1(what));
}
inline void require(bool holds, const QString& what) {
    if (!holds) throw Broken(what);
}

struct Target {
    const char* name;  ///< as its program, its seeds and its findings are called
    bool hasWidgets;   ///< needs a QApplication
    void (*run)(QByteArrayView input);
    QList<QByteArray> (*seeds)();
};

/// The files of the SQL cases. Raises Broken when they cannot be read.
[[nodiscard]] const std::vector<SqlCaseFile>& sqlCaseFiles();

/// Their statements, as they stand there.
[[nodiscard]] QList<QByteArray> statementsOfCases();

}  // namespace orvfuzz
