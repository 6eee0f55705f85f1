// SPDX-License-Identifier: MIT
// What the picture of the diagram costs: a step of a drag, and the whole view. The same view as a
// graphics scene draws it is the measure. Times of 10, 100 and 500 boxes stand below each other so
// that growth can be read off. ORV_BENCH_PICTURES names a folder that gets both pictures.
#include "catalogue/ORVQDOptions.h"
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "querybuilder/ORVQDWindow.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QGraphicsItem>
#include <QGraphicsView>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QScrollBar>
#include <QStaticText>

#include <benchmark/benchmark.h>

#include <map>

namespace {

constexpr QSize viewSize(1280, 800);

TDataSet fields(int count) {
    TDataSet dataSet;
    for (int field = 0; field < count; ++field) {
        dataSet.FieldDefs.push_back({QStringLiteral("FIELD_%1").arg(field), ftInteger});
    }
    return dataSet;
}

/// A shown builder of which the diagram's view has a given size.
class Diagram {
public:
    Diagram() {
        builder.resize(viewSize + QSize(40, 300));
        builder.show();
        for (int attempt = 0; attempt < 10 && view()->size() != viewSize; ++attempt) {
            builder.resize(builder.size() + viewSize - view()->size());
            QCoreApplication::processEvents();
        }
    }

    [[nodiscard]] TorvQDWorkArea* area() const { return builder.WorkArea; }
    [[nodiscard]] QWidget* view() const { return builder.WorkArea->viewport(); }

    TorvQDTable* add(const QPoint& place, const QSize& size, const TDataSet& dataSet) {
        const QString name = QStringLiteral("TABLE_%1").arg(boxes.size());
        TorvQDTable* box = area()->AddPanel(name, &dataSet);
        box->SetWidth(size.width());
        box->SetHeight(size.height());
        box->MoveTable(place.x() - box->Left, place.y() - box->Top);
        boxes.push_back(box);
        return box;
    }

    void link(int from, int fromRow, int to, int toRow) {
        TorvQDTable* one = boxes[std::size_t(from)];
        TorvQDTable* other = boxes[std::size_t(to)];
        area()->AddLink(one, other, one->Items[std::size_t(fromRow)].get(),
                        other->Items[std::size_t(toRow)].get());
    }

    void scrollTo(const QPoint& corner) {
        area()->horizontalScrollBar()->setValue(corner.x());
        area()->verticalScrollBar()->setValue(corner.y());
        QCoreApplication::processEvents();
    }

    TorvQueryBuilder builder;
    std::vector<TorvQDTable*> boxes;
};

// --- a step of a drag ---

/// Counts what a widget paints.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() != QEvent::Paint) return false;
        ++paints;
        for (const QRect& rect : static_cast<QPaintEvent*>(event)->region()) {
            pixels += double(rect.width()) * rect.height();
        }
        return false;
    }

    double paints = 0;
    double pixels = 0;
};

/// Places on a square spiral around the origin, so that the first ones are the same for any count.
std::vector<QPoint> spiral(int count) {
    std::vector<QPoint> places;
    QPoint place(0, 0);
    QPoint step(1, 0);
    for (int length = 1; int(places.size()) < count; ++length) {
        for (int side = 0; side < 2; ++side) {
            for (int at = 0; at < length; ++at) {
                places.push_back(place);
                place += step;
            }
            step = {-step.y(), step.x()};
        }
    }
    places.resize(std::size_t(count));
    return places;
}

/// Boxes around the first one, each joined with its neighbours by two links; the first has four
/// links, one to each side. Boxes far out take what is missing to twice as many links as boxes.
void fillAround(Diagram& diagram, int count) {
    constexpr QPoint middle(2400, 2400);
    constexpr QSize size(130, 110);
    constexpr QSize pitch(170, 150);
    const TDataSet dataSet = fields(8);
    const std::vector<QPoint> places = spiral(count);
    std::map<std::pair<int, int>, int> boxAt;
    for (int box = 0; box < count; ++box) {
        const QPoint& place = places[std::size_t(box)];
        boxAt[{place.x(), place.y()}] = box;
        diagram.add(middle + QPoint(place.x() * pitch.width(), place.y() * pitch.height()), size,
                    dataSet);
    }
    std::vector<std::pair<int, int>> pairs;
    for (int box = 1; box < count; ++box) {
        const QPoint& place = places[std::size_t(box)];
        for (const QPoint& step : {QPoint(1, 0), QPoint(0, 1), QPoint(-1, 0), QPoint(0, -1)}) {
            const auto other = boxAt.find({place.x() + step.x(), place.y() + step.y()});
            if (other != boxAt.end() && other->second < box) pairs.push_back({other->second, box});
        }
    }
    int links = 0;
    for (const auto& [from, to] : pairs) {
        for (int row = 0; row < (from == 0 ? 1 : 2) && links < 2 * count; ++row, ++links) {
            diagram.link(from, row, to, row + 1);
        }
    }
    for (auto pair = pairs.rbegin(); pair != pairs.rend() && links < 2 * count; ++pair, ++links) {
        diagram.link(pair->first, 3, pair->second, 4);
    }
    diagram.scrollTo(middle - QPoint(viewSize.width() / 2, viewSize.height() / 2));
}

void dragStep(benchmark::State& state) {
    Diagram diagram;
    fillAround(diagram, int(state.range(0)));
    TorvQDTable* box = diagram.boxes[0];
    const TRect caption = box->toView(box->GetCaptionRect());
    const QPoint from((caption.Left + caption.Right) / 2, (caption.Top + caption.Bottom) / 2);
    const auto send = [&](QEvent::Type type, const QPoint& at, Qt::MouseButton button,
                          Qt::MouseButtons buttons) {
        QMouseEvent event(type, at, diagram.view()->mapToGlobal(at), button, buttons,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(diagram.view(), &event);
    };
    send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();

    PaintCounter counter(diagram.view());
    const QPoint start(box->Left, box->Top);
    int step = 0;
    for ([[maybe_unused]] auto _ : state) {
        ++step;
        const QPoint by(step % 2 ? 4 : 0, step % 2 ? 3 : 0);
        send(QEvent::MouseMove, from + by, Qt::NoButton, Qt::LeftButton);
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        if (QPoint(box->Left, box->Top) != start + by) {
            state.SkipWithError("the box did not move");
            break;
        }
    }
    send(QEvent::MouseButtonRelease, from, Qt::LeftButton, Qt::NoButton);
    state.counters["links"] = double(diagram.area()->Links().size());
    state.counters["paints"] = counter.paints / step;
    state.counters["pixels"] = counter.pixels / step;
}
BENCHMARK(dragStep)->Arg(10)->Arg(100)->Arg(500)->Unit(benchmark::kMicrosecond);

// --- the whole view ---

constexpr int visibleBoxes = 40;
constexpr int visibleRows = 20;
constexpr int visibleLinks = 80;

/// 40 boxes of 20 rows in the view with 80 links between them, each box joined with the next ones.
/// They overlap, as their rows fill more than the view. All others lie far below.
void fillView(Diagram& diagram, int count) {
    const TDataSet dataSet = fields(visibleRows);
    constexpr int columns = 10;
    for (int index = 0; index < count; ++index) {
        const bool isVisible = index < visibleBoxes;
        const int place = isVisible ? index : index - visibleBoxes;
        const QPoint corner = isVisible ? QPoint(5 + place % columns * 125, place / columns * 140)
                                        : QPoint(place % 24 * 160, 1000 + place / 24 * 130);
        TorvQDTable* box = diagram.add(corner, {145, 100}, dataSet);
        while (box->VisibleCount < visibleRows) box->SetHeight(box->Height + 1);
        if (index % 3 == 0) box->SetFieldState(2);
        if (index % 3 == 1) box->Items[std::size_t(index % visibleRows)]->SetCheck(true);
    }
    for (int link = 0; link < visibleLinks; ++link) {
        const int from = link % visibleBoxes;
        const int to = (from + (link < visibleBoxes ? 2 : columns + 1)) % visibleBoxes;
        diagram.link(from, link % visibleRows, to, (link + 3) % visibleRows);
    }
    diagram.area()->selectObject(nullptr);
    diagram.scrollTo({0, 0});
}

/// The first picture of each kind goes to the folder that the user named.
void save(const QImage& image, const QString& name) {
    static QStringList saved;
    const QString folder = qEnvironmentVariable("ORV_BENCH_PICTURES");
    if (folder.isEmpty() || saved.contains(name)) return;
    saved << name;
    image.save(folder + u'/' + name + QStringLiteral(".png"));
}

/// Renders the view of a scroll area again and again. Both sides are measured by this.
void renderView(benchmark::State& state, QWidget* view, const QString& name) {
    QImage image(viewSize, QImage::Format_RGB32);
    image.fill(Qt::red);
    const auto render = [&] { view->render(&image, {}, {}, QWidget::RenderFlags()); };
    if (view->size() != viewSize) state.SkipWithError("the view has another size");
    render();
    save(image, name);
    for ([[maybe_unused]] auto _ : state) {
        render();
        benchmark::DoNotOptimize(image.constBits());
    }
}

void fullRepaint(benchmark::State& state) {
    Diagram diagram;
    fillView(diagram, int(state.range(0)));
    renderView(state, diagram.view(), QStringLiteral("control"));
}
BENCHMARK(fullRepaint)->Arg(40)->Arg(100)->Arg(500)->Unit(benchmark::kMillisecond);

// --- the same as a graphics scene ---

/// What all items of a scene share.
struct Look {
    explicit Look(const Diagram& diagram)
        : palette(diagram.area()->palette()),
          font(diagram.area()->options().GetFont()),
          bold(font),
          rows(diagram.area()->options().GetTableColor()) {
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

QStaticText prepared(const QString& text, const QFont& font) {
    QStaticText prepared(text);
    prepared.setTextFormat(Qt::PlainText);
    prepared.setPerformanceHint(QStaticText::AggressiveCaching);
    prepared.prepare({}, font);
    return prepared;
}

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
};

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

/// With the second argument boxes are kept as pixmaps, which a real diagram would have to make anew
/// whenever a box changes.
void fullRepaintOfScene(benchmark::State& state) {
    Diagram diagram;
    fillView(diagram, int(state.range(0)));
    const Look look(diagram);
    QGraphicsScene scene(0, 0, 5000, 5000);
    scene.setBackgroundBrush(look.palette.color(QPalette::Window));
    for (std::size_t index = 0; index < diagram.boxes.size(); ++index) {
        auto* item = new BoxItem(*diagram.boxes[index], look);
        item->setZValue(double(index));
        if (state.range(1)) item->setCacheMode(QGraphicsItem::ItemCoordinateCache);
        scene.addItem(item);
    }
    for (const TorvQDLink* link : diagram.area()->Links()) {
        auto* item = new LinkItem(*link, look);
        item->setZValue(double(diagram.boxes.size()));
        scene.addItem(item);
    }
    QGraphicsView view(&scene);
    view.setFrameShape(QFrame::NoFrame);
    view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    view.setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
    view.setOptimizationFlags(QGraphicsView::DontSavePainterState |
                              QGraphicsView::DontAdjustForAntialiasing);
    view.resize(viewSize);
    view.show();
    view.horizontalScrollBar()->setValue(0);
    view.verticalScrollBar()->setValue(0);
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
    renderView(state, view.viewport(),
               state.range(1) ? QStringLiteral("scene-cached") : QStringLiteral("scene"));
}
BENCHMARK(fullRepaintOfScene)
    ->ArgNames({"boxes", "cached"})
    ->ArgsProduct({{40, 100, 500}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
