// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "diagram/ORVQDLinks.h"

#include <QString>

#include <vector>

namespace orv {

/// A table of a FROM clause.
struct FromTable {
    QString name;       ///< as it is written, with the arguments of a procedure
    QString alias;      ///< effective alias; written where it differs from `plainName`
    QString plainName;  ///< the name without the arguments of a procedure
};

/// One comparison of a join: fields of its first and second table.
struct FromLink {
    QString field1;     ///< its name, without the table
    QString operation;  ///< the operator
    QString field2;     ///< its name, without the table
};

/// A join between two tables, by their indices.
struct FromJoin {
    int table1 = 0;                  ///< index of the table on the left
    int table2 = 0;                  ///< index of the table on the right
    TKindOfJoin kind = klInnerJoin;  ///< seen from the first table
    std::vector<FromLink> links;     ///< its comparisons, joined by AND
    QString text;                    ///< conditions that are no comparison of two fields
};

/// What a FROM clause is written from. Tables stand in the order in which they are to begin lines;
/// joins in the order of their creation.
struct FromDiagram {
    std::vector<FromTable> tables;  ///< in the order in which they are to begin lines
    std::vector<FromJoin> joins;    ///< in the order of their creation
};

/// How a join came out in the text.
struct JoinPlace {
    bool swapped = false;      ///< its second table stands on the left
    bool closesCycle = false;  ///< both tables were written before
    int line = -1;  ///< the join that begins the line of its conditions; -1 when there is no line
};

/// How the tables and joins of a diagram came out in the text, by their indices.
struct FromPlaces {
    std::vector<int> tables;       ///< the how manieth table of the text it is, from 0 on
    std::vector<JoinPlace> joins;  ///< one for each join
};

/// The body of the clause: each table that no earlier one reaches begins an item of the comma list,
/// and what it reaches through joins follows on lines of its own. Joins are followed depth first; a
/// join between two tables that are both written names the second again. Linear in tables, joins
/// and links, and not recursive.
[[nodiscard]] ORV_EXPORT QString fromText(const FromDiagram& diagram, FromPlaces* places = nullptr);

/// The same with the meaning kept: of the joins that touch a written table the earliest is written
/// next, its kind and operators mirrored where its sides change places. A join between two tables
/// that are both written adds its conditions to the line of the later one. The texts of joins stand
/// behind all comparisons of their line.
[[nodiscard]] ORV_EXPORT QString fromTextKeepingMeaning(const FromDiagram& diagram,
                                                        FromPlaces* places = nullptr);

}  // namespace orv
