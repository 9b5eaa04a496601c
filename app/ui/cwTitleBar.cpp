#include "app/ui/cwTitleBar.h"

#include "app/ui/cwFormButtons.h"
#include "app/ui/modMenuResources.h"
#include "platform/DrawingContext.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwMenu.h"

namespace qds {

cwTitleBar::cwTitleBar() : Widget("cwTitleBar") {
  DragsWindow = true;
  imgLogo = &Children().Add<cwImage>("imgLogo");
  imgLogo->PictureKey = "Logo";
  imgLogo->Stretch = true;
  lblQuillaron = &Children().Add<cwLabel>("lblQuillaron");
  lblQuillaron->Caption = "Quillaron Design Studio";
  lblVersion = &Children().Add<cwLabel>("lblVersion");
  btnHelp = &Children().Add<cwButton>("btnHelp");
  btnHelp->Caption = "?";
  btnHelp->CanFocus = false;
  MenuHelp = &Children().Add<cwMenu>("MenuHelp");
  AddMenuHelp(*MenuHelp);
  btnHelp->Click = [this] {
    double x = 0, y = 0;
    btnHelp->FormPosition(x, y);
    MenuHelp->ShowPopup("MenuHelp", x, y + btnHelp->Height(), y);
  };
  FormButtons = &Children().Add<cwFormButtons>("FormButtons");
  // The logo and the captions show the window; they do not take the mouse.
  for (Widget* w :
       {static_cast<Widget*>(imgLogo), static_cast<Widget*>(lblQuillaron), static_cast<Widget*>(lblVersion)})
    w->DragsWindow = true;
}

void cwTitleBar::Version(const std::string& text) {
  lblVersion->Caption = text;
}

void cwTitleBar::W_Paint(DrawingContext& ctx, double w, double h) {
  ctx.SetSourceColor(StockColor(Palette::Back));
  ctx.Rectangle(0, 0, w, h);
  ctx.Fill();
  if (!PictureKey.empty()) DrawPicture(ctx, PictureKey, 0, 0, w, h);
  ctx.SetSourceColor(StockColor(Palette::Border));
  ctx.Rectangle(0, h - 1, w, 1);
  ctx.Fill();
}

void cwTitleBar::W_Resize() {
  const double h = Height();
  imgLogo->Move(8, 5, h - 10, h - 10);
  lblQuillaron->Move(h + 2, 0, 170, h);
  lblVersion->Move(h + 172, 0, 80, h);
  const double buttons = 3 * cwFormButtons::kButtonWidth;
  FormButtons->Move(Width() - buttons, 0, buttons, h - 1);
  btnHelp->Move(Width() - buttons - 34, 5, 28, h - 10);
}

bool cwTitleBar::W_DblClick(int button, int, double, double) {
  if (button != Button::Left) return false;
  RaiseBubblingEvent("TitleBarDblClick");
  return true;
}

}  // namespace qds
