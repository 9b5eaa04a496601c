// The design view as a user waits for it: the studio's main window,
// headless, large enough for a canvas of 600 units, with the benchmarks'
// design of six layers around two chosen icons. The figures that matter are printed at the end:
//   one step of a drag, from the mouse move to the painted frame   under 16 ms
//   a click's hit test through the stack to the bottom layer       under 30 ms
//   an undo and a redo, each with its list and canvas painted      under 20 ms
// The reference run in the same program draws the six layers straight onto
// a surface of the canvas's size, with nothing of the view around them.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modStartup.h"
#include "app/ui/cfMain.h"
#include "bench/RatioReporter.h"
#include "bench/TypicalDesign.h"
#include "browser/cvIconSelectView.h"
#include "design/cvIconDesignView.h"
#include "design/cwCanvas.h"
#include "engine/modHistory.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/ui/PlatformRoot.h"
#include "platform/ui/UiTheme.h"
#include "tests/support/AppFolder.h"
#include "tests/support/LibraryLayers.h"
#include "widgets/cThemeQuillaron.h"
#include "widgets/cwVListNew.h"

namespace {

using namespace qds;

struct World {
  AppFolder folder;
  ScopedAppContext app{folder.Folder()};
  HeadlessBackend* backend = new HeadlessBackend;
  PlatformRoot root{std::unique_ptr<UiBackend>(backend)};
  std::unique_ptr<cfMain> form;
  cvIconDesignView* view = nullptr;

  World() {
    app->ShowMessage = [](const std::string& m) { std::fprintf(stderr, "%s\n", m.c_str()); };
    StartWithoutWindow(*app);
    app->Config->setUserZoom(1);
    SetCurrentTheme(std::make_shared<cThemeQuillaron>());
    root.setImages(&app->ImageList());
    form = std::make_unique<cfMain>();
    form->Resize(1500, 900);
    form->Show();
    root.DoEvents();
    view = &form->DesignView();

    // The design, bottom up.
    for (const char* name : {"user", "lock"}) app->IconSelection.Add(LibraryLayer(*app, name, "Flat"), name);
    form->SelectView().SelectionChanged = true;
    form->SwitchToView("IconSelectView");
    form->SwitchToView("IconDesignView");
    BuildTypicalDesign(*app, app->Layers.Item("_BaseIco"));
    view->vlstLayers->setListCount(app->Layers.Count());
    view->vlstLayers->setListIndex(0);
    view->AddToHistory();
    view->AddToHistory();
    Settle();
  }
  // The canvas lock ends and everything due is painted.
  void Settle() {
    backend->AdvanceMs(50);
    root.DoEvents();
  }
  // A point where a press hits the layer at `row`, as the canvas finds it.
  WidgetPoint On(int row) { return view->Canvas->W_RowPoint(row); }
  void Mouse(UiEvent::Type type, int button, const WidgetPoint& p, double dx = 0) {
    double x, y;
    p.widget->FormPosition(x, y);
    backend->Push({type, form.get(), button, 0, 0, (x + p.x + dx) * form->Zoom(), (y + p.y) * form->Zoom()});
    root.DoEvents();
  }
};

World& TheWorld() {
  static World world;
  return world;
}

// The text layer, held by the mouse, follows it one step; the frame that
// shows the step is painted.
void BM_DragFrame(benchmark::State& state) {
  World& w = TheWorld();
  const WidgetPoint text = w.On(0);
  w.Mouse(UiEvent::Type::MouseDown, Button::Left, text);
  double step = 4;
  for (auto _ : state) {
    w.Mouse(UiEvent::Type::MouseMove, Button::Left, text, step);
    step = -step;
  }
  w.Mouse(UiEvent::Type::MouseUp, Button::Left, text);
  w.Settle();
  state.counters["side"] = w.view->Canvas->DrawingSide();
}
BENCHMARK(BM_DragFrame)->Unit(benchmark::kMillisecond);

// A click where only the bottom layer has ink: every layer above it is
// drawn alone and read; the row is selected.
void BM_HitTestClick(benchmark::State& state) {
  World& w = TheWorld();
  const WidgetPoint bottom = w.On(w.app->Layers.Count() - 1);
  for (auto _ : state) {
    w.Mouse(UiEvent::Type::MouseDown, Button::Left, bottom);
    w.Mouse(UiEvent::Type::MouseUp, Button::Left, bottom);
  }
  state.counters["row"] = w.view->vlstLayers->ListIndex();
  w.Settle();
}
BENCHMARK(BM_HitTestClick)->Unit(benchmark::kMillisecond);

// One undo and one redo of the six layers, each shown in the list and on
// the canvas once the canvas lock lets it paint.
void BM_UndoRedo(benchmark::State& state) {
  World& w = TheWorld();
  for (auto _ : state) {
    w.view->SetHistory(HistoryMode::Undo);
    w.Settle();
    w.view->SetHistory(HistoryMode::Redo);
    w.Settle();
  }
  state.counters["layers"] = w.app->Layers.Count();
}
BENCHMARK(BM_UndoRedo)->Unit(benchmark::kMillisecond);

// The reference: the six layers drawn straight at the canvas's side.
void BM_ReferenceDrawLayers(benchmark::State& state) {
  World& w = TheWorld();
  const int side = static_cast<int>(w.view->Canvas->DrawingSide());
  for (auto _ : state) {
    SurfacePtr surface = DrawingSurface::Create(side, side);
    DrawingContext ctx(surface);
    for (int i = w.app->Layers.Count() - 1; i >= 0; --i) w.app->Layers.Item(i)->RenderTo(ctx, side, side);
    benchmark::DoNotOptimize(surface);
  }
}
BENCHMARK(BM_ReferenceDrawLayers)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const auto ms = [&](const char* n) { return reporter.Ms(n); };
  const double ref = ms("BM_ReferenceDrawLayers");
  std::printf("\ncanvas: %.0f units, %d layers\n", TheWorld().view->Canvas->DrawingSide(),
              TheWorld().app->Layers.Count());
  const struct {
    const char* name;
    const char* what;
    double goal;
  } figures[] = {{"BM_DragFrame", "a drag step to its painted frame", 16},
                 {"BM_HitTestClick", "a click's hit test to the bottom layer", 30},
                 {"BM_UndoRedo", "an undo and a redo, each painted", 40}};
  for (const auto& f : figures) {
    if (ms(f.name) <= 0) continue;
    std::printf("%s = %.2f ms (goal < %.0f)", f.what, ms(f.name), f.goal);
    if (ref > 0) std::printf(", %.2f of drawing the layers straight", ms(f.name) / ref);
    std::printf("\n");
  }
  return 0;
}
