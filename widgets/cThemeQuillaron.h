#pragma once
// The studio's own look: its seven colours, the desktop's sans face for
// icon captions, and scrollers a little slimmer than the desktop's.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/ui/UiTheme.h"

namespace qds {

class cThemeQuillaron : public UiTheme {
 public:
  cThemeQuillaron();

  std::string cTheme_GetIconFontName() const override { return iconFont_; }
  void cTheme_FillThemeColorArray(std::vector<std::int64_t>& colors) const override;
  std::int64_t cTheme_GetThemeColor(ThemePart part, int state) const override;
  double cTheme_GetScrollerSize() const override;
  void cTheme_DrawTo(DrawingContext& ctx, ThemePart part, int state, double x, double y, double w, double h,
                     int direction) const override;

 private:
  std::vector<std::int64_t> palette_;
  std::string iconFont_;
};

}  // namespace qds
