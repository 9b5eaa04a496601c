#include "widgets/cfToolDialog.h"

#include <algorithm>

#include "platform/Error.h"
#include "platform/stock/StockWidgets.h"
#include "platform/ui/PlatformRoot.h"
#include "widgets/cfToolPopUp.h"
#include "widgets/cwModalBg.h"

namespace qds {

namespace {

// The widgets of a tree in the order the Tab key visits them.
template <class Visit>
bool VisitShown(Widget& w, Visit visit) {
  for (int i = 0; i < w.Children().Count(); ++i) {
    Widget& c = w.Children().Item(i);
    if (!c.Visible() || !c.Enabled()) continue;
    if (visit(c) || VisitShown(c, visit)) return true;
  }
  return false;
}

}  // namespace

cwButton* DefaultButtonOf(Widget& root, bool cancel) {
  cwButton* found = nullptr;
  VisitShown(root, [&](Widget& w) {
    auto* button = dynamic_cast<cwButton*>(&w);
    if (button && (cancel ? button->Cancel : button->Default)) found = button;
    return found != nullptr;
  });
  return found;
}

cfToolDialog::cfToolDialog() : cfForm("ToolWindows") {
  Borderless = true;
}

cwModalBg* cfToolDialog::Background() const {
  return Children().Exists("ToolWindow") ? dynamic_cast<cwModalBg*>(&Children().Item("ToolWindow")) : nullptr;
}

Widget* cfToolDialog::Hosted() const {
  cwModalBg* bg = Background();
  return bg ? bg->ToolWidget() : nullptr;
}

Widget& cfToolDialog::ShowWidget(std::unique_ptr<Widget> widget, const std::string& title, double x, double y,
                                 double width, double height, int& result) {
  result = ToolResult::Cancel;
  PlatformRoot* root = PlatformRoot::Current();
  if (!widget || !root) Raise(ErrNo::InvalidArgument, "Nothing to show, or no window system", "cfToolDialog");
  if (Showing()) Raise(ErrNo::InvalidArgument, "The tool window is open already", "cfToolDialog");
  owner_ = ToolWindowOwner(this);
  const double zoom = ToolWindowZoom(owner_);
  const double fullHeight = height + kCaptionHeight;

  // Sizes stay logical: the form's zoom turns them into pixels, and the
  // place, which is in pixels of the screen, is scaled here to match.
  if (Children().Exists("ToolWindow")) Children().Remove("ToolWindow");
  auto& bg = Children().Add<cwModalBg>("ToolWindow");
  bg.Move(0, 0, width, fullHeight);
  bg.CaptionHeight = kCaptionHeight;
  bg.Caption = title;
  bg.ImageKey = ImageKey;
  bg.UseAppBackground();
  BackColor = bg.BackColor;
  Caption = title;
  setZoom(zoom);
  Resize(width, fullHeight);
  MoveOnScreen(x * zoom, y * zoom);
  setIconKey(ImageKey);
  Widget& hosted = bg.LoadToolWidget(std::move(widget), width, height);

  result_ = ToolResult::Cancel;
  LayoutNow();
  FocusFirstInput();
  root->RunModal(*this);
  result = result_;
  return hosted;
}

void cfToolDialog::CentredPosition(double width, double height, double& x, double& y) const {
  const cfForm* owner = ToolWindowOwner(this);
  const double zoom = ToolWindowZoom(owner);
  double cx = 0, cy = 0;
  if (owner) {
    cx = owner->ScreenX() + owner->ScreenWidth() / 2;
    cy = owner->ScreenY() + owner->ScreenHeight() / 2;
  } else if (PlatformRoot* root = PlatformRoot::Current()) {
    double ax = 0, ay = 0, aw = 0, ah = 0;
    root->Backend().WorkArea(ax, ay, aw, ah);
    cx = ax + aw / 2, cy = ay + ah / 2;
  }
  x = std::max(0.0, cx / zoom - width / 2);
  y = std::max(0.0, cy / zoom - (height + kCaptionHeight) / 2);
}

void cfToolDialog::CloseWith(Widget& hosted, int result) {
  cfForm* form = hosted.Form();
  if (auto* dialog = dynamic_cast<cfToolDialog*>(form)) {
    dialog->result_ = result;
    dialog->Close();
  } else if (auto* popUp = dynamic_cast<cfToolPopUp*>(form)) {
    popUp->Hide();
  }
}

void cfToolDialog::FocusFirstInput() {
  // Text first, so the user can type at once; else the button Return presses.
  Widget* input = nullptr;
  VisitShown(*this, [&](Widget& w) {
    if (w.TakesText && w.CanFocus) input = &w;
    return input != nullptr;
  });
  if (!input) input = DefaultButtonOf(*this, false);
  if (input) input->SetFocus();
}

void cfToolDialog::Form_BubblingEvent(Widget& source, const std::string& name,
                                      const std::vector<Value>& args) {
  // Only while the owner is still open: one that has gone may be gone for good.
  if (PlatformRoot* root = PlatformRoot::Current(); root && root->IsOpen(owner_))
    owner_->Form_BubblingEvent(source, name, args);
}

bool cfToolDialog::Form_KeyDown(int keyCode, int) {
  if (keyCode != Key::Return && keyCode != Key::Escape) return false;
  if (cwButton* button = DefaultButtonOf(*this, keyCode == Key::Escape)) {
    button->Press();
  } else if (keyCode == Key::Escape) {
    Close();
  } else {
    return false;
  }
  return true;
}

bool cfToolDialog::Form_QueryUnload(int unloadMode) {
  // The desktop's close asks nothing: the window goes, cancelled, and its
  // widget stays for whoever opened it.
  if (unloadMode == UnloadMode::Code) return true;
  Hide();
  return false;
}

}  // namespace qds
