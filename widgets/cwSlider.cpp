#include "widgets/cwSlider.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/WidgetRegistry.h"
#include "widgets/ValueEditField.h"

namespace qds {

cwSlider::cwSlider() : Widget("cwSlider") {
  CanFocus = true;
  tmrTyped_.Interval = kTypingPauseMs;
  tmrTyped_.OnTimer = [this] {
    tmrTyped_.setEnabled(false);
    ApplyTyped();
  };
}

void cwSlider::setMin(double v) {
  range_.SetMin(v);
  setValue(range_.value);
  Refresh();
}

void cwSlider::setMax(double v) {
  range_.SetMax(v);
  setValue(range_.value);
  Refresh();
}

void cwSlider::setValue(double v) {
  if (!range_.SetValue(v)) return;
  Refresh();
  RaiseEvent(Changed, "Changed");
}

std::string cwSlider::ShownValue() const {
  const std::string number = FormatDouble(range_.value);
  return Unit().empty() ? number : number + " " + Unit();
}

double cwSlider::LabelWidth() const {
  // Wide enough for the widest value, so the track does not jump as it changes.
  const std::string unit = Unit().empty() ? std::string() : " " + Unit();
  const double widest = std::max(MeasureUiText(FormatDouble(range_.min) + unit).width,
                                 MeasureUiText(FormatDouble(range_.max) + unit).width);
  return std::max(40.0, std::ceil(widest) + 10);
}

double cwSlider::KnobRadius() const {
  return std::clamp(Height() / 2 - 2, 2.0, 7.0);
}

void cwSlider::Track(double& left, double& right) const {
  left = KnobRadius() + 1;
  right = std::max(left, Width() - LabelWidth() - KnobRadius() - 4);
}

double cwSlider::XOfValue() const {
  double left, right;
  Track(left, right);
  return range_.max > range_.min
             ? left + (right - left) * (range_.value - range_.min) / (range_.max - range_.min)
             : left;
}

double cwSlider::ValueAtX(double x) const {
  double left, right;
  Track(left, right);
  const double along = right > left ? std::clamp((x - left) / (right - left), 0.0, 1.0) : 0;
  double v = range_.min + along * (range_.max - range_.min);
  if (Step > 0) v = range_.min + std::round((v - range_.min) / Step) * Step;
  return std::clamp(v, range_.min, range_.max);
}

void cwSlider::W_Resize() {
  if (edit_) edit_->EditWidget().Move(Width() - LabelWidth(), 0, LabelWidth(), Height());
}

void cwSlider::W_Paint(DrawingContext& ctx, double w, double h) {
  const int disabled = EnabledInTree() ? 0 : ThemeState::Disabled;
  double left, right;
  Track(left, right);
  const double x = XOfValue(), r = KnobRadius();
  DrawPart(ctx, ThemePart::ScrollerTrack, disabled, left, h / 2 - 2, right - left, 4);
  if (!disabled) DrawPart(ctx, ThemePart::Selection, 0, left, h / 2 - 2, x - left, 4);
  const int knob = disabled | (dragging_ ? ThemeState::Pressed : 0) | (MouseOver() ? ThemeState::Hover : 0) |
                   (HasFocus() ? ThemeState::Focused : 0);
  DrawPart(ctx, ThemePart::Knob, knob, x - r, h / 2 - r, 2 * r, 2 * r);
  if (edit_) return;  // the field covers the number
  ctx.SelectFont(UiFont(), kUiFontSize, CurrentTheme().cTheme_GetThemeColor(ThemePart::Text, disabled));
  ctx.DrawText(w - LabelWidth(), 0, LabelWidth() - 2, h, ShownValue(), true, TextAlign::Right,
               TextAlign::Middle);
}

bool cwSlider::W_MouseDown(int button, int, double x, double) {
  if (button != Button::Left) return false;
  if (x >= Width() - LabelWidth()) {
    StartTyping();
    return true;
  }
  if (edit_) EndTyping(true);
  dragging_ = true;
  SetCapture();
  Refresh();
  setValue(ValueAtX(x));
  return true;
}

bool cwSlider::W_MouseMove(int, int, double x, double) {
  if (!dragging_) return false;
  setValue(ValueAtX(x));
  return true;
}

bool cwSlider::W_MouseUp(int button, int, double, double) {
  if (button != Button::Left || !dragging_) return false;
  dragging_ = false;
  ReleaseCapture();
  Refresh();
  RaiseEvent(MouseUp, "MouseUp");
  return true;
}

bool cwSlider::W_MouseWheel(int delta, int, double, double) {
  // Rolled away from the user, the value grows.
  setValue(range_.value + delta * Step);
  return true;
}

bool cwSlider::W_KeyDown(int keyCode, int) {
  if (edit_) {
    // Keys the field left: Return counts the typing, Escape takes it back.
    if (keyCode == Key::Return) {
      ApplyTyped();
      EndTyping(true);
    } else if (keyCode == Key::Escape) {
      const double before = valueBeforeTyping_;
      EndTyping(true);
      setValue(before);
    } else {
      return false;
    }
    return true;
  }
  switch (keyCode) {
    case Key::Left:
    case Key::Down:
      setValue(range_.value - Step);
      return true;
    case Key::Right:
    case Key::Up:
      setValue(range_.value + Step);
      return true;
    case Key::Home:
      setValue(range_.min);
      return true;
    case Key::End:
      setValue(range_.max);
      return true;
    default:
      return false;
  }
}

void cwSlider::StartTyping() {
  if (edit_) return;
  valueBeforeTyping_ = range_.value;
  Widget& field = Children().Add(MakeValueEditField(), "txtValue");
  edit_ = dynamic_cast<ValueEditField*>(&field);
  field.Move(Width() - LabelWidth(), 0, LabelWidth(), Height());
  edit_->setEditText(FormatDouble(range_.value));
  // Each key starts the pause again; the value follows once the user stops.
  edit_->TextTyped = [this] { tmrTyped_.setEnabled(true); };
  field.SetFocus();
  Refresh();
}

void cwSlider::ApplyTyped() {
  if (!edit_) return;
  const std::string text = edit_->EditText();
  double v = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
  // A lone sign or point is typing on its way to a number.
  if (text.empty() || ec != std::errc() || end != text.data() + text.size() || !std::isfinite(v)) return;
  setValue(v);
  // The field shows what counts, when the number was outside the range.
  if (edit_ && v != range_.value) edit_->setEditText(FormatDouble(range_.value));
}

void cwSlider::EndTyping(bool keepFocus) {
  tmrTyped_.setEnabled(false);
  if (!edit_) return;
  Widget& field = edit_->EditWidget();
  edit_ = nullptr;  // first: the field losing the focus below must not end it again
  if (keepFocus) SetFocus();
  Children().Remove(field);
  Refresh();
}

void cwSlider::W_BubblingEvent(Widget& source, const std::string& name, const std::vector<qds::Value>&) {
  // Leaving the field for another widget counts what was typed.
  if (edit_ && &source == &edit_->EditWidget() && name == "W_LostFocus") {
    ApplyTyped();
    EndTyping(false);
  }
}

void cwSlider::W_ReportState(WidgetState& state) const {
  state.value = range_.value;
  state.min = range_.min;
  state.max = range_.max;
  state.text = edit_ ? edit_->EditText() : ShownValue();
}

WidgetPoint cwSlider::W_ItemPoint(const std::string& key) {
  if (key == "knob") return {this, XOfValue(), Height() / 2};
  if (key == "value") return {this, Width() - LabelWidth() / 2, Height() / 2};
  return {};
}

QDS_JOIN_WIDGET_REGISTRY(cwSlider);

}  // namespace qds
