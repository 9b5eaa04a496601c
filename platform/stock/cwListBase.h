#pragma once
// A scrolling list of text rows, one of them selected, moved through by
// the mouse, the wheel and the keys. The rows are the content of a
// cwScrollable, ListCount * RowHeight high and as wide as the view; its
// vertical bar is "vsbRows".

#include <functional>
#include <string>
#include <vector>

#include "platform/stock/cwScrollable.h"

namespace qds {

class cwListBase : public cwScrollable {
 public:
  explicit cwListBase(std::string typeName);
  int ListCount() const { return static_cast<int>(rows_.size()); }
  const std::string& List(int index) const { return rows_.at(index).text; }
  int ListIndex() const { return index_; }
  void setListIndex(int index);  // -1 for none; scrolls to show it
  // The first row shown, if only in part.
  int TopIndex() const;
  // Set before the rows: it is also the line the bar's arrows and the wheel move.
  double RowHeight = 20;
  // The user chose a row, by the mouse or by the keys; also bubbled as "Click".
  std::function<void()> Click;

  bool W_KeyDown(int keyCode, int shift) override;
  void W_ReportState(WidgetState& state) const override;
  // The middle of the part of the row that shows, in the widget's units.
  WidgetPoint W_RowPoint(int row) override;
  // A row by its text, for scripts: the first that reads `key`.
  WidgetPoint W_ItemPoint(const std::string& key) override;

 protected:
  struct Row {
    std::string text;
    int indent = 0;
    bool folder = false;
  };
  const Row& RowAt(int index) const { return rows_.at(index); }
  // Paints one row at `y`, in content coordinates; the selected one is on
  // the accent colour already.
  virtual void PaintRow(DrawingContext& ctx, int index, double y, double w, bool selected);
  // New rows, shown from the top, scrolled so that `selected` shows.
  void SetRows(std::vector<Row> rows, int selected);
  // A double click or Return on a row.
  virtual void Activated(int index) { (void)index; }
  virtual void Selected() {}
  // The row at a content point's height; -1 below the last.
  int RowAtY(double y) const;
  // The user chose `row`: it is selected, and the owner told.
  void UserChose(int row);
  // Scrolls the least that shows the whole row.
  void ShowRow(int index);

  void PaintContent(DrawingContext& ctx, double x, double y, double w, double h) override;
  void PaintView(DrawingContext& ctx, double w, double h) override;
  bool ContentMouseDown(int button, int shift, double x, double y) override;
  bool ContentDblClick(int button, int shift, double x, double y) override;

 private:
  // Whole rows the view has room for, at least one.
  int RowsShown() const;
  std::vector<Row> rows_;
  int index_ = -1;
};

}  // namespace qds
