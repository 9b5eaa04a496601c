#pragma once
// A form that shows each stock widget, to look at and to take pictures of.

#include "platform/ui/Form.h"

namespace qds {

class cwStatusBar;

class DemoWidgetsForm : public cfForm {
 public:
  DemoWidgetsForm();
  int Clicks = 0;
  // Asks "Keep the changes?" in a modal dialog; the answer shows in the
  // status bar.
  void Ask();

 private:
  cwStatusBar* status_ = nullptr;
};

}  // namespace qds
