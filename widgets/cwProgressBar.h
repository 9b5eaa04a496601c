#pragma once
// How far some work has come: the done part of the bar from Min to Value,
// with a caption across the middle; or, for work of unknown length, a
// block that runs across again and again (the marquee).

#include <string>

#include "platform/ui/PlatformRoot.h"
#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"
#include "widgets/ValueRange.h"

namespace qds {

enum class ProgressStyle { Normal, Marquee };

class cwProgressBar : public Widget {
 public:
  cwProgressBar();

  double Min() const { return range_.min; }
  void setMin(double v);
  double Max() const { return range_.max; }
  void setMax(double v);
  double Value() const { return range_.value; }
  void setValue(double v);  // held to Min..Max
  Property<std::string> Caption{*this};
  Property<double> BorderRadius{*this, 3};
  // Back to the start: Value at Min and no caption.
  void Clear();

  ProgressStyle Style() const { return style_; }
  void setStyle(ProgressStyle style);
  // Linux desktops have no one way for a window to show progress on its
  // task bar entry, so this is kept for the callers that set it and
  // changes nothing.
  bool ReflectInTaskBar = false;

  // The marquee's block is a quarter of the bar wide; each tick moves it a
  // twentieth of the width, and it comes round once it has left the bar
  // (1.25 widths of way).
  static constexpr double kMarqueeIntervalMs = 40;
  static constexpr int kMarqueeTicks = 25;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  void W_ReportState(WidgetState& state) const override;

 private:
  ValueRange range_;
  ProgressStyle style_ = ProgressStyle::Normal;
  int marqueeTick_ = 0;
  Timer tmrMarquee_{*this};
};

}  // namespace qds
