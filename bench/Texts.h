// SPDX-License-Identifier: MIT
#pragma once

#include <QGraphicsScene>
#include <QString>

#include <vector>

class TorvQDWherePanel;

namespace bench {

/// The texts of a page of conditions as a graphics scene holds them: one item each.
class SceneOfConditions {
public:
    explicit SceneOfConditions(const TorvQDWherePanel& panel);

    /// Another font, in turns: each text is measured anew and placed behind the one before it.
    void relay();

private:
    QGraphicsScene m_scene;
    std::vector<std::vector<QGraphicsSimpleTextItem*>> m_rows;
    QFont m_font;
    bool m_isSmall = false;
};

/// A box as a graphics scene holds it: a mark and a name for each row, and a name for each output
/// column. They are owned by the scene.
class SceneOfTicks {
public:
    explicit SceneOfTicks(int rows);

    /// Marks all rows and adds an output column for each; takes all that back.
    void tickAll();
    void untickAll();

private:
    struct Row {
        QString name;
        QGraphicsPixmapItem* mark;
    };

    QGraphicsScene m_scene;
    QPixmap m_ticked;
    QPixmap m_unticked;
    std::vector<Row> m_rows;
    std::vector<QGraphicsSimpleTextItem*> m_columns;
};

}  // namespace bench
