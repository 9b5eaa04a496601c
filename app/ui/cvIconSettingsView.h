#pragma once
// The view of the settings. Its layout of panels is made by the main window; the
// panels stay empty until the view's own widgets are built.

#include "widgets/cvView.h"

namespace qds {

class cvIconSettingsView : public cvView {
 public:
  void WidgetInit(Widget& layout) override { (void)layout; }
};

}  // namespace qds
