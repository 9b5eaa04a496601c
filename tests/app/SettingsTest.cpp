#include <gtest/gtest.h>

#include <set>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modStartup.h"
#include "app/modTexts.h"
#include "engine/cUndoRedo.h"
#include "platform/Files.h"
#include "store/modLibrary.h"
#include "tests/support/AppFolder.h"

using namespace qds;

TEST(Settings, ReadDefaultsKeepUnknownKeysAndSaveOnlyWhenAsked) {
  AppFolder folder;
  ScopedAppContext app(folder.Folder());
  OpenDatabases(*app);
  ASSERT_TRUE(app->Cnn.Execute(
      R"(Update Config Set Settings='{"Language_ID":1,"FutureSetting":[1,2],"UserZoom":0,"ImgFormat":"bmp"}')"));
  cConfig config(app->Cnn, app->AppPath);

  EXPECT_EQ(config.Language_ID(), 1);
  EXPECT_EQ(config.HistoryMax(), 50);  // absent: the default
  EXPECT_EQ(config.IcoSizes(), cConfig::IcoSizesWin10);
  EXPECT_EQ(config.LastThemeID(), 19);
  EXPECT_EQ(config.BGColorBMP(), 0xC0C0C0);
  EXPECT_EQ(config.TemplatePath(), folder.Path());
  EXPECT_EQ(config.ImportPath(), folder.Folder());
  EXPECT_EQ(config.UserZoom(), 1.0);  // 0 is clamped...
  config.setUserZoom(9);
  EXPECT_EQ(config.UserZoom(), 4.0);
  config.setImgFormat("jpg");
  EXPECT_EQ(config.ImgFormat(), "JPG");
  EXPECT_TRUE(config.MsgDelLayer());
  config.setMsgDelLayer(false);
  config.setMsgSaveDesign(false);

  // Nothing reaches the database before Save.
  EXPECT_NE(app->Cnn.Query("Select Settings From Config").Fields(0).AsString().find("\"bmp\""),
            std::string::npos);
  ASSERT_TRUE(config.Save());
  cConfig reread(app->Cnn, app->AppPath);
  EXPECT_EQ(reread.ImgFormat(), "JPG");
  EXPECT_FALSE(reread.MsgDelLayer());
  EXPECT_EQ(reread.UserZoom(), 4.0);
  EXPECT_NE(reread.Settings().find(R"("FutureSetting":[1,2])"), std::string::npos);  // survived

  reread.ResetMessages();
  EXPECT_TRUE(reread.MsgDelLayer());
  EXPECT_TRUE(reread.MsgSaveDesign());
  EXPECT_FALSE(cConfig(app->Cnn, app->AppPath).MsgDelLayer());  // not saved yet

  // The exchange folder: the shipped sub-folder unless another was chosen.
  EXPECT_EQ(reread.ImportIconsDBPath(), folder.Path() + "NewIconsDatabase/");
  reread.setImportIconsDBPath("/media/usb/");
  EXPECT_EQ(reread.ImportIconsDBPath(), "/media/usb/");

  // Text that is not an object leaves every setting at its default.
  for (const char* bad : {"", "{}", "[1]", "nonsense", "{broken"}) {
    reread.setSettings(bad);
    EXPECT_EQ(reread.HistoryMax(), 50) << bad;
    EXPECT_EQ(reread.ImgFormat(), "PNG") << bad;
  }
}

TEST(Settings, StoredValuesAreReadWithinTheirBounds) {
  AppFolder folder;
  ScopedAppContext app(folder.Folder());
  OpenDatabases(*app);
  ASSERT_TRUE(app->Cnn.Execute(R"(Update Config Set Settings='{"HistoryMax":-5}')"));
  ASSERT_TRUE(StartWithoutWindow(*app));
  EXPECT_EQ(app->Config->HistoryMax(), 0);
  EXPECT_EQ(app->UndoRedo.Max(), 0);
  // The stack works at that depth: one state, nothing to undo.
  for (int i = 0; i < 3; ++i) app->UndoRedo.SaveState(std::make_shared<cHistory>());
  EXPECT_EQ(app->UndoRedo.HistoryCount(), 1);
  EXPECT_FALSE(app->UndoRedo.UndoEnabled());

  cConfig& config = *app->Config;
  config.setSettings(R"({"HistoryMax":99999999999})");
  EXPECT_EQ(config.HistoryMax(), cConfig::HistoryMaxLimit);
  config.setSettings(R"({"HistoryMax":1001})");
  EXPECT_EQ(config.HistoryMax(), 1000);
  config.setSettings(R"({"HistoryMax":1000})");
  EXPECT_EQ(config.HistoryMax(), 1000);
  EXPECT_EQ(config.CorrectedSettings(), 0);

  // A hand-edited file: each value out of range or of no use is counted, and
  // unknown keys survive for a later version.
  config.setSettings(
      R"({"JPGQuality":5000,"UserZoom":"huge","CanvasColor":-7,"ShowRuler":{"a":1},"Prefix":[1],)"
      R"("LastThemeID":"12","Future":1e300})");
  EXPECT_EQ(config.CorrectedSettings(), 5);
  EXPECT_EQ(config.JPGQuality(), 100);
  EXPECT_DOUBLE_EQ(config.UserZoom(), 1.25);
  EXPECT_EQ(config.CanvasColor(), -1);
  EXPECT_TRUE(config.ShowRuler());
  EXPECT_EQ(config.Prefix(), "");
  EXPECT_EQ(config.LastThemeID(), 12);
  EXPECT_NE(config.Settings().find("\"Future\""), std::string::npos);
  // Setters keep the same limits.
  config.setJPGQuality(3);
  EXPECT_EQ(config.JPGQuality(), 10);
  config.setUserZoom(9);
  EXPECT_DOUBLE_EQ(config.UserZoom(), 4);
  config.setDelimiter(std::string(5000, '-'));
  EXPECT_EQ(config.Delimiter().size(), 256u);
  // No undo at all is a choice, kept as it is.
  config.setHistoryMax(0);
  ASSERT_TRUE(config.Save());
  EXPECT_EQ(cConfig(app->Cnn, app->AppPath).HistoryMax(), 0);
}

TEST(Settings, TextsCoverEveryKeyInAllThreeLanguages) {
  AppFolder folder;
  ScopedAppContext app(folder.Folder());
  OpenDatabases(*app);
  std::map<int, std::set<std::string>> keys;
  for (DbRecordset rs = app->CnnResources.Query("Select Language_ID, Name, Text From Texts"); !rs.Eof();
       rs.MoveNext()) {
    EXPECT_FALSE(rs.Fields("Text").AsString().empty()) << rs.Fields("Name").AsString();
    EXPECT_TRUE(keys[static_cast<int>(rs.Fields(0).AsLong())].insert(rs.Fields("Name").AsString()).second)
        << "twice: " << rs.Fields("Name").AsString();
  }
  ASSERT_EQ(keys.size(), 3u);
  EXPECT_GE(keys[1].size(), 216u);
  EXPECT_EQ(keys[1], keys[2]);
  EXPECT_EQ(keys[1], keys[3]);
  EXPECT_EQ(app->CnnResources.Query("Select Language From Language Where ID=1").Fields(0).AsString(),
            "Deutsch");

  // The language of the settings decides the words, the documents and links.
  ASSERT_TRUE(app->Cnn.Execute(R"(Update Config Set Settings='{"Language_ID":1}')"));
  app->Config = std::make_unique<cConfig>(app->Cnn, app->AppPath);
  OpenTexts(*app);
  const std::string german = LanguageText("Cancel").Text;
  SetDocumentsAndLinks(*app);
  EXPECT_NE(app->DocManual.find("Dokumentation"), std::string::npos);
  app->Config->setLanguage_ID(3);
  OpenTexts(*app);
  EXPECT_NE(LanguageText("Cancel").Text, german);
  SetDocumentsAndLinks(*app);
  EXPECT_NE(app->DocManual.find("Documentation"), std::string::npos);
  EXPECT_EQ(app->LinkTutorials, app->LinkHome + "/tutorials.htm");
  EXPECT_NE(app->LinkHome.find("/en"), std::string::npos);
  const cLanguage missing = LanguageText("NoSuchKey");
  EXPECT_TRUE(missing.Text.empty() && missing.Tooltip.empty());
}

TEST(Settings, SmallRulesOfTheStart) {
  AppFolder folder;
  ScopedAppContext app(folder.Folder());
  std::vector<std::string> shown;
  app->ShowMessage = [&](const std::string& m) { shown.push_back(m); };

  ReadSettingsFile(*app);
  EXPECT_FALSE(app->RemoveClipPath);  // ships as N
  WriteUtf8Text(folder / "Dat/Quillaron.ini", "[svg]\nremoveclippath=J\n");
  ReadSettingsFile(*app);
  EXPECT_TRUE(app->RemoveClipPath);
  std::filesystem::remove(folder / "Dat/Quillaron.ini");
  ReadSettingsFile(*app);
  EXPECT_FALSE(app->RemoveClipPath);

  EXPECT_TRUE(IsFlatStyle("Quillaron", "Shapes", ""));
  EXPECT_FALSE(IsFlatStyle("Quillaron", "Arrows", ""));
  EXPECT_TRUE(IsFlatStyle("Slimline", "", ""));
  EXPECT_FALSE(IsFlatStyle("Flat Color", "Arrows", ""));
  EXPECT_TRUE(IsFlatStyle("Flat Color", "Arrows", "x"));

  EXPECT_FALSE(CheckError(*app, JsonBag::FromText(R"({"Result":1})")));
  EXPECT_TRUE(CheckError(*app, JsonBag::FromText(R"({"Error":"The file is damaged"})")));
  EXPECT_EQ(shown, std::vector<std::string>{"The file is damaged"});
}
