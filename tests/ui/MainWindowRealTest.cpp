// The main window on a real X server with a window manager: the manager
// moves the frameless window by its title bar, the window maximises to the
// screen and back, and the next start finds the place again.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "platform/Files.h"
#include "tests/support/StartedApp.h"
#include "tests/support/TempDir.h"
#include "tests/support/VirtualDisplay.h"

using namespace qds;
using Json = nlohmann::json;

namespace {

struct Geometry {
  int x = 0, y = 0, w = 0, h = 0;
};

// The window's place and size as the X server has them; none when the
// window is not (yet) there.
bool ServerGeometry(const std::string& display, const std::string& window, Geometry& g) {
  std::istringstream in(
      Output("DISPLAY=" + display + " xdotool getwindowgeometry --shell " + window + " 2>/dev/null"));
  int found = 0;
  for (std::string line; std::getline(in, line);) {
    const std::size_t eq = line.find('=');
    if (eq == std::string::npos) continue;
    const std::string key = line.substr(0, eq);
    const int value = std::atoi(line.c_str() + eq + 1);
    if (key == "X") g.x = value, ++found;
    if (key == "Y") g.y = value, ++found;
    if (key == "WIDTH") g.w = value, ++found;
    if (key == "HEIGHT") g.h = value, ++found;
  }
  return found == 4;
}

Json MainForm(const std::string& file) {
  if (!FileExists(file)) return Json();
  const Json dump = Json::parse(ReadAllText(file));
  for (const Json& f : dump["forms"]) {
    if (f["name"] == "cfMain") return f;
  }
  return Json();
}

}  // namespace

TEST(MainWindowReal, TheWindowManagerMovesItByTheTitleBarAndTheNextStartFindsThePlace) {
  for (const char* tool : {VirtualDisplay::kXvfb, "/usr/bin/openbox", "/usr/bin/xdotool"}) {
    if (!std::filesystem::exists(tool))
      GTEST_SKIP() << tool << " is not installed (scripts/install-deps installs it)";
  }
  VirtualDisplay x;
  x.screen = "1600x1000x24";
  ASSERT_TRUE(x.Up());
  // The manager is there once it has claimed the screen. A server that has
  // made its socket may still refuse the first client: it is started again.
  const auto managed = [&] {
    return Output("DISPLAY=" + x.name + " xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null")
               .find("window id") != std::string::npos;
  };
  pid_t wm = -1;
  for (int start = 0; start < 5 && !managed(); ++start) {
    if (wm > 0) Wait(wm, 1);
    wm = Spawn({"/usr/bin/openbox", "--sm-disable"}, {"DISPLAY=" + x.name});
    for (int i = 0; i < 60 && Running(wm) && !managed(); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  ASSERT_TRUE(managed()) << "openbox did not take the screen";

  StartedApp studio;
  ASSERT_TRUE(studio.Start());
  TempDir dir;
  const std::vector<std::string> env = {"DISPLAY=" + x.name, "ASAN_OPTIONS=detect_leaks=0",
                                        "XDG_DATA_HOME=" + dir.Path() + "xdg"};
  // The script waits while the test moves the window with the real mouse.
  WriteUtf8Text(dir / "script.txt", "wait 20000\ndump " + (dir / "moved.json") +
                                        "\nclick TitleBar/FormButtons/btnMax\nwait 500\ndump " +
                                        (dir / "max.json") +
                                        "\nclick TitleBar/FormButtons/btnMax\nwait 500\ndump " +
                                        (dir / "restored.json") + "\nclose\n");
  pid_t program = Spawn(
      {QDS_APP_EXE, "--app-dir", studio.folder.Folder(), "--automate", dir / "script.txt", "--real-window"},
      env);
  ASSERT_GT(program, 0);
  std::string window;
  Geometry before;
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (Running(program) && std::chrono::steady_clock::now() < giveUp) {
    std::istringstream ids(
        Output("DISPLAY=" + x.name +
               " xdotool search --onlyvisible --name '^Quillaron Design Studio$' 2>/dev/null"));
    ids >> window;
    if (!window.empty() && ServerGeometry(x.name, window, before)) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  ASSERT_FALSE(window.empty()) << "the main window never showed";
  // Pressed on the program's name in the title bar, dragged by 120, 80. A
  // busy machine may have the program still painting when the button goes
  // down, and the window manager then sees the button up before it starts
  // to move the window: the drag is tried again then.
  const std::string xdo = "DISPLAY=" + x.name + " xdotool ";
  Geometry after;
  bool dragged = false;
  for (int attempt = 0; attempt < 5 && !dragged && Running(program); ++attempt) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1000));
    if (!ServerGeometry(x.name, window, before)) continue;
    const int px = before.x + 300, py = before.y + 15;
    ASSERT_EQ(std::system((xdo + "mousemove " + std::to_string(px) + " " + std::to_string(py) +
                           " sleep 0.3 mousedown 1 sleep 0.3 mousemove " + std::to_string(px + 60) + " " +
                           std::to_string(py + 40) + " sleep 0.3 mousemove " + std::to_string(px + 120) +
                           " " + std::to_string(py + 80) + " sleep 0.3 mouseup 1")
                              .c_str()),
              0);
    for (int i = 0; i < 40 && !dragged; ++i) {
      dragged =
          ServerGeometry(x.name, window, after) && after.x == before.x + 120 && after.y == before.y + 80;
      if (!dragged) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  }
  EXPECT_TRUE(dragged) << "the window manager never moved the window by 120, 80";
  EXPECT_EQ(Wait(program, 60), 0);

  // The program saw where the manager put it, maximised to the screen
  // (which has no panels) and came back there.
  const Json moved = MainForm(dir / "moved.json");
  ASSERT_TRUE(moved.is_object());
  EXPECT_EQ(moved["x"], after.x);
  EXPECT_EQ(moved["y"], after.y);
  const Json max = MainForm(dir / "max.json");
  ASSERT_TRUE(max.is_object());
  EXPECT_EQ(max["x"], 0);
  EXPECT_EQ(max["y"], 0);
  EXPECT_EQ(max["width"], 1600);
  EXPECT_EQ(max["height"], 1000);
  const Json restored = MainForm(dir / "restored.json");
  ASSERT_TRUE(restored.is_object());
  EXPECT_EQ(restored["x"], after.x);
  EXPECT_EQ(restored["width"], moved["width"]);

  // The next start opens where the window was left.
  WriteUtf8Text(dir / "again.txt", "wait 500\ndump " + (dir / "again.json") + "\n");
  program = Spawn(
      {QDS_APP_EXE, "--app-dir", studio.folder.Folder(), "--automate", dir / "again.txt", "--real-window"},
      env);
  ASSERT_GT(program, 0);
  EXPECT_EQ(Wait(program, 60), 0);
  const Json again = MainForm(dir / "again.json");
  ASSERT_TRUE(again.is_object());
  EXPECT_EQ(again["x"], after.x);
  EXPECT_EQ(again["y"], after.y);
  kill(wm, SIGTERM);
  Wait(wm, 10);
}
