// SPDX-License-Identifier: MIT
#include "window/StatementPane.h"

#include "text/EditorText.h"
#include "text/Refusal.h"
#include "toolkit/Services.h"
#include "window/FindBar.h"
#include "window/SqlHighlighter.h"
#include "window/StatementEditor.h"
#include "window/TextMarks.h"

#include <QAction>
#include <QEvent>
#include <QFontDatabase>
#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTextBlock>
#include <QTextDocument>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace orvquery {

namespace {

constexpr int mostFindingLines = 5;
constexpr qsizetype longestQuote = 40;

QFrame* makeBar(QWidget* parent) {
    auto* bar = new QFrame(parent);
    bar->setFrameShape(QFrame::StyledPanel);
    bar->setAutoFillBackground(true);
    bar->setBackgroundRole(QPalette::ToolTipBase);
    bar->setForegroundRole(QPalette::ToolTipText);
    return bar;
}

// The place itself is a click away.
QString shortQuote(const QString& text) {
    const QString line = text.simplified();
    return line.size() <= longestQuote ? line : line.left(longestQuote) + QChar(0x2026);
}

QLabel* makePlainLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    return label;
}

}  // namespace

StatementPane::StatementPane(QWidget* parent)
    : QWidget(parent),
      m_state(makePlainLabel(this)),
      m_refusal(makePlainLabel(this)),
      m_note(makePlainLabel(this)),
      m_changedBar(makeBar(this)),
      m_offerBar(makeBar(this)),
      m_offerText(makePlainLabel(m_offerBar)),
      m_findingsTitle(makePlainLabel(this)),
      m_findingsList(new QListWidget(this)),
      m_back(new QToolButton(this)),
      m_original(new QToolButton(this)),
      m_editor(new StatementEditor(this)),
      m_header(new QHBoxLayout),
      m_loadAnyway(new QAction(tr("Load anyway"), this)),
      m_goBack(new QAction(tr("Back to the statement"), this)),
      m_marks(new TextMarks(m_editor)),
      m_find(new FindBar(m_editor, m_marks, this)) {
    buildEditor();
    buildBars();
    buildOfferBar();
    buildFindings();

    auto* title = new QLabel(tr("&Statement"), this);
    title->setBuddy(m_editor);
    m_header->addWidget(title);
    m_header->addStretch(1);

    // Below the text, which stays where it is when they come.
    auto* ways = new QHBoxLayout;
    ways->addWidget(m_state, 1);
    ways->addStretch();
    ways->addWidget(m_original);
    ways->addWidget(m_back);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(m_header);
    layout->addWidget(m_changedBar);
    layout->addWidget(m_refusal);
    layout->addWidget(m_findingsTitle);
    layout->addWidget(m_findingsList);
    layout->addWidget(m_offerBar);
    layout->addWidget(m_note);
    layout->addWidget(m_editor, 1);
    layout->addLayout(ways);
    layout->addWidget(m_find);
    refresh();
}

void StatementPane::buildEditor() {
    m_editor->setObjectName(QStringLiteral("statement"));
    m_editor->setAccessibleName(tr("Statement"));
    m_editor->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    // Tab would end in the editor for those who work without a mouse.
    m_editor->setTabChangesFocus(true);
    m_highlighter =
        new SqlHighlighter(m_editor->document(), m_editor->palette().color(QPalette::Base));
    connect(m_editor, &QPlainTextEdit::textChanged, this, &StatementPane::textEdited);
    // A drop ends as an edit does, even when nothing was inserted.
    connect(m_editor, &StatementEditor::refused, this, &StatementPane::tell, Qt::QueuedConnection);
}

void StatementPane::buildBars() {
    m_state->setObjectName(QStringLiteral("statementState"));
    m_state->setForegroundRole(QPalette::PlaceholderText);
    m_state->setWordWrap(true);
    m_refusal->setObjectName(QStringLiteral("refusal"));
    m_refusal->setWordWrap(true);
    m_note->setObjectName(QStringLiteral("statementNote"));
    m_note->setWordWrap(true);
    m_note->hide();

    m_changedBar->setObjectName(QStringLiteral("changedBar"));
    auto* text = new QLabel(tr("The diagram has changed."), m_changedBar);
    text->setWordWrap(true);
    auto* replace = new QPushButton(tr("Show its statement"), m_changedBar);
    replace->setObjectName(QStringLiteral("showStatement"));
    auto* keep = new QPushButton(tr("Keep my text"), m_changedBar);
    keep->setObjectName(QStringLiteral("keepText"));
    auto* layout = new QHBoxLayout(m_changedBar);
    layout->setContentsMargins(6, 2, 2, 2);
    layout->addWidget(text, 1);
    layout->addWidget(replace);
    layout->addWidget(keep);
    connect(replace, &QPushButton::clicked, this, [this] { showContent(Content::Statement); });
    connect(keep, &QPushButton::clicked, this, [this] {
        m_isOutdated = false;
        m_editor->setFocus();
        refresh();
    });

    m_back->setObjectName(QStringLiteral("backToStatement"));
    m_back->setDefaultAction(m_goBack);
    m_goBack->setToolTip(tr("Give up the text and show the diagram's statement"));
    connect(m_goBack, &QAction::triggered, this, [this] { showContent(Content::Statement); });
    m_original->setObjectName(QStringLiteral("showLoaded"));
    m_original->setText(tr("Show the loaded text"));
    connect(m_original, &QToolButton::clicked, this, [this] { showContent(Content::Loaded); });
}

void StatementPane::buildOfferBar() {
    m_offerBar->setObjectName(QStringLiteral("offerBar"));
    m_loadAnyway->setObjectName(QStringLiteral("loadAnywayAction"));
    m_offerText->setObjectName(QStringLiteral("offerText"));
    m_offerText->setWordWrap(true);
    auto* load = new QPushButton(tr("Load &anyway"), m_offerBar);
    load->setObjectName(QStringLiteral("loadAnyway"));
    load->setToolTip(tr("Put into the diagram what it can hold"));
    auto* keep = new QPushButton(tr("&Keep as text"), m_offerBar);
    keep->setObjectName(QStringLiteral("keepAsText"));
    keep->setToolTip(tr("Leave the diagram as it is"));
    auto* layout = new QHBoxLayout(m_offerBar);
    layout->setContentsMargins(6, 2, 2, 2);
    layout->addWidget(m_offerText, 1);
    layout->addWidget(load);
    layout->addWidget(keep);
    connect(load, &QPushButton::clicked, m_loadAnyway, &QAction::trigger);
    connect(keep, &QPushButton::clicked, this, [this] {
        m_isAsking = false;
        m_editor->setFocus();
        refresh();
    });
}

void StatementPane::buildFindings() {
    m_findingsList->setObjectName(QStringLiteral("findings"));
    m_findingsList->setAccessibleName(tr("What was not loaded"));
    m_findingsList->setWordWrap(true);
    m_findingsTitle->setObjectName(QStringLiteral("findingsTitle"));
    m_findingsTitle->setBuddy(m_findingsList);
    m_findingsTitle->setWordWrap(true);
    connect(m_findingsList, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { showFinding(m_findingsList->row(item)); });
    connect(m_findingsList, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { showFinding(m_findingsList->row(item)); });
}

void StatementPane::setStatement(const QString& statement) {
    takeStatement(statement, QString());
}

void StatementPane::setProblem(const QString& reason) {
    takeStatement(QString(), reason);
}

void StatementPane::takeStatement(const QString& statement, const QString& problem) {
    const bool isNew = statement != m_statement || problem != m_problem;
    m_statement = statement;
    m_problem = problem;
    if (m_content == Content::Typed) {
        m_isOutdated = m_isOutdated || isNew;
        textEdited();
    } else if (isNew || m_content == Content::Statement) {
        showContent(Content::Statement);
    }
}

void StatementPane::setLoaded(const QString& text, const orv::Findings& findings) {
    m_loadedText = text;
    m_findings = findings;
    m_content = Content::Statement;
    m_isOutdated = false;
    m_isOffered = false;
    m_offeredText.clear();
    m_refusal->clear();
    refresh();
}

void StatementPane::setLoadedAgain(const LoadedText& loaded) {
    leaveLoadedText();
    m_loadedText = loaded.text;
    m_findings = loaded.findings;
    refresh();
}

void StatementPane::setOffered(const QString& text, const orv::Findings& findings,
                               const QStringList& mutedParts) {
    m_offeredText = text;
    m_offeredFindings = findings;
    m_mutedCount = int(mutedParts.size());
    for (const QString& part : mutedParts) {
        m_offeredFindings.push_back(
            {0, 0, part, tr("It is muted, so the text does not have it; loading removes it.")});
    }
    m_content = Content::Typed;
    m_isOutdated = false;
    m_isOffered = true;
    m_isAsking = true;
    m_refusal->clear();
    replaceText(withSingleBreaks(text));
    refresh();
}

void StatementPane::setRefused(const QString& text, const QString& reason) {
    if (withSingleBreaks(text) != editorText()) {
        m_content = Content::Typed;
        replaceText(withSingleBreaks(text));
    }
    m_refusal->setText(tr("Not loaded: ") + refusalText(reason, text));
    m_findings.clear();  // they were about another text
    m_isOffered = false;
    m_offeredText.clear();
    m_isOutdated = false;
    refresh();
}

void StatementPane::forgetLoaded() {
    m_loadedText.clear();
    m_findings.clear();
    m_isOffered = false;
    m_offeredText.clear();
    m_refusal->clear();
    leaveLoadedText();
    refresh();
}

void StatementPane::forgetHistory() {
    m_editor->document()->clearUndoRedoStacks();
}

void StatementPane::setTyped(const QString& text) {
    if (text.trimmed().isEmpty()) return showStatement();
    replaceText(withSingleBreaks(text));
    textEdited();
}

void StatementPane::showStatement() {
    showContent(Content::Statement);
}

void StatementPane::tell(const QString& note) {
    m_note->setText(note);
    m_note->setVisible(!note.isEmpty());
}

void StatementPane::leaveLoadedText() {
    const bool isEmptied = m_content == Content::Statement && isBlank();
    if (m_content == Content::Loaded || isEmptied) showContent(Content::Statement);
}

bool StatementPane::hasQuery() const {
    return !m_statement.isEmpty() || !m_problem.isEmpty();
}

bool StatementPane::isBlank() const {
    return editorText().trimmed().isEmpty();
}

QString StatementPane::text() const {
    switch (m_content) {
    case Content::Statement: return m_statement;
    case Content::Loaded: return m_loadedText;
    case Content::Typed: break;
    }
    return editorText();
}

QString StatementPane::problem() const {
    return m_content == Content::Statement ? m_problem : QString();
}

void StatementPane::showContent(Content content) {
    m_content = content;
    m_isOutdated = false;
    m_isOffered = false;
    if (content == Content::Statement) m_refusal->clear();
    replaceText(withSingleBreaks(text()));
    refresh();
}

// The edit keeps its history, so that Undo brings back what was typed.
void StatementPane::replaceText(const QString& wanted) {
    if (wanted == editorText()) return;
    tell(QString());
    m_isReplacing = true;
    QTextCursor cursor(m_editor->document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(wanted);
    m_isReplacing = false;
    m_editor->moveCursor(QTextCursor::Start);
}

void StatementPane::showFinding(int row) {
    const orv::Findings& findings = shownFindings();
    if (row < 0 || static_cast<std::size_t>(row) >= findings.size()) return;
    // What was typed meanwhile does not give way to what it is about.
    if (!isPlaced(std::size_t(row)) || (m_content == Content::Typed && !m_isOffered)) return;
    const orv::Finding finding = findings[static_cast<std::size_t>(row)];
    if (!m_isOffered) showContent(Content::Loaded);
    const EditorPlaces place(textOfFindings());
    QTextCursor cursor(m_editor->document());
    cursor.setPosition(place(finding.start));
    cursor.setPosition(place(finding.start + finding.length), QTextCursor::KeepAnchor);
    m_editor->setTextCursor(cursor);
    m_editor->ensureCursorVisible();
}

void StatementPane::textEdited() {
    if (m_isReplacing) return;
    tell(QString());
    const QString typed = editorText();
    m_isOffered = false;
    // What is emptied may be filled again, and leads nowhere by itself.
    if (typed == withSingleBreaks(m_statement) || (hasQuery() && typed.trimmed().isEmpty())) {
        m_content = Content::Statement;
        m_isOutdated = false;
        m_refusal->clear();
    } else if (!m_offeredText.isEmpty() && typed == withSingleBreaks(m_offeredText)) {
        m_content = Content::Typed;
        m_isOffered = true;
    } else if (!m_findings.empty() && typed == withSingleBreaks(m_loadedText)) {
        m_content = Content::Loaded;
        m_isOutdated = false;
    } else {
        m_content = Content::Typed;
    }
    refresh();
}

// What is seen follows from the members alone.
void StatementPane::refresh() {
    m_state->setText(stateText());
    m_state->setVisible(!m_state->text().isEmpty());
    m_refusal->setVisible(!m_refusal->text().isEmpty());
    m_changedBar->setVisible(m_isOutdated);
    m_offerBar->setVisible(m_isOffered && m_isAsking);
    m_offerText->setText(hasQuery() ? tr("This text is not loaded; the diagram has another query.")
                                    : tr("This text is not loaded; the diagram is empty."));
    const bool isEmptied = m_content == Content::Statement && !m_statement.isEmpty() && isBlank();
    m_back->setVisible(m_content == Content::Loaded || isEmptied ||
                       (m_content == Content::Typed && hasQuery()));
    m_original->setVisible(m_content == Content::Statement && !m_findings.empty());
    refreshFindings();

    const bool hasProblem = m_content == Content::Statement && !m_problem.isEmpty();
    QString placeholder = tr("Type a SELECT statement, or choose tables from the list.");
    if (isEmptied) placeholder = tr("Type a SELECT statement. The diagram keeps its own.");
    m_editor->setPlaceholderText(hasProblem ? m_problem : placeholder);
    if (m_editor->font().italic() != hasProblem) {
        QFont font = m_editor->font();
        font.setItalic(hasProblem);
        m_editor->setFont(font);
    }
    Q_EMIT contentChanged();
}

const orv::Findings& StatementPane::shownFindings() const {
    return m_isOffered ? m_offeredFindings : m_findings;
}

const QString& StatementPane::textOfFindings() const {
    return m_isOffered ? m_offeredText : m_loadedText;
}

// What is muted has no place in the text.
bool StatementPane::isPlaced(std::size_t finding) const {
    return !m_isOffered || finding + std::size_t(m_mutedCount) < m_offeredFindings.size();
}

QString StatementPane::offerTitle() const {
    const int count = int(m_offeredFindings.size()) - m_mutedCount;
    QStringList parts;
    if (count > 0) {
        parts += count == 1
                     ? tr("1 part of the statement would not be held as it stands")
                     : tr("%1 parts of the statement would not be held as they stand").arg(count);
    }
    if (m_mutedCount > 0) {
        parts += m_mutedCount == 1
                     ? tr("1 muted part of the diagram would be removed")
                     : tr("%1 muted parts of the diagram would be removed").arg(m_mutedCount);
    }
    return parts.join(QStringLiteral("; ")) + u':';
}

QString StatementPane::findingsTitle() const {
    if (m_isOffered) return offerTitle();
    const int count = int(shownFindings().size());
    return count == 1
               ? tr("1 part of the loaded statement is not held as it stands:")
               : tr("%1 parts of the loaded statement are not held as they stand:").arg(count);
}

void StatementPane::refreshFindings() {
    const orv::Findings& findings = shownFindings();
    if (findings != m_listed) {
        m_listed = findings;
        m_findingsList->clear();
        for (const orv::Finding& finding : findings) {
            m_findingsList->addItem(u'"' + shortQuote(finding.text) + QStringLiteral("\": ") +
                                    finding.what);
        }
    }
    m_findingsTitle->setText(findingsTitle());
    m_findingsTitle->setVisible(!findings.empty());
    m_findingsList->setVisible(!findings.empty());
    fitFindings();

    orv::Findings marked;
    if (m_isOffered || m_content == Content::Loaded) marked = findings;
    if (m_isOffered) marked.resize(findings.size() - std::size_t(m_mutedCount));
    const EditorPlaces place(marked.empty() ? QString() : textOfFindings());
    for (orv::Finding& finding : marked) {
        const int start = place(finding.start);
        finding.length = place(finding.start + finding.length) - start;
        finding.start = start;
    }
    m_marks->setFindings(marked);
}

// As high as the findings need in this width, within bounds.
void StatementPane::fitFindings() {
    const QFontMetrics metrics = m_findingsList->fontMetrics();
    const QRect room(0, 0, m_findingsList->viewport()->width() - 2 * metrics.averageCharWidth(),
                     QWIDGETSIZE_MAX);
    int height = 0;
    for (int row = 0; row < m_findingsList->count(); ++row) {
        const QString text = m_findingsList->item(row)->text();
        height += metrics.boundingRect(room, Qt::TextWordWrap, text).height();
    }
    m_findingsList->setFixedHeight(qMin(height, mostFindingLines * metrics.lineSpacing()) +
                                   2 * m_findingsList->frameWidth() + metrics.descent());
}

void StatementPane::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitFindings();
    // Narrower, what wraps is higher.
    if (event->oldSize().width() != width()) updateGeometry();
}

QSize StatementPane::minimumSizeHint() const {
    const QSize size = QWidget::minimumSizeHint();
    return {size.width(), std::max(size.height(), layout()->totalMinimumHeightForWidth(width()))};
}

// A desktop may turn dark while the program runs.
void StatementPane::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || m_highlighter == nullptr) return;
    // New formats are no edit.
    m_isReplacing = true;
    m_highlighter->setBackground(m_editor->palette().color(QPalette::Base));
    m_isReplacing = false;
}

QString StatementPane::stateText() const {
    switch (m_content) {
    case Content::Statement: return {};
    case Content::Loaded: return tr("as it was loaded");
    case Content::Typed: break;
    }
    if (m_isOffered && !m_isAsking) return tr("kept as text, not loaded");
    return tr("edited, not loaded");
}

// toPlainText() would turn no-break spaces, which may be part of a name, into blanks.
QString StatementPane::editorText() const {
    QString text = m_editor->document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    return text;
}

void StatementPane::setWordsAction(QAction* action) {
    addButton(action)->setObjectName(QStringLiteral("wordsButton"));
}

void StatementPane::setLoadAction(QAction* action) {
    addButton(action)->setObjectName(QStringLiteral("loadButton"));
}

void StatementPane::setRunAction(QAction* action) {
    addButton(action)->setObjectName(QStringLiteral("runButton"));
}

QToolButton* StatementPane::addButton(QAction* action) {
    auto* button = new QToolButton(this);
    button->setDefaultAction(action);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setFocusPolicy(Qt::TabFocus);
    m_header->addWidget(button);
    return button;
}

}  // namespace orvquery
