#pragma once
// Small shared types of the drawing layer.

#include <cstdint>
#include <memory>

namespace qds {

// Colour values are 0xBBGGRR, as everywhere in the program; -1 is "no colour".
struct Rgb {
  double r, g, b;  // 0..1
};
inline Rgb ToRgb(std::int64_t colour) {
  const auto c = static_cast<std::uint32_t>(colour);
  return {(c & 0xFF) / 255.0, ((c >> 8) & 0xFF) / 255.0, ((c >> 16) & 0xFF) / 255.0};
}

// An affine matrix as cairo keeps it: x' = xx*x + xy*y + x0, y' = yx*x + yy*y + y0.
struct Matrix {
  double xx = 1, yx = 0, xy = 0, yy = 1, x0 = 0, y0 = 0;
};

// Compositing operators carry cairo's numbers, which is how designs store
// them (2 OVER, 12 ADD, 14 MULTIPLY, ... 28 HSL_LUMINOSITY).
namespace Op {
constexpr int Clear = 0, Source = 1, Over = 2, In = 3, Out = 4, Atop = 5, Dest = 6, DestOver = 7, DestIn = 8,
              DestOut = 9, DestAtop = 10, Xor = 11, Add = 12, Saturate = 13, Multiply = 14, Screen = 15,
              Overlay = 16, Darken = 17, Lighten = 18, ColorDodge = 19, ColorBurn = 20, HardLight = 21,
              SoftLight = 22, Difference = 23, Exclusion = 24, HslHue = 25, HslSaturation = 26, HslColor = 27,
              HslLuminosity = 28;
}

// Filters for scaled surfaces, by cairo's numbers: 0 fast, 1 good, 2 best,
// 3 nearest, 4 bilinear.
namespace Filter {
constexpr int Fast = 0, Good = 1, Best = 2, Nearest = 3, Bilinear = 4;
}

enum class FillRule { Winding = 0, EvenOdd = 1 };
enum class SurfaceKind { Image = 0, Svg = 1 };

class DrawingSurface;
using SurfacePtr = std::shared_ptr<DrawingSurface>;

}  // namespace qds
