#pragma once
// One choice of a group: checking it unchecks the other option buttons of
// the same Group under the same parent, and pressing a checked one leaves
// it checked, so a group always holds at most one choice. Drawn as the
// round choice desktop users know.

#include <string>

#include "platform/stock/StockWidgets.h"

namespace qds {

class cwOptionButton : public cwButton {
 public:
  cwOptionButton();

  // Option buttons of one parent with the same group exclude each other.
  std::string Group;
  // Checks this one and unchecks its siblings; tells nobody, as a change
  // from code should not run the handlers.
  void Choose();

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseUp(int button, int shift, double x, double y) override;
  bool W_KeyDown(int keyCode, int shift) override;
  bool W_AccessKey(char letter) override;
  void W_ReportState(WidgetState& state) const override;
};

}  // namespace qds
