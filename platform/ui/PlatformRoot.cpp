#include "platform/ui/PlatformRoot.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "platform/Error.h"
#include "platform/ImageList.h"
#include "platform/ui/Form.h"

namespace qds {

namespace {
PlatformRoot* current = nullptr;
// A timer due this soon belongs to what the last input started (a tool bar
// item tells its click a moment after the release): the idle handler waits
// for it, so a script's next line sees what a user would.
constexpr double kSettleMs = 2;
}  // namespace

PlatformRoot::PlatformRoot(std::unique_ptr<UiBackend> backend)
    : backend_(std::move(backend)), previous_(current) {
  current = this;
}

PlatformRoot::~PlatformRoot() {
  ReleaseRemovedWidgets();
  current = previous_;
}

PlatformRoot* PlatformRoot::Current() {
  return current;
}

int PlatformRoot::SetTimer(Widget* owner, double intervalMs, std::function<void()> onTimer) {
  const int id = nextTimer_++;
  timers_.push_back(
      {id, owner, std::max(1.0, intervalMs), NowMs() + std::max(1.0, intervalMs), std::move(onTimer)});
  return id;
}

void PlatformRoot::KillTimer(int id) {
  timers_.erase(
      std::remove_if(timers_.begin(), timers_.end(), [&](const TimerEntry& t) { return t.id == id; }),
      timers_.end());
}

void PlatformRoot::KillTimersOf(const Widget* owner) {
  if (dragSource_ == owner) EndDrag();
  timers_.erase(
      std::remove_if(timers_.begin(), timers_.end(), [&](const TimerEntry& t) { return t.owner == owner; }),
      timers_.end());
}

void PlatformRoot::DeferredInvoke(std::function<void()> work) {
  deferred_.push_back(std::move(work));
}

void PlatformRoot::DeferDelete(std::shared_ptr<Widget> widget) {
  graveyard_.push_back(std::move(widget));
}

void PlatformRoot::FormShown(cfForm& form) {
  if (std::find(forms_.begin(), forms_.end(), &form) == forms_.end()) forms_.push_back(&form);
  backend_->FormShown(form);
}

void PlatformRoot::FormClosed(cfForm& form) {
  if (lastPressed_ == &form) lastPressed_ = nullptr;
  forms_.erase(std::remove(forms_.begin(), forms_.end(), &form), forms_.end());
  // Nothing keeps pointing at a form that has gone; shown again, it is as
  // new, under no dialog.
  form.disabledByModal_ = false;
  if (inputForm_ == &form) inputForm_ = nullptr;
  for (cfForm* f : forms_) {
    if (f->owner_ == &form) f->owner_ = nullptr;
  }
  backend_->FormClosed(form);
}

void PlatformRoot::StartDrag(Widget& source, const std::string& dataKey, const std::string& pictureKey) {
  dragSource_ = &source;
  dragKey_ = dataKey;
  dragPicture_ = pictureKey;
  if (SurfacePtr picture = images_ && !pictureKey.empty() ? images_->Get(pictureKey) : nullptr)
    backend_->SetCursorPicture(picture);
}

void PlatformRoot::EndDrag() {
  dragKey_.clear();
  dragPicture_.clear();
  dragSource_ = nullptr;
  if (backend_->CursorPicture()) backend_->SetCursorPicture(nullptr);
}

void PlatformRoot::setScreenCursor(int cursor) {
  screenCursor_ = cursor;
  backend_->SetCursor(cursor ? cursor : widgetCursor_);
}

void PlatformRoot::ShowWidgetCursor(int cursor) {
  widgetCursor_ = cursor;
  const int shown = screenCursor_ ? screenCursor_ : cursor;
  if (shown != backend_->CurrentCursor()) backend_->SetCursor(shown);
}

bool PlatformRoot::ShellOpen(const std::string& target) {
  const char* path = std::getenv("PATH");
  bool found = false;
  for (std::string dirs = path ? path : ""; !dirs.empty() && !found;) {
    const std::size_t colon = dirs.find(':');
    found = ::access((dirs.substr(0, colon) + "/xdg-open").c_str(), X_OK) == 0;
    dirs = colon == std::string::npos ? "" : dirs.substr(colon + 1);
  }
  if (!found) return false;
  // Detached twice, so that the program never waits for what it opened.
  const pid_t pid = ::fork();
  if (pid < 0) return false;
  if (pid == 0) {
    if (::fork() == 0) {
      ::execlp("xdg-open", "xdg-open", target.c_str(), static_cast<char*>(nullptr));
      ::_exit(127);
    }
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  return true;
}

void PlatformRoot::Dispatch(const UiEvent& e) {
  ++eventNumber_;
  cfForm* f = e.form;
  if (!f || std::find(forms_.begin(), forms_.end(), f) == forms_.end()) return;  // a form that has gone
  if (e.onScreen) {
    UiEvent inForm = e;
    inForm.onScreen = false;
    inForm.x -= f->ScreenX(), inForm.y -= f->ScreenY();
    --eventNumber_;
    Dispatch(inForm);
    return;
  }
  // Input meets the widgets where the user sees them.
  for (cfForm* form : forms_) form->LayoutIfWanted();
  if (e.type == UiEvent::Type::KeyDown || e.type == UiEvent::Type::KeyUp ||
      e.type == UiEvent::Type::KeyPress) {
    // An open pop-up has the keyboard, though the window system gives it to
    // the window under it; the newest one, as sub-menus open last.
    for (auto it = forms_.rbegin(); it != forms_.rend(); ++it) {
      if ((*it)->PopUp && (*it)->TakesKeyboard && (*it)->Showing()) {
        f = *it;
        break;
      }
    }
  }
  if (e.type == UiEvent::Type::MouseDown || e.type == UiEvent::Type::DblClick) {
    lastPressed_ = f;
    lastPressEvent_ = eventNumber_;
  }
  if (e.type == UiEvent::Type::MouseDown && f->disabledByModal_) {
    // A click on a window under a modal dialog shows the user that window's
    // own dialog: the newest one it owns, over that the newest one that
    // dialog owns, and so on up the chain.
    const auto newestOwnedBy = [this](const cfForm* owner) -> cfForm* {
      for (auto it = forms_.rbegin(); it != forms_.rend(); ++it) {
        if ((*it)->Modal() && (*it)->Showing() && (*it)->owner_ == owner) return *it;
      }
      return nullptr;
    };
    cfForm* front = nullptr;
    std::size_t steps = 0;  // a chain is never longer than the forms open
    for (cfForm* d = newestOwnedBy(f); d && steps++ < forms_.size(); d = newestOwnedBy(d)) front = d;
    // A window that owns none (all are disabled under a dialog) shows the
    // dialog that has the input.
    for (auto it = forms_.rbegin(); !front && it != forms_.rend(); ++it) {
      if ((*it)->Modal() && !(*it)->disabledByModal_) front = *it;
    }
    if (front) backend_->BringToFront(*front);
  }
  if (!f->PopUp && !f->disabledByModal_ &&
      (e.type == UiEvent::Type::MouseDown || e.type == UiEvent::Type::DblClick ||
       e.type == UiEvent::Type::KeyDown)) {
    inputForm_ = f;
  }
  if (e.type == UiEvent::Type::MouseDown) {
    // A press anywhere else closes the pop-ups that are open, but not those
    // the pressed one was opened from.
    const auto openedBefore = [f](const cfForm* other) {
      for (const cfForm* p = f->OpenedFrom; p; p = p->OpenedFrom) {
        if (p == other) return true;
      }
      return false;
    };
    for (cfForm* other : std::vector<cfForm*>(forms_)) {
      if (other != f && other->PopUp && other->Showing() && !openedBefore(other)) other->Close();
    }
  }
  if (e.type == UiEvent::Type::MouseUp && Dragging()) {
    Widget& target = f->HitTest(e.x, e.y);
    double ox, oy;
    target.FormPosition(ox, oy);
    const std::string key = dragKey_;
    Widget* source = dragSource_;
    EndDrag();
    if (source) {
      RunHandler(target.TypeName() + ":W_DragDrop", HandlerMode::Report,
                 [&] { target.W_DragDrop(key, *source, e.x / f->Zoom() - ox, e.y / f->Zoom() - oy); });
    }
  }
  switch (e.type) {
    case UiEvent::Type::MouseDown:
      f->MouseDown(e.button, e.shift, e.x, e.y);
      break;
    case UiEvent::Type::MouseUp:
      f->MouseUp(e.button, e.shift, e.x, e.y);
      break;
    case UiEvent::Type::MouseMove:
      f->MouseMove(e.button, e.shift, e.x, e.y);
      break;
    case UiEvent::Type::DblClick:
      f->DblClick(e.button, e.shift, e.x, e.y);
      break;
    case UiEvent::Type::Wheel:
      f->MouseWheel(e.button, e.shift, e.x, e.y);
      break;
    case UiEvent::Type::KeyDown:
      f->KeyDown(e.key, e.shift);
      break;
    case UiEvent::Type::KeyUp:
      f->KeyUp(e.key, e.shift);
      break;
    case UiEvent::Type::KeyPress:
      f->KeyPress(e.key);
      break;
    case UiEvent::Type::Close:
      f->Close(UnloadMode::ControlMenu);
      break;
  }
}

void PlatformRoot::FireDueTimers() {
  const double now = NowMs();
  // A timer may start or kill timers: walk a copy of the ids that are due.
  std::vector<int> due;
  for (const TimerEntry& t : timers_) {
    if (t.due <= now) due.push_back(t.id);
  }
  for (int id : due) {
    auto it = std::find_if(timers_.begin(), timers_.end(), [&](const TimerEntry& t) { return t.id == id; });
    if (it == timers_.end()) continue;
    it->due = now + it->interval;
    std::function<void()> fire = it->onTimer;
    RunHandler("Timer", HandlerMode::Report, fire);
  }
}

void PlatformRoot::RunDeferred() {
  while (!deferred_.empty()) {
    std::vector<std::function<void()>> work;
    work.swap(deferred_);
    for (auto& w : work) RunHandler("DeferredInvoke", HandlerMode::Report, w);
  }
  ReleaseRemovedWidgets();
}

void PlatformRoot::ReleaseRemovedWidgets() {
  // A widget going may hand over others (a menu its pop-up).
  while (!graveyard_.empty()) {
    std::vector<std::shared_ptr<Widget>> dead;
    dead.swap(graveyard_);
  }
}

void PlatformRoot::PaintAll() {
  for (cfForm* f : std::vector<cfForm*>(forms_)) {
    f->LayoutIfWanted();
    if (!f->Dirty()) continue;
    f->Surface();
    backend_->Present(*f);
  }
}

double PlatformRoot::NextTimerIn() {
  double next = 1e9;
  for (const TimerEntry& t : timers_) next = std::min(next, t.due - NowMs());
  return std::max(0.0, next);
}

bool PlatformRoot::Busy() const {
  return !deferred_.empty() || !posted_.empty() ||
         std::any_of(forms_.begin(), forms_.end(),
                     [](const cfForm* f) { return f->Dirty() || f->layoutWanted_; });
}

bool PlatformRoot::ProcessOnce(double waitMs) {
  UiEvent e;
  bool any = false;
  // Pictures still to paint, and work deferred while painting, must not
  // wait for the next event; nor does a turn after the idle handler acted.
  if (Busy() || idleActed_) waitMs = 0;
  idleActed_ = false;
  while (!posted_.empty()) {
    e = posted_.front();
    posted_.erase(posted_.begin());
    any = true;
    Dispatch(e);
    RunDeferred();
  }
  while (backend_->WaitEvent(any ? 0 : waitMs, e)) {
    any = true;
    Dispatch(e);
    RunDeferred();
  }
  FireDueTimers();
  RunDeferred();
  PaintAll();
  return any;
}

void PlatformRoot::Idle() {
  // Only a loop that goes on calls it: a dialog closed by this turn's events
  // returns to its caller first.
  if (!OnIdle || quitting_ || Busy() || NextTimerIn() <= kSettleMs) return;
  std::function<bool()> idle = OnIdle;  // it may replace itself
  idleActed_ = idle();
}

void PlatformRoot::DoEvents() {
  ProcessOnce(0);
}

bool PlatformRoot::IsOpen(const cfForm* form) const {
  return form && std::find(forms_.begin(), forms_.end(), form) != forms_.end();
}

void PlatformRoot::RunMessageLoop() {
  while (!forms_.empty() && !quitting_) {
    ProcessOnce(NextTimerIn());
    if (!forms_.empty()) Idle();
  }
}

cfForm* PlatformRoot::ActiveForm() const {
  const auto takesInput = [](const cfForm* f) { return f->Showing() && !f->PopUp && !f->disabledByModal_; };
  if (inputForm_ && takesInput(inputForm_)) return inputForm_;
  for (auto it = forms_.rbegin(); it != forms_.rend(); ++it) {
    if (takesInput(*it)) return *it;
  }
  return nullptr;
}

void PlatformRoot::RunModal(cfForm& dialog, cfForm* owner) {
  const auto shown = [this](const cfForm* f) {
    return f && f->Showing() && std::find(forms_.begin(), forms_.end(), f) != forms_.end();
  };
  if (!shown(owner) || owner == &dialog) owner = ActiveForm();
  if (owner == &dialog) owner = nullptr;
  // The forms disabled here are enabled again however the loop ends: by
  // the dialog closing, by Quit, or by an error thrown through it.
  // Those that closed meanwhile (a tip, a pop-up) may be gone.
  struct Modality {
    const std::vector<cfForm*>& open;
    cfForm& dialog;
    std::vector<cfForm*> disabled;
    ~Modality() {
      dialog.modal_ = false;
      dialog.owner_ = nullptr;
      for (cfForm* f : disabled) {
        if (std::find(open.begin(), open.end(), f) != open.end()) f->disabledByModal_ = false;
      }
    }
  } modality{forms_, dialog, {}};
  for (cfForm* f : forms_) {
    if (f != &dialog && !f->disabledByModal_) {
      f->disabledByModal_ = true;
      modality.disabled.push_back(f);
    }
  }
  dialog.modal_ = true;
  dialog.owner_ = owner;
  if (owner && !dialog.Showing() && !dialog.HasScreenPosition()) dialog.CentreOver(*owner);
  dialog.Show();
  while (dialog.Showing() && !quitting_) {
    ProcessOnce(NextTimerIn());
    if (dialog.Showing()) Idle();
  }
}

void Timer::setEnabled(bool on) {
  PlatformRoot* root = PlatformRoot::Current();
  if (!root) return;
  if (id_) root->KillTimer(id_);
  id_ = on ? root->SetTimer(&owner_, Interval,
                            [this] {
                              if (OnTimer) OnTimer();
                            })
           : 0;
}

bool HeadlessBackend::WaitEvent(double timeoutMs, UiEvent& event) {
  if (queue_.empty() && timeoutMs > 0) {
    if (OnIdle) OnIdle();
    if (queue_.empty()) {
      // Waiting is time passing; with nothing due ever, a loop would hang.
      if (timeoutMs >= 1e8)
        Raise(ErrNo::InvalidArgument, "A headless loop waits for nothing", "HeadlessBackend");
      now_ += timeoutMs;
    }
  }
  if (queue_.empty()) return false;
  event = queue_.front();
  queue_.erase(queue_.begin());
  return true;
}

}  // namespace qds
