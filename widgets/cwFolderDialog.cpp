#include "widgets/cwFolderDialog.h"

#include <algorithm>

#include "app/AppContext.h"
#include "app/modTexts.h"
#include "platform/Files.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwFolderLists.h"
#include "platform/ui/PlatformRoot.h"
#include "platform/ui/WidgetRegistry.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwTextBox.h"
#include "widgets/modPathEntry.h"

namespace qds {

namespace {

constexpr double kMargin = 10, kGap = 8, kRow = 24, kButtonWidth = 80, kButtonHeight = 26, kLabelWidth = 60;

}  // namespace

cwFolderDialog::cwFolderDialog() : Widget("cwFolderDialog") {
  dirs_ = &Children().Add<cwDirList>("DirList");
  folderLabel_ = &Children().Add<cwLabel>("lblFolder");
  folderLabel_->Caption = DialogText("Folder", "Folder");
  folder_ = &Children().Add<cwTextBox>("txtFolder");
  message_ = &Children().Add<cwLabel>("lblMessage");
  explorer_ = &Children().Add<cwButton>("btnExplorer");
  explorer_->Caption = DialogText("Explorer", "Explorer");
  if (HasApp()) explorer_->ToolTip = LanguageText("Explorer").Tooltip;
  ok_ = &Children().Add<cwButton>("btnOk");
  ok_->Caption = DialogText("Ok", "OK");
  ok_->Default = true;
  cancel_ = &Children().Add<cwButton>("btnCancel");
  cancel_->Caption = DialogText("Cancel", "Cancel");
  cancel_->Cancel = true;

  dirs_->Click = [this] { ChoseRow(); };
  // A double click opens the folder in the list; it is the choice too,
  // unless the list only follows what is being typed.
  dirs_->Change = [this] {
    if (!typing_) Fill(dirs_->Path());
  };
  folder_->Change = [this] { FolderTyped(); };
  explorer_->Click = [this] { ShowInFileManager(); };
  ok_->Click = [this] { Ok(); };
  cancel_->Click = [this] { cfToolDialog::CloseWith(*this, ToolResult::Cancel); };
  Move(0, 0, 360, 320);
}

std::string cwFolderDialog::Folder() const {
  return folder_->Text();
}

void cwFolderDialog::setFolder(const std::string& folder) {
  Fill(folder);
  const std::string path = TypedPath();
  if (FolderExists(path)) {
    typing_ = true;
    dirs_->setPath(path);
    typing_ = false;
  }
}

std::string cwFolderDialog::Message() const {
  return message_->Caption();
}

std::string cwFolderDialog::TypedPath() const {
  const std::string path = ExpandTypedPath(folder_->Text(), "");
  return path.empty() || path[0] != '/' ? std::string() : path;
}

void cwFolderDialog::ChoseRow() {
  if (dirs_->ListIndex() >= 0 && !typing_) Fill(dirs_->RowFolder(dirs_->ListIndex()));
}

void cwFolderDialog::Fill(const std::string& folder) {
  if (folder == folder_->Text()) return;
  filling_ = true;
  folder_->setText(folder);
  folder_->setSelStart(static_cast<int>(folder.size()));
  filling_ = false;
}

void cwFolderDialog::FolderTyped() {
  message_->Caption = "";
  if (filling_) return;
  // Only a folder that is there moves the list, so a half-typed name
  // leaves it where it was.
  const std::string path = TypedPath();
  if (!FolderExists(path)) return;
  typing_ = true;
  dirs_->setPath(path);
  typing_ = false;
}

void cwFolderDialog::Ok() {
  const std::string path = TypedPath();
  if (!FolderExists(path)) {
    message_->Caption = DialogText("FolderMissing", "The target folder does not exist.");
    return;
  }
  message_->Caption = "";
  RaiseEvent(ValueChanged, "ValueChanged", path);
  cfToolDialog::CloseWith(*this, ToolResult::Ok);
}

void cwFolderDialog::ShowInFileManager() {
  const std::string typed = TypedPath();
  const std::string path = FolderExists(typed) ? typed : dirs_->Path();
  if (PlatformRoot::ShellOpen(path)) {
    message_->Caption = "";
  } else {
    message_->Caption = DialogText("ExplorerFailed", "The file manager could not be started.");
  }
}

void cwFolderDialog::W_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>&) {
  // Letting go of the button over the list settles the choice, whatever
  // row the press went to.
  if (&source == dirs_ && name == "W_MouseUp") ChoseRow();
}

void cwFolderDialog::W_Resize() {
  const double w = Width(), h = Height();
  const double buttonTop = h - kMargin - kButtonHeight;
  const double messageTop = buttonTop - kGap - kRow;
  const double boxTop = messageTop - kRow;
  dirs_->Move(kMargin, kMargin, std::max(0.0, w - 2 * kMargin), std::max(0.0, boxTop - kGap - kMargin));
  folderLabel_->Move(kMargin, boxTop + 3, kLabelWidth, kRow - 3);
  const double boxWidth = std::max(0.0, w - 2 * kMargin - kLabelWidth);
  folder_->Move(kMargin + kLabelWidth, boxTop, boxWidth, kRow);
  message_->Move(kMargin + kLabelWidth, messageTop + kGap / 2, boxWidth, kRow);
  explorer_->Move(kMargin, buttonTop, kButtonWidth, kButtonHeight);
  cancel_->Move(w - kMargin - kButtonWidth, buttonTop, kButtonWidth, kButtonHeight);
  ok_->Move(w - kMargin - 2 * kButtonWidth - kGap, buttonTop, kButtonWidth, kButtonHeight);
}

void cwFolderDialog::W_ReportState(WidgetState& state) const {
  state.text = Folder();
  if (!message_->Caption().empty()) state.caption = message_->Caption();
}

QDS_JOIN_WIDGET_REGISTRY(cwFolderDialog);

}  // namespace qds
