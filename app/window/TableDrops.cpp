// SPDX-License-Identifier: MIT
#include "window/TableDrops.h"

#include "querybuilder/ORVQDWindow.h"
#include "window/SchemaModel.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QMimeData>
#include <QPointer>

namespace orvquery {

namespace {

constexpr int gapPx = 60;  // with room for links

// Those that were there may have been made anew, in the same order.
std::vector<TorvQDTable*> boxesBehind(const TorvQDWorkArea& diagram, std::size_t count) {
    const std::vector<TorvQDTable*>& boxes = diagram.tablesByCreation();
    if (boxes.size() <= count) return {};
    return {boxes.begin() + std::ptrdiff_t(count), boxes.end()};
}

void addAt(const QPointer<TorvQDWorkArea>& diagram, QPoint place, const QList<TableName>& names,
           const std::function<void(const TableName& name)>& add) {
    for (const TableName& name : names) {
        if (!diagram) return;
        const std::size_t before = diagram->tablesByCreation().size();
        add(name);
        // Adding may have asked a person.
        if (!diagram) return;
        for (TorvQDTable* box : boxesBehind(*diagram, before)) {
            diagram->placeBox(*box, place, place);
            place.rx() += box->GetBoundsRect().width() + gapPx;
        }
    }
}

}  // namespace

void letTablesBeDropped(TorvQueryBuilder& builder,
                        const std::function<void(const TableName& name)>& add) {
    builder.OnDragOver = [&builder](QObject*, QObject*, int, int, bool& accept) {
        accept = !SchemaModel::tablesOf(*builder.DragMimeData()).isEmpty();
    };
    builder.OnDragDrop = [&builder, add](QObject*, QObject*, int x, int y) {
        const QList<TableName> names = SchemaModel::tablesOf(*builder.DragMimeData());
        const QPointer<TorvQDWorkArea> diagram = builder.WorkArea;
        const QPoint place = QPoint(x, y) + diagram->scrollPosition();
        // Not within the drag: whoever is asked could not answer.
        QMetaObject::invokeMethod(
            diagram, [diagram, place, names, add] { addAt(diagram, place, names, add); },
            Qt::QueuedConnection);
    };
}

}  // namespace orvquery
