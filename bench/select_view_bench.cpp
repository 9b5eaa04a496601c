// The select view as a user waits for it, headless in a window of 1280 by
// 800. The figures that matter are printed at the end:
//   a search over the whole library, every icon a result, and the first
//   page of results painted with icons never drawn before      under 50 ms
//   a wheel step over the results, every icon drawn already    under 4 ms
// The reference run in the same program does the least a search cannot
// avoid: the same rows read by one plain query, and the same first page's
// icons drawn the way the grid draws them, with no view around them.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/AppContext.h"
#include "app/modStartup.h"
#include "app/ui/cfMain.h"
#include "bench/RatioReporter.h"
#include "browser/IconPictures.h"
#include "browser/cvIconSelectView.h"
#include "platform/DbRecordset.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/SvgRenderer.h"
#include "platform/stock/StockWidgets.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"
#include "platform/ui/UiTheme.h"
#include "tests/support/AppFolder.h"
#include "widgets/cThemeQuillaron.h"
#include "widgets/cwOptionButton.h"
#include "widgets/cwTextBox.h"
#include "widgets/cwVListNew.h"

namespace {

using namespace qds;

// Every icon of the library carries this word among its synonyms, so that
// one search finds them all.
constexpr const char* kEveryIcon = "benchword";

// A studio folder with its library unpacked, a headless window system and
// the view in a window of 1280 by 800, as the main window holds it.
struct World {
  AppFolder folder;
  ScopedAppContext app{folder.Folder()};
  HeadlessBackend* backend = new HeadlessBackend;
  PlatformRoot root{std::unique_ptr<UiBackend>(backend)};
  cfForm form{"BenchForm"};
  cvIconSelectView view;
  int libraryIcons = 0;

  World() {
    app->ShowMessage = [](const std::string& m) { std::fprintf(stderr, "%s\n", m.c_str()); };
    StartWithoutWindow(*app);
    SetCurrentTheme(std::make_shared<cThemeQuillaron>());
    root.setImages(&app->ImageList());
    app->Cnn.Execute(std::string("Update Images Set Synonyms = Synonyms || ' ") + kEveryIcon + "'");
    libraryIcons = static_cast<int>(app->Cnn.Query("Select Count(*) From Images").FieldValue(0).AsLong());
    form.Resize(1280, 800);
    view.WidgetInit(AddViewLayout(form, "IconSelectView"));
    form.Show();
    view.HandleResize(1280, 800);
    root.DoEvents();
    form.Find<cwOptionButton>("IconSelectView/pnlMain/pnlSearch/optSearchAll")->Choose();
    view.txtSearch->setText(kEveryIcon);
  }
  void Search() { form.Find<cwButton>("IconSelectView/pnlMain/pnlSearch/btnSearch")->Press(); }
  void Forget() {
    app->RenderCache.Clear();
    app->SvgRenderer->ClearCache();
  }
  int CellsShown() const { return view.vlstIcons->CellsPerLine() * (view.vlstIcons->VisibleRows() + 1); }
};

World& TheWorld() {
  static World world;
  return world;
}

// The search button pressed, the rows read, and the frame painted with
// every icon of its page drawn from its document.
void BM_SearchWholeLibraryFirstPage(benchmark::State& state) {
  World& w = TheWorld();
  for (auto _ : state) {
    state.PauseTiming();
    w.Forget();
    state.ResumeTiming();
    w.Search();
    w.root.DoEvents();
  }
  state.counters["results"] = w.view.vlstIcons->ListCount();
  state.counters["cells"] = w.CellsShown();
}
BENCHMARK(BM_SearchWholeLibraryFirstPage)->Unit(benchmark::kMillisecond);

// The same search once its icons have been drawn: what the rows cost.
void BM_SearchWholeLibraryDrawnBefore(benchmark::State& state) {
  World& w = TheWorld();
  for (auto _ : state) {
    w.Search();
    w.root.DoEvents();
  }
}
BENCHMARK(BM_SearchWholeLibraryDrawnBefore)->Unit(benchmark::kMillisecond);

// A wheel step of three lines and back over the results, all drawn already.
void BM_ResultsWheelStep(benchmark::State& state) {
  World& w = TheWorld();
  w.Search();
  cwVListNew& grid = *w.view.vlstIcons;
  grid.setScrollIndex(20);
  w.root.DoEvents();
  grid.setScrollIndex(23);
  w.root.DoEvents();
  double x, y;
  grid.FormPosition(x, y);
  int step = -1;
  for (auto _ : state) {
    w.backend->Push({UiEvent::Type::Wheel, &w.form, step, 0, 0, x + grid.Width() / 2, y + grid.Height() / 2});
    w.root.DoEvents();
    step = -step;
  }
  state.counters["cells"] = w.CellsShown();
}
BENCHMARK(BM_ResultsWheelStep)->Unit(benchmark::kMillisecond);

// The reference: one query of the same rows, and the first page's icons
// drawn as the grid draws them, from nothing kept.
void BM_ReferenceQueryAndPage(benchmark::State& state) {
  World& w = TheWorld();
  const int cells = w.CellsShown();
  for (auto _ : state) {
    state.PauseTiming();
    w.Forget();
    state.ResumeTiming();
    DbRecordset rs =
        w.app->Cnn.Query(std::string("Select ID, Name, SVG From Images Where Name like '%") + kEveryIcon +
                         "%' or Synonyms like '%" + kEveryIcon + "%' Order By Name");
    std::vector<std::pair<int, Bytes>> icons;
    for (; !rs.Eof(); rs.MoveNext())
      icons.emplace_back(static_cast<int>(rs.FieldValue(0).AsLong()), rs.FieldValue(2).AsBytes());
    for (int i = 0; i < cells && i < static_cast<int>(icons.size()); ++i)
      benchmark::DoNotOptimize(
          IconPicture(*w.app, icons[i].first, icons[i].second, cvIconSelectView::kCellPicture));
  }
  state.counters["cells"] = cells;
}
BENCHMARK(BM_ReferenceQueryAndPage)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const auto ms = [&](const char* n) { return reporter.Ms(n); };
  std::printf("\nlibrary: %d icons\n", TheWorld().libraryIcons);
  if (ms("BM_SearchWholeLibraryFirstPage") > 0) {
    std::printf("search over the whole library + first page never drawn = %.1f ms (goal < 50)",
                ms("BM_SearchWholeLibraryFirstPage"));
    if (ms("BM_ReferenceQueryAndPage") > 0)
      std::printf(", %.2f of the plain query and drawing",
                  ms("BM_SearchWholeLibraryFirstPage") / ms("BM_ReferenceQueryAndPage"));
    std::printf("\n");
  }
  if (ms("BM_SearchWholeLibraryDrawnBefore") > 0)
    std::printf("the same search, its icons drawn before = %.1f ms (goal < 50)\n",
                ms("BM_SearchWholeLibraryDrawnBefore"));
  if (ms("BM_ResultsWheelStep") > 0)
    std::printf("wheel step over the results = %.2f ms (goal < 4, as the list alone)\n",
                ms("BM_ResultsWheelStep"));
  return 0;
}
