#include "platform/stock/StockWidgets.h"

#include <algorithm>
#include <cctype>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/ImageList.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/cwDropDown.h"
#include "platform/stock/cwFolderLists.h"
#include "platform/stock/cwMenu.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/stock/cwTree.h"
#include "platform/ui/PlatformRoot.h"

namespace qds {

void DrawPicture(DrawingContext& ctx, const std::string& key, double x, double y, double w, double h) {
  PlatformRoot* root = PlatformRoot::Current();
  if (key.empty() || !root || !root->Images()) return;
  if (const SurfacePtr picture = root->Images()->Get(key)) ctx.DrawSurface(picture, x, y, w, h, Filter::Good);
}

void DrawFace(DrawingContext& ctx, double w, double h, int state) {
  DrawPart(ctx, ThemePart::Face, state, 0, 0, w, h);
}

void DrawFace(DrawingContext& ctx, double w, double h, std::int64_t fill, bool focused) {
  ctx.SetSourceColor(fill);
  ctx.RoundedRectangle(0.5, 0.5, w - 1, h - 1, 3);
  ctx.Fill(true);
  ctx.SetLineWidth(1);
  ctx.SetSourceColor(CurrentTheme().cTheme_GetThemeColor(ThemePart::Frame,
                                                         focused ? ThemeState::Focused : ThemeState::Normal));
  ctx.Stroke();
}

TextSize MeasureUiText(const std::string& text) {
  DrawingContext measure(DrawingSurface::Create(1, 1));
  measure.SelectFont(UiFont(), kUiFontSize, 0);
  return measure.MeasureText(text);
}

TextSize MeasureUiText(const std::string& text, double width) {
  DrawingContext measure(DrawingSurface::Create(1, 1));
  measure.SelectFont(UiFont(), kUiFontSize, 0);
  measure.SetWordWrap(true);
  return measure.MeasureText(text, width);
}

std::string ShownCaption(const std::string& caption, int* accessAt) {
  std::string shown;
  if (accessAt) *accessAt = -1;
  for (size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&' && i + 1 < caption.size()) {
      ++i;
      // The first single '&' marks the letter; later ones are only hidden.
      if (accessAt && *accessAt < 0 && caption[i] != '&') *accessAt = static_cast<int>(shown.size());
    }
    shown += caption[i];
  }
  return shown;
}

char AccessLetter(const std::string& caption) {
  for (size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    if (caption[i + 1] != '&')
      return static_cast<char>(std::toupper(static_cast<unsigned char>(caption[i + 1])));
    ++i;
  }
  return 0;
}

void cwButton::W_Paint(DrawingContext& ctx, double w, double h) {
  DrawFace(ctx, w, h,
           (!EnabledInTree() ? ThemeState::Disabled : 0) | (pressed_ ? ThemeState::Pressed : 0) |
               (Checkable && Checked ? ThemeState::Checked : 0) | (MouseOver() ? ThemeState::Hover : 0) |
               (HasFocus() ? ThemeState::Focused : 0));
  double textLeft = 0;
  if (!PictureKey().empty()) {
    const double side = std::min(h - 6, 24.0);
    DrawPicture(ctx, PictureKey, 4, (h - side) / 2, side, side);
    textLeft = side + 6;
  }
  ctx.SelectFont(UiFont(), kUiFontSize,
                 EnabledInTree() ? StockColor(Palette::Text) : StockColor(Palette::Disabled));
  int accessAt = -1;
  const std::string shown = ShownCaption(Caption, &accessAt);
  ctx.DrawText(textLeft, 0, w - textLeft, h, shown, true, textLeft > 0 ? TextAlign::Left : TextAlign::Center,
               TextAlign::Middle, accessAt);
}

void cwCheckBox::W_Paint(DrawingContext& ctx, double w, double h) {
  const double side = std::min(14.0, h - 2);
  const double top = (h - side) / 2;
  const int state = (!EnabledInTree() ? ThemeState::Disabled : 0) | (Pressed() ? ThemeState::Pressed : 0) |
                    (MouseOver() ? ThemeState::Hover : 0) | (HasFocus() ? ThemeState::Focused : 0);
  DrawPart(ctx, ThemePart::Face, state, 1, top, side, side);
  if (Checked) DrawPart(ctx, ThemePart::Check, state | ThemeState::Checked, 1, top, side, side);
  ctx.SelectFont(UiFont(), kUiFontSize,
                 EnabledInTree() ? StockColor(Palette::Text) : StockColor(Palette::Disabled));
  int accessAt = -1;
  const std::string shown = ShownCaption(Caption, &accessAt);
  ctx.DrawText(side + 7, 0, w - side - 7, h, shown, true, TextAlign::Left, TextAlign::Middle, accessAt);
}

void cwButton::Press() {
  if (Checkable) Checked = !Checked;
  Refresh();
  RaiseEvent(Click, "Click");
}

bool cwButton::W_MouseDown(int button, int, double, double) {
  if (button != Button::Left) return false;
  pressed_ = true;
  SetCapture();
  Refresh();
  return true;
}

bool cwButton::W_MouseUp(int button, int, double x, double y) {
  if (button != Button::Left || !pressed_) return false;
  pressed_ = false;
  ReleaseCapture();
  Refresh();
  // Only a release over the button is a click: moving away cancels.
  if (x >= 0 && y >= 0 && x < Width() && y < Height()) Press();
  return true;
}

bool cwButton::W_AccessKey(char letter) {
  if (letter == 0 || AccessLetter(Caption) != letter) return false;
  SetFocus();
  Press();
  return true;
}

bool cwButton::W_KeyDown(int keyCode, int) {
  if (keyCode != Key::Return && keyCode != Key::Space) return false;
  Press();
  return true;
}

void cwButton::W_ReportState(WidgetState& state) const {
  state.caption = Caption;
  if (Checkable) state.checked = Checked;
}

void cwLabel::W_Paint(DrawingContext& ctx, double w, double h) {
  ctx.SelectFont(UiFont(), kUiFontSize,
                 EnabledInTree() ? StockColor(Palette::Text) : StockColor(Palette::Disabled));
  int accessAt = -1;
  const std::string shown = ShownCaption(Caption, &accessAt);
  ctx.SetWordWrap(WordWrap);
  ctx.DrawText(2, 0, w - 4, h, shown, !WordWrap, Alignment, WordWrap ? TextAlign::Top : TextAlign::Middle,
               accessAt);
}

void cwFrame::W_Paint(DrawingContext& ctx, double w, double h) {
  const double top = Caption().empty() ? 0.5 : 8.5;
  ctx.SetLineWidth(1);
  ctx.SetSourceColor(StockColor(Palette::Border));
  ctx.RoundedRectangle(0.5, top, w - 1, h - top - 0.5, 4);
  ctx.Stroke();
  if (Caption().empty()) return;
  ctx.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  const TextSize size = ctx.MeasureText(Caption());
  ctx.SetSourceColor(StockColor(Palette::Back));
  ctx.Rectangle(6, 0, size.width + 6, 16);
  ctx.Fill();
  ctx.DrawText(9, 0, size.width + 2, 16, Caption(), true, TextAlign::Left, TextAlign::Middle);
}

void cwImage::W_Paint(DrawingContext& ctx, double w, double h) {
  PlatformRoot* root = PlatformRoot::Current();
  if (PictureKey().empty() || !root || !root->Images()) return;
  const SurfacePtr picture = root->Images()->Get(PictureKey());
  if (!picture) return;
  if (Stretch) {
    ctx.DrawSurface(picture, 0, 0, w, h, Filter::Good);
    return;
  }
  // Kept in shape: as large as fits, centred.
  const double scale = std::min(w / picture->Width(), h / picture->Height());
  const double pw = picture->Width() * scale, ph = picture->Height() * scale;
  ctx.DrawSurface(picture, (w - pw) / 2, (h - ph) / 2, pw, ph, Filter::Good);
}

QDS_JOIN_WIDGET_REGISTRY(cwButton);
QDS_JOIN_WIDGET_REGISTRY(cwCheckBox);
QDS_JOIN_WIDGET_REGISTRY(cwLabel);
QDS_JOIN_WIDGET_REGISTRY(cwFrame);
QDS_JOIN_WIDGET_REGISTRY(cwImage);

}  // namespace qds
