#pragma once
// One of the main window's views. The window makes a layout of named panels
// for each view ("pnlMain", "pnlStatusBar", ...); the view fills them once,
// follows the window's size, and is entered through SwitchToView, whoever
// asks for the change.

#include <functional>
#include <string>

#include "app/modTexts.h"
#include "platform/ui/Widget.h"

namespace qds {

class cvView {
 public:
  virtual ~cvView() = default;
  // Fills the panels of `layout`, found by their keys.
  virtual void WidgetInit(Widget& layout) = 0;
  // The window's new size, in logical units; told to the active view only.
  virtual void HandleResize(double width, double height) {
    (void)width;
    (void)height;
  }
  // Enters the view: shows its layout through Activate, then brings the
  // view up to date with what other views changed.
  virtual void SwitchToView() {
    if (Activate) Activate();
  }
  // Set by the window: shows this view's layout and hides the others.
  std::function<void()> Activate;
};

// What the views build their panels with: a widget of class W added under
// `key` at its place, and the tip of a text key (its tool tip, else its text).
template <class W>
W& Place(Widget& parent, const char* key, double x, double y, double w, double h) {
  W& widget = parent.Children().Add<W>(key);
  widget.Move(x, y, w, h);
  return widget;
}
inline std::string TipOf(const char* key) {
  const cLanguage t = LanguageText(key);
  return t.Tooltip.empty() ? t.Text : t.Tooltip;
}

}  // namespace qds
