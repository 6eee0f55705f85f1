// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "diagram/ORVQDLinks.h"

#include <QDialog>
#include <QPointer>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace orv {

/// Widths of the controls of the link dialog, and where they begin.
struct LnkPropWidths {
    int cbConditions = 0;
    int lblLeftField = 0;
    int lblRightField = 0;
    int btnLeftOuter = 0;
    int btnRightOuter = 0;
    int btnOK = 0;
    int btnCancel = 0;
};
struct LnkPropLefts {
    int cbConditions = 0;
    int lblLeftField = 0;
    int lblRightField = 0;
    int btnLeftOuter = 0;
    int btnRightOuter = 0;
    int btnOK = 0;
    int btnCancel = 0;

    friend bool operator==(const LnkPropLefts&, const LnkPropLefts&) = default;
};

/// Places the controls around the middle of a dialog of that width.
[[nodiscard]] ORV_EXPORT LnkPropLefts lnkPropLayout(int formWidth, const LnkPropWidths& widths);

/// The narrowest dialog that shows all of its texts.
[[nodiscard]] ORV_EXPORT int lnkPropMinWidth(const LnkPropWidths& widths, int captionTextWidth);

}  // namespace orv

/// The dialog in which the user edits a link's operator and the kind of its join. Owned by the work
/// area; one dialog serves all of its links, one after the other.
///
///     join tables: CUSTOMER and ORDERS
///                 ID [=] CUSTID
///     [] Include all from ...  [] Include all from ...
///     and: conditions of the join that are no links, when there are any
///                [OK]  [Cancel]
class ORV_EXPORT TdlgLnkProp : public QDialog {
    Q_OBJECT

public:
    explicit TdlgLnkProp(QWidget* parent = nullptr);
    ~TdlgLnkProp() override;

    QLabel* lblCaption;
    QLabel* lblLeftField;
    QComboBox* cbConditions;  ///< has orv::linkOperators(); without a selection for another one
    QLabel* lblRightField;
    QCheckBox* btnLeftOuter;
    QCheckBox* btnRightOuter;
    QPushButton* btnOK;
    QPushButton* btnCancel;
    QLabel* lblJoinText;
    QLineEdit* edJoinText;  ///< what the join's ON holds beside its links; read only

    /// The link that is edited. It stays set when the dialog closes; null once the link is gone.
    QPointer<TorvQDLink> CurrentLnk;

    /// The narrowest width that shows all texts; computed by each FormShow.
    int MinWidth = 0;

    /// Lets the user edit the link, and returns when the dialog is closed. True when the link or
    /// its join was changed; false at once while the dialog is open. The link, the dialog and what
    /// owns them may be gone afterwards: the caller checks what it holds.
    bool edit(TorvQDLink* link);
    /// Whether the last edit has changed something so far.
    [[nodiscard]] bool hasChanged() const { return m_changed; }

    /// Fills the dialog from CurrentLnk. Raises orv::Error "Invalid link" without one.
    void FormShow();
    /// Writes the dialog back into the link and its join; does nothing when the link is gone.
    void btnOKClick();
    /// Computes MinWidth and the widths of the check boxes.
    void CalcMinWidth();
    /// Centres the controls in the present width.
    void FormResize();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fill(const TorvQDLink& link);
    void fitFonts();
    void placeRows();

    bool m_changed = false;  // by btnOKClick, since FormShow
};
