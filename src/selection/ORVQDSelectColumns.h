// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace orv {

/// One output column of the statement.
struct OutputColumn {
    QString name;          ///< output name
    QString aggregate;     ///< aggregate function; blank without one
    QString source;        ///< qualified field name or expression
    bool grouped = false;  ///< its source stood in the GROUP BY list of the loaded statement
    bool muted = false;    ///< kept, but not written

    /// Equal when all members are.
    friend bool operator==(const OutputColumn&, const OutputColumn&) = default;
};

/// Output columns in their order.
using OutputColumns = std::vector<OutputColumn>;

/// What the texts of the select list depend on besides the columns.
struct SelectTextRules {
    const QStringList* aggregates = nullptr;             ///< names of the aggregate functions
    std::function<bool(const QString& source)> isField;  ///< whether a source is a diagram field
    /// Output names that are no identifiers are written in quotes, and those of aggregates always.
    bool keepMeaning = false;
};

/// The two texts that the selection contributes to a statement.
struct SelectTexts {
    QString select;           ///< the list behind SELECT
    QString groupBy;          ///< the list behind GROUP BY; empty without one
    bool aggregated = false;  ///< only then there is a GROUP BY list, empty or not
};

/// Name of an output column made from its source: the source without its first qualifier, with
/// "SUM_OF_" in front of it when there is an aggregate.
[[nodiscard]] ORV_EXPORT QString createFieldName(const QString& aggregate, const QString& source);

/// Whether the expression calls an aggregate function itself: outside sub-queries, and not over a
/// window.
[[nodiscard]] ORV_EXPORT bool callsAggregate(const QString& source, const QStringList& aggregates);

/// The name behind AS; empty when none is written.
[[nodiscard]] ORV_EXPORT QString writtenOutputName(const OutputColumn& column,
                                                   const SelectTextRules& rules);

/// Whether a name can stand behind AS: an identifier, or a name in quotes.
[[nodiscard]] ORV_EXPORT bool isValidOutputName(const QString& name);

/// What is wrong with the name behind AS, as one sentence; empty when nothing is.
[[nodiscard]] ORV_EXPORT QString outputNameProblem(const OutputColumn& column,
                                                   const SelectTextRules& rules);

/// The text of one column as the select list has it.
[[nodiscard]] ORV_EXPORT QString columnText(const OutputColumn& column,
                                            const SelectTextRules& rules);

/// Whether the selection is aggregated: a column that is written has an aggregate or calls one.
[[nodiscard]] ORV_EXPORT bool isAggregated(const OutputColumns& columns,
                                           const SelectTextRules& rules);

/// Whether the column can be written in an aggregated selection: it is aggregated itself, or it can
/// be grouped.
[[nodiscard]] ORV_EXPORT bool fitsAggregation(const OutputColumn& column,
                                              const SelectTextRules& rules);

/// The select list, one column a line, and the GROUP BY list, without muted columns. Raises
/// orv::Error "There is no agregate function on page "Selection" in %d row" when a column of an
/// aggregated selection has no aggregate and cannot be grouped.
[[nodiscard]] ORV_EXPORT SelectTexts selectTexts(const OutputColumns& columns,
                                                 const SelectTextRules& rules);

}  // namespace orv
