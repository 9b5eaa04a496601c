#include "platform/stock/cwDropDown.h"

#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

class DropDownPopUp : public cfForm {
 public:
  explicit DropDownPopUp(cwDropDown& owner) : cfForm("DropDownPopUp"), owner_(&owner) {
    PopUp = true;
    BackColor = StockColor(Palette::Face);
  }
  bool Form_KeyDown(int keyCode, int) override {
    if (keyCode != Key::Escape) return false;
    Close();
    return true;
  }
  void Form_Unload() override {
    if (owner_) owner_->PopupGone();
  }
  void Detach() { owner_ = nullptr; }

 private:
  cwDropDown* owner_;
};

cwDropDown::cwDropDown() : cwDropDown("cwDropDown") {}

cwDropDown::cwDropDown(std::string typeName)
    : Widget(std::move(typeName)), popup_(std::make_shared<DropDownPopUp>(*this)) {
  CanFocus = true;
}

cwDropDown::~cwDropDown() {
  static_cast<DropDownPopUp&>(*popup_).Detach();
  DisposeForm(std::move(popup_));
}

Widget& cwDropDown::setContent(std::unique_ptr<Widget> content) {
  if (content_) popup_->Children().Remove(*content_);
  content_ = &popup_->Children().Add(std::move(content), "Content");
  return *content_;
}

void cwDropDown::OpenDropDown() {
  if (IsOpen()) return;
  double x = 0, y = 0, screenX = 0, screenY = 0;
  FormPosition(x, y);
  if (const cfForm* owner = Form()) {
    screenX = owner->ScreenX();
    screenY = owner->ScreenY();
    popup_->setZoom(owner->Zoom());
  }
  // A form's place is in screen pixels; the box's in the owner's units.
  // Under the box, or over it where the screen ends.
  const double zoom = popup_->Zoom();
  popup_->Resize(Width(), DropHeight);
  popup_->PlacePopUp(screenX + x * zoom, screenY + (y + Height()) * zoom, screenY + y * zoom,
                     screenX + (x + Width()) * zoom);
  if (content_) content_->Move(0, 0, Width(), DropHeight);
  popup_->Show();
  Refresh();
  RaiseEvent(DropDownOpened, "DropDownOpened");
}

void cwDropDown::CloseDropDown() {
  popup_->Close();
}

bool cwDropDown::IsOpen() const {
  return popup_->Showing();
}

void cwDropDown::PopupGone() {
  if (PlatformRoot* root = PlatformRoot::Current()) closedOnEvent_ = root->EventNumber();
  Refresh();
  RaiseEvent(DropDownClosed, "DropDownClosed");
}

void cwDropDown::W_Paint(DrawingContext& ctx, double w, double h) {
  const int state = BoxState();
  DrawFace(ctx, w, h, state);
  ctx.SelectFont(UiFont(), kUiFontSize, CurrentTheme().cTheme_GetThemeColor(ThemePart::Text, state));
  ctx.DrawText(6, 0, w - h - 6, h, Caption, true, TextAlign::Left, TextAlign::Middle);
  DrawBoxArrow(ctx, w, h, state);
}

int cwDropDown::BoxState() const {
  return (IsOpen() ? ThemeState::Hover : 0) | (HasFocus() ? ThemeState::Focused : 0) |
         (EnabledInTree() ? 0 : ThemeState::Disabled);
}

void cwDropDown::DrawBoxArrow(DrawingContext& ctx, double w, double h, int state) const {
  DrawPart(ctx, ThemePart::Arrow, state, w - h * 0.7, h * 0.4, h * 0.4, h * 0.22, ArrowDirection::Down);
}

bool cwDropDown::W_MouseDown(int button, int, double, double) {
  if (button != Button::Left) return false;
  SetFocus();
  // The press on the box that closed the pop-up must not open it again.
  const PlatformRoot* root = PlatformRoot::Current();
  if (root && root->EventNumber() == closedOnEvent_) return true;
  IsOpen() ? CloseDropDown() : OpenDropDown();
  return true;
}

bool cwDropDown::W_KeyDown(int keyCode, int shift) {
  // Alt+Down opens, as in any drop-down list.
  if (keyCode != Key::Down || !(shift & Shift::Alt)) return false;
  OpenDropDown();
  return true;
}

WidgetPoint cwDropDown::W_RowPoint(int row) {
  return IsOpen() && content_ ? content_->W_RowPoint(row) : WidgetPoint{};
}

WidgetPoint cwDropDown::W_ItemPoint(const std::string& key) {
  return IsOpen() && content_ ? content_->W_ItemPoint(key) : WidgetPoint{};
}

QDS_JOIN_WIDGET_REGISTRY(cwDropDown);

}  // namespace qds
