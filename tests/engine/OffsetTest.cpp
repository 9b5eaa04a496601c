#include <gtest/gtest.h>

#include "engine/cSVGItem.h"
#include "tests/support/StartedApp.h"

using namespace qds;

namespace {

// A black box on a 320 by 200 page, with margins of 40 left, 10 top, 20
// right and 30 bottom: on a canvas of the same size every margin differs.
const char* kWideBox =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="320" height="200" viewBox="0 0 320 200">)"
    R"(<rect x="40" y="10" width="260" height="160" fill="#000"/></svg>)";

SVGItemPtr BoxLayer(double zoom) {
  auto item = std::make_shared<cSVGItem>();
  item->Init(Value("Box"), ToBytes(kWideBox), "Box");
  item->setZoomPercent(zoom);
  return item;
}

}  // namespace

TEST(Offset, EverySnapPositionBecomesItsFreeOffset) {
  StartedApp s;
  cSVGItem item;
  item.setDistance(5);
  // An icon smaller than a wide canvas (75 %), with four different margins.
  const double L = 12, T = 7, R = 30, B = 18, zW = 240, zH = 150, W = 320, H = 200;
  // Worked out by hand from the table of positions, in percent of the
  // canvas: columns left -11.25, centre -2.8125, right 16.875; rows top
  // -11, middle -2.75, bottom 16.5. The middle-left cell adds the distance
  // itself (5), not 5 % of the width: -14.6875.
  const double expected[10][2] = {
      {0, 0},           {-11.25, -11},   {-2.8125, -11}, {16.875, -11},   {-14.6875, -2.75},
      {-2.8125, -2.75}, {16.875, -2.75}, {-11.25, 16.5}, {-2.8125, 16.5}, {16.875, 16.5}};
  for (int pos = 1; pos <= 9; ++pos) {
    double x = 99, y = 99;
    item.GetOffsetXY(pos, L, T, R, B, zW, zH, W, H, x, y);
    EXPECT_DOUBLE_EQ(x, expected[pos][0]) << "Pos " << pos;
    EXPECT_DOUBLE_EQ(y, expected[pos][1]) << "Pos " << pos;
  }
  // A position that is no cell answers the margins in percent.
  for (int pos : {-1, 10, 42}) {
    double x = 99, y = 99;
    item.GetOffsetXY(pos, L, T, R, B, zW, zH, W, H, x, y);
    EXPECT_DOUBLE_EQ(x, 3.75) << "Pos " << pos;
    EXPECT_DOUBLE_EQ(y, 3.5) << "Pos " << pos;
  }
  // The free position answers the offsets as they are.
  item.setOffSetx(12.5);
  item.setOffSetY(-3.25);
  double x = 99, y = 99;
  item.GetOffsetXY(0, L, T, R, B, zW, zH, W, H, x, y);
  EXPECT_EQ(x, 12.5);
  EXPECT_EQ(y, -3.25);
}

TEST(Offset, MeasuringALayerDissolvesItsSnapPositionIntoOffsets) {
  StartedApp s;
  s.app->CanvasWidth = 320;
  s.app->CanvasHeight = 200;
  // At half size the margins are 20, 5, 10 and 15 and the icon 160 by 100.
  SVGItemPtr box = BoxLayer(50);
  box->setPos(9);
  box->setDistance(4);
  double zW = 0, zH = 0, L = 0, T = 0;
  box->CalcOffSet(320, 200, zW, zH, L, T);
  EXPECT_EQ(zW, 160);
  EXPECT_EQ(zH, 100);
  EXPECT_EQ(L, 20);
  EXPECT_EQ(T, 5);
  // Bottom right, 4 % from the edges: X = 80 - 12.8 + 10, Y = 50 - 8 + 15.
  EXPECT_NEAR(box->OffSetx(), 24.125, 1e-9);
  EXPECT_NEAR(box->OffSetY(), 28.5, 1e-9);
  EXPECT_EQ(box->Pos(), 0);  // for good
  EXPECT_EQ(box->Distance(), 0);

  // A side of 0 is the design's canvas side, width and height each its own.
  SVGItemPtr top = BoxLayer(50);
  top->setPos(1);
  top->setDistance(4);
  top->CalcOffSet(0, 0, zW, zH, L, T);
  EXPECT_EQ(zW, 160);
  EXPECT_EQ(zH, 100);
  // Top left: X = 12.8 - 80 - 20, Y = 8 - 50 - 5.
  EXPECT_NEAR(top->OffSetx(), -27.25, 1e-9);
  EXPECT_NEAR(top->OffSetY(), -23.5, 1e-9);

  // A free layer is measured and its settings are left exactly as they were.
  SVGItemPtr free = BoxLayer(50);
  free->CalcOffSet(0, 0, zW, zH, L, T);
  EXPECT_EQ(free->Settings(), R"({"ZoomPercent":50})");
  EXPECT_EQ(L, 20);
}

TEST(Offset, ADragIsFoldedIntoTheOffsetAndAWallShadowFollowsItsSymbol) {
  StartedApp s;
  s.app->CanvasWidth = 320;
  s.app->CanvasHeight = 200;

  SVGItemPtr plain = BoxLayer(50);
  plain->setOffSetx(3);
  plain->setOffSetY(-2);
  plain->MoveX = 1.5;
  plain->MoveY = 2.25;
  plain->SetNewOffSet();
  EXPECT_EQ(plain->OffSetx(), 4.5);
  EXPECT_EQ(plain->OffSetY(), 0.25);
  EXPECT_EQ(plain->MoveX, 0);
  EXPECT_EQ(plain->MoveY, 0);

  // The symbol snaps to the bottom right: its free position is (24.125, 28.5).
  SVGItemPtr symbol = BoxLayer(50);
  symbol->setPos(9);
  symbol->setDistance(4);
  s.app->Layers.Add(symbol, "symbol");
  SVGItemPtr shadow = BoxLayer(50);
  shadow->setEffType(2);
  shadow->setEffSymbolKey("symbol");
  shadow->setOffSetx(30);
  shadow->setOffSetY(20);
  shadow->MoveX = 2;
  shadow->MoveY = -4;
  shadow->SetNewOffSet();
  EXPECT_EQ(shadow->OffSetx(), 32);
  EXPECT_EQ(shadow->OffSetY(), 16);
  // The distance to the symbol, in percent of the zoom.
  EXPECT_NEAR(shadow->EffOffsetX(), (32 - 24.125) * 2, 1e-9);
  EXPECT_NEAR(shadow->EffOffsetY(), (16 - 28.5) * 2, 1e-9);
  EXPECT_EQ(shadow->MoveX, 0);
  EXPECT_EQ(symbol->Pos(), 9);  // measured on a copy: the symbol keeps its snap
  // Rebuilt from its symbol, the shadow stays where it was dropped.
  shadow->SettingsRefresh();
  EXPECT_NEAR(shadow->OffSetx(), 32, 1e-9);
  EXPECT_NEAR(shadow->OffSetY(), 16, 1e-9);

  // Without its symbol the drag stays pending.
  shadow->setEffSymbolKey("gone");
  shadow->MoveX = 5;
  shadow->MoveY = 6;
  const std::string before = shadow->Settings();
  shadow->SetNewOffSet();
  EXPECT_EQ(shadow->Settings(), before);
  EXPECT_EQ(shadow->MoveX, 5);
  EXPECT_EQ(shadow->MoveY, 6);
}
