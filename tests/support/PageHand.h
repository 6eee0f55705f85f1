// SPDX-License-Identifier: MIT
#pragma once

#include "meaning/Dice.h"
#include "support/BuilderTools.h"

#include <QPointer>

#include <functional>
#include <memory>

class QMimeData;

namespace orvtest {

/// The user's hand on the pages, by chance: mouse, keys, menus, editors, lists and drops on the
/// page that is shown, and ways to another page.
class PageHand {
public:
    /// What the session lends; the functions note what happens, and let the host or the program do
    /// something while the hand is in the middle of something.
    struct Session {
        Dice& dice;
        HostedBuilder& on;
        const int& disturbances;
        std::function<void(const QString& text)> note;
        std::function<void()> disturb;
    };

    explicit PageHand(Session session);
    ~PageHand();
    PageHand(const PageHand&) = delete;
    PageHand& operator=(const PageHand&) = delete;

    /// Does the next thing.
    void act();
    /// What was wrong while it did something; empty for nothing.
    [[nodiscard]] const QString& complaint() const { return m_complaint; }
    /// Drags something over the page that is shown and mostly drops it; whether it was taken.
    bool dragHere(const QMimeData& data);
    /// Texts that no statement can hold have this word in them.
    static const QString oddWord;

private:
    struct Action {
        int weight;
        void (PageHand::*run)();
    };
    template <std::size_t count>
    void runOne(const Action (&actions)[count]);

    // On every page.
    void changePage();
    void loseFocus();
    void changeWindow();
    void commitPending();
    void changeOperators();
    void changeLooks();
    void dropField();
    void disturb();

    // On the criteria pages.
    void clickCondition();
    void pressAndMove();
    void doubleClickCondition();
    void rightClickCondition();
    void scrollConditions();
    void conditionKey();
    void addCondition();
    void editCondition();
    void useFieldList();
    void callPanel();

    // On the selection page.
    void clickCell();
    void doubleClickCell();
    void rightClickCell();
    void gridKey();
    void editCell();
    void openChoice();
    void dragRow();
    void callGrid();
    void clickDistinct();

    // On the sorting page.
    void clickLists();
    void doubleClickLists();
    void sortingKey();
    void clickButton();
    void dragLine();
    void editTail();

    // Hands and eyes.
    [[nodiscard]] TorvQueryBuilder& builder() const { return m_session.on.builder; }
    [[nodiscard]] TorvQDSelectGrid& grid() const { return *m_session.on.grid(); }
    [[nodiscard]] TorvQDWherePanel* panel() const;
    [[nodiscard]] QWidget* pageWidget() const;
    [[nodiscard]] Dice& dice() const { return m_session.dice; }
    void note(const QString& text) const { m_session.note(text); }
    [[nodiscard]] QPoint somewhereIn(const QWidget& view);
    [[nodiscard]] QPoint conditionPoint();
    [[nodiscard]] QPoint cellPoint();
    [[nodiscard]] QString fieldName();
    [[nodiscard]] QString operandText();
    QWidget* press(QWidget* view, const QPoint& point, Qt::MouseButton button = Qt::LeftButton);
    void countChanges(const char* what, const std::function<void()>& event);
    void mouse(QEvent::Type type, QWidget* target, const QWidget* view, const QPoint& point,
               Qt::MouseButton button);
    void click(QWidget* view, const QPoint& point, Qt::MouseButton button = Qt::LeftButton);
    void doubleClick(QWidget* view, const QPoint& point);
    void askForMenu(QWidget* view, const QPoint& point);
    void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = {}, const QString& text = {});
    void type(const QString& text);
    void endEdit();
    void answerMenu();

    Session m_session;
    std::unique_ptr<QWidget> m_otherWindow;
    QString m_complaint;
};

}  // namespace orvtest
