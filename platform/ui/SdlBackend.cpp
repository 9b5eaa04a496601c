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
SdlPtr<SDL_Surface> StraightAlphaSurface(const SurfacePtr& picture) {
  const int w = picture->Width(), h = picture->Height();
  SdlPtr<SDL_Surface> sdl(SDL_CreateRGBSurfaceWithFormat(0, w, h, 32, SDL_PIXELFORMAT_ARGB8888));
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

void SdlDestroyer::operator()(SDL_Window* p) const {
  SDL_DestroyWindow(p);
}
void SdlDestroyer::operator()(SDL_Renderer* p) const {
  SDL_DestroyRenderer(p);
}
void SdlDestroyer::operator()(SDL_Texture* p) const {
  SDL_DestroyTexture(p);
}
void SdlDestroyer::operator()(SDL_Cursor* p) const {
  SDL_FreeCursor(p);
}
void SdlDestroyer::operator()(SDL_Surface* p) const {
  SDL_FreeSurface(p);
}

namespace {
// Backends alive at once (a test may make a second): SDL ends with the last.
int sessions = 0;

// A frameless window's title bar and borders are handed to the window
// manager, which moves and sizes the window as it does framed ones (and
// snaps, and keeps it on the screen). The form says which part is which.
SDL_HitTestResult FormHitTest(SDL_Window*, const SDL_Point* area, void* data) {
  auto* hit = static_cast<SdlBackend::HitTestData*>(data);
  const int part = hit->form->WindowPartAt(area->x, area->y);
  if (part == cfForm::kMovesWindow) {
    hit->lastX = area->x, hit->lastY = area->y;
    return SDL_HITTEST_DRAGGABLE;
  }
  switch (part) {
    case Edge::Left | Edge::Top:
      return SDL_HITTEST_RESIZE_TOPLEFT;
    case Edge::Top:
      return SDL_HITTEST_RESIZE_TOP;
    case Edge::Right | Edge::Top:
      return SDL_HITTEST_RESIZE_TOPRIGHT;
    case Edge::Right:
      return SDL_HITTEST_RESIZE_RIGHT;
    case Edge::Right | Edge::Bottom:
      return SDL_HITTEST_RESIZE_BOTTOMRIGHT;
    case Edge::Bottom:
      return SDL_HITTEST_RESIZE_BOTTOM;
    case Edge::Left | Edge::Bottom:
      return SDL_HITTEST_RESIZE_BOTTOMLEFT;
    case Edge::Left:
      return SDL_HITTEST_RESIZE_LEFT;
    default:
      return SDL_HITTEST_NORMAL;
  }
}
constexpr Uint32 kSubsystems = SDL_INIT_VIDEO | SDL_INIT_TIMER;
}  // namespace

SdlBackend::Session::Session() {
  // The forms draw themselves with cairo and hand SDL finished pictures; a
  // window surface backed by OpenGL would only cost a driver's start-up
  // (a fifth of a second with a software GL) for nothing.
  SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  if (SDL_InitSubSystem(kSubsystems) != 0) {
    const std::string why = SDL_GetError();
    if (sessions == 0) SDL_Quit();  // what the failed start did get
    Raise(ErrNo::InvalidArgument, "No display could be opened: " + why, "SdlBackend");
  }
  ++sessions;
}

SdlBackend::Session::~Session() {
  SDL_QuitSubSystem(kSubsystems);
  if (--sessions == 0) SDL_Quit();
}

SdlBackend::SdlBackend() {
  SDL_StartTextInput();
}

// The windows, then the cursors, then SDL itself: its members, in the
// reverse order of their declaration.
SdlBackend::~SdlBackend() = default;

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
  SdlPtr<SDL_Cursor>& c = cursors_[id];
  if (!c) c.reset(SDL_CreateSystemCursor(id));
  if (c) SDL_SetCursor(c.get());
}

void SdlBackend::SetCursorPicture(const SurfacePtr& picture) {
  UiBackend::SetCursorPicture(picture);
  if (!picture) {
    dragCursor_.reset();
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
  const SdlPtr<SDL_Surface> sdl = StraightAlphaSurface(small);
  if (!sdl) return;
  // The new one is set before the old one goes, which SDL would otherwise
  // replace with its default arrow for a moment.
  SdlPtr<SDL_Cursor> cursor(SDL_CreateColorCursor(sdl.get(), kSide / 2, kSide / 2));
  if (cursor) SDL_SetCursor(cursor.get());
  dragCursor_ = std::move(cursor);
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

double SdlBackend::NowMs() {
  return static_cast<double>(SDL_GetTicks64());
}

cfForm* SdlBackend::FormOf(unsigned windowId) const {
  for (const auto& [form, w] : windows_) {
    if (SDL_GetWindowID(w.window.get()) == windowId) return form;
  }
  return nullptr;
}

unsigned SdlBackend::WindowId(cfForm& form) const {
  const auto it = windows_.find(&form);
  return it == windows_.end() ? 0 : SDL_GetWindowID(it->second.window.get());
}

void SdlBackend::FormShown(cfForm& form) {
  if (windows_.count(&form)) return;
  // Made aside and handed to the map once whole: a failure on the way
  // destroys what was made so far.
  Window w;
  w.w = std::max(1, static_cast<int>(std::lround(form.ScreenWidth())));
  w.h = std::max(1, static_cast<int>(std::lround(form.ScreenHeight())));
  // A form goes where it was placed (pop-ups exactly where their owner
  // puts them, without a frame, and a dialog over its owner); one never
  // placed opens in the middle of the screen.
  const bool popUp = form.PopUp;
  const bool placed = popUp || form.HasScreenPosition();
  const int x = placed ? static_cast<int>(std::lround(form.ScreenX())) : SDL_WINDOWPOS_CENTERED;
  const int y = placed ? static_cast<int>(std::lround(form.ScreenY())) : SDL_WINDOWPOS_CENTERED;
  // A frameless form sizes itself by its borders; a framed one lets the desktop do it.
  w.window.reset(SDL_CreateWindow(form.Caption().c_str(), x, y, w.w, w.h,
                                  popUp ? SDL_WINDOW_SHOWN | SDL_WINDOW_BORDERLESS | SDL_WINDOW_POPUP_MENU
                                  : form.Borderless ? SDL_WINDOW_SHOWN | SDL_WINDOW_BORDERLESS
                                  : form.Sizable    ? SDL_WINDOW_SHOWN | SDL_WINDOW_RESIZABLE
                                                    : SDL_WINDOW_SHOWN));
  if (!w.window) Raise(ErrNo::InvalidArgument, std::string("No window: ") + SDL_GetError(), "SdlBackend");
  if (!popUp) FollowWindow(form, w.window.get());
  if (form.Borderless && !popUp) {
    w.hitTest = std::make_unique<HitTestData>();
    w.hitTest->form = &form;
    SDL_SetWindowHitTest(w.window.get(), FormHitTest, w.hitTest.get());
  }
  if (form.Sizable && !form.Borderless) {
    // The desktop's frame must not make it smaller than its layout allows.
    SDL_SetWindowMinimumSize(w.window.get(), static_cast<int>(std::ceil(form.MinWidth * form.Zoom())),
                             static_cast<int>(std::ceil(form.MinHeight * form.Zoom())));
  }
  w.renderer.reset(SDL_CreateRenderer(w.window.get(), -1, SDL_RENDERER_SOFTWARE));
  if (!w.renderer) Raise(ErrNo::InvalidArgument, std::string("No renderer: ") + SDL_GetError(), "SdlBackend");
  if (form.Modal() && form.Owner()) {
    // The desktop keeps a modal dialog above the window it belongs to (X11
    // knows how; other drivers may not, and the dialog is then only raised).
    // Told once the renderer is made: making one may make the window anew.
    if (const auto owner = windows_.find(form.Owner()); owner != windows_.end())
      SDL_SetWindowModalFor(w.window.get(), owner->second.window.get());
  }
  // The texture comes with the first picture.
  windows_.emplace(&form, std::move(w));
  form.Invalidate();
  if (!form.IconKey().empty()) FormIconChanged(form);
}

void SdlBackend::FormMoved(cfForm& form) {
  auto it = windows_.find(&form);
  if (it == windows_.end()) return;
  // The size follows with the next picture, which a new size brings.
  SDL_SetWindowPosition(it->second.window.get(), static_cast<int>(std::lround(form.ScreenX())),
                        static_cast<int>(std::lround(form.ScreenY())));
}

void SdlBackend::BringToFront(cfForm& form) {
  UiBackend::BringToFront(form);
  if (auto it = windows_.find(&form); it != windows_.end()) SDL_RaiseWindow(it->second.window.get());
}

void SdlBackend::MinimizeForm(cfForm& form) {
  UiBackend::MinimizeForm(form);
  if (auto it = windows_.find(&form); it != windows_.end()) SDL_MinimizeWindow(it->second.window.get());
}

void SdlBackend::FormTitleChanged(cfForm& form) {
  if (auto it = windows_.find(&form); it != windows_.end())
    SDL_SetWindowTitle(it->second.window.get(), form.Caption().c_str());
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
  const SdlPtr<SDL_Surface> sdl = StraightAlphaSurface(icon);
  if (sdl) SDL_SetWindowIcon(it->second.window.get(), sdl.get());
}

void SdlBackend::WorkArea(double& x, double& y, double& w, double& h) {
  SDL_Rect r{0, 0, 1920, 1040};
  SDL_GetDisplayUsableBounds(0, &r);
  x = r.x, y = r.y, w = r.w, h = r.h;
}

std::vector<ScreenArea> SdlBackend::Screens() {
  std::vector<ScreenArea> screens;
  for (int i = 0, n = SDL_GetNumVideoDisplays(); i < n; ++i) {
    SDL_Rect r;
    if (SDL_GetDisplayUsableBounds(i, &r) == 0)
      screens.push_back({double(r.x), double(r.y), double(r.w), double(r.h)});
  }
  if (screens.empty()) return UiBackend::Screens();
  return screens;
}

void SdlBackend::FollowWindow(cfForm& form, SDL_Window* window) {
  // The form knows where its window is, so that pop-ups open beside it.
  int x = 0, y = 0;
  SDL_GetWindowPosition(window, &x, &y);
  form.NoteScreenPosition(x, y);
}

void SdlBackend::FormClosed(cfForm& form) {
  windows_.erase(&form);  // its texture, renderer and window with it
}

void SdlBackend::Present(cfForm& form) {
  auto it = windows_.find(&form);
  if (it == windows_.end()) return;
  Window& w = it->second;
  const SurfacePtr& surface = form.Surface();
  std::vector<cfForm::DeviceRect> changed = form.LastPaintedRects();
  if (!w.texture || surface->Width() != w.w || surface->Height() != w.h) {
    // A picture of another size: a texture of its size, the old one given
    // back first. The window takes the size too.
    w.texture.reset();
    if (surface->Width() != w.w || surface->Height() != w.h) {
      w.w = surface->Width(), w.h = surface->Height();
      SDL_SetWindowSize(w.window.get(), w.w, w.h);
    }
    w.texture.reset(
        SDL_CreateTexture(w.renderer.get(), SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STREAMING, w.w, w.h));
    if (!w.texture) return;  // SDL refused: the next picture tries again
    changed = {{0, 0, w.w, w.h}};
  }
  // Only what was painted goes up. cairo's ARGB32 is SDL's ARGB8888 on
  // this byte order; the form is opaque, so premultiplying changes nothing.
  const PixelView v = surface->Pixels();
  for (const cfForm::DeviceRect& r : changed) {
    if (r.w <= 0 || r.h <= 0) continue;
    const SDL_Rect rect{r.x, r.y, r.w, r.h};
    SDL_UpdateTexture(w.texture.get(), &rect,
                      v.Bytes() + static_cast<std::ptrdiff_t>(r.y) * v.Stride() + r.x * 4, v.Stride());
  }
  SDL_RenderCopy(w.renderer.get(), w.texture.get(), nullptr, nullptr);
  SDL_RenderPresent(w.renderer.get());
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
    SDL_RenderReadPixels(w.renderer.get(), nullptr, SDL_PIXELFORMAT_ARGB8888, v.Bytes(), v.Stride());
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

bool SdlBackend::DoubleHitTest(const SDL_Event& e, UiEvent& event) {
  // The window manager took the press on a title bar, so the program never
  // sees it; two such presses close together in time and place are the
  // double click that maximises the window.
  cfForm* form = FormOf(e.window.windowID);
  const auto it = windows_.find(form);
  if (it == windows_.end() || !it->second.hitTest) return false;
  HitTestData& hit = *it->second.hitTest;
  const Uint32 now = e.window.timestamp;
  const bool twice = hit.lastPressMs != 0 && now - hit.lastPressMs <= kDoubleClickMs &&
                     std::abs(hit.lastX - hit.pressX) <= 4 && std::abs(hit.lastY - hit.pressY) <= 4;
  hit.lastPressMs = twice ? 0 : now;
  hit.pressX = hit.lastX, hit.pressY = hit.lastY;
  if (!twice) return false;
  event.form = form;
  event.type = UiEvent::Type::DblClick;
  event.button = 1;
  event.x = hit.lastX, event.y = hit.lastY;
  return true;
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
      if (e.window.event == SDL_WINDOWEVENT_HIT_TEST) return DoubleHitTest(e, event);
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
        const auto it = windows_.find(f);
        if (it != windows_.end() && (e.window.data1 != it->second.w || e.window.data2 != it->second.h)) {
          f->Resize(e.window.data1 / f->Zoom(), e.window.data2 / f->Zoom());
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
