#pragma once
// The small field a number is typed into, until the kit's text box takes
// its place: it takes digits, a sign and a decimal point, Backspace takes
// the last one away, and any other key climbs to its owner (Return and
// Escape are the owner's to handle).

#include <string>

#include "widgets/ValueEditField.h"

namespace qds {

class cwValueEdit : public Widget, public ValueEditField {
 public:
  cwValueEdit();
  Widget& EditWidget() override { return *this; }
  std::string EditText() const override { return text_; }
  void setEditText(const std::string& text) override;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_KeyPress(int keyAscii) override;
  bool W_KeyDown(int keyCode, int shift) override;
  void W_ReportState(WidgetState& state) const override { state.text = text_; }

 private:
  void Typed(std::string text);
  std::string text_;
  bool replaceAll_ = false;  // the text is as given, and the first key replaces it
};

}  // namespace qds
