// SPDX-License-Identifier: MIT
#pragma once

#include "core/TRect.h"
#include "diagram/ORVQDFloatObject.h"

#include <QPoint>
#include <QRegion>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

class TorvQDListItem;
class TorvQDTable;

/// How two tables are joined; left is always the join's first table.
enum TKindOfJoin : quint8 { klInnerJoin = 0, klLOuterJoin = 1, klROuterJoin = 2, klFOuterJoin = 3 };
static_assert(klInnerJoin == 0 && klLOuterJoin == 1 && klROuterJoin == 2 && klFOuterJoin == 3);

namespace orv {

/// The comparison operators that a link may have, in the order of its dialog.
[[nodiscard]] ORV_EXPORT const QStringList& linkOperators();

/// SQL words of the kind: "LEFT OUTER JOIN".
[[nodiscard]] ORV_EXPORT QString joinWords(TKindOfJoin kind);

/// Identifier of the kind as state files have it, "klLOuterJoin", and back.
[[nodiscard]] ORV_EXPORT QString joinKindIdentifier(TKindOfJoin kind);
[[nodiscard]] ORV_EXPORT std::optional<TKindOfJoin> joinKindFromIdentifier(const QString& text);

/// The kind that preserves the same rows when the two tables change sides.
[[nodiscard]] ORV_EXPORT TKindOfJoin mirrored(TKindOfJoin kind);

/// The operator that says the same when its two sides change places; the operator itself when it
/// means the same both ways, or is not known.
[[nodiscard]] ORV_EXPORT QString mirroredOperator(const QString& text);

/// Whether the operator means the same when its two sides change places.
[[nodiscard]] ORV_EXPORT bool isSymmetricOperator(const QString& text);

/// Whether mirroredOperator() knows the operator.
[[nodiscard]] ORV_EXPORT bool isMirrorableOperator(const QString& text);

}  // namespace orv

/// That two boxes are joined, and how. Owned by the work area; at most one per pair of boxes, and
/// only while a link refers to it.
class ORV_EXPORT TorvQDJoin {
public:
    /// An inner join without links; the work area makes and owns it.
    TorvQDJoin(QWidget* workArea, TorvQDTable* table1, TorvQDTable* table2);

    TKindOfJoin KindOfJoin = klInnerJoin;  ///< which rows it keeps
    TorvQDTable* Table1;                   ///< the first, left one; borrowed
    TorvQDTable* Table2;                   ///< borrowed
    QWidget* WorkArea;                     ///< borrowed

    /// Conditions of its ON that are no comparison of two fields, joined by AND; empty without any.
    QString Text;

    /// The first (0) or second (1) box; none for any other index.
    [[nodiscard]] TorvQDTable* GetTable(int Index) const;
    /// The name of that box, as FROM has it; empty for any other index.
    [[nodiscard]] QString GetTableName(int Index) const;
};

/// The line between two field rows: a comparison in its join's ON. Owned by the work area. The line
/// leaves each row sideways by a stub and may have bend points in between; points are diagram
/// coordinates:
///
///     0 --- 1 ... bend points 2 to Count - 3 ... Count-2 --- Count-1
///     row of Table1                                          row of Table2
class ORV_EXPORT TorvQDLink : public TorvQDFloatObject {
    Q_OBJECT

public:
    /// A link by "="; the work area makes and owns it.
    TorvQDLink(QWidget* workArea, TorvQDJoin* join, TorvQDListItem* item1, TorvQDListItem* item2);
    ~TorvQDLink() override;

    TorvQDJoin* Join;        ///< borrowed
    int Operator = 0;        ///< index in orv::linkOperators(); -1 for another one
    QString OperatorSource;  ///< its text as it was loaded, beside -1
    bool Muted = false;      ///< kept, but not written; TorvQDWorkArea::muteLink() tells of it
    TorvQDListItem* Item1;   ///< row of the join's first box; borrowed
    TorvQDListItem* Item2;   ///< row of its second one; borrowed
    QPoint DragPoint;        ///< view coordinates while the mouse is down
    int DragIndex = -1;      ///< the point being dragged

    /// The operator's text; "=" when there is none.
    [[nodiscard]] QString operatorText() const;
    /// Takes the operator of that text, known or not.
    void setOperatorText(const QString& text);

    /// How many points the line has: four and the bend points.
    [[nodiscard]] int GetCountPoints() const { return int(m_points.size()); }
    /// A point in view coordinates. Raises orv::Error "Invalid index = %d " out of range.
    [[nodiscard]] QPoint GetPoint(int Index) const;
    /// Stores a point, in diagram coordinates. Raises like GetPoint.
    void SetPoint(int Index, const QPoint& P);
    /// All points, in diagram coordinates.
    [[nodiscard]] const std::vector<QPoint>& points() const { return m_points; }
    /// The user's bend points, in diagram coordinates.
    [[nodiscard]] std::vector<QPoint> bendPoints() const;
    /// Replaces them.
    void setBendPoints(const std::vector<QPoint>& points);

    /// Deletes the first bend point close to DragPoint, if any.
    void _DeletePoint();
    /// Makes DragPoint a bend point when the line runs past it, the two stubs excepted.
    void _InsertPoint();
    /// Asks the user whether the link is to go, and has it deleted once the present event is over.
    void _DeleteLink();
    /// Opens the properties of the link and its join.
    void _LinkProperties();
    /// Mutes the link, or has it written again.
    void _MuteLink();

    /// Whether a bend point, or an end of the line, is being dragged.
    [[nodiscard]] bool isBendDragged() const;
    [[nodiscard]] bool isEndDragged() const;
    /// Drops what is being dragged; the line stays as it was.
    void cancelDrag();
    /// The bend point that keys move, as an index of the points; -1 without one.
    [[nodiscard]] int chosenBend() const;
    /// The two segments at the dragged bend point as they would run; nothing at other times.
    void paintBand(QPainter& Painter) const;

    /// Holds the line wherever its points are now, with some room for its markers; in diagram
    /// coordinates.
    [[nodiscard]] QRect extent() const;

    /// Encloses the line and its markers, in diagram coordinates.
    [[nodiscard]] TRect GetBounds() const { return m_bounds; }
    void SetBounds(const TRect& R) { m_bounds = R; }

    /// Computes the four fixed points and the bounds from where the rows are now. Raises orv::Error
    /// "Invalid table ... in Link control" when the join has lost a box.
    void SetBoundaryRect();

    /// The region that the line takes, in view coordinates: all of it (0), its start (1) or its
    /// end (2).
    [[nodiscard]] QRegion GetClipRgn(int Part) const;

    void SetSelect(bool Value) override;
    /// The comparison as text, nothing between its parts.
    [[nodiscard]] QString GetHint() const override;
    void Paint(QPainter& Painter) override;
    void MouseDown(TWMMouse& Message, TTableHitTest HitTest) override;
    void MouseMove(TWMMouse& Message, TTableHitTest HitTest) override;
    void MouseUp(TWMMouse& Message, TTableHitTest HitTest) override;
    /// Enter and Space open the properties, Delete asks whether the link is to go. Insert makes a
    /// bend point in the middle of the longest segment, the arrows choose one, with Ctrl they move
    /// it, Ctrl+Delete deletes it. Ctrl+M mutes the link. Sets `Key` to 0 when it was one of these.
    void KeyDown(int& Key, Qt::KeyboardModifiers Shift) override;
    [[nodiscard]] bool usesKey(int key, Qt::KeyboardModifiers shift,
                               const QString& text) const override;
    [[nodiscard]] TTableHitTest HitTest(const QPoint& P) const override;
    void PopupMenu(QMenu& Menu, int X, int Y, TTableHitTest HitTest) override;

private:
    static constexpr int boundsMarginPx = 3;
    static constexpr int pointReachPx = 4;  // of a point to the mouse

    [[nodiscard]] static bool isClose(const QPoint& a, const QPoint& b);
    void addAction(QMenu& menu, const QString& text, void (TorvQDLink::*handler)());
    [[nodiscard]] QRegion bandRegion() const;
    void insertPointInTheMiddle();
    void deleteChosenBend();
    void chooseBend(int step);
    void moveChosenBend(const QPoint& by);
    [[nodiscard]] QPoint toDiagram(const QPoint& viewPoint) const;
    void checkIndex(int index) const;
    void invalidateLine() const;
    void tellBent();
    void recomputeBounds();

    std::vector<QPoint> m_points;
    TRect m_bounds;
    int m_chosenBend = -1;  // index of the bend point that keys move
};
