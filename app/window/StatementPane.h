// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"

#include <QWidget>

class QFrame;
class QHBoxLayout;
class QLabel;
class QListWidget;
class QPlainTextEdit;
class QToolButton;

namespace orvquery {

/// Shows the statement of the diagram and takes typed ones. What a person types stays until it is
/// loaded or given up: when the diagram changes meanwhile, a bar offers its statement instead of
/// replacing the text. Above the text stand the findings of the last load.
class StatementPane : public QWidget {
    Q_OBJECT

public:
    explicit StatementPane(QWidget* parent = nullptr);

    /// The diagram's statement has become this one.
    void setStatement(const QString& statement);
    /// The diagram has no statement for the reason given.
    void setProblem(const QString& reason);

    /// A text was loaded; what the text says and the diagram does not hold. Call setStatement or
    /// setProblem afterwards.
    void setLoaded(const QString& text, const orv::Findings& findings);
    /// A text was refused; it stays, or comes, to be mended.
    void setRefused(const QString& text, const QString& reason);
    /// Nothing is loaded any more.
    void forgetLoaded();

    /// What is to be loaded or run: the text as typed, or the diagram's statement to the byte.
    [[nodiscard]] QString text() const;
    /// Why there is no statement to run; empty when there is one or something was typed.
    [[nodiscard]] QString problem() const;
    /// Whether the text is neither the diagram's statement nor the one that was loaded.
    [[nodiscard]] bool isEdited() const { return m_content == Content::Typed; }

    void setLoadAction(QAction* action);
    void setRunAction(QAction* action);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    /// Whose text the editor shows.
    enum class Content { Statement, Loaded, Typed };

    void buildBars();
    void buildEditor();
    QToolButton* addButton(QAction* action);
    void takeStatement(const QString& statement, const QString& problem);
    void showContent(Content content);
    void replaceText(const QString& wanted);
    void showFinding(int row);
    void textEdited();
    void refresh();
    void fitFindings();
    [[nodiscard]] QString editorText() const;
    [[nodiscard]] QString stateText() const;

    QString m_statement;
    QString m_problem;
    QString m_loadedText;
    orv::Findings m_findings;
    Content m_content = Content::Statement;
    bool m_isReplacing = false;  ///< the editor's text is being replaced by the program
    bool m_isOutdated = false;   ///< the diagram has changed since something was typed

    QLabel* m_state;
    QLabel* m_refusal;
    QFrame* m_changedBar;
    QLabel* m_findingsTitle;
    QListWidget* m_findingsList;
    QToolButton* m_back;
    QPlainTextEdit* m_editor;
    QHBoxLayout* m_header;
};

}  // namespace orvquery
