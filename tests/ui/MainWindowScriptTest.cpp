// The studio's main window driven by scripts, headless, as a user drives it:
// the first start, the views behind the tabs, the window's buttons, its
// place kept from one start to the next, and the language of its captions.

#include <gtest/gtest.h>

#include "app/cConfig.h"
#include "app/modDesktopEntry.h"
#include "platform/DbConnection.h"
#include "platform/DbRecordset.h"
#include "tests/support/ScriptRun.h"
#include "tests/support/StartedApp.h"

using namespace qds;
using Json = nlohmann::json;

namespace {

Json FormOf(const Json& dump, const std::string& name = "cfMain") {
  for (const Json& f : dump["forms"]) {
    if (f["name"] == name) return f;
  }
  return Json();
}

struct Rect {
  int x, y, w, h;
  bool operator==(const Rect&) const = default;
};
Rect RectOf(const Json& form) {
  return {form["x"].get<int>(), form["y"].get<int>(), form["width"].get<int>(), form["height"].get<int>()};
}
std::ostream& operator<<(std::ostream& out, const Rect& r) {
  return out << r.x << "," << r.y << " " << r.w << "x" << r.h;
}

// The headless screen is the backend's work area, 1920 x 1040; the window
// opens at 1200 x 760 units at the zoom of 1.25.
constexpr Rect kWorkArea{0, 0, 1920, 1040};
constexpr Rect kDefault{210, 45, 1500, 950};

}  // namespace

TEST(MainWindowScript, FirstStartWelcomesWritesTheMenuEntryAndOpensOnTheDesignView) {
  AppFolder app;
  TempDir dir;
  const std::string entry = dir.Path() + "xdg/applications/" + kDesktopEntryName;
  ScriptRun r = RunStudioScript(dir, R"(expect IconDesignView visible true
expect IconSelectView visible false
expect pnlTabBar/TabIconDesignView checked true
expect pnlTabBar/TabIconSelectView caption Icons
expect TitleBar/lblQuillaron caption Quillaron Design Studio
dump first.json
)",
                                app.Folder());
  ASSERT_EQ(r.code, 0) << r.err;
  const Json first = LoadDump(dir, "first.json");
  EXPECT_EQ(RectOf(FormOf(first)), kDefault);
  EXPECT_FALSE(FormOf(first, "cfWelcome").is_object()) << "the welcome window closes once the library is in";
  // The library was filled on the way.
  {
    DbConnection cnn = DbConnection::Open(app.Library(), "", DbOpenMode::Existing);
    EXPECT_GT(cnn.Query("Select Count(*) From Images").Fields(0).AsLong(), 3000);
    EXPECT_EQ(cnn.Query("Select Count(*) From TmpImageBlobs").Fields(0).AsLong(), 0);
  }
  // The menu entry starts this program on this folder.
  ASSERT_TRUE(FileExists(entry));
  const std::string text = ReadAllText(entry);
  EXPECT_NE(text.find("\nExec=" + std::string(QDS_APP_EXE) + " --app-dir \"" + app.Folder() + "\"\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("\nIcon=" + app.Folder() + "/DocAndImages/Quillaron.svg\n"), std::string::npos);

  // A later start goes straight to the window and leaves the menu alone.
  std::filesystem::remove(entry);
  r = RunStudioScript(dir, "expect IconDesignView visible true\n", app.Folder());
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_FALSE(FileExists(entry));
}

TEST(MainWindowScript, TabsSwitchViewsTheButtonsMaximiseAndRestoreAndTheMovedPlaceIsKept) {
  StartedApp studio;
  ASSERT_TRUE(studio.Start());
  TempDir dir;
  ScriptRun r = RunStudioScript(dir, R"(click pnlTabBar/TabIconSelectView
expect IconSelectView visible true
expect IconDesignView visible false
expect pnlTabBar/TabIconSelectView checked true
expect pnlTabBar/TabIconDesignView checked false
click pnlTabBar/TabIconHelpView
expect IconHelpView visible true
expect IconSelectView visible false
key alt+r
expect IconHelpView visible true
click TitleBar/FormButtons/btnMax
expect TitleBar/FormButtons/btnMax checked true
expect TitleBar/FormButtons/btnMax caption Restore
dump maximised.json
dblclick TitleBar/lblQuillaron
expect TitleBar/FormButtons/btnMax checked false
dump restored.json
drag TitleBar/lblQuillaron to TitleBar/lblVersion
dump moved.json
dblclick TitleBar/lblVersion
close
)",
                                studio.folder.Folder());
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(RectOf(FormOf(LoadDump(dir, "maximised.json"))), kWorkArea);
  EXPECT_EQ(RectOf(FormOf(LoadDump(dir, "restored.json"))), kDefault);
  const Json restored = LoadDump(dir, "restored.json");
  const Rect at = RectOf(FormOf(LoadDump(dir, "moved.json")));
  // The grabbed point stays under the mouse: the window went as far as the
  // mouse did, from the middle of the name to the middle of the version.
  const auto middle = [&](const char* path) {
    const Json w = WidgetOf(restored, "cfMain", path);
    return w["x"].get<double>() + w["width"].get<double>() / 2;
  };
  EXPECT_NEAR(at.x - kDefault.x, middle("TitleBar/lblVersion") - middle("TitleBar/lblQuillaron"), 1);
  EXPECT_GT(at.x, kDefault.x);
  EXPECT_EQ(at.y, kDefault.y);
  EXPECT_EQ(at.w, kDefault.w);

  // Closed maximised: the next start opens maximised, and restores to the
  // place it was moved to.
  r = RunStudioScript(dir, R"(dump again.json
click TitleBar/FormButtons/btnMax
dump again_restored.json
)",
                      studio.folder.Folder());
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(RectOf(FormOf(LoadDump(dir, "again.json"))), kWorkArea);
  EXPECT_EQ(RectOf(FormOf(LoadDump(dir, "again_restored.json"))), at);
}

TEST(MainWindowScript, ADamagedPlaceOpensAtTheDefaultAndAGermanStartSpeaksGerman) {
  StartedApp studio;
  ASSERT_TRUE(studio.Start());
  TempDir dir;
  struct Case {
    int left, top, width, height;
    const char* what;
  } cases[] = {{5000, 4000, 1000, 700, "off every screen"},
               {-900000, -900000, 1000, 700, "far to the left and above"},
               {10, 10, 900000, 700000, "larger than the screen"},
               {300, 200, 20, 10, "smaller than the window can be"},
               {400, 1030, 1000, 700, "only a sliver of its title bar on the screen"},
               {-950, 100, 1000, 700, "only 50 pixels of it on the screen"}};
  for (const Case& c : cases) {
    studio.app->Config->setWindowLeft(c.left);
    studio.app->Config->setWindowTop(c.top);
    studio.app->Config->setWindowWidth(c.width);
    studio.app->Config->setWindowHeight(c.height);
    ASSERT_TRUE(studio.app->Config->Save());
    const ScriptRun r = RunStudioScript(dir, "dump placed.json\n", studio.folder.Folder());
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(RectOf(FormOf(LoadDump(dir, "placed.json"))), kDefault) << c.what;
  }
  // A place that still fits is taken as it is.
  studio.app->Config->setWindowLeft(-300);
  studio.app->Config->setWindowTop(100);
  studio.app->Config->setWindowWidth(1200);
  studio.app->Config->setWindowHeight(800);
  studio.app->Config->setLanguage_ID(1);
  ASSERT_TRUE(studio.app->Config->Save());
  const ScriptRun r = RunStudioScript(dir, R"(expect pnlTabBar/TabIconSettingsView caption Einstellungen
expect TitleBar/FormButtons/btnMax caption Maximieren
dump german.json
)",
                                      studio.folder.Folder());
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(RectOf(FormOf(LoadDump(dir, "german.json"))), (Rect{-300, 100, 1200, 800}));
}
