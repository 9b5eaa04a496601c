// The message box as the user meets it: which questions are asked at all,
// the buttons and words of each style, what each answer returns, what a
// tick remembers, and the report a failing handler ends in.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "tests/support/Golden.h"
#include "tests/support/SettingsApp.h"
#include "tests/support/UiDriver.h"
#include "widgets/cfToolDialog.h"

using namespace qds;

namespace {

// The message box open now.
cfToolDialog* OpenDialog(PlatformRoot& root) {
  for (cfForm* f : root.Forms()) {
    if (auto* dialog = dynamic_cast<cfToolDialog*>(f); dialog && dialog->Showing()) return dialog;
  }
  return nullptr;
}

cwButton& ButtonOf(cwMsgBox& box, const char* key) {
  return static_cast<cwButton&>(box.Children().Item(key));
}

struct Asked {
  bool shown = false;
  int answer = -1;
};

// Runs `ask`; when a box opens, `act` answers it as a user would, looking
// at it first.
Asked AskAndAnswer(UiDriver& ui, const std::function<int()>& ask,
                   const std::function<void(cwMsgBox&, cfToolDialog&)>& act) {
  Asked asked;
  ui.Backend().OnIdle = [&] {
    if (asked.shown) return;  // still open after the answer: the loop says so
    asked.shown = true;
    cfToolDialog* dialog = OpenDialog(ui.Root());
    auto* box = dialog ? dynamic_cast<cwMsgBox*>(dialog->Hosted()) : nullptr;
    ASSERT_TRUE(box);
    act(*box, *dialog);
  };
  asked.answer = ask();
  ui.Backend().OnIdle = nullptr;
  return asked;
}

// Presses the buttons of `keys` in turn, check boxes first.
std::function<void(cwMsgBox&, cfToolDialog&)> Pressing(UiDriver& ui, std::vector<const char*> keys) {
  return [&ui, keys](cwMsgBox& box, cfToolDialog&) {
    for (const char* key : keys) ui.PushClick(ButtonOf(box, key));
  };
}

std::vector<std::string> ShownButtons(cwMsgBox& box) {
  std::vector<std::string> shown;
  for (const char* key : {"btnYes", "btnNo", "btnCancel", "btnOk", "btnNoMessage", "btnUseForAll"}) {
    if (ButtonOf(box, key).ShownInTree()) shown.push_back(ButtonOf(box, key).Caption);
  }
  return shown;
}

}  // namespace

TEST(MsgBox, AFlagThatIsOffAnswersAtOnceAndATickTurnsTheFlagOff) {
  UiDriver ui;
  SettingsApp studio;
  cConfig& config = studio.Config();
  const auto ask = [](const std::string& flag, int style, bool ignore = false) {
    return [=] { return ShowMsgBox("Delete it?", style, "Question", flag, ignore); };
  };

  // A Yes/No question whose flag is off is not asked: yes, for deleting;
  // no, for saving the design.
  config.SetFlag("MsgDelLayer", false);
  config.setMsgSaveDesign(false);
  Asked a = AskAndAnswer(ui, ask("MsgDelLayer", MsgStyle::YesNo), Pressing(ui, {"btnNo"}));
  EXPECT_FALSE(a.shown);
  EXPECT_EQ(a.answer, MsgResult::Yes);
  a = AskAndAnswer(ui, ask("MsgSaveDesign", MsgStyle::YesNo), Pressing(ui, {"btnYes"}));
  EXPECT_FALSE(a.shown);
  EXPECT_EQ(a.answer, MsgResult::No);

  // The flag is not read for Yes/No/Cancel, when ignored, or when its name
  // is too short to be one.
  a = AskAndAnswer(ui, ask("MsgDelLayer", MsgStyle::YesNoCancel), Pressing(ui, {"btnCancel"}));
  EXPECT_TRUE(a.shown);
  EXPECT_EQ(a.answer, MsgResult::Cancel);
  bool offered = true;
  a = AskAndAnswer(ui, ask("MsgDelLayer", MsgStyle::YesNo, true), [&](cwMsgBox& box, cfToolDialog&) {
    offered = box.ShowMsgCheckBox();
    ui.PushClick(ButtonOf(box, "btnNo"));
  });
  EXPECT_TRUE(a.shown);
  EXPECT_FALSE(offered);  // nothing to switch off
  EXPECT_EQ(a.answer, MsgResult::No);
  config.SetFlag("Del", false);
  a = AskAndAnswer(ui, ask("Del", MsgStyle::YesNo), Pressing(ui, {"btnNo"}));
  EXPECT_TRUE(a.shown);
  EXPECT_EQ(a.answer, MsgResult::No);

  // Ticked, "do not show again" turns the flag off and saves it, whatever
  // the answer; from then on the question answers itself.
  ASSERT_TRUE(config.MsgDelIcons());
  a = AskAndAnswer(ui, ask("MsgDelIcons", MsgStyle::YesNo), [&](cwMsgBox& box, cfToolDialog&) {
    offered = box.ShowMsgCheckBox();
    ui.PushClick(ButtonOf(box, "btnNoMessage"));
    ui.PushClick(ButtonOf(box, "btnNo"));
  });
  EXPECT_TRUE(offered);
  EXPECT_EQ(a.answer, MsgResult::No);
  EXPECT_FALSE(config.MsgDelIcons());
  EXPECT_FALSE(cConfig(studio.app->Cnn, studio.app->AppPath).MsgDelIcons());
  a = AskAndAnswer(ui, ask("MsgDelIcons", MsgStyle::YesNo), Pressing(ui, {"btnNo"}));
  EXPECT_FALSE(a.shown);
  EXPECT_EQ(a.answer, MsgResult::Yes);
  // Unticked, nothing is written.
  a = AskAndAnswer(ui, ask("MsgDelClip", MsgStyle::YesNo), Pressing(ui, {"btnYes"}));
  EXPECT_EQ(a.answer, MsgResult::Yes);
  EXPECT_TRUE(cConfig(studio.app->Cnn, studio.app->AppPath).MsgDelClip());
}

TEST(MsgBox, EachStyleShowsItsButtonsInTheChosenLanguageAndAnswersByThemOrByKeys) {
  UiDriver ui;
  SettingsApp studio;
  cfForm owner;
  owner.Resize(600, 400);
  owner.MoveOnScreen(100, 100);
  owner.Show();

  std::vector<std::string> buttons;
  const auto looking = [&](const char* press) {
    return [&, press](cwMsgBox& box, cfToolDialog&) {
      buttons = ShownButtons(box);
      ui.PushClick(ButtonOf(box, press));
    };
  };
  Asked a = AskAndAnswer(
      ui, [] { return ShowMsgBox("Done.", MsgStyle::Ok); }, looking("btnOk"));
  EXPECT_EQ(buttons, std::vector<std::string>{"OK"});
  EXPECT_EQ(a.answer, MsgResult::Ok);
  a = AskAndAnswer(
      ui, [] { return ShowMsgBox("Failed.", MsgStyle::Critical); }, looking("btnOk"));
  EXPECT_EQ(buttons, std::vector<std::string>{"OK"});
  EXPECT_EQ(a.answer, MsgResult::Ok);
  a = AskAndAnswer(
      ui, [] { return ShowMsgBox("Save?", MsgStyle::YesNoCancel); }, looking("btnYes"));
  EXPECT_EQ(buttons, (std::vector<std::string>{"Yes", "No", "Cancel"}));
  EXPECT_EQ(a.answer, MsgResult::Yes);
  a = AskAndAnswer(
      ui, [] { return ShowMsgBox("Delete?", MsgStyle::YesNo, "", "MsgDelTheme"); }, looking("btnNo"));
  EXPECT_EQ(buttons, (std::vector<std::string>{"Yes", "No", "Don't show this message again"}));
  EXPECT_EQ(a.answer, MsgResult::No);

  // "Use for all": Yes for all answers 5, No for all Cancel, so that a run
  // over many files stops; unticked the answers are the plain ones.
  const auto forAll = [] { return ShowMsgBox("Overwrite?", MsgStyle::YesNo, "", "", false, true); };
  EXPECT_EQ(AskAndAnswer(ui, forAll, Pressing(ui, {"btnUseForAll", "btnYes"})).answer, MsgResult::YesToAll);
  EXPECT_EQ(AskAndAnswer(ui, forAll, Pressing(ui, {"btnUseForAll", "btnNo"})).answer, MsgResult::Cancel);
  EXPECT_EQ(AskAndAnswer(ui, forAll, Pressing(ui, {"btnYes"})).answer, MsgResult::Yes);
  EXPECT_EQ(AskAndAnswer(ui, forAll, Pressing(ui, {"btnNo"})).answer, MsgResult::No);

  // Return says yes, Escape takes the answer that changes nothing.
  const auto key = [&](int code) {
    return [&ui, code](cwMsgBox&, cfToolDialog& dialog) {
      ui.Backend().Push({UiEvent::Type::KeyDown, &dialog, 0, 0, code, 0, 0});
    };
  };
  EXPECT_EQ(AskAndAnswer(
                ui, [] { return ShowMsgBox("?", MsgStyle::YesNo); }, key(Key::Return))
                .answer,
            MsgResult::Yes);
  EXPECT_EQ(AskAndAnswer(
                ui, [] { return ShowMsgBox("?", MsgStyle::YesNo); }, key(Key::Escape))
                .answer,
            MsgResult::No);
  EXPECT_EQ(AskAndAnswer(
                ui, [] { return ShowMsgBox("?", MsgStyle::YesNoCancel); }, key(Key::Escape))
                .answer,
            MsgResult::Cancel);
  EXPECT_EQ(AskAndAnswer(
                ui, [] { return ShowMsgBox("?", MsgStyle::Ok); }, key(Key::Escape))
                .answer,
            MsgResult::Ok);

  // 300 wide and as high as its wrapped text, centred over the window it
  // asks for; in German when that is the language.
  const std::string longText =
      "The icons of this theme are used by 12 designs. Deleting the theme removes them from "
      "every design, and this cannot be undone. Delete the theme all the same?";
  double shortHeight = 0, longHeight = 0;
  a = AskAndAnswer(
      ui, [] { return ShowMsgBox("Delete?", MsgStyle::YesNo); },
      [&](cwMsgBox& box, cfToolDialog& dialog) {
        shortHeight = dialog.Height();
        ui.PushClick(ButtonOf(box, "btnNo"));
      });
  studio.Config().setUserZoom(1);
  a = AskAndAnswer(
      ui, [&] { return ShowMsgBox(longText, MsgStyle::YesNoCancel, "Theme", "MsgDelTheme"); },
      [&](cwMsgBox& box, cfToolDialog& dialog) {
        longHeight = dialog.Height();
        EXPECT_EQ(dialog.Width(), 300);
        EXPECT_NEAR(dialog.ScreenX() + 150, 100 + 300, 1);
        Widget& text = *box.Find("lblCaption");
        EXPECT_GE(text.Height(), MeasureUiText(longText, text.Width() - 4).height);
        EXPECT_TRUE(MatchesGolden(dialog.Surface()->Copy(), "msgbox"));
        ui.PushClick(ButtonOf(box, "btnCancel"));
      });
  EXPECT_GT(longHeight, shortHeight + 30);

  studio.Config().setLanguage_ID(1);
  OpenTexts(*studio.app);
  a = AskAndAnswer(
      ui, [] { return ShowMsgBox("Löschen?", MsgStyle::YesNoCancel); }, looking("btnCancel"));
  EXPECT_EQ(buttons, (std::vector<std::string>{"Ja", "Nein", "Abbrechen"}));
}

TEST(MsgBox, AFailingHandlerEndsInTheErrorReportAndTheStudioGoesOn) {
  UiDriver ui;
  SettingsApp studio;
  InstallErrorMessages();
  cfForm form;
  form.Resize(300, 200);
  auto& rename = form.Children().Add<cwButton>("btnRename");
  rename.Move(10, 10, 80, 26);
  rename.Click = [] {
    Raise(ErrNo::OutOfRange, "Subscript out of range", "cvIconSelectView:btnRename_Click");
  };
  int fine = 0;
  auto& other = form.Children().Add<cwButton>("btnOther");
  other.Move(100, 10, 80, 26);
  other.Click = [&] { ++fine; };
  // A timer that fails on every tick must not pile up boxes.
  Timer failing(form);
  failing.Interval = 50;
  failing.OnTimer = [] { Raise(ErrNo::InvalidArgument, "tick", "Probe:tmrTick_Timer"); };
  form.Show();
  ui.Root().DoEvents();

  std::string text, title;
  int step = 0, boxes = 0;
  ui.Backend().OnIdle = [&] {
    // The newest box is the one a user can answer.
    cfToolDialog* dialog = nullptr;
    int open = 0;
    for (cfForm* f : ui.Root().Forms()) {
      if (auto* d = dynamic_cast<cfToolDialog*>(f)) dialog = d, ++open;
    }
    boxes = std::max(boxes, open);
    if (!dialog) return;
    if (step++ == 0) {
      text = static_cast<cwMsgBox*>(dialog->Hosted())->Caption();
      title = dialog->Caption;
      // Its ticks fail while the report is open.
      failing.setEnabled(true);
      ui.Backend().AdvanceMs(200);
      ui.Backend().Push({UiEvent::Type::MouseMove, dialog, 0, 0, 0, 5, 5});
      return;
    }
    failing.setEnabled(false);
    ui.PushClick(*dialog->Hosted()->Find("btnOk"));
  };
  ui.Click(rename);
  ui.Backend().OnIdle = nullptr;
  EXPECT_GE(step, 2);
  EXPECT_EQ(text, "Err#: 9 Subscript out of range\ncvIconSelectView:btnRename_Click");
  EXPECT_EQ(title, "Error");
  EXPECT_EQ(boxes, 1);
  EXPECT_EQ(OpenDialog(ui.Root()), nullptr);
  ui.Click(other);
  EXPECT_EQ(fine, 1);
  SetErrorReporter(nullptr);
}

TEST(MsgBox, AScriptAnswersTheDemonstrationFormsQuestionAndItsTickIsKept) {
  SettingsApp studio;  // its folder, for the program to run on
  const std::string dir = studio.folder.Path();
  WriteUtf8Text(dir + "script.txt", R"(click btnMsgBox
expect lblCaption caption Delete the demonstration layer?
expect btnYes caption Yes
dump asking.json
click btnNoMessage
click btnNo
expect sbStatus caption Message: 7
click btnMsgBox
expect sbStatus caption Message: 6
dump after.json
)");
  const std::string command = "cd '" + dir + "' && '" + QDS_APP_EXE + "' --app-dir '" + dir +
                              "' --demo-widgets --automate script.txt 2> err.txt > out.txt";
  const int status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << ReadAllText(dir + "err.txt");

  using Json = nlohmann::json;
  const Json asking = Json::parse(ReadAllText(dir + "asking.json"));
  ASSERT_EQ(asking["forms"].size(), 2u);
  EXPECT_EQ(asking["forms"][1]["name"], "ToolWindows");
  EXPECT_EQ(asking["forms"][1]["modal"], true);
  EXPECT_EQ(Json::parse(ReadAllText(dir + "after.json"))["forms"].size(), 1u);
  // The program saved the tick in the settings of its folder.
  EXPECT_FALSE(cConfig(studio.app->Cnn, studio.app->AppPath).GetFlag("MsgDemoAsk"));
}
