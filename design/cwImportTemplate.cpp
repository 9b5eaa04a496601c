#include "design/cwImportTemplate.h"

#include <optional>

#include "app/AppContext.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "design/modTemplateDialogs.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"
#include "platform/stock/StockWidgets.h"
#include "platform/ui/WidgetRegistry.h"
#include "store/modTemplates.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwFileDialog.h"
#include "widgets/cwTextBox.h"

namespace qds {

namespace {

constexpr double kMargin = 10, kLabelHeight = 18, kBoxHeight = 24, kBrowseWidth = 34, kButtonWidth = 80,
                 kButtonHeight = 26, kGap = 8;
constexpr int kMaxNameLength = 255;

}  // namespace

cwImportTemplate::cwImportTemplate() : Widget("cwImportTemplate") {
  lblFile_ = &Children().Add<cwLabel>("lblFile");
  lblFile_->Caption = TemplateText("File");
  txtFile_ = &Children().Add<cwTextBox>("txtFile");
  // A typed path names the template after its file, until the user names
  // it otherwise.
  txtFile_->Change = [this] {
    if (Name() != followedName_) return;
    followedName_ = BaseNameOf(FilePath());
    txtName_->setText(followedName_);
  };
  btnFile_ = &Children().Add<cwButton>("btnFile");
  btnFile_->Caption = "…";
  btnFile_->ToolTip = TemplateText("File");
  btnFile_->Click = [this] {
    RunHandler("cwImportTemplate:btnFile_Click", HandlerMode::Report, [this] { btnFile_Click(); });
  };
  lblName_ = &Children().Add<cwLabel>("lblName");
  lblName_->Caption = TemplateText("TemplateName");
  txtName_ = &Children().Add<cwTextBox>("txtName");
  txtName_->setMaxLength(kMaxNameLength);
  btnImport_ = &Children().Add<cwButton>("btnImport");
  btnImport_->Caption = TemplateText("Import");
  btnImport_->Default = true;
  btnImport_->Click = [this] {
    RunHandler("cwImportTemplate:btnImport_Click", HandlerMode::Report, [this] { btnImport_Click(); });
  };
  btnCancel_ = &Children().Add<cwButton>("btnCancel");
  btnCancel_->Caption = TemplateText("Cancel");
  btnCancel_->Cancel = true;
  btnCancel_->Click = [this] { cfToolDialog::CloseWith(*this, ToolResult::Cancel); };
}

void cwImportTemplate::Init() {
  txtFile_->setText("");
  txtName_->setText("");
  followedName_.clear();
}

std::string cwImportTemplate::FilePath() const {
  return std::string(TrimBlanks(txtFile_->Text()));
}

void cwImportTemplate::setFilePath(const std::string& path) {
  txtFile_->setText(path);
  followedName_ = BaseNameOf(path);
  txtName_->setText(followedName_);
}

std::string cwImportTemplate::Name() const {
  return std::string(TrimBlanks(txtName_->Text()));
}

void cwImportTemplate::setName(const std::string& name) {
  txtName_->setText(name);
}

void cwImportTemplate::btnFile_Click() {
  auto chooser = std::make_unique<cwFileDialog>();
  chooser->setFileDialogType(FileDialogType::Open);
  chooser->setFileExtension("tpl");
  const std::string chosen = FolderOf(FilePath());
  chooser->setSelectedPath(!FilePath().empty() && FolderExists(chosen) ? chosen : TemplateFolder());
  ShowTemplateTool(std::move(chooser), TemplateText("ImportTemplate"), kFileDialogWidth, kFileDialogHeight,
                   [this](Widget& shown, int result) {
                     if (result == ToolResult::Ok) setFilePath(static_cast<cwFileDialog&>(shown).Filepath());
                   });
}

void cwImportTemplate::btnImport_Click() {
  const std::string title = TemplateText("ImportTemplate");
  const std::string path = FilePath();
  if (path.empty()) {
    btnFile_Click();
    return;
  }
  // Read and checked whole before anything is written.
  std::optional<DesignFile> design;
  std::string why;
  try {
    design = ReadTemplateBytes(ReadAllBytes(path, kMaxDesignFileBytes), &why);
  } catch (const AppError& e) {
    why = e.Description();
  }
  if (!design) {
    ReportTemplateProblem("InvalidFile", why, title);
    return;
  }
  const std::string name = Name();
  if (name.empty()) {
    ShowMsgBox(TemplateText("TemplateNameMissing"), MsgStyle::Ok, title);
    txtName_->SetFocus();
    return;
  }
  AppContext& app = App();
  const auto refused = [&] {
    txtName_->SelectAll();
    txtName_->SetFocus();
  };
  const bool replace = FindDesign(app, name) != 0;
  if (replace && !AskReplaceTemplate(title)) return refused();
  CorrectDesign(*design);
  bool existed = false;
  int id = StoreDesign(app, name, *design, replace, &existed);
  if (existed) {
    // Another program saved a template of this name since it was looked for.
    if (!AskReplaceTemplate(title)) return refused();
    id = StoreDesign(app, name, *design, true);
  }
  if (id == 0) {
    const std::string error = app.Cnn.ErrorText();
    ReportTemplateProblem("SaveError", error.empty() ? TemplateTip("SaveError") : error, title);
    return;
  }
  KeepTemplateFolder(FolderOf(path));
  ShowMsgBox(TemplateTip("ImportTemplate"), MsgStyle::Ok, title);
  cfToolDialog::CloseWith(*this, ToolResult::Ok);
  if (Import) Import(id);
}

void cwImportTemplate::W_Resize() {
  const double w = Width(), h = Height();
  if (w <= 0 || h <= 0) return;  // not placed yet
  lblFile_->Move(kMargin, kMargin, w - 2 * kMargin, kLabelHeight);
  const double fileTop = kMargin + kLabelHeight;
  txtFile_->Move(kMargin, fileTop, w - 2 * kMargin - kBrowseWidth - kGap, kBoxHeight);
  btnFile_->Move(w - kMargin - kBrowseWidth, fileTop, kBrowseWidth, kBoxHeight);
  const double nameTop = fileTop + kBoxHeight + kGap;
  lblName_->Move(kMargin, nameTop, w - 2 * kMargin, kLabelHeight);
  txtName_->Move(kMargin, nameTop + kLabelHeight, w - 2 * kMargin, kBoxHeight);
  const double top = h - kMargin - kButtonHeight;
  btnCancel_->Move(w - kMargin - kButtonWidth, top, kButtonWidth, kButtonHeight);
  btnImport_->Move(w - kMargin - 2 * kButtonWidth - kGap, top, kButtonWidth, kButtonHeight);
}

void cwImportTemplate::W_ReportState(WidgetState& state) const {
  state.caption = FilePath();
  state.text = Name();
}

QDS_JOIN_WIDGET_REGISTRY(cwImportTemplate);

}  // namespace qds
