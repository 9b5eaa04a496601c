#pragma once
// The message loop: one thread, events from a backend, timers owned by
// widgets, work deferred to the end of the current event, and painting once
// per turn. A modal form runs a nested loop and disables the other forms.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Drawing.h"
#include "platform/ui/WindowPlacement.h"

namespace qds {

class cfForm;
class ImageList;
class Widget;

struct UiEvent {
  enum class Type { MouseDown, MouseUp, MouseMove, DblClick, Wheel, KeyDown, KeyUp, KeyPress, Close };
  Type type = Type::MouseMove;
  cfForm* form = nullptr;
  int button = 0;  // or the wheel's delta
  int shift = 0;
  int key = 0;          // key code, or the character (code point) of a key press
  double x = 0, y = 0;  // device pixels of the form
  // x and y are screen pixels, turned into the form's when the event is
  // dispatched: a script's mouse moves over the screen as a hand does,
  // while the window it drags moves under it.
  bool onScreen = false;
};

// Where events come from and pictures go to: real windows, or nothing.
class UiBackend {
 public:
  virtual ~UiBackend() = default;
  virtual double NowMs() = 0;
  // The next event, waiting at most `timeoutMs` (never sleeping when
  // nothing can come, as without a display); false when there is none.
  virtual bool WaitEvent(double timeoutMs, UiEvent& event) = 0;
  virtual void FormShown(cfForm& form) { (void)form; }
  virtual void FormClosed(cfForm& form) { (void)form; }
  // The form was moved or resized, or its icon changed.
  virtual void FormMoved(cfForm& form) { (void)form; }
  virtual void FormIconChanged(cfForm& form) { (void)form; }
  virtual void FormTitleChanged(cfForm& form) { (void)form; }
  // Puts the window away to the desktop's task bar.
  virtual void MinimizeForm(cfForm& form) { minimized_ = &form; }
  cfForm* LastMinimized() const { return minimized_; }
  // Brings the form's window above the others (a modal dialog whose owner was clicked).
  virtual void BringToFront(cfForm& form) { front_ = &form; }
  cfForm* FrontForm() const { return front_; }
  // The part of the screen forms may cover, without the desktop's panels.
  virtual void WorkArea(double& x, double& y, double& w, double& h) { x = 0, y = 0, w = 1920, h = 1040; }
  // The usable part of every screen, the work area first.
  virtual std::vector<ScreenArea> Screens() {
    ScreenArea a;
    WorkArea(a.x, a.y, a.w, a.h);
    return {a};
  }
  // The form's surface has changed in the given device rectangle.
  virtual void Present(cfForm& form) { (void)form; }
  // System services: the mouse cursor (32512 arrow, 32514 wait, ...),
  // clipboard text, and the screen's dots per inch.
  virtual void SetCursor(int cursor) { cursor_ = cursor; }
  int CurrentCursor() const { return cursor_; }
  // A picture follows the mouse instead of the cursor (a drag); none ends it.
  virtual void SetCursorPicture(const SurfacePtr& picture) { cursorPicture_ = picture; }
  const SurfacePtr& CursorPicture() const { return cursorPicture_; }
  virtual void SetClipboardText(const std::string& text) { clipboard_ = text; }
  virtual std::string ClipboardText() { return clipboard_; }
  virtual double ScreenDpi() { return 96; }

 private:
  int cursor_ = 32512;
  cfForm* front_ = nullptr;
  cfForm* minimized_ = nullptr;
  SurfacePtr cursorPicture_;
  std::string clipboard_;
};

class PlatformRoot {
 public:
  explicit PlatformRoot(std::unique_ptr<UiBackend> backend);
  ~PlatformRoot();
  static PlatformRoot* Current();

  UiBackend& Backend() { return *backend_; }
  // The named pictures widgets draw (buttons, images); none until set.
  ImageList* Images() const { return images_; }
  void setImages(ImageList* images) { images_ = images; }
  double NowMs() { return backend_->NowMs(); }

  // Timers fire on the loop, never on another thread; a widget's timers
  // end with it.
  int SetTimer(Widget* owner, double intervalMs, std::function<void()> onTimer);
  void KillTimer(int id);
  void KillTimersOf(const Widget* owner);
  // Runs after the current event, outside the handler that asked.
  void DeferredInvoke(std::function<void()> work);
  // Keeps a removed widget alive until the current event is over.
  void DeferDelete(std::shared_ptr<Widget> widget);

  void FormShown(cfForm& form);
  void FormClosed(cfForm& form);
  const std::vector<cfForm*>& Forms() const { return forms_; }
  // Still open: a form remembered across events may have gone since.
  bool IsOpen(const cfForm* form) const;

  // A drag within the program: started by a widget on a mouse press, it
  // follows the mouse and ends on the next release over a widget, whose
  // W_DragDrop receives the data key.
  void StartDrag(Widget& source, const std::string& dataKey, const std::string& pictureKey);
  bool Dragging() const { return !dragKey_.empty(); }
  const std::string& DragPicture() const { return dragPicture_; }

  // One cursor for every window while the program is busy (Cursor::Wait);
  // 0 lets each widget show its own again.
  void setScreenCursor(int cursor);
  int ScreenCursor() const { return screenCursor_; }
  // The cursor of the widget under the mouse, unless the screen has one.
  void ShowWidgetCursor(int cursor);

  // Opens a document, folder or web address with the desktop's program.
  // False, with nothing started, when there is no such program.
  static bool ShellOpen(const std::string& target);

  // Counts the input events dispatched: tells a widget whether two things
  // happened on the same press.
  unsigned long EventNumber() const { return eventNumber_; }
  // The form the mouse was last pressed on, and the EventNumber of that
  // press: tells a pop-up that the user has turned to another window.
  const cfForm* LastPressedForm() const { return lastPressed_; }
  unsigned long LastPressEvent() const { return lastPressEvent_; }

  // Everything pending once: events, due timers, deferred work, painting.
  void DoEvents();
  // Until the last form is gone, or Quit.
  void RunMessageLoop();
  // Shows `dialog` over the others, modal for `owner`, and returns when it
  // is closed, or on Quit. Without an owner (or with one not shown), the
  // active form owns it. The owner is the dialog's Owner() while it runs; a
  // dialog never placed opens in the middle of its owner. Every other form
  // takes no input meanwhile; a press on one brings forward the innermost
  // dialog of the chain that form owns.
  void RunModal(cfForm& dialog, cfForm* owner = nullptr);
  // The form the user's input goes to: the one last pressed or typed in,
  // while it is shown and not under a modal dialog; else the newest such
  // form. Never a pop-up; none when no form can take input.
  cfForm* ActiveForm() const;
  // Ends every running loop, the nested ones of modal forms too.
  void Quit() { quitting_ = true; }
  bool Quitting() const { return quitting_; }

  // An event handled by the loop before the backend's, as if the user had
  // made it: how a script acts.
  void PostEvent(const UiEvent& e) { posted_.push_back(e); }
  // Called whenever a loop is idle (events handled, due timers fired,
  // deferred work done, painted), in a modal form's loop too. It answers
  // whether it did something the loop must look at before waiting.
  std::function<bool()> OnIdle;

 private:
  void Dispatch(const UiEvent& e);
  void FireDueTimers();
  void RunDeferred();
  void ReleaseRemovedWidgets();
  void PaintAll();
  void EndDrag();
  double NextTimerIn();
  // Events (waiting at most `waitMs` for the first), due timers, deferred
  // work and painting, once; whether any event came.
  bool ProcessOnce(double waitMs);
  // Anything to do before the loop may wait: events posted, work deferred, pictures to paint.
  bool Busy() const;
  void Idle();

  struct TimerEntry {
    int id;
    Widget* owner;
    double interval;
    double due;
    std::function<void()> onTimer;
  };
  std::unique_ptr<UiBackend> backend_;
  std::vector<TimerEntry> timers_;
  std::vector<std::function<void()>> deferred_;
  std::vector<UiEvent> posted_;
  bool quitting_ = false;
  bool idleActed_ = false;
  std::vector<std::shared_ptr<Widget>> graveyard_;
  std::vector<cfForm*> forms_;
  cfForm* inputForm_ = nullptr;  // last pressed or typed in
  std::string dragKey_, dragPicture_;
  Widget* dragSource_ = nullptr;
  int nextTimer_ = 1;
  int screenCursor_ = 0, widgetCursor_ = 32512;
  unsigned long eventNumber_ = 0;
  const cfForm* lastPressed_ = nullptr;
  unsigned long lastPressEvent_ = 0;
  ImageList* images_ = nullptr;
  PlatformRoot* previous_;
};

// Fires every `Interval` ms while enabled, on the loop.
class Timer {
 public:
  explicit Timer(Widget& owner) : owner_(owner) {}
  ~Timer() { setEnabled(false); }
  std::function<void()> OnTimer;
  double Interval = 100;
  bool Enabled() const { return id_ != 0; }
  void setEnabled(bool on);

 private:
  Widget& owner_;
  int id_ = 0;
};

// No display: events are put in by tests, and time moves when they say.
class HeadlessBackend : public UiBackend {
 public:
  double NowMs() override { return now_; }
  bool WaitEvent(double timeoutMs, UiEvent& event) override;
  void Push(const UiEvent& e) { queue_.push_back(e); }
  void AdvanceMs(double ms) { now_ += ms; }
  // Asked for the next user action when nothing is queued inside a loop.
  std::function<void()> OnIdle;
  int Presented() const { return presented_; }
  void Present(cfForm&) override { ++presented_; }

 private:
  std::vector<UiEvent> queue_;
  double now_ = 0;
  int presented_ = 0;
};

}  // namespace qds
