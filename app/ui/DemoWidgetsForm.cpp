#include "app/ui/DemoWidgetsForm.h"

#include "app/ui/DemoListsPanel.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "platform/Bytes.h"
#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwDropDown.h"
#include "platform/stock/cwFolderLists.h"
#include "platform/stock/cwMenu.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/stock/cwTree.h"
#include "platform/ui/PlatformRoot.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cfToolPopUp.h"
#include "widgets/cwDropDownList.h"
#include "widgets/cwFileDialog.h"
#include "widgets/cwFolderDialog.h"
#include "widgets/cwModalBg.h"
#include "widgets/cwProgressBar.h"
#include "widgets/cwSlider.h"
#include "widgets/cwTextBox.h"
#include "widgets/cwToolBar.h"
#include "widgets/cwUpDown.h"

namespace qds {

namespace {

// A question with Yes and No; Return says yes, Escape and the close box no.
class DemoAskForm : public cfForm {
 public:
  DemoAskForm() : cfForm("DemoAskForm") {
    Caption = "Question";
    Resize(240, 100);
    BackColor = StockColor(Palette::Back);
    auto& question = Children().Add<cwLabel>("lblQuestion");
    question.Caption = "Keep the changes?";
    question.Move(10, 14, 220, 20);
    auto& yes = Children().Add<cwButton>("btnYes");
    yes.Caption = "&Yes";
    yes.Move(40, 56, 80, 26);
    yes.Click = [this] { Answer("Yes"); };
    auto& no = Children().Add<cwButton>("btnNo");
    no.Caption = "&No";
    no.Move(130, 56, 80, 26);
    no.Click = [this] { Answer("No"); };
  }
  std::string Answered = "No";
  bool Form_KeyDown(int keyCode, int) override {
    if (keyCode != Key::Return && keyCode != Key::Escape) return false;
    Answer(keyCode == Key::Return ? "Yes" : "No");
    return true;
  }

 private:
  void Answer(const std::string& answer) {
    Answered = answer;
    Close();
  }
};

// A small tool for the tool dialog: a name to type, Ok and Cancel.
class DemoNameTool : public Widget {
 public:
  DemoNameTool() : Widget("DemoNameTool") {
    auto& label = Children().Add<cwLabel>("lblName");
    label.Caption = "Name of the layer:";
    label.Move(12, 10, 236, 20);
    name = &Children().Add<cwTextBox>("txtName");
    name->Move(12, 34, 236, 24);
    auto& ok = Children().Add<cwButton>("btnOk");
    ok.Caption = "Ok";
    ok.Default = true;
    ok.Move(78, 70, 80, 26);
    ok.Click = [this] { cfToolDialog::CloseWith(*this, ToolResult::Ok); };
    auto& cancel = Children().Add<cwButton>("btnCancel");
    cancel.Caption = "Cancel";
    cancel.Cancel = true;
    cancel.Move(168, 70, 80, 26);
    cancel.Click = [this] { cfToolDialog::CloseWith(*this, ToolResult::Cancel); };
  }
  cwTextBox* name = nullptr;
};

}  // namespace

DemoWidgetsForm::~DemoWidgetsForm() = default;

DemoWidgetsForm::DemoWidgetsForm() : cfForm("DemoWidgetsForm") {
  Caption = "Quillaron Design Studio: widgets";
  Resize(830, 460);
  Sizable = true;
  MinWidth = 830, MinHeight = 460;
  BackColor = StockColor(Palette::Back);
  setIconKey("Logo");

  auto& frame = Children().Add<cwFrame>("frmButtons");
  frame.Caption = "cwButton";
  frame.Move(10, 10, 200, 110);
  auto& ok = frame.Children().Add<cwButton>("btnOk");
  ok.Caption = "Ok";
  ok.Move(10, 24, 80, 26);
  auto& save = frame.Children().Add<cwButton>("btnSave");
  save.Caption = "&Save";
  save.ToolTip = "Alt+S presses it too";
  save.PictureKey = "Logo";
  save.Move(100, 24, 90, 26);
  auto& ruler = frame.Children().Add<cwButton>("chkRuler");
  ruler.Caption = "Ruler";
  ruler.Checkable = true;
  ruler.Checked = true;
  ruler.Move(10, 66, 80, 26);
  auto& off = frame.Children().Add<cwButton>("btnOff");
  off.Caption = "Disabled";
  off.Move(100, 66, 90, 26);
  off.setEnabled(false);

  auto& logo = Children().Add<cwImage>("imgLogo");
  logo.PictureKey = "Logo";
  logo.Move(230, 16, 110, 100);

  auto& label = Children().Add<cwLabel>("lblText");
  label.Caption = "cwLabel: wrapped text that runs on to a second line inside its box";
  label.WordWrap = true;
  label.Move(10, 130, 200, 40);
  auto& vertical = Children().Add<cwVScrollBar>("vsbDemo");
  vertical.Move(352, 10, 16, 200);
  vertical.setAnchors(Anchor::Left | Anchor::Top | Anchor::Bottom);
  vertical.setValue(30);
  auto& horizontal = Children().Add<cwHScrollBar>("hsbDemo");
  horizontal.Move(10, 180, 200, 16);
  horizontal.setValue(70);

  auto& menu = Children().Add<cwMenu>("mnuDemo");
  menu.AddItem("Demo>Open", "&Open…", "Logo");
  menu.AddItem("Demo>Save", "Save", {}, false);
  menu.AddItem("Demo>Close", "&Close");
  menu.AddItem("Demo>Export", "&Export");
  menu.AddItem("Demo>Export>Png", "PNG");
  menu.AddItem("Demo>Export>Ico", "ICO");
  auto& more = Children().Add<cwButton>("btnMenu");
  more.Caption = "Menu";
  more.Move(230, 122, 110, 26);
  more.Click = [&menu, &more] {
    menu.ShowPopup("Demo", more.Left(), more.Top() + more.Height(), more.Top());
  };
  menu.Click = [this](const std::string& key) { status_->Caption = "Chosen: " + key; };

  // Docked first, so it runs the whole width under the column.
  status_ = &Children().Add<cwStatusBar>("sbStatus");
  status_->Caption = "Clicks: 0";
  status_->Move(0, 0, 0, 24);
  status_->setDock(Dock::Bottom);

  // The small controls of the kit, in a band over the status bar across
  // the whole width: a tool bar, and a row of the others under it.
  auto& kit = Children().Add<Widget>("pnlKit", "DemoKitPanel");
  kit.Move(0, 0, 0, 74);
  kit.setDock(Dock::Bottom);
  auto& tools = kit.Children().Add<cwToolBar>("tbDemo");
  tools.Move(0, 0, 0, 30);
  tools.setDock(Dock::Top);
  tools.AddItem("new", "", "New");
  tools.AddItem("open", "Logo", "Open");
  tools.AddItem("ruler", "", "Ruler", true);
  tools.AddItem("export", "", "Export", false, true);
  tools.Click = [this](const std::string& key) { status_->Caption = "Tool: " + key; };
  tools.ArrowClick = [this](const std::string& key) { status_->Caption = "Tool menu: " + key; };
  auto& kitRow = kit.Children().Add<Widget>("pnlKitRow", "DemoKitRow");
  kitRow.setDock(Dock::Fill);
  kitRow.setBoxLayout(BoxDirection::Row, 10, 10);
  auto& shapes = kitRow.Children().Add<cwDropDownList>("ddlDemo");
  shapes.setBoxHint(130, 0);
  shapes.SetDataSource({{"circle", {{"Name", "Circle"}}},
                        {"square", {{"Name", "Rounded square"}}},
                        {"star", {{"Name", "Star"}}},
                        {"badge", {{"Name", "Badge"}}},
                        {"border", {{"Name", "Border"}}}},
                       "Name", "Shapes");
  shapes.setListIndex(0);
  shapes.Click = [this, &shapes] { status_->Caption = "Shape: " + shapes.Text(); };
  auto& sizes = kitRow.Children().Add<cwUpDown>("updDemo");
  sizes.setBoxHint(80, 0);
  DataRows sizeRows;
  for (int size : {16, 24, 32, 48, 64, 128, 256})
    sizeRows.push_back({std::to_string(size), {{"Size", std::to_string(size) + " px"}}});
  sizes.SetDataSource(std::move(sizeRows), "Size");
  sizes.setDataIndex(2);
  sizes.Change = [this, &sizes] { status_->Caption = "Size: " + sizes.DataValue(); };
  // A list with nothing in it yet shows no text.
  auto& empty = kitRow.Children().Add<cwDropDownList>("ddlEmpty");
  empty.setBoxHint(70, 0);
  auto& opacity = kitRow.Children().Add<cwSlider>("sldDemo");
  opacity.setBoxHint(0, 1);
  opacity.Unit = "%";
  auto& progress = kitRow.Children().Add<cwProgressBar>("prgDemo");
  progress.setBoxHint(110, 0);
  opacity.Changed = [&opacity, &progress] {
    progress.setValue(opacity.Value());
    progress.Caption = FormatDouble(opacity.Value()) + " %";
  };
  opacity.setValue(40);
  // Counted once built, so a script sees each change the user makes.
  const auto showProgress = opacity.Changed;
  opacity.Changed = [this, &opacity, showProgress] {
    showProgress();
    status_->Caption = "Opacity: " + FormatDouble(opacity.Value()) +
                       " % (changes: " + std::to_string(++OpacityChanges) + ")";
  };

  // The right-hand column keeps to the right edge, and its tree takes the
  // height the drop-down and the text line leave.
  auto& side = Children().Add<Widget>("pnlSide", "DemoSidePanel");
  side.Move(0, 0, 200, 0);
  side.setDock(Dock::Right);
  side.setBoxLayout(BoxDirection::Column, 10, 10);
  auto& tree = side.Children().Add<cwTree>("treDemo");
  tree.setBoxHint(0, 1);
  tree.setNodes({{"styles", "Styles", {}, {{"line", "Line", {}, {}}, {"solid", "Solid", {}, {}}}, true},
                 {"themes", "Themes", {}, {{"web", "Web", {}, {}}}}});
  tree.Select("solid");

  auto& drop = side.Children().Add<cwDropDown>("ddDemo");
  drop.Caption = "cwDropDown";
  drop.setBoxHint(24, 0);
  auto& folders = static_cast<cwDirList&>(drop.setContent(CreateWidget("cwDirList")));
  folders.Change = [&drop, &folders] { drop.Caption = folders.Path(); };
  // A multi-line box with its hint, then the single-line box scripts type into.
  auto& notes = side.Children().Add<cwTextBox>("txtNotes");
  notes.setMultiLine(true);
  notes.VCenter = false;
  notes.CueBannerText = "Notes: several lines…";
  notes.setBoxHint(40, 0);
  auto& typed = side.Children().Add<cwTextBox>("txtTyped");
  typed.setBoxHint(24, 0);
  // A colour in hex: six digits at most, of 0-9 and A-F.
  auto& hex = side.Children().Add<cwTextBox>("txtHex");
  hex.CueBannerText = "Hex colour";
  hex.setMaxLength(6);
  hex.setInputFilter(1);
  hex.setAllowedChars("A,B,C,D,E,F");
  hex.setBoxHint(24, 0);

  // The lists, left of the column.
  auto& lists = Children().Add<DemoListsPanel>("pnlLists");
  lists.Move(0, 0, 250, 0);
  lists.setDock(Dock::Right);
  lists.Tell = [this](const std::string& line) { status_->Caption = line; };

  auto& ask = Children().Add<cwButton>("btnAsk");
  ask.Caption = "Ask…";
  // Clear of the form's middle, where a virtual display's pointer rests when the
  // window opens centred: the real window's picture then shows no hover.
  ask.Move(230, 152, 110, 26);
  ask.Click = [this] { Ask(); };

  ok.Click = [this] {
    ++Clicks;
    status_->Caption = "Clicks: " + std::to_string(Clicks);
  };

  AddToolWindowButtons();
}

void DemoWidgetsForm::AddToolWindowButtons() {
  auto& row = Children().Add<Widget>("pnlTools", "DemoToolsPanel");
  row.Move(10, 200, 335, 22);
  row.setBoxLayout(BoxDirection::Row, 0, 6);
  // Screen pixels under a widget of this form, in the units the tool
  // windows place themselves in.
  const auto below = [this](const Widget& w, double& x, double& y) {
    double fx, fy;
    w.FormPosition(fx, fy);
    const double zoom = ToolWindowZoom(this);
    x = (ScreenX() + fx * Zoom()) / zoom;
    y = (ScreenY() + (fy + w.Height()) * Zoom()) / zoom;
  };

  auto& tool = row.Children().Add<cwButton>("btnTool");
  tool.Caption = "Tool…";
  tool.setBoxHint(0, 1);
  tool.Click = [this, below, &tool] {
    auto widget = std::make_unique<DemoNameTool>();
    DemoNameTool& shown = *widget;
    cfToolDialog dialog;
    dialog.ImageKey = "Logo";
    double x, y;
    below(tool, x, y);
    int result = ToolResult::Cancel;
    dialog.ShowWidget(std::move(widget), "Name", x, y, 260, 106, result);
    status_->Caption = result == ToolResult::Ok ? "Tool: Ok, " + shown.name->Text() : "Tool: Cancel";
  };

  auto& popUp = row.Children().Add<cwButton>("btnPopUp");
  popUp.Caption = "Pop-up…";
  popUp.setBoxHint(0, 1);
  popUp.Click = [this, below, &popUp] {
    if (!popUp_) popUp_ = std::make_unique<cfToolPopUp>();
    auto tree = std::make_unique<cwTree>();
    tree->setNodes({{"shapes", "Shapes", {}, {{"circle", "Circle", {}, {}}, {"star", "Star", {}, {}}}, true},
                    {"badges", "Badges", {}, {}}});
    double x, y;
    below(popUp, x, y);
    popUp_->ShowWidget(std::move(tree), x, y, 160, 120);
  };

  auto& ask = row.Children().Add<cwButton>("btnMsgBox");
  ask.Caption = "Message…";
  ask.setBoxHint(0, 1);
  ask.Click = [this] {
    const int answer =
        ShowMsgBox("Delete the demonstration layer?", MsgStyle::YesNo, "Question", "MsgDemoAsk");
    status_->Caption = "Message: " + std::to_string(answer);
  };

  auto& file = row.Children().Add<cwButton>("btnFile");
  file.Caption = "File…";
  file.setBoxHint(0, 1);
  file.Click = [this, below, &file] {
    auto widget = std::make_unique<cwFileDialog>();
    cwFileDialog& shown = *widget;
    shown.setFileExtension("svg");
    cfToolDialog dialog;
    dialog.ImageKey = "Logo";
    double x, y;
    below(file, x, y);
    int result = ToolResult::Cancel;
    dialog.ShowWidget(std::move(widget), "File", x, y, 440, 300, result);
    status_->Caption = result == ToolResult::Ok ? "File: " + shown.Filepath() : "File: Cancel";
  };

  auto& folder = row.Children().Add<cwButton>("btnFolder");
  folder.Caption = "Folder…";
  folder.setBoxHint(0, 1);
  folder.Click = [this, below, &folder] {
    auto widget = std::make_unique<cwFolderDialog>();
    cwFolderDialog& shown = *widget;
    cfToolDialog dialog;
    dialog.ImageKey = "Logo";
    double x, y;
    below(folder, x, y);
    int result = ToolResult::Cancel;
    dialog.ShowWidget(std::move(widget), "Folder", x, y, 360, 320, result);
    status_->Caption = result == ToolResult::Ok ? "Folder: " + shown.Folder() : "Folder: Cancel";
  };
}

void DemoWidgetsForm::Ask() {
  DemoAskForm dialog;
  dialog.setZoom(Zoom());
  if (PlatformRoot* root = PlatformRoot::Current()) root->RunModal(dialog, this);
  status_->Caption = "Answer: " + dialog.Answered;
}

}  // namespace qds
