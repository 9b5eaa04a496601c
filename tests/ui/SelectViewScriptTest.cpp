// The select view of the real studio, driven by a script as a user works
// in it: a style and a theme, a search, a range taken with Shift and added
// by dragging, icons added by double click, removed and added again, one
// renamed with a quote in its name and another deleted after the question;
// each step checked in the dump and in the library.

#include <gtest/gtest.h>

#include "platform/DbConnection.h"
#include "platform/DbRecordset.h"
#include "platform/DrawingSurface.h"
#include "tests/support/Golden.h"
#include "tests/support/ScriptRun.h"
#include "tests/support/StartedApp.h"

using namespace qds;
using Json = nlohmann::json;

TEST(SelectViewScript, AUserGathersRenamesAndDeletesIconsOfTheLibrary) {
  StartedApp studio;
  ASSERT_TRUE(studio.Start());
  DbConnection& cnn = studio.app->Cnn;
  // Slimline icons with "cloud" in their names, in the order of the grid.
  DbRecordset clouds = cnn.Query(
      "Select ID, Name From Images Where Styles_ID = 2 And (Name like '%cloud%' Or Synonyms like '%cloud%') "
      "Order By Name");
  std::vector<std::pair<long long, std::string>> found;
  for (; !clouds.Eof(); clouds.MoveNext())
    found.emplace_back(clouds.Fields(0).AsLong(), clouds.Fields(1).AsString());
  ASSERT_EQ(found.size(), 17u);
  const long long renamed = found[6].first, deleted = found[7].first;
  const long long slimline = studio.Count("Select Count(*) From Images Where Styles_ID = 2");
  TempDir dir;
  const ScriptRun r = RunStudioScript(dir, R"(click pnlTabBar/TabIconSelectView
click DropStyles
click DropStyles item 2
click DropThemes
click DropThemes item 20
expect vlstIcons listCount 41
expect Statusbar caption 41 Icons  Selection: 0 Icons
click optSearchStyle
click txtSearch
type cloud
key Return
expect vlstIcons listCount 17
click vlstIcons row 0
click vlstIcons row 3 shift
expect vlstIcons selected [0,1,2,3]
drag vlstIcons row 1 to vlstSelectedIcons
expect vlstSelectedIcons listCount 4
screenshot select_view.png
dblclick vlstIcons row 5
dblclick vlstIcons row 5
expect vlstSelectedIcons listCount 5
click vlstSelectedIcons row 0
click tbarSelectedIcons item Minus
expect vlstSelectedIcons listCount 4
dblclick vlstIcons row 0
expect vlstSelectedIcons listCount 5
click vlstIcons row 6
expect btnRename enabled true
click btnRename
key ctrl+a
key Delete
click ToolWindow/ToolWidget/btnOk
dump blank.json
key Return
key ctrl+a
type Cloud's edge
click ToolWindow/ToolWidget/btnOk
click vlstIcons row 7
click btnDeleteIcons
expect ToolWindow/ToolWidget/lblCaption caption Permanently delete the selected icons from the library?
click ToolWindow/ToolWidget/btnYes
expect vlstIcons listCount 16
expect Statusbar caption 16 Icons  Selection: 5 Icons
)",
                                      studio.folder.Folder());
  ASSERT_EQ(r.code, 0) << r.err;
  // The blank name was refused with its message, over the rename dialog.
  const Json blank = LoadDump(dir, "blank.json");
  ASSERT_EQ(blank["forms"].size(), 3u) << blank.dump();
  const Json said = WidgetOf(blank, "ToolWindows", "ToolWindow/ToolWidget/lblCaption");
  EXPECT_EQ(said["caption"], "Please enter a name for the icon.") << blank["forms"][2].dump();

  // The library holds the new name with its quote and no longer the deleted icon.
  EXPECT_EQ(cnn.Query("Select Name From Images Where ID = " + std::to_string(renamed)).Fields(0).AsString(),
            "Cloud's edge");
  EXPECT_EQ(cnn.Query("Select Count(*) From Images Where ID = " + std::to_string(deleted)).Fields(0).AsLong(),
            0);
  EXPECT_EQ(cnn.Query("Select Count(*) From Images Where Styles_ID = 2").Fields(0).AsLong(), slimline - 1);

  const SurfacePtr shot = DrawingSurface::FromPngFile(dir / "select_view.png");
  ASSERT_TRUE(shot);
  EXPECT_TRUE(MatchesGolden(shot, "select_view"));
}
