// SPDX-License-Identifier: MIT
#include "Diagram.h"

#include "Hosted.h"
#include "diagram/ORVQDFloatTable.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>

#include <cstdlib>
#include <map>

namespace bench {

namespace {

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

/// Neighbours on the spiral; of each pair the one that came first stands first.
std::vector<std::pair<int, int>> neighbours(const std::vector<QPoint>& places) {
    std::map<std::pair<int, int>, int> boxAt;
    for (std::size_t box = 0; box < places.size(); ++box) {
        boxAt[{places[box].x(), places[box].y()}] = int(box);
    }
    std::vector<std::pair<int, int>> pairs;
    for (int box = 1; box < int(places.size()); ++box) {
        const QPoint& place = places[std::size_t(box)];
        for (const QPoint& step : {QPoint(1, 0), QPoint(0, 1), QPoint(-1, 0), QPoint(0, -1)}) {
            const auto other = boxAt.find({place.x() + step.x(), place.y() + step.y()});
            if (other != boxAt.end() && other->second < box) pairs.push_back({other->second, box});
        }
    }
    return pairs;
}

QPoint captionMiddle(const TorvQDTable& box) {
    const TRect caption = box.toView(box.GetCaptionRect());
    return {(caption.Left + caption.Right) / 2, (caption.Top + caption.Bottom) / 2};
}

}  // namespace

// --- the diagram ---

Diagram::Diagram() {
    builder.resize(viewSize + QSize(40, 300));
    builder.show();
    for (int attempt = 0; attempt < 10 && view()->size() != viewSize; ++attempt) {
        builder.resize(builder.size() + viewSize - view()->size());
        QCoreApplication::processEvents();
    }
}

QWidget* Diagram::view() const {
    return builder.WorkArea->viewport();
}

TorvQDTable* Diagram::add(const QPoint& place, const QSize& size, const TDataSet& dataSet) {
    const QString name = QStringLiteral("TABLE_%1").arg(boxes.size());
    TorvQDTable* box = area()->AddPanel(name, &dataSet);
    box->SetWidth(size.width());
    box->SetHeight(size.height());
    box->MoveTable(place.x() - box->Left, place.y() - box->Top);
    boxes.push_back(box);
    return box;
}

void Diagram::link(int from, int fromRow, int to, int toRow) {
    TorvQDTable* one = boxes[std::size_t(from)];
    TorvQDTable* other = boxes[std::size_t(to)];
    area()->AddLink(one, other, one->Items[std::size_t(fromRow)].get(),
                    other->Items[std::size_t(toRow)].get());
}

void Diagram::scrollTo(const QPoint& corner) {
    area()->horizontalScrollBar()->setValue(corner.x());
    area()->verticalScrollBar()->setValue(corner.y());
    QCoreApplication::processEvents();
}

void Diagram::fillAround(int count) {
    constexpr QPoint middle(2400, 2400);
    constexpr QSize size(130, 110);
    constexpr QSize pitch(170, 150);
    const TDataSet dataSet = fields(8, QStringLiteral("FIELD_"));
    const std::vector<QPoint> places = spiral(count);
    for (const QPoint& place : places) {
        add(middle + QPoint(place.x() * pitch.width(), place.y() * pitch.height()), size, dataSet);
    }
    const std::vector<std::pair<int, int>> pairs = neighbours(places);
    int links = 0;
    for (const auto& [from, to] : pairs) {
        for (int row = 0; row < (from == 0 ? 1 : 2) && links < 2 * count; ++row, ++links) {
            link(from, row, to, row + 1);
        }
    }
    for (auto pair = pairs.rbegin(); pair != pairs.rend() && links < 2 * count; ++pair, ++links) {
        link(pair->first, 3, pair->second, 4);
    }
    scrollTo(middle - QPoint(viewSize.width() / 2, viewSize.height() / 2));
}

void Diagram::fillView(int count) {
    constexpr int visibleBoxes = 40;
    constexpr int visibleLinks = 80;
    constexpr int columns = 10;
    const TDataSet dataSet = fields(boxRows, QStringLiteral("FIELD_"));
    for (int index = 0; index < count; ++index) {
        const bool isVisible = index < visibleBoxes;
        const int place = isVisible ? index : index - visibleBoxes;
        const QPoint corner = isVisible ? QPoint(5 + place % columns * 125, place / columns * 140)
                                        : QPoint(place % 24 * 160, 1000 + place / 24 * 130);
        TorvQDTable* box = add(corner, {145, 100}, dataSet);
        while (box->VisibleCount < boxRows) box->SetHeight(box->Height + 1);
        if (index % 3 == 0) box->SetFieldState(2);
        if (index % 3 == 1) box->Items[std::size_t(index % boxRows)]->SetCheck(true);
    }
    for (int number = 0; number < visibleLinks; ++number) {
        const int from = number % visibleBoxes;
        const int to = (from + (number < visibleBoxes ? 2 : columns + 1)) % visibleBoxes;
        link(from, number % boxRows, to, (number + 3) % boxRows);
    }
    area()->selectObject(nullptr);
    scrollTo({0, 0});
}

// --- dragging ---

Hand::Hand(QWidget* view, const QPoint& at) : m_view(view), m_from(at) {
    send(QEvent::MouseButtonPress, m_from, Qt::LeftButton, Qt::LeftButton);
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
}

Hand::~Hand() {
    send(QEvent::MouseButtonRelease, m_from, Qt::LeftButton, Qt::NoButton);
}

QPoint Hand::move() {
    m_isAway = !m_isAway;
    const QPoint by = m_isAway ? QPoint(4, 3) : QPoint(0, 0);
    send(QEvent::MouseMove, m_from + by, Qt::NoButton, Qt::LeftButton);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    return by;
}

void Hand::send(QEvent::Type type, const QPoint& at, Qt::MouseButton button,
                Qt::MouseButtons down) {
    QMouseEvent event(type, at, m_view->mapToGlobal(at), button, down, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view, &event);
}

BoxDrag::BoxDrag(Diagram& diagram)
    : m_box(diagram.boxes.front()),
      m_hand(diagram.view(), captionMiddle(*m_box)),
      m_start(m_box->Left, m_box->Top) {}

bool BoxDrag::step() {
    const QPoint by = m_hand.move();
    return QPoint(m_box->Left, m_box->Top) == m_start + by;
}

// --- painting ---

RenderedView::RenderedView(QWidget* view) : picture(viewSize, QImage::Format_RGB32), m_view(view) {
    // Another picture would be compared.
    if (view->size() != viewSize) std::abort();
    picture.fill(Qt::red);
    render();
}

void RenderedView::render() {
    m_view->render(&picture, {}, {}, QWidget::RenderFlags());
}

}  // namespace bench
