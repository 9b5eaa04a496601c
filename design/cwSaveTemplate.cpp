#include "design/cwSaveTemplate.h"

#include "app/AppContext.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "design/modTemplateDialogs.h"
#include "platform/Error.h"
#include "platform/TextUtil.h"
#include "platform/stock/StockWidgets.h"
#include "platform/ui/WidgetRegistry.h"
#include "store/modDB.h"
#include "store/modTemplates.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwTextBox.h"

namespace qds {

namespace {

constexpr double kMargin = 10, kPicture = 96, kLabelHeight = 18, kBoxHeight = 24, kButtonWidth = 80,
                 kButtonHeight = 26, kGap = 8;
constexpr int kMaxNameLength = 255, kMaxDescriptionLength = 2000;

}  // namespace

cwSaveTemplate::cwSaveTemplate() : Widget("cwSaveTemplate") {
  picThumbNail_ = &Children().Add<cwTemplatePicture>("picThumbNail");
  lblName_ = &Children().Add<cwLabel>("lblName");
  lblName_->Caption = TemplateText("TemplateName");
  txtName_ = &Children().Add<cwTextBox>("txtName");
  txtName_->setMaxLength(kMaxNameLength);
  lblDescription_ = &Children().Add<cwLabel>("lblDescription");
  lblDescription_->Caption = TemplateText("Description");
  txtDescription_ = &Children().Add<cwTextBox>("txtDescription");
  txtDescription_->setMultiLine(true);
  txtDescription_->VCenter = false;
  txtDescription_->setMaxLength(kMaxDescriptionLength);
  btnSave_ = &Children().Add<cwButton>("btnSave");
  btnSave_->Caption = TemplateText("Save");
  btnSave_->Default = true;
  btnSave_->Click = [this] {
    RunHandler("cwSaveTemplate:btnSave_Click", HandlerMode::Report, [this] { btnSave_Click(); });
  };
  btnCancel_ = &Children().Add<cwButton>("btnCancel");
  btnCancel_->Caption = TemplateText("Cancel");
  btnCancel_->Cancel = true;
  btnCancel_->Click = [this] { cfToolDialog::CloseWith(*this, ToolResult::Cancel); };
}

void cwSaveTemplate::setName(const std::string& name) {
  txtName_->setText(name);
}

void cwSaveTemplate::setDescription(const std::string& description) {
  txtDescription_->setText(description);
}

void cwSaveTemplate::setThumbNail(const Bytes& png) {
  thumbNail_ = png;
  picThumbNail_->setPicture(png);
}

std::string cwSaveTemplate::Name() const {
  return std::string(TrimBlanks(txtName_->Text()));
}

std::string cwSaveTemplate::Description() const {
  return std::string(TrimBlanks(txtDescription_->Text()));
}

void cwSaveTemplate::Init() {
  txtName_->SelectAll();
}

void cwSaveTemplate::btnSave_Click() {
  const std::string title = TemplateText("SaveAsTemplate");
  const std::string name = Name(), description = Description();
  if (name.empty()) {
    ShowMsgBox(TemplateText("TemplateNameMissing"), MsgStyle::Ok, title);
    txtName_->SetFocus();
    return;
  }
  AppContext& app = App();
  if (FindDesign(app, name) != 0 && !AskReplaceTemplate(title)) {
    txtName_->SelectAll();
    txtName_->SetFocus();
    return;
  }
  // One transaction around the rows: a failure half way (a full disk, a
  // lock) leaves the template that was there, not one with half its layers.
  DbConnection& cnn = app.Cnn;
  bool written = cnn.BeginTrans();
  std::string why = written ? std::string() : cnn.ErrorText();
  if (written) {
    written = WriteCurrentLayerList(app, name, description, thumbNail_);
    if (written) written = cnn.CommitTrans();
    if (!written) {
      why = cnn.ErrorText();
      cnn.RollbackTrans();
    }
  }
  if (!written) {
    ReportTemplateProblem("SaveError", why.empty() ? TemplateTip("SaveError") : why, title);
    return;
  }
  cfToolDialog::CloseWith(*this, ToolResult::Ok);
  if (Saved) Saved(name, description);
}

void cwSaveTemplate::W_Resize() {
  const double w = Width(), h = Height();
  if (w <= 0 || h <= 0) return;  // not placed yet
  picThumbNail_->Move(kMargin, kMargin, kPicture, kPicture);
  const double left = 2 * kMargin + kPicture, width = w - left - kMargin;
  lblName_->Move(left, kMargin, width, kLabelHeight);
  txtName_->Move(left, kMargin + kLabelHeight, width, kBoxHeight);
  const double descTop = kMargin + kLabelHeight + kBoxHeight + kGap;
  lblDescription_->Move(left, descTop, width, kLabelHeight);
  const double buttonTop = h - kMargin - kButtonHeight;
  txtDescription_->Move(left, descTop + kLabelHeight, width, buttonTop - kGap - descTop - kLabelHeight);
  btnCancel_->Move(w - kMargin - kButtonWidth, buttonTop, kButtonWidth, kButtonHeight);
  btnSave_->Move(w - kMargin - 2 * kButtonWidth - kGap, buttonTop, kButtonWidth, kButtonHeight);
}

void cwSaveTemplate::W_ReportState(WidgetState& state) const {
  state.text = Name();
}

QDS_JOIN_WIDGET_REGISTRY(cwSaveTemplate);

}  // namespace qds
