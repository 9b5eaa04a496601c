#include "widgets/cwFileDialog.h"

#include <algorithm>

#include "platform/Files.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwFolderLists.h"
#include "platform/ui/WidgetRegistry.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwTextBox.h"
#include "widgets/modPathEntry.h"

namespace qds {

namespace {

constexpr double kMargin = 10, kGap = 8, kRow = 24, kButtonWidth = 80, kButtonHeight = 26, kLabelWidth = 60;

std::string Trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

}  // namespace

cwFileDialog::cwFileDialog() : Widget("cwFileDialog") {
  dirs_ = &Children().Add<cwDirList>("DirList");
  files_ = &Children().Add<cwFileList>("FileList");
  fileLabel_ = &Children().Add<cwLabel>("lblFile");
  fileLabel_->Caption = DialogText("File", "File");
  name_ = &Children().Add<cwTextBox>("txtFile");
  message_ = &Children().Add<cwLabel>("lblMessage");
  ok_ = &Children().Add<cwButton>("btnOk");
  ok_->Caption = DialogText("Ok", "OK");
  ok_->Default = true;
  cancel_ = &Children().Add<cwButton>("btnCancel");
  cancel_->Caption = DialogText("Cancel", "Cancel");
  cancel_->Cancel = true;
  files_->setPath(dirs_->Path());

  // One click on a folder lists its files; a double click also opens it
  // among the folders, and the files follow.
  dirs_->Click = [this] {
    if (dirs_->ListIndex() >= 0) ShowFolder(dirs_->RowFolder(dirs_->ListIndex()));
  };
  dirs_->Change = [this] { ShowFolder(dirs_->Path()); };
  files_->Click = [this] {
    if (!files_->FileName().empty()) Fill(files_->FileName());
  };
  files_->DblClick = [this] {
    if (!files_->FileName().empty()) Ok();
  };
  name_->Change = [this] { NameChanged(); };
  name_->BeforePaste = [this](bool& cancel, std::string& text) {
    // A path copied from elsewhere often brings a line break along.
    if (filling_) cancel = true;
    text = Trimmed(text);
  };
  ok_->Click = [this] { Ok(); };
  cancel_->Click = [this] { cfToolDialog::CloseWith(*this, ToolResult::Cancel); };
  Move(0, 0, 440, 300);
}

void cwFileDialog::setFileDialogType(int type) {
  type_ = type;
  message_->Caption = "";
}

void cwFileDialog::setFileExtension(const std::string& extension) {
  extension_ = extension;
  files_->Pattern = extension.empty() ? "*" : "*." + extension;
  files_->Rescan();
}

std::string cwFileDialog::SelectedPath() const {
  return files_->Path();
}

bool cwFileDialog::setSelectedPath(const std::string& folder) {
  // One that is not there, or cannot be read, leaves both lists as they were.
  if (!FolderExists(folder) || !dirs_->setPath(folder)) {
    Refuse("FolderUnreadable", "The folder cannot be opened.");
    return false;
  }
  ShowFolder(folder);
  return true;
}

std::string cwFileDialog::FileName() const {
  return name_->Text();
}

void cwFileDialog::setFileName(const std::string& name) {
  name_->setText(name);
}

std::string cwFileDialog::Filepath() const {
  return JoinFolder(SelectedPath(), FileName());
}

void cwFileDialog::Rescan() {
  dirs_->Rescan();
  files_->Rescan();
}

std::string cwFileDialog::Message() const {
  return message_->Caption();
}

void cwFileDialog::ShowFolder(const std::string& folder) {
  if (folder == files_->Path()) {
    files_->Rescan();
  } else {
    files_->setPath(folder);
  }
}

void cwFileDialog::Fill(const std::string& name) {
  filling_ = true;
  name_->setText(name);
  name_->setSelStart(static_cast<int>(name.size()));
  filling_ = false;
}

void cwFileDialog::NameChanged() {
  message_->Caption = "";
  const std::string typed = name_->Text();
  const std::size_t slash = typed.rfind('/');
  if (!filling_ && slash != std::string::npos) {
    // The folder part of a typed path moves the lists once it names a
    // folder, so a path typed key by key walks down as it goes; the name
    // stays in the box to go on typing.
    const std::string folderPart = slash == 0 ? "/" : typed.substr(0, slash);
    const std::string folder = ExpandTypedPath(folderPart, SelectedPath());
    if (FolderExists(folder) && setSelectedPath(folder)) {
      Fill(typed.substr(slash + 1));
      return;
    }
  }
  RaiseEvent(Change, "Change", typed);
}

void cwFileDialog::Refuse(const std::string& key, const std::string& fallback) {
  message_->Caption = DialogText(key, fallback);
}

void cwFileDialog::Ok() {
  const std::string path = Filepath();
  if (type_ == FileDialogType::Open) {
    if (FileName().empty() || !FileExists(path)) return Refuse("FileMissing", "The file does not exist.");
  } else {
    if (FileName().empty() || FileName().back() == '/') return Refuse("TextMissing", "Please enter a text.");
    // A name typed with a folder that is not there cannot be saved.
    if (!FolderExists(path.substr(0, path.rfind('/') + 1)))
      return Refuse("FolderMissing", "The target folder does not exist.");
  }
  message_->Caption = "";
  cfToolDialog::CloseWith(*this, ToolResult::Ok);
}

void cwFileDialog::W_Resize() {
  const double w = Width(), h = Height();
  const double listsBottom = std::max(kMargin, h - kMargin - kButtonHeight - kGap - kRow - kGap - kRow);
  const double half = std::max(0.0, (w - 2 * kMargin - kGap) / 2);
  dirs_->Move(kMargin, kMargin, half, listsBottom - kMargin);
  files_->Move(kMargin + half + kGap, kMargin, half, listsBottom - kMargin);
  const double nameTop = listsBottom + kGap;
  fileLabel_->Move(kMargin, nameTop + 3, kLabelWidth, kRow - 3);
  name_->Move(kMargin + kLabelWidth, nameTop, std::max(0.0, w - 2 * kMargin - kLabelWidth), kRow);
  message_->Move(kMargin + kLabelWidth, nameTop + kRow + kGap / 2,
                 std::max(0.0, w - 2 * kMargin - kLabelWidth), kRow);
  const double buttonTop = h - kMargin - kButtonHeight;
  cancel_->Move(w - kMargin - kButtonWidth, buttonTop, kButtonWidth, kButtonHeight);
  ok_->Move(w - kMargin - 2 * kButtonWidth - kGap, buttonTop, kButtonWidth, kButtonHeight);
}

void cwFileDialog::W_ReportState(WidgetState& state) const {
  state.text = Filepath();
  if (!message_->Caption().empty()) state.caption = message_->Caption();
}

QDS_JOIN_WIDGET_REGISTRY(cwFileDialog);

}  // namespace qds
