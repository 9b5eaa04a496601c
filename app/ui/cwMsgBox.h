#pragma once
// The program's message box: a wrapped text over a row of buttons, with
// check boxes to stop the question coming again and to answer it for all
// the files of a run. It lives in a tool dialog (ShowMsgBox).

#include <string>

#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"

namespace qds {

class cwButton;
class cwLabel;

// The buttons a box shows, and what it answers.
namespace MsgStyle {
constexpr int Ok = 0, YesNoCancel = 3, YesNo = 4, Critical = 16;  // Critical: Ok alone, an error report
}
namespace MsgResult {
// YesToAll: Yes with "use for all" ticked. No with it ticked answers Cancel,
// so that a run over many files stops there.
constexpr int Ok = 1, Cancel = 2, YesToAll = 5, Yes = 6, No = 7;
}  // namespace MsgResult

class cwMsgBox : public Widget {
 public:
  cwMsgBox();

  static constexpr double kWidth = 300;

  // The text of lblCaption.
  const std::string& Caption() const;
  void setCaption(const std::string& text);
  int Style() const { return style_; }
  // Shows the style's buttons; the answer until one is pressed is that of
  // Escape: Ok, Cancel, or No for a Yes/No question.
  void setStyle(int style);
  int MsgBoxResult() const { return result_; }
  bool ShowMsgCheckBox() const;
  void setShowMsgCheckBox(bool show);
  bool ShowUseForAll() const;
  void setShowUseForAll(bool show);
  // The user ticked "do not show again".
  bool NoMessageTicked() const;

  // The height the box needs at `width` to show its text and check boxes.
  double NeededHeight(double width = kWidth) const;

  void W_Resize() override;

 private:
  cwButton& Button(const char* key) const;
  void Answer(int result);
  cwLabel* caption_ = nullptr;
  int style_ = -1;
  int result_ = 1;
};

}  // namespace qds
