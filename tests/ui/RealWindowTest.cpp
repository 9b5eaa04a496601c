// The real window: the demonstration form opened by the program under a
// virtual X server must look as the same form rendered without a display.

#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/DrawingSurface.h"
#include "platform/Files.h"
#include "tests/support/Golden.h"
#include "tests/support/TempDir.h"

extern char** environ;

using namespace qds;

namespace {

pid_t Spawn(const std::vector<std::string>& argv, const std::vector<std::string>& extraEnv) {
  std::vector<char*> args;
  for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  std::vector<std::string> envStore(extraEnv);
  for (char** e = environ; *e; ++e) envStore.emplace_back(*e);
  std::vector<char*> env;
  for (std::string& e : envStore) env.push_back(e.data());
  env.push_back(nullptr);
  pid_t pid = 0;
  return posix_spawn(&pid, argv[0].c_str(), nullptr, nullptr, args.data(), env.data()) == 0 ? pid : -1;
}

// Waits for the process within `seconds`; its exit code, or -1 when it had to be killed.
int Wait(pid_t pid, int seconds) {
  for (int i = 0; i < seconds * 20; ++i) {
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) == pid) return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  kill(pid, SIGKILL);
  waitpid(pid, nullptr, 0);
  return -1;
}

}  // namespace

TEST(RealWindow, TheDemonstrationFormUnderXLooksAsItDoesWithoutADisplay) {
  const std::string xvfb = "/usr/bin/Xvfb";
  if (!std::filesystem::exists(xvfb))
    GTEST_SKIP() << "Xvfb is not installed (scripts/install-deps installs it)";

  // A display number nobody uses.
  int display = 90 + static_cast<int>(getpid() % 400);
  while (std::filesystem::exists("/tmp/.X11-unix/X" + std::to_string(display))) ++display;
  const std::string name = ":" + std::to_string(display);
  const pid_t server = Spawn({xvfb, name, "-screen", "0", "1024x768x24", "-nolisten", "tcp"}, {});
  ASSERT_GT(server, 0);
  for (int i = 0; i < 100 && !std::filesystem::exists("/tmp/.X11-unix/X" + std::to_string(display)); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  TempDir dir;
  const std::string shot = dir.Path() + "/window.png";
  // SDL unloads the X libraries it opened before the leak check runs, so
  // what they keep cannot be told apart or suppressed: the sanitizer build
  // checks leaks in the headless tests instead.
  const pid_t program = Spawn({QDS_APP_EXE, "--demo-widgets", "--screenshot", shot},
                              {"DISPLAY=" + name, "ASAN_OPTIONS=detect_leaks=0"});
  const int code = program > 0 ? Wait(program, 60) : -1;
  // A script drives the real window too, a modal dialog included.
  qds::WriteUtf8Text(dir / "script.txt",
                     "click btnOk\nwait 50\nexpect sbStatus caption Clicks: 1\nclick btnAsk\nclick btnYes\n"
                     "expect sbStatus caption Answer: Yes\n");
  const pid_t script = Spawn({QDS_APP_EXE, "--automate", dir / "script.txt", "--real-window"},
                             {"DISPLAY=" + name, "ASAN_OPTIONS=detect_leaks=0"});
  const int scriptCode = script > 0 ? Wait(script, 60) : -1;
  kill(server, SIGTERM);
  Wait(server, 10);
  ASSERT_EQ(code, 0);
  EXPECT_EQ(scriptCode, 0);
  const SurfacePtr window = DrawingSurface::FromPngFile(shot);
  ASSERT_TRUE(window);

  // The picture the window shows is the one the form paints without a
  // display, which the stock widget tests keep as a golden picture. The
  // window is only ever compared with it, never recorded as it.
  ::unsetenv("QDS_UPDATE_GOLDEN");
  EXPECT_TRUE(MatchesGolden(window, "demo_widgets"));
}
