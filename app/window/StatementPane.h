// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDFindings.h"

#include <QWidget>

class QAction;
class QFrame;
class QHBoxLayout;
class QLabel;
class QListWidget;
class QToolButton;

namespace orvquery {

class FindBar;
class StatementEditor;
class TextMarks;
class SqlHighlighter;

/// A text that was loaded, and what of it the diagram does not hold.
struct LoadedText {
    QString text;
    orv::Findings findings;
};

/// Shows the statement of the diagram and takes typed ones. What a person types stays until it is
/// loaded or given up: when the diagram changes meanwhile, a bar offers its statement instead of
/// replacing the text. An empty text is none: the diagram's statement counts then. A text that the
/// diagram cannot hold as it stands is loaded once the person agrees. Above the text stand the
/// findings about it, or those of the last load.
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
    /// The text that the diagram is of again, as setLoaded told once. What was typed stays.
    void setLoadedAgain(const LoadedText& loaded);
    /// The text that was loaded last; empty when there is none.
    [[nodiscard]] LoadedText loaded() const { return {m_loadedText, m_findings}; }
    /// A text was refused; it stays, or comes, to be mended.
    void setRefused(const QString& text, const QString& reason);
    /// The text has not been loaded: the person is to say first whether it is to be, with these
    /// findings, and without these muted parts of the diagram.
    void setOffered(const QString& text, const orv::Findings& findings,
                    const QStringList& mutedParts);
    /// Nothing is loaded any more.
    void forgetLoaded();
    /// What the text was before cannot be brought back: it is another document's.
    void forgetHistory();

    /// What is to be loaded: the text as typed, or the diagram's statement to the byte.
    [[nodiscard]] QString text() const;
    /// The diagram's statement, whatever the text; empty when there is none.
    [[nodiscard]] const QString& statement() const { return m_statement; }
    /// Why there is no statement to run; empty when there is one or something was typed.
    [[nodiscard]] QString problem() const;
    /// Whether the text is neither the diagram's statement nor the one that was loaded.
    [[nodiscard]] bool isEdited() const { return m_content == Content::Typed; }

    /// Whether the diagram has something, though it may not be a statement yet.
    [[nodiscard]] bool hasQuery() const;

    /// Takes a text as a person types it.
    void setTyped(const QString& text);
    /// Shows the diagram's statement in place of whatever is there.
    void showStatement();
    /// Whether the text is one that the diagram cannot hold as it stands, as setOffered told.
    [[nodiscard]] bool isOffered() const { return m_isOffered; }

    /// Tells one sentence about the text, until there is another text.
    void tell(const QString& note);

    /// Shows the diagram's statement again, where the text that was loaded stands in its place, or
    /// nothing does.
    void leaveLoadedText();

    void setWordsAction(QAction* action);
    void setLoadAction(QAction* action);
    void setRunAction(QAction* action);
    /// The person agrees to load what is offered.
    [[nodiscard]] QAction* loadAnywayAction() const { return m_loadAnyway; }
    /// The person gives up the text for the diagram's statement.
    [[nodiscard]] QAction* backAction() const { return m_goBack; }
    [[nodiscard]] FindBar* findBar() const { return m_find; }

    /// High enough for what wraps in the present width.
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// text(), isEdited() or isOffered() may have changed.
    void contentChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// Whose text the editor shows.
    enum class Content { Statement, Loaded, Typed };

    void buildBars();
    void buildOfferBar();
    void buildFindings();
    void buildEditor();
    QToolButton* addButton(QAction* action);
    void takeStatement(const QString& statement, const QString& problem);
    void showContent(Content content);
    void replaceText(const QString& wanted);
    void showFinding(int row);
    void textEdited();
    void refresh();
    void refreshFindings();
    void fitFindings();
    [[nodiscard]] const orv::Findings& shownFindings() const;
    [[nodiscard]] const QString& textOfFindings() const;
    [[nodiscard]] QString findingsTitle() const;
    [[nodiscard]] QString offerTitle() const;
    [[nodiscard]] bool isBlank() const;
    [[nodiscard]] bool isPlaced(std::size_t finding) const;
    [[nodiscard]] QString editorText() const;
    [[nodiscard]] QString stateText() const;

    QString m_statement;
    QString m_problem;
    QString m_loadedText;
    orv::Findings m_findings;
    QString m_offeredText;
    orv::Findings m_offeredFindings;  ///< those about muted parts come last
    int m_mutedCount = 0;             ///< of them
    orv::Findings m_listed;           ///< in the list
    Content m_content = Content::Statement;
    bool m_isReplacing = false;  ///< the editor's text is being replaced by the program
    bool m_isOffered = false;    ///< the text is the one that was offered
    bool m_isAsking = false;     ///< the person has not said yet what is to become of it
    bool m_isOutdated = false;   ///< the diagram has changed since something was typed

    QLabel* m_state;
    QLabel* m_refusal;
    QLabel* m_note;
    QFrame* m_changedBar;
    QFrame* m_offerBar;
    QLabel* m_offerText;
    QLabel* m_findingsTitle;
    QListWidget* m_findingsList;
    QToolButton* m_back;
    QToolButton* m_original;
    StatementEditor* m_editor;
    QHBoxLayout* m_header;
    QAction* m_loadAnyway;
    QAction* m_goBack;
    TextMarks* m_marks;
    FindBar* m_find;
    SqlHighlighter* m_highlighter = nullptr;
};

}  // namespace orvquery
