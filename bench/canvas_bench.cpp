// The design canvas as a user waits for it, headless, with a design of six
// layers on a drawing of 600 pixels. The figures that matter are printed
// at the end:
//   one frame of a drag: a layer moved and the canvas painted   under 16 ms
//   a press that falls through every layer to the bottom one    under 30 ms
// The reference run in the same program draws the same six layers straight
// onto a picture of the same size, as the export does, with no canvas
// around them.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include "app/AppContext.h"
#include "app/modStartup.h"
#include "bench/RatioReporter.h"
#include "bench/TypicalDesign.h"
#include "design/cwCanvas.h"
#include "engine/cSVGItem.h"
#include "engine/modRenderDesign.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"
#include "platform/ui/UiTheme.h"
#include "tests/support/AppFolder.h"
#include "tests/support/LibraryLayers.h"
#include "widgets/cThemeQuillaron.h"

namespace {

using namespace qds;

constexpr double kSide = 600;

// A studio folder with its library unpacked, a headless window system and
// a canvas whose drawing is kSide units a side, at the form's zoom of 1.
struct World {
  AppFolder folder;
  ScopedAppContext app{folder.Folder()};
  HeadlessBackend* backend = new HeadlessBackend;
  PlatformRoot root{std::unique_ptr<UiBackend>(backend)};
  cfForm form{"BenchForm"};
  cwCanvas& canvas = form.Children().Add<cwCanvas>("Canvas");
  SVGItemPtr moved;
  WidgetPoint bottom;

  World() {
    app->ShowMessage = [](const std::string& m) { std::fprintf(stderr, "%s\n", m.c_str()); };
    StartWithoutWindow(*app);
    SetCurrentTheme(std::make_shared<cThemeQuillaron>());
    root.setImages(&app->ImageList());
    BuildTypicalDesign(*app, LibraryLayer(*app, "camera-3", "Flat"));
    const double outer = kSide + cwCanvas::kDefaultBorder;
    form.Resize(outer + 20, outer + 20);
    canvas.Move(0, 0, outer, outer);
    form.Show();
    root.DoEvents();
    moved = app->Layers.Item("_BaseIco");
    // Where only the bottom layer has ink.
    bottom = canvas.W_RowPoint(app->Layers.Count() - 1);
  }

  void Paint() {
    canvas.Refresh();
    root.DoEvents();
  }
};

World& TheWorld() {
  static World world;
  return world;
}

// The base icon follows the mouse by a few units each frame, back and
// forth, and the canvas is painted; at the form's zoom in per cent (the
// studio starts at 125, which makes the drawing 750 pixels).
void BM_DragFrame(benchmark::State& state) {
  World& w = TheWorld();
  w.form.setZoom(state.range(0) / 100.0);
  w.Paint();
  int step = 0;
  for (auto _ : state) {
    w.moved->MoveX = (step % 20 - 10) * 0.5;
    w.moved->MoveY = (step % 14 - 7) * 0.5;
    ++step;
    w.Paint();
  }
  w.moved->MoveX = w.moved->MoveY = 0;
  state.counters["pixels"] = w.canvas.DevicePixelSide();
  w.form.setZoom(1);
  w.Paint();
}
BENCHMARK(BM_DragFrame)->Arg(100)->Arg(125)->Unit(benchmark::kMillisecond);

// The same frame as the design view's drag makes it: the layer measured on
// the canvas (CalcOffSet) before its move.
void BM_DragFrameWithMeasure(benchmark::State& state) {
  World& w = TheWorld();
  int step = 0;
  for (auto _ : state) {
    double zW, zH, L, T;
    w.moved->CalcOffSet(0, 0, zW, zH, L, T);
    w.moved->MoveX = (step % 20 - 10) * 0.5;
    ++step;
    w.Paint();
  }
  w.moved->MoveX = 0;
}
BENCHMARK(BM_DragFrameWithMeasure)->Unit(benchmark::kMillisecond);

// A press where only the bottom layer has ink: every layer above is drawn
// and found transparent there first.
void BM_HitTestToBottom(benchmark::State& state) {
  World& w = TheWorld();
  const int bottom = w.app->Layers.Count() - 1;
  if (!w.bottom.widget || w.canvas.HitTest(w.bottom.x, w.bottom.y) != bottom) {
    state.SkipWithError("no point shows the bottom layer alone");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(w.canvas.HitTest(w.bottom.x, w.bottom.y));
  state.counters["layers"] = bottom + 1;
}
BENCHMARK(BM_HitTestToBottom)->Unit(benchmark::kMillisecond);

// The reference: the six layers drawn straight onto a cleared picture of
// the drawing's size, from the same render cache.
void BM_ReferenceSixLayers(benchmark::State& state) {
  World& w = TheWorld();
  SurfacePtr picture = DrawingSurface::Create(static_cast<int>(kSide), static_cast<int>(kSide));
  const auto frame = [&] {
    DrawingContext ctx(picture);
    ctx.SetOperator(Op::Clear);
    ctx.Paint();
    ctx.SetOperator(Op::Over);
    RenderDesign(*w.app, ctx, kSide);
  };
  frame();
  for (auto _ : state) frame();
}
BENCHMARK(BM_ReferenceSixLayers)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const auto ms = [&](const char* n) { return reporter.Ms(n); };
  const double reference = ms("BM_ReferenceSixLayers");
  const auto against = [&](double v) {
    if (reference > 0) std::printf(", %.2f of the layers drawn straight", v / reference);
    std::printf("\n");
  };
  std::printf("\nsix layers, drawing of %d px\n", TheWorld().canvas.DevicePixelSide());
  if (ms("BM_DragFrame/100") > 0) {
    std::printf("drag frame: layer moved, canvas painted       = %.2f ms (goal < 16)",
                ms("BM_DragFrame/100"));
    against(ms("BM_DragFrame/100"));
  }
  if (ms("BM_DragFrame/125") > 0)
    std::printf("the same at the studio's zoom of 1.25, 750 px = %.2f ms\n", ms("BM_DragFrame/125"));
  if (ms("BM_DragFrameWithMeasure") > 0) {
    std::printf("drag frame with the layer measured first      = %.2f ms (goal < 16)",
                ms("BM_DragFrameWithMeasure"));
    against(ms("BM_DragFrameWithMeasure"));
  }
  if (ms("BM_HitTestToBottom") > 0) {
    std::printf("press falling through to the bottom layer     = %.2f ms (goal < 30)",
                ms("BM_HitTestToBottom"));
    against(ms("BM_HitTestToBottom"));
  }
  if (reference > 0) std::printf("six layers drawn straight (reference)         = %.2f ms\n", reference);
  return 0;
}
