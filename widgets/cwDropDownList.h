#pragma once
// A box that shows one row of a keyed data source and drops down the list
// of all of them to choose another. Closed, the wheel and the Up and Down
// keys step through the rows; open, a click or Return takes a row, and
// Escape or a click elsewhere keeps the old one.

#include <functional>
#include <string>

#include "platform/stock/cwDropDown.h"
#include "widgets/DataRow.h"

namespace qds {

class cwVListNew;

class cwDropDownList : public cwDropDown {
 public:
  cwDropDownList();

  // The rows, the field of theirs that is shown, and the name the source
  // goes by. The chosen row stays chosen when its key is among the new rows.
  void SetDataSource(DataRows rows, const std::string& dataField, const std::string& dataSourceKey = {});
  const std::string& DataSourceKey() const { return dataSourceKey_; }
  const std::string& DataField() const { return dataField_; }
  int ListCount() const { return static_cast<int>(rows_.size()); }
  const DataRow& Row(int index) const { return rows_.at(index); }

  // Choosing from code tells nobody; -1 chooses none.
  int ListIndex() const { return index_; }
  void setListIndex(int index);
  // The chosen row's key, "" when none; false when no row has the key.
  std::string SelectedKey() const;
  bool setSelectedKey(const std::string& key);
  // The chosen row's field, "" when none.
  std::string Text() const;

  // Each row is drawn in the font its text names (a list of fonts).
  Property<bool> IsFontSelection{*this, false};
  // Click also when the user takes the row that was chosen already.
  bool DoEventClickAlways = false;
  bool IsPopup() const { return IsOpen(); }
  // The user chose a row; also bubbled.
  std::function<void()> Click;
  // The list grows with its rows up to this many, then scrolls.
  static constexpr int kMostRowsShown = 12;

  void OpenDropDown() override;
  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseWheel(int delta, int shift, double x, double y) override;
  bool W_KeyDown(int keyCode, int shift) override;
  void W_ReportState(WidgetState& state) const override;
  // A row of the open list, by its number or its key.
  WidgetPoint W_RowPoint(int row) override;
  WidgetPoint W_ItemPoint(const std::string& key) override;

 private:
  friend class DropDownRows;
  int IndexOfKey(const std::string& key) const;
  static constexpr int kRowHeight = 20;
  // The open list shows the rows, the chosen one current.
  void ShowRows();
  // Return in the open list takes its current row.
  bool ListKeyDown(int keyCode);
  // The user took a row in the open list.
  void Take(int index);
  // The user stepped by rows with the list closed.
  void Step(int by);
  DataRows rows_;
  std::string dataField_, dataSourceKey_;
  int index_ = -1;
  cwVListNew* list_ = nullptr;
};

}  // namespace qds
