// One design must look the same whether it is exported as a picture or as
// an SVG file that another program draws: here librsvg draws the SVG and the
// two are compared pixel by pixel.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>

#include "export/modExport.h"
#include "platform/DrawingContext.h"
#include "platform/Files.h"
#include "platform/SvgRenderer.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/Pixels.h"
#include "tests/support/StartedApp.h"
#include "tests/support/TempDir.h"

using namespace qds;

namespace {

constexpr int kSide = 256;

struct Difference {
  double mean = 0;    // per channel, 0..255
  double farOff = 0;  // share of pixels with a channel off by more than 64
};

Difference Compare(const SurfacePtr& a, const SurfacePtr& b) {
  Difference d;
  long long sum = 0, far = 0;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const Bgra p = PixelAt(a, x, y), q = PixelAt(b, x, y);
      const int db = std::abs(p.b - q.b), dg = std::abs(p.g - q.g), dr = std::abs(p.r - q.r),
                da = std::abs(p.a - q.a);
      sum += db + dg + dr + da;
      far += std::max({db, dg, dr, da}) > 64;
    }
  }
  d.mean = sum / (4.0 * kSide * kSide);
  d.farOff = far / static_cast<double>(kSide * kSide);
  return d;
}

struct Parity : ::testing::Test {
  StartedApp s;
  TempDir out;
  void SetUp() override { ASSERT_TRUE(StartWithoutWindow(*s.app)); }

  SVGItemPtr Icon(const std::string& name, const std::string& style = "Flat") {
    SVGItemPtr l = LibraryLayer(*s.app, name, style);
    EXPECT_TRUE(l) << name;
    return l;
  }
  // The base layer stands for the star; the design is what `build` adds.
  SVGItemPtr Star() {
    AppContext& app = *s.app;
    app.Layers.Clear();
    app.BaseIcons.Clear();
    app.DesignOpacityOn = false;
    SVGItemPtr icon = Icon("star");
    app.BaseIcons.Add(icon, icon->ID().AsString());
    SVGItemPtr base = icon->Clone();
    base->setFilter(cSVGItem::FilterColor);
    base->setColorItem(cColorItem(0x2060E0));
    base->setZoomPercent(60);
    base->setPos(5);
    return base;
  }
  SVGItemPtr Effect(int type, const std::string& name) {
    auto e = std::make_shared<cSVGItem>();
    e->Init(Value("0101260000" + name), {}, name, nullptr, true, cSVGItem::FilterColor);
    e->setEffType(type);
    e->setEffSymbolKey("_BaseIco");
    return e;
  }
  SVGItemPtr Background() {
    SVGItemPtr bg = Icon("Background_Rounded_Square_Blue", "Design Elements");
    return bg;
  }
  static void Gradient(cSVGItem& l, bool radial, double angle) {
    l.setFilter(cSVGItem::FilterGradient);
    l.setGradRadial(radial);
    l.setGradAngleDeg(angle);
    l.setGradPointCX(0.3);
    l.setGradPointCY(0.2);
    l.GradStopsAdd(0, 0x0000FF, 1, 0);
    l.GradStopsAdd(0.5, 0x00FF00, 0.8, 1);
    l.GradStopsAdd(1, 0xFF0000, 1, 2);
  }

  // Exports the design in both forms; answers the picture and librsvg's
  // drawing of the SVG file.
  std::pair<SurfacePtr, SurfacePtr> ExportBoth(const std::string& name) {
    SurfacePtr png, svg;
    for (const char* format : {"PNG", "SVG"}) {
      ExportOptions o;
      o.Format = format;
      o.Width = o.Height = kSide;
      o.Folder = out.Path();
      o.NamePart = ExportOptions::Part::Text;
      o.NameText = name;
      ExportObserver quiet;
      const ExportResult r = RunExport(*s.app, o, quiet);
      EXPECT_EQ(r.Written, 1) << name << " " << format;
      // The run gives back what it cached at its size.
      EXPECT_EQ(s.app->RenderCache.Count() + s.app->BlurCache.Count(), 0) << name;
    }
    const std::string stem = JoinPath(out.Path(), name + "_" + std::to_string(kSide));
    png = DrawingSurface::FromPngFile(stem + ".png");
    svg = DrawingSurface::Create(kSide, kSide);
    DrawingContext ctx(svg);
    s.app->SvgRenderer->Render(ctx, ReadAllBytes(stem + ".svg"), 0, 0, kSide, kSide, 0);
    return {png, svg};
  }
};

}  // namespace

TEST_F(Parity, EveryEffectLooksTheSameAsPictureAndAsSvg) {
  AppContext& app = *s.app;
  struct Case {
    std::string name;
    std::function<void()> build;
  };
  const std::vector<Case> cases = {
      {"linear_gradient",
       [&] {
         SVGItemPtr b = Star();
         Gradient(*b, false, 90);
         app.Layers.Add(b, "_BaseIco");
       }},
      {"gradient_full_size",
       [&] {
         SVGItemPtr b = Star();
         Gradient(*b, false, 0);
         b->setZoomPercent(100);
         b->setPos(0);
         app.Layers.Add(b, "_BaseIco");
       }},
      {"gradient_square",
       [&] {
         SVGItemPtr b = Background();
         Gradient(*b, false, 270);
         app.Layers.Add(b, "bg");
       }},
      {"radial_gradient_turned",
       [&] {
         SVGItemPtr b = Star();
         Gradient(*b, true, 0);
         b->setGradInvert(true);
         b->setAngle(30);
         b->setPos(3);
         b->setDistance(5);
         app.Layers.Add(b, "_BaseIco");
       }},
      {"rotation",
       [&] {
         SVGItemPtr b = Star();
         b->setAngle(35);
         app.Layers.Add(b, "_BaseIco");
         app.Layers.Add(Background(), "bg");
       }},
      {"blur",
       [&] {
         SVGItemPtr b = Star();
         b->setEffBlur(6);
         app.Layers.Add(b, "_BaseIco");
       }},
      {"form_clip_circle_and_line",
       [&] {
         SVGItemPtr bg = Background();
         bg->setClipExists(true);
         bg->setClipX(0.3);
         bg->setClipY(0.3);
         bg->setClipDX(0.6);
         bg->setClipDY(0.6);
         bg->setClipColor(0x00C000);
         app.Layers.Add(Star(), "_BaseIco");
         app.Layers.Add(bg, "bg");
       }},
      {"form_clip_rectangle",
       [&] {
         SVGItemPtr bg = Background();
         bg->setClipExists(true);
         bg->setClipShapeForms(2);
         bg->setClipInverted(false);
         app.Layers.Add(Star(), "_BaseIco");
         app.Layers.Add(bg, "bg");
       }},
      {"icon_clip",
       [&] {
         SVGItemPtr bg = Background();
         bg->setClipIOverlayKey("_BaseIco");
         bg->setClipIOffset(12);
         SVGItemPtr b = Star();
         b->setClipIBaseKey("bg");
         app.Layers.Add(b, "_BaseIco");
         app.Layers.Add(bg, "bg");
         bg->SettingsRefresh();
         EXPECT_TRUE(bg->ClipIPath());
       }},
      {"reflection",
       [&] {
         SVGItemPtr b = Star();
         b->setPos(2);
         b->setDistance(8);
         SVGItemPtr re = Effect(4, "Mirroring");
         re->setEffOpacity1(70);
         re->setEffHeightPerc(40);
         app.Layers.Add(b, "_BaseIco");
         app.Layers.Add(re, "re");
         re->SettingsRefresh();
       }},
      {"reflection_turned",
       [&] {
         SVGItemPtr b = Star();
         b->setPos(2);
         b->setDistance(8);
         SVGItemPtr re = Effect(4, "Mirroring");
         re->setEffOpacity1(80);
         app.Layers.Add(b, "_BaseIco");
         app.Layers.Add(re, "re");
         re->SettingsRefresh();
         re->setAngle(25);
       }},
      {"reflection_of_gradient",
       [&] {
         SVGItemPtr b = Star();
         b->setPos(2);
         b->setDistance(8);
         Gradient(*b, false, 0);
         SVGItemPtr re = Effect(4, "Mirroring");
         re->setEffOpacity1(90);
         app.Layers.Add(b, "_BaseIco");
         app.Layers.Add(re, "re");
         re->SettingsRefresh();
         EXPECT_EQ(re->Filter(), cSVGItem::FilterGradient);
       }},
      {"long_shadow",
       [&] {
         SVGItemPtr b = Star();
         b->setColorItem(cColorItem(0xFFFFFF));
         SVGItemPtr ls = Effect(1, "Long Shadow");
         ls->setEffBGKey("bg");
         app.Layers.Add(b, "_BaseIco");
         app.Layers.Add(ls, "ls");
         app.Layers.Add(Background(), "bg");
         ls->SettingsRefresh();
         ls->setColorItem(cColorItem(0x000000));
         ls->setOpacity(40);
       }},
      {"wall_shadow",
       [&] {
         SVGItemPtr ws = Effect(2, "Wall Shadow");
         ws->setEffBGKey("bg");
         ws->setEffOffsetX(7);
         ws->setEffOffsetY(-7);
         ws->setEffBlur(4);
         ws->setOpacity(50);
         app.Layers.Add(Star(), "_BaseIco");
         app.Layers.Add(ws, "ws");
         app.Layers.Add(Background(), "bg");
         ws->SettingsRefresh();
         ws->setColorItem(cColorItem(0x000000));
       }},
      {"glow",
       [&] {
         SVGItemPtr gl = Effect(5, "Glow");
         gl->setEffBlur(6);
         gl->setEffIsGlow(true);
         app.Layers.Add(Star(), "_BaseIco");
         app.Layers.Add(gl, "gl");
         app.Layers.Add(Background(), "bg");
         gl->SettingsRefresh();
         gl->setColorItem(cColorItem(0x00FFFF));
       }},
      {"outline",
       [&] {
         SVGItemPtr b = Star();
         b->setEffIsLine(true);
         b->setEffLineWidth(8);
         b->SettingsRefresh();
         app.Layers.Add(b, "_BaseIco");
       }},
      {"half_opacity",
       [&] {
         SVGItemPtr b = Star();
         SVGItemPtr bg = Background();
         bg->setOpacity(50);
         app.Layers.Add(b, "_BaseIco");
         app.Layers.Add(bg, "bg");
       }},
      {"design_opacity",
       [&] {
         app.Layers.Add(Star(), "_BaseIco");
         app.Layers.Add(Background(), "bg");
         app.DesignOpacity = 50;
         app.DesignOpacityOn = true;
       }},
  };
  for (const Case& c : cases) {
    c.build();
    const auto [png, svg] = ExportBoth(c.name);
    ASSERT_TRUE(png && svg) << c.name;
    const Difference d = Compare(png, svg);
    EXPECT_LE(d.mean, 3.0) << c.name;
    EXPECT_LE(d.farOff, 0.02) << c.name;
    if (d.mean > 3.0 || d.farOff > 0.02) {
      // Both pictures stay for a look at what differs.
      const std::filesystem::path kept = std::filesystem::temp_directory_path() / "qds-parity";
      std::filesystem::create_directories(kept);
      png->WritePng((kept / (c.name + "_png.png")).string());
      svg->WritePng((kept / (c.name + "_svg.png")).string());
    }
    std::printf("%-28s mean %.2f, far %.4f\n", c.name.c_str(), d.mean, d.farOff);
  }
}
