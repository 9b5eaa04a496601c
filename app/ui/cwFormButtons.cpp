#include "app/ui/cwFormButtons.h"

#include <algorithm>
#include <memory>

#include "app/modTexts.h"
#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"

namespace qds {

namespace {

// A flat button of a picture alone, lit under the mouse; the close button
// shows a second picture there, as desktops warn before a window closes.
class cwFormButton : public cwButton {
 public:
  cwFormButton() : cwButton("cwFormButton") { CanFocus = false; }
  std::string HotPictureKey;
  std::int64_t HotColor = -1;
  void W_Paint(DrawingContext& ctx, double w, double h) override {
    const bool hot = MouseOver() && EnabledInTree();
    if (hot) {
      ctx.SetSourceColor(HotColor >= 0 ? HotColor : StockColor(Palette::Hover));
      ctx.Rectangle(0, 0, w, h);
      ctx.Fill();
    }
    const double side = std::min(18.0, h - 6);
    const std::string& key = hot && !HotPictureKey.empty() ? HotPictureKey : PictureKey();
    DrawPicture(ctx, key, (w - side) / 2, (h - side) / 2, side, side);
  }
  void W_ReportState(WidgetState& state) const override {
    state.caption = ToolTip;
    state.checked = Checked;
  }
};

}  // namespace

cwFormButtons::cwFormButtons() : Widget("cwFormButtons") {
  auto add = [this](const char* key, const char* picture, const char* tipKey) {
    auto& b = Children().Add<cwFormButton>(key);
    b.PictureKey = picture;
    b.ToolTip = LanguageText(tipKey).Text;
    return &b;
  };
  btnMin = add("btnMin", "Minimize", "Minimize");
  btnMax = add("btnMax", "Windows", "Maximize");
  cwFormButton* close = static_cast<cwFormButton*>(add("btnFormClose", "Close", "Close"));
  close->HotPictureKey = "Cancel";
  close->HotColor = 0x2B2BC4;  // the desktop's red of a closing window
  btnFormClose = close;
  setMaximize(false);
}

void cwFormButtons::setMaximize(bool maximized) {
  maximized_ = maximized;
  btnMax->PictureKey = maximized ? "Decrease" : "Windows";
  btnMax->ToolTip = LanguageText(maximized ? "Window" : "Maximize").Text;
  btnMax->Checked = maximized;
}

void cwFormButtons::W_Resize() {
  double x = 0;
  for (cwButton* b : {btnMin, btnMax, btnFormClose}) {
    b->Move(x, 0, kButtonWidth, Height());
    x += kButtonWidth;
  }
}

}  // namespace qds
