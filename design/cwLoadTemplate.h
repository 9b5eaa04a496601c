#pragma once
// The saved templates, each with its picture, name and description, to
// load one onto the canvas, delete one, or move one through a ".tpl" file.
// A template that cannot be loaded says why and leaves the design on the
// canvas as it is.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Bytes.h"
#include "platform/Drawing.h"
#include "platform/ui/Widget.h"

namespace qds {

class DrawingContext;
class cwButton;
class cwVListNew;

class cwLoadTemplate : public Widget {
 public:
  cwLoadTemplate();
  ~cwLoadTemplate() override;

  // The room its tool dialog gives it.
  static constexpr double kWidth = 330, kHeight = 320;
  static constexpr int kRowHeight = 54, kRowPicture = 48;

  // Lists the templates by name (again), keeping the row of the same ID
  // selected.
  void Init();
  // The name and description of the template loaded; empty before.
  std::string Name() const { return name_; }
  std::string Description() const { return description_; }
  // The ID of the selected row; 0 for none.
  int SelectedID() const;
  // Selects the row of that ID; false when there is none.
  bool SelectID(int id);

  // A template was loaded into Layers, BaseIcons and the design opacity.
  std::function<void()> TemplateChanged;
  // The dialog closed by its own buttons: after a load, or by Close.
  std::function<void()> Closed;

  // The buttons' work, as a click does it.
  void btnLoad_Click();
  void btnDelete_Click();
  void btnExport_Click();
  void btnImport_Click();

  cwVListNew* vlstTemplates = nullptr;

  void W_Resize() override;
  // The name of the selected row as the caption, the loaded one's as the text.
  void W_ReportState(WidgetState& state) const override;

 private:
  struct Row {
    int ID = 0;
    std::string Name, Description;
    int Opacity = 100;
    bool UseOpacity = false;
    // Why the row's own values cannot be used; empty when they can.
    std::string Problem;
    Bytes Thumbnail;
    SurfacePtr Picture;  // made when the row first shows
    bool PictureMade = false;
  };
  const Row* SelectedRow() const;
  void RefreshButtons();
  void Close(int result);
  void vlstTemplates_OwnerDrawItem(int index, DrawingContext& cc, double dx, double dy, double alpha);

  std::vector<Row> rows_;
  std::string name_, description_;
  cwButton* btnLoad_ = nullptr;
  cwButton* btnDelete_ = nullptr;
  cwButton* btnExport_ = nullptr;
  cwButton* btnImport_ = nullptr;
  cwButton* btnClose_ = nullptr;
};

}  // namespace qds
