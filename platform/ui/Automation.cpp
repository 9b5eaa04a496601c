#include "platform/ui/Automation.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <vector>

#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"

namespace qds {

namespace {

using Json = nlohmann::ordered_json;

// Why a line failed; the runner puts the line before it.
struct LineFailure {
  std::string why;
};

[[noreturn]] void Fail(std::string why) {
  throw LineFailure{std::move(why)};
}

// The numbers of a script are read here, and only here.
int WholeNumberOf(const std::string& word, const char* what, int lowest, int highest) {
  int v = 0;
  const char* end = word.data() + word.size();
  const auto [at, ec] = std::from_chars(word.data(), end, v);
  if (word.empty() || ec != std::errc() || at != end)
    Fail(std::string(what) + " must be a whole number, not '" + word + "'");
  if (v < lowest || v > highest)
    Fail(std::string(what) + " must be from " + std::to_string(lowest) + " to " + std::to_string(highest) +
         ", not " + word);
  return v;
}

double NumberOf(const std::string& word, const char* what) {
  double v = 0;
  const char* end = word.data() + word.size();
  const auto [at, ec] = std::from_chars(word.data(), end, v);
  if (word.empty() || ec != std::errc() || at != end || !std::isfinite(v) || std::fabs(v) > 1e6)
    Fail(std::string(what) + " must be a number, not '" + word + "'");
  return v;
}

std::vector<std::string> Words(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream in(text);
  for (std::string w; in >> w;) words.push_back(w);
  return words;
}

// What a line aims at: a widget by its path, and a part of it.
struct Target {
  std::string path;
  enum class Part { Centre, Row, Item, At } part = Part::Centre;
  int row = 0;
  std::string item;
  double x = 0, y = 0;
  std::string Text() const {
    switch (part) {
      case Part::Row:
        return path + " row " + std::to_string(row);
      case Part::Item:
        return path + " item " + item;
      default:
        return path;
    }
  }
};

// Reads a target from words[from..), and the modifier words after it when
// `shift` is given; every word must be used.
Target ReadTarget(const std::vector<std::string>& words, std::size_t from, std::size_t to, int* shift) {
  if (from >= to) Fail("a target is missing");
  Target t;
  t.path = words[from];
  std::size_t i = from + 1;
  if (i < to && words[i] == "row") {
    if (i + 1 >= to) Fail("row needs a number");
    t.part = Target::Part::Row;
    t.row = WholeNumberOf(words[i + 1], "the row", 0, 1000000);
    i += 2;
  } else if (i < to && words[i] == "item") {
    if (i + 1 >= to) Fail("item needs a key");
    t.part = Target::Part::Item;
    t.item = words[i + 1];
    i += 2;
  } else if (i < to && words[i] == "at") {
    if (i + 2 >= to) Fail("at needs X and Y");
    t.part = Target::Part::At;
    t.x = NumberOf(words[i + 1], "X");
    t.y = NumberOf(words[i + 2], "Y");
    i += 3;
  }
  for (; i < to; ++i) {
    if (shift && words[i] == "shift")
      *shift |= Shift::ShiftKey;
    else if (shift && words[i] == "ctrl")
      *shift |= Shift::Ctrl;
    else if (shift && words[i] == "alt")
      *shift |= Shift::Alt;
    else
      Fail("unexpected word '" + words[i] + "'");
  }
  return t;
}

// One line of the script, read before anything runs.
struct Command {
  int number = 0;
  std::string text;
  std::string verb;
  Target target, to;
  int shift = 0;
  int amount = 0;    // wheel delta, wait milliseconds
  int keyCode = 0;   // key
  int keyChar = 0;   // the character the key types, 0 for none
  std::string rest;  // type's text, expect's value, a file, a form
  std::string property;
};

// "ctrl+z", "shift+Down", "Return": the key code, flags and typed character.
void ReadKey(const std::string& combo, Command& c) {
  static const std::map<std::string, int> kNamed = {
      {"return", Key::Return}, {"enter", Key::Return},      {"escape", Key::Escape},  {"esc", Key::Escape},
      {"tab", Key::Tab},       {"back", Key::Back},         {"backspace", Key::Back}, {"space", Key::Space},
      {"delete", Key::Delete}, {"insert", Key::Insert},     {"home", Key::Home},      {"end", Key::End},
      {"pageup", Key::PageUp}, {"pagedown", Key::PageDown}, {"up", Key::Up},          {"down", Key::Down},
      {"left", Key::Left},     {"right", Key::Right}};
  std::string key = combo;
  for (std::size_t plus; (plus = key.find('+')) != std::string::npos && plus + 1 < key.size();) {
    const std::string mod = AsciiLower(key.substr(0, plus));
    if (mod == "ctrl")
      c.shift |= Shift::Ctrl;
    else if (mod == "shift")
      c.shift |= Shift::ShiftKey;
    else if (mod == "alt")
      c.shift |= Shift::Alt;
    else
      Fail("unknown modifier '" + key.substr(0, plus) + "' (ctrl, shift, alt)");
    key = key.substr(plus + 1);
  }
  const std::string lower = AsciiLower(key);
  const bool plain = !(c.shift & (Shift::Ctrl | Shift::Alt));
  if (const auto it = kNamed.find(lower); it != kNamed.end()) {
    c.keyCode = it->second;
    if (c.keyCode == Key::Space && plain) c.keyChar = ' ';
  } else if (lower.size() == 1 &&
             ((lower[0] >= 'a' && lower[0] <= 'z') || (lower[0] >= '0' && lower[0] <= '9'))) {
    c.keyCode = std::toupper(static_cast<unsigned char>(lower[0]));
    // The character a user's key press types, as the window system sends it.
    if (plain) c.keyChar = (c.shift & Shift::ShiftKey) ? c.keyCode : lower[0];
  } else if (lower.size() >= 2 && lower[0] == 'f' &&
             std::all_of(lower.begin() + 1, lower.end(), [](char ch) { return ch >= '0' && ch <= '9'; })) {
    c.keyCode = Key::F1 - 1 + WholeNumberOf(lower.substr(1), "the function key", 1, 12);
  } else {
    Fail("unknown key '" + key + "'");
  }
}

Command ReadLine(int number, const std::string& text) {
  Command c;
  c.number = number;
  c.text = text;
  const std::vector<std::string> w = Words(text);
  c.verb = w.front();
  const std::size_t n = w.size();
  // The rest of the line after the first `words` words, as written.
  const auto restAfter = [&](std::size_t words) {
    std::size_t at = 0;
    for (std::size_t i = 0; i < words; ++i) {
      at = text.find_first_not_of(" \t", at);
      at = text.find_first_of(" \t", at);
      if (at == std::string::npos) return std::string();
    }
    at = text.find_first_not_of(" \t", at);
    return at == std::string::npos ? std::string() : text.substr(at);
  };
  const std::string& v = c.verb;
  if (v == "click" || v == "dblclick" || v == "rclick" || v == "press" || v == "release" || v == "move") {
    c.target = ReadTarget(w, 1, n, &c.shift);
  } else if (v == "drag") {
    const auto to = std::find(w.begin() + 1, w.end(), "to");
    if (to == w.end()) Fail("drag needs 'to' and a second target");
    const std::size_t at = static_cast<std::size_t>(to - w.begin());
    c.target = ReadTarget(w, 1, at, &c.shift);
    c.to = ReadTarget(w, at + 1, n, nullptr);
  } else if (v == "wheel") {
    if (n < 3) Fail("wheel needs a target and a number of notches");
    c.target = ReadTarget(w, 1, n - 1, &c.shift);
    c.amount = WholeNumberOf(w[n - 1], "the number of notches", -100, 100);
  } else if (v == "key") {
    if (n != 2) Fail("key needs one key, such as ctrl+z or Return");
    ReadKey(w[1], c);
  } else if (v == "type") {
    c.rest = restAfter(1);
    if (c.rest.empty()) Fail("type needs the text to type");
  } else if (v == "wait") {
    if (n != 2) Fail("wait needs a number of milliseconds");
    c.amount = WholeNumberOf(w[1], "the milliseconds", 0, 3600000);
  } else if (v == "screenshot") {
    if (n < 2 || n > 3) Fail("screenshot needs a file, and may name a form");
    c.rest = w[1];
    if (n == 3) c.property = w[2];
  } else if (v == "dump") {
    c.rest = restAfter(1);  // a file name may have blanks
    if (c.rest.empty()) Fail("dump needs a file");
  } else if (v == "expect") {
    if (n < 4) Fail("expect needs a target, a property and a value");
    c.target = ReadTarget(w, 1, 2, nullptr);
    c.property = w[2];
    c.rest = restAfter(3);
    if (c.rest == "\"\"") c.rest.clear();  // the empty text
  } else if (v == "close") {
    if (n > 2) Fail("close takes at most a form");
    if (n == 2) c.rest = w[1];
  } else {
    Fail("unknown command '" + v + "'");
  }
  return c;
}

// The name of a widget's step in a path: its key, or "~index" among its
// parent's children when it has none.
std::string StepName(const Widget& w) {
  if (!w.Key().empty()) return w.Key();
  if (!w.Parent()) return w.TypeName();
  const Widgets& siblings = w.Parent()->Children();
  for (int i = 0; i < siblings.Count(); ++i) {
    if (&siblings.Item(i) == &w) return "~" + std::to_string(i);
  }
  return "~?";
}

// The widget's path from its form (the form's own name not included).
std::string PathOf(const Widget& w) {
  std::string path;
  for (const Widget* at = &w; at && at->Parent(); at = at->Parent())
    path = path.empty() ? StepName(*at) : StepName(*at) + "/" + path;
  return path;
}

void Collect(Widget& w, std::vector<Widget*>& out) {
  out.push_back(&w);
  for (int i = 0; i < w.Children().Count(); ++i) Collect(w.Children().Item(i), out);
}

std::vector<cfForm*> OpenForms(PlatformRoot& root) {
  std::vector<cfForm*> forms;
  for (cfForm* f : root.Forms()) {
    if (f->Showing()) forms.push_back(f);
  }
  return forms;
}

// The form a user types into: the newest one that takes the keyboard, a
// modal dialog or an open pop-up above the window it came from.
cfForm* ActiveForm(PlatformRoot& root) {
  const std::vector<cfForm*> forms = OpenForms(root);
  for (auto it = forms.rbegin(); it != forms.rend(); ++it) {
    if ((*it)->TakesKeyboard) return *it;
  }
  return nullptr;
}

// A form by name; the newest of that name.
cfForm* FormNamed(PlatformRoot& root, const std::string& name) {
  if (name.empty()) {
    cfForm* f = ActiveForm(root);
    if (!f) Fail("no form is open");
    return f;
  }
  const std::vector<cfForm*> forms = OpenForms(root);
  for (auto it = forms.rbegin(); it != forms.rend(); ++it) {
    if ((*it)->TypeName() == name) return *it;
  }
  std::string open;
  for (cfForm* f : forms) open += (open.empty() ? "" : ", ") + f->TypeName();
  Fail("no open form '" + name + "' (open: " + (open.empty() ? "none" : open) + ")");
}

std::vector<std::string> SplitPath(const std::string& path) {
  std::vector<std::string> steps;
  std::size_t from = 0;
  for (std::size_t slash; (slash = path.find('/', from)) != std::string::npos; from = slash + 1)
    steps.push_back(path.substr(from, slash - from));
  steps.push_back(path.substr(from));
  return steps;
}

// The one widget of the open forms whose path, the form's name first, ends
// in the given steps.
Widget& FindWidget(PlatformRoot& root, const std::string& path) {
  const std::vector<std::string> want = SplitPath(path);
  if (std::any_of(want.begin(), want.end(), [](const std::string& s) { return s.empty(); }))
    Fail("'" + path + "' has an empty step");
  std::vector<Widget*> found;
  for (cfForm* f : OpenForms(root)) {
    std::vector<Widget*> all;
    Collect(*f, all);
    for (Widget* w : all) {
      // The steps from the widget up, compared from the end of the path.
      const Widget* at = w;
      bool match = true;
      for (auto step = want.rbegin(); step != want.rend(); ++step, at = at ? at->Parent() : nullptr) {
        if (!at || *step != StepName(*at)) {
          match = false;
          break;
        }
      }
      if (match) found.push_back(w);
    }
  }
  if (found.empty()) Fail("no widget '" + path + "' in the open forms");
  // A modal dialog opened over a dialog of the same kind: the user can act
  // only in the newest one, which is the one the path means.
  if (found.size() > 1) {
    cfForm* newest = found.back()->Form();
    if (newest->Modal() && newest == ActiveForm(root) &&
        std::all_of(found.begin(), found.end() - 1, [&](Widget* w) { return w->Form() != newest; }))
      return *found.back();
  }
  if (found.size() > 1) {
    std::string which;
    for (Widget* w : found) which += (which.empty() ? "" : ", ") + w->Form()->TypeName() + "/" + PathOf(*w);
    Fail("'" + path + "' is ambiguous: " + which);
  }
  return *found.front();
}

// A target as a device point of a form.
struct Aim {
  cfForm* form = nullptr;
  double x = 0, y = 0;
};

Aim AimAt(PlatformRoot& root, const Target& t) {
  Widget& w = FindWidget(root, t.path);
  if (!w.Form()) Fail("'" + t.path + "' is on no form");
  WidgetPoint p{&w, w.Width() / 2, w.Height() / 2};
  if (t.part == Target::Part::At) {
    p = {&w, t.x, t.y};
  } else if (t.part == Target::Part::Row) {
    p = w.W_RowPoint(t.row);
    if (!p.widget) Fail("'" + t.path + "' shows no row " + std::to_string(t.row));
  } else if (t.part == Target::Part::Item) {
    p = w.W_ItemPoint(t.item);
    if (!p.widget) Fail("'" + t.path + "' shows no item '" + t.item + "'");
  }
  // A menu's items are shown by its pop-up, not by the menu itself.
  if (!p.widget->ShownInTree()) Fail("'" + t.Text() + "' is not visible");
  cfForm* form = p.widget->Form();
  if (!form || !form->Showing()) Fail("'" + t.Text() + "' is on no open form");
  double fx, fy;
  p.widget->FormPosition(fx, fy);
  return {form, (fx + p.x) * form->Zoom(), (fy + p.y) * form->Zoom()};
}

std::string NumberText(double v) {
  if (v == std::floor(v) && std::fabs(v) < 1e15) return std::to_string(static_cast<long long>(v));
  std::ostringstream out;
  out << v;
  return out.str();
}

Json ItemsJson(const std::vector<WidgetState::Item>& items) {
  Json list = Json::array();
  for (const WidgetState::Item& i : items)
    list.push_back({{"key", i.key}, {"caption", i.caption}, {"enabled", i.enabled}, {"checked", i.checked}});
  return list;
}

Json WidgetJson(const Widget& w) {
  const cfForm* form = w.Form();
  const double zoom = form ? form->Zoom() : 1;
  double fx = 0, fy = 0;
  w.FormPosition(fx, fy);
  Json j;
  j["path"] = PathOf(w);
  j["class"] = w.TypeName();
  j["key"] = w.Key();
  // Screen pixels, as a user would measure them.
  j["x"] = std::lround((form ? form->ScreenX() : 0) + fx * zoom);
  j["y"] = std::lround((form ? form->ScreenY() : 0) + fy * zoom);
  j["width"] = std::lround(w.Width() * zoom);
  j["height"] = std::lround(w.Height() * zoom);
  j["visible"] = w.ShownInTree();
  j["enabled"] = w.EnabledInTree();
  j["focused"] = w.HasFocus();
  WidgetState s;
  w.W_ReportState(s);
  if (s.caption) j["caption"] = *s.caption;
  if (s.text) j["text"] = *s.text;
  if (s.value) j["value"] = *s.value;
  if (s.min) j["min"] = *s.min;
  if (s.max) j["max"] = *s.max;
  if (s.checked) j["checked"] = *s.checked;
  if (s.listCount) j["listCount"] = *s.listCount;
  if (s.listIndex) j["listIndex"] = *s.listIndex;
  if (s.scrollIndex) j["scrollIndex"] = *s.scrollIndex;
  if (s.selStart) j["selStart"] = *s.selStart;
  if (s.selLength) j["selLength"] = *s.selLength;
  if (s.selected) j["selected"] = *s.selected;
  if (s.items) j["items"] = ItemsJson(*s.items);
  return j;
}

// A value of the dump as the text `expect` compares with.
std::string AsText(const Json& v) {
  if (v.is_string()) return v.get<std::string>();
  if (v.is_boolean()) return v.get<bool>() ? "true" : "false";
  if (v.is_number()) return NumberText(v.get<double>());
  return v.dump();
}

class Runner {
 public:
  Runner(PlatformRoot& root, std::vector<Command> lines) : root_(root), lines_(std::move(lines)) {}

  // The next line, when the loop is idle.
  bool Step() {
    if (waiting_) return false;
    if (next_ >= lines_.size()) {
      root_.Quit();
      return true;
    }
    const Command& c = lines_[next_++];
    try {
      Run(c);
    } catch (const LineFailure& f) {
      Stop(c, f.why);
    } catch (const AppError& e) {
      Stop(c, e.Description());
    }
    return true;
  }
  bool Finished() const { return next_ >= lines_.size() && !waiting_; }
  const std::string& Failure() const { return failure_; }
  // The line the script stopped before, when the forms went first.
  const Command* Pending() const { return next_ < lines_.size() ? &lines_[next_] : nullptr; }
  ~Runner() {
    if (waitTimer_) root_.KillTimer(waitTimer_);
  }

 private:
  void Stop(const Command& c, const std::string& why) {
    failure_ = "line " + std::to_string(c.number) + ": " + c.text + ": " + why;
    root_.Quit();
  }

  void Post(UiEvent::Type type, const Aim& at, int button, int shift) {
    root_.PostEvent({type, at.form, button, shift, 0, at.x, at.y});
  }
  void Key(UiEvent::Type type, cfForm* form, int key, int shift) {
    root_.PostEvent({type, form, 0, shift, key, 0, 0});
  }

  void Run(const Command& c) {
    const std::string& v = c.verb;
    if (v == "click" || v == "rclick" || v == "dblclick") {
      const Aim at = AimAt(root_, c.target);
      const int button = v == "rclick" ? Button::Right : Button::Left;
      Post(UiEvent::Type::MouseMove, at, held_, c.shift);
      Post(UiEvent::Type::MouseDown, at, button, c.shift);
      Post(UiEvent::Type::MouseUp, at, button, c.shift);
      if (v == "dblclick") {
        // The window system reports the second press as the double click.
        Post(UiEvent::Type::DblClick, at, button, c.shift);
        Post(UiEvent::Type::MouseUp, at, button, c.shift);
      }
    } else if (v == "press") {
      const Aim at = AimAt(root_, c.target);
      Post(UiEvent::Type::MouseMove, at, held_, c.shift);
      Post(UiEvent::Type::MouseDown, at, Button::Left, c.shift);
      held_ = Button::Left;
      pressedOn_ = at.form;
    } else if (v == "release") {
      Aim at = AimAt(root_, c.target);
      Post(UiEvent::Type::MouseMove, InForm(at, pressedOn_), held_, c.shift);
      Post(UiEvent::Type::MouseUp, at, Button::Left, c.shift);
      held_ = 0;
      pressedOn_ = nullptr;
    } else if (v == "move") {
      Post(UiEvent::Type::MouseMove, InForm(AimAt(root_, c.target), pressedOn_), held_, c.shift);
    } else if (v == "drag") {
      const Aim from = AimAt(root_, c.target);
      const Aim to = AimAt(root_, c.to);
      Post(UiEvent::Type::MouseMove, from, 0, c.shift);
      Post(UiEvent::Type::MouseDown, from, Button::Left, c.shift);
      // The mouse goes there in steps over the screen, as a hand moves it;
      // the pressed window keeps hearing it, though it may move itself.
      const double sx = from.form->ScreenX() + from.x, sy = from.form->ScreenY() + from.y;
      const double ex = to.form->ScreenX() + to.x, ey = to.form->ScreenY() + to.y;
      constexpr int kSteps = 4;
      for (int i = 1; i <= kSteps; ++i) {
        const double f = static_cast<double>(i) / kSteps;
        root_.PostEvent({UiEvent::Type::MouseMove, from.form, Button::Left, c.shift, 0, sx + (ex - sx) * f,
                         sy + (ey - sy) * f, true});
      }
      root_.PostEvent({UiEvent::Type::MouseUp, to.form, Button::Left, c.shift, 0, ex, ey, true});
    } else if (v == "wheel") {
      const Aim at = AimAt(root_, c.target);
      Post(UiEvent::Type::MouseMove, at, held_, c.shift);
      Post(UiEvent::Type::Wheel, at, c.amount, c.shift);
    } else if (v == "key") {
      cfForm* form = FormNamed(root_, "");
      Key(UiEvent::Type::KeyDown, form, c.keyCode, c.shift);
      if (c.keyChar) Key(UiEvent::Type::KeyPress, form, c.keyChar, 0);
      Key(UiEvent::Type::KeyUp, form, c.keyCode, c.shift);
    } else if (v == "type") {
      cfForm* form = FormNamed(root_, "");
      for (char32_t ch : DecodeUtf8(c.rest)) Key(UiEvent::Type::KeyPress, form, static_cast<int>(ch), 0);
    } else if (v == "wait") {
      if (c.amount == 0) return;
      waiting_ = true;
      waitTimer_ = root_.SetTimer(nullptr, c.amount, [this] {
        root_.KillTimer(waitTimer_);
        waitTimer_ = 0;
        waiting_ = false;
      });
    } else if (v == "screenshot") {
      cfForm* form = FormNamed(root_, c.property);
      WriteAllBytes(c.rest, form->Surface()->ToPngBytes());
    } else if (v == "dump") {
      WriteUtf8Text(c.rest, DumpForms(root_) + "\n");
    } else if (v == "expect") {
      Expect(c);
    } else if (v == "close") {
      cfForm* form = FormNamed(root_, c.rest);
      root_.PostEvent({UiEvent::Type::Close, form, 0, 0, 0, 0, 0});
    }
  }

  // A point of one form in device pixels of another, through the screen.
  static Aim InForm(const Aim& at, cfForm* form) {
    if (!form || form == at.form || !form->Showing()) return at;
    return {form, at.x + at.form->ScreenX() - form->ScreenX(), at.y + at.form->ScreenY() - form->ScreenY()};
  }

  void Expect(const Command& c) {
    const Json state = WidgetJson(FindWidget(root_, c.target.path));
    if (!state.contains(c.property)) {
      std::string known;
      for (const auto& [name, value] : state.items()) known += (known.empty() ? "" : ", ") + name;
      Fail("'" + c.target.path + "' has no property '" + c.property + "' (it has " + known + ")");
    }
    const std::string actual = AsText(state[c.property]);
    if (actual != c.rest) Fail("expected " + c.property + " '" + c.rest + "', found '" + actual + "'");
  }

  PlatformRoot& root_;
  std::vector<Command> lines_;
  std::size_t next_ = 0;
  bool waiting_ = false;
  int waitTimer_ = 0;
  int held_ = 0;  // the buttons a `press` holds down
  cfForm* pressedOn_ = nullptr;
  std::string failure_;
};

}  // namespace

std::string DumpForms(PlatformRoot& root) {
  Json forms = Json::array();
  const cfForm* active = ActiveForm(root);
  for (cfForm* f : OpenForms(root)) {
    Json form;
    form["name"] = f->TypeName();
    form["title"] = f->Caption();
    // Screen pixels: the window's place and its size at its zoom.
    form["x"] = std::lround(f->ScreenX());
    form["y"] = std::lround(f->ScreenY());
    form["width"] = std::lround(f->ScreenWidth());
    form["height"] = std::lround(f->ScreenHeight());
    form["modal"] = f->Modal();
    form["active"] = f == active;
    Json widgets = Json::array();
    std::vector<Widget*> all;
    Collect(*f, all);
    for (Widget* w : all) {
      if (w != f) widgets.push_back(WidgetJson(*w));
    }
    form["widgets"] = std::move(widgets);
    forms.push_back(std::move(form));
  }
  return Json{{"forms", forms}}.dump(1);
}

int RunAutomation(PlatformRoot& root, const std::string& script, std::ostream& err) {
  // Every line is read before the first one runs: a mistake at the end
  // must not leave the work of the beginning half done.
  std::vector<Command> lines;
  std::istringstream in(script);
  int number = 0;
  for (std::string text; std::getline(in, text);) {
    ++number;
    if (!text.empty() && text.back() == '\r') text.pop_back();
    // "#" at the start of a word begins a comment, except in typed text and
    // expected values, where it is text.
    std::size_t hash = text.find('#');
    while (hash != std::string::npos && hash > 0 && text[hash - 1] != ' ' && text[hash - 1] != '\t')
      hash = text.find('#', hash + 1);
    const std::string code = hash == std::string::npos ? text : text.substr(0, hash);
    if (Words(code).empty()) continue;
    const std::string verb = Words(code).front();
    const std::string line = (verb == "type" || verb == "expect") ? text : code;
    try {
      lines.push_back(ReadLine(number, line.substr(0, line.find_last_not_of(" \t") + 1)));
    } catch (const LineFailure& f) {
      err << "line " << number << ": " << text << ": " << f.why << "\n";
      return 1;
    }
  }
  Runner runner(root, std::move(lines));
  root.OnIdle = [&runner] { return runner.Step(); };
  try {
    root.RunMessageLoop();
  } catch (const AppError& e) {
    root.OnIdle = nullptr;
    err << "quillaron: " << e.Description() << "\n";
    return 1;
  }
  root.OnIdle = nullptr;
  if (!runner.Failure().empty()) {
    err << runner.Failure() << "\n";
    return 1;
  }
  if (const Command* c = runner.Pending()) {
    err << "line " << c->number << ": " << c->text << ": no form is open any more\n";
    return 1;
  }
  return 0;
}

}  // namespace qds
