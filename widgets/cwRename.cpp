#include "widgets/cwRename.h"

#include "app/AppContext.h"
#include "app/modTexts.h"
#include "app/ui/modMessages.h"
#include "platform/Error.h"
#include "platform/TextUtil.h"
#include "platform/stock/StockWidgets.h"
#include "platform/ui/WidgetRegistry.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwTextBox.h"

namespace qds {

namespace {

constexpr double kMargin = 10, kBoxHeight = 24, kButtonWidth = 80, kButtonHeight = 26, kGap = 8;
// Long enough for any icon name; the library's names are short.
constexpr int kMaxNameLength = 255;

std::string TextOf(const std::string& key) {
  return HasApp() ? LanguageText(key).Text : std::string();
}

}  // namespace

cwRename::cwRename() : Widget("cwRename") {
  txtName_ = &Children().Add<cwTextBox>("txtName");
  txtName_->setMaxLength(kMaxNameLength);
  btnOk_ = &Children().Add<cwButton>("btnOk");
  btnOk_->Caption = TextOf("Ok");
  btnOk_->Default = true;
  btnOk_->Click = [this] {
    RunHandler("cwRename:btnOk_Click", HandlerMode::Report, [this] { btnOk_Click(); });
  };
  btnCancel_ = &Children().Add<cwButton>("btnCancel");
  btnCancel_->Caption = TextOf("Cancel");
  btnCancel_->Cancel = true;
  btnCancel_->Click = [this] { cfToolDialog::CloseWith(*this, ToolResult::Cancel); };
}

void cwRename::setName(const std::string& name) {
  txtName_->setText(name);
  txtName_->SelectAll();
}

std::string cwRename::Name() const {
  return std::string(TrimBlanks(txtName_->Text()));
}

void cwRename::btnOk_Click() {
  const std::string name = Name();
  if (name.empty()) {
    ShowMsgBox(TextOf("IconNameMissing"), 0, TextOf("Rename"));
    txtName_->SetFocus();
    return;
  }
  if (NameChanged) NameChanged(name);
  cfToolDialog::CloseWith(*this, ToolResult::Ok);
}

void cwRename::W_Resize() {
  const double w = Width(), h = Height();
  if (w <= 0 || h <= 0) return;  // not placed yet
  txtName_->Move(kMargin, kMargin, w - 2 * kMargin, kBoxHeight);
  const double top = h - kMargin - kButtonHeight;
  btnCancel_->Move(w - kMargin - kButtonWidth, top, kButtonWidth, kButtonHeight);
  btnOk_->Move(w - kMargin - 2 * kButtonWidth - kGap, top, kButtonWidth, kButtonHeight);
}

QDS_JOIN_WIDGET_REGISTRY(cwRename);

}  // namespace qds
