#pragma once
// The list of the whole program. It holds no rows: it knows how many there
// are and asks its owner to paint the ones that show, so a list of a
// million rows costs what a list of a hundred does. It is a plain list, a
// grid of columns with a header and a row selector, or a grid of cells
// (ImageView), several to a line. The selection is kept here, one bit per
// row.
//
// Places, inside the 1-unit frame: the header along the top
// (HeaderHeight), the row selector down the left (RowSelectorWidth), and
// the rows below and beside them. Mouse positions given to the public
// functions are relative to the inner area, which begins below the header
// and right of the selector; its first line starts 2 units down, and an
// ImageView's cells are ColWidth wide with a unit of room on either side.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/stock/cwScrollable.h"
#include "platform/ui/PlatformRoot.h"
#include "widgets/SelectionBits.h"

namespace qds {

class cwVListNew : public cwScrollable {
 public:
  cwVListNew();

  static constexpr int kMinRowHeight = 1, kMaxRowHeight = 300;
  // A move of more than this many units from the press starts a drag.
  static constexpr double kDragThreshold = 4;

  // Whole lines the rows' area has room for.
  int VisibleRows() const { return visibleRows_; }
  int ListCount() const { return count_; }
  void setListCount(int count);
  double ScrollerSize() const { return BarSize(); }
  // The first line shown; a line of an ImageView holds several rows.
  int ScrollIndex() const { return scrollIndex_; }
  void setScrollIndex(int line);
  int MaxScrollIndex() const;
  // The current row, -1 for none. Below -1 is ignored, past the end is the
  // last row; a change shows the row and raises Click.
  int ListIndex() const { return listIndex_; }
  void setListIndex(int index);
  int HoverIndex() const { return hoverIndex_; }
  // 0: one row at a time (the current one); 1: a click toggles its row;
  // 2: Shift and Ctrl make ranges and add rows.
  int MultiSelect() const { return multiSelect_; }
  void setMultiSelect(int mode);
  void EnsureVisibleSelection();

  // The row at a point of the inner area; -1 past the last row (unless
  // the button is down) or beside the grid.
  int GetListIndexFromMouseY(double y) const;
  // The rectangle of a row or cell in content coordinates, as the mouse
  // events give them; false for an index that is not a row.
  bool ItemBounds(int index, double& x, double& y, double& w, double& h) const;
  int GetListIndexFromMouseXY(double x, double y) const;
  // The data column under x (inner area, scrolled), -1 for none.
  int GetColumnIndexFromMouseX(double x) const;

  bool AllowDrag = false;
  bool AllowColResize = false;
  bool AllowRowResize = false;
  bool DeselectOutsideClick = false;
  bool ShowHoverBar() const { return showHoverBar_; }
  void setShowHoverBar(bool on);
  bool ShowSelection() const { return showSelection_; }
  void setShowSelection(bool on);
  // Left and Right move the row; a grid whose cells take those keys turns
  // this off.
  bool LeftRightKeys = true;

  bool Selected(int index) const;
  void setSelected(int index, bool on);
  void ClearSelections();
  std::vector<int> GetSelections() const;
  // The bytes the selection takes.
  std::size_t SelectionBytes() const { return bits_.Bytes(); }

  bool ImageView() const { return imageView_; }
  void setImageView(bool on);
  // Cells of an ImageView on one line, at least 1; 1 otherwise.
  int CellsPerLine() const { return cellsPerLine_; }
  int RowHeight() const { return rowHeight_; }
  void setRowHeight(int height);  // held to 1..300
  int ColWidth() const { return colWidth_; }
  void setColWidth(int width);
  int HeaderHeight() const { return headerHeight_; }
  void setHeaderHeight(int height);
  int RowSelectorWidth() const { return selectorWidth_; }
  void setRowSelectorWidth(int width);

  // Columns, by data column; shown in the order of ColMapIndex.
  int ColumnCount() const { return static_cast<int>(columnWidths_.size()); }
  void setColumnCount(int count);  // new columns are ColumnDefaultWidth wide
  int ColumnIndex() const { return columnIndex_; }
  void setColumnIndex(int column);
  std::int16_t ColumnDefaultWidth = 120;
  int ColumnWidth(int column) const;
  void setColumnWidth(int column, int width);
  // The data column shown at a place.
  int ColMapIndex(int place) const;
  // Moves the column shown at `from` to be shown at `to`.
  void MoveColumnToNewIndex(int from, int to);
  // Columns that show, if only in part.
  int VisibleCols() const;
  // The left edge of a place, in the inner area before scrolling.
  double ColumnLeft(int place) const;
  // A header click cycles its column through 0 (none), 1 (up), 2 (down).
  int SortState(int column) const;
  void ResetSortStates();

  // Row backgrounds; -1 is the theme's background. Odd rows take the
  // alternate colour.
  std::int64_t RowColor() const { return rowColor_; }
  void setRowColor(std::int64_t colour);
  std::int64_t AlternateRowColor() const { return altRowColor_; }
  void setAlternateRowColor(std::int64_t colour);

  // The area the rows are drawn in: the view less the frame.
  double DrawWidth() const { return ViewWidth(); }
  double DrawHeight() const { return ViewHeight(); }

  // Painting, asked of the owner for what shows. The context is moved to
  // the item (header, selector cell, row or cell) and clipped to it, and
  // put back afterwards; alpha is less than 1 on a disabled list. Each is
  // also bubbled under its name with (index,) dx, dy and alpha, and
  // PaintingContext() gives the context to a handler up the tree.
  std::function<void(DrawingContext& cc, double dx, double dy, double alpha)> OwnerDrawHeader;
  std::function<void(int index, DrawingContext& cc, double dx, double dy, double alpha)> OwnerDrawRowSelector;
  std::function<void(int index, DrawingContext& cc, double dx, double dy, double alpha)> OwnerDrawItem;
  DrawingContext* PaintingContext() const { return painting_; }

  // The current row changed; also bubbled.
  std::function<void()> Click;
  // The button was released over the list; also bubbled.
  std::function<void()> MouseUpClick;
  // A row was double-clicked; also bubbled.
  std::function<void()> DblClick;
  // Delete was released; also bubbled.
  std::function<void()> DeleteKeyPressed;
  // The keyboard moved the row.
  std::function<void()> ChangeListIndex;
  std::function<void(int index, double x, double y)> MouseMoveOnListItem;
  // What the owner's rows hold, for the automation's dump: the list itself
  // knows only their number.
  std::function<std::vector<WidgetState::Item>()> ReportItems;
  // A drag of the selection begins; also bubbled. The owner may set what
  // it carries before the list starts it.
  std::function<void()> DragStartSrc;
  std::string DragDataKey;
  std::string DragPictureKey;
  // A drag of the program was dropped on the list.
  std::function<void(const std::string& dataKey, Widget& source, double x, double y)> DragDropDst;
  // "ScrollIndexChange" and "HeaderClick" (with the data column) are
  // bubbled only.

  // The auto-scroll while the button is held outside the rows: the
  // direction ("Up", "Down", "Left", "Right", "" when still) and its
  // interval in milliseconds.
  const std::string& AutoScrollTag() const { return scrollTag_; }
  double AutoScrollInterval() const { return tScroll_.Interval; }

  void W_Resize() override;
  bool W_KeyDown(int keyCode, int shift) override;
  bool W_KeyUp(int keyCode, int shift) override;
  void W_MouseLeave() override;
  void W_DragDrop(const std::string& dataKey, Widget& source, double x, double y) override;
  void W_ReportState(WidgetState& state) const override;
  // The middle of a row or cell that shows.
  WidgetPoint W_RowPoint(int row) override;

 protected:
  void PaintContent(DrawingContext& ctx, double x, double y, double w, double h) override;
  void PaintView(DrawingContext& ctx, double w, double h) override;
  bool ContentMouseDown(int button, int shift, double x, double y) override;
  bool ContentMouseMove(int button, int shift, double x, double y) override;
  bool ContentMouseUp(int button, int shift, double x, double y) override;
  bool ContentDblClick(int button, int shift, double x, double y) override;
  void ScrollChanged() override;

 private:
  // Counts lines and visible rows, and sizes the content and its bars.
  void AdjustDimensions();
  int Lines() const;
  // The row drawn at a line and cell, and where an item is, in the widget.
  void ItemRect(int index, double& x, double& y, double& w, double& h) const;
  // The inner area's corner in the widget; the first line starts 2 below.
  double InnerLeft() const { return 1.0 + selectorWidth_; }
  double InnerTop() const { return headerHeight_; }
  static constexpr double kRowsGap = 2;
  double ColumnsWidth() const;

  // The mouse, with content points turned into the inner area.
  void ToInner(double cx, double cy, double& x, double& y) const;
  void Press(int shift, double x, double y, bool doubleClick);
  void PressHeader(double x);
  void MoveWithButton(double x, double y);
  void Release(double x, double y);
  void ChangeIndex(int index, bool& changed);
  void StartAutoScroll(const std::string& tag, double interval);
  void StopAutoScroll();
  void AutoScrollStep();
  void StartDragNow();
  // The range being made becomes the selection bits.
  void ApplyRange();
  bool InRange(int index) const;
  void Invoke(const std::function<void(int, DrawingContext&, double, double, double)>& owner,
              const char* name, int index, DrawingContext& ctx, double x, double y, double w, double h);

  int count_ = 0;
  int listIndex_ = -1;
  int hoverIndex_ = -1;
  int scrollIndex_ = 0;
  int multiSelect_ = 0;
  int rowHeight_ = 17;
  int colWidth_ = 150;
  int headerHeight_ = 0;
  int selectorWidth_ = 0;
  int visibleRows_ = 0;
  int cellsPerLine_ = 1;
  bool imageView_ = false;
  bool showHoverBar_ = true;
  bool showSelection_ = true;
  std::int64_t rowColor_ = -1, altRowColor_ = -1;
  std::vector<int> columnWidths_, columnMap_, sortStates_;
  int columnIndex_ = -1;
  SelectionBits bits_;
  DrawingContext* painting_ = nullptr;
  bool adjusting_ = false;

  // A press and what it began.
  bool buttonDown_ = false;
  int lastPress_ = -1;
  int lastTouched_ = -1;
  int pressIndex_ = -1;  // ListIndex once the press set it
  bool wasSelected_ = false;
  bool dragCandidate_ = false;
  bool dragged_ = false;
  double dragX_ = 0, dragY_ = 0;
  int rangeStart_ = -1, rangeEnd_ = -1;
  bool rangeActive_ = false;
  bool toggleTo_ = false;
  // A press on the header or its edges: the column being widened or moved.
  enum class HeaderDrag { None, Resize, Move } headerDrag_ = HeaderDrag::None;
  int headerPlace_ = -1;
  double headerX_ = 0;
  int resizingRow_ = -1;
  double lastX_ = 0, lastY_ = 0;  // the inner point of the last move
  std::string scrollTag_;
  Timer tScroll_{*this};
};

}  // namespace qds
