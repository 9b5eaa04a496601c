#pragma once
// Picks a file to open or a name to save under, hosted by cfToolDialog:
// folders on the left, the files of the chosen folder on the right, and
// the name in a text box below. A path typed or pasted into the box
// ("/some/folder/name.svg", "~/x") moves the lists to its folder when that
// exists and leaves the name. Ok closes the dialog with ToolResult::Ok only
// for a name that can be used; otherwise the dialog says why and stays.

#include <functional>
#include <string>

#include "platform/ui/Widget.h"

namespace qds {

class cwButton;
class cwDirList;
class cwFileList;
class cwLabel;
class cwTextBox;

namespace FileDialogType {
constexpr int Open = 0, Save = 1;
}

class cwFileDialog : public Widget {
 public:
  cwFileDialog();

  // Open: Ok needs a file that exists. Save: Ok needs a folder that exists.
  int FileDialogType() const { return type_; }
  void setFileDialogType(int type);
  // Without the dot: "svg" shows "*.svg" only; empty shows every file.
  const std::string& FileExtension() const { return extension_; }
  void setFileExtension(const std::string& extension);
  // The folder whose files are listed.
  std::string SelectedPath() const;
  // False, with the lists as they were, for a folder that is not there.
  bool setSelectedPath(const std::string& folder);
  // The name in the box, as typed.
  std::string FileName() const;
  void setFileName(const std::string& name);
  std::string Filepath() const;
  // Reads the folders and files again.
  void Rescan();
  // What the dialog shows under the name when it refuses one; empty when it has not.
  std::string Message() const;

  // The name in the box changed; also bubbled as "Change".
  std::function<void(std::string name)> Change;

  // Ok, as the button and Return do: closes or says why not.
  void Ok();

  void W_Resize() override;
  void W_ReportState(WidgetState& state) const override;

 private:
  void NameChanged();
  // Writes the box without treating the text as typed.
  void Fill(const std::string& name);
  void ShowFolder(const std::string& folder);
  void Refuse(const std::string& key, const std::string& fallback);

  int type_ = FileDialogType::Open;
  std::string extension_;
  bool filling_ = false;
  cwDirList* dirs_ = nullptr;
  cwFileList* files_ = nullptr;
  cwLabel* fileLabel_ = nullptr;
  cwTextBox* name_ = nullptr;
  cwLabel* message_ = nullptr;
  cwButton* ok_ = nullptr;
  cwButton* cancel_ = nullptr;
};

}  // namespace qds
