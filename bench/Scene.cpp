// SPDX-License-Identifier: MIT
#include "Scene.h"

#include "catalogue/ORVQDOptions.h"
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QGraphicsItem>
#include <QPainter>
#include <QScrollBar>
#include <QStaticText>

#include <map>

namespace bench {

// --- what items share ---

/// What all items of a scene share.
struct Look {
    explicit Look(const TorvQDWorkArea& area)
        : palette(area.palette()),
          font(area.options().GetFont()),
          bold(font),
          rows(area.options().GetTableColor()) {
        bold.setBold(true);
        for (int kind = 0; kind < 3; ++kind) marks[kind] = mark(kind);
        for (int kind = 0; kind < 2; ++kind) buttons[kind] = button(kind);
        dot.fill(Qt::transparent);
        QPainter painter(&dot);
        painter.setPen(Qt::black);
        painter.setBrush(Qt::black);
        painter.drawEllipse(0, 0, 5, 5);
    }

    static QPixmap mark(int kind) {
        QPixmap pixmap(13, 13);
        pixmap.fill(kind == 1 ? QColor(0xD0, 0xD0, 0xD0) : QColor(Qt::white));
        QPainter painter(&pixmap);
        painter.setPen(QColor(0x60, 0x60, 0x60));
        painter.drawRect(0, 0, 12, 12);
        if (kind == 0) return pixmap;
        painter.setPen(QPen(kind == 1 ? QColor(0x50, 0x50, 0x50) : QColor(Qt::black), 1.6));
        painter.setRenderHint(QPainter::Antialiasing);
        const QPointF points[] = {{3, 6.8}, {5.7, 9.4}, {10, 3.6}};
        painter.drawPolyline(points, 3);
        return pixmap;
    }

    QPixmap button(int kind) const {
        QPixmap pixmap(16, 14);
        pixmap.fill(palette.color(QPalette::Button));
        QPainter painter(&pixmap);
        painter.setPen(palette.color(QPalette::Light));
        painter.drawLine(0, 0, 15, 0);
        painter.drawLine(0, 0, 0, 13);
        painter.setPen(palette.color(QPalette::Dark));
        painter.drawLine(0, 13, 15, 13);
        painter.drawLine(15, 0, 15, 13);
        painter.setPen(palette.color(QPalette::ButtonText));
        if (kind == 0) {
            painter.drawLine(5, 9, 10, 9);
        } else {
            painter.drawLine(5, 4, 10, 9);
            painter.drawLine(10, 4, 5, 9);
        }
        return pixmap;
    }

    QPalette palette;
    QFont font;
    QFont bold;
    QColor rows;
    QPixmap marks[3];
    QPixmap buttons[2];
    QPixmap dot{6, 6};
};

// --- items ---

namespace {

QStaticText prepared(const QString& text, const QFont& font) {
    QStaticText prepared(text);
    prepared.setTextFormat(Qt::PlainText);
    prepared.setPerformanceHint(QStaticText::AggressiveCaching);
    prepared.prepare({}, font);
    return prepared;
}

/// The line of a link with its ends: a dot, or a triangle where the join keeps all rows.
class LinkItem : public QGraphicsItem {
public:
    LinkItem(const TorvQDLink& link, const Look& look)
        : m_look(look),
          m_bounds(link.GetBounds().toQRect().adjusted(-2, -2, 2, 2)),
          m_line(QVector<QPoint>(link.points().begin(), link.points().end())) {
        const TKindOfJoin kind = link.Join->KindOfJoin;
        const int last = int(m_line.size()) - 1;
        m_ends[0] = {m_line[0], m_line[1], kind == klLOuterJoin || kind == klFOuterJoin};
        m_ends[1] = {m_line[last], m_line[last - 1], kind == klROuterJoin || kind == klFOuterJoin};
    }

    /// The end at a box goes with it.
    void moveEnd(int end, const QPoint& by) {
        prepareGeometryChange();
        m_ends[end].tip += by;
        m_ends[end].stub += by;
        const int last = int(m_line.size()) - 1;
        m_line[end == 0 ? 0 : last] += by;
        m_line[end == 0 ? 1 : last - 1] += by;
        m_bounds = m_line.boundingRect().adjusted(-4, -4, 4, 4);
    }

    [[nodiscard]] QRectF boundingRect() const override { return m_bounds; }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/,
               QWidget* /*widget*/) override {
        painter->setPen(Qt::black);
        painter->drawPolyline(m_line);
        for (const End& end : m_ends) {
            const int length = end.tip.x() >= end.stub.x() ? -6 : 6;
            if (end.keepsAll) {
                const QPoint wings[] = {end.tip, end.tip + QPoint(length, -3),
                                        end.tip + QPoint(length, 3)};
                painter->setBrush(Qt::black);
                painter->drawPolygon(wings, 3);
            } else {
                painter->drawPixmap(end.tip + QPoint(std::min(0, length), -3), m_look.dot);
            }
        }
    }

private:
    struct End {
        QPoint tip;
        QPoint stub;
        bool keepsAll = false;
    };

    const Look& m_look;
    QRect m_bounds;
    QPolygon m_line;
    End m_ends[2];
};

/// A box with everything laid out beforehand.
class BoxItem : public QGraphicsItem {
public:
    BoxItem(const TorvQDTable& box, const Look& look)
        : m_look(look),
          m_size(box.Width, box.Height),
          m_captionHeight(box.CaptionHeight),
          m_caption(prepared(elided(box.GetCaption(), look.bold, box.GetCaptionRect().width()),
                             look.bold)),
          m_captionMark(box.FieldState) {
        const QPoint corner(box.Left, box.Top);
        setPos(corner);
        const QRect caption = box.GetCaptionRect().toQRect().translated(-corner);
        const int captionText = QFontMetrics(look.bold).height();
        m_captionPlace = {caption.left(), caption.top() + (caption.height() - captionText) / 2};
        m_markPlace = box.checkBoxRect().toQRect().translated(-corner).topLeft();
        m_buttonPlace = box.GetButtonRect().toQRect().translated(-corner).topLeft();
        const int rowText = QFontMetrics(look.font).height();
        for (const auto& item : box.Items) {
            const QRect rect = box.GetItemRect(item.get()).toQRect().translated(-corner);
            const int left = rect.left() + box.ItemHeight;
            m_rows.push_back(
                {prepared(elided(u' ' + item->Name, look.font, rect.right() + 1 - left), look.font),
                 {left, rect.top() + 1 + (rect.height() - 1 - rowText) / 2},
                 {rect.left() + 1, rect.top() + 1 + (rect.height() - 14) / 2},
                 item->Checked ? 2 : 0});
        }
    }

    void attach(LinkItem* link, int end) { m_links.push_back({link, end}); }

    [[nodiscard]] QRectF boundingRect() const override { return {QPointF(), QSizeF(m_size)}; }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* /*option*/,
               QWidget* /*widget*/) override {
        const QRect bounds(QPoint(), m_size);
        painter->fillRect(bounds, m_look.rows);
        painter->fillRect(0, 0, m_size.width(), m_captionHeight,
                          m_look.palette.color(QPalette::Button));
        painter->setPen(QColor(0x90, 0x90, 0x90));
        painter->drawLine(0, m_captionHeight - 1, m_size.width() - 1, m_captionHeight - 1);
        bevel(*painter, bounds, QPalette::Light, QPalette::Shadow);
        bevel(*painter, bounds.adjusted(1, 1, -1, -1), QPalette::Midlight, QPalette::Dark);
        painter->drawPixmap(m_markPlace, m_look.marks[m_captionMark]);
        painter->drawPixmap(m_buttonPlace, m_look.buttons[0]);
        painter->drawPixmap(m_buttonPlace + QPoint(20, 0), m_look.buttons[1]);
        painter->setFont(m_look.bold);
        painter->setPen(m_look.palette.color(QPalette::ButtonText));
        painter->drawStaticText(m_captionPlace, m_caption);
        painter->setFont(m_look.font);
        painter->setPen(Qt::black);
        for (const Row& row : m_rows) {
            painter->drawPixmap(row.markPlace, m_look.marks[row.mark]);
            painter->drawStaticText(row.place, row.text);
        }
    }

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override {
        if (change == ItemPositionChange) {
            const QPoint by = (value.toPointF() - pos()).toPoint();
            for (const auto& [link, end] : m_links) link->moveEnd(end, by);
        }
        return QGraphicsItem::itemChange(change, value);
    }

private:
    struct Row {
        QStaticText text;
        QPoint place;
        QPoint markPlace;
        int mark;
    };

    static QString elided(const QString& text, const QFont& font, int width) {
        return QFontMetrics(font).elidedText(text, Qt::ElideRight, width);
    }

    void bevel(QPainter& painter, const QRect& rect, QPalette::ColorRole light,
               QPalette::ColorRole dark) const {
        const QLine lit[] = {{rect.topLeft(), rect.topRight()},
                             {rect.topLeft(), rect.bottomLeft()}};
        const QLine shaded[] = {{rect.bottomLeft(), rect.bottomRight()},
                                {rect.topRight(), rect.bottomRight()}};
        painter.setPen(m_look.palette.color(light));
        painter.drawLines(lit, 2);
        painter.setPen(m_look.palette.color(dark));
        painter.drawLines(shaded, 2);
    }

    const Look& m_look;
    QSize m_size;
    int m_captionHeight;
    QStaticText m_caption;
    int m_captionMark;
    QPoint m_captionPlace;
    QPoint m_markPlace;
    QPoint m_buttonPlace;
    std::vector<Row> m_rows;
    std::vector<std::pair<LinkItem*, int>> m_links;  // and which of its ends is here
};

}  // namespace

// --- the scene ---

Scene::Scene(const TorvQDWorkArea& area, Cache cache)
    : scene(0, 0, 5000, 5000), m_area(area), m_look(std::make_unique<Look>(area)) {
    scene.setBackgroundBrush(m_look->palette.color(QPalette::Window));
    addItems(cache);
}

Scene::~Scene() = default;

void Scene::addItems(Cache cache) {
    std::map<const TorvQDTable*, BoxItem*> itemOf;
    for (const TorvQDTable* box : m_area.tablesByCreation()) {
        auto* item = new BoxItem(*box, *m_look);
        item->setZValue(double(boxes.size()));
        if (cache == Cache::Pixmaps) item->setCacheMode(QGraphicsItem::ItemCoordinateCache);
        scene.addItem(item);
        boxes.push_back(item);
        itemOf[box] = item;
    }
    for (const TorvQDLink* link : m_area.Links()) {
        auto* item = new LinkItem(*link, *m_look);
        item->setZValue(double(boxes.size()));
        scene.addItem(item);
        itemOf[link->Join->Table1]->attach(item, 0);
        itemOf[link->Join->Table2]->attach(item, 1);
    }
    // From here on links follow.
    for (QGraphicsItem* item : boxes) {
        item->setFlags(QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemSendsGeometryChanges);
    }
}

void Scene::clear() {
    boxes.clear();
    scene.clear();
}

QGraphicsView& Scene::show() {
    m_view = std::make_unique<QGraphicsView>(&scene);
    QGraphicsView& view = *m_view;
    view.setFrameShape(QFrame::NoFrame);
    view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    view.setOptimizationFlags(QGraphicsView::DontSavePainterState |
                              QGraphicsView::DontAdjustForAntialiasing);
    view.resize(viewSize);
    view.show();
    view.horizontalScrollBar()->setValue(m_area.horizontalScrollBar()->value());
    view.verticalScrollBar()->setValue(m_area.verticalScrollBar()->value());
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
    return view;
}

ItemDrag::ItemDrag(Scene& scene)
    : m_item(scene.boxes.front()),
      m_hand(scene.scene.views().front()->viewport(),
             scene.scene.views().front()->mapFromScene(m_item->pos() + QPointF(60, 10))),
      m_start(m_item->pos()) {}

bool ItemDrag::step() {
    const QPoint by = m_hand.move();
    return m_item->pos() == m_start + by;
}

}  // namespace bench
