#pragma once
// The object behind every visual element: a rectangle in its parent, its
// children (owned, with keys), visibility, enabled state, focus, capture,
// tool tip and cursor, and the W_* events. Geometry is in logical units;
// the form scales them by the interface zoom when it paints and hit-tests.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/KeyedCollection.h"
#include "platform/Value.h"

namespace qds {

class DrawingContext;
class cfForm;
class Widget;

// Key codes and flags as the program's handlers expect them.
namespace Key {
constexpr int Back = 8, Tab = 9, Return = 13, ShiftKey = 16, Control = 17, AltKey = 18, Escape = 27,
              Space = 32, PageUp = 33, PageDown = 34, End = 35, Home = 36, Left = 37, Up = 38, Right = 39,
              Down = 40, PrintScreen = 44, Insert = 45, Delete = 46, Numpad0 = 96, F1 = 112;
}
namespace Shift {
constexpr int None = 0, ShiftKey = 1, Ctrl = 2, Alt = 4;
}
namespace Button {
constexpr int None = 0, Left = 1, Right = 2, Middle = 4;
}
namespace Cursor {
constexpr int Arrow = 32512, Wait = 32514, Hand = 32649, IBeam = 32513, SizeNWSE = 32642, SizeNESW = 32643,
              SizeWE = 32644, SizeNS = 32645, SizeAll = 32646;
}

// What a widget shows a user, for the automation's dump and `expect`: each
// class fills in the parts it has and leaves the others unset.
struct WidgetState {
  struct Item {
    std::string key, caption;
    bool enabled = true, checked = false;
  };
  std::optional<std::string> caption, text;
  std::optional<double> value, min, max;
  std::optional<bool> checked;
  std::optional<int> listCount, listIndex, scrollIndex;
  // A text's selection, in characters.
  std::optional<int> selStart, selLength;
  std::optional<std::vector<int>> selected;
  std::optional<std::vector<Item>> items;
};

// How a parent places a child whenever the parent's size changes.
// Docked: along an edge of the room the earlier docked children left, at
// its own width (Left, Right) or height (Top, Bottom); Fill takes what
// remains.
enum class Dock { None, Left, Top, Right, Bottom, Fill };
// Anchored: keeps its distances to the parent's edges named; anchored to
// both edges of a pair it stretches with the parent.
namespace Anchor {
constexpr int Left = 1, Top = 2, Right = 4, Bottom = 8;
}
// A box places the children that are not docked one after another.
enum class BoxDirection { None, Row, Column };

// A point a script can aim at inside a part of a widget (a row, an item),
// in logical units of `widget`, which may be a pop-up the widget opened.
struct WidgetPoint {
  Widget* widget = nullptr;  // none: the part is not there or not shown
  double x = 0, y = 0;
};

// The children of a widget, in paint order (the last is on top). They are
// held shared, so that one removed in the middle of an event lives on to
// the end of the turn.
class Widgets {
 public:
  explicit Widgets(Widget& owner) : owner_(owner) {}
  // Adds and answers the widget; a key already there raises an AppError.
  template <class W>
  W& Add(std::unique_ptr<W> widget, std::string_view key = {}) {
    W& ref = *widget;
    AddWidget(std::unique_ptr<Widget>(std::move(widget)), key);
    return ref;
  }
  // Makes a W of the arguments and adds it: Add<cwButton>("btnOk").
  template <class W, class... Args>
  W& Add(std::string_view key, Args&&... args) {
    return Add(std::make_unique<W>(std::forward<Args>(args)...), key);
  }
  void Remove(std::string_view key);
  void Remove(Widget& widget);
  Widget& Item(std::string_view key) const { return *items_.Item(key); }
  Widget& Item(int index) const { return *items_.Item(index); }
  bool Exists(std::string_view key) const { return items_.Exists(key); }
  int Count() const { return items_.Count(); }

 private:
  void AddWidget(std::unique_ptr<Widget> widget, std::string_view key);
  Widget& owner_;
  KeyedCollection<std::shared_ptr<Widget>> items_;
};

class Widget {
 public:
  explicit Widget(std::string typeName = "Widget");
  virtual ~Widget();
  Widget(const Widget&) = delete;
  Widget& operator=(const Widget&) = delete;

  const std::string& TypeName() const { return typeName_; }
  const std::string& Key() const { return key_; }
  Widget* Parent() const { return parent_; }
  cfForm* Form() const;
  Widgets& Children() { return children_; }
  const Widgets& Children() const { return children_; }
  // A widget below this one by its keys, "frmButtons/btnOk"; null when there
  // is none, or when it is no W.
  template <class W = Widget>
  W* Find(std::string_view path) {
    return dynamic_cast<W*>(FindWidget(path));
  }

  // Geometry in logical units, relative to the parent.
  double Left() const { return left_; }
  double Top() const { return top_; }
  double Width() const { return width_; }
  double Height() const { return height_; }
  // Also the place its anchors keep from now on. A new size is told to
  // the widget (W_Resize) by the next layout pass, never from inside Move,
  // so a constructor may move its widget before its members exist.
  void Move(double left, double top, double width, double height);
  // The widget's top-left corner in logical units of its form.
  void FormPosition(double& x, double& y) const;

  // Layout. Each setter lets the parent place its children again.
  Dock Docked() const { return dock_; }
  void setDock(Dock dock);
  // Distances are measured against the parent's size now; Move measures again.
  int Anchors() const { return anchors_; }
  void setAnchors(int edges);
  // The children not docked go in a row or column inside `padding`, with
  // `spacing` between them.
  void setBoxLayout(BoxDirection direction, double padding = 0, double spacing = 0);
  // In a box: its size along the box (0: its present size) and its share of
  // the room left over (0: none); across the box it takes the whole room.
  void setBoxHint(double size, double stretch);
  // Places the children and tells the widgets of this tree whose size
  // changed. The loop runs it once per turn, before it hands on input and
  // before it paints; code that must see the new places at once calls it.
  void LayoutNow();

  bool Visible() const { return visible_; }
  void setVisible(bool v);
  bool Enabled() const { return enabled_; }
  void setEnabled(bool v);
  // Shown and enabled, and so are all its parents.
  bool ShownInTree() const;
  bool EnabledInTree() const;

  // Marks the widget to be painted again in the next turn of the loop.
  void Refresh();
  void LockRefresh(bool locked) { refreshLocked_ = locked; }
  bool RefreshLocked() const { return refreshLocked_; }

  bool CanFocus = false;
  // A widget that edits typed text: a dialog gives the first of these the
  // focus as it opens, so the user can type at once.
  bool TakesText = false;
  void SetFocus();
  bool HasFocus() const;
  void SetCapture();
  void ReleaseCapture();
  bool HasCapture() const;
  bool MouseOver() const;
  // The mouse buttons held now (Button flags).
  int MouseButtons() const;

  // A press on it moves a frameless window: a title bar, and the captions
  // and pictures on it; not the buttons on it, which keep their presses.
  bool DragsWindow = false;

  std::string ToolTip;
  // Shown while the mouse is over the widget, or while it has the capture.
  int MouseCursor = Cursor::Arrow;

  // Starts a drag that carries `dataKey`, showing `pictureKey` at the mouse.
  void StartDrag(const std::string& dataKey, const std::string& pictureKey = {});

  // Raises `name` up the tree: each ancestor's W_BubblingEvent hears it,
  // and last the form's Form_BubblingEvent. The platform raises its own
  // events this way too, under their names ("W_MouseDown", "W_Click", ...),
  // with the arguments of the handler (mouse: button, shift, x, y; keys:
  // key code, shift).
  void RaiseBubblingEvent(const std::string& name, const std::vector<Value>& args = {});
  // Tells an event through both channels at once, so that they cannot
  // drift apart: the typed callback, when one is set, and then the
  // bubbling event of that name with the same arguments.
  template <class... Args>
  void RaiseEvent(const std::function<void(Args...)>& callback, const std::string& name,
                  std::type_identity_t<Args>... args) {
    if (callback) callback(args...);
    RaiseBubblingEvent(name, {Value(args)...});
  }

  // Events. Mouse handlers answer whether they took the input; what a
  // widget leaves goes to its parent. Coordinates are logical, relative to
  // the widget.
  virtual void W_Paint(DrawingContext& ctx, double width, double height) {
    (void)ctx, (void)width, (void)height;
  }
  // Paints over the children once they are painted (a focus frame, a
  // selection drawn across them), clipped to the widget.
  virtual void W_PaintOver(DrawingContext& ctx, double width, double height) {
    (void)ctx, (void)width, (void)height;
  }
  virtual bool W_MouseDown(int button, int shift, double x, double y) { return Ignore(button, shift, x, y); }
  virtual bool W_MouseMove(int button, int shift, double x, double y) { return Ignore(button, shift, x, y); }
  virtual bool W_MouseUp(int button, int shift, double x, double y) { return Ignore(button, shift, x, y); }
  virtual bool W_DblClick(int button, int shift, double x, double y) { return Ignore(button, shift, x, y); }
  virtual bool W_MouseWheel(int delta, int shift, double x, double y) { return Ignore(delta, shift, x, y); }
  // The left button went down and up on this widget.
  virtual void W_Click() {}
  // The widget's size changed, or it is new: the layout pass has placed
  // the children that have rules, and it may place the others.
  virtual void W_Resize() {}
  virtual void W_MouseEnter() {}
  virtual void W_MouseLeave() {}
  // Keys go to the focused widget. A handler answers whether it took the
  // key; one it leaves climbs to the widget's parent, and on to the form.
  virtual bool W_KeyDown(int keyCode, int shift) { return Ignore(keyCode, shift, 0, 0); }
  virtual bool W_KeyUp(int keyCode, int shift) { return Ignore(keyCode, shift, 0, 0); }
  virtual bool W_KeyPress(int keyAscii) { return Ignore(keyAscii, 0, 0, 0); }
  // A drag of the program ended over this widget.
  virtual void W_DragDrop(const std::string& dataKey, Widget& source, double x, double y) {
    (void)dataKey, (void)source, (void)x, (void)y;
  }
  // Alt with a letter: true when the widget takes it (a caption's "&S").
  virtual bool W_AccessKey(char letter) {
    (void)letter;
    return false;
  }
  virtual void W_GotFocus() {}
  virtual void W_LostFocus() {}
  // An event raised by a widget below this one, on its way to the form.
  virtual void W_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) {
    (void)source, (void)name, (void)args;
  }
  // The widget's own state (caption, value, rows, ...) for the automation.
  virtual void W_ReportState(WidgetState& state) const { (void)state; }
  // Where a row, or an item by its key, is shown now; none when it is not.
  virtual WidgetPoint W_RowPoint(int row) {
    (void)row;
    return {};
  }
  virtual WidgetPoint W_ItemPoint(const std::string& key) {
    (void)key;
    return {};
  }

 private:
  friend class Widgets;
  friend class cfForm;
  static bool Ignore(int, int, double, double) { return false; }
  Widget* FindWidget(std::string_view path);
  // The layout pass: rules of the children, then W_Resize, for each
  // widget of the tree that asked. True when one ran.
  bool LayoutTree();
  void ArrangeChildren();
  // Sets the rectangle as the layout does: the anchors keep their distances.
  void Place(double left, double top, double width, double height);
  void MeasureAnchors();
  // This widget is to be laid out again in the next pass.
  void NeedLayout();

  std::string typeName_;
  std::string key_;
  Widget* parent_ = nullptr;
  Widgets children_;
  double left_ = 0, top_ = 0, width_ = 0, height_ = 0;
  bool visible_ = true;
  bool enabled_ = true;
  bool refreshLocked_ = false;
  bool layoutDue_ = true;  // a new widget hears its size once
  Dock dock_ = Dock::None;
  int anchors_ = Anchor::Left | Anchor::Top;
  double anchorRight_ = 0, anchorBottom_ = 0;
  BoxDirection box_ = BoxDirection::None;
  double boxPadding_ = 0, boxSpacing_ = 0, boxSize_ = 0, boxStretch_ = 0;
};

}  // namespace qds
