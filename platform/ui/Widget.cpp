#include "platform/ui/Widget.h"

#include <algorithm>

#include "platform/Error.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"

namespace qds {

void Widgets::AddWidget(std::unique_ptr<Widget> widget, std::string_view key) {
  widget->parent_ = &owner_;
  widget->key_ = std::string(key);
  Widget& added = *widget;
  items_.Add(std::shared_ptr<Widget>(std::move(widget)), key);
  owner_.Refresh();
  // Its size, and the rules set on it, are heard in the next layout pass.
  added.NeedLayout();
}

void Widgets::Remove(Widget& widget) {
  for (int i = 0; i < items_.Count(); ++i) {
    if (items_.Item(i).get() != &widget) continue;
    std::shared_ptr<Widget> gone = items_.Item(i);
    if (cfForm* form = owner_.Form()) form->DropReferencesTo(*gone);
    items_.RemoveAt(i);
    gone->parent_ = nullptr;
    owner_.Refresh();
    if (gone->dock_ != Dock::None || owner_.box_ != BoxDirection::None) owner_.NeedLayout();
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
  Place(left, top, width, height);
  MeasureAnchors();
  // A docked child or one in a box makes room for the others.
  if (resized && parent_ && (dock_ != Dock::None || parent_->box_ != BoxDirection::None))
    parent_->NeedLayout();
}

void Widget::Place(double left, double top, double width, double height) {
  if (left == left_ && top == top_ && width == width_ && height == height_) return;
  const bool resized = width != width_ || height != height_;
  // A window moved on the desktop keeps its picture; a widget leaves a gap.
  const bool repaint = parent_ || resized;
  if (repaint) Refresh();
  left_ = left, top_ = top, width_ = width, height_ = height;
  if (repaint) Refresh();
  if (resized) NeedLayout();
}

void Widget::MeasureAnchors() {
  if (!parent_) return;
  anchorRight_ = parent_->width_ - (left_ + width_);
  anchorBottom_ = parent_->height_ - (top_ + height_);
}

void Widget::NeedLayout() {
  layoutDue_ = true;
  if (cfForm* form = Form()) form->layoutWanted_ = true;
}

void Widget::setDock(Dock dock) {
  if (dock == dock_) return;
  dock_ = dock;
  if (parent_) parent_->NeedLayout();
}

void Widget::setAnchors(int edges) {
  anchors_ = edges;
  MeasureAnchors();
}

void Widget::setBoxLayout(BoxDirection direction, double padding, double spacing) {
  // Unchanged, it asks for nothing: a W_Resize may set it on every pass.
  if (direction == box_ && padding == boxPadding_ && spacing == boxSpacing_) return;
  box_ = direction, boxPadding_ = padding, boxSpacing_ = spacing;
  NeedLayout();
}

void Widget::setBoxHint(double size, double stretch) {
  size = std::max(0.0, size), stretch = std::max(0.0, stretch);
  if (size == boxSize_ && stretch == boxStretch_) return;
  boxSize_ = size, boxStretch_ = stretch;
  if (parent_) parent_->NeedLayout();
}

void Widget::LayoutNow() {
  // A W_Resize that changes sizes again is heard in a further round; one
  // that never settles must not hold up the loop.
  for (int round = 0; round < 4 && LayoutTree(); ++round) {
  }
}

bool Widget::LayoutTree() {
  bool ran = false;
  if (layoutDue_) {
    layoutDue_ = false;
    ArrangeChildren();
    RunHandler(typeName_ + ":W_Resize", HandlerMode::Report, [&] { W_Resize(); });
    ran = true;
  }
  // By index: a W_Resize may remove children.
  for (int i = 0; i < children_.Count(); ++i) ran = children_.Item(i).LayoutTree() || ran;
  return ran;
}

void Widget::ArrangeChildren() {
  double x0 = 0, y0 = 0, x1 = width_, y1 = height_;
  std::vector<Widget*> boxed, filled;
  for (int i = 0; i < children_.Count(); ++i) {
    Widget& c = children_.Item(i);
    if (!c.visible_) continue;
    const double w = c.width_, h = c.height_;
    switch (c.dock_) {
      case Dock::Left:
        c.Place(x0, y0, w, std::max(0.0, y1 - y0));
        x0 += w;
        break;
      case Dock::Right:
        c.Place(x1 - w, y0, w, std::max(0.0, y1 - y0));
        x1 -= w;
        break;
      case Dock::Top:
        c.Place(x0, y0, std::max(0.0, x1 - x0), h);
        y0 += h;
        break;
      case Dock::Bottom:
        c.Place(x0, y1 - h, std::max(0.0, x1 - x0), h);
        y1 -= h;
        break;
      case Dock::Fill:
        filled.push_back(&c);
        break;
      case Dock::None:
        if (box_ != BoxDirection::None) {
          boxed.push_back(&c);
        } else if (c.anchors_ & (Anchor::Right | Anchor::Bottom)) {
          double l = c.left_, t = c.top_, cw = w, ch = h;
          if (c.anchors_ & Anchor::Right) {
            if (c.anchors_ & Anchor::Left)
              cw = std::max(0.0, width_ - l - c.anchorRight_);
            else
              l = width_ - c.anchorRight_ - cw;
          }
          if (c.anchors_ & Anchor::Bottom) {
            if (c.anchors_ & Anchor::Top)
              ch = std::max(0.0, height_ - t - c.anchorBottom_);
            else
              t = height_ - c.anchorBottom_ - ch;
          }
          c.Place(l, t, cw, ch);
        }
        break;
    }
  }
  for (Widget* c : filled) c->Place(x0, y0, std::max(0.0, x1 - x0), std::max(0.0, y1 - y0));
  if (boxed.empty()) return;
  const bool row = box_ == BoxDirection::Row;
  x0 += boxPadding_, y0 += boxPadding_, x1 -= boxPadding_, y1 -= boxPadding_;
  // A stretching child without a size starts from nothing, or it would
  // keep the share of the last pass and grow with each.
  const auto along = [row](const Widget& c) {
    if (c.boxSize_ > 0 || c.boxStretch_ > 0) return c.boxSize_;
    return row ? c.width_ : c.height_;
  };
  double room = (row ? x1 - x0 : y1 - y0) - boxSpacing_ * static_cast<double>(boxed.size() - 1);
  double stretch = 0;
  for (const Widget* c : boxed) room -= along(*c), stretch += c->boxStretch_;
  room = std::max(0.0, room);
  double at = row ? x0 : y0;
  for (Widget* c : boxed) {
    const double size = along(*c) + (stretch > 0 ? room * c->boxStretch_ / stretch : 0);
    if (row)
      c->Place(at, y0, size, std::max(0.0, y1 - y0));
    else
      c->Place(x0, at, std::max(0.0, x1 - x0), size);
    at += size + boxSpacing_;
  }
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
  if (parent_) {
    parent_->Refresh();
    if (dock_ != Dock::None || parent_->box_ != BoxDirection::None) parent_->NeedLayout();
  }
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
