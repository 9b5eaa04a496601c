#include "app/ui/cfWelcome.h"

#include <string>

#include "app/modTexts.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "widgets/cwProgressBar.h"

namespace qds {

cfWelcome::cfWelcome() : cfForm("cfWelcome") {
  Caption = "Quillaron Design Studio";
  setIconKey("Logo");
  Borderless = true;
  DragRegionHeight = 200;
  BackColor = StockColor(Palette::Back);
  Resize(440, 200);
  auto& logo = Children().Add<cwImage>("imgLogo");
  logo.PictureKey = "Logo";
  logo.Stretch = true;
  logo.Move(20, 24, 72, 72);
  lblWelcome = &Children().Add<cwLabel>("lblWelcome");
  lblWelcome->Caption = LanguageText("Welcome").Text;
  lblWelcome->WordWrap = true;
  lblWelcome->Move(108, 30, 310, 40);
  lblImport = &Children().Add<cwLabel>("lblImport");
  lblImport->Caption = LanguageText("WelcomeImport").Text;
  lblImport->WordWrap = true;
  lblImport->Move(108, 72, 310, 40);
  Progress = &Children().Add<cwProgressBar>("Progress");
  Progress->Move(20, 132, 400, 22);
}

void cfWelcome::ShowProgress(int done, int total) {
  Progress->setMax(total > 0 ? total : 1);
  Progress->setValue(done);
  Progress->Caption = std::to_string(done) + " / " + std::to_string(total);
}

}  // namespace qds
