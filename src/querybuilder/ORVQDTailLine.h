// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QStringList>
#include <QWidget>

#include <functional>

class QAction;
class QBoxLayout;
class QLabel;
class QLineEdit;

namespace orv {

/// What follows the last clause of the statement, as a line that the user edits. Enter and a real
/// loss of focus commit, Escape brings back what was there. Line breaks are shown as blanks and
/// stay. Owned by its sheet, on which it lies below the panel, or beside it when the sheet is low.
class ORV_EXPORT TailLine : public QWidget {
    Q_OBJECT

public:
    /// The sheet has a box layout with the panel in it.
    explicit TailLine(QWidget* sheet);

    /// What the user has made of the text; not called when that is the same. What it does may end
    /// in the destruction of the line.
    std::function<void(const QString& text)> committed;

    /// Shows a text; what is being typed is dropped.
    void showText(const QString& text);
    /// Takes over what is being typed.
    void commit();
    /// Marks the line with what is wrong with its text; with nothing it is unmarked.
    void showProblems(const QStringList& problems);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class Edit;

    void arrange();
    void fitLabel();

    QString m_text;
    bool m_edited = false;
    QBoxLayout* m_layout;
    QLabel* m_label;
    Edit* m_edit = nullptr;
    QAction* m_mark;
};

}  // namespace orv
