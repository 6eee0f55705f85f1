// SPDX-License-Identifier: MIT
#include "window/QueryComparer.h"

#include "batch/TableIdentity.h"
#include "core/Error.h"
#include "documents/GivenQuery.h"
#include "names/KeptCase.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "tables/TableSource.h"
#include "text/Refusal.h"
#include "toolkit/Services.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>

namespace orvquery {

namespace {

/// A query in a file, on a diagram of its own that nobody sees.
class QueryFile {
public:
    QueryFile(const QString& path, const TorvQueryBuilder& like, const TableSource& source) {
        m_builder.setKeepMeaning(like.KeepMeaning());
        m_builder.setOperators(*like.Operators);
        connectTables(m_builder, source);
        const GivenQuery given = readGivenQuery(path);
        if (given.hasDiagram()) {
            m_builder.RestoreState(given.document->state());
        } else if (!given.isEmpty()) {
            const QString loaded = source.forLoading(given.statement);
            load(loaded);
            m_notHeld = findingsBefore(m_builder.LoadReport(), loaded, given.statement);
            layOut(*m_builder.WorkArea);
        }
    }

    [[nodiscard]] TorvQueryBuilder& builder() { return m_builder; }
    [[nodiscard]] const orv::Findings& notHeld() const { return m_notHeld; }
    [[nodiscard]] QString note() const {
        const int count = int(m_notHeld.size());
        if (count == 0) return {};
        return count == 1 ? QueryComparer::tr("1 part of this statement is not held as it stands.")
                          : QueryComparer::tr(
                                "%1 parts of this statement are not held as they "
                                "stand.")
                                .arg(count);
    }

private:
    void load(const QString& statement) {
        try {
            m_builder.LoadSQL(statement);
        } catch (const orv::Error& error) {
            throw orv::Error(refusalText(error.Message(), statement));
        }
    }

    TorvQueryBuilder m_builder;
    orv::Findings m_notHeld;
};

}  // namespace

QueryComparer::QueryComparer(TorvQueryBuilder& builder, std::function<const TableSource&()> source,
                             QWidget* window)
    : QObject(window),
      m_builder(builder),
      m_source(std::move(source)),
      m_window(window),
      m_action(new QAction(tr("Co&mpare with file..."), this)) {
    connect(m_action, &QAction::triggered, this, [this] { orv::guarded([&] { chooseFile(); }); });
}

void QueryComparer::chooseFile() {
    const QPointer<QueryComparer> self(this);
    const QString path =
        QFileDialog::getOpenFileName(m_window, tr("Compare with file"), QString(),
                                     tr("Queries (*.orvq *.sql *.json);;All files (*)"));
    if (self && !path.isEmpty()) compareWith(path);
}

void QueryComparer::compareWith(const QString& path) {
    const QPointer<QueryComparer> self(this);
    QString problem;
    try {
        show(path);
    } catch (const std::exception& error) {
        problem = QString::fromUtf8(error.what());
    }
    if (!self || problem.isEmpty()) return;
    const QString file = QFileInfo(path).fileName();
    const bool namesFile = problem.contains(path);
    orv::showMessage({m_window,
                      namesFile ? problem : tr("\"%1\" cannot be compared: %2").arg(file, problem),
                      QCoreApplication::applicationName(), orv::MessageIcon::Exclamation,
                      orv::MessageButtons::Ok});
}

// The file is what was there before, as one compares with an older query.
void QueryComparer::show(const QString& path) {
    const QPointer<QueryComparer> self(this);
    m_builder.CommitPendingEdits();
    CompareDialog::Side before;
    CompareDialog::Side after;
    std::vector<Difference> found;
    {
        QueryFile file(path, m_builder, m_source());
        if (!self) return;
        const orv::QueryState one = orv::readState(file.builder().SaveState());
        const orv::QueryState other = orv::readState(m_builder.SaveState());
        const QString problem = whyNotComparable(one, file.notHeld());
        if (!problem.isEmpty()) throw orv::Error(problem);
        found = differences(one, other, m_builder.KeepMeaning(), tableKeyOf(m_source()));
        // The query of the window is what its diagram holds.
        const auto notHeld = differencesNotHeld(file.notHeld(), {});
        found.insert(found.end(), notHeld.begin(), notHeld.end());
        const qreal ratio = m_window->devicePixelRatioF();
        before = {QFileInfo(path).fileName(),
                  markedDiagram(*file.builder().WorkArea, one, found, true, ratio), file.note()};
        after = {tr("Query on the diagram"),
                 markedDiagram(*m_builder.WorkArea, other, found, false, ratio), QString()};
    }
    const QPointer<CompareDialog> dialog = new CompareDialog(before, after, found, m_window);
    (void)orv::runDialog(*dialog);
    if (dialog) dialog->deleteLater();
}

}  // namespace orvquery
