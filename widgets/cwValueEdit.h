#pragma once
// The field a number is typed into: the kit's text box on one line,
// taking digits, a sign and a decimal point. Return and Escape climb to
// its owner, who decides what typing means.

#include <string>

#include "widgets/ValueEditField.h"
#include "widgets/cwTextBox.h"

namespace qds {

class cwValueEdit : public cwTextBox, public ValueEditField {
 public:
  cwValueEdit();
  Widget& EditWidget() override { return *this; }
  // Either mark reads as the decimal point.
  std::string EditText() const override;
  // All of it selected, so the first key replaces it.
  void setEditText(const std::string& text) override;

 private:
  bool settingText_ = false;  // the owner sets it: nothing was typed
};

}  // namespace qds
