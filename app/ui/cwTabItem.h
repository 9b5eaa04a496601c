#pragma once
// One tab of the main window's tab row: a caption, lit while the mouse is
// over it, marked while its view is the one shown.

#include <string>

#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"

namespace qds {

class cwTabItem : public Widget {
 public:
  cwTabItem() : Widget("cwTabItem") { MouseCursor = Cursor::Hand; }
  void SetCaption(const std::string& caption) { Caption = caption; }
  Property<std::string> Caption{*this};
  Property<bool> Selected{*this, false};
  // The view it switches to.
  std::string ViewName;
  // The width its caption needs.
  double PreferredWidth() const;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  void W_MouseEnter() override { Refresh(); }
  void W_MouseLeave() override { Refresh(); }
  bool W_MouseDown(int button, int, double, double) override { return button == Button::Left; }
  bool W_MouseUp(int button, int, double, double) override { return button == Button::Left; }
  void W_ReportState(WidgetState& state) const override {
    state.caption = Caption;
    state.checked = Selected;
  }
};

}  // namespace qds
