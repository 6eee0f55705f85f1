// SPDX-License-Identifier: MIT
#pragma once

#include "pictures/Pages.h"

#include <QObject>

#include <functional>

class QAction;
class QKeySequence;
class QMenu;
class QPrinter;
class QWidget;
class TorvQueryBuilder;

namespace orvquery {

/// What a window offers to bring its diagram into a file or onto paper. Borrows the control.
class PictureActions : public QObject {
    Q_OBJECT

public:
    PictureActions(TorvQueryBuilder& builder, QWidget& window);

    /// Adds export, print preview and print.
    void addTo(QMenu& menu) const;

    /// Says how the query is called; without it, it is called as its first table.
    void setNaming(std::function<QString()> naming) { m_naming = std::move(naming); }

private:
    QAction* makeAction(const char* name, const QString& text, const QKeySequence& shortcut,
                        void (PictureActions::*slot)());
    void exportPicture();
    void preview();
    void print();
    void printTo(QPrinter& printer) const;
    void prepare(QPrinter& printer) const;
    void requireTables() const;
    [[nodiscard]] QString name() const;
    [[nodiscard]] PrintScale scale() const;

    TorvQueryBuilder& m_builder;
    QWidget& m_window;
    std::function<QString()> m_naming;
    QAction* m_export;
    QAction* m_preview;
    QAction* m_print;
    QAction* m_fullSize;
};

}  // namespace orvquery
