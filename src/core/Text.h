// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>
#include <QStringView>

namespace orv {

/// Strips blanks and control characters (everything up to U+0020) from both ends. QString::trimmed
/// would also strip the no-break space, which may be part of a name.
[[nodiscard]] ORV_EXPORT QStringView orvTrim(QStringView text);
[[nodiscard]] ORV_EXPORT QString orvTrim(const QString& text);

/// Upper-cases what stands outside quotes; texts in apostrophes or double quotes stay as they are.
/// An unmatched quote reaches to the end.
[[nodiscard]] ORV_EXPORT QString upperOutsideQuotes(QStringView text);
/// Puts the same behind `result`.
ORV_EXPORT void appendUpperOutsideQuotes(QString& result, QStringView text);

/// Position of the first full stop outside quotes, -1 when there is none.
[[nodiscard]] ORV_EXPORT qsizetype firstFullStop(QStringView text);

/// A name split at its first full stop outside quotes.
struct QualifiedName {
    QString alias;  ///< before the full stop; empty when there is none
    QString field;  ///< behind it; the whole text when there is none
};
[[nodiscard]] ORV_EXPORT QualifiedName splitQualifiedName(const QString& text);

/// Whether the text is one name in double quotes: "..." with inner ones doubled.
[[nodiscard]] ORV_EXPORT bool isQuotedName(QStringView text);

/// The name without its double quotes, inner doubled ones made single; any other text as it is.
[[nodiscard]] ORV_EXPORT QString unquotedName(const QString& text);

/// The name without its quotes, be they double ones or apostrophes; any other text as it is.
[[nodiscard]] ORV_EXPORT QString withoutQuotes(const QString& text);

/// Whether nothing but blanks and control characters stands in the text.
[[nodiscard]] ORV_EXPORT bool isBlank(QStringView text);

/// The name in double quotes, inner ones doubled.
[[nodiscard]] ORV_EXPORT QString quotedName(const QString& text);

/// Whether the text is an identifier that no database wants quoted for its characters: a letter of
/// either case or "_", then letters, digits, "_" and "$"; ASCII only, because databases fold other
/// letters differently.
[[nodiscard]] ORV_EXPORT bool isPlainIdentifier(QStringView text);

}  // namespace orv
