// SPDX-License-Identifier: MIT
#pragma once

#include "data/DataSet.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class TorvQDLink;
class TorvQDListItem;
class TorvQDTable;

/// What the host is asked to allow.
enum TAddRemove : quint8 { araAdd = 0, araRemove = 1 };
static_assert(araAdd == 0 && araRemove == 1);

/// Asks the host for the columns of a table, and for the parameters when it is a stored procedure.
/// The control owns what is handed over; nothing handed over means that the table is unknown.
using TGetTableFieldsEvent =
    std::function<void(const QString& NameOfTable, std::unique_ptr<TDataSet>& ADataSet,
                       std::unique_ptr<TParams>& AParams)>;

/// Asks the host before a table is added or removed. `Table` is valid during the call only.
using TAddRemoveTableEvent =
    std::function<void(QObject* Sender, TorvQDTable* Table, TAddRemove Action, bool& CanDo)>;

/// Asks the host before a link is added or removed. `Link` is valid during the call only.
using TAddRemoveLinkEvent =
    std::function<void(QObject* Sender, TorvQDLink* Link, TAddRemove Action, bool& CanDo)>;

/// Asks the host for the value of a procedure's input parameter.
using TEnterProcParameter =
    std::function<void(QObject* Sender, TorvQDTable* SProcedure, TorvQDListItem* ListItem)>;
