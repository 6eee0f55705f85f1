// SPDX-License-Identifier: MIT
#include "window/TrialLoad.h"

#include "names/KeptCase.h"
#include "querybuilder/ORVQDWindow.h"
#include "tables/Host.h"
#include "toolkit/Services.h"

namespace orvquery {

namespace {

constexpr qsizetype longestName = 40;
constexpr qsizetype mostReasons = 3;

/// For as long as it lives nobody hears what a control has to say; the load that follows says it
/// again. What others say goes on.
class Silence {
public:
    explicit Silence(const QWidget& control) : m_control(control) {
        m_before = orv::setMessageService(
            [this](const orv::MessageRequest& request) { return answer(request); });
    }
    ~Silence() { orv::setMessageService(m_before); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    orv::MessageAnswer answer(const orv::MessageRequest& request) {
        if (request.parent == &m_control || m_control.isAncestorOf(request.parent)) {
            return orv::MessageAnswer::Ok;
        }
        // Shown by the service that was there, which may be the usual one.
        const orv::MessageService own = orv::setMessageService(m_before);
        const orv::MessageAnswer answer = orv::showMessage(request);
        orv::setMessageService(own);
        return answer;
    }

    const QWidget& m_control;
    orv::MessageService m_before;
};

// That there is no table for a field follows from there being no table.
QString refusal(const orv::Findings& findings) {
    QStringList reasons;
    for (const orv::Finding& finding : findings) {
        if (finding.what.startsWith(QStringLiteral("No table on the diagram"))) continue;
        const QString name = finding.text.simplified();
        const bool isLong = name.size() > longestName;
        reasons += isLong || finding.what.contains(QStringLiteral("nothing is loaded"))
                       ? finding.what
                       : u'"' + name + QStringLiteral("\": ") + finding.what;
        if (reasons.size() == mostReasons) break;
    }
    return reasons.isEmpty() ? QStringLiteral("There is no table in it that could be shown.")
                             : reasons.join(u'\n');
}

}  // namespace

TrialLoad tryLoading(const TorvQueryBuilder& control, const TableSource& tables,
                     const QString& text) {
    TorvQueryBuilder trial;
    const Silence silence(trial);
    trial.setOperators(*control.Operators);
    trial.setKeepMeaning(control.KeepMeaning());
    connectTables(trial, tables);
    const QString loaded = tables.forLoading(text);
    trial.LoadSQL(loaded);
    TrialLoad result{findingsBefore(trial.LoadReport(), loaded, text), {}};
    if (trial.ListOfTables->TablesCount() == 0) result.refusal = refusal(result.findings);
    return result;
}

}  // namespace orvquery
