// SPDX-License-Identifier: MIT
#include "diagram/ORVQDLinks.h"

#include "core/Error.h"
#include "diagram/ORVQDFloatTable.h"
#include "diagram/Orvvisualutils.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int fixedPoints = 4;
constexpr int stubLengthPx = 10;
constexpr int markerLengthPx = 6;
constexpr int markerHalfHeightPx = 3;
constexpr int clipHalfHeightPx = 4;
constexpr int clipMarkerLengthPx = 7;
constexpr int clipPiecePx = 64;
constexpr int mostClipPieces = 128;  // of one segment, however far its ends are apart
constexpr int selectedWidthPx = 2;
constexpr int ringRadiusPx = 4;  // of the chosen bend point; repainting covers that much

int middleOf(const TRect& rect) {
    return rect.Top + (rect.Bottom - rect.Top) / 2;
}

// Of whole pixels, those of its corners included, and alike above and below: an outline would lose
// a corner to rounding.
void drawTriangle(QPainter& painter, const QPoint& tip, bool left) {
    const double middle = tip.y() + 0.5;
    const double half = markerHalfHeightPx + 0.5;
    const double from = left ? tip.x() + 1 : tip.x();
    const double to = left ? tip.x() - markerLengthPx : tip.x() + markerLengthPx + 1;
    const QPointF corners[] = {{from, middle}, {to, middle - half}, {to, middle + half}};
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.drawPolygon(corners, 3);
    painter.restore();
}

}  // namespace

namespace orv {

const QStringList& linkOperators() {
    static const QStringList list = {QStringLiteral("="),  QStringLiteral(">"),
                                     QStringLiteral("<"),  QStringLiteral(">="),
                                     QStringLiteral("<="), QStringLiteral("<>")};
    return list;
}

QString joinWords(TKindOfJoin kind) {
    switch (kind) {
    case klInnerJoin: return QStringLiteral("INNER JOIN");
    case klLOuterJoin: return QStringLiteral("LEFT OUTER JOIN");
    case klROuterJoin: return QStringLiteral("RIGHT OUTER JOIN");
    case klFOuterJoin: return QStringLiteral("FULL OUTER JOIN");
    }
    return {};
}

QString joinKindIdentifier(TKindOfJoin kind) {
    switch (kind) {
    case klInnerJoin: return QStringLiteral("klInnerJoin");
    case klLOuterJoin: return QStringLiteral("klLOuterJoin");
    case klROuterJoin: return QStringLiteral("klROuterJoin");
    case klFOuterJoin: return QStringLiteral("klFOuterJoin");
    }
    return {};
}

std::optional<TKindOfJoin> joinKindFromIdentifier(const QString& text) {
    for (const TKindOfJoin kind : {klInnerJoin, klLOuterJoin, klROuterJoin, klFOuterJoin}) {
        if (joinKindIdentifier(kind) == text) return kind;
    }
    return std::nullopt;
}

TKindOfJoin mirrored(TKindOfJoin kind) {
    switch (kind) {
    case klLOuterJoin: return klROuterJoin;
    case klROuterJoin: return klLOuterJoin;
    case klInnerJoin:
    case klFOuterJoin: break;
    }
    return kind;
}

QString mirroredOperator(const QString& text) {
    if (text == u"<") return QStringLiteral(">");
    if (text == u">") return QStringLiteral("<");
    if (text == u"<=") return QStringLiteral(">=");
    if (text == u">=") return QStringLiteral("<=");
    return text;
}

bool isSymmetricOperator(const QString& text) {
    static const QStringList list = {QStringLiteral("="),  QStringLiteral("<>"),
                                     QStringLiteral("!="), QStringLiteral("=="),
                                     QStringLiteral("^="), QStringLiteral("<=>")};
    return list.contains(text);
}

bool isMirrorableOperator(const QString& text) {
    return isSymmetricOperator(text) || mirroredOperator(text) != text;
}

}  // namespace orv

// --- joins ---

TorvQDJoin::TorvQDJoin(QWidget* workArea, TorvQDTable* table1, TorvQDTable* table2)
    : Table1(table1), Table2(table2), WorkArea(workArea) {}

TorvQDTable* TorvQDJoin::GetTable(int Index) const {
    return Index == 0 ? Table1 : Index == 1 ? Table2 : nullptr;
}

QString TorvQDJoin::GetTableName(int Index) const {
    const TorvQDTable* table = GetTable(Index);
    return table ? table->TableName : QString();
}

// --- links ---

TorvQDLink::TorvQDLink(QWidget* workArea, TorvQDJoin* join, TorvQDListItem* item1,
                       TorvQDListItem* item2)
    : TorvQDFloatObject(workArea), Join(join), Item1(item1), Item2(item2), m_points(fixedPoints) {
    SetBoundaryRect();
}

TorvQDLink::~TorvQDLink() = default;

QString TorvQDLink::operatorText() const {
    if (Operator >= 0 && Operator < orv::linkOperators().size()) {
        return orv::linkOperators().at(Operator);
    }
    return OperatorSource.isEmpty() ? orv::linkOperators().front() : OperatorSource;
}

void TorvQDLink::setOperatorText(const QString& text) {
    Operator = int(orv::linkOperators().indexOf(text));
    OperatorSource = Operator < 0 ? text : QString();
}

QString TorvQDLink::GetHint() const {
    return Join->Table1->GetAlias() + u'.' + Item1->Name + operatorText() +
           Join->Table2->GetAlias() + u'.' + Item2->Name;
}

void TorvQDLink::SetSelect(bool Value) {
    TorvQDFloatObject::SetSelect(Value);
    Item1->SetSelect(Value);
    Item2->SetSelect(Value);
    if (!canvas()) return;
    invalidateLine();
    canvas()->linkSelected(this, Value);
}

// The line as it runs now: the bounds may be older.
void TorvQDLink::invalidateLine() const {
    if (canvas()) canvas()->invalidate(GetClipRgn(0));
}

void TorvQDLink::tellBent() {
    invalidateLine();
    if (canvas()) canvas()->linkBent(this);
}

// --- points ---

bool TorvQDLink::isClose(const QPoint& a, const QPoint& b) {
    return std::abs(a.x() - b.x()) < pointReachPx && std::abs(a.y() - b.y()) < pointReachPx;
}

void TorvQDLink::checkIndex(int index) const {
    if (index >= 0 && index < GetCountPoints()) return;
    throw orv::Error(QStringLiteral("Invalid index = %1 ").arg(index));
}

QPoint TorvQDLink::GetPoint(int Index) const {
    checkIndex(Index);
    return m_points[std::size_t(Index)] - (canvas() ? canvas()->scrollPosition() : QPoint());
}

void TorvQDLink::SetPoint(int Index, const QPoint& P) {
    checkIndex(Index);
    m_points[std::size_t(Index)] = P;
}

std::vector<QPoint> TorvQDLink::bendPoints() const {
    return {m_points.begin() + 2, m_points.end() - 2};
}

void TorvQDLink::setBendPoints(const std::vector<QPoint>& points) {
    m_points.erase(m_points.begin() + 2, m_points.end() - 2);
    m_points.insert(m_points.begin() + 2, points.begin(), points.end());
    SetBoundaryRect();
}

void TorvQDLink::_DeletePoint() {
    const int last = GetCountPoints() - 1;
    for (int index = 2; index < last - 1; ++index) {
        if (!isClose(GetPoint(index), DragPoint)) continue;
        invalidateLine();
        m_points.erase(m_points.begin() + index);
        if (index < m_chosenBend) --m_chosenBend;
        tellBent();
        return;
    }
}

void TorvQDLink::_InsertPoint() {
    DragPoint = toDiagram(DragPoint);
    const int segment = orv::IsPointNearLine(m_points, DragPoint, GetCountPoints());
    if (segment < 1 || segment > GetCountPoints() - 3) return;
    invalidateLine();
    m_points.insert(m_points.begin() + segment + 1, DragPoint);
    if (segment < m_chosenBend) ++m_chosenBend;
    tellBent();
}

QPoint TorvQDLink::toDiagram(const QPoint& viewPoint) const {
    return viewPoint + (canvas() ? canvas()->scrollPosition() : QPoint());
}

// Each end leaves its row on the side of what it runs towards: the first or last bend point, or the
// outer edge of the other row.
void TorvQDLink::SetBoundaryRect() {
    for (const int index : {0, 1}) {
        if (Join->GetTable(index)) continue;
        throw orv::Error(
            QStringLiteral("Invalid table %1 in Link control").arg(Join->GetTableName(index)));
    }
    const TRect row1 = Item1->GetBoundsRect();
    const TRect row2 = Item2->GetBoundsRect();
    const bool hasBends = GetCountPoints() > fixedPoints;
    const std::size_t last = m_points.size() - 1;
    const int towards1 = hasBends ? m_points[2].x() : row2.Right;
    const int towards2 = hasBends ? m_points[last - 2].x() : row1.Right;
    const bool right1 = towards1 >= row1.Left;
    const bool right2 = towards2 >= row2.Left;
    m_points[0] = {right1 ? row1.Right : row1.Left, middleOf(row1)};
    m_points[1] = m_points[0] + QPoint(right1 ? stubLengthPx : -stubLengthPx, 0);
    m_points[last] = {right2 ? row2.Right : row2.Left, middleOf(row2)};
    m_points[last - 1] = m_points[last] + QPoint(right2 ? stubLengthPx : -stubLengthPx, 0);
    recomputeBounds();
}

// No point outside this rectangle hits the line, wherever its points are now.
QRect TorvQDLink::extent() const {
    QPoint topLeft = m_points[0];
    QPoint bottomRight = m_points[0];
    for (const QPoint& point : m_points) {
        topLeft = {std::min(topLeft.x(), point.x()), std::min(topLeft.y(), point.y())};
        bottomRight = {std::max(bottomRight.x(), point.x()), std::max(bottomRight.y(), point.y())};
    }
    const int margin = std::max(clipMarkerLengthPx + 1, GetCountPoints());
    return QRect(topLeft, bottomRight).adjusted(-margin, -margin, margin, margin);
}

// The greatest coordinates are looked for from 0 on.
void TorvQDLink::recomputeBounds() {
    TRect bounds{m_points[0].x(), m_points[0].y(), 0, 0};
    for (const QPoint& point : m_points) {
        bounds.Left = std::min(bounds.Left, point.x());
        bounds.Top = std::min(bounds.Top, point.y());
        bounds.Right = std::max(bounds.Right, point.x());
        bounds.Bottom = std::max(bounds.Bottom, point.y());
    }
    m_bounds = {bounds.Left - boundsMarginPx, bounds.Top - boundsMarginPx,
                bounds.Right + boundsMarginPx, bounds.Bottom + boundsMarginPx};
}

// A line is hit within as many pixels as it has points; of its points the last close one decides.
TTableHitTest TorvQDLink::HitTest(const QPoint& P) const {
    if (!extent().contains(toDiagram(P))) return htTOutSide;
    const int near = orv::IsPointNearLine(m_points, toDiagram(P), GetCountPoints());
    TTableHitTest hit = near >= 0 ? htTClient : htTOutSide;
    const int last = GetCountPoints() - 1;
    for (int index = 0; index <= last; ++index) {
        if (index == 1 || index == last - 1 || !isClose(GetPoint(index), P)) continue;
        hit = index == 0 || index == last ? htTEndLine : htTPoint;
    }
    return hit;
}

// --- painting ---

// A slanted segment is covered piece by piece: its whole rectangle would be repainted for a line.
QRegion TorvQDLink::GetClipRgn(int Part) const {
    const int last = GetCountPoints() - 1;
    QRegion region;
    if (Part == 0 || Part == 1) {
        const QPoint start = GetPoint(0);
        const bool right = start.x() < GetPoint(1).x();
        region += QRect(start.x() - (right ? 1 : clipMarkerLengthPx), start.y() - clipHalfHeightPx,
                        clipMarkerLengthPx + 1, 2 * clipHalfHeightPx);
    } else {
        region += QRect(0, 0, 1, 1);
    }
    const int first = Part == 2 ? last - 2 : 0;
    const int end = Part == 0 || Part == 2 ? last : Part == 1 ? 1 : 0;
    for (int index = first; index < end; ++index) {
        const QPoint from = GetPoint(index);
        const QPoint to = GetPoint(index + 1);
        const qint64 dx = qint64(to.x()) - from.x();
        const qint64 dy = qint64(to.y()) - from.y();
        const qint64 length = std::max(std::abs(dx), std::abs(dy));
        const bool isStraight = dx == 0 || dy == 0;
        const qint64 pieces =
            isStraight ? 1 : std::clamp<qint64>(length / clipPiecePx, 1, mostClipPieces);
        QPoint a = from;
        for (qint64 piece = 1; piece <= pieces; ++piece) {
            const QPoint b(int(from.x() + dx * piece / pieces),
                           int(from.y() + dy * piece / pieces));
            const QPoint topLeft(std::min(a.x(), b.x()), std::min(a.y(), b.y()));
            const QPoint bottomRight(std::max(a.x(), b.x()), std::max(a.y(), b.y()));
            region += QRect(topLeft, bottomRight)
                          .adjusted(-clipHalfHeightPx, -clipHalfHeightPx, clipHalfHeightPx,
                                    clipHalfHeightPx);
            a = b;
        }
    }
    return region;
}

namespace {

QColor between(const QColor& one, const QColor& other) {
    return {(one.red() + other.red()) / 2, (one.green() + other.green()) / 2,
            (one.blue() + other.blue()) / 2};
}

}  // namespace

// Circles, and the line itself, keep off the boxes: a line that reaches a box from its left ends on
// the pixel in front of the box's edge. Only the tip of a triangle lies on the edge.
void TorvQDLink::Paint(QPainter& Painter) {
    const int last = GetCountPoints() - 1;
    const bool startsLeft = GetPoint(0).x() >= GetPoint(1).x();
    const bool endsLeft = GetPoint(last - 1).x() < GetPoint(last).x();
    QPolygon line;
    for (int index = 0; index <= last; ++index) line << GetPoint(index);
    if (startsLeft) line.front() -= QPoint(1, 0);
    if (endsLeft) line.back() -= QPoint(1, 0);
    const auto drawCircle = [&](int left, int middle) {
        // The outline adds the sixth pixel.
        Painter.drawEllipse(left, middle - markerHalfHeightPx, markerLengthPx - 1,
                            2 * markerHalfHeightPx - 1);
    };
    const auto drawMarker = [&](const QPoint& tip, bool left, bool includesAll) {
        if (includesAll) {
            drawTriangle(Painter, tip, left);
        } else {
            drawCircle(left ? tip.x() - markerLengthPx : tip.x(), tip.y());
        }
    };
    const QColor plain = canvas() ? canvas()->linkColor() : QColor(Qt::black);
    const QColor ink = Muted ? between(plain, Painter.background().color()) : plain;
    Painter.save();
    Painter.setPen(QPen(ink, Selected ? selectedWidthPx : 1, Muted ? Qt::DotLine : Qt::SolidLine,
                        Qt::FlatCap));
    Painter.setBrush(ink);
    Painter.drawPolyline(line);
    for (int index = 2; index < last - 1; ++index) {
        const QPoint bend = GetPoint(index);
        drawCircle(bend.x() - markerHalfHeightPx, bend.y());
    }
    Painter.setPen(QPen(ink, 1));
    if (const int chosen = Selected ? chosenBend() : -1; chosen >= 0) {
        Painter.setBrush(Qt::white);
        Painter.drawEllipse(GetPoint(chosen), ringRadiusPx, ringRadiusPx);
        Painter.setBrush(ink);
    }
    const TKindOfJoin kind = Join->KindOfJoin;
    drawMarker(GetPoint(0), startsLeft, kind == klLOuterJoin || kind == klFOuterJoin);
    drawMarker(GetPoint(last), endsLeft, kind == klROuterJoin || kind == klFOuterJoin);
    Painter.restore();
}
