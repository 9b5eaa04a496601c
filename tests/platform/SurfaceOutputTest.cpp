#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <regex>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"
#include "tests/support/Golden.h"
#include "tests/support/Pixels.h"
#include "tests/support/TempDir.h"

using namespace qds;

namespace {

// A picture with known pixels: an opaque red left half, a half-transparent
// blue right half, one green pixel in the corner. Odd width, so BMP rows
// need padding.
SurfacePtr TestPicture() {
  SurfacePtr s = DrawingSurface::Create(13, 7);
  DrawingContext ctx(s);
  ctx.SetSourceColor(0x0000FF);
  ctx.Rectangle(0, 0, 6, 7);
  ctx.Fill();
  ctx.SetSourceColor(0xFF0000, 0.5);
  ctx.Rectangle(6, 0, 7, 7);
  ctx.Fill();
  ctx.SetSourceColor(0x00FF00);
  ctx.Rectangle(12, 6, 1, 1);
  ctx.Fill();
  return s;
}

// Decodes a file with gdk-pixbuf, a reader that shares no code with ours.
struct Decoded {
  int width = 0, height = 0, channels = 0;
  std::vector<std::uint8_t> rgb;  // first three channels of each pixel
};

Decoded ReadWithPixbuf(const std::string& path) {
  Decoded d;
  GError* error = nullptr;
  GdkPixbuf* pb = gdk_pixbuf_new_from_file(path.c_str(), &error);
  if (!pb) {
    ADD_FAILURE() << "gdk-pixbuf cannot read " << path << ": " << (error ? error->message : "?");
    if (error) g_error_free(error);
    return d;
  }
  d.width = gdk_pixbuf_get_width(pb);
  d.height = gdk_pixbuf_get_height(pb);
  d.channels = gdk_pixbuf_get_n_channels(pb);
  const int stride = gdk_pixbuf_get_rowstride(pb);
  const guchar* px = gdk_pixbuf_get_pixels(pb);
  for (int y = 0; y < d.height; ++y) {
    for (int x = 0; x < d.width; ++x) {
      for (int c = 0; c < 3; ++c) d.rgb.push_back(px[y * stride + x * d.channels + c]);
    }
  }
  g_object_unref(pb);
  return d;
}

}  // namespace

TEST(SurfaceOutput, PngKeepsAlphaAndPassesPngcheck) {
  TempDir dir;
  const SurfacePtr s = TestPicture();
  const std::string path = dir / "picture.png";
  s->WritePng(path);
  EXPECT_EQ(std::system(("pngcheck -q '" + path + "' > /dev/null").c_str()), 0) << "pngcheck rejects our PNG";

  const SurfacePtr back = DrawingSurface::FromPngFile(path);
  ASSERT_EQ(back->Width(), 13);
  ASSERT_EQ(back->Height(), 7);
  EXPECT_EQ(PixelAt(back, 0, 0), (Bgra{0, 0, 255, 255}));
  EXPECT_TRUE(Near(PixelAt(back, 8, 3), {128, 0, 0, 128}, 1));  // alpha survived
  EXPECT_EQ(PixelAt(back, 12, 6), (Bgra{0, 255, 0, 255}));

  Bytes damaged = s->ToPngBytes();
  damaged.resize(damaged.size() / 2);
  try {
    DrawingSurface::FromPngBytes(damaged);
    FAIL() << "a cut PNG was read";
  } catch (const AppError& e) {
    EXPECT_EQ(e.Number(), ErrNo::InvalidData);
  }
  EXPECT_THROW(DrawingSurface::FromPngBytes(ToBytes("GIF89a")), AppError);
}

TEST(SurfaceOutput, JpegAndBmpOpenInAStandardReaderAtTheRightSize) {
  TempDir dir;
  const SurfacePtr s = TestPicture();

  s->WriteBmp(dir / "picture.bmp");
  const Bytes bmp = ReadAllBytes(dir / "picture.bmp");
  EXPECT_EQ(bmp.size(), 54u + 7 * 40);  // 13 pixels of 3 bytes, padded to 40
  EXPECT_EQ(bmp[28], 24);               // bits per pixel
  const Decoded b = ReadWithPixbuf(dir / "picture.bmp");
  ASSERT_EQ(b.width, 13);
  ASSERT_EQ(b.height, 7);
  // Top-left red, the corner pixel green: rows are in the right order.
  EXPECT_EQ(std::vector<std::uint8_t>(b.rgb.begin(), b.rgb.begin() + 3),
            (std::vector<std::uint8_t>{255, 0, 0}));
  const std::size_t corner = (6 * 13 + 12) * 3;
  EXPECT_EQ(std::vector<std::uint8_t>(b.rgb.begin() + corner, b.rgb.begin() + corner + 3),
            (std::vector<std::uint8_t>{0, 255, 0}));
  // Half-transparent blue shows as it would over black.
  EXPECT_NEAR(b.rgb[(3 * 13 + 8) * 3 + 2], 128, 1);

  s->WriteJpeg(dir / "high.jpg", 95);
  s->WriteJpeg(dir / "low.jpg", 10);
  const Decoded j = ReadWithPixbuf(dir / "high.jpg");
  ASSERT_EQ(j.width, 13);
  ASSERT_EQ(j.height, 7);
  EXPECT_GT(j.rgb[(3 * 13 + 1) * 3], 200);  // red stays red
  EXPECT_LT(ReadAllBytes(dir / "low.jpg").size(), ReadAllBytes(dir / "high.jpg").size());
  EXPECT_EQ(ReadWithPixbuf(dir / "low.jpg").width, 13);
}

TEST(SurfaceOutput, SvgSurfacesWriteNormalisedDocumentsWithPercentColours) {
  SurfacePtr svg = DrawingSurface::Create(256, 256, SurfaceKind::Svg);
  EXPECT_EQ(svg->Kind(), SurfaceKind::Svg);
  {
    DrawingContext ctx(svg);
    ctx.SetSourceColor(0x0000FF);
    ctx.Rectangle(10, 10, 100, 100);
    ctx.Fill();
    ctx.SelectFont("Liberation Sans", 40, 0x008000, true);
    ctx.DrawText(0, 0, 256, 256, "Icon", true, TextAlign::Center, TextAlign::Middle);
  }
  const std::string doc = ToString(svg->SvgDocumentBytes());
  EXPECT_NE(doc.find("width=\"256pt\""), std::string::npos) << doc.substr(0, 400);
  EXPECT_NE(doc.find("viewBox=\"0 0 256 256\""), std::string::npos);
  EXPECT_TRUE(std::regex_search(doc, std::regex("<g id=\"surface[0-9]+\"")));
  EXPECT_NE(doc.find("fill:rgb(100%,0%,0%)"), std::string::npos);
  EXPECT_NE(doc.find("rgb(0%,50.196078%,0%)"), std::string::npos);  // the text's green
  // Text arrives as outlines, not as text or glyph references.
  EXPECT_EQ(doc.find("<text"), std::string::npos);
  EXPECT_EQ(doc.find("<use"), std::string::npos);
  EXPECT_EQ(svg->SvgDocumentBytes(), ToBytes(doc));  // asking again gives the same document
  EXPECT_THROW(svg->Pixels(), AppError);
  EXPECT_THROW(svg->ToPngBytes(), AppError);
}

TEST(SurfaceOutput, TextIsLaidOutInItsBoxAndFollowsTheFontStyle) {
  const std::vector<std::string> fonts = InstalledFontFamilies();
  EXPECT_TRUE(std::binary_search(fonts.begin(), fonts.end(), "Liberation Sans", LessNoCase));
  EXPECT_TRUE(std::binary_search(fonts.begin(), fonts.end(), "DejaVu Sans", LessNoCase));

  SurfacePtr s = DrawingSurface::Create(256, 256);
  DrawingContext ctx(s);
  ctx.SetSourceColor(0xFFFFFF);
  ctx.Paint();
  ctx.SelectFont("Liberation Sans", 36, 0x000000);
  const TextSize plain = ctx.MeasureText("Quillaron");
  ctx.SelectFont("Liberation Sans", 36, 0x000000, true);
  EXPECT_GT(ctx.MeasureText("Quillaron").width, plain.width);  // bold is wider
  ctx.SelectFont("Liberation Sans", 72, 0x000000);
  EXPECT_NEAR(ctx.MeasureText("Quillaron").width, 2 * plain.width, 2);  // sizes scale the outlines

  ctx.SelectFont("Liberation Sans", 36, 0x0000FF);
  ctx.DrawText(0, 0, 256, 64, "Left", true, TextAlign::Left, TextAlign::Top);
  ctx.SelectFont("Liberation Sans", 36, 0x008000, false, true, true);
  ctx.DrawText(0, 64, 256, 128, "Centre", true, TextAlign::Center, TextAlign::Middle);
  ctx.SelectFont("DejaVu Sans", 20, 0xFF0000, true);
  ctx.DrawText(0, 192, 256, 64, "Right, bottom", true, TextAlign::Right, TextAlign::Bottom);
  ctx.SelectFont("Liberation Sans", 14, 0x000000);
  ctx.SetWordWrap(true);
  ctx.DrawText(140, 0, 116, 64, "wrapped text in a narrow box", false, TextAlign::Left, TextAlign::Top);
  EXPECT_FALSE(ctx.CurrentPoint().has_value());  // the outlines were filled and used up
  EXPECT_TRUE(MatchesGolden(s, "text"));
}

TEST(SurfaceOutput, BlurSpreadsByItsPadAndKeepsTheInk) {
  SurfacePtr s = DrawingSurface::Create(20, 20);
  {
    DrawingContext ctx(s);
    ctx.SetSourceColor(0x0000FF);
    ctx.Rectangle(8, 8, 5, 5);  // pixels 8..12, centred on pixel 10
    ctx.Fill();
  }
  const auto [same, none] = s->Blur(0);
  EXPECT_EQ(none, 0);
  EXPECT_EQ(PixelAt(same, 9, 9), PixelAt(s, 9, 9));

  const auto [blurred, pad] = s->Blur(6);
  EXPECT_EQ(pad, 6);  // three passes of a box of half-width 2
  ASSERT_EQ(blurred->Width(), 20 + 2 * pad);
  const auto alphaSum = [](const SurfacePtr& p) {
    long sum = 0;
    const PixelView v = p->Pixels();
    for (int y = 0; y < v.Height(); ++y) {
      for (int x = 0; x < v.Width(); ++x) sum += v.Bytes()[y * v.Stride() + 4 * x + 3];
    }
    return sum;
  };
  EXPECT_NEAR(alphaSum(blurred), alphaSum(s), alphaSum(s) * 0.02);  // ink neither gained nor lost
  const int c = 10 + pad;  // the square's centre in the padded picture
  EXPECT_LT(PixelAt(blurred, c, c).a, 255);
  EXPECT_GT(PixelAt(blurred, c, c).a, PixelAt(blurred, c + 4, c).a);
  EXPECT_GT(PixelAt(blurred, c + 4, c).a, PixelAt(blurred, c + 7, c).a);
  EXPECT_EQ(PixelAt(blurred, c + 4, c).a, PixelAt(blurred, c - 4, c).a);  // symmetric
  EXPECT_EQ(PixelAt(blurred, c, c + 4).a, PixelAt(blurred, c + 4, c).a);
  EXPECT_GT(PixelAt(blurred, c + 2 + pad, c).a, 0);  // the spread reaches the pad's edge...
  EXPECT_EQ(PixelAt(blurred, c + 3 + pad, c).a, 0);  // ...and no further
  const Bgra mid = PixelAt(blurred, c + 3, c);
  EXPECT_LE(mid.r, mid.a);  // still premultiplied
  EXPECT_EQ(mid.b, 0);

  // Three boxes of 3 are one kernel of (1 3 6 7 6 3 1) each way: over noise,
  // every value is that weighed sum / 729, rounded half up.
  constexpr int n = 60;
  SurfacePtr noise = DrawingSurface::Create(n, n);
  unsigned seed = 99;
  {
    PixelView v = noise->Pixels();
    for (int i = 0; i < n * n * 4; ++i) {
      seed = seed * 1103515245u + 12345u;
      v.Bytes()[(i / 4 / n) * v.Stride() + i % (4 * n)] = static_cast<std::uint8_t>(seed >> 24);
    }
  }
  const auto [box3, three] = noise->Blur(3);
  ASSERT_EQ(three, 3);
  const int k[7] = {1, 3, 6, 7, 6, 3, 1};
  const PixelView in = noise->Pixels(), out = box3->Pixels();
  int wrong = 0;
  for (int y = 0; y < n + 6; ++y) {
    for (int x = 0; x < n + 6; ++x) {
      for (int ch = 0; ch < 4; ++ch) {
        long sum = 0;
        for (int j = 0; j < 7; ++j) {
          for (int i = 0; i < 7; ++i) {
            const int sx = x - 6 + i, sy = y - 6 + j;
            if (sx >= 0 && sy >= 0 && sx < n && sy < n) sum += k[i] * k[j] * in.Bytes()[sy * in.Stride() + 4 * sx + ch];
          }
        }
        wrong += out.Bytes()[y * out.Stride() + 4 * x + ch] != (sum + 364) / 729;
      }
    }
  }
  EXPECT_EQ(wrong, 0);
}
