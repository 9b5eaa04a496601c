// The virtual list on the headless backend: its limits, the keys, the
// selection, what it paints and asks its owner for, columns and scrolling.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/DrawingContext.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/ui/Form.h"
#include "tests/support/Pixels.h"
#include "tests/support/UiDriver.h"
#include "widgets/cwVListNew.h"

using namespace qds;

namespace {

// A form that hears the events bubbled up to it.
struct HearingForm : cfForm {
  HearingForm() : cfForm("ListForm") {}
  std::function<void(const std::string& name)> heard;
  void Form_BubblingEvent(Widget&, const std::string& name, const std::vector<Value>&) override {
    if (heard) heard(name);
  }
};

// A form holding one list at its top-left corner, ten rows of 17 high,
// and a log of the list's events.
struct ListForm {
  UiDriver ui;
  HearingForm form;
  cwVListNew& list = form.Children().Add<cwVListNew>("lst");
  std::vector<std::string> events;
  std::vector<int> drawn;

  explicit ListForm(int rows, double width = 200) {
    form.Resize(400, 300);
    list.Move(0, 0, width, 3 + 17 * 10);
    list.setListCount(rows);
    list.Click = [this] { events.push_back("Click " + std::to_string(list.ListIndex())); };
    list.ChangeListIndex = [this] { events.push_back("Change"); };
    list.DeleteKeyPressed = [this] { events.push_back("Delete"); };
    list.MouseUpClick = [this] { events.push_back("Up"); };
    list.DblClick = [this] { events.push_back("Dbl " + std::to_string(list.ListIndex())); };
    list.OwnerDrawItem = [this](int index, DrawingContext&, double, double, double) {
      drawn.push_back(index);
    };
    form.Show();
    ui.Root().DoEvents();
    list.SetFocus();
  }
  void Mouse(UiEvent::Type type, double x, double y, int button = Button::Left, int shift = 0) {
    ui.Backend().Push({type, &form, button, shift, 0, x, y});
    ui.Root().DoEvents();
  }
  // A click on a row's middle, 40 units in.
  void ClickRow(int row, int shift = 0) {
    const double y = 2 + (row - list.ScrollIndex()) * 17 + 8;
    Mouse(UiEvent::Type::MouseDown, 40, y, Button::Left, shift);
    Mouse(UiEvent::Type::MouseUp, 40, y, Button::Left, shift);
  }
  void Key(int code, int shift = 0) { ui.Press(form, code, shift); }
  void Wait(double ms) {
    ui.Backend().AdvanceMs(ms);
    ui.Root().DoEvents();
  }
};

}  // namespace

TEST(VList, ValuesOutsideTheirRangeAreHeldOrIgnored) {
  ListForm f(5);
  cwVListNew& l = f.list;
  l.setRowHeight(0);
  EXPECT_EQ(l.RowHeight(), 1);
  l.setRowHeight(500);
  EXPECT_EQ(l.RowHeight(), 300);
  l.setRowHeight(17);

  l.setListIndex(10);
  EXPECT_EQ(l.ListIndex(), 4);
  l.setListIndex(-5);
  EXPECT_EQ(l.ListIndex(), 4);
  l.setListIndex(4);  // no change, no Click
  EXPECT_EQ(f.events, (std::vector<std::string>{"Click 4"}));
  l.setListIndex(-1);
  EXPECT_EQ(l.ListIndex(), -1);

  // Fewer rows than the index: the index follows, and so do the selection bits.
  l.setMultiSelect(2);
  l.setSelected(4, true);
  l.setListIndex(3);
  l.setListCount(2);
  EXPECT_EQ(l.ListIndex(), 1);
  l.setListCount(5);
  EXPECT_FALSE(l.Selected(4));
  l.setSelected(7, true);  // past the end: ignored
  EXPECT_TRUE(l.GetSelections().empty());

  l.setListCount(100);
  l.setScrollIndex(-3);
  EXPECT_EQ(l.ScrollIndex(), 0);
  l.setScrollIndex(1000000);
  EXPECT_EQ(l.ScrollIndex(), 90);  // 100 rows, 10 shown
}

TEST(VList, AnEmptyListTakesNoRowFromKeysOrTheMouse) {
  ListForm f(0);
  f.list.setMultiSelect(2);
  for (int key : {Key::Down, Key::End, Key::PageDown, Key::Home, Key::Delete}) f.Key(key);
  f.Key('A', Shift::Ctrl);
  f.ClickRow(0);
  EXPECT_EQ(f.list.ListIndex(), -1);
  EXPECT_TRUE(f.list.GetSelections().empty());
  // The release over the list is told, but no row change and no Delete.
  EXPECT_EQ(f.events, (std::vector<std::string>{"Up"}));
}

TEST(VList, KeysMoveTheCurrentRowAndTellItOnce) {
  ListForm f(100);
  cwVListNew& l = f.list;
  l.setListIndex(0);
  f.events.clear();
  f.Key(Key::Down);
  f.Key(Key::PageDown);
  EXPECT_EQ(l.ListIndex(), 11);
  EXPECT_EQ(l.ScrollIndex(), 2);  // row 11 is the last of the ten shown
  f.Key(Key::End);
  EXPECT_EQ(l.ListIndex(), 99);
  EXPECT_EQ(l.ScrollIndex(), 90);
  f.Key(Key::Down);  // nowhere to go: nothing told
  f.Key(Key::PageUp);
  EXPECT_EQ(l.ListIndex(), 89);
  f.Key(Key::Home);
  f.Key(Key::Left);
  EXPECT_EQ(l.ListIndex(), 0);
  EXPECT_EQ(l.ScrollIndex(), 0);
  EXPECT_EQ(f.events, (std::vector<std::string>{"Change", "Click 1", "Change", "Click 11", "Change",
                                                "Click 99", "Change", "Click 89", "Change", "Click 0"}));
  f.Key(Key::Right);
  EXPECT_EQ(l.ListIndex(), 1);
  l.LeftRightKeys = false;
  f.Key(Key::Right);
  EXPECT_EQ(l.ListIndex(), 1);

  // Ctrl+A selects every row only where more than one row can be selected.
  f.Key('A', Shift::Ctrl);
  EXPECT_EQ(l.GetSelections(), std::vector<int>{1});
  l.setMultiSelect(1);
  f.events.clear();
  f.Key('A', Shift::Ctrl);
  EXPECT_EQ(l.GetSelections().size(), 100u);
  EXPECT_EQ(l.ListIndex(), 1);
  EXPECT_EQ(f.events, std::vector<std::string>{"Change"});

  // Delete is told when the key comes up, once.
  f.events.clear();
  f.ui.Backend().Push({UiEvent::Type::KeyDown, &f.form, 0, 0, Key::Delete, 0, 0});
  f.ui.Root().DoEvents();
  EXPECT_TRUE(f.events.empty());
  f.ui.Backend().Push({UiEvent::Type::KeyUp, &f.form, 0, 0, Key::Delete, 0, 0});
  f.ui.Root().DoEvents();
  EXPECT_EQ(f.events, std::vector<std::string>{"Delete"});

  // A list shorter than a page goes to its ends.
  ListForm s(6);
  s.list.setListIndex(2);
  s.Key(Key::PageDown);
  EXPECT_EQ(s.list.ListIndex(), 5);
  s.Key(Key::PageUp);
  EXPECT_EQ(s.list.ListIndex(), 0);
}

TEST(VList, ClicksToggleRangesAndKeepADraggableSelectionUntilTheRelease) {
  ListForm f(50);
  cwVListNew& l = f.list;
  l.setMultiSelect(1);
  f.ClickRow(3);
  f.ClickRow(5);
  f.ClickRow(3);
  EXPECT_EQ(l.GetSelections(), std::vector<int>{5});
  // A selected row that may be dragged toggles only when the button comes up.
  l.AllowDrag = true;
  f.Mouse(UiEvent::Type::MouseDown, 40, 2 + 5 * 17 + 8);
  EXPECT_TRUE(l.Selected(5));
  f.Mouse(UiEvent::Type::MouseUp, 40, 2 + 5 * 17 + 8);
  EXPECT_FALSE(l.Selected(5));

  l.setMultiSelect(2);
  l.AllowDrag = false;
  l.ClearSelections();
  f.ClickRow(2);
  f.ClickRow(5, Shift::ShiftKey);
  EXPECT_EQ(l.GetSelections(), (std::vector<int>{2, 3, 4, 5}));
  f.ClickRow(3, Shift::Ctrl);
  EXPECT_EQ(l.GetSelections(), (std::vector<int>{2, 4, 5}));
  f.ClickRow(8, Shift::Ctrl);
  EXPECT_EQ(l.GetSelections(), (std::vector<int>{2, 4, 5, 8}));
  // A plain click starts again.
  f.ClickRow(7);
  EXPECT_EQ(l.GetSelections(), std::vector<int>{7});

  // The range shows while it is being made, and the current row follows
  // the mouse without a Click until the release.
  f.events.clear();
  f.Mouse(UiEvent::Type::MouseDown, 40, 2 + 1 * 17 + 8);
  f.Mouse(UiEvent::Type::MouseMove, 40, 2 + 4 * 17 + 8);
  EXPECT_TRUE(l.Selected(3));
  EXPECT_FALSE(l.Selected(7));
  EXPECT_EQ(l.ListIndex(), 4);
  EXPECT_EQ(f.events, std::vector<std::string>{"Click 1"});
  f.Mouse(UiEvent::Type::MouseUp, 40, 2 + 4 * 17 + 8);
  EXPECT_EQ(l.GetSelections(), (std::vector<int>{1, 2, 3, 4}));
  EXPECT_EQ(f.events, (std::vector<std::string>{"Click 1", "Click 4", "Up"}));

  // A row pressed and dragged at once is dragged selected, alone.
  l.AllowDrag = true;
  std::vector<int> dragged;
  l.DragStartSrc = [&] { dragged = l.GetSelections(); };
  f.Mouse(UiEvent::Type::MouseDown, 40, 2 + 6 * 17 + 8);
  f.Mouse(UiEvent::Type::MouseMove, 40, 2 + 6 * 17 + 14);
  EXPECT_EQ(dragged, std::vector<int>{6});
  EXPECT_EQ(l.ListIndex(), 6);
  f.Mouse(UiEvent::Type::MouseUp, 40, 2 + 6 * 17 + 14);
  EXPECT_EQ(l.GetSelections(), std::vector<int>{6});

  // A click beside the rows clears the current row only when asked to.
  ListForm g(3);
  g.ClickRow(1);
  g.ClickRow(6);
  EXPECT_EQ(g.list.ListIndex(), 1);
  g.list.DeselectOutsideClick = true;
  g.ClickRow(6);
  EXPECT_EQ(g.list.ListIndex(), -1);

  // A second press on the same row is a double click.
  g.events.clear();
  g.Mouse(UiEvent::Type::MouseDown, 40, 2 + 17 + 8);
  g.Mouse(UiEvent::Type::MouseUp, 40, 2 + 17 + 8);
  g.Mouse(UiEvent::Type::DblClick, 40, 2 + 17 + 8);
  EXPECT_EQ(g.events.back(), "Dbl 1");
}

TEST(VList, AMillionRowsCostWhatTheVisibleRowsCost) {
  ListForm f(1000000);
  cwVListNew& l = f.list;
  l.setMultiSelect(2);
  EXPECT_EQ(l.SelectionBytes(), 125000u);
  f.Key('A', Shift::Ctrl);
  EXPECT_EQ(l.SelectionBytes(), 125000u);
  EXPECT_TRUE(l.Selected(999999));
  f.drawn.clear();
  l.Refresh();
  f.ui.Screenshot(f.form);
  // Ten whole rows and the one cut off below them.
  EXPECT_EQ(f.drawn, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  f.Key(Key::End);
  f.drawn.clear();
  l.Refresh();
  f.ui.Screenshot(f.form);
  EXPECT_EQ(f.drawn.front(), 999990);
  EXPECT_EQ(f.drawn.back(), 999999);
  EXPECT_EQ(l.ScrollIndex(), 999990);
  // The bar counts lines, so the end of the list is its end.
  EXPECT_EQ(l.VBar().Max, 999990);
  EXPECT_EQ(l.VBar().Value(), 999990);
}

TEST(VList, AnOwnerThatLeavesItsContextUpsetDoesNotMoveTheNextRow) {
  ListForm f(4);
  f.list.setShowSelection(false);
  f.list.setShowHoverBar(false);
  // Each row draws a dark square at its own corner, and then moves and
  // clips the context and leaves it so.
  f.list.OwnerDrawItem = [](int, DrawingContext& cc, double, double, double) {
    cc.SetSourceColor(0x102030);
    cc.Rectangle(0, 0, 6, 6);
    cc.Fill();
    cc.Save();
    cc.Translate(100, 3);
    cc.Rectangle(0, 0, 1, 1);
    cc.Clip();
  };
  const SurfacePtr shot = f.ui.Screenshot(f.form);
  for (int row = 0; row < 4; ++row) {
    const Bgra dark = PixelAt(shot, 1 + 2, 2 + row * 17 + 2);
    EXPECT_EQ(dark.r, 0x30) << "row " << row;
    EXPECT_EQ(dark.b, 0x10) << "row " << row;
  }
}

TEST(VList, AnImageViewGoesByLinesOfCells) {
  ListForm f(30, 3 + 4 * 52 + cwScrollable::BarSize());  // four cells of 50 beside the bar
  cwVListNew& l = f.list;
  l.setImageView(true);
  l.setColWidth(50);
  l.setRowHeight(40);
  l.LayoutNow();
  EXPECT_EQ(l.CellsPerLine(), 4);
  EXPECT_EQ(l.VisibleRows(), 4);
  EXPECT_EQ(l.MaxScrollIndex(), 4);  // 8 lines, 4 shown
  l.setListIndex(2);
  f.Key(Key::Down);
  EXPECT_EQ(l.ListIndex(), 6);
  f.Key(Key::Up);
  f.Key(Key::Up);
  EXPECT_EQ(l.ListIndex(), 0);
  f.Key(Key::PageDown);
  EXPECT_EQ(l.ListIndex(), 16);
  EXPECT_EQ(l.ScrollIndex(), 1);
  // Cells by the mouse; beside the last cell of a line there is none.
  EXPECT_EQ(l.GetListIndexFromMouseXY(52 * 2 + 10, 2 + 40 + 5), 4 + 4 + 2);
  EXPECT_EQ(l.GetListIndexFromMouseXY(52 * 4 + 1, 10), -1);
  // Past the last cell of the last line: nothing is chosen.
  l.setScrollIndex(4);
  f.Mouse(UiEvent::Type::MouseDown, 1 + 52 * 3 + 20, 2 + 3 * 40 + 20);
  f.Mouse(UiEvent::Type::MouseUp, 1 + 52 * 3 + 20, 2 + 3 * 40 + 20);
  EXPECT_EQ(l.ListIndex(), 16);
}

TEST(VList, TheButtonHeldOutsideScrollsFasterTheFurtherItIs) {
  ListForm f(100);
  cwVListNew& l = f.list;
  l.setMultiSelect(2);
  f.Mouse(UiEvent::Type::MouseDown, 40, 2 + 17 * 2 + 8);
  // Ten below the ten rows: every 200 ms a line.
  f.Mouse(UiEvent::Type::MouseMove, 40, 170 + 10);
  EXPECT_EQ(l.AutoScrollTag(), "Down");
  EXPECT_EQ(l.AutoScrollInterval(), 200);
  f.Wait(199);
  EXPECT_EQ(l.ScrollIndex(), 0);
  f.Wait(1);
  EXPECT_EQ(l.ScrollIndex(), 1);
  EXPECT_EQ(l.ListIndex(), 10);  // the range reaches the row that came into view
  f.Mouse(UiEvent::Type::MouseMove, 40, 170 + 30);
  EXPECT_EQ(l.AutoScrollInterval(), 10);
  f.Mouse(UiEvent::Type::MouseMove, 40, 170 + 80);
  EXPECT_EQ(l.AutoScrollInterval(), 10);
  // Above the list: "Up", slower nearer.
  f.Mouse(UiEvent::Type::MouseMove, 40, -5);
  EXPECT_EQ(l.AutoScrollTag(), "Up");
  EXPECT_EQ(l.AutoScrollInterval(), 250);
  // Back inside, it stops; the range runs from the press to the last row reached.
  f.Mouse(UiEvent::Type::MouseMove, 40, 2 + 17 * 3 + 8);
  EXPECT_EQ(l.AutoScrollTag(), "");
  f.Wait(1000);
  EXPECT_EQ(l.ScrollIndex(), 1);
  f.Mouse(UiEvent::Type::MouseUp, 40, 2 + 17 * 3 + 8);
  EXPECT_EQ(l.GetSelections().front(), 2);
  EXPECT_EQ(l.GetSelections().back(), 4);
}

TEST(VList, ColumnsAreWidenedMovedAndSortedFromTheHeader) {
  ListForm f(20, 300);
  cwVListNew& l = f.list;
  l.setHeaderHeight(20);
  l.ColumnDefaultWidth = 80;
  l.setColumnCount(3);
  l.AllowColResize = true;
  std::vector<int> clicked;
  l.LayoutNow();
  const double x0 = 1;  // the inner area's left edge
  // Drag the edge after the first column from 80 to 110.
  f.Mouse(UiEvent::Type::MouseDown, x0 + 80, 10);
  f.Mouse(UiEvent::Type::MouseMove, x0 + 110, 10);
  f.Mouse(UiEvent::Type::MouseUp, x0 + 110, 10);
  EXPECT_EQ(l.ColumnWidth(0), 110);
  EXPECT_EQ(l.GetColumnIndexFromMouseX(150), 1);
  // Drag the third column's caption onto the first place.
  f.Mouse(UiEvent::Type::MouseDown, x0 + 230, 10);
  f.Mouse(UiEvent::Type::MouseMove, x0 + 20, 10);
  f.Mouse(UiEvent::Type::MouseUp, x0 + 20, 10);
  EXPECT_EQ(l.ColMapIndex(0), 2);
  EXPECT_EQ(l.ColMapIndex(1), 0);
  EXPECT_EQ(l.ColMapIndex(2), 1);
  EXPECT_EQ(l.GetColumnIndexFromMouseX(10), 2);
  // A click on a caption picks the column and turns its sort.
  f.Mouse(UiEvent::Type::MouseDown, x0 + 100, 10);
  f.Mouse(UiEvent::Type::MouseUp, x0 + 100, 10);
  EXPECT_EQ(l.ColumnIndex(), 0);
  EXPECT_EQ(l.SortState(0), 1);
  f.Mouse(UiEvent::Type::MouseDown, x0 + 100, 10);
  f.Mouse(UiEvent::Type::MouseUp, x0 + 100, 10);
  EXPECT_EQ(l.SortState(0), 2);
  l.ResetSortStates();
  EXPECT_EQ(l.SortState(0), 0);
  EXPECT_TRUE(l.GetSelections().empty());
  EXPECT_EQ(l.ListIndex(), -1);  // the header picks no row
  // Columns wider than the list scroll it sideways; rows keep their lines.
  l.setColumnWidth(1, 400);
  l.LayoutNow();
  EXPECT_TRUE(l.HBarShown());
  EXPECT_EQ(l.VisibleRows(), (3 + 170 - 3 - 20 - 15) / 17);
  EXPECT_EQ(l.VisibleCols(), 3);
  l.ScrollTo(250, l.ScrollY());  // past the first two places
  EXPECT_EQ(l.VisibleCols(), 1);
  EXPECT_EQ(l.GetColumnIndexFromMouseX(260), 1);
}

TEST(VList, TheWheelAndTheBarMoveByWholeLines) {
  ListForm f(100);
  cwVListNew& l = f.list;
  int told = 0;
  f.form.heard = [&told](const std::string& name) { told += name == "ScrollIndexChange"; };
  f.ui.Wheel(f.form, -1, 40, 40);
  EXPECT_EQ(l.ScrollIndex(), 3);
  EXPECT_EQ(l.ScrollY(), 3 * 17);
  EXPECT_EQ(told, 1);
  l.VBar().setValue(41);
  EXPECT_EQ(l.ScrollIndex(), 41);
  EXPECT_EQ(l.ScrollY(), 41 * 17);
  // A taller row keeps the first line shown.
  l.setRowHeight(20);
  EXPECT_EQ(l.ScrollIndex(), 41);
  EXPECT_EQ(l.ScrollY(), 41 * 20);
  l.setRowHeight(5);  // the old offset is past the new end
  EXPECT_EQ(l.ScrollIndex(), 41);
  EXPECT_EQ(l.ScrollY(), 41 * 5);
  // The row selector's edge sizes every line.
  ListForm g(10);
  g.list.setRowSelectorWidth(12);
  g.list.AllowRowResize = true;
  g.Mouse(UiEvent::Type::MouseDown, 6, 2 + 17);
  g.Mouse(UiEvent::Type::MouseMove, 6, 2 + 30);
  g.Mouse(UiEvent::Type::MouseUp, 6, 2 + 30);
  EXPECT_EQ(g.list.RowHeight(), 30);
  EXPECT_EQ(g.list.ListIndex(), -1);
}
