// The list's mouse and keys: presses that select, ranges, the deferred
// clearing that lets a selection be dragged, the drag threshold, the
// auto-scroll while the button is held outside the rows, and the keys.

#include <algorithm>
#include <cmath>

#include "widgets/cwVListNew.h"

namespace qds {

namespace {

// How close to an edge a press grabs it to resize a column or a row.
constexpr double kEdgeGrip = 3;
constexpr double kMinColumnWidth = 8;

// The auto-scroll is slower near the list and faster further out: 300 ms
// at its edge, 10 ms less per unit beyond it, never under 10 ms.
double IntervalFor(double beyond) {
  return std::max(10.0, 300.0 - beyond * 10.0);
}

}  // namespace

void cwVListNew::ToInner(double cx, double cy, double& x, double& y) const {
  // The rows scroll both ways, the header and the selector only one way.
  x = cx - InnerLeft();
  y = cy - ScrollY() - InnerTop();
}

bool cwVListNew::ContentMouseDown(int button, int shift, double cx, double cy) {
  if (button != Button::Left) return false;
  const double wx = cx - ScrollX(), wy = cy - ScrollY();
  double x, y;
  ToInner(cx, cy, x, y);
  SetCapture();
  lastX_ = x, lastY_ = y;
  if (headerHeight_ > 0 && wy < InnerTop() + 1) {
    PressHeader(x);
    return true;
  }
  if (AllowRowResize && selectorWidth_ > 0 && wx < InnerLeft() && y >= kRowsGap) {
    // The lower edge of a line in the selector sizes every line.
    const double within = std::fmod(y - kRowsGap, rowHeight_);
    const int line = static_cast<int>(std::floor((y - kRowsGap) / rowHeight_));
    if (within >= rowHeight_ - kEdgeGrip || (within <= kEdgeGrip && line > 0)) {
      resizingRow_ = within <= kEdgeGrip ? line - 1 : line;
      return true;
    }
  }
  Press(shift, std::max(0.0, x), y, false);
  return true;
}

bool cwVListNew::ContentDblClick(int button, int shift, double cx, double cy) {
  if (button != Button::Left) return false;
  double x, y;
  ToInner(cx, cy, x, y);
  const double wy = cy - ScrollY();
  if (headerHeight_ > 0 && wy < InnerTop() + 1) return true;
  SetCapture();
  lastX_ = x, lastY_ = y;
  // The window system sends the second press as the double click.
  Press(shift, std::max(0.0, x), y, true);
  return true;
}

void cwVListNew::Press(int shift, double x, double y, bool doubleClick) {
  const int row = GetListIndexFromMouseXY(x, y);
  if (!InRange(row)) {
    if (DeselectOutsideClick) setListIndex(-1);
    return;
  }
  buttonDown_ = true;
  const bool repeated = row == lastPress_;
  lastPress_ = row;
  lastTouched_ = row;
  rangeStart_ = rangeEnd_ = row;
  rangeActive_ = false;
  dragged_ = false;
  if (AllowDrag) {
    dragCandidate_ = true;
    dragX_ = x, dragY_ = y;
  }
  const bool wasSelected = Selected(row);
  wasSelected_ = wasSelected;
  if (multiSelect_ > 0) toggleTo_ = wasSelected;
  if (multiSelect_ == 1) {
    // A selected row that may be dragged toggles at the release instead.
    if (!(wasSelected && AllowDrag)) bits_.Set(row, !wasSelected);
    Refresh();
  } else if (multiSelect_ == 2) {
    if (shift & Shift::ShiftKey) {
      // From the current row to this one, added to what is selected.
      rangeStart_ = listIndex_;
      rangeActive_ = true;
      toggleTo_ = false;
    } else if (shift & Shift::Ctrl) {
      rangeActive_ = true;
    } else {
      if (!(AllowDrag && wasSelected)) {
        bits_.Clear();
        rangeActive_ = true;
        toggleTo_ = false;
      }
    }
    Refresh();
  }
  setListIndex(row);
  pressIndex_ = listIndex_;
  if (doubleClick && repeated) RaiseEvent(DblClick, "DblClick");
}

void cwVListNew::PressHeader(double x) {
  headerX_ = x + ScrollX();
  headerDrag_ = HeaderDrag::None;
  headerPlace_ = -1;
  for (int p = 0; p < ColumnCount(); ++p) {
    const double right = ColumnLeft(p + 1);
    if (AllowColResize && std::fabs(headerX_ - right) <= kEdgeGrip) {
      headerDrag_ = HeaderDrag::Resize;
      headerPlace_ = p;
      return;
    }
  }
  const int column = GetColumnIndexFromMouseX(headerX_);
  for (int p = 0; p < ColumnCount(); ++p) {
    if (columnMap_[p] == column) headerPlace_ = p;
  }
  if (headerPlace_ >= 0) headerDrag_ = HeaderDrag::Move;
}

bool cwVListNew::ContentMouseMove(int button, int, double cx, double cy) {
  double x, y;
  ToInner(cx, cy, x, y);
  const bool held = (button & Button::Left) && HasCapture();
  if (held && headerDrag_ == HeaderDrag::Resize) {
    const int column = columnMap_[headerPlace_];
    setColumnWidth(
        column,
        static_cast<int>(std::lround(std::max(kMinColumnWidth, x + ScrollX() - ColumnLeft(headerPlace_)))));
    return true;
  }
  if (held && resizingRow_ >= 0) {
    // The grabbed edge follows the mouse; every line above it grows alike.
    setRowHeight(static_cast<int>(std::lround((y - kRowsGap) / (resizingRow_ + 1.0))));
    return true;
  }
  if (held && headerDrag_ == HeaderDrag::Move) return true;
  lastX_ = x, lastY_ = y;
  if (buttonDown_ && (button & Button::Left)) {
    MoveWithButton(x, y);
    return true;
  }
  if (buttonDown_) return true;
  const int row = GetListIndexFromMouseXY(x, y);
  const int hover = InRange(row) ? row : -1;
  if (hover != hoverIndex_) {
    hoverIndex_ = hover;
    if (showHoverBar_) Refresh();
  }
  if (MouseMoveOnListItem) MouseMoveOnListItem(hover, x, y);
  return true;
}

void cwVListNew::MoveWithButton(double x, double y) {
  if (dragCandidate_ && (std::fabs(x - dragX_) > kDragThreshold || std::fabs(y - dragY_) > kDragThreshold)) {
    StartDragNow();
    return;
  }
  // Only a row wholly shown is reached by the mouse; the one cut off at
  // the bottom comes with the auto-scroll.
  const double rowsBottom = static_cast<double>(visibleRows_) * rowHeight_;
  const int row = GetListIndexFromMouseXY(x, y);
  if (InRange(row) && row != lastTouched_ && y >= 0 && y < kRowsGap + rowsBottom) {
    lastTouched_ = row;
    if (rangeActive_) rangeEnd_ = row;
    // The row follows the mouse; Click waits for the release.
    listIndex_ = row;
    EnsureVisibleSelection();
  }
  // Held outside the rows, the list scrolls towards the mouse.
  const double right = ViewWidth() - InnerLeft() - 1;
  if (y < 1) {
    StartAutoScroll("Up", IntervalFor(-y));
  } else if (y > rowsBottom) {
    StartAutoScroll("Down", IntervalFor(y - rowsBottom));
  } else if (x < ScrollX() && MaxScrollX() > 0) {
    StartAutoScroll("Left", IntervalFor(ScrollX() - x));
  } else if (x - ScrollX() > right && MaxScrollX() > 0) {
    StartAutoScroll("Right", IntervalFor(x - ScrollX() - right));
  } else {
    StopAutoScroll();
  }
}

void cwVListNew::ApplyRange() {
  if (!rangeActive_) return;
  // Every row from one end to the other, either way round, that exists.
  const int from = std::min(rangeStart_, rangeEnd_), to = std::max(rangeStart_, rangeEnd_);
  for (int i = std::max(0, from); i <= to && i < count_; ++i) bits_.Set(i, !toggleTo_);
}

void cwVListNew::StartDragNow() {
  dragCandidate_ = false;
  dragged_ = true;
  // What is dragged is the selection as the user sees it: a range still
  // being made counts.
  ApplyRange();
  const int start = rangeStart_;
  rangeActive_ = false;
  hoverIndex_ = -1;
  buttonDown_ = false;
  StopAutoScroll();
  // The release belongs to the widget the selection is dropped on.
  ReleaseCapture();
  if (InRange(start)) setListIndex(start);
  Refresh();
  RaiseEvent(DragStartSrc, "DragStartSrc");
  StartDrag(DragDataKey.empty() ? Key() : DragDataKey, DragPictureKey);
}

void cwVListNew::StartAutoScroll(const std::string& tag, double interval) {
  // Restarting at every move would hold the timer off for as long as the
  // mouse moves; only a new direction or speed restarts it.
  if (tag == scrollTag_ && interval == tScroll_.Interval && tScroll_.Enabled()) return;
  scrollTag_ = tag;
  tScroll_.Interval = interval;
  tScroll_.setEnabled(true);
}

void cwVListNew::StopAutoScroll() {
  scrollTag_.clear();
  tScroll_.setEnabled(false);
}

void cwVListNew::AutoScrollStep() {
  if (scrollTag_ == "Up") {
    setScrollIndex(scrollIndex_ - 1);
  } else if (scrollTag_ == "Down") {
    setScrollIndex(scrollIndex_ + 1);
  } else if (scrollTag_ == "Left") {
    ScrollBy(-LineStepX, 0);
  } else if (scrollTag_ == "Right") {
    ScrollBy(LineStepX, 0);
  }
  if (!buttonDown_) return;
  // The range reaches the row that came into view under the mouse.
  const double rowsBottom = std::max(0.0, static_cast<double>(visibleRows_) * rowHeight_ - 1);
  const double y = std::clamp(lastY_, kRowsGap, kRowsGap + rowsBottom);
  const double x = std::clamp(lastX_, ScrollX(), ScrollX() + std::max(0.0, ViewWidth() - InnerLeft() - 2));
  int row = GetListIndexFromMouseXY(x, y);
  if (row >= count_) row = count_ - 1;
  if (InRange(row) && row != lastTouched_) {
    lastTouched_ = row;
    if (rangeActive_) rangeEnd_ = row;
    listIndex_ = row;
    Refresh();
  }
}

bool cwVListNew::ContentMouseUp(int button, int, double cx, double cy) {
  if (button != Button::Left) return false;
  ReleaseCapture();
  double x, y;
  ToInner(cx, cy, x, y);
  if (headerDrag_ != HeaderDrag::None || resizingRow_ >= 0) {
    const HeaderDrag was = headerDrag_;
    headerDrag_ = HeaderDrag::None;
    resizingRow_ = -1;
    if (was == HeaderDrag::Move && headerPlace_ >= 0) {
      const double at = x + ScrollX();
      if (std::fabs(at - headerX_) > kDragThreshold) {
        // Dropped on another place: the column is shown there.
        int to = headerPlace_;
        for (int p = 0; p < ColumnCount(); ++p) {
          if (at >= ColumnLeft(p) && at < ColumnLeft(p + 1)) to = p;
        }
        if (at >= ColumnsWidth()) to = ColumnCount() - 1;
        if (at < 0) to = 0;
        MoveColumnToNewIndex(headerPlace_, to);
      } else {
        const int column = columnMap_[headerPlace_];
        setColumnIndex(column);
        sortStates_[column] = sortStates_[column] % 2 + 1;
        RaiseBubblingEvent("HeaderClick", {column});
      }
    }
    return true;
  }
  if (dragged_) {
    // The drop belongs to the widget under the mouse.
    dragged_ = false;
    return true;
  }
  Release(x, y);
  return true;
}

void cwVListNew::Release(double x, double y) {
  const bool wasDown = buttonDown_;
  const int row = y >= 0 ? GetListIndexFromMouseXY(x, y) : -1;
  if (wasDown && row == rangeStart_ && wasSelected_ && !rangeActive_) {
    if (multiSelect_ == 1) {
      bits_.Set(row, false);
    } else if (multiSelect_ == 2) {
      bits_.Clear();
      bits_.Set(row, true);
    }
  }
  if (wasDown) ApplyRange();
  dragCandidate_ = false;
  rangeActive_ = false;
  rangeStart_ = rangeEnd_ = -1;
  StopAutoScroll();
  buttonDown_ = false;
  if (wasDown) {
    // Released past the rows: the row is the last one the press reached.
    bool changed = false;
    if (!InRange(row) && count_ > 0 && lastTouched_ >= 0) ChangeIndex(lastTouched_, changed);
    // The mouse carried the row on without telling; now it is settled.
    if (listIndex_ != pressIndex_) RaiseEvent(Click, "Click");
  }
  Refresh();
  if (MouseUpClick) MouseUpClick();
  RaiseBubblingEvent("MouseUpClick");
}

void cwVListNew::W_DragDrop(const std::string& dataKey, Widget& source, double x, double y) {
  // The row under the drop becomes the current one, without scrolling.
  double ix, iy;
  ToInner(x + ScrollX(), y + ScrollY(), ix, iy);
  if (const int row = GetListIndexFromMouseXY(ix, iy); InRange(row)) setListIndex(row);
  if (DragDropDst) DragDropDst(dataKey, source, x, y);
}

void cwVListNew::W_MouseLeave() {
  if (hoverIndex_ != -1 && !buttonDown_) {
    hoverIndex_ = -1;
    if (showHoverBar_) Refresh();
  }
}

// --- keys ----------------------------------------------------------------------------

void cwVListNew::ChangeIndex(int index, bool& changed) {
  index = std::clamp(index, 0, std::max(0, count_ - 1));
  if (count_ == 0 || index == listIndex_) return;
  listIndex_ = index;
  changed = true;
  EnsureVisibleSelection();
}

bool cwVListNew::W_KeyDown(int keyCode, int shift) {
  if (buttonDown_ || count_ == 0) return false;
  if (shift == Shift::None) rangeEnd_ = -1;
  const int page = std::max(1, visibleRows_) * cellsPerLine_;
  bool changed = false;
  switch (keyCode) {
    case 'A':
      if (!(shift & Shift::Ctrl) || multiSelect_ == 0) return false;
      bits_.SetAll(count_);
      Refresh();
      if (ChangeListIndex) ChangeListIndex();
      return true;
    case Key::Left:
    case Key::Right:
      if (!LeftRightKeys) return false;
      ChangeIndex(listIndex_ + (keyCode == Key::Left ? -1 : 1), changed);
      break;
    case Key::Up:
      ChangeIndex(listIndex_ - cellsPerLine_, changed);
      break;
    case Key::Down:
      ChangeIndex(listIndex_ + cellsPerLine_, changed);
      break;
    case Key::Home:
      ChangeIndex(0, changed);
      break;
    case Key::End:
      ChangeIndex(count_ - 1, changed);
      break;
    case Key::PageUp:
      ChangeIndex(count_ <= page ? 0 : listIndex_ - page, changed);
      break;
    case Key::PageDown:
      ChangeIndex(count_ <= page ? count_ - 1 : listIndex_ + page, changed);
      break;
    default:
      return false;
  }
  if (changed) {
    if (ChangeListIndex) ChangeListIndex();
    RaiseEvent(Click, "Click");
  }
  return true;
}

bool cwVListNew::W_KeyUp(int keyCode, int) {
  if (keyCode != Key::Delete || buttonDown_ || count_ == 0) return false;
  RaiseEvent(DeleteKeyPressed, "DeleteKeyPressed");
  return true;
}

}  // namespace qds
