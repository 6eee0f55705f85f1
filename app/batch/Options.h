// SPDX-License-Identifier: MIT
#pragma once

#include "batch/RowsText.h"
#include "core/Error.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace orvquery {

/// What the program is asked to do with the statement; Window asks for none of the others.
enum class Output {
    Window,
    Print,
    Explain,
    State,
    StateOfEach,
    Compare,
    Run,
    Render,
    Help,
    Version
};

/// The command line, taken apart. A plain value.
struct Options {
    Output output = Output::Window;
    std::optional<QString> database;  ///< a file or an address; the sample database without one
    std::optional<QString> schema;    ///< a JSON file that describes tables
    std::optional<QString> load;      ///< a file with a query; "-" is standard input
    std::optional<QString> document;  ///< for Window: a query file, or a statement file named alone
    QString list;                     ///< for StateOfEach: a file with names of such files
    QStringList compared;             ///< for Compare: two of them, or of states
    QString picture;                  ///< for Render
    RowFormat format = RowFormat::Table;
    /// For Run: the values of placeholders by their names in upper case; none is NULL.
    QMap<QString, std::optional<QString>> parameters;
    bool keepMeaning = true;
    bool strict = false;
};

/// A command line that asks for nothing the program knows; the text says why.
class UsageError : public orv::Error {
public:
    using orv::Error::Error;
};

/// Takes the arguments apart, without the program's own name in front. Raises UsageError.
[[nodiscard]] Options parseOptions(const QStringList& arguments);

/// What --help prints.
[[nodiscard]] QString helpText();

}  // namespace orvquery
