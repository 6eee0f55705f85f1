// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <vector>

class QAction;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace orvquery {

class TextMarks;

/// Finds a text in an editor, ignoring case: all hits are marked and counted, one is selected.
/// Hidden until it is asked for; Escape closes it. Its keys belong to `pane`, around the editor.
class FindBar : public QWidget {
    Q_OBJECT

public:
    FindBar(QPlainTextEdit* editor, TextMarks* marks, QWidget* pane);

    [[nodiscard]] QAction* findAction() const { return m_find; }
    [[nodiscard]] QAction* nextAction() const { return m_next; }
    [[nodiscard]] QAction* previousAction() const { return m_previous; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Direction { Forwards, Backwards };

    QAction* makeAction(const QString& text, const QKeySequence& shortcut, QWidget* pane,
                        void (FindBar::*slot)());
    void buildBar();
    void open();
    void leave();
    void findNext();
    void findPrevious();
    void step(Direction direction);
    void textTyped();
    void searchAgain();
    void select(std::size_t hit);
    void showCount();

    QPlainTextEdit* m_editor;
    TextMarks* m_marks;
    QLineEdit* m_text;
    QLabel* m_count;
    QAction* m_find;
    QAction* m_next;
    QAction* m_previous;
    std::vector<int> m_hits;  ///< where they start, ascending
    int m_from = 0;           ///< where the search for what is being typed begins
};

}  // namespace orvquery
