#include "widgets/cwVListNew.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

cwVListNew::cwVListNew() : cwScrollable("cwVListNew") {
  CanFocus = true;
  LineStepY = rowHeight_;
  BarUnitY = rowHeight_;
  tScroll_.OnTimer = [this] { AutoScrollStep(); };
}

// --- rows and lines ---------------------------------------------------------

void cwVListNew::setListCount(int count) {
  count = std::max(0, count);
  if (count == count_) return;
  count_ = count;
  bits_.Resize(count);
  if (listIndex_ >= count) listIndex_ = count - 1;
  if (hoverIndex_ >= count) hoverIndex_ = -1;
  for (int* mark : {&lastPress_, &lastTouched_, &rangeStart_, &rangeEnd_}) {
    if (*mark >= count) *mark = -1;
  }
  AdjustDimensions();
  Refresh();
}

int cwVListNew::Lines() const {
  return static_cast<int>((static_cast<long long>(count_) + cellsPerLine_ - 1) / cellsPerLine_);
}

int cwVListNew::MaxScrollIndex() const {
  return std::max(0, Lines() - visibleRows_);
}

void cwVListNew::AdjustDimensions() {
  // The offset in units is stale while the sizes change; the line is what
  // holds.
  adjusting_ = true;
  // The bars take room that decides how many cells and rows fit, and the
  // rows decide the bars: a few rounds settle it.
  for (int round = 0; round < 3; ++round) {
    const double usableW = ViewWidth() - 3 - selectorWidth_;
    cellsPerLine_ = imageView_ ? std::max(1, static_cast<int>(std::floor(usableW / (colWidth_ + 2)))) : 1;
    const double usableH = ViewHeight() - 3 - headerHeight_;
    visibleRows_ = std::max(0, static_cast<int>(std::floor(usableH / rowHeight_)));
    const int lines = Lines();
    // Scrolled to the end, the last line sits at the bottom of the rows.
    const double contentH =
        lines > visibleRows_ ? static_cast<double>(lines - visibleRows_) * rowHeight_ + ViewHeight() : 0;
    const double contentW = columnWidths_.empty() || imageView_ ? 0 : InnerLeft() + ColumnsWidth() + 2;
    if (contentH == ContentHeight() && contentW == ContentWidth()) break;
    setContentSize(contentW, contentH);
  }
  LineStepY = rowHeight_;
  BarUnitY = rowHeight_;
  adjusting_ = false;
  const int line = std::clamp(scrollIndex_, 0, MaxScrollIndex());
  ScrollTo(ScrollX(), static_cast<double>(line) * rowHeight_);
  setScrollIndex(line);
}

void cwVListNew::W_Resize() {
  cwScrollable::W_Resize();
  AdjustDimensions();
}

void cwVListNew::setScrollIndex(int line) {
  line = std::clamp(line, 0, MaxScrollIndex());
  if (line == scrollIndex_) return;
  scrollIndex_ = line;
  ScrollTo(ScrollX(), static_cast<double>(line) * rowHeight_);
  Refresh();
  RaiseBubblingEvent("ScrollIndexChange", {line});
}

void cwVListNew::ScrollChanged() {
  if (adjusting_) return;
  // The bars and the wheel move the offset in units; it always rests on a
  // whole line.
  const int line = static_cast<int>(std::lround(ScrollY() / rowHeight_));
  if (line != scrollIndex_) {
    setScrollIndex(line);
  } else if (ScrollY() != static_cast<double>(line) * rowHeight_) {
    ScrollTo(ScrollX(), static_cast<double>(line) * rowHeight_);
  }
}

bool cwVListNew::InRange(int index) const {
  return index >= 0 && index < count_;
}

void cwVListNew::setListIndex(int index) {
  if (index < -1) return;
  if (index >= count_) index = count_ - 1;
  if (index == listIndex_) return;
  listIndex_ = index;
  // A list that is the target of a drag keeps still under the mouse.
  const PlatformRoot* root = PlatformRoot::Current();
  if (index == -1 || (root && root->Dragging())) {
    Refresh();
  } else {
    EnsureVisibleSelection();
  }
  RaiseEvent(Click, "Click");
}

void cwVListNew::EnsureVisibleSelection() {
  if (listIndex_ >= 0) {
    const int line = listIndex_ / cellsPerLine_;
    if (line < scrollIndex_) {
      setScrollIndex(line);
    } else if (line > scrollIndex_ + visibleRows_ - 1) {
      setScrollIndex(line + 1 - visibleRows_);
    }
  }
  Refresh();
}

void cwVListNew::setMultiSelect(int mode) {
  multiSelect_ = std::clamp(mode, 0, 2);
  Refresh();
}

bool cwVListNew::Selected(int index) const {
  if (!InRange(index)) return false;
  if (buttonDown_ && rangeActive_ && index >= std::min(rangeStart_, rangeEnd_) &&
      index <= std::max(rangeStart_, rangeEnd_))
    return !toggleTo_;
  return multiSelect_ ? bits_.Get(index) : index == listIndex_;
}

void cwVListNew::setSelected(int index, bool on) {
  if (!InRange(index)) return;
  if (multiSelect_) {
    bits_.Set(index, on);
    Refresh();
  } else {
    setListIndex(on ? index : -1);
  }
}

void cwVListNew::ClearSelections() {
  bits_.Clear();
  Refresh();
}

std::vector<int> cwVListNew::GetSelections() const {
  if (multiSelect_) return bits_.Rows();
  return listIndex_ >= 0 ? std::vector<int>{listIndex_} : std::vector<int>{};
}

// --- sizes -------------------------------------------------------------------

void cwVListNew::setImageView(bool on) {
  imageView_ = on;
  AdjustDimensions();
  Refresh();
}

void cwVListNew::setRowHeight(int height) {
  rowHeight_ = std::clamp(height, kMinRowHeight, kMaxRowHeight);
  AdjustDimensions();
  Refresh();
}

void cwVListNew::setColWidth(int width) {
  colWidth_ = std::clamp(width, 1, 4096);
  AdjustDimensions();
  Refresh();
}

void cwVListNew::setHeaderHeight(int height) {
  headerHeight_ = std::clamp(height, 0, 300);
  AdjustDimensions();
  Refresh();
}

void cwVListNew::setRowSelectorWidth(int width) {
  selectorWidth_ = std::clamp(width, 0, 300);
  AdjustDimensions();
  Refresh();
}

void cwVListNew::setShowHoverBar(bool on) {
  showHoverBar_ = on;
  Refresh();
}

void cwVListNew::setShowSelection(bool on) {
  showSelection_ = on;
  Refresh();
}

void cwVListNew::setRowColor(std::int64_t colour) {
  rowColor_ = colour;
  Refresh();
}

void cwVListNew::setAlternateRowColor(std::int64_t colour) {
  altRowColor_ = colour;
  Refresh();
}

// --- columns -----------------------------------------------------------------

void cwVListNew::setColumnCount(int count) {
  count = std::clamp(count, 0, 1000);
  columnWidths_.resize(count, ColumnDefaultWidth);
  sortStates_.resize(count, 0);
  // Shown places keep their columns; new columns go to the end.
  std::erase_if(columnMap_, [count](int c) { return c >= count; });
  for (int c = 0; c < count; ++c) {
    if (std::find(columnMap_.begin(), columnMap_.end(), c) == columnMap_.end()) columnMap_.push_back(c);
  }
  if (columnIndex_ >= count) columnIndex_ = -1;
  AdjustDimensions();
  Refresh();
}

void cwVListNew::setColumnIndex(int column) {
  if (column < -1 || column >= ColumnCount()) return;
  columnIndex_ = column;
  Refresh();
}

int cwVListNew::ColumnWidth(int column) const {
  return column >= 0 && column < ColumnCount() ? columnWidths_[column] : 0;
}

void cwVListNew::setColumnWidth(int column, int width) {
  if (column < 0 || column >= ColumnCount()) return;
  columnWidths_[column] = std::clamp(width, 0, 10000);
  AdjustDimensions();
  Refresh();
}

int cwVListNew::ColMapIndex(int place) const {
  return place >= 0 && place < ColumnCount() ? columnMap_[place] : -1;
}

void cwVListNew::MoveColumnToNewIndex(int from, int to) {
  const int n = ColumnCount();
  if (from < 0 || from >= n || to < 0 || to >= n || from == to) return;
  const int column = columnMap_[from];
  columnMap_.erase(columnMap_.begin() + from);
  columnMap_.insert(columnMap_.begin() + to, column);
  Refresh();
}

double cwVListNew::ColumnLeft(int place) const {
  double x = 0;
  for (int p = 0; p < place && p < ColumnCount(); ++p) x += columnWidths_[columnMap_[p]];
  return x;
}

double cwVListNew::ColumnsWidth() const {
  return ColumnLeft(ColumnCount());
}

int cwVListNew::VisibleCols() const {
  const double from = ScrollX(), to = ScrollX() + ViewWidth() - InnerLeft();
  int shown = 0;
  for (int p = 0; p < ColumnCount(); ++p) {
    const double left = ColumnLeft(p), right = left + columnWidths_[columnMap_[p]];
    if (right > from && left < to) ++shown;
  }
  return shown;
}

int cwVListNew::SortState(int column) const {
  return column >= 0 && column < ColumnCount() ? sortStates_[column] : 0;
}

void cwVListNew::ResetSortStates() {
  std::fill(sortStates_.begin(), sortStates_.end(), 0);
  Refresh();
}

// --- where things are ------------------------------------------------------------

int cwVListNew::GetListIndexFromMouseY(double y) const {
  if (y < 0) return -1;
  // The gap above the first line counts as that line.
  const double line = std::floor((std::max(y, kRowsGap) - kRowsGap) / rowHeight_) + scrollIndex_;
  if (line >= count_) return buttonDown_ && count_ > 0 ? count_ - 1 : -1;
  return static_cast<int>(line);
}

int cwVListNew::GetListIndexFromMouseXY(double x, double y) const {
  if (x < 0 || y < 0) return -1;
  if (!imageView_) {
    if (!columnWidths_.empty() && x >= ColumnsWidth()) return -1;
    return GetListIndexFromMouseY(y);
  }
  const int cell = static_cast<int>(std::floor(x / (colWidth_ + 2)));
  if (cell >= cellsPerLine_) return -1;
  const double line = std::floor((std::max(y, kRowsGap) - kRowsGap) / rowHeight_) + scrollIndex_;
  const double index = line * cellsPerLine_ + cell;
  return index < INT_MAX ? static_cast<int>(index) : INT_MAX;
}

int cwVListNew::GetColumnIndexFromMouseX(double x) const {
  for (int p = 0; p < ColumnCount(); ++p) {
    const double left = ColumnLeft(p);
    if (x >= left && x < left + columnWidths_[columnMap_[p]]) return columnMap_[p];
  }
  return -1;
}

void cwVListNew::ItemRect(int index, double& x, double& y, double& w, double& h) const {
  const int line = index / cellsPerLine_, cell = index % cellsPerLine_;
  y = InnerTop() + kRowsGap + static_cast<double>(line) * rowHeight_;
  h = rowHeight_;
  if (imageView_) {
    x = InnerLeft() + cell * (colWidth_ + 2.0) + 1;
    w = colWidth_;
  } else {
    x = InnerLeft();
    w = std::max(ColumnsWidth(), ViewWidth() - InnerLeft() - 1);
  }
}

bool cwVListNew::ItemBounds(int index, double& x, double& y, double& w, double& h) const {
  if (!InRange(index)) return false;
  ItemRect(index, x, y, w, h);
  return true;
}

WidgetPoint cwVListNew::W_RowPoint(int row) {
  if (!InRange(row)) return {};
  const int line = row / cellsPerLine_;
  if (line < scrollIndex_ || line >= scrollIndex_ + std::max(1, visibleRows_)) return {};
  double x, y, w, h;
  ItemRect(row, x, y, w, h);
  x -= ScrollX(), y -= ScrollY();
  const double right = std::min(x + w, ViewWidth()), left = std::max(x, InnerLeft());
  if (right <= left) return {};
  return {this, (left + right) / 2, y + std::min(h, ViewHeight() - y) / 2};
}

void cwVListNew::W_ReportState(WidgetState& state) const {
  state.listCount = count_;
  state.listIndex = listIndex_;
  state.scrollIndex = scrollIndex_;
  state.selected = GetSelections();
  if (ReportItems) state.items = ReportItems();
}

// --- painting ------------------------------------------------------------------

void cwVListNew::Invoke(const std::function<void(int, DrawingContext&, double, double, double)>& owner,
                        const char* name, int index, DrawingContext& ctx, double x, double y, double w,
                        double h) {
  const double alpha = EnabledInTree() ? 1.0 : 0.5;
  const int depth = ctx.SaveDepth();
  ctx.Save();
  ctx.Rectangle(x, y, w, h);
  ctx.Clip();
  ctx.Translate(x, y);
  painting_ = &ctx;
  try {
    if (owner) owner(index, ctx, w, h, alpha);
    RaiseBubblingEvent(name, {index, w, h, alpha});
  } catch (...) {
    painting_ = nullptr;
    while (ctx.SaveDepth() > depth) ctx.Restore();
    throw;
  }
  painting_ = nullptr;
  // Whatever the owner left of saved states and paths goes.
  while (ctx.SaveDepth() > depth) ctx.Restore();
  ctx.NewPath();
}

void cwVListNew::PaintContent(DrawingContext& ctx, double, double, double, double) {
  ctx.SetSourceColor(StockColor(Palette::Back));
  ctx.Rectangle(ScrollX(), ScrollY(), ViewWidth(), ViewHeight());
  ctx.Fill();
  const int first = scrollIndex_ * cellsPerLine_;
  // The lines that show, the last one perhaps in part.
  const long long shownLines = visibleRows_ + 1;
  const long long last = std::min<long long>(count_, first + shownLines * cellsPerLine_);
  for (long long i = first; i < last; ++i) {
    const int index = static_cast<int>(i);
    double x, y, w, h;
    ItemRect(index, x, y, w, h);
    const int line = index / cellsPerLine_;
    const std::int64_t back = line % 2 == 1 && altRowColor_ != -1 ? altRowColor_ : rowColor_;
    if (back != -1) {
      ctx.SetSourceColor(back);
      ctx.Rectangle(x, y, w, h);
      ctx.Fill();
    }
    // Cells of a grid keep a line between them, so a selection of several
    // still reads as cells.
    const double inset = imageView_ ? 1 : 0;
    if (showSelection_ && Selected(index)) {
      DrawPart(ctx, ThemePart::Selection, HasFocus() ? ThemeState::Focused : ThemeState::Normal, x, y + inset,
               w, h - 2 * inset);
    } else if (showHoverBar_ && index == hoverIndex_) {
      ctx.SetSourceColor(StockColor(Palette::Hover));
      ctx.Rectangle(x, y + inset, w, h - 2 * inset);
      ctx.Fill();
    }
    Invoke(OwnerDrawItem, "OwnerDrawItem", index, ctx, x, y, w, h);
    if (index == listIndex_ && HasFocus()) {
      // In the text colour, so it shows on the selection too.
      ctx.SetSourceColor(StockColor(Palette::Text));
      ctx.SetLineWidth(1);
      ctx.Rectangle(x + 0.5, y + inset + 0.5, w - 1, h - 2 * inset - 1);
      ctx.Stroke();
    }
  }
  // Column separators down the rows.
  if (!imageView_ && !columnWidths_.empty()) {
    ctx.SetSourceColor(StockColor(Palette::Border));
    for (int p = 1; p <= ColumnCount(); ++p) {
      ctx.Rectangle(InnerLeft() + ColumnLeft(p) - 1, ScrollY(), 1, ViewHeight());
    }
    ctx.Fill();
  }
}

void cwVListNew::PaintView(DrawingContext& ctx, double w, double h) {
  const double sx = ScrollX();
  if (headerHeight_ > 0) {
    ctx.Save();
    ctx.Rectangle(InnerLeft(), 1, std::max(0.0, w - InnerLeft() - 1), headerHeight_);
    ctx.Clip();
    DrawPart(ctx, ThemePart::Face, ThemeState::Normal, InnerLeft() - sx, 1, std::max(ColumnsWidth(), w + sx),
             headerHeight_);
    ctx.Restore();
    Invoke(
        [this](int, DrawingContext& cc, double dx, double dy, double alpha) {
          if (OwnerDrawHeader) OwnerDrawHeader(cc, dx, dy, alpha);
        },
        "OwnerDrawHeader", -1, ctx, InnerLeft() - sx, 1, std::max(ColumnsWidth(), w), headerHeight_);
    ctx.Save();
    ctx.Rectangle(InnerLeft(), 1, std::max(0.0, w - InnerLeft() - 1), headerHeight_);
    ctx.Clip();
    for (int p = 0; p < ColumnCount(); ++p) {
      const double right = InnerLeft() - sx + ColumnLeft(p + 1);
      ctx.SetSourceColor(StockColor(Palette::Border));
      ctx.Rectangle(right - 1, 1, 1, headerHeight_);
      ctx.Fill();
      if (const int state = sortStates_[columnMap_[p]]) {
        const double side = std::min(9.0, headerHeight_ - 4.0);
        DrawPart(ctx, ThemePart::Arrow, ThemeState::Normal, right - side - 4, 1 + (headerHeight_ - side) / 2,
                 side, side, state == 1 ? ArrowDirection::Up : ArrowDirection::Down);
      }
    }
    ctx.Restore();
  }
  if (selectorWidth_ > 0) {
    const long long first = scrollIndex_;
    const long long last = std::min<long long>(Lines(), first + visibleRows_ + 1);
    for (long long line = first; line < last; ++line) {
      const double y = InnerTop() + kRowsGap + (line - first) * static_cast<double>(rowHeight_);
      DrawPart(ctx, ThemePart::Face, ThemeState::Normal, 1, y, selectorWidth_, rowHeight_);
      Invoke(OwnerDrawRowSelector, "OwnerDrawRowSelector", static_cast<int>(line), ctx, 1, y, selectorWidth_,
             rowHeight_);
    }
  }
  DrawPart(ctx, ThemePart::Frame, HasFocus() ? ThemeState::Focused : ThemeState::Normal, 0, 0, w, h);
}

QDS_JOIN_WIDGET_REGISTRY(cwVListNew);

}  // namespace qds
