#pragma once
// The stock widgets every view is built from. Each draws itself in the
// program's palette and tells its owner of clicks both through its event
// and, by name, up the tree as a bubbling event.

#include <functional>
#include <memory>
#include <string>

#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

// A push button with a caption and an optional picture; checkable buttons
// stay down until pressed again.
class cwButton : public Widget {
 public:
  cwButton() : cwButton("cwButton") {}
  Property<std::string> Caption{*this};
  Property<std::string> PictureKey{*this};
  bool Checkable = false;
  Property<bool> Checked{*this, false};
  // In a dialog, Return presses the Default button and Escape the Cancel
  // one, wherever the focus is.
  bool Default = false;
  bool Cancel = false;
  std::function<void()> Click;
  // Clicks it as the mouse would: toggles a checkable one, then Click.
  void Press();

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_MouseUp(int button, int shift, double x, double y) override;
  void W_MouseEnter() override { Refresh(); }
  void W_MouseLeave() override { Refresh(); }
  bool W_KeyDown(int keyCode, int shift) override;
  bool W_AccessKey(char letter) override;
  void W_ReportState(WidgetState& state) const override;

 protected:
  explicit cwButton(std::string typeName) : Widget(std::move(typeName)) { CanFocus = true; }
  bool Pressed() const { return pressed_; }

 private:
  bool pressed_ = false;
};

// A box with a tick and a caption beside it: a button that stays checked
// until pressed again, drawn as desktop users know a yes-or-no choice.
class cwCheckBox : public cwButton {
 public:
  cwCheckBox() : cwButton("cwCheckBox") { Checkable = true; }
  void W_Paint(DrawingContext& ctx, double w, double h) override;
};

class cwLabel : public Widget {
 public:
  cwLabel() : Widget("cwLabel") {}
  Property<std::string> Caption{*this};
  Property<int> Alignment{*this, 0};  // 0 left, 1 right, 2 centre
  Property<bool> WordWrap{*this, false};
  void W_Paint(DrawingContext& ctx, double w, double h) override;
  void W_ReportState(WidgetState& state) const override { state.caption = Caption; }
};

// A border with an optional caption, to group other widgets.
class cwFrame : public Widget {
 public:
  cwFrame() : Widget("cwFrame") {}
  Property<std::string> Caption{*this};
  void W_Paint(DrawingContext& ctx, double w, double h) override;
  void W_ReportState(WidgetState& state) const override { state.caption = Caption; }
};

// A picture of the image cache, stretched to the widget or kept in shape.
class cwImage : public Widget {
 public:
  cwImage() : Widget("cwImage") {}
  Property<std::string> PictureKey{*this};
  Property<bool> Stretch{*this, false};
  void W_Paint(DrawingContext& ctx, double w, double h) override;
};

}  // namespace qds
