// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDListOfTables.h"

#include "core/Error.h"
#include "workarea/ORVQDFloatPanel.h"

TorvQDListOfTables::TorvQDListOfTables(TorvQDWorkArea* WorkArea) : m_workArea(WorkArea) {}

int TorvQDListOfTables::TablesCount() const {
    return m_workArea ? m_workArea->TablesCount() : 0;
}

TorvQDTable* TorvQDListOfTables::Tables(int Index) const {
    if (!m_workArea) throw orv::Error(QStringLiteral("The diagram is gone"));
    return m_workArea->Tables(Index);
}

TorvQDTable* TorvQDListOfTables::tableByAlias(const QString& alias) const {
    return m_workArea ? m_workArea->GetTable(alias) : nullptr;
}

TorvQDTable* TorvQDListOfTables::AddTable(const QString& Name, const TDataSet& DataSet) {
    return AddTable(Name, &DataSet);
}

TorvQDTable* TorvQDListOfTables::AddTable(const QString& Name, const TDataSet* DataSet) {
    return m_workArea ? m_workArea->AddPanel(Name, DataSet) : nullptr;
}

TorvQDTable* TorvQDListOfTables::AddProc(const QString& Name, const TDataSet& DataSet,
                                         const TParams& Params) {
    return AddProc(Name, &DataSet, &Params);
}

TorvQDTable* TorvQDListOfTables::AddProc(const QString& Name, const TDataSet* DataSet,
                                         const TParams* Params) {
    return m_workArea ? m_workArea->AddProc(Name, DataSet, Params) : nullptr;
}

void TorvQDListOfTables::DeleteTable(int Index) {
    DeleteTable(Tables(Index));
}

void TorvQDListOfTables::DeleteTable(TorvQDTable* Table) {
    if (m_workArea) m_workArea->closeTable(Table);
}
