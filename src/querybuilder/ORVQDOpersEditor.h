// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOperators.h"
#include "core/Export.h"
#include "querybuilder/ORVQDEditRestrictions.h"

#include <QDialog>

#include <memory>

class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QScrollArea;

namespace orv {

/// The SQL of a condition with the operator, "???" standing for each operand. `shownCount` counts
/// the left-hand operand too, as the dialog does; no more than a thousand others are written.
[[nodiscard]] ORV_EXPORT QString operatorPreview(const TorvQDOperator& entry, qint64 shownCount);

/// Lets the user edit a copy of the list in the operator dialog, and returns the copy when OK
/// closed it; none otherwise. `itemName` stands in the caption when there is one. The dialog
/// belongs to `parent` and is gone when this returns. It runs through orv::runDialog(): everything
/// may die meanwhile, `list` and `parent` included.
[[nodiscard]] ORV_EXPORT std::unique_ptr<TOperatorList> editOperators(
    const TOperatorList& list, TEditRestrictions restrictions, const QString& itemName,
    QWidget* parent);

}  // namespace orv

/// The dialog in which the user edits an operator catalogue: a copy of it, which whoever opens the
/// dialog fills before and reads afterwards.
///
///     Available operators  [Add operator] [Delete operator]
///     +-----------------+  Features
///     | =               |    Operator name:     [        ]
///     | <>              |    Display name:      [        ]
///     | ...             |    Count of operands: [  ]
///     |                 |    Prefix:  Relate:  Postfix:
///     |                 |    [     ]  [     ]  [      ]
///     |                 |        SQL expression:
///     +-----------------+          ??? = ???
///     what OK does not keep, while there is something
///                      [OK]  [Cancel]
class ORV_EXPORT TorvQDOperatorsPropertyDlg : public QDialog {
    Q_OBJECT

public:
    /// A dialog without operators; fill `Operators` before it is shown.
    explicit TorvQDOperatorsPropertyDlg(QWidget* parent = nullptr);
    ~TorvQDOperatorsPropertyDlg() override;

    QGroupBox* GroupBox1;      ///< around everything but the last two buttons
    QListWidget* lbOperators;  ///< a line for each operator: its name
    QPushButton* btnAdd;       ///< "Add operator"
    QPushButton* btnDelete;    ///< "Delete operator"
    QGroupBox* Features;       ///< of the current operator; hidden when there is none
    QLabel* lblName;           ///< of the edit below it, like the other labels
    QLineEdit* ebName;         ///< the keyword in SQL
    QLabel* lblCaption;        ///< of ebCaption
    QLineEdit* ebCaption;      ///< what condition rows show
    QLabel* lblCount;          ///< of ebCount
    QLineEdit* ebCount;        ///< counts the left-hand operand too
    QLabel* lblPrefix;         ///< of ebPrefix
    QLineEdit* ebPrefix;       ///< in front of the first operand
    QLabel* lblRelate;         ///< of ebRelate
    QLineEdit* ebRelate;       ///< between two operands
    QLabel* lblPostfix;        ///< of ebPostfix
    QLineEdit* ebPostfix;      ///< behind the last operand
    QLabel* lblSQLCaption;     ///< of the preview
    QLabel* lblSQL;            ///< the preview
    QLabel* lblHint;           ///< that OK alone would lose something; empty when it would not
    QPushButton* btnOK;        ///< takes the display name over and closes
    QPushButton* btnCancel;    ///< closes

    /// The dialog's own copy.
    TOperatorList Operators;

    /// Index of the operator whose texts the edits show; -1 when there is none.
    [[nodiscard]] int currentIndex() const { return m_currentIndex; }
    /// Whether the user has typed since the operator was selected.
    [[nodiscard]] bool isModified() const { return m_modified; }
    /// The edits that are forbidden.
    [[nodiscard]] TEditRestrictions restrictions() const { return m_restrictions; }

    /// Begins with no operator, no restriction and nothing selected; the constructor calls it.
    void FormCreate();
    /// Lists the operators; nothing is selected. Showing the dialog calls it.
    void FormShow();

    /// Forbids these edits and allows the others.
    void SetRestrictions(TEditRestrictions Restrictions);

    /// The selected line has changed: what was typed is stored in the operator that was current,
    /// and the selected one becomes current. Raises orv::Error, and keeps the current operator with
    /// its count, when the count that was typed is no whole number; the other texts are stored
    /// then.
    void lbOperatorsClick();

    /// The text of an edit was changed by the user, or, without a sender, the preview is to be
    /// written. Raises orv::Error when the count is no whole number.
    void ChangeData(QObject* Sender = nullptr);

    /// Appends a new operator and selects it. Raises orv::Error like lbOperatorsClick.
    void btnAddClick();
    /// Deletes the current operator; none is current then.
    void btnDeleteClick();
    /// Takes over the display name, and only that: the other texts count once another operator is
    /// selected.
    void btnOKClick();

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class OperatorLines;

    void addGroups();
    [[nodiscard]] QWidget* makeFeatures();
    void nameControls();
    void connectControls();
    void fitFonts();
    void fitSizes();
    void returnToCount();
    void userSelected();
    void userEdited(QLineEdit* edit);
    void userAdds();
    void userDeletes();
    [[nodiscard]] QLineEdit* firstFreeEdit() const;

    [[nodiscard]] int selectedIndex() const;
    void selectLine(int index);
    void makeCurrent(int index);
    void storeEdits(TorvQDOperator& entry) const;
    void showEdits(const TorvQDOperator& entry);
    void showHint();
    [[nodiscard]] TorvQDOperator typed() const;
    [[nodiscard]] bool losesByOK() const;

    QScrollArea* m_preview = nullptr;
    int m_currentIndex = -1;
    bool m_modified = false;
    TEditRestrictions m_restrictions;
};
