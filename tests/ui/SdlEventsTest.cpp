// SDL's events as the program's: SDL runs here on its display-less video
// driver, and the test posts what a window system would.

#include <SDL.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/ui/Form.h"
#include "platform/ui/SdlBackend.h"
#include "tests/support/Pixels.h"

using namespace qds;

namespace {

struct Recorder : Widget {
  std::vector<std::string> log;
  Recorder() : Widget("Recorder") { CanFocus = true; }
  bool W_KeyDown(int key, int shift) override {
    log.push_back("down " + std::to_string(key) + "/" + std::to_string(shift));
    return true;
  }
  bool W_KeyPress(int c) override {
    log.push_back("press " + std::to_string(c));
    return true;
  }
  bool W_MouseDown(int button, int, double x, double y) override {
    log.push_back("mouse " + std::to_string(button) + " at " + std::to_string(int(x)) + "," +
                  std::to_string(int(y)));
    return true;
  }
};

// A square of red.
struct Mark : Widget {
  Mark() : Widget("Mark") {}
  void W_Paint(DrawingContext& ctx, double w, double h) override {
    ctx.SetSourceColor(0x0000FF);
    ctx.Rectangle(0, 0, w, h);
    ctx.Fill();
  }
};

struct ResizingForm : cfForm {
  int resized = 0;
  void W_Resize() override { ++resized; }
};

}  // namespace

TEST(SdlEvents, KeysTextMouseAndSizeChangesReachTheForm) {
  ::setenv("SDL_VIDEODRIVER", "dummy", 1);
  auto* sdl = new SdlBackend;
  PlatformRoot root{std::unique_ptr<UiBackend>(sdl)};
  ResizingForm form;
  form.setZoom(2);
  form.Resize(100, 50);
  form.Sizable = true;
  Recorder& rec = form.Children().Add(std::make_unique<Recorder>(), "rec");
  rec.Move(0, 0, 100, 50);
  form.Show();
  root.DoEvents();
  rec.SetFocus();
  const Uint32 window = sdl->WindowId(form);
  ASSERT_NE(window, 0u);

  SDL_Event e{};
  // Keys as the handlers number them: an arrow, Alt alone, the numeric pad, punctuation.
  for (SDL_Keycode key : {SDLK_LEFT, SDLK_RALT, SDLK_KP_7, SDLK_MINUS, SDLK_F5}) {
    e = {};
    e.type = SDL_KEYDOWN;
    e.key.windowID = window;
    e.key.keysym.sym = key;
    e.key.keysym.mod = key == SDLK_LEFT ? KMOD_LSHIFT | KMOD_LCTRL : KMOD_NONE;
    SDL_PushEvent(&e);
  }
  e = {};
  e.type = SDL_TEXTINPUT;
  e.text.windowID = window;
  SDL_strlcpy(e.text.text, "a\xC3\xA9\xE2\x82\xAC", sizeof e.text.text);  // "aé€" at once
  SDL_PushEvent(&e);
  e = {};
  e.type = SDL_MOUSEBUTTONDOWN;
  e.button.windowID = window;
  e.button.button = SDL_BUTTON_RIGHT;
  e.button.clicks = 1;
  e.button.x = 40, e.button.y = 20;  // device pixels: half that in units
  SDL_PushEvent(&e);
  root.DoEvents();
  EXPECT_EQ(rec.log,
            (std::vector<std::string>{"down 37/3", "down 18/0", "down 103/0", "down 189/0", "down 116/0",
                                      "press 97", "press 233", "press 8364", "mouse 2 at 20,10"}));

  // The desktop sized the window: the form follows in units and lays out.
  const int before = form.resized;
  e = {};
  e.type = SDL_WINDOWEVENT;
  e.window.windowID = window;
  e.window.event = SDL_WINDOWEVENT_SIZE_CHANGED;
  e.window.data1 = 300, e.window.data2 = 120;
  SDL_PushEvent(&e);
  root.DoEvents();
  EXPECT_EQ(form.Width(), 150);
  EXPECT_EQ(form.Height(), 60);
  EXPECT_EQ(form.resized, before + 1);
  EXPECT_EQ(form.Surface()->Width(), 300);

  // A timer fires in real time on the loop's own thread; the loop waits for
  // it and ends with the last window.
  std::thread::id firedOn;
  root.SetTimer(&form, 5, [&] {
    firedOn = std::this_thread::get_id();
    form.Close();
  });
  root.RunMessageLoop();
  EXPECT_EQ(firedOn, std::this_thread::get_id());
}

TEST(SdlEvents, AWindowIsWhereItsFormIsAndGoesWithItsFormOrItsBackend) {
  ::setenv("SDL_VIDEODRIVER", "dummy", 1);
  cfForm left("Left");  // still open when its backend goes
  {
    auto* sdl = new SdlBackend;
    PlatformRoot root{std::unique_ptr<UiBackend>(sdl)};
    cfForm form;
    form.setZoom(2);
    form.Resize(100, 50);
    form.MoveOnScreen(120, 80);
    form.BackColor = 0xFFFFFF;
    Mark& mark = form.Children().Add(std::make_unique<Mark>(), "mark");
    mark.Move(90, 40, 10, 10);  // the bottom-right corner
    form.Show();
    root.DoEvents();
    SDL_Window* window = SDL_GetWindowFromID(sdl->WindowId(form));
    ASSERT_NE(window, nullptr);
    // Screen pixels for the place, the zoom for the size.
    int x = 0, y = 0, w = 0, h = 0;
    SDL_GetWindowPosition(window, &x, &y);
    SDL_GetWindowSize(window, &w, &h);
    EXPECT_EQ(x, 120);
    EXPECT_EQ(y, 80);
    EXPECT_EQ(w, 200);
    EXPECT_EQ(h, 100);
    form.MoveOnScreen(140, 90);
    SDL_GetWindowPosition(window, &x, &y);
    EXPECT_EQ(x, 140);
    EXPECT_EQ(y, 90);
    // A new caption is the window's title at once.
    form.Caption = "Renamed";
    EXPECT_STREQ(SDL_GetWindowTitle(window), "Renamed");

    // A new size: the window takes it, with a texture of the new size that
    // shows the whole new picture, the corner moved out to the new corner.
    form.Resize(150, 60);
    mark.Move(140, 50, 10, 10);
    root.DoEvents();
    SDL_GetWindowSize(window, &w, &h);
    EXPECT_EQ(w, 300);
    EXPECT_EQ(h, 120);
    const SurfacePtr shot = DrawingSurface::FromPngBytes(sdl->WindowPng(form));
    ASSERT_TRUE(shot);
    ASSERT_EQ(shot->Width(), 300);
    EXPECT_EQ(PixelAt(shot, 295, 115), (Bgra{0, 0, 255, 255}));
    EXPECT_EQ(PixelAt(shot, 5, 5), (Bgra{255, 255, 255, 255}));
    EXPECT_EQ(PixelAt(shot, 195, 95), (Bgra{255, 255, 255, 255}));  // where the corner was

    // Closed, the form's window is gone.
    const Uint32 id = sdl->WindowId(form);
    form.Close();
    EXPECT_EQ(sdl->WindowId(form), 0u);
    EXPECT_EQ(SDL_GetWindowFromID(id), nullptr);
    left.Resize(50, 50);
    left.Show();
    root.DoEvents();
    sdl->SetCursor(Cursor::Hand);
  }
  // The backend went with a window open and a cursor made: each was given
  // back once, and SDL starts again for the next backend.
  auto* sdl = new SdlBackend;
  PlatformRoot root{std::unique_ptr<UiBackend>(sdl)};
  cfForm again;
  again.Resize(40, 30);
  again.Show();
  root.DoEvents();
  EXPECT_NE(SDL_GetWindowFromID(sdl->WindowId(again)), nullptr);
  again.Close();
}

TEST(SdlEvents, AModalDialogOpensInTheMiddleOfTheWindowThatOpenedIt) {
  ::setenv("SDL_VIDEODRIVER", "dummy", 1);
  auto* sdl = new SdlBackend;
  PlatformRoot root{std::unique_ptr<UiBackend>(sdl)};
  cfForm main("Main");
  main.Resize(300, 200);
  main.MoveOnScreen(40, 30);
  main.Show();
  cfForm dialog("Dialog");
  dialog.setZoom(2);
  dialog.Resize(50, 40);  // 100 by 80 pixels
  int x = -1, y = -1;
  cfForm* owner = nullptr;
  root.OnIdle = [&] {
    SDL_GetWindowPosition(SDL_GetWindowFromID(sdl->WindowId(dialog)), &x, &y);
    owner = dialog.Owner();
    dialog.Close();
    return true;
  };
  root.RunModal(dialog);
  root.OnIdle = nullptr;
  EXPECT_EQ(owner, &main);  // the active form, as none was named
  EXPECT_EQ(x, 40 + (300 - 100) / 2);
  EXPECT_EQ(y, 30 + (200 - 80) / 2);
  main.Close();
}
