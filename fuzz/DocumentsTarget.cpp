// SPDX-License-Identifier: MIT
// A state is restored as a whole or not at all, and what was restored is saved and restored again
// as it is; a query file is read or refused with a reason, and what was read is written and read
// again as it is. The first byte is what is read: "s" a state and "d" a query file, as they stand
// in the rest; "S" and "D" one of the samples, by number, with the changes that the rest says.
#include "FuzzBuilders.h"
#include "JsonEdits.h"
#include "Targets.h"
#include "criteria/ORVQDWherePanel.h"
#include "documents/QueryDocument.h"

namespace orvfuzz {

namespace {

using orvtest::HostedBuilder;
using orvtest::visibleState;

const QStringList& sampleStatements() {
    static const QStringList statements = {
        "select t.a, sum(u.x) as total from t left join u on t.a = u.a and t.b > 5 "
        "where t.c = 1 and (t.d like 'x%' or t.e is null) group by t.a having sum(u.x) > 5 "
        "order by t.a desc limit 10",
        "select distinct e.first_name, d.department || 'x' k from employee e, dept d "
        "where e.dept_no = d.dept_no and not (e.salary between 1 and 5)",
        "select \"my table\".\"my field\" as \"my name\" from \"my table\", s.t x "
        "where x.a in (1, 2) or exists (select 1 from u)",
        "select t.a from t",
    };
    return statements;
}

// Beside what the statements say: a procedure, a bent and a muted link, a muted condition, group
// and column.
void addWhatNoStatementSays(HostedBuilder& on) {
    on.builder.LoadSQL(
        "select t.a, t.b, u.x from t join u on t.a = u.a and t.b = u.y "
        "where t.c = 1 and t.d = 2 and (t.d = 3 or t.e is null) order by u.x");
    (void)on.addProc("PROC");
    on.builder.WorkArea->Links().at(0)->setBendPoints({{300, 50}, {350, 60}});
    on.builder.WorkArea->muteLink(on.builder.WorkArea->Links().at(1), true);
    const TorvQDWhereRows& rows = *on.builder.WherePanel->rootRow()->SubRows;
    for (const int muted : {1, 2}) rows.Row(muted)->SetMuted(true);
    on.grid()->SetMuted(2, true);
}

const QList<QByteArray>& sampleStates() {
    static const QList<QByteArray> states = [] {
        QList<QByteArray> saved;
        FuzzBuilders& builders = FuzzBuilders::emptied(true);
        HostedBuilder& on = builders.first;
        on.host.addProc("PROC", {"R1", "R2"},
                        TParams({{"MY_PARAM", ftInteger, ptInput}, {"OUT", ftString, ptOutput}}));
        for (const QString& statement : sampleStatements()) {
            on.builder.LoadSQL(statement);
            saved << on.builder.SaveState();
        }
        addWhatNoStatementSays(on);
        saved << on.builder.SaveState();
        on.builder.Clear();
        return saved;
    }();
    return states;
}

QList<QByteArray> sampleDocuments() {
    QList<QByteArray> texts;
    for (const QByteArray& state : sampleStates()) {
        orvquery::QueryDocument document;
        document.setState(state);
        document.database.name = QStringLiteral("Shop");
        document.database.address = QStringLiteral("postgresql://me@host/shop");
        if (!texts.isEmpty()) document.typed = QStringLiteral("select\n1");
        texts << orvquery::documentText(document);
    }
    return texts;
}

// Names and ticks are taken as the file has them: renaming by prefix may have changed entries that
// no box explains.
QString brokenBy(HostedBuilder& on) {
    namespace rules = orvtest::detail;
    for (const auto rule : {rules::brokenStackingRule, rules::brokenGridRule, rules::brokenLinkRule,
                            rules::brokenSelectionRule, rules::brokenSizeRule}) {
        QString broken = rule(on.builder);
        if (!broken.isEmpty()) return broken;
    }
    return {};
}

void restore(FuzzBuilders& builders, const QByteArray& state) {
    HostedBuilder& on = builders.first;
    on.builder.RestoreState(sampleStates().front());  // four times as fast as loading a statement
    const QByteArray before = visibleState(on.builder);
    try {
        on.builder.RestoreState(state);
    } catch (const orv::Error& error) {
        require(!error.Message().isEmpty(), "A state is refused without a reason.");
        require(visibleState(on.builder) == before, "A refused state has changed the diagram.");
        return;
    }
    const QString broken = brokenBy(on);
    require(broken.isEmpty(), "Restored: " + broken);
    const QByteArray saved = on.builder.SaveState();
    try {
        builders.second.builder.RestoreState(saved);
    } catch (const orv::Error& error) {
        throw Broken("The state that was saved is refused: " + error.Message() + '\n' +
                     QString::fromUtf8(saved));
    }
    require(builders.second.builder.SaveState() == saved,
            "A saved state comes back as another:\n" + QString::fromUtf8(saved) + '\n' +
                QString::fromUtf8(builders.second.builder.SaveState()));
}

void readDocument(FuzzBuilders& builders, const QByteArray& content) {
    const QString name = QStringLiteral("x.orvq");
    orvquery::QueryDocument document;
    try {
        document = orvquery::readDocument(content, name);
    } catch (const orv::Error& error) {
        require(error.Message().contains(name), "A refused file is not named.");
        return;
    }
    const QByteArray text = orvquery::documentText(document);
    try {
        const orvquery::QueryDocument again = orvquery::readDocument(text, name);
        require(orvquery::documentText(again) == text, "A query file is written in two ways.");
    } catch (const orv::Error& error) {
        throw Broken("The query file that was written is refused: " + error.Message() + '\n' +
                     QString::fromUtf8(text));
    }
    if (!document.query.isEmpty()) restore(builders, document.state());
}

QByteArray editedSample(const QList<QByteArray>& samples, QByteArrayView input) {
    ByteReader bytes(input);
    const QByteArray& sample = samples[bytes.below(int(samples.size()))];
    return editedJson(sample, bytes);
}

void runDocuments(QByteArrayView input) {
    if (input.isEmpty()) return;
    static const QList<QByteArray> states = sampleStates();
    static const QList<QByteArray> documents = sampleDocuments();
    const QByteArrayView rest = input.sliced(1);
    FuzzBuilders& builders = FuzzBuilders::emptied(true);
    switch (input.front()) {
    case 's': restore(builders, rest.toByteArray()); break;
    case 'd': readDocument(builders, rest.toByteArray()); break;
    case 'D': readDocument(builders, editedSample(documents, rest)); break;
    default: restore(builders, editedSample(states, rest));
    }
    builders.settle();
}

QList<QByteArray> documentsSeeds() {
    QList<QByteArray> seeds = {"s", "d", "s{}", "d{}"};
    for (const QByteArray& state : sampleStates()) seeds << 's' + state;
    for (const QByteArray& document : sampleDocuments()) seeds << 'd' + document;
    for (int number = 0; number < 64; ++number) {
        QByteArray edits(number % 2 ? "S" : "D");
        for (int at = 0; at < 4 + number / 2; ++at) {
            edits += char((number * 61 + at * at * 7 + at) % 256);
        }
        seeds << edits;
    }
    return seeds;
}

}  // namespace

Target documentsTarget() {
    return {"documents", true, runDocuments, documentsSeeds};
}

}  // namespace orvfuzz
