// SPDX-License-Identifier: MIT
#pragma once

#include "data/DataSet.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <vector>

/// One statement with what becomes of it. The form of the files is told in their README.
struct SqlCase {
    QString name;
    QMap<QString, QStringList> sections;  ///< lines by section name, expected ones as written

    [[nodiscard]] bool has(const QString& section) const { return sections.contains(section); }
    [[nodiscard]] QStringList lines(const QString& section) const {
        return sections.value(section);
    }
    [[nodiscard]] QString line(const QString& section) const { return lines(section).value(0); }
};

/// The cases of one file with the tables that they are about.
struct SqlCaseFile {
    QMap<QString, TDataSet> tables;     ///< by upper-case name
    QMap<QString, TParams> procedures;  ///< parameters of those of them that are procedures
    std::vector<SqlCase> cases;
    QString error;  ///< place and reason when the file is no such file
};

[[nodiscard]] SqlCaseFile readSqlCases(const QString& path);
