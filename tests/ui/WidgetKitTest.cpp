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
#include "widgets/cwDropDownList.h"
#include "widgets/cwProgressBar.h"
#include "widgets/cwSlider.h"
#include "widgets/cwToolBar.h"
#include "widgets/cwUpDown.h"

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
    form.Resize(200, 120);
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

  const double plainWidth = MeasureUiText("Wide Icons of a Theme").width;
  {
    ScopedTheme loud(std::make_shared<LoudTheme>());
    // Captions are set in the theme's font.
    EXPECT_NE(MeasureUiText("Wide Icons of a Theme").width, plainWidth);
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

namespace {

DataRows NamedRows(int count) {
  DataRows rows;
  for (int i = 0; i < count; ++i)
    rows.push_back({"r" + std::to_string(i), {{"Name", "Row " + std::to_string(i)}}});
  return rows;
}

// Clicks where a widget says one of its parts is, on whichever form shows it.
void ClickPoint(UiDriver& ui, const WidgetPoint& p) {
  ASSERT_NE(p.widget, nullptr);
  double x, y;
  p.widget->FormPosition(x, y);
  cfForm& form = *p.widget->Form();
  ui.Mouse(form, UiEvent::Type::MouseMove, (x + p.x) * form.Zoom(), (y + p.y) * form.Zoom());
  ui.ClickAt(form, (x + p.x) * form.Zoom(), (y + p.y) * form.Zoom());
}

}  // namespace

TEST(WidgetKit, ADropDownListTakesARowByClickOrReturnKeepsItOnEscapeAndStepsWhenClosed) {
  UiDriver ui;
  Host form;
  form.Resize(300, 200);
  form.MoveOnScreen(100, 50);
  auto& list = form.Children().Add<cwDropDownList>("ddl");
  list.Move(10, 10, 150, 24);
  int clicks = 0;
  list.Click = [&] { ++clicks; };
  form.Show();

  // No rows: nothing chosen, nothing to open.
  WidgetState state;
  list.W_ReportState(state);
  EXPECT_EQ(state.text, "");
  EXPECT_EQ(state.listIndex, -1);
  ui.Click(list);
  EXPECT_FALSE(list.IsPopup());

  list.SetDataSource(NamedRows(15), "Name", "Shapes");
  EXPECT_EQ(list.ListCount(), 15);
  EXPECT_EQ(list.Text(), "");
  ui.Click(list);
  ASSERT_TRUE(list.IsPopup());
  // Under the box, twelve rows high; the rest scroll.
  EXPECT_EQ(list.PopupForm()->ScreenY(), 50 + 10 + 24);
  EXPECT_EQ(list.PopupForm()->Height(), 12 * 20 + 3);  // and the list's frame
  ui.Press(form, Key::Down);
  ui.Press(form, Key::Escape);
  EXPECT_FALSE(list.IsPopup());
  EXPECT_EQ(list.ListIndex(), -1);
  ui.Click(list);
  ui.Press(form, Key::Down);
  ui.Press(form, Key::Down);
  ui.Press(form, Key::Return);
  EXPECT_FALSE(list.IsPopup());
  EXPECT_EQ(list.Text(), "Row 1");
  EXPECT_EQ(clicks, 1);

  // A click on a row takes it; one scrolled out of sight is scrolled to.
  ui.Click(list);
  EXPECT_EQ(list.W_ItemPoint("r99").widget, nullptr);
  ClickPoint(ui, list.W_ItemPoint("r3"));
  EXPECT_EQ(list.Text(), "Row 3");
  ui.Click(list);
  ClickPoint(ui, list.W_RowPoint(4));
  EXPECT_EQ(list.Text(), "Row 4");
  ui.Click(list);
  ClickPoint(ui, list.W_ItemPoint("r14"));
  EXPECT_EQ(list.SelectedKey(), "r14");
  EXPECT_EQ(clicks, 4);
  // The row that was chosen already: no news, unless asked for always.
  ui.Click(list);
  ClickPoint(ui, list.W_ItemPoint("r14"));
  EXPECT_EQ(clicks, 4);
  list.DoEventClickAlways = true;
  ui.Click(list);
  ClickPoint(ui, list.W_ItemPoint("r14"));
  EXPECT_EQ(clicks, 5);
  EXPECT_EQ(list.W_ItemPoint("r14").widget, nullptr);  // closed: no rows to point at

  // Closed, the wheel and the keys step one row, and stop at the ends.
  ui.Wheel(form, 1, 50, 20);
  EXPECT_EQ(list.Text(), "Row 13");
  ui.Press(form, Key::Down);
  ui.Press(form, Key::Down);
  EXPECT_EQ(list.Text(), "Row 14");
  ui.Press(form, Key::Up);
  EXPECT_EQ(list.ListIndex(), 13);
  EXPECT_EQ(clicks, 8);
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "ddl:Click"), 8);

  // New rows keep the chosen one by its key.
  DataRows fewer = NamedRows(15);
  fewer.erase(fewer.begin(), fewer.begin() + 10);
  list.SetDataSource(fewer, "Name");
  EXPECT_EQ(list.ListIndex(), 3);
  EXPECT_EQ(list.Text(), "Row 13");
  state = {};
  list.W_ReportState(state);
  ASSERT_TRUE(state.items);
  EXPECT_EQ(state.items->size(), 5u);
  EXPECT_EQ(state.items->at(3).key, "r13");
  EXPECT_EQ(state.items->at(3).caption, "Row 13");

  // A list of fonts shows each in its own face.
  list.SetDataSource({{"serif", {{"Name", "DejaVu Serif"}}}}, "Name");
  list.setListIndex(0);
  const SurfacePtr plain = ui.Screenshot(form);
  list.IsFontSelection = true;
  const SurfacePtr inFont = ui.Screenshot(form);
  int differ = 0;
  for (int x = 10; x < 160; ++x) {
    for (int y = 10; y < 34; ++y) differ += !(PixelAt(plain, x, y) == PixelAt(inFont, x, y));
  }
  EXPECT_GT(differ, 20);
}

TEST(WidgetKit, AnUpDownStepsThroughItsRowsByArrowsWheelAndKeys) {
  UiDriver ui;
  Host form;
  form.Resize(200, 100);
  auto& spin = form.Children().Add<cwUpDown>("upd");
  spin.Move(10, 10, 80, 24);
  int changes = 0, released = 0;
  spin.Change = [&] { ++changes; };
  spin.MouseUp = [&] { ++released; };
  form.Show();
  ui.Root().DoEvents();
  EXPECT_EQ(spin.DataIndex(), -1);
  EXPECT_EQ(spin.DataValue(), "");

  spin.SetDataSource({{"s16", {{"Size", 16}}}, {"s24", {{"Size", 24}}}, {"s32", {{"Size", 32}}}}, "Size");
  EXPECT_EQ(spin.DataValue(), "16");
  ClickPoint(ui, spin.W_ItemPoint("up"));  // already at the first row
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(released, 1);
  ClickPoint(ui, spin.W_ItemPoint("down"));
  EXPECT_EQ(spin.DataIndex(), 1);
  EXPECT_EQ(spin.DataKey(), "s24");
  EXPECT_EQ(released, 2);
  // One row per notch, over the text or over the bar alike.
  ui.Wheel(form, -1, 20, 20);
  EXPECT_EQ(spin.DataValue(), "32");
  ui.Wheel(form, 1, 85, 20);
  EXPECT_EQ(spin.DataValue(), "24");
  ui.Press(form, Key::Up);
  EXPECT_EQ(spin.DataValue(), "16");
  EXPECT_EQ(changes, 4);
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "upd:Change"), 4);
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "upd:MouseUp"), 2);

  // Fewer rows hold the row shown inside them.
  spin.setDataIndex(2);
  spin.SetDataSource({{"a", {{"Size", 8}}}, {"b", {{"Size", 12}}}}, "Size");
  EXPECT_EQ(spin.DataIndex(), 1);
  EXPECT_EQ(spin.DataValue(), "12");
  WidgetState state;
  spin.W_ReportState(state);
  EXPECT_EQ(state.text, "12");
  EXPECT_EQ(state.max, 1);
  // A row number out of range is held to the rows there are.
  spin.setDataIndex(99);
  EXPECT_EQ(spin.DataValue(), "12");
  spin.setDataIndex(-5);
  EXPECT_EQ(spin.DataValue(), "8");
}

TEST(WidgetKit, ASliderTakesItsValueFromTheTrackTheWheelAndTypingAndTellsOnlyRealChanges) {
  UiDriver ui;
  Host form;
  form.Resize(300, 100);
  auto& slider = form.Children().Add<cwSlider>("sld");
  slider.Move(10, 10, 240, 24);
  slider.Unit = "px";
  int changed = 0;
  slider.Changed = [&] { ++changed; };
  auto& other = form.Children().Add<cwButton>("btn");
  other.Move(10, 60, 80, 24);
  form.Show();
  ui.Root().DoEvents();

  slider.setValue(30);
  slider.setValue(30);
  EXPECT_EQ(changed, 1);
  slider.setValue(500);
  EXPECT_EQ(slider.Value(), 100);
  slider.setValue(-3);
  EXPECT_EQ(slider.Value(), 0);
  EXPECT_EQ(changed, 3);
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "sld:Changed"), 3);

  // Where the knob of 50 is, a press makes 50; dragging past the end stops at Max.
  slider.setValue(50);
  const WidgetPoint half = slider.W_ItemPoint("knob");
  slider.setValue(0);
  ui.Mouse(form, UiEvent::Type::MouseDown, 10 + half.x, 22);
  EXPECT_EQ(slider.Value(), 50);
  ui.Mouse(form, UiEvent::Type::MouseMove, 290, 60);
  EXPECT_EQ(slider.Value(), 100);
  ui.Mouse(form, UiEvent::Type::MouseUp, 290, 60);
  ui.Mouse(form, UiEvent::Type::MouseMove, 20, 22);
  EXPECT_EQ(slider.Value(), 100);
  ui.Wheel(form, -2, 40, 22);
  EXPECT_EQ(slider.Value(), 98);
  WidgetState state;
  slider.W_ReportState(state);
  EXPECT_EQ(state.text, "98 px");

  // Typed digits count after a pause, each key starting it again.
  changed = 0;
  ClickPoint(ui, slider.W_ItemPoint("value"));
  ASSERT_TRUE(slider.Typing());
  ui.Type(form, "4");
  ui.Backend().AdvanceMs(cwSlider::kTypingPauseMs - 100);
  ui.Root().DoEvents();
  ui.Type(form, "2");
  ui.Backend().AdvanceMs(cwSlider::kTypingPauseMs - 100);
  ui.Root().DoEvents();
  EXPECT_EQ(slider.Value(), 98);
  ui.Backend().AdvanceMs(101);
  ui.Root().DoEvents();
  EXPECT_EQ(slider.Value(), 42);
  EXPECT_TRUE(slider.Typing());
  // Return counts at once and ends the typing.
  ui.Type(form, "7");
  ui.Press(form, Key::Return);
  EXPECT_FALSE(slider.Typing());
  EXPECT_EQ(slider.Value(), 100);  // 427, held to Max
  EXPECT_EQ(changed, 2);
  // Escape puts back the value from before the typing, counted or not.
  ClickPoint(ui, slider.W_ItemPoint("value"));
  ui.Type(form, "12");
  ui.Backend().AdvanceMs(cwSlider::kTypingPauseMs + 1);
  ui.Root().DoEvents();
  EXPECT_EQ(slider.Value(), 12);
  ui.Type(form, "3");
  ui.Press(form, Key::Escape);
  EXPECT_FALSE(slider.Typing());
  EXPECT_EQ(slider.Value(), 100);
  ui.Backend().AdvanceMs(cwSlider::kTypingPauseMs * 2);
  ui.Root().DoEvents();
  EXPECT_EQ(slider.Value(), 100);
  // Going to another widget counts what was typed.
  ClickPoint(ui, slider.W_ItemPoint("value"));
  ui.Type(form, "x5");  // only the digit is taken
  ui.Click(other);
  EXPECT_FALSE(slider.Typing());
  EXPECT_EQ(slider.Value(), 5);
}

TEST(WidgetKit, AProgressBarPaintsItsFractionAndItsMarqueeRunsAcrossAndComesRound) {
  UiDriver ui;
  Host form;
  form.Resize(200, 40);
  auto& bar = form.Children().Add<cwProgressBar>("prg");
  bar.Move(0, 10, 200, 20);
  bar.BorderRadius = 0;
  form.Show();
  const Bgra accent = Opaque(StockColor(Palette::Accent)), track = Opaque(StockColor(Palette::Border));
  const auto at = [&](int x) { return PixelAt(ui.Screenshot(form), x, 12); };

  // A bound that passes the other takes it, and the value, along.
  bar.setValue(80);
  bar.setMin(150);
  EXPECT_EQ(bar.Max(), 150);
  EXPECT_EQ(bar.Value(), 150);
  bar.setMin(0);
  bar.setMax(200);
  bar.setValue(50);  // a quarter
  bar.Caption = "Busy";
  EXPECT_EQ(at(45), accent);
  EXPECT_EQ(at(55), track);
  const SurfacePtr shot = ui.Screenshot(form);
  int ink = 0;  // the caption, in the middle
  for (int x = 80; x < 120; ++x) {
    for (int y = 10; y < 30; ++y) ink += PixelAt(shot, x, y).r > 0xB0;
  }
  EXPECT_GT(ink, 10);
  bar.Clear();
  EXPECT_EQ(at(45), track);
  WidgetState state;
  bar.W_ReportState(state);
  EXPECT_EQ(state.caption, "");
  EXPECT_EQ(state.value, 0);

  // The marquee's block, a quarter of the width, moves a twentieth of the
  // width each tick and comes back in from the left once it has left.
  bar.setStyle(ProgressStyle::Marquee);
  const auto tick = [&](int n) {
    for (int i = 0; i < n; ++i) {
      ui.Backend().AdvanceMs(cwProgressBar::kMarqueeIntervalMs);
      ui.Root().DoEvents();
    }
  };
  tick(10);  // the block's right edge half way: 50..100
  EXPECT_EQ(at(45), track);
  EXPECT_EQ(at(55), accent);
  EXPECT_EQ(at(95), accent);
  EXPECT_EQ(at(105), track);
  tick(14);  // 190..240: only its left end still shows
  EXPECT_EQ(at(185), track);
  EXPECT_EQ(at(195), accent);
  tick(2);  // round again: -40..10
  EXPECT_EQ(at(5), accent);
  EXPECT_EQ(at(15), track);
  EXPECT_EQ(at(195), track);
  bar.setStyle(ProgressStyle::Normal);
  tick(5);
  EXPECT_EQ(at(5), track);
}

TEST(WidgetKit, AToolBarItemIsSeenPressedBeforeItsClickAndItsArrowHasAClickOfItsOwn) {
  UiDriver ui;
  Host form;
  form.Resize(300, 100);
  auto& bar = form.Children().Add<cwToolBar>("tb");
  bar.Move(0, 0, 300, 30);
  cwToolBarItem& open = bar.AddItem("open", "", "Open");
  cwToolBarItem& ruler = bar.AddItem("ruler", "", "Ruler", true);
  cwToolBarItem& exportItem = bar.AddItem("export", "", "Export", false, true);
  std::vector<std::string> told;
  bar.Click = [&](const std::string& key) { told.push_back("Click " + key); };
  bar.ArrowClick = [&](const std::string& key) { told.push_back("ArrowClick " + key); };
  bar.MouseEnter = [&](const std::string& key) { told.push_back("MouseEnter " + key); };
  // What the user sees while the click is handled.
  bool paintedFirst = false;
  open.Click = [&] {
    double x, y;
    open.FormPosition(x, y);
    paintedFirst = !form.Dirty() && PixelAt(form.Surface(), static_cast<int>(x) + 4,
                                            static_cast<int>(y) + 8) == Opaque(StockColor(Palette::Accent));
  };
  form.Show();
  ui.Root().DoEvents();
  const auto settle = [&] {
    ui.Backend().AdvanceMs(cwToolBarItem::kDecoupleMs);
    ui.Root().DoEvents();
  };

  // In a row, each as long as its caption wants, all as high as the bar.
  EXPECT_EQ(ruler.Left(), open.Left() + open.Width() + 2);
  EXPECT_EQ(open.Height(), 26);
  EXPECT_EQ(open.ToolTip, "Open");

  ui.Click(open);
  EXPECT_EQ(told, std::vector<std::string>{"MouseEnter open"});  // not yet: the pressed look first
  settle();
  EXPECT_TRUE(paintedFirst);
  EXPECT_EQ(told, (std::vector<std::string>{"MouseEnter open", "Click open"}));
  // Once told, it no longer looks pressed.
  EXPECT_NE(PixelAt(ui.Screenshot(form), static_cast<int>(open.Left()) + 4, 8),
            Opaque(StockColor(Palette::Accent)));

  // A check item toggles with each click.
  ui.Click(ruler);
  settle();
  EXPECT_TRUE(ruler.Checked);
  ui.Click(ruler);
  settle();
  EXPECT_FALSE(ruler.Checked);

  // The arrow at the right end of an item has its own click; the rest of it the plain one.
  told.clear();
  const double arrowX = exportItem.Left() + exportItem.Width() - cwToolBarItem::kArrowWidth / 2;
  ui.Mouse(form, UiEvent::Type::MouseMove, arrowX, 15);
  ui.ClickAt(form, arrowX, 15);
  settle();
  ClickPoint(ui, bar.W_ItemPoint("export"));
  settle();
  EXPECT_EQ(told, (std::vector<std::string>{"MouseEnter export", "ArrowClick export", "Click export"}));
  // Let go off the item: nothing.
  ui.Mouse(form, UiEvent::Type::MouseDown, arrowX, 15);
  ui.Mouse(form, UiEvent::Type::MouseUp, 150, 80);
  settle();
  EXPECT_EQ(told.size(), 3u);
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "export:ArrowClick"), 1);
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "tb:ArrowClick export"), 1);
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "tb:Click ruler"), 2);

  WidgetState state;
  ruler.Checked = true;
  exportItem.setEnabled(false);
  bar.W_ReportState(state);
  ASSERT_TRUE(state.items);
  ASSERT_EQ(state.items->size(), 3u);
  EXPECT_EQ(state.items->at(1).key, "ruler");
  EXPECT_TRUE(state.items->at(1).checked);
  EXPECT_EQ(state.items->at(2).caption, "Export");
  EXPECT_FALSE(state.items->at(2).enabled);

  // Standing up, the items go one under another.
  bar.Move(0, 0, 60, 100);
  bar.setVertical(true);
  ui.Root().DoEvents();
  EXPECT_EQ(ruler.Left(), open.Left());
  EXPECT_EQ(ruler.Top(), open.Top() + open.Height() + 2);
  EXPECT_EQ(open.Width(), 56);
}
