// SPDX-License-Identifier: MIT
#pragma once

#include "data/DataSet.h"
#include "data/DraggedField.h"

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

/// A field of the diagram is about to be dragged.
using TStartDragEvent = std::function<void(QObject* Sender, const orv::DraggedField& Field)>;

/// The drag of a field is over. `Target` took it, none when nobody did; X and Y are view
/// coordinates of the diagram when that is the target, else 0.
using TEndDragEvent = std::function<void(QObject* Sender, QObject* Target, int X, int Y)>;

/// Something that the host or another program drags is over the diagram, at X, Y in view
/// coordinates; it can be dropped there when `Accept` is set. `Source` is the object of this
/// program that drags it, none for another program's.
using TDragOverEvent =
    std::function<void(QObject* Sender, QObject* Source, int X, int Y, bool& Accept)>;

/// It was dropped there.
using TDragDropEvent = std::function<void(QObject* Sender, QObject* Source, int X, int Y)>;
