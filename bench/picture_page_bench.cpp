// A page of the icon browser: 400 library icons never drawn before, each at
// 48 px on a surface of its own, through librsvg (parse and render) and
// through RenderPicture. The figures printed at the end:
//   RenderPicture page                       well under 40 ms
//   RenderPicture page / librsvg page        the ratio

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

#include "app/AppContext.h"
#include "app/modStartup.h"
#include "bench/RatioReporter.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/PlainSvg.h"
#include "platform/SvgRenderer.h"
#include "tests/support/AppFolder.h"

namespace {

using namespace qds;

constexpr int kPage = 400;
constexpr int kSide = 48;

// 400 distinct icons spread evenly over the whole library.
struct Page {
  std::vector<Bytes> icons;
  int plain = 0;
  Page() {
    AppFolder folder;
    ScopedAppContext app(folder.Folder());
    app->ShowMessage = [](const std::string& m) { std::fprintf(stderr, "%s\n", m.c_str()); };
    StartWithoutWindow(*app);
    std::vector<Bytes> all;
    for (DbRecordset rs = app->Cnn.Query("Select SVG From Images Order By ID"); !rs.Eof(); rs.MoveNext())
      all.push_back(rs.Fields(0).AsBytes());
    for (int i = 0; i < kPage && !all.empty(); ++i) icons.push_back(all[i * all.size() / kPage]);
    for (const Bytes& b : icons) plain += PlainSvg::Read(b).has_value();
  }
};

const Page& ThePage() {
  static const Page page;
  return page;
}

void BM_PageThroughLibrsvg(benchmark::State& state) {
  const Page& page = ThePage();
  for (auto _ : state) {
    SvgRenderer renderer;  // nothing parsed before
    for (const Bytes& icon : page.icons) {
      DrawingContext ctx(DrawingSurface::Create(kSide, kSide));
      benchmark::DoNotOptimize(renderer.Render(ctx, icon, 0, 0, kSide, kSide));
    }
  }
  state.SetLabel(std::to_string(page.icons.size()) + " icons");
}
BENCHMARK(BM_PageThroughLibrsvg)->Unit(benchmark::kMillisecond);

void BM_PageThroughRenderPicture(benchmark::State& state) {
  const Page& page = ThePage();
  for (auto _ : state) {
    SvgRenderer renderer;
    for (const Bytes& icon : page.icons) {
      DrawingContext ctx(DrawingSurface::Create(kSide, kSide));
      benchmark::DoNotOptimize(renderer.RenderPicture(ctx, icon, 0, 0, kSide, kSide));
    }
  }
  state.SetLabel(std::to_string(page.icons.size()) + " icons, " + std::to_string(page.plain) + " plain");
}
BENCHMARK(BM_PageThroughRenderPicture)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const double librsvg = reporter.Ms("BM_PageThroughLibrsvg"),
               quick = reporter.Ms("BM_PageThroughRenderPicture");
  if (librsvg > 0 && quick > 0) {
    std::printf("\npage of %d icons at %d px: librsvg %.1f ms, RenderPicture %.1f ms (goal well under 40)\n",
                kPage, kSide, librsvg, quick);
    std::printf("RenderPicture / librsvg = %.2f\n", quick / librsvg);
  }
  return 0;
}
