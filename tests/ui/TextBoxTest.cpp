// The text box as a user meets it: typing, deleting, moving the caret,
// the clipboard, the mouse, scrolling and what is painted.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/stock/StockDrawing.h"
#include "tests/support/Pixels.h"
#include "tests/support/UiDriver.h"
#include "widgets/cwTextBox.h"

using namespace qds;

namespace {

// Writes down the boxes' own bubbled events and the keys that reach it.
struct Host : cfForm {
  std::vector<std::string> events;
  std::vector<int> keys;
  void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>&) override {
    if (name.rfind("W_", 0) != 0) events.push_back(source.Key() + ":" + name);
  }
  // Takes every key but Tab, which moves the focus on.
  bool Form_KeyDown(int keyCode, int) override {
    keys.push_back(keyCode);
    return keyCode != Key::Tab;
  }
  int Count(const std::string& event) const {
    return static_cast<int>(std::count(events.begin(), events.end(), event));
  }
};

// A form with one focused text box of 200 by 24 at (10, 10).
struct Fixture {
  UiDriver ui;
  Host form;
  cwTextBox& box;
  explicit Fixture(bool multiLine = false, double height = 24) : box(form.Children().Add<cwTextBox>("txt")) {
    form.Resize(300, 200);
    box.Move(10, 10, 200, height);
    box.setMultiLine(multiLine);
    form.Show();
    ui.Root().DoEvents();
    box.SetFocus();
  }
  void Key(int code, int shift = 0) { ui.Press(form, code, shift); }
  void Type(const std::string& text) { ui.Type(form, text); }
  void SetClipboard(const std::string& text) { ui.Backend().SetClipboardText(text); }
};

// Pixels of a picture's rectangle brighter than `level` in each channel.
int BrightPixels(const SurfacePtr& s, int x0, int y0, int x1, int y1, int level) {
  int n = 0;
  for (int y = y0; y < y1; ++y) {
    for (int x = x0; x < x1; ++x) {
      const Bgra p = PixelAt(s, x, y);
      if (p.r > level && p.g > level && p.b > level) ++n;
    }
  }
  return n;
}

}  // namespace

TEST(TextBox, MaxLengthCutsWhatDoesNotFitAndTellsOnce) {
  Fixture f;
  f.box.setMaxLength(6);
  int violations = 0, changes = 0;
  f.box.MaxLengthViolation = [&] { ++violations; };
  f.box.Change = [&] { ++changes; };
  f.SetClipboard("0123456789");
  f.Key('V', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "012345");
  EXPECT_EQ(violations, 1);
  EXPECT_EQ(f.form.Count("txt:MaxLengthViolation"), 1);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(f.form.Count("txt:Change"), 1);
  EXPECT_EQ(f.box.SelStart(), 6);

  // Full: typing changes nothing, and a selection is not lost to a
  // character that does not fit either way; replacing it does fit.
  f.Type("x");
  EXPECT_EQ(f.box.Text(), "012345");
  EXPECT_EQ(violations, 2);
  f.box.setSelStart(1);
  f.box.setSelLength(2);
  f.Key('V', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "001345");
  EXPECT_EQ(changes, 2);

  EXPECT_THROW(
      {
        try {
          f.box.setMaxLength(-1);
        } catch (const AppError& e) {
          EXPECT_EQ(e.Description(), "Invalid maximum length. Must be >=0");
          throw;
        }
      },
      AppError);
  EXPECT_EQ(f.box.MaxLength(), 6);

  // A cut that would end between "\r" and "\n" leaves the "\r" out too.
  Fixture m(true, 80);
  m.box.setMaxLength(4);
  m.Type("ab");
  m.SetClipboard("c\nd");
  m.Key('V', Shift::Ctrl);
  EXPECT_EQ(m.box.Text(), "abc");
  EXPECT_EQ(m.box.RowCount(), 1);
}

TEST(TextBox, TheFilterKeepsWhatItAllowsAndChangesCaseWhenAsked) {
  Fixture f;
  f.box.setInputFilter(TextFilter::Digits);
  f.box.setAllowedChars("A,B,C,D,E,F");
  f.Type("1a2Bx9fG-e ");
  EXPECT_EQ(f.box.Text(), "1a2B9fe");
  // A refused character over a selection leaves the selection alone.
  f.box.SelectAll();
  f.Type("z");
  EXPECT_EQ(f.box.Text(), "1a2B9fe");
  EXPECT_EQ(f.box.SelLength(), 7);

  // Upper case wins over lower case and accepts everything.
  f.box.setText("");
  f.box.setInputFilter(TextFilter::Digits | TextFilter::Lower | TextFilter::Upper);
  f.box.setAllowedChars("");
  f.Type("ab-ü x");
  EXPECT_EQ(f.box.Text(), "AB-Ü X");
  f.box.setText("");
  f.box.setInputFilter(TextFilter::Lower);
  f.Type("AbÜ");
  EXPECT_EQ(f.box.Text(), "abü");

  // Blanks and the separators of numbers in the user's locale.
  const cTextBoxModel::Separators& sep = cTextBoxModel::SystemSeparators();
  const std::string number = "1" + EncodeUtf8(sep.thousands) + "234" + EncodeUtf8(sep.decimal) + "5 x";
  f.box.setText("");
  f.box.setInputFilter(TextFilter::Digits | TextFilter::ThousandsSeparator | TextFilter::DecimalSeparator);
  f.Type(number);
  EXPECT_EQ(f.box.Text(), number.substr(0, number.size() - 2));
  f.box.setText("");
  f.box.setInputFilter(TextFilter::Digits | TextFilter::Blank);
  f.Type(number);
  EXPECT_EQ(f.box.Text(), "12345 ");
}

TEST(TextBox, DeletingTakesLineBreaksWholeAndLockedTakesNothing) {
  Fixture f(true, 80);
  f.box.setText("ab\r\ncd");
  int changes = 0;
  f.box.Change = [&] { ++changes; };
  f.Key(Key::End, Shift::Ctrl);
  f.Key(Key::Delete);
  EXPECT_EQ(f.box.Text(), "ab\r\ncd");
  EXPECT_EQ(changes, 0);

  f.box.setSelStart(4);
  f.Key(Key::Back);
  EXPECT_EQ(f.box.Text(), "abcd");
  EXPECT_EQ(f.box.RowCount(), 1);
  EXPECT_EQ(f.box.SelStart(), 2);
  f.Key(Key::Return);
  EXPECT_EQ(f.box.Text(), "ab\r\ncd");
  f.box.setSelStart(2);
  f.Key(Key::Delete);
  EXPECT_EQ(f.box.Text(), "abcd");
  f.Key(Key::Back);
  EXPECT_EQ(f.box.Text(), "acd");
  f.Key(Key::Right, Shift::ShiftKey);
  f.Key(Key::Delete);
  EXPECT_EQ(f.box.Text(), "ad");
  EXPECT_EQ(changes, 5);

  f.box.setLocked(true);
  f.box.SelectAll();
  f.Key(Key::Delete);
  f.Key(Key::Back);
  f.Type("x");
  // Looking is still allowed: Ctrl+X copies what it may not cut.
  f.Key('X', Shift::Ctrl);
  EXPECT_EQ(f.ui.Backend().ClipboardText(), "ad");
  f.SetClipboard("pasted");
  f.Key('V', Shift::Ctrl);
  f.Key('Z', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "ad");
  EXPECT_EQ(changes, 5);
}

TEST(TextBox, TheCaretStepsByCharactersWordsAndRowsAndShiftSelects) {
  Fixture f(true, 80);
  f.box.setText("one two,  three\r\nx\r\nlonger row");
  // The owner hears of a move before and after it, and of no move at all
  // when the caret stays where it is.
  std::vector<std::string> told;
  f.box.BeforeSelChange = [&] { told.push_back("before " + std::to_string(f.box.SelStart())); };
  f.box.SelChanged = [&] { told.push_back("after " + std::to_string(f.box.SelStart())); };
  f.Key(Key::Home, Shift::Ctrl);
  f.Key(Key::Right);
  f.Key(Key::Left);
  f.Key(Key::Left);
  EXPECT_EQ(told, (std::vector<std::string>{"before 0", "after 1", "before 1", "after 0"}));
  std::vector<int> stops;
  for (int i = 0; i < 6; ++i) {
    f.Key(Key::Right, Shift::Ctrl);
    stops.push_back(f.box.SelStart());
  }
  // Each word with the blanks behind it; the line break is a step of its own.
  EXPECT_EQ(stops, (std::vector<int>{4, 7, 10, 15, 17, 18}));
  f.Key(Key::Left, Shift::Ctrl);
  EXPECT_EQ(f.box.SelStart(), 17);
  f.Key(Key::Left, Shift::Ctrl);
  EXPECT_EQ(f.box.SelStart(), 15);
  f.Key(Key::Left, Shift::Ctrl);
  EXPECT_EQ(f.box.SelStart(), 10);
  f.Key(Key::Right);
  f.Key(Key::Right);
  EXPECT_EQ(f.box.SelStart(), 12);
  // Right over the end of a row goes to the next one in one step.
  f.Key(Key::End);
  EXPECT_EQ(f.box.SelStart(), 15);
  f.Key(Key::Right);
  EXPECT_EQ(f.box.SelStart(), 17);
  f.Key(Key::Left);
  EXPECT_EQ(f.box.SelStart(), 15);

  // Shift widens from the anchor, in either direction, and a plain arrow
  // lands on the selection's edge.
  f.Key(Key::Home);
  f.Key(Key::Right, Shift::ShiftKey);
  f.Key(Key::Right, Shift::ShiftKey | Shift::Ctrl);
  EXPECT_EQ(f.box.SelText(), "one ");
  f.Key(Key::Left, Shift::ShiftKey);
  EXPECT_EQ(f.box.SelText(), "one");
  f.Key(Key::End, Shift::ShiftKey | Shift::Ctrl);
  EXPECT_EQ(f.box.SelStart(), 0);
  EXPECT_EQ(f.box.SelLength(), static_cast<int>(f.box.Text().size()));
  f.Key(Key::Home, Shift::ShiftKey);
  EXPECT_EQ(f.box.SelText(), "one two,  three\r\nx\r\n");
  f.Key(Key::Right);
  EXPECT_EQ(f.box.SelStart(), 20);
  EXPECT_EQ(f.box.SelLength(), 0);

  // Up and Down keep the column the caret aimed at across a short row.
  f.Key(Key::Home, Shift::Ctrl);
  f.Key(Key::End);
  f.Key(Key::Down);
  EXPECT_EQ(f.box.SelStart(), 18);  // the end of "x"
  f.Key(Key::Down);
  EXPECT_GT(f.box.SelStart(), 20 + 8);
  f.Key(Key::Up, Shift::ShiftKey);
  f.Key(Key::Up, Shift::ShiftKey);
  EXPECT_EQ(f.box.SelStart(), 15);
  EXPECT_EQ(f.box.SelText().substr(0, 5), "\r\nx\r\n");
}

TEST(TextBox, UndoGoesBackAsManyStepsAsItsDepthAndRedoForward) {
  Fixture f;
  f.Type("abc");
  f.Key('Z', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "ab");
  f.Key('Z', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "ab");  // one step deep by default
  f.Key('Y', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "abc");
  EXPECT_EQ(f.box.SelStart(), 3);

  f.box.setText("");
  f.box.setUndoDepth(3);
  f.Type("wxyz");
  f.box.SelectAll();
  f.Key(Key::Delete);
  for (int i = 0; i < 5; ++i) f.Key('Z', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "wx");
  f.Key('Z', Shift::Ctrl | Shift::ShiftKey);
  f.Key('Z', Shift::Ctrl | Shift::ShiftKey);
  // Back to the moment before the delete, with what was selected then.
  EXPECT_EQ(f.box.Text(), "wxyz");
  EXPECT_EQ(f.box.SelLength(), 4);
  // A new edit forgets what could have been redone.
  f.Type("!");
  f.Key('Y', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "!");
}

TEST(TextBox, TheClipboardCarriesTextBetweenBoxesThroughTheDesktop) {
  Fixture f(true, 80);
  cwTextBox& line = f.form.Children().Add<cwTextBox>("line");
  line.Move(10, 100, 200, 24);
  f.box.setText("one\r\ntwo");
  f.Key('A', Shift::Ctrl);
  f.Key(Key::Insert, Shift::Ctrl);
  EXPECT_EQ(f.ui.Backend().ClipboardText(), "one\ntwo");
  f.Key('X', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "");
  f.Key('V', Shift::Ctrl);
  f.Key(Key::Insert, Shift::ShiftKey);
  EXPECT_EQ(f.box.Text(), "one\r\ntwoone\r\ntwo");
  EXPECT_EQ(f.box.RowCount(), 3);

  // One row keeps a pasted text on it: breaks inside become blanks, those
  // at the end go.
  line.SetFocus();
  f.SetClipboard("a\r\nb\nc\n\n");
  f.Key(Key::Insert, Shift::ShiftKey);
  EXPECT_EQ(line.Text(), "a b c");
  EXPECT_EQ(line.RowCount(), 1);
  line.SelectAll();
  f.Key(Key::Delete, Shift::ShiftKey);
  EXPECT_EQ(line.Text(), "");
  EXPECT_EQ(f.ui.Backend().ClipboardText(), "a b c");

  // A password is neither copied nor cut.
  line.PassWordChar = "*";
  f.Type("secret");
  line.SelectAll();
  f.Key('C', Shift::Ctrl);
  f.Key('X', Shift::Ctrl);
  EXPECT_EQ(f.ui.Backend().ClipboardText(), "a b c");
  EXPECT_EQ(line.Text(), "secret");
  WidgetState shown;
  line.W_ReportState(shown);
  EXPECT_EQ(shown.text, "******");
}

TEST(TextBox, BeforePasteMayChangeTheTextOrStopThePaste) {
  Fixture f;
  bool stop = false;
  std::string seen;
  f.box.BeforePaste = [&](bool& cancel, std::string& text) {
    seen = text;
    cancel = stop;
    text = "[" + text + "]";
  };
  f.SetClipboard("x\ny");
  f.Key('V', Shift::Ctrl);
  EXPECT_EQ(seen, "x\r\ny");  // the box's own line breaks
  EXPECT_EQ(f.box.Text(), "[x y]");
  stop = true;
  f.Key('V', Shift::Ctrl);
  EXPECT_EQ(f.box.Text(), "[x y]");
}

TEST(TextBox, KeysTheBoxHasNoUseForClimbToItsParents) {
  Fixture f;
  for (int key : {Key::Escape, Key::Return, Key::F1, Key::Up, Key::PageDown, int('S')}) {
    f.Key(key, key == 'S' ? Shift::Ctrl : 0);
  }
  EXPECT_EQ(f.form.keys, (std::vector<int>{Key::Escape, Key::Return, Key::F1, Key::Up, Key::PageDown, 'S'}));
  EXPECT_EQ(f.box.Text(), "");
  // Tab moves the focus on; what the box takes stays with it.
  cwTextBox& next = f.form.Children().Add<cwTextBox>("next");
  next.Move(10, 100, 100, 24);
  f.form.keys.clear();
  for (int key : {Key::Left, Key::Home, Key::Back, Key::Delete, int('A'), Key::Space}) f.Key(key);
  f.Key('A', Shift::Ctrl);
  EXPECT_TRUE(f.form.keys.empty());
  f.Key(Key::Tab);
  EXPECT_TRUE(next.HasFocus());
  // Validate keeps the focus in a box whose text is not right yet.
  next.Validate = [](bool& cancel) { cancel = true; };
  f.Key(Key::Tab);
  f.ui.Root().DoEvents();
  EXPECT_TRUE(next.HasFocus());
  next.Validate = nullptr;
  f.Key(Key::Tab);
  EXPECT_TRUE(f.box.HasFocus());

  // A multi-line box takes Return and the rows' keys, but not Ctrl+Return.
  Fixture m(true, 80);
  m.Key(Key::Return);
  m.Key(Key::Up);
  m.Key(Key::PageDown);
  EXPECT_TRUE(m.form.keys.empty());
  EXPECT_EQ(m.box.Text(), "\r\n");
  m.Key(Key::Return, Shift::Ctrl);
  EXPECT_EQ(m.form.keys, std::vector<int>{Key::Return});

  // An owner's KeyDown or KeyPress may take a key before the box.
  m.box.KeyDown = [](int& code, int) {
    if (code == Key::Escape) code = 0;
  };
  m.box.KeyPress = [](int& c) {
    if (c == '#') c = 0;
  };
  m.Key(Key::Escape);
  m.Type("a#b");
  EXPECT_EQ(m.form.keys, std::vector<int>{Key::Return});
  EXPECT_EQ(m.box.Text(), "\r\nab");
}

TEST(TextBox, TheCueShowsOnlyInAnEmptyBoxWithoutFocusAndTheCaretBlinks) {
  Fixture f;
  cwTextBox& other = f.form.Children().Add<cwTextBox>("other");
  other.Move(10, 100, 100, 24);
  f.box.CueBannerText = "Search the library";
  other.SetFocus();
  // The cue in its light colour: many pixels brighter than the face, none
  // as bright as text.
  const auto inside = [&](int level) {
    return BrightPixels(f.ui.Screenshot(f.form), 16, 12, 208, 32, level);
  };
  const int face = static_cast<int>(StockColor(Palette::Face) & 0xFF);
  EXPECT_GT(inside(face + 16), 40);
  EXPECT_EQ(inside(0xA0), 0);
  f.box.SetFocus();
  EXPECT_EQ(inside(face + 16), 0);
  other.SetFocus();
  f.box.setText("Search the library");
  EXPECT_GT(inside(0xA0), 40);

  // The caret: on at once, off after the blink's interval, on again with a key.
  f.box.setText("");
  f.box.SetFocus();
  const auto caret = [&] { return BrightPixels(f.ui.Screenshot(f.form), 12, 12, 17, 32, 0xA0); };
  EXPECT_GT(caret(), 8);
  f.ui.Backend().AdvanceMs(600);
  EXPECT_EQ(caret(), 0);
  f.Key(Key::Left);
  EXPECT_GT(caret(), 8);
}

TEST(TextBox, TheMousePlacesTheCaretSelectsByDraggingAndPicksWordsByDoubleClick) {
  Fixture f;
  f.box.setText("hello brave world");
  const double y = 22;
  // Near the place between "hello " and "brave", on either side, lands there.
  const double gap = 10 + 4 + MeasureUiText("hello ").width;
  f.ui.ClickAt(f.form, gap - 1, y);
  EXPECT_EQ(f.box.SelStart(), 6);
  f.ui.ClickAt(f.form, gap + 2, y);
  EXPECT_EQ(f.box.SelStart(), 6);
  EXPECT_EQ(f.box.SelLength(), 0);
  f.ui.ClickAt(f.form, 12, y);
  EXPECT_EQ(f.box.SelStart(), 0);
  f.ui.Mouse(f.form, UiEvent::Type::MouseMove, gap, y);
  f.ui.Backend().Push({UiEvent::Type::MouseDown, &f.form, Button::Left, Shift::ShiftKey, 0, gap, y});
  f.ui.Backend().Push({UiEvent::Type::MouseUp, &f.form, Button::Left, Shift::ShiftKey, 0, gap, y});
  f.ui.Root().DoEvents();
  EXPECT_EQ(f.box.SelText(), "hello ");
  f.ui.ClickAt(f.form, 205, y);
  EXPECT_EQ(f.box.SelStart(), 17);

  // Dragging from the gap to the left edge and beyond.
  f.ui.Mouse(f.form, UiEvent::Type::MouseDown, gap, y);
  f.ui.Mouse(f.form, UiEvent::Type::MouseMove, 0, y);
  EXPECT_EQ(f.box.SelText(), "hello ");
  f.ui.Mouse(f.form, UiEvent::Type::MouseUp, 0, y);

  // A double click takes the word with the blanks behind it.
  f.ui.Mouse(f.form, UiEvent::Type::DblClick, gap + 10, y);
  EXPECT_EQ(f.box.SelText(), "brave ");
  f.ui.Mouse(f.form, UiEvent::Type::DblClick, 200, y);
  EXPECT_EQ(f.box.SelText(), "world");

  // AutoSelectAll: the click that brings the focus selects everything.
  cwTextBox& other = f.form.Children().Add<cwTextBox>("other");
  other.Move(10, 100, 100, 24);
  other.SetFocus();
  f.box.AutoSelectAll = true;
  f.ui.Click(f.box);
  EXPECT_EQ(f.box.SelLength(), 17);
  f.ui.Click(f.box);
  EXPECT_EQ(f.box.SelLength(), 0);
}

TEST(TextBox, LongTextScrollsToShowTheCaret) {
  // Many rows: the vertical bar comes, and the caret's row is always shown.
  Fixture f(true, 80);
  std::string rows;
  for (int i = 0; i < 30; ++i) rows += (i ? "\r\n" : "") + std::string("row ") + std::to_string(i);
  f.box.setText(rows);
  f.ui.Root().DoEvents();
  EXPECT_TRUE(f.box.VBarShown());
  EXPECT_EQ(f.box.TopRow(), 0);
  f.Key(Key::End, Shift::Ctrl);
  EXPECT_EQ(f.box.TopRow() + f.box.VisibleRows(), 30);
  f.Key(Key::Home, Shift::Ctrl);
  EXPECT_EQ(f.box.TopRow(), 0);
  const int page = f.box.VisibleRows();
  EXPECT_GE(page, 3);
  f.Key(Key::PageDown);
  EXPECT_EQ(f.box.TopRow(), page);
  EXPECT_EQ(f.box.SelStart(), f.box.Text().find("row " + std::to_string(page)));
  f.Key(Key::Up);
  EXPECT_EQ(f.box.TopRow(), page - 1);
  f.box.setTopRow(20);
  f.box.setSelStart(0);
  f.box.EnsureVisible();
  EXPECT_EQ(f.box.TopRow(), 0);

  // Dragging below the box scrolls on while the mouse rests there.
  f.ui.Mouse(f.form, UiEvent::Type::MouseDown, 12, 20);
  f.ui.Mouse(f.form, UiEvent::Type::MouseMove, 30, 150);
  const int first = f.box.TopRow();
  for (int i = 0; i < 5; ++i) {
    f.ui.Backend().AdvanceMs(60);
    f.ui.Root().DoEvents();
  }
  EXPECT_GT(f.box.TopRow(), first + 2);
  f.ui.Mouse(f.form, UiEvent::Type::MouseUp, 30, 150);
  EXPECT_EQ(f.box.SelStart(), 0);
  EXPECT_GT(f.box.SelLength(), 30);

  // One long row scrolls sideways: what shows at the right edge follows the caret.
  Fixture s;
  s.box.setText(std::string(80, 'm'));
  s.Key(Key::Home);
  s.ui.ClickAt(s.form, 205, 22);
  EXPECT_LT(s.box.SelStart(), 40);
  s.Key(Key::End);
  s.ui.ClickAt(s.form, 205, 22);
  EXPECT_EQ(s.box.SelStart(), 80);
}
