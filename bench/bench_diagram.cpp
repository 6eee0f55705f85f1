// SPDX-License-Identifier: MIT
// What the picture of the diagram costs: a step of a drag, and the whole view. The same view as a
// graphics scene draws it is the measure. Times of 10, 100 and 500 boxes stand below each other so
// that growth can be read off. ORV_BENCH_PICTURES names a folder that gets both pictures.
#include "Diagram.h"
#include "PaintCounter.h"
#include "Scene.h"
#include "workarea/ORVQDFloatPanel.h"

#include <benchmark/benchmark.h>

namespace {

// --- a step of a drag ---

void dragStep(benchmark::State& state) {
    bench::Diagram diagram;
    diagram.fillAround(int(state.range(0)));
    bench::BoxDrag drag(diagram);
    bench::PaintCounter counter(diagram.view());
    for ([[maybe_unused]] auto _ : state) {
        if (!drag.step()) {
            state.SkipWithError("the box did not move");
            break;
        }
    }
    state.counters["links"] = double(diagram.area()->Links().size());
    state.counters["paints"] = counter.paints / double(state.iterations());
    state.counters["pixels"] = counter.pixels / double(state.iterations());
}
BENCHMARK(dragStep)->Arg(10)->Arg(100)->Arg(500)->Unit(benchmark::kMicrosecond);

void dragStepOfScene(benchmark::State& state) {
    bench::Diagram diagram;
    diagram.fillAround(int(state.range(0)));
    bench::Scene scene(*diagram.area());
    bench::PaintCounter counter(scene.show().viewport());
    bench::ItemDrag drag(scene);
    for ([[maybe_unused]] auto _ : state) {
        if (!drag.step()) {
            state.SkipWithError("the item did not move");
            break;
        }
    }
    state.counters["paints"] = counter.paints / double(state.iterations());
    state.counters["pixels"] = counter.pixels / double(state.iterations());
}
BENCHMARK(dragStepOfScene)->Arg(10)->Arg(100)->Arg(500)->Unit(benchmark::kMicrosecond);

// --- the whole view ---

/// The first picture of each kind goes to the folder that the user named.
void save(const QImage& image, const QString& name) {
    static QStringList saved;
    const QString folder = qEnvironmentVariable("ORV_BENCH_PICTURES");
    if (folder.isEmpty() || saved.contains(name)) return;
    saved << name;
    image.save(folder + u'/' + name + QStringLiteral(".png"));
}

/// Both sides are measured by this.
void renderAgain(benchmark::State& state, QWidget* view, const QString& name) {
    bench::RenderedView rendered(view);
    save(rendered.picture, name);
    for ([[maybe_unused]] auto _ : state) {
        rendered.render();
        benchmark::DoNotOptimize(rendered.picture.constBits());
    }
}

void fullRepaint(benchmark::State& state) {
    bench::Diagram diagram;
    diagram.fillView(int(state.range(0)));
    renderAgain(state, diagram.view(), QStringLiteral("control"));
}
BENCHMARK(fullRepaint)->Arg(40)->Arg(100)->Arg(500)->Unit(benchmark::kMillisecond);

/// With the second argument boxes are kept as pixmaps.
void fullRepaintOfScene(benchmark::State& state) {
    bench::Diagram diagram;
    diagram.fillView(int(state.range(0)));
    using Cache = bench::Scene::Cache;
    bench::Scene scene(*diagram.area(), state.range(1) ? Cache::Pixmaps : Cache::None);
    renderAgain(state, scene.show().viewport(),
                state.range(1) ? QStringLiteral("scene-cached") : QStringLiteral("scene"));
}
BENCHMARK(fullRepaintOfScene)
    ->ArgNames({"boxes", "cached"})
    ->ArgsProduct({{40, 100, 500}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
