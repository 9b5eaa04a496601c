#include "design/cwRuler.h"

#include <algorithm>
#include <cmath>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

cwRuler::cwRuler() : Widget("cwRuler") {}

void cwRuler::setPos(double pos) {
  if (pos < 0) pos = -1;
  if (pos == pos_) return;
  pos_ = pos;
  Refresh();
}

void cwRuler::W_Paint(DrawingContext& ctx, double w, double h) {
  const bool vertical = Vertical;
  // Points are given along the ruler and across it, from the outer edge
  // (0) to the edge next to the drawing (depth), where the ticks stand.
  const double length = vertical ? h : w, depth = vertical ? w : h;
  const auto to = [vertical](double along, double across, double& x, double& y) {
    x = vertical ? across : along;
    y = vertical ? along : across;
  };
  const auto line = [&](double along, double from, double till) {
    double x, y;
    to(along, from, x, y);
    ctx.MoveTo(x, y);
    to(along, till, x, y);
    ctx.LineTo(x, y);
  };
  ctx.SetSourceColor(StockColor(Palette::Face));
  ctx.Paint();
  if (length <= 0 || depth <= 0) return;
  const bool shortRuler = length < kShortRuler;
  const int lines = std::max(1, shortRuler ? LinesCount / 2 : static_cast<int>(LinesCount));
  const int sublines = shortRuler ? 1 : 3;
  const double step = length / lines;
  // Half a unit in, so that one-unit lines fall on whole pixels.
  const auto at = [&](double along) { return std::clamp(std::floor(along) + 0.5, 0.5, length - 0.5); };
  ctx.SetLineWidth(1);
  ctx.SetSourceColor(kInk);
  for (int i = 0; i <= lines; ++i) {
    line(at(i * step), 0, depth);
    if (!ShowSubline || i == lines) continue;
    for (int s = 1; s <= sublines; ++s) {
      // The middle line of an interval stands out.
      const double tick = sublines > 1 && 2 * s == sublines + 1 ? depth / 2 : depth / 4;
      line(at(i * step + s * step / (sublines + 1)), depth - tick, depth);
    }
  }
  ctx.Stroke();
  if (ShowDigits) {
    ctx.SelectFont(UiFont(), std::min(kUiFontSize - 2, depth * 0.4), kInk);
    for (int i = 0; i < lines; ++i) {
      const std::string number = FormatDouble(std::round(Range * i / lines));
      double x, y;
      to(std::floor(i * step) + 2, 1, x, y);
      if (vertical) {
        ctx.DrawText(x, y, depth * 0.7, step / 2, number, true, TextAlign::Left, TextAlign::Top);
      } else {
        ctx.DrawText(x, y, step - 4, depth * 0.6, number, true, TextAlign::Left, TextAlign::Top);
      }
    }
  }
  if (pos_ >= 0 && pos_ <= length) {
    // A line across and a small wedge pointing at the drawing.
    const double a = at(pos_);
    ctx.SetSourceColor(StockColor(Palette::Accent));
    line(a, 0, depth);
    ctx.Stroke();
    double x, y;
    to(a - 4, depth - 6, x, y);
    ctx.MoveTo(x, y);
    to(a + 4, depth - 6, x, y);
    ctx.LineTo(x, y);
    to(a, depth, x, y);
    ctx.LineTo(x, y);
    ctx.ClosePath();
    ctx.Fill();
  }
}

void cwRuler::W_ReportState(WidgetState& state) const {
  state.value = pos_;
  state.max = Range;
}

QDS_JOIN_WIDGET_REGISTRY(cwRuler);

}  // namespace qds
