// The design canvas on the headless backend: which layer a press lands on,
// what it paints under and over the layers, its rulers and keys, and the
// nine-point position picker.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "app/AppContext.h"
#include "design/cwCanvas.h"
#include "design/cwPosQuad.h"
#include "design/cwPreview.h"
#include "design/cwRuler.h"
#include "platform/ui/Form.h"
#include "tests/support/Pixels.h"
#include "tests/support/TempDir.h"
#include "tests/support/UiDriver.h"

using namespace qds;

namespace {

// A layer of one filled rectangle in a 256 box.
SVGItemPtr RectLayer(double x, double y, double w, double h, const std::string& fill) {
  const std::string svg =
      R"(<svg xmlns="http://www.w3.org/2000/svg" width="256" height="256" viewBox="0 0 256 256">)"
      R"(<rect x=")" +
      std::to_string(x) + R"(" y=")" + std::to_string(y) + R"(" width=")" + std::to_string(w) +
      R"(" height=")" + std::to_string(h) + R"(" fill=")" + fill + R"("/></svg>)";
  auto layer = std::make_shared<cSVGItem>();
  layer->Init(Value(0), ToBytes(svg), "rect");
  return layer;
}

// A form that keeps the keys no widget took.
struct KeyForm : cfForm {
  KeyForm() : cfForm("CanvasForm") {}
  std::vector<int> keys;
  bool Form_KeyDown(int keyCode, int) override {
    keys.push_back(keyCode);
    return true;
  }
};

// A canvas of 336 units at the form's top-left corner: with its border of
// 80, a drawing of 256 at (40, 40). Its design has no layers yet.
struct CanvasHost {
  TempDir dir;
  ScopedAppContext app{dir.Path()};
  UiDriver ui;
  KeyForm form;
  cwCanvas& canvas = form.Children().Add<cwCanvas>("Canvas");
  std::vector<std::string> events;
  int lastHit = -2;

  CanvasHost() {
    form.Resize(400, 400);
    canvas.Move(0, 0, 336, 336);
    canvas.MouseDown = [this](int, int, int hit, double, double) { lastHit = hit; };
    canvas.KeyDown = [this](int key, int) { events.push_back("KeyDown " + std::to_string(key)); };
    canvas.Painted = [this] { events.push_back("Painted"); };
    form.Show();
    ui.Root().DoEvents();
  }
  // The layer a press at a point of the drawing hits.
  int PressAt(double x, double y) {
    const double z = form.Zoom();
    lastHit = -2;
    ui.Mouse(form, UiEvent::Type::MouseDown, (40 + x) * z, (40 + y) * z);
    ui.Mouse(form, UiEvent::Type::MouseUp, (40 + x) * z, (40 + y) * z);
    return lastHit;
  }
  // What the form shows at a point of the drawing.
  Bgra Shown(double x, double y) {
    canvas.Refresh();
    return PixelAt(ui.Screenshot(form), static_cast<int>(40 + x), static_cast<int>(40 + y));
  }
};

}  // namespace

TEST(Canvas, APressHitsTheTopmostLayerThatShowsInkThere) {
  CanvasHost h;
  // Top: the left half in red. Below: the top half in blue. The bottom
  // right quarter is empty canvas.
  h.app->Layers.Add(RectLayer(0, 0, 128, 256, "#ff0000"), "left");
  h.app->Layers.Add(RectLayer(0, 0, 256, 128, "#0000ff"), "top");
  h.ui.Root().DoEvents();

  EXPECT_EQ(h.PressAt(64, 64), 0);   // both have ink: the top layer
  EXPECT_EQ(h.PressAt(192, 64), 1);  // the top layer's box, but no ink: through to the one below
  EXPECT_EQ(h.PressAt(64, 192), 0);
  EXPECT_EQ(h.PressAt(192, 192), -1);  // nothing there
  EXPECT_EQ(h.PressAt(-20, 64), -1);   // the margin
  EXPECT_TRUE(h.canvas.HasFocus());

  // A hidden layer neither shows nor catches the mouse.
  h.app->Layers.Item(0)->setVisible(false);
  EXPECT_EQ(h.PressAt(64, 64), 1);
  EXPECT_EQ(h.PressAt(64, 192), -1);
  h.app->Layers.Item(0)->setVisible(true);

  // A script finds a point of a layer where a press hits it.
  for (int row : {0, 1}) {
    const WidgetPoint p = h.canvas.W_RowPoint(row);
    ASSERT_TRUE(p.widget) << row;
    EXPECT_EQ(h.canvas.HitTest(p.x, p.y), row);
  }

  // At a zoom of 1.5 the drawing has 384 pixels a side, and a press is
  // looked up in them: half a unit right of the red edge is off it.
  h.form.setZoom(1.5);
  h.canvas.Refresh();
  h.ui.Root().DoEvents();
  EXPECT_EQ(h.canvas.DevicePixelSide(), 384);
  EXPECT_EQ(h.PressAt(127.5, 200), 0);
  EXPECT_EQ(h.PressAt(128.5, 200), -1);
}

TEST(Canvas, TheBackgroundIsAChessBoardOrAColourAndTheDesignsOpacityFadesTheLayers) {
  CanvasHost h;
  // A drag cannot go on without layers.
  h.canvas.Dragging = true;
  // On the form's grey 0x323232: squares of 4 pixels (256 / 64), white at
  // 0.6 and 0.3 in turn.
  const Bgra light = h.Shown(1, 1), dark = h.Shown(5, 1);
  EXPECT_TRUE(Near(light, {173, 173, 173, 255}, 3)) << light;
  EXPECT_TRUE(Near(dark, {112, 112, 112, 255}, 3)) << dark;
  EXPECT_FALSE(h.canvas.Dragging);
  EXPECT_EQ(h.Shown(5, 5), light);
  EXPECT_EQ(h.Shown(9, 1), light);

  h.canvas.setColor(0x0000FF);  // red, as 0xBBGGRR
  EXPECT_EQ(h.Shown(1, 1), (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(h.Shown(5, 1), (Bgra{0, 0, 255, 255}));

  // A black layer over white; the design at 50 per cent only while its
  // opacity is in force.
  h.canvas.setColor(0xFFFFFF);
  h.app->Layers.Add(RectLayer(0, 0, 256, 256, "#000000"), "black");
  EXPECT_EQ(h.Shown(100, 100), (Bgra{0, 0, 0, 255}));
  h.app->DesignOpacity = 50;
  EXPECT_EQ(h.Shown(100, 100), (Bgra{0, 0, 0, 255}));
  h.app->DesignOpacityOn = true;
  EXPECT_TRUE(Near(h.Shown(100, 100), {128, 128, 128, 255}, 2)) << h.Shown(100, 100);

  // The preview's picture comes with the paints that ask for it, on grey
  // behind a chess board, and the preview shows it at its own size.
  auto& preview = h.form.Children().Add<cwPreview>("Preview");
  preview.Move(340, 0, 48, 48);
  preview.setCanvas(&h.canvas);
  h.ui.Root().DoEvents();
  EXPECT_FALSE(h.canvas.PreviewSurface());
  h.canvas.setColor(-1);
  h.app->Layers.Item(0)->setZoomPercent(50);
  h.app->DesignOpacityOn = false;
  h.canvas.setDrawPreview(true);
  h.events.clear();
  h.Shown(0, 0);
  EXPECT_EQ(h.events, (std::vector<std::string>{"Painted"}));
  ASSERT_TRUE(h.canvas.PreviewSurface());
  EXPECT_EQ(h.canvas.PreviewSurface()->Width(), 48);
  preview.Refresh();
  const SurfacePtr shot = h.ui.Screenshot(h.form);
  EXPECT_EQ(PixelAt(shot, 340 + 4, 4), (Bgra{192, 192, 192, 255}));
  EXPECT_EQ(PixelAt(shot, 340 + 24, 24), (Bgra{0, 0, 0, 255}));
}

TEST(Canvas, RulersMarkTheMouseUnlessTheMarksAreOffAndArrowsStayOnTheCanvas) {
  CanvasHost h;
  auto& hRuler = *h.canvas.Find<cwRuler>("hRuler");
  auto& vRuler = *h.canvas.Find<cwRuler>("vRuler");
  const auto rulerStrip = [&] {
    const SurfacePtr shot = h.ui.Screenshot(h.form);
    std::vector<Bgra> strip;
    for (int x = 40; x < 296; ++x) strip.push_back(PixelAt(shot, x, 35));
    return strip;
  };
  const std::vector<Bgra> unmarked = rulerStrip();
  h.ui.Mouse(h.form, UiEvent::Type::MouseMove, 40 + 100, 40 + 30);
  EXPECT_EQ(hRuler.Pos(), 100);
  EXPECT_EQ(vRuler.Pos(), 30);
  EXPECT_FALSE(rulerStrip() == unmarked) << "no mark shown";

  h.canvas.setShowRulerPos(false);
  EXPECT_TRUE(rulerStrip() == unmarked) << "a mark shown";
  h.ui.Mouse(h.form, UiEvent::Type::MouseMove, 40 + 120, 40 + 50);
  EXPECT_TRUE(rulerStrip() == unmarked) << "a mark shown";
  EXPECT_EQ(vRuler.Pos(), -1);
  h.canvas.setShowRulerPos(true);
  h.ui.Mouse(h.form, UiEvent::Type::MouseMove, 40 + 120, 40 + 50);
  EXPECT_EQ(hRuler.Pos(), 120);

  h.canvas.setShowRuler(false);
  EXPECT_FALSE(hRuler.Visible());
  EXPECT_FALSE(vRuler.Visible());

  // Arrows and Delete move or remove the layer: they are the canvas's.
  // Other keys go on to the form.
  h.canvas.SetFocus();
  for (int key : {Key::Left, Key::Down, Key::Delete, int{'Z'}}) h.ui.Press(h.form, key);
  EXPECT_EQ(h.form.keys, (std::vector<int>{'Z'}));
  EXPECT_EQ(std::count(h.events.begin(), h.events.end(), "KeyDown 37"), 1);
  EXPECT_EQ(std::count(h.events.begin(), h.events.end(), "KeyDown 90"), 1);
}

TEST(PosQuad, CellsCountRowByRowAndTheChosenCellClickedAgainFreesTheLayer) {
  UiDriver ui;
  cfForm form("QuadForm");
  form.Resize(200, 200);
  auto& quad = form.Children().Add<cwPosQuad>("PosQuad");
  quad.Move(10, 10, 90, 90);
  std::vector<int> clicks;
  quad.Click = [&](int cell) { clicks.push_back(cell); };
  form.Show();
  ui.Root().DoEvents();

  EXPECT_EQ(quad.GetPos9(1, 1), 1);
  EXPECT_EQ(quad.GetPos9(89, 1), 3);
  EXPECT_EQ(quad.GetPos9(45, 45), 5);
  EXPECT_EQ(quad.GetPos9(1, 89), 7);
  EXPECT_EQ(quad.GetPos9(50, 89), 8);
  EXPECT_EQ(quad.GetPos9(-1, 45), 0);
  EXPECT_EQ(quad.GetPos9(45, 90), 0);

  const auto clickCell = [&](int cell) {
    const WidgetPoint p = quad.W_ItemPoint(std::to_string(cell));
    ui.ClickAt(form, 10 + p.x, 10 + p.y);
  };
  clickCell(3);
  EXPECT_EQ(quad.CurPos(), 3);
  clickCell(3);
  EXPECT_EQ(quad.CurPos(), 0);
  clickCell(8);
  clickCell(5);
  EXPECT_EQ(clicks, (std::vector<int>{3, 0, 8, 5}));
  EXPECT_EQ(quad.CurPos(), 5);
}
