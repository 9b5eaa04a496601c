#include "app/ui/cwTabItem.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"

namespace qds {

double cwTabItem::PreferredWidth() const {
  return std::max(44.0, MeasureUiText(Caption).width + 32);
}

void cwTabItem::W_Paint(DrawingContext& ctx, double w, double h) {
  // The shown view's tab stands on the line under the row, as a sheet
  // in front of the others; the others only light up under the mouse.
  if (Selected) {
    ctx.SetSourceColor(StockColor(Palette::Face));
    ctx.RoundedRectangle(1, 3, w - 2, h, 4);
    ctx.Fill();
    ctx.SetSourceColor(StockColor(Palette::Accent));
    ctx.Rectangle(1, 3, w - 2, 2);
    ctx.Fill();
  } else if (MouseOver()) {
    ctx.SetSourceColor(StockColor(Palette::Hover));
    ctx.RoundedRectangle(1, 5, w - 2, h - 5, 4);
    ctx.Fill();
  }
  ctx.SelectFont(UiFont(), kUiFontSize + 1, StockColor(Selected ? Palette::Text : Palette::Disabled),
                 Selected);
  ctx.DrawText(0, 3, w, h - 3, Caption(), true, TextAlign::Center, TextAlign::Middle);
}

}  // namespace qds
