#pragma once
// The nine-point picker of a layer's snap position: a 3 by 3 grid of
// cells, counted row by row from 1 at the top left to 9 at the bottom
// right; 5 is the centre and 0 a free position. The cell under the mouse
// lights up, and a release over a cell chooses it; a release over the cell
// already chosen frees the layer instead.

#include <functional>

#include "platform/ui/Widget.h"

namespace qds {

class cwPosQuad : public Widget {
 public:
  cwPosQuad();

  int CurPos() const { return curPos_; }
  // Anything outside 0..9 is taken as 0. Tells nobody.
  void setCurPos(int cell);
  // The cell of a point, 0 outside the grid.
  int GetPos9(double x, double y) const;

  // The cell chosen by the mouse, 0 when the chosen cell was clicked again;
  // also bubbled as "Click".
  std::function<void(int cell)> Click;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_MouseMove(int button, int shift, double x, double y) override;
  bool W_MouseUp(int button, int shift, double x, double y) override;
  void W_MouseLeave() override;
  void W_ReportState(WidgetState& state) const override;
  // The middle of a cell, by its number "1" to "9".
  WidgetPoint W_ItemPoint(const std::string& key) override;

 private:
  void CellRect(int cell, double& x, double& y, double& w, double& h) const;
  void setHover(int cell);

  int curPos_ = 0;
  int hover_ = 0;
  bool pressed_ = false;
};

}  // namespace qds
