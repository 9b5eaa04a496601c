// Drawing layers as the canvas and the export do, against librsvg drawing
// the same document in the same program. The figures that matter are the
// ratios printed at the end:
//   cold RenderTo / (librsvg render + margin measurement)   at most 1.2
//   warm RenderTo / librsvg render                         at most 0.1
//   a six-layer design at 512 px, warm                     under 8 ms

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

#include "app/AppContext.h"
#include "app/modStartup.h"
#include "bench/RatioReporter.h"
#include "bench/TypicalDesign.h"
#include "engine/cSVGItem.h"
#include "engine/modPixelOps.h"
#include "engine/modRenderDesign.h"
#include "platform/DrawingContext.h"
#include "platform/SvgRenderer.h"
#include "tests/support/AppFolder.h"
#include "tests/support/LibraryLayers.h"

namespace {

using namespace qds;

struct World {
  AppFolder folder;
  ScopedAppContext app{folder.Folder()};
  SVGItemPtr icon;
  World() {
    app->ShowMessage = [](const std::string& m) { std::fprintf(stderr, "%s\n", m.c_str()); };
    StartWithoutWindow(*app);
    icon = LibraryLayer(*app, "camera-3", "Flat");  // a plain layer, as the library gives it
  }
};

World& TheWorld() {
  static World world;
  return world;
}

void ForgetEverything(AppContext& app) {
  app.RenderCache.Clear();
  app.MarginCache.clear();
  app.BlurCache.Clear();
  app.SvgRenderer->ClearCache();
}

void BM_ColdRenderTo(benchmark::State& state) {
  World& w = TheWorld();
  SurfacePtr target = DrawingSurface::Create(256, 256);
  for (auto _ : state) {
    ForgetEverything(*w.app);
    DrawingContext ctx(target);
    w.icon->RenderTo(ctx, 256, 256);
  }
}
BENCHMARK(BM_ColdRenderTo)->Unit(benchmark::kMicrosecond);

void BM_LibrsvgRenderAndMargins(benchmark::State& state) {
  World& w = TheWorld();
  SurfacePtr target = DrawingSurface::Create(256, 256);
  SurfacePtr scratch = DrawingSurface::Create(256, 256);
  for (auto _ : state) {
    SvgRenderer renderer;  // nothing parsed before
    DrawingContext ctx(target);
    renderer.Render(ctx, w.icon->SvgBytes(), 0, 0, 256, 256);
    double scale = 1;
    benchmark::DoNotOptimize(GetInnerDimensions(scratch, w.icon->SvgBytes(), scale, 0));
  }
}
BENCHMARK(BM_LibrsvgRenderAndMargins)->Unit(benchmark::kMicrosecond);

void BM_WarmRenderTo(benchmark::State& state) {
  World& w = TheWorld();
  SurfacePtr target = DrawingSurface::Create(256, 256);
  DrawingContext ctx(target);
  w.icon->RenderTo(ctx, 256, 256);
  for (auto _ : state) w.icon->RenderTo(ctx, 256, 256);
}
BENCHMARK(BM_WarmRenderTo)->Unit(benchmark::kMicrosecond);

void BM_LibrsvgRender(benchmark::State& state) {
  World& w = TheWorld();
  SurfacePtr target = DrawingSurface::Create(256, 256);
  SvgRenderer renderer;
  const SvgHandlePtr doc = renderer.Parse(w.icon->SvgBytes());
  DrawingContext ctx(target);
  for (auto _ : state) renderer.Render(ctx, *doc, 0, 0, 256, 256);
}
BENCHMARK(BM_LibrsvgRender)->Unit(benchmark::kMicrosecond);

void BM_SixLayerDesignAt512(benchmark::State& state) {
  World& w = TheWorld();
  BuildTypicalDesign(*w.app, w.icon->Clone());
  SurfacePtr canvas = DrawingSurface::Create(512, 512);
  const auto frame = [&] {
    DrawingContext ctx(canvas);
    ctx.SetOperator(Op::Clear);
    ctx.Paint();
    ctx.SetOperator(Op::Over);
    RenderDesign(*w.app, ctx, 512);
  };
  frame();  // warm: what a drag on the canvas redraws
  for (auto _ : state) frame();
  state.SetLabel(std::to_string(w.app->Layers.Count()) + " layers");
}
BENCHMARK(BM_SixLayerDesignAt512)->Unit(benchmark::kMillisecond);

// Keeps each benchmark's time per iteration for the ratios.

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const auto get = [&](const char* n) { return reporter.Ms(n) * 1000; };  // microseconds
  if (get("BM_LibrsvgRenderAndMargins") > 0 && get("BM_LibrsvgRender") > 0) {
    std::printf("\ncold RenderTo / (librsvg render + margins) = %.2f  (goal <= 1.2)\n",
                get("BM_ColdRenderTo") / get("BM_LibrsvgRenderAndMargins"));
    std::printf("warm RenderTo / librsvg render              = %.3f (goal <= 0.1)\n",
                get("BM_WarmRenderTo") / get("BM_LibrsvgRender"));
  }
  if (get("BM_SixLayerDesignAt512") > 0) {
    std::printf("six-layer design at 512 px, warm            = %.2f ms (goal < 8)\n",
                get("BM_SixLayerDesignAt512") / 1000);
  }
  return 0;
}
