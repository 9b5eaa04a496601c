#pragma once
// What a widget needs of the box a value is typed into. The slider makes
// one through MakeValueEditField and only talks to it through this, so
// the kit's text box can take the place of the small field used now.

#include <functional>
#include <memory>
#include <string>

#include "platform/ui/Widget.h"

namespace qds {

class ValueEditField {
 public:
  virtual ~ValueEditField() = default;
  virtual Widget& EditWidget() = 0;
  virtual std::string EditText() const = 0;
  // Replaces the text; the next character typed replaces it all.
  virtual void setEditText(const std::string& text) = 0;
  // After each change the user types.
  std::function<void()> TextTyped;
};

// A field for a number: digits, a sign and a decimal point. The widget
// answers to ValueEditField.
std::unique_ptr<Widget> MakeValueEditField();

}  // namespace qds
