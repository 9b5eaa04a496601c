// The real window: the demonstration form opened by the program under a
// virtual X server must look as the same form rendered without a display.

#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/DrawingSurface.h"
#include "platform/Files.h"
#include "tests/support/Golden.h"
#include "tests/support/TempDir.h"
#include "tests/support/VirtualDisplay.h"

extern char** environ;

using namespace qds;

namespace {

// The id ("0x1400003") of the window of that title in xwininfo's tree; none when it is not there.
std::string WindowIdOf(const std::string& tree, const std::string& title) {
  std::istringstream in(tree);
  for (std::string line; std::getline(in, line);) {
    if (line.find("\"" + title + "\"") == std::string::npos) continue;
    std::istringstream words(line);
    std::string id;
    words >> id;
    return id;
  }
  return {};
}

}  // namespace

TEST(RealWindow, TheDemonstrationFormUnderXLooksAsItDoesWithoutADisplay) {
  if (!std::filesystem::exists(VirtualDisplay::kXvfb))
    GTEST_SKIP() << "Xvfb is not installed (scripts/install-deps installs it)";
  VirtualDisplay x;
  ASSERT_TRUE(x.Up());
  const std::string& name = x.name;
  TempDir dir;
  const std::string shot = dir.Path() + "/window.png";
  // SDL unloads the X libraries it opened before the leak check runs, so
  // what they keep cannot be told apart or suppressed: the sanitizer build
  // checks leaks in the headless tests instead.
  const pid_t program = Spawn({QDS_APP_EXE, "--demo-widgets", "--screenshot", shot},
                              {"DISPLAY=" + name, "ASAN_OPTIONS=detect_leaks=0"});
  const int code = program > 0 ? Wait(program, 60) : -1;
  // A script drives the real window too, a modal dialog included.
  const std::string asking = dir / "asking.json";
  // It stays open a while, for the X server to be asked about it.
  qds::WriteUtf8Text(
      dir / "script.txt",
      "click btnOk\nwait 50\nexpect sbStatus caption Clicks: 1\nclick btnAsk\nwait 4000\ndump " + asking +
          "\nclick btnYes\nexpect sbStatus caption Answer: Yes\n");
  const pid_t script =
      Spawn({QDS_APP_EXE, "--demo-widgets", "--automate", dir / "script.txt", "--real-window"},
            {"DISPLAY=" + name, "ASAN_OPTIONS=detect_leaks=0"});
  // The window system knows the dialog as modal for the window that opened
  // it: it is "transient for" that window.
  const bool xTools =
      std::filesystem::exists("/usr/bin/xwininfo") && std::filesystem::exists("/usr/bin/xprop");
  // Asked until it says so, or the dialog has had its time: SDL may make a
  // window anew while it sets it up, and a slow build is seen half way.
  std::string dialogId, mainId, transientFor, lastTree;
  int asked = 0;
  // Asked for as long as the script runs, since a loaded machine may take
  // many seconds to start it.
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  for (int i = 0; xTools && script > 0 && Running(script) && std::chrono::steady_clock::now() < giveUp &&
                  (transientFor.empty() || transientFor != mainId);
       ++i) {
    if (i > 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const std::string tree = Output("DISPLAY=" + name + " xwininfo -root -tree 2>/dev/null");
    lastTree = tree;
    ++asked;
    const std::string dialogNow = WindowIdOf(tree, "Question");
    if (dialogNow.empty()) continue;
    dialogId = dialogNow;
    mainId = WindowIdOf(tree, "Quillaron Design Studio: widgets");
    std::istringstream said(
        Output("DISPLAY=" + name + " xprop -id " + dialogId + " WM_TRANSIENT_FOR 2>/dev/null"));
    for (std::string word; said >> word;) transientFor = word;  // the last word is the window's id
  }
  const int scriptCode = script > 0 ? Wait(script, 60) : -1;
  ASSERT_EQ(code, 0);
  EXPECT_EQ(scriptCode, 0);
  if (xTools) {
    // What the server said last tells a slow machine from a lost window.
    EXPECT_FALSE(dialogId.empty()) << "no window titled Question was seen in " << asked
                                   << " looks; the last:\n"
                                   << lastTree;
    EXPECT_FALSE(mainId.empty());
    EXPECT_EQ(transientFor, mainId);
  } else {
    std::cerr << "xwininfo and xprop are not installed (scripts/install-deps installs them): "
                 "the dialog's owner on the X server is not checked\n";
  }
  // The dialog opened in the middle of the window that asked, as the X
  // server (with no window manager to move them) has both.
  if (FileExists(asking)) {
    const nlohmann::json dump = nlohmann::json::parse(ReadAllText(asking));
    ASSERT_EQ(dump["forms"].size(), 2u);
    const nlohmann::json& main = dump["forms"][0];
    const nlohmann::json& dialog = dump["forms"][1];
    EXPECT_EQ(dialog["name"], "DemoAskForm");
    const auto middle = [](const nlohmann::json& f, const char* at, const char* size) {
      return f[at].get<int>() + f[size].get<int>() / 2;
    };
    EXPECT_NEAR(middle(dialog, "x", "width"), middle(main, "x", "width"), 1);
    EXPECT_NEAR(middle(dialog, "y", "height"), middle(main, "y", "height"), 1);
    EXPECT_GT(main["x"].get<int>(), 0);  // where SDL put it, in the middle of the screen
    EXPECT_EQ(main["width"], 830);
  } else {
    ADD_FAILURE() << "the script wrote no dump";
  }
  const SurfacePtr window = DrawingSurface::FromPngFile(shot);
  ASSERT_TRUE(window);

  // The picture the window shows is the one the form paints without a
  // display, which the stock widget tests keep as a golden picture. The
  // window is only ever compared with it, never recorded as it.
  ::unsetenv("QDS_UPDATE_GOLDEN");
  EXPECT_TRUE(MatchesGolden(window, "demo_widgets"));
}

TEST(RealWindow, TextCopiedInTheStudioIsOnTheDesktopsClipboardAndBack) {
  if (!std::filesystem::exists("/usr/bin/xclip"))
    GTEST_SKIP() << "xclip is not installed (scripts/install-deps installs it)";
  VirtualDisplay x;
  ASSERT_TRUE(x.Up());
  TempDir dir;
  // Another program owns the clipboard first: the studio pastes from it.
  ASSERT_EQ(
      std::system(("printf 'from outside' | DISPLAY=" + x.name + " xclip -selection clipboard -i").c_str()),
      0);
  qds::WriteUtf8Text(dir / "script.txt",
                     "click txtTyped\nkey ctrl+v\nexpect txtTyped text from outside\nkey ctrl+a\n"
                     "type copied here\nkey ctrl+a\nkey ctrl+c\nwait 4000\n");
  const pid_t script =
      Spawn({QDS_APP_EXE, "--demo-widgets", "--automate", dir / "script.txt", "--real-window"},
            {"DISPLAY=" + x.name, "ASAN_OPTIONS=detect_leaks=0"});
  ASSERT_GT(script, 0);
  // The copy is read the way any other program reads it, while the studio
  // still owns it.
  std::string read;
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (Running(script) && std::chrono::steady_clock::now() < giveUp && read != "copied here") {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    read = Output("DISPLAY=" + x.name + " xclip -selection clipboard -o 2>/dev/null");
  }
  EXPECT_EQ(Wait(script, 60), 0);
  EXPECT_EQ(read, "copied here");
}
