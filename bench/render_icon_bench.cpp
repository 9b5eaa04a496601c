// Rendering one library icon at 256 px: parsing and drawing, against drawing
// a document already parsed (what the renderer's cache gives).

#include <benchmark/benchmark.h>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/SvgRenderer.h"

namespace {

// An icon the size and shape of the library's: cairo's normalised output of
// a few curved paths.
qds::Bytes Icon() {
  qds::SurfacePtr svg = qds::DrawingSurface::Create(256, 256, qds::SurfaceKind::Svg);
  {
    qds::DrawingContext ctx(svg);
    ctx.SetSourceColor(0x994422);
    ctx.RoundedRectangle(24, 24, 208, 208, 40);
    ctx.Fill();
    ctx.SetSourceColor(0xFFFFFF);
    for (int i = 0; i < 8; ++i) {
      ctx.MoveTo(64 + 16 * i, 64);
      ctx.SvgArcTo(40, 60, 15 * i, i % 2 == 0, true, 96 + 12 * i, 192);
      ctx.LineTo(80 + 10 * i, 200);
      ctx.ClosePath();
    }
    ctx.Fill();
    ctx.SelectFont("Liberation Sans", 40, 0x333333, true);
    ctx.DrawText(0, 150, 256, 80, "Qd", true, 2, 3);
  }
  return svg->SvgDocumentBytes();
}

void BM_ParseAndRender(benchmark::State& state) {
  const qds::Bytes icon = Icon();
  qds::SurfacePtr target = qds::DrawingSurface::Create(256, 256);
  for (auto _ : state) {
    qds::SvgRenderer renderer;  // a new cache each time: nothing is reused
    qds::DrawingContext ctx(target);
    benchmark::DoNotOptimize(renderer.Render(ctx, icon, 0, 0, 256, 256));
  }
  state.SetLabel(std::to_string(icon.size()) + " bytes of SVG");
}
BENCHMARK(BM_ParseAndRender)->Unit(benchmark::kMicrosecond);

void BM_RenderCachedDocument(benchmark::State& state) {
  const qds::Bytes icon = Icon();
  qds::SurfacePtr target = qds::DrawingSurface::Create(256, 256);
  qds::SvgRenderer renderer;
  for (auto _ : state) {
    qds::DrawingContext ctx(target);
    benchmark::DoNotOptimize(renderer.Render(ctx, icon, 0, 0, 256, 256));
  }
}
BENCHMARK(BM_RenderCachedDocument)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
