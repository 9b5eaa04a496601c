// Where forms are on the screen, apart from their widgets' logical units,
// and which form a modal dialog belongs to. Headless: the backend records
// what a window system would be told.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <vector>

#include "platform/Error.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwDropDown.h"
#include "platform/stock/cwMenu.h"
#include "platform/ui/Automation.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"
#include "tests/support/UiDriver.h"

using namespace qds;
using Json = nlohmann::json;

namespace {

// A widget that writes down where the mouse went down on it.
struct Spot : Widget {
  std::vector<std::string> log;
  Spot() : Widget("Spot") {}
  bool W_MouseDown(int, int, double x, double y) override {
    log.push_back(std::to_string(int(x)) + "," + std::to_string(int(y)));
    return true;
  }
};

// A form of logical size 100 by 80 at zoom 2 (200 by 160 pixels), placed
// at (300, 200) on the screen, with a panel at (10, 10) and a spot in it
// at (30, 20) of 40 by 40.
struct ZoomedForm {
  UiDriver ui;
  cfForm form{"ZoomedForm"};
  Widget* panel = nullptr;
  Spot* spot = nullptr;
  ZoomedForm() {
    form.setZoom(2);
    form.Resize(100, 80);
    form.MoveOnScreen(300, 200);
    panel = &form.Children().Add(std::make_unique<Widget>(), "panel");
    panel->Move(10, 10, 60, 60);
    spot = &panel->Children().Add(std::make_unique<Spot>(), "spot");
    spot->Move(30, 20, 20, 20);
    form.Show();
    ui.Root().DoEvents();
  }
};

Json FormOf(const Json& dump, const std::string& name) {
  for (const Json& f : dump["forms"]) {
    if (f["name"] == name) return f;
  }
  return Json();
}

Json WidgetOf(const Json& form, const std::string& path) {
  for (const Json& w : form["widgets"]) {
    if (w["path"] == path) return w;
  }
  return Json();
}

}  // namespace

TEST(FormPlacement, AZoomedFormAtAScreenPositionReportsAndHitTestsInItsOwnUnits) {
  ZoomedForm z;
  cfForm& form = z.form;
  // The place is the window's, in screen pixels; the widget geometry of the
  // form stays at the origin, so no sum up the tree includes the place.
  EXPECT_EQ(form.ScreenX(), 300);
  EXPECT_EQ(form.ScreenY(), 200);
  EXPECT_EQ(form.Left(), 0);
  EXPECT_EQ(form.Top(), 0);
  EXPECT_EQ(form.Width(), 100);
  EXPECT_EQ(form.ScreenWidth(), 200);
  EXPECT_EQ(form.ScreenHeight(), 160);
  EXPECT_TRUE(form.HasScreenPosition());
  double fx = 0, fy = 0;
  z.spot->FormPosition(fx, fy);
  EXPECT_EQ(fx, 40);
  EXPECT_EQ(fy, 30);

  // Device pixels of the window, not of the screen: the spot covers 80..119
  // by 60..99, and a press there reaches it in its own units.
  EXPECT_EQ(&form.HitTest(85, 65), z.spot);
  EXPECT_EQ(&form.HitTest(79, 65), z.panel);
  EXPECT_EQ(&form.HitTest(300 + 85, 200 + 65), &form);  // screen pixels are no window pixels
  z.ui.ClickAt(form, 90, 70);
  EXPECT_EQ(z.spot->log, std::vector<std::string>{"5,5"});
  // A repaint of the spot is of its own pixels, not of a place shifted by the window's.
  z.spot->Refresh();
  z.ui.Root().DoEvents();
  const cfForm::DeviceRect r = form.LastPainted();
  EXPECT_LE(r.x, 80);
  EXPECT_GE(r.x + r.w, 120);
  EXPECT_LT(r.x + r.w, 125);

  // The whole rectangle in screen pixels at once: the size becomes logical.
  form.SetScreenRect(10, 20, 300, 240);
  EXPECT_EQ(form.ScreenX(), 10);
  EXPECT_EQ(form.ScreenY(), 20);
  EXPECT_EQ(form.Width(), 150);
  EXPECT_EQ(form.Height(), 120);
  EXPECT_EQ(form.Left(), 0);
  EXPECT_EQ(form.Top(), 0);
  form.Resize(100, 80);
  EXPECT_EQ(form.ScreenX(), 10);  // a size leaves the place alone
  EXPECT_EQ(form.ScreenWidth(), 200);
}

TEST(FormPlacement, TheDumpSaysWhereFormsAndWidgetsAreInScreenPixels) {
  ZoomedForm z;
  const Json dump = Json::parse(DumpForms(z.ui.Root()));
  const Json form = FormOf(dump, "ZoomedForm");
  ASSERT_FALSE(form.is_null());
  EXPECT_EQ(form["x"], 300);
  EXPECT_EQ(form["y"], 200);
  EXPECT_EQ(form["width"], 200);
  EXPECT_EQ(form["height"], 160);
  const Json spot = WidgetOf(form, "panel/spot");
  EXPECT_EQ(spot["x"], 300 + 40 * 2);
  EXPECT_EQ(spot["y"], 200 + 30 * 2);
  EXPECT_EQ(spot["width"], 40);
  EXPECT_EQ(spot["height"], 40);
}

TEST(FormPlacement, PopUpsOfAZoomedFormOpenAtTheScreenPixelsOfTheirWidget) {
  ZoomedForm z;
  // A drop-down at (30, 20) of the panel, form units (40, 30), 50 by 12.
  auto& drop = static_cast<cwDropDown&>(z.panel->Children().Add(CreateWidget("cwDropDown"), "ddl"));
  drop.Move(30, 20, 50, 12);
  drop.DropHeight = 40;
  drop.OpenDropDown();
  ASSERT_TRUE(drop.IsOpen());
  const cfForm& popup = *drop.PopupForm();
  EXPECT_EQ(popup.Zoom(), 2);
  EXPECT_EQ(popup.ScreenX(), 300 + 40 * 2);
  EXPECT_EQ(popup.ScreenY(), 200 + (30 + 12) * 2);
  EXPECT_EQ(popup.Width(), 50);
  EXPECT_EQ(popup.ScreenWidth(), 100);
  EXPECT_EQ(popup.ScreenHeight(), 80);
  EXPECT_EQ(popup.Left(), 0);
  EXPECT_EQ(popup.Top(), 0);
  drop.CloseDropDown();

  // A menu at a point of the form, and its sub-menu beside its row.
  auto& menu = static_cast<cwMenu&>(z.form.Children().Add(CreateWidget("cwMenu"), "mnu"));
  menu.AddItem("File>Open", "Open");
  menu.AddItem("File>Export", "Export");
  menu.AddItem("File>Export>Png", "PNG");
  menu.ShowPopup("File", 10, 20);
  ASSERT_TRUE(menu.IsOpen());
  cfForm& list = *menu.PopupForm();
  EXPECT_EQ(list.ScreenX(), 300 + 10 * 2);
  EXPECT_EQ(list.ScreenY(), 200 + 20 * 2);
  z.ui.ClickAt(list, 20, 24 * 2 + 10);  // Export, the second row of 24 units
  ASSERT_NE(menu.SubPopupForm(), nullptr);
  EXPECT_EQ(menu.SubPopupForm()->ScreenY(), list.ScreenY() + 24 * 2);
  EXPECT_EQ(menu.SubPopupForm()->ScreenX(), list.ScreenX() + list.ScreenWidth() - 4);
  menu.ClosePopup();
}

TEST(FormPlacement, MaximiseAndRestoreGiveBackTheSameScreenRectangle) {
  ZoomedForm z;
  cfForm& form = z.form;
  form.MoveOnScreen(130, 120);
  form.setState(cfForm::WindowState::Maximized);
  double x, y, w, h;
  z.ui.Backend().WorkArea(x, y, w, h);
  EXPECT_EQ(form.ScreenX(), x);
  EXPECT_EQ(form.ScreenY(), y);
  EXPECT_EQ(form.ScreenWidth(), w);
  EXPECT_EQ(form.ScreenHeight(), h);
  EXPECT_EQ(form.Width(), w / 2);
  EXPECT_EQ(form.Left(), 0);
  EXPECT_EQ(form.Top(), 0);
  form.setState(cfForm::WindowState::Normal);
  EXPECT_EQ(form.ScreenX(), 130);
  EXPECT_EQ(form.ScreenY(), 120);
  EXPECT_EQ(form.ScreenWidth(), 200);
  EXPECT_EQ(form.ScreenHeight(), 160);
  EXPECT_EQ(form.Left(), 0);
  EXPECT_EQ(form.Top(), 0);
}

TEST(FormPlacement, AFormWhoseWindowCannotBeMadeIsNotShown) {
  struct Refusing : HeadlessBackend {
    bool refuse = true;
    void FormShown(cfForm&) override {
      if (refuse) Raise(ErrNo::InvalidArgument, "No window", "Refusing");
    }
  };
  auto* backend = new Refusing;
  PlatformRoot root{std::unique_ptr<UiBackend>(backend)};
  cfForm main("Main");
  main.Resize(100, 100);
  backend->refuse = false;
  main.Show();
  backend->refuse = true;
  cfForm other("Other");
  EXPECT_THROW(other.Show(), AppError);
  EXPECT_FALSE(other.Showing());
  EXPECT_EQ(root.Forms(), std::vector<cfForm*>{&main});

  // A dialog that cannot be shown leaves no form disabled behind it.
  cfForm dialog("Dialog");
  EXPECT_THROW(root.RunModal(dialog), AppError);
  EXPECT_FALSE(dialog.Modal());
  EXPECT_EQ(dialog.Owner(), nullptr);
  EXPECT_EQ(root.ActiveForm(), &main);  // it takes input again
}

TEST(FormPlacement, AModalDialogBelongsToTheFormThatOpenedItAndAPressShowsThatFormsInnermostDialog) {
  auto* backend = new HeadlessBackend;
  PlatformRoot root{std::unique_ptr<UiBackend>(backend)};
  const auto press = [&](cfForm& f) {
    backend->Push({UiEvent::Type::MouseDown, &f, Button::Left, 0, 0, 5, 5});
  };
  cfForm main("Main"), other("Other"), a("DialogA"), b("DialogB"), c("DialogC");
  main.Resize(400, 300);
  main.MoveOnScreen(100, 100);
  other.Resize(200, 100);
  other.MoveOnScreen(600, 100);
  a.Resize(100, 50);
  b.setZoom(2);
  b.Resize(50, 20);
  c.Resize(60, 60);
  c.MoveOnScreen(5, 5);  // placed already: stays there
  main.Show();
  other.Show();
  // The user works in the main window, though the other one opened later.
  press(main);
  root.DoEvents();
  EXPECT_EQ(root.ActiveForm(), &main);

  // Main opens A, A opens B; then, over both, the other window's C.
  // Names, for a failure to read well.
  std::vector<std::string> owners, fronts;
  const auto name = [](const cfForm* f) { return f ? f->TypeName() : std::string("none"); };
  std::vector<std::function<void()>> steps = {
      [&] {
        owners.push_back(name(a.Owner()));
        root.RunModal(b);
      },
      [&] {
        owners.push_back(name(b.Owner()));
        root.RunModal(c, &other);
      },
      [&] {
        owners.push_back(name(c.Owner()));
        press(main);
      },
      [&] {
        fronts.push_back(name(backend->FrontForm()));
        press(other);
      },
      [&] {
        fronts.push_back(name(backend->FrontForm()));
        press(a);
      },
      [&] {
        fronts.push_back(name(backend->FrontForm()));
        c.Close();
      },
      [&] { press(main); },  // in B's loop again
      [&] {
        fronts.push_back(name(backend->FrontForm()));
        b.Close();
      },
      [&] { press(main); },  // in A's loop
      [&] {
        fronts.push_back(name(backend->FrontForm()));
        a.Close();
      },
  };
  std::size_t next = 0;
  root.OnIdle = [&] {
    if (next >= steps.size()) return false;
    steps[next++]();
    return true;
  };
  root.RunModal(a);
  root.OnIdle = nullptr;
  EXPECT_EQ(next, steps.size());
  // The active form owned A; A, the one with the input then, owned B; C
  // was given its owner.
  EXPECT_EQ(owners, (std::vector<std::string>{"Main", "DialogA", "Other"}));
  // Main's chain ends in B, the other window's in C, A's in B; with C
  // gone main's still ends in B, and then in A.
  EXPECT_EQ(fronts, (std::vector<std::string>{"DialogB", "DialogC", "DialogB", "DialogB", "DialogA"}));
  EXPECT_EQ(a.Owner(), nullptr);  // owned only while modal
  EXPECT_FALSE(a.Modal());

  // Dialogs never placed open in the middle of their owners; a placed one
  // stays where it was put.
  EXPECT_EQ(a.ScreenX(), 100 + (400 - 100) / 2);
  EXPECT_EQ(a.ScreenY(), 100 + (300 - 50) / 2);
  EXPECT_EQ(b.ScreenX(), a.ScreenX() + (100 - 100) / 2);
  EXPECT_EQ(b.ScreenY(), a.ScreenY() + (50 - 40) / 2);
  EXPECT_EQ(c.ScreenX(), 5);
  EXPECT_EQ(c.ScreenY(), 5);

  // Every window takes input again.
  press(other);
  root.DoEvents();
  EXPECT_EQ(root.ActiveForm(), &other);
}
