#pragma once
// What the stock widgets share: the palette they are drawn in, the font of
// the interface, and the pictures of the image cache. Colours and parts
// come from the theme the program installed.

#include <cstdint>
#include <string>

#include "platform/Drawing.h"
#include "platform/ui/UiTheme.h"

namespace qds {

class DrawingContext;
struct TextSize;

namespace Palette {
// Indexes of the program's palette, by what they colour.
constexpr int Back = 0, Text = 1, Face = 2, Border = 3, Accent = 4, Disabled = 5, Hover = 6;
}  // namespace Palette

inline std::int64_t StockColor(int index) {
  return ThemePaletteColor(index);
}

// The interface font: the installed theme's (in the studio, the desktop's
// sans face), and its size in points.
inline std::string UiFont() {
  return CurrentTheme().cTheme_GetIconFontName();
}
constexpr double kUiFontSize = 9;

// The raised face of a button or box in a ThemeState, outlined in the
// accent colour when it has the focus.
void DrawFace(DrawingContext& ctx, double w, double h, int state);
// The same face filled in a colour of the caller's.
void DrawFace(DrawingContext& ctx, double w, double h, std::int64_t fill, bool focused);
// A part as the current theme draws it.
inline void DrawPart(DrawingContext& ctx, ThemePart part, int state, double x, double y, double w, double h,
                     int direction = ArrowDirection::Down) {
  CurrentTheme().cTheme_DrawTo(ctx, part, state, x, y, w, h, direction);
}
// The size of a text in the interface font, outside any painting.
TextSize MeasureUiText(const std::string& text);
// The same text wrapped at `width`, as a word-wrapping label lays it out.
TextSize MeasureUiText(const std::string& text, double width);

// Captions mark their access key with '&' ("&Save": Alt+S); "&&" is a
// plain '&'. The caption as shown (with, in `accessAt`, the byte index of
// its access letter or -1), and that letter in upper case, or 0.
std::string ShownCaption(const std::string& caption, int* accessAt = nullptr);
char AccessLetter(const std::string& caption);

// A picture of the image cache drawn into the box, or nothing when the
// cache lacks it.
void DrawPicture(DrawingContext& ctx, const std::string& key, double x, double y, double w, double h);

}  // namespace qds
