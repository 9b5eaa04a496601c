#pragma once
// One button of a tool bar: a picture (or its caption when it has none),
// the caption as its tip, and, when it has one, a drop arrow at its right
// end with a click of its own. A check item stays down while Checked.

#include <functional>
#include <string>

#include "platform/ui/PlatformRoot.h"
#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"

namespace qds {

class cwToolBarItem : public Widget {
 public:
  cwToolBarItem();

  Property<std::string> PictureKey{*this};
  Property<std::string> Caption{*this, {}, [this] { ToolTip = Caption; }};
  bool IsCheck = false;
  Property<bool> HasDropArrow{*this, false};
  Property<bool> Checked{*this, false};

  // Each also bubbled by its name.
  std::function<void()> Click;
  std::function<void()> ArrowClick;
  std::function<void()> MouseEnter;

  // The part at the right end that drops something down.
  static constexpr double kArrowWidth = 12;
  // The click is told a moment after the release, so that the item is
  // seen pressed before whatever the click starts takes its time.
  static constexpr double kDecoupleMs = 1;

  // Its length along the bar, for items `side` units thick.
  double PreferredLength(double side, bool vertical) const;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_MouseUp(int button, int shift, double x, double y) override;
  void W_MouseEnter() override;
  void W_MouseLeave() override { Refresh(); }
  void W_ReportState(WidgetState& state) const override;

 private:
  bool OnArrow(double x) const { return HasDropArrow && x >= Width() - kArrowWidth; }
  void Decoupled();
  bool pressed_ = false;
  bool onArrow_ = false;  // the press went down on the arrow
  Timer tmrDecouple_{*this};
};

}  // namespace qds
