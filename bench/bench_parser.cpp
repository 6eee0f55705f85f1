// SPDX-License-Identifier: MIT
// How long reading a statement takes, and how that grows; beside it, in the same run, what a
// database's own compiler of statements takes for the same texts.
#include "Database.h"
#include "Statements.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDParser.h"

#include <benchmark/benchmark.h>

namespace {

using Maker = QString (*)();

// The text to a tree, as the control reads it: normalised, tail cut off, parsed.
void read(const QString& text) {
    const orv::NormalisedSQL normalised = orv::NormaliseSQL(text);
    const orv::SqlTokens tokens = orv::tokenise(normalised.text);
    const orv::StatementParts parts = orv::splitStatement(normalised.text, tokens);
    const TorvQDParser root(normalised.text.left(parts.bodyEnd));
    benchmark::DoNotOptimize(root.Count());
}

void parse(benchmark::State& state, Maker make) {
    const QString text = make();
    for ([[maybe_unused]] auto _ : state) {
        const TorvQDParser root(text);
        benchmark::DoNotOptimize(root.Count());
    }
}

void normaliseAndParse(benchmark::State& state, Maker make) {
    const QString text = make();
    for ([[maybe_unused]] auto _ : state) read(text);
}

void prepare(benchmark::State& state, Maker make) {
    const QByteArray text = make().toUtf8();
    for ([[maybe_unused]] auto _ : state) {
        if (!bench::prepare(text)) state.SkipWithError("not prepared");
    }
}

BENCHMARK_CAPTURE(prepare, one_table, bench::oneTable);
BENCHMARK_CAPTURE(parse, one_table, bench::oneTable);
BENCHMARK_CAPTURE(normaliseAndParse, one_table, bench::oneTable);
BENCHMARK_CAPTURE(prepare, join, bench::join);
BENCHMARK_CAPTURE(parse, join, bench::join);
BENCHMARK_CAPTURE(normaliseAndParse, join, bench::join);
BENCHMARK_CAPTURE(prepare, grouped, bench::grouped);
BENCHMARK_CAPTURE(parse, grouped, bench::grouped);
BENCHMARK_CAPTURE(normaliseAndParse, grouped, bench::grouped);
BENCHMARK_CAPTURE(prepare, large, bench::large);
BENCHMARK_CAPTURE(parse, large, bench::large);
BENCHMARK_CAPTURE(normaliseAndParse, large, bench::large);

constexpr int smallest = 1 << 10;
constexpr int largest = 10 * 1000 * 1000;

void parseOfLength(benchmark::State& state) {
    const QString text = bench::ofLength(int(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        const TorvQDParser root(text);
        benchmark::DoNotOptimize(root.Count());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(parseOfLength)->RangeMultiplier(8)->Range(smallest, largest)->Complexity(benchmark::oN);

void nestedBrackets(benchmark::State& state) {
    const int depth = int(state.range(0));
    const QString text = QStringLiteral("SELECT A FROM T WHERE ") + QString(depth, u'(') +
                         QStringLiteral("A = 1") + QString(depth, u')');
    for ([[maybe_unused]] auto _ : state) read(text);
    state.SetComplexityN(depth);
}
BENCHMARK(nestedBrackets)->RangeMultiplier(8)->Range(smallest, 1 << 20)->Complexity(benchmark::oN);

void noise(benchmark::State& state) {
    QString text = QStringLiteral("SELECT ");
    unsigned seed = 1;
    while (text.size() < state.range(0)) {
        seed = seed * 1664525U + 1013904223U;
        text += QChar(ushort(' ' + (seed >> 16) % 95));
    }
    for ([[maybe_unused]] auto _ : state) read(text);
    state.SetComplexityN(state.range(0));
}
BENCHMARK(noise)->RangeMultiplier(8)->Range(smallest, largest)->Complexity(benchmark::oN);

}  // namespace

BENCHMARK_MAIN();
