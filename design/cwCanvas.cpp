#include "design/cwCanvas.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "app/AppContext.h"
#include "design/cwRuler.h"
#include "engine/cSVGItem.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Pattern.h"
#include "platform/ui/Form.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

namespace {

// The marks of the selected layer belong on the canvas only: not in the
// preview, the pictures a press is looked up in (where a frame would catch
// the mouse all around the layer's box), the layer list or an export. The
// hook is in force only while the canvas draws itself.
class MarksOn {
 public:
  MarksOn(AppContext& app, std::function<bool(const cSVGItem&)> selected)
      : app_(app), before_(std::move(app.ShowsSelectionFrame)) {
    app.ShowsSelectionFrame = std::move(selected);
  }
  ~MarksOn() { app_.ShowsSelectionFrame = std::move(before_); }
  MarksOn(const MarksOn&) = delete;
  MarksOn& operator=(const MarksOn&) = delete;

 private:
  AppContext& app_;
  decltype(AppContext::ShowsSelectionFrame) before_;
};

void ClearSurface(DrawingContext& ctx) {
  ctx.SetOperator(Op::Clear);
  ctx.Paint();
  ctx.SetOperator(Op::Over);
}

std::uint8_t AlphaAt(const PixelView& v, int x, int y) {
  return v.Bytes()[static_cast<std::size_t>(y) * v.Stride() + 4 * x + 3];
}

}  // namespace

cwCanvas::cwCanvas()
    : Widget("cwCanvas"),
      hRuler_(Children().Add<cwRuler>("hRuler")),
      vRuler_(Children().Add<cwRuler>("vRuler")) {
  CanFocus = true;
  vRuler_.Vertical = true;
}

void cwCanvas::setColor(int colour) {
  if (colour < 0 || colour > 0xFFFFFF) colour = -1;
  if (colour == color_) return;
  color_ = colour;
  Refresh();
}

void cwCanvas::setBorder(double b) {
  if (!(b >= 0)) b = 0;  // NaN too
  if (b == border_) return;
  border_ = b;
  PlaceRulers();
  Refresh();
}

void cwCanvas::setDrawPreview(bool on) {
  if (on == drawPreview_) return;
  drawPreview_ = on;
  if (on) Refresh();
}

void cwCanvas::setShowRuler(bool on) {
  showRuler_ = on;
  hRuler_.setVisible(on);
  vRuler_.setVisible(on);
}

void cwCanvas::setShowRulerPos(bool on) {
  showRulerPos_ = on;
  if (on) return;
  hRuler_.setPos(-1);
  vRuler_.setPos(-1);
}

void cwCanvas::ShowImgPos(double x, double y) {
  if (!showRuler_ || !showRulerPos_) return;
  hRuler_.setPos(x - border_ / 2);
  vRuler_.setPos(y - border_ / 2);
}

void cwCanvas::setPreviewSide(int side) {
  side = std::clamp(side, 1, 1024);
  if (side == previewSide_) return;
  previewSide_ = side;
  if (drawPreview_) Refresh();
}

double cwCanvas::Scale() const {
  if (paintScale_ > 0) return paintScale_;
  const cfForm* form = Form();
  return form ? form->Zoom() : 1.0;
}

double cwCanvas::DrawingSide() const {
  return std::max(0.0, std::min(Width(), Height()) - border_);
}

void cwCanvas::InnerPixels(int& width, int& height) const {
  const double s = Scale();
  width = std::max(1, static_cast<int>(std::lround(std::max(0.0, Width() - border_) * s)));
  height = std::max(1, static_cast<int>(std::lround(std::max(0.0, Height() - border_) * s)));
}

int cwCanvas::DevicePixelSide() const {
  int w, h;
  InnerPixels(w, h);
  return std::min(w, h);
}

void cwCanvas::PlaceRulers() {
  const double half = border_ / 2, depth = std::min(kRulerDepth, half), side = DrawingSide();
  hRuler_.Move(half, half - depth, side, depth);
  vRuler_.Move(half - depth, half, depth, side);
}

void cwCanvas::W_Resize() {
  PlaceRulers();
}

void cwCanvas::PaintBackground(DrawingContext& ctx, int, int height) {
  if (color_ != -1) {
    ctx.SetSourceColor(color_);
    ctx.Paint();
    return;
  }
  // Squares of a 64th of the height, whole pixels so that they stay sharp.
  const int n = std::max(1, static_cast<int>(std::lround(height / 64.0)));
  if (!chessTile_ || chessTile_->Width() != 2 * n) {
    chessTile_ = DrawingSurface::Create(2 * n, 2 * n);
    DrawingContext tile(chessTile_);
    tile.SetSourceColor(0xFFFFFF, 0.6);
    tile.Rectangle(0, 0, n, n);
    tile.Rectangle(n, n, n, n);
    tile.Fill();
    tile.SetSourceColor(0xFFFFFF, 0.3);
    tile.Rectangle(n, 0, n, n);
    tile.Rectangle(0, n, n, n);
    tile.Fill();
  }
  Pattern board = Pattern::ForSurface(chessTile_);
  board.SetExtend(Extend::Repeat);
  board.SetFilter(Filter::Nearest);
  ctx.SetSource(board);
  ctx.Paint();
}

void cwCanvas::DrawLayers(DrawingContext& ctx, double side, bool marks) {
  AppContext& app = App();
  std::optional<MarksOn> on;
  if (marks && IsSelected) on.emplace(app, IsSelected);
  for (int i = app.Layers.Count() - 1; i >= 0; --i) {
    const SVGItemPtr layer = app.Layers.Item(i);
    if (layer->Visible()) layer->RenderTo(ctx, side, side, marks);
  }
}

void cwCanvas::RenderSVGLayers(DrawingContext& ctx, double side) {
  if (App().Layers.Count() == 0) {
    Dragging = false;
    return;
  }
  DrawLayers(ctx, side, true);
}

void cwCanvas::RenderPreview(DrawingContext& ctx, double side) {
  DrawLayers(ctx, side, false);
}

void cwCanvas::DrawDesign(DrawingContext& ctx, double side, bool preview) {
  if (!HasApp()) return;
  const AppContext& app = App();
  // The design's own opacity, when it is in force, fades the layers
  // together, not each one over the others.
  const double alpha = app.DesignOpacityOn ? std::clamp(app.DesignOpacity / 100.0, 0.0, 1.0) : 1.0;
  if (alpha < 1) ctx.PushGroup();
  if (preview) {
    RenderPreview(ctx, side);
  } else {
    RenderSVGLayers(ctx, side);
  }
  if (alpha < 1) {
    ctx.PopGroupToSource();
    ctx.Paint(alpha);
  }
}

void cwCanvas::W_Paint(DrawingContext& ctx, double w, double h) {
  const Matrix m = ctx.GetMatrix();
  paintScale_ = std::hypot(m.xx, m.yx) > 0 ? std::hypot(m.xx, m.yx) : 1.0;
  if (w > border_ && h > border_) {
    int pw, ph;
    InnerPixels(pw, ph);
    if (!work_ || work_->Width() != pw || work_->Height() != ph) work_ = DrawingSurface::Create(pw, ph);
    const int side = std::min(pw, ph);
    if (HasApp()) {
      // The layers measure their snap positions on the canvas they are shown on.
      App().CanvasWidth = side;
      App().CanvasHeight = side;
    }
    {
      DrawingContext work(work_);
      ClearSurface(work);
      PaintBackground(work, pw, ph);
      DrawDesign(work, side, false);
    }
    // Pixel for pixel onto the form's picture.
    ctx.Save();
    ctx.SetMatrix({1, 0, 0, 1, std::round(m.x0 + m.xx * border_ / 2), std::round(m.y0 + m.yy * border_ / 2)});
    ctx.SetSourceSurface(work_, 0, 0);
    ctx.Paint();
    ctx.Restore();
  }
  if (drawPreview_) {
    if (!preview_ || preview_->Width() != previewSide_)
      preview_ = DrawingSurface::Create(previewSide_, previewSide_);
    DrawingContext pc(preview_);
    pc.SetSourceColor(color_ == -1 ? kPreviewBack : color_);
    pc.Paint();
    DrawDesign(pc, previewSide_, true);
  }
  RaiseEvent(Painted, "Refresh");
}

void cwCanvas::RenderAlone(int index, int side, int clipX, int clipY) {
  DrawingContext ctx(scratch_);
  if (clipX >= 0) {
    ctx.Rectangle(clipX, clipY, 1, 1);
    ctx.Clip();
  }
  ClearSurface(ctx);
  App().Layers.Item(index)->RenderTo(ctx, side, side);
}

int cwCanvas::HitTest(double x, double y) {
  if (!HasApp()) return -1;
  AppContext& app = App();
  const int count = app.Layers.Count();
  if (count == 0) return -1;
  int pw, ph;
  InnerPixels(pw, ph);
  const double s = Scale();
  const double cx = std::floor((x - border_ / 2) * s), cy = std::floor((y - border_ / 2) * s);
  if (!(cx >= 0 && cy >= 0 && cx < pw && cy < ph)) return -1;
  const int col = static_cast<int>(cx), row = static_cast<int>(cy);
  if (!scratch_ || scratch_->Width() != pw || scratch_->Height() != ph)
    scratch_ = DrawingSurface::Create(pw, ph);
  // Only the one pixel is drawn: a layer costs what compositing a pixel
  // costs, its picture coming from the render cache the paint filled.
  for (int i = 0; i < count; ++i) {
    if (!app.Layers.Item(i)->Visible()) continue;
    RenderAlone(i, std::min(pw, ph), col, row);
    if (AlphaAt(scratch_->Pixels(), col, row) != 0) return i;
  }
  return -1;
}

WidgetPoint cwCanvas::W_RowPoint(int row) {
  if (!HasApp()) return {};
  AppContext& app = App();
  if (row < 0 || row >= app.Layers.Count() || !app.Layers.Item(row)->Visible()) return {};
  int pw, ph;
  InnerPixels(pw, ph);
  if (!scratch_ || scratch_->Width() != pw || scratch_->Height() != ph)
    scratch_ = DrawingSurface::Create(pw, ph);
  const int side = std::min(pw, ph);
  // Where the layers above show, a press would hit them.
  std::vector<std::uint8_t> free(static_cast<std::size_t>(pw) * ph, 0);
  RenderAlone(row, side, -1, -1);
  {
    const PixelView v = scratch_->Pixels();
    for (int y = 0; y < ph; ++y)
      for (int x = 0; x < pw; ++x) free[static_cast<std::size_t>(y) * pw + x] = AlphaAt(v, x, y) != 0;
  }
  for (int i = 0; i < row; ++i) {
    if (!app.Layers.Item(i)->Visible()) continue;
    RenderAlone(i, side, -1, -1);
    const PixelView v = scratch_->Pixels();
    for (int y = 0; y < ph; ++y)
      for (int x = 0; x < pw; ++x)
        if (AlphaAt(v, x, y) != 0) free[static_cast<std::size_t>(y) * pw + x] = 0;
  }
  const auto isFree = [&](int x, int y) {
    return x >= 0 && y >= 0 && x < pw && y < ph && free[static_cast<std::size_t>(y) * pw + x];
  };
  // The free pixel nearest to the middle of the free ones, preferring one
  // with free neighbours, which a click rounded by a pixel still hits.
  double sx = 0, sy = 0, n = 0;
  for (int y = 0; y < ph; ++y)
    for (int x = 0; x < pw; ++x)
      if (isFree(x, y)) sx += x, sy += y, ++n;
  if (n == 0) return {};
  const double mx = sx / n, my = sy / n;
  int best = -1, bestX = 0, bestY = 0;
  double bestD = 0;
  for (int y = 0; y < ph; ++y) {
    for (int x = 0; x < pw; ++x) {
      if (!isFree(x, y)) continue;
      const bool inner = isFree(x - 1, y) && isFree(x + 1, y) && isFree(x, y - 1) && isFree(x, y + 1);
      const double d = (x - mx) * (x - mx) + (y - my) * (y - my);
      const int rank = inner ? 1 : 0;
      if (best < rank || (best == rank && d < bestD)) best = rank, bestD = d, bestX = x, bestY = y;
    }
  }
  const double s = Scale();
  return {this, border_ / 2 + (bestX + 0.5) / s, border_ / 2 + (bestY + 0.5) / s};
}

bool cwCanvas::W_MouseDown(int button, int shift, double x, double y) {
  const int hit = HitTest(x, y);
  lastHit_ = hit;
  SetFocus();
  SetCapture();
  RaiseEvent(MouseDown, "MouseDown", button, shift, hit, x, y);
  return true;
}

bool cwCanvas::W_MouseMove(int button, int shift, double x, double y) {
  ShowImgPos(x, y);
  RaiseEvent(MouseMove, "MouseMove", button, shift, x, y);
  return true;
}

bool cwCanvas::W_MouseUp(int button, int shift, double x, double y) {
  RaiseEvent(MouseUp, "MouseUp", button, shift, x, y);
  ReleaseCapture();
  return true;
}

void cwCanvas::W_MouseLeave() {
  // The marks follow the mouse; off the canvas there is nothing to mark.
  if (HasCapture()) return;
  hRuler_.setPos(-1);
  vRuler_.setPos(-1);
}

bool cwCanvas::W_KeyDown(int keyCode, int shift) {
  RaiseEvent(KeyDown, "KeyDown", keyCode, shift);
  return (keyCode >= Key::Left && keyCode <= Key::Down) || keyCode == Key::Delete;
}

bool cwCanvas::W_KeyUp(int keyCode, int shift) {
  RaiseEvent(KeyUp, "KeyUp", keyCode, shift);
  return (keyCode >= Key::Left && keyCode <= Key::Down) || keyCode == Key::Delete;
}

void cwCanvas::W_ReportState(WidgetState& state) const {
  state.value = color_;
  state.checked = showRuler_;
  state.listCount = HasApp() ? App().Layers.Count() : 0;
  state.listIndex = lastHit_;
  state.text = FormatDouble(DrawingSide());
}

QDS_JOIN_WIDGET_REGISTRY(cwCanvas);

}  // namespace qds
