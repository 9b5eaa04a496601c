#include "platform/ui/Widget.h"

#include "platform/Error.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"

namespace qds {

void Widgets::AddWidget(std::unique_ptr<Widget> widget, std::string_view key) {
  widget->parent_ = &owner_;
  widget->key_ = std::string(key);
  items_.Add(std::shared_ptr<Widget>(std::move(widget)), key);
  owner_.Refresh();
}

void Widgets::Remove(Widget& widget) {
  for (int i = 0; i < items_.Count(); ++i) {
    if (items_.Item(i).get() != &widget) continue;
    std::shared_ptr<Widget> gone = items_.Item(i);
    if (cfForm* form = owner_.Form()) form->DropReferencesTo(*gone);
    items_.RemoveAt(i);
    gone->parent_ = nullptr;
    owner_.Refresh();
    // Events for it may still be on their way: it goes with the turn. Its
    // timers, and those of the widgets in it, end now, even one due in
    // this very turn.
    if (PlatformRoot* root = PlatformRoot::Current()) {
      const auto stop = [root](auto& self, const Widget& w) -> void {
        root->KillTimersOf(&w);
        for (int c = 0; c < w.Children().Count(); ++c) self(self, w.Children().Item(c));
      };
      stop(stop, *gone);
      root->DeferDelete(std::move(gone));
    }
    return;
  }
}

Widget* Widget::FindWidget(std::string_view path) {
  Widget* at = this;
  while (at && !path.empty()) {
    const std::size_t slash = path.find('/');
    const std::string_view key = path.substr(0, slash);
    at = at->children_.Exists(key) ? &at->children_.Item(key) : nullptr;
    path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
  }
  return at == this ? nullptr : at;
}

void Widgets::Remove(std::string_view key) {
  Remove(Item(key));
}

Widget::Widget(std::string typeName) : typeName_(std::move(typeName)), children_(*this) {}

Widget::~Widget() {
  if (PlatformRoot* root = PlatformRoot::Current()) root->KillTimersOf(this);
}

cfForm* Widget::Form() const {
  const Widget* w = this;
  while (w->parent_) w = w->parent_;
  return dynamic_cast<cfForm*>(const_cast<Widget*>(w));
}

void Widget::Move(double left, double top, double width, double height) {
  const bool resized = width != width_ || height != height_;
  // A window moved on the desktop keeps its picture; a widget leaves a gap.
  const bool repaint = parent_ || resized;
  if (repaint) Refresh();
  left_ = left, top_ = top, width_ = width, height_ = height;
  if (repaint) Refresh();
  if (resized) RunHandler(typeName_ + ":W_Resize", HandlerMode::Report, [&] { W_Resize(); });
}

void Widget::FormPosition(double& x, double& y) const {
  x = 0, y = 0;
  for (const Widget* w = this; w && w->parent_; w = w->parent_) x += w->left_, y += w->top_;
}

void Widget::setVisible(bool v) {
  if (v == visible_) return;
  visible_ = v;
  if (!v) {
    if (cfForm* form = Form()) form->DropReferencesTo(*this);
  }
  if (parent_) parent_->Refresh();
}

void Widget::setEnabled(bool v) {
  if (v == enabled_) return;
  enabled_ = v;
  if (!v) {
    if (cfForm* form = Form()) form->DropReferencesTo(*this);
  }
  Refresh();
}

bool Widget::ShownInTree() const {
  for (const Widget* w = this; w; w = w->parent_) {
    if (!w->visible_) return false;
  }
  return true;
}

bool Widget::EnabledInTree() const {
  for (const Widget* w = this; w; w = w->parent_) {
    if (!w->enabled_) return false;
  }
  return true;
}

void Widget::Refresh() {
  if (refreshLocked_) return;
  cfForm* form = Form();
  if (!form) return;
  if (form == this) {
    form->Invalidate();
    return;
  }
  double x, y;
  FormPosition(x, y);
  form->InvalidateRect(x, y, Width(), Height());
}

void Widget::SetFocus() {
  if (cfForm* form = Form(); form && CanFocus && ShownInTree() && EnabledInTree()) form->SetFocusTo(this);
}

bool Widget::HasFocus() const {
  const cfForm* form = Form();
  return form && form->FocusWidget() == this;
}

void Widget::SetCapture() {
  if (cfForm* form = Form()) form->capture_ = this;
}

void Widget::ReleaseCapture() {
  if (cfForm* form = Form(); form && form->capture_ == this) form->capture_ = nullptr;
}

bool Widget::HasCapture() const {
  const cfForm* form = Form();
  return form && form->CaptureWidget() == this;
}

bool Widget::MouseOver() const {
  const cfForm* form = Form();
  return form && form->HoverWidget() == this;
}

int Widget::MouseButtons() const {
  const cfForm* form = Form();
  return form ? form->buttons_ : 0;
}

void Widget::StartDrag(const std::string& dataKey, const std::string& pictureKey) {
  if (PlatformRoot* root = PlatformRoot::Current()) root->StartDrag(*this, dataKey, pictureKey);
}

void Widget::RaiseBubblingEvent(const std::string& name, const std::vector<Value>& args) {
  cfForm* form = Form();
  if (!form) return;  // not on a form: nobody to hear it
  for (Widget* w = parent_; w && w != form; w = w->parent_) {
    RunHandler(w->typeName_ + ":W_BubblingEvent", HandlerMode::Report,
               [&] { w->W_BubblingEvent(*this, name, args); });
  }
  RunHandler(form->typeName_ + ":Form_BubblingEvent", HandlerMode::Report,
             [&] { form->Form_BubblingEvent(*this, name, args); });
}

}  // namespace qds
