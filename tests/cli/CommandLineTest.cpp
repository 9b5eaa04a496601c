#include <gtest/gtest.h>

#include <sstream>

#include "cli/CommandLine.h"

using namespace qds;

namespace {

int RunCli(const std::vector<std::string>& args, std::string* out = nullptr, std::string* err = nullptr) {
  std::ostringstream o, e;
  const int rc = RunCommand(ParseCommandLine(args), o, e);
  if (out) *out = o.str();
  if (err) *err = e.str();
  return rc;
}

}  // namespace

TEST(CommandLine, ReadsTheApplicationFolderAndRejectsWhatItDoesNotKnow) {
  const CommandLine cmd = ParseCommandLine({"--app-dir", "/tmp/Mein Ordner", "design", "list"});
  ASSERT_TRUE(cmd.appDir.has_value());
  EXPECT_EQ(*cmd.appDir, "/tmp/Mein Ordner");
  EXPECT_EQ(cmd.words, (std::vector<std::string>{"design", "list"}));
  EXPECT_EQ(*ParseCommandLine({"--app-dir=/x"}).appDir, "/x");

  std::string out, err;
  EXPECT_EQ(RunCli({}, &out), 0);
  EXPECT_NE(out.find("Usage: quillaron"), std::string::npos);
  EXPECT_EQ(RunCli({"--version"}, &out), 0);
  EXPECT_NE(out.find("Quillaron Design Studio"), std::string::npos);
  EXPECT_EQ(RunCli({"--app-dir"}, nullptr, &err), 2);
  EXPECT_NE(err.find("--app-dir needs a folder"), std::string::npos);
  EXPECT_EQ(RunCli({"--frobnicate"}, nullptr, &err), 2);
  EXPECT_EQ(RunCli({"paint"}, nullptr, &err), 2);
  EXPECT_NE(err.find("unknown command \"paint\""), std::string::npos);
}
