#pragma once
// Asks for a new name in a tool dialog: a text box with the present name,
// Ok and Cancel. A name of nothing but blanks is refused with a message
// and the dialog stays open, so the user can put it right.

#include <functional>
#include <string>

#include "platform/ui/Widget.h"

namespace qds {

class cwButton;
class cwTextBox;

class cwRename : public Widget {
 public:
  cwRename();

  // The room the dialog gives it.
  static constexpr double kWidth = 300, kHeight = 90;

  // The name shown when the dialog opens, selected so typing replaces it.
  void setName(const std::string& name);
  // The name as it stands in the box, without surrounding blanks.
  std::string Name() const;

  // Ok was pressed on an acceptable name; the dialog closes after it.
  std::function<void(const std::string& newName)> NameChanged;

  void W_Resize() override;

 private:
  void btnOk_Click();
  cwTextBox* txtName_ = nullptr;
  cwButton* btnOk_ = nullptr;
  cwButton* btnCancel_ = nullptr;
};

}  // namespace qds
