#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <thread>

#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/IniFile.h"
#include "tests/support/ErrorOf.h"
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

namespace {

int EntriesIn(const std::string& folder) {
  return static_cast<int>(
      std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()));
}

}  // namespace

TEST(Files, ANewFileTakesAFreeNameInOneStepAndNeverOneOutsideItsFolder) {
  for (const NewFile::Way way : {NewFile::Way::Unnamed, NewFile::Way::TemporaryName}) {
    SCOPED_TRACE(way == NewFile::Way::Unnamed ? "unnamed" : "temporary name");
    TempDir dir;
    {
      NewFile file(dir.Path(), Bytes{1, 2, 3}, way);
      if (way == NewFile::Way::Unnamed) {
        EXPECT_EQ(EntriesIn(dir.Path()), 0) << "nothing is seen before the name";
      }
      EXPECT_TRUE(file.Claim("a.png"));
    }
    EXPECT_EQ(ReadAllBytes(dir / "a.png"), (Bytes{1, 2, 3}));
    {
      NewFile other(dir.Path(), Bytes{4}, way);
      EXPECT_FALSE(other.Claim("a.png"));
      EXPECT_EQ(ReadAllBytes(dir / "a.png"), (Bytes{1, 2, 3}));
      EXPECT_TRUE(other.Claim("b.png"));
    }
    NewFile(dir.Path(), Bytes{5}, way).Replace("a.png");
    EXPECT_EQ(ReadAllBytes(dir / "a.png"), Bytes{5});
    { const NewFile unused(dir.Path(), Bytes{6}, way); }
    EXPECT_EQ(EntriesIn(dir.Path()), 2) << "a temporary file was left";

    // Names that are no plain names, or a folder's, fail with their own
    // number and change nothing.
    CreateDirectories(dir / "sub/inner");
    {
      NewFile file(dir / "sub", Bytes{7}, way);
      for (const std::string& name :
           {std::string("../escaped"), std::string(".."), std::string("."), std::string(), std::string("a/b"),
            std::string("x\0y", 3), std::string("inner")}) {
        EXPECT_EQ(ErrorOf([&] { file.Claim(name); }), ErrNo::BadFileName) << name;
        EXPECT_EQ(ErrorOf([&] { file.Replace(name); }), ErrNo::BadFileName) << name;
      }
      EXPECT_EQ(ErrorOf([&] { file.Claim(std::string(256, 'n')); }), ErrNo::BadFileName);
      // The longest name the file system takes.
      EXPECT_TRUE(file.Claim(std::string(255, 'n')));
    }
    EXPECT_EQ(ReadAllBytes(dir / ("sub/" + std::string(255, 'n'))), Bytes{7});
    EXPECT_FALSE(FileExists(dir / "escaped"));
    EXPECT_EQ(EntriesIn(dir.Path()), 3);
    EXPECT_EQ(EntriesIn(dir / "sub"), 2);
    EXPECT_EQ(EntriesIn(dir / "sub/inner"), 0);
  }
  // Replacing goes the same way: the longest name works there too.
  TempDir dir;
  WriteAllBytes(dir / std::string(255, 'r'), Bytes{1});
  WriteAllBytes(dir / std::string(255, 'r'), Bytes{2});
  EXPECT_EQ(ReadAllBytes(dir / std::string(255, 'r')), Bytes{2});
  EXPECT_EQ(EntriesIn(dir.Path()), 1);
}

TEST(Files, WritersRacingForNamesNeverReplaceEachOthersFiles) {
  for (const NewFile::Way way : {NewFile::Way::Unnamed, NewFile::Way::TemporaryName}) {
    TempDir dir;
    // Four writers, each wanting the names n0 to n49 and taking the next
    // "-c" where a name is taken.
    std::atomic<int> claimed{0};
    std::vector<std::thread> writers;
    for (int w = 0; w < 4; ++w) {
      writers.emplace_back([&, w] {
        for (int i = 0; i < 50; ++i) {
          NewFile file(dir.Path(), Bytes{static_cast<std::uint8_t>(w), static_cast<std::uint8_t>(i)}, way);
          for (int c = 0; !file.Claim("n" + std::to_string(i) + (c ? "-" + std::to_string(c) : "")); ++c) {
          }
          ++claimed;
        }
      });
    }
    for (std::thread& t : writers) t.join();
    EXPECT_EQ(claimed, 200);
    std::set<Bytes> contents;
    for (const auto& e : std::filesystem::directory_iterator(dir.Path()))
      contents.insert(ReadAllBytes(e.path().string()));
    EXPECT_EQ(contents.size(), 200u) << "a file was replaced";
  }
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
