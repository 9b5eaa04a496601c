#include <gtest/gtest.h>

#include "app/AppContext.h"
#include "engine/cSVGItem.h"
#include "engine/modColorRewrite.h"
#include "engine/modPixelOps.h"
#include "engine/modRenderDesign.h"
#include "platform/DrawingContext.h"
#include "platform/SvgRenderer.h"
#include "tests/support/Golden.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/Pixels.h"
#include "tests/support/StartedApp.h"

using namespace qds;

namespace {

struct RenderFixture : ::testing::Test {
  StartedApp s;
  void SetUp() override { ASSERT_TRUE(StartWithoutWindow(*s.app)); }
  SVGItemPtr Layer(const std::string& name, const std::string& style = "Flat") {
    SVGItemPtr l = LibraryLayer(*s.app, name, style);
    EXPECT_TRUE(l) << name;
    return l;
  }
};

}  // namespace

TEST_F(RenderFixture, APlainCentredLayerDrawsAsTheRendererDrawsTheIcon) {
  const SVGItemPtr star = Layer("star");
  star->setPos(5);
  SurfacePtr ours = DrawingSurface::Create(256, 256);
  {
    DrawingContext ctx(ours);
    star->RenderTo(ctx, 256, 256);
  }
  // The snap position centres the visible picture: the renderer's own
  // drawing, moved by half the difference of the margins.
  const Margins m = MeasureMargins(star->SvgBytes(), 0, 256, 256);
  SurfacePtr reference = DrawingSurface::Create(256, 256);
  {
    DrawingContext ctx(reference);
    ctx.Translate(-(m.Left - m.Right) / 2, -(m.Top - m.Bottom) / 2);
    s.app->SvgRenderer->Render(ctx, star->SvgBytes(), 0, 0, 256, 256);
  }
  int off = 0;
  for (int y = 0; y < 256; ++y) {
    for (int x = 0; x < 256; ++x) off += !Near(PixelAt(ours, x, y), PixelAt(reference, x, y), 24);
  }
  EXPECT_LT(off, 256 * 256 / 200) << "pixels differing";

  // Width 300 and height 200: everything lands in the 200 square.
  SurfacePtr wide = DrawingSurface::Create(300, 200);
  {
    DrawingContext ctx(wide);
    star->RenderTo(ctx, 300, 200);
  }
  for (int y = 0; y < 200; ++y) {
    for (int x = 200; x < 300; ++x) ASSERT_EQ(PixelAt(wide, x, y).a, 0);
  }

  // A turned layer is drawn anew each time and never cached; a plain one once.
  const int cached = s.app->RenderCache.Count();
  star->setAngle(30);
  SurfacePtr scratch = DrawingSurface::Create(64, 64);
  DrawingContext ctx(scratch);
  star->RenderTo(ctx, 64, 64);
  EXPECT_EQ(s.app->RenderCache.Count(), cached);
  star->setAngle(0);
  star->RenderTo(ctx, 64, 64);
  star->RenderTo(ctx, 64, 64);
  EXPECT_EQ(s.app->RenderCache.Count(), cached + 1);

  // A document the renderer cannot read draws nothing and raises nothing.
  cSVGItem broken;
  broken.Init(Value(1), ToBytes("<svg><path d="), "broken");
  SurfacePtr empty = DrawingSurface::Create(32, 32);
  DrawingContext ec(empty);
  EXPECT_NO_THROW(broken.RenderTo(ec, 32, 32));
  EXPECT_EQ(PixelAt(empty, 16, 16).a, 0);
}

TEST_F(RenderFixture, SnapPositionsZoomAndRotation) {
  const SVGItemPtr heart = Layer("heart-3");
  const SurfacePtr sheet = ContactSheet(12, 4, 128, [&](int i, DrawingContext& ctx) {
    SVGItemPtr l = heart->Clone();
    l->setZoomPercent(50);
    if (i < 9) {
      l->setPos(i + 1);
      l->setDistance(5);
    } else if (i == 9) {
      l->setOffSetx(-20);
      l->setOffSetY(15);
    } else if (i == 10) {
      l->setZoomPercent(100);
    } else {
      l->setAngle(30);
      l->setZoomPercent(80);
    }
    l->RenderTo(ctx, 128, 128);
  });
  EXPECT_TRUE(MatchesGolden(sheet, "render_positions"));
}

TEST_F(RenderFixture, EveryFilterAndBothGradients) {
  const SVGItemPtr icon = Layer("shop", "Flat Color");
  const SurfacePtr sheet = ContactSheet(12, 4, 96, [&](int i, DrawingContext& ctx) {
    SVGItemPtr l = icon->Clone();
    cColorItem c;
    switch (i) {
      case 0:
        break;  // original
      case 1:
        l->setFilter(cSVGItem::FilterColor);
        l->setColorItem(cColorItem(0x2060E0));
        break;
      case 2:
        l->setFilter(cSVGItem::FilterGray);
        break;
      case 3: {
        // The first colour of the icon becomes green.
        Collection olds, news;
        ItemCollection just;
        just.Add(icon);
        olds.Add(GetAllColors(just).Item(0));
        news.Add(Value(0x00A000));
        l->setRCOldColor(&olds);
        l->setRCNewColor(&news);
        l->setFilter(cSVGItem::FilterReplace);
        break;
      }
      case 4:
        c.setB(255.0);
        l->setFilter(cSVGItem::FilterColorize);
        l->setColorItem(c);
        break;
      case 5:
        l->setFilter(cSVGItem::FilterColor);
        l->setColorItem(cColorItem(0x0000C0));
        c.setH(120.0);
        l->setFilter(cSVGItem::FilterHSL);
        l->setColorItem(c);
        break;
      default: {
        // Gradients: linear at 0, 90, 180, 270; radial, inverted and not.
        l->setFilter(cSVGItem::FilterGradient);
        l->GradStopsAdd(0, 0x0000FF, 1, 0);
        l->GradStopsAdd(1, 0xFF0000, 1, 1);
        if (i <= 9) l->setGradAngleDeg((i - 6) * 90.0);
        if (i >= 10) {
          l->setGradRadial(true);
          l->setGradInvert(i == 11);
          l->setGradPointCX(0.3);
          l->setGradPointCY(0.3);
        }
      }
    }
    l->setPos(5);
    l->RenderTo(ctx, 96, 96);
  });
  EXPECT_TRUE(MatchesGolden(sheet, "render_filters"));

  // An angle that is no quarter turn makes no gradient: the icon as it is.
  const SVGItemPtr plain = icon->Clone();
  const SVGItemPtr slanted = icon->Clone();
  slanted->setFilter(cSVGItem::FilterGradient);
  slanted->GradStopsAdd(0, 0x0000FF, 1, 0);
  slanted->setGradAngleDeg(45);
  SurfacePtr a = DrawingSurface::Create(64, 64), b = DrawingSurface::Create(64, 64);
  DrawingContext ca(a), cb(b);
  plain->RenderTo(ca, 64, 64);
  slanted->RenderTo(cb, 64, 64);
  EXPECT_EQ(a->ToPngBytes(), b->ToPngBytes());
}

TEST_F(RenderFixture, FormClipsInvertedOrNotAndAClipWithAnIcon) {
  const SVGItemPtr square = Layer("Background_Rounded_Square_Blue", "Design Elements");
  const SurfacePtr sheet = ContactSheet(9, 3, 128, [&](int i, DrawingContext& ctx) {
    s.app->Layers.Clear();
    SVGItemPtr l = square->Clone();
    if (i < 8) {
      l->setClipExists(true);
      l->setClipShapeForms(i % 4);
      l->setClipInverted(i >= 4);
      l->setClipX(0.2);
      l->setClipY(0.2);
      l->setClipDX(0.6);
      l->setClipDY(0.6);
      l->setClipColor(0x00C0FF);
    } else {
      // Cut by the outline of a star, grown by the clip distance.
      SVGItemPtr star = Layer("star");
      star->setZoomPercent(60);
      s.app->Layers.Add(star, "star");
      l->setClipIOverlayKey("star");
      l->setClipIOffset(10);
      l->SettingsRefresh();
      EXPECT_TRUE(l->ClipIPath());
    }
    l->RenderTo(ctx, 128, 128);
  });
  s.app->Layers.Clear();
  EXPECT_TRUE(MatchesGolden(sheet, "render_clips"));
}

TEST_F(RenderFixture, ShadowsReflectionGlowOutlineOpacityAndBlend) {
  const auto white = cColorItem(0xFFFFFF);
  const auto setup = [&](int i) {
    ItemCollection& layers = s.app->Layers;
    layers.Clear();
    s.app->DesignOpacityOn = false;
    SVGItemPtr bg = Layer("Background_Rounded_Square_Blue", "Design Elements");
    SVGItemPtr sym = Layer("star");
    sym->setFilter(cSVGItem::FilterColor);
    sym->setColorItem(white);
    sym->setZoomPercent(60);
    const auto effect = [&](int type, const std::string& name) {
      auto e = std::make_shared<cSVGItem>();
      e->Init(Value("0101260000" + name), {}, name, nullptr, true, cSVGItem::FilterColor);
      e->setEffType(type);
      e->setEffSymbolKey("sym");
      e->setEffBGKey("bg");
      return e;
    };
    switch (i) {
      case 0:
      case 1: {  // long shadows at 45 and 135 degrees
        SVGItemPtr ls = effect(1, "LS");
        ls->setLSAngle(i == 0 ? 45 : 135);
        layers.Add(sym, "sym");
        layers.Add(ls, "ls");
        layers.Add(bg, "bg");
        ls->SettingsRefresh();
        EXPECT_FALSE(ls->SvgBytes().empty());
        ls->setColorItem(cColorItem(0x000000));
        ls->setOpacity(35);
        break;
      }
      case 2: {  // a blurred wall shadow, clipped to the background
        SVGItemPtr ws = effect(2, "WS");
        ws->setEffOffsetX(7);
        ws->setEffOffsetY(-7);
        ws->setEffBlur(6);
        ws->setOpacity(50);
        layers.Add(sym, "sym");
        layers.Add(ws, "ws");
        layers.Add(bg, "bg");
        ws->SettingsRefresh();
        ws->setColorItem(cColorItem(0x000000));
        break;
      }
      case 3: {  // a reflection under the symbol
        sym->setColorItem(cColorItem(0x2060E0));
        sym->setPos(2);
        sym->setDistance(10);
        SVGItemPtr re = effect(4, "RE");
        re->setFilter(cSVGItem::FilterOriginal);
        re->setEffOpacity1(60);
        layers.Add(sym, "sym");
        layers.Add(re, "re");
        re->SettingsRefresh();
        break;
      }
      case 4: {  // a yellow glow around a white star on blue
        SVGItemPtr gl = effect(5, "GL");
        gl->setEffBlur(6);
        gl->setEffIsGlow(true);
        layers.Add(sym, "sym");
        layers.Add(gl, "gl");
        layers.Add(bg, "bg");
        gl->SettingsRefresh();
        gl->setColorItem(cColorItem(0x00FFFF));
        break;
      }
      case 5: {  // a dashed outline
        SVGItemPtr line = Layer("heart-3");
        line->setEffIsLine(true);
        line->setEffIsDash(true);
        line->setEffLineWidth(8);
        line->setEffDashValue1(30);
        line->setEffDashValue2(15);
        line->SettingsRefresh();
        layers.Add(line, "line");
        break;
      }
      case 6:
      case 7: {  // a faint layer: its own opacity, or the design's
        bg->setOpacity(30);
        layers.Add(bg, "bg");
        s.app->DesignOpacityOn = i == 7;
        break;
      }
      case 8: {  // multiply over the background
        sym->setColorItem(cColorItem(0x00FFFF));
        sym->setFillOptions(Op::Multiply);
        sym->setZoomPercent(90);
        layers.Add(sym, "sym");
        layers.Add(bg, "bg");
        break;
      }
    }
  };
  const SurfacePtr sheet = ContactSheet(9, 3, 160, [&](int i, DrawingContext& ctx) {
    setup(i);
    RenderDesign(*s.app, ctx, 160);
  });
  s.app->Layers.Clear();
  EXPECT_TRUE(MatchesGolden(sheet, "render_effects"));
}

TEST(BorderTracer, ADotARingAndNothing) {
  StartedApp s;
  ASSERT_TRUE(s.Start());
  SurfacePtr surface = DrawingSurface::Create(64, 64);
  DrawingContext ctx(surface);
  EXPECT_EQ(PathFromIcon(ctx), nullptr);  // nothing to trace
  {
    PixelView v = surface->Pixels();
    v.Longs()[20 * 64 + 30] = static_cast<std::int32_t>(0xFF000000u);
  }
  EXPECT_EQ(PathFromIcon(ctx), nullptr);  // a dot: at most one point, no outline

  SurfacePtr ring = DrawingSurface::Create(64, 64);
  DrawingContext rc(ring);
  rc.SetAntialias(false);
  rc.Arc(32, 32, 20, 0, 6.2831853);
  rc.SetLineWidth(6);
  rc.Stroke();
  const PathPtr outline = PathFromIcon(rc);
  ASSERT_TRUE(outline);
  int closes = 0;
  double minX = 99, maxX = -1, minY = 99, maxY = -1;
  outline->ForEach([&](PathOp op, const double* xy, int points) {
    closes += op == PathOp::Close;
    for (int i = 0; i < points; ++i) {
      minX = std::min(minX, xy[2 * i]), maxX = std::max(maxX, xy[2 * i]);
      minY = std::min(minY, xy[2 * i + 1]), maxY = std::max(maxY, xy[2 * i + 1]);
      const double r = std::hypot(xy[2 * i] - 32, xy[2 * i + 1] - 32);
      EXPECT_NEAR(r, 22.5, 1.6);  // on the ring's outer edge
    }
  });
  // One outline: filling it marks the hole too, so the inner edge is not traced.
  EXPECT_EQ(closes, 1);
  EXPECT_NEAR(minX, 9, 1);
  EXPECT_NEAR(maxX, 54, 1);
  EXPECT_NEAR(minY, 9, 1);
  EXPECT_NEAR(maxY, 54, 1);

  // An icon outline grows by its clip distance, in 256 units.
  cSVGItem star;
  star.Init(Value(1),
            ToBytes(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 256 256">)"
                    R"(<rect x="64" y="64" width="128" height="128" fill="#000"/></svg>)"),
            "square");
  s.app->PathFieldSize = 256;
  star.setClipIOffset(16);
  const PathPtr grown = GetPathFromIcon(star);
  ASSERT_TRUE(grown);
  double gx0 = 999, gx1 = -999;
  grown->ForEach([&](PathOp, const double* xy, int points) {
    for (int i = 0; i < points; ++i) gx0 = std::min(gx0, xy[2 * i]), gx1 = std::max(gx1, xy[2 * i]);
  });
  EXPECT_NEAR(gx0, 64 - 8, 2);  // half the line width on each side
  EXPECT_NEAR(gx1, 192 + 8, 2);
  cSVGItem blank;
  blank.Init(Value(1), ToBytes(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 8 8"/>)"), "blank");
  EXPECT_EQ(GetPathFromIcon(blank), nullptr);
}

TEST(PixelOps, MarginsOfABlankPictureAndTheCacheLimit) {
  StartedApp s;
  ASSERT_TRUE(s.Start());
  double scale = 1;
  const Margins blank = GetInnerDimensions(DrawingSurface::Create(100, 80), ToBytes("<svg/>"), scale, 0);
  EXPECT_EQ(blank.Top, -1);
  EXPECT_EQ(blank.Left, 100 - 0.75);
  EXPECT_EQ(blank.Right, 99);
  EXPECT_EQ(blank.Bottom, 80);
  const Bytes square = ToBytes(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 100 100">)"
                               R"(<rect x="10" y="30" width="80" height="40"/></svg>)");
  scale = 1;
  const Margins m = GetInnerDimensions(DrawingSurface::Create(100, 100), square, scale, 0);
  EXPECT_EQ(m.Left, 10);
  EXPECT_EQ(m.Top, 30);
  EXPECT_EQ(m.Right, 10);
  EXPECT_EQ(m.Bottom, 30);
  EXPECT_NEAR(scale, 100.0 / 80, 1e-9);  // the tighter direction
  double again = 0;
  const Margins memo = MeasureMargins(square, 0, 100, 100, &again);
  EXPECT_EQ(memo.Top, 30);
  EXPECT_NEAR(again, scale, 1e-9);

  PictureCache cache{std::size_t{1} << 30};
  cSVGItem item;
  for (int i = 0; i < 129; ++i) {
    item.Init(Value(i),
              ToBytes("<svg xmlns=\"http://www.w3.org/2000/svg\"><!--" + std::to_string(i) + "--></svg>"),
              "x");
    GetCachedSurface(item, cache, 8, 128);
  }
  EXPECT_EQ(cache.Count(), 129);
  GetCachedSurface(item, cache, 8, 128);  // more than the limit: emptied first
  EXPECT_EQ(cache.Count(), 1);
}

TEST_F(RenderFixture, ALongShadowIsCastOnlyByItsSymbol) {
  constexpr int kSide = 256;
  constexpr double kPi = 3.14159265358979323846;
  struct Case {
    int pos;
    double distance, offsetX, angle;
  };
  for (const Case c : {Case{5, 0, 0, 135}, Case{1, 6, 0, 135}, Case{9, 4, 0, 45}, Case{0, 0, -12, 135}}) {
    ItemCollection& layers = s.app->Layers;
    layers.Clear();
    SVGItemPtr sym = Layer("star");
    sym->setZoomPercent(60);
    sym->setPos(c.pos);
    sym->setDistance(c.distance);
    if (c.pos == 0) sym->setOffSetx(c.offsetX);
    auto ls = std::make_shared<cSVGItem>();
    ls->Init(Value("0101260000Long Shadow"), {}, "Long Shadow", nullptr, true, cSVGItem::FilterColor);
    ls->setEffType(1);
    ls->setEffSymbolKey("sym");
    ls->setEffBGKey("bg");
    ls->setLSAngle(c.angle);
    layers.Add(sym, "sym");
    layers.Add(ls, "ls");
    layers.Add(Layer("Background_Rounded_Square_Blue", "Design Elements"), "bg");
    ls->SettingsRefresh();
    ls->setColorItem(cColorItem(0x000000));
    const auto alone = [&](cSVGItem& layer) {
      SurfacePtr surface = DrawingSurface::Create(kSide, kSide);
      DrawingContext ctx(surface);
      layer.RenderTo(ctx, kSide, kSide);
      return surface;
    };
    const SurfacePtr shadow = alone(*ls), symbol = alone(*sym);
    // Walk from each shadow pixel towards the light: the symbol must be
    // met on the way, give or take a pixel of antialiasing.
    const double back = (c.angle - 90 + 180) * kPi / 180;
    const double dx = std::cos(back), dy = std::sin(back);
    const auto ink = [&](double x, double y) {
      for (int oy = -1; oy <= 1; ++oy) {
        for (int ox = -1; ox <= 1; ++ox) {
          const int px = static_cast<int>(std::lround(x)) + ox, py = static_cast<int>(std::lround(y)) + oy;
          if (px >= 0 && py >= 0 && px < kSide && py < kSide && PixelAt(symbol, px, py).a > 0) return true;
        }
      }
      return false;
    };
    int shadowPixels = 0, uncast = 0;
    for (int y = 0; y < kSide; ++y) {
      for (int x = 0; x < kSide; ++x) {
        if (PixelAt(shadow, x, y).a < 128 || PixelAt(symbol, x, y).a > 0) continue;
        ++shadowPixels;
        double px = x, py = y;
        bool cast = false;
        while (!cast && px >= 0 && py >= 0 && px < kSide && py < kSide) {
          cast = ink(px, py);
          px += dx * 0.5, py += dy * 0.5;
        }
        uncast += !cast;
      }
    }
    EXPECT_GT(shadowPixels, kSide * kSide / 20) << "Pos " << c.pos;
    EXPECT_LT(uncast, kSide * kSide / 1000) << "Pos " << c.pos << " angle " << c.angle;
  }
  s.app->Layers.Clear();
}
