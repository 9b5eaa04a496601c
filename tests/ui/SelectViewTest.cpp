// The select view as the main window hosts it, on a studio folder with its
// library unpacked: browsing, literal searches, gathering icons, renaming
// and deleting them in the library, and what the design takes from it.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "app/cConfig.h"
#include "app/modTexts.h"
#include "app/ui/cfMain.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "browser/cvIconSelectView.h"
#include "platform/Error.h"
#include "platform/stock/cwScrollBar.h"
#include "tests/support/Pixels.h"
#include "tests/support/StartedApp.h"
#include "tests/support/UiDriver.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwDropDownList.h"
#include "widgets/cwOptionButton.h"
#include "widgets/cwTextBox.h"
#include "widgets/cwToolBar.h"
#include "widgets/cwVListNew.h"

using namespace qds;
using Names = std::vector<std::string>;

namespace {

// The library's style "Flat" and two of its themes, with their icon counts.
constexpr int kFlat = 4, kSlimline = 2, kShapes = 3, kUsers = 19, kWeather = 20;
constexpr int kWeatherIcons = 41, kUserIcons = 66;

// A window of 1200 by 700 holding the view's layout: pnlMain over a
// status bar 16 high. Error reports come up as message boxes, as in the
// studio.
struct SelectHost {
  UiDriver ui;
  StartedApp studio;
  cfForm form{"SelectForm"};
  cvIconSelectView view;

  SelectHost() {
    EXPECT_TRUE(studio.Start());
    studio.app->Config->setLanguage_ID(2);
    OpenTexts(*studio.app);
    AddBasePatterns(*studio.app);
    ui.Root().setImages(&studio.app->ImageList());
    InstallErrorMessages();
    form.Resize(1200, 700);
    view.WidgetInit(AddViewLayout(form, "IconSelectView"));
    form.Show();
    view.HandleResize(1200, 700);
    ui.Root().DoEvents();
  }
  ~SelectHost() {
    ui.Backend().OnIdle = nullptr;
    SetErrorReporter(nullptr);
  }
  AppContext& app() { return *studio.app; }
  // A widget of the view by its key, wherever it lies.
  template <class W = Widget>
  W& Get(const char* key) {
    W* w = dynamic_cast<W*>(FindKey(form, key));
    if (!w) ADD_FAILURE() << "no " << key;
    return *w;
  }
  static Widget* FindKey(Widget& under, const std::string& key) {
    for (int i = 0; i < under.Children().Count(); ++i) {
      Widget& c = under.Children().Item(i);
      if (c.Key() == key) return &c;
      if (Widget* found = FindKey(c, key)) return found;
    }
    return nullptr;
  }
  std::string Status() { return Get<cwStatusBar>("Statusbar").Caption; }

  // The user picks a row of a drop-down.
  void Choose(cwDropDownList& drop, int key) {
    ASSERT_TRUE(drop.setSelectedKey(std::to_string(key)));
    drop.Click();
    ui.Root().DoEvents();
  }
  void MouseAt(UiEvent::Type type, const WidgetPoint& p, int shift = 0) {
    ASSERT_TRUE(p.widget);
    double x, y;
    p.widget->FormPosition(x, y);
    ui.Backend().Push({type, p.widget->Form(), Button::Left, shift, 0, x + p.x, y + p.y});
    ui.Root().DoEvents();
  }
  void ClickRow(cwVListNew& list, int row, int shift = 0) {
    MouseAt(UiEvent::Type::MouseDown, list.W_RowPoint(row), shift);
    MouseAt(UiEvent::Type::MouseUp, list.W_RowPoint(row), shift);
  }
  void DoubleClickRow(cwVListNew& list, int row) {
    const WidgetPoint p = list.W_RowPoint(row);
    ClickRow(list, row);
    MouseAt(UiEvent::Type::DblClick, p);
    MouseAt(UiEvent::Type::MouseUp, p);
  }
  // Presses on a result, moves far enough to drag, and lets go over the selection.
  void DragToSelection(int row) {
    WidgetPoint from = view.vlstIcons->W_RowPoint(row);
    MouseAt(UiEvent::Type::MouseDown, from);
    from.x += 10;
    MouseAt(UiEvent::Type::MouseMove, from);
    MouseAt(UiEvent::Type::MouseUp, {view.vlstSelectedIcons, 100, 100});
  }
  void ToolBar(const char* key) {
    MouseAt(UiEvent::Type::MouseDown, Get<cwToolBar>("tbarSelectedIcons").W_ItemPoint(key));
    MouseAt(UiEvent::Type::MouseUp, Get<cwToolBar>("tbarSelectedIcons").W_ItemPoint(key));
    ui.Backend().AdvanceMs(5);  // the bar tells its click a moment later
    ui.Root().DoEvents();
  }
  void Search(const std::string& text, const char* scope) {
    view.txtSearch->setText(text);
    ui.Click(Get(scope));
    ui.Click(Get("btnSearch"));
  }
  // Adds an icon to the library, a copy of one of its own under a name.
  void AddIcon(const std::string& sqlName, int style, int theme, const std::string& synonyms = "") {
    EXPECT_TRUE(app().Cnn.Execute("Insert Into Images (Name, SVG, Styles_ID, Themes_ID, Synonyms) Select '" +
                                  sqlName + "', SVG, " + std::to_string(style) + ", " +
                                  std::to_string(theme) + ", '" + synonyms + "' From Images Limit 1"));
  }
};

Names NamesOf(const ItemCollection& items) {
  Names names;
  for (const auto& e : items) names.push_back(e.Item->FriendlyName());
  return names;
}

// The newest open tool dialog, and the message box it holds, if it is one.
cfToolDialog* TopDialog(PlatformRoot& root) {
  cfToolDialog* top = nullptr;
  for (cfForm* f : root.Forms()) {
    if (auto* d = dynamic_cast<cfToolDialog*>(f); d && d->Showing()) top = d;
  }
  return top;
}
cwMsgBox* TopBox(PlatformRoot& root) {
  cfToolDialog* d = TopDialog(root);
  return d ? dynamic_cast<cwMsgBox*>(d->Hosted()) : nullptr;
}

}  // namespace

TEST(SelectView, StylesAndThemesFillTheGridAndTheChoiceIsKept) {
  SelectHost h;
  cvIconSelectView& v = h.view;
  // "Design Elements" is not offered; the first style and the stored theme are chosen.
  for (int i = 0; i < v.DropStyles->ListCount(); ++i)
    EXPECT_NE(v.DropStyles->Row(i).Field("Name"), "Design Elements");
  EXPECT_EQ(v.DropStyles->Text(), "Flat");
  EXPECT_EQ(v.DropThemes->Text(), "User & Faces");
  EXPECT_EQ(v.vlstIcons->ListCount(), kUserIcons);
  EXPECT_EQ(h.Status(), "66 Icons  Selection: 0 Icons");

  // A new style keeps the theme it has too, and both are saved at once.
  h.Choose(*v.DropStyles, kSlimline);
  EXPECT_EQ(v.DropThemes->Text(), "User & Faces");
  EXPECT_EQ(v.vlstIcons->ListCount(), kUserIcons);
  h.Choose(*v.DropThemes, kWeather);
  EXPECT_EQ(v.vlstIcons->ListCount(), kWeatherIcons);
  EXPECT_EQ(h.app().SelectIcons.Item(0)->Style(), "Slimline");
  cConfig stored(h.app().Cnn, h.app().AppPath);
  EXPECT_EQ(stored.LastStyleID(), kSlimline);
  EXPECT_EQ(stored.LastThemeID(), kWeather);
  // A style without that theme takes its first.
  h.Choose(*v.DropStyles, kShapes);
  EXPECT_EQ(v.DropThemes->Text(), "Polygons");
  EXPECT_EQ(v.vlstIcons->ListCount(), 10);
  EXPECT_EQ(cConfig(h.app().Cnn, h.app().AppPath).LastThemeID(), 22);

  // Another program empties a style while it is listed: it shows nothing.
  ASSERT_TRUE(h.app().Cnn.Execute("Delete From Images Where Styles_ID = " + std::to_string(kSlimline)));
  h.Choose(*v.DropStyles, kSlimline);
  EXPECT_EQ(v.vlstIcons->ListCount(), 0);
  EXPECT_EQ(h.Status(), "0 Icons  Selection: 0 Icons");
}

TEST(SelectView, SearchesFindTheirTextLiterallyInTheChosenScope) {
  SelectHost h;
  cvIconSelectView& v = h.view;
  for (const char* name :
       {"Zq''quote", "Zq50%off", "Zq50xoff", "Zq_under", "ZqXunder", "Zq\\back", "ZqYback"})
    h.AddIcon(name, kFlat, kWeather);
  h.AddIcon("Zscope one", kFlat, kWeather);
  h.AddIcon("Zscope two", kFlat, kUsers, "zsynonym");
  h.AddIcon("Zscope three", kSlimline, kWeather);
  h.Choose(*v.DropThemes, kWeather);

  const auto found = [&](const std::string& text) {
    h.Search(text, "optSearchAll");
    return NamesOf(h.app().SelectIcons);
  };
  EXPECT_EQ(found("q'q"), Names{"Zq'quote"});
  EXPECT_EQ(found("50%"), Names{"Zq50%off"});
  EXPECT_EQ(found("q_u"), Names{"Zq_under"});
  EXPECT_EQ(found("q\\b"), Names{"Zq\\back"});
  EXPECT_EQ(found("ZSYNONYM"), Names{"Zscope two"});  // synonyms count, in any case
  // Nothing to look for changes nothing.
  EXPECT_EQ(found(""), Names{"Zscope two"});
  EXPECT_EQ(found("   "), Names{"Zscope two"});
  EXPECT_EQ(TopDialog(h.ui.Root()), nullptr);  // no error was reported

  // Return in the box searches; the scope narrows to the chosen style and theme.
  v.txtSearch->setText("Zscope");
  v.txtSearch->SetFocus();
  h.ui.Press(h.form, Key::Return);
  EXPECT_EQ(h.app().SelectIcons.Count(), 3);
  h.Search("Zscope", "optSearchStyle");
  EXPECT_EQ(NamesOf(h.app().SelectIcons), (Names{"Zscope one", "Zscope two"}));
  EXPECT_FALSE(h.Get<cwOptionButton>("optSearchAll").Checked);
  h.Search("Zscope", "optSearchThemes");
  EXPECT_EQ(NamesOf(h.app().SelectIcons), Names{"Zscope one"});
  EXPECT_FALSE(h.Get<cwOptionButton>("optSearchStyle").Checked);
  EXPECT_EQ(v.vlstIcons->ListCount(), 1);
  EXPECT_EQ(h.Status(), "1 Icons  Selection: 0 Icons");
}

TEST(SelectView, IconsAreChosenOnceAndTheSelectionIsTrimmedByTheToolBarAndKeys) {
  SelectHost h;
  cvIconSelectView& v = h.view;
  ItemCollection& chosen = h.app().IconSelection;
  const Names results = NamesOf(h.app().SelectIcons);
  h.DoubleClickRow(*v.vlstIcons, 0);
  h.DoubleClickRow(*v.vlstIcons, 0);
  EXPECT_EQ(NamesOf(chosen), Names{results[0]});
  EXPECT_TRUE(v.SelectionChanged);
  EXPECT_EQ(chosen.Item(0)->Style(), "Flat");
  EXPECT_EQ(chosen.Item(0)->Theme(), "User & Faces");

  // Dropping a range adds the icons not chosen yet, in their order.
  h.ClickRow(*v.vlstIcons, 3, Shift::ShiftKey);
  v.SelectionChanged = false;
  h.DragToSelection(2);
  EXPECT_EQ(NamesOf(chosen), (Names{results[0], results[1], results[2], results[3]}));
  EXPECT_TRUE(v.SelectionChanged);
  v.SelectionChanged = false;
  h.DragToSelection(2);
  EXPECT_EQ(chosen.Count(), 4);
  EXPECT_FALSE(v.SelectionChanged);
  EXPECT_EQ(v.vlstSelectedIcons->ListCount(), 4);
  EXPECT_EQ(h.Status(), "66 Icons  Selection: 4 Icons");

  cwVListNew& list = *v.vlstSelectedIcons;
  h.ToolBar("SelectAll");
  EXPECT_EQ(list.GetSelections(), (std::vector<int>{0, 1, 2, 3}));
  h.ToolBar("DeselectAll");
  EXPECT_TRUE(list.GetSelections().empty());
  h.ClickRow(list, 1);
  h.ClickRow(list, 3, Shift::Ctrl);
  h.ToolBar("Minus");
  EXPECT_EQ(NamesOf(chosen), (Names{results[0], results[2]}));
  EXPECT_TRUE(v.SelectionChanged);
  h.ClickRow(list, 0);
  h.ui.Press(h.form, Key::Delete);
  EXPECT_EQ(NamesOf(chosen), Names{results[2]});
  h.DoubleClickRow(list, 0);
  EXPECT_TRUE(chosen.Empty());
  h.DoubleClickRow(*v.vlstIcons, 5);
  h.ToolBar("RemoveAllIcons");
  EXPECT_TRUE(chosen.Empty());
  EXPECT_EQ(list.ListCount(), 0);
  EXPECT_EQ(h.Status(), "66 Icons  Selection: 0 Icons");
}

TEST(SelectView, RenameRefusesABlankNameAndStoresOneWithAQuoteEverywhere) {
  SelectHost h;
  cvIconSelectView& v = h.view;
  const int id = static_cast<int>(h.app().SelectIcons.Item(0)->ID().AsLong());
  const std::string original = h.app().SelectIcons.Item(0)->FriendlyName();
  h.app().OverlayIcons.Add(h.app().SelectIcons.Item(0)->Clone(), "overlay");
  auto& rename = h.Get<cwButton>("btnRename");
  auto& remove = h.Get<cwButton>("btnDeleteIcons");
  EXPECT_FALSE(rename.Enabled());
  h.ClickRow(*v.vlstIcons, 0);
  h.ClickRow(*v.vlstIcons, 1, Shift::ShiftKey);
  EXPECT_FALSE(rename.Enabled());
  EXPECT_TRUE(remove.Enabled());
  h.DoubleClickRow(*v.vlstIcons, 0);
  EXPECT_TRUE(rename.Enabled());

  std::string shownName, refusal;
  bool stayed = false;
  auto* root = &h.ui.Root();
  const auto box = [root] { return TopDialog(*root)->Hosted()->Find<cwTextBox>("txtName"); };
  h.ui.WhileOpen({[&] {
                    shownName = box()->Text();
                    box()->setText("   ");
                    h.ui.PushClick(*TopDialog(*root)->Hosted()->Find("btnOk"));
                  },
                  [&] {
                    refusal = TopBox(*root)->Caption();
                    h.ui.PushClick(*TopBox(*root)->Find("btnOk"));
                  },
                  [&] {
                    stayed = TopDialog(*root) && box();
                    box()->setText(" Children's icon ");
                    h.ui.PushClick(*TopDialog(*root)->Hosted()->Find("btnOk"));
                  }});
  h.ui.Click(rename);
  EXPECT_EQ(shownName, original);
  EXPECT_EQ(refusal, "Please enter a name for the icon.");
  EXPECT_TRUE(stayed);
  EXPECT_EQ(TopDialog(*root), nullptr);
  EXPECT_EQ(
      h.app().Cnn.Query("Select Name From Images Where ID = " + std::to_string(id)).FieldValue(0).AsString(),
      "Children's icon");
  EXPECT_EQ(h.app().SelectIcons.Item(0)->FriendlyName(), "Children's icon");
  EXPECT_EQ(h.app().IconSelection.Item(0)->FriendlyName(), "Children's icon");
  EXPECT_EQ(h.app().OverlayIcons.Item("overlay")->FriendlyName(), "Children's icon");
}

TEST(SelectView, DeleteAsksAndALockedLibraryLeavesBothListsAsTheyWere) {
  SelectHost h;
  cvIconSelectView& v = h.view;
  auto* root = &h.ui.Root();
  const auto icons = [&] { return h.studio.Count("Select Count(*) From Images"); };
  const long long before = icons();
  h.DoubleClickRow(*v.vlstIcons, 0);
  h.DoubleClickRow(*v.vlstIcons, 1);
  h.ClickRow(*v.vlstIcons, 0, Shift::ShiftKey);
  const Names results = NamesOf(h.app().SelectIcons), chosen = NamesOf(h.app().IconSelection);
  const auto answer = [&](const char* button, std::string* caption) {
    return [&h, root, button, caption] {
      *caption = TopBox(*root)->Caption();
      h.ui.PushClick(*TopBox(*root)->Find(button));
    };
  };

  std::string question, report;
  h.ui.WhileOpen({answer("btnNo", &question)});
  h.ui.Click(h.Get("btnDeleteIcons"));
  EXPECT_EQ(question, "Permanently delete the selected icons from the library?");
  EXPECT_EQ(icons(), before);

  // Another program holds the write lock: the report comes, nothing changes.
  DbConnection other = DbConnection::Open(h.studio.folder.Library());
  ASSERT_TRUE(other.BeginTrans());
  h.ui.WhileOpen({answer("btnYes", &question), answer("btnOk", &report)});
  h.ui.Click(h.Get("btnDeleteIcons"));
  ASSERT_TRUE(other.RollbackTrans());
  EXPECT_EQ(report.rfind("Err#: ", 0), 0u) << report;
  EXPECT_NE(report.find("\ncvIconSelectView:btnDeleteIcons_Click"), std::string::npos) << report;
  EXPECT_EQ(icons(), before);
  EXPECT_EQ(NamesOf(h.app().SelectIcons), results);
  EXPECT_EQ(NamesOf(h.app().IconSelection), chosen);
  EXPECT_EQ(v.vlstIcons->ListCount(), kUserIcons);
  EXPECT_EQ(v.vlstIcons->GetSelections(), (std::vector<int>{0, 1}));

  // Yes deletes from the library and from every list.
  h.ui.WhileOpen({answer("btnYes", &question)});
  h.ui.Click(h.Get("btnDeleteIcons"));
  EXPECT_EQ(icons(), before - 2);
  EXPECT_EQ(NamesOf(h.app().SelectIcons), Names(results.begin() + 2, results.end()));
  EXPECT_TRUE(h.app().IconSelection.Empty());
  EXPECT_EQ(h.Status(), "64 Icons  Selection: 0 Icons");
  // With the question switched off it is not asked.
  h.app().Config->SetFlag("MsgDelIcons", false);
  h.ui.Backend().OnIdle = nullptr;
  h.ClickRow(*v.vlstIcons, 0);
  h.ui.Click(h.Get("btnDeleteIcons"));
  EXPECT_EQ(icons(), before - 3);
}

TEST(SelectView, TheLayoutFollowsTheWindowAndTheViewCatchesUpWhenEntered) {
  SelectHost h;
  cvIconSelectView& v = h.view;
  const auto& main = h.Get("pnlMain");
  EXPECT_EQ(v.vlstIcons->Width(), main.Width() - cvIconSelectView::kSelectionWidth);
  // The choices stand in two rows inside their strip, none over another.
  Widget& strip = h.Get("pnlSearch");
  for (int i = 0; i < strip.Children().Count(); ++i)
    EXPECT_LE(strip.Children().Item(i).Top() + strip.Children().Item(i).Height(), strip.Height()) << i;
  EXPECT_LE(v.DropStyles->Top() + v.DropStyles->Height(), h.Get("btnSelectAll").Top());
  const int wide = v.vlstIcons->CellsPerLine();
  EXPECT_EQ(wide, static_cast<int>((v.vlstIcons->DrawWidth() - 3) / (cvIconSelectView::kCell + 2)));
  h.form.Resize(800, 600);
  h.ui.Root().DoEvents();
  v.HandleResize(800, 600);
  EXPECT_LT(v.vlstIcons->CellsPerLine(), wide);
  EXPECT_EQ(v.vlstIcons->Width() + v.vlstSelectedIcons->Width(), main.Width());

  // Another view changed the selection; entering shows it after a moment.
  int shown = 0;
  v.Activate = [&] { ++shown; };
  h.app().IconSelection.Add(h.app().SelectIcons.Item(3)->Clone(), "x");
  v.SwitchToView();
  EXPECT_EQ(shown, 1);
  h.ui.Backend().AdvanceMs(cvIconSelectView::kActivateMs);
  h.ui.Root().DoEvents();
  EXPECT_EQ(v.vlstSelectedIcons->ListCount(), 1);
  EXPECT_EQ(h.Status(), "66 Icons  Selection: 1 Icons");
}

TEST(SelectView, TheDesignTakesTheSelectionAsItsBaseLayer) {
  SelectHost h;
  AppContext& app = h.app();
  h.DoubleClickRow(*h.view.vlstIcons, 4);
  h.DoubleClickRow(*h.view.vlstIcons, 2);
  app.Layers.Add(std::make_shared<cSVGItem>(), "top");
  h.view.UpdateSelection();
  EXPECT_EQ(NamesOf(app.BaseIcons), NamesOf(app.IconSelection));
  ASSERT_TRUE(app.Layers.Exists("_BaseIco"));
  EXPECT_EQ(app.Layers.Item("_BaseIco")->FriendlyName(), app.IconSelection.Item(0)->FriendlyName());
  app.Layers.Item("_BaseIco")->setFilter(-2);
  auto effect = std::make_shared<cSVGItem>();
  effect->setEffSymbolKey("_BaseIco");
  app.Layers.Add(effect, "shadow");

  // The first icon goes: the base layer shows the next in its place, in grey still.
  app.IconSelection.RemoveAt(0);
  h.view.UpdateSelection();
  EXPECT_EQ(app.Layers.IndexByKey("_BaseIco"), 1);
  EXPECT_EQ(app.Layers.Item("_BaseIco")->FriendlyName(), app.IconSelection.Item(0)->FriendlyName());
  EXPECT_EQ(app.Layers.Item("_BaseIco")->Filter(), -2);
  // No icons: the base layer and its effect leave, the others stay.
  app.IconSelection.Clear();
  h.view.UpdateSelection();
  EXPECT_TRUE(app.BaseIcons.Empty());
  EXPECT_EQ(app.Layers.Count(), 1);
  EXPECT_TRUE(app.Layers.Exists("top"));
}

TEST(SelectView, CellsShowTheIconOnALightTileOrThePatternWhenAskedTo) {
  SelectHost h;
  cwVListNew& grid = *h.view.vlstIcons;
  // The picture's box in the first cell: its corner pixel, and how many
  // pixels differ from that corner.
  const auto cell = [&](bool pattern) {
    h.app().Config->setShowIconBG(pattern);
    grid.Refresh();
    const WidgetPoint p = grid.W_RowPoint(0);
    double x, y;
    grid.FormPosition(x, y);
    const SurfacePtr shot = h.ui.Screenshot(h.form);
    const int half = cvIconSelectView::kCellPicture / 2, left = static_cast<int>(x + p.x) - half + 1,
              top = static_cast<int>(y + p.y) - half + 1;
    const Bgra corner = PixelAt(shot, left, top);
    int ink = 0;
    for (int j = 0; j < 2 * half - 2; ++j)
      for (int i = 0; i < 2 * half - 2; ++i) ink += PixelAt(shot, left + i, top + j) == corner ? 0 : 1;
    return std::pair{corner, ink};
  };
  const auto [tile, drawn] = cell(false);
  EXPECT_GT(drawn, 200);   // the icon
  EXPECT_GT(tile.g, 200);  // on a light tile, where dark icons show on the dark list
  const Bgra pattern = cell(true).first;
  EXPECT_NE(pattern, tile);  // or on the pattern of transparency, when asked for
  EXPECT_GT(pattern.g, 100);
}
