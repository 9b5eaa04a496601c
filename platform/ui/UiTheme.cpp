#include "platform/ui/UiTheme.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/DrawingContext.h"
#include "platform/ThemePalette.h"
#include "platform/stock/StockDrawing.h"

namespace qds {

namespace {

// What the widgets draw in before the studio installs its theme, and in
// tests that need no other: the program's palette and its fixed font, so
// that pictures come out the same on every machine.
class BuiltInTheme : public UiTheme {
 public:
  std::string cTheme_GetIconFontName() const override { return "DejaVu Sans"; }
  void cTheme_FillThemeColorArray(std::vector<std::int64_t>& colors) const override {
    colors.clear();
    for (int i = 0; i < kQuillaronPaletteSize; ++i) colors.push_back(QuillaronPaletteColor(i));
  }
  std::int64_t cTheme_GetThemeColor(ThemePart part, int state) const override {
    std::vector<std::int64_t> palette;
    cTheme_FillThemeColorArray(palette);
    return StandardPartColor(palette, part, state);
  }
  double cTheme_GetScrollerSize() const override { return 16; }
  void cTheme_DrawTo(DrawingContext& ctx, ThemePart part, int state, double x, double y, double w, double h,
                     int direction) const override {
    DrawStandardPart(*this, ctx, part, state, x, y, w, h, direction);
  }
};

struct Installed {
  std::shared_ptr<const UiTheme> theme = std::make_shared<BuiltInTheme>();
  std::vector<std::int64_t> palette;
  Installed() { theme->cTheme_FillThemeColorArray(palette); }
};

Installed& Current() {
  static Installed installed;
  return installed;
}

}  // namespace

double ArrowDegrees(int direction) {
  switch (direction) {
    case ArrowDirection::Up:
      return 270;
    case ArrowDirection::Down:
      return 90;
    case ArrowDirection::Left:
      return 180;
    case ArrowDirection::DownLeft:
      return 135;
    case ArrowDirection::UpLeft:
      return 225;
    case ArrowDirection::UpRight:
      return 315;
    case ArrowDirection::DownRight:
      return 45;
    default:
      return 0;
  }
}

const UiTheme& CurrentTheme() {
  return *Current().theme;
}

void SetCurrentTheme(std::shared_ptr<const UiTheme> theme) {
  Installed& now = Current();
  now.theme = theme ? std::move(theme) : std::make_shared<BuiltInTheme>();
  now.theme->cTheme_FillThemeColorArray(now.palette);
}

std::int64_t ThemePaletteColor(int index) {
  const std::vector<std::int64_t>& palette = Current().palette;
  return index >= 0 && index < static_cast<int>(palette.size()) ? palette[index] : 0;
}

std::int64_t StandardPartColor(const std::vector<std::int64_t>& palette, ThemePart part, int state) {
  const auto at = [&](int index) {
    return index < static_cast<int>(palette.size()) ? palette[index] : std::int64_t{0};
  };
  const bool disabled = state & ThemeState::Disabled;
  switch (part) {
    case ThemePart::Background:
      return at(Palette::Back);
    case ThemePart::Face:
      if (disabled) return at(Palette::Back);
      if (state & (ThemeState::Pressed | ThemeState::Checked)) return at(Palette::Accent);
      return (state & ThemeState::Hover) ? at(Palette::Hover) : at(Palette::Face);
    case ThemePart::Frame:
      return (state & ThemeState::Focused) ? at(Palette::Accent) : at(Palette::Border);
    case ThemePart::Text:
    case ThemePart::Arrow:
    case ThemePart::Check:
      return disabled ? at(Palette::Disabled) : at(Palette::Text);
    case ThemePart::Selection:
      return at(Palette::Accent);
    case ThemePart::ScrollerTrack:
      return at(Palette::Border);
    case ThemePart::ScrollerThumb:
      return (state & ThemeState::Pressed) ? at(Palette::Accent) : at(Palette::Face);
    case ThemePart::Knob:
      if (disabled) return at(Palette::Disabled);
      return (state & ThemeState::Pressed) ? at(Palette::Accent) : at(Palette::Text);
  }
  return 0;
}

void DrawStandardPart(const UiTheme& theme, DrawingContext& ctx, ThemePart part, int state, double x,
                      double y, double w, double h, int direction) {
  ctx.NewPath();
  ctx.SetSourceColor(theme.cTheme_GetThemeColor(part, state));
  switch (part) {
    case ThemePart::Background:
    case ThemePart::Selection:
    case ThemePart::ScrollerTrack:
      ctx.Rectangle(x, y, w, h);
      ctx.Fill();
      break;
    case ThemePart::Face:
      // On the half pixel, so that the one-pixel outline is sharp.
      ctx.RoundedRectangle(x + 0.5, y + 0.5, w - 1, h - 1, 3);
      ctx.Fill(true);
      ctx.SetLineWidth(1);
      ctx.SetSourceColor(theme.cTheme_GetThemeColor(ThemePart::Frame, state));
      ctx.Stroke();
      break;
    case ThemePart::Frame:
      ctx.SetLineWidth(1);
      ctx.Rectangle(x + 0.5, y + 0.5, w - 1, h - 1);
      ctx.Stroke();
      break;
    case ThemePart::Text:
      break;
    case ThemePart::Arrow: {
      // A triangle pointing right, turned about the middle of the box. It
      // fills the box: its base spans the box across the way it points.
      const double degrees = ArrowDegrees(direction);
      double along = w, across = h;
      const long quarter = std::lround(degrees) % 180;
      if (quarter == 90) {
        std::swap(along, across);
      } else if (quarter != 0) {
        along = across = std::min(w, h) * 0.7;  // a slanted one keeps inside the box
      }
      ctx.Save();
      ctx.Translate(x + w / 2, y + h / 2);
      ctx.Rotate(degrees);
      ctx.MoveTo(along / 2, 0);
      ctx.LineTo(-along / 2, -across / 2);
      ctx.LineTo(-along / 2, across / 2);
      ctx.ClosePath();
      ctx.Fill();
      ctx.Restore();
      break;
    }
    case ThemePart::Check:
      ctx.SetLineWidth(std::max(1.5, std::min(w, h) / 8));
      ctx.MoveTo(x + w * 0.2, y + h * 0.52);
      ctx.LineTo(x + w * 0.42, y + h * 0.74);
      ctx.LineTo(x + w * 0.8, y + h * 0.28);
      ctx.Stroke();
      break;
    case ThemePart::ScrollerThumb:
      if (direction == ArrowDirection::Up || direction == ArrowDirection::Down) {
        ctx.RoundedRectangle(x + 2, y, w - 4, h, 3);
      } else {
        ctx.RoundedRectangle(x, y + 2, w, h - 4, 3);
      }
      ctx.Fill();
      break;
    case ThemePart::Knob:
      ctx.Ellipse(x + w / 2, y + h / 2, std::min(w, h) / 2, std::min(w, h) / 2);
      ctx.Fill(true);
      ctx.SetLineWidth(1);
      ctx.SetSourceColor(theme.cTheme_GetThemeColor(ThemePart::Frame, state));
      ctx.Stroke();
      break;
  }
}

}  // namespace qds
