#pragma once
// The text field of the whole program, one row or many, drawn by the
// program itself: a caret, a selection, the desktop's clipboard, a filter
// on what may be typed and a limit of length. The text and its rules live
// in cTextBoxModel; this class shows them and turns keys and the mouse
// into edits.
//
// Keys the box has no use for climb to its parent (Escape, Tab, the
// function keys, Return in a single-line box, so that a dialog's default
// button gets it; Up, Down and the page keys in a single-line box, so that
// a spinner or a list around it can take them). Ctrl+Z undoes, Ctrl+Y and
// Ctrl+Shift+Z redo.
//
// Text on the clipboard has "\n" between lines, as other Linux programs
// expect; pasted text may have any kind of line break. A single-line box
// keeps a pasted text on one row (see cTextBoxModel::OneRow).

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/stock/cwScrollable.h"
#include "platform/ui/PlatformRoot.h"
#include "platform/ui/Property.h"
#include "platform/ui/WidgetRegistry.h"
#include "widgets/cTextBoxModel.h"

namespace qds {

class DrawingContext;

// Which scroll bars a multi-line box may show, each only when it is needed.
namespace TextScrollBars {
constexpr int None = 0, Horizontal = 1, Vertical = 2, Both = 3;
}

class cwTextBox : public cwScrollable {
 public:
  cwTextBox();
  ~cwTextBox() override;

  // Rows are separated by "\r\n". Setting the text starts a new undo
  // history and tells Change; the caret goes to the start, so that a long
  // text shows from its beginning.
  std::string Text() const { return model_.Text(); }
  void setText(std::string_view text) { model_.setText(text); }
  // Shown in a light colour while the text is empty and the box has no focus.
  Property<std::string> CueBannerText{*this};
  // Nothing can be typed, pasted, cut or undone; the text can still be
  // selected and copied.
  bool Locked() const { return model_.Locked; }
  void setLocked(bool on) { model_.Locked = on; }
  int UndoDepth() const { return model_.UndoDepth(); }
  void setUndoDepth(int depth) { model_.setUndoDepth(depth); }
  // The margin between the border and the text, on every side.
  Property<double> InnerSpace{*this, 3, [this] { Relayout(); }};
  // TextAlign::Left, Right or Center, for each row.
  Property<int> Alignment{*this, 0};
  // Rows that fit with room to spare sit in the middle of the height.
  Property<bool> VCenter{*this, true, [this] { Relayout(); }};
  // When set, its first character is shown for each character of the
  // text, and copying and cutting are refused.
  Property<std::string> PassWordChar{*this, {}, [this] { TextChanged(false); }};
  // In characters; 0: no limit. Below 0 raises an AppError.
  int MaxLength() const { return model_.MaxLength(); }
  void setMaxLength(int length) { model_.setMaxLength(length); }
  // In characters from the start of the text.
  int SelStart() const { return model_.SelStart(); }
  void setSelStart(int start);
  int SelLength() const { return model_.SelLength(); }
  void setSelLength(int length);
  std::string SelText() const;
  // Replaces the selection as typing would: filter, limit, undo, Change.
  void setSelText(std::string_view text);
  void SelectAll();
  // The whole text is selected whenever the box gets the focus.
  Property<bool> AutoSelectAll{*this, false};
  // The selection is shown only while the box has the focus.
  Property<bool> HideSelection{*this, true};
  Property<bool> Border{*this, true, [this] { Relayout(); }};
  // Non-zero offsets draw the text once more, in the shadow's colour,
  // under the text.
  Property<double> TextShadowOffsetX{*this, 0};
  Property<double> TextShadowOffsetY{*this, 0};
  Property<std::int64_t> TextShadowColor{*this, 0};
  bool MultiLine() const { return model_.MultiLine(); }
  void setMultiLine(bool on);
  // TextScrollBars flags, for a multi-line box; a single-line one scrolls
  // sideways without a bar.
  Property<int> ScrollBars{*this, TextScrollBars::Vertical, [this] { Relayout(); }};

  // What may be typed: TextFilter bits, and further characters of any case.
  int InputFilter() const { return model_.InputFilter; }
  void setInputFilter(int bits) { model_.InputFilter = bits; }
  std::string AllowedChars() const { return model_.AllowedChars(); }
  void setAllowedChars(std::string_view chars) { model_.setAllowedChars(chars); }

  int RowCount() const { return model_.RowCount(); }
  // The first row shown at the top.
  int TopRow() const;
  void setTopRow(int row);
  double RowHeight() const;
  // How many whole rows the box shows.
  int VisibleRows() const;
  // Scrolls the least that shows the caret.
  void EnsureVisible();
  using cwScrollable::EnsureVisible;

  // The clipboard and the history, as the keys reach them.
  void Copy();
  void Cut();
  void Paste();
  bool Undo();
  bool Redo();

  // Events. Change and MaxLengthViolation are also raised up the tree by
  // those names. A KeyDown or KeyPress handler that sets the code to 0
  // takes the key from the box; BeforePaste may change the text or cancel.
  std::function<void()> Change;
  std::function<void(int& keyCode, int shift)> KeyDown;
  std::function<void(int& keyAscii)> KeyPress;
  std::function<void()> MaxLengthViolation;
  std::function<void(bool& cancel, std::string& text)> BeforePaste;
  std::function<void()> BeforeSelChange;
  std::function<void()> SelChanged;
  std::function<void()> Click;
  // On losing the focus; cancel takes the focus back.
  std::function<void(bool& cancel)> Validate;

  void W_Resize() override;
  bool W_KeyDown(int keyCode, int shift) override;
  bool W_KeyPress(int keyAscii) override;
  void W_GotFocus() override;
  void W_LostFocus() override;
  void W_Click() override;
  void W_PaintOver(DrawingContext& ctx, double width, double height) override;
  void W_ReportState(WidgetState& state) const override;

 protected:
  // For a class built on the text box, under its own name.
  explicit cwTextBox(std::string typeName);
  void PaintContent(DrawingContext& ctx, double x, double y, double w, double h) override;
  bool ContentMouseDown(int button, int shift, double x, double y) override;
  bool ContentMouseMove(int button, int shift, double x, double y) override;
  bool ContentMouseUp(int button, int shift, double x, double y) override;
  bool ContentDblClick(int button, int shift, double x, double y) override;
  bool ContentMouseWheel(int delta, int shift, double x, double y) override;

 private:
  // The text or its look changed: measure again, place the bars, and
  // (when it was an edit) show the caret and tell Change.
  void TextChanged(bool edited);
  void Relayout();

  // Geometry, in the text's own coordinates: the content of the scrolling
  // base, moved on by the offsets the box keeps itself where no bar is.
  DrawingContext& Measure() const;
  double BorderWidth() const { return Border() ? 1 : 0; }
  double Pad() const;
  double TextTop() const;
  double RowX(int row) const;
  double Widest() const;
  // Caret places of a row as shown (PassWordChar applied).
  const std::vector<double>& Carets(int row) const;
  std::string ShownRow(int row) const;
  int PosAt(double x, double y) const;
  void CaretPoint(int pos, double& x, double& y) const;
  // Scrolling: through the bar where the box has one, else its own.
  bool BarAxis(int flag) const { return MultiLine() && (ScrollBars() & flag); }
  double OffX() const { return ScrollX() + ownX_; }
  double OffY() const { return ScrollY() + ownY_; }
  double OwnMaxX() const;
  double OwnMaxY() const;
  void ScrollTextTo(double x, double y);

  // The caret to `pos`, the anchor along with it unless `extend`.
  void MoveCaret(int pos, bool extend, bool keepWantedX = false);
  void MoveRows(int rows, bool extend);
  void Page(int direction, bool extend);
  // A key or click: the caret shows at once and blinks from now on.
  void ShowCaret();
  // Extends the selection to a point of the widget while dragging.
  void DragTo(double x, double y);

  cTextBoxModel model_;
  mutable std::unique_ptr<DrawingContext> measure_;
  mutable double rowHeight_ = 0;
  mutable std::vector<std::vector<double>> carets_;  // per row; empty until measured
  mutable double widest_ = -1;
  double ownX_ = 0, ownY_ = 0;
  double wantedX_ = -1;  // where Up and Down aim, kept across short rows
  bool caretOn_ = true;
  bool dragging_ = false;
  double dragX_ = 0, dragY_ = 0;
  unsigned long focusEvent_ = 0;
  Timer caretTimer_{*this};
  Timer dragTimer_{*this};
  // Gone with the box: tells work deferred by the box that it is no more.
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace qds
