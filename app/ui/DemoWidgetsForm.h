#pragma once
// A form that shows each stock widget, to look at and to take pictures of.

#include "platform/ui/Form.h"

namespace qds {

class cwLabel;

class DemoWidgetsForm : public cfForm {
 public:
  DemoWidgetsForm();
  int Clicks = 0;

 private:
  cwLabel* status_ = nullptr;
};

}  // namespace qds
