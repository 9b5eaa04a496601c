// The design view in the main window, on a studio folder with its library
// unpacked: the selection becomes the base layer, layers are added, moved,
// hidden, copied, deleted and undone, and the canvas selects and moves them.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "app/cConfig.h"
#include "app/modStartup.h"
#include "app/modTexts.h"
#include "app/ui/cfMain.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "browser/cvIconSelectView.h"
#include "design/cvIconDesignView.h"
#include "design/cwCanvas.h"
#include "design/cwPosQuad.h"
#include "engine/modHistory.h"
#include "platform/Error.h"
#include "platform/stock/cwMenu.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/StartedApp.h"
#include "tests/support/UiDriver.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwSlider.h"
#include "widgets/cwToolBar.h"
#include "widgets/cwVListNew.h"

using namespace qds;
using Keys = std::vector<std::string>;

namespace {

// The main window on the design view, with a clock for new layers' keys
// that the test moves on by a second whenever it likes.
struct DesignHost {
  UiDriver ui;
  StartedApp studio;
  std::unique_ptr<cfMain> form;
  cvIconDesignView* view = nullptr;
  int second = 10;
  // Answers for the message boxes, in order; "btnYes", "btnNo", ...
  std::vector<std::string> answers;
  int asked = 0;

  DesignHost() {
    EXPECT_TRUE(StartWithoutWindow(*studio.app));
    studio.app->Config->setLanguage_ID(2);
    OpenTexts(*studio.app);
    ui.Root().setImages(&studio.app->ImageList());
    form = std::make_unique<cfMain>();
    view = &form->DesignView();
    view->StampNow = [this] { return "2411261200" + std::to_string(second); };
    form->Show();
    ui.Root().DoEvents();
    ui.Backend().OnIdle = [this] {
      cwMsgBox* box = nullptr;
      for (cfForm* f : ui.Root().Forms()) {
        auto* dialog = dynamic_cast<cfToolDialog*>(f);
        if (dialog && dialog->Showing()) box = dynamic_cast<cwMsgBox*>(dialog->Hosted());
      }
      if (!box) return;
      const std::string key = asked < static_cast<int>(answers.size()) ? answers[asked] : "btnNo";
      ++asked;
      ui.PushClick(box->Children().Item(key));
    };
  }
  ~DesignHost() {
    ui.Backend().OnIdle = nullptr;
    form.reset();
  }
  AppContext& app() { return *studio.app; }
  Keys Stack() {
    Keys keys;
    for (const auto& e : app().Layers) keys.push_back(e.Key);
    return keys;
  }
  // Icons of the library chosen in the select view, then the design view entered.
  void Gather(const std::vector<std::string>& names, const std::string& style = "Flat") {
    for (const std::string& name : names) {
      SVGItemPtr icon = LibraryLayer(app(), name, style);
      ASSERT_TRUE(icon) << name;
      app().IconSelection.Add(icon, icon->ID().AsString());
    }
    form->SelectView().SelectionChanged = true;
    form->SwitchToView("IconSelectView");
    form->SwitchToView("IconDesignView");
    Settle();
  }
  // Lets the canvas lock and the tool bars' delayed clicks run out.
  void Settle() {
    ui.Backend().AdvanceMs(50);
    ui.Root().DoEvents();
  }
  void Tool(cwToolBar& bar, const char* key) {
    const WidgetPoint p = bar.W_ItemPoint(key);
    ASSERT_TRUE(p.widget) << key;
    ClickIn(*p.widget, p.x, p.y);
  }
  bool Enabled(cwToolBar& bar, const char* key) { return bar.Item(key)->Enabled(); }
  // Opens the layer's settings menu and chooses `item`; false when the menu
  // does not offer it.
  bool Setting(const char* item) {
    view->Refresh();  // the menu follows the layer as it is now
    auto* menu = form->Find<cwMenu>("IconDesignView/MenuPopUp");
    const std::string key = std::string("MenuSettings>") + item;
    bool offered = false;
    for (const auto* i : menu->ItemsUnder("MenuSettings")) offered = offered || i->key == key;
    if (!offered) return false;
    Tool(*view->tbarLayers, "Config");
    const WidgetPoint p = menu->W_ItemPoint(key);
    if (!p.widget) return false;
    double x, y;
    p.widget->FormPosition(x, y);
    cfForm& popup = *p.widget->Form();
    const double zoom = popup.Zoom();
    ui.Mouse(popup, UiEvent::Type::MouseMove, (x + p.x) * zoom, (y + p.y) * zoom);
    ui.Mouse(popup, UiEvent::Type::MouseDown, (x + p.x) * zoom, (y + p.y) * zoom);
    ui.Mouse(popup, UiEvent::Type::MouseUp, (x + p.x) * zoom, (y + p.y) * zoom);
    Settle();
    return true;
  }
  // Moves carry the buttons held: `held` while dragging.
  void MouseIn(Widget& w, UiEvent::Type type, double x, double y, int held = 0) {
    double fx, fy;
    w.FormPosition(fx, fy);
    const double zoom = form->Zoom();
    const int button = type == UiEvent::Type::MouseMove ? held : Button::Left;
    ui.Backend().Push({type, form.get(), button, 0, 0, (fx + x) * zoom, (fy + y) * zoom});
    ui.Root().DoEvents();
  }
  void ClickIn(Widget& w, double x, double y) {
    MouseIn(w, UiEvent::Type::MouseMove, x, y);
    MouseIn(w, UiEvent::Type::MouseDown, x, y);
    MouseIn(w, UiEvent::Type::MouseUp, x, y);
    Settle();
  }
  void ClickRow(int row) {
    const WidgetPoint p = view->vlstLayers->W_RowPoint(row);
    ASSERT_TRUE(p.widget);
    ClickIn(*p.widget, p.x, p.y);
  }
  // One of the small buttons along the bottom of a row.
  void RowButton(int row, int button) {
    const WidgetPoint p = view->vlstLayers->W_RowPoint(row);
    ASSERT_TRUE(p.widget);
    cwVListNew& list = *view->vlstLayers;
    double x, y, w, h;
    ASSERT_TRUE(list.ItemBounds(row, x, y, w, h));
    const double bx = list.DrawWidth() - 1 - (4 - button) * cvIconDesignView::kButton + 5;
    ClickIn(list, bx, p.y + h / 2 - 5);
  }
  void Key(int keyCode, int shift = 0) {
    ui.Press(*form, keyCode, shift);
    Settle();
  }
  // A point of the drawing on the canvas, in hundredths of its side.
  void CanvasPoint(double px, double py, double& x, double& y) {
    x = view->Canvas->Border() / 2 + px / 100 * view->Canvas->DrawingSide();
    y = view->Canvas->Border() / 2 + py / 100 * view->Canvas->DrawingSide();
  }
  void CanvasMouse(UiEvent::Type type, double px, double py, int held = 0) {
    double x, y;
    CanvasPoint(px, py, x, y);
    MouseIn(*view->Canvas, type, x, y, held);
  }
};

}  // namespace

TEST(DesignView, TheStackIsBuiltMovedHiddenAndUndoneStepByStep) {
  DesignHost h;
  cvIconDesignView& v = *h.view;
  // An empty design offers nothing to save and selects nothing.
  EXPECT_FALSE(h.Enabled(*v.tbarLayers, "Save"));
  EXPECT_EQ(v.vlstLayers->ListIndex(), -1);
  EXPECT_FALSE(h.Enabled(*v.tbarCanvas2, "Undo"));

  h.Gather({"user", "lock", "home"});
  EXPECT_EQ(h.Stack(), (Keys{"_BaseIco"}));
  EXPECT_EQ(v.vlstLayers->ListIndex(), 0);
  EXPECT_TRUE(h.Enabled(*v.tbarLayers, "Save"));
  EXPECT_EQ(h.app().Layers.Item(0)->FriendlyName(), "user");

  // A shape goes above the selected row, a text below it.
  h.Tool(*v.tbarCanvas2, "Shapes");
  h.second = 11;
  h.Tool(*v.tbarCanvas2, "Text");
  const std::string shape = "241126120010Shapes", text = "241126120011Text";
  EXPECT_EQ(h.Stack(), (Keys{shape, text, "_BaseIco"}));
  EXPECT_EQ(v.vlstLayers->ListIndex(), 1);
  EXPECT_EQ(h.app().Layers.Item(text)->TextContent(), "Text");

  // Down to the bottom: the arrow goes off there, and up is on.
  h.Tool(*v.tbarLayers, "ArrowDown");
  EXPECT_EQ(h.Stack(), (Keys{shape, "_BaseIco", text}));
  EXPECT_EQ(v.vlstLayers->ListIndex(), 2);
  EXPECT_FALSE(h.Enabled(*v.tbarLayers, "ArrowDown"));
  EXPECT_TRUE(h.Enabled(*v.tbarLayers, "ArrowUp"));
  h.ClickRow(0);
  EXPECT_FALSE(h.Enabled(*v.tbarLayers, "ArrowUp"));

  // The eye hides the shape; the canvas tools go off with it.
  h.RowButton(0, cvIconDesignView::BtnEye);
  EXPECT_FALSE(h.app().Layers.Item(shape)->Visible());
  EXPECT_FALSE(h.Enabled(*v.tbarCanvas2, "Effects"));
  EXPECT_FALSE(v.PosQuad->Enabled());

  // Undo steps back one change at a time and always ends on the top row.
  h.Tool(*v.tbarCanvas2, "Undo");
  EXPECT_TRUE(h.app().Layers.Item(shape)->Visible());
  EXPECT_EQ(v.vlstLayers->ListIndex(), 0);
  h.Key('Z', Shift::Ctrl);
  EXPECT_EQ(h.Stack(), (Keys{shape, text, "_BaseIco"}));
  h.Key('Z', Shift::Ctrl);
  h.Key('Z', Shift::Ctrl);
  EXPECT_EQ(h.Stack(), (Keys{"_BaseIco"}));
  // The oldest state: nothing more to undo, and asking changes nothing.
  EXPECT_FALSE(h.Enabled(*v.tbarCanvas2, "Undo"));
  h.Key('Z', Shift::Ctrl);
  EXPECT_EQ(h.Stack(), (Keys{"_BaseIco"}));
  h.Key('Y', Shift::Ctrl);
  h.Tool(*v.tbarCanvas2, "Redo");
  h.Key('Y', Shift::Ctrl);
  EXPECT_EQ(h.Stack(), (Keys{shape, "_BaseIco", text}));
  EXPECT_TRUE(h.app().Layers.Item(shape)->Visible());
  h.Key('Y', Shift::Ctrl);
  EXPECT_FALSE(h.app().Layers.Item(shape)->Visible());
  EXPECT_FALSE(h.Enabled(*v.tbarCanvas2, "Redo"));
  EXPECT_TRUE(h.app().DesignModified);

  // Plus and minus of the base row step through the chosen icons.
  h.ClickRow(1);
  h.RowButton(1, cvIconDesignView::BtnPlus);
  EXPECT_EQ(h.app().Layers.Item("_BaseIco")->FriendlyName(), "lock");
  h.RowButton(1, cvIconDesignView::BtnPlus);
  h.RowButton(1, cvIconDesignView::BtnPlus);  // no icon after the last
  EXPECT_EQ(h.app().Layers.Item("_BaseIco")->FriendlyName(), "home");
  h.RowButton(1, cvIconDesignView::BtnMinus);
  EXPECT_EQ(h.app().Layers.Item("_BaseIco")->FriendlyName(), "lock");

  // A row dragged onto the top row goes before it, and the undo takes it back.
  cwVListNew& list = *v.vlstLayers;
  const WidgetPoint from = list.W_RowPoint(2), to = list.W_RowPoint(0);
  h.MouseIn(list, UiEvent::Type::MouseMove, from.x, from.y);
  h.MouseIn(list, UiEvent::Type::MouseDown, from.x, from.y);
  h.MouseIn(list, UiEvent::Type::MouseMove, from.x, from.y - 10, Button::Left);
  h.MouseIn(list, UiEvent::Type::MouseMove, to.x, to.y, Button::Left);
  h.MouseIn(list, UiEvent::Type::MouseUp, to.x, to.y);
  h.Settle();
  EXPECT_EQ(h.Stack(), (Keys{text, shape, "_BaseIco"}));
  EXPECT_EQ(list.ListIndex(), 0);
  h.Key('Z', Shift::Ctrl);
  EXPECT_EQ(h.Stack(), (Keys{shape, "_BaseIco", text}));
}

TEST(DesignView, CopiesArePastedAboveTheRowAndALibraryKeyOnlyOnce) {
  DesignHost h;
  cvIconDesignView& v = *h.view;
  h.Gather({"user"});
  h.Tool(*v.tbarCanvas2, "Shapes");
  const std::string shape = "241126120010Shapes";

  // A copy of the shape lands above the selected base row, under a new stamp.
  h.Key('C', Shift::Ctrl);
  h.ClickRow(1);
  h.second = 12;
  h.Key('V', Shift::Ctrl);
  EXPECT_EQ(h.Stack(), (Keys{shape, "241126120012Shapes", "_BaseIco"}));
  // The base layer is never copied: the clipboard keeps the shape.
  h.ClickRow(2);
  h.Key('C', Shift::Ctrl);
  h.second = 13;
  h.Key('V', Shift::Ctrl);
  EXPECT_EQ(h.Stack().at(2), "241126120013Shapes");

  // A library overlay can be in the stack once: its paste adds nothing and
  // takes no snapshot.
  SVGItemPtr lock = LibraryLayer(h.app(), "lock", "Flat");
  const std::string lockKey = lock->ID().AsString();
  h.app().Layers.AddBefore(lock, lockKey, 0);
  v.vlstLayers->setListCount(h.app().Layers.Count());
  h.ClickRow(0);
  h.Key('C', Shift::Ctrl);
  const Keys before = h.Stack();
  const int states = h.app().UndoRedo.HistoryCount();
  h.Key('V', Shift::Ctrl);
  EXPECT_EQ(h.Stack(), before);
  EXPECT_EQ(h.app().UndoRedo.HistoryCount(), states);

  // Two texts within one second: the second is refused.
  h.Tool(*v.tbarCanvas2, "Text");
  const int count = h.app().Layers.Count();
  h.Tool(*v.tbarCanvas2, "Text");
  EXPECT_EQ(h.app().Layers.Count(), count);
}

TEST(DesignView, TheMinusButtonTakesTheEffectAlongAndTheDeleteKeyLeavesIt) {
  DesignHost h;
  cvIconDesignView& v = *h.view;
  h.Gather({"user", "lock"});
  // A long shadow drawn from the base icon, at the bottom.
  auto shadow = h.app().Layers.Item("_BaseIco")->Clone();
  shadow->setEffType(1);
  shadow->setEffSymbolKey("_BaseIco");
  shadow->SettingsRefresh();
  h.app().Layers.Add(shadow, "Long Shadow");
  v.vlstLayers->setListCount(2);
  v.AddToHistory();

  h.ClickRow(0);
  h.answers = {"btnNo", "btnYes"};
  h.Tool(*v.tbarLayers, "Minus");
  EXPECT_EQ(h.Stack(), (Keys{"_BaseIco", "Long Shadow"}));
  h.Tool(*v.tbarLayers, "Minus");
  EXPECT_TRUE(h.Stack().empty());
  EXPECT_EQ(v.vlstLayers->ListIndex(), -1);
  EXPECT_FALSE(h.Enabled(*v.tbarLayers, "Save"));

  h.Key('Z', Shift::Ctrl);
  EXPECT_EQ(h.Stack(), (Keys{"_BaseIco", "Long Shadow"}));
  // The key on the list removes the row alone.
  h.ClickRow(0);
  h.answers.push_back("btnYes");
  v.vlstLayers->SetFocus();
  h.Key(Key::Delete);
  EXPECT_EQ(h.Stack(), (Keys{"Long Shadow"}));
  // An undo and a redo tidy the effect left without its symbol.
  h.Key('Z', Shift::Ctrl);
  h.Key('Y', Shift::Ctrl);
  EXPECT_TRUE(h.Stack().empty());

  // Delete all: No keeps everything, any other answer empties the design
  // and the selection and starts the history again.
  h.Key('Z', Shift::Ctrl);
  h.ClickRow(0);
  h.answers.insert(h.answers.end(), {"btnNo", "btnYes"});
  h.Tool(*v.tbarLayers, "DeleteAll");
  EXPECT_EQ(h.Stack().size(), 2u);
  h.Tool(*v.tbarLayers, "DeleteAll");
  EXPECT_TRUE(h.Stack().empty());
  EXPECT_TRUE(h.app().IconSelection.Empty());
  EXPECT_EQ(h.app().UndoRedo.HistoryCount(), 1);
  EXPECT_FALSE(h.app().DesignModified);
}

TEST(DesignView, TheCanvasSelectsByInkAndMovesTheLayerAtItsZoom) {
  DesignHost h;
  cvIconDesignView& v = *h.view;
  h.Gather({"user"});
  // A small filled circle in the top left corner, above the base icon.
  h.Tool(*v.tbarCanvas2, "Shapes");
  const std::string shape = "241126120010Shapes";
  cSVGItem& circle = *h.app().Layers.Item(shape);
  v.PosQuad->Click(1);
  v.sldZoom->setValue(50);
  h.Settle();
  ASSERT_EQ(circle.Pos(), 1);
  ASSERT_EQ(circle.ZoomPercent(), 50);

  // Through the circle's corner, outside its ink, the base icon is hit; in
  // the middle of the circle the circle is.
  h.CanvasMouse(UiEvent::Type::MouseDown, 50, 50);
  h.CanvasMouse(UiEvent::Type::MouseUp, 50, 50);
  h.Settle();
  EXPECT_EQ(v.vlstLayers->ListIndex(), 1);
  h.CanvasMouse(UiEvent::Type::MouseDown, 1, 1);
  h.CanvasMouse(UiEvent::Type::MouseUp, 1, 1);
  h.Settle();
  EXPECT_EQ(v.vlstLayers->ListIndex(), 1);
  h.CanvasMouse(UiEvent::Type::MouseDown, 25, 25);
  h.CanvasMouse(UiEvent::Type::MouseUp, 25, 25);
  h.Settle();
  ASSERT_EQ(v.vlstLayers->ListIndex(), 0);

  // A drag of 10 hundredths of the canvas moves a half-size layer by 20,
  // from where its corner place put it.
  SVGItemPtr probe = circle.Clone();
  double zW, zH, L, T;
  probe->CalcOffSet(0, 0, zW, zH, L, T);
  const double x0 = probe->OffSetx(), y0 = probe->OffSetY();
  h.CanvasMouse(UiEvent::Type::MouseDown, 25, 25);
  h.CanvasMouse(UiEvent::Type::MouseMove, 30, 27, Button::Left);
  h.CanvasMouse(UiEvent::Type::MouseMove, 35, 30, Button::Left);
  h.CanvasMouse(UiEvent::Type::MouseUp, 35, 30);
  h.Settle();
  EXPECT_EQ(circle.Pos(), 0);
  EXPECT_NEAR(circle.OffSetx() - x0, 20, 0.5);
  EXPECT_NEAR(circle.OffSetY() - y0, 10, 0.5);
  EXPECT_EQ(v.PosQuad->CurPos(), 0);

  // Arrow keys move by 1, with Shift by 5, at the same scale.
  const double x1 = circle.OffSetx(), y1 = circle.OffSetY();
  h.Key(Key::Right);
  h.Key(Key::Down, Shift::ShiftKey);
  EXPECT_NEAR(circle.OffSetx() - x1, 2, 1e-6);
  EXPECT_NEAR(circle.OffSetY() - y1, 10, 1e-6);
  h.Key('Z', Shift::Ctrl);
  EXPECT_NEAR(h.app().Layers.Item(shape)->OffSetx() - x1, 2, 1e-6);
  EXPECT_NEAR(h.app().Layers.Item(shape)->OffSetY() - y1, 0, 1e-6);

  // A press on the empty canvas keeps the row and drags nothing.
  const double x2 = h.app().Layers.Item(shape)->OffSetx();
  h.CanvasMouse(UiEvent::Type::MouseDown, 98, 2);
  h.CanvasMouse(UiEvent::Type::MouseMove, 80, 20, Button::Left);
  h.CanvasMouse(UiEvent::Type::MouseUp, 80, 20);
  h.Settle();
  EXPECT_EQ(v.vlstLayers->ListIndex(), 0);
  EXPECT_EQ(h.app().Layers.Item(shape)->OffSetx(), x2);
}

TEST(DesignView, ArrowKeysAndControlsWriteNothingWithoutASelection) {
  DesignHost h;
  cvIconDesignView& v = *h.view;
  h.form->SwitchToView("IconDesignView");
  h.Settle();
  // An empty stack: the right column is off and its handlers write nothing.
  EXPECT_FALSE(v.PosQuad->Enabled());
  EXPECT_FALSE(v.Opacity1->Enabled());
  v.Canvas->SetFocus();
  h.Key(Key::Right);
  v.PosQuad->Click(3);
  v.sldZoom->setValue(40);
  h.Settle();
  EXPECT_TRUE(h.app().Layers.Empty());
  EXPECT_EQ(h.app().UndoRedo.HistoryCount(), 1);
  EXPECT_FALSE(h.app().DesignModified);
}

TEST(DesignView, TheSettingsMenuCopiesColoursAndDuplicatesALayer) {
  DesignHost h;
  h.Gather({"user"});
  h.Tool(*h.view->tbarCanvas2, "Shapes");
  const std::string shape = "241126120010Shapes";
  cSVGItem& circle = *h.app().Layers.Item(shape);
  // A layer without a colour of its own has nothing to copy.
  EXPECT_FALSE(h.Setting("Copy"));
  circle.setFilter(cSVGItem::FilterColor);
  circle.setColorItem(cColorItem(0x0000FF));
  circle.setOpacity(40);
  circle.setZoomPercent(30);
  h.view->AddToHistory();  // as the tools that set them do
  ASSERT_TRUE(h.Setting("Copy"));

  // Pasted on the base icon: its colour and opacity, not its size.
  h.ClickRow(1);
  EXPECT_FALSE(h.Setting("DuplicateLayer"));  // the base icon is one of a kind
  ASSERT_TRUE(h.Setting("Paste"));
  const cSVGItem& base = *h.app().Layers.Item("_BaseIco");
  EXPECT_EQ(base.Filter(), cSVGItem::FilterColor);
  EXPECT_EQ(base.ColorItem().Color(), 0x0000FF);
  EXPECT_EQ(base.Opacity(), 40);
  EXPECT_EQ(base.ZoomPercent(), 100);
  h.Key('Z', Shift::Ctrl);
  EXPECT_EQ(h.app().Layers.Item("_BaseIco")->Filter(), cSVGItem::FilterOriginal);

  // A duplicate of the shape lands above it under a stamp of its own.
  h.ClickRow(0);
  h.second = 14;
  ASSERT_TRUE(h.Setting("DuplicateLayer"));
  EXPECT_EQ(h.Stack(), (Keys{"241126120014Shapes", shape, "_BaseIco"}));
  EXPECT_EQ(h.app().Layers.Item(0)->ZoomPercent(), 30);
}
