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
  range_.SetMin(v);
  setValue(range_.value);
  Refresh();
}

void cwProgressBar::setMax(double v) {
  range_.SetMax(v);
  setValue(range_.value);
  Refresh();
}

void cwProgressBar::setValue(double v) {
  if (!range_.SetValue(v)) return;
  Refresh();
}

void cwProgressBar::Clear() {
  setValue(range_.min);
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
  } else if (range_.max > range_.min) {
    DrawPart(ctx, ThemePart::Selection, 0, 0, 0, w * (range_.value - range_.min) / (range_.max - range_.min),
             h);
  }
  if (Caption().empty()) return;
  ctx.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  ctx.DrawText(0, 0, w, h, Caption, true, TextAlign::Center, TextAlign::Middle);
}

void cwProgressBar::W_ReportState(WidgetState& state) const {
  state.value = range_.value;
  state.min = range_.min;
  state.max = range_.max;
  state.caption = Caption;
}

QDS_JOIN_WIDGET_REGISTRY(cwProgressBar);

}  // namespace qds
