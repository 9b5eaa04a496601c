#pragma once
// Where a window kept from an earlier run may open again. Screens come and
// go between runs (a laptop leaves its second monitor behind) and settings
// may be edited by hand, so a kept rectangle is used only when the user can
// still reach the window's top to move it.

#include <vector>

namespace qds {

// A rectangle of the screen in device pixels.
struct ScreenArea {
  double x = 0, y = 0, w = 0, h = 0;
  bool operator==(const ScreenArea&) const = default;
};

struct WindowRequest {
  ScreenArea kept;  // w or h of 0: nothing kept
  double defaultW = 0, defaultH = 0;
  double minW = 0, minH = 0;
  double gripHeight = 0;  // the strip at the top that moves the window
};

// The kept rectangle when it is no smaller than the minimum, no larger than
// the largest screen, and at least kGrip pixels of its top strip lie on one
// screen; otherwise the default size, cut to the first screen, in that
// screen's middle. With no screens, the default size at 0, 0.
ScreenArea PlaceWindow(const WindowRequest& request, const std::vector<ScreenArea>& screens);
constexpr double kGrip = 100;

}  // namespace qds
