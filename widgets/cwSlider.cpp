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
  min_ = v;
  max_ = std::max(max_, min_);
  setValue(value_);
  Refresh();
}

void cwSlider::setMax(double v) {
  max_ = v;
  min_ = std::min(min_, max_);
  setValue(value_);
  Refresh();
}

void cwSlider::setValue(double v) {
  v = std::clamp(v, min_, max_);
  if (v == value_) return;
  value_ = v;
  Refresh();
  RaiseEvent(Changed, "Changed");
}

std::string cwSlider::ShownValue() const {
  const std::string number = FormatDouble(value_);
  return Unit().empty() ? number : number + " " + Unit();
}

double cwSlider::LabelWidth() const {
  // Wide enough for the widest value, so the track does not jump as it changes.
  const std::string unit = Unit().empty() ? std::string() : " " + Unit();
  const double widest = std::max(MeasureUiText(FormatDouble(min_) + unit).width,
                                 MeasureUiText(FormatDouble(max_) + unit).width);
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
  return max_ > min_ ? left + (right - left) * (value_ - min_) / (max_ - min_) : left;
}

double cwSlider::ValueAtX(double x) const {
  double left, right;
  Track(left, right);
  const double along = right > left ? std::clamp((x - left) / (right - left), 0.0, 1.0) : 0;
  double v = min_ + along * (max_ - min_);
  if (Step > 0) v = min_ + std::round((v - min_) / Step) * Step;
  return std::clamp(v, min_, max_);
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
  return true;
}

bool cwSlider::W_MouseWheel(int delta, int, double, double) {
  // Rolled away from the user, the value grows.
  setValue(value_ + delta * Step);
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
      setValue(value_ - Step);
      return true;
    case Key::Right:
    case Key::Up:
      setValue(value_ + Step);
      return true;
    case Key::Home:
      setValue(min_);
      return true;
    case Key::End:
      setValue(max_);
      return true;
    default:
      return false;
  }
}

void cwSlider::StartTyping() {
  if (edit_) return;
  valueBeforeTyping_ = value_;
  Widget& field = Children().Add(MakeValueEditField(), "txtValue");
  edit_ = dynamic_cast<ValueEditField*>(&field);
  field.Move(Width() - LabelWidth(), 0, LabelWidth(), Height());
  edit_->setEditText(FormatDouble(value_));
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
  if (edit_ && v != value_) edit_->setEditText(FormatDouble(value_));
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
  state.value = value_;
  state.min = min_;
  state.max = max_;
  state.text = edit_ ? edit_->EditText() : ShownValue();
}

WidgetPoint cwSlider::W_ItemPoint(const std::string& key) {
  if (key == "knob") return {this, XOfValue(), Height() / 2};
  if (key == "value") return {this, Width() - LabelWidth() / 2, Height() / 2};
  return {};
}

QDS_JOIN_WIDGET_REGISTRY(cwSlider);

}  // namespace qds
