#pragma once
// Reading single pixels of a picture in tests.

#include <cstdint>
#include <ostream>

#include "platform/DrawingSurface.h"

struct Bgra {
  int b, g, r, a;
  bool operator==(const Bgra& o) const { return b == o.b && g == o.g && r == o.r && a == o.a; }
};

inline std::ostream& operator<<(std::ostream& os, const Bgra& p) {
  return os << "(b" << p.b << " g" << p.g << " r" << p.r << " a" << p.a << ")";
}

// Premultiplied, as stored.
inline Bgra PixelAt(const qds::SurfacePtr& s, int x, int y) {
  const qds::PixelView v = s->Pixels();
  const std::uint8_t* p = v.Bytes() + y * v.Stride() + 4 * x;
  return {p[0], p[1], p[2], p[3]};
}

// Each channel within `tolerance` of the expected value.
inline bool Near(const Bgra& p, const Bgra& e, int tolerance = 2) {
  const auto close = [&](int a, int b) { return a - b <= tolerance && b - a <= tolerance; };
  return close(p.b, e.b) && close(p.g, e.g) && close(p.r, e.r) && close(p.a, e.a);
}
