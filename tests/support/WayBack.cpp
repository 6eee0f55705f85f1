// SPDX-License-Identifier: MIT
#include "support/WayBack.h"

#include "core/Text.h"

namespace orvtest {

namespace {

QString toldOf(HostedBuilder& loaded) {
    QStringList texts;
    for (const orv::Finding& finding : loaded.builder.LoadReport()) {
        texts << finding.text + ": " + finding.what;
    }
    return "reported: " + texts.join(u'\n');
}

}  // namespace

QString faultOfLoading(HostedBuilder& written, HostedBuilder& loaded, StateForm form,
                       RecordedServices& services) {
    const Promise promise = promiseOf(written.builder);
    loaded.builder.LoadSQL(written.builder.GetSQLStatment());
    const QStringList report = loaded.findings();
    QString reason = promise.reported;
    if (reason.isEmpty()) reason = changedByWriting(loaded.builder);
    if (!reason.isEmpty() && report.isEmpty()) return "nothing is reported, but " + reason;
    if (!promise.lost.isEmpty()) return {};
    QString broken = brokenRule(loaded.builder);
    if (!broken.isEmpty()) return broken;
    if (!services.messages.isEmpty()) return "told: " + services.messages.join(u'\n');
    const QString states = difference(stateLines(written.builder, form, StateView::Reloaded),
                                      stateLines(loaded.builder, form, StateView::Present));
    if (!states.isEmpty()) return states + "\nreport: " + report.join(u'\n');
    const bool mayReport = !reason.isEmpty() || promise.mayReport;
    return mayReport || report.isEmpty() ? QString() : toldOf(loaded);
}

QString faultOfWayBack(HostedBuilder& first, HostedBuilder& second, HostedBuilder& third,
                       RecordedServices& services) {
    const bool keepsMeaning = first.builder.KeepMeaning();
    const QString written = first.builder.GetSQLStatment();
    const bool plain = isPlainState(first.builder);
    const QString from = first.builder.WorkArea->GetSQLStatment();
    QString found = faultOfLoading(first, second, StateForm::Normal, services);
    if (!found.isEmpty()) return "own text, loaded:\n" + found;
    if (!promiseOf(first.builder).lost.isEmpty()) return {};
    const QString text = second.builder.GetSQLStatment();
    if (keepsMeaning) {
        const QString again = second.builder.WorkArea->GetSQLStatment();
        // What was loaded before is in upper case but for parameters, which keep theirs.
        const bool isSame = again == from || again == orv::upperOutsideQuotes(from);
        if (!isSame) return "another FROM text:\n" + again;
        if (plain && text != written) return "another text:\n" + text;
    }
    // Where the meaning is not kept, a NOT in front of the first of several brackets keeps a group
    // of its own, so that there one group of one row may still come or go.
    const StateForm form = keepsMeaning ? StateForm::Exact : StateForm::Normal;
    found = faultOfLoading(second, third, form, services);
    if (!found.isEmpty()) return "the loaded one's text\n" + text + "\nloaded:\n" + found;
    if (keepsMeaning && third.builder.GetSQLStatment() != text) {
        return "loading what was loaded changes\n" + text + "\nto\n" +
               third.builder.GetSQLStatment();
    }
    return {};
}

}  // namespace orvtest
