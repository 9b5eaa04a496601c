#include <gtest/gtest.h>

#include "engine/cSVGItem.h"
#include "engine/modFunctions.h"
#include "engine/modParser.h"
#include "platform/DrawingContext.h"
#include "platform/SvgRenderer.h"
#include "platform/XmlDocument.h"
#include "tests/support/StartedApp.h"

using namespace qds;

namespace {

std::vector<float> Numbers(std::string_view d, std::vector<std::uint8_t>* codes = nullptr) {
  std::vector<float> n;
  std::vector<std::uint8_t> c;
  ParsePoints(d, n, c);
  if (codes) *codes = c;
  return n;
}

// The path the data draws, as text: one letter per element and the points.
std::string Outline(std::string_view d) {
  std::vector<float> n;
  std::vector<std::uint8_t> c;
  ParsePoints(d, n, c);
  SurfacePtr s = DrawingSurface::Create(1, 1);
  DrawingContext ctx(s);
  RenderPath(ctx, n, c);
  std::string out;
  ctx.CopyPath()->ForEach([&](PathOp op, const double* xy, int points) {
    out += "MLCZ"[static_cast<int>(op)];
    for (int i = 0; i < 2 * points; ++i) {
      char buf[32];
      std::snprintf(buf, sizeof buf, "%g ", std::round(xy[i] * 1000) / 1000);
      out += buf;
    }
  });
  return out;
}

struct Box {
  double left, top, right, bottom;
};

// The bounds of the path the data draws, with curves flattened.
Box Bounds(std::string_view d) {
  std::vector<float> n;
  std::vector<std::uint8_t> c;
  ParsePoints(d, n, c);
  SurfacePtr s = DrawingSurface::Create(1, 1);
  DrawingContext ctx(s);
  RenderPath(ctx, n, c);
  Box b{1e9, 1e9, -1e9, -1e9};
  ctx.CopyPath(true, 0.01)->ForEach([&](PathOp, const double* xy, int points) {
    for (int i = 0; i < points; ++i) {
      b.left = std::min(b.left, xy[2 * i]), b.right = std::max(b.right, xy[2 * i]);
      b.top = std::min(b.top, xy[2 * i + 1]), b.bottom = std::max(b.bottom, xy[2 * i + 1]);
    }
  });
  return b;
}

// A mask of the picture: which pixels are more than half covered.
std::vector<bool> Mask(const SurfacePtr& s) {
  const PixelView v = s->Pixels();
  std::vector<bool> m(static_cast<std::size_t>(v.Width()) * v.Height());
  for (int y = 0; y < v.Height(); ++y) {
    for (int x = 0; x < v.Width(); ++x) m[y * v.Width() + x] = v.Bytes()[y * v.Stride() + 4 * x + 3] > 127;
  }
  return m;
}

// Pixels of one mask with no pixel of the same value in the other mask
// within one pixel.
int FurtherThanAPixel(const std::vector<bool>& a, const std::vector<bool>& b, int w, int h) {
  int bad = 0;
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      if (a[y * w + x] == b[y * w + x]) continue;
      bool near = false;
      for (int dy = -1; dy <= 1 && !near; ++dy) {
        for (int dx = -1; dx <= 1 && !near; ++dx) {
          const int nx = x + dx, ny = y + dy;
          near = nx >= 0 && ny >= 0 && nx < w && ny < h && b[ny * w + nx] == a[y * w + x];
        }
      }
      bad += !near;
    }
  }
  return bad;
}

}  // namespace

TEST(PathParser, ReadsNumbersAndCommandsByTheProgramsGrammar) {
  std::vector<std::uint8_t> codes;
  EXPECT_EQ(Numbers("M10 20 30 40", &codes), (std::vector<float>{10, 20, 30, 40}));
  EXPECT_EQ(codes, (std::vector<std::uint8_t>{PathCode::Move, 0, 0, 0}));
  EXPECT_EQ(Outline("M10 20 30 40"), "M10 20 L30 40 ");  // a move and a line
  EXPECT_EQ(Outline("m1,1 2,2"), "M1 1 L3 3 ");          // absolute move, relative line
  // A second point in a number only starts the fraction's scale again.
  EXPECT_EQ(Numbers("1.5.5"), (std::vector<float>{6.5f}));
  EXPECT_EQ(Numbers("-.5.25"), (std::vector<float>{-5.25f}));
  EXPECT_EQ(Numbers("M1e2,1E-2"), (std::vector<float>{100, 0.01f}));
  EXPECT_EQ(Numbers("10-5"), (std::vector<float>{10, -5}));
  EXPECT_EQ(Numbers("M 1 e 2"), (std::vector<float>{1, 2}));  // "e" only counts after a digit
  EXPECT_TRUE(Numbers("").empty());

  // Closing: an entry of its own; "z M" closes and moves on.
  Numbers("M0 0L5 0 5 5Z", &codes);
  EXPECT_EQ(codes.back(), PathCode::Close);
  EXPECT_EQ(Outline("M0 0L5 0 5 5Z"), "M0 0 L5 0 L5 5 ZM0 0 ");
  EXPECT_EQ(Outline("M0 0H4V3h-1v-1z M9 9l1 1"), "M0 0 L4 0 L4 3 L3 3 L3 2 ZM9 9 L10 10 ");

  // Curves: absolute, relative, smooth (mirrored control) and quadratic as a cubic.
  EXPECT_EQ(Outline("M0 0C1 1 2 1 3 0S5 -1 6 0"), "M0 0 C1 1 2 1 3 0 C4 -1 5 -1 6 0 ");
  EXPECT_EQ(Outline("M1 1c1 1 2 1 3 0s2 -1 3 0"), "M1 1 C2 2 3 2 4 1 C5 0 6 0 7 1 ");
  EXPECT_EQ(Outline("M0 0Q1 2 3 4q1 1 2 2"), "M0 0 C1 2 3 4 3 4 C4 5 5 6 5 6 ");
  // Arcs end where they say, absolute and relative.
  const std::string arc = Outline("M0 0A5 5 0 0 1 10 0a5 5 0 1 1 10 0");
  EXPECT_EQ(arc.substr(arc.size() - 6), " 20 0 ");
  EXPECT_NE(arc.find(" 10 0 C"), std::string::npos);
  // A "d" with no numbers gives an empty path; "T" is not read.
  EXPECT_EQ(Outline("M"), "");
  EXPECT_EQ(Outline("M0 0T5 5"), "M0 0 L5 5 ");
}

TEST(PathParser, ArcFlagsPickWhichOfTheFourArcsIsDrawn) {
  // A chord of 10 on a circle of radius 10: the centres lie 8.66 above and
  // below it, so the large arcs reach 18.66 out and the small ones 1.34.
  // Large and counter-clockwise: down around the centre below the chord.
  Box b = Bounds("M0 0A10 10 0 1 0 10 0");
  EXPECT_NEAR(b.left, -5, 0.05);
  EXPECT_NEAR(b.right, 15, 0.05);
  EXPECT_NEAR(b.top, 0, 0.05);
  EXPECT_NEAR(b.bottom, 18.66, 0.05);
  // Small and clockwise: a flat cap above the chord.
  b = Bounds("M0 0A10 10 0 0 1 10 0");
  EXPECT_NEAR(b.left, 0, 0.05);
  EXPECT_NEAR(b.right, 10, 0.05);
  EXPECT_NEAR(b.top, -1.34, 0.05);
  EXPECT_NEAR(b.bottom, 0, 0.05);
  // The same arcs relative to a point further on.
  b = Bounds("M20 30a10 10 0 1 0 10 0");
  EXPECT_NEAR(b.left, 15, 0.05);
  EXPECT_NEAR(b.right, 35, 0.05);
  EXPECT_NEAR(b.bottom, 48.66, 0.05);
  b = Bounds("M20 30a10 10 0 0 1 10 0");
  EXPECT_NEAR(b.left, 20, 0.05);
  EXPECT_NEAR(b.right, 30, 0.05);
  EXPECT_NEAR(b.top, 28.66, 0.05);
  EXPECT_NEAR(b.bottom, 30, 0.05);
}

TEST(PathParser, LibraryOutlinesMatchWhatTheRendererDraws) {
  StartedApp s;
  ASSERT_TRUE(s.Start());
  SvgRenderer renderer(1);
  int compared = 0;
  DbRecordset rs = s.app->Cnn.Query(
      "Select Images.Name, SVG From Images Join Styles On Images.Styles_ID = Styles.ID "
      "Where Styles.Name In ('Flat','Slimline','Flat Color') And Images.ID % 37 = 0");
  for (; !rs.Eof(); rs.MoveNext()) {
    const std::string svg = rs.Fields("SVG").AsString();
    SvgDocument doc;
    ASSERT_TRUE(doc.Parse(svg));
    std::vector<std::string> styles;
    for (const XmlNode& e : doc.Elements()) {
      if (e.Name() == "path") styles.push_back(e.Attribute("style"));
    }
    bool strokes = false;
    for (const auto& st : styles) strokes = strokes || st.find("fill:none") != std::string::npos;
    if (strokes) continue;  // outlines of strokes are not what this compares

    SurfacePtr reference = DrawingSurface::Create(256, 256);
    {
      DrawingContext ctx(reference);
      ASSERT_TRUE(renderer.Render(ctx, ToBytes(svg), 0, 0, 256, 256));
    }
    SurfacePtr ours = DrawingSurface::Create(256, 256);
    {
      DrawingContext ctx(ours);
      const auto paths = GetCairoPathsFromSVG(svg);
      ASSERT_EQ(paths.Count(), static_cast<int>(styles.size()));
      for (int i = 0; i < paths.Count(); ++i) {
        ctx.SetFillRule(styles[i].find("evenodd") != std::string::npos ? FillRule::EvenOdd
                                                                       : FillRule::Winding);
        ctx.AppendPath(*paths.Item(i));
        ctx.Fill();
      }
    }
    EXPECT_EQ(FurtherThanAPixel(Mask(reference), Mask(ours), 256, 256), 0) << rs.Fields("Name").AsString();
    EXPECT_EQ(FurtherThanAPixel(Mask(ours), Mask(reference), 256, 256), 0) << rs.Fields("Name").AsString();
    ++compared;
  }
  EXPECT_GE(compared, 50);
}

TEST(ClipPaths, FormsBackgroundsAndRemovalOfClipDefinitions) {
  StartedApp s;
  ASSERT_TRUE(s.Start());
  AddQuillaronShapes(*s.app);
  int lines = 0, curves = 0;
  ConstructPath(0, 10, 10, 100, 50, 0)->ForEach([&](PathOp op, const double* xy, int) {
    lines += op == PathOp::LineTo;
    curves += op == PathOp::CurveTo;
    if (op == PathOp::LineTo) {
      const double nx = (xy[0] - 60) / 50, ny = (xy[1] - 35) / 25;
      EXPECT_NEAR(nx * nx + ny * ny, 1, 0.05);  // on the ellipse
    }
  });
  EXPECT_EQ(curves, 0);
  EXPECT_GT(lines, 8);
  double minX = 1e9, maxX = -1e9;
  ConstructPath(3, 10, 20, 100, 50, 10)->ForEach([&](PathOp, const double* xy, int points) {
    for (int i = 0; i < points; ++i) minX = std::min(minX, xy[2 * i]), maxX = std::max(maxX, xy[2 * i]);
  });
  EXPECT_NEAR(minX, 10, 1e-6);
  EXPECT_NEAR(maxX, 110, 1e-6);

  // A background layer becomes the current path where the layer is drawn.
  auto circle = s.app->ShapeItems.Item(s.app->FilledCircleIndex)->Clone();
  circle->setZoomPercent(50);
  s.app->Layers.Add(circle, "bg");
  SurfacePtr target = DrawingSurface::Create(200, 200);
  DrawingContext ctx(target);
  EXPECT_FALSE(SetBGPath(ctx, "missing", 200, 200));
  ASSERT_TRUE(SetBGPath(ctx, "bg", 200, 200));
  ctx.SetSourceColor(0xFFFFFF);
  ctx.Fill();
  const PixelView v = target->Pixels();
  EXPECT_EQ(v.Bytes()[(100 * v.Stride()) + 4 * 100 + 3], 255);  // the centre
  EXPECT_EQ(v.Bytes()[(100 * v.Stride()) + 4 * 40 + 3], 0);     // outside the half-size circle
  EXPECT_EQ(v.Bytes()[(100 * v.Stride()) + 4 * 60 + 3], 255);

  EXPECT_TRUE(SetIconClipPath(ctx, "bg", 200, 200));
  const Matrix m = ctx.GetMatrix();
  EXPECT_NEAR(m.xx, 0.5 * 200 / 256, 1e-9);
  EXPECT_NEAR(m.x0, 50, 1e-9);
  ctx.Restore();

  const std::string clipped =
      R"(<svg xmlns="http://www.w3.org/2000/svg"><defs><clipPath id="clip1"><path d="M0 0h5v5z"/></clipPath></defs>)"
      R"svg(<g id="surface1" clip-path="url(#clip1)" clip-rule="nonzero"><path d="M1 1h2v2z"/></g>)svg"
      R"(<clipPath id="other"><path d="M0 0"/></clipPath></svg>)";
  const std::string cleaned = RemoveClipPaths(clipped);
  EXPECT_EQ(cleaned.find("clip1"), std::string::npos);
  EXPECT_EQ(cleaned.find("clip-rule"), std::string::npos);
  EXPECT_EQ(cleaned.find("<defs"), std::string::npos);                     // left empty, so gone
  EXPECT_NE(cleaned.find(R"(<clipPath id="other">)"), std::string::npos);  // not named "clip..."
  EXPECT_NE(cleaned.find(R"(<path d="M1 1h2v2z"/>)"), std::string::npos);
  EXPECT_EQ(RemoveClipPaths("<svg>\n  <g/></svg>"), "<svg>\n  <g/></svg>");  // nothing to remove
  EXPECT_EQ(RemoveClipPaths("not xml <"), "not xml <");
}
