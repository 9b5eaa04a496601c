// The design view of the real studio, driven by scripts as a user works in
// it: icons gathered in the select view become the base layer, a shape and
// a text are added, the shape is moved by the mouse and the keys, the stack
// is reordered, hidden, undone and redone, copied and pasted, the design is
// saved as a template, emptied and loaded again, exported to a ".tpl" file,
// imported into a fresh studio, and both studios export the same pictures.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "platform/DbConnection.h"
#include "platform/DbRecordset.h"
#include "platform/DrawingSurface.h"
#include "platform/Files.h"
#include "platform/JsonBag.h"
#include "tests/support/Golden.h"
#include "tests/support/ScriptRun.h"
#include "tests/support/StartedApp.h"

using namespace qds;
using Json = nlohmann::json;
using Keys = std::vector<std::string>;

namespace {

// The keys of the layer list's rows in a dump, top first.
Keys RowKeys(const Json& dump) {
  Keys keys;
  const Json list = WidgetOf(dump, "cfMain", "IconDesignView/pnlLeft2/vlstLayers");
  for (const Json& item : list["items"]) keys.push_back(item["key"]);
  return keys;
}

bool RowShown(const Json& dump, int row) {
  return WidgetOf(dump, "cfMain", "IconDesignView/pnlLeft2/vlstLayers")["items"][row]["checked"];
}

// The library's Flat icons whose names begin with "lock", in the grid's order.
std::vector<long long> Locks(DbConnection& cnn) {
  std::vector<long long> ids;
  DbRecordset rs = cnn.Query(
      "Select ID From Images Where Styles_ID = 4 And (Name like '%lock%' Or Synonyms like '%lock%') "
      "Order By Name");
  for (; !rs.Eof(); rs.MoveNext()) ids.push_back(rs.Fields(0).AsLong());
  return ids;
}

// Runs the studio's command line on `appDir`; what it said, after its exit code.
std::string Cli(const std::string& appDir, const std::string& args, const TempDir& dir) {
  const std::string command = "'" + std::string(QDS_APP_EXE) + "' --app-dir '" + appDir + "' " + args +
                              " > '" + dir.Path() + "cli.txt' 2>&1";
  const int status = std::system(command.c_str());
  return std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1) + " " + ReadAllText(dir / "cli.txt");
}

}  // namespace

TEST(DesignViewScript, AUserBuildsMovesUndoesSavesAndMovesADesignToAnotherStudio) {
  StartedApp studio;
  ASSERT_TRUE(studio.Start());
  DbConnection& cnn = studio.app->Cnn;
  const std::vector<long long> locks = Locks(cnn);
  ASSERT_GE(locks.size(), 2u);
  TempDir dir;
  // The canvas is 495 units wide and its drawing 415: the middle is at
  // 247.5, and 41.5 units are a tenth of the drawing.
  const ScriptRun r = RunStudioScript(dir, R"(click pnlTabBar/TabIconSelectView
click DropStyles
click DropStyles item 4
click optSearchStyle
click txtSearch
type lock
key Return
dblclick vlstIcons row 0
dblclick vlstIcons row 1
click pnlTabBar/TabIconDesignView
expect vlstLayers listCount 1
expect Canvas text 415
click tbarCanvas2 item Shapes
expect vlstLayers listIndex 0
click sldZoom item value
key ctrl+a
type 50
key Return
expect sldZoom value 50
drag Canvas at 247.5 247.5 to Canvas at 289 268.25
expect Canvas listIndex 0
key Right
key shift+Down
dump moved.json
wait 1000
click tbarCanvas2 item Text
expect vlstLayers listIndex 1
click tbarLayers item ArrowDown
expect vlstLayers listIndex 2
dump reordered.json
click vlstLayers row 0
click vlstLayers at 229 52
dump hidden.json
key ctrl+z
key ctrl+z
dump undone.json
key ctrl+y
key ctrl+y
dump redone.json
click vlstLayers at 229 52
click vlstLayers row 0
key ctrl+c
wait 1000
key ctrl+v
expect vlstLayers listCount 4
dump pasted.json
click tbarLayers item Minus
click ToolWindow/ToolWidget/btnYes
expect vlstLayers listCount 3
click tbarLayers item Save
click ToolWindow/ToolWidget/txtName
type Locks 'n' shapes
click ToolWindow/ToolWidget/btnSave
click vlstLayers row 0
click tbarLayers item DeleteAll
click ToolWindow/ToolWidget/btnYes
expect vlstLayers listCount 0
click tbarLayers item Open
dblclick ToolWindow/ToolWidget/vlstTemplates row 0
expect vlstLayers listCount 3
expect vlstLayers listIndex 0
screenshot design_view.png
click tbarLayers item Open
click ToolWindow/ToolWidget/vlstTemplates row 0
click ToolWindow/ToolWidget/btnExport
click ToolWindow/ToolWidget/txtFolder
key ctrl+a
type )" + dir.Path() + R"(
click ToolWindow/ToolWidget/btnExport
click ToolWindow/ToolWidget/btnClose
)",
                                      studio.folder.Folder());
  ASSERT_EQ(r.code, 0) << r.err;

  // The shape went a tenth of the drawing right and a twentieth down at
  // half size, then one step right and five down.
  const Json moved = LoadDump(dir, "moved.json");
  ASSERT_EQ(RowKeys(moved).size(), 2u);
  const std::string shape = RowKeys(moved)[0];
  EXPECT_NE(shape.find("Shapes"), std::string::npos);

  const Json reordered = LoadDump(dir, "reordered.json");
  const Keys order = RowKeys(reordered);
  ASSERT_EQ(order.size(), 3u);
  const std::string text = order[2];
  EXPECT_EQ(order, (Keys{shape, "_BaseIco", text}));
  EXPECT_NE(text.find("Text"), std::string::npos);
  EXPECT_FALSE(RowShown(LoadDump(dir, "hidden.json"), 0));
  const Json undone = LoadDump(dir, "undone.json");
  EXPECT_EQ(RowKeys(undone), (Keys{shape, text, "_BaseIco"}));
  EXPECT_TRUE(RowShown(undone, 0));
  const Json redone = LoadDump(dir, "redone.json");
  EXPECT_EQ(RowKeys(redone), (Keys{shape, "_BaseIco", text}));
  EXPECT_FALSE(RowShown(redone, 0));
  const Keys pasted = RowKeys(LoadDump(dir, "pasted.json"));
  ASSERT_EQ(pasted.size(), 4u);
  EXPECT_NE(pasted[0], shape);
  EXPECT_NE(pasted[0].find("Shapes"), std::string::npos);
  EXPECT_EQ(pasted[1], shape);

  // The template holds the three layers in their order, the shape where the
  // mouse and the keys put it.
  DbRecordset design = cnn.Query("Select ID From Layer Where Name = 'Locks ''n'' shapes'");
  ASSERT_FALSE(design.Eof());
  DbRecordset entries =
      cnn.Query("Select Content From LayerEntries Where Layer_ID = " + design.Fields(0).AsString() +
                " Order By OrdIndex");
  std::vector<Json> contents;
  for (; !entries.Eof(); entries.MoveNext()) contents.push_back(Json::parse(entries.Fields(0).AsString()));
  ASSERT_EQ(contents.size(), 3u);
  EXPECT_EQ(contents[0]["Key"], shape);
  EXPECT_EQ(contents[1]["Key"], "_BaseIco");
  const Json settings = Json::parse(contents[0]["Settings"].get<std::string>());
  EXPECT_NEAR(settings["OffsetX"].get<double>(), 22, 0.01) << settings.dump();
  EXPECT_NEAR(settings["OffsetY"].get<double>(), 20, 0.01) << settings.dump();
  EXPECT_EQ(settings["ZoomPercent"].get<double>(), 50);

  // The ".tpl" file goes into a new studio, and both export the same pictures.
  const std::string tpl = dir / "Locks 'n' shapes.tpl";
  ASSERT_TRUE(FileExists(tpl));
  StartedApp fresh;
  ASSERT_TRUE(fresh.Start());
  TempDir second;
  const ScriptRun imported = RunStudioScript(second, R"(click pnlTabBar/TabIconDesignView
click tbarLayers item Open
click ToolWindow/ToolWidget/btnImport
click ToolWindow/ToolWidget/txtFile
type )" + tpl + R"(
click ToolWindow/ToolWidget/btnImport
expect ToolWindow/ToolWidget/lblCaption caption The template has been imported.
click ToolWindow/ToolWidget/btnOk
click ToolWindow/ToolWidget/btnLoad
expect vlstLayers listCount 3
)",
                                             fresh.folder.Folder());
  ASSERT_EQ(imported.code, 0) << imported.err;
  const std::string ids = std::to_string(locks[0]) + "," + std::to_string(locks[1]);
  for (const auto* app : {&studio, &fresh}) {
    const std::string out = CreateDirectories((app == &studio ? dir : second) / "png");
    const std::string said =
        Cli(app->folder.Folder(),
            "export --design \"Locks 'n' shapes\" --out '" + out + "' --format PNG --size 96x96 --ids " + ids,
            dir);
    ASSERT_EQ(said.substr(0, 2), "0 ") << said;
  }
  const std::vector<std::string> files = ListFolder(dir / "png", "*.png");
  ASSERT_EQ(files.size(), 2u);
  for (const std::string& name : files)
    EXPECT_EQ(ReadAllBytes(dir / ("png/" + name)), ReadAllBytes(second / ("png/" + name))) << name;

  const SurfacePtr shot = DrawingSurface::FromPngFile(dir / "design_view.png");
  ASSERT_TRUE(shot);
  EXPECT_TRUE(MatchesGolden(shot, "design_view"));
}
