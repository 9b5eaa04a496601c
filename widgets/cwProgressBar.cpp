#include "widgets/cwProgressBar.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

cwProgressBar::cwProgressBar() : Widget("cwProgressBar") {
  tmrMarquee_.Interval = kMarqueeIntervalMs;
  tmrMarquee_.OnTimer = [this] {
    marqueeTick_ = (marqueeTick_ + 1) % kMarqueeTicks;
    Refresh();
  };
}

void cwProgressBar::setMin(double v) {
  min_ = v;
  max_ = std::max(max_, min_);
  setValue(value_);
  Refresh();
}

void cwProgressBar::setMax(double v) {
  max_ = v;
  min_ = std::min(min_, max_);
  setValue(value_);
  Refresh();
}

void cwProgressBar::setValue(double v) {
  v = std::clamp(v, min_, max_);
  if (v == value_) return;
  value_ = v;
  Refresh();
}

void cwProgressBar::Clear() {
  setValue(min_);
  Caption = "";
}

void cwProgressBar::setStyle(ProgressStyle style) {
  if (style == style_) return;
  style_ = style;
  marqueeTick_ = 0;
  tmrMarquee_.setEnabled(style == ProgressStyle::Marquee);
  Refresh();
}

void cwProgressBar::W_Paint(DrawingContext& ctx, double w, double h) {
  ctx.RoundedRectangle(0, 0, w, h, BorderRadius);
  ctx.Clip();
  DrawPart(ctx, ThemePart::ScrollerTrack, 0, 0, 0, w, h);
  if (style_ == ProgressStyle::Marquee) {
    // The block's right edge runs from the left end to a quarter past the right one.
    const double right = 1.25 * w * marqueeTick_ / kMarqueeTicks;
    DrawPart(ctx, ThemePart::Selection, 0, right - w / 4, 0, w / 4, h);
  } else if (max_ > min_) {
    DrawPart(ctx, ThemePart::Selection, 0, 0, 0, w * (value_ - min_) / (max_ - min_), h);
  }
  if (Caption().empty()) return;
  ctx.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  ctx.DrawText(0, 0, w, h, Caption, true, TextAlign::Center, TextAlign::Middle);
}

void cwProgressBar::W_ReportState(WidgetState& state) const {
  state.value = value_;
  state.min = min_;
  state.max = max_;
  state.caption = Caption;
}

QDS_JOIN_WIDGET_REGISTRY(cwProgressBar);

}  // namespace qds
