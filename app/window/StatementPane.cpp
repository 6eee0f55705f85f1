// SPDX-License-Identifier: MIT
#include "window/StatementPane.h"

#include "toolkit/Services.h"
#include "window/SqlHighlighter.h"

#include <QAction>
#include <QFontDatabase>
#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QToolButton>
#include <QVBoxLayout>

namespace orvquery {

namespace {

constexpr int mostFindingLines = 5;
constexpr qsizetype longestQuote = 40;

// The editor counts each line break as one character.
QString withSingleBreaks(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

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
      m_changedBar(makeBar(this)),
      m_findingsTitle(makePlainLabel(this)),
      m_findingsList(new QListWidget(this)),
      m_back(new QToolButton(this)),
      m_editor(new QPlainTextEdit(this)),
      m_header(new QHBoxLayout) {
    buildEditor();
    buildBars();

    auto* title = new QLabel(tr("&Statement"), this);
    title->setBuddy(m_editor);
    m_header->addWidget(title);
    m_header->addSpacing(8);
    m_header->addWidget(m_state, 1);
    m_header->addWidget(m_back);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(m_header);
    layout->addWidget(m_changedBar);
    layout->addWidget(m_refusal);
    layout->addWidget(m_findingsTitle);
    layout->addWidget(m_findingsList);
    layout->addWidget(m_editor, 1);
    refresh();
}

void StatementPane::buildEditor() {
    m_editor->setObjectName(QStringLiteral("statement"));
    m_editor->setAccessibleName(tr("Statement"));
    m_editor->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    // Tab would end in the editor for those who work without a mouse.
    m_editor->setTabChangesFocus(true);
    new SqlHighlighter(m_editor->document(), m_editor->palette().color(QPalette::Base));
    connect(m_editor, &QPlainTextEdit::textChanged, this, &StatementPane::textEdited);
}

void StatementPane::buildBars() {
    m_state->setObjectName(QStringLiteral("statementState"));
    m_state->setForegroundRole(QPalette::PlaceholderText);
    m_refusal->setObjectName(QStringLiteral("refusal"));
    m_refusal->setWordWrap(true);

    m_changedBar->setObjectName(QStringLiteral("changedBar"));
    auto* text = new QLabel(tr("The diagram has changed."), m_changedBar);
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

    m_findingsList->setObjectName(QStringLiteral("findings"));
    m_findingsList->setAccessibleName(tr("What was not loaded"));
    m_findingsList->setWordWrap(true);
    m_findingsTitle->setObjectName(QStringLiteral("findingsTitle"));
    m_findingsTitle->setBuddy(m_findingsList);
    connect(m_findingsList, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { showFinding(m_findingsList->row(item)); });
    connect(m_findingsList, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { showFinding(m_findingsList->row(item)); });

    m_back->setObjectName(QStringLiteral("backToStatement"));
    m_back->setText(tr("Back to the statement"));
    connect(m_back, &QToolButton::clicked, this, [this] { showContent(Content::Statement); });
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
    m_refusal->clear();
    m_findingsList->clear();
    for (const orv::Finding& finding : findings) {
        m_findingsList->addItem(u'"' + shortQuote(finding.text) + QStringLiteral("\": ") +
                                finding.what);
    }
    refresh();
}

void StatementPane::setRefused(const QString& text, const QString& reason) {
    if (withSingleBreaks(text) != editorText()) {
        m_content = Content::Typed;
        replaceText(withSingleBreaks(text));
    }
    m_refusal->setText(tr("Not loaded: ") + reason);
    m_findings.clear();  // they were about another text
    m_findingsList->clear();
    m_isOutdated = false;
    refresh();
}

void StatementPane::forgetLoaded() {
    m_loadedText.clear();
    m_findings.clear();
    m_findingsList->clear();
    m_refusal->clear();
    if (m_content == Content::Loaded) showContent(Content::Statement);
    refresh();
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
    if (content == Content::Statement) m_refusal->clear();
    replaceText(withSingleBreaks(text()));
    refresh();
}

// The edit keeps its history, so that Undo brings back what was typed.
void StatementPane::replaceText(const QString& wanted) {
    if (wanted == editorText()) return;
    m_isReplacing = true;
    QTextCursor cursor(m_editor->document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(wanted);
    m_isReplacing = false;
    m_editor->moveCursor(QTextCursor::Start);
}

void StatementPane::showFinding(int row) {
    if (row < 0 || static_cast<std::size_t>(row) >= m_findings.size()) return;
    const orv::Finding& finding = m_findings[static_cast<std::size_t>(row)];
    showContent(Content::Loaded);
    const auto place = [this](int position) {
        return int(withSingleBreaks(m_loadedText.left(position)).size());
    };
    QTextCursor cursor(m_editor->document());
    cursor.setPosition(place(finding.start));
    cursor.setPosition(place(finding.start + finding.length), QTextCursor::KeepAnchor);
    m_editor->setTextCursor(cursor);
    m_editor->ensureCursorVisible();
}

void StatementPane::textEdited() {
    if (m_isReplacing) return;
    const QString typed = editorText();
    if (typed == withSingleBreaks(m_statement)) {
        m_content = Content::Statement;
        m_isOutdated = false;
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
    m_refusal->setVisible(!m_refusal->text().isEmpty());
    m_changedBar->setVisible(m_isOutdated);
    m_back->setVisible(m_content == Content::Loaded);

    const int count = int(m_findings.size());
    m_findingsTitle->setText(count == 1
                                 ? tr("1 part of the loaded statement is not held as it stands:")
                                 : tr("%1 parts of the loaded statement are not held as they "
                                      "stand:")
                                       .arg(count));
    m_findingsTitle->setVisible(count > 0);
    m_findingsList->setVisible(count > 0);
    fitFindings();

    const bool hasProblem = m_content == Content::Statement && !m_problem.isEmpty();
    m_editor->setPlaceholderText(hasProblem ? m_problem
                                            : tr("Type a SELECT statement, or choose "
                                                 "tables from the list."));
    if (m_editor->font().italic() == hasProblem) return;
    QFont font = m_editor->font();
    font.setItalic(hasProblem);
    m_editor->setFont(font);
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
}

QString StatementPane::stateText() const {
    switch (m_content) {
    case Content::Statement: return {};
    case Content::Loaded: return tr("as it was loaded");
    case Content::Typed: break;
    }
    return tr("edited, not loaded");
}

// toPlainText() would turn no-break spaces, which may be part of a name, into blanks.
QString StatementPane::editorText() const {
    QString text = m_editor->document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    return text;
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
