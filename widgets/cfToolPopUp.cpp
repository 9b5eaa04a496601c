#include "widgets/cfToolPopUp.h"

#include <algorithm>

#include "platform/Error.h"
#include "widgets/cwModalBg.h"

namespace qds {

cfToolPopUp::cfToolPopUp() : cfForm("cfToolPopUp") {
  Borderless = true;
  tmrPopUp.Interval = kWatchMs;
  tmrPopUp.OnTimer = [this] { tmrPopUp_Timer(); };
}

cwModalBg* cfToolPopUp::Background() const {
  return Children().Exists("ToolPopUp") ? dynamic_cast<cwModalBg*>(&Children().Item("ToolPopUp")) : nullptr;
}

Widget* cfToolPopUp::Hosted() const {
  cwModalBg* bg = Background();
  return bg ? bg->ToolWidget() : nullptr;
}

Widget& cfToolPopUp::ShowWidget(std::unique_ptr<Widget> widget, double x, double y, double width,
                                double height) {
  PlatformRoot* root = PlatformRoot::Current();
  if (!widget || !root) Raise(ErrNo::InvalidArgument, "Nothing to show, or no window system", "cfToolPopUp");
  owner_ = ToolWindowOwner(this);
  Widget* hosted = Hosted();
  if (!hosted || widget->TypeName() != widgetTypeName_) {
    const double zoom = ToolWindowZoom(owner_);
    if (Children().Exists("ToolPopUp")) Children().Remove("ToolPopUp");
    auto& bg = Children().Add<cwModalBg>("ToolPopUp");
    bg.Move(0, 0, width, height);
    bg.UseAppBackground();
    BackColor = bg.BackColor;
    setZoom(zoom);
    Resize(width, height);
    widgetTypeName_ = widget->TypeName();
    hosted = &bg.LoadToolWidget(std::move(widget), width, height);
  }
  // Shown again where it is asked for now, as the button that opens it may
  // have moved.
  MoveOnScreen(x * Zoom(), y * Zoom());
  if (Showing()) {
    root->Backend().FormMoved(*this);
  } else {
    Show();
  }
  shownOnEvent_ = root->EventNumber();
  tmrPopUp.setEnabled(true);
  return *hosted;
}

void cfToolPopUp::Unload() {
  tmrPopUp.setEnabled(false);
  Close();
  if (Children().Exists("ToolPopUp")) Children().Remove("ToolPopUp");
  widgetTypeName_.clear();
}

bool cfToolPopUp::LostPurpose() const {
  PlatformRoot* root = PlatformRoot::Current();
  if (!root) return true;
  if (owner_ && !root->IsOpen(owner_)) return true;
  const cfForm* pressed = root->LastPressedForm();
  return pressed && pressed != this && !pressed->PopUp && root->LastPressEvent() > shownOnEvent_;
}

void cfToolPopUp::tmrPopUp_Timer() {
  if (!Showing()) {
    tmrPopUp.setEnabled(false);
  } else if (LostPurpose()) {
    tmrPopUp.setEnabled(false);
    Hide();
  }
}

void cfToolPopUp::Form_BubblingEvent(Widget& source, const std::string& name,
                                     const std::vector<Value>& args) {
  // Only while the owner is still open: one that has gone may be gone for good.
  if (PlatformRoot* root = PlatformRoot::Current(); root && root->IsOpen(owner_))
    owner_->Form_BubblingEvent(source, name, args);
}

bool cfToolPopUp::Form_QueryUnload(int unloadMode) {
  // Closed by the desktop, it only hides, so that showing it again is
  // immediate and finds it as it was.
  if (unloadMode == UnloadMode::Code) return true;
  tmrPopUp.setEnabled(false);
  Hide();
  return false;
}

}  // namespace qds
