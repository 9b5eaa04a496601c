#include "platform/stock/cwScrollable.h"

#include <algorithm>
#include <cmath>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/ui/UiTheme.h"

namespace qds {

double cwScrollable::BarSize() {
  return CurrentTheme().cTheme_GetScrollerSize();
}

namespace {

// More than `room`, beyond rounding.
bool Exceeds(double size, double room) {
  return size > room + 1e-9;
}

// The least move of `offset` that shows start..start+size in a view of
// `view`; the start when it cannot all be shown.
double Reveal(double offset, double start, double size, double view) {
  if (start < offset) return start;
  if (start + size > offset + view) return std::min(start, start + size - view);
  return offset;
}

// A bar's range and value for an offset of 0..most: whole units, and the end
// of the bar for the end of the content.
int BarMax(double most) {
  // Past the bar's whole numbers the end stays reachable through the offset.
  return std::max(0, static_cast<int>(std::ceil(std::min(most, 2e9) - 1e-9)));
}

int BarValue(double offset, double most) {
  return most > 0 && offset >= most - 1e-9 ? BarMax(most)
                                           : static_cast<int>(std::lround(std::min(offset, 2e9)));
}

}  // namespace

cwScrollable::cwScrollable(std::string typeName, const std::string& vBarKey, const std::string& hBarKey)
    : Widget(std::move(typeName)) {
  vBar_ = &Children().Add(std::make_unique<cwVScrollBar>(), vBarKey);
  hBar_ = &Children().Add(std::make_unique<cwHScrollBar>(), hBarKey);
  for (cwScrollBar* bar : {vBar_, hBar_}) {
    bar->setVisible(false);
    bar->Max = 0;
  }
  vBar_->Change = [this] {
    if (!syncing_) ScrollTo(ScrollX(), vBar_->Value() * BarUnitY);
  };
  hBar_->Change = [this] {
    if (!syncing_) ScrollTo(hBar_->Value(), ScrollY());
  };
}

void cwScrollable::NeedBars(bool& vertical, bool& horizontal) const {
  const double w = Width(), h = Height();
  vertical = Exceeds(contentH_, h);
  horizontal = Exceeds(contentW_, vertical ? w - BarSize() : w);
  // The horizontal bar takes height from the view, which may then be too
  // low for the content; and that bar takes width in its turn.
  if (horizontal && !vertical) {
    vertical = Exceeds(contentH_, h - BarSize());
    if (vertical) horizontal = Exceeds(contentW_, w - BarSize());
  }
}

bool cwScrollable::VBarShown() const {
  bool v, h;
  NeedBars(v, h);
  return v;
}

bool cwScrollable::HBarShown() const {
  bool v, h;
  NeedBars(v, h);
  return h;
}

double cwScrollable::ViewWidth() const {
  return std::max(0.0, Width() - (VBarShown() ? BarSize() : 0));
}

double cwScrollable::ViewHeight() const {
  return std::max(0.0, Height() - (HBarShown() ? BarSize() : 0));
}

double cwScrollable::MaxScrollX() const {
  return std::max(0.0, contentW_ - ViewWidth());
}

double cwScrollable::MaxScrollY() const {
  return std::max(0.0, contentH_ - ViewHeight());
}

double cwScrollable::ScrollX() const {
  return std::clamp(scrollX_, 0.0, MaxScrollX());
}

double cwScrollable::ScrollY() const {
  return std::clamp(scrollY_, 0.0, MaxScrollY());
}

void cwScrollable::setContentSize(double width, double height) {
  width = std::isfinite(width) ? std::max(0.0, width) : 0;
  height = std::isfinite(height) ? std::max(0.0, height) : 0;
  if (width == contentW_ && height == contentH_) return;
  contentW_ = width, contentH_ = height;
  Layout();
  Refresh();
}

void cwScrollable::ScrollTo(double x, double y) {
  const double oldX = ScrollX(), oldY = ScrollY();
  scrollX_ = std::isfinite(x) ? std::clamp(x, 0.0, MaxScrollX()) : oldX;
  scrollY_ = std::isfinite(y) ? std::clamp(y, 0.0, MaxScrollY()) : oldY;
  if (scrollX_ == oldX && scrollY_ == oldY) return;
  SyncBars();
  Refresh();
  ScrollChanged();
}

void cwScrollable::EnsureVisible(double x, double y, double w, double h) {
  ScrollTo(Reveal(ScrollX(), x, std::max(0.0, w), ViewWidth()),
           Reveal(ScrollY(), y, std::max(0.0, h), ViewHeight()));
}

void cwScrollable::SyncBars() {
  syncing_ = true;
  const double mostX = MaxScrollX(), mostY = MaxScrollY();
  const double unitY = BarUnitY > 0 ? BarUnitY : 1;
  vBar_->Max = BarMax(mostY / unitY);
  vBar_->SmallChange = std::max(1, static_cast<int>(std::lround(LineStepY / unitY)));
  vBar_->LargeChange = std::max(1, static_cast<int>(std::lround(PageStepY() / unitY)));
  vBar_->setValue(BarValue(ScrollY() / unitY, mostY / unitY));
  hBar_->Max = BarMax(mostX);
  hBar_->SmallChange = std::max(1, static_cast<int>(std::lround(LineStepX)));
  hBar_->LargeChange = std::max(1, static_cast<int>(std::lround(PageStepX())));
  hBar_->setValue(BarValue(ScrollX(), mostX));
  syncing_ = false;
}

void cwScrollable::Layout() {
  bool v, h;
  NeedBars(v, h);
  const double viewW = ViewWidth(), viewH = ViewHeight();
  vBar_->Move(viewW, 0, std::min(BarSize(), Width()), viewH);
  hBar_->Move(0, viewH, viewW, std::min(BarSize(), Height()));
  vBar_->setVisible(v);
  hBar_->setVisible(h);
  // A larger view, or less content, may leave the offset out of its range.
  const double oldX = scrollX_, oldY = scrollY_;
  scrollX_ = ScrollX(), scrollY_ = ScrollY();
  SyncBars();
  if (scrollX_ != oldX || scrollY_ != oldY) {
    Refresh();
    ScrollChanged();
  }
}

void cwScrollable::W_Resize() {
  Layout();
}

void cwScrollable::W_Paint(DrawingContext& ctx, double w, double h) {
  const double viewW = ViewWidth(), viewH = ViewHeight();
  const double sx = ScrollX(), sy = ScrollY();
  const int depth = ctx.SaveDepth();
  ctx.Save();
  ctx.Rectangle(0, 0, viewW, viewH);
  ctx.Clip();
  ctx.Save();
  ctx.Translate(-sx, -sy);
  PaintContent(ctx, sx, sy, viewW, viewH);
  // What the content left of saved states and paths is put away.
  while (ctx.SaveDepth() > depth + 1) ctx.Restore();
  ctx.NewPath();
  PaintView(ctx, viewW, viewH);
  while (ctx.SaveDepth() > depth) ctx.Restore();
  ctx.NewPath();
  // The corner between two bars belongs to neither.
  if (viewW < w && viewH < h) {
    ctx.SetSourceColor(StockColor(Palette::Border));
    ctx.Rectangle(viewW, viewH, w - viewW, h - viewH);
    ctx.Fill();
  }
}

bool cwScrollable::W_MouseDown(int button, int shift, double x, double y) {
  if (!InView(x, y) && !HasCapture()) return true;  // the corner
  ToContent(x, y);
  return ContentMouseDown(button, shift, x, y);
}

bool cwScrollable::W_MouseMove(int button, int shift, double x, double y) {
  ToContent(x, y);
  return ContentMouseMove(button, shift, x, y);
}

bool cwScrollable::W_MouseUp(int button, int shift, double x, double y) {
  ToContent(x, y);
  return ContentMouseUp(button, shift, x, y);
}

bool cwScrollable::W_DblClick(int button, int shift, double x, double y) {
  if (!InView(x, y) && !HasCapture()) return true;
  ToContent(x, y);
  return ContentDblClick(button, shift, x, y);
}

bool cwScrollable::W_MouseWheel(int delta, int shift, double x, double y) {
  ToContent(x, y);
  if (ContentMouseWheel(delta, shift, x, y)) return true;
  // The wheel rolls away from the user for "up", towards the content's start.
  const double lines = -static_cast<double>(delta) * WheelLines;
  if (shift & Shift::ShiftKey) {
    ScrollBy(lines * LineStepX, 0);
  } else {
    ScrollBy(0, lines * LineStepY);
  }
  return true;
}

void cwScrollable::W_ReportState(WidgetState& state) const {
  state.scrollIndex = LineStepY > 0 ? static_cast<int>(std::floor(ScrollY() / LineStepY + 1e-9)) : 0;
}

}  // namespace qds
