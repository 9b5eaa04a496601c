#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/ImageList.h"
#include "platform/SvgRenderer.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"
#include "tests/support/Pixels.h"

using namespace qds;

namespace {

// A widget that fills itself with a colour and writes down what reaches it.
struct Probe : Widget {
  std::int64_t colour;
  bool takes;
  std::vector<std::string> log;
  int paints = 0;
  std::shared_ptr<int> life = std::make_shared<int>(0);  // goes with the widget
  Probe(std::int64_t c, bool takesMouse = true) : Widget("Probe"), colour(c), takes(takesMouse) {}
  void W_Paint(DrawingContext& ctx, double w, double h) override {
    ++paints;
    ctx.SetSourceColor(colour);
    ctx.Rectangle(0, 0, w, h);
    ctx.Fill();
  }
  bool W_MouseDown(int, int, double x, double y) override {
    log.push_back("down " + std::to_string(int(x)) + "," + std::to_string(int(y)));
    return takes;
  }
  bool W_MouseMove(int, int, double x, double y) override {
    log.push_back("move " + std::to_string(int(x)) + "," + std::to_string(int(y)));
    return takes;
  }
  bool W_MouseUp(int, int, double, double) override {
    log.push_back("up");
    return takes;
  }
  void W_MouseEnter() override { log.push_back("enter"); }
  void W_MouseLeave() override { log.push_back("leave"); }
  void W_GotFocus() override { log.push_back("got focus"); }
  void W_LostFocus() override { log.push_back("lost focus"); }
  int takesKey = 0;  // the one key it uses
  bool W_KeyDown(int key, int shift) override {
    log.push_back("key " + std::to_string(key) + "/" + std::to_string(shift));
    return key == takesKey;
  }
  bool W_KeyPress(int ascii) override {
    log.push_back(std::string("press ") + char(ascii));
    return false;
  }
  std::vector<std::string> heard;  // events bubbling up from below
  void W_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>&) override {
    heard.push_back(source.Key() + ":" + name);
  }
};

struct TestForm : cfForm {
  std::vector<std::string> bubbled;
  std::vector<int> keys;
  bool takesEscape = false;
  bool keepOnCloseBox = false;
  int unloaded = 0;
  bool Form_QueryUnload(int mode) override { return !(keepOnCloseBox && mode == UnloadMode::ControlMenu); }
  void Form_Unload() override { ++unloaded; }
  void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) override {
    bubbled.push_back(source.Key() + ":" + name + (args.empty() ? "" : ":" + args[0].AsString()));
  }
  bool Form_KeyDown(int key, int) override {
    keys.push_back(key);
    return takesEscape && key == Key::Escape;
  }
};

struct Ui : ::testing::Test {
  HeadlessBackend* backend = new HeadlessBackend;
  PlatformRoot root{std::unique_ptr<UiBackend>(backend)};
  TestForm form;
  Probe* panel = nullptr;
  Probe* child = nullptr;
  void SetUp() override {
    form.Resize(100, 80);
    form.BackColor = 0xFFFFFF;
    panel = &form.Children().Add(std::make_unique<Probe>(0x0000FF, false), "panel");
    panel->Move(10, 10, 50, 40);
    child = &panel->Children().Add(std::make_unique<Probe>(0xFF0000), "child");
    child->Move(30, 20, 40, 40);  // reaches beyond the panel's right edge
    child->CanFocus = true;
    form.Show();
  }
  void Click(double x, double y, int shift = 0) {
    backend->Push({UiEvent::Type::MouseDown, &form, Button::Left, shift, 0, x, y});
    backend->Push({UiEvent::Type::MouseUp, &form, Button::Left, shift, 0, x, y});
    root.DoEvents();
  }
};

}  // namespace

TEST_F(Ui, ChildrenPaintClippedToTheirParentsAndScaleWithTheZoom) {
  root.DoEvents();
  const SurfacePtr& s = form.Surface();
  EXPECT_EQ(PixelAt(s, 5, 5), (Bgra{255, 255, 255, 255}));    // the form
  EXPECT_EQ(PixelAt(s, 15, 15), (Bgra{0, 0, 255, 255}));      // the panel
  EXPECT_EQ(PixelAt(s, 45, 35), (Bgra{255, 0, 0, 255}));      // the child over it
  EXPECT_EQ(PixelAt(s, 65, 35), (Bgra{255, 255, 255, 255}));  // the child cut at the panel's edge
  EXPECT_GE(backend->Presented(), 1);

  form.setZoom(2);
  root.DoEvents();
  EXPECT_EQ(form.Surface()->Width(), 200);
  EXPECT_EQ(PixelAt(form.Surface(), 30, 30), (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(&form.HitTest(90, 70), child);  // device pixels
  panel->setVisible(false);
  root.DoEvents();
  EXPECT_EQ(PixelAt(form.Surface(), 90, 70), (Bgra{255, 255, 255, 255}));
}

TEST_F(Ui, ARefreshRepaintsOnlyTheWidgetsItsAreaMeetsAndTheResultIsTheWhole) {
  Probe& other = form.Children().Add(std::make_unique<Probe>(0x00FF00), "other");
  other.Move(85, 5, 10, 10);
  root.DoEvents();
  panel->paints = child->paints = other.paints = 0;

  child->colour = 0x00FFFF;
  child->Refresh();
  root.DoEvents();
  EXPECT_EQ(child->paints, 1);
  EXPECT_EQ(panel->paints, 1);  // under the child
  EXPECT_EQ(other.paints, 0);
  const cfForm::DeviceRect r = form.LastPainted();
  EXPECT_LE(r.x, 40);
  EXPECT_LE(r.y, 30);
  EXPECT_LE(r.x + r.w, 82);  // the child's area, a pixel to spare
  EXPECT_LT(r.y + r.h, 75);
  EXPECT_EQ(PixelAt(form.Surface(), 45, 35), (Bgra{0, 255, 255, 255}));

  // What the partial painting left is what painting everything gives.
  const SurfacePtr partial = DrawingSurface::Create(100, 80);
  {
    DrawingContext copy(partial);
    copy.DrawSurface(form.Surface(), 0, 0, 100, 80, Filter::Fast);
  }
  form.Invalidate();
  root.DoEvents();
  EXPECT_EQ(other.paints, 1);
  for (int y = 0; y < 80; ++y) {
    for (int x = 0; x < 100; ++x)
      ASSERT_EQ(PixelAt(partial, x, y), PixelAt(form.Surface(), x, y)) << x << "," << y;
  }
}

TEST_F(Ui, MouseGoesToTheDeepestWidgetThenUpAndFollowsTheCapture) {
  Click(45, 35);
  EXPECT_EQ(child->log, (std::vector<std::string>{"got focus", "down 5,5", "up"}));
  EXPECT_TRUE(child->HasFocus());
  Click(15, 15);  // the panel does not take it: the form gets it, nothing breaks
  EXPECT_EQ(panel->log.back(), "up");

  // Moves: enter and leave as the mouse crosses; a captured widget gets
  // the moves even outside itself.
  child->log.clear();
  backend->Push({UiEvent::Type::MouseMove, &form, 0, 0, 0, 45, 35});
  backend->Push({UiEvent::Type::MouseMove, &form, 0, 0, 0, 5, 5});
  root.DoEvents();
  EXPECT_EQ(child->log, (std::vector<std::string>{"enter", "move 5,5", "leave"}));
  child->SetCapture();
  child->log.clear();
  backend->Push({UiEvent::Type::MouseMove, &form, Button::Left, 0, 0, 5, 5});
  root.DoEvents();
  EXPECT_EQ(child->log, (std::vector<std::string>{"move -35,-25"}));
  child->ReleaseCapture();
  EXPECT_FALSE(child->HasCapture());

  // A disabled widget lets the input fall to what is under it.
  child->setEnabled(false);
  child->log.clear();
  Click(45, 35);
  EXPECT_TRUE(child->log.empty());
}

TEST_F(Ui, KeysClimbFromTheFocusToTheFormAndEventsBubble) {
  child->SetFocus();
  child->takesKey = Key::Left;
  panel->takesKey = Key::Up;
  form.takesEscape = true;
  // The focused widget takes Left; Up climbs to the panel, which takes it;
  // Escape climbs past both to the form; F1 nobody takes.
  backend->Push({UiEvent::Type::KeyDown, &form, 0, Shift::Ctrl, Key::Left, 0, 0});
  backend->Push({UiEvent::Type::KeyDown, &form, 0, 0, Key::Up, 0, 0});
  backend->Push({UiEvent::Type::KeyDown, &form, 0, 0, Key::Escape, 0, 0});
  backend->Push({UiEvent::Type::KeyDown, &form, 0, 0, Key::F1, 0, 0});
  backend->Push({UiEvent::Type::KeyPress, &form, 0, 0, 'q', 0, 0});
  root.DoEvents();
  EXPECT_EQ(child->log, (std::vector<std::string>{"got focus", "key 37/2", "key 38/0", "key 27/0",
                                                  "key 112/0", "press q"}));
  EXPECT_EQ(panel->log, (std::vector<std::string>{"key 38/0", "key 27/0", "key 112/0", "press q"}));
  EXPECT_EQ(form.keys, (std::vector<int>{Key::Escape, Key::F1}));

  // The platform's own events bubble by name with their arguments, each
  // ancestor hearing them before the form; a key somebody took does not.
  child->RaiseBubblingEvent("Click", {Value(3)});
  EXPECT_EQ(form.bubbled, (std::vector<std::string>{"child:W_GotFocus", "child:W_KeyDown:112",
                                                    "child:W_KeyPress:113", "child:Click:3"}));
  EXPECT_EQ(panel->heard, (std::vector<std::string>{"child:W_GotFocus", "child:W_KeyDown", "child:W_KeyPress",
                                                    "child:Click"}));
  // Down and up on one widget is a click; released elsewhere, it is not.
  panel->heard.clear();
  Click(45, 35);
  EXPECT_EQ(panel->heard,
            (std::vector<std::string>{"child:W_MouseDown", "child:W_MouseUp", "child:W_Click"}));
  panel->heard.clear();
  backend->Push({UiEvent::Type::MouseDown, &form, Button::Left, 0, 0, 45, 35});
  backend->Push({UiEvent::Type::MouseUp, &form, Button::Left, 0, 0, 5, 5});
  root.DoEvents();
  EXPECT_EQ(panel->heard, (std::vector<std::string>{"child:W_MouseDown"}));

  // Removing the focused widget forgets it; it lives on through the turn,
  // while events for it may still come, and is deleted at its end.
  const std::weak_ptr<int> alive = child->life;
  bool aliveInTurn = false;
  panel->Children().Remove("child");
  EXPECT_EQ(form.FocusWidget(), nullptr);
  EXPECT_FALSE(panel->Children().Exists("child"));
  root.DeferredInvoke([&] { aliveInTurn = !alive.expired(); });
  backend->Push({UiEvent::Type::KeyPress, &form, 0, 0, 'x', 0, 0});
  root.DoEvents();
  EXPECT_TRUE(aliveInTurn);
  EXPECT_TRUE(alive.expired());
}

TEST_F(Ui, TimersAndDeferredWorkRunOnTheLoop) {
  int fired = 0, deferred = 0;
  Timer timer(*panel);
  timer.Interval = 30;
  timer.OnTimer = [&] { ++fired; };
  timer.setEnabled(true);
  root.DoEvents();
  EXPECT_EQ(fired, 0);
  backend->AdvanceMs(31);
  root.DoEvents();
  EXPECT_EQ(fired, 1);
  backend->AdvanceMs(29);
  root.DoEvents();
  EXPECT_EQ(fired, 1);
  backend->AdvanceMs(2);
  root.DeferredInvoke([&] { deferred = fired; });
  root.DoEvents();
  EXPECT_EQ(fired, 2);
  EXPECT_EQ(deferred, 2);  // after the timer of the same turn
  timer.setEnabled(false);
  backend->AdvanceMs(100);
  root.DoEvents();
  EXPECT_EQ(fired, 2);

  // A widget's timers end with it.
  const int id = root.SetTimer(child, 10, [&] { ++fired; });
  (void)id;
  panel->Children().Remove("child");
  root.DoEvents();
  backend->AdvanceMs(50);
  root.DoEvents();
  EXPECT_EQ(fired, 2);
}

TEST_F(Ui, DistantChangesRepaintApartAFailingWidgetSpoilsOnlyItselfAndPaintOverComesLast) {
  // Two small changes in opposite corners: two small rectangles, and the
  // panel between them is left alone.
  Probe& a = form.Children().Add<Probe>("a", 0x00FF00);
  a.Move(2, 2, 6, 6);
  Probe& b = form.Children().Add<Probe>("b", 0x00FF00);
  b.Move(90, 70, 6, 6);
  root.DoEvents();
  panel->paints = a.paints = b.paints = 0;
  a.Refresh();
  b.Refresh();
  root.DoEvents();
  EXPECT_EQ(a.paints, 1);
  EXPECT_EQ(b.paints, 1);
  EXPECT_EQ(panel->paints, 0);
  ASSERT_EQ(form.LastPaintedRects().size(), 2u);
  for (const cfForm::DeviceRect& r : form.LastPaintedRects()) EXPECT_LE(r.w * r.h, 10 * 10);

  // A widget whose painting fails half way, with a state saved and moved:
  // its child, the widget after it and the paint-over of its parent still
  // paint, each in its place.
  struct Failing : Probe {
    using Probe::Probe;
    void W_Paint(DrawingContext& ctx, double, double) override {
      ctx.Save();
      ctx.Translate(-30, -30);
      ctx.Rectangle(0, 0, 5, 5);
      throw std::runtime_error("no paint today");
    }
  };
  struct Framed : Probe {
    using Probe::Probe;
    void W_PaintOver(DrawingContext& ctx, double w, double) override {
      ctx.SetSourceColor(0x000000);
      ctx.Rectangle(0, 0, w, 3);
      ctx.Fill();
    }
  };
  Framed& framed = form.Children().Add<Framed>("framed", 0xFFFF00);
  framed.Move(60, 40, 38, 20);
  Failing& failing = framed.Children().Add<Failing>("failing", 0x0000FF);
  failing.Move(2, 0, 10, 20);
  failing.Children().Add<Probe>("inner", 0xFF0000).Move(0, 10, 10, 10);
  framed.Children().Add<Probe>("after", 0x00FF00).Move(20, 0, 10, 20);
  root.DoEvents();
  const SurfacePtr& s = form.Surface();
  EXPECT_EQ(PixelAt(s, 65, 55), (Bgra{255, 0, 0, 255}));  // the failing widget's child
  EXPECT_EQ(PixelAt(s, 85, 50), (Bgra{0, 255, 0, 255}));  // the widget after it
  EXPECT_EQ(PixelAt(s, 85, 41), (Bgra{0, 0, 0, 255}));    // the parent's paint-over, over its children
}

TEST_F(Ui, ARemovedWidgetsTimersStopAtOnceAndWidgetsAreFoundByTheirKeys) {
  // Made and added in one step, found again by keys without a cast.
  Probe& inner = child->Children().Add<Probe>("inner", 0x00FF00);
  EXPECT_EQ(form.Find<Probe>("panel/child/inner"), &inner);
  EXPECT_EQ(panel->Find("child/inner"), &inner);
  EXPECT_EQ(form.Find<Probe>("panel/child"), child);
  EXPECT_EQ(form.Find<cfForm>("panel/child"), nullptr);  // there, but of another class
  EXPECT_EQ(form.Find("panel/nobody"), nullptr);
  EXPECT_EQ(form.Find("child"), nullptr);  // keys go down from the widget asked

  // A timer that takes the child away in the turn in which the child's
  // timer, and that of a widget inside it, are due too: neither fires.
  int fired = 0;
  root.SetTimer(panel, 10, [&] {
    if (panel->Children().Exists("child")) panel->Children().Remove("child");
  });
  root.SetTimer(child, 10, [&] { ++fired; });
  root.SetTimer(&inner, 10, [&] { ++fired; });
  backend->AdvanceMs(10);
  root.DoEvents();
  EXPECT_FALSE(panel->Children().Exists("child"));
  EXPECT_EQ(fired, 0);
}

TEST_F(Ui, AModalFormBlocksItsOwnerUntilClosed) {
  TestForm dialog;
  dialog.Resize(40, 30);
  Probe& ok = dialog.Children().Add(std::make_unique<Probe>(0x00FF00), "ok");
  ok.Move(0, 0, 40, 30);
  struct Closer : Probe {
    using Probe::Probe;
    bool W_MouseUp(int, int, double, double) override {
      Form()->Close();
      return true;
    }
  };
  Closer& close = dialog.Children().Add(std::make_unique<Closer>(0x000000), "close");
  close.Move(30, 20, 10, 10);
  int step = 0;
  child->log.clear();
  dialog.keepOnCloseBox = true;
  // The user clicks the owner (ignored), the window's close box (refused by
  // the dialog), then the dialog's own close button.
  backend->OnIdle = [&] {
    if (step == 0) {
      backend->Push({UiEvent::Type::MouseDown, &form, Button::Left, 0, 0, 45, 35});
    } else if (step == 1) {
      backend->Push({UiEvent::Type::Close, &dialog});
    } else if (step == 2) {
      EXPECT_TRUE(dialog.Showing());
      backend->Push({UiEvent::Type::MouseUp, &dialog, Button::Left, 0, 0, 35, 25});
    }
    ++step;
  };
  root.RunModal(dialog);
  EXPECT_FALSE(dialog.Showing());
  EXPECT_EQ(dialog.unloaded, 1);
  EXPECT_TRUE(child->log.empty());           // the owner took nothing while the dialog was up
  EXPECT_EQ(backend->FrontForm(), &dialog);  // but the click brought the dialog forward
  EXPECT_EQ(step, 3);
  backend->OnIdle = nullptr;
  Click(45, 35);
  EXPECT_FALSE(child->log.empty());  // and takes input again

  // A loop with nothing to wait for says so instead of hanging.
  EXPECT_THROW(root.RunMessageLoop(), AppError);

  // Work deferred while painting (a screenshot of the first frame) runs
  // without waiting for another event.
  struct ClosesWhenPainted : cfForm {
    void W_Paint(DrawingContext&, double, double) override {
      PlatformRoot::Current()->DeferredInvoke([this] { Close(); });
    }
  } painted;
  form.Close();
  painted.Show();
  EXPECT_NO_THROW(root.RunMessageLoop());
  EXPECT_FALSE(painted.Showing());
}

TEST_F(Ui, DragsDropOnTheWidgetUnderTheMouseAndPopUpsCloseOutside) {
  struct Target : Probe {
    using Probe::Probe;
    std::string dropped;
    void W_DragDrop(const std::string& key, Widget& source, double x, double y) override {
      dropped =
          key + " from " + source.Key() + " at " + std::to_string(int(x)) + "," + std::to_string(int(y));
    }
  };
  Target& target = form.Children().Add(std::make_unique<Target>(0x00FF00), "target");
  target.Move(70, 60, 30, 20);
  SvgRenderer renderer;
  ImageList images(renderer);
  images.AddSurface("DragIcon", DrawingSurface::Create(16, 16));
  root.setImages(&images);
  backend->Push({UiEvent::Type::MouseDown, &form, Button::Left, 0, 0, 45, 35});
  root.DoEvents();
  EXPECT_EQ(child->MouseButtons(), Button::Left);
  child->StartDrag("Images.ID=7", "DragIcon");
  EXPECT_TRUE(root.Dragging());
  EXPECT_EQ(root.DragPicture(), "DragIcon");
  EXPECT_TRUE(root.Backend().CursorPicture());  // the picture follows the mouse
  backend->Push({UiEvent::Type::MouseMove, &form, Button::Left, 0, 0, 80, 70});
  backend->Push({UiEvent::Type::MouseUp, &form, Button::Left, 0, 0, 80, 70});
  root.DoEvents();
  EXPECT_EQ(target.dropped, "Images.ID=7 from child at 10,10");
  EXPECT_FALSE(root.Dragging());
  EXPECT_FALSE(root.Backend().CursorPicture());
  EXPECT_EQ(child->MouseButtons(), 0);
  root.setImages(nullptr);

  // Each widget shows its own cursor, unless the program is busy.
  child->MouseCursor = Cursor::Hand;
  const auto cursorAt = [&](double x, double y) {
    backend->Push({UiEvent::Type::MouseMove, &form, 0, 0, 0, x, y});
    root.DoEvents();
    return root.Backend().CurrentCursor();
  };
  EXPECT_EQ(cursorAt(45, 35), Cursor::Hand);
  EXPECT_EQ(cursorAt(5, 5), Cursor::Arrow);
  root.setScreenCursor(Cursor::Wait);
  EXPECT_EQ(cursorAt(45, 35), Cursor::Wait);
  root.setScreenCursor(0);
  EXPECT_EQ(root.Backend().CurrentCursor(), Cursor::Hand);

  // A pop-up goes when the mouse is pressed on another form.
  TestForm popup;
  popup.PopUp = true;
  popup.Resize(20, 20);
  popup.Show();
  backend->Push({UiEvent::Type::MouseDown, &popup, Button::Left, 0, 0, 5, 5});
  root.DoEvents();
  EXPECT_TRUE(popup.Showing());
  backend->Push({UiEvent::Type::MouseDown, &form, Button::Left, 0, 0, 5, 5});
  root.DoEvents();
  EXPECT_FALSE(popup.Showing());

  // Services of the desktop, as far as a machine without one has them.
  root.Backend().SetClipboardText("#C38C00");
  EXPECT_EQ(root.Backend().ClipboardText(), "#C38C00");
  const char* path = std::getenv("PATH");
  const std::string saved = path ? path : "";
  ::setenv("PATH", "/nonexistent", 1);
  EXPECT_FALSE(PlatformRoot::ShellOpen("/tmp"));  // nothing to open it with: said, not started
  ::setenv("PATH", saved.c_str(), 1);
}

namespace {

// Moves itself in its constructor, before its own members are set, and
// writes down each size it hears of.
struct SelfSizing : Widget {
  std::vector<std::string>* heard;
  bool built = false;
  explicit SelfSizing(std::vector<std::string>* log) : Widget("SelfSizing"), heard(log) {
    Move(0, 0, 30, 20);
    built = true;
  }
  void W_Resize() override {
    heard->push_back((built ? "" : "unbuilt ") + std::to_string(int(Width())) + "x" +
                     std::to_string(int(Height())));
  }
};

std::string Rect(const Widget& w) {
  return std::to_string(int(w.Left())) + "," + std::to_string(int(w.Top())) + " " +
         std::to_string(int(w.Width())) + "x" + std::to_string(int(w.Height()));
}

}  // namespace

TEST_F(Ui, ChildrenFollowTheirDockAnchorsAndBoxOncePerTurnNeverInsideAConstructor) {
  TestForm f;
  f.Resize(200, 100);
  std::vector<std::string> heard;
  auto& top = f.Children().Add<SelfSizing>("top", &heard);
  top.setDock(Dock::Top);
  auto& left = f.Children().Add<Widget>("left");
  left.Move(0, 0, 40, 0);
  left.setDock(Dock::Left);
  auto& bottom = f.Children().Add<Widget>("bottom");
  bottom.Move(0, 0, 0, 10);
  bottom.setDock(Dock::Bottom);
  auto& side = f.Children().Add<Widget>("side");
  side.Move(0, 0, 20, 0);
  side.setDock(Dock::Right);
  auto& rest = f.Children().Add<Widget>("rest");
  rest.setDock(Dock::Fill);
  auto& corner = f.Children().Add<Widget>("corner");  // keeps to the bottom right
  corner.Move(170, 70, 20, 20);
  corner.setAnchors(Anchor::Right | Anchor::Bottom);
  auto& wide = f.Children().Add<Widget>("wide");  // keeps both side margins
  wide.Move(50, 30, 100, 10);
  wide.setAnchors(Anchor::Left | Anchor::Right | Anchor::Top);
  rest.setBoxLayout(BoxDirection::Column, 5, 4);
  auto& fixed = rest.Children().Add<Widget>("fixed");
  fixed.setBoxHint(12, 0);
  auto& one = rest.Children().Add<Widget>("one");
  one.setBoxHint(0, 1);
  auto& three = rest.Children().Add<Widget>("three");
  three.setBoxHint(10, 3);
  // Nothing is heard before the loop's turn: the constructor's Move only
  // asks for a layout.
  EXPECT_TRUE(heard.empty());
  f.Show();
  root.DoEvents();
  EXPECT_EQ(heard, (std::vector<std::string>{"200x20"}));
  EXPECT_EQ(Rect(top), "0,0 200x20");
  EXPECT_EQ(Rect(left), "0,20 40x80");
  EXPECT_EQ(Rect(bottom), "40,90 160x10");
  EXPECT_EQ(Rect(side), "180,20 20x70");
  EXPECT_EQ(Rect(rest), "40,20 140x70");
  // In the box: 70 - 2*5 padding - 2*4 spacing - 12 - 10 leaves 30, shared 1:3.
  EXPECT_EQ(Rect(fixed), "5,5 130x12");
  EXPECT_EQ(Rect(one), "5,21 130x7");
  EXPECT_EQ(Rect(three), "5,32 130x32");

  // The user makes the window larger: everything follows in one pass.
  f.Resize(300, 150);
  f.Resize(320, 160);
  root.DoEvents();
  EXPECT_EQ(heard, (std::vector<std::string>{"200x20", "320x20"}));
  EXPECT_EQ(Rect(top), "0,0 320x20");
  EXPECT_EQ(Rect(bottom), "40,150 280x10");
  EXPECT_EQ(Rect(corner), "290,130 20x20");
  EXPECT_EQ(Rect(wide), "50,30 220x10");
  EXPECT_EQ(Rect(three), "5,47 250x77");  // 130 - 10 - 8 - 22 leaves 90: 22.5 and 67.5
  // A docked widget that goes gives its room to the others.
  left.setVisible(false);
  root.DoEvents();
  EXPECT_EQ(Rect(rest), "0,20 300x130");
}

TEST_F(Ui, AResizeHandlerThatSetsTheSameRulesAgainLetsTheLoopRest) {
  // Sets its box and its child's hint on every pass, as a tool bar may.
  struct Restless : Widget {
    int passes = 0;
    Restless() : Widget("Restless") {}
    void W_Resize() override {
      ++passes;
      setBoxLayout(BoxDirection::Row, 2, 2);
      if (Children().Count()) Children().Item(0).setBoxHint(10, 1);
    }
  };
  auto& r = form.Children().Add<Restless>("restless");
  r.Children().Add<Widget>("inner").setBoxHint(10, 1);
  r.setBoxLayout(BoxDirection::Row, 2, 2);
  r.Move(0, 0, 50, 20);
  root.DoEvents();
  root.DoEvents();
  root.DoEvents();
  EXPECT_EQ(r.passes, 1);
  EXPECT_EQ(r.Children().Item(0).Width(), 46);
}
