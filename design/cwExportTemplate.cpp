#include "design/cwExportTemplate.h"

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
#include "widgets/cwFolderDialog.h"
#include "widgets/cwTextBox.h"

namespace qds {

namespace {

constexpr double kMargin = 10, kLabelHeight = 18, kBoxHeight = 24, kBrowseWidth = 34, kButtonWidth = 80,
                 kButtonHeight = 26, kGap = 8;
constexpr double kFolderDialogWidth = 360, kFolderDialogHeight = 320;

}  // namespace

cwExportTemplate::cwExportTemplate() : Widget("cwExportTemplate") {
  lblFolder_ = &Children().Add<cwLabel>("lblFolder");
  lblFolder_->Caption = TemplateText("Folder");
  txtFolder_ = &Children().Add<cwTextBox>("txtFolder");
  txtFolder_->Change = [this] { ShowTarget(); };
  btnFolder_ = &Children().Add<cwButton>("btnFolder");
  btnFolder_->Caption = "…";
  btnFolder_->ToolTip = TemplateText("FolderDialog");
  btnFolder_->Click = [this] {
    RunHandler("cwExportTemplate:btnFolder_Click", HandlerMode::Report, [this] { btnFolder_Click(); });
  };
  lblFile_ = &Children().Add<cwLabel>("lblFile");
  btnExport_ = &Children().Add<cwButton>("btnExport");
  btnExport_->Caption = TemplateText("Export");
  btnExport_->Default = true;
  btnExport_->Click = [this] {
    RunHandler("cwExportTemplate:btnExport_Click", HandlerMode::Report, [this] { btnExport_Click(); });
  };
  btnCancel_ = &Children().Add<cwButton>("btnCancel");
  btnCancel_->Caption = TemplateText("Cancel");
  btnCancel_->Cancel = true;
  btnCancel_->Click = [this] { cfToolDialog::CloseWith(*this, ToolResult::Cancel); };
  txtFolder_->setText(TemplateFolder());
}

void cwExportTemplate::setLayer_ID(int id) {
  layerId_ = id;
  name_.clear();
  if (DbRecordset rs = App().Cnn.Query("Select Name From Layer Where ID = " + std::to_string(id)); !rs.Eof())
    name_ = rs.Fields(0).AsString();
  ShowTarget();
}

std::string cwExportTemplate::Folder() const {
  return std::string(TrimBlanks(txtFolder_->Text()));
}

void cwExportTemplate::setFolder(const std::string& folder) {
  txtFolder_->setText(folder);
}

std::string cwExportTemplate::TargetPath() const {
  return name_.empty() ? std::string() : JoinPath(Folder(), name_ + ".tpl");
}

void cwExportTemplate::ShowTarget() {
  lblFile_->Caption = TemplateText("File") + ": " + (name_.empty() ? std::string() : name_ + ".tpl");
}

void cwExportTemplate::btnFolder_Click() {
  auto chooser = std::make_unique<cwFolderDialog>();
  chooser->setFolder(FolderExists(Folder()) ? Folder() : TemplateFolder());
  chooser->ValueChanged = [this](const std::string& folder) { txtFolder_->setText(folder); };
  ShowTemplateTool(std::move(chooser), TemplateText("FolderDialog"), kFolderDialogWidth, kFolderDialogHeight);
}

void cwExportTemplate::btnExport_Click() {
  const std::string title = TemplateText("ExportTemplate");
  // Read now, not when the dialog opened: the file holds the template as it is.
  std::optional<DesignFile> design;
  try {
    design = ReadDesign(App(), layerId_);
  } catch (const AppError& e) {
    ReportTemplateProblem("InvalidFile", e.Description(), title);
    return;
  }
  if (!design) {
    ReportTemplateProblem("LoadError", "the template is no longer in the library", title);
    return;
  }
  CorrectDesign(*design);
  const std::string folder = Folder();
  if (folder.empty() || !FolderExists(folder)) {
    ShowMsgBox(TemplateText("FolderMissing"), MsgStyle::Ok, title);
    txtFolder_->SetFocus();
    return;
  }
  const std::string file = design->Name + ".tpl";
  if (!IsPlainFileName(file)) {
    ReportTemplateProblem("SaveError", "\"" + design->Name + "\" cannot name a file", title);
    return;
  }
  // Refused here rather than by the import on another machine.
  if (const std::string why = TemplateProblem(*design); !why.empty()) {
    ReportTemplateProblem("TemplateNotExportable", why, title);
    return;
  }
  const std::string path = JoinPath(folder, file);
  if (FileExists(path) && !AskReplaceTemplate(title)) return;
  try {
    WriteAllBytes(path, TemplateBytes(*design));
  } catch (const AppError& e) {
    ReportTemplateProblem("SaveError", e.Description(), title);
    return;
  }
  KeepTemplateFolder(folder);
  cfToolDialog::CloseWith(*this, ToolResult::Ok);
  if (Exported) Exported(path);
}

void cwExportTemplate::W_Resize() {
  const double w = Width(), h = Height();
  if (w <= 0 || h <= 0) return;  // not placed yet
  lblFolder_->Move(kMargin, kMargin, w - 2 * kMargin, kLabelHeight);
  const double boxTop = kMargin + kLabelHeight;
  txtFolder_->Move(kMargin, boxTop, w - 2 * kMargin - kBrowseWidth - kGap, kBoxHeight);
  btnFolder_->Move(w - kMargin - kBrowseWidth, boxTop, kBrowseWidth, kBoxHeight);
  lblFile_->Move(kMargin, boxTop + kBoxHeight + kGap, w - 2 * kMargin, kLabelHeight);
  const double top = h - kMargin - kButtonHeight;
  btnCancel_->Move(w - kMargin - kButtonWidth, top, kButtonWidth, kButtonHeight);
  btnExport_->Move(w - kMargin - 2 * kButtonWidth - kGap, top, kButtonWidth, kButtonHeight);
}

void cwExportTemplate::W_ReportState(WidgetState& state) const {
  state.text = TargetPath();
}

QDS_JOIN_WIDGET_REGISTRY(cwExportTemplate);

}  // namespace qds
