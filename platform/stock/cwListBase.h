#pragma once
// A scrolling list of text rows, one of them selected, moved through by
// the mouse, the wheel and the keys.

#include <functional>
#include <string>
#include <vector>

#include "platform/ui/Widget.h"

namespace qds {

class cwScrollBar;

class cwListBase : public Widget {
 public:
  explicit cwListBase(std::string typeName);
  void W_Resize() override { Layout(); }
  int ListCount() const { return static_cast<int>(rows_.size()); }
  const std::string& List(int index) const { return rows_.at(index).text; }
  int ListIndex() const { return index_; }
  void setListIndex(int index);  // -1 for none
  int TopIndex() const { return top_; }
  double RowHeight = 20;
  // The user chose a row, by the mouse or by the keys; also bubbled as "Click".
  std::function<void()> Click;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_DblClick(int button, int shift, double x, double y) override;
  bool W_MouseWheel(int delta, int shift, double x, double y) override;
  bool W_KeyDown(int keyCode, int shift) override;
  void W_ReportState(WidgetState& state) const override;
  WidgetPoint W_RowPoint(int row) override;

 protected:
  struct Row {
    std::string text;
    int indent = 0;
    bool folder = false;
  };
  const Row& RowAt(int index) const { return rows_.at(index); }
  // Paints one row; the selected one is on the accent colour already.
  virtual void PaintRow(DrawingContext& ctx, int index, double y, double w, bool selected);
  void SetRows(std::vector<Row> rows, int selected);
  // A double click or Return on a row.
  virtual void Activated(int index) { (void)index; }
  virtual void Selected() {}
  int RowAtY(double y) const;
  // The user chose `row`: it is selected, and the owner told.
  void UserChose(int row);

 private:
  int RowsShown() const;
  void ScrollTo(int index);
  // Shows the scroll bar when the rows do not fit, and keeps it on top_.
  void Layout();
  std::vector<Row> rows_;
  int index_ = -1;
  int top_ = 0;
  cwScrollBar* bar_;
};

}  // namespace qds
