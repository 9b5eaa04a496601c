#include "design/cwPosQuad.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

cwPosQuad::cwPosQuad() : Widget("cwPosQuad") {
  MouseCursor = Cursor::Hand;
}

void cwPosQuad::setCurPos(int cell) {
  if (cell < 0 || cell > 9) cell = 0;
  if (cell == curPos_) return;
  curPos_ = cell;
  Refresh();
}

int cwPosQuad::GetPos9(double x, double y) const {
  const double w = Width(), h = Height();
  if (w <= 0 || h <= 0 || x < 0 || y < 0 || x >= w || y >= h) return 0;
  const int column = std::min(2, static_cast<int>(x * 3 / w));
  const int row = std::min(2, static_cast<int>(y * 3 / h));
  return 1 + row * 3 + column;
}

void cwPosQuad::CellRect(int cell, double& x, double& y, double& w, double& h) const {
  w = Width() / 3;
  h = Height() / 3;
  x = ((cell - 1) % 3) * w;
  y = ((cell - 1) / 3) * h;
}

void cwPosQuad::setHover(int cell) {
  if (cell == hover_) return;
  hover_ = cell;
  Refresh();
}

void cwPosQuad::W_Paint(DrawingContext& ctx, double w, double h) {
  const bool enabled = EnabledInTree();
  ctx.SetSourceColor(StockColor(Palette::Back));
  ctx.Rectangle(0, 0, w, h);
  ctx.Fill();
  for (int cell = 1; cell <= 9; ++cell) {
    double x, y, cw, ch;
    CellRect(cell, x, y, cw, ch);
    // A square dot in the middle of each cell; the chosen one filled in
    // the accent colour, the one under the mouse lit.
    const double side = std::max(3.0, std::floor(std::min(cw, ch) * 0.5));
    const double dx = std::round(x + (cw - side) / 2), dy = std::round(y + (ch - side) / 2);
    std::int64_t fill = StockColor(Palette::Face);
    if (enabled && cell == hover_) fill = StockColor(Palette::Hover);
    if (cell == curPos_) fill = enabled ? StockColor(Palette::Accent) : StockColor(Palette::Disabled);
    ctx.SetSourceColor(fill);
    ctx.Rectangle(dx, dy, side, side);
    ctx.Fill();
    ctx.SetLineWidth(1);
    ctx.SetSourceColor(StockColor(Palette::Border));
    ctx.Rectangle(dx + 0.5, dy + 0.5, side - 1, side - 1);
    ctx.Stroke();
  }
}

bool cwPosQuad::W_MouseDown(int button, int, double x, double y) {
  if (button != Button::Left) return false;
  pressed_ = true;
  SetCapture();
  setHover(GetPos9(x, y));
  return true;
}

bool cwPosQuad::W_MouseMove(int, int, double x, double y) {
  setHover(GetPos9(x, y));
  return true;
}

bool cwPosQuad::W_MouseUp(int button, int, double x, double y) {
  if (button != Button::Left || !pressed_) return false;
  pressed_ = false;
  ReleaseCapture();
  const int cell = GetPos9(x, y);
  if (cell == 0) return true;  // let go outside: no choice
  // The chosen cell again frees the layer.
  const int chosen = cell == curPos_ ? 0 : cell;
  setCurPos(chosen);
  RaiseEvent(Click, "Click", chosen);
  return true;
}

void cwPosQuad::W_MouseLeave() {
  if (!pressed_) setHover(0);
}

void cwPosQuad::W_ReportState(WidgetState& state) const {
  state.value = curPos_;
  std::vector<WidgetState::Item> items;
  for (int cell = 1; cell <= 9; ++cell) {
    WidgetState::Item item;
    item.key = std::to_string(cell);
    item.enabled = Enabled();
    item.checked = cell == curPos_;
    items.push_back(item);
  }
  state.items = std::move(items);
}

WidgetPoint cwPosQuad::W_ItemPoint(const std::string& key) {
  if (key.size() != 1 || key[0] < '1' || key[0] > '9') return {};
  double x, y, w, h;
  CellRect(key[0] - '0', x, y, w, h);
  return {this, x + w / 2, y + h / 2};
}

QDS_JOIN_WIDGET_REGISTRY(cwPosQuad);

}  // namespace qds
