// SPDX-License-Identifier: MIT
#pragma once

#include "support/BuilderTools.h"
#include "toolkit/ExitEdit.h"
#include "workarea/ORVQDFieldSearch.h"
#include "xvfb/Hand.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QSplitter>

namespace orvtest {

/// A window with one builder or two, and an edit of the host beside them. The first builder shows
/// ORDERS and CUSTOMER, which was added last.
class DiagramDesk {
public:
    explicit DiagramDesk(int builders = 1) {
        m_oldHandler = orv::setErrorHandler([this](const QString& text) { errors << text; });
        host.add("ORDERS", {"ORDNO", "CUSTNO", "PRICE"});
        host.add("CUSTOMER", {"CUSTNO", "NAME", "CITY"});
        QStringList names;
        for (int number = 1; number <= 9; ++number) names << QStringLiteral("F%1").arg(number);
        host.add("MANY", names);
        auto* layout = new QHBoxLayout(&window);
        builder = addBuilder(*layout);
        builder->OnStartDrag = [this](auto&&...) { ++startedDrags; };
        builder->OnEndDrag = [this](auto&&...) { ++endedDrags; };
        if (builders > 1) second = addBuilder(*layout);
        beside = new QLineEdit(&window);
        beside->setMaximumWidth(80);
        layout->addWidget(beside);
        addTable("ORDERS", {20, 20});
        addTable("CUSTOMER", {220, 60});
    }
    ~DiagramDesk() { orv::setErrorHandler(m_oldHandler); }
    DiagramDesk(const DiagramDesk&) = delete;
    DiagramDesk& operator=(const DiagramDesk&) = delete;

    /// Shows the window and gives the focus to the diagram.
    [[nodiscard]] bool show() {
        window.resize(900, 640);
        window.show();
        if (!QTest::qWaitForWindowActive(&window)) return false;
        area().setFocus();
        return area().hasFocus();
    }

    TorvQDTable* addTable(const QString& name, const QPoint& place) {
        TorvQDTable* table = builder->ListOfTables->AddTable(name, host.table(name));
        table->MoveTable(place.x() - table->Left, place.y() - table->Top);
        return table;
    }
    TorvQDLink* addLink(const QString& alias1, const QString& field1, const QString& alias2,
                        const QString& field2) {
        TorvQDTable* first = table(alias1);
        TorvQDTable* other = table(alias2);
        return area().AddLink(first, other, first->GetFieldItem(field1),
                              other->GetFieldItem(field2));
    }

    [[nodiscard]] TorvQDWorkArea& area() const { return *builder->WorkArea; }
    [[nodiscard]] TorvQDTable* table(const QString& alias) const {
        return builder->ListOfTables->tableByAlias(alias);
    }
    [[nodiscard]] TorvQDLink* link() const {
        return area().Links().empty() ? nullptr : area().Links().front();
    }
    [[nodiscard]] orv::ExitEdit* aliasEdit() const {
        return area().viewport()->findChild<orv::ExitEdit*>();
    }
    [[nodiscard]] TEditEx* searchEdit() const { return area().viewport()->findChild<TEditEx*>(); }
    [[nodiscard]] QStringList stacking() const {
        QStringList names;
        for (int index = 0; index < area().TablesCount(); ++index) {
            names << area().Tables(index)->GetAlias();
        }
        return names;
    }

    // --- places on the screen, wherever the things are when they are asked for ---

    /// A point of the first builder's diagram.
    [[nodiscard]] Hand::Place at(const std::function<QPoint()>& diagramPoint) const {
        return [this, diagramPoint] {
            return builder ? onScreen(area(), diagramPoint()) : QCursor::pos();
        };
    }
    [[nodiscard]] Hand::Place at(const QPoint& diagramPoint) const {
        return at([diagramPoint] { return diagramPoint; });
    }
    [[nodiscard]] Hand::Place row(const QString& alias, const QString& field,
                                  const QPoint& offset = {}) const {
        return at([this, alias, field, offset] { return rowRect(alias, field).center() + offset; });
    }
    [[nodiscard]] Hand::Place checkSquare(const QString& alias, const QString& field) const {
        return at([this, alias, field] {
            const QRect rect = rowRect(alias, field);
            return QPoint(rect.left() + table(alias)->ItemHeight / 2, rect.center().y());
        });
    }
    [[nodiscard]] Hand::Place caption(const QString& alias, const QPoint& offset = {}) const {
        return at([this, alias, offset] {
            return table(alias)->GetCaptionRect().toQRect().center() + offset;
        });
    }
    /// The middle of the link's longest part.
    [[nodiscard]] Hand::Place linkMiddle() const {
        return at([this] { return (link()->points()[1] + link()->points()[2]) / 2; });
    }
    [[nodiscard]] static Hand::Place middleOf(const QWidget* widget) {
        return [widget = QPointer<const QWidget>(widget)] {
            return widget ? widget->mapToGlobal(widget->rect().center()) : QCursor::pos();
        };
    }
    /// An entry of the menu that is open.
    [[nodiscard]] static Hand::Place menuEntry(const QString& text) {
        return [text] {
            const auto* menu = openMenu();
            if (!menu) return QCursor::pos();
            for (QAction* action : menu->actions()) {
                const QString shown = action->text().remove(u'&');
                if (shown != text) continue;
                return menu->mapToGlobal(menu->actionGeometry(action).center());
            }
            return QCursor::pos();
        };
    }
    [[nodiscard]] static QMenu* openMenu() {
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }

    QWidget window;
    Host host;
    QPointer<TorvQueryBuilder> builder;
    QPointer<TorvQueryBuilder> second;
    QLineEdit* beside;
    QStringList errors;
    int startedDrags = 0;  // of the first builder
    int endedDrags = 0;

    [[nodiscard]] static QPoint onScreen(const TorvQDWorkArea& area, const QPoint& diagramPoint) {
        return area.viewport()->mapToGlobal(area.toViewport(diagramPoint - area.scrollPosition()));
    }

private:
    TorvQueryBuilder* addBuilder(QHBoxLayout& layout) {
        auto* made = new TorvQueryBuilder;
        host.attach(*made);
        layout.addWidget(made);
        made->Splitter->setSizes({480, 120});
        return made;
    }
    [[nodiscard]] QRect rowRect(const QString& alias, const QString& field) const {
        const TorvQDTable* box = table(alias);
        const TRect rect = box->GetItemRect(box->GetFieldItem(field));
        const QPoint scroll = area().scrollPosition();
        return rect.translated(scroll.x(), scroll.y()).toQRect();
    }

    orv::ErrorHandler m_oldHandler;
};

}  // namespace orvtest
