#include "app/ui/modMessages.h"

#include <iostream>
#include <memory>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modTexts.h"
#include "app/ui/cwMsgBox.h"
#include "platform/Error.h"
#include "platform/ui/PlatformRoot.h"
#include "widgets/cfToolDialog.h"

namespace qds {

namespace {

cConfig* Settings() {
  return HasApp() ? App().Config.get() : nullptr;
}

}  // namespace

int ShowMsgBox(const std::string& prompt, int style, const std::string& title, const std::string& flagName,
               bool ignoreFlag, bool useForAll) {
  const std::string flag = ignoreFlag ? std::string() : flagName;
  cConfig* config = Settings();
  if (flag.size() > 3 && style == MsgStyle::YesNo && config && !config->GetFlag(flag)) {
    return flag == "MsgSaveDesign" ? MsgResult::No : MsgResult::Yes;
  }
  auto box = std::make_unique<cwMsgBox>();
  cwMsgBox& shown = *box;
  box->setStyle(style);
  box->setCaption(prompt);
  box->setShowMsgCheckBox(!flag.empty());
  box->setShowUseForAll(useForAll);
  if (!PlatformRoot::Current()) {
    // No window system (the command line): the text is told, nothing asked.
    if (HasApp()) {
      App().ShowMessage(prompt);
    } else {
      std::cerr << prompt << '\n';
    }
    return shown.MsgBoxResult();
  }
  // A dialog of its own: a question may come up while a tool dialog is open.
  cfToolDialog dialog;
  dialog.ImageKey = "Logo";
  const double height = box->NeededHeight(cwMsgBox::kWidth);
  double x = 0, y = 0;
  dialog.CentredPosition(cwMsgBox::kWidth, height, x, y);
  int closedWith = ToolResult::Cancel;
  dialog.ShowWidget(std::move(box), title, x, y, cwMsgBox::kWidth, height, closedWith);
  if (!flag.empty() && shown.NoMessageTicked() && config) {
    config->SetFlag(flag, false);
    config->Save();
  }
  return shown.MsgBoxResult();
}

void ErrorMessage(int number, const std::string& description, const std::string& source) {
  const std::string title = HasApp() ? LanguageText("Error").Text : std::string();
  ShowMsgBox(FormatErrorMessage(AppError(number, description, source)), MsgStyle::Ok,
             title.empty() ? "Error" : title);
}

void InstallErrorMessages() {
  SetErrorReporter([](const AppError& e) {
    static bool reporting = false;
    if (reporting || !PlatformRoot::Current() || !HasApp()) {
      std::cerr << FormatErrorMessage(e) << '\n';
      return;
    }
    reporting = true;
    struct Done {
      ~Done() { reporting = false; }
    } done;
    ErrorMessage(e.Number(), e.Description(), e.Source());
  });
}

}  // namespace qds
