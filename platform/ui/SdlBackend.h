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
union SDL_Event;

namespace qds {

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
  void BringToFront(cfForm& form) override;
  void WorkArea(double& x, double& y, double& w, double& h) override;
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

 private:
  struct Window {
    SDL_Window* window = nullptr;
    SDL_Renderer* renderer = nullptr;
    SDL_Texture* texture = nullptr;
    int w = 0, h = 0;
  };
  cfForm* FormOf(unsigned windowId) const;
  bool TakePending(UiEvent& event);
  // SDL's event as the program's; false for those it keeps to itself.
  bool Translate(const SDL_Event& e, UiEvent& event);
  static void FollowWindow(cfForm& form, SDL_Window* window);
  std::map<cfForm*, Window> windows_;
  std::map<int, SDL_Cursor*> cursors_;
  SDL_Cursor* dragCursor_ = nullptr;
  bool firstFrame_ = true;
  std::vector<UiEvent> pending_;  // characters of one text input still to deliver
};

}  // namespace qds
