#include "platform/ui/Form.h"

#include <algorithm>
#include <cmath>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/PlatformRoot.h"

namespace qds {

namespace {

// Runs one widget's painting code. One that fails spoils its own picture
// only: what it left of saved states and paths is put away, and the rest
// of the repaint goes on.
template <class Paint>
void PaintPart(Widget& w, DrawingContext& ctx, const char* name, Paint paint) {
  const int depth = ctx.SaveDepth();
  ctx.Save();
  RunHandler(w.TypeName() + ":" + name, HandlerMode::Silent, paint);
  while (ctx.SaveDepth() > depth) ctx.Restore();
  ctx.NewPath();
}

// Paints a widget, its children over it and then its paint-over, each
// clipped to itself and with its own top-left corner at the origin.
// Only widgets that meet the area to paint (x0..x1, y0..y1, in the
// widget's own units) are asked to paint.
void PaintTree(Widget& w, DrawingContext& ctx, double x0, double y0, double x1, double y1) {
  ctx.Save();
  ctx.Rectangle(0, 0, w.Width(), w.Height());
  ctx.Clip();
  PaintPart(w, ctx, "W_Paint", [&] { w.W_Paint(ctx, w.Width(), w.Height()); });
  for (int i = 0; i < w.Children().Count(); ++i) {
    Widget& child = w.Children().Item(i);
    if (!child.Visible()) continue;
    const double l = child.Left(), t = child.Top();
    if (l >= x1 || t >= y1 || l + child.Width() <= x0 || t + child.Height() <= y0) continue;
    ctx.Save();
    ctx.Translate(l, t);
    PaintTree(child, ctx, x0 - l, y0 - t, x1 - l, y1 - t);
    ctx.Restore();
  }
  PaintPart(w, ctx, "W_PaintOver", [&] { w.W_PaintOver(ctx, w.Width(), w.Height()); });
  ctx.Restore();
}

Widget* Deepest(Widget& w, double x, double y) {
  // The last child is on top, so it is asked first.
  for (int i = w.Children().Count() - 1; i >= 0; --i) {
    Widget& c = w.Children().Item(i);
    if (!c.Visible() || !c.Enabled()) continue;
    if (x >= c.Left() && y >= c.Top() && x < c.Left() + c.Width() && y < c.Top() + c.Height()) {
      return Deepest(c, x - c.Left(), y - c.Top());
    }
  }
  return &w;
}

int EdgeCursor(int edges) {
  if (edges == (Edge::Left | Edge::Top) || edges == (Edge::Right | Edge::Bottom)) return Cursor::SizeNWSE;
  if (edges == (Edge::Right | Edge::Top) || edges == (Edge::Left | Edge::Bottom)) return Cursor::SizeNESW;
  return (edges & (Edge::Left | Edge::Right)) ? Cursor::SizeWE : Cursor::SizeNS;
}

bool Within(const Widget& ancestor, const Widget* w) {
  for (; w; w = w->Parent()) {
    if (w == &ancestor) return true;
  }
  return false;
}

}  // namespace

cfForm::cfForm(std::string typeName) : Widget(std::move(typeName)) {
  CanFocus = true;
}

cfForm::~cfForm() {
  HideToolTip();
  if (PlatformRoot* root = PlatformRoot::Current(); root && showing_) root->FormClosed(*this);
}

void cfForm::setZoom(double zoom) {
  zoom_ = zoom > 0 ? zoom : 1;
  surface_.reset();
  Invalidate();
}

void cfForm::Show() {
  if (showing_) return;
  showing_ = true;
  Invalidate();
  PlatformRoot* root = PlatformRoot::Current();
  if (!root) return;
  try {
    root->FormShown(*this);
  } catch (...) {
    // No window could be made: the form is not shown, nor counted as open.
    showing_ = false;
    root->FormClosed(*this);
    throw;
  }
}

void cfForm::MoveOnScreen(double x, double y) {
  screenX_ = x, screenY_ = y;
  placed_ = true;
  if (PlatformRoot* root = PlatformRoot::Current(); root && showing_) root->Backend().FormMoved(*this);
}

void cfForm::SetScreenRect(double x, double y, double w, double h) {
  Widget::Move(0, 0, w / zoom_, h / zoom_);
  MoveOnScreen(x, y);
}

void cfForm::Resize(double width, double height) {
  Widget::Move(0, 0, width, height);
}

void cfForm::NoteScreenPosition(double x, double y) {
  screenX_ = x, screenY_ = y;
  placed_ = true;
}

void cfForm::CentreOver(const cfForm& owner) {
  double ax = 0, ay = 0, aw = 0, ah = 0;
  if (PlatformRoot* root = PlatformRoot::Current()) root->Backend().WorkArea(ax, ay, aw, ah);
  const double w = ScreenWidth(), h = ScreenHeight();
  double x = std::round(owner.ScreenX() + (owner.ScreenWidth() - w) / 2);
  double y = std::round(owner.ScreenY() + (owner.ScreenHeight() - h) / 2);
  if (aw > 0 && ah > 0) {
    x = std::clamp(x, ax, std::max(ax, ax + aw - w));
    y = std::clamp(y, ay, std::max(ay, ay + ah - h));
  }
  MoveOnScreen(x, y);
}

void cfForm::TitleChanged() {
  if (PlatformRoot* root = PlatformRoot::Current(); root && showing_) root->Backend().FormTitleChanged(*this);
}

void cfForm::Hide() {
  if (!showing_) return;
  HideToolTip();
  showing_ = false;
  if (PlatformRoot* root = PlatformRoot::Current()) root->FormClosed(*this);
}

void cfForm::setIconKey(const std::string& key) {
  iconKey_ = key;
  if (PlatformRoot* root = PlatformRoot::Current(); root && showing_) root->Backend().FormIconChanged(*this);
}

void cfForm::setState(WindowState state) {
  if (state == state_) return;
  if (state == WindowState::Maximized) {
    restoreX_ = screenX_, restoreY_ = screenY_, restoreWidth_ = Width(), restoreHeight_ = Height();
    double x = 0, y = 0, w = 0, h = 0;
    if (PlatformRoot* root = PlatformRoot::Current()) root->Backend().WorkArea(x, y, w, h);
    state_ = state;
    SetScreenRect(x, y, w, h);
  } else {
    state_ = state;
    Resize(restoreWidth_, restoreHeight_);
    MoveOnScreen(restoreX_, restoreY_);
  }
  Invalidate();
}

void cfForm::Minimize() {
  if (PlatformRoot* root = PlatformRoot::Current(); root && showing_) root->Backend().MinimizeForm(*this);
}

void cfForm::PlacePopUp(double x, double y, double flipBottom, double flipRight) {
  double ax = 0, ay = 0, aw = 0, ah = 0;
  if (PlatformRoot* root = PlatformRoot::Current()) root->Backend().WorkArea(ax, ay, aw, ah);
  const double w = Width() * zoom_, h = Height() * zoom_;
  if (y + h > ay + ah) y = flipBottom - h;
  if (x + w > ax + aw) x = flipRight - w;
  x = std::clamp(x, ax, std::max(ax, ax + aw - w));
  y = std::clamp(y, ay, std::max(ay, ay + ah - h));
  MoveOnScreen(x, y);
}

bool cfForm::Close(int unloadMode) {
  if (!showing_) return true;
  // A handler that fails has not refused: the window still closes.
  bool agreed = true;
  RunHandler(TypeName() + ":Form_QueryUnload", HandlerMode::Report,
             [&] { agreed = Form_QueryUnload(unloadMode); });
  if (!agreed) return false;
  RunHandler(TypeName() + ":Form_Unload", HandlerMode::Report, [&] { Form_Unload(); });
  showing_ = false;
  if (PlatformRoot* root = PlatformRoot::Current()) root->FormClosed(*this);
  return true;
}

void cfForm::Invalidate() {
  dirty_ = true;
  dirtyRects_.assign(1, {0, 0, 1e9, 1e9});
}

void cfForm::InvalidateRect(double x, double y, double w, double h) {
  if (w <= 0 || h <= 0) return;
  // Whole device pixels, a pixel wider for anti-aliased edges.
  DirtyRect r{std::floor(x * zoom_) - 1, std::floor(y * zoom_) - 1, std::ceil((x + w) * zoom_) + 1,
              std::ceil((y + h) * zoom_) + 1};
  const auto unite = [](const DirtyRect& a, const DirtyRect& b) {
    return DirtyRect{std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
  };
  const auto area = [](const DirtyRect& a) { return (a.x1 - a.x0) * (a.y1 - a.y0); };
  // Rectangles that meet become one, until the new one meets none.
  for (bool merged = true; merged;) {
    merged = false;
    for (std::size_t i = 0; i < dirtyRects_.size(); ++i) {
      const DirtyRect& d = dirtyRects_[i];
      if (d.x0 <= r.x1 && r.x0 <= d.x1 && d.y0 <= r.y1 && r.y0 <= d.y1) {
        r = unite(r, d);
        dirtyRects_.erase(dirtyRects_.begin() + static_cast<std::ptrdiff_t>(i));
        merged = true;
        break;
      }
    }
  }
  dirtyRects_.push_back(r);
  // Many small ones cost more than a few larger: the pair whose union adds
  // the least area becomes one.
  while (dirtyRects_.size() > kMostDirtyRects) {
    std::size_t bi = 0, bj = 1;
    double best = 1e300;
    for (std::size_t i = 0; i < dirtyRects_.size(); ++i) {
      for (std::size_t j = i + 1; j < dirtyRects_.size(); ++j) {
        const double added =
            area(unite(dirtyRects_[i], dirtyRects_[j])) - area(dirtyRects_[i]) - area(dirtyRects_[j]);
        if (added < best) best = added, bi = i, bj = j;
      }
    }
    dirtyRects_[bi] = unite(dirtyRects_[bi], dirtyRects_[bj]);
    dirtyRects_.erase(dirtyRects_.begin() + static_cast<std::ptrdiff_t>(bj));
  }
  dirty_ = true;
}

cfForm::DeviceRect cfForm::LastPainted() const {
  if (lastPainted_.empty()) return {};
  int x0 = lastPainted_[0].x, y0 = lastPainted_[0].y, x1 = x0 + lastPainted_[0].w,
      y1 = y0 + lastPainted_[0].h;
  for (const DeviceRect& r : lastPainted_) {
    x0 = std::min(x0, r.x), y0 = std::min(y0, r.y);
    x1 = std::max(x1, r.x + r.w), y1 = std::max(y1, r.y + r.h);
  }
  return {x0, y0, x1 - x0, y1 - y0};
}

void cfForm::LayoutIfWanted() {
  if (!layoutWanted_) return;
  layoutWanted_ = false;
  LayoutNow();
}

const SurfacePtr& cfForm::Surface() {
  LayoutIfWanted();
  const int w = std::max(1, static_cast<int>(std::lround(Width() * zoom_)));
  const int h = std::max(1, static_cast<int>(std::lround(Height() * zoom_)));
  if (!surface_ || surface_->Width() != w || surface_->Height() != h) {
    surface_ = DrawingSurface::Create(w, h);
    Invalidate();
  }
  if (dirty_) Paint();
  return surface_;
}

void cfForm::Paint() {
  LayoutIfWanted();
  if (!surface_) {
    Surface();
    return;
  }
  dirty_ = false;
  std::vector<DirtyRect> rects;
  rects.swap(dirtyRects_);
  lastPainted_.clear();
  const double sw = surface_->Width(), sh = surface_->Height();
  for (const DirtyRect& d : rects) {
    const int x0 = static_cast<int>(std::clamp(d.x0, 0.0, sw)),
              y0 = static_cast<int>(std::clamp(d.y0, 0.0, sh));
    const int x1 = static_cast<int>(std::clamp(d.x1, 0.0, sw)),
              y1 = static_cast<int>(std::clamp(d.y1, 0.0, sh));
    if (x1 <= x0 || y1 <= y0) continue;
    lastPainted_.push_back({x0, y0, x1 - x0, y1 - y0});
    DrawingContext ctx(surface_);
    ctx.Rectangle(x0, y0, x1 - x0, y1 - y0);
    ctx.Clip();
    ctx.Scale(zoom_, zoom_);
    ctx.SetSourceColor(BackColor);
    ctx.Paint();
    if (!PictureKey.empty()) DrawPicture(ctx, PictureKey, 0, 0, Width(), Height());
    PaintTree(*this, ctx, x0 / zoom_, y0 / zoom_, x1 / zoom_, y1 / zoom_);
  }
}

Widget& cfForm::HitTest(double x, double y) {
  LayoutIfWanted();
  return *Deepest(*this, x / zoom_, y / zoom_);
}

template <class Handler>
void cfForm::Route(Widget* start, double fx, double fy, const char* name, int button, int shift,
                   Handler handler) {
  // From the widget up to the form, until one takes the input; each gets
  // the point in its own coordinates.
  for (Widget* w = start; w; w = w->Parent()) {
    double ox, oy;
    w->FormPosition(ox, oy);
    bool taken = false;
    RunHandler(w->TypeName() + ":" + name, HandlerMode::Report,
               [&] { taken = handler(*w, fx - ox, fy - oy); });
    if (taken) break;
  }
  // Then the event goes up the tree by name, from the widget it was meant for.
  if (start && start != this) {
    double ox, oy;
    start->FormPosition(ox, oy);
    start->RaiseBubblingEvent(name, {Value(button), Value(shift), Value(fx - ox), Value(fy - oy)});
  }
}

// The tip of the widget the mouse rests on: a small pop-up under the mouse.
class ToolTipForm : public cfForm {
 public:
  explicit ToolTipForm(const std::string& text) : cfForm("ToolTipForm") {
    Caption = text;
    PopUp = true;
    TakesKeyboard = false;
    BackColor = StockColor(Palette::Face);
  }
  void W_Paint(DrawingContext& ctx, double w, double h) override {
    ctx.SetSourceColor(StockColor(Palette::Border));
    ctx.SetLineWidth(1);
    ctx.Rectangle(0.5, 0.5, w - 1, h - 1);
    ctx.Stroke();
    ctx.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
    ctx.DrawText(6, 0, w - 12, h, Caption(), true, TextAlign::Left, TextAlign::Middle);
  }
};

void cfForm::ShowToolTip() {
  HideToolTip();
  if (!hover_ || hover_->ToolTip.empty() || capture_ || !showing_) return;
  const TextSize size = MeasureUiText(hover_->ToolTip);
  tip_ = std::make_shared<ToolTipForm>(hover_->ToolTip);
  tip_->setZoom(zoom_);
  tip_->Resize(size.width + 12, size.height + 8);
  // Under the mouse, or above it at the bottom of the screen.
  tip_->PlacePopUp(screenX_ + mouseX_, screenY_ + mouseY_ + 20 * zoom_, screenY_ + mouseY_ - 4 * zoom_,
                   screenX_ + mouseX_);
  tip_->Show();
}

void cfForm::HideToolTip() {
  if (PlatformRoot* root = PlatformRoot::Current(); root && tipTimer_) root->KillTimer(tipTimer_);
  tipTimer_ = 0;
  DisposeForm(std::move(tip_));
}

void DisposeForm(std::shared_ptr<cfForm> form) {
  if (!form) return;
  form->Close();
  if (PlatformRoot* root = PlatformRoot::Current()) root->DeferDelete(std::move(form));
}

void cfForm::UpdateHover(Widget* now) {
  if (now == hover_) return;
  Widget* old = hover_;
  hover_ = now;
  HideToolTip();
  if (PlatformRoot* root = PlatformRoot::Current(); root && now && !now->ToolTip.empty()) {
    tipTimer_ = root->SetTimer(this, kToolTipDelayMs, [this] { ShowToolTip(); });
  }
  if (old) {
    RunHandler(old->TypeName() + ":W_MouseLeave", HandlerMode::Report, [&] { old->W_MouseLeave(); });
    if (old != this) old->RaiseBubblingEvent("W_MouseLeave");
  }
  if (now) {
    RunHandler(now->TypeName() + ":W_MouseEnter", HandlerMode::Report, [&] { now->W_MouseEnter(); });
    if (now != this) now->RaiseBubblingEvent("W_MouseEnter");
  }
}

int cfForm::ResizeEdgeAt(double x, double y) const {
  if (!Borderless || !Sizable || PopUp || state_ != WindowState::Normal) return 0;
  const double w = Width() * zoom_, h = Height() * zoom_;
  return (x < kResizeBorder ? Edge::Left : 0) | (x >= w - kResizeBorder ? Edge::Right : 0) |
         (y < kResizeBorder ? Edge::Top : 0) | (y >= h - kResizeBorder ? Edge::Bottom : 0);
}

int cfForm::WindowPartAt(double x, double y) {
  if (const int edges = ResizeEdgeAt(x, y)) return edges;
  if (!Borderless || PopUp || state_ != WindowState::Normal) return 0;
  Widget& target = HitTest(x, y);
  if (&target == this) return y / zoom_ < DragRegionHeight ? kMovesWindow : 0;
  return target.DragsWindow ? kMovesWindow : 0;
}

void cfForm::ResizeTo(double screenX, double screenY) {
  // The dragged borders follow the mouse; the opposite ones stay put.
  const double dx = screenX - grabX_, dy = screenY - grabY_;
  double left = grabRect_[0], top = grabRect_[1];
  double w = grabRect_[2], h = grabRect_[3];  // device pixels
  const double minW = MinWidth * zoom_, minH = MinHeight * zoom_;
  if (resizing_ & Edge::Right) w = std::max(minW, w + dx);
  if (resizing_ & Edge::Bottom) h = std::max(minH, h + dy);
  if (resizing_ & Edge::Left) {
    const double right = left + w;
    w = std::max(minW, w - dx);
    left = right - w;
  }
  if (resizing_ & Edge::Top) {
    const double bottom = top + h;
    h = std::max(minH, h - dy);
    top = bottom - h;
  }
  SetScreenRect(left, top, w, h);
}

void cfForm::MouseDown(int button, int shift, double x, double y) {
  buttons_ |= button;
  if (disabledByModal_) return;
  HideToolTip();
  // The borders of a frameless window size it, before any widget hears of the press.
  if (const int edges = button == Button::Left ? ResizeEdgeAt(x, y) : 0) {
    resizing_ = edges;
    grabX_ = screenX_ + x, grabY_ = screenY_ + y;
    grabRect_[0] = screenX_, grabRect_[1] = screenY_, grabRect_[2] = ScreenWidth(),
    grabRect_[3] = ScreenHeight();
    return;
  }
  // A frameless form is moved by its top where nothing else takes the
  // press, and by the widgets that say so (a title bar).
  if (button == Button::Left && !capture_ && WindowPartAt(x, y) == kMovesWindow) {
    movingWindow_ = true;
    grabX_ = x, grabY_ = y;
    return;
  }
  Widget* target = capture_ ? capture_ : &HitTest(x, y);
  // A press gives the focus to the first widget up the tree that takes it.
  for (Widget* w = target; w; w = w->Parent()) {
    if (w->CanFocus) {
      SetFocusTo(w);
      break;
    }
  }
  if (button == Button::Left) clickTarget_ = target;
  Route(target, x / zoom_, y / zoom_, "W_MouseDown", button, shift,
        [&](Widget& w, double lx, double ly) { return w.W_MouseDown(button, shift, lx, ly); });
}

void cfForm::MouseMove(int button, int shift, double x, double y) {
  buttons_ = button;
  if (disabledByModal_) return;
  mouseX_ = x, mouseY_ = y;
  if (movingWindow_) {
    // The window follows so that the grabbed point stays under the mouse.
    MoveOnScreen(screenX_ + x - grabX_, screenY_ + y - grabY_);
    return;
  }
  if (resizing_) {
    ResizeTo(screenX_ + x, screenY_ + y);
    return;
  }
  Widget* under = &HitTest(x, y);
  UpdateHover(under);
  if (PlatformRoot* root = PlatformRoot::Current()) {
    const int edges = capture_ ? 0 : ResizeEdgeAt(x, y);
    root->ShowWidgetCursor(edges ? EdgeCursor(edges) : (capture_ ? capture_ : under)->MouseCursor);
  }
  Route(capture_ ? capture_ : under, x / zoom_, y / zoom_, "W_MouseMove", button, shift,
        [&](Widget& w, double lx, double ly) { return w.W_MouseMove(button, shift, lx, ly); });
}

void cfForm::MouseUp(int button, int shift, double x, double y) {
  buttons_ &= ~button;
  if (disabledByModal_) return;
  if ((movingWindow_ || resizing_) && button == Button::Left) {
    movingWindow_ = false;
    resizing_ = 0;
    return;
  }
  Widget* target = capture_ ? capture_ : &HitTest(x, y);
  Route(target, x / zoom_, y / zoom_, "W_MouseUp", button, shift,
        [&](Widget& w, double lx, double ly) { return w.W_MouseUp(button, shift, lx, ly); });
  // Down and up on the same widget make a click.
  Widget* pressed = button == Button::Left ? clickTarget_ : nullptr;
  if (button == Button::Left) clickTarget_ = nullptr;
  if (pressed && pressed != this && pressed == &HitTest(x, y)) {
    RunHandler(pressed->TypeName() + ":W_Click", HandlerMode::Report, [&] { pressed->W_Click(); });
    pressed->RaiseBubblingEvent("W_Click");
  }
}

void cfForm::DblClick(int button, int shift, double x, double y) {
  if (disabledByModal_) return;
  Route(&HitTest(x, y), x / zoom_, y / zoom_, "W_DblClick", button, shift,
        [&](Widget& w, double lx, double ly) { return w.W_DblClick(button, shift, lx, ly); });
}

void cfForm::MouseWheel(int delta, int shift, double x, double y) {
  if (disabledByModal_) return;
  Route(&HitTest(x, y), x / zoom_, y / zoom_, "W_MouseWheel", delta, shift,
        [&](Widget& w, double lx, double ly) { return w.W_MouseWheel(delta, shift, lx, ly); });
}

template <class Handler>
bool cfForm::ClimbKey(const char* name, Handler handler) {
  // A handler may take its widget out of the tree; its parent is then none.
  for (Widget* w = focus_; w && w != this; w = w->Parent()) {
    bool taken = false;
    RunHandler(w->TypeName() + ":" + name, HandlerMode::Report, [&] { taken = handler(*w); });
    if (taken) return true;
  }
  return false;
}

void cfForm::KeyDown(int keyCode, int shift) {
  if (disabledByModal_) return;
  HideToolTip();
  if ((shift & Shift::Alt) && keyCode >= 'A' && keyCode <= 'Z' &&
      AccessKey(*this, static_cast<char>(keyCode))) {
    return;
  }
  bool taken = ClimbKey("W_KeyDown", [&](Widget& w) { return w.W_KeyDown(keyCode, shift); });
  if (!taken)
    RunHandler(TypeName() + ":Form_KeyDown", HandlerMode::Report,
               [&] { taken = Form_KeyDown(keyCode, shift); });
  if (taken) return;
  BubbleKey("W_KeyDown", keyCode, shift);
  // Tab, when nobody has a use for it, moves the focus on.
  if (keyCode == Key::Tab && !(shift & Shift::Ctrl)) MoveFocus((shift & Shift::ShiftKey) ? -1 : 1);
}

bool cfForm::AccessKey(Widget& w, char letter) {
  for (int i = 0; i < w.Children().Count(); ++i) {
    Widget& c = w.Children().Item(i);
    if (!c.Visible() || !c.Enabled()) continue;
    bool taken = false;
    RunHandler(c.TypeName() + ":W_AccessKey", HandlerMode::Report, [&] { taken = c.W_AccessKey(letter); });
    if (taken || AccessKey(c, letter)) return true;
  }
  return false;
}

void cfForm::MoveFocus(int step) {
  // The widgets that take the focus, in the order they were added.
  std::vector<Widget*> order;
  const auto collect = [&](auto& self, Widget& w) -> void {
    for (int i = 0; i < w.Children().Count(); ++i) {
      Widget& c = w.Children().Item(i);
      if (!c.Visible() || !c.Enabled()) continue;
      if (c.CanFocus) order.push_back(&c);
      self(self, c);
    }
  };
  collect(collect, *this);
  if (order.empty()) return;
  const auto at = std::find(order.begin(), order.end(), focus_);
  const int n = static_cast<int>(order.size());
  const int from = at == order.end() ? (step > 0 ? -1 : 0) : static_cast<int>(at - order.begin());
  SetFocusTo(order[(from + step + n) % n]);
}

void cfForm::KeyUp(int keyCode, int shift) {
  if (disabledByModal_) return;
  if (!ClimbKey("W_KeyUp", [&](Widget& w) { return w.W_KeyUp(keyCode, shift); }))
    BubbleKey("W_KeyUp", keyCode, shift);
}

void cfForm::KeyPress(int keyAscii) {
  if (disabledByModal_) return;
  if (!ClimbKey("W_KeyPress", [&](Widget& w) { return w.W_KeyPress(keyAscii); }))
    BubbleKey("W_KeyPress", keyAscii, 0);
}

void cfForm::BubbleKey(const char* name, int keyCode, int shift) {
  // A key nobody took is heard by name up the tree from the focused widget.
  if (focus_ && focus_ != this) focus_->RaiseBubblingEvent(name, {Value(keyCode), Value(shift)});
}

void cfForm::SetFocusTo(Widget* w) {
  if (w == focus_) return;
  Widget* old = focus_;
  focus_ = w;
  if (old) {
    RunHandler(old->TypeName() + ":W_LostFocus", HandlerMode::Report, [&] { old->W_LostFocus(); });
    if (old != this) old->RaiseBubblingEvent("W_LostFocus");
    old->Refresh();
  }
  if (w) {
    RunHandler(w->TypeName() + ":W_GotFocus", HandlerMode::Report, [&] { w->W_GotFocus(); });
    if (w != this) w->RaiseBubblingEvent("W_GotFocus");
    w->Refresh();
  }
}

void cfForm::DropReferencesTo(const Widget& gone) {
  if (Within(gone, focus_)) focus_ = nullptr;
  if (Within(gone, capture_)) capture_ = nullptr;
  if (Within(gone, clickTarget_)) clickTarget_ = nullptr;
  if (Within(gone, hover_)) {
    hover_ = nullptr;
    HideToolTip();
  }
}

}  // namespace qds
