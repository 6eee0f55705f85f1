// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>

class QUndoStack;
class TorvQueryBuilder;

namespace orv {

/// Makes what happens to a query builder steps of an undo stack: one for each action of the user or
/// call of the host that changes the statement or the layout. A step is the whole state before and
/// after it, so that undoing brings back places and bends too; what is scrolled to stays. Editors
/// of texts keep undo facilities of their own. The host makes the actions from the stack:
///
///     auto* stack = new QUndoStack(&window);
///     new orv::UndoRecorder(&builder, stack, &window);
///     menu->addAction(stack->createUndoAction(&window));
///
/// Records from its construction on, as long as it, the builder and the stack live. Belongs to the
/// thread of the user interface.
class ORV_EXPORT UndoRecorder : public QObject {
    Q_OBJECT

public:
    /// Neither of the first two is owned.
    UndoRecorder(TorvQueryBuilder* builder, QUndoStack* stack, QObject* parent = nullptr);
    ~UndoRecorder() override;

    /// Makes the present state the one to begin with, and empties the stack: after a document has
    /// been opened, say. While a step is being undone or redone the stack needs it, and it is done
    /// when the present event is over.
    void reset();

    /// Records now what has changed since the last step. Changes of the layout are recorded by
    /// themselves when the present event is over, all others at once.
    void record();

    /// Whether a step is being undone or redone: what the builder tells meanwhile is not new.
    [[nodiscard]] bool isRestoring() const { return m_isRestoring; }

    /// Makes one step of all that happens while it lives, event loops of dialogs included, and of
    /// the groups within it. Without a text the step is named after what has changed.
    class ORV_EXPORT Group {
    public:
        /// The recorder is borrowed, and may die first.
        explicit Group(UndoRecorder* recorder, QString text = {});
        Group(const Group&) = delete;
        Group& operator=(const Group&) = delete;
        ~Group();

    private:
        QPointer<UndoRecorder> m_recorder;
        QString m_text;
    };

private:
    class Step;
    enum class Shown { Yes, NotNow, Never };

    void take(const QString& text);
    [[nodiscard]] Shown show(const QByteArray& state);
    void joinNeighbour(int index, int direction);
    void returnTo(int index);
    void realign();
    void moveStack(int index);

    QPointer<TorvQueryBuilder> m_builder;
    QPointer<QUndoStack> m_stack;
    QByteArray m_present;  ///< as the last step has left it
    int m_groups = 0;
    int m_index = -1;  ///< of the stack, to be taken back to when the event is over; or none
    bool m_isRestoring = false;
    bool m_isRealigning = false;
};

}  // namespace orv
