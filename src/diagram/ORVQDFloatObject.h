// SPDX-License-Identifier: MIT
#pragma once

#include "contract/IDiagramCanvas.h"
#include "core/Export.h"
#include "core/TRect.h"

#include <QObject>
#include <QPainter>
#include <QPointer>
#include <QWidget>

#include <functional>

class QMenu;

/// Where a point lies on an object of the diagram. Boxes report htTOutSide to htTClient, htTbutton
/// and htTCheck; htTEndLine and htTPoint belong to links.
enum TTableHitTest : quint8 {
    htTOutSide = 0,
    htTLeft = 1,
    htTTop = 2,
    htTRight = 3,
    htTBottom = 4,
    htTLeftTop = 5,
    htTLeftBottom = 6,
    htTRightTop = 7,
    htTRightBottom = 8,
    htTCaption = 9,
    htTClient = 10,
    htTEndLine = 11,
    htTPoint = 12,
    htTbutton = 13,
    htTCheck = 14
};
static_assert(htTOutSide == 0 && htTLeft == 1 && htTTop == 2 && htTRight == 3 && htTBottom == 4);
static_assert(htTLeftTop == 5 && htTLeftBottom == 6 && htTRightTop == 7 && htTRightBottom == 8);
static_assert(htTCaption == 9 && htTClient == 10 && htTEndLine == 11 && htTPoint == 12);
static_assert(htTbutton == 13 && htTCheck == 14);

/// A set of hits, one bit per TTableHitTest.
using TSetOfTableHits = quint16;

/// A mouse message on its way through the objects of the diagram. Positions are view coordinates
/// when it arrives; an object makes them relative to itself before it fires its events.
struct TWMMouse {
    int XPos = 0;  ///< view coordinates
    int YPos = 0;  ///< view coordinates
    Qt::MouseButtons Buttons =
        Qt::NoButton;  ///< those that are held, or the one that the message is about
    Qt::KeyboardModifiers Modifiers = Qt::NoModifier;  ///< keys that are held
    int Result = 0;                                    ///< 1 once an object has taken the message
};

/// What is held down while the mouse does something. It can be taken for the keys alone.
struct TShiftState {
    Qt::KeyboardModifiers Modifiers = Qt::NoModifier;  ///< control and shift; never alt
    Qt::MouseButtons Buttons = Qt::NoButton;           ///< left, right and middle

    operator Qt::KeyboardModifiers() const { return Modifiers; }
};

/// Base of everything that lies on the diagram. Owned by the work area; it has no Qt parent, so
/// that the work area alone decides when it dies, and weak references to it are QPointers.
class ORV_EXPORT TorvQDFloatObject : public QObject {
    Q_OBJECT

public:
    /// A button was pressed or released; X and Y are pixels from the left top corner of the object.
    using MouseEvent = std::function<void(QObject* Sender, Qt::MouseButton Button,
                                          TShiftState Shift, int X, int Y)>;
    /// The mouse moved; X and Y are pixels from the left top corner of the object.
    using MouseMoveEvent = std::function<void(QObject* Sender, TShiftState Shift, int X, int Y)>;
    /// A key; 0 in Key means that it is done with.
    using KeyEvent = std::function<void(QObject* Sender, int& Key, Qt::KeyboardModifiers Shift)>;

    /// `AParent` is the canvas on which the object lies; borrowed.
    explicit TorvQDFloatObject(QWidget* AParent);
    ~TorvQDFloatObject() override;

    QPointer<QWidget> Parent;    ///< the canvas; null once it has died
    bool Selected = false;       ///< at most one object of a canvas is; SetSelect
    MouseEvent OnMouseDown;      ///< a button was pressed on the object
    MouseEvent OnMouseUp;        ///< a button was released
    MouseMoveEvent OnMouseMove;  ///< the mouse moved over the object
    KeyEvent OnKeyDown;          ///< a key was pressed, before the object looks at it
    KeyEvent OnKeyUp;            ///< a key was released

    /// Selects or deselects; a selected object comes to the front.
    virtual void SetSelect(bool Value);
    /// What a tool tip shows at the mouse's last place over the object.
    [[nodiscard]] virtual QString GetHint() const = 0;
    /// Paints in view coordinates.
    virtual void Paint(QPainter& Painter) = 0;
    /// A mouse message for the object, which fires its event. HitTest is the part of the object
    /// that it is about.
    virtual void MouseDown(TWMMouse& Message, TTableHitTest HitTest);
    virtual void MouseMove(TWMMouse& Message, TTableHitTest HitTest);
    virtual void MouseUp(TWMMouse& Message, TTableHitTest HitTest);
    /// A key for the object, which fires its event. Sets `Key` to 0 when it was used.
    virtual void KeyDown(int& Key, Qt::KeyboardModifiers Shift);
    /// Whether KeyDown means something to the object when the key has that text. The event of the
    /// host may take other keys, too.
    [[nodiscard]] virtual bool usesKey(int key, Qt::KeyboardModifiers shift,
                                       const QString& text) const;
    /// A key was released; the object fires its event.
    virtual void KeyUp(int& Key, Qt::KeyboardModifiers Shift);
    /// The mouse has left the object.
    virtual void LeaveHit(TWMMouse& Message, TTableHitTest HitTest);
    /// Where the point, in view coordinates, lies on the object.
    [[nodiscard]] virtual TTableHitTest HitTest(const QPoint& P) const = 0;
    /// Appends what can be done at the place to the menu; leaves it empty where nothing can.
    virtual void PopupMenu(QMenu& Menu, int X, int Y, TTableHitTest HitTest) = 0;

    /// The canvas as the object asks it; none when the parent is no canvas or has died.
    [[nodiscard]] IDiagramCanvas* canvas() const { return Parent ? m_canvas : nullptr; }

private:
    IDiagramCanvas* m_canvas;
};
