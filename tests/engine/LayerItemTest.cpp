#include <gtest/gtest.h>

#include <cmath>

#include "app/AppContext.h"
#include "engine/cLayersEntries.h"
#include "engine/cSVGItem.h"
#include "engine/modParser.h"
#include "tests/support/StartedApp.h"

using namespace qds;

namespace {

struct Ink {
  double left = 1e9, top = 1e9, right = -1e9, bottom = -1e9;
  double Width() const { return right - left; }
  double Height() const { return bottom - top; }
};

// The extent of the outlines in a layer's document, wherever they reach.
Ink InkOf(const cSVGItem& item) {
  Ink ink;
  for (const auto& e : GetCairoPathsFromSVG(ToString(item.SvgBytes()))) {
    e.Item->ForEach([&](PathOp, const double* xy, int points) {
      for (int i = 0; i < points; ++i) {
        ink.left = std::min(ink.left, xy[2 * i]), ink.right = std::max(ink.right, xy[2 * i]);
        ink.top = std::min(ink.top, xy[2 * i + 1]), ink.bottom = std::max(ink.bottom, xy[2 * i + 1]);
      }
    });
  }
  return ink;
}

}  // namespace

TEST(LayerItem, AnEmptyBagAnswersEveryDefaultAndSettingsKeepTheirOrder) {
  StartedApp s;
  cSVGItem item;
  item.Init(Value(), {}, "Text", nullptr, true, cSVGItem::FilterOriginal, 2, "{}");
  EXPECT_EQ(item.Settings(), "{}");
  EXPECT_EQ(item.Width(), 256);
  EXPECT_EQ(item.ZoomPercent(), 100);
  EXPECT_EQ(item.Opacity(), 100);
  EXPECT_EQ(item.TextFontName(), "Arial");
  EXPECT_EQ(item.TextFontSize(), 60);
  EXPECT_EQ(item.EffHeightPerc(), 30);
  EXPECT_EQ(item.EffLineWidth(), 3);
  EXPECT_EQ(item.EffDashValue1(), 40);
  EXPECT_EQ(item.LSAngle(), 135);
  EXPECT_EQ(item.ClipIOffset(), 20);
  EXPECT_EQ(item.ClipX(), 0.3515625);
  EXPECT_EQ(item.ClipDX(), 0.80078125);
  EXPECT_EQ(item.ClipShapeForms(), 1);
  EXPECT_TRUE(item.ClipInverted());
  EXPECT_TRUE(item.ClipVisible());
  EXPECT_EQ(item.ClipColor(), -1);
  EXPECT_EQ(item.EffGlowColor(), 0xFFFFFF);
  EXPECT_EQ(item.GradPointCX(), 0.1);
  EXPECT_EQ(item.GradStopsCount(), 0);
  EXPECT_EQ(item.Settings(), "{}");  // reading wrote nothing

  // Snap positions and free offsets clear each other, in this order.
  item.setPos(5);
  item.setDistance(4);
  EXPECT_EQ(item.Settings(), R"({"Pos":5,"OffsetX":0,"OffsetY":0,"Distance":4})");
  item.setOffSetx(12.5);
  EXPECT_EQ(item.Pos(), 0);
  EXPECT_EQ(item.Distance(), 0);
  item.setPos(3);
  EXPECT_EQ(item.OffSetx(), 0);
  item.setEffOffsetY(-7);
  EXPECT_EQ(item.Pos(), 0);

  // The text survives a round trip member for member.
  cSVGItem copy;
  const std::string text =
      R"({"TextContent":"Grüße \"A\"","Angle":45,"ZoomPercent":80.5,"GradStops":[{"Offset":0,"Color":255,"Alpha":1}],"Unknown":[1]})";
  copy.Init(Value(7), {}, "x", nullptr, true, -1, 2, text);
  EXPECT_EQ(copy.Settings(), text);
  EXPECT_EQ(copy.Angle(), 45);
  EXPECT_EQ(copy.GradStopsItem(0).Color, 255);

  // Too short or not an object: a new bag. Broken after "{": a new bag too.
  for (const char* bad : {"{}x", "[1]", "ab", "{\"Angle\":"}) {
    copy.Init(Value(7), {}, "x", nullptr, true, -1, 2, bad);
    EXPECT_EQ(copy.Settings(), "{}") << bad;
  }

  // A clone has the same text but a bag and a colour of its own: a plain
  // colour filter keeps the colour, so there is one to copy.
  const std::string red = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 10 10">)"
                          R"(<path style="fill:rgb(100%,0%,0%);" d="M0 0H5V5Z"/></svg>)";
  cSVGItem coloured;
  coloured.Init(Value("Pasted"), ToBytes(red), "x", nullptr, true, cSVGItem::FilterColor, 2, item.Settings());
  coloured.setColorItem(cColorItem(0x00FF00));
  SVGItemPtr clone = coloured.Clone();
  EXPECT_EQ(clone->Settings(), coloured.Settings());
  EXPECT_EQ(clone->ColorItem().Color(), 0x00FF00);
  EXPECT_NE(ToString(clone->SvgBytes()).find("fill:rgb(0.00%,100.00%,0.00%)"), std::string::npos);
  clone->setAngle(90);
  EXPECT_EQ(coloured.Angle(), 0);
  clone->setColorItem(cColorItem(0xFF0000));
  EXPECT_EQ(clone->ColorItem().Color(), 0xFF0000);
  EXPECT_NE(ToString(clone->SvgBytes()).find("fill:rgb(0.00%,0.00%,100.00%)"), std::string::npos);
  EXPECT_EQ(coloured.ColorItem().Color(), 0x00FF00);
  EXPECT_NE(ToString(coloured.SvgBytes()).find("fill:rgb(0.00%,100.00%,0.00%)"), std::string::npos);
}

TEST(LayerItem, GradientsColourListsAndSelectionFollowTheirRules) {
  StartedApp s;
  cSVGItem item;
  for (const auto& [in, out] :
       std::vector<std::pair<double, double>>{{360, 0}, {-90, 270}, {450, 90}, {800, 440}}) {
    item.setGradAngleDeg(in);
    EXPECT_EQ(item.GradAngleDeg(), out) << in;
  }
  item.GradStopsAdd(0, 0x0000FF, 1, 0);
  item.GradStopsAdd(1, 0xFF0000, 0.5, 1);
  item.GradStopsAdd(0.5, 0x00FF00, 1, 99);  // past the end: appended
  item.GradStopsAdd(0.25, 0x000000, 1, 1);
  ASSERT_EQ(item.GradStopsCount(), 4);
  EXPECT_EQ(item.GradStopsItem(1).Offset, 0.25);
  EXPECT_EQ(item.GradStopsItem(3).Color, 0x00FF00);
  item.GradStopsSet(3, 0.75, 0x123456, 0.2);
  EXPECT_EQ(item.GradStopsItem(3).Opacity, 0.2);
  item.GradStopsRemove(1);
  EXPECT_EQ(item.GradStopsCount(), 3);

  cSVGItem other;
  other.GradStopsAdd(0.9, 1, 1, 0);
  item.setGradRadial(true);
  item.setGradAngleDeg(90);
  other.GradCloneIntoMeFrom(item);
  ASSERT_EQ(other.GradStopsCount(), 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(other.GradStopsItem(i).Color, item.GradStopsItem(i).Color);
  EXPECT_TRUE(other.GradRadial());
  EXPECT_EQ(other.GradAngleDeg(), item.GradAngleDeg());

  // Replacement colours: decimal values joined by commas, blanks trimmed.
  item.setRCOldColorString("255, 65280,16711680");
  const Collection old = item.RCOldColor();
  ASSERT_EQ(old.Count(), 3);
  EXPECT_EQ(old.Item(1).AsLong(), 65280);
  item.setRCNewColor(&old);
  EXPECT_EQ(item.RCNewColorString(), "255,65280,16711680");
  item.setRCNewColor(nullptr);
  EXPECT_EQ(item.RCNewColorString(), "");
  EXPECT_EQ(item.RCNewColor().Count(), 0);

  // The shown icon of a list is held within the list.
  for (int i = 0; i < 3; ++i) s.app->BaseIcons.Add(std::make_shared<cSVGItem>(), std::to_string(i));
  item.setSelectionIndex(5);
  EXPECT_EQ(item.SelectionIndex(), 2);
  EXPECT_TRUE(item.HasPrevIcon);
  EXPECT_FALSE(item.HasNextIcon);
  item.setSelectionIndex(-4);
  EXPECT_EQ(s.app->BaseIndex, 0);
  EXPECT_FALSE(item.HasPrevIcon);
  EXPECT_TRUE(item.HasNextIcon);
  item.setUseAsOverlay(true);
  item.setSelectionIndex(1);
  EXPECT_EQ(s.app->BaseIndex, 0);  // the overlay list has its own index
  EXPECT_FALSE(item.HasNextIcon);

  cLayersEntries entry;
  EXPECT_EQ(entry.ColorFilter(), -1);
  EXPECT_EQ(entry.FillOptions(), 2);
  EXPECT_TRUE(entry.Visible());
  EXPECT_TRUE(entry.r().IsEmpty());
  entry.setKey("_BaseIco");
  entry.setr(Value(255));
  entry.setG(Value());
  entry.setSettings(R"({"Pos":5})");
  cLayersEntries back;
  ASSERT_TRUE(back.setContent(entry.Content()));
  EXPECT_EQ(back.Key(), "_BaseIco");
  EXPECT_EQ(back.r().AsLong(), 255);
  EXPECT_TRUE(back.G().IsEmpty());
  EXPECT_EQ(back.Settings(), R"({"Pos":5})");
  EXPECT_FALSE(back.setContent("[]"));
}

TEST(LayerItem, AnUnderlineNeitherWrapsNorMovesALongText) {
  StartedApp s;
  cSVGItem text;
  text.Init(Value("Text"), {}, "Text", nullptr, true, cSVGItem::FilterOriginal, 2, "");
  text.setTextContent("Quillaron Design Studio");
  text.SettingsRefresh();
  const Ink plain = InkOf(text);
  // One line (of 92 at this size), wider than the 256 box it is centred in.
  ASSERT_GT(plain.Width(), 300);
  ASSERT_LT(plain.Height(), 120);
  EXPECT_NEAR((plain.left + plain.right) / 2, 128, 4);

  text.setTextFontUnderline(true);
  text.SettingsRefresh();
  const Ink underlined = InkOf(text);
  // The same line; only the underline reaches a little further down and,
  // drawn under the whole advance, a little further to the sides.
  EXPECT_NEAR(underlined.top, plain.top, 0.5);
  EXPECT_GE(underlined.bottom, plain.bottom);
  EXPECT_LT(underlined.bottom, plain.bottom + 12);
  EXPECT_NEAR(underlined.left, plain.left, 6);
  EXPECT_NEAR(underlined.right, plain.right, 6);
}

TEST(LayerItem, StoredSettingsOutOfTheirLimitsAreBroughtIntoThemAndCounted) {
  StartedApp s;
  cSVGItem item;
  // What a damaged or hostile design holds: a clip line of 1e10 icon boxes
  // would never finish, a zoom of 1e9 would ask for a picture that large.
  item.Init(Value(), {}, "Layer", nullptr, true, cSVGItem::FilterOriginal, 2,
            R"({"ClipDX":1e10,"ZoomPercent":1e9,"EffBlur":3e9,"Angle":3.7,"Opacity":"much",)"
            R"("TextContent":[1],"ClipExists":"yes","Pos":12,"TextFontSize":"24","Later":1e300,)"
            R"("GradStops":[{"Offset":2,"Color":-5,"Alpha":0.5},7,{"Offset":0.5,"Color":255,"Alpha":1}]})");
  EXPECT_EQ(item.CorrectedSettings(), 11);
  EXPECT_EQ(item.ClipDX(), 2);
  EXPECT_EQ(item.ZoomPercent(), 200);
  EXPECT_EQ(item.EffBlur(), 100);
  EXPECT_EQ(item.Angle(), 4);
  EXPECT_EQ(item.Opacity(), 100);  // unreadable: the default
  EXPECT_EQ(item.TextContent(), "");
  EXPECT_FALSE(item.ClipExists());
  EXPECT_EQ(item.Pos(), 9);
  EXPECT_EQ(item.TextFontSize(), 24);  // text that reads as a number is one
  ASSERT_EQ(item.GradStopsCount(), 2);
  EXPECT_EQ(item.GradStopsItem(0).Offset, 1);
  EXPECT_EQ(item.GradStopsItem(0).Color, 0);
  EXPECT_EQ(item.GradStopsItem(1).Color, 255);
  // A key of a later version is kept as it is.
  EXPECT_NE(item.Settings().find("\"Later\":1e+300"), std::string::npos) << item.Settings();

  // Sane settings are left exactly as they were, order and all.
  const std::string sane = R"({"Pos":5,"OffsetX":0,"OffsetY":0,"Distance":4,"ZoomPercent":62.5,"Angle":-90})";
  item.setSettings(sane);
  EXPECT_EQ(item.CorrectedSettings(), 0);
  EXPECT_EQ(item.Settings(), sane);

  // Setters hold the same limits, whatever a tool or a script hands them.
  item.setZoomPercent(1e9);
  EXPECT_EQ(item.ZoomPercent(), 200);
  item.setOffSetx(-1e308);
  EXPECT_EQ(item.OffSetx(), -1000);
  item.setClipDX(std::nan(""));
  EXPECT_EQ(item.ClipDX(), 0.80078125);
  item.setStyle(std::string(300, 'a') + "\xC3\xA4");
  EXPECT_EQ(item.Style().size(), 256u);
  item.setStyle(std::string(255, 'a') + "\xC3\xA4");
  EXPECT_EQ(item.Style(), std::string(255, 'a'));  // never half a character
  item.GradStopsAdd(-3, 0x1FFFFFF, 7, 0);
  EXPECT_EQ(item.GradStopsItem(0).Offset, 0);
  EXPECT_EQ(item.GradStopsItem(0).Opacity, 1);

  // A stored entry: its own values and the settings inside it.
  std::string content =
      R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":"136","R":900,"ColorFilter":-40,)"
      R"("Settings":"{\"ClipExists\":true,\"ClipDX\":1e10}"})";
  EXPECT_EQ(CheckEntryContent(content), 3);
  cLayersEntries entry;
  ASSERT_TRUE(entry.setContent(content));
  EXPECT_EQ(entry.Corrected(), 0);  // stored back in range
  EXPECT_EQ(entry.r().AsDouble(), 255);
  EXPECT_EQ(entry.ColorFilter(), -6);
  EXPECT_EQ(entry.Settings(), R"({"ClipExists":true,"ClipDX":2})");
}
