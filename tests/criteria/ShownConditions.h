// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDWherePanel.h"
#include "criteria/RowTools.h"
#include "support/BuilderTools.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTabWidget>
#include <QVBoxLayout>

namespace orvtest {

/// A window with an edit, a builder with the box T on one of its criteria pages, and another edit.
/// The panel has the focus. Points are those of the panel's viewport; rows are named by their
/// numbers, the root row by none. Message boxes are answered with Yes, and errors are kept.
class ShownConditions : public HostedBuilder {
public:
    enum Page { Where, Having };

    explicit ShownConditions(const QString& condition = {}, Page page = Where)
        : before(new QLineEdit(&window)), after(nullptr) {
        window.resize(700, 560);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(before);
        layout->addWidget(&builder);
        after = new QLineEdit(&window);
        layout->addWidget(after);
        builder.LoadSQL(page == Where ? "select t.a from t" + clause("where", condition)
                                      : "select t.a, count(t.b) n from t group by t.a" +
                                            clause("having", condition));
        builder.PageCtrl->setCurrentIndex(page == Where ? 0 : 2);
        builder.setTabsHeight(300);
        panel = page == Where ? builder.WherePanel : builder.HavingPanel;
        window.show();
        window.activateWindow();
        panel->setFocus();
        QCoreApplication::processEvents();
        changes = 0;
    }
    ~ShownConditions() {
        closeMenus();
        builder.setParent(nullptr);
    }
    ShownConditions(const ShownConditions&) = delete;
    ShownConditions& operator=(const ShownConditions&) = delete;

    // --- rows and elements

    [[nodiscard]] TorvQDWhereRow* root() const { return panel->rootRow(); }
    [[nodiscard]] QString rows() const { return rowText(*root()); }
    [[nodiscard]] TorvQDWhereRow* row(const QString& number) const {
        TorvQDWhereRow* found = root();
        for (const QString& index : number.split(u'.', Qt::SkipEmptyParts)) {
            found = found->SubRows->Row(index.toInt() - 1);
        }
        return found;
    }
    [[nodiscard]] TorvQDControl* element(const QString& number, int kind) const {
        return row(number)->Controls[std::size_t(kind)].get();
    }
    /// An element as "1.2.:5"; "none" for none.
    [[nodiscard]] static QString nameOf(const TorvQDControl* element) {
        if (!element) return QStringLiteral("none");
        return orv::orvTrim(element->Row->GetFullIndex()) + u':' + QString::number(element->Kind);
    }
    [[nodiscard]] QString active() const { return nameOf(panel->ActiveElement()); }
    [[nodiscard]] QString current() const { return nameOf(panel->CurrentElement()); }
    void select(const QString& number, int kind) {
        panel->setActiveElement(element(number, kind));
        panel->setCurrentElement(element(number, kind));
    }

    // --- the mouse

    [[nodiscard]] QWidget* view() const { return panel->viewport(); }
    [[nodiscard]] QPoint at(const QString& number, int kind) const {
        return panel->elementRect(*element(number, kind)).center();
    }
    void press(const QPoint& point) const { QTest::mousePress(view(), Qt::LeftButton, {}, point); }
    void release(const QPoint& point) const {
        QTest::mouseRelease(view(), Qt::LeftButton, {}, point);
    }
    void click(const QPoint& point) const {
        press(point);
        release(point);
    }
    void click(const QString& number, int kind) const { click(at(number, kind)); }
    void hover(const QPoint& point, Qt::MouseButtons held = Qt::NoButton) const {
        QMouseEvent event(QEvent::MouseMove, point, view()->mapToGlobal(point), Qt::NoButton, held,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(view(), &event);
    }
    void askForMenu(const QPoint& point, QContextMenuEvent::Reason reason) const {
        QContextMenuEvent event(reason, point, view()->mapToGlobal(point));
        QCoreApplication::sendEvent(view(), &event);
    }

    // --- keys

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        QTest::keyClick(panel, key, modifiers);
    }

    // --- menus

    [[nodiscard]] QMenu* menu(const QString& name) const { return panel->findChild<QMenu*>(name); }
    /// The name of the menu that is open; empty without one.
    [[nodiscard]] QString openMenu() const {
        QStringList names;
        for (const QMenu* each : panel->findChildren<QMenu*>()) {
            if (each->isVisible()) names << each->objectName();
        }
        return names.join(u' ');
    }
    void closeMenus() const {
        for (QMenu* each : panel->findChildren<QMenu*>()) each->close();
    }
    /// The captions; "-" for a separator, and "(off)" behind an item that cannot be chosen.
    [[nodiscard]] QStringList captions(const QString& name) const {
        QStringList texts;
        for (const QAction* item : menu(name)->actions()) {
            texts << (item->isSeparator() ? QStringLiteral("-") : item->text()) +
                         (item->isEnabled() ? QString() : QStringLiteral(" (off)"));
        }
        return texts;
    }
    [[nodiscard]] QAction* item(const QString& name, const QString& caption) const {
        for (QAction* each : menu(name)->actions()) {
            if (each->text() == caption) return each;
        }
        return nullptr;
    }
    /// Chooses an item as a click on it does.
    void choose(const QString& name, const QString& caption) const {
        QAction* chosen = item(name, caption);
        menu(name)->close();
        chosen->trigger();
    }

    RecordedServices services;
    QWidget window;
    QLineEdit* before;
    QLineEdit* after;
    TorvQDWherePanel* panel = nullptr;

private:
    static QString clause(const QString& word, const QString& condition) {
        return condition.isEmpty() ? QString() : u' ' + word + u' ' + condition;
    }
};

}  // namespace orvtest
