#include "app/ui/cwMsgBox.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "app/AppContext.h"
#include "app/modTexts.h"
#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "platform/ui/WidgetRegistry.h"
#include "widgets/cfToolDialog.h"

namespace qds {

namespace {

constexpr double kMargin = 12, kButtonWidth = 80, kButtonHeight = 26, kGap = 8, kCheckHeight = 24;
constexpr const char* kAnswerButtons[] = {"btnYes", "btnNo", "btnCancel", "btnOk"};

std::string TextOf(const std::string& key) {
  return HasApp() ? LanguageText(key).Text : std::string();
}

}  // namespace

cwMsgBox::cwMsgBox() : Widget("cwMsgBox") {
  caption_ = &Children().Add<cwLabel>("lblCaption");
  caption_->WordWrap = true;
  const struct {
    const char* key;
    const char* text;
    int result;
  } answers[] = {{"btnYes", "Yes", MsgResult::Yes},
                 {"btnNo", "No", MsgResult::No},
                 {"btnCancel", "Cancel", MsgResult::Cancel},
                 {"btnOk", "Ok", MsgResult::Ok}};
  for (const auto& a : answers) {
    auto& button = Children().Add<cwButton>(a.key);
    button.Caption = TextOf(a.text);
    button.Click = [this, result = a.result] { Answer(result); };
  }
  for (const auto& [key, text] :
       {std::pair{"btnNoMessage", "DontShowMessage"}, {"btnUseForAll", "UseForAll"}}) {
    auto& check = Children().Add<cwCheckBox>(key);
    check.Caption = TextOf(text);
    check.setVisible(false);
  }
  setStyle(MsgStyle::Ok);
}

cwButton& cwMsgBox::Button(const char* key) const {
  return static_cast<cwButton&>(Children().Item(key));
}

const std::string& cwMsgBox::Caption() const {
  return caption_->Caption();
}

void cwMsgBox::setCaption(const std::string& text) {
  caption_->Caption = text;
}

void cwMsgBox::setStyle(int style) {
  style_ = style;
  const bool yesNo = style == MsgStyle::YesNo || style == MsgStyle::YesNoCancel;
  Button("btnYes").setVisible(yesNo);
  Button("btnNo").setVisible(yesNo);
  Button("btnCancel").setVisible(style == MsgStyle::YesNoCancel);
  Button("btnOk").setVisible(!yesNo);
  // Return says yes (or Ok); Escape takes the answer that changes nothing.
  Button("btnYes").Default = yesNo;
  Button("btnOk").Default = !yesNo;
  const char* cancel = style == MsgStyle::YesNoCancel ? "btnCancel" : yesNo ? "btnNo" : "btnOk";
  for (const char* key : kAnswerButtons) Button(key).Cancel = std::string(key) == cancel;
  result_ = style == MsgStyle::YesNoCancel ? MsgResult::Cancel : yesNo ? MsgResult::No : MsgResult::Ok;
  W_Resize();
}

bool cwMsgBox::ShowMsgCheckBox() const {
  return Button("btnNoMessage").Visible();
}

void cwMsgBox::setShowMsgCheckBox(bool show) {
  Button("btnNoMessage").setVisible(show);
  W_Resize();
}

bool cwMsgBox::ShowUseForAll() const {
  return Button("btnUseForAll").Visible();
}

void cwMsgBox::setShowUseForAll(bool show) {
  Button("btnUseForAll").setVisible(show);
  W_Resize();
}

bool cwMsgBox::NoMessageTicked() const {
  return ShowMsgCheckBox() && Button("btnNoMessage").Checked;
}

double cwMsgBox::NeededHeight(double width) const {
  // The label draws its text 2 units in from each side.
  const double text = std::ceil(MeasureUiText(caption_->Caption(), width - 2 * kMargin - 4).height);
  const int checks = (ShowMsgCheckBox() ? 1 : 0) + (ShowUseForAll() ? 1 : 0);
  return kMargin + text + kGap + checks * (kCheckHeight + 4) + kButtonHeight + kMargin;
}

void cwMsgBox::W_Resize() {
  const double w = Width(), h = Height();
  if (w <= 0 || h <= 0) return;  // not placed yet
  const double buttonsTop = h - kMargin - kButtonHeight;
  double checkTop = buttonsTop - kGap;
  for (const char* key : {"btnUseForAll", "btnNoMessage"}) {
    cwButton& check = Button(key);
    if (!check.Visible()) continue;
    checkTop -= kCheckHeight + 4;
    check.Move(kMargin, checkTop + 4, w - 2 * kMargin, kCheckHeight);
  }
  caption_->Move(kMargin, kMargin, w - 2 * kMargin, std::max(0.0, checkTop - kMargin));
  // The answers sit at the bottom right, in the order Yes, No, Cancel, Ok.
  double right = w - kMargin;
  for (auto it = std::rbegin(kAnswerButtons); it != std::rend(kAnswerButtons); ++it) {
    cwButton& button = Button(*it);
    if (!button.Visible()) continue;
    button.Move(right - kButtonWidth, buttonsTop, kButtonWidth, kButtonHeight);
    right -= kButtonWidth + kGap;
  }
}

void cwMsgBox::Answer(int result) {
  const bool forAll = ShowUseForAll() && Button("btnUseForAll").Checked;
  if (forAll && result == MsgResult::Yes) result = MsgResult::YesToAll;
  if (forAll && result == MsgResult::No) result = MsgResult::Cancel;
  result_ = result;
  cfToolDialog::CloseWith(*this, result);
}

QDS_JOIN_WIDGET_REGISTRY(cwMsgBox);

}  // namespace qds
