#pragma once
// Saves the design on the canvas as a template: its name, a description
// and the picture the view made of it. A blank name is refused; a name that
// exists, whatever its case, is replaced only when the user says so. The
// design is written whole or not at all.

#include <functional>
#include <string>

#include "platform/Bytes.h"
#include "platform/ui/Widget.h"

namespace qds {

class cwButton;
class cwLabel;
class cwTemplatePicture;
class cwTextBox;

class cwSaveTemplate : public Widget {
 public:
  cwSaveTemplate();

  // The room its tool dialog gives it.
  static constexpr double kWidth = 380, kHeight = 190;

  void setName(const std::string& name);
  void setDescription(const std::string& description);
  // PNG bytes of the design's picture, shown in the dialog and saved with it.
  void setThumbNail(const Bytes& png);
  // The name and description as they stand in the boxes, without
  // surrounding blanks.
  std::string Name() const;
  std::string Description() const;
  // Readies the dialog for the user: the name selected, so typing replaces it.
  void Init();

  // Saved the present design (Layers, BaseIcons, DesignOpacity,
  // DesignOpacityOn) under that name; the dialog closes after it.
  std::function<void(const std::string& name, const std::string& description)> Saved;

  // Save, as the button and Return do.
  void btnSave_Click();

  void W_Resize() override;
  // The name as it would be saved.
  void W_ReportState(WidgetState& state) const override;

 private:
  cwLabel* lblName_ = nullptr;
  cwTextBox* txtName_ = nullptr;
  cwLabel* lblDescription_ = nullptr;
  cwTextBox* txtDescription_ = nullptr;
  cwTemplatePicture* picThumbNail_ = nullptr;
  cwButton* btnSave_ = nullptr;
  cwButton* btnCancel_ = nullptr;
  Bytes thumbNail_;
};

}  // namespace qds
