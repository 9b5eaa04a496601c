#pragma once
// Real windows through SDL2: one window per shown form, the form's picture
// uploaded to a streaming texture, SDL's events turned into the program's.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Bytes.h"
#include "platform/ui/PlatformRoot.h"

struct SDL_Window;
struct SDL_Renderer;
struct SDL_Texture;
struct SDL_Cursor;
struct SDL_Surface;
union SDL_Event;

namespace qds {

// Gives an object of SDL back with SDL's own function for its kind.
struct SdlDestroyer {
  void operator()(SDL_Window* p) const;
  void operator()(SDL_Renderer* p) const;
  void operator()(SDL_Texture* p) const;
  void operator()(SDL_Cursor* p) const;
  void operator()(SDL_Surface* p) const;
};
// The one owner of an object of SDL: destroyed once, whatever way its
// holder goes (closed, replaced, or left by an exception).
template <class T>
using SdlPtr = std::unique_ptr<T, SdlDestroyer>;

class SdlBackend : public UiBackend {
 public:
  // Raises an AppError when no display can be opened.
  SdlBackend();
  ~SdlBackend() override;

  double NowMs() override;
  bool WaitEvent(double timeoutMs, UiEvent& event) override;
  void FormShown(cfForm& form) override;
  void FormClosed(cfForm& form) override;
  void Present(cfForm& form) override;
  void FormMoved(cfForm& form) override;
  void FormIconChanged(cfForm& form) override;
  void FormTitleChanged(cfForm& form) override;
  void BringToFront(cfForm& form) override;
  void MinimizeForm(cfForm& form) override;
  void WorkArea(double& x, double& y, double& w, double& h) override;
  std::vector<ScreenArea> Screens() override;
  void SetCursor(int cursor) override;
  void SetCursorPicture(const SurfacePtr& picture) override;
  void SetClipboardText(const std::string& text) override;
  std::string ClipboardText() override;
  double ScreenDpi() override;
  // SDL's id of the form's window; 0 when it has none.
  unsigned WindowId(cfForm& form) const;
  // What the window shows now, read back from the screen, as PNG.
  Bytes WindowPng(cfForm& form);
  // Called once, after the first picture reached a window.
  std::function<void()> OnFirstFrame;
  // What the window manager's hit test of a frameless window needs, and
  // where it last found the window's moving part.
  struct HitTestData {
    cfForm* form = nullptr;
    int lastX = 0, lastY = 0;
    int pressX = 0, pressY = 0;
    unsigned lastPressMs = 0;
  };
  static constexpr unsigned kDoubleClickMs = 500;

 private:
  // SDL itself, from the first call to the last: declared first, so that
  // it ends after every window and cursor below.
  struct Session {
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
  };
  // Members go in the reverse order: the texture, then its renderer, then
  // the window.
  struct Window {
    std::unique_ptr<HitTestData> hitTest;  // frameless windows: SDL points here until the window ends
    SdlPtr<SDL_Window> window;
    SdlPtr<SDL_Renderer> renderer;
    SdlPtr<SDL_Texture> texture;  // none until the first picture, or when SDL refused one
    int w = 0, h = 0;             // the texture's size
  };
  cfForm* FormOf(unsigned windowId) const;
  bool TakePending(UiEvent& event);
  // SDL's event as the program's; false for those it keeps to itself.
  bool Translate(const SDL_Event& e, UiEvent& event);
  bool DoubleHitTest(const SDL_Event& e, UiEvent& event);
  static void FollowWindow(cfForm& form, SDL_Window* window);
  Session session_;
  std::map<cfForm*, Window> windows_;
  std::map<int, SdlPtr<SDL_Cursor>> cursors_;
  SdlPtr<SDL_Cursor> dragCursor_;
  bool firstFrame_ = true;
  std::vector<UiEvent> pending_;  // characters of one text input still to deliver
};

}  // namespace qds
