#include "platform/stock/cwListBase.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"

namespace qds {

cwListBase::cwListBase(std::string typeName) : cwScrollable(std::move(typeName), "vsbRows", "hsbRows") {
  CanFocus = true;
  LineStepY = RowHeight;
}

void cwListBase::SetRows(std::vector<Row> rows, int selected) {
  rows_ = std::move(rows);
  index_ = selected < ListCount() ? selected : -1;
  LineStepY = RowHeight;
  // As wide as the view: the rows never scroll sideways.
  setContentSize(0, ListCount() * RowHeight);
  ScrollTo(0, 0);
  if (index_ >= 0) ShowRow(index_);
  Refresh();
}

void cwListBase::setListIndex(int index) {
  if (index < -1 || index >= ListCount() || index == index_) return;
  index_ = index;
  if (index >= 0) ShowRow(index);
  Refresh();
  Selected();
}

int cwListBase::TopIndex() const {
  return RowHeight > 0 ? static_cast<int>(ScrollY() / RowHeight + 1e-9) : 0;
}

int cwListBase::RowsShown() const {
  return std::max(1, static_cast<int>(ViewHeight() / RowHeight));
}

void cwListBase::ShowRow(int index) {
  EnsureVisible(0, index * RowHeight, 0, RowHeight);
}

void cwListBase::PaintContent(DrawingContext& ctx, double x, double y, double w, double h) {
  ctx.SetSourceColor(StockColor(Palette::Face));
  ctx.Rectangle(x, y, w, h);
  ctx.Fill();
  // Only the rows that meet the visible part.
  const int first = std::max(0, static_cast<int>(y / RowHeight));
  for (int i = first; i < ListCount() && i * RowHeight < y + h; ++i) {
    const double top = i * RowHeight;
    if (i == index_) DrawPart(ctx, ThemePart::Selection, 0, 0, top, w, RowHeight);
    PaintRow(ctx, i, top, w, i == index_);
  }
}

void cwListBase::PaintView(DrawingContext& ctx, double w, double h) {
  DrawPart(ctx, ThemePart::Frame, HasFocus() ? ThemeState::Focused : 0, 0, 0, w, h);
}

void cwListBase::PaintRow(DrawingContext& ctx, int index, double y, double w, bool) {
  const double x = 6 + rows_[index].indent * 12;
  ctx.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  ctx.DrawText(x, y, w - x - 4, RowHeight, (rows_[index].folder ? "▸ " : "") + rows_[index].text, true,
               TextAlign::Left, TextAlign::Middle);
}

int cwListBase::RowAtY(double y) const {
  if (y < 0 || RowHeight <= 0) return -1;
  const int row = static_cast<int>(y / RowHeight);
  return row < ListCount() ? row : -1;
}

bool cwListBase::ContentMouseDown(int button, int, double, double y) {
  if (button != Button::Left) return false;
  SetFocus();
  if (const int row = RowAtY(y); row >= 0) UserChose(row);
  return true;
}

bool cwListBase::ContentDblClick(int button, int, double, double y) {
  if (button != Button::Left) return false;
  if (const int row = RowAtY(y); row >= 0) Activated(row);
  return true;
}

void cwListBase::UserChose(int row) {
  setListIndex(row);
  RaiseEvent(Click, "Click");
}

bool cwListBase::W_KeyDown(int keyCode, int) {
  int to = index_;
  switch (keyCode) {
    case Key::Up:
      to = std::max(0, index_ - 1);
      break;
    case Key::Down:
      to = std::min(ListCount() - 1, index_ + 1);
      break;
    case Key::PageUp:
      to = std::max(0, index_ - RowsShown());
      break;
    case Key::PageDown:
      to = std::min(ListCount() - 1, index_ + RowsShown());
      break;
    case Key::Home:
      to = 0;
      break;
    case Key::End:
      to = ListCount() - 1;
      break;
    case Key::Return:
      if (index_ >= 0) Activated(index_);
      return true;
    default:
      return false;
  }
  // A key that moves nowhere (Down on the last row) is still the list's,
  // and brings the row back into view.
  if (ListCount() > 0 && to != index_) UserChose(to);
  if (to >= 0 && to < ListCount()) ShowRow(to);
  return true;
}

void cwListBase::W_ReportState(WidgetState& state) const {
  cwScrollable::W_ReportState(state);
  state.listCount = ListCount();
  state.listIndex = index_;
  state.scrollIndex = TopIndex();
  state.selected = index_ >= 0 ? std::vector<int>{index_} : std::vector<int>{};
  if (index_ >= 0) state.text = rows_[index_].text;
}

WidgetPoint cwListBase::W_RowPoint(int row) {
  // Only a row the user can see can be pointed at: the middle of what shows of it.
  if (row < 0 || row >= ListCount()) return {};
  const double top = std::max(row * RowHeight, ScrollY());
  const double bottom = std::min((row + 1) * RowHeight, ScrollY() + ViewHeight());
  if (bottom <= top) return {};
  return {this, ViewWidth() / 2, (top + bottom) / 2 - ScrollY()};
}

WidgetPoint cwListBase::W_ItemPoint(const std::string& key) {
  for (int i = 0; i < ListCount(); ++i) {
    if (rows_[i].text == key) return W_RowPoint(i);
  }
  return {};
}

}  // namespace qds
