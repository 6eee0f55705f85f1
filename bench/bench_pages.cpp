// SPDX-License-Identifier: MIT
// What the pages cost in the hand: one edit, one step of scrolling and a full relay, with few and
// with many conditions and output columns; and ticking all fields of many boxes. Each case stands
// beside the same with fewer rows, so that growth can be read off.
#include "Hosted.h"
#include "Pages.h"
#include "PaintCounter.h"
#include "catalogue/ORVQDOperators.h"
#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDWherePanel.h"
#include "diagram/ORVQDFloatTable.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QAction>
#include <QApplication>
#include <QScrollBar>

#include <benchmark/benchmark.h>

namespace {

// --- conditions ---

// Another operator for a row in the middle, with everything that follows from it.
void editCondition(benchmark::State& state) {
    bench::ShownPages pages(bench::criterions);
    pages.loadConditions(int(state.range(0)));
    TorvQDWherePanel& panel = *pages.builder.WherePanel;
    const TorvQDWhereRow& row = *panel.rootRow()->SubRows->Row(int(state.range(0)) / 2);
    panel.showElement(*row.Controls[ekOperator]);
    QCoreApplication::processEvents();
    QAction less(nullptr);
    QAction greater(nullptr);
    less.setData(QVariant::fromValue(pages.builder.Operators->FindName(QStringLiteral("<="))));
    greater.setData(QVariant::fromValue(pages.builder.Operators->FindName(QStringLiteral(">"))));

    bench::PaintCounter counter(panel.viewport());
    const int measuredBefore = panel.conditionLayout().measuredRows();
    int step = 0;
    for ([[maybe_unused]] auto _ : state) {
        panel.setCurrentElement(row.Controls[ekOperator].get());
        panel.SelectOperator(++step % 2 ? &less : &greater);
        QCoreApplication::processEvents();
    }
    state.counters["measured_rows"] =
        double(panel.conditionLayout().measuredRows() - measuredBefore) / step;
    state.counters["painted_px"] = counter.pixels / step;
}
BENCHMARK(editCondition)->Arg(20)->Arg(200)->Arg(2000);

void scrollConditions(benchmark::State& state) {
    bench::ShownPages pages(bench::criterions);
    pages.loadConditions(int(state.range(0)));
    TorvQDWherePanel& panel = *pages.builder.WherePanel;
    QScrollBar& bar = *panel.verticalScrollBar();
    bench::PaintCounter counter(panel.viewport());
    int step = 0;
    for ([[maybe_unused]] auto _ : state) {
        bar.setValue(++step % 2 ? 3 * panel.rowHeight() : 0);
        QCoreApplication::processEvents();
    }
    state.counters["painted_px"] = counter.pixels / step;
}
BENCHMARK(scrollConditions)->Arg(40)->Arg(200)->Arg(2000);

// Another font: every text is measured anew and every row placed.
void relayConditions(benchmark::State& state) {
    bench::ShownPages pages(bench::criterions);
    pages.loadConditions(int(state.range(0)));
    for ([[maybe_unused]] auto _ : state) pages.relayConditions();
    state.SetComplexityN(state.range(0));
}
BENCHMARK(relayConditions)->RangeMultiplier(2)->Range(250, 16000)->Complexity(benchmark::oN);

// --- output columns ---

// Another output name for a row in the middle: typed, taken over and shown.
void editColumn(benchmark::State& state) {
    bench::ShownPages pages(bench::selection);
    pages.loadColumns(int(state.range(0)));
    TorvQDSelectGrid& grid = *pages.builder.SelectPanel->grid();
    const int row = int(state.range(0)) / 2;
    grid.scrollTo(grid.model()->index(row, 0));
    QCoreApplication::processEvents();
    bench::PaintCounter counter(grid.viewport());
    int step = 0;
    for ([[maybe_unused]] auto _ : state) {
        grid._EditText(0, row);
        grid._SetCellText(++step % 2 ? QStringLiteral("SHORT") : QStringLiteral("LONGER"));
        grid.commitEdit();
        QCoreApplication::processEvents();
    }
    state.counters["painted_px"] = counter.pixels / step;
}
BENCHMARK(editColumn)->Arg(20)->Arg(200)->Arg(2000);

void scrollColumns(benchmark::State& state) {
    bench::ShownPages pages(bench::selection);
    pages.loadColumns(int(state.range(0)));
    TorvQDSelectGrid& grid = *pages.builder.SelectPanel->grid();
    bench::PaintCounter counter(grid.viewport());
    int step = 0;
    for ([[maybe_unused]] auto _ : state) {
        grid.verticalScrollBar()->setValue(++step % 2 ? 3 : 0);
        QCoreApplication::processEvents();
    }
    state.counters["painted_px"] = counter.pixels / step;
}
BENCHMARK(scrollColumns)->Arg(40)->Arg(200)->Arg(2000);

// --- many fields ---

TDataSet boxFields(int64_t count) {
    return bench::fields(int(count), QStringLiteral("FIELD_"));
}

void tickAllOfBoxes(benchmark::State& state) {
    bench::ShownPages pages(bench::selection);
    const TDataSet dataSet = boxFields(state.range(0));
    TorvQDWorkArea& area = *pages.builder.WorkArea;
    std::vector<TorvQDTable*> boxes;
    for (int box = 0; box < 100; ++box) {
        boxes.push_back(area.AddPanel(QStringLiteral("TABLE_%1").arg(box), &dataSet));
    }
    for ([[maybe_unused]] auto _ : state) {
        for (TorvQDTable* box : boxes) box->SetFieldState(2);
        state.PauseTiming();
        for (TorvQDTable* box : boxes) box->SetFieldState(0);
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0) * 100);
}
BENCHMARK(tickAllOfBoxes)
    ->RangeMultiplier(2)
    ->Range(12, 200)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

// The same fields in ever more boxes, each ticked by itself.
void tickMoreBoxes(benchmark::State& state) {
    bench::ShownPages pages(bench::selection);
    const TDataSet dataSet = boxFields(100);
    TorvQDWorkArea& area = *pages.builder.WorkArea;
    std::vector<TorvQDTable*> boxes;
    for (int box = 0; box < int(state.range(0)); ++box) {
        boxes.push_back(area.AddPanel(QStringLiteral("TABLE_%1").arg(box), &dataSet));
    }
    for ([[maybe_unused]] auto _ : state) {
        for (TorvQDTable* box : boxes) box->SetFieldState(2);
        state.PauseTiming();
        for (TorvQDTable* box : boxes) box->SetFieldState(0);
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0) * 100);
}
BENCHMARK(tickMoreBoxes)
    ->RangeMultiplier(2)
    ->Range(12, 200)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

void loadStarOverBoxes(benchmark::State& state) {
    bench::ShownPages pages(bench::selection);
    pages.builder.OnGetTableFields = [count = state.range(0)](const QString&,
                                                              std::unique_ptr<TDataSet>& dataSet,
                                                              std::unique_ptr<TParams>&) {
        dataSet = std::make_unique<TDataSet>(boxFields(count));
    };
    QStringList tables;
    for (int box = 0; box < 100; ++box) tables << QStringLiteral("TABLE_%1").arg(box);
    const QString text = QStringLiteral("SELECT * FROM ") + tables.join(QStringLiteral(", "));
    for ([[maybe_unused]] auto _ : state) {
        pages.builder.LoadSQL(text);
        state.PauseTiming();
        pages.builder.Clear();
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0) * 100);
}
BENCHMARK(loadStarOverBoxes)
    ->RangeMultiplier(2)
    ->Range(12, 200)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

}  // namespace
