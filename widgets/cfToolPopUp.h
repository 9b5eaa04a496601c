#pragma once
// A frameless window around one tool widget that stays open beside the
// window it belongs to, without a caption strip. It keeps the last widget
// it showed: asked to show another of the same type, it shows that one
// again as the user left it.
//
// Hidden, not closed, is how it goes away: by the desktop's close, or when
// tmrPopUp finds it has lost its purpose, which is when
//  - the form it was shown over is no longer open, or
//  - since it was shown, the mouse was pressed on another of the program's
//    windows (menus and drop-downs excepted: those may be its widget's own).
// Unload lets the widget go.

#include <memory>
#include <string>
#include <vector>

#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"

namespace qds {

class cwModalBg;

class cfToolPopUp : public cfForm {
 public:
  cfToolPopUp();

  // How often tmrPopUp looks, in milliseconds.
  static constexpr double kWatchMs = 200;

  // Shows `widget`, `width` by `height` at (x, y) of the screen, scaled
  // by the user's interface zoom; when the widget shown last is of the
  // same type, that one is shown again instead and `widget` is dropped.
  // Answers the widget shown.
  Widget& ShowWidget(std::unique_ptr<Widget> widget, double x, double y, double width, double height);
  // The type of the widget held; empty when none.
  const std::string& WidgetTypeName() const { return widgetTypeName_; }
  cwModalBg* Background() const;
  Widget* Hosted() const;
  // Closes and lets the widget go: the next ShowWidget builds anew.
  void Unload();

  Timer tmrPopUp{*this};

  void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) override;
  bool Form_QueryUnload(int unloadMode) override;

 private:
  void tmrPopUp_Timer();
  bool LostPurpose() const;
  std::string widgetTypeName_;
  cfForm* owner_ = nullptr;
  unsigned long shownOnEvent_ = 0;
};

}  // namespace qds
