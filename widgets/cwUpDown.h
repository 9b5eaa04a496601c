#pragma once
// A spinner over a keyed data source: one row shows at a time, and the
// arrows of its scroll bar, the wheel and the Up and Down keys step to the
// row before or after.

#include <functional>
#include <string>

#include "platform/ui/Widget.h"
#include "widgets/DataRow.h"

namespace qds {

class cwScrollBar;

class cwUpDown : public Widget {
 public:
  cwUpDown();

  // The rows and the field of theirs that is shown; the row shown stays
  // where it was as far as the new rows reach.
  void SetDataSource(DataRows rows, const std::string& dataField);
  const std::string& DataField() const { return dataField_; }
  int ListCount() const { return static_cast<int>(rows_.size()); }
  // The row shown, which is where the scroll bar stands; -1 with no rows.
  int DataIndex() const;
  void setDataIndex(int index);  // held to the rows
  // The shown row's field and key; "" with no rows.
  std::string DataValue() const;
  std::string DataKey() const;

  // Another row is shown; also bubbled.
  std::function<void()> Change;
  // The user let go of the mouse on the scroll bar; also bubbled.
  std::function<void()> MouseUp;

  void W_Resize() override;
  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseWheel(int delta, int shift, double x, double y) override;
  bool W_KeyDown(int keyCode, int shift) override;
  void W_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) override;
  void W_ReportState(WidgetState& state) const override;
  // "up" and "down": the scroll bar's arrows.
  WidgetPoint W_ItemPoint(const std::string& key) override;

 private:
  DataRows rows_;
  std::string dataField_;
  cwScrollBar* bar_;
};

}  // namespace qds
