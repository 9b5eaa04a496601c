#include "platform/ui/WindowPlacement.h"

#include <algorithm>
#include <cmath>

namespace qds {

namespace {

bool Usable(const WindowRequest& r, const std::vector<ScreenArea>& screens) {
  const ScreenArea& k = r.kept;
  if (!std::isfinite(k.x) || !std::isfinite(k.y) || !(k.w >= r.minW) || !(k.h >= r.minH) || k.w <= 0 ||
      k.h <= 0)
    return false;
  double widest = 0, highest = 0;
  for (const ScreenArea& s : screens) widest = std::max(widest, s.w), highest = std::max(highest, s.h);
  if (k.w > widest || k.h > highest) return false;
  const double grip = std::max(1.0, std::min(r.gripHeight, k.h));
  for (const ScreenArea& s : screens) {
    const double across = std::min(k.x + k.w, s.x + s.w) - std::max(k.x, s.x);
    const double down = std::min(k.y + grip, s.y + s.h) - std::max(k.y, s.y);
    if (across >= std::min(kGrip, k.w) && down >= grip) return true;
  }
  return false;
}

}  // namespace

ScreenArea PlaceWindow(const WindowRequest& request, const std::vector<ScreenArea>& screens) {
  if (Usable(request, screens)) return request.kept;
  if (screens.empty()) return {0, 0, request.defaultW, request.defaultH};
  const ScreenArea& s = screens.front();
  const double w = std::min(request.defaultW, s.w), h = std::min(request.defaultH, s.h);
  return {std::round(s.x + (s.w - w) / 2), std::round(s.y + (s.h - h) / 2), w, h};
}

}  // namespace qds
