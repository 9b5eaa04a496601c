#include "widgets/cwOptionButton.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

cwOptionButton::cwOptionButton() : cwButton("cwOptionButton") {
  // The base button toggles a checkable one; an option is only ever
  // checked by a press, so the toggling is done here instead.
  Checkable = false;
}

void cwOptionButton::Choose() {
  if (Widget* parent = Parent()) {
    for (int i = 0; i < parent->Children().Count(); ++i) {
      auto* other = dynamic_cast<cwOptionButton*>(&parent->Children().Item(i));
      if (other && other != this && other->Group == Group) other->Checked = false;
    }
  }
  Checked = true;
}

bool cwOptionButton::W_MouseUp(int button, int shift, double x, double y) {
  const bool click = button == Button::Left && Pressed() && x >= 0 && y >= 0 && x < Width() && y < Height();
  // Checked before the base tells Click, so that the handler sees the choice.
  if (click) Choose();
  return cwButton::W_MouseUp(button, shift, x, y);
}

bool cwOptionButton::W_KeyDown(int keyCode, int shift) {
  if (keyCode == Key::Return || keyCode == Key::Space) Choose();
  return cwButton::W_KeyDown(keyCode, shift);
}

bool cwOptionButton::W_AccessKey(char letter) {
  if (letter != 0 && AccessLetter(Caption) == letter) Choose();
  return cwButton::W_AccessKey(letter);
}

void cwOptionButton::W_ReportState(WidgetState& state) const {
  state.caption = Caption;
  state.checked = Checked;
}

void cwOptionButton::W_Paint(DrawingContext& ctx, double w, double h) {
  const double side = std::min(14.0, h - 2);
  const double cx = 1 + side / 2, cy = h / 2;
  const bool enabled = EnabledInTree();
  const std::int64_t ink = enabled ? StockColor(Palette::Text) : StockColor(Palette::Disabled);
  ctx.SetSourceColor(MouseOver() && enabled ? StockColor(Palette::Hover) : StockColor(Palette::Face));
  ctx.Ellipse(cx, cy, side / 2 - 0.5, side / 2 - 0.5);
  ctx.Fill(true);
  ctx.SetLineWidth(1);
  ctx.SetSourceColor(HasFocus() ? StockColor(Palette::Accent) : StockColor(Palette::Border));
  ctx.Stroke();
  if (Checked) {
    ctx.SetSourceColor(enabled ? StockColor(Palette::Accent) : StockColor(Palette::Disabled));
    ctx.Ellipse(cx, cy, side / 4, side / 4);
    ctx.Fill();
  }
  ctx.SelectFont(UiFont(), kUiFontSize, ink);
  int accessAt = -1;
  const std::string shown = ShownCaption(Caption, &accessAt);
  ctx.DrawText(side + 7, 0, w - side - 7, h, shown, true, TextAlign::Left, TextAlign::Middle, accessAt);
}

QDS_JOIN_WIDGET_REGISTRY(cwOptionButton);

}  // namespace qds
