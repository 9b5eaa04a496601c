#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "app/ui/DemoWidgetsForm.h"
#include "platform/DrawingContext.h"
#include "platform/ImageList.h"
#include "platform/SvgRenderer.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwDropDown.h"
#include "platform/stock/cwFolderLists.h"
#include "platform/stock/cwMenu.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/stock/cwTree.h"
#include "tests/support/Golden.h"
#include "tests/support/Pixels.h"
#include "tests/support/ScopedTheme.h"
#include "tests/support/TempDir.h"
#include "tests/support/UiDriver.h"
#include "widgets/cThemeQuillaron.h"

using namespace qds;

namespace {

// Writes down the widgets' own events; the platform's (named "W_...") are left out.
struct Host : cfForm {
  std::vector<std::string> events;
  void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>&) override {
    if (name.rfind("W_", 0) != 0) events.push_back(source.Key() + ":" + name);
  }
};

// A square picture of one colour in the image cache.
bool AddPlainPicture(ImageList& images, const std::string& key, const std::string& colour) {
  return images.AddFromBytes(ToBytes(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 10 10">)"
                                     R"(<rect width="10" height="10" fill=")" +
                                     colour + R"("/></svg>)"),
                             key, 16, 16);
}

}  // namespace

TEST(StockWidgets, ButtonsClickByMouseAndKeyAndCheckableOnesToggle) {
  UiDriver ui;
  Host form;
  form.Resize(200, 100);
  int clicks = 0;
  cwButton& ok = form.Children().Add(std::make_unique<cwButton>(), "btnOk");
  ok.Move(10, 10, 80, 24);
  ok.Caption = "Ok";
  ok.Click = [&] { ++clicks; };
  cwButton& toggle = form.Children().Add(std::make_unique<cwButton>(), "chkRuler");
  toggle.Move(100, 10, 80, 24);
  toggle.Checkable = true;
  form.Show();

  ui.Click(ok);
  EXPECT_EQ(clicks, 1);
  EXPECT_TRUE(ok.HasFocus());
  ui.Press(form, Key::Return);
  EXPECT_EQ(clicks, 2);
  ui.Click(toggle);
  EXPECT_TRUE(toggle.Checked);
  ui.Click(toggle);
  EXPECT_FALSE(toggle.Checked);
  EXPECT_EQ(form.events,
            (std::vector<std::string>{"btnOk:Click", "btnOk:Click", "chkRuler:Click", "chkRuler:Click"}));

  // Pressing, then letting go elsewhere, is no click.
  ui.Mouse(form, UiEvent::Type::MouseDown, 20, 20);
  ui.Mouse(form, UiEvent::Type::MouseUp, 150, 90);
  EXPECT_EQ(clicks, 2);
  // A disabled button takes nothing.
  ok.setEnabled(false);
  ui.Click(ok);
  EXPECT_EQ(clicks, 2);
}

TEST(StockWidgets, LabelsFramesAndImagesDrawAndAreMadeByName) {
  UiDriver ui;
  SvgRenderer renderer;
  ImageList images(renderer);
  ASSERT_TRUE(AddPlainPicture(images, "Green", "#00ff00"));
  ui.Root().setImages(&images);
  cfForm form;
  form.Resize(120, 80);
  form.BackColor = StockColor(Palette::Back);
  std::unique_ptr<Widget> made = CreateWidget("cwImage");
  ASSERT_TRUE(made);
  auto& image = form.Children().Add(std::move(made), "img");
  static_cast<cwImage&>(image).PictureKey = "Green";
  image.Move(10, 10, 40, 20);  // kept in shape: a 20 square in the middle
  auto& label = static_cast<cwLabel&>(form.Children().Add(CreateWidget("cwLabel"), "lbl"));
  label.Move(10, 40, 100, 20);
  label.Caption = "Quillaron";
  form.Children().Add(CreateWidget("cwFrame"), "frm").Move(60, 5, 55, 30);
  EXPECT_EQ(CreateWidget("cwNoSuchThing"), nullptr);
  // Every stock class has joined the registry under its own name, and
  // makes a widget of that class.
  const std::vector<std::string> classes = RegisteredWidgetClasses();
  for (const char* name : {"cwButton", "cwLabel", "cwFrame", "cwImage", "cwVScrollBar", "cwHScrollBar",
                           "cwStatusBar", "cwMenu", "cwDropDown", "cwTree", "cwDirList", "cwFileList"})
    EXPECT_NE(std::find(classes.begin(), classes.end(), name), classes.end()) << name;
  for (const std::string& name : classes) {
    const std::unique_ptr<Widget> w = CreateWidget(name);
    ASSERT_TRUE(w) << name;
    EXPECT_EQ(w->TypeName(), name);
  }
  form.Show();

  const SurfacePtr shot = ui.Screenshot(form);
  EXPECT_EQ(PixelAt(shot, 30, 20), (Bgra{0, 255, 0, 255}));  // the picture
  EXPECT_EQ(PixelAt(shot, 12, 20).g, 0x32);                  // beside it: the background
  bool ink = false;
  for (int x = 12; x < 80 && !ink; ++x) ink = PixelAt(shot, x, 50).r > 0x80;  // light text on dark
  EXPECT_TRUE(ink);
  EXPECT_EQ(PixelAt(shot, 60, 20), (Bgra{0x44, 0x44, 0x44, 255}));  // the frame's left edge
}

TEST(StockWidgets, TheDemonstrationFormWorksWithoutADisplay) {
  UiDriver ui;
  SvgRenderer renderer;
  ImageList images(renderer);
  ASSERT_TRUE(images.AddFromFile(QDS_SOURCE_DATA "/Quillaron.svg", "Logo", 128, 128));
  ui.Root().setImages(&images);
  // In the theme the studio installs at its start.
  ScopedTheme theme(std::make_shared<cThemeQuillaron>());
  DemoWidgetsForm form;
  form.Show();
  // Every stock widget in its place, drawn as it was when last looked at.
  EXPECT_TRUE(MatchesGolden(ui.Screenshot(form), "demo_widgets"));
  cwButton& ok = static_cast<cwButton&>(form.Children().Item("frmButtons").Children().Item("btnOk"));
  ui.Click(ok);
  ui.Click(ok);
  EXPECT_EQ(form.Clicks, 2);
  auto& status = static_cast<cwStatusBar&>(form.Children().Item("sbStatus"));
  EXPECT_EQ(status.Caption, "Clicks: 2");
  cwButton& off = static_cast<cwButton&>(form.Children().Item("frmButtons").Children().Item("btnOff"));
  ui.Click(off);
  EXPECT_EQ(form.Clicks, 2);

  ui.Click(form.Children().Item("btnMenu"));
  auto& menu = static_cast<cwMenu&>(form.Children().Item("mnuDemo"));
  ASSERT_TRUE(menu.IsOpen());
  cfForm& popup = *menu.PopupForm();
  EXPECT_TRUE(MatchesGolden(ui.Screenshot(popup), "demo_menu"));
  ui.ClickAt(popup, 30, 2 * 24 + 12);
  EXPECT_EQ(status.Caption, "Chosen: Demo>Close");

  // Made larger, the form keeps its column to the right edge, lets the tree
  // and the scroll bar take the new height, and the status bar the bottom.
  form.Resize(1050, 500);
  ui.Root().DoEvents();
  Widget& side = form.Children().Item("pnlSide");
  EXPECT_EQ(side.Left(), 850);
  EXPECT_EQ(form.Children().Item("pnlLists").Left(), 850 - 250);
  EXPECT_EQ(status.Top(), 476);
  EXPECT_EQ(status.Width(), 1050);
  // The band of small controls keeps its height over the status bar.
  EXPECT_EQ(side.Children().Item("treDemo").Height(), 90 + 140);
  EXPECT_EQ(side.Children().Item("txtHex").Top() + 24, 476 - 74 - 10);
  EXPECT_EQ(form.Children().Item("vsbDemo").Height(), 200 + 40);
  Widget& kit = form.Children().Item("pnlKit");
  EXPECT_EQ(kit.Top() + kit.Height(), 476);
  EXPECT_EQ(kit.Width(), 1050);
}

TEST(StockWidgets, ScrollBarsMoveByArrowTrackThumbAndWheelWithinTheirRange) {
  UiDriver ui;
  Host form;
  form.Resize(100, 240);
  auto& bar = static_cast<cwScrollBar&>(form.Children().Add(CreateWidget("cwVScrollBar"), "vsb"));
  bar.Move(10, 10, 16, 200);  // arrows 16 px, track 168 px
  int changes = 0;
  bar.Change = [&] { ++changes; };
  form.Show();
  auto mouse = [&](UiEvent::Type t, double y) { ui.Mouse(form, t, 18, y); };
  auto click = [&](double y) { ui.ClickAt(form, 18, y); };

  click(15);  // the up arrow at the top goes nowhere
  EXPECT_EQ(bar.Value(), 0);
  EXPECT_EQ(changes, 0);
  click(205);  // the down arrow
  EXPECT_EQ(bar.Value(), 1);
  click(180);  // the track below the thumb
  EXPECT_EQ(bar.Value(), 11);
  click(30);  // above it
  EXPECT_EQ(bar.Value(), 1);
  EXPECT_EQ(changes, 3);
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "vsb:Change"), 3);

  // Dragging the thumb to the end of the track, and beyond, stops at Max.
  bar.setValue(0);
  mouse(UiEvent::Type::MouseDown, 10 + 16 + 5);
  mouse(UiEvent::Type::MouseMove, 120);
  EXPECT_GT(bar.Value(), 40);
  EXPECT_LT(bar.Value(), 60);
  mouse(UiEvent::Type::MouseMove, 400);  // the bar keeps the mouse while it is outside
  EXPECT_EQ(bar.Value(), 100);
  mouse(UiEvent::Type::MouseUp, 400);
  mouse(UiEvent::Type::MouseMove, 30);
  EXPECT_EQ(bar.Value(), 100);

  // The wheel rolls three small steps at a time, never below Min.
  ui.Wheel(form, 1, 18, 100);
  EXPECT_EQ(bar.Value(), 97);
  bar.setValue(-5);
  EXPECT_EQ(bar.Value(), 0);
  // A narrower range takes the value with it, and the bar is drawn anew.
  bar.setValue(80);
  ui.Root().DoEvents();
  bar.Max = 50;
  EXPECT_EQ(bar.Value(), 50);
  EXPECT_TRUE(form.Dirty());
  bar.Max = -3;  // an empty range holds the value at Min
  bar.setValue(7);
  EXPECT_EQ(bar.Value(), 0);
}

TEST(StockWidgets, TheStatusBarLetsItsOwnerDrawOverIt) {
  UiDriver ui;
  Host form;
  form.Resize(200, 40);
  auto& status = static_cast<cwStatusBar&>(form.Children().Add(CreateWidget("cwStatusBar"), "sb"));
  status.Move(0, 20, 200, 20);
  status.Caption = "Ready";
  status.OwnerDraw = [](DrawingContext& ctx, double w, double h) {
    ctx.SetSourceColor(0x0000FF);  // red
    ctx.Rectangle(w - 10, 0, 10, h);
    ctx.Fill();
  };
  form.Show();
  const SurfacePtr shot = ui.Screenshot(form);
  EXPECT_EQ(PixelAt(shot, 195, 30), (Bgra{0, 0, 255, 255}));
  EXPECT_NE(PixelAt(shot, 150, 30), (Bgra{0, 0, 255, 255}));
}

TEST(StockWidgets, MenusListTheirRootsItemsAndCloseOnAChoiceEscapeOrAClickElsewhere) {
  UiDriver ui;
  Host form;
  form.Resize(300, 200);
  form.MoveOnScreen(100, 50);
  auto& menu = static_cast<cwMenu&>(form.Children().Add(CreateWidget("cwMenu"), "mnu"));
  menu.AddItem("File>Open", "&Open…");
  menu.AddItem("File>Save", "Save", {}, false);
  menu.AddItem("File>Export", "Export");
  menu.AddItem("File>Export>Png", "PNG");  // a level deeper: on Export's own list
  menu.AddItem("File>Export>Svg", "SVG");
  menu.AddItem("File>Close", "Close");
  menu.AddItem("Edit>Undo", "Undo");
  std::vector<std::string> chosen;
  int gone = 0;
  menu.Click = [&](const std::string& key) { chosen.push_back(key); };
  menu.MenuDestroyed = [&] { ++gone; };
  form.Show();

  menu.ShowPopup("File", 10, 20);
  ASSERT_TRUE(menu.IsOpen());
  cfForm& popup = *menu.PopupForm();
  EXPECT_EQ(popup.ScreenX(), 110);
  EXPECT_EQ(popup.ScreenY(), 70);
  EXPECT_EQ(popup.Height(), 4 * 24);
  auto clickRow = [&](cfForm& on, int row) { ui.ClickAt(on, 20, row * 24.0 + 12); };
  clickRow(popup, 1);  // disabled: the menu stays open
  EXPECT_TRUE(menu.IsOpen());
  EXPECT_TRUE(chosen.empty());
  clickRow(popup, 3);
  EXPECT_FALSE(menu.IsOpen());
  EXPECT_EQ(chosen, std::vector<std::string>{"File>Close"});
  EXPECT_EQ(gone, 1);
  EXPECT_EQ(form.events, (std::vector<std::string>{"mnu:Click", "mnu:MenuDestroyed"}));

  // An item with items opens them beside it; a press there keeps both open
  // until the choice, which closes everything and is told once.
  menu.ShowPopup("File", 10, 20);
  clickRow(*menu.PopupForm(), 2);
  ASSERT_NE(menu.SubPopupForm(), nullptr);
  cfForm& sub = *menu.SubPopupForm();
  EXPECT_EQ(sub.Height(), 2 * 24);
  EXPECT_EQ(sub.ScreenY(), 70 + 2 * 24);
  EXPECT_GT(sub.ScreenX(), 110 + 100);
  clickRow(sub, 1);
  EXPECT_FALSE(menu.IsOpen());
  EXPECT_EQ(ui.Root().Forms().size(), 1u);  // the sub-menu went too
  EXPECT_EQ(chosen.back(), "File>Export>Svg");
  EXPECT_EQ(gone, 2);

  // Keys: Down skips the disabled row, Right opens the sub-menu, Left goes
  // back, Return chooses.
  menu.ShowPopup("File", 0, 0);
  ui.Press(*menu.PopupForm(), Key::Down);
  ui.Press(*menu.PopupForm(), Key::Down);
  ui.Press(*menu.PopupForm(), Key::Right);
  ASSERT_NE(menu.SubPopupForm(), nullptr);
  ui.Press(*menu.SubPopupForm(), Key::Left);
  EXPECT_FALSE(menu.SubPopupForm() && menu.SubPopupForm()->Showing());
  EXPECT_TRUE(menu.IsOpen());
  ui.Press(*menu.PopupForm(), Key::Down);
  ui.Press(*menu.PopupForm(), Key::Return);
  EXPECT_EQ(chosen.back(), "File>Close");
  menu.ShowPopup("File", 0, 0);
  ui.Press(form, 'O');  // the marked letter of "&Open…"
  EXPECT_EQ(chosen.back(), "File>Open");
  // Escape, and a click on the owner, close without a choice. The keys go to
  // the pop-up even when the window system sends them to the owner.
  menu.ShowPopup("Edit", 0, 0);
  ui.Press(form, Key::Escape);
  EXPECT_FALSE(menu.IsOpen());
  menu.ShowPopup("File", 0, 0);
  clickRow(*menu.PopupForm(), 2);
  ui.Click(form);
  EXPECT_FALSE(menu.IsOpen());
  EXPECT_EQ(chosen.size(), 4u);
  EXPECT_EQ(gone, 6);
  // A root with no items opens nothing.
  menu.ShowPopup("View", 0, 0);
  EXPECT_FALSE(menu.IsOpen());

  // In the corner of the work area, a menu ends at the point it was opened
  // at, and a sub-menu opens on the left of its menu.
  double ax, ay, aw, ah;
  ui.Backend().WorkArea(ax, ay, aw, ah);
  form.Resize(300, 200);
  form.MoveOnScreen(ax + aw - 20, ay + ah - 20);
  menu.ShowPopup("File", 0, 0);
  cfForm& cornered = *menu.PopupForm();
  EXPECT_EQ(cornered.ScreenX() + cornered.ScreenWidth(), ax + aw - 20);
  EXPECT_EQ(cornered.ScreenY() + cornered.ScreenHeight(), ay + ah - 20);
  clickRow(cornered, 2);
  ASSERT_NE(menu.SubPopupForm(), nullptr);
  EXPECT_LE(menu.SubPopupForm()->ScreenX() + menu.SubPopupForm()->ScreenWidth(), cornered.ScreenX() + 4);
  EXPECT_LE(menu.SubPopupForm()->ScreenY() + menu.SubPopupForm()->ScreenHeight(), ay + ah);
  ui.Press(form, Key::Escape);
  ui.Press(form, Key::Escape);
  EXPECT_EQ(gone, 7);
  menu.ShowPopup("File", 0, 30, 10);  // dropped from a button at 10..30: opens above it
  EXPECT_EQ(menu.PopupForm()->ScreenY() + menu.PopupForm()->ScreenHeight(), ay + ah - 20 + 10);
  ui.Press(form, Key::Escape);
  EXPECT_EQ(gone, 8);

  // The menu going while open takes its pop-ups with it, quietly.
  menu.ShowPopup("File", 0, 0);
  clickRow(*menu.PopupForm(), 2);
  form.Children().Remove("mnu");
  ui.Root().DoEvents();
  EXPECT_EQ(gone, 8);
}

TEST(StockWidgets, ADropDownShowsItsContentUnderItselfAndTogglesOnItsBox) {
  UiDriver ui;
  Host form;
  form.Resize(300, 200);
  form.MoveOnScreen(200, 100);
  auto& frame = form.Children().Add(std::make_unique<cwFrame>(), "frm");
  frame.Move(10, 10, 200, 100);
  auto& drop = static_cast<cwDropDown&>(frame.Children().Add(CreateWidget("cwDropDown"), "ddl"));
  drop.Move(20, 30, 150, 24);
  drop.DropHeight = 90;
  cwButton& inside = static_cast<cwButton&>(drop.setContent(std::make_unique<cwButton>()));
  int clicks = 0;
  inside.Click = [&] { ++clicks; };
  form.Show();

  ui.Click(drop);
  ASSERT_TRUE(drop.IsOpen());
  const cfForm& popup = *drop.PopupForm();
  EXPECT_EQ(popup.ScreenX(), 200 + 30);
  EXPECT_EQ(popup.ScreenY(), 100 + 40 + 24);
  EXPECT_EQ(popup.Width(), 150);
  EXPECT_EQ(inside.Height(), 90);
  ui.Click(inside);  // the content works, and the pop-up stays
  EXPECT_EQ(clicks, 1);
  EXPECT_TRUE(drop.IsOpen());

  ui.Click(drop);  // the box again closes it, and does not open it anew
  EXPECT_FALSE(drop.IsOpen());
  ui.Press(form, Key::Down, Shift::Alt);
  EXPECT_TRUE(drop.IsOpen());
  ui.Press(*drop.PopupForm(), Key::Escape);
  EXPECT_FALSE(drop.IsOpen());
  EXPECT_EQ(form.events, (std::vector<std::string>{"ddl:DropDownOpened", "ddl:DropDownClosed",
                                                   "ddl:DropDownOpened", "ddl:DropDownClosed"}));
}

TEST(StockWidgets, FolderAndFileListsShowRealFoldersFilteredAndFollowRescan) {
  EXPECT_TRUE(WildcardMatch("*.svg", "Icon.SVG"));
  EXPECT_TRUE(WildcardMatch("a?c*", "abcdef"));
  EXPECT_FALSE(WildcardMatch("*.svg", "icon.svg.bak"));
  EXPECT_FALSE(WildcardMatch("a*b*c", "aXbY"));

  TempDir dir;
  const std::filesystem::path root = std::filesystem::canonical(dir.Path());
  std::filesystem::create_directories(root / "b" / "inner");
  std::filesystem::create_directory(root / "A");
  std::filesystem::create_directory(root / ".hidden");
  for (const char* name : {"two.png", "one.SVG", "three.txt"}) std::ofstream(root / name) << "x";

  UiDriver ui;
  Host form;
  form.Resize(400, 300);
  auto& dirs = static_cast<cwDirList&>(form.Children().Add(CreateWidget("cwDirList"), "dir"));
  dirs.Move(0, 0, 200, 300);
  auto& files = static_cast<cwFileList&>(form.Children().Add(CreateWidget("cwFileList"), "fil"));
  files.Move(200, 0, 200, 300);
  form.Show();

  ASSERT_TRUE(dirs.setPath(dir.Path()));
  const int depth = dirs.ListIndex();  // the folder's own row, after the way down to it
  EXPECT_EQ(dirs.List(depth), root.filename().string());
  ASSERT_EQ(dirs.ListCount(), depth + 3);
  EXPECT_EQ(dirs.List(depth + 1), "A");
  EXPECT_EQ(dirs.List(depth + 2), "b");
  EXPECT_FALSE(dirs.setPath((root / "missing").string()));
  EXPECT_EQ(dirs.Path(), root.string());

  // A double click goes into a folder; Return on the row above goes back up.
  ui.Mouse(form, UiEvent::Type::DblClick, 50, (depth + 2) * 20.0 + 10);
  EXPECT_EQ(dirs.Path(), (root / "b").string());
  EXPECT_EQ(dirs.List(dirs.ListCount() - 1), "inner");
  dirs.SetFocus();
  ui.Press(form, Key::Up);
  ui.Press(form, Key::Return);
  EXPECT_EQ(dirs.Path(), root.string());
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "dir:Change"), 3);

  files.Pattern = "*.svg;*.PNG";
  ASSERT_TRUE(files.setPath(dir.Path()));
  ASSERT_EQ(files.ListCount(), 2);
  EXPECT_EQ(files.List(0), "one.SVG");
  EXPECT_EQ(files.List(1), "two.png");
  ui.Click(files);  // below the rows: nothing chosen
  EXPECT_EQ(files.FileName(), "");
  int clicks = 0;
  files.Click = [&] { ++clicks; };
  form.events.clear();
  ui.Mouse(form, UiEvent::Type::MouseDown, 250, 30);
  EXPECT_EQ(files.FileName(), "two.png");
  // The keys choose a row as the mouse does: the owner hears it through the
  // callback and by name alike, and a key that moves nowhere says nothing.
  ui.Press(form, Key::Up);
  EXPECT_EQ(files.FileName(), "one.SVG");
  ui.Press(form, Key::Up);
  EXPECT_EQ(clicks, 2);
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "fil:Click"), 2);
  // A new file shows after a rescan, keeping the selection.
  std::ofstream(root / "a.svg") << "x";
  files.Rescan();
  EXPECT_EQ(files.ListCount(), 3);
  EXPECT_EQ(files.FileName(), "one.SVG");
  EXPECT_EQ(files.ListIndex(), 1);
}

TEST(StockWidgets, TreesExpandSelectKeepStateAcrossNewDataAndLetTheOwnerDraw) {
  UiDriver ui;
  Host form;
  form.Resize(200, 200);
  auto& tree = static_cast<cwTree&>(form.Children().Add(CreateWidget("cwTree"), "tre"));
  tree.Move(0, 0, 200, 200);  // rows of 20 px; the expander of depth d at 4 + 14 d
  const auto data = [](const std::string& extra) {
    std::vector<TreeNode> roots;
    roots.push_back({"styles", "Styles", {Value(3)}, {{"line", "Line", {}, {}}, {"solid", "Solid", {}, {}}}});
    roots.push_back({"themes", "Themes", {}, {{"web", "Web", {}, {{"web/arrows", "Arrows", {}, {}}}}}});
    if (!extra.empty()) roots.push_back({extra, extra, {}, {}});
    return roots;
  };
  tree.setNodes(data(""));
  std::vector<std::string> clicked;
  tree.NodeClick = [&](const std::string& key) { clicked.push_back(key); };
  form.Show();
  EXPECT_EQ(tree.ListCount(), 2);
  EXPECT_EQ(tree.Node("styles")->values.at(0).AsLong(), 3);

  ui.Mouse(form, UiEvent::Type::MouseDown, 8, 10);  // the expander of Styles
  EXPECT_EQ(tree.ListCount(), 4);
  EXPECT_EQ(tree.List(1), "Line");
  EXPECT_EQ(tree.SelectedKey(), "");  // opening is not choosing
  ui.Mouse(form, UiEvent::Type::MouseDown, 80, 50);
  EXPECT_EQ(tree.SelectedKey(), "solid");

  // New data keeps what was open and chosen.
  tree.setNodes(data("extra"));
  EXPECT_EQ(tree.ListCount(), 5);
  EXPECT_EQ(tree.SelectedKey(), "solid");
  // Closing the parent of the selection moves it to the parent; Left then Right by keys.
  tree.Expand("styles", false);
  EXPECT_EQ(tree.SelectedKey(), "styles");
  tree.SetFocus();
  ui.Press(form, Key::Right);
  EXPECT_TRUE(tree.Node("styles")->expanded);
  ui.Press(form, Key::Down);
  ui.Press(form, Key::Left);  // a leaf: up to its parent
  EXPECT_EQ(tree.SelectedKey(), "styles");
  // Selecting a hidden node opens the way down to it.
  tree.Select("web/arrows");
  EXPECT_TRUE(tree.Node("themes")->expanded);
  EXPECT_EQ(tree.SelectedKey(), "web/arrows");
  EXPECT_EQ(clicked, (std::vector<std::string>{"solid", "line", "styles", "web/arrows"}));
  EXPECT_EQ(std::count(form.events.begin(), form.events.end(), "tre:NodeExpand"), 5);

  int drawn = 0;
  tree.OwnerDraw = [&](DrawingContext& ctx, const TreeNode&, double x, double y, double w, double h, bool) {
    ++drawn;
    ctx.SetSourceColor(0x00FF00);
    ctx.Rectangle(x, y, w, h);
    ctx.Fill();
  };
  tree.Refresh();
  const SurfacePtr shot = ui.Screenshot(form);
  EXPECT_EQ(drawn, tree.ListCount());
  EXPECT_EQ(PixelAt(shot, 150, 10), (Bgra{0, 255, 0, 255}));
}

TEST(StockWidgets, TabAndAccessKeysMoveTheFocusAndTipsShowWhenTheMouseRests) {
  UiDriver ui;
  Host form;
  form.Resize(300, 100);
  form.MoveOnScreen(50, 40);
  std::vector<cwButton*> buttons;
  int saved = 0;
  for (const char* caption : {"&Open", "&Save", "Salt && &Pepper"}) {
    cwButton& b = form.Children().Add(std::make_unique<cwButton>());
    b.Move(10 + 90 * static_cast<double>(buttons.size()), 10, 80, 24);
    b.Caption = caption;
    buttons.push_back(&b);
  }
  buttons[1]->Click = [&] { ++saved; };
  buttons[1]->ToolTip = "Save the design";
  cwLabel& label = form.Children().Add(std::make_unique<cwLabel>());  // takes no focus
  label.Move(10, 50, 100, 20);
  form.Show();

  ui.Press(form, Key::Tab);
  EXPECT_TRUE(buttons[0]->HasFocus());
  ui.Press(form, Key::Tab);
  ui.Press(form, Key::Tab);
  EXPECT_TRUE(buttons[2]->HasFocus());
  ui.Press(form, Key::Tab);  // round to the first
  EXPECT_TRUE(buttons[0]->HasFocus());
  ui.Press(form, Key::Tab, Shift::ShiftKey);
  EXPECT_TRUE(buttons[2]->HasFocus());

  ui.Press(form, 'S', Shift::Alt);
  EXPECT_EQ(saved, 1);
  EXPECT_TRUE(buttons[1]->HasFocus());
  ui.Press(form, 'P', Shift::Alt);  // "&&" is no mark; "&P" is
  EXPECT_TRUE(buttons[2]->HasFocus());
  ui.Press(form, 'S');  // without Alt, nothing
  EXPECT_EQ(saved, 1);
  EXPECT_EQ(ShownCaption("Salt && &Pepper"), "Salt & Pepper");
  // The marked letter is underlined: only the foot of the "S" differs from a plain caption.
  const SurfacePtr marked = ui.Screenshot(form);
  buttons[1]->Caption = "Save";
  buttons[1]->Refresh();
  const SurfacePtr plain = ui.Screenshot(form);
  int differ = 0;
  for (int y = 0; y < plain->Height(); ++y) {
    for (int x = 0; x < plain->Width(); ++x) {
      if (PixelAt(marked, x, y) == PixelAt(plain, x, y)) continue;
      ++differ;
      EXPECT_TRUE(x > 100 && x < 140 && y > 24 && y < 34) << x << "," << y;
    }
  }
  EXPECT_GT(differ, 3);
  buttons[1]->Caption = "&Save";

  // The tip comes when the mouse has rested, under it, and goes when it moves on.
  ui.Mouse(form, UiEvent::Type::MouseMove, 140, 20);
  EXPECT_EQ(form.ToolTipWindow(), nullptr);
  ui.Backend().AdvanceMs(cfForm::kToolTipDelayMs + 10);
  ui.Root().DoEvents();
  ASSERT_NE(form.ToolTipWindow(), nullptr);
  EXPECT_TRUE(form.ToolTipWindow()->Showing());
  EXPECT_EQ(form.ToolTipWindow()->Caption, "Save the design");
  EXPECT_EQ(form.ToolTipWindow()->ScreenX(), 50 + 140);
  EXPECT_GT(form.ToolTipWindow()->ScreenY(), 40 + 20);
  ui.Mouse(form, UiEvent::Type::MouseMove, 40, 20);
  EXPECT_EQ(form.ToolTipWindow(), nullptr);
  ui.Backend().AdvanceMs(cfForm::kToolTipDelayMs * 3);
  ui.Root().DoEvents();
  EXPECT_EQ(form.ToolTipWindow(), nullptr);  // the first button has no tip
  // A press before the delay is over cancels it.
  ui.Mouse(form, UiEvent::Type::MouseMove, 140, 20);
  ui.ClickAt(form, 140, 20);
  ui.Backend().AdvanceMs(cfForm::kToolTipDelayMs + 10);
  ui.Root().DoEvents();
  EXPECT_EQ(form.ToolTipWindow(), nullptr);
}

TEST(StockWidgets, FramelessFormsMoveByTheirTopMaximiseToTheWorkAreaAndShowABackgroundPicture) {
  UiDriver ui;
  SvgRenderer renderer;
  ImageList images(renderer);
  ASSERT_TRUE(AddPlainPicture(images, "Blue", "#0000ff"));
  ui.Root().setImages(&images);
  Host form;
  form.Resize(200, 150);
  form.MoveOnScreen(100, 100);
  form.Borderless = true;
  form.DragRegionHeight = 30;
  form.PictureKey = "Blue";
  cwButton& close = form.Children().Add(std::make_unique<cwButton>(), "btnClose");
  close.Move(170, 5, 20, 20);
  form.Show();
  EXPECT_EQ(PixelAt(ui.Screenshot(form), 100, 100), (Bgra{255, 0, 0, 255}));

  auto mouse = [&](UiEvent::Type t, double x, double y) { ui.Mouse(form, t, x, y); };
  // Dragging the top moves the window; the grabbed point stays under the mouse.
  mouse(UiEvent::Type::MouseDown, 50, 10);
  mouse(UiEvent::Type::MouseMove, 80, 30);
  EXPECT_EQ(form.ScreenX(), 130);
  EXPECT_EQ(form.ScreenY(), 120);
  mouse(UiEvent::Type::MouseMove, 50, 10);  // the window came along, so this is no move
  EXPECT_EQ(form.ScreenX(), 130);
  mouse(UiEvent::Type::MouseUp, 50, 10);
  mouse(UiEvent::Type::MouseMove, 90, 10);
  EXPECT_EQ(form.ScreenX(), 130);
  // Below the region, or on a widget in it, the form stays put.
  mouse(UiEvent::Type::MouseDown, 50, 60);
  mouse(UiEvent::Type::MouseMove, 90, 90);
  mouse(UiEvent::Type::MouseUp, 90, 90);
  ui.Click(close);
  EXPECT_EQ(form.ScreenX(), 130);
  EXPECT_EQ(form.ScreenY(), 120);

  form.setZoom(2);
  form.setState(cfForm::WindowState::Maximized);
  double x, y, w, h;
  ui.Backend().WorkArea(x, y, w, h);
  EXPECT_EQ(form.ScreenX(), x);
  EXPECT_EQ(form.Width() * 2, w);
  EXPECT_EQ(ui.Screenshot(form)->Height(), h);
  mouse(UiEvent::Type::MouseDown, 50, 10);  // a maximised window is not dragged
  mouse(UiEvent::Type::MouseMove, 90, 30);
  mouse(UiEvent::Type::MouseUp, 90, 30);
  EXPECT_EQ(form.ScreenX(), x);
  form.setState(cfForm::WindowState::Normal);
  EXPECT_EQ(form.ScreenX(), 130);
  EXPECT_EQ(form.Width(), 200);
  EXPECT_EQ(form.Height(), 150);

  // Sizable, its borders size it (in device pixels, at zoom 2); the opposite
  // borders stay, and it keeps its minimum size.
  form.Sizable = true;
  mouse(UiEvent::Type::MouseMove, 398, 298);
  EXPECT_EQ(ui.Root().Backend().CurrentCursor(), Cursor::SizeNWSE);
  mouse(UiEvent::Type::MouseDown, 398, 298);
  mouse(UiEvent::Type::MouseMove, 438, 318);
  mouse(UiEvent::Type::MouseUp, 438, 318);
  EXPECT_EQ(form.ScreenX(), 130);
  EXPECT_EQ(form.Width(), 220);
  EXPECT_EQ(form.Height(), 160);
  EXPECT_EQ(ui.Screenshot(form)->Width(), 440);
  mouse(UiEvent::Type::MouseDown, 2, 100);
  mouse(UiEvent::Type::MouseMove, 600, 100);
  mouse(UiEvent::Type::MouseUp, 600, 100);
  EXPECT_EQ(form.Width(), form.MinWidth);
  EXPECT_EQ(form.ScreenX(), 130 + 440 - 2 * form.MinWidth);
  EXPECT_EQ(form.Height(), 160);
}

TEST(StockWidgets, ListsShowAScrollBarOnlyWhenTheirRowsDoNotFitAndFollowIt) {
  UiDriver ui;
  Host form;
  form.Resize(200, 100);
  auto& tree = static_cast<cwTree&>(form.Children().Add(CreateWidget("cwTree"), "tre"));
  tree.Move(0, 0, 200, 100);  // five rows of 20
  std::vector<TreeNode> nodes;
  for (int i = 0; i < 3; ++i) nodes.push_back({"n" + std::to_string(i), "Node " + std::to_string(i), {}, {}});
  tree.setNodes(nodes);
  form.Show();
  auto& bar = static_cast<cwScrollBar&>(tree.Children().Item("vsbRows"));
  EXPECT_FALSE(bar.Visible());

  for (int i = 3; i < 12; ++i)
    nodes.push_back({"n" + std::to_string(i), "Node " + std::to_string(i), {}, {}});
  tree.setNodes(nodes);
  ASSERT_TRUE(bar.Visible());
  EXPECT_EQ(bar.Max, (12 - 5) * 20);  // the bar counts pixels
  EXPECT_EQ(bar.Left(), 200 - 16);
  // The bar's down arrow scrolls the rows; the keys scroll the bar.
  ui.ClickAt(form, 192, 95);
  EXPECT_EQ(tree.TopIndex(), 1);
  tree.SetFocus();
  ui.Press(form, Key::End);
  EXPECT_EQ(tree.SelectedKey(), "n11");
  EXPECT_EQ(bar.Value(), 7 * 20);
  // A taller list has room for all, and the bar goes.
  tree.Move(0, 0, 200, 300);
  ui.Root().DoEvents();
  EXPECT_FALSE(bar.Visible());
  EXPECT_EQ(tree.TopIndex(), 0);
}

TEST(StockWidgets, SettingWhatAWidgetShowsRepaintsIt) {
  UiDriver ui;
  Host form;
  form.Resize(300, 100);
  auto& label = form.Children().Add<cwLabel>("lbl");
  label.Move(200, 60, 80, 20);
  auto& button = form.Children().Add<cwButton>("btn");
  button.Move(10, 10, 80, 26);
  form.Show();
  ui.Root().DoEvents();
  ASSERT_FALSE(form.Dirty());
  // A new caption is painted in the next turn, and only where the label is.
  label.Caption = "Saved";
  ASSERT_TRUE(form.Dirty());
  ui.Root().DoEvents();
  ASSERT_EQ(form.LastPaintedRects().size(), 1u);
  const cfForm::DeviceRect r = form.LastPaintedRects()[0];
  EXPECT_TRUE(r.x <= 200 && r.y <= 60 && r.x + r.w >= 280 && r.y + r.h >= 80);
  EXPECT_LT(r.w, 90);
  // The same value again costs nothing; each shown property repaints.
  label.Caption = "Saved";
  EXPECT_FALSE(form.Dirty());
  button.Checked = true;
  EXPECT_TRUE(form.Dirty());
  ui.Root().DoEvents();
  button.PictureKey = "Logo";
  EXPECT_TRUE(form.Dirty());
}
