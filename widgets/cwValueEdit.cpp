#include "widgets/cwValueEdit.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

std::unique_ptr<Widget> MakeValueEditField() {
  return std::make_unique<cwValueEdit>();
}

cwValueEdit::cwValueEdit() : cwTextBox("cwValueEdit") {
  setInputFilter(1);  // digits
  setAllowedChars("-.,");
  Alignment = TextAlign::Right;  // numbers line up on the right
  Change = [this] {
    if (!settingText_ && TextTyped) TextTyped();
  };
}

std::string cwValueEdit::EditText() const {
  std::string text = Text();
  std::replace(text.begin(), text.end(), ',', '.');
  return text;
}

void cwValueEdit::setEditText(const std::string& text) {
  settingText_ = true;
  setText(text);
  SelectAll();
  settingText_ = false;
}

QDS_JOIN_WIDGET_REGISTRY(cwValueEdit);

}  // namespace qds
