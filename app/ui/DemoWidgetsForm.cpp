#include "app/ui/DemoWidgetsForm.h"

#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwDropDown.h"
#include "platform/stock/cwFolderLists.h"
#include "platform/stock/cwMenu.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/stock/cwTree.h"

namespace qds {

DemoWidgetsForm::DemoWidgetsForm() {
  Caption = "Quillaron Design Studio: widgets";
  Move(0, 0, 580, 250);
  Sizable = true;
  MinWidth = 580, MinHeight = 250;
  BackColor = StockColor(Palette::Back);
  setIconKey("Logo");

  auto& frame = static_cast<cwFrame&>(Children().Add(CreateWidget("cwFrame"), "frmButtons"));
  frame.Caption = "cwButton";
  frame.Move(10, 10, 200, 110);
  auto& ok = static_cast<cwButton&>(frame.Children().Add(CreateWidget("cwButton"), "btnOk"));
  ok.Caption = "Ok";
  ok.Move(10, 24, 80, 26);
  auto& save = static_cast<cwButton&>(frame.Children().Add(CreateWidget("cwButton"), "btnSave"));
  save.Caption = "&Save";
  save.ToolTip = "Alt+S presses it too";
  save.PictureKey = "Logo";
  save.Move(100, 24, 90, 26);
  auto& ruler = static_cast<cwButton&>(frame.Children().Add(CreateWidget("cwButton"), "chkRuler"));
  ruler.Caption = "Ruler";
  ruler.Checkable = true;
  ruler.Checked = true;
  ruler.Move(10, 66, 80, 26);
  auto& off = static_cast<cwButton&>(frame.Children().Add(CreateWidget("cwButton"), "btnOff"));
  off.Caption = "Disabled";
  off.Move(100, 66, 90, 26);
  off.setEnabled(false);

  auto& logo = static_cast<cwImage&>(Children().Add(CreateWidget("cwImage"), "imgLogo"));
  logo.PictureKey = "Logo";
  logo.Move(230, 16, 110, 100);

  auto& label = static_cast<cwLabel&>(Children().Add(CreateWidget("cwLabel"), "lblText"));
  label.Caption = "cwLabel: wrapped text that runs on to a second line inside its box";
  label.WordWrap = true;
  label.Move(10, 130, 200, 40);
  auto& vertical = static_cast<cwScrollBar&>(Children().Add(CreateWidget("cwVScrollBar"), "vsbDemo"));
  vertical.Move(352, 10, 16, 200);
  vertical.setValue(30);
  auto& horizontal = static_cast<cwScrollBar&>(Children().Add(CreateWidget("cwHScrollBar"), "hsbDemo"));
  horizontal.Move(10, 180, 200, 16);
  horizontal.setValue(70);

  auto& menu = static_cast<cwMenu&>(Children().Add(CreateWidget("cwMenu"), "mnuDemo"));
  menu.AddItem("Demo>Open", "&Open…", "Logo");
  menu.AddItem("Demo>Save", "Save", {}, false);
  menu.AddItem("Demo>Close", "&Close");
  menu.AddItem("Demo>Export", "&Export");
  menu.AddItem("Demo>Export>Png", "PNG");
  menu.AddItem("Demo>Export>Ico", "ICO");
  auto& more = static_cast<cwButton&>(Children().Add(CreateWidget("cwButton"), "btnMenu"));
  more.Caption = "Menu";
  more.Move(230, 130, 110, 26);
  more.Click = [&menu, &more] { menu.ShowPopup("Demo", more.Left(), more.Top() + more.Height(), more.Top()); };
  menu.Click = [this](const std::string& key) {
    status_->Caption = "Chosen: " + key;
    status_->Refresh();
  };

  auto& tree = static_cast<cwTree&>(Children().Add(CreateWidget("cwTree"), "treDemo"));
  tree.Move(380, 10, 190, 120);
  tree.setNodes({{"styles", "Styles", {}, {{"line", "Line", {}, {}}, {"solid", "Solid", {}, {}}}, true},
                 {"themes", "Themes", {}, {{"web", "Web", {}, {}}}}});
  tree.Select("solid");

  auto& drop = static_cast<cwDropDown&>(Children().Add(CreateWidget("cwDropDown"), "ddDemo"));
  drop.Caption = "cwDropDown";
  drop.Move(380, 140, 190, 24);
  auto& folders = static_cast<cwDirList&>(drop.setContent(CreateWidget("cwDirList")));
  folders.Change = [&drop, &folders] {
    drop.Caption = folders.Path();
    drop.Refresh();
  };

  status_ = &static_cast<cwStatusBar&>(Children().Add(CreateWidget("cwStatusBar"), "sbStatus"));
  status_->Caption = "Clicks: 0";
  W_Resize();

  ok.Click = [this] {
    ++Clicks;
    status_->Caption = "Clicks: " + std::to_string(Clicks);
    status_->Refresh();
  };
}

void DemoWidgetsForm::W_Resize() {
  // The status bar keeps to the bottom edge, as wide as the window.
  if (status_) status_->Move(0, Height() - 24, Width(), 24);
}

}  // namespace qds
