// The desktop's menu entry: it must start this very program on this very
// folder, whatever characters their paths hold.

#include <gtest/gtest.h>

#include <cstdlib>

#include "app/modDesktopEntry.h"
#include "platform/Files.h"
#include "tests/support/TempDir.h"

using namespace qds;

namespace {

std::string LineOf(const std::string& text, const std::string& key) {
  const std::size_t at = text.find("\n" + key + "=");
  if (at == std::string::npos) return {};
  const std::size_t from = at + key.size() + 2;
  return text.substr(from, text.find('\n', from) - from);
}

// Sets an environment variable for the test's lifetime.
struct ScopedEnv {
  std::string name;
  std::string old;
  bool had;
  ScopedEnv(const char* n, const char* value) : name(n), had(std::getenv(n) != nullptr) {
    if (had) old = std::getenv(n);
    if (value)
      ::setenv(n, value, 1);
    else
      ::unsetenv(n);
  }
  ~ScopedEnv() {
    if (had)
      ::setenv(name.c_str(), old.c_str(), 1);
    else
      ::unsetenv(name.c_str());
  }
};

}  // namespace

TEST(DesktopEntry, QuotesWhatTheFormatReservesAndNamesTheFolderOnlyWhenItDiffers) {
  // The program in its own folder needs no folder argument.
  std::string text =
      DesktopEntryText("/opt/quillaron/quillaron", "/opt/quillaron/", "/opt/quillaron/logo.svg");
  EXPECT_EQ(LineOf(text, "Exec"), "/opt/quillaron/quillaron");
  EXPECT_EQ(LineOf(text, "Icon"), "/opt/quillaron/logo.svg");
  EXPECT_EQ(LineOf(text, "Type"), "Application");
  EXPECT_EQ(text.rfind("[Desktop Entry]\n", 0), 0u);

  // Blanks and quotes are quoted; '"', '$' and '\' are escaped inside the
  // quotes, and the file's own escaping doubles the backslashes once more;
  // '%' is doubled.
  text = DesktopEntryText("/home/ann/my apps/quillaron", "/home/ann/Icons \"50%\" $HOME\\x", "/i.svg");
  EXPECT_EQ(LineOf(text, "Exec"),
            R"("/home/ann/my apps/quillaron" --app-dir "/home/ann/Icons \\"50%%\\" \\$HOME\\\\x")");
}

TEST(DesktopEntry, GoesUnderTheDataHomeOrTheUsersShareFolder) {
  TempDir dir;
  {
    ScopedEnv data("XDG_DATA_HOME", (dir.Path() + "data").c_str());
    std::string why;
    const std::string path = WriteDesktopEntry("/opt/q/quillaron", "/opt/q", "/opt/q/logo.svg", &why);
    EXPECT_EQ(path, dir.Path() + "data/applications/" + kDesktopEntryName) << why;
    EXPECT_TRUE(FileExists(path));
  }
  {
    // A relative data home is not one, by the desktop's rules.
    ScopedEnv data("XDG_DATA_HOME", "relative/data");
    ScopedEnv home("HOME", (dir.Path() + "home").c_str());
    EXPECT_EQ(ApplicationsFolder(), dir.Path() + "home/.local/share/applications/");
  }
  {
    // A folder that cannot be made is reported, and nothing is written.
    ScopedEnv data("XDG_DATA_HOME", "/proc/no/such/place");
    std::string why;
    EXPECT_EQ(WriteDesktopEntry("/opt/q/quillaron", "/opt/q", "/opt/q/logo.svg", &why), "");
    EXPECT_NE(why.find("/proc/no/such/place/applications/"), std::string::npos) << why;
  }
}
