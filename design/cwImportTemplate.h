#pragma once
// Reads a ".tpl" file into the saved templates under a name that starts as
// the file's. A file that is damaged or lacks a required value is refused
// and nothing is written; a name that exists, whatever its case, is
// replaced only when the user says so; the template is written whole or
// not at all.

#include <functional>
#include <string>

#include "platform/ui/Widget.h"

namespace qds {

class cwButton;
class cwLabel;
class cwTextBox;

class cwImportTemplate : public Widget {
 public:
  cwImportTemplate();

  // The room its tool dialog gives it.
  static constexpr double kWidth = 380, kHeight = 150;
  static constexpr double kFileDialogWidth = 440, kFileDialogHeight = 300;

  // Empties the boxes: the file is chosen from the folder of the settings
  // (TemplatePath), else the home folder.
  void Init();
  // The file to read; setting it puts its base name into the name box.
  std::string FilePath() const;
  void setFilePath(const std::string& path);
  // The name the template is saved under, without surrounding blanks.
  std::string Name() const;
  void setName(const std::string& name);

  // The template was written under this ID (Layer.ID).
  std::function<void(int newId)> Import;

  // The buttons' work, as a click does it.
  void btnImport_Click();
  void btnFile_Click();

  void W_Resize() override;
  // The file as the caption, the name as the text.
  void W_ReportState(WidgetState& state) const override;

 private:
  cwLabel* lblFile_ = nullptr;
  cwTextBox* txtFile_ = nullptr;
  cwButton* btnFile_ = nullptr;
  cwLabel* lblName_ = nullptr;
  cwTextBox* txtName_ = nullptr;
  cwButton* btnImport_ = nullptr;
  cwButton* btnCancel_ = nullptr;
  // The name the file box last gave the name box.
  std::string followedName_;
};

}  // namespace qds
