#include <gtest/gtest.h>

#include <cmath>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "tests/support/Golden.h"
#include "tests/support/Pixels.h"

using namespace qds;

namespace {

constexpr std::int64_t kRed = 0x0000FF, kGreen = 0x00FF00, kBlue = 0xFF0000, kYellow = 0x00FFFF,
                       kWhite = 0xFFFFFF;
constexpr double kPi = 3.14159265358979323846;

}  // namespace

TEST(Drawing, PixelViewsShowBgraBytesAndSignedLongsWithoutACopy) {
  SurfacePtr s = DrawingSurface::Create(4, 2);
  EXPECT_EQ(PixelAt(s, 0, 0), (Bgra{0, 0, 0, 0}));  // new surfaces are transparent
  DrawingContext ctx(s);
  ctx.SetSourceColor(kRed);
  ctx.Paint();
  EXPECT_EQ(PixelAt(s, 3, 1), (Bgra{0, 0, 255, 255}));
  {
    PixelView v = s->Pixels();
    EXPECT_EQ(v.Stride(), 16);
    EXPECT_EQ(v.At(1, 1), static_cast<std::int32_t>(0xFFFF0000u));  // 0xAARRGGBB, negative
    v.Longs()[0] = 0;                                               // written through the view...
  }
  ctx.SetSourceColor(kBlue, 0.5);
  ctx.Rectangle(0, 0, 2, 1);
  ctx.Fill();
  // ...and the surface knows: the half-transparent blue lies over nothing.
  EXPECT_TRUE(Near(PixelAt(s, 0, 0), {128, 0, 0, 128}));
  EXPECT_TRUE(Near(PixelAt(s, 1, 0), {128, 0, 127, 255}));
}

TEST(Drawing, OperatorsCombineColoursByCairosRules) {
  SurfacePtr s = DrawingSurface::Create(120, 40);
  DrawingContext ctx(s);
  struct Case {
    int op;
    Bgra expected;
  };
  // Yellow over red: each operator in its own 40 px square.
  const Case cases[] = {
      {Op::Over, {0, 255, 255, 255}}, {Op::Multiply, {0, 0, 255, 255}}, {Op::Add, {0, 255, 255, 255}}};
  int x = 0;
  for (const Case& c : cases) {
    ctx.SetOperator(Op::Over);
    ctx.SetSourceColor(kRed);
    ctx.Rectangle(x, 0, 40, 40);
    ctx.Fill();
    ctx.SetOperator(c.op);
    EXPECT_EQ(ctx.Operator(), c.op);
    ctx.SetSourceColor(kYellow);
    ctx.Rectangle(x, 0, 40, 40);
    ctx.Fill();
    EXPECT_EQ(PixelAt(s, x + 20, 20), c.expected) << "operator " << c.op;
    x += 40;
  }
  ctx.SetOperator(Op::Difference);
  ctx.SetSourceColor(kWhite);
  ctx.Rectangle(0, 0, 40, 40);
  ctx.Fill();
  EXPECT_EQ(PixelAt(s, 20, 20), (Bgra{255, 0, 0, 255}));  // white minus yellow is blue
  EXPECT_THROW(ctx.SetOperator(99), AppError);
}

TEST(Drawing, GroupsMasksAndGradientsLookRight) {
  SurfacePtr s = DrawingSurface::Create(256, 256);
  DrawingContext ctx(s);
  ctx.SetSourceColor(kWhite);
  ctx.Paint();

  // A linear gradient, red to blue, left to right.
  Pattern linear = Pattern::Linear(0, 0, 256, 0);
  linear.AddColorStop(0, kRed);
  linear.AddColorStop(1, kBlue);
  EXPECT_EQ(linear.ColorStopCount(), 2);
  ctx.SetSource(linear);
  ctx.Rectangle(0, 0, 256, 64);
  ctx.Fill();
  EXPECT_TRUE(Near(PixelAt(s, 0, 32), {0, 0, 255, 255}, 3));
  EXPECT_TRUE(Near(PixelAt(s, 128, 32), {127, 0, 127, 255}, 3));
  EXPECT_TRUE(Near(PixelAt(s, 255, 32), {255, 0, 0, 255}, 3));

  // A radial gradient, green in the middle fading out.
  Pattern radial = Pattern::Radial(64, 128, 0, 64, 128, 60);
  radial.AddColorStop(0, kGreen);
  radial.AddColorStop(1, kGreen, 0);
  ctx.SetSource(radial);
  ctx.Rectangle(0, 64, 128, 128);
  ctx.Fill();
  EXPECT_TRUE(Near(PixelAt(s, 64, 128), {0, 255, 0, 255}, 3));
  EXPECT_EQ(PixelAt(s, 2, 66), (Bgra{255, 255, 255, 255}));  // past the radius: untouched

  // A group of two overlapping squares painted at half alpha: the overlap
  // is not darker than the rest, as it would be drawing each at half.
  ctx.PushGroup();
  ctx.SetSourceColor(kBlue);
  ctx.Rectangle(140, 80, 60, 60);
  ctx.Fill();
  ctx.Rectangle(170, 110, 60, 60);
  ctx.Fill();
  ctx.SetSource(ctx.PopGroup());
  ctx.Paint(0.5);
  EXPECT_EQ(PixelAt(s, 150, 90), PixelAt(s, 185, 125));
  EXPECT_TRUE(Near(PixelAt(s, 185, 125), {255, 128, 128, 255}, 2));

  // Red through a mask that fades from opaque at the top to clear.
  Pattern mask = Pattern::Linear(0, 192, 0, 256);
  mask.AddColorStop(0, 0, 1);
  mask.AddColorStop(1, 0, 0);
  ctx.SetSourceColor(kRed);
  ctx.Save();
  ctx.Rectangle(0, 192, 256, 64);
  ctx.Clip();
  ctx.Mask(mask);
  ctx.Restore();
  EXPECT_TRUE(Near(PixelAt(s, 128, 192), {0, 0, 255, 255}, 5));
  EXPECT_TRUE(Near(PixelAt(s, 128, 255), {251, 251, 255, 255}, 5));

  EXPECT_TRUE(MatchesGolden(s, "groups_masks_gradients"));
}

TEST(Drawing, SvgArcsEndWhereTheyShouldAndBulgeByTheirFlags) {
  SurfacePtr s = DrawingSurface::Create(256, 256);
  DrawingContext ctx(s);
  ctx.SetSourceColor(kWhite);
  ctx.Paint();
  ctx.SetLineWidth(4);
  const std::int64_t colours[] = {kRed, kGreen, kBlue, 0x808000};
  int i = 0;
  // From (78, 128) to (178, 128) with radius 60 there are two circles, and
  // the flags pick one of four arcs of them. Sweep runs clockwise on screen.
  for (bool large : {false, true}) {
    for (bool sweep : {false, true}) {
      ctx.MoveTo(78, 128);
      ctx.SvgArcTo(60, 60, 0, large, sweep, 178, 128);
      const auto end = ctx.CurrentPoint();
      ASSERT_TRUE(end.has_value());
      EXPECT_NEAR(end->first, 178, 1e-9);
      EXPECT_NEAR(end->second, 128, 1e-9);
      ctx.SetSourceColor(colours[i++]);
      ctx.Stroke();
    }
  }
  // The circles' centres lie 33.2 above and below the chord, so each arc
  // crosses x = 128 once, at its own height.
  EXPECT_TRUE(Near(PixelAt(s, 128, 155), {0, 0, 255, 255}, 2));   // small, counter-clockwise: red
  EXPECT_TRUE(Near(PixelAt(s, 128, 101), {0, 255, 0, 255}, 2));   // small, clockwise: green
  EXPECT_TRUE(Near(PixelAt(s, 128, 221), {255, 0, 0, 255}, 2));   // large, counter-clockwise: blue
  EXPECT_TRUE(Near(PixelAt(s, 128, 35), {128, 128, 0, 255}, 2));  // large, clockwise: teal
  EXPECT_EQ(PixelAt(s, 128, 128), (Bgra{255, 255, 255, 255}));

  // Radii too small are scaled up; a relative arc and a tilted ellipse.
  ctx.SetSourceColor(0);
  ctx.MoveTo(20, 230);
  ctx.RelSvgArcTo(5, 5, 0, false, true, 60, 0);
  EXPECT_NEAR(ctx.CurrentPoint()->first, 80, 1e-9);
  ctx.SvgArcTo(40, 15, 30, true, false, 200, 230);
  ctx.SvgArcTo(0, 10, 0, false, false, 240, 230);  // zero radius: a straight line
  ctx.Stroke();
  ctx.Ellipse(128, 30, 60, 15);
  ctx.RoundedRectangle(20, 10, 40, 40, 10);
  ctx.Stroke();
  EXPECT_TRUE(MatchesGolden(s, "arcs"));
}

TEST(Drawing, PathsCopyFlatOrCurvedAndAppendElsewhere) {
  SurfacePtr a = DrawingSurface::Create(64, 64);
  DrawingContext ca(a);
  ca.Arc(32, 32, 20, 0, 2 * kPi);
  ca.ClosePath();
  int curves = 0, lines = 0;
  const PathPtr curved = ca.CopyPath();
  curved->ForEach([&](PathOp op, const double*, int) { curves += op == PathOp::CurveTo; });
  const PathPtr flat = ca.CopyPath(true, 0.01);
  flat->ForEach([&](PathOp op, const double*, int) {
    EXPECT_NE(op, PathOp::CurveTo);
    lines += op == PathOp::LineTo;
  });
  EXPECT_GT(curves, 0);
  EXPECT_GT(lines, 16);  // a fine tolerance gives many segments
  ca.SetSourceColor(kRed);
  ca.Fill();

  SurfacePtr b = DrawingSurface::Create(64, 64);
  DrawingContext cb(b);
  cb.AppendPath(*curved);
  cb.SetSourceColor(kRed);
  cb.Fill(true);  // the path stays for the clip
  cb.Clip();
  cb.SetSourceColor(kBlue);
  cb.Paint();
  EXPECT_EQ(PixelAt(b, 32, 32), (Bgra{255, 0, 0, 255}));
  EXPECT_EQ(PixelAt(b, 2, 2), (Bgra{0, 0, 0, 0}));  // outside the clip
  cb.ResetClip();
  cb.NewPath();
  EXPECT_FALSE(cb.CurrentPoint().has_value());
  EXPECT_TRUE(cb.CopyPath()->Empty());

  // Even-odd leaves the hole of two nested squares empty.
  cb.SetFillRule(FillRule::EvenOdd);
  EXPECT_EQ(cb.FillRule(), FillRule::EvenOdd);
  cb.Rectangle(0, 0, 64, 64);
  cb.Rectangle(16, 16, 32, 32);
  cb.SetOperator(Op::Source);
  cb.SetSourceColor(kGreen);
  cb.Fill();
  EXPECT_EQ(PixelAt(b, 32, 32), (Bgra{255, 0, 0, 255}));
  EXPECT_EQ(PixelAt(b, 4, 4), (Bgra{0, 255, 0, 255}));
}

TEST(Drawing, MatrixTransformsAndSurfacesDrawnIntoBoxes) {
  SurfacePtr s = DrawingSurface::Create(8, 8);
  DrawingContext ctx(s);
  ctx.Translate(4, 0);
  ctx.Rotate(90);
  Matrix m = ctx.GetMatrix();
  EXPECT_NEAR(m.xx, 0, 1e-12);
  EXPECT_NEAR(m.yx, 1, 1e-12);
  EXPECT_NEAR(m.x0, 4, 1e-12);
  ctx.ResetMatrix();
  EXPECT_EQ(ctx.GetMatrix().x0, 0);
  ctx.SetMatrix(m);
  EXPECT_NEAR(ctx.GetMatrix().yx, 1, 1e-12);
  ctx.ResetMatrix();

  // A 2x2 picture drawn nearest-neighbour into a 4x4 box at (2, 2).
  SurfacePtr small = DrawingSurface::Create(2, 2);
  {
    PixelView v = small->Pixels();
    v.Longs()[0] = static_cast<std::int32_t>(0xFFFF0000u);  // red
    v.Longs()[3] = static_cast<std::int32_t>(0xFF0000FFu);  // blue
  }
  ctx.DrawSurface(small, 2, 2, 4, 4, Filter::Nearest);
  EXPECT_EQ(PixelAt(s, 2, 2), (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(PixelAt(s, 3, 3), (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(PixelAt(s, 5, 5), (Bgra{255, 0, 0, 255}));
  EXPECT_EQ(PixelAt(s, 4, 2), (Bgra{0, 0, 0, 0}));
  EXPECT_EQ(PixelAt(s, 1, 1), (Bgra{0, 0, 0, 0}));

  // With alpha, and with an operator that would wipe everything around an
  // unclipped picture.
  ctx.SetOperator(Op::Source);
  ctx.DrawSurface(small, 0, 0, 2, 2, Filter::Nearest, 0.5);
  EXPECT_TRUE(Near(PixelAt(s, 0, 0), {0, 0, 128, 128}));
  EXPECT_EQ(PixelAt(s, 5, 5), (Bgra{255, 0, 0, 255}));

  EXPECT_TRUE(ctx.Antialias());
  ctx.SetAntialias(false);
  EXPECT_FALSE(ctx.Antialias());
  ctx.SetLineWidth(3);
  EXPECT_EQ(ctx.LineWidth(), 3);
}

TEST(Drawing, RepeatingSurfacePatternsTileAndSimilarSurfacesMatchTheirTarget) {
  // An 8 by 8 tile: white at 0.6, with two squares at 0.3 more.
  SurfacePtr tile = DrawingSurface::Create(8, 8);
  {
    DrawingContext t(tile);
    t.SetSourceColor(0xFFFFFF, 0.6);
    t.Paint();
    t.SetSourceColor(0xFFFFFF, 0.3);
    t.Rectangle(0, 0, 4, 4);
    t.Rectangle(4, 4, 4, 4);
    t.Fill();
  }
  Pattern checker = Pattern::ForSurface(tile);
  checker.SetExtend(Extend::Repeat);
  SurfacePtr base = tile->CreateSimilar(200, 16);
  EXPECT_EQ(base->Kind(), SurfaceKind::Image);
  DrawingContext ctx(base);
  ctx.SetSource(checker);
  ctx.Paint();
  EXPECT_EQ(PixelAt(base, 1, 1), PixelAt(base, 193, 9));  // same place in another tile
  EXPECT_EQ(PixelAt(base, 5, 1), PixelAt(base, 197, 9));
  EXPECT_NE(PixelAt(base, 1, 1).a, PixelAt(base, 5, 1).a);  // the two shades alternate
  EXPECT_TRUE(Near(PixelAt(base, 5, 1), {153, 153, 153, 153}, 1));

  SurfacePtr svg = DrawingSurface::Create(64, 64, SurfaceKind::Svg);
  EXPECT_EQ(svg->CreateSimilar(10, 10)->Kind(), SurfaceKind::Svg);
}

TEST(Drawing, BestReductionsGiveTheLibrarysOwnPixels) {
  // Noise with soft and hard edges, transparent and opaque parts: every
  // sample phase and every edge of the picture is met.
  const auto noise = [](int w, int h, unsigned seed) {
    SurfacePtr s = DrawingSurface::Create(w, h);
    PixelView v = s->Pixels();
    for (int y = 0; y < h; ++y) {
      for (int x = 0; x < w; ++x) {
        seed = seed * 1103515245u + 12345u;
        const unsigned a = (x + y) % 7 == 0 ? 0 : (seed >> 24) | ((x * 3 + y) % 5 == 0 ? 0xff : 0);
        std::uint8_t* p = v.Bytes() + y * v.Stride() + 4 * x;
        p[3] = static_cast<std::uint8_t>(a);
        for (int c = 0; c < 3; ++c) p[c] = static_cast<std::uint8_t>(((seed >> (8 * c)) & 0xff) * a / 255);
      }
    }
    return s;
  };
  const auto byCairo = [](const SurfacePtr& from, int w, int h) {
    SurfacePtr out = DrawingSurface::Create(w, h);
    DrawingContext ctx(out);
    ctx.DrawSurface(from, 0, 0, w, h, Filter::Best, 1.0);
    return out;
  };
  struct Case {
    int sw, sh, w, h;
  };
  for (const Case c : {Case{256, 256, 16, 16}, Case{256, 256, 24, 24}, Case{256, 256, 32, 32},
                       Case{256, 256, 48, 48}, Case{256, 256, 64, 64}, Case{256, 256, 128, 128},
                       Case{256, 256, 256, 256}, Case{256, 256, 255, 255}, Case{256, 256, 7, 7},
                       Case{300, 200, 48, 48}, Case{512, 512, 20, 20}, Case{100, 260, 100, 30},
                       Case{640, 64, 64, 64}, Case{256, 256, 512, 512}}) {
    const SurfacePtr source = noise(c.sw, c.sh, static_cast<unsigned>(c.sw * 7 + c.w));
    const SurfacePtr expected = byCairo(source, c.w, c.h);
    for (const bool vector : {true, false}) {
      if (vector && !__builtin_cpu_supports("avx2")) continue;
      const SurfacePtr actual = detail::ResizeBest(source, c.w, c.h, vector);
      ASSERT_EQ(actual->Width(), c.w);
      int differ = 0;
      for (int y = 0; y < c.h; ++y) {
        for (int x = 0; x < c.w; ++x) differ += !(PixelAt(actual, x, y) == PixelAt(expected, x, y));
      }
      EXPECT_EQ(differ, 0) << c.sw << "x" << c.sh << " to " << c.w << "x" << c.h << (vector ? "" : " (scalar)");
    }
  }
}
