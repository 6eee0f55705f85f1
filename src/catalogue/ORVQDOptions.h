// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "core/TPersistent.h"

#include <QColor>
#include <QFont>

#include <functional>

/// Notification that the font of the boxes changed.
using TSetFontEvent = std::function<void(const QFont& Value)>;

/// How the diagram looks and behaves. Owned by the query builder; assigning copies into it.
class ORV_EXPORT TorvQDWorkAreaOptions : public TPersistent {
    Q_OBJECT
    Q_PROPERTY(bool HideSelection READ GetHideSelection WRITE SetHideSelection)
    Q_PROPERTY(bool DragFieldName READ GetDragFieldName WRITE SetDragFieldName)
    Q_PROPERTY(bool Flat READ GetFlat WRITE SetFlat)
    Q_PROPERTY(bool ShowFieldsType READ GetShowFieldsType WRITE SetShowFieldsType)
    Q_PROPERTY(bool FlatCaptionBtns READ GetFlatCaptionBtns WRITE SetFlatCaptionBtns)
    Q_PROPERTY(TBorderKind TableBorder READ GetTableBorder WRITE SetTableBorder)
    Q_PROPERTY(QFont Font READ GetFont WRITE SetFont)
    Q_PROPERTY(QColor TableColor READ GetTableColor WRITE SetTableColor)
    Q_PROPERTY(QColor ProcedureColor READ GetProcedureColor WRITE SetProcedureColor RESET
                   ResetProcedureColor)

public:
    /// Border style of the boxes on the diagram. Like the style of the buttons below it belongs to
    /// a class, without which it would have no names for forms, and is known outside, too.
    enum TBorderKind : quint8 { edgeBump = 0, edgeEtched = 1, edgeRaised = 2, edgeSunken = 3 };
    Q_ENUM(TBorderKind)
    static_assert(edgeBump == 0 && edgeEtched == 1 && edgeRaised == 2 && edgeSunken == 3);

    /// The defaults. The parent, if any, owns it.
    explicit TorvQDWorkAreaOptions(QObject* parent = nullptr);

    /// Whether a box that is not selected hides its current row.
    [[nodiscard]] bool GetHideSelection() const { return m_hideSelection; }
    void SetHideSelection(bool Value);

    /// Whether a dragged field shows its name instead of the drag cursor alone.
    [[nodiscard]] bool GetDragFieldName() const { return m_dragFieldName; }
    void SetDragFieldName(bool Value);

    /// Whether boxes are drawn flat.
    [[nodiscard]] bool GetFlat() const { return m_flat; }
    void SetFlat(bool Value);

    /// Whether rows show the type behind the name.
    [[nodiscard]] bool GetShowFieldsType() const { return m_showFieldsType; }
    void SetShowFieldsType(bool Value);

    /// Whether the caption buttons are drawn flat.
    [[nodiscard]] bool GetFlatCaptionBtns() const { return m_flatCaptionBtns; }
    void SetFlatCaptionBtns(bool Value);

    /// The border of the boxes.
    [[nodiscard]] TBorderKind GetTableBorder() const { return m_tableBorder; }
    void SetTableBorder(TBorderKind Value);

    /// The font of the boxes. Assigning an equal font notifies nobody.
    [[nodiscard]] const QFont& GetFont() const { return m_font; }
    void SetFont(const QFont& Value);

    /// Background of the rows of table boxes.
    [[nodiscard]] QColor GetTableColor() const { return m_tableColor; }
    void SetTableColor(const QColor& Value);

    /// Background of procedure boxes: the tool-tip background of the palette until a colour is set.
    [[nodiscard]] QColor GetProcedureColor() const;
    void SetProcedureColor(const QColor& Value);
    void ResetProcedureColor() { SetProcedureColor(QColor()); }

    void AssignTo(TPersistent* Dest) const override;

    /// Called with the font after it changed, once per change. The work area installs itself here.
    TSetFontEvent OnChangeFont;

    /// Called after any other option changed, for a repaint.
    std::function<void()> changed;

private:
    void _ChangeFont();

    template <typename Value>
    void store(Value& member, const Value& value);

    bool m_hideSelection = true;
    bool m_dragFieldName = false;
    bool m_flat = false;
    bool m_showFieldsType = false;
    bool m_flatCaptionBtns = true;
    TBorderKind m_tableBorder = edgeRaised;
    QFont m_font;
    QColor m_tableColor = Qt::white;
    QColor m_procedureColor;  // invalid: the palette's
};

/// The kinds of borders, with their names known outside the class, too.
using TBorderKind = TorvQDWorkAreaOptions::TBorderKind;
using enum TorvQDWorkAreaOptions::TBorderKind;

/// How the criteria panels look. Owned by the query builder; assigning copies into it.
class ORV_EXPORT TorvQDConditionOptions : public TPersistent {
    Q_OBJECT
    Q_PROPERTY(bool SelectRow READ GetSelectRow WRITE SetSelectRow)
    Q_PROPERTY(TbtnStyle BtnsStyle READ GetBtnsStyle WRITE SetBtnsStyle)
    Q_PROPERTY(QColor ActiveRowColor READ GetActiveRowColor WRITE SetActiveRowColor)

public:
    /// Drawing style of the buttons in condition rows.
    enum TbtnStyle : quint8 { btnFlat = 0, btn3DLook = 1, btnRaise = 2 };
    Q_ENUM(TbtnStyle)
    static_assert(btnFlat == 0 && btn3DLook == 1 && btnRaise == 2);

    /// The defaults. The parent, if any, owns it.
    explicit TorvQDConditionOptions(QObject* parent = nullptr);

    /// Whether the active condition row is highlighted.
    [[nodiscard]] bool GetSelectRow() const { return m_selectRow; }
    void SetSelectRow(bool Value);

    /// How the buttons of condition rows are drawn.
    [[nodiscard]] TbtnStyle GetBtnsStyle() const { return m_btnsStyle; }
    void SetBtnsStyle(TbtnStyle Value);

    /// Background of the active condition row.
    [[nodiscard]] QColor GetActiveRowColor() const { return m_activeRowColor; }
    void SetActiveRowColor(const QColor& Value);

    void AssignTo(TPersistent* Dest) const override;

    /// Called after an option changed, for a repaint.
    std::function<void()> changed;

private:
    template <typename Value>
    void store(Value& member, const Value& value);

    bool m_selectRow = true;
    TbtnStyle m_btnsStyle = btnFlat;
    QColor m_activeRowColor = Qt::white;
};

/// The styles of buttons, with their names known outside the class, too.
using TbtnStyle = TorvQDConditionOptions::TbtnStyle;
using enum TorvQDConditionOptions::TbtnStyle;
