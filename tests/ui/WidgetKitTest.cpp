// The theme and the small controls of the widget kit, driven headless as a
// user would: what they show, what they report and which events follow.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "platform/DrawingContext.h"
#include "platform/TextUtil.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/stock/cwTree.h"
#include "tests/support/Pixels.h"
#include "tests/support/ScopedTheme.h"
#include "tests/support/UiDriver.h"
#include "widgets/cThemeQuillaron.h"

using namespace qds;

namespace {

// Writes down the widgets' own events; the platform's (named "W_...") are left out.
struct Host : cfForm {
  std::vector<std::string> events;
  void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) override {
    if (name.rfind("W_", 0) == 0) return;
    std::string line = source.Key() + ":" + name;
    for (const Value& a : args) line += " " + a.AsString();
    events.push_back(line);
  }
};

// A theme with colours of its own, to see who asks for them.
class LoudTheme : public UiTheme {
 public:
  std::string cTheme_GetIconFontName() const override { return "DejaVu Serif"; }
  void cTheme_FillThemeColorArray(std::vector<std::int64_t>& colors) const override {
    colors = {0x000080, 0x00FFFF, 0x008000, 0x800000, 0xFF00FF, 0x808080, 0x00C000};
  }
  std::int64_t cTheme_GetThemeColor(ThemePart part, int state) const override {
    std::vector<std::int64_t> palette;
    cTheme_FillThemeColorArray(palette);
    return StandardPartColor(palette, part, state);
  }
  double cTheme_GetScrollerSize() const override { return 22; }
  void cTheme_DrawTo(DrawingContext& ctx, ThemePart part, int state, double x, double y, double w, double h,
                     int direction) const override {
    DrawStandardPart(*this, ctx, part, state, x, y, w, h, direction);
  }
};

Bgra Opaque(std::int64_t colour) {
  return {static_cast<int>((colour >> 16) & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
          static_cast<int>(colour & 0xFF), 255};
}

// The way an arrow drawn in a 40 unit square points, in degrees clockwise
// from the right: away from the middle of its ink, which lies towards the
// base of the triangle.
double PointingOf(const UiTheme& theme, int direction) {
  const SurfacePtr s = DrawingSurface::Create(40, 40);
  {
    DrawingContext ctx(s);
    theme.cTheme_DrawTo(ctx, ThemePart::Arrow, 0, 0, 0, 40, 40, direction);
  }
  double sx = 0, sy = 0, n = 0;
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 40; ++x) {
      if (PixelAt(s, x, y).a < 128) continue;
      sx += x + 0.5 - 20, sy += y + 0.5 - 20, ++n;
    }
  }
  if (n == 0) return -1;
  const double degrees = std::atan2(-sy, -sx) * 180 / 3.14159265358979323846;
  return std::fmod(std::round(degrees) + 360, 360);
}

// What "fc-match sans" says, when the tool is there; "" otherwise.
std::string FcMatchSans() {
  std::string out;
  if (FILE* p = ::popen("fc-match -f '%{family[0]}' sans 2>/dev/null", "r")) {
    char buf[256];
    while (std::fgets(buf, sizeof buf, p)) out += buf;
    ::pclose(p);
  }
  return out;
}

}  // namespace

TEST(WidgetKit, ArrowsPointAsTheirDirectionSaysAndUnknownDirectionsPointRight) {
  const cThemeQuillaron theme;
  struct Case {
    int direction;
    double degrees;
  };
  // Up, down, left, right; then down-left, up-left, up-right, down-right.
  for (const Case c :
       {Case{0, 270}, {1, 90}, {2, 180}, {3, 0}, {4, 135}, {5, 225}, {6, 315}, {7, 45}, {42, 0}, {-1, 0}})
    EXPECT_NEAR(PointingOf(theme, c.direction), c.degrees, 3) << "direction " << c.direction;
}

TEST(WidgetKit, StockWidgetsDrawInTheInstalledThemeAndTheStudioThemeFollowsTheDesktop) {
  UiDriver ui;
  // A button, and a list with more rows than it shows, so that its bar is there.
  struct Look {
    Bgra face, listBack, barTrack;
    double barWidth;
  };
  const auto look = [&] {
    Host form;
    form.Move(0, 0, 200, 120);
    form.Children().Add<cwButton>("btn").Move(10, 10, 80, 26);
    auto& tree = form.Children().Add<cwTree>("tre");
    tree.Move(100, 0, 100, 100);
    std::vector<TreeNode> nodes;
    for (int i = 0; i < 12; ++i) nodes.push_back({"n" + std::to_string(i), "Node", {}, {}});
    tree.setNodes(nodes);
    form.Show();
    const SurfacePtr shot = ui.Screenshot(form);
    const double bar = tree.Children().Item("vsbRows").Width();
    return Look{PixelAt(shot, 50, 30), PixelAt(shot, 165, 95),
                PixelAt(shot, static_cast<int>(200 - bar / 2), 50), bar};
  };

  {
    ScopedTheme loud(std::make_shared<LoudTheme>());
    const Look l = look();
    EXPECT_EQ(l.face, Opaque(0x008000));
    EXPECT_EQ(l.listBack, Opaque(0x008000));
    EXPECT_EQ(l.barTrack, Opaque(0x800000));
    EXPECT_EQ(l.barWidth, 22);
  }
  // The built-in theme is back, in the program's own colours.
  Look l = look();
  EXPECT_EQ(l.face, Opaque(0x555555));
  EXPECT_EQ(l.barTrack, Opaque(0x444444));
  EXPECT_EQ(l.barWidth, 16);

  // The studio's theme: the desktop's sans face for icon captions, and
  // scrollers 2 slimmer than the desktop's 17.
  auto studio = std::make_shared<cThemeQuillaron>();
  const std::string font = studio->cTheme_GetIconFontName();
  const std::vector<std::string> installed = InstalledFontFamilies();
  EXPECT_NE(std::find_if(installed.begin(), installed.end(),
                         [&](const std::string& f) { return AsciiLower(f) == AsciiLower(font); }),
            installed.end())
      << font;
  if (const std::string matched = FcMatchSans(); !matched.empty()) {
    EXPECT_EQ(font, matched);
  }
  ScopedTheme studioTheme(studio);
  l = look();
  EXPECT_EQ(l.face, Opaque(0x555555));
  EXPECT_EQ(l.listBack, Opaque(0x555555));
  EXPECT_EQ(l.barWidth, 15);
}
