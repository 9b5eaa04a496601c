#pragma once
// A value of a widget that the widget shows: setting it to something new
// repaints the widget, so no caller has to remember to. Read it as the
// value itself, or with () where a member of the value is wanted.

#include <functional>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/ui/Widget.h"

namespace qds {

template <class T>
class Property {
 public:
  // `changed`, when given, runs after a new value is set and before the
  // repaint (a scroll bar holding its value inside a new range).
  explicit Property(Widget& owner, T value = T(), std::function<void()> changed = {})
      : owner_(owner), value_(std::move(value)), changed_(std::move(changed)) {}
  Property(const Property&) = delete;
  // Takes the other's value only; each stays with its own widget.
  Property& operator=(const Property& other) { return *this = other.value_; }

  Property& operator=(T value) {
    if (value == value_) return *this;
    value_ = std::move(value);
    if (changed_) changed_();
    owner_.Refresh();
    return *this;
  }
  operator const T&() const { return value_; }
  const T& operator()() const { return value_; }
  // Text goes straight to the drawing calls that take a view.
  template <class U = T>
  requires std::is_convertible_v<const U&, std::string_view>
  operator std::string_view() const { return value_; }
  friend bool operator==(const Property& p, const T& value) { return p.value_ == value; }

 private:
  Widget& owner_;
  T value_;
  std::function<void()> changed_;
};

}  // namespace qds
