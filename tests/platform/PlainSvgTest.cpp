#include <gtest/gtest.h>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/PlainSvg.h"
#include "platform/SvgRenderer.h"
#include "tests/support/Pixels.h"

using namespace qds;

namespace {

// A document as cairo's SVG surface writes it, with `paths` in its group.
std::string Plain(const std::string& paths, const std::string& viewBox = "0 0 16 16") {
  return R"(<?xml version="1.0" encoding="UTF-8"?>)"
         "\n"
         R"(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" )"
         R"(width="16pt" height="16pt" viewBox=")" +
         viewBox + R"(" version="1.1">)" + "\n<g id=\"surface1\">\n" + paths + "\n</g>\n</svg>\n";
}

std::string PathOf(const std::string& style, const std::string& d, const std::string& more = "") {
  return R"(<path style=")" + style + R"(" d=")" + d + "\"" + more + "/>";
}

const std::string kRed = " stroke:none;fill-rule:nonzero;fill:rgb(100%,0%,0%);fill-opacity:1;";
const std::string kSquare = "M 2 2 L 14 2 L 14 14 L 2 14 Z M 2 2 ";

struct Drawn {
  SurfacePtr surface;
  bool ok;
};

// Through RenderPicture, or through librsvg alone, on a fresh surface.
Drawn Draw(const std::string& doc, bool quick, int side = 32, double x = 0, double y = 0, double w = 0,
           double h = 0) {
  SvgRenderer renderer;
  Drawn d{DrawingSurface::Create(side, side), false};
  DrawingContext ctx(d.surface);
  const double bw = w > 0 ? w : side, bh = h > 0 ? h : side;
  d.ok = quick ? renderer.RenderPicture(ctx, ToBytes(doc), x, y, bw, bh)
               : renderer.Render(ctx, ToBytes(doc), x, y, bw, bh);
  return d;
}

bool SameBytes(const SurfacePtr& a, const SurfacePtr& b) {
  const PixelView va = a->Pixels(), vb = b->Pixels();
  return va.Height() == vb.Height() && va.Stride() == vb.Stride() &&
         std::equal(va.Bytes(), va.Bytes() + va.Height() * va.Stride(), vb.Bytes());
}

bool Blank(const SurfacePtr& s) {
  const PixelView v = s->Pixels();
  return std::all_of(v.Bytes(), v.Bytes() + v.Height() * v.Stride(), [](std::uint8_t b) { return b == 0; });
}

}  // namespace

TEST(PlainSvg, TakesCairoDocumentsAndDrawsTheirPixelsAsLibrsvgDoes) {
  // Two squares wound the same way: nonzero fills the middle, evenodd leaves
  // a hole there.
  const std::string nested = kSquare + "M 6 6 L 10 6 L 10 10 L 6 10 Z";
  const std::string evenOdd = " stroke:none;fill-rule:evenodd;fill:rgb(0%,0%,100%);fill-opacity:1;";
  // Half opaque red, a colour exactly half way between two steps, an outline
  // with no fill, and a path that brings its own scale.
  const std::string cases[] = {
      Plain(PathOf(kRed, nested)),
      Plain(PathOf(evenOdd, nested)),
      Plain(PathOf(" stroke:none;fill:rgb(100%,0%,0%);fill-opacity:0.5;", kSquare)),
      Plain(PathOf("fill:rgb(50%,0%,0%)", kSquare)),
      Plain(PathOf(
          "fill:none;stroke-width:2;stroke-linecap:round;stroke-linejoin:bevel;stroke:rgb(0%,50.196078%,0%);"
          "stroke-opacity:1;stroke-miterlimit:10;",
          kSquare)),
      Plain(PathOf(kRed, "M 1 1 L 7 1 L 7 7 L 1 7 Z", R"x( transform="matrix(2,0,0,2,0,0)")x")),
      // 7.4999... steps of 255: rounded at float precision, as librsvg does, it is 8.
      Plain(PathOf("fill:rgb(2.9411764%,0%,0%)", kSquare)),
      // Wider than high: centred in a square box, bands above and below.
      Plain(PathOf(kRed, "M 0 0 L 20 0 L 20 10 L 0 10 Z"), "0 0 20 10"),
  };
  std::vector<SurfacePtr> quick;
  for (const std::string& doc : cases) {
    ASSERT_TRUE(PlainSvg::Read(ToBytes(doc))) << doc;
    const Drawn q = Draw(doc, true), l = Draw(doc, false);
    EXPECT_TRUE(q.ok);
    EXPECT_TRUE(SameBytes(q.surface, l.surface)) << doc;
    quick.push_back(q.surface);
  }
  EXPECT_EQ(PixelAt(quick[0], 16, 16), (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(PixelAt(quick[1], 16, 16), (Bgra{0, 0, 0, 0}));
  EXPECT_EQ(PixelAt(quick[1], 7, 16), (Bgra{255, 0, 0, 255}));
  EXPECT_EQ(PixelAt(quick[2], 16, 16), (Bgra{0, 0, 128, 128}));
  EXPECT_EQ(PixelAt(quick[3], 16, 16), (Bgra{0, 0, 128, 255}));
  EXPECT_EQ(PixelAt(quick[4], 16, 16), (Bgra{0, 0, 0, 0}));
  EXPECT_EQ(PixelAt(quick[4], 4, 16), (Bgra{0, 128, 0, 255}));
  EXPECT_EQ(PixelAt(quick[5], 26, 26), (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(PixelAt(quick[6], 16, 16), (Bgra{0, 0, 8, 255}));
  EXPECT_EQ(PixelAt(quick[7], 16, 4), (Bgra{0, 0, 0, 0}));
  EXPECT_EQ(PixelAt(quick[7], 16, 16), (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(PixelAt(quick[7], 16, 27), (Bgra{0, 0, 0, 0}));

  // A plain document never reaches librsvg, so it never enters its cache.
  SvgRenderer renderer;
  DrawingContext ctx(DrawingSurface::Create(8, 8));
  EXPECT_TRUE(renderer.RenderPicture(ctx, ToBytes(cases[0]), 0, 0, 8, 8));
  EXPECT_EQ(renderer.CachedDocuments(), 0u);
  EXPECT_TRUE(renderer.RenderPicture(ctx, ToBytes(Plain(PathOf("fill:red", kSquare))), 0, 0, 8, 8));
  EXPECT_EQ(renderer.CachedDocuments(), 1u);

  // Boxes off the pixel grid, and not square, still agree to the byte.
  const std::string wide = cases[7];
  for (const auto& [x, y, w, h] : {std::array<double, 4>{3.5, 2.25, 20.3, 27.1}, {0.1, 9.9, 31.7, 6.6}}) {
    const Drawn q = Draw(wide, true, 32, x, y, w, h), l = Draw(wide, false, 32, x, y, w, h);
    EXPECT_TRUE(SameBytes(q.surface, l.surface)) << x << " " << y << " " << w << " " << h;
    EXPECT_FALSE(Blank(q.surface));
  }
}

TEST(PlainSvg, LeavesEverythingElseToLibrsvg) {
  const std::string base = PathOf(kRed, kSquare);
  const std::string outside[] = {
      Plain(base + R"(<rect x="1" y="1" width="4" height="4"/>)"),
      Plain(R"(<defs><linearGradient id="l"><stop offset="0"/></linearGradient></defs>)" +
            PathOf("fill:url(#l)", kSquare)),
      Plain(PathOf(kRed, kSquare, R"( fill="blue")")),
      Plain(PathOf(kRed, "M 2 2 l 10 0 l 0 10 Z")),
      Plain(PathOf(kRed, "M 2 2 H 14 V 14 Z")),
      Plain(PathOf(kRed, "M 2 2 Q 14 2 14 14 Z")),
      Plain(PathOf(kRed, "M 2 2 L 1.5.5 14 Z")),
      Plain(PathOf(kRed, "M 2 2 L 14 2e")),
      Plain(PathOf(kRed, "M 2 2 L 14 2 Z 3")),
      Plain(PathOf(kRed, kSquare, R"x( transform="rotate(30)")x")),
      Plain(PathOf("fill:rgb(100%,0%,0%);opacity:0.5", kSquare)),
      Plain(PathOf("fill:red", kSquare)),
      Plain(PathOf("fill:rgb(255,0,0)", kSquare)),
      Plain(PathOf("fill:rgb(10%,0%,0%);fill:rgb(90%,0%,0%)", kSquare)),
      Plain(PathOf("stroke:rgb(0%,0%,0%);stroke-linecap:square", kSquare)),
      Plain(PathOf("stroke:rgb(0%,0%,0%);stroke-dasharray:2,2", kSquare)),
      Plain(PathOf("stroke:rgb(0%,0%,0%);stroke-width:1cm", kSquare)),
      Plain(PathOf("fill:rgb(100%,0%,0%) !important", kSquare)),
      Plain(base + "<!-- a note -->"),
      Plain("<g>" + base + "text</g>"),
      Plain(R"(<path id="caf)"
            "\xc3\xa9"
            R"(" d="M 2 2 L 14 14"/>)"),
      Plain(PathOf(kRed, "&#77; 2 2 L 14 14")),
      Plain(base, "0 0 16"),
      R"(<svg xmlns="http://www.w3.org/2000/svg" width="2cm" height="2cm" viewBox="0 0 16 16">)" + base +
          "</svg>",
      R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16">)" + base + "</svg>",
      R"(<svg viewBox="0 0 16 16">)" + base + "</svg>",
      " " + Plain(base),
  };
  for (const std::string& doc : outside) {
    EXPECT_FALSE(PlainSvg::Read(ToBytes(doc))) << doc;
    // The picture is librsvg's own.
    const Drawn q = Draw(doc, true), l = Draw(doc, false);
    EXPECT_EQ(q.ok, l.ok) << doc;
    EXPECT_TRUE(SameBytes(q.surface, l.surface)) << doc;
  }
  const Bytes gz = GzipCompress(ToBytes(Plain(base)));
  EXPECT_FALSE(PlainSvg::Read(gz));
  SvgRenderer renderer;
  SurfacePtr s = DrawingSurface::Create(32, 32);
  DrawingContext ctx(s);
  EXPECT_TRUE(renderer.RenderPicture(ctx, gz, 0, 0, 32, 32));
  EXPECT_EQ(PixelAt(s, 16, 16), (Bgra{0, 0, 255, 255}));

  // Damaged documents are refused without harm and draw nothing.
  const std::string plain = Plain(base);
  for (const std::string& broken :
       {std::string(), std::string("<svg"), plain.substr(0, plain.size() / 2), plain + plain,
        std::string(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16"><g></svg>)"),
        std::string(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16"/><svg/>)"),
        std::string(R"(<?xml version="1.0" encoding="UTF-8"?>)"), std::string("not xml at all"),
        std::string(300, '\0')}) {
    EXPECT_FALSE(PlainSvg::Read(ToBytes(broken))) << broken;
    const Drawn q = Draw(broken, true);
    EXPECT_FALSE(q.ok) << broken;
    EXPECT_TRUE(Blank(q.surface)) << broken;
  }
}
