// SPDX-License-Identifier: MIT
#pragma once

#include "Diagram.h"

#include <QGraphicsScene>
#include <QGraphicsView>

#include <memory>

namespace bench {

struct Look;

/// The boxes and links of a diagram as a graphics scene draws them: one item each, texts laid out
/// beforehand, the same glyphs and borders.
class Scene {
public:
    enum class Cache { None, Pixmaps };  ///< pixmaps of boxes are made anew when a box changes

    /// Of the boxes and links that lie there now.
    explicit Scene(const TorvQDWorkArea& area, Cache cache = Cache::None);
    ~Scene();

    /// Shows the same part as the diagram does.
    QGraphicsView& show();

    void clear();

    QGraphicsScene scene;
    std::vector<QGraphicsItem*> boxes;  ///< in the order of the diagram's; owned by the scene

private:
    void addItems(Cache cache);

    const TorvQDWorkArea& m_area;
    std::unique_ptr<Look> m_look;
    std::unique_ptr<QGraphicsView> m_view;
};

/// The first box of a scene in the hand; the ends of its links go with it, the rest of them stays.
class ItemDrag {
public:
    explicit ItemDrag(Scene& scene);

    /// One step; whether the item followed.
    [[nodiscard]] bool step();

private:
    QGraphicsItem* m_item;
    Hand m_hand;
    QPointF m_start;
};

}  // namespace bench
