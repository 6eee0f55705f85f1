// SPDX-License-Identifier: MIT
#include "window/WhyNoRows.h"

#include "criteria/ORVQDWherePanel.h"
#include "norows/Verdict.h"
#include "querybuilder/ORVQDWindow.h"
#include "toolkit/Services.h"
#include "window/RunController.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>

namespace orvquery {

namespace {

// The condition of that text, at that place or, when it has moved, anywhere.
TorvQDWhereRow* findRow(TorvQDWhereRow& root, const QList<int>& path, const QString& text) {
    TorvQDWhereRow* row = &root;
    for (const int index : path) row = row != nullptr ? row->SubRows->Row(index) : nullptr;
    if (row != nullptr && conditionText(*row) == text) return row;
    for (int index = 0; index < root.SubRows->GetCount(); ++index) {
        TorvQDWhereRow* sub = root.SubRows->Row(index);
        if (conditionText(*sub) == text) return sub;
        if (TorvQDWhereRow* found = findRow(*sub, {}, text)) return found;
    }
    return nullptr;
}

QString capital(QString text) {
    text[0] = text[0].toUpper();
    return text;
}

QString goneText(const QueryPart& part) {
    return WhyNoRows::tr("%1 is not in the query as it was.").arg(capital(partWords(part)));
}

QString alreadyText(const QueryPart& part) {
    return WhyNoRows::tr("%1 is muted already.").arg(capital(partWords(part)));
}

QString doneText(const QueryPart& part) {
    return WhyNoRows::tr("%1 is muted now. Run the query (F5) to see its rows.")
        .arg(capital(partWords(part)));
}

}  // namespace

WhyNoRows::WhyNoRows(TorvQueryBuilder& builder, RunController& running, QWidget* window)
    : QObject(window),
      m_builder(builder),
      m_running(running),
      m_window(window),
      m_action(new QAction(tr("Why &no rows?"), this)) {
    m_action->setObjectName(QStringLiteral("whyNoRowsAction"));
    m_action->setShortcut(QKeySequence(QStringLiteral("Ctrl+F5")));
    connect(m_action, &QAction::triggered, this, [this] { orv::guarded([this] { ask(); }); });
    setDatabase(nullptr);
}

void WhyNoRows::setDatabase(const QueryableSource* database) {
    if (m_dialog) m_dialog->reject();
    m_action->setEnabled(database != nullptr);
    m_action->setToolTip(
        database != nullptr
            ? tr("Find out which condition or join keeps the rows away (Ctrl+F5)")
            : tr("Nothing can be tried: no database is open, only its tables are known."));
}

void WhyNoRows::ask() {
    const QPointer<WhyNoRows> self(this);
    std::optional<WhyNoRowsDialog::SourceMaker> makeSource = m_running.prepareTrials();
    if (!self || !makeSource) return;
    if (m_dialog) m_dialog->reject();
    m_dialog = new WhyNoRowsDialog(
        std::make_unique<Inquiry>(std::make_unique<TrialQuery>(m_builder)), *std::move(makeSource),
        [this](const QueryPart& part) { return mute(part); }, m_window);
    m_dialog->addActions(m_common);
    m_dialog->addAction(m_action);
    m_dialog->show();
    m_dialog->start();
}

// The query may have become another one meanwhile.
QString WhyNoRows::mute(const QueryPart& part) {
    m_builder.CommitPendingEdits();
    return part.isCondition() ? muteCondition(part) : muteLink(part);
}

QString WhyNoRows::muteCondition(const QueryPart& part) {
    TorvQDWherePanel* panel =
        part.kind == QueryPart::Kind::Condition ? m_builder.WherePanel : m_builder.HavingPanel;
    TorvQDWhereRow* row = findRow(*panel->rootRow(), part.path, part.ownText);
    if (row == nullptr || row->parentRow() == nullptr) return goneText(part);
    if (row->isMutedWithin()) return alreadyText(part);
    m_builder.PageCtrl->setCurrentWidget(panel->parentWidget());
    panel->setCurrentElement(row->Controls.front().get());
    panel->MuteCondition();
    return doneText(part);
}

QString WhyNoRows::muteLink(const QueryPart& part) {
    bool isMuted = false;
    for (TorvQDLink* link : m_builder.WorkArea->Links()) {
        if (linkText(*link) != part.ownText) continue;
        isMuted = link->Muted;
        if (isMuted) continue;
        m_builder.WorkArea->selectObject(link);
        m_builder.WorkArea->muteLink(link, true);
        return doneText(part);
    }
    return isMuted ? alreadyText(part) : goneText(part);
}

}  // namespace orvquery
