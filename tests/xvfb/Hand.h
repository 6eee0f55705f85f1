// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QCursor>
#include <QDrag>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMouseEvent>
#include <QPoint>
#include <QProcess>
#include <QStringList>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace orvtest {

/// The user's hand on the real pointer and the real keys. It is told step by step what to do and
/// then does it beside whatever event loop runs: that of a menu, of a dialog, of a drag. Each step
/// waits until its effect has arrived, and for nothing else.
class Hand : public QObject {
public:
    using Action = std::function<void()>;
    using Condition = std::function<bool()>;
    using Place = std::function<QPoint()>;  // on the screen

    Hand() {
        qApp->installEventFilter(this);
        m_poll.setInterval(1);
        connect(&m_poll, &QTimer::timeout, this, &Hand::proceed);
    }
    ~Hand() override {
        qApp->removeEventFilter(this);
        if (QGuiApplication::mouseButtons() != Qt::NoButton) letGo();
        m_tool.closeWriteChannel();
        m_tool.waitForFinished(mostMs);
    }

    // --- what to do ---

    /// Moves the pointer there, and waits until the program has seen it there.
    Hand& moveTo(const Place& place) {
        return add(
            QStringLiteral("move"), [this, place] { point(place()); },
            [this, place] {
                const QPoint wanted = place();
                if (m_target == wanted) return isSeen();
                // What is pointed to has moved meanwhile, or the detour is over.
                if (!m_makesDetour || isSeen()) moveStraight(wanted);
                return false;
            });
    }
    Hand& press(int button = 1) {
        return add(
            QStringLiteral("press"),
            [this, button] {
                xdotool({"mousedown", QString::number(button)});
            },
            [button] { return QGuiApplication::mouseButtons().testFlag(qtButton(button)); });
    }
    Hand& release(int button = 1) {
        return add(
            QStringLiteral("release"),
            [this, button] {
                xdotool({"mouseup", QString::number(button)});
            },
            [button] { return !QGuiApplication::mouseButtons().testFlag(qtButton(button)); });
    }
    Hand& click(const Place& place, int button = 1) {
        return moveTo(place).press(button).release(button);
    }
    Hand& drag(const Place& from, const Place& to) {
        return moveTo(from).press().moveTo(to).release();
    }
    Hand& doubleClick(const Place& place) {
        moveTo(place);
        return add(
            QStringLiteral("double click"),
            [this] {
                m_pressesBefore = m_presses;
                xdotool({"click", "--repeat", "2", "--delay", "1", "1"});
            },
            [this] {
                return m_presses >= m_pressesBefore + 2 &&
                       QGuiApplication::mouseButtons() == Qt::NoButton;
            });
    }
    /// Turns the wheel by a notch: 4 is away from the hand, 5 towards it.
    Hand& wheel(int button) {
        return add(
            QStringLiteral("wheel"),
            [this, button] {
                m_wheelsBefore = m_wheels;
                xdotool({"click", QString::number(button)});
            },
            [this] { return m_wheels > m_wheelsBefore; });
    }
    /// Turns it until the condition holds.
    Hand& wheelUntil(const std::function<int()>& button, const Condition& condition) {
        return add(
            QStringLiteral("wheel until"), [this] { m_wheelsBefore = m_wheels - 1; },
            [this, button, condition] {
                if (condition()) return true;
                if (m_wheels == m_wheelsBefore) return false;
                m_wheelsBefore = m_wheels;
                xdotool({"click", QString::number(button())});
                return false;
            });
    }
    /// Keys as xdotool has them: "Escape", "ctrl+a". What they do is to be waited for.
    Hand& key(const QString& keys) {
        return add("key " + keys, [this, keys] { xdotool({"key", "--delay", "0", keys}); });
    }
    /// Presses them until the state is the wanted one. Each press waits until it has changed it.
    template <typename State>
    Hand& keyUntil(const QString& keys, const std::function<State()>& state,
                   const std::type_identity_t<State>& wanted) {
        const auto before = std::make_shared<std::optional<State>>();
        return add("key until " + keys, {}, [this, keys, state, wanted, before] {
            const State now = state();
            if (now == wanted) return true;
            if (*before == now) return false;
            *before = now;
            xdotool({"key", "--delay", "0", keys});
            return false;
        });
    }
    /// A text without double quotes, character by character. What it does is to be waited for.
    Hand& type(const QString& text) {
        return add("type " + text, [this, text] {
            xdotool({"type", "--delay", "0", u'"' + text + u'"'});
        });
    }
    Hand& keyDown(const QString& name) {
        return add("key down " + name, [this, name] { xdotool({"keydown", name}); });
    }
    Hand& keyUp(const QString& name) {
        return add("key up " + name, [this, name] { xdotool({"keyup", name}); });
    }
    Hand& until(const QString& what, const Condition& condition) {
        return add("until " + what, {}, condition);
    }
    Hand& call(const Action& action) { return add(QStringLiteral("call"), action); }

    /// Does all that. Empty when each step had its effect; else the step that had none.
    [[nodiscard]] QString perform() {
        m_failure.clear();
        m_isStarted = false;
        // Waiting as QTest does sleeps between the events.
        QEventLoop loop;
        m_loop = &loop;
        QTimer::singleShot(60000, &loop, &QEventLoop::quit);
        m_poll.start();
        if (!m_steps.empty()) loop.exec();
        m_poll.stop();
        m_loop = nullptr;
        return m_steps.empty() ? m_failure : QStringLiteral("never came back");
    }

    /// Drags that the pointer was seen over one of the program's windows with.
    [[nodiscard]] int dragMoves() const { return m_dragMoves; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (!watched->isWindowType()) return false;
        switch (event->type()) {
        case QEvent::MouseButtonPress: ++m_presses; [[fallthrough]];
        case QEvent::MouseButtonRelease:
        case QEvent::MouseMove:
            m_seen = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
            break;
        case QEvent::DragMove:
            ++m_dragMoves;
            m_seen = static_cast<QWindow*>(watched)->mapToGlobal(
                static_cast<QDropEvent*>(event)->position().toPoint());
            break;
        case QEvent::Wheel: ++m_wheels; break;
        default: break;
        }
        return false;
    }

private:
    struct Step {
        QString what;
        Action act;
        Condition isDone;
    };

    static constexpr int mostMs = 10000;

    static Qt::MouseButton qtButton(int button) {
        return button == 1 ? Qt::LeftButton : button == 2 ? Qt::MiddleButton : Qt::RightButton;
    }

    // One program does it all: it takes a line for each command. Starting one takes longer than
    // most steps do.
    void xdotool(const QStringList& arguments) {
        if (m_tool.state() == QProcess::NotRunning) {
            m_tool.start(QStringLiteral("xdotool"), {QStringLiteral("-")});
            m_tool.waitForStarted(mostMs);
        }
        m_tool.write(arguments.join(u' ').toUtf8() + '\n');
        m_tool.waitForBytesWritten(mostMs);
    }

    // A pointer that stands there already is not heard of: it goes aside first.
    void point(const QPoint& place) {
        const bool isThere = QCursor::pos() == place;
        moveStraight(isThere ? place + QPoint(1, 0) : place);
        m_makesDetour = isThere;
    }

    // During drags a scale is rounded at several places.
    [[nodiscard]] bool isSeen() const {
        const QPoint off = m_seen - m_target;
        const int most = qApp->devicePixelRatio() > 1 ? 1 : 0;
        return qAbs(off.x()) <= most && qAbs(off.y()) <= most;
    }

    void moveStraight(const QPoint& place) {
        m_makesDetour = false;
        m_target = place;
        m_seen = QPoint(-1, -1);
        // The server knows nothing of a scale.
        const QPoint pixels = place * qApp->devicePixelRatio();
        xdotool({"mousemove", QString::number(pixels.x()), QString::number(pixels.y())});
    }

    Hand& add(const QString& what, const Action& act, const Condition& isDone = {}) {
        m_steps.push_back({what, act, isDone});
        ++m_added;
        return *this;
    }

    void proceed() {
        if (m_isActing) return;
        if (m_steps.empty()) {
            // A loop that was ended may have been followed by another one.
            if (!m_failure.isEmpty()) letGo();
            if (m_loop) m_loop->quit();
            return;
        }
        if (!m_isStarted) {
            m_isStarted = true;
            m_clock.start();
            const Action act = m_steps.front().act;
            m_isActing = true;
            if (act) act();
            m_isActing = false;
        }
        const Condition isDone = m_steps.front().isDone;
        if (!isDone || isDone()) {
            m_steps.pop_front();
            m_isStarted = false;
        } else if (m_clock.elapsed() > mostMs) {
            m_failure = QStringLiteral("step %1, %2, had no effect")
                            .arg(m_added - int(m_steps.size()) + 1)
                            .arg(m_steps.front().what);
            m_steps.clear();
            letGo();
        }
        if (m_steps.empty() && m_loop) m_loop->quit();
    }

    // Ends every loop that may be running, so that the test function returns.
    void letGo() {
        QDrag::cancel();
        for (const char* button : {"1", "2", "3"}) xdotool({"mouseup", button});
        xdotool({"keyup", "ctrl"});
        while (QWidget* popup = QApplication::activePopupWidget()) popup->close();
        if (QWidget* modal = QApplication::activeModalWidget()) modal->close();
    }

    QProcess m_tool;
    QEventLoop* m_loop = nullptr;  // while it is at work
    QTimer m_poll;
    std::deque<Step> m_steps;
    int m_added = 0;
    bool m_isStarted = false;
    bool m_isActing = false;
    QElapsedTimer m_clock;
    QString m_failure;
    QPoint m_target;
    bool m_makesDetour = false;
    QPoint m_seen;
    int m_presses = 0;
    int m_pressesBefore = 0;
    int m_wheels = 0;
    int m_wheelsBefore = 0;
    int m_dragMoves = 0;
};

}  // namespace orvtest

/// Fails the test when one of the hand's steps had no effect.
#define perform(hand) QCOMPARE((hand).perform(), QString())
