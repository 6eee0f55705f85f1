// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "data/DataSet.h"

#include <QPointer>
#include <QString>

class TorvQDTable;
class TorvQDWorkArea;

/// The tables of the diagram as a host adds and removes them. It owns nothing and becomes useless
/// with its work area.
class ORV_EXPORT TorvQDListOfTables {
public:
    /// The work area is borrowed; the query builder makes the one list that it has.
    explicit TorvQDListOfTables(TorvQDWorkArea* WorkArea);

    /// How many boxes there are; 0 once the work area is gone.
    [[nodiscard]] int TablesCount() const;

    /// The box at a place of the stacking order, front-most first: the place changes with every
    /// click on the diagram, the alias does not. Raises orv::Error for an index out of range.
    [[nodiscard]] TorvQDTable* Tables(int Index) const;
    /// The box of that effective alias; none when there is none.
    [[nodiscard]] TorvQDTable* tableByAlias(const QString& alias) const;

    /// Adds a box for the table; none when the host's own handler does not allow it. Raises
    /// orv::Error for an empty name. The data set is copied; none makes a box without rows.
    TorvQDTable* AddTable(const QString& Name, const TDataSet& DataSet);
    TorvQDTable* AddTable(const QString& Name, const TDataSet* DataSet);

    /// The same for a stored procedure: below the columns of its result its box lists the
    /// parameters, and FROM calls it with the values of those that are ptInput.
    TorvQDTable* AddProc(const QString& Name, const TDataSet& DataSet, const TParams& Params);
    TorvQDTable* AddProc(const QString& Name, const TDataSet* DataSet, const TParams* Params);

    /// Closes the box as the user does: the host is asked, the pages are told. Raises orv::Error
    /// for an index out of range.
    void DeleteTable(int Index);
    void DeleteTable(TorvQDTable* Table);

private:
    QPointer<TorvQDWorkArea> m_workArea;
};
