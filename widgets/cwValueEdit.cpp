#include "widgets/cwValueEdit.h"

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

std::unique_ptr<Widget> MakeValueEditField() {
  return std::make_unique<cwValueEdit>();
}

cwValueEdit::cwValueEdit() : Widget("cwValueEdit") {
  CanFocus = true;
  MouseCursor = Cursor::IBeam;
}

void cwValueEdit::setEditText(const std::string& text) {
  text_ = text;
  replaceAll_ = true;
  Refresh();
}

void cwValueEdit::Typed(std::string text) {
  text_ = std::move(text);
  replaceAll_ = false;
  Refresh();
  if (TextTyped) TextTyped();
}

bool cwValueEdit::W_KeyPress(int keyAscii) {
  if (keyAscii == ',') keyAscii = '.';  // either mark reads as the decimal point
  const bool digit = keyAscii >= '0' && keyAscii <= '9';
  if (!digit && keyAscii != '-' && keyAscii != '.') return false;
  Typed((replaceAll_ ? std::string() : text_) + static_cast<char>(keyAscii));
  return true;
}

bool cwValueEdit::W_KeyDown(int keyCode, int) {
  if (keyCode != Key::Back) return false;
  // The text holds single-byte characters only.
  if (replaceAll_) {
    Typed({});
  } else if (!text_.empty()) {
    Typed(text_.substr(0, text_.size() - 1));
  }
  return true;
}

void cwValueEdit::W_Paint(DrawingContext& ctx, double w, double h) {
  ctx.SetSourceColor(StockColor(Palette::Face));
  ctx.Paint();
  if (replaceAll_ && !text_.empty()) {
    // All of it is marked, to be replaced by the next key.
    const TextSize size = MeasureUiText(text_);
    DrawPart(ctx, ThemePart::Selection, 0, w - 4 - size.width, 3, size.width, h - 6);
  }
  ctx.SelectFont(kUiFont, kUiFontSize, StockColor(Palette::Text));
  ctx.DrawText(2, 0, w - 6, h, text_, true, TextAlign::Right, TextAlign::Middle);
  DrawPart(ctx, ThemePart::Frame, ThemeState::Focused, 0, 0, w, h);
}

QDS_JOIN_WIDGET_REGISTRY(cwValueEdit);

}  // namespace qds
