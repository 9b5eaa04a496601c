#pragma once
// A form that shows each stock widget, to look at and to take pictures of.

#include <memory>

#include "platform/ui/Form.h"

namespace qds {

class cfToolPopUp;
class cwStatusBar;

class DemoWidgetsForm : public cfForm {
 public:
  DemoWidgetsForm();
  ~DemoWidgetsForm() override;
  int Clicks = 0;
  // Changed of the opacity slider, counted from the start.
  int OpacityChanges = 0;
  // Asks "Keep the changes?" in a modal dialog; the answer shows in the
  // status bar.
  void Ask();

 private:
  // The tool windows and the message box, one button each; what they
  // answer shows in the status bar.
  void AddToolWindowButtons();
  cwStatusBar* status_ = nullptr;
  std::unique_ptr<cfToolPopUp> popUp_;
};

}  // namespace qds
