#pragma once
// Picks a folder, hosted by cfToolDialog: the folder list above, the
// chosen folder in a text box below, and a button that shows the folder in
// the desktop's file manager. A click on the list writes the folder into
// the box; a folder typed into the box moves the list there once it exists.

#include <functional>
#include <string>

#include "platform/ui/Widget.h"

namespace qds {

class cwButton;
class cwDirList;
class cwLabel;
class cwTextBox;

class cwFolderDialog : public Widget {
 public:
  cwFolderDialog();

  // The folder in the box, as typed.
  std::string Folder() const;
  // Writes the box and moves the list there when the folder exists.
  void setFolder(const std::string& folder);
  // What the dialog shows when it refuses the folder or cannot show it;
  // empty when it has not.
  std::string Message() const;

  // Ok chose an existing folder; also bubbled as "ValueChanged".
  std::function<void(std::string folder)> ValueChanged;

  // Ok, as the button and Return do: closes or says why not.
  void Ok();
  // Opens the folder in the desktop's file manager, or says it cannot.
  void ShowInFileManager();

  void W_Resize() override;
  void W_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) override;
  void W_ReportState(WidgetState& state) const override;

 private:
  // The folder of the list's selected row goes into the box.
  void ChoseRow();
  void Fill(const std::string& folder);
  void FolderTyped();
  // The typed folder as a whole path; empty for a relative one, which would
  // depend on where the list happens to be.
  std::string TypedPath() const;

  bool filling_ = false;
  bool typing_ = false;
  cwDirList* dirs_ = nullptr;
  cwLabel* folderLabel_ = nullptr;
  cwTextBox* folder_ = nullptr;
  cwLabel* message_ = nullptr;
  cwButton* explorer_ = nullptr;
  cwButton* ok_ = nullptr;
  cwButton* cancel_ = nullptr;
};

}  // namespace qds
