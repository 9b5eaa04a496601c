#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/cwListBase.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/stock/cwScrollable.h"
#include "tests/support/Pixels.h"
#include "tests/support/UiDriver.h"

using namespace qds;

namespace {

Bgra Colour(std::int64_t bgr) {
  return {static_cast<int>((bgr >> 16) & 0xFF), static_cast<int>((bgr >> 8) & 0xFF),
          static_cast<int>(bgr & 0xFF), 255};
}

// Content of a known picture: white, with a red square at (100, 100, 20, 20)
// of the content. It writes down what it is asked to paint and what the
// mouse does, in content coordinates.
struct Sheet : cwScrollable {
  Sheet() : cwScrollable("Sheet") {}
  std::vector<std::string> log;
  std::vector<std::vector<double>> painted;
  int scrolled = 0;
  bool takesWheel = false;
  void PaintContent(DrawingContext& ctx, double x, double y, double w, double h) override {
    painted.push_back({x, y, w, h});
    ctx.SetSourceColor(0xFFFFFF);
    ctx.Rectangle(x, y, w, h);
    ctx.Fill();
    ctx.SetSourceColor(0x0000FF);
    ctx.Rectangle(100, 100, 20, 20);
    ctx.Fill();
  }
  bool ContentMouseDown(int, int, double x, double y) override {
    log.push_back("down " + std::to_string(int(x)) + "," + std::to_string(int(y)));
    return true;
  }
  bool ContentMouseWheel(int, int, double x, double y) override {
    if (takesWheel) log.push_back("wheel " + std::to_string(int(x)) + "," + std::to_string(int(y)));
    return takesWheel;
  }
  void ScrollChanged() override { ++scrolled; }
};

// A list whose rows are numbered, writing down the rows it paints.
struct Numbers : cwListBase {
  Numbers() : cwListBase("Numbers") {}
  std::vector<int> paintedRows;
  void Fill(int n, int selected = -1) {
    std::vector<Row> rows;
    for (int i = 0; i < n; ++i) rows.push_back({"Row " + std::to_string(i)});
    SetRows(std::move(rows), selected);
  }
  void PaintRow(DrawingContext& ctx, int index, double y, double w, bool selected) override {
    paintedRows.push_back(index);
    cwListBase::PaintRow(ctx, index, y, w, selected);
  }
};

struct Scrolling : ::testing::Test {
  UiDriver ui;
  cfForm form;
  void SetUp() override {
    form.Resize(400, 300);
    form.Show();
  }
  // Moves a widget and lets the loop lay it out, however soon that comes.
  void Place(Widget& w, double x, double y, double width, double height) {
    w.Move(x, y, width, height);
    ui.Root().DoEvents();
  }
  void ShiftWheel(int delta, double x, double y) {
    ui.Backend().Push({UiEvent::Type::Wheel, &form, delta, Shift::ShiftKey, 0, x, y});
    ui.Root().DoEvents();
  }
};

}  // namespace

TEST_F(Scrolling, BarsAppearOnlyWhenTheContentDoesNotFitThatWay) {
  auto& sheet = form.Children().Add<Sheet>("sht");
  Place(sheet, 10, 10, 200, 100);
  const auto check = [&](double w, double h, bool vertical, bool horizontal) {
    sheet.setContentSize(w, h);
    ui.Root().DoEvents();
    const std::string what = std::to_string(int(w)) + "x" + std::to_string(int(h));
    EXPECT_EQ(sheet.VBar().Visible(), vertical) << what;
    EXPECT_EQ(sheet.HBar().Visible(), horizontal) << what;
    EXPECT_EQ(sheet.ViewWidth(), vertical ? 184 : 200) << what;
    EXPECT_EQ(sheet.ViewHeight(), horizontal ? 84 : 100) << what;
  };
  check(150, 80, false, false);
  check(200, 100, false, false);  // exactly the widget's size
  check(150, 300, true, false);
  check(400, 80, false, true);
  check(400, 300, true, true);
  // One bar takes room from the other way, which then needs its bar too.
  check(400, 90, true, true);
  check(190, 300, true, true);

  // The bars lie along the right and the bottom of the view, the corner
  // between them painted, the content clipped to the view.
  EXPECT_EQ(sheet.VBar().Left(), 184);
  EXPECT_EQ(sheet.VBar().Height(), 84);
  EXPECT_EQ(sheet.HBar().Top(), 84);
  EXPECT_EQ(sheet.HBar().Width(), 184);
  const SurfacePtr shot = ui.Screenshot(form);
  EXPECT_EQ(PixelAt(shot, 10 + 192, 10 + 92), Colour(StockColor(Palette::Border)));
  EXPECT_EQ(PixelAt(shot, 10 + 100, 10 + 50), Colour(0xFFFFFF));

  // A larger widget has room for it all, and the bars go.
  sheet.setContentSize(380, 280);
  ui.Root().DoEvents();
  EXPECT_TRUE(sheet.VBar().Visible() && sheet.HBar().Visible());
  Place(sheet, 10, 10, 390, 290);
  EXPECT_FALSE(sheet.VBar().Visible());
  EXPECT_FALSE(sheet.HBar().Visible());
  EXPECT_EQ(sheet.ViewWidth(), 390);
}

TEST_F(Scrolling, TheOffsetStaysInRangeAndPaintingAndTheMouseFollowIt) {
  auto& sheet = form.Children().Add<Sheet>("sht");
  Place(sheet, 10, 10, 200, 100);
  sheet.setContentSize(400, 300);  // a view of 184 by 84
  ui.Root().DoEvents();

  sheet.ScrollTo(1000, -5);
  EXPECT_EQ(sheet.ScrollX(), 400 - 184);
  EXPECT_EQ(sheet.ScrollY(), 0);
  EXPECT_EQ(sheet.HBar().Value(), sheet.HBar().Max);
  sheet.ScrollTo(90, 95);
  EXPECT_EQ(sheet.VBar().Value(), 95);
  EXPECT_EQ(sheet.scrolled, 2);

  // The red square at (100, 100) of the content shows at (10, 5) of the widget.
  sheet.painted.clear();
  const SurfacePtr shot = ui.Screenshot(form);
  ASSERT_FALSE(sheet.painted.empty());
  EXPECT_EQ(sheet.painted.back(), (std::vector<double>{90, 95, 184, 84}));
  EXPECT_EQ(PixelAt(shot, 10 + 15, 10 + 10), Colour(0x0000FF));
  EXPECT_EQ(PixelAt(shot, 10 + 35, 10 + 10), Colour(0xFFFFFF));

  // A press on the view reaches the content under it; one in the corner nobody.
  ui.ClickAt(form, 10 + 30, 10 + 40);
  ui.ClickAt(form, 10 + 190, 10 + 90);
  EXPECT_EQ(sheet.log, std::vector<std::string>{"down 120,135"});

  // The bar's arrow moves a line, the wheel three, shift with it sideways.
  ui.ClickAt(form, 10 + 192, 10 + 80);  // the vertical bar's lower arrow
  EXPECT_EQ(sheet.ScrollY(), 95 + 20);
  ui.Wheel(form, 1, 10 + 50, 10 + 50);
  EXPECT_EQ(sheet.ScrollY(), 95 + 20 - 60);
  ShiftWheel(-1, 10 + 50, 10 + 50);
  EXPECT_EQ(sheet.ScrollX(), 90 + 60);
  EXPECT_EQ(sheet.ScrollY(), 55);
  // ...unless the content takes the wheel itself.
  sheet.takesWheel = true;
  ui.Wheel(form, 1, 10 + 50, 10 + 50);
  EXPECT_EQ(sheet.ScrollY(), 55);
  EXPECT_EQ(sheet.log.back(), "wheel 200,105");

  // The least scroll that shows a rectangle, either way.
  sheet.EnsureVisible(0, 200, 10, 30);
  EXPECT_EQ(sheet.ScrollY(), 230 - 84);
  EXPECT_EQ(sheet.ScrollX(), 0);
  sheet.EnsureVisible(0, 160, 10, 10);  // already shown: no move
  EXPECT_EQ(sheet.ScrollY(), 230 - 84);
  sheet.EnsureVisible(300, 20, 50, 10);
  EXPECT_EQ(sheet.ScrollX(), 350 - 184);
  EXPECT_EQ(sheet.ScrollY(), 20);

  // Less content, or a larger widget, brings the offset back into range.
  sheet.setContentSize(250, 300);
  EXPECT_EQ(sheet.ScrollX(), 250 - 184);
  EXPECT_EQ(sheet.HBar().Value(), 250 - 184);
  Place(sheet, 10, 10, 300, 200);
  EXPECT_EQ(sheet.ScrollX(), 0);
  EXPECT_EQ(sheet.HBar().Value(), 0);
  EXPECT_FALSE(sheet.HBar().Visible());
}

TEST_F(Scrolling, AScrolledListShowsClicksAndPointsAtTheRowsThatAreThere) {
  auto& list = form.Children().Add<Numbers>("lst");
  Place(list, 10, 10, 200, 100);  // five rows of 20
  list.Fill(30);
  int clicks = 0;
  list.Click = [&] { ++clicks; };
  ui.Root().DoEvents();
  ASSERT_TRUE(list.VBar().Visible());
  EXPECT_FALSE(list.HBar().Visible());

  list.ScrollTo(0, 200);
  EXPECT_EQ(list.TopIndex(), 10);
  WidgetState state;
  list.W_ReportState(state);
  EXPECT_EQ(state.scrollIndex, 10);
  // The rows painted are those shown, where they are shown.
  list.paintedRows.clear();
  list.setListIndex(12);
  const SurfacePtr shot = ui.Screenshot(form);
  EXPECT_EQ(list.paintedRows, (std::vector<int>{10, 11, 12, 13, 14}));
  EXPECT_EQ(PixelAt(shot, 10 + 150, 10 + 2 * 20 + 10), Colour(StockColor(Palette::Accent)));
  EXPECT_NE(PixelAt(shot, 10 + 150, 10 + 1 * 20 + 10), Colour(StockColor(Palette::Accent)));

  // A click chooses the row under the mouse.
  ui.ClickAt(form, 10 + 50, 10 + 30);
  EXPECT_EQ(list.ListIndex(), 11);
  EXPECT_EQ(clicks, 1);

  // Scripts aim at rows on the screen only, in the list's own units.
  const WidgetPoint shown = list.W_RowPoint(11);
  EXPECT_EQ(shown.widget, &list);
  EXPECT_EQ(shown.y, 30);
  EXPECT_LT(shown.x, 184);
  EXPECT_EQ(list.W_RowPoint(9).widget, nullptr);
  EXPECT_EQ(list.W_RowPoint(15).widget, nullptr);
  list.ScrollTo(0, 210);  // half of row 10 and half of row 15 show
  EXPECT_EQ(list.W_RowPoint(10).y, 5);
  EXPECT_EQ(list.W_RowPoint(15).y, 95);
  ui.ClickAt(form, 10 + 50, 10 + list.W_RowPoint(15).y);
  EXPECT_EQ(list.ListIndex(), 15);
  // Below the last row nothing is chosen.
  list.Fill(3);
  ui.ClickAt(form, 10 + 50, 10 + 90);
  EXPECT_EQ(list.ListIndex(), -1);
  EXPECT_FALSE(list.VBar().Visible());
}

TEST_F(Scrolling, KeysWheelAndBarMoveThroughALongList) {
  auto& list = form.Children().Add<Numbers>("lst");
  Place(list, 10, 10, 200, 100);
  list.Fill(30, 0);
  list.SetFocus();
  ui.Root().DoEvents();

  ui.Press(form, Key::End);
  EXPECT_EQ(list.ListIndex(), 29);
  EXPECT_EQ(list.ScrollY(), 30 * 20 - 100);
  EXPECT_EQ(list.TopIndex(), 25);
  EXPECT_EQ(list.VBar().Value(), list.VBar().Max);
  EXPECT_EQ(list.W_RowPoint(29).y, 90);
  ui.Press(form, Key::Home);
  EXPECT_EQ(list.ScrollY(), 0);
  ui.Press(form, Key::PageDown);  // a page is the five rows shown
  EXPECT_EQ(list.ListIndex(), 5);
  EXPECT_EQ(list.TopIndex(), 1);
  ui.Press(form, Key::Up);
  ui.Press(form, Key::Up);
  EXPECT_EQ(list.ListIndex(), 3);
  EXPECT_EQ(list.TopIndex(), 1);  // shown already: no scroll

  // The wheel scrolls three rows and leaves the selection.
  ui.Wheel(form, -2, 10 + 50, 10 + 50);
  EXPECT_EQ(list.TopIndex(), 7);
  EXPECT_EQ(list.ListIndex(), 3);
  // A key brings the selected row back.
  ui.Press(form, Key::Down);
  EXPECT_EQ(list.ListIndex(), 4);
  EXPECT_EQ(list.TopIndex(), 4);
  // So does choosing one in code, and a key that moves nowhere.
  list.setListIndex(20);
  EXPECT_EQ(list.ScrollY(), 21 * 20 - 100);
  ui.Press(form, Key::Home);
  ui.Wheel(form, -2, 10 + 50, 10 + 50);
  EXPECT_EQ(list.TopIndex(), 6);
  ui.Press(form, Key::Up);
  EXPECT_EQ(list.ListIndex(), 0);
  EXPECT_EQ(list.TopIndex(), 0);

  // The thumb drags by pixels, not by whole rows.
  list.ScrollTo(0, 0);
  const SurfacePtr bar = ui.Screenshot(form);
  double start = 0;
  for (int y = 16; y < 84 && start == 0; ++y) {
    if (PixelAt(bar, 10 + 192, 10 + y) == Colour(StockColor(Palette::Face))) start = y;
  }
  ASSERT_GT(start, 0);
  ui.Mouse(form, UiEvent::Type::MouseDown, 10 + 192, 10 + start + 2);
  ui.Mouse(form, UiEvent::Type::MouseMove, 10 + 192, 10 + start + 9);
  ui.Mouse(form, UiEvent::Type::MouseUp, 10 + 192, 10 + start + 9);
  EXPECT_GT(list.ScrollY(), 0);
  EXPECT_NE(std::fmod(list.ScrollY(), 20.0), 0);
  EXPECT_EQ(list.VBar().Value(), list.ScrollY());
}
