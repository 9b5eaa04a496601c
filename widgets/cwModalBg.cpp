#include "widgets/cwModalBg.h"

#include <algorithm>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "platform/DrawingContext.h"
#include "platform/ImageList.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

namespace {

const cConfig* Settings() {
  return HasApp() ? App().Config.get() : nullptr;
}

}  // namespace

double ToolWindowZoom(const cfForm* owner) {
  if (const cConfig* config = Settings()) return config->UserZoom();
  return owner ? owner->Zoom() : 1;
}

cfForm* ToolWindowOwner(const cfForm* except) {
  PlatformRoot* root = PlatformRoot::Current();
  if (!root) return nullptr;
  const std::vector<cfForm*>& forms = root->Forms();
  for (auto it = forms.rbegin(); it != forms.rend(); ++it) {
    if (*it != except && !(*it)->PopUp && (*it)->Showing()) return *it;
  }
  return nullptr;
}

cwModalBg::cwModalBg() : Widget("cwModalBg") {
  BackColor = StockColor(Palette::Back);
}

void cwModalBg::UseAppBackground() {
  const cConfig* config = Settings();
  PlatformRoot* root = PlatformRoot::Current();
  const bool picture = root && root->Images() && root->Images()->Exists("Background");
  if (!config || config->ShowAppBG()) {
    PictureKey = picture ? "Background" : "";
    BackColor = StockColor(Palette::Back);
  } else {
    PictureKey = "";
    BackColor = config->CanvasColor() >= 0 ? config->CanvasColor() : StockColor(Palette::Back);
  }
}

Widget& cwModalBg::LoadToolWidget(std::unique_ptr<Widget> widget, double width, double height) {
  if (Children().Exists("ToolWidget")) Children().Remove("ToolWidget");
  Widget& hosted = Children().Add(std::move(widget), "ToolWidget");
  hosted.Move(0, CaptionHeight, width, height);
  return hosted;
}

Widget* cwModalBg::ToolWidget() const {
  return Children().Exists("ToolWidget") ? &Children().Item("ToolWidget") : nullptr;
}

void cwModalBg::W_Paint(DrawingContext& ctx, double w, double h) {
  ctx.SetSourceColor(BackColor);
  ctx.Paint();
  if (!PictureKey().empty()) DrawPicture(ctx, PictureKey, 0, 0, w, h);
  const double strip = CaptionHeight;
  if (strip > 0) {
    ctx.SetSourceColor(StockColor(Palette::Face));
    ctx.Rectangle(0, 0, w, strip);
    ctx.Fill();
    double textLeft = 10;
    if (!ImageKey().empty()) {
      const double side = std::min(20.0, strip - 8);
      DrawPicture(ctx, ImageKey, 8, (strip - side) / 2, side, side);
      textLeft = side + 14;
    }
    ctx.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text), true);
    ctx.DrawText(textLeft, 0, w - textLeft - 8, strip, Caption(), true, TextAlign::Left, TextAlign::Middle);
  }
}

void cwModalBg::W_PaintOver(DrawingContext& ctx, double w, double h) {
  // A frameless window needs an edge of its own against what lies behind,
  // over the hosted widget too.
  ctx.SetSourceColor(StockColor(Palette::Border));
  ctx.SetLineWidth(1);
  ctx.Rectangle(0.5, 0.5, w - 1, h - 1);
  ctx.Stroke();
}

bool cwModalBg::W_MouseDown(int button, int, double x, double y) {
  cfForm* form = Form();
  if (button != Button::Left || y >= CaptionHeight || !form) return false;
  dragging_ = true;
  grabX_ = x * form->Zoom();
  grabY_ = y * form->Zoom();
  SetCapture();
  return true;
}

bool cwModalBg::W_MouseMove(int, int, double x, double y) {
  cfForm* form = Form();
  if (!dragging_ || !form) return false;
  // The grabbed point stays under the mouse; the form's corner is in
  // screen pixels, the mouse in units of this panel at the form's corner.
  const double zoom = form->Zoom();
  form->MoveOnScreen(form->ScreenX() + x * zoom - grabX_, form->ScreenY() + y * zoom - grabY_);
  return true;
}

bool cwModalBg::W_MouseUp(int button, int, double, double) {
  if (button != Button::Left || !dragging_) return false;
  dragging_ = false;
  ReleaseCapture();
  return true;
}

QDS_JOIN_WIDGET_REGISTRY(cwModalBg);

}  // namespace qds
