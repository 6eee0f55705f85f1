// SPDX-License-Identifier: MIT
#include "window/WordsPanel.h"

#include "core/Error.h"
#include "querybuilder/ORVQDStateReader.h"
#include "querybuilder/ORVQDWindow.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QScrollBar>
#include <QTextBrowser>
#include <QToolButton>
#include <QVBoxLayout>

namespace orvquery {

namespace {

constexpr int retryMs = 50;
constexpr int listIndentPx = 20;

}  // namespace

WordsPanel::WordsPanel(TorvQueryBuilder& builder, std::function<bool()> isBusy, QWidget* parent)
    : QWidget(parent),
      m_builder(builder),
      m_isBusy(std::move(isBusy)),
      m_switch(new QAction(tr("In &words"), this)),
      m_text(new QTextBrowser(this)) {
    m_text->setObjectName(QStringLiteral("words"));
    m_text->setAccessibleName(tr("The query in words"));
    m_text->setOpenLinks(false);
    m_text->document()->setIndentWidth(listIndentPx);
    m_text->setTabChangesFocus(true);
    auto* title = new QLabel(tr("In wor&ds"), this);
    title->setBuddy(m_text);
    auto* copy = new QToolButton(this);
    copy->setObjectName(QStringLiteral("copyWords"));
    copy->setText(tr("Copy"));
    copy->setToolTip(tr("Copy the words as plain text"));
    copy->setFocusPolicy(Qt::TabFocus);
    connect(copy, &QToolButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(m_plainText); });
    auto* header = new QHBoxLayout;
    header->addWidget(title, 1);
    header->addWidget(copy);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(header);
    layout->addWidget(m_text, 1);

    m_switch->setCheckable(true);
    m_switch->setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+W")));
    m_switch->setToolTip(tr("Say in plain English what the query asks for (Ctrl+Shift+W)"));
    connect(m_switch, &QAction::toggled, this, &QWidget::setVisible);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &WordsPanel::refresh);
    hide();
}

void WordsPanel::queryChanged() {
    if (isVisible() && !m_timer.isActive()) m_timer.start(0);
}

void WordsPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();
}

void WordsPanel::refresh() {
    if (!isVisible()) return;
    if (m_isBusy()) {
        m_timer.start(retryMs);
        return;
    }
    const Explanation explanation = words();
    const QString text = richText(explanation);
    if (text == m_shown) return;
    m_shown = text;
    m_plainText = plainText(explanation);
    const int position = m_text->verticalScrollBar()->value();
    m_text->setHtml(text);
    m_text->verticalScrollBar()->setValue(position);
}

Explanation WordsPanel::words() const {
    try {
        const orv::QueryState state = orv::readState(m_builder.SaveState());
        return explain(state, m_builder.KeepMeaning());
    } catch (const orv::Error& error) {
        return {{{tr("In words"), {{0, error.Message()}}}}};
    }
}

}  // namespace orvquery
