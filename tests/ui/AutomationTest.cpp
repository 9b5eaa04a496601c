// Scripts run by the program itself against the demonstration form,
// headless: what a user does, what the dump says of it, and how a failing
// line is told.

#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>

#include "platform/DrawingSurface.h"
#include "platform/Files.h"
#include "tests/support/Golden.h"
#include "tests/support/ScriptRun.h"
#include "tests/support/TempDir.h"

using namespace qds;
using Json = nlohmann::json;

namespace {

ScriptRun RunScript(const TempDir& dir, const std::string& script) {
  return RunDemoScript(dir, script);
}

Json Load(const TempDir& dir, const std::string& name) {
  return LoadDump(dir, name);
}

bool HasForm(const Json& dump, const std::string& name) {
  for (const Json& f : dump["forms"]) {
    if (f["name"] == name) return true;
  }
  return false;
}

}  // namespace

TEST(Automation, MouseKeysAndTypingChangeTheFormAsTheDumpShows) {
  TempDir dir;
  const ScriptRun r = RunScript(dir, R"(# each step is seen in the dump that follows it
dump before.json
click btnOk
click frmButtons/btnOk
click chkRuler
dump clicked.json
click txtTyped
type héllo #1
key Back
key a
key shift+b
key ctrl+c
dump typed.json
wheel vsbDemo 1
click treDemo row 0
key Down
key Down
expect treDemo listIndex 2
drag hsbDemo at 130 8 to hsbDemo at 170 8
dump moved.json
)");
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(r.err, "");

  const Json before = Load(dir, "before.json");
  ASSERT_EQ(before["forms"].size(), 1u);
  EXPECT_EQ(before["forms"][0]["name"], "DemoWidgetsForm");
  EXPECT_EQ(before["forms"][0]["active"], true);
  EXPECT_EQ(WidgetOf(before, "DemoWidgetsForm", "sbStatus")["caption"], "Clicks: 0");
  EXPECT_EQ(WidgetOf(before, "DemoWidgetsForm", "frmButtons/chkRuler")["checked"], true);
  EXPECT_EQ(WidgetOf(before, "DemoWidgetsForm", "frmButtons/btnOff")["enabled"], false);
  const Json ok = WidgetOf(before, "DemoWidgetsForm", "frmButtons/btnOk");
  EXPECT_EQ(ok["class"], "cwButton");
  EXPECT_EQ(ok["x"], 20);
  EXPECT_EQ(ok["y"], 34);
  EXPECT_EQ(ok["width"], 80);

  const Json clicked = Load(dir, "clicked.json");
  EXPECT_EQ(WidgetOf(clicked, "DemoWidgetsForm", "sbStatus")["caption"], "Clicks: 2");
  EXPECT_EQ(WidgetOf(clicked, "DemoWidgetsForm", "frmButtons/chkRuler")["checked"], false);
  EXPECT_EQ(WidgetOf(clicked, "DemoWidgetsForm", "frmButtons/chkRuler")["focused"], true);

  // Typed text, Backspace taking a character, a letter key typing, a
  // shifted one typing a capital and a control key typing nothing.
  const Json typed = Load(dir, "typed.json");
  EXPECT_EQ(WidgetOf(typed, "DemoWidgetsForm", "pnlSide/txtTyped")["text"], "héllo #aB");
  EXPECT_EQ(WidgetOf(typed, "DemoWidgetsForm", "pnlSide/txtTyped")["focused"], true);
  // The caret behind the ninth character, counted as a user counts them.
  EXPECT_EQ(WidgetOf(typed, "DemoWidgetsForm", "pnlSide/txtTyped")["selStart"], 9);
  EXPECT_EQ(WidgetOf(typed, "DemoWidgetsForm", "pnlSide/txtTyped")["selLength"], 0);

  const Json moved = Load(dir, "moved.json");
  const Json tree = WidgetOf(moved, "DemoWidgetsForm", "pnlSide/treDemo");
  EXPECT_EQ(tree["listIndex"], 2);
  EXPECT_EQ(tree["selected"], Json::array({2}));
  EXPECT_EQ(tree["text"], "Solid");
  // The wheel rolled one notch up; the thumb dragged 40 of its 153 pixels
  // of way to the right.
  EXPECT_EQ(WidgetOf(moved, "DemoWidgetsForm", "vsbDemo")["value"], 27);
  const Json bar = WidgetOf(moved, "DemoWidgetsForm", "hsbDemo");
  EXPECT_GE(bar["value"].get<double>(), 90);
  EXPECT_EQ(bar["max"], 100);
}

TEST(Automation, AModalDialogAndAMenuAreAnsweredFromTheScript) {
  TempDir dir;
  const ScriptRun r = RunScript(dir, R"(click btnAsk
expect lblQuestion caption Keep the changes?
dump asking.json
click DemoAskForm/btnYes
expect sbStatus caption Answer: Yes
click btnAsk
key Escape
expect sbStatus caption Answer: No
click btnMenu
dump menu.json
click mnuDemo item Demo>Close
expect sbStatus caption Chosen: Demo>Close
move frmButtons/btnSave
wait 700
dump tip.json
close
)");
  ASSERT_EQ(r.code, 0) << r.err;

  const Json asking = Load(dir, "asking.json");
  ASSERT_EQ(asking["forms"].size(), 2u);
  EXPECT_EQ(asking["forms"][1]["name"], "DemoAskForm");
  EXPECT_EQ(asking["forms"][1]["modal"], true);
  EXPECT_EQ(asking["forms"][1]["active"], true);
  EXPECT_EQ(asking["forms"][0]["active"], false);

  const Json menu = Load(dir, "menu.json");
  ASSERT_TRUE(HasForm(menu, "MenuPopUp"));
  const Json items = WidgetOf(menu, "DemoWidgetsForm", "mnuDemo")["items"];
  ASSERT_EQ(items.size(), 6u);
  EXPECT_EQ(items[1]["key"], "Demo>Save");
  EXPECT_EQ(items[1]["enabled"], false);

  // The tip shows once the mouse has rested 600 virtual milliseconds.
  EXPECT_TRUE(HasForm(Load(dir, "tip.json"), "ToolTipForm"));
}

TEST(Automation, TheKitsSmallControlsAreDrivenByTheirItems) {
  TempDir dir;
  const ScriptRun r = RunScript(dir, R"(expect ddlDemo text Circle
click ddlDemo
dump open.json
click ddlDemo item star
expect ddlDemo text Star
expect sbStatus caption Shape: Star
wheel sldDemo 2
expect sldDemo value 42
expect prgDemo caption 42 %
click tbDemo item ruler
expect sbStatus caption Tool: ruler
expect tbDemo/ruler checked true
click tbDemo item export
expect sbStatus caption Tool: export
click updDemo item down
expect updDemo text 48 px
dump after.json
)");
  ASSERT_EQ(r.code, 0) << r.err;
  // Open, the list of shapes is a pop-up of its own under the box.
  const Json open = Load(dir, "open.json");
  ASSERT_TRUE(HasForm(open, "DropDownPopUp"));
  EXPECT_EQ(WidgetOf(open, "DemoWidgetsForm", "pnlKit/pnlKitRow/ddlDemo")["listCount"], 5);
  const Json after = Load(dir, "after.json");
  EXPECT_FALSE(HasForm(after, "DropDownPopUp"));
  const Json tools = WidgetOf(after, "DemoWidgetsForm", "pnlKit/tbDemo")["items"];
  ASSERT_EQ(tools.size(), 4u);
  EXPECT_EQ(tools[2]["key"], "ruler");
  EXPECT_EQ(tools[2]["checked"], true);
  EXPECT_EQ(WidgetOf(after, "DemoWidgetsForm", "pnlKit/pnlKitRow/ddlDemo")["listIndex"], 2);
  EXPECT_EQ(WidgetOf(after, "DemoWidgetsForm", "pnlKit/pnlKitRow/prgDemo")["value"], 42);
}

TEST(Automation, TheKitsRulesHoldWhenAUserDrivesTheDemonstrationForm) {
  TempDir dir;
  // An empty list, a hex field of six, a line break taken back whole, and
  // a value typed twice into the slider, told as a change once.
  const ScriptRun r = RunScript(dir, R"(expect ddlEmpty text ""
expect ddlEmpty listIndex -1
click txtHex
type 12g4aBcDeF
expect txtHex text 124aBc
key End
key Delete
expect txtHex text 124aBc
click txtNotes
type ab
key Return
key Back
expect txtNotes text ab
click sldDemo item value
type 55
key Return
expect sbStatus caption Opacity: 55 % (changes: 1)
click sldDemo item value
type 55
key Return
expect sldDemo value 55
expect sbStatus caption Opacity: 55 % (changes: 1)
)");
  EXPECT_EQ(r.code, 0) << r.err;
}

TEST(Automation, AFailingLineIsNamedAndNothingAfterItRuns) {
  TempDir dir;
  ScriptRun r =
      RunScript(dir, "click btnOk\n\n# a comment\nexpect sbStatus caption Clicks: 5\ndump after.json\n");
  EXPECT_EQ(r.code, 1);
  EXPECT_EQ(r.err,
            "line 4: expect sbStatus caption Clicks: 5: expected caption 'Clicks: 5', found 'Clicks: 1'\n");
  EXPECT_FALSE(FileExists(dir / "after.json"));

  r = RunScript(dir, "click btnOk\nclick btnNothing\n");
  EXPECT_EQ(r.code, 1);
  EXPECT_EQ(r.err, "line 2: click btnNothing: no widget 'btnNothing' in the open forms\n");

  r = RunScript(dir, "expect btnOk colour red\n");
  EXPECT_EQ(r.code, 1);
  EXPECT_NE(r.err.find("line 1: expect btnOk colour red: 'btnOk' has no property 'colour' (it has path,"),
            std::string::npos)
      << r.err;

  r = RunScript(dir, "click treDemo row 40\n");
  EXPECT_EQ(r.err, "line 1: click treDemo row 40: 'treDemo' shows no row 40\n");
  // Items by key: a node of the tree, a row of the list a drop-down shows;
  // a folded node and a closed drop-down show none.
  r = RunScript(dir,
                "click treDemo item line\nexpect treDemo listIndex 1\nclick ddDemo\ndblclick ddDemo item /\n"
                "expect ddDemo caption /\nclick treDemo item web\n");
  EXPECT_EQ(r.err, "line 6: click treDemo item web: 'treDemo' shows no item 'web'\n");
  r = RunScript(dir, "click ddDemo item /\n");
  EXPECT_EQ(r.err, "line 1: click ddDemo item /: 'ddDemo' shows no item '/'\n");

  // The tree's own bar, and that of the list in the open drop-down.
  r = RunScript(dir, "click ddDemo\nclick vsbRows\n");
  EXPECT_NE(r.err.find("line 2: click vsbRows: 'vsbRows' is ambiguous: "), std::string::npos) << r.err;

  // A mistake anywhere is found before the first line runs.
  r = RunScript(dir, "dump first.json\nwait -5\n");
  EXPECT_EQ(r.code, 1);
  EXPECT_EQ(r.err, "line 2: wait -5: the milliseconds must be from 0 to 3600000, not -5\n");
  EXPECT_FALSE(FileExists(dir / "first.json"));
  r = RunScript(dir, "key ctrl+Banana\n");
  EXPECT_EQ(r.err, "line 1: key ctrl+Banana: unknown key 'Banana'\n");
  r = RunScript(dir, "hover btnOk\n");
  EXPECT_EQ(r.err, "line 1: hover btnOk: unknown command 'hover'\n");

  // Lines left when the last form has gone cannot run.
  r = RunScript(dir, "close\nclick btnOk\n");
  EXPECT_EQ(r.code, 1);
  EXPECT_EQ(r.err, "line 2: click btnOk: no form is open any more\n");
}

TEST(Automation, AScreenshotIsThePictureOfTheForm) {
  TempDir dir;
  const ScriptRun r = RunScript(
      dir, "screenshot form.png\nclick btnAsk\nscreenshot dialog.png\nscreenshot main.png DemoWidgetsForm\n");
  ASSERT_EQ(r.code, 0) << r.err;
  const SurfacePtr form = DrawingSurface::FromPngFile(dir / "form.png");
  ASSERT_TRUE(form);
  EXPECT_TRUE(MatchesGolden(form, "demo_widgets"));
  const SurfacePtr dialog = DrawingSurface::FromPngFile(dir / "dialog.png");
  ASSERT_TRUE(dialog);
  EXPECT_EQ(dialog->Width(), 240);
  EXPECT_TRUE(MatchesGolden(dialog, "demo_ask"));
  EXPECT_EQ(DrawingSurface::FromPngFile(dir / "main.png")->Width(), form->Width());
}
