#pragma once
// A ruler along the top or the left edge of the design: main ticks with
// their numbers, finer lines between them, and a mark where the mouse is.
// The numbers run from 0 to Range over the ruler's length, so that the
// drawing reads in the units of an icon box whatever its size on screen.

#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"

namespace qds {

class cwRuler : public Widget {
 public:
  cwRuler();

  // Along the left edge, numbers counting downwards.
  Property<bool> Vertical{*this, false};
  // The value at the far end of the ruler.
  Property<double> Range{*this, 256};
  // Main ticks over the length (a short ruler draws half as many), each
  // with its number when ShowDigits, and finer lines between them when
  // ShowSubline.
  Property<int> LinesCount{*this, 8};
  Property<bool> ShowDigits{*this, true};
  Property<bool> ShowSubline{*this, true};
  // Where the mark stands, in units along the ruler; -1 hides it.
  double Pos() const { return pos_; }
  void setPos(double pos);

  // Below this length the division is coarser, so that numbers do not run
  // into each other.
  static constexpr double kShortRuler = 140;
  static constexpr int kInk = 0x808080;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  void W_ReportState(WidgetState& state) const override;

 private:
  double pos_ = -1;
};

}  // namespace qds
