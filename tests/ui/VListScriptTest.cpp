// The lists of the demonstration form driven by scripts, as a user drives
// them: 100,000 rows and the grid of the library's icons.

#include <gtest/gtest.h>

#include "platform/DrawingSurface.h"
#include "tests/support/Golden.h"
#include "tests/support/ScriptRun.h"
#include "tests/support/StartedApp.h"

using namespace qds;
using Json = nlohmann::json;

namespace {

// The studio's folder with its library unpacked, so the grid has icons.
struct Library {
  StartedApp studio;
  Library() { EXPECT_TRUE(studio.Start()); }
  std::string Folder() const { return studio.folder.Folder(); }
};

// lstDemo's rows are 17 high from 2 below its top; the middle of row r,
// 40 in from its left.
std::string Row(int r) {
  return "at 40 " + std::to_string(2 + 17 * r + 8);
}

}  // namespace

TEST(VListScript, RangesCtrlAndTheDeferredClearingOfADraggedSelection) {
  Library lib;
  TempDir dir;
  const ScriptRun r = RunDemoScript(dir, R"(click lstDemo )" + Row(2) + R"(
click lstDemo )" + Row(5) + R"( shift
expect lstDemo selected [2,3,4,5]
click lstDemo )" + Row(3) + R"( ctrl
expect lstDemo selected [2,4,5]
# a press on a selected row keeps the others until the release
press lstDemo )" + Row(4) + R"(
expect lstDemo selected [2,4,5]
release lstDemo )" + Row(4) + R"(
expect lstDemo selected [4]
expect lstDemo listIndex 4
# four units each way is still a click; five starts a drag of the whole selection
click lstDemo )" + Row(1) + R"(
click lstDemo )" + Row(3) + R"( shift
press lstDemo at 40 44
move lstDemo at 44 48
expect sbStatus caption Clicks: 0
move lstDemo at 36 40
expect sbStatus caption Clicks: 0
move lstDemo at 40 49
expect sbStatus caption Dragging 3 rows of lstDemo
expect lstDemo selected [1,2,3]
release grdIcons row 5
expect sbStatus caption Dropped 3 rows of lstDemo on grdIcons at row 5
expect lstDemo selected [1,2,3]
key End
expect lstDemo listIndex 99999
dump end.json
)",
                                    lib.Folder());
  ASSERT_EQ(r.code, 0) << r.err;
  const Json list = WidgetOf(LoadDump(dir, "end.json"), "DemoWidgetsForm", "pnlLists/lstDemo");
  EXPECT_EQ(list["listCount"], 100000);
  EXPECT_EQ(list["scrollIndex"], 100000 - 6);  // six whole rows show
}

TEST(VListScript, TheIconGridHoldsTheLibraryInLinesOfFour) {
  Library lib;
  const long long icons = lib.studio.Count("Select Count(*) From Images");
  TempDir dir;
  const ScriptRun r = RunDemoScript(dir, R"(click grdIcons row 2
key Down
expect grdIcons listIndex 6
key PageDown
expect grdIcons listIndex 18
expect grdIcons scrollIndex 2
# Shift reaches from the row the keys went to; the earlier row stays
click grdIcons row 9 shift
expect grdIcons selected [2,9,10,11,12,13,14,15,16,17,18]
screenshot grid.png
wheel grdIcons -1
expect grdIcons scrollIndex 5
key ctrl+a
key Delete
dump all.json
)",
                                    lib.Folder());
  ASSERT_EQ(r.code, 0) << r.err;
  const Json dump = LoadDump(dir, "all.json");
  const Json grid = WidgetOf(dump, "DemoWidgetsForm", "pnlLists/grdIcons");
  EXPECT_EQ(grid["listCount"], icons);
  EXPECT_EQ(grid["selected"].size(), static_cast<std::size_t>(icons));
  EXPECT_EQ(WidgetOf(dump, "DemoWidgetsForm", "sbStatus")["caption"],
            "Delete: " + std::to_string(icons) + " rows of grdIcons");
  // The selected cells, and the current one outlined, among the icons.
  EXPECT_TRUE(MatchesGolden(DrawingSurface::FromPngFile(dir / "grid.png"), "demo_lists_library"));
}

TEST(VListScript, TheButtonHeldBelowTheRowsScrollsEvery200MsAt10AndEvery10MsAt30) {
  Library lib;
  TempDir dir;
  // Six whole rows show (102 units); the mouse goes 10, then 30, below them.
  const ScriptRun r = RunDemoScript(dir, R"(click chkDrag
press lstDemo )" + Row(2) + R"(
move lstDemo at 40 112
wait 190
expect lstDemo scrollIndex 0
wait 20
expect lstDemo scrollIndex 1
wait 200
expect lstDemo scrollIndex 2
move lstDemo at 40 132
wait 105
expect lstDemo scrollIndex 12
release lstDemo at 40 132
expect lstDemo listIndex 17
dump range.json
)",
                                    lib.Folder());
  ASSERT_EQ(r.code, 0) << r.err;
  const Json list = WidgetOf(LoadDump(dir, "range.json"), "DemoWidgetsForm", "pnlLists/lstDemo");
  std::vector<int> expected;
  for (int i = 2; i <= 17; ++i) expected.push_back(i);
  EXPECT_EQ(list["selected"].get<std::vector<int>>(), expected);
}
