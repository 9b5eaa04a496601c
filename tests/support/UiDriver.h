#pragma once
// Drives a form like a user on the headless backend: click a widget, type,
// press keys, and look at the form.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Bytes.h"
#include "platform/DrawingSurface.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"

class UiDriver {
 public:
  UiDriver() : backend_(new qds::HeadlessBackend), root_(std::unique_ptr<qds::UiBackend>(backend_)) {}
  qds::PlatformRoot& Root() { return root_; }
  qds::HeadlessBackend& Backend() { return *backend_; }

  void Click(qds::Widget& w, int button = qds::Button::Left, int shift = 0) {
    double x, y;
    Centre(w, x, y);
    Push(qds::UiEvent::Type::MouseMove, *w.Form(), 0, shift, 0, x, y);
    Push(qds::UiEvent::Type::MouseDown, *w.Form(), button, shift, 0, x, y);
    Push(qds::UiEvent::Type::MouseUp, *w.Form(), button, shift, 0, x, y);
    root_.DoEvents();
  }
  // Queues a click without running the loop: how a test acts inside a
  // modal dialog, whose own loop takes the events.
  void PushClick(qds::Widget& w) {
    double x, y;
    Centre(w, x, y);
    Push(qds::UiEvent::Type::MouseMove, *w.Form(), 0, 0, 0, x, y);
    Push(qds::UiEvent::Type::MouseDown, *w.Form(), qds::Button::Left, 0, 0, x, y);
    Push(qds::UiEvent::Type::MouseUp, *w.Form(), qds::Button::Left, 0, 0, x, y);
  }
  // One mouse event at a device point of the form; presses use the left button.
  void Mouse(qds::cfForm& form, qds::UiEvent::Type t, double x, double y) {
    Push(t, form, t == qds::UiEvent::Type::MouseMove ? 0 : qds::Button::Left, 0, 0, x, y);
    root_.DoEvents();
  }
  void ClickAt(qds::cfForm& form, double x, double y) {
    Push(qds::UiEvent::Type::MouseDown, form, qds::Button::Left, 0, 0, x, y);
    Push(qds::UiEvent::Type::MouseUp, form, qds::Button::Left, 0, 0, x, y);
    root_.DoEvents();
  }
  void Wheel(qds::cfForm& form, int delta, double x, double y) {
    Push(qds::UiEvent::Type::Wheel, form, delta, 0, 0, x, y);
    root_.DoEvents();
  }
  void Press(qds::cfForm& form, int keyCode, int shift = 0) {
    Push(qds::UiEvent::Type::KeyDown, form, 0, shift, keyCode, 0, 0);
    Push(qds::UiEvent::Type::KeyUp, form, 0, shift, keyCode, 0, 0);
    root_.DoEvents();
  }
  // One key press per character, as its code point.
  void Type(qds::cfForm& form, const std::string& text) {
    for (char32_t c : qds::DecodeUtf8(text))
      Push(qds::UiEvent::Type::KeyPress, form, 0, 0, static_cast<int>(c), 0, 0);
    root_.DoEvents();
  }
  // Runs one act per idle turn of a modal dialog's loop, as a user acts
  // while it waits; a dialog still open when they run out makes the loop
  // complain.
  void WhileOpen(std::vector<std::function<void()>> acts) {
    auto list = std::make_shared<std::vector<std::function<void()>>>(std::move(acts));
    backend_->OnIdle = [list, next = std::size_t{0}]() mutable {
      if (next < list->size()) (*list)[next++]();
    };
  }
  // A key pressed and let go on the form, queued for the loop.
  void PushKey(qds::cfForm& form, int keyCode) {
    Push(qds::UiEvent::Type::KeyDown, form, 0, 0, keyCode, 0, 0);
    Push(qds::UiEvent::Type::KeyUp, form, 0, 0, keyCode, 0, 0);
  }
  // A copy of what the form shows now; later painting leaves it alone.
  qds::SurfacePtr Screenshot(qds::cfForm& form) {
    root_.DoEvents();
    return form.Surface()->Copy();
  }

 private:
  void Centre(qds::Widget& w, double& x, double& y) {
    w.FormPosition(x, y);
    const double zoom = w.Form()->Zoom();
    x = (x + w.Width() / 2) * zoom;
    y = (y + w.Height() / 2) * zoom;
  }
  void Push(qds::UiEvent::Type t, qds::cfForm& form, int button, int shift, int key, double x, double y) {
    backend_->Push({t, &form, button, shift, key, x, y});
  }
  qds::HeadlessBackend* backend_;
  qds::PlatformRoot root_;
};
