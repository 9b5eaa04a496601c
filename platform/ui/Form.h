#pragma once
// A top-level window: its widgets, its picture, and the routing of mouse
// and keyboard input to the widget under the mouse or with the focus.

#include <memory>
#include <string>
#include <vector>

#include "platform/Drawing.h"
#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"

namespace qds {

// Who closes a form: the user by the window's close box, or the program.
namespace UnloadMode {
constexpr int ControlMenu = 0, Code = 1;
}

// The borders of a window, as flags.
namespace Edge {
constexpr int Left = 1, Top = 2, Right = 4, Bottom = 8;
}

class cfForm : public Widget {
 public:
  // The type name is the form's name in scripts and dumps.
  explicit cfForm(std::string typeName = "cfForm");
  ~cfForm() override;

  // The window's title: a new one goes to the window system at once.
  Property<std::string> Caption{*this, {}, [this] { TitleChanged(); }};
  // Device pixels per logical unit (the interface zoom).
  double Zoom() const { return zoom_; }
  void setZoom(double zoom);

  // Where the window is: its top-left corner on the screen, in device
  // pixels, kept apart from the widget geometry. A form's Left and Top are
  // always 0, so that positions summed up the widget tree never include the
  // window's place; its Width and Height are logical units, which the zoom
  // makes ScreenWidth and ScreenHeight.
  double ScreenX() const { return screenX_; }
  double ScreenY() const { return screenY_; }
  double ScreenWidth() const { return Width() * zoom_; }
  double ScreenHeight() const { return Height() * zoom_; }
  // Whether the program, or the window system, has put the window
  // somewhere. One never placed opens where the backend chooses: a modal
  // dialog over its owner, another form in the middle of the screen.
  bool HasScreenPosition() const { return placed_; }
  // Moves the window on the screen (device pixels); the window follows.
  void MoveOnScreen(double x, double y);
  // Places and sizes the window in device pixels: its logical size becomes
  // w / Zoom() by h / Zoom().
  void SetScreenRect(double x, double y, double w, double h);
  // The size in logical units; the window's place stays.
  void Resize(double width, double height);
  // A form is not moved as a widget is: Widget::Move takes a place in the
  // parent and a size in one unit, while a form's place is in screen pixels
  // and its size in logical units. Use Resize and MoveOnScreen.
  void Move(double left, double top, double width, double height) = delete;
  // The backend tells where the window system has put the window (it
  // opened it there, or the user moved it); nothing is sent back.
  void NoteScreenPosition(double x, double y);
  // The background colour (0xBBGGRR) painted under the widgets.
  Property<std::int64_t> BackColor{*this, 0x323232};

  // Pictures of the image cache: the window's icon, and one stretched
  // over the background.
  const std::string& IconKey() const { return iconKey_; }
  void setIconKey(const std::string& key);
  std::string PictureKey;

  // Without the desktop's frame; the form is then moved by dragging its
  // top DragRegionHeight units where no widget takes the mouse.
  bool Borderless = false;
  double DragRegionHeight = 0;
  // The user may change the size: by the desktop's frame, or, borderless,
  // by dragging the outer kResizeBorder pixels. Never below the minimum.
  bool Sizable = false;
  double MinWidth = 120, MinHeight = 80;
  static constexpr double kResizeBorder = 5;
  // What a press at a device point of the window does to the window: the
  // Edge flags of the borders it sizes, kMovesWindow when it moves the
  // window, 0 when it goes to the widgets. The real window system asks this
  // before the press reaches the program.
  static constexpr int kMovesWindow = 16;
  int WindowPartAt(double x, double y);

  enum class WindowState { Normal, Maximized };
  WindowState State() const { return state_; }
  // Maximised, the form covers the work area; restored, its old place on
  // the screen and its old size in logical units.
  void setState(WindowState state);
  // To the desktop's task bar; the desktop brings it back.
  void Minimize();

  void Show();
  // Takes the window off the screen without asking or unloading anything;
  // Show brings it back as it was.
  void Hide();
  // Asks Form_QueryUnload; on yes runs Form_Unload and closes.
  bool Close(int unloadMode = UnloadMode::Code);
  bool Showing() const { return showing_; }
  // A pop-up closes when the mouse is pressed outside it, on another form.
  bool PopUp = false;
  // The pop-up this one was opened from (a sub-menu's menu): a press in
  // this one leaves that one open.
  cfForm* OpenedFrom = nullptr;
  // While open, a pop-up takes the keys typed in any window; a tip does not.
  bool TakesKeyboard = true;
  bool Modal() const { return modal_; }
  // While the form runs modal, the form it is modal for: the one that
  // opened it (PlatformRoot::RunModal), none when no form was open.
  cfForm* Owner() const { return owner_; }
  // Puts the window in the middle of `owner`'s, kept on the work area.
  void CentreOver(const cfForm& owner);
  // Puts a pop-up of the present size at (x, y), screen pixels, and keeps it
  // on the work area: where it would run off the bottom it ends at
  // `flipBottom` instead (above what opened it), off the right it ends at
  // `flipRight`; then it is pushed inside.
  void PlacePopUp(double x, double y, double flipBottom, double flipRight);

  // The layout pass, when a widget of the form asked for one since the last.
  void LayoutIfWanted();

  // The picture of the form in device pixels, painted when dirty.
  const SurfacePtr& Surface();
  bool Dirty() const { return dirty_; }
  // All of it, or a rectangle in logical units of the form, is to be painted again.
  void Invalidate();
  void InvalidateRect(double x, double y, double w, double h);
  void Paint();
  // The device rectangles the last Paint changed, for the backend to
  // upload: a few small ones for changes far apart, not the box around them.
  struct DeviceRect {
    int x = 0, y = 0, w = 0, h = 0;
  };
  const std::vector<DeviceRect>& LastPaintedRects() const { return lastPainted_; }
  // The box around them.
  DeviceRect LastPainted() const;
  static constexpr std::size_t kMostDirtyRects = 8;

  // Input in device pixels of the form, as the backend delivers it.
  void MouseDown(int button, int shift, double x, double y);
  void MouseMove(int button, int shift, double x, double y);
  void MouseUp(int button, int shift, double x, double y);
  void DblClick(int button, int shift, double x, double y);
  void MouseWheel(int delta, int shift, double x, double y);
  void KeyDown(int keyCode, int shift);
  void KeyUp(int keyCode, int shift);
  void KeyPress(int keyAscii);

  // The deepest shown and enabled widget at a device point; the form itself
  // when none.
  Widget& HitTest(double x, double y);
  Widget* FocusWidget() const { return focus_; }
  Widget* CaptureWidget() const { return capture_; }
  Widget* HoverWidget() const { return hover_; }
  // The tip shown for the widget the mouse rests on, if any.
  cfForm* ToolTipWindow() const { return tip_.get(); }
  static constexpr double kToolTipDelayMs = 600;

  // Events of the form. A key comes to Form_KeyDown last, when no widget
  // from the focused one up took it; it answers whether it took it.
  virtual void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) {
    (void)source, (void)name, (void)args;
  }
  virtual bool Form_KeyDown(int keyCode, int shift) {
    (void)keyCode, (void)shift;
    return false;
  }
  // Whether the form may close; `unloadMode` says who asks.
  virtual bool Form_QueryUnload(int unloadMode) {
    (void)unloadMode;
    return true;
  }
  virtual void Form_Unload() {}

 private:
  friend class Widget;
  friend class Widgets;
  friend class PlatformRoot;
  void SetFocusTo(Widget* w);
  void TitleChanged();
  // Offers a key to the focused widget and up to the form; true when one took it.
  template <class Handler>
  bool ClimbKey(const char* name, Handler handler);
  void BubbleKey(const char* name, int keyCode, int shift);
  bool AccessKey(Widget& w, char letter);
  void MoveFocus(int step);
  void DropReferencesTo(const Widget& gone);  // a widget left the tree
  template <class Handler>
  void Route(Widget* start, double fx, double fy, const char* name, int button, int shift, Handler handler);
  void UpdateHover(Widget* now);
  // Which borders of a sizable frameless form a device point is on
  // (Edge flags), 0 when none or when the form cannot be sized.
  int ResizeEdgeAt(double x, double y) const;
  void ResizeTo(double screenX, double screenY);
  void ShowToolTip();
  void HideToolTip();

  double zoom_ = 1;
  bool layoutWanted_ = true;
  double screenX_ = 0, screenY_ = 0;  // device pixels
  bool placed_ = false;
  SurfacePtr surface_;
  bool dirty_ = true;
  struct DirtyRect {
    double x0, y0, x1, y1;  // device pixels
  };
  std::vector<DirtyRect> dirtyRects_{{0, 0, 1e9, 1e9}};
  std::vector<DeviceRect> lastPainted_;
  bool showing_ = false;
  bool modal_ = false;
  cfForm* owner_ = nullptr;
  bool disabledByModal_ = false;
  Widget* focus_ = nullptr;
  Widget* capture_ = nullptr;
  Widget* hover_ = nullptr;
  Widget* clickTarget_ = nullptr;  // where the left button went down
  double mouseX_ = 0, mouseY_ = 0;
  int buttons_ = 0;
  bool movingWindow_ = false;
  double grabX_ = 0, grabY_ = 0;
  int resizing_ = 0;                   // the Edge flags being dragged
  double grabRect_[4] = {0, 0, 0, 0};  // screen x, y, width, height in device pixels
  std::string iconKey_;
  WindowState state_ = WindowState::Normal;
  double restoreX_ = 0, restoreY_ = 0;           // device pixels
  double restoreWidth_ = 0, restoreHeight_ = 0;  // logical units
  int tipTimer_ = 0;
  std::shared_ptr<cfForm> tip_;
};

// Closes a form its owner held (a pop-up) and lets it go once the current
// event is over, which may be one of its own.
void DisposeForm(std::shared_ptr<cfForm> form);

}  // namespace qds
