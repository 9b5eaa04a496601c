#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <set>

#include "colour/modColorFunctions.h"
#include "engine/cSVGItem.h"
#include "engine/modColorRewrite.h"
#include "engine/modParser.h"
#include "tests/support/StartedApp.h"

using namespace qds;

namespace {

std::vector<cColorItem> Colours(const cSVGItem& item) {
  std::vector<cColorItem> out;
  for (const ColorChannels& c : ColorParts(ToString(item.SvgBytes())))
    out.push_back(ColorArrayToColorItem(c));
  return out;
}

// A library layer of the multicolour style with a gray and at least three
// other colours.
SVGItemPtr MulticolourIcon(StartedApp& s) {
  DbRecordset rs = s.app->Cnn.Query(
      "Select Images.ID, Images.Name, SVG From Images Join Styles On Images.Styles_ID = Styles.ID "
      "Where Styles.Name = 'Flat Color' Order By Images.ID");
  for (; !rs.Eof(); rs.MoveNext()) {
    auto item = std::make_shared<cSVGItem>();
    item->Init(rs.Fields("ID").Value(), rs.Fields("SVG").AsBytes(), rs.Fields("Name").AsString());
    std::set<std::int64_t> distinct;
    bool gray = false;
    for (const cColorItem& c : Colours(*item)) {
      distinct.insert(c.Color());
      gray = gray || (*c.r() == *c.G() && *c.G() == *c.B() && *c.r() > 40 && *c.r() < 215);
    }
    if (gray && distinct.size() >= 4) return item;
  }
  return nullptr;
}

}  // namespace

TEST(ColorFilter, FiltersRewriteAMulticolourIconAsAUserExpects) {
  StartedApp s;
  ASSERT_TRUE(s.Start());
  const SVGItemPtr icon = MulticolourIcon(s);
  ASSERT_TRUE(icon) << "no multicolour icon with a gray in the library";
  const Bytes library = icon->GetSVGBytes();
  ASSERT_EQ(icon->SvgBytes(), library);
  const std::vector<cColorItem> before = Colours(*icon);

  // Gray: every colour gray, and what was gray stays (nearly) the same gray.
  icon->setFilter(cSVGItem::FilterGray);
  std::vector<cColorItem> after = Colours(*icon);
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t i = 0; i < after.size(); ++i) {
    EXPECT_EQ(*after[i].r(), *after[i].G());
    EXPECT_EQ(*after[i].G(), *after[i].B());
    if (*before[i].r() == *before[i].G() && *before[i].G() == *before[i].B()) {
      EXPECT_NEAR(*after[i].r(), *before[i].r(), 2);
    }
  }

  // Original brings the library document back; the same filter again does nothing.
  icon->setFilter(cSVGItem::FilterOriginal);
  EXPECT_EQ(icon->SvgBytes(), library);
  EXPECT_EQ(icon->ColorItem().Color(), -1);
  icon->setFilter(cSVGItem::FilterOriginal);
  EXPECT_EQ(icon->SvgBytes(), library);

  // Replace maps only the listed colour. The others are written back at
  // their truncated value, which may move a channel by one step.
  const std::int64_t listed = before[0].Color();
  Collection olds, news;
  olds.Add(Value(static_cast<long long>(listed)));
  news.Add(Value(0x0000FF));
  icon->setRCOldColor(&olds);
  icon->setRCNewColor(&news);
  icon->setFilter(cSVGItem::FilterReplace);
  after = Colours(*icon);
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (before[i].Color() == listed) {
      EXPECT_EQ(after[i].Color(), 0x0000FF) << i;
    } else {
      EXPECT_NEAR(*after[i].r(), *before[i].r(), 1) << i;
      EXPECT_NEAR(*after[i].G(), *before[i].G(), 1) << i;
      EXPECT_NEAR(*after[i].B(), *before[i].B(), 1) << i;
    }
  }

  // HSL shifts the hue of every saturated colour by the delta.
  icon->setFilter(cSVGItem::FilterOriginal);
  cColorItem shift;
  shift.setH(90.0);
  icon->setFilter(cSVGItem::FilterHSL);
  icon->setColorItem(shift);
  after = Colours(*icon);
  for (std::size_t i = 0; i < after.size(); ++i) {
    int h0, h1;
    std::uint8_t s0, l0, s1, l1;
    RGB2HSL(static_cast<std::uint8_t>(*before[i].r()), static_cast<std::uint8_t>(*before[i].G()),
            static_cast<std::uint8_t>(*before[i].B()), h0, s0, l0);
    RGB2HSL(static_cast<std::uint8_t>(*after[i].r()), static_cast<std::uint8_t>(*after[i].G()),
            static_cast<std::uint8_t>(*after[i].B()), h1, s1, l1);
    if (s0 < 30 || l0 < 15 || l0 > 85) continue;  // hue means little there
    EXPECT_NEAR((h1 - h0 + 360) % 360, 90, 4) << i;
    EXPECT_NEAR(l1, l0, 2) << i;
  }
  EXPECT_TRUE(icon->ColorItem().IsEmptyRGB());  // only the deltas are kept

  // One colour for all; colourise tints the gray.
  icon->setFilter(cSVGItem::FilterColor);
  icon->setColorItem(cColorItem(0x00A5FF));
  for (const cColorItem& c : Colours(*icon)) EXPECT_NEAR(c.Color(), 0x00A5FF, 0x000101);
  // A tint screens onto the gray of each colour, c + t * (1 - c / 255), in
  // the channels it has; green has none and stays gray. The document keeps
  // two decimals of percent, read back truncated: up to one step lower.
  cColorItem tint;
  tint.setr(100.0);
  tint.setB(40.0);
  icon->setFilter(cSVGItem::FilterColorize);
  icon->setColorItem(tint);
  after = Colours(*icon);
  ASSERT_EQ(after.size(), before.size());
  const auto stored = [](double got, double want) { return got <= want + 0.02 && got >= want - 1.02; };
  for (std::size_t i = 0; i < after.size(); ++i) {
    const double gray =
        std::nearbyint(0.299 * *before[i].r() + 0.587 * *before[i].G() + 0.114 * *before[i].B());
    EXPECT_PRED2(stored, *after[i].r(), gray + 100 * (1 - gray / 255)) << i;
    EXPECT_PRED2(stored, *after[i].G(), gray) << i;
    EXPECT_PRED2(stored, *after[i].B(), gray + 40 * (1 - gray / 255)) << i;
  }
}

TEST(ColorFilter, ReplacementsChainThroughTheTextAndSkipShortColours) {
  StartedApp s;
  ASSERT_TRUE(s.Start());
  const std::string doc =
      R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 10 10">)"
      R"(<path style="fill:rgb(100%,0%,0%);stroke:rgb(1%,2%);" d="M0 0H5V5Z"/>)"
      R"(<path style="stroke:none;fill:rgb(0.00%,100.00%,0.00%);" d="M5 5H10V10Z"/></svg>)";
  cSVGItem layer;
  layer.Init(Value("Pasted"), ToBytes(doc), "x", nullptr, true, cSVGItem::FilterReplace);
  layer.setRCOldColorString("255,65280");
  layer.setRCNewColorString("65280,16711680");
  layer.setXML(RewriteColors(doc, layer, cColorItem()));
  // Red became green written as "0.00%,100.00%,0.00%", which the second
  // part then catches: both end blue.
  const std::string out = ToString(layer.SvgBytes());
  EXPECT_EQ(out.find("rgb(100%,0%,0%)"), std::string::npos);
  EXPECT_EQ(out.find("0.00%,100.00%,0.00%"), std::string::npos);
  EXPECT_NE(out.find("fill:rgb(0.00%,0.00%,100.00%)"), std::string::npos);
  EXPECT_NE(out.find("stroke:rgb(1%,2%)"), std::string::npos);  // two channels: left alone
  EXPECT_EQ(ColorParts(doc).size(), 2u);

  EXPECT_EQ(RGBPercentToRGBValues(doc).find("rgb(255,0,0)") != std::string::npos, true);
  EXPECT_NE(RGBPercentToRGBValues(doc).find("fill:rgb(0,255,0)"), std::string::npos);
  EXPECT_NE(RGBPercentToRGBValues(doc).find("stroke:rgb(1%,2%)"), std::string::npos);

  // A gradient of many stops: every colour, repeated or not, in value form,
  // and nothing else of the text touched.
  std::string many = R"(<svg xmlns="http://www.w3.org/2000/svg"><linearGradient id="g">)";
  std::string expected = many;
  for (int i = 0; i < 3000; ++i) {
    const int v = i % 256;
    char percent[64], value[64];
    std::snprintf(percent, sizeof percent, "%.2f%%,0%%,%d%%", v / 255.0 * 100, i % 2 * 100);
    std::snprintf(value, sizeof value, "%d,0,%d", v, i % 2 * 255);
    const std::string stop = R"(<stop offset=")" + std::to_string(i) + R"(" style="stop-color:rgb()";
    many += stop + percent + R"();stop-opacity:1;"/>)";
    expected += stop + value + R"();stop-opacity:1;"/>)";
  }
  many += "</linearGradient></svg>";
  expected += "</linearGradient></svg>";
  EXPECT_EQ(RGBPercentToRGBValues(many), expected);
}

TEST(ColorFilter, TextLayersHoldRealPathsAndCanBeOutlined) {
  StartedApp s;
  ASSERT_TRUE(s.Start());
  cSVGItem text;
  text.Init(Value("01012600000Text"), {}, "Text");
  text.setTextContent("Ab");
  text.setTextFontBold(true);
  text.SettingsRefresh();
  const std::string svg = ToString(text.SvgBytes());
  EXPECT_NE(svg.find("<path"), std::string::npos);
  EXPECT_EQ(svg.find("<text"), std::string::npos);
  EXPECT_EQ(svg.find("<use"), std::string::npos);
  const auto filled = GetCairoPathsFromSVG(svg);
  ASSERT_GE(filled.Count(), 1);

  // Coloured: the text keeps its shape in the new colour, also after a reset.
  text.setFilter(cSVGItem::FilterColor);
  text.setColorItem(cColorItem(0x0000FF));
  EXPECT_NE(ToString(text.SvgBytes()).find("fill:rgb(100.00%,0.00%,0.00%)"), std::string::npos);
  text.setFilter(cSVGItem::FilterGray);
  EXPECT_NE(ToString(text.SvgBytes()).find("<path"), std::string::npos);

  // Outlined: a stroke along the letters instead of their fill.
  text.setFilter(cSVGItem::FilterOriginal);
  text.setEffIsLine(true);
  text.setEffLineWidth(4);
  text.SettingsRefresh();
  const std::string outline = ToString(text.SvgBytes());
  EXPECT_NE(outline.find("stroke-width"), std::string::npos);
  EXPECT_NE(outline.find("fill:none"), std::string::npos);
  EXPECT_GE(GetCairoPathsFromSVG(outline).Count(), 1);
}
