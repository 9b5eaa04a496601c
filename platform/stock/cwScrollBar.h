#pragma once
// Vertical and horizontal scroll bars: a value from Min to Max, moved by
// the arrows (SmallChange), the track (LargeChange), the thumb and the
// wheel. Change is told whenever the value moves.

#include <functional>

#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"

namespace qds {

class cwScrollBar : public Widget {
 public:
  explicit cwScrollBar(bool vertical);
  // A new range holds the value inside it, and the thumb is drawn anew.
  Property<int> Min{*this, 0, [this] { setValue(value_); }};
  Property<int> Max{*this, 100, [this] { setValue(value_); }};
  int SmallChange = 1;
  Property<int> LargeChange{*this, 10};
  int Value() const { return value_; }
  void setValue(int v);  // held to Min..Max
  std::function<void()> Change;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_MouseMove(int button, int shift, double x, double y) override;
  bool W_MouseUp(int button, int shift, double x, double y) override;
  bool W_MouseWheel(int delta, int shift, double x, double y) override;
  void W_ReportState(WidgetState& state) const override {
    state.value = value_, state.min = Min, state.max = Max;
  }

 private:
  // Along the bar: its length, the arrows' size, and the thumb.
  double Length() const;
  double Arrow() const;
  void Thumb(double& start, double& size) const;
  double Along(double x, double y) const { return vertical_ ? y : x; }

  bool vertical_;
  int value_ = 0;
  bool dragging_ = false;
  double grip_ = 0;  // where the thumb was taken, from its start
};

class cwVScrollBar : public cwScrollBar {
 public:
  cwVScrollBar() : cwScrollBar(true) {}
};

class cwHScrollBar : public cwScrollBar {
 public:
  cwHScrollBar() : cwScrollBar(false) {}
};

// A bar of text along the bottom of a form; what its owner draws comes on top.
class cwStatusBar : public Widget {
 public:
  cwStatusBar() : Widget("cwStatusBar") {}
  Property<std::string> Caption{*this};
  std::function<void(DrawingContext& ctx, double w, double h)> OwnerDraw;
  void W_Paint(DrawingContext& ctx, double w, double h) override;
  void W_ReportState(WidgetState& state) const override { state.caption = Caption; }
};

}  // namespace qds
