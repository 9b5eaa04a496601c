#include "widgets/cwDropDownList.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"
#include "widgets/cwVListNew.h"

namespace qds {

// The list in the pop-up, which takes Return for its owner.
class DropDownRows : public cwVListNew {
 public:
  explicit DropDownRows(cwDropDownList& owner) : owner_(owner) {}
  bool W_KeyDown(int keyCode, int shift) override {
    return owner_.ListKeyDown(keyCode) || cwVListNew::W_KeyDown(keyCode, shift);
  }

 private:
  cwDropDownList& owner_;
};

cwDropDownList::cwDropDownList() : cwDropDown("cwDropDownList") {
  auto rows = std::make_unique<DropDownRows>(*this);
  list_ = rows.get();
  list_->setRowHeight(kRowHeight);
  list_->OwnerDrawItem = [this](int index, DrawingContext& ctx, double dx, double dy, double) {
    const std::string text = rows_.at(index).Field(dataField_);
    ctx.SelectFont(IsFontSelection && !text.empty() ? text : UiFont(), kUiFontSize,
                   StockColor(Palette::Text));
    ctx.DrawText(6, 0, dx - 10, dy, text, true, TextAlign::Left, TextAlign::Middle);
  };
  // The pointer shows the row it would take; the keys move the current row
  // without taking it, and Return or a release takes it.
  list_->MouseUpClick = [this] {
    if (list_->ListIndex() >= 0) Take(list_->ListIndex());
  };
  setContent(std::move(rows));
}

void cwDropDownList::SetDataSource(DataRows rows, const std::string& dataField,
                                   const std::string& dataSourceKey) {
  const std::string chosen = SelectedKey();
  rows_ = std::move(rows);
  dataField_ = dataField;
  dataSourceKey_ = dataSourceKey;
  index_ = chosen.empty() ? -1 : IndexOfKey(chosen);
  if (IsOpen()) ShowRows();
  Refresh();
}

void cwDropDownList::setListIndex(int index) {
  if (index < -1 || index >= ListCount() || index == index_) return;
  index_ = index;
  if (IsOpen()) list_->setListIndex(index);
  Refresh();
}

int cwDropDownList::IndexOfKey(const std::string& key) const {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (rows_[i].key == key) return static_cast<int>(i);
  }
  return -1;
}

std::string cwDropDownList::SelectedKey() const {
  return index_ >= 0 ? rows_[index_].key : std::string();
}

bool cwDropDownList::setSelectedKey(const std::string& key) {
  const int index = IndexOfKey(key);
  if (index < 0) return false;
  setListIndex(index);
  return true;
}

std::string cwDropDownList::Text() const {
  return index_ >= 0 ? rows_[index_].Field(dataField_) : std::string();
}

void cwDropDownList::OpenDropDown() {
  if (IsOpen() || rows_.empty()) return;
  // Room for the rows within the list's frame and the gap above them.
  DropHeight = std::min(ListCount(), kMostRowsShown) * kRowHeight + 3;
  cwDropDown::OpenDropDown();
  ShowRows();
  list_->SetFocus();
}

void cwDropDownList::ShowRows() {
  list_->setListCount(ListCount());
  list_->setListIndex(index_);
  list_->EnsureVisibleSelection();
}

bool cwDropDownList::ListKeyDown(int keyCode) {
  if (keyCode != Key::Return) return false;
  if (list_->ListIndex() >= 0) Take(list_->ListIndex());
  return true;
}

void cwDropDownList::Take(int index) {
  const bool changed = index != index_;
  CloseDropDown();
  if (changed) {
    index_ = index;
    Refresh();
  }
  if (changed || DoEventClickAlways) RaiseEvent(Click, "Click");
}

void cwDropDownList::Step(int by) {
  if (rows_.empty()) return;
  const int to = std::clamp(index_ < 0 && by < 0 ? 0 : index_ + by, 0, ListCount() - 1);
  if (to == index_) return;
  index_ = to;
  Refresh();
  RaiseEvent(Click, "Click");
}

void cwDropDownList::W_Paint(DrawingContext& ctx, double w, double h) {
  const int state = BoxState();
  DrawFace(ctx, w, h, state);
  const std::string text = Text();
  ctx.SelectFont(IsFontSelection && !text.empty() ? text : UiFont(), kUiFontSize,
                 CurrentTheme().cTheme_GetThemeColor(ThemePart::Text, state));
  ctx.DrawText(6, 0, w - h - 6, h, text, true, TextAlign::Left, TextAlign::Middle);
  DrawBoxArrow(ctx, w, h, state);
}

bool cwDropDownList::W_MouseWheel(int delta, int, double, double) {
  // Rolled away from the user, the wheel goes up the list.
  if (!IsOpen()) Step(-delta);
  return true;
}

bool cwDropDownList::W_KeyDown(int keyCode, int shift) {
  if (shift & Shift::Alt) return cwDropDown::W_KeyDown(keyCode, shift);
  if (keyCode != Key::Up && keyCode != Key::Down) return false;
  Step(keyCode == Key::Up ? -1 : 1);
  return true;
}

void cwDropDownList::W_ReportState(WidgetState& state) const {
  state.text = Text();
  state.listIndex = index_;
  state.listCount = ListCount();
  std::vector<WidgetState::Item> items;
  for (const DataRow& r : rows_) items.push_back({r.key, r.Field(dataField_), true, false});
  state.items = std::move(items);
}

WidgetPoint cwDropDownList::W_ItemPoint(const std::string& key) {
  const int index = IndexOfKey(key);
  return index >= 0 ? W_RowPoint(index) : WidgetPoint{};
}

WidgetPoint cwDropDownList::W_RowPoint(int index) {
  if (!IsOpen() || index < 0 || index >= ListCount()) return {};
  WidgetPoint p = list_->W_RowPoint(index);
  if (!p.widget) {
    // Scrolled out of sight: the list shows it, as a user would scroll to it.
    list_->setListIndex(index);
    p = list_->W_RowPoint(index);
  }
  return p;
}

QDS_JOIN_WIDGET_REGISTRY(cwDropDownList);

}  // namespace qds
