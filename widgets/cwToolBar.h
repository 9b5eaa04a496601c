#pragma once
// A row, or a column, of tool bar items. The bar tells its owner which
// item was clicked, had its arrow clicked or was entered by the mouse.

#include <functional>
#include <string>

#include "platform/ui/Widget.h"
#include "widgets/cwToolBarItem.h"

namespace qds {

class cwToolBar : public Widget {
 public:
  cwToolBar();

  // The item's caption is its tip, and shows when it has no picture. A
  // key already there raises an AppError.
  cwToolBarItem& AddItem(const std::string& key, const std::string& pictureKey, const std::string& caption,
                         bool isCheck = false, bool hasDropArrow = false);
  cwToolBarItem* Item(const std::string& key);

  // Items one under another instead of side by side.
  bool Vertical() const { return vertical_; }
  void setVertical(bool vertical);
  // How long a picture item is along the bar.
  double ItemSize() const { return itemSize_; }
  void setItemSize(double size);

  // Each with the item's key; also bubbled by name.
  std::function<void(const std::string& key)> Click;
  std::function<void(const std::string& key)> ArrowClick;
  std::function<void(const std::string& key)> MouseEnter;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  void W_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) override;
  void W_ReportState(WidgetState& state) const override;
  // An item by its key: the middle of its body, off its drop arrow.
  WidgetPoint W_ItemPoint(const std::string& key) override;

 private:
  void Arrange();
  bool vertical_ = false;
  double itemSize_ = 28;
};

}  // namespace qds
