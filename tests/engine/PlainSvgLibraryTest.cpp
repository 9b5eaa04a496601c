#include <gtest/gtest.h>

#include "app/AppContext.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/PlainSvg.h"
#include "platform/SvgRenderer.h"
#include "tests/support/StartedApp.h"

using namespace qds;

// Every icon of the library, at the sizes the browser and the export use,
// draws to the same bytes through RenderPicture as through librsvg; and the
// quick path takes the plain ones, which is nearly all of them.
TEST(PlainSvgLibrary, EveryIconDrawsTheSameBytesAsLibrsvg) {
  StartedApp s;
  ASSERT_TRUE(StartWithoutWindow(*s.app));
  SvgRenderer renderer(1);
  int icons = 0, quick = 0;
  std::vector<std::string> differing;
  for (DbRecordset rs = s.app->Cnn.Query("Select ID, SVG From Images Order By ID"); !rs.Eof();
       rs.MoveNext()) {
    const Bytes svg = rs.Fields("SVG").AsBytes();
    ++icons;
    quick += PlainSvg::Read(svg).has_value();
    for (const int side : {16, 48, 256}) {
      SurfacePtr ours = DrawingSurface::Create(side, side), theirs = DrawingSurface::Create(side, side);
      DrawingContext oc(ours), tc(theirs);
      EXPECT_TRUE(renderer.RenderPicture(oc, svg, 0, 0, side, side));
      renderer.ClearCache();
      EXPECT_TRUE(renderer.Render(tc, svg, 0, 0, side, side));
      const PixelView a = ours->Pixels(), b = theirs->Pixels();
      if (!std::equal(a.Bytes(), a.Bytes() + side * a.Stride(), b.Bytes()))
        differing.push_back(rs.Fields("ID").AsString() + " at " + std::to_string(side));
    }
  }
  EXPECT_EQ(icons, 3504);
  EXPECT_GE(quick, 3485);
  EXPECT_TRUE(differing.empty()) << differing.size() << " differ, the first " << differing.front();
  RecordProperty("QuickPathIcons", quick);
  std::printf("%d of %d library icons take the quick path\n", quick, icons);
}
