#pragma once
// A source for painting: a solid colour, a linear or radial gradient, or a
// surface. Copies share the same pattern.

#include <cstdint>

#include "platform/Drawing.h"

typedef struct _cairo_pattern cairo_pattern_t;

namespace qds {

enum class Extend { None = 0, Repeat = 1, Reflect = 2, Pad = 3 };

class Pattern {
 public:
  static Pattern Solid(std::int64_t colour, double alpha = 1);
  static Pattern Linear(double x0, double y0, double x1, double y1);
  static Pattern Radial(double cx0, double cy0, double r0, double cx1, double cy1, double r1);
  static Pattern ForSurface(const SurfacePtr& surface);

  Pattern(const Pattern& other);
  Pattern& operator=(const Pattern& other);
  ~Pattern();

  // Gradients only: offset 0..1, colour 0xBBGGRR, alpha 0..1.
  void AddColorStop(double offset, std::int64_t colour, double alpha = 1);
  int ColorStopCount() const;
  void SetExtend(Extend extend);
  void SetFilter(int filter);
  void SetMatrix(const Matrix& m);

  cairo_pattern_t* Native() const { return p_; }
  // Takes over a reference the caller owns.
  static Pattern Adopt(cairo_pattern_t* p);

 private:
  explicit Pattern(cairo_pattern_t* p) : p_(p) {}
  cairo_pattern_t* p_;
  SurfacePtr surface_;  // keeps a surface pattern's picture alive
};

}  // namespace qds
