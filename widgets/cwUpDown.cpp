#include "widgets/cwUpDown.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

namespace {

// The spinner's bar leaves the wheel to the spinner, which steps one row
// per notch wherever the mouse is over it.
class UpDownBar : public cwVScrollBar {
 public:
  bool W_MouseWheel(int, int, double, double) override { return false; }
};

}  // namespace

cwUpDown::cwUpDown() : Widget("cwUpDown") {
  CanFocus = true;
  bar_ = &Children().Add(std::make_unique<UpDownBar>(), "vsbUpDown");
  bar_->Max = 0;
  bar_->LargeChange = 1;
  bar_->Change = [this] {
    Refresh();
    RaiseEvent(Change, "Change");
  };
}

void cwUpDown::SetDataSource(DataRows rows, const std::string& dataField) {
  rows_ = std::move(rows);
  dataField_ = dataField;
  bar_->Max = std::max(0, ListCount() - 1);
  bar_->setValue(bar_->Value());  // held inside the new rows
  bar_->Refresh();
  Refresh();
}

int cwUpDown::DataIndex() const {
  return rows_.empty() ? -1 : bar_->Value();
}

void cwUpDown::setDataIndex(int index) {
  bar_->setValue(index);
}

std::string cwUpDown::DataValue() const {
  return rows_.empty() ? std::string() : rows_[bar_->Value()].Field(dataField_);
}

std::string cwUpDown::DataKey() const {
  return rows_.empty() ? std::string() : rows_[bar_->Value()].key;
}

void cwUpDown::W_Resize() {
  const double side = CurrentTheme().cTheme_GetScrollerSize();
  bar_->Move(Width() - side, 0, side, Height());
}

void cwUpDown::W_Paint(DrawingContext& ctx, double w, double h) {
  const int state = (HasFocus() ? ThemeState::Focused : 0) | (EnabledInTree() ? 0 : ThemeState::Disabled);
  ctx.SetSourceColor(StockColor(Palette::Face));
  ctx.Paint();
  DrawPart(ctx, ThemePart::Frame, state, 0, 0, w, h);
  ctx.SelectFont(UiFont(), kUiFontSize, CurrentTheme().cTheme_GetThemeColor(ThemePart::Text, state));
  ctx.DrawText(6, 0, w - bar_->Width() - 10, h, DataValue(), true, TextAlign::Left, TextAlign::Middle);
}

bool cwUpDown::W_MouseWheel(int delta, int, double, double) {
  // Rolled away from the user, as the up arrow: the row before.
  bar_->setValue(bar_->Value() - delta);
  return true;
}

bool cwUpDown::W_KeyDown(int keyCode, int) {
  if (keyCode != Key::Up && keyCode != Key::Down) return false;
  bar_->setValue(bar_->Value() + (keyCode == Key::Up ? -1 : 1));
  return true;
}

void cwUpDown::W_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>&) {
  if (&source == bar_ && name == "MouseUp") RaiseEvent(MouseUp, "MouseUp");
}

void cwUpDown::W_ReportState(WidgetState& state) const {
  state.text = DataValue();
  state.value = DataIndex();
  state.min = 0;
  state.max = bar_->Max;
  state.listIndex = DataIndex();
  state.listCount = ListCount();
}

WidgetPoint cwUpDown::W_ItemPoint(const std::string& key) {
  if (key != "up" && key != "down") return {};
  // The middle of the arrow, which is as long as the bar is wide, or a
  // third of a short bar.
  const double arrow = std::min(bar_->Width(), bar_->Height() / 3);
  return {bar_, bar_->Width() / 2, key == "up" ? arrow / 2 : bar_->Height() - arrow / 2};
}

QDS_JOIN_WIDGET_REGISTRY(cwUpDown);

}  // namespace qds
