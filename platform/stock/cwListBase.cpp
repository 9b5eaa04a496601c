#include "platform/stock/cwListBase.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/cwScrollBar.h"

namespace qds {

namespace {
// As thick as the theme's scrollers.
double BarWidth() {
  return CurrentTheme().cTheme_GetScrollerSize();
}
}  // namespace

cwListBase::cwListBase(std::string typeName) : Widget(std::move(typeName)) {
  CanFocus = true;
  bar_ = &Children().Add(std::make_unique<cwVScrollBar>(), "vsbRows");
  bar_->setVisible(false);
  bar_->Change = [this] {
    if (top_ == bar_->Value()) return;
    top_ = bar_->Value();
    Refresh();
  };
}

void cwListBase::Layout() {
  const int hidden = ListCount() - RowsShown();
  bar_->Max = std::max(0, hidden);
  bar_->LargeChange = RowsShown();
  bar_->Move(Width() - BarWidth(), 0, BarWidth(), Height());
  bar_->setVisible(hidden > 0);
  bar_->setValue(top_);
}

void cwListBase::SetRows(std::vector<Row> rows, int selected) {
  rows_ = std::move(rows);
  index_ = selected < ListCount() ? selected : -1;
  top_ = 0;
  if (index_ >= 0) ScrollTo(index_);
  Layout();
  Refresh();
}

void cwListBase::setListIndex(int index) {
  if (index < -1 || index >= ListCount() || index == index_) return;
  index_ = index;
  if (index >= 0) ScrollTo(index);
  Refresh();
  Selected();
}

int cwListBase::RowsShown() const {
  return std::max(1, static_cast<int>(Height() / RowHeight));
}

void cwListBase::ScrollTo(int index) {
  if (index < top_) top_ = index;
  if (index >= top_ + RowsShown()) top_ = index - RowsShown() + 1;
  top_ = std::clamp(top_, 0, std::max(0, ListCount() - RowsShown()));
  bar_->setValue(top_);
}

void cwListBase::W_Paint(DrawingContext& ctx, double w, double h) {
  ctx.SetSourceColor(StockColor(Palette::Face));
  ctx.Paint();
  if (bar_->Visible()) w -= BarWidth();
  for (int i = top_; i < ListCount() && (i - top_) * RowHeight < h; ++i) {
    const double y = (i - top_) * RowHeight;
    if (i == index_) DrawPart(ctx, ThemePart::Selection, 0, 0, y, w, RowHeight);
    PaintRow(ctx, i, y, w, i == index_);
  }
  DrawPart(ctx, ThemePart::Frame, HasFocus() ? ThemeState::Focused : 0, 0, 0, w, h);
}

void cwListBase::PaintRow(DrawingContext& ctx, int index, double y, double w, bool) {
  const double x = 6 + rows_[index].indent * 12;
  ctx.SelectFont(kUiFont, kUiFontSize, StockColor(Palette::Text));
  ctx.DrawText(x, y, w - x - 4, RowHeight, (rows_[index].folder ? "▸ " : "") + rows_[index].text, true,
               TextAlign::Left, TextAlign::Middle);
}

int cwListBase::RowAtY(double y) const {
  const int row = top_ + static_cast<int>(y / RowHeight);
  return y >= 0 && row < ListCount() ? row : -1;
}

bool cwListBase::W_MouseDown(int button, int, double, double y) {
  if (button != Button::Left) return false;
  SetFocus();
  if (const int row = RowAtY(y); row >= 0) UserChose(row);
  return true;
}

bool cwListBase::W_DblClick(int button, int, double, double y) {
  if (button != Button::Left) return false;
  if (const int row = RowAtY(y); row >= 0) Activated(row);
  return true;
}

bool cwListBase::W_MouseWheel(int delta, int, double, double) {
  top_ = std::clamp(top_ - delta * 3, 0, std::max(0, ListCount() - RowsShown()));
  bar_->setValue(top_);
  Refresh();
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
  // A key that moves nowhere (Down on the last row) is still the list's.
  if (ListCount() > 0 && to != index_) UserChose(to);
  return true;
}

void cwListBase::W_ReportState(WidgetState& state) const {
  state.listCount = ListCount();
  state.listIndex = index_;
  state.scrollIndex = top_;
  state.selected = index_ >= 0 ? std::vector<int>{index_} : std::vector<int>{};
  if (index_ >= 0) state.text = rows_[index_].text;
}

WidgetPoint cwListBase::W_RowPoint(int row) {
  // Only a row the user can see can be pointed at.
  if (row < top_ || row >= ListCount() || row >= top_ + RowsShown()) return {};
  const double w = bar_->Visible() ? Width() - BarWidth() : Width();
  return {this, w / 2, (row - top_ + 0.5) * RowHeight};
}

}  // namespace qds
