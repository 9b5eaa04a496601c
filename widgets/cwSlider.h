#pragma once
// A value between Min and Max, set by pressing or dragging on a track with
// a knob, by the wheel and the arrow keys one Step at a time, or by typing
// it: a press on the value beside the track opens a field, and what is
// typed there counts after a short pause, at once on Return; Escape puts
// the value back as it was before the typing.

#include <functional>
#include <string>

#include "platform/ui/PlatformRoot.h"
#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"
#include "widgets/ValueRange.h"

namespace qds {

class ValueEditField;

class cwSlider : public Widget {
 public:
  cwSlider();

  // Shown after the number ("px", "%").
  Property<std::string> Unit{*this};
  double Min() const { return range_.min; }
  void setMin(double v);
  double Max() const { return range_.max; }
  void setMax(double v);
  double Value() const { return range_.value; }
  // Held to Min..Max; Changed follows when the value is a new one.
  void setValue(double v);
  // The wheel and the arrow keys move by it; a value taken from the track
  // is a whole number of steps from Min (none when 0).
  double Step = 1;

  // The value changed, by the user or by code; also bubbled.
  std::function<void()> Changed;
  // The knob was let go after a drag: the moment a change is complete.
  std::function<void()> MouseUp;
  bool Dragging() const { return dragging_; }

  bool Typing() const { return edit_ != nullptr; }
  static constexpr double kTypingPauseMs = 500;

  void W_Resize() override;
  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_MouseMove(int button, int shift, double x, double y) override;
  bool W_MouseUp(int button, int shift, double x, double y) override;
  bool W_MouseWheel(int delta, int shift, double x, double y) override;
  bool W_KeyDown(int keyCode, int shift) override;
  void W_MouseEnter() override { Refresh(); }
  void W_MouseLeave() override { Refresh(); }
  void W_BubblingEvent(Widget& source, const std::string& name, const std::vector<qds::Value>& args) override;
  void W_ReportState(WidgetState& state) const override;
  // "knob", and "value" (the number, where typing starts).
  WidgetPoint W_ItemPoint(const std::string& key) override;

 private:
  // The number as shown, with its unit.
  std::string ShownValue() const;
  double LabelWidth() const;
  double KnobRadius() const;
  void Track(double& left, double& right) const;
  double XOfValue() const;
  double ValueAtX(double x) const;
  void StartTyping();
  // What is typed, if it is a number, becomes the value.
  void ApplyTyped();
  void EndTyping(bool keepFocus);

  ValueRange range_;
  bool dragging_ = false;
  ValueEditField* edit_ = nullptr;
  double valueBeforeTyping_ = 0;
  Timer tmrTyped_{*this};
};

}  // namespace qds
