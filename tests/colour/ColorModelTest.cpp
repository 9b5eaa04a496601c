#include <gtest/gtest.h>

#include "colour/cColorItem.h"
#include "colour/modColorFunctions.h"

using namespace qds;

TEST(ColorModel, ColourItemsKeepChannelsAndConvertBetweenRgbAndHsl) {
  cColorItem c;
  EXPECT_EQ(c.Color(), -1);
  EXPECT_TRUE(c.IsEmptyRGB());
  c.setColor(0);  // black is a colour, not "none"
  EXPECT_EQ(c.Color(), 0);
  EXPECT_EQ(c.r(), 0.0);
  EXPECT_FALSE(c.IsEmptyRGB());
  c.setColor(0x0000FF);  // red
  EXPECT_EQ(*c.r(), 255);
  EXPECT_EQ(*c.H(), 0);
  EXPECT_EQ(*c.s(), 100);
  EXPECT_EQ(*c.l(), 50);
  c.setColor(-1);
  EXPECT_FALSE(c.H().has_value());
  EXPECT_EQ(c.Color(), -1);

  // Channels are independent stores; only Color keeps them in step.
  c.setColor(0x808080);
  c.setr(10.0);
  EXPECT_EQ(*c.H(), 0);
  EXPECT_EQ(c.Color(), 10 + 128 * 256 + 128 * 65536);
  cColorItem partial;
  partial.setG(127.5);  // rounds half to even, an empty channel counts 0
  EXPECT_EQ(partial.Color(), 128 * 256);

  cColorItem a(0x336699), b = a.Clone();
  EXPECT_TRUE(a.Equal(b));
  b.setl(10.0);
  EXPECT_FALSE(a.Equal(b));  // same colour value, other lightness
  b = a.Clone();
  b.InitRGB();
  EXPECT_TRUE(b.H().has_value());
  EXPECT_EQ(b.Color(), -1);

  int h;
  std::uint8_t s, l;
  RGB2HSL(128, 128, 128, h, s, l);
  EXPECT_EQ(h, 0);
  EXPECT_EQ(s, 0);
  EXPECT_EQ(l, 50);
  RGB2HSL(0, 140, 195, h, s, l);  // the accent blue
  std::uint8_t r, g, bl;
  HSL2RGB(h, s, l, r, g, bl);
  EXPECT_NEAR(r, 0, 2);
  EXPECT_NEAR(g, 140, 2);
  EXPECT_NEAR(bl, 195, 2);

  HEXtoRGB("#C38C00", r, g, bl);
  EXPECT_EQ(RGBtoHex(r, g, bl), "C38C00");
  EXPECT_EQ(r, 0xC3);
  HEXtoRGB("0a0B0c", r, g, bl);
  EXPECT_EQ(RGBtoHex(r, g, bl), "0A0B0C");
}

TEST(ColorModel, FilterFunctionsDoWhatTheFiltersPromise) {
  const cColorItem half = ColorArrayToColorItem({"50%", "100%", "0%"});
  EXPECT_EQ(*half.r(), 127);  // truncated, not rounded
  EXPECT_EQ(*half.G(), 255);
  EXPECT_FALSE(half.H().has_value());

  cColorItem orange(0x0080FF);
  const cColorItem gray = RGBToGray(orange);
  EXPECT_EQ(*gray.r(), *gray.G());
  EXPECT_EQ(*gray.G(), *gray.B());
  EXPECT_EQ(*gray.r(), 151);  // 0.299*255 + 0.587*128, rounded
  EXPECT_EQ(RGBToBlack().Color(), 0);

  // Hue moves round the circle once at most.
  cColorItem delta;
  delta.setH(120.0);
  EXPECT_EQ(ChangeHSL(cColorItem(0x0000FF), delta).Color(), 0x00FF00);  // red to green
  delta.setH(360.0);
  EXPECT_EQ(ChangeHSL(cColorItem(0x0000FF), delta).Color(), 0x0000FF);  // wraps to 0
  cColorItem lighter;
  lighter.setl(200.0);
  EXPECT_EQ(ChangeHSL(cColorItem(0x0000FF), lighter).Color(), 0xFFFFFF);  // held at 100

  // Colourising is a screen of the tint over the gray.
  cColorItem tint;
  tint.setr(255.0);
  cColorItem white(0xFFFFFF), black(0);
  EXPECT_EQ(*ColorizeColorItem(white, tint).r(), 255);
  EXPECT_EQ(*ColorizeColorItem(black, tint).r(), 255);
  cColorItem mid(0x808080);
  ColorizeColorItem(mid, tint);
  EXPECT_NEAR(*mid.r(), 128 + 255 * (1 - 128.0 / 255), 1e-9);
  EXPECT_EQ(*mid.G(), 128);  // an empty tint channel leaves it

  const auto dummy = ColorStopDummy();
  ASSERT_EQ(dummy.size(), 2u);
  EXPECT_EQ(dummy[1].Offset, 1);
  EXPECT_EQ(dummy[0].Color, 0x808080);
  const auto hue = ColorStopsHue();
  ASSERT_GE(hue.size(), 7u);
  EXPECT_EQ(hue.front().Color, 0x0000FF);
  EXPECT_EQ(hue[1].Color, 0x0040FF);  // (255, 64, 0)
  EXPECT_EQ(hue.back().Color, 0x0000FF);
  EXPECT_EQ(hue.back().Offset, 1);
  for (std::size_t i = 1; i < hue.size(); ++i) EXPECT_GT(hue[i].Offset, hue[i - 1].Offset);
}
