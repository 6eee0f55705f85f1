// SPDX-License-Identifier: MIT
#pragma once

#include "core/TRect.h"
#include "data/DataSet.h"
#include "diagram/ORVQDLinks.h"
#include "selection/ORVQDSelectColumns.h"
#include "selection/ORVQDSortList.h"

#include <QByteArray>
#include <QPoint>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <vector>

namespace orv {

/// The left or upper edge of a saved box, in diagram coordinates: nobody could scroll to one that
/// is left of the diagram or above it.
[[nodiscard]] inline int withinReach(int edge) {
    return std::max(0, edge);
}

/// A saved query as plain values: what a state file says, checked for its form.
struct QueryState {
    struct Table {
        QString name;   ///< as FROM writes it
        QString alias;  ///< effective alias
        QRect bounds;
        TDataSet fields;
        std::vector<bool> checked;  ///< by field
        bool isProcedure = false;
        TParams params;                  ///< of a procedure
        std::vector<bool> paramChecked;  ///< by parameter
        bool withoutBrackets = false;    ///< the call has none while it has no arguments
        bool collapsed = false;
        int firstRow = 0;
        int shownRows = -1;  ///< whole rows that the list shows; -1: as many as its height gives
    };
    struct Join {
        TKindOfJoin kind = klInnerJoin;
        int table1 = -1;  ///< index of `tables`
        int table2 = -1;
        QString text;
    };
    struct Link {
        int join = -1;  ///< index of `joins`
        QString field1;
        QString operation;
        QString field2;
        std::vector<QPoint> points;
        bool muted = false;
    };
    /// A condition row, or a group when `group` is not empty.
    struct Row {
        QString group;
        std::vector<Row> rows;
        QString func;
        QString field;
        QString operation;
        QString argFunc;
        QStringList arguments;
        bool muted = false;
    };

    std::vector<Table> tables;       ///< front-most first
    std::vector<int> creationOrder;  ///< indices of `tables`
    std::vector<Join> joins;
    std::vector<Link> links;
    Row where;
    Row having;
    bool distinct = false;
    QString tail;
    OutputColumns columns;
    std::vector<SortList::Line> order;
    QStringList selectedFields;
    QStringList allFields;
    QPoint view;  ///< scroll position of the diagram
};

/// Reads a state that stateJson() wrote. Keys that are missing stand for nothing of their kind;
/// keys that are not known are passed over. Raises orv::Error, naming the place, when the text is
/// no JSON or a value is not of the kind that belongs there.
[[nodiscard]] ORV_EXPORT QueryState readState(const QByteArray& json);

}  // namespace orv
