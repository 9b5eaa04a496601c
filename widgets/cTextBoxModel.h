#pragma once
// The text behind a text box, without any drawing: the characters, the
// selection, the rows, what may be typed, and the undo history. cwTextBox
// shows it and turns keys and the mouse into calls of this class.
//
// Positions and lengths count characters (Unicode code points), which is
// what a user counts; the text is kept with "\r\n" between rows, and a
// position never falls between the two.

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qds {

// What the InputFilter bits let through; 0 lets everything through.
namespace TextFilter {
constexpr int Digits = 1, Lower = 2, Upper = 4, Blank = 8, ThousandsSeparator = 16, DecimalSeparator = 32;
}

class cTextBoxModel {
 public:
  // The separators of numbers in the user's own locale, looked up once.
  struct Separators {
    char32_t thousands = U',', decimal = U'.';
  };
  static const Separators& SystemSeparators();

  // The whole text. Setting it starts a new history and puts the caret at
  // the start; line breaks of any kind become "\r\n" (in a single-line
  // text, a blank: see OneRow).
  std::string Text() const;
  void setText(std::string_view text);
  const std::u32string& Chars() const { return text_; }
  int Length() const { return static_cast<int>(text_.size()); }

  bool MultiLine() const { return multiLine_; }
  // Turned off, the rows are joined into one.
  void setMultiLine(bool on);
  bool Locked = false;
  int MaxLength() const { return maxLength_; }
  // 0: no limit. Below 0 raises an AppError.
  void setMaxLength(int length);
  int InputFilter = 0;  // TextFilter bits
  // Accepted as well as what InputFilter accepts, whatever their case.
  std::string AllowedChars() const;
  void setAllowedChars(std::string_view chars);
  int UndoDepth() const { return undoDepth_; }
  void setUndoDepth(int depth);

  // The selection runs from the anchor, where it began, to the caret.
  int Anchor() const { return anchor_; }
  int Caret() const { return caret_; }
  int SelStart() const { return std::min(anchor_, caret_); }
  int SelLength() const { return std::abs(caret_ - anchor_); }
  std::u32string SelChars() const { return text_.substr(SelStart(), SelLength()); }
  // Held within the text and off the middle of a line break.
  void Select(int anchor, int caret);
  void SelectAll() { Select(0, Length()); }

  // Puts `t` in place of the selection, as typing and pasting do: nothing
  // when there is nothing to put and nothing to replace, or when Locked;
  // the filter and MaxLength have their say first. True when the text
  // changed; the caret then stands behind the new text.
  bool Insert(std::u32string t);
  // Backspace and Delete: the selection, else the character before or
  // after the caret ("\r\n" together).
  bool DeleteBack();
  bool DeleteForward();
  bool CanUndo() const { return !undo_.empty(); }
  bool CanRedo() const { return !redo_.empty(); }
  bool Undo();
  bool Redo();

  // Rows are the lines between "\r\n"; an empty text has one.
  int RowCount() const { return static_cast<int>(rowStarts_.size()); }
  int RowOf(int pos) const;
  int RowStart(int row) const;
  // Where the row's line break begins, or the end of the text.
  int RowEnd(int row) const;

  // The next caret place in a direction (-1, +1): a character ("\r\n" as
  // one), or a word: the characters of one kind, then the blanks behind.
  int CharStep(int pos, int direction) const;
  int WordStep(int pos, int direction) const;
  // The word a double click at `pos` picks, by the same rule.
  void WordAt(int pos, int& start, int& end) const;

  // Told after the text changed (by any means), before SelChanged.
  std::function<void()> OnChange;
  // Told when an insertion was cut short by MaxLength.
  std::function<void()> OnMaxLengthViolation;
  std::function<void()> OnBeforeSelChange;
  std::function<void()> OnSelChanged;

  // "\r\n", "\r" and "\n" all become "\r\n".
  static std::u32string NormalBreaks(std::u32string_view t);
  // What a single-line box keeps of a text with line breaks: the breaks at
  // the end go (a line copied whole from an editor ends in one), and each
  // other one becomes a blank, so words do not run together.
  static std::u32string OneRow(std::u32string_view t);

 private:
  struct State {
    std::u32string text;
    int anchor, caret;
  };
  // Replaces from..to by t, following the rules of Insert.
  bool Replace(int from, int to, std::u32string t);
  std::u32string Filtered(std::u32string_view t) const;
  bool Accepts(char32_t c) const;
  // Sets text and selection at once, telling of the change.
  void Apply(std::u32string text, int anchor, int caret);
  void FindRows();
  int Snap(int pos) const;
  bool BreakAt(int pos) const { return pos >= 0 && pos + 1 < Length() && text_[pos] == U'\r'; }

  std::u32string text_;
  int anchor_ = 0, caret_ = 0;
  std::vector<int> rowStarts_{0};
  bool multiLine_ = false;
  int maxLength_ = 0;
  std::u32string allowed_;  // in lower case
  int undoDepth_ = 1;
  std::deque<State> undo_, redo_;
};

}  // namespace qds
