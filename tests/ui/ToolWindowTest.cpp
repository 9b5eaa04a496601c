// Tool dialogs and pop-ups, driven headless as a user would: where they
// open at the user's zoom, which keys answer them, and how a pop-up goes
// away and comes back.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "platform/DrawingContext.h"
#include "platform/ImageList.h"
#include "platform/SvgRenderer.h"
#include "platform/stock/StockWidgets.h"
#include "tests/support/Golden.h"
#include "tests/support/Pixels.h"
#include "tests/support/SettingsApp.h"
#include "tests/support/UiDriver.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cfToolPopUp.h"
#include "widgets/cwModalBg.h"

using namespace qds;

namespace {

constexpr std::int64_t kToolColour = 0x20C040;

// A tool as dialogs host it: a button before a text input, and Ok and
// Cancel that close with answers of their own.
struct NameTool : Widget {
  explicit NameTool(bool withCancel = true) : Widget("NameTool") {
    auto& pick = Children().Add<cwButton>("btnPick");
    pick.Caption = "Pick";
    pick.Move(10, 10, 60, 24);
    pick.Click = [this] { RaiseBubblingEvent("Picked", {Value(3)}); };
    auto& name = Children().Add<Widget>("txtName", "TextInput");
    name.CanFocus = true;
    name.TakesText = true;
    name.Move(80, 10, 100, 24);
    ok = &Children().Add<cwButton>("btnOk");
    ok->Caption = "Ok";
    ok->Default = true;
    ok->Click = [this] { cfToolDialog::CloseWith(*this, 7); };
    if (withCancel) {
      cancel = &Children().Add<cwButton>("btnCancel");
      cancel->Caption = "Cancel";
      cancel->Cancel = true;
      cancel->Click = [this] { cfToolDialog::CloseWith(*this, 42); };
    }
  }
  // The answers keep to the bottom right corner, wherever that is.
  void W_Resize() override {
    ok->Move(Width() - 150, Height() - 34, 60, 24);
    if (cancel) cancel->Move(Width() - 80, Height() - 34, 60, 24);
  }
  cwButton* ok = nullptr;
  cwButton* cancel = nullptr;
  void W_Paint(DrawingContext& ctx, double, double) override {
    ctx.SetSourceColor(kToolColour);
    ctx.Paint();
  }
};

// A widget with something a user changes: how often it was clicked.
struct Counter : Widget {
  explicit Counter(std::string type = "Counter") : Widget(std::move(type)) {}
  int clicks = 0;
  void W_Click() override { ++clicks; }
};

// Writes down the events it hears from below, the platform's own left out.
struct Owner : cfForm {
  std::vector<std::string> heard;
  void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>&) override {
    if (name.rfind("W_", 0) != 0) heard.push_back(source.Key() + ":" + name);
  }
};

}  // namespace

TEST(ToolWindows, ADialogScalesWithTheUserZoomTakesTypingAndAnswersByItsKeysAndButtons) {
  UiDriver ui;
  SvgRenderer renderer;
  ImageList images(renderer);
  ASSERT_TRUE(images.AddFromFile(QDS_SOURCE_DATA "/Quillaron.svg", "Logo", 128, 128));
  ui.Root().setImages(&images);
  SettingsApp studio;
  studio.Config().setUserZoom(1.5);
  Owner owner;
  owner.Resize(400, 300);
  owner.MoveOnScreen(40, 30);
  owner.Show();
  ui.Root().DoEvents();

  // At 150 %, the window, its content and its place all grow by half.
  cfToolDialog dialog;
  dialog.ImageKey = "Logo";
  int result = -1;
  ui.WhileOpen({[&] {
    EXPECT_TRUE(dialog.Showing() && dialog.Modal());
    EXPECT_EQ(dialog.ScreenX(), 150);
    EXPECT_EQ(dialog.ScreenY(), 120);
    const SurfacePtr picture = dialog.Surface()->Copy();
    EXPECT_EQ(picture->Width(), 300);
    EXPECT_EQ(picture->Height(), (100 + 30) * 1.5);
    // The caption strip is 45 pixels high, the tool fills the rest.
    EXPECT_FALSE(Near(PixelAt(picture, 150, 40), {0x20, 0xC0, 0x40, 255}));
    EXPECT_TRUE(Near(PixelAt(picture, 150, 47), {0x20, 0xC0, 0x40, 255}));
    EXPECT_TRUE(Near(PixelAt(picture, 290, 185), {0x20, 0xC0, 0x40, 255}));
    EXPECT_TRUE(MatchesGolden(picture, "tool_dialog"));
    EXPECT_EQ(dialog.Hosted()->Width() * dialog.Zoom(), 300);
    EXPECT_EQ(dialog.Hosted()->Height() * dialog.Zoom(), 150);
    EXPECT_EQ(dialog.IconKey(), "Logo");
    // The text input has the focus though a button comes first; Return
    // there presses the Default button.
    EXPECT_TRUE(dialog.Hosted()->Find("txtName")->HasFocus());
    ui.PushKey(dialog, Key::Return);
  }});
  dialog.ShowWidget(std::make_unique<NameTool>(), "Name", 100, 80, 200, 100, result);
  EXPECT_EQ(result, 7);
  EXPECT_FALSE(dialog.Showing());
  EXPECT_EQ(dialog.TypeName(), "ToolWindows");
  ASSERT_TRUE(dialog.Background() && dialog.Hosted());
  EXPECT_EQ(dialog.Background()->Key(), "ToolWindow");
  EXPECT_EQ(dialog.Hosted()->Key(), "ToolWidget");
  EXPECT_EQ(dialog.Background()->Caption, "Name");

  // Escape presses Cancel; Alt and PrintScreen change nothing; the owner
  // hears what the tool's widgets tell.
  owner.heard.clear();
  ui.WhileOpen({[&] {
                  ui.PushKey(dialog, Key::AltKey);
                  ui.PushKey(dialog, Key::PrintScreen);
                },
                [&] {
                  EXPECT_TRUE(dialog.Showing());
                  ui.PushClick(*dialog.Hosted()->Find("btnPick"));
                },
                [&] { ui.PushKey(dialog, Key::Escape); }});
  dialog.ShowWidget(std::make_unique<NameTool>(), "Name", 100, 80, 200, 100, result);
  EXPECT_EQ(result, 42);
  EXPECT_EQ(owner.heard, (std::vector<std::string>{"ToolWidget:Picked", "btnPick:Click", "btnCancel:Click"}));

  // Without a Cancel button Escape closes as cancelled; so does the
  // desktop's close box, and the widget stays there to be read.
  ui.WhileOpen({[&] { ui.PushKey(dialog, Key::Escape); }});
  dialog.ShowWidget(std::make_unique<NameTool>(false), "Name", 100, 80, 200, 100, result);
  EXPECT_EQ(result, ToolResult::Cancel);
  ui.WhileOpen({[&] { ui.Backend().Push({UiEvent::Type::Close, &dialog}); }});
  Widget& kept = dialog.ShowWidget(std::make_unique<NameTool>(false), "Name", 100, 80, 200, 100, result);
  EXPECT_EQ(result, ToolResult::Cancel);
  EXPECT_FALSE(dialog.Showing());
  EXPECT_EQ(&kept, dialog.Hosted());
  ui.Backend().OnIdle = nullptr;
}

TEST(ToolWindows, APopUpHidesWhenClosedOrLeftAndComesBackAsTheUserLeftIt) {
  UiDriver ui;
  SettingsApp studio;
  studio.Config().setUserZoom(1.5);
  Owner owner;
  owner.Resize(400, 300);
  owner.Show();
  ui.Root().DoEvents();

  cfToolPopUp popUp;
  Widget* first = &popUp.ShowWidget(std::make_unique<Counter>(), 100, 40, 120, 80);
  ui.Root().DoEvents();
  EXPECT_TRUE(popUp.Showing());
  EXPECT_EQ(popUp.ScreenX(), 150);
  EXPECT_EQ(popUp.ScreenY(), 60);
  EXPECT_EQ(popUp.Surface()->Width(), 180);
  EXPECT_EQ(popUp.WidgetTypeName(), "Counter");
  ui.Root().DoEvents();
  EXPECT_TRUE(MatchesGolden(popUp.Surface()->Copy(), "tool_popup"));
  ui.Click(*first);
  EXPECT_EQ(static_cast<Counter*>(first)->clicks, 1);

  // The desktop's close hides it; shown again it is there at once, the
  // same widget as the user left it, and the new one is dropped.
  ui.Backend().Push({UiEvent::Type::Close, &popUp});
  ui.Root().DoEvents();
  EXPECT_FALSE(popUp.Showing());
  Widget& again = popUp.ShowWidget(std::make_unique<Counter>(), 100, 40, 120, 80);
  EXPECT_TRUE(popUp.Showing());
  EXPECT_EQ(&again, first);
  EXPECT_EQ(static_cast<Counter&>(again).clicks, 1);

  // It keeps its place while the user works in it, even long after.
  ui.Click(again);
  ui.Backend().AdvanceMs(5 * cfToolPopUp::kWatchMs);
  ui.Root().DoEvents();
  EXPECT_TRUE(popUp.Showing());
  // A press on the owner means the user has turned away: at the next look
  // it hides.
  ui.ClickAt(owner, 20, 20);
  EXPECT_TRUE(popUp.Showing());
  ui.Backend().AdvanceMs(cfToolPopUp::kWatchMs);
  ui.Root().DoEvents();
  EXPECT_FALSE(popUp.Showing());

  // So it does when the owner closes.
  popUp.ShowWidget(std::make_unique<Counter>(), 100, 40, 120, 80);
  owner.Close();
  ui.Backend().AdvanceMs(cfToolPopUp::kWatchMs);
  ui.Root().DoEvents();
  EXPECT_FALSE(popUp.Showing());

  // Another type of widget is built anew, and so is any after Unload.
  owner.Show();
  Widget& other = popUp.ShowWidget(std::make_unique<Counter>("Other"), 100, 40, 120, 80);
  EXPECT_EQ(popUp.WidgetTypeName(), "Other");
  EXPECT_EQ(popUp.Hosted(), &other);
  EXPECT_EQ(popUp.Background()->Key(), "ToolPopUp");
  popUp.Unload();
  EXPECT_FALSE(popUp.Showing());
  EXPECT_EQ(popUp.WidgetTypeName(), "");
  Widget& fresh = popUp.ShowWidget(std::make_unique<Counter>("Other"), 100, 40, 120, 80);
  EXPECT_EQ(static_cast<Counter&>(fresh).clicks, 0);
  EXPECT_EQ(popUp.Hosted(), &fresh);
}
