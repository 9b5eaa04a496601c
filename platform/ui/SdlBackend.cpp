#include "platform/ui/SdlBackend.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>

#include "platform/Bytes.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/ImageList.h"
#include "platform/ui/Form.h"

namespace qds {

namespace {

int Flags(Uint16 mod) {
  return ((mod & KMOD_SHIFT) ? Shift::ShiftKey : 0) | ((mod & KMOD_CTRL) ? Shift::Ctrl : 0) |
         ((mod & KMOD_ALT) ? Shift::Alt : 0);
}

int Buttons(Uint8 button) {
  switch (button) {
    case SDL_BUTTON_LEFT:
      return Button::Left;
    case SDL_BUTTON_RIGHT:
      return Button::Right;
    case SDL_BUTTON_MIDDLE:
      return Button::Middle;
    default:
      return 0;
  }
}

int HeldButtons(Uint32 state) {
  return ((state & SDL_BUTTON_LMASK) ? Button::Left : 0) | ((state & SDL_BUTTON_RMASK) ? Button::Right : 0) |
         ((state & SDL_BUTTON_MMASK) ? Button::Middle : 0);
}

// SDL key symbols to the key codes the handlers know (letters as capitals,
// digits as themselves, as the old runtime numbered them).
int KeyCode(SDL_Keycode k) {
  switch (k) {
    case SDLK_BACKSPACE:
      return Key::Back;
    case SDLK_TAB:
      return Key::Tab;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      return Key::Return;
    case SDLK_ESCAPE:
      return Key::Escape;
    case SDLK_SPACE:
      return Key::Space;
    case SDLK_PAGEUP:
      return Key::PageUp;
    case SDLK_PAGEDOWN:
      return Key::PageDown;
    case SDLK_END:
      return Key::End;
    case SDLK_HOME:
      return Key::Home;
    case SDLK_LEFT:
      return Key::Left;
    case SDLK_UP:
      return Key::Up;
    case SDLK_RIGHT:
      return Key::Right;
    case SDLK_DOWN:
      return Key::Down;
    case SDLK_DELETE:
      return Key::Delete;
    case SDLK_INSERT:
      return Key::Insert;
    case SDLK_PRINTSCREEN:
      return Key::PrintScreen;
    case SDLK_LSHIFT:
    case SDLK_RSHIFT:
      return Key::ShiftKey;
    case SDLK_LCTRL:
    case SDLK_RCTRL:
      return Key::Control;
    case SDLK_LALT:
    case SDLK_RALT:
      return Key::AltKey;
    case SDLK_KP_MULTIPLY:
      return 106;
    case SDLK_KP_PLUS:
      return 107;
    case SDLK_KP_MINUS:
      return 109;
    case SDLK_KP_PERIOD:
      return 110;
    case SDLK_KP_DIVIDE:
      return 111;
    case SDLK_KP_0:
      return Key::Numpad0;
    default:
      break;
  }
  if (k >= SDLK_a && k <= SDLK_z) return 'A' + (k - SDLK_a);
  if (k >= SDLK_0 && k <= SDLK_9) return '0' + (k - SDLK_0);
  if (k >= SDLK_F1 && k <= SDLK_F12) return Key::F1 + (k - SDLK_F1);
  if (k >= SDLK_KP_1 && k <= SDLK_KP_9) return Key::Numpad0 + 1 + (k - SDLK_KP_1);
  // The punctuation keys of a US layout, as the old runtime numbered them.
  static const std::map<SDL_Keycode, int> kPunctuation = {
      {SDLK_SEMICOLON, 186}, {SDLK_EQUALS, 187},       {SDLK_COMMA, 188},     {SDLK_MINUS, 189},
      {SDLK_PERIOD, 190},    {SDLK_SLASH, 191},        {SDLK_BACKQUOTE, 192}, {SDLK_LEFTBRACKET, 219},
      {SDLK_BACKSLASH, 220}, {SDLK_RIGHTBRACKET, 221}, {SDLK_QUOTE, 222}};
  const auto it = kPunctuation.find(k);
  return it == kPunctuation.end() ? 0 : it->second;
}

// A copy of the picture as SDL wants it for icons and cursors: straight
// alpha, where cairo keeps it premultiplied. Null when SDL refuses.
SDL_Surface* StraightAlphaSurface(const SurfacePtr& picture) {
  const int w = picture->Width(), h = picture->Height();
  SDL_Surface* sdl = SDL_CreateRGBSurfaceWithFormat(0, w, h, 32, SDL_PIXELFORMAT_ARGB8888);
  if (!sdl) return nullptr;
  const PixelView v = picture->Pixels();
  for (int y = 0; y < h; ++y) {
    const unsigned char* from = v.Bytes() + static_cast<std::ptrdiff_t>(y) * v.Stride();
    unsigned char* to =
        static_cast<unsigned char*>(sdl->pixels) + static_cast<std::ptrdiff_t>(y) * sdl->pitch;
    for (int x = 0; x < w * 4; x += 4) {
      const int a = from[x + 3];
      for (int c = 0; c < 3; ++c)
        to[x + c] = static_cast<unsigned char>(a ? std::min(255, from[x + c] * 255 / a) : 0);
      to[x + 3] = static_cast<unsigned char>(a);
    }
  }
  return sdl;
}

}  // namespace

SdlBackend::SdlBackend() {
  if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_TIMER) != 0) {
    Raise(ErrNo::InvalidArgument, std::string("No display could be opened: ") + SDL_GetError(), "SdlBackend");
  }
  SDL_StartTextInput();
}

void SdlBackend::SetCursor(int cursor) {
  UiBackend::SetCursor(cursor);
  if (CursorPicture()) return;  // a drag's picture stays until the drop
  static const std::map<int, SDL_SystemCursor> kSystem = {
      {Cursor::Wait, SDL_SYSTEM_CURSOR_WAIT},         {Cursor::Hand, SDL_SYSTEM_CURSOR_HAND},
      {Cursor::IBeam, SDL_SYSTEM_CURSOR_IBEAM},       {Cursor::SizeNWSE, SDL_SYSTEM_CURSOR_SIZENWSE},
      {Cursor::SizeNESW, SDL_SYSTEM_CURSOR_SIZENESW}, {Cursor::SizeWE, SDL_SYSTEM_CURSOR_SIZEWE},
      {Cursor::SizeNS, SDL_SYSTEM_CURSOR_SIZENS},     {Cursor::SizeAll, SDL_SYSTEM_CURSOR_SIZEALL}};
  const auto known = kSystem.find(cursor);
  const SDL_SystemCursor id = known == kSystem.end() ? SDL_SYSTEM_CURSOR_ARROW : known->second;
  SDL_Cursor*& c = cursors_[id];
  if (!c) c = SDL_CreateSystemCursor(id);
  if (c) SDL_SetCursor(c);
}

void SdlBackend::SetCursorPicture(const SurfacePtr& picture) {
  UiBackend::SetCursorPicture(picture);
  if (dragCursor_) SDL_FreeCursor(dragCursor_);
  dragCursor_ = nullptr;
  if (!picture) {
    SetCursor(CurrentCursor());
    return;
  }
  // A cursor-sized copy with the mouse at its middle; SDL wants straight alpha.
  constexpr int kSide = 32;
  SurfacePtr small = DrawingSurface::Create(kSide, kSide);
  {
    DrawingContext ctx(small);
    ctx.DrawSurface(picture, 0, 0, kSide, kSide, Filter::Good);
  }
  SDL_Surface* sdl = StraightAlphaSurface(small);
  if (!sdl) return;
  dragCursor_ = SDL_CreateColorCursor(sdl, kSide / 2, kSide / 2);
  SDL_FreeSurface(sdl);
  if (dragCursor_) SDL_SetCursor(dragCursor_);
}

void SdlBackend::SetClipboardText(const std::string& text) {
  SDL_SetClipboardText(text.c_str());
}

std::string SdlBackend::ClipboardText() {
  char* text = SDL_GetClipboardText();
  std::string out = text ? text : "";
  SDL_free(text);
  return out;
}

double SdlBackend::ScreenDpi() {
  float dpi = 96;
  return SDL_GetDisplayDPI(0, nullptr, &dpi, nullptr) == 0 ? dpi : 96;
}

SdlBackend::~SdlBackend() {
  for (auto& [id, c] : cursors_) SDL_FreeCursor(c);
  if (dragCursor_) SDL_FreeCursor(dragCursor_);
  for (auto& [form, w] : windows_) {
    SDL_DestroyTexture(w.texture);
    SDL_DestroyRenderer(w.renderer);
    SDL_DestroyWindow(w.window);
  }
  SDL_Quit();
}

double SdlBackend::NowMs() {
  return static_cast<double>(SDL_GetTicks64());
}

cfForm* SdlBackend::FormOf(unsigned windowId) const {
  for (const auto& [form, w] : windows_) {
    if (SDL_GetWindowID(w.window) == windowId) return form;
  }
  return nullptr;
}

unsigned SdlBackend::WindowId(cfForm& form) const {
  const auto it = windows_.find(&form);
  return it == windows_.end() ? 0 : SDL_GetWindowID(it->second.window);
}

void SdlBackend::FormShown(cfForm& form) {
  if (windows_.count(&form)) return;
  Window w;
  w.w = std::max(1, static_cast<int>(std::lround(form.Width() * form.Zoom())));
  w.h = std::max(1, static_cast<int>(std::lround(form.Height() * form.Zoom())));
  // Pop-ups and tool windows go exactly where their owner puts them; the
  // others open in the middle of the screen.
  const bool popUp = form.PopUp;
  const bool placed = popUp || form.OwnPosition;
  const int x = placed ? static_cast<int>(std::lround(form.Left())) : SDL_WINDOWPOS_CENTERED;
  const int y = placed ? static_cast<int>(std::lround(form.Top())) : SDL_WINDOWPOS_CENTERED;
  // A frameless form sizes itself by its borders; a framed one lets the desktop do it.
  w.window = SDL_CreateWindow(form.Caption.c_str(), x, y, w.w, w.h,
                              popUp ? SDL_WINDOW_SHOWN | SDL_WINDOW_BORDERLESS | SDL_WINDOW_POPUP_MENU
                              : form.Borderless ? SDL_WINDOW_SHOWN | SDL_WINDOW_BORDERLESS
                              : form.Sizable    ? SDL_WINDOW_SHOWN | SDL_WINDOW_RESIZABLE
                                                : SDL_WINDOW_SHOWN);
  if (!w.window) Raise(ErrNo::InvalidArgument, std::string("No window: ") + SDL_GetError(), "SdlBackend");
  if (!popUp) FollowWindow(form, w.window);
  if (form.Modal()) {
    // The desktop keeps a modal dialog above the window it belongs to.
    for (const auto& [other, ow] : windows_) {
      if (!other->PopUp && !other->Modal()) {
        SDL_SetWindowModalFor(w.window, ow.window);
        break;
      }
    }
  }
  if (form.Sizable && !form.Borderless) {
    // The desktop's frame must not make it smaller than its layout allows.
    SDL_SetWindowMinimumSize(w.window, static_cast<int>(std::ceil(form.MinWidth * form.Zoom())),
                             static_cast<int>(std::ceil(form.MinHeight * form.Zoom())));
  }
  w.renderer = SDL_CreateRenderer(w.window, -1, SDL_RENDERER_SOFTWARE);
  w.texture = SDL_CreateTexture(w.renderer, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STREAMING, w.w, w.h);
  windows_[&form] = w;
  form.Invalidate();
  if (!form.IconKey().empty()) FormIconChanged(form);
}

void SdlBackend::FormMoved(cfForm& form) {
  auto it = windows_.find(&form);
  if (it == windows_.end()) return;
  // The size follows with the next picture, which a new size brings.
  SDL_SetWindowPosition(it->second.window, static_cast<int>(std::lround(form.Left())),
                        static_cast<int>(std::lround(form.Top())));
}

void SdlBackend::BringToFront(cfForm& form) {
  UiBackend::BringToFront(form);
  if (auto it = windows_.find(&form); it != windows_.end()) SDL_RaiseWindow(it->second.window);
}

void SdlBackend::FormIconChanged(cfForm& form) {
  auto it = windows_.find(&form);
  PlatformRoot* root = PlatformRoot::Current();
  if (it == windows_.end() || !root || !root->Images()) return;
  const SurfacePtr picture = root->Images()->Get(form.IconKey());
  if (!picture) return;
  // The window manager scales it; 64 pixels look well in any panel.
  SurfacePtr icon = DrawingSurface::Create(64, 64);
  {
    DrawingContext ctx(icon);
    ctx.DrawSurface(picture, 0, 0, 64, 64, Filter::Good);
  }
  SDL_Surface* sdl = StraightAlphaSurface(icon);
  if (!sdl) return;
  SDL_SetWindowIcon(it->second.window, sdl);
  SDL_FreeSurface(sdl);
}

void SdlBackend::WorkArea(double& x, double& y, double& w, double& h) {
  SDL_Rect r{0, 0, 1920, 1040};
  SDL_GetDisplayUsableBounds(0, &r);
  x = r.x, y = r.y, w = r.w, h = r.h;
}

void SdlBackend::FollowWindow(cfForm& form, SDL_Window* window) {
  // The form knows where its window is, so that pop-ups open beside it.
  int x = 0, y = 0;
  SDL_GetWindowPosition(window, &x, &y);
  form.Move(x, y, form.Width(), form.Height());
}

void SdlBackend::FormClosed(cfForm& form) {
  auto it = windows_.find(&form);
  if (it == windows_.end()) return;
  SDL_DestroyTexture(it->second.texture);
  SDL_DestroyRenderer(it->second.renderer);
  SDL_DestroyWindow(it->second.window);
  windows_.erase(it);
}

void SdlBackend::Present(cfForm& form) {
  auto it = windows_.find(&form);
  if (it == windows_.end()) return;
  Window& w = it->second;
  const SurfacePtr& surface = form.Surface();
  std::vector<cfForm::DeviceRect> changed = form.LastPaintedRects();
  if (surface->Width() != w.w || surface->Height() != w.h) {
    SDL_DestroyTexture(w.texture);
    w.w = surface->Width(), w.h = surface->Height();
    SDL_SetWindowSize(w.window, w.w, w.h);
    w.texture =
        SDL_CreateTexture(w.renderer, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STREAMING, w.w, w.h);
    changed = {{0, 0, w.w, w.h}};
  }
  // Only what was painted goes up. cairo's ARGB32 is SDL's ARGB8888 on
  // this byte order; the form is opaque, so premultiplying changes nothing.
  const PixelView v = surface->Pixels();
  for (const cfForm::DeviceRect& r : changed) {
    if (r.w <= 0 || r.h <= 0) continue;
    const SDL_Rect rect{r.x, r.y, r.w, r.h};
    SDL_UpdateTexture(w.texture, &rect, v.Bytes() + static_cast<std::ptrdiff_t>(r.y) * v.Stride() + r.x * 4,
                      v.Stride());
  }
  SDL_RenderCopy(w.renderer, w.texture, nullptr, nullptr);
  SDL_RenderPresent(w.renderer);
  if (firstFrame_) {
    firstFrame_ = false;
    if (OnFirstFrame) OnFirstFrame();
  }
}

Bytes SdlBackend::WindowPng(cfForm& form) {
  auto it = windows_.find(&form);
  if (it == windows_.end()) return {};
  Window& w = it->second;
  SurfacePtr shot = DrawingSurface::Create(w.w, w.h);
  {
    PixelView v = shot->Pixels();
    SDL_RenderReadPixels(w.renderer, nullptr, SDL_PIXELFORMAT_ARGB8888, v.Bytes(), v.Stride());
  }
  return shot->ToPngBytes();
}

bool SdlBackend::TakePending(UiEvent& event) {
  if (pending_.empty()) return false;
  event = pending_.front();
  pending_.erase(pending_.begin());
  return true;
}

bool SdlBackend::WaitEvent(double timeoutMs, UiEvent& event) {
  if (TakePending(event)) return true;
  SDL_Event e;
  for (double wait = timeoutMs;; wait = 0) {
    const int got =
        wait <= 0 ? SDL_PollEvent(&e) : SDL_WaitEventTimeout(&e, static_cast<int>(std::min(wait, 100000.0)));
    if (!got) return false;
    if (Translate(e, event)) return true;
    // SDL's own business (an exposure, a move): the rest of the queue, but no
    // more waiting, as the loop may have to paint.
  }
}

bool SdlBackend::Translate(const SDL_Event& e, UiEvent& event) {
  event = UiEvent();
  switch (e.type) {
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
      event.form = FormOf(e.button.windowID);
      event.type = e.type == SDL_MOUSEBUTTONUP ? UiEvent::Type::MouseUp
                   : e.button.clicks == 2      ? UiEvent::Type::DblClick
                                               : UiEvent::Type::MouseDown;
      event.button = Buttons(e.button.button);
      event.shift = Flags(SDL_GetModState());
      event.x = e.button.x, event.y = e.button.y;
      return true;
    case SDL_MOUSEMOTION:
      event.form = FormOf(e.motion.windowID);
      event.type = UiEvent::Type::MouseMove;
      event.button = HeldButtons(e.motion.state);
      event.shift = Flags(SDL_GetModState());
      event.x = e.motion.x, event.y = e.motion.y;
      return true;
    case SDL_MOUSEWHEEL: {
      event.form = FormOf(e.wheel.windowID);
      event.type = UiEvent::Type::Wheel;
      event.button = e.wheel.y;
      int x, y;
      SDL_GetMouseState(&x, &y);
      event.x = x, event.y = y;
      event.shift = Flags(SDL_GetModState());
      return true;
    }
    case SDL_KEYDOWN:
    case SDL_KEYUP:
      event.form = FormOf(e.key.windowID);
      event.type = e.type == SDL_KEYDOWN ? UiEvent::Type::KeyDown : UiEvent::Type::KeyUp;
      event.key = KeyCode(e.key.keysym.sym);
      event.shift = Flags(e.key.keysym.mod);
      return event.key != 0;
    case SDL_TEXTINPUT: {
      // One key press per character; an input method may send several at once.
      UiEvent press;
      press.form = FormOf(e.text.windowID);
      press.type = UiEvent::Type::KeyPress;
      for (char32_t c : DecodeUtf8(e.text.text)) {
        press.key = static_cast<int>(c);
        pending_.push_back(press);
      }
      return TakePending(event);
    }
    case SDL_WINDOWEVENT:
      if (e.window.event == SDL_WINDOWEVENT_CLOSE) {
        event.form = FormOf(e.window.windowID);
        event.type = UiEvent::Type::Close;
        return true;
      }
      if (e.window.event == SDL_WINDOWEVENT_EXPOSED) {
        if (cfForm* f = FormOf(e.window.windowID)) f->Invalidate();
      }
      if (e.window.event == SDL_WINDOWEVENT_MOVED) {
        if (cfForm* f = FormOf(e.window.windowID)) FollowWindow(*f, SDL_GetWindowFromID(e.window.windowID));
      }
      if (e.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
        // The desktop sized the window: the form lays itself out anew.
        cfForm* f = FormOf(e.window.windowID);
        if (f && (e.window.data1 != windows_[f].w || e.window.data2 != windows_[f].h)) {
          f->Move(f->Left(), f->Top(), e.window.data1 / f->Zoom(), e.window.data2 / f->Zoom());
        }
      }
      return false;
    case SDL_QUIT:
      if (!windows_.empty()) {
        event.form = windows_.begin()->first;
        event.type = UiEvent::Type::Close;
        return true;
      }
      return false;
    default:
      return false;
  }
}

}  // namespace qds
