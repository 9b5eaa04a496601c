#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "cli/CommandLine.h"
#include "platform/DbConnection.h"
#include "platform/Files.h"
#include "tests/support/AppFolder.h"
#include "tests/support/TempDir.h"

using namespace qds;

namespace {

int RunCli(const std::vector<std::string>& args, std::string* out = nullptr, std::string* err = nullptr) {
  std::ostringstream o, e;
  const int rc = RunCommand(ParseCommandLine(args), o, e);
  if (out) *out = o.str();
  if (err) *err = e.str();
  return rc;
}

int FilesIn(const std::string& folder) {
  int n = 0;
  for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(folder)) ++n;
  return n;
}

}  // namespace

TEST(CommandLine, ReadsTheApplicationFolderAndRejectsWhatItDoesNotKnow) {
  const CommandLine cmd = ParseCommandLine({"--app-dir", "/tmp/Mein Ordner", "design", "list"});
  ASSERT_TRUE(cmd.appDir.has_value());
  EXPECT_EQ(*cmd.appDir, "/tmp/Mein Ordner");
  EXPECT_EQ(cmd.words, (std::vector<std::string>{"design", "list"}));
  EXPECT_EQ(*ParseCommandLine({"--app-dir=/x"}).appDir, "/x");
  EXPECT_TRUE(ParseCommandLine({"export", "-h"}).help);
  const CommandLine help = ParseCommandLine({"help", "export"});
  EXPECT_TRUE(help.help);
  EXPECT_EQ(help.words, std::vector<std::string>{"export"});

  std::string out, err;
  EXPECT_EQ(RunCli({}, &out), 0);
  EXPECT_NE(out.find("Usage: quillaron"), std::string::npos);
  EXPECT_EQ(RunCli({"--version"}, &out), 0);
  EXPECT_NE(out.find("Quillaron Design Studio"), std::string::npos);
  EXPECT_EQ(RunCli({"--app-dir"}, nullptr, &err), 2);
  EXPECT_NE(err.find("--app-dir needs a value"), std::string::npos);
  EXPECT_EQ(RunCli({"--app-dir=", "init"}, nullptr, &err), 2);
  EXPECT_NE(err.find("--app-dir needs a value"), std::string::npos);
  // Help of a command is shown without opening a library.
  TempDir empty;
  EXPECT_EQ(RunCli({"--app-dir", empty.Path(), "design", "--help"}, &out), 0);
  EXPECT_NE(out.find("usage: quillaron design list"), std::string::npos) << out;
  EXPECT_EQ(RunCli({"--app-dir", empty.Path(), "init", "--help"}, &out), 0);
  EXPECT_NE(out.find("Usage: quillaron"), std::string::npos) << out;
  EXPECT_EQ(RunCli({"--frobnicate"}, nullptr, &err), 2);
  EXPECT_EQ(RunCli({"paint"}, nullptr, &err), 2);
  EXPECT_NE(err.find("unknown command \"paint\""), std::string::npos);
}

TEST(CommandLine, MistypedRepeatedAndEmptyOptionsAreRefusedBeforeTheLibraryIsOpened) {
  // The folder holds no library: a command that got as far as starting
  // would end in 1, not in 2.
  TempDir empty;
  struct Case {
    std::vector<std::string> args;
    std::string says;
  };
  const std::vector<Case> cases = {
      {{"export", "--design", "d1", "--out", "o", "--fromat", "JPG", "--qualty", "5", "--sise", "16x16"},
       "quillaron export: unknown option --fromat; did you mean --format?"},
      {{"export", "--design", "d1", "--out", "o", "--colour", "red"}, "unknown option --colour (see"},
      {{"export", "--design", "d1", "--out", "o", "--over"},
       "unknown option --over; did you mean --overwrite?"},
      {{"export", "--design", "d1", "--out", "o", "--isd", "1"}, "unknown option --isd; did you mean --ids?"},
      {{"export", "--design", "d1", "-out", "o"}, "unknown option -out; did you mean --out?"},
      {{"export", "--design", "d1", "--out", "o", "JPG"}, "unexpected word \"JPG\""},
      {{"export", "--design", "d1", "--out", "o", "--name"}, "--name needs a value"},
      {{"export", "--design", "d1", "--name", "--overwrite", "--out", "o"}, "--name needs a value"},
      {{"export", "--design", "d1", "--out", "o", "--size", "16x16", "--size", "32x32"},
       "--size given twice"},
      {{"export", "--design", "d1", "--out=o", "--out", "p"}, "--out given twice"},
      {{"export", "--design", "d1", "--out", "o", "--overwrite=yes"}, "--overwrite takes no value"},
      {{"design", "save", "x", "--form", "f.json"},
       "quillaron design save: unknown option --form; did you mean --from?"},
      {{"design", "show", "x", "--replace"}, "quillaron design show: unknown option --replace"},
      {{"design", "save", "a", "b", "--from", "f.json"}, "unexpected word \"b\""},
      {{"design", "import-tpl", "f.tpl", "--name"}, "--name needs a value"},
      {{"design", "export-tpl", "x", "--out", "--replace"}, "--out needs a value"},
      {{"design", "save", "x", "--from", "f.json", "--replace", "--replace"}, "--replace given twice"},
      {{"init", "--fresh"}, "quillaron init: unknown option --fresh"},
      {{"init", "now"}, "quillaron init: unexpected word \"now\""},
      {{"--verison"}, "unknown option --verison; did you mean --version?"},
      {{"-version"}, "unknown option -version; did you mean --version?"},
      {{"--app-dir", "b", "init"}, "--app-dir given twice"},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args = c.args;
    args.insert(args.begin(), {"--app-dir", empty.Path()});
    std::string err;
    EXPECT_EQ(RunCli(args, nullptr, &err), 2) << c.says;
    EXPECT_NE(err.find(c.says), std::string::npos) << err;
  }
  EXPECT_EQ(FilesIn(empty.Path()), 0);
}

TEST(CommandLine, NumbersAreWholeAndTheStudiosOwnShapesAreNoLibraryStyle) {
  AppFolder app;
  TempDir files;
  WriteUtf8Text(files / "d.json", R"({"Description":"","Entries":[{"Key":"_BaseIco","IsBaseEntry":true,)"
                                  R"("ImageIDs":"1","Settings":"{}"}]})");
  const std::string out = files / "out";
  CreateDirectories(out);
  const auto run = [&](std::vector<std::string> args, std::string* err) {
    args.insert(args.begin(),
                {"--app-dir", app.Folder(), "export", "--design-file", files / "d.json", "--out", out});
    return RunCli(args, nullptr, err);
  };
  std::string err;
  for (const std::vector<std::string>& bad : {std::vector<std::string>{"--size", "3.5x3.5"},
                                              {"--size", "16x99999999999999999999"},
                                              {"--quality", "50.5", "--format", "JPG"},
                                              {"--ids", "3.7"},
                                              {"--ids", "99999999999999999999"},
                                              {"--ico-sizes", "16,24.5", "--format", "ICO"}}) {
    EXPECT_EQ(run(bad, &err), 1) << bad[1];
    EXPECT_NE(err.find(bad[0] + " takes a whole number from "), std::string::npos) << err;
    EXPECT_EQ(err.find("Overflow"), std::string::npos) << err;
  }
  for (const char* style : {"Quillaron", "quillaron"}) {
    EXPECT_EQ(run({"--style", style}, &err), 1);
    EXPECT_NE(err.find("\"" + std::string(style) + "\" holds the studio's own shapes, not a library style"),
              std::string::npos)
        << err;
  }
  EXPECT_EQ(FilesIn(out), 0);

  // Blanks and a sign around the digits are fine; a value may begin with "-".
  ASSERT_EQ(run({"--size= +16x16 ", "--prefix", "-x", "--search", "lock", "--style", "Flat"}, &err), 0)
      << err;
  EXPECT_GT(FilesIn(out), 0);
  for (const auto& e : std::filesystem::directory_iterator(out)) {
    EXPECT_EQ(e.path().filename().string().rfind("-x_", 0), 0u) << e.path();
    EXPECT_NE(e.path().filename().string().find("_16.png"), std::string::npos) << e.path();
  }
}

TEST(CommandLine, ValuesOutOfRangeAreUsedAtTheirLimitsAndSaid) {
  AppFolder app;
  TempDir files;
  // A clip line 1e10 icon boxes wide once kept an export busy for ever.
  WriteUtf8Text(files / "d.json", R"({"Description":"","Entries":[{"Key":"_BaseIco","IsBaseEntry":true,)"
                                  R"("ImageIDs":"1","Settings":"{\"ClipExists\":true,\"ClipDX\":1e10,)"
                                  R"(\"ZoomPercent\":-1e308}"}]})");
  const std::string out = files / "out";
  CreateDirectories(out);
  std::string err;
  ASSERT_EQ(RunCli({"--app-dir", app.Folder(), "export", "--design-file", files / "d.json", "--out", out,
                    "--size", "512x512"},
                   nullptr, &err),
            0)
      << err;
  EXPECT_NE(err.find("2 values of the design were out of range and are used at their limits"),
            std::string::npos)
      << err;
  EXPECT_EQ(FilesIn(out), 1);
  // Saved, the design is stored within its limits: later reads find nothing
  // to correct.
  ASSERT_EQ(RunCli({"--app-dir", app.Folder(), "design", "save", "wide", "--from", files / "d.json"}, nullptr,
                   &err),
            0)
      << err;
  EXPECT_NE(err.find("2 values of the design were out of range"), std::string::npos) << err;
  std::string shown;
  ASSERT_EQ(RunCli({"--app-dir", app.Folder(), "design", "show", "wide"}, &shown, &err), 0) << err;
  EXPECT_EQ(err.find("out of range"), std::string::npos) << err;
  EXPECT_NE(shown.find(R"(\"ClipDX\":2,\"ZoomPercent\":1)"), std::string::npos) << shown;

  // The user's settings too, once per command.
  DbConnection cnn = DbConnection::Open(app.Library());
  ASSERT_TRUE(cnn.Execute(R"(Update Config Set Settings='{"JPGQuality":9999,"Language_ID":2}')"));
  cnn.Close();
  ASSERT_EQ(RunCli({"--app-dir", app.Folder(), "design", "list"}, nullptr, &err), 0);
  EXPECT_NE(err.find("1 value of the settings was out of range and is used at its limit"), std::string::npos)
      << err;
}
