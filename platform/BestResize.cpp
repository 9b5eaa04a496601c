// Reductions with the best filter, computed here instead of by the drawing
// library: the same arithmetic (kernel tables, fixed-point sample positions,
// per-tap rounding), so the same bytes, but with the weights of each sample
// phase worked out once and the picture padded so that no sample needs a
// bounds check. Icon files draw every size from one source this way, and the
// library's general code path spent most of an ICO export here.

#include <cairo.h>
#include <immintrin.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <vector>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"

namespace qds {

namespace {

using Fixed = std::int32_t;  // 16.16
constexpr Fixed kFixedOne = 1 << 16;

// Rounds as the drawing library does (to nearest, ties to even).
Fixed Fixed16FromDouble(double d) {
  union {
    double d;
    std::int32_t i[2];
  } u;
  u.d = d + 103079215104.0;
  return u.i[0];
}

Fixed DoubleToFixedTruncated(double d) {
  return static_cast<Fixed>(d * 65536.0);
}

double GeneralCubic(double x, double r, double B, double C) {
  if (r < 1.0) return GeneralCubic(x * 2 - .5, r * 2, B, C) + GeneralCubic(x * 2 + .5, r * 2, B, C);
  const double ax = std::fabs(x / r);
  if (ax < 1) return (((12 - 9 * B - 6 * C) * ax + (-18 + 12 * B + 6 * C)) * ax * ax + (6 - 2 * B)) / 6;
  if (ax < 2)
    return ((((-B - 6 * C) * ax + (6 * B + 30 * C)) * ax + (-12 * B - 48 * C)) * ax + (8 * B + 24 * C)) / 6;
  return 0.0;
}

double Min(double a, double b) {
  return a < b ? a : b;
}
double Max(double a, double b) {
  return a > b ? a : b;
}

enum class Kernel { Box, CatmullRom };

double KernelValue(Kernel k, double x, double r) {
  if (k == Kernel::Box) return Max(0.0, Min(Min(r, 1.0), Min((r + 1) / 2 - x, (r + 1) / 2 + x)));
  return GeneralCubic(x, r, 0.0, 0.5);
}

int KernelWidth(Kernel k, double r) {
  if (k == Kernel::Box) return r < 1.0 ? 2 : static_cast<int>(std::ceil(r + 1));
  return static_cast<int>(Max(2, std::ceil(r * 4)));
}

// One axis of the filter: `width` weights for each of 2^phaseBits phases.
struct AxisFilter {
  int width = 0, phaseBits = 0;
  std::vector<Fixed> weights;
};

AxisFilter MakeAxisFilter(Kernel kernel, double r) {
  AxisFilter f;
  f.width = KernelWidth(kernel, r);
  if (f.width > 1) {
    while (r * (1 << f.phaseBits) <= 128.0) ++f.phaseBits;
  }
  const int phases = 1 << f.phaseBits;
  f.weights.resize(static_cast<std::size_t>(phases * f.width));
  const double step = 1.0 / phases;
  Fixed* p = f.weights.data();
  for (int i = 0; i < phases; ++i, p += f.width) {
    const double frac = (i + .5) * step;
    const double x1 = std::ceil(frac - f.width / 2.0 - 0.5) - frac + 0.5;  // centre of the left-most pixel
    double total = 0;
    for (int j = 0; j < f.width; ++j) {
      const double v = KernelValue(kernel, x1 + j, r);
      total += v;
      p[j] = DoubleToFixedTruncated(v);
    }
    total = 1 / total;
    Fixed newTotal = 0;
    for (int j = 0; j < f.width; ++j) newTotal += (p[j] = static_cast<Fixed>(p[j] * total));
    p[f.width / 2] += kFixedOne - newTotal;  // the rounding error goes to the middle
  }
  return f;
}

// Transforms a 16.16 point by the 3x3 fixed matrix as the pixel library does.
void TransformPoint(const Fixed m[3][3], std::int64_t v[3]) {
  std::int64_t out[3];
  for (int i = 0; i < 3; ++i) {
    std::int64_t hi = static_cast<std::int64_t>(m[i][0]) * (v[0] >> 16);
    std::int64_t lo = static_cast<std::int64_t>(m[i][0]) * (v[0] & 0xFFFF);
    hi += static_cast<std::int64_t>(m[i][1]) * (v[1] >> 16);
    lo += static_cast<std::int64_t>(m[i][1]) * (v[1] & 0xFFFF);
    hi += static_cast<std::int64_t>(m[i][2]) * (v[2] >> 16);
    lo += static_cast<std::int64_t>(m[i][2]) * (v[2] & 0xFFFF);
    out[i] = hi + ((lo + 0x8000) >> 16);
  }
  for (int i = 0; i < 3; ++i) v[i] = out[i];
}

// The weighed sum of `rows` rows of `taps` pixels from `first` on, per
// channel (blue, green, red, alpha), with the weights repeated per channel.
void Weigh(const std::uint32_t* first, int stride, const std::int32_t* w, int taps, int rows, std::int32_t total[4]) {
  std::int32_t t[4] = {0, 0, 0, 0};
  for (int i = 0; i < rows; ++i) {
    const std::uint32_t* s = first + static_cast<std::ptrdiff_t>(i) * stride;
    for (int j = 0; j < taps; ++j, w += 4) {
      const std::uint32_t p = s[j];
      for (int c = 0; c < 4; ++c) t[c] += static_cast<std::int32_t>((p >> (8 * c)) & 0xff) * w[c];
    }
  }
  std::copy(t, t + 4, total);
}

// The same, two pixels at a time in eight 32-bit lanes. The products and
// sums are the same integers, so the result is too.
__attribute__((target("avx2"))) void WeighAvx2(const std::uint32_t* first, int stride, const std::int32_t* w,
                                                int taps, int rows, std::int32_t total[4]) {
  __m256i acc = _mm256_setzero_si256();
  for (int i = 0; i < rows; ++i) {
    const std::uint32_t* s = first + static_cast<std::ptrdiff_t>(i) * stride;
    for (int j = 0; j < taps; j += 2, w += 8) {
      const __m128i two = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(s + j));
      const __m256i lanes = _mm256_cvtepu8_epi32(two);
      acc = _mm256_add_epi32(acc, _mm256_mullo_epi32(lanes, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(w))));
    }
  }
  const __m128i sum = _mm_add_epi32(_mm256_castsi256_si128(acc), _mm256_extracti128_si256(acc, 1));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(total), sum);
}

}  // namespace

SurfacePtr ResizeBest(const SurfacePtr& picture, int width, int height) {
  static const bool haveAvx2 = __builtin_cpu_supports("avx2");
  return detail::ResizeBest(picture, width, height, haveAvx2);
}

namespace detail {

SurfacePtr ResizeBest(const SurfacePtr& picture, int width, int height, bool vector) {
  if (picture->Kind() != SurfaceKind::Image) {
    Raise(ErrNo::InvalidArgument, "ResizeBest needs a pixel surface", "DrawingSurface");
  }
  width = std::max(1, width);
  height = std::max(1, height);
  const int sourceW = picture->Width(), sourceH = picture->Height();
  cairo_surface_t* const source = picture->Native();
  // The pattern matrix of a picture drawn scaled into (0, 0, width, height).
  const double mxx = 1.0 / (static_cast<double>(width) / sourceW);
  const double myy = 1.0 / (static_cast<double>(height) / sourceH);
  double dx = std::hypot(mxx, 0.0), dy = std::hypot(0.0, myy);
  if (width == sourceW && height == sourceH) return picture->Copy();
  if (dx < 1.0 || dy < 1.0) {
    // Enlarging is rare here and keeps to the library's own code.
    SurfacePtr out = DrawingSurface::Create(width, height);
    DrawingContext ctx(out);
    ctx.DrawSurface(picture, 0, 0, width, height, Filter::Best, 1.0);
    return out;
  }
  Kernel kernel = Kernel::CatmullRom;
  if (!(dx < 0x7FFF)) dx = 0x7FFF;
  if (!(dy < 0x7FFF)) dy = 0x7FFF;
  if (dx > 16.0) dx = 16.0, kernel = Kernel::Box;
  if (dy > 16.0) dy = 16.0, kernel = Kernel::Box;
  const AxisFilter fx = MakeAxisFilter(kernel, dx), fy = MakeAxisFilter(kernel, dy);

  // The fixed-point transform, with its translation adjusted so that the
  // middle of the target maps where the exact matrix maps it.
  Fixed m[3][3] = {{Fixed16FromDouble(mxx), 0, 0}, {0, Fixed16FromDouble(myy), 0}, {0, 0, kFixedOne}};
  const double det = mxx * myy;
  if (!(std::fabs(det * det - 1.0) < 1.0 / 256)) {
    const double ixx = 1. / mxx, iyy = 1. / myy;
    const double xc = width / 2., yc = height / 2.;
    for (int iteration = 0; iteration < 5; ++iteration) {
      std::int64_t v[3] = {Fixed16FromDouble(xc), Fixed16FromDouble(yc), kFixedOne};
      TransformPoint(m, v);
      double x = static_cast<double>(static_cast<Fixed>(v[0])) / 65536.0;
      double y = static_cast<double>(static_cast<Fixed>(v[1])) / 65536.0;
      const double px = ixx * x + 0.0 * y, py = 0.0 * x + iyy * y;
      x = px - xc;
      y = py - yc;
      const double ddx = mxx * x + 0 * y, ddy = 0 * x + myy * y;
      const Fixed ax = Fixed16FromDouble(ddx), ay = Fixed16FromDouble(ddy);
      m[0][2] -= ax;
      m[1][2] -= ay;
      if (ax == 0 && ay == 0) break;
    }
  }

  // The source, padded with transparent pixels as wide as a kernel, so that
  // samples beyond its edges read nothing without a test.
  cairo_surface_flush(source);
  const int pad = std::max(fx.width, fy.width) + 2;
  const int pw = sourceW + 2 * pad, ph = sourceH + 2 * pad;
  std::vector<std::uint32_t> src(static_cast<std::size_t>(pw) * ph, 0);
  {
    const unsigned char* data = cairo_image_surface_get_data(source);
    const int stride = cairo_image_surface_get_stride(source);
    for (int y = 0; y < sourceH; ++y) {
      std::memcpy(&src[static_cast<std::size_t>(y + pad) * pw + pad], data + static_cast<std::ptrdiff_t>(y) * stride,
                  static_cast<std::size_t>(sourceW) * 4);
    }
  }

  // The 2-D weights of each pair of phases, rounded per tap as the library
  // rounds them, each repeated for the four channels of a pixel and each row
  // made an even number of taps long (the extra tap weighs nothing), so that
  // two pixels are weighed at once; made when first met.
  const int taps = (fx.width + 1) & ~1;
  std::map<int, std::vector<std::int32_t>> tables;
  const auto tableFor = [&](int px, int py) -> const std::vector<std::int32_t>& {
    std::vector<std::int32_t>& t = tables[px * (1 << fy.phaseBits) + py];
    if (t.empty()) {
      t.assign(static_cast<std::size_t>(taps) * fy.width * 4, 0);
      const Fixed* wy = &fy.weights[static_cast<std::size_t>(py) * fy.width];
      const Fixed* wx = &fx.weights[static_cast<std::size_t>(px) * fx.width];
      for (int i = 0; i < fy.width; ++i) {
        for (int j = 0; j < fx.width; ++j) {
          const auto f = static_cast<Fixed>((static_cast<std::int64_t>(wx[j]) * wy[i] + 0x8000) >> 16);
          std::fill_n(&t[(static_cast<std::size_t>(i) * taps + j) * 4], 4, f);
        }
      }
    }
    return t;
  };

  SurfacePtr out = DrawingSurface::Create(width, height);
  cairo_surface_flush(out->Native());
  unsigned char* outData = cairo_image_surface_get_data(out->Native());
  const int outStride = cairo_image_surface_get_stride(out->Native());
  const int xPhaseShift = 16 - fx.phaseBits, yPhaseShift = 16 - fy.phaseBits;
  const int xOff = ((fx.width << 16) - kFixedOne) >> 1, yOff = ((fy.width << 16) - kFixedOne) >> 1;
  for (int line = 0; line < height; ++line) {
    std::int64_t v[3] = {kFixedOne / 2, static_cast<std::int64_t>(line) * kFixedOne + kFixedOne / 2, kFixedOne};
    TransformPoint(m, v);
    Fixed vx = static_cast<Fixed>(v[0]), vy = static_cast<Fixed>(v[1]);
    auto* row = reinterpret_cast<std::uint32_t*>(outData + static_cast<std::ptrdiff_t>(line) * outStride);
    for (int k = 0; k < width; ++k, vx += m[0][0], vy += m[1][0]) {
      const Fixed x = ((vx >> xPhaseShift) << xPhaseShift) + ((1 << xPhaseShift) >> 1);
      const Fixed y = ((vy >> yPhaseShift) << yPhaseShift) + ((1 << yPhaseShift) >> 1);
      const int px = (x & 0xffff) >> xPhaseShift, py = (y & 0xffff) >> yPhaseShift;
      const int x1 = (x - 1 - xOff) >> 16, y1 = (y - 1 - yOff) >> 16;
      const std::vector<std::int32_t>& t = tableFor(px, py);
      std::int32_t total[4];
      const std::uint32_t* first = &src[static_cast<std::size_t>(y1 + pad) * pw + (x1 + pad)];
      if (vector) {
        WeighAvx2(first, pw, t.data(), taps, fy.width, total);
      } else {
        Weigh(first, pw, t.data(), taps, fy.width, total);
      }
      const std::int32_t tb = total[0], tg = total[1], tr = total[2], ta = total[3];
      const auto channel = [](std::int32_t total) {
        return static_cast<std::uint32_t>(std::clamp((total + 0x8000) >> 16, 0, 0xff));
      };
      row[k] = (channel(ta) << 24) | (channel(tr) << 16) | (channel(tg) << 8) | channel(tb);
    }
  }
  cairo_surface_mark_dirty(out->Native());
  return out;
}

}  // namespace detail

}  // namespace qds
