#include "widgets/cTextBoxModel.h"

#include <exception>
#include <locale>

#include "platform/Bytes.h"
#include "platform/Error.h"
#include "platform/Unicode.h"

namespace qds {

namespace {

// What the caret jumps over in one word step.
enum class Kind { Blank, Break, Word, Other };

Kind KindOf(char32_t c) {
  if (c == U' ' || c == U'\t' || c == U'\u00A0' || c == U'\u3000') return Kind::Blank;
  if (c == U'\r' || c == U'\n') return Kind::Break;
  return IsWordChar(c) ? Kind::Word : Kind::Other;
}

}  // namespace

const cTextBoxModel::Separators& cTextBoxModel::SystemSeparators() {
  // The user's locale without making it the program's: a global locale
  // would change how every number is written, SVG files included.
  static const Separators found = [] {
    Separators s;
    try {
      const std::locale user("");  // the facet lives as long as its locale
      const auto& punct = std::use_facet<std::numpunct<wchar_t>>(user);
      if (punct.decimal_point()) s.decimal = static_cast<char32_t>(punct.decimal_point());
      if (punct.thousands_sep()) s.thousands = static_cast<char32_t>(punct.thousands_sep());
    } catch (const std::exception&) {
      // A locale named in the environment that is not installed: the C one's.
    }
    return s;
  }();
  return found;
}

std::string cTextBoxModel::Text() const {
  return EncodeUtf8(text_);
}

void cTextBoxModel::setText(std::string_view text) {
  std::u32string t = NormalBreaks(DecodeUtf8(text));
  if (!multiLine_) t = OneRow(t);
  undo_.clear();
  redo_.clear();
  Apply(std::move(t), 0, 0);
}

void cTextBoxModel::setMultiLine(bool on) {
  if (on == multiLine_) return;
  multiLine_ = on;
  if (on || RowCount() == 1) return;
  undo_.clear();
  redo_.clear();
  Apply(OneRow(text_), 0, 0);
}

void cTextBoxModel::setMaxLength(int length) {
  if (length < 0) Raise(ErrNo::InvalidArgument, "Invalid maximum length. Must be >=0", "cwTextBox");
  maxLength_ = length;
}

std::string cTextBoxModel::AllowedChars() const {
  return EncodeUtf8(allowed_);
}

void cTextBoxModel::setAllowedChars(std::string_view chars) {
  allowed_ = DecodeUtf8(chars);
  for (char32_t& c : allowed_) c = LowerCaseChar(c);
}

void cTextBoxModel::setUndoDepth(int depth) {
  undoDepth_ = std::max(0, depth);
  while (static_cast<int>(undo_.size()) > undoDepth_) undo_.pop_front();
  while (static_cast<int>(redo_.size()) > undoDepth_) redo_.pop_front();
}

int cTextBoxModel::Snap(int pos) const {
  pos = std::clamp(pos, 0, Length());
  return pos > 0 && BreakAt(pos - 1) ? pos - 1 : pos;
}

void cTextBoxModel::Select(int anchor, int caret) {
  anchor = Snap(anchor), caret = Snap(caret);
  if (anchor == anchor_ && caret == caret_) return;
  if (OnBeforeSelChange) OnBeforeSelChange();
  anchor_ = anchor, caret_ = caret;
  if (OnSelChanged) OnSelChanged();
}

void cTextBoxModel::Apply(std::u32string text, int anchor, int caret) {
  const bool moves = anchor != anchor_ || caret != caret_;
  const bool changes = text != text_;
  if (!moves && !changes) return;
  if (moves && OnBeforeSelChange) OnBeforeSelChange();
  text_ = std::move(text);
  anchor_ = anchor, caret_ = caret;
  if (changes) {
    FindRows();
    if (OnChange) OnChange();
  }
  if (moves && OnSelChanged) OnSelChanged();
}

bool cTextBoxModel::Accepts(char32_t c) const {
  const Separators& sep = SystemSeparators();
  return ((InputFilter & TextFilter::Digits) && c >= U'0' && c <= U'9') ||
         ((InputFilter & TextFilter::Blank) && c == U' ') ||
         ((InputFilter & TextFilter::ThousandsSeparator) && c == sep.thousands) ||
         ((InputFilter & TextFilter::DecimalSeparator) && c == sep.decimal) ||
         allowed_.find(LowerCaseChar(c)) != std::u32string::npos;
}

std::u32string cTextBoxModel::Filtered(std::u32string_view t) const {
  std::u32string kept;
  for (char32_t c : t) {
    // A filter is about what goes on a row; Return still starts a new one.
    if (c == U'\r' || c == U'\n')
      kept += c;
    else if (InputFilter & TextFilter::Upper)
      kept += UpperCaseChar(c);
    else if (InputFilter & TextFilter::Lower)
      kept += LowerCaseChar(c);
    else if (Accepts(c))
      kept += c;
  }
  return kept;
}

bool cTextBoxModel::Insert(std::u32string t) {
  return Replace(SelStart(), SelStart() + SelLength(), std::move(t));
}

bool cTextBoxModel::Replace(int from, int to, std::u32string t) {
  if (Locked || (t.empty() && from == to)) return false;
  t = NormalBreaks(t);
  if (!multiLine_) t = OneRow(t);
  if (!t.empty() && (InputFilter || !allowed_.empty())) {
    t = Filtered(t);
    // A character that is refused leaves a selection alone too.
    if (t.empty()) return false;
  }
  if (maxLength_ > 0) {
    const long room = static_cast<long>(maxLength_) - (Length() - (to - from));
    if (static_cast<long>(t.size()) > room) {
      std::size_t keep = static_cast<std::size_t>(std::max(0L, room));
      // Half a line break would be a stray "\r".
      if (keep > 0 && t[keep - 1] == U'\r') --keep;
      t.resize(keep);
      if (OnMaxLengthViolation) OnMaxLengthViolation();
      if (t.empty()) return false;
    }
  }
  if (undoDepth_ > 0) {
    undo_.push_back({text_, anchor_, caret_});
    if (static_cast<int>(undo_.size()) > undoDepth_) undo_.pop_front();
  }
  redo_.clear();
  const int at = from + static_cast<int>(t.size());
  Apply(text_.substr(0, from) + t + text_.substr(to), at, at);
  return true;
}

bool cTextBoxModel::DeleteBack() {
  if (SelLength() > 0) return Insert({});
  return caret_ > 0 && Replace(CharStep(caret_, -1), caret_, {});
}

bool cTextBoxModel::DeleteForward() {
  if (SelLength() > 0) return Insert({});
  return caret_ < Length() && Replace(caret_, CharStep(caret_, 1), {});
}

bool cTextBoxModel::Undo() {
  if (Locked || undo_.empty()) return false;
  State s = std::move(undo_.back());
  undo_.pop_back();
  redo_.push_back({text_, anchor_, caret_});
  Apply(std::move(s.text), s.anchor, s.caret);
  return true;
}

bool cTextBoxModel::Redo() {
  if (Locked || redo_.empty()) return false;
  State s = std::move(redo_.back());
  redo_.pop_back();
  undo_.push_back({text_, anchor_, caret_});
  Apply(std::move(s.text), s.anchor, s.caret);
  return true;
}

void cTextBoxModel::FindRows() {
  rowStarts_.assign(1, 0);
  for (int i = 0; i < Length(); ++i) {
    if (BreakAt(i)) rowStarts_.push_back(i + 2);
  }
}

int cTextBoxModel::RowOf(int pos) const {
  const auto after = std::upper_bound(rowStarts_.begin(), rowStarts_.end(), pos);
  return std::max(0, static_cast<int>(after - rowStarts_.begin()) - 1);
}

int cTextBoxModel::RowStart(int row) const {
  return rowStarts_[static_cast<std::size_t>(std::clamp(row, 0, RowCount() - 1))];
}

int cTextBoxModel::RowEnd(int row) const {
  row = std::clamp(row, 0, RowCount() - 1);
  return row + 1 < RowCount() ? rowStarts_[static_cast<std::size_t>(row + 1)] - 2 : Length();
}

int cTextBoxModel::CharStep(int pos, int direction) const {
  if (direction > 0) return pos >= Length() ? Length() : pos + (BreakAt(pos) ? 2 : 1);
  return pos <= 0 ? 0 : pos - (BreakAt(pos - 2) ? 2 : 1);
}

int cTextBoxModel::WordStep(int pos, int direction) const {
  const int n = Length();
  pos = std::clamp(pos, 0, n);
  const auto kind = [&](int i) { return KindOf(text_[static_cast<std::size_t>(i)]); };
  if (direction > 0) {
    if (pos >= n) return n;
    const Kind k = kind(pos);
    if (k == Kind::Break) {
      pos = CharStep(pos, 1);
    } else if (k != Kind::Blank) {
      while (pos < n && kind(pos) == k) ++pos;
    }
    while (pos < n && kind(pos) == Kind::Blank) ++pos;
    return pos;
  }
  while (pos > 0 && kind(pos - 1) == Kind::Blank) --pos;
  if (pos == 0) return 0;
  const Kind k = kind(pos - 1);
  if (k == Kind::Break) return CharStep(pos, -1);
  while (pos > 0 && kind(pos - 1) == k) --pos;
  return pos;
}

void cTextBoxModel::WordAt(int pos, int& start, int& end) const {
  pos = std::clamp(pos, 0, Length());
  // Past the end of a row the word is the one the row ends with.
  const auto atBreak = [&](int i) { return i >= Length() || text_[static_cast<std::size_t>(i)] == U'\r'; };
  if (atBreak(pos) && pos > RowStart(RowOf(pos))) --pos;
  if (atBreak(pos)) {
    start = end = pos;
    return;
  }
  const Kind k = KindOf(text_[static_cast<std::size_t>(pos)]);
  start = pos;
  while (start > 0 && KindOf(text_[static_cast<std::size_t>(start - 1)]) == k) --start;
  end = WordStep(start, 1);
}

std::u32string cTextBoxModel::NormalBreaks(std::u32string_view t) {
  std::u32string out;
  out.reserve(t.size());
  for (std::size_t i = 0; i < t.size(); ++i) {
    if (t[i] == U'\r' || t[i] == U'\n') {
      out += U"\r\n";
      if (t[i] == U'\r' && i + 1 < t.size() && t[i + 1] == U'\n') ++i;
    } else {
      out += t[i];
    }
  }
  return out;
}

std::u32string cTextBoxModel::OneRow(std::u32string_view t) {
  std::u32string rows = NormalBreaks(t);
  while (rows.size() >= 2 && rows.ends_with(U"\r\n")) rows.resize(rows.size() - 2);
  std::u32string out;
  out.reserve(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i] == U'\r') {
      out += U' ';
      ++i;
    } else {
      out += rows[i];
    }
  }
  return out;
}

}  // namespace qds
