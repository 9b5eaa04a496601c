#include <gtest/gtest.h>

#include <sstream>

#include "cli/CommandLine.h"
#include "platform/Files.h"
#include "tests/support/AppFolder.h"

using namespace qds;

TEST(InitCommand, StartsHeadlessTellsWhatTheLibraryHoldsAndFailsOnABrokenLibrary) {
  AppFolder folder;
  const auto run = [&](std::string* out, std::string* err) {
    std::ostringstream o, e;
    const int rc = RunCommand(ParseCommandLine({"--app-dir", folder.Folder(), "init"}), o, e);
    *out = o.str();
    *err = e.str();
    return rc;
  };
  std::string out, err;
  ASSERT_EQ(run(&out, &err), 0) << err;
  EXPECT_TRUE(err.empty()) << err;
  EXPECT_NE(out.find("icons, 6 styles,"), std::string::npos) << out;
  const std::string first = out;
  ASSERT_EQ(run(&out, &err), 0);
  EXPECT_EQ(out, first);  // the second start finds the same library

  WriteUtf8Text(folder.Library(), "not a database");
  EXPECT_EQ(run(&out, &err), 1);
  EXPECT_NE(err.find(folder.Library() + ": The library is damaged or is not a database"), std::string::npos)
      << err;
  EXPECT_TRUE(out.empty());
}
