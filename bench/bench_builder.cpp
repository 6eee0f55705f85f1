// SPDX-License-Identifier: MIT
// What the control itself costs: loading, writing, ticking and placing, and how each grows.
#include "Hosted.h"
#include "Statements.h"
#include "diagram/ORVQDFloatTable.h"
#include "workarea/ORVQDFloatPanel.h"

#include <benchmark/benchmark.h>

namespace {

void loadColumns(benchmark::State& state) {
    const int columns = int(state.range(0));
    bench::Hosted hosted(columns);
    const QString text = bench::ofColumns(columns);
    for ([[maybe_unused]] auto _ : state) {
        if (!hosted.load(text)) state.SkipWithError("findings");
    }
    state.SetComplexityN(columns);
}
BENCHMARK(loadColumns)->RangeMultiplier(4)->Range(16, 16384)->Complexity(benchmark::oN);

void loadStar(benchmark::State& state) {
    const int columns = int(state.range(0));
    bench::Hosted hosted(columns);
    for ([[maybe_unused]] auto _ : state) hosted.builder.LoadSQL(QStringLiteral("SELECT * FROM T"));
    state.SetComplexityN(columns);
}
BENCHMARK(loadStar)->RangeMultiplier(4)->Range(16, 16384)->Complexity(benchmark::oN);

void writeStatement(benchmark::State& state) {
    const int columns = int(state.range(0));
    bench::Hosted hosted(columns);
    hosted.builder.LoadSQL(QStringLiteral("SELECT * FROM T"));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(hosted.builder.GetSQLStatment().size());
    state.SetComplexityN(columns);
}
BENCHMARK(writeStatement)->RangeMultiplier(4)->Range(16, 16384)->Complexity(benchmark::oN);

void tickAll(benchmark::State& state) {
    const int rows = int(state.range(0));
    TorvQueryBuilder builder;
    TorvQDTable* table = builder.ListOfTables->AddTable(QStringLiteral("T"), bench::fields(rows));
    for ([[maybe_unused]] auto _ : state) {
        table->SetFieldState(2);
        table->SetFieldState(0);
    }
    state.SetComplexityN(rows);
}
BENCHMARK(tickAll)->RangeMultiplier(4)->Range(16, 16384)->Complexity(benchmark::oN);

// Adding one more table to a diagram of many: its place is looked for among all of them.
void addToMany(benchmark::State& state) {
    const int tables = int(state.range(0));
    TorvQueryBuilder builder;
    const TDataSet dataSet = bench::fields(5);
    for (int table = 0; table < tables; ++table) {
        builder.ListOfTables->AddTable(QStringLiteral("T%1").arg(table), dataSet);
    }
    for ([[maybe_unused]] auto _ : state) {
        TorvQDTable* added = builder.ListOfTables->AddTable(QStringLiteral("ONE"), dataSet);
        builder.ListOfTables->DeleteTable(added);
    }
    state.SetComplexityN(tables);
}
BENCHMARK(addToMany)->RangeMultiplier(4)->Range(4, 1024)->Complexity(benchmark::oN);

}  // namespace
