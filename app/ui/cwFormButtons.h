#pragma once
// The three window buttons of a frameless window: minimise, maximise or
// restore, and close. Their clicks go up the tree as "W_Click" from
// btnMin, btnMax and btnFormClose; the window decides what they do.

#include "platform/ui/Widget.h"

namespace qds {

class cwButton;

class cwFormButtons : public Widget {
 public:
  cwFormButtons();
  static constexpr double kButtonWidth = 40;
  // The maximise button shows what a click will do: "Maximize" while the
  // window is normal, "Window" (restore) while it is maximised.
  bool Maximize() const { return maximized_; }
  void setMaximize(bool maximized);
  cwButton* btnMin = nullptr;
  cwButton* btnMax = nullptr;
  cwButton* btnFormClose = nullptr;
  void W_Resize() override;

 private:
  bool maximized_ = false;
};

}  // namespace qds
