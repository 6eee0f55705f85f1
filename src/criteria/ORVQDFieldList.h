// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QFrame>
#include <QPointer>
#include <QTreeView>

#include <functional>

class IPagesHost;
class QKeyEvent;
class QLineEdit;

/// The tree of a field list: tables as top nodes, their fields below them. It cannot be edited.
class ORV_EXPORT TTreeViewEx : public QTreeView {
    Q_OBJECT

public:
    explicit TTreeViewEx(QWidget* parent);
};

namespace orv {

class FieldModel;

/// A list of the diagram's fields from which one is chosen, with a line that filters it. It lies on
/// the widget that it is for, like a popup, and is hidden until it is opened. Losing the focus to a
/// popup or because another window becomes active is no exit.
class ORV_EXPORT FieldList : public QFrame {
    Q_OBJECT

public:
    explicit FieldList(QWidget* parent);

    /// Takes the tables and fields as they are now, shows the list where it lies, in front of its
    /// siblings, and takes the focus.
    void open(const IPagesHost& host);
    /// Hides the list without an exit; the parent gets the focus when it is in the list.
    void discard();
    /// From now on it is left without an exit: its owner is dying.
    void disarm() { m_isOpen = false; }
    /// Whether the list was opened and not left since.
    [[nodiscard]] bool isOpen() const { return m_isOpen; }

    /// The size that the list wants on an area of that size.
    [[nodiscard]] static QSize sizeWithin(const QSize& area);
    /// Where it lies on an area, below an editor or above it; where neither has room for a few
    /// rows, beside it.
    [[nodiscard]] static QRect rectBeside(const QRect& editor, const QRect& area);

    [[nodiscard]] QLineEdit* filter() const { return m_filter; }
    [[nodiscard]] TTreeViewEx* tree() const { return m_tree; }

    /// A field was chosen by Enter or a double click. The list stays open.
    std::function<void(const QString& qualifiedName)> chosen;
    /// Escape was pressed. The list stays open.
    std::function<void()> cancelled;
    /// A widget outside, or none, has the focus now; the list is hidden already.
    std::function<void(QWidget* newFocus)> exited;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void complete();
    void applyFilter(const QString& text);
    void openTables();
    void expandFew();
    void choose(const QModelIndex& index);
    void stepIntoTree(QKeyEvent& event);
    void typeIntoFilter(QKeyEvent& event);
    bool pressKey(QObject* watched, QKeyEvent& event);
    void loseFocus(Qt::FocusReason reason);

    FieldModel* m_model;
    QLineEdit* m_filter;
    TTreeViewEx* m_tree;
    bool m_isOpen = false;
};

}  // namespace orv
