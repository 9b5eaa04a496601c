#include "widgets/cwTextBox.h"

#include <algorithm>
#include <cmath>

#include "platform/Bytes.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/stock/StockDrawing.h"

namespace qds {

QDS_JOIN_WIDGET_REGISTRY(cwTextBox);

namespace {

// The caret's blink, as GTK and Windows have it by default.
constexpr double kCaretBlinkMs = 530;
// How often a drag past the edge scrolls on while the mouse rests there.
constexpr double kDragScrollMs = 50;
// The width that shows a selected line break at the end of a row.
constexpr double kBreakMark = 4;

// The least move of `offset` that shows start..start+size in a view of
// `view`; the start when it cannot all be shown.
double Reveal(double offset, double start, double size, double view) {
  if (start < offset) return start;
  if (start + size > offset + view) return std::min(start, start + size - view);
  return offset;
}

// Keys that type a character: it comes as a key press of its own, and
// nobody else may act on the key meanwhile.
bool TypesCharacter(int keyCode) {
  return keyCode == Key::Space || (keyCode >= '0' && keyCode <= '9') || (keyCode >= 'A' && keyCode <= 'Z') ||
         (keyCode >= Key::Numpad0 && keyCode < Key::F1) || (keyCode >= 186 && keyCode <= 223);
}

PlatformRoot* Root() {
  return PlatformRoot::Current();
}

}  // namespace

cwTextBox::cwTextBox() : cwTextBox("cwTextBox") {}

cwTextBox::cwTextBox(std::string typeName) : cwScrollable(std::move(typeName)) {
  CanFocus = true;
  TakesText = true;  // the first of a dialog has the focus when it opens
  MouseCursor = Cursor::IBeam;
  LineStepY = RowHeight();
  caretTimer_.Interval = kCaretBlinkMs;
  caretTimer_.OnTimer = [this] {
    caretOn_ = !caretOn_;
    Refresh();
  };
  dragTimer_.Interval = kDragScrollMs;
  dragTimer_.OnTimer = [this] { DragTo(dragX_, dragY_); };
  model_.OnChange = [this] { TextChanged(true); };
  model_.OnMaxLengthViolation = [this] { RaiseEvent(MaxLengthViolation, "MaxLengthViolation"); };
  model_.OnBeforeSelChange = [this] {
    if (BeforeSelChange) BeforeSelChange();
  };
  model_.OnSelChanged = [this] {
    Refresh();
    if (SelChanged) SelChanged();
  };
  Relayout();
}

cwTextBox::~cwTextBox() = default;

void cwTextBox::setSelStart(int start) {
  wantedX_ = -1;
  model_.Select(start, start);
}

void cwTextBox::setSelLength(int length) {
  wantedX_ = -1;
  model_.Select(SelStart(), SelStart() + std::max(0, length));
}

std::string cwTextBox::SelText() const {
  return EncodeUtf8(model_.SelChars());
}

void cwTextBox::setSelText(std::string_view text) {
  model_.Insert(DecodeUtf8(text));
}

void cwTextBox::SelectAll() {
  wantedX_ = -1;
  model_.SelectAll();
}

void cwTextBox::setMultiLine(bool on) {
  model_.setMultiLine(on);
  Relayout();
}

void cwTextBox::TextChanged(bool edited) {
  carets_.assign(static_cast<std::size_t>(RowCount()), {});
  widest_ = -1;
  Relayout();
  if (!edited) return;
  wantedX_ = -1;
  EnsureVisible();
  RaiseEvent(Change, "Change");
}

void cwTextBox::Relayout() {
  const double pad = Pad();
  setContentSize(BarAxis(TextScrollBars::Horizontal) ? Widest() + 2 * pad + 1 : 0,
                 BarAxis(TextScrollBars::Vertical) ? RowCount() * RowHeight() + 2 * pad : 0);
  // Less text, or a larger box, may leave the box's own offsets too far.
  ownX_ = std::clamp(ownX_, 0.0, OwnMaxX());
  ownY_ = std::clamp(ownY_, 0.0, OwnMaxY());
  Refresh();
}

void cwTextBox::W_Resize() {
  cwScrollable::W_Resize();
  Relayout();
}

// ---- geometry

DrawingContext& cwTextBox::Measure() const {
  if (!measure_) {
    measure_ = std::make_unique<DrawingContext>(DrawingSurface::Create(1, 1));
    measure_->SelectFont(UiFont(), kUiFontSize);
  }
  return *measure_;
}

double cwTextBox::RowHeight() const {
  if (rowHeight_ <= 0) rowHeight_ = std::ceil(Measure().MeasureText("Ag").height);
  return rowHeight_;
}

double cwTextBox::Pad() const {
  return BorderWidth() + std::max(0.0, InnerSpace());
}

double cwTextBox::TextTop() const {
  const double block = RowCount() * RowHeight();
  if (VCenter() && block + 2 * Pad() <= ViewHeight()) return (ViewHeight() - block) / 2;
  return Pad();
}

std::string cwTextBox::ShownRow(int row) const {
  const int start = model_.RowStart(row), end = model_.RowEnd(row);
  if (PassWordChar().empty())
    return EncodeUtf8(std::u32string_view(model_.Chars()).substr(start, end - start));
  const char32_t mask = DecodeUtf8(PassWordChar()).front();
  return EncodeUtf8(std::u32string(static_cast<std::size_t>(end - start), mask));
}

const std::vector<double>& cwTextBox::Carets(int row) const {
  row = std::clamp(row, 0, RowCount() - 1);
  carets_.resize(static_cast<std::size_t>(RowCount()));
  std::vector<double>& places = carets_[static_cast<std::size_t>(row)];
  if (places.empty()) {
    places = Measure().CaretPositions(ShownRow(row));
    // One place per character and one behind, even should the layout
    // count a character the text holds (a NUL) differently.
    const auto wanted = static_cast<std::size_t>(model_.RowEnd(row) - model_.RowStart(row) + 1);
    places.resize(wanted, places.back());
  }
  return places;
}

double cwTextBox::Widest() const {
  if (widest_ < 0) {
    widest_ = 0;
    for (int row = 0; row < RowCount(); ++row) widest_ = std::max(widest_, Carets(row).back());
  }
  return widest_;
}

double cwTextBox::RowX(int row) const {
  const double room = std::max(ViewWidth() - 2 * Pad(), BarAxis(TextScrollBars::Horizontal) ? Widest() : 0);
  const double spare = std::max(0.0, room - Carets(row).back());
  const double share = Alignment() == TextAlign::Right ? 1 : Alignment() == TextAlign::Center ? 0.5 : 0;
  return Pad() + spare * share;
}

int cwTextBox::PosAt(double x, double y) const {
  const int row = std::clamp(static_cast<int>(std::floor((y - TextTop()) / RowHeight())), 0, RowCount() - 1);
  const std::vector<double>& places = Carets(row);
  x -= RowX(row);
  // The nearer of the two caret places around x.
  const auto after = std::lower_bound(places.begin(), places.end(), x);
  int col = static_cast<int>(after - places.begin());
  if (after == places.end() || (col > 0 && x - places[col - 1] < *after - x)) --col;
  return model_.RowStart(row) + std::max(0, col);
}

void cwTextBox::CaretPoint(int pos, double& x, double& y) const {
  const int row = model_.RowOf(pos);
  const std::vector<double>& places = Carets(row);
  const int col = std::clamp(pos - model_.RowStart(row), 0, static_cast<int>(places.size()) - 1);
  x = RowX(row) + places[static_cast<std::size_t>(col)];
  y = TextTop() + row * RowHeight();
}

double cwTextBox::OwnMaxX() const {
  if (BarAxis(TextScrollBars::Horizontal)) return 0;
  return std::max(0.0, Widest() + 2 * Pad() + 1 - ViewWidth());
}

double cwTextBox::OwnMaxY() const {
  if (BarAxis(TextScrollBars::Vertical)) return 0;
  return std::max(0.0, RowCount() * RowHeight() + 2 * Pad() - ViewHeight());
}

void cwTextBox::ScrollTextTo(double x, double y) {
  const bool barX = BarAxis(TextScrollBars::Horizontal), barY = BarAxis(TextScrollBars::Vertical);
  const double oldX = ownX_, oldY = ownY_;
  ownX_ = barX ? 0 : std::clamp(x, 0.0, OwnMaxX());
  ownY_ = barY ? 0 : std::clamp(y, 0.0, OwnMaxY());
  ScrollTo(barX ? x : 0, barY ? y : 0);
  if (ownX_ != oldX || ownY_ != oldY) Refresh();
}

void cwTextBox::EnsureVisible() {
  double x, y;
  CaretPoint(model_.Caret(), x, y);
  const double pad = Pad();
  ScrollTextTo(Reveal(OffX(), x - pad, 1 + 2 * pad, ViewWidth()),
               Reveal(OffY(), y - pad, RowHeight() + 2 * pad, ViewHeight()));
}

int cwTextBox::TopRow() const {
  // A row cut at the top is not counted: the first whole one is.
  const int row = static_cast<int>(std::ceil((OffY() + Pad() - TextTop()) / RowHeight() - 1e-9));
  return std::clamp(row, 0, RowCount() - 1);
}

void cwTextBox::setTopRow(int row) {
  ScrollTextTo(OffX(), TextTop() + std::max(0, row) * RowHeight() - Pad());
}

int cwTextBox::VisibleRows() const {
  return std::max(1, static_cast<int>(std::floor((ViewHeight() - 2 * Pad()) / RowHeight() + 1e-9)));
}

// ---- caret and keys

void cwTextBox::ShowCaret() {
  caretOn_ = true;
  // Enabling again starts the blink's interval anew.
  if (HasFocus()) caretTimer_.setEnabled(true);
  Refresh();
}

void cwTextBox::MoveCaret(int pos, bool extend, bool keepWantedX) {
  model_.Select(extend ? model_.Anchor() : pos, pos);
  if (!keepWantedX) wantedX_ = -1;
  EnsureVisible();
}

void cwTextBox::MoveRows(int rows, bool extend) {
  double x, y;
  CaretPoint(model_.Caret(), x, y);
  if (wantedX_ < 0) wantedX_ = x;
  const int row = std::clamp(model_.RowOf(model_.Caret()) + rows, 0, RowCount() - 1);
  MoveCaret(PosAt(wantedX_, TextTop() + (row + 0.5) * RowHeight()), extend, true);
}

void cwTextBox::Page(int direction, bool extend) {
  // The rows shown move by a page as well, so the caret keeps its place
  // in the box.
  const int rows = direction * VisibleRows();
  setTopRow(TopRow() + rows);
  MoveRows(rows, extend);
}

bool cwTextBox::W_KeyDown(int keyCode, int shift) {
  int code = keyCode;
  if (KeyDown) KeyDown(code, shift);
  if (code == 0) return true;
  // Alt goes with menus and access keys.
  if (shift & Shift::Alt) return false;
  const bool ctrl = shift & Shift::Ctrl, extend = shift & Shift::ShiftKey;
  const int caret = model_.Caret();
  switch (code) {
    case Key::Left:
    case Key::Right: {
      const int direction = code == Key::Right ? 1 : -1;
      int pos;
      if (ctrl) {
        pos = model_.WordStep(caret, direction);
      } else if (!extend && model_.SelLength() > 0) {
        // A plain arrow on a selection lands on its edge on that side.
        pos = direction > 0 ? SelStart() + SelLength() : SelStart();
      } else {
        pos = model_.CharStep(caret, direction);
      }
      MoveCaret(pos, extend);
      break;
    }
    case Key::Up:
    case Key::Down:
      if (!MultiLine()) return false;
      MoveRows(code == Key::Down ? 1 : -1, extend);
      break;
    case Key::PageUp:
    case Key::PageDown:
      if (!MultiLine()) return false;
      Page(code == Key::PageDown ? 1 : -1, extend);
      break;
    case Key::Home:
      MoveCaret(ctrl ? 0 : model_.RowStart(model_.RowOf(caret)), extend);
      break;
    case Key::End:
      MoveCaret(ctrl ? model_.Length() : model_.RowEnd(model_.RowOf(caret)), extend);
      break;
    case Key::Back:
      model_.DeleteBack();
      break;
    case Key::Delete:
      if (extend)
        Cut();
      else
        model_.DeleteForward();
      break;
    case Key::Insert:
      if (ctrl)
        Copy();
      else if (extend)
        Paste();
      else
        return false;
      break;
    case Key::Return:
      if (!MultiLine() || ctrl) return false;
      model_.Insert(U"\r\n");
      break;
    default:
      if (ctrl) {
        switch (code) {
          case 'A':
            SelectAll();
            break;
          case 'C':
            Copy();
            break;
          case 'X':
            Cut();
            break;
          case 'V':
            Paste();
            break;
          case 'Z':
            if (extend)
              Redo();
            else
              Undo();
            break;
          case 'Y':
            Redo();
            break;
          default:
            return false;
        }
      } else if (!TypesCharacter(code)) {
        return false;
      }
  }
  ShowCaret();
  return true;
}

bool cwTextBox::W_KeyPress(int keyAscii) {
  int c = keyAscii;
  if (KeyPress) KeyPress(c);
  if (c == 0) return true;
  if (c < 32 || c == 127) return false;
  model_.Insert(std::u32string(1, static_cast<char32_t>(c)));
  ShowCaret();
  return true;
}

// ---- clipboard and history

void cwTextBox::Copy() {
  if (!PassWordChar().empty() || SelLength() == 0 || !Root()) return;
  std::u32string lines;
  for (char32_t c : model_.SelChars()) {
    if (c != U'\r') lines += c;
  }
  Root()->Backend().SetClipboardText(EncodeUtf8(lines));
}

void cwTextBox::Cut() {
  if (!PassWordChar().empty() || SelLength() == 0) return;
  Copy();
  model_.Insert({});
}

void cwTextBox::Paste() {
  if (Locked() || !Root()) return;
  std::string text = EncodeUtf8(cTextBoxModel::NormalBreaks(DecodeUtf8(Root()->Backend().ClipboardText())));
  bool cancel = false;
  if (BeforePaste) BeforePaste(cancel, text);
  if (!cancel) model_.Insert(DecodeUtf8(text));
}

bool cwTextBox::Undo() {
  return model_.Undo();
}

bool cwTextBox::Redo() {
  return model_.Redo();
}

// ---- focus and mouse

void cwTextBox::W_GotFocus() {
  if (Root()) focusEvent_ = Root()->EventNumber();
  if (AutoSelectAll()) SelectAll();
  ShowCaret();
}

void cwTextBox::W_LostFocus() {
  caretTimer_.setEnabled(false);
  dragTimer_.setEnabled(false);
  dragging_ = false;
  Refresh();
  bool cancel = false;
  if (Validate) Validate(cancel);
  // Not from inside the focus change that is under way: after it, and
  // only if the box is still there.
  if (cancel && Root()) {
    Root()->DeferredInvoke([this, alive = std::weak_ptr<const bool>(alive_)] {
      if (!alive.expired()) SetFocus();
    });
  }
}

void cwTextBox::W_Click() {
  if (Click) Click();
}

bool cwTextBox::ContentMouseDown(int button, int shift, double x, double y) {
  if (button != Button::Left) return false;
  ShowCaret();
  // The press that brought the focus leaves what AutoSelectAll selected.
  if (AutoSelectAll() && Root() && focusEvent_ == Root()->EventNumber()) return true;
  MoveCaret(PosAt(x + ownX_, y + ownY_), shift & Shift::ShiftKey);
  dragging_ = true;
  SetCapture();
  return true;
}

void cwTextBox::DragTo(double x, double y) {
  MoveCaret(PosAt(x + OffX(), y + OffY()), true);
}

bool cwTextBox::ContentMouseMove(int, int, double x, double y) {
  // The box holds the capture from the press to the release.
  if (!dragging_) return false;
  dragX_ = x - ScrollX(), dragY_ = y - ScrollY();
  DragTo(dragX_, dragY_);
  // Past the edge the text scrolls on by itself while the mouse rests.
  const double b = BorderWidth();
  const bool outside = dragX_ < b || dragY_ < b || dragX_ > ViewWidth() - b || dragY_ > ViewHeight() - b;
  if (outside != dragTimer_.Enabled()) dragTimer_.setEnabled(outside);
  return true;
}

bool cwTextBox::ContentMouseUp(int button, int, double, double) {
  if (button != Button::Left || !dragging_) return false;
  dragging_ = false;
  dragTimer_.setEnabled(false);
  ReleaseCapture();
  return true;
}

bool cwTextBox::ContentDblClick(int button, int, double x, double y) {
  if (button != Button::Left) return false;
  int start, end;
  model_.WordAt(PosAt(x + ownX_, y + ownY_), start, end);
  model_.Select(start, end);
  wantedX_ = -1;
  EnsureVisible();
  ShowCaret();
  return true;
}

bool cwTextBox::ContentMouseWheel(int delta, int, double, double) {
  if (!MultiLine() || BarAxis(TextScrollBars::Vertical)) return false;
  ScrollTextTo(OffX(), OffY() - delta * WheelLines * RowHeight());
  return true;
}

// ---- painting

void cwTextBox::PaintContent(DrawingContext& ctx, double x, double y, double w, double h) {
  ctx.Translate(-ownX_, -ownY_);
  x += ownX_, y += ownY_;
  ctx.SetSourceColor(StockColor(Palette::Face));
  ctx.Rectangle(x, y, w, h);
  ctx.Fill();
  // Text scrolls through the margins, never over the border.
  const double b = BorderWidth();
  ctx.Rectangle(x + b, y + b, w - 2 * b, h - 2 * b);
  ctx.Clip();
  const bool enabled = EnabledInTree(), focused = HasFocus();
  const std::int64_t ink = StockColor(enabled ? Palette::Text : Palette::Disabled);
  const double rh = RowHeight(), top = TextTop();

  if (model_.Length() == 0) {
    if (!focused && !CueBannerText().empty()) {
      ctx.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Disabled));
      const double room = std::max(0.0, ViewWidth() - 2 * Pad());
      const double spare = std::max(0.0, room - ctx.MeasureText(CueBannerText()).width);
      const double share = Alignment() == TextAlign::Right ? 1 : Alignment() == TextAlign::Center ? 0.5 : 0;
      ctx.DrawText(Pad() + spare * share, top, room, rh, CueBannerText());
    }
  } else {
    const int first = std::max(0, static_cast<int>(std::floor((y - top) / rh)));
    const int last = std::min(RowCount() - 1, static_cast<int>(std::floor((y + h - top) / rh)));
    const int selStart = SelStart(), selEnd = SelStart() + SelLength();
    const bool showSelection = selEnd > selStart && (focused || !HideSelection());
    const bool shadow = TextShadowOffsetX() != 0 || TextShadowOffsetY() != 0;
    for (int row = first; row <= last; ++row) {
      const std::vector<double>& places = Carets(row);
      const int start = model_.RowStart(row), end = model_.RowEnd(row);
      const double rowX = RowX(row), rowY = top + row * rh;
      if (showSelection && selStart <= end && selEnd >= start) {
        const double from = places[static_cast<std::size_t>(std::max(selStart, start) - start)];
        double to = places[static_cast<std::size_t>(std::min(selEnd, end) - start)];
        if (selEnd > end) to += kBreakMark;
        if (to > from) {
          ctx.SetSourceColor(StockColor(focused ? Palette::Accent : Palette::Disabled));
          ctx.Rectangle(rowX + from, rowY, to - from, rh);
          ctx.Fill();
        }
      }
      const std::string shown = ShownRow(row);
      const double width = places.back() + rh;
      if (shadow) {
        ctx.SelectFont(UiFont(), kUiFontSize, TextShadowColor());
        ctx.DrawText(rowX + TextShadowOffsetX(), rowY + TextShadowOffsetY(), width, rh, shown);
      }
      ctx.SelectFont(UiFont(), kUiFontSize, ink);
      ctx.DrawText(rowX, rowY, width, rh, shown);
    }
  }

  if (focused && enabled && caretOn_) {
    double cx, cy;
    CaretPoint(model_.Caret(), cx, cy);
    ctx.SetSourceColor(ink);
    ctx.Rectangle(std::floor(cx), cy, 1, rh);
    ctx.Fill();
  }
}

void cwTextBox::W_PaintOver(DrawingContext& ctx, double width, double height) {
  if (!Border()) return;
  ctx.SetSourceColor(StockColor(HasFocus() ? Palette::Accent : Palette::Border));
  ctx.SetLineWidth(1);
  ctx.Rectangle(0.5, 0.5, width - 1, height - 1);
  ctx.Stroke();
}

void cwTextBox::W_ReportState(WidgetState& state) const {
  state.scrollIndex = TopRow();
  // What the user sees, so a password stays hidden in a dump too.
  std::string shown;
  for (int row = 0; row < RowCount(); ++row) shown += (row ? "\r\n" : "") + ShownRow(row);
  state.text = shown;
  state.selStart = SelStart();
  state.selLength = SelLength();
}

}  // namespace qds
