#include "app/ui/DemoWidgetsForm.h"

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
#include "widgets/cwTextBox.h"

namespace qds {

namespace {

// A question with Yes and No; Return says yes, Escape and the close box no.
class DemoAskForm : public cfForm {
 public:
  DemoAskForm() : cfForm("DemoAskForm") {
    Caption = "Question";
    Move(0, 0, 240, 100);
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

}  // namespace

DemoWidgetsForm::DemoWidgetsForm() : cfForm("DemoWidgetsForm") {
  Caption = "Quillaron Design Studio: widgets";
  Move(0, 0, 580, 250);
  Sizable = true;
  MinWidth = 580, MinHeight = 250;
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
  more.Move(230, 130, 110, 26);
  more.Click = [&menu, &more] {
    menu.ShowPopup("Demo", more.Left(), more.Top() + more.Height(), more.Top());
  };
  menu.Click = [this](const std::string& key) { status_->Caption = "Chosen: " + key; };

  // Docked first, so it runs the whole width under the column.
  status_ = &Children().Add<cwStatusBar>("sbStatus");
  status_->Caption = "Clicks: 0";
  status_->Move(0, 0, 0, 24);
  status_->setDock(Dock::Bottom);

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

  auto& ask = Children().Add<cwButton>("btnAsk");
  ask.Caption = "Ask…";
  ask.Move(230, 166, 110, 26);
  ask.Click = [this] { Ask(); };

  ok.Click = [this] {
    ++Clicks;
    status_->Caption = "Clicks: " + std::to_string(Clicks);
  };
}

void DemoWidgetsForm::Ask() {
  DemoAskForm dialog;
  dialog.setZoom(Zoom());
  if (PlatformRoot* root = PlatformRoot::Current()) root->RunModal(dialog);
  status_->Caption = "Answer: " + dialog.Answered;
}

}  // namespace qds
