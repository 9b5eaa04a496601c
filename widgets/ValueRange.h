#pragma once
// A number held inside Min..Max, as sliders and progress bars keep it: a
// new bound that passes the other takes it along.

#include <algorithm>

namespace qds {

struct ValueRange {
  double min = 0, max = 100, value = 0;
  void SetMin(double v) {
    min = v;
    max = std::max(max, min);
  }
  void SetMax(double v) {
    max = v;
    min = std::min(min, max);
  }
  // Held inside the bounds; true when the value moved.
  bool SetValue(double v) {
    v = std::clamp(v, min, max);
    if (v == value) return false;
    value = v;
    return true;
  }
};

}  // namespace qds
