// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOptions.h"
#include "data/DraggedField.h"
#include "data/Events.h"
#include "parser/ORVQDLedger.h"

#include <QPoint>
#include <QString>

#include <memory>

class QMimeData;

/// What the work area asks of the query builder in which it lies.
class IWorkAreaOwner {
public:
    virtual ~IWorkAreaOwner() = default;

    /// Asks the host's permission; true when the host has no opinion.
    [[nodiscard]] virtual bool DoAddRemoveTable(TorvQDTable* Table, TAddRemove Action) = 0;
    [[nodiscard]] virtual bool DoAddRemoveLink(TorvQDLink* Link, TAddRemove Action) = 0;

    /// Whether the host can be asked for tables, and asking it; `asWritten` is the name with the
    /// quotes that it has in the text. No data set: an unknown table.
    [[nodiscard]] virtual bool canGetTableFields() const = 0;
    virtual void getTableFields(const QString& nameOfTable, const QString& asWritten,
                                std::unique_ptr<TDataSet>& dataSet,
                                std::unique_ptr<TParams>& params) = 0;

    /// Asks the host for the value of a procedure's input parameter.
    virtual void enterProcParameter(TorvQDTable* procedure, TorvQDListItem* item) = 0;

    /// Names this builder in what is dragged from its diagram.
    [[nodiscard]] virtual quint64 dragIdentity() const = 0;

    /// A field of the diagram is about to be dragged; the drag is over. The target took it, none
    /// when nobody did; the place, in view coordinates, is that of the drop on the diagram.
    virtual void fieldDragStarted(const orv::DraggedField& field) = 0;
    virtual void fieldDragEnded(QObject* target, const QPoint& viewPoint) = 0;

    /// Something that is no field of a diagram is dragged over the view, or dropped there. Source
    /// is the object of this program that drags it, if any. Accepted only when the host says so,
    /// and it says something at all.
    [[nodiscard]] virtual bool takesForeignDrags() const = 0;
    [[nodiscard]] virtual bool foreignDragOver(QObject* source, const QPoint& viewPoint,
                                               const QMimeData& data) = 0;
    virtual void foreignDrop(QObject* source, const QPoint& viewPoint, const QMimeData& data) = 0;

    /// How the diagram looks and behaves. The object lives as long as the owner.
    [[nodiscard]] virtual TorvQDWorkAreaOptions& workAreaOptions() = 0;

    /// Whether written statements keep the meaning of loaded ones.
    [[nodiscard]] virtual bool KeepMeaning() const = 0;

    /// What is accounted for while a statement is loaded; none at other times.
    [[nodiscard]] virtual orv::LoadLedger* ledger() = 0;

    /// Everything between these two is one change: the pages refresh once, at the end, and the host
    /// is told once if statementChanged() was called in between.
    virtual void beginChange() = 0;
    virtual void endChange() = 0;
    virtual void statementChanged() = 0;

    /// Boxes or bend points are at other places, and no hand holds them.
    virtual void layoutChanged() = 0;
};
