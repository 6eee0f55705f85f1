// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDFieldList.h"
#include "criteria/ORVQDWherePanel.h"
#include "database/Connection.h"
#include "database/RunQuery.h"
#include "querybuilder/ORVQDWindow.h"
#include "sample/SampleDatabase.h"
#include "selection/ORVQDSelectOrder.h"
#include "support/TestTools.h"
#include "toolkit/ExitCombo.h"
#include "toolkit/ExitEdit.h"
#include "values/ValueText.h"
#include "window/MainWindow.h"
#include "workarea/ORVQDFloatPanel.h"
#include "xvfb/Hand.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSettings>
#include <QTabBar>
#include <QTableView>
#include <QToolButton>

#include <algorithm>
#include <memory>

namespace orvtest {

/// The program's window on the sample database, and the places on the screen of what it shows,
/// wherever that is when it is asked for.
class ProgramDesk {
public:
    ProgramDesk() {
        QSettings(QStringLiteral("orvquery"), QStringLiteral("orvquery")).clear();
        m_oldHandler = orv::setErrorHandler([this](const QString& text) { errors << text; });
        window = std::make_unique<orvquery::MainWindow>();
    }
    ~ProgramDesk() {
        window.reset();
        orv::setErrorHandler(m_oldHandler);
    }
    ProgramDesk(const ProgramDesk&) = delete;
    ProgramDesk& operator=(const ProgramDesk&) = delete;

    /// Shows the window as the program does when it is started without arguments.
    [[nodiscard]] bool show() const {
        window->move(0, 0);
        window->show();
        if (!QTest::qWaitForWindowActive(window.get())) return false;
        window->begin({});
        return area().TablesCount() > 0;
    }

    // --- what there is ---

    template <typename Widget>
    [[nodiscard]] Widget* child(const char* name) const {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    [[nodiscard]] TorvQueryBuilder& builder() const {
        return *window->findChild<TorvQueryBuilder*>();
    }
    [[nodiscard]] TorvQDWorkArea& area() const { return *builder().WorkArea; }
    [[nodiscard]] TorvQDTable* table(const QString& alias) const {
        return builder().ListOfTables->tableByAlias(alias);
    }
    [[nodiscard]] TorvQDLink* link() const {
        return area().Links().empty() ? nullptr : area().Links().front();
    }
    [[nodiscard]] TorvQDSelectGrid& grid() const { return *builder().SelectPanel->grid(); }
    [[nodiscard]] TorvQDWherePanel& where() const { return *builder().WherePanel; }
    [[nodiscard]] TorvQDWherePanel& having() const { return *builder().HavingPanel; }
    [[nodiscard]] QTabBar& tabs() const { return *builder().PageCtrl->tabBar(); }
    [[nodiscard]] QAbstractItemView& tableList() const {
        return *child<QAbstractItemView>("tables");
    }
    [[nodiscard]] QPlainTextEdit& statement() const { return *child<QPlainTextEdit>("statement"); }
    /// What is being typed in a condition; none when nothing is.
    [[nodiscard]] static QPlainTextEdit* memo(const TorvQDWherePanel& panel) {
        auto* memo = panel.viewport()->findChild<QPlainTextEdit*>();
        return memo && memo->isVisible() ? memo : nullptr;
    }
    [[nodiscard]] static orv::FieldList* fieldList(const TorvQDWherePanel& panel) {
        auto* list = panel.viewport()->findChild<orv::FieldList*>();
        return list && list->isVisible() ? list : nullptr;
    }
    /// The editors of the grid; none when nothing is being typed.
    [[nodiscard]] orv::ExitEdit* nameEdit() const {
        auto* edit = grid().viewport()->findChild<orv::ExitEdit*>();
        return edit && edit->isVisible() ? edit : nullptr;
    }
    [[nodiscard]] orv::ExitCombo* combo() const {
        auto* combo = grid().viewport()->findChild<orv::ExitCombo*>();
        return combo && combo->isVisible() ? combo : nullptr;
    }
    /// A condition by the numbers on its button: "1.2."; the root row for a blank.
    [[nodiscard]] static TorvQDWhereRow* row(TorvQDWherePanel& panel, const QString& number) {
        for (TorvQDWhereRow* shown : panel.shownRows()) {
            if (shown->GetFullIndex().trimmed() == number.trimmed()) return shown;
        }
        return nullptr;
    }
    /// A row of the grid of output columns, by its source; none: 0.
    [[nodiscard]] int gridRow(const QString& source) const {
        for (int row = 1; row < grid().RowCount(); ++row) {
            if (grid().Cells(2, row) == source) return row;
        }
        return 0;
    }
    /// The rows that are shown below, a text for each cell.
    [[nodiscard]] std::vector<QStringList> rows() const {
        const QAbstractItemModel& model = *child<QTableView>("rows")->model();
        std::vector<QStringList> rows(std::size_t(model.rowCount()));
        for (int row = 0; row < model.rowCount(); ++row) {
            for (int column = 0; column < model.columnCount(); ++column) {
                rows[std::size_t(row)] << model.index(row, column).data().toString();
            }
        }
        return rows;
    }
    [[nodiscard]] bool hasRun() const {
        const QString summary = child<QLabel>("summary")->text();
        return child<QTableView>("rows")->isVisible() && summary.endsWith(QStringLiteral("s")) &&
               !summary.startsWith(QStringLiteral("Running"));
    }

    // --- where it is ---

    [[nodiscard]] static Hand::Place middleOf(const QWidget* widget) {
        return [widget = QPointer<const QWidget>(widget)] {
            return widget ? widget->mapToGlobal(widget->rect().center()) : QCursor::pos();
        };
    }
    [[nodiscard]] static Hand::Place button(const QWidget* parent, const QString& text) {
        return [parent, text] {
            for (const auto* button : parent->findChildren<QAbstractButton*>()) {
                if (button->isVisible() && button->text().remove(u'&') == text) {
                    return button->mapToGlobal(button->rect().center());
                }
            }
            return QCursor::pos();
        };
    }
    [[nodiscard]] static QMenu* openMenu() {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        return menu && menu->isVisible() ? menu : nullptr;
    }
    [[nodiscard]] static Hand::Place menuEntry(const QString& text) {
        return [text] {
            const QMenu* menu = openMenu();
            const QAction* action = menu ? actionOf(*menu, text) : nullptr;
            if (!action) return QCursor::pos();
            return menu->mapToGlobal(menu->actionGeometry(const_cast<QAction*>(action)).center());
        };
    }
    [[nodiscard]] Hand::Place menuTitle(const QString& text) const {
        return [this, text] {
            const QMenuBar& bar = *window->menuBar();
            QAction* action = actionOf(bar, text);
            return bar.mapToGlobal(bar.actionGeometry(action).center());
        };
    }
    [[nodiscard]] static Hand::Place itemOf(const QAbstractItemView& view, const QString& text,
                                            int column = 0) {
        return [&view, text, column] {
            const QModelIndexList found =
                view.model()->match(view.model()->index(0, column), Qt::DisplayRole, text, 1,
                                    Qt::MatchExactly | Qt::MatchRecursive | Qt::MatchWrap);
            if (found.isEmpty()) return QCursor::pos();
            QRect rect = view.visualRect(found.front());
            rect.setWidth(std::min(rect.width(), view.viewport()->width() / 2));
            return view.viewport()->mapToGlobal(rect.center());
        };
    }
    [[nodiscard]] Hand::Place tab(const QString& text) const {
        return [this, text] {
            for (int index = 0; index < tabs().count(); ++index) {
                if (tabs().tabText(index).remove(u'&') != text) continue;
                return tabs().mapToGlobal(tabs().tabRect(index).center());
            }
            return QCursor::pos();
        };
    }
    /// A point of the diagram.
    [[nodiscard]] Hand::Place at(const std::function<QPoint()>& point) const {
        return [this, point] {
            return area().viewport()->mapToGlobal(
                area().toViewport(point() - area().scrollPosition()));
        };
    }
    [[nodiscard]] Hand::Place field(const QString& alias, const QString& name,
                                    const QPoint& offset = {}) const {
        return at([this, alias, name, offset] { return fieldRect(alias, name).center() + offset; });
    }
    [[nodiscard]] Hand::Place checkSquare(const QString& alias, const QString& name) const {
        return at([this, alias, name] {
            const QRect rect = fieldRect(alias, name);
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
    /// An element of a condition.
    [[nodiscard]] static Hand::Place element(TorvQDWherePanel& panel, const QString& number,
                                             int kind) {
        return [&panel, number, kind] {
            const TorvQDWhereRow* found = row(panel, number);
            if (!found || kind >= int(found->Controls.size())) return QCursor::pos();
            const QRect rect = panel.elementRect(*found->Controls[std::size_t(kind)]);
            return panel.viewport()->mapToGlobal(rect.center());
        };
    }
    [[nodiscard]] Hand::Place cell(const QString& source, int column) const {
        return [this, source, column] {
            const QModelIndex index = grid().model()->index(gridRow(source) - 1, column);
            return grid().viewport()->mapToGlobal(grid().visualRect(index).center());
        };
    }

    // --- conditions to wait for ---

    [[nodiscard]] static Hand::Condition hasFocus(const QWidget* widget) {
        return [widget = QPointer<const QWidget>(widget)] { return widget && widget->hasFocus(); };
    }
    [[nodiscard]] static Hand::Condition menuIsUp() {
        return [] { return openMenu() != nullptr; };
    }
    [[nodiscard]] static Hand::Condition noMenuIsUp() {
        return [] { return !openMenu(); };
    }
    [[nodiscard]] Hand::Condition pageIs(const QString& text) const {
        return [this, text] { return tabs().tabText(tabs().currentIndex()) == text; };
    }

    std::unique_ptr<orvquery::MainWindow> window;
    QStringList errors;

private:
    [[nodiscard]] static QAction* actionOf(const QWidget& menu, const QString& text) {
        for (QAction* action : menu.actions()) {
            const QString shown = action->text().remove(u'&');
            if (shown == text || (text.isEmpty() && shown.trimmed().isEmpty())) return action;
        }
        return nullptr;
    }
    [[nodiscard]] QRect fieldRect(const QString& alias, const QString& name) const {
        const TorvQDTable* box = table(alias);
        const TRect rect = box->GetItemRect(box->GetFieldItem(name));
        const QPoint scroll = area().scrollPosition();
        return rect.translated(scroll.x(), scroll.y()).toQRect();
    }

    orv::ErrorHandler m_oldHandler;
};

/// The rows of a statement on the sample database, as the window shows them; not by way of the
/// control.
inline std::vector<QStringList> rowsOfSample(const QString& statement) {
    orvquery::Connection connection(
        {QStringLiteral("QSQLITE"), orvquery::sampleDatabasePath(), QString()});
    if (connection.open().isValid()) return {};
    orvquery::RowCollector rows(10000);
    orvquery::runQuery(connection.database(), statement, rows);
    std::vector<QStringList> texts;
    for (const orvquery::Row& row : rows.rows()) {
        texts.emplace_back();
        for (const QVariant& value : row) texts.back() << orvquery::shownText(value);
    }
    return texts;
}

}  // namespace orvtest
