#include "app/ui/DemoWidgetsForm.h"

#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"

namespace qds {

DemoWidgetsForm::DemoWidgetsForm() {
  Caption = "Quillaron Design Studio: widgets";
  Move(0, 0, 360, 220);
  BackColor = StockColor(Palette::Back);

  auto& frame = static_cast<cwFrame&>(Children().Add(CreateWidget("cwFrame"), "frmButtons"));
  frame.Caption = "cwButton";
  frame.Move(10, 10, 200, 110);
  auto& ok = static_cast<cwButton&>(frame.Children().Add(CreateWidget("cwButton"), "btnOk"));
  ok.Caption = "Ok";
  ok.Move(10, 24, 80, 26);
  auto& save = static_cast<cwButton&>(frame.Children().Add(CreateWidget("cwButton"), "btnSave"));
  save.Caption = "Save";
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
  status_ = &static_cast<cwLabel&>(Children().Add(CreateWidget("cwLabel"), "lblStatus"));
  status_->Caption = "Clicks: 0";
  status_->Move(10, 180, 340, 24);

  ok.Click = [this] {
    ++Clicks;
    status_->Caption = "Clicks: " + std::to_string(Clicks);
    status_->Refresh();
  };
}

}  // namespace qds
