#pragma once
// A form that shows each stock widget, to look at and to take pictures of.

#include "platform/ui/Form.h"

namespace qds {

class cwStatusBar;

class DemoWidgetsForm : public cfForm {
 public:
  DemoWidgetsForm();
  int Clicks = 0;
  void W_Resize() override;

 private:
  cwStatusBar* status_ = nullptr;
};

}  // namespace qds
