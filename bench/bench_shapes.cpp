// SPDX-License-Identifier: MIT
// Deep and wide statements: what each step costs, and how it grows with the text that it reads or
// writes; and a usual large statement beside a database's own compiler of statements.
#include "Database.h"
#include "Hosted.h"
#include "Statements.h"
#include "criteria/ORVQDWherePanel.h"
#include "criteria/ORVQDWhereRows.h"
#include "diagram/ORVQDFloatTable.h"
#include "workarea/ORVQDFloatPanel.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <vector>

namespace {

/// A family of statements that grow.
struct Shape {
    const char* name;
    QString (*text)(int size);
    int smallest;
    int largest;
};

const std::vector<Shape>& shapes() {
    static const std::vector<Shape> all = {
        {"nested_groups", bench::nestedGroups, 125, 500},
        {"conditions", bench::ofConditions, 625, 10000},
        {"tree_of_tables", bench::treeOfTables, 125, 500},
        {"columns", bench::ofColumns, 625, 5000},
        {"ordered_columns", bench::orderedColumns, 625, 5000},
        {"grouped_columns", bench::groupedColumns, 625, 5000},
    };
    return all;
}

/// What is loaded must come in whole.
void load(benchmark::State& state, bench::Hosted& hosted, const QString& text) {
    if (!hosted.load(text)) state.SkipWithError("findings");
}

// --- the steps ---

// What a step should cost is a matter of the text that it reads or writes.
void fitTo(benchmark::State& state, qsizetype characters) {
    using benchmark::Counter;
    state.SetComplexityN(characters);
    state.counters["per_character"] =
        Counter(double(characters), Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void loadShape(benchmark::State& state, const Shape& shape) {
    const QString text = shape.text(int(state.range(0)));
    bench::Hosted hosted(int(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        load(state, hosted, text);
        state.PauseTiming();
        hosted.builder.Clear();
        state.ResumeTiming();
    }
    fitTo(state, text.size());
}

void write(benchmark::State& state, const Shape& shape) {
    bench::Hosted hosted(int(state.range(0)));
    load(state, hosted, shape.text(int(state.range(0))));
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(hosted.builder.GetSQLStatment().size());
    }
    fitTo(state, hosted.builder.GetSQLStatment().size());
}

void clear(benchmark::State& state, const Shape& shape) {
    const QString text = shape.text(int(state.range(0)));
    bench::Hosted hosted(int(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        load(state, hosted, text);
        state.ResumeTiming();
        hosted.builder.Clear();
    }
    fitTo(state, text.size());
}

// Validating writes the statement, too.
void validate(benchmark::State& state, const Shape& shape) {
    bench::Hosted hosted(int(state.range(0)));
    load(state, hosted, shape.text(int(state.range(0))));
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(hosted.builder.Validate().size());
    }
    fitTo(state, hosted.builder.GetSQLStatment().size());
}

void saveState(benchmark::State& state, const Shape& shape) {
    bench::Hosted hosted(int(state.range(0)));
    load(state, hosted, shape.text(int(state.range(0))));
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(hosted.builder.SaveState().size());
    }
    fitTo(state, hosted.builder.SaveState().size());
}

void restoreState(benchmark::State& state, const Shape& shape) {
    bench::Hosted hosted(int(state.range(0)));
    load(state, hosted, shape.text(int(state.range(0))));
    const QByteArray saved = hosted.builder.SaveState();
    for ([[maybe_unused]] auto _ : state) hosted.builder.RestoreState(saved);
    fitTo(state, saved.size());
}

// The first table gets another alias, and all that names it follows.
void renameAlias(benchmark::State& state, const Shape& shape) {
    const QString text = shape.text(int(state.range(0)));
    bench::Hosted hosted(int(state.range(0)));
    load(state, hosted, text);
    TorvQDTable* table = hosted.builder.WorkArea->tablesByCreation().front();
    bool other = false;
    for ([[maybe_unused]] auto _ : state) {
        other = !other;
        hosted.builder.WorkArea->renameTable(
            table, other ? QStringLiteral("OTHER") : QStringLiteral("AGAIN"));
    }
    fitTo(state, text.size());
}

// All tables, one after the other: each time the names of all fields are looked through once.
void closeTables(benchmark::State& state) {
    const QString text = bench::treeOfTables(int(state.range(0)));
    bench::Hosted hosted(0);
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        load(state, hosted, text);
        const std::vector<TorvQDTable*> tables = hosted.builder.WorkArea->tablesByCreation();
        state.ResumeTiming();
        for (TorvQDTable* table : tables) hosted.builder.ListOfTables->DeleteTable(table);
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(closeTables)->RangeMultiplier(2)->Range(125, 1000)->Complexity(benchmark::oNSquared);

// One table to which all others are linked.
void closeCentre(benchmark::State& state) {
    const int links = int(state.range(0));
    QString text = QStringLiteral("SELECT A0.NAME FROM T0 A0");
    for (int table = 1; table <= links; ++table) {
        text += QStringLiteral(" INNER JOIN T%1 A%1 ON (A0.ID = A%1.PARENT)").arg(table);
    }
    bench::Hosted hosted(0);
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        load(state, hosted, text);
        TorvQDTable* centre = hosted.builder.WorkArea->tablesByCreation().front();
        state.ResumeTiming();
        hosted.builder.ListOfTables->DeleteTable(centre);
    }
    state.SetComplexityN(links);
}
BENCHMARK(closeCentre)->RangeMultiplier(2)->Range(125, 1000)->Complexity(benchmark::oN);

// A collapsed group shows the beginning of its condition, however long that is.
void collapsedGroup(benchmark::State& state) {
    bench::Hosted hosted(1);
    load(state, hosted, bench::ofConditions(int(state.range(0))));
    TorvQDWhereRow* group = hosted.builder.WherePanel->rootRow();
    group->SetExpanded(false);
    for ([[maybe_unused]] auto _ : state) group->refreshTexts();
    state.SetComplexityN(state.range(0));
}
BENCHMARK(collapsedGroup)->RangeMultiplier(10)->Range(10, 10000)->Complexity(benchmark::o1);

// --- a usual large statement ---

// From text to boxes, links and pages and back; "ratio" is how many times as long as SQLite takes
// to compile the same text, measured in turns.
void roundTrip(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    const auto seconds = [](Clock::duration time) {
        return std::chrono::duration<double>(time).count();
    };
    const QString texts[] = {bench::large(), bench::large() + QStringLiteral(" AND (A1.ID > 0)")};
    const QByteArray compiled[] = {texts[0].toUtf8(), texts[1].toUtf8()};
    bench::Hosted hosted(0);
    double builderSeconds = 0;
    double databaseSeconds = 0;
    int turn = 0;
    for ([[maybe_unused]] auto _ : state) {
        turn = 1 - turn;
        const Clock::time_point start = Clock::now();
        load(state, hosted, texts[turn]);
        benchmark::DoNotOptimize(hosted.builder.GetSQLStatment().size());
        const Clock::time_point between = Clock::now();
        if (!bench::prepare(compiled[turn])) state.SkipWithError("not prepared");
        const Clock::time_point end = Clock::now();
        state.SetIterationTime(seconds(between - start));
        builderSeconds += seconds(between - start);
        databaseSeconds += seconds(end - between);
    }
    state.counters["prepare_us"] = databaseSeconds / double(state.iterations()) * 1e6;
    state.counters["ratio"] = builderSeconds / databaseSeconds;
}
BENCHMARK(roundTrip)->UseManualTime()->Unit(benchmark::kMicrosecond);

const bool registered = [] {
    using Step = void (*)(benchmark::State&, const Shape&);
    const std::pair<const char*, Step> steps[] = {{"load", loadShape},    {"write", write},
                                                  {"clear", clear},       {"validate", validate},
                                                  {"save", saveState},    {"restore", restoreState},
                                                  {"rename", renameAlias}};
    for (const Shape& shape : shapes()) {
        for (const auto& [name, step] : steps) {
            benchmark::RegisterBenchmark(
                (std::string(name) + '/' + shape.name).c_str(),
                [step = step, &shape](benchmark::State& state) { step(state, shape); })
                ->RangeMultiplier(2)
                ->Range(shape.smallest, shape.largest)
                ->Complexity(benchmark::oN)
                ->Unit(benchmark::kMicrosecond);
        }
    }
    return true;
}();

}  // namespace
