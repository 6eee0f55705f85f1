// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDPageTabs.h"

#include "toolkit/Services.h"

#include <QApplication>
#include <QDragMoveEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QShortcut>
#include <QTabBar>
#include <QTimerEvent>
#include <QWheelEvent>

#include <algorithm>

namespace orv {

namespace {

constexpr int mostNumberKeys = 9;

// A window may have a shortcut on the same keys; then both are called ambiguous.
template <typename Action>
void addKeys(QWidget* scope, QObject* context, const QKeySequence& keys, Action action) {
    auto* shortcut = new QShortcut(keys, scope);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    const auto run = [action] { guarded(action); };
    QObject::connect(shortcut, &QShortcut::activated, context, run);
    QObject::connect(shortcut, &QShortcut::activatedAmbiguously, context, run);
}

}  // namespace

/// The tabs. Qt tells of a change only when the old page is hidden already, and what was being
/// typed there has lost the focus: whatever may change the page is announced before Qt sees it.
class PageTabs::Bar : public QTabBar {
public:
    explicit Bar(PageTabs* pages) : QTabBar(pages), m_pages(pages) {
        setChangeCurrentOnDrag(true);
        setAcceptDrops(true);
    }

protected:
    bool event(QEvent* event) override {
        switch (event->type()) {
        case QEvent::Shortcut:
            if (!m_pages->announce()) return true;
            break;
        case QEvent::DragEnter:
        case QEvent::DragMove:
            m_hovered = tabAt(static_cast<QDragMoveEvent*>(event)->position().toPoint());
            break;
        default: break;
        }
        return QTabBar::event(event);
    }

    // Where pages change with the release, the same tab has to be pressed before.
    void mousePressEvent(QMouseEvent* event) override {
        const bool chooses = event->button() == Qt::LeftButton;
        if (chooses && !announceFor(tabAt(event->position().toPoint()))) return;
        QTabBar::mousePressEvent(event);
    }

    void wheelEvent(QWheelEvent* event) override {
        if (!event->angleDelta().isNull() && !m_pages->announce()) return;
        QTabBar::wheelEvent(event);
    }

    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        const bool chooses = key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Home ||
                             key == Qt::Key_End;
        if (chooses && !m_pages->announce()) return;
        QTabBar::keyPressEvent(event);
    }

    // The only timer of the bar: something that is dragged has rested on a tab.
    void timerEvent(QTimerEvent* event) override {
        if (!announceFor(m_hovered)) return;
        QTabBar::timerEvent(event);
    }

private:
    bool announceFor(int index) {
        if (index < 0 || index == currentIndex() || !isTabEnabled(index)) return true;
        return m_pages->announce();
    }

    PageTabs* m_pages;
    int m_hovered = -1;  // the tab below what is being dragged
};

PageTabs::PageTabs(QWidget* parent) : QTabWidget(parent) {
    setTabBar(new Bar(this));
    addKeys(this, this, QKeySequence(Qt::CTRL | Qt::Key_PageDown), [this] { step(1); });
    addKeys(this, this, QKeySequence(Qt::CTRL | Qt::Key_PageUp), [this] { step(-1); });
}

void PageTabs::addNumberKeys(QWidget* scope) {
    for (int index = 0; index < std::min(count(), mostNumberKeys); ++index) {
        const QKeySequence keys(Qt::ALT | Qt::Key(Qt::Key_1 + index));
        addKeys(scope, this, keys, [this, index] { goTo(index); });
    }
}

// False when nothing is left of the pages.
bool PageTabs::announce() {
    const QPointer<PageTabs> self(this);
    const std::function<void()> handler = aboutToChange;
    if (handler) guarded(handler);
    return self;
}

bool PageTabs::change(int index) {
    if (index == currentIndex()) return true;
    const QPointer<PageTabs> self(this);
    if (!announce()) return false;
    setCurrentIndex(index);
    return self;
}

void PageTabs::step(int by) {
    int index = currentIndex();
    for (int pass = 0; pass < count(); ++pass) {
        index = (index + by + count()) % count();
        if (!isTabEnabled(index) || !isTabVisible(index)) continue;
        change(index);
        return;
    }
}

void PageTabs::goTo(int index) {
    if (!isTabEnabled(index) || !isTabVisible(index) || !change(index)) return;
    focusPage();
}

// What had the focus on the page gets it again, else the first widget that takes it.
void PageTabs::focusPage() {
    QWidget* page = currentWidget();
    const auto takesFocus = [page](const QWidget* widget) {
        return widget && page->isAncestorOf(widget) && widget->isVisibleTo(page) &&
               widget->isEnabled() && !widget->focusProxy() &&
               (widget->focusPolicy() & Qt::TabFocus);
    };
    if (!page || takesFocus(QApplication::focusWidget())) return;
    QWidget* target = page->focusWidget();
    if (!takesFocus(target)) {
        target = page->nextInFocusChain();
        while (target != page && !takesFocus(target)) target = target->nextInFocusChain();
    }
    (target == page ? static_cast<QWidget*>(tabBar()) : target)->setFocus(Qt::ShortcutFocusReason);
}

// Ctrl+Tab; the pages leave it to this.
void PageTabs::keyPressEvent(QKeyEvent* event) {
    const bool isTab = event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab;
    if (!isTab || !(event->modifiers() & Qt::ControlModifier)) {
        QTabWidget::keyPressEvent(event);
        return;
    }
    event->accept();
    const bool back = event->key() == Qt::Key_Backtab || (event->modifiers() & Qt::ShiftModifier);
    step(back ? -1 : 1);
}

}  // namespace orv
