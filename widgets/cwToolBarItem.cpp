#include "widgets/cwToolBarItem.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

cwToolBarItem::cwToolBarItem() : Widget("cwToolBarItem") {
  tmrDecouple_.Interval = kDecoupleMs;
  tmrDecouple_.OnTimer = [this] { Decoupled(); };
}

double cwToolBarItem::PreferredLength(double side, bool vertical) const {
  double length = side;
  if (PictureKey().empty() && !vertical) length = std::max(side, MeasureUiText(Caption).width + 14);
  return length + (HasDropArrow ? kArrowWidth : 0);
}

void cwToolBarItem::W_Paint(DrawingContext& ctx, double w, double h) {
  const int state = (pressed_ ? ThemeState::Pressed : 0) | (Checked ? ThemeState::Checked : 0) |
                    (MouseOver() ? ThemeState::Hover : 0) | (EnabledInTree() ? 0 : ThemeState::Disabled);
  // Flat until the mouse comes, it is pressed or it is checked. A checked
  // item keeps a light face with an accent frame: its picture is drawn in
  // the accent colour and would vanish on an accent face.
  if (state & (ThemeState::Pressed | ThemeState::Hover)) {
    DrawFace(ctx, w, h, state);
  } else if (state & ThemeState::Checked) {
    DrawFace(ctx, w, h, (state & ~ThemeState::Checked) | ThemeState::Hover);
  }
  if ((state & ThemeState::Checked) && !(state & ThemeState::Pressed)) {
    ctx.SetSourceColor(StockColor(Palette::Accent));
    ctx.SetLineWidth(1.5);
    ctx.RoundedRectangle(1, 1, w - 2, h - 2, 3);
    ctx.Stroke();
  }
  const double body = HasDropArrow ? w - kArrowWidth : w;
  if (!PictureKey().empty()) {
    const double side = std::clamp(std::min(body, h) - 8, 8.0, 24.0);
    DrawPicture(ctx, PictureKey, (body - side) / 2, (h - side) / 2, side, side);
  } else {
    ctx.SelectFont(UiFont(), kUiFontSize, CurrentTheme().cTheme_GetThemeColor(ThemePart::Text, state));
    ctx.DrawText(0, 0, body, h, Caption, true, TextAlign::Center, TextAlign::Middle);
  }
  if (HasDropArrow) DrawPart(ctx, ThemePart::Arrow, state, body + 3, h / 2 - 2, kArrowWidth - 6, 4);
}

bool cwToolBarItem::W_MouseDown(int button, int, double x, double) {
  if (button != Button::Left || tmrDecouple_.Enabled()) return button == Button::Left;
  pressed_ = true;
  onArrow_ = OnArrow(x);
  SetCapture();
  Refresh();
  return true;
}

bool cwToolBarItem::W_MouseUp(int button, int, double x, double y) {
  if (button != Button::Left || !pressed_ || tmrDecouple_.Enabled()) return false;
  ReleaseCapture();
  if (x < 0 || y < 0 || x >= Width() || y >= Height()) {
    pressed_ = false;  // let go elsewhere: no click
    Refresh();
    return true;
  }
  if (IsCheck && !onArrow_) Checked = !Checked;
  // Still drawn pressed until the click has been told.
  tmrDecouple_.setEnabled(true);
  return true;
}

void cwToolBarItem::Decoupled() {
  tmrDecouple_.setEnabled(false);
  if (onArrow_) {
    RaiseEvent(ArrowClick, "ArrowClick");
  } else {
    RaiseEvent(Click, "Click");
  }
  pressed_ = false;
  Refresh();
}

void cwToolBarItem::W_MouseEnter() {
  Refresh();
  RaiseEvent(MouseEnter, "MouseEnter");
}

void cwToolBarItem::W_ReportState(WidgetState& state) const {
  state.caption = Caption;
  if (IsCheck) state.checked = Checked;
}

QDS_JOIN_WIDGET_REGISTRY(cwToolBarItem);

}  // namespace qds
