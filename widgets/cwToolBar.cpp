#include "widgets/cwToolBar.h"

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

namespace {
constexpr double kPadding = 2;
}

cwToolBar::cwToolBar() : Widget("cwToolBar") {
  Arrange();
}

cwToolBarItem& cwToolBar::AddItem(const std::string& key, const std::string& pictureKey,
                                  const std::string& caption, bool isCheck, bool hasDropArrow) {
  auto& item = Children().Add<cwToolBarItem>(key);
  item.PictureKey = pictureKey;
  item.Caption = caption;
  item.IsCheck = isCheck;
  item.HasDropArrow = hasDropArrow;
  Arrange();
  return item;
}

cwToolBarItem* cwToolBar::Item(const std::string& key) {
  return Children().Exists(key) ? dynamic_cast<cwToolBarItem*>(&Children().Item(key)) : nullptr;
}

void cwToolBar::setVertical(bool vertical) {
  if (vertical == vertical_) return;
  vertical_ = vertical;
  Arrange();
}

void cwToolBar::setItemSize(double size) {
  itemSize_ = size;
  Arrange();
}

void cwToolBar::Arrange() {
  // Across the bar the box gives each item the whole room; along it, its own length.
  setBoxLayout(vertical_ ? BoxDirection::Column : BoxDirection::Row, kPadding, kPadding);
  for (int i = 0; i < Children().Count(); ++i) {
    if (auto* item = dynamic_cast<cwToolBarItem*>(&Children().Item(i)))
      item->setBoxHint(item->PreferredLength(itemSize_, vertical_), 0);
  }
}

void cwToolBar::W_Paint(DrawingContext& ctx, double w, double h) {
  DrawPart(ctx, ThemePart::Background, 0, 0, 0, w, h);
}

void cwToolBar::W_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>&) {
  // Only the items' own events; the platform's "W_..." pass by.
  if (source.Parent() != this || !dynamic_cast<cwToolBarItem*>(&source)) return;
  if (name == "Click") {
    RaiseEvent(Click, "Click", source.Key());
  } else if (name == "ArrowClick") {
    RaiseEvent(ArrowClick, "ArrowClick", source.Key());
  } else if (name == "MouseEnter") {
    RaiseEvent(MouseEnter, "MouseEnter", source.Key());
  }
}

void cwToolBar::W_ReportState(WidgetState& state) const {
  std::vector<WidgetState::Item> items;
  for (int i = 0; i < Children().Count(); ++i) {
    const Widget& w = Children().Item(i);
    if (const auto* item = dynamic_cast<const cwToolBarItem*>(&w))
      items.push_back({item->Key(), item->Caption, item->Enabled(), item->Checked});
  }
  state.items = std::move(items);
}

WidgetPoint cwToolBar::W_ItemPoint(const std::string& key) {
  cwToolBarItem* item = Item(key);
  if (!item || !item->Visible()) return {};
  const double body = item->HasDropArrow ? item->Width() - cwToolBarItem::kArrowWidth : item->Width();
  return {item, body / 2, item->Height() / 2};
}

QDS_JOIN_WIDGET_REGISTRY(cwToolBar);

}  // namespace qds
