#pragma once
// Writes a saved template to a ".tpl" file named after it, in a folder the
// user picks. The file is written whole or not at all, an existing one is
// replaced only when the user says so, and a template that could not be
// imported again is not written.

#include <functional>
#include <string>

#include "platform/ui/Widget.h"

namespace qds {

class cwButton;
class cwLabel;
class cwTextBox;

class cwExportTemplate : public Widget {
 public:
  cwExportTemplate();

  // The room its tool dialog gives it.
  static constexpr double kWidth = 380, kHeight = 130;

  // The template to export (Layer.ID); its name names the file.
  void setLayer_ID(int id);
  int Layer_ID() const { return layerId_; }
  // The folder of the file; it starts at the folder of the settings
  // (TemplatePath), else the home folder.
  std::string Folder() const;
  void setFolder(const std::string& folder);
  // Folder + name + ".tpl".
  std::string TargetPath() const;

  // The file was written.
  std::function<void(const std::string& path)> Exported;

  // The buttons' work, as a click does it.
  void btnExport_Click();
  void btnFolder_Click();

  void W_Resize() override;
  // The target path as the text.
  void W_ReportState(WidgetState& state) const override;

 private:
  void ShowTarget();

  int layerId_ = 0;
  std::string name_;
  cwLabel* lblFolder_ = nullptr;
  cwTextBox* txtFolder_ = nullptr;
  cwButton* btnFolder_ = nullptr;
  cwLabel* lblFile_ = nullptr;
  cwButton* btnExport_ = nullptr;
  cwButton* btnCancel_ = nullptr;
};

}  // namespace qds
