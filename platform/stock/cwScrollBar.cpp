#include "platform/stock/cwScrollBar.h"

#include <algorithm>
#include <cmath>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

cwScrollBar::cwScrollBar(bool vertical)
    : Widget(vertical ? "cwVScrollBar" : "cwHScrollBar"), vertical_(vertical) {}

void cwScrollBar::setValue(int v) {
  v = std::clamp(v, Min(), std::max(Min(), Max()));
  if (v == value_) return;
  value_ = v;
  Refresh();
  // The value goes with the bubbling event only.
  if (Change) Change();
  RaiseBubblingEvent("Change", {qds::Value(value_)});
}

double cwScrollBar::Length() const {
  return vertical_ ? Height() : Width();
}

double cwScrollBar::Arrow() const {
  return std::min(vertical_ ? Width() : Height(), Length() / 3);
}

void cwScrollBar::Thumb(double& start, double& size) const {
  const double track = Length() - 2 * Arrow();
  const double range = std::max(1, Max - Min);
  // The thumb shows how much of the whole one page is, never too small to take.
  size = std::clamp(track * LargeChange / (range + LargeChange), std::min(12.0, track), track);
  start = Arrow() + (track - size) * (value_ - Min) / range;
}

void cwScrollBar::W_Paint(DrawingContext& ctx, double w, double h) {
  const int state = EnabledInTree() ? 0 : ThemeState::Disabled;
  DrawPart(ctx, ThemePart::ScrollerTrack, state, 0, 0, w, h);
  double start, size;
  Thumb(start, size);
  const int thumbState = state | (dragging_ ? ThemeState::Pressed : 0);
  const double a = Arrow();
  if (vertical_) {
    DrawPart(ctx, ThemePart::ScrollerThumb, thumbState, 0, start, w, size, ArrowDirection::Down);
    DrawPart(ctx, ThemePart::Arrow, state, w * 0.25, a * 0.3, w * 0.5, a * 0.4, ArrowDirection::Up);
    DrawPart(ctx, ThemePart::Arrow, state, w * 0.25, h - a * 0.7, w * 0.5, a * 0.4, ArrowDirection::Down);
  } else {
    DrawPart(ctx, ThemePart::ScrollerThumb, thumbState, start, 0, size, h, ArrowDirection::Right);
    DrawPart(ctx, ThemePart::Arrow, state, a * 0.3, h * 0.25, a * 0.4, h * 0.5, ArrowDirection::Left);
    DrawPart(ctx, ThemePart::Arrow, state, w - a * 0.7, h * 0.25, a * 0.4, h * 0.5, ArrowDirection::Right);
  }
}

bool cwScrollBar::W_MouseDown(int button, int, double x, double y) {
  if (button != Button::Left) return false;
  const double p = Along(x, y);
  double start, size;
  Thumb(start, size);
  if (p < Arrow()) {
    setValue(value_ - SmallChange);
  } else if (p >= Length() - Arrow()) {
    setValue(value_ + SmallChange);
  } else if (p < start) {
    setValue(value_ - LargeChange);
  } else if (p >= start + size) {
    setValue(value_ + LargeChange);
  } else {
    dragging_ = true;
    grip_ = p - start;
    SetCapture();
    Refresh();
  }
  return true;
}

bool cwScrollBar::W_MouseMove(int, int, double x, double y) {
  if (!dragging_) return false;
  double start, size;
  Thumb(start, size);
  const double track = Length() - 2 * Arrow() - size;
  if (track > 0) {
    const double at = std::clamp(Along(x, y) - grip_ - Arrow(), 0.0, track);
    setValue(Min + static_cast<int>(std::lround(at / track * (Max - Min))));
  }
  return true;
}

bool cwScrollBar::W_MouseUp(int button, int, double, double) {
  if (button != Button::Left) return false;
  if (dragging_) {
    dragging_ = false;
    ReleaseCapture();
    Refresh();
  }
  RaiseBubblingEvent("MouseUp");
  return true;
}

bool cwScrollBar::W_MouseWheel(int delta, int, double, double) {
  // The wheel rolls away from the user for "up", which is towards Min.
  setValue(value_ - delta * SmallChange * 3);
  return true;
}

void cwStatusBar::W_Paint(DrawingContext& ctx, double w, double h) {
  ctx.SetSourceColor(StockColor(Palette::Border));
  ctx.Paint();
  ctx.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  ctx.DrawText(6, 0, w - 12, h, Caption, true, TextAlign::Left, TextAlign::Middle);
  if (OwnerDraw) OwnerDraw(ctx, w, h);
}

QDS_JOIN_WIDGET_REGISTRY(cwVScrollBar);
QDS_JOIN_WIDGET_REGISTRY(cwHScrollBar);
QDS_JOIN_WIDGET_REGISTRY(cwStatusBar);

}  // namespace qds
