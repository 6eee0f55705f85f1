// SPDX-License-Identifier: MIT
#pragma once

#include "contract/IDiagramCanvas.h"
#include "diagram/ORVQDFloatTable.h"

#include <QRegion>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <vector>

namespace orvtest {

/// A canvas that only remembers what boxes asked of it: boxes are tested without a work area.
class FakeCanvas : public QWidget, public IDiagramCanvas {
public:
    QPoint scroll;
    int font = 11;
    TorvQDWorkAreaOptions workAreaOptions;
    bool scrollBarVisible = false;
    std::vector<RowScroll> placed;
    std::vector<QPoint> scrollBarMoves;
    std::vector<TRect> invalidated;  // view coordinates; regions by what holds them
    TorvQDFloatObject* selected = nullptr;
    QString typed;
    std::vector<TorvQDTable*> renames;
    std::vector<std::pair<TorvQDTable*, QString>> searches;
    std::vector<TorvQDListItem*> dragged;
    std::vector<TorvQDLink*> deletedLinks;
    std::vector<TorvQDLink*> editedLinks;
    std::vector<TorvQDFloatObject*> broughtToFront;
    QStringList checks;  // rows told of, with their new tick
    std::vector<TorvQDTable*> closed;
    std::vector<TorvQDTable*> unlinked;
    int moved = 0;
    int resized = 0;
    int rowsScrolledCount = 0;
    std::vector<std::pair<TorvQDLink*, bool>> linkSelections;
    int begun = 0;
    int ended = 0;
    std::function<void(TorvQDTable*, TorvQDListItem*)> onEnterParameter;

    /// All that is to be repainted, in view coordinates.
    [[nodiscard]] QRegion repainted() const {
        QRegion region;
        for (const TRect& rect : invalidated) region += rect.toQRect();
        return region;
    }

    QPoint scrollPosition() const override { return scroll; }
    void invalidate(const TRect& viewRect) override { invalidated.push_back(viewRect); }
    void invalidate(const QRegion& viewRegion) override {
        invalidated.push_back(TRect::fromQRect(viewRegion.boundingRect()));
    }
    TorvQDFloatObject* selectedObject() const override { return selected; }
    void selectObject(TorvQDFloatObject* object) override {
        if (selected) selected->SetSelect(false);
        selected = object;
        if (object) object->SetSelect(true);
    }
    void beginRename(TorvQDTable* table) override { renames.push_back(table); }
    void beginSearch(TorvQDTable* table, const QString& text) override {
        searches.emplace_back(table, text);
    }
    QString typedText() const override { return typed; }
    void startFieldDrag(TorvQDTable*, TorvQDListItem* item) override { dragged.push_back(item); }
    void postDeleteLink(TorvQDLink* link) override { deletedLinks.push_back(link); }
    void editLink(TorvQDLink* link) override { editedLinks.push_back(link); }
    int fontHeight() const override { return font; }
    int boldTextWidth(const QString& text) const override { return 7 * int(text.size()); }
    const TorvQDWorkAreaOptions& options() const override { return workAreaOptions; }
    bool isRowScrollBarVisible() const override { return scrollBarVisible; }
    void placeRowScrollBar(const RowScroll& rowScroll) override { placed.push_back(rowScroll); }
    void showRowScrollBar(bool visible) override { scrollBarVisible = visible; }
    void moveRowScrollBar(int dx, int dy) override { scrollBarMoves.emplace_back(dx, dy); }
    void bringToFront(TorvQDFloatObject* object) override { broughtToFront.push_back(object); }
    void tableMoved(TorvQDTable*) override { ++moved; }
    void tableResized(TorvQDTable*) override { ++resized; }
    void rowsScrolled(TorvQDTable*) override { ++rowsScrolledCount; }
    void closeTable(TorvQDTable* table) override { closed.push_back(table); }
    void unlinkTable(TorvQDTable* table) override { unlinked.push_back(table); }
    void checkItem(TorvQDFloatObject*, TorvQDListItem* item) override {
        checks << item->Name + (item->Checked ? QStringLiteral("+") : QStringLiteral("-"));
    }
    void enterParameter(TorvQDTable* table, TorvQDListItem* item) override {
        if (onEnterParameter) onEnterParameter(table, item);
    }
    void linkSelected(TorvQDLink* link, bool selected) override {
        linkSelections.emplace_back(link, selected);
    }
    void beginChange() override { ++begun; }
    void endChange() override { ++ended; }
};

/// A data set of `count` integer columns F0, F1, ...
inline TDataSet numberedFields(int count) {
    TDataSet dataSet;
    for (int index = 0; index < count; ++index) {
        dataSet.FieldDefs.push_back({QStringLiteral("F%1").arg(index), ftInteger});
    }
    return dataSet;
}

}  // namespace orvtest

// QTest prints a rectangle that is not the expected one.
inline char* toString(const TRect& rect) {
    return qstrdup(qPrintable(QStringLiteral("TRect(%1, %2, %3, %4)")
                                  .arg(rect.Left)
                                  .arg(rect.Top)
                                  .arg(rect.Right)
                                  .arg(rect.Bottom)));
}
