#include "widgets/cThemeQuillaron.h"

#include "platform/DrawingContext.h"
#include "platform/ThemePalette.h"

namespace qds {

namespace {

// Linux desktops have no one scroll bar size to ask for; 17 is what the
// common toolkits draw, and the studio's scrollers are 2 slimmer.
constexpr double kDesktopScrollBarSize = 17;
// Shipped with the studio, so a desktop without fontconfig's answer still
// has captions.
constexpr const char* kFallbackFont = "DejaVu Sans";

}  // namespace

cThemeQuillaron::cThemeQuillaron() {
  for (int i = 0; i < kQuillaronPaletteSize; ++i) palette_.push_back(QuillaronPaletteColor(i));
  // Asked once: fontconfig's answer does not change while the program runs.
  iconFont_ = DefaultSansFamily();
  if (iconFont_.empty()) iconFont_ = kFallbackFont;
}

void cThemeQuillaron::cTheme_FillThemeColorArray(std::vector<std::int64_t>& colors) const {
  colors = palette_;
}

std::int64_t cThemeQuillaron::cTheme_GetThemeColor(ThemePart part, int state) const {
  return StandardPartColor(palette_, part, state);
}

double cThemeQuillaron::cTheme_GetScrollerSize() const {
  return kDesktopScrollBarSize - 2;
}

void cThemeQuillaron::cTheme_DrawTo(DrawingContext& ctx, ThemePart part, int state, double x, double y,
                                    double w, double h, int direction) const {
  DrawStandardPart(*this, ctx, part, state, x, y, w, h, direction);
}

}  // namespace qds
