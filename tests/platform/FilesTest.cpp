#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/IniFile.h"
#include "tests/support/TempDir.h"

using namespace qds;

TEST(Files, CreateReadAndWriteInAFolderWithSpacesAndUmlauts) {
  TempDir dir;
  const std::string made = CreateDirectories(dir / "Export Images/Größe 256/png");
  EXPECT_EQ(made, dir / "Export Images/Größe 256/png/");
  EXPECT_TRUE(FolderExists(made));
  EXPECT_EQ(CreateDirectories(made), made);  // already there: fine

  const std::string file = made + "Icon ü.png";
  EXPECT_FALSE(FileExists(file));
  const Bytes data{0x89, 'P', 'N', 'G', 0, 1, 2};
  WriteAllBytes(file, data);
  EXPECT_TRUE(FileExists(file));
  EXPECT_FALSE(FolderExists(file));
  EXPECT_EQ(ReadAllBytes(file), data);
  WriteUtf8Text(file, "ersetzt");
  EXPECT_EQ(ReadAllText(file), "ersetzt");
  // The temporary file of the atomic write is gone.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(made), std::filesystem::directory_iterator()),
            1);
}

TEST(Files, FailedWritesLeaveNothingBehindAndMissingFilesSayNotFound) {
  TempDir dir;
  try {
    ReadAllBytes(dir / "missing.svg");
    FAIL();
  } catch (const AppError& e) {
    EXPECT_EQ(e.Number(), ErrNo::FileNotFound);
    EXPECT_NE(e.Description().find("missing.svg"), std::string::npos);
  }
  EXPECT_THROW(WriteAllBytes(dir / "no folder/x.png", Bytes{1}), AppError);
  EXPECT_FALSE(FolderExists(dir / "no folder"));

  // A folder in the way of the target stays as it was.
  CreateDirectories(dir / "taken");
  WriteAllBytes(dir / "taken/inside", Bytes{7});
  EXPECT_THROW(WriteAllBytes(dir / "taken", Bytes{1, 2}), AppError);
  EXPECT_EQ(ReadAllBytes(dir / "taken/inside"), Bytes{7});
  EXPECT_EQ(
      std::distance(std::filesystem::directory_iterator(dir.Path()), std::filesystem::directory_iterator()),
      1);
}

TEST(Files, ListFolderMatchesPatternListsWithoutCaseAndSortsByName) {
  TempDir dir;
  for (const char* name : {"b.svgz", "A.SVG", "c.svg", "d.png", "notes.svg.txt"})
    WriteAllBytes(dir / name, Bytes{1});
  CreateDirectories(dir / "folder.svg");
  EXPECT_EQ(ListFolder(dir.Path(), "*.svg; *svgz"), (std::vector<std::string>{"A.SVG", "b.svgz", "c.svg"}));
  EXPECT_EQ(ListFolder(dir.Path(), "*.PNG"), (std::vector<std::string>{"d.png"}));
  EXPECT_TRUE(ListFolder(dir / "nothing here", "*.svg").empty());
}

TEST(Files, DesktopFollowsTheUsersDirectorySettings) {
  TempDir dir;
  const char* oldHome = std::getenv("HOME");
  const char* oldConfig = std::getenv("XDG_CONFIG_HOME");
  const std::string savedHome = oldHome ? oldHome : "";
  const std::string savedConfig = oldConfig ? oldConfig : "";

  ::setenv("HOME", (dir / "home").c_str(), 1);
  ::setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
  EXPECT_EQ(DesktopFolder(), dir / "home/Desktop");
  CreateDirectories(dir / "config");
  WriteUtf8Text(dir / "config/user-dirs.dirs",
                "# written by xdg-user-dirs-update\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n");
  EXPECT_EQ(DesktopFolder(), dir / "home/Schreibtisch");

  oldHome ? ::setenv("HOME", savedHome.c_str(), 1) : ::unsetenv("HOME");
  oldConfig ? ::setenv("XDG_CONFIG_HOME", savedConfig.c_str(), 1) : ::unsetenv("XDG_CONFIG_HOME");

  EXPECT_EQ(FileNameOf("/a/b c/Icon.svg"), "Icon.svg");
  EXPECT_EQ(BaseNameOf("/a/b c/Icon.final.svg"), "Icon.final");
  EXPECT_EQ(FolderOf("/a/b c/Icon.svg"), "/a/b c/");
  EXPECT_TRUE(FolderExists(ExecutableFolder()));
}

TEST(IniFile, ReadsTheSettingsFileLikeTheSystemReaderDid) {
  const IniFile ini = IniFile::FromText(
      "\xEF\xBB\xBF; Quillaron\r\n[Export]\r\nRemoveClipPath=N\r\n[SVG]\r\n RemoveClipPath = J \r\n"
      "RemoveClipPath=N\r\nQuoted=\"a b\"\r\n# comment=x\r\n");
  EXPECT_EQ(ini.Get("SVG", "RemoveClipPath"), "J");
  EXPECT_EQ(ini.Get("svg", "removeclippath"), "J");
  EXPECT_EQ(ini.Get("Export", "RemoveClipPath"), "N");
  EXPECT_EQ(ini.Get("SVG", "Quoted"), "a b");
  EXPECT_FALSE(ini.Has("SVG", "# comment"));
  EXPECT_EQ(ini.Get("SVG", "Missing", "default"), "default");

  TempDir dir;
  EXPECT_EQ(IniFile::Load(dir / "Dat/Quillaron.ini").Get("SVG", "RemoveClipPath"), "");
}
