// Closing the main window: a changed design is asked about, and only the
// user's answer decides whether the window goes.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/ui/cfMain.h"
#include "app/ui/cwMsgBox.h"
#include "platform/stock/StockWidgets.h"
#include "tests/support/StartedApp.h"
#include "tests/support/UiDriver.h"
#include "widgets/cfToolDialog.h"

using namespace qds;

namespace {

// Answers each message box that opens with the next of `answers`, and
// counts the boxes.
struct Answerer {
  UiDriver& ui;
  std::vector<std::string> answers;
  int asked = 0;
  std::vector<std::string> prompts;
  explicit Answerer(UiDriver& driver) : ui(driver) {
    ui.Backend().OnIdle = [this] {
      cwMsgBox* box = nullptr;
      for (cfForm* f : ui.Root().Forms()) {
        auto* dialog = dynamic_cast<cfToolDialog*>(f);
        if (dialog && dialog->Showing()) box = dynamic_cast<cwMsgBox*>(dialog->Hosted());
      }
      // The loop asks only when nothing is queued: a box still open has
      // not been answered yet.
      if (!box) return;
      prompts.push_back(box->Caption());
      const std::string key = asked < static_cast<int>(answers.size()) ? answers[asked] : "btnCancel";
      ++asked;
      ui.PushClick(box->Children().Item(key));
    };
  }
  ~Answerer() { ui.Backend().OnIdle = nullptr; }
};

}  // namespace

TEST(MainWindow, AChangedDesignIsAskedAboutAndOnlyYesOrNoCloseTheWindow) {
  UiDriver ui;
  StartedApp studio;
  ASSERT_TRUE(studio.Start());
  ui.Root().setImages(&studio.app->ImageList());
  Answerer answer(ui);

  // Nothing changed: the window closes without a word.
  {
    cfMain form;
    form.Show();
    EXPECT_TRUE(form.Close(UnloadMode::ControlMenu));
    EXPECT_FALSE(form.Showing());
    EXPECT_EQ(answer.asked, 0);
  }
  // The window starts the design's history afresh: the design changes after.
  cfMain form;
  form.Show();
  studio.app->DesignModified = true;
  int saves = 0;
  bool saved = false;
  form.SaveDesign = [&] {
    ++saves;
    return saved;
  };
  // Cancel stays; Yes saves, and a save that fails stays too.
  answer.answers = {"btnCancel", "btnYes", "btnYes"};
  EXPECT_FALSE(form.Close(UnloadMode::ControlMenu));
  EXPECT_TRUE(form.Showing());
  EXPECT_EQ(saves, 0);
  EXPECT_FALSE(form.Close(UnloadMode::ControlMenu));
  EXPECT_TRUE(form.Showing());
  EXPECT_EQ(saves, 1);
  saved = true;
  EXPECT_TRUE(form.Close(UnloadMode::ControlMenu));
  EXPECT_FALSE(form.Showing());
  EXPECT_EQ(saves, 2);
  EXPECT_EQ(answer.asked, 3);
  ASSERT_FALSE(answer.prompts.empty());
  EXPECT_EQ(answer.prompts[0], "The design has been changed. Do you want to save it?");

  // No closes without saving, from the window's own close button too.
  cfMain other;
  other.Show();
  other.LayoutNow();
  studio.app->DesignModified = true;
  other.SaveDesign = form.SaveDesign;
  answer.answers.push_back("btnNo");
  ui.Click(*other.Find("TitleBar/FormButtons/btnFormClose"));
  EXPECT_FALSE(other.Showing());
  EXPECT_EQ(saves, 2);
  EXPECT_EQ(answer.asked, 4);
}
