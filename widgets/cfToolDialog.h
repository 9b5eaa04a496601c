#pragma once
// A modal window around one tool widget, with a caption strip of its own.
// Its sizes and place are given in logical units and scaled by the user's
// interface zoom, so window, content and position grow together.
//
// In the dialog, Return presses the hosted widget's Default button (unless
// the focused widget takes Return itself) and Escape its Cancel button, or
// closes the dialog as cancelled when it has none. Alt and PrintScreen, on
// which some builds of the studio refresh the window's widgets, do nothing
// here.

#include <memory>
#include <string>
#include <vector>

#include "platform/ui/Form.h"

namespace qds {

class cwButton;
class cwModalBg;

// What a tool dialog answers; the hosted widget may answer others.
namespace ToolResult {
constexpr int Ok = 0, Cancel = 1;
}

class cfToolDialog : public cfForm {
 public:
  cfToolDialog();

  static constexpr double kCaptionHeight = 30;

  // Picture of the image cache shown as the window's icon and in the strip.
  std::string ImageKey;

  // Shows `widget` under a strip titled `title`, `width` by `height` at
  // (x, y) of the screen, and returns when the dialog has closed, with
  // `result` what the widget closed it with (ToolResult::Cancel when the
  // user closed it otherwise). The widget lives on in the dialog until the
  // next ShowWidget, so the caller may read it afterwards.
  Widget& ShowWidget(std::unique_ptr<Widget> widget, const std::string& title, double x, double y,
                     double width, double height, int& result);
  // Where (x, y) a dialog of that size is centred over the form it would
  // open over, for ShowWidget.
  void CentredPosition(double width, double height, double& x, double& y) const;

  // Ends the dialog that hosts `hosted` with `result`; nothing when it is
  // hosted by none.
  static void CloseWith(Widget& hosted, int result);

  cwModalBg* Background() const;
  Widget* Hosted() const;
  // The form it was opened over, which hears the hosted widget's events.
  cfForm* Owner() const { return owner_; }

  void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) override;
  bool Form_KeyDown(int keyCode, int shift) override;
  bool Form_QueryUnload(int unloadMode) override;

 private:
  void FocusFirstInput();
  int result_ = ToolResult::Cancel;
  cfForm* owner_ = nullptr;
};

// A shown button of the hosted tree marked Default (or Cancel); none when
// there is no such button.
cwButton* DefaultButtonOf(Widget& root, bool cancel);

}  // namespace qds
