#pragma once
// How the widgets look: the colour of each part in each state, the drawing
// of the parts they share (faces, arrows, checks, scroller thumbs), the
// icon font and the size of scrollers. One theme serves the whole program;
// until the studio installs its own, a built-in one draws.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qds {

class DrawingContext;

enum class ThemePart {
  Background,     // behind everything
  Face,           // a button, a box, a tool bar item
  Frame,          // the outline of a list or a box
  Text,           // captions; DrawTo draws nothing for it
  Selection,      // the chosen row, the done part of a progress
  Arrow,          // a triangle pointing in `direction`
  Check,          // a tick
  ScrollerTrack,  // the groove of a scroll bar, slider or progress
  ScrollerThumb,  // along Up/Down: a vertical bar; Left/Right: a horizontal one
  Knob,           // the round grip of a slider
};

// Flags, combined.
namespace ThemeState {
constexpr int Normal = 0, Hover = 1, Pressed = 2, Checked = 4, Focused = 8, Disabled = 16;
}

// Where an arrow points.
namespace ArrowDirection {
constexpr int Up = 0, Down = 1, Left = 2, Right = 3, DownLeft = 4, UpLeft = 5, UpRight = 6, DownRight = 7;
}

// The turn of an arrow, in degrees clockwise from pointing right. A number
// that names no direction leaves it pointing right.
double ArrowDegrees(int direction);

class UiTheme {
 public:
  virtual ~UiTheme() = default;
  // The face the desktop shows icon captions in.
  virtual std::string cTheme_GetIconFontName() const = 0;
  // The palette, in the order of Palette:: (back, text, face, border,
  // accent, disabled, hover).
  virtual void cTheme_FillThemeColorArray(std::vector<std::int64_t>& colors) const = 0;
  virtual std::int64_t cTheme_GetThemeColor(ThemePart part, int state) const = 0;
  // The thickness of the scroll bars widgets show beside their content.
  virtual double cTheme_GetScrollerSize() const = 0;
  virtual void cTheme_DrawTo(DrawingContext& ctx, ThemePart part, int state, double x, double y, double w,
                             double h, int direction) const = 0;
};

// The theme of the program.
const UiTheme& CurrentTheme();
// Installs `theme` for every widget from the next paint on; none puts the
// built-in one back.
void SetCurrentTheme(std::shared_ptr<const UiTheme> theme);
// A colour of the current theme's palette, read once when it was installed.
std::int64_t ThemePaletteColor(int index);

// What the themes of this program share: the colours of the parts in the
// given palette, and the parts drawn in `theme`'s colours.
std::int64_t StandardPartColor(const std::vector<std::int64_t>& palette, ThemePart part, int state);
void DrawStandardPart(const UiTheme& theme, DrawingContext& ctx, ThemePart part, int state, double x,
                      double y, double w, double h, int direction);

}  // namespace qds
