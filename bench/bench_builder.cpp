// SPDX-License-Identifier: MIT
// What the control itself costs: loading, writing, ticking and placing, and how each grows.
#include "Statements.h"
#include "diagram/ORVQDFloatTable.h"
#include "querybuilder/ORVQDWindow.h"
#include "workarea/ORVQDFloatPanel.h"

#include <benchmark/benchmark.h>

namespace {

TDataSet fields(int count) {
    TDataSet dataSet;
    for (int field = 0; field < count; ++field) {
        dataSet.FieldDefs.push_back({QStringLiteral("F%1").arg(field), ftInteger});
    }
    return dataSet;
}

void answerWith(TorvQueryBuilder& builder, int count) {
    builder.OnGetTableFields = [count](const QString&, std::unique_ptr<TDataSet>& dataSet,
                                       std::unique_ptr<TParams>&) {
        dataSet = std::make_unique<TDataSet>(fields(count));
    };
}

void loadColumns(benchmark::State& state) {
    const int columns = int(state.range(0));
    TorvQueryBuilder builder;
    builder.setKeepMeaning(true);
    answerWith(builder, columns);
    const QString text = bench::ofColumns(columns);
    for ([[maybe_unused]] auto _ : state) {
        builder.LoadSQL(text);
        if (!builder.LoadReport().empty()) state.SkipWithError("findings");
    }
    state.SetComplexityN(columns);
}
BENCHMARK(loadColumns)->RangeMultiplier(4)->Range(16, 16384)->Complexity(benchmark::oN);

void loadStar(benchmark::State& state) {
    const int columns = int(state.range(0));
    TorvQueryBuilder builder;
    answerWith(builder, columns);
    for ([[maybe_unused]] auto _ : state) builder.LoadSQL(QStringLiteral("SELECT * FROM T"));
    state.SetComplexityN(columns);
}
BENCHMARK(loadStar)->RangeMultiplier(4)->Range(16, 16384)->Complexity(benchmark::oN);

void writeStatement(benchmark::State& state) {
    const int columns = int(state.range(0));
    TorvQueryBuilder builder;
    answerWith(builder, columns);
    builder.LoadSQL(QStringLiteral("SELECT * FROM T"));
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(builder.GetSQLStatment().size());
    state.SetComplexityN(columns);
}
BENCHMARK(writeStatement)->RangeMultiplier(4)->Range(16, 16384)->Complexity(benchmark::oN);

void tickAll(benchmark::State& state) {
    const int rows = int(state.range(0));
    TorvQueryBuilder builder;
    TorvQDTable* table = builder.ListOfTables->AddTable(QStringLiteral("T"), fields(rows));
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
    const TDataSet dataSet = fields(5);
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
