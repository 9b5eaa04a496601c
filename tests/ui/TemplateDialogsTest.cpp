// The template dialogs in their tool windows over a studio window, on a
// studio folder with its library unpacked, answered as a user answers
// them: saving the design, loading, deleting, and moving a template to
// another library through a file.

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/cConfig.h"
#include "app/modTexts.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "design/cwExportTemplate.h"
#include "design/cwImportTemplate.h"
#include "design/cwLoadTemplate.h"
#include "design/cwSaveTemplate.h"
#include "design/modTemplateDialogs.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "store/modDB.h"
#include "store/modTemplates.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/StartedApp.h"
#include "tests/support/TempDir.h"
#include "tests/support/UiDriver.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwTextBox.h"
#include "widgets/cwVListNew.h"

using namespace qds;
using Lines = std::vector<std::string>;
using Act = std::function<void()>;

namespace {

// A studio window for the dialogs to open over, the texts in English, and
// error reports as message boxes, as in the studio.
struct TemplateHost {
  UiDriver ui;
  StartedApp studio;
  cfForm form{"MainForm"};

  TemplateHost() {
    EXPECT_TRUE(studio.Start());
    UseEnglish(*studio.app);
    ui.Root().setImages(&studio.app->ImageList());
    InstallErrorMessages();
    form.Resize(900, 640);
    form.Show();
    ui.Root().DoEvents();
  }
  ~TemplateHost() {
    ui.Backend().OnIdle = nullptr;
    SetErrorReporter(nullptr);
  }
  static void UseEnglish(AppContext& app) {
    app.Config->setLanguage_ID(2);
    OpenTexts(app);
  }
  AppContext& app() { return *studio.app; }

  // The newest open tool dialog, and what it holds.
  cfToolDialog* Top() {
    cfToolDialog* top = nullptr;
    for (cfForm* f : ui.Root().Forms()) {
      if (auto* d = dynamic_cast<cfToolDialog*>(f); d && d->Showing()) top = d;
    }
    return top;
  }
  template <class W>
  W* Hosted() {
    cfToolDialog* d = Top();
    return d ? dynamic_cast<W*>(d->Hosted()) : nullptr;
  }
  template <class W = Widget>
  W& Child(const char* key) {
    W* w = Top() && Top()->Hosted() ? Top()->Hosted()->Find<W>(key) : nullptr;
    if (!w) throw std::runtime_error(std::string("no ") + key + " in the open dialog");
    return *w;
  }
  // Acts for the dialogs' loops: a press of a button of the top dialog,
  // and an answer to the message box on top, whose text is kept.
  Act Press(const char* key) {
    return [this, key] { ui.PushClick(Child(key)); };
  }
  Act Answer(const char* button, std::string* text) {
    return [this, button, text] {
      auto* box = Hosted<cwMsgBox>();
      if (!box) throw std::runtime_error("no message box is open");
      if (text) *text = box->Caption();
      ui.PushClick(*box->Find(button));
    };
  }
  Act Type(const char* key, const std::string& text) {
    return [this, key, text] { Child<cwTextBox>(key).setText(text); };
  }
  // Shows a dialog as the design view does, and runs one act per idle turn
  // of the dialogs' loops while it is open; every act must have run when it
  // closes. After each act a move over the studio window, which the dialog
  // keeps disabled, turns the loop again, so that an act that only looks
  // does not leave it waiting for nothing. A dialog still open when the
  // acts have run out is a failure, and is closed so the test goes on.
  int Show(std::unique_ptr<Widget> dialog, double width, double height, std::vector<Act> acts,
           const std::function<void(Widget&, int)>& after = {}) {
    auto ran = std::make_shared<std::size_t>(0);
    const std::size_t count = acts.size();
    ui.Backend().OnIdle = [this, ran, acts = std::move(acts)] {
      if (*ran < acts.size()) {
        acts[(*ran)++]();
      } else if (cfToolDialog* open = Top()) {
        auto* box = dynamic_cast<cwMsgBox*>(open->Hosted());
        ADD_FAILURE() << "left open: " << (box ? "the message \"" + box->Caption() + "\"" : open->Caption);
        cfToolDialog::CloseWith(*open->Hosted(), ToolResult::Cancel);
      }
      ui.Backend().Push({UiEvent::Type::MouseMove, &form, 0, 0, 0, 1, 1});
    };
    const int result = ShowTemplateTool(std::move(dialog), "Template", width, height, after);
    ui.Backend().OnIdle = nullptr;
    EXPECT_EQ(*ran, count) << "the dialog closed before all acts ran";
    return result;
  }
  // A click (or a double click) on a row of a list in a dialog.
  void PushRowClick(cwVListNew& list, int row, bool twice = false) {
    const WidgetPoint p = list.W_RowPoint(row);
    ASSERT_TRUE(p.widget) << "row " << row << " does not show";
    double x, y;
    p.widget->FormPosition(x, y);
    const double zoom = p.widget->Form()->Zoom();
    x = (x + p.x) * zoom, y = (y + p.y) * zoom;
    using T = UiEvent::Type;
    std::vector<T> presses{T::MouseDown, T::MouseUp};
    if (twice) presses.insert(presses.end(), {T::DblClick, T::MouseUp});
    for (T t : presses) ui.Backend().Push({t, p.widget->Form(), Button::Left, 0, 0, x, y});
  }
  cwLoadTemplate& Loader() {
    auto* w = Hosted<cwLoadTemplate>();
    if (!w) throw std::runtime_error("the load dialog is not on top");
    return *w;
  }
  Act ClickRow(int row, bool twice = false) {
    return [this, row, twice] { PushRowClick(*Loader().vlstTemplates, row, twice); };
  }

  // The dialogs as the design view opens them; each runs `acts` while it is open.
  int ShowSave(const std::string& name, const std::string& description, const Bytes& png, Lines* saved,
               std::vector<Act> acts) {
    auto dialog = std::make_unique<cwSaveTemplate>();
    dialog->setName(name);
    dialog->setDescription(description);
    dialog->setThumbNail(png);
    dialog->Init();
    dialog->Saved = [saved](const std::string& n, const std::string& d) {
      saved->insert(saved->end(), {n, d});
    };
    return Show(std::move(dialog), cwSaveTemplate::kWidth, cwSaveTemplate::kHeight, std::move(acts));
  }
  struct Loaded {
    int changed = 0, closed = 0;
    std::string name, description;
  };
  Loaded ShowLoad(std::vector<Act> acts) {
    Loaded seen;
    auto dialog = std::make_unique<cwLoadTemplate>();
    dialog->Init();
    dialog->TemplateChanged = [&seen] { ++seen.changed; };
    dialog->Closed = [&seen] { ++seen.closed; };
    Show(std::move(dialog), cwLoadTemplate::kWidth, cwLoadTemplate::kHeight, std::move(acts),
         [&seen](Widget& shown, int) {
           seen.name = static_cast<cwLoadTemplate&>(shown).Name();
           seen.description = static_cast<cwLoadTemplate&>(shown).Description();
         });
    return seen;
  }
};

// The base icon "star" with the layer it shows, under a blue "lock" at the
// top right, at 80 percent.
void BuildDesign(AppContext& app) {
  app.Layers.Clear();
  app.BaseIcons.Clear();
  SVGItemPtr star = LibraryLayer(app, "star", "Flat");
  ASSERT_TRUE(star);
  app.BaseIcons.Add(star, star->ID().AsString());
  SVGItemPtr base = star->Clone();
  base->setZoomPercent(70);
  SVGItemPtr lock = LibraryLayer(app, "lock", "Flat");
  ASSERT_TRUE(lock);
  lock->setPos(9);
  lock->setZoomPercent(40);
  lock->setFilter(cSVGItem::FilterColor);
  lock->setColorItem(cColorItem(0x0000FF));
  app.Layers.Add(lock, lock->ID().AsString());
  app.Layers.Add(base, "_BaseIco");
  app.DesignOpacity = 80;
  app.DesignOpacityOn = true;
}

// What the canvas would show of the design: each layer's key, icon,
// settings and colour, the base icons, and the opacity.
Lines Shape(AppContext& app) {
  Lines out;
  for (const auto& e : app.Layers) {
    out.push_back(e.Key + " " + e.Item->ID().AsString() + " " + e.Item->Settings() + " " +
                  std::to_string(e.Item->ColorItem().Color()));
  }
  for (const auto& e : app.BaseIcons) out.push_back("base " + e.Item->ID().AsString());
  out.push_back("opacity " + std::to_string(app.DesignOpacity) + (app.DesignOpacityOn ? " on" : " off"));
  return out;
}

Bytes Picture(std::int64_t colour) {
  SurfacePtr s = DrawingSurface::Create(24, 24);
  DrawingContext ctx(s);
  ctx.SetSourceColor(colour);
  ctx.Paint();
  return s->ToPngBytes();
}

long long EntriesOf(StartedApp& s, int id) {
  return s.Count("Select Count(*) From LayerEntries Where Layer_ID=" + std::to_string(id));
}

}  // namespace

TEST(TemplateDialogs, SaveRefusesABlankNameAsksBeforeReplacingAndWritesWholeOrNotAtAll) {
  TemplateHost h;
  BuildDesign(h.app());
  const Bytes picture = Picture(0x00FF00);
  Lines saved;
  std::string refusal;
  bool stayed = false;
  int result = h.ShowSave("", "warm ", picture, &saved,
                          {h.Type("txtName", "   "), h.Press("btnSave"), h.Answer("btnOk", &refusal),
                           [&] { stayed = h.Hosted<cwSaveTemplate>() != nullptr; },
                           h.Type("txtName", " Sunset "), h.Press("btnSave")});
  EXPECT_EQ(refusal, "Please enter a name for the template.");
  EXPECT_TRUE(stayed);
  EXPECT_EQ(result, ToolResult::Ok);
  EXPECT_EQ(saved, (Lines{"Sunset", "warm"}));
  const int id = FindDesign(h.app(), "Sunset");
  ASSERT_GT(id, 0);
  EXPECT_EQ(EntriesOf(h.studio, id), 2);
  EXPECT_EQ(ReadDesign(h.app(), id)->Image, picture);

  // A name that differs only in case is the same template: asked, and No
  // goes back to the name and keeps the old one.
  h.app().Layers.RemoveAt(0);
  std::string question;
  bool nameFocused = false;
  result = h.ShowSave("", "", picture, &saved,
                      {h.Type("txtName", "SUNSET"), h.Press("btnSave"), h.Answer("btnNo", &question),
                       [&] { nameFocused = h.Child("txtName").HasFocus(); }, h.Press("btnCancel")});
  EXPECT_EQ(question, "This name already exists. Overwrite?");
  EXPECT_TRUE(nameFocused);
  EXPECT_EQ(result, ToolResult::Cancel);
  EXPECT_EQ(saved.size(), 2u);
  EXPECT_EQ(h.studio.Count("Select Count(*) From Layer"), 1);
  EXPECT_EQ(EntriesOf(h.studio, id), 2);

  // The library fails after the first new entry (a full disk): the old
  // template stays whole, with its description.
  BuildDesign(h.app());
  h.app().Layers.Add(LibraryLayer(h.app(), "heart-3", "Flat"), "heart");
  ASSERT_TRUE(
      h.app().Cnn.Execute("Create Trigger FullDisk Before Insert On LayerEntries When New.OrdIndex = 1 "
                          "Begin Select Raise(Abort, 'database or disk is full'); End"));
  std::string report;
  h.ShowSave("", "changed", picture, &saved,
             {h.Type("txtName", "sunset"), h.Press("btnSave"), h.Answer("btnYes", &question),
              h.Answer("btnOk", &report), h.Press("btnCancel")});
  EXPECT_EQ(report, "Error while saving: database or disk is full");
  EXPECT_EQ(EntriesOf(h.studio, id), 2);
  EXPECT_EQ(ReadDesign(h.app(), id)->Description, "warm");

  // Yes replaces it under the same ID.
  ASSERT_TRUE(h.app().Cnn.Execute("Drop Trigger FullDisk"));
  h.ShowSave("", "changed", picture, &saved,
             {h.Type("txtName", "sunset"), h.Press("btnSave"), h.Answer("btnYes", &question)});
  EXPECT_EQ(FindDesign(h.app(), "Sunset"), id);
  EXPECT_EQ(h.studio.Count("Select Count(*) From Layer"), 1);
  EXPECT_EQ(EntriesOf(h.studio, id), 3);
  EXPECT_EQ(ReadDesign(h.app(), id)->Description, "changed");
}

TEST(TemplateDialogs, LoadRestoresTheDesignShowsGoneIconsAsTheStandInAndKeepsItOnAFailure) {
  TemplateHost h;
  AppContext& app = h.app();
  BuildDesign(app);
  const Lines design = Shape(app);
  ASSERT_TRUE(WriteCurrentLayerList(app, "Sunset", "warm", Picture(0x00FF00)));
  const int id = FindDesign(app, "Sunset");
  app.Layers.Clear();
  ASSERT_TRUE(WriteCurrentLayerList(app, "Blank", "", {}));
  app.BaseIcons.Clear();
  app.DesignOpacity = 100;
  app.DesignOpacityOn = false;

  // Listed by name; a double click loads and closes.
  int rows = 0;
  TemplateHost::Loaded seen =
      h.ShowLoad({[&] { rows = h.Loader().vlstTemplates->ListCount(); }, h.ClickRow(1, true)});
  EXPECT_EQ(rows, 2);
  EXPECT_EQ(Shape(app), design);
  EXPECT_EQ(seen.changed, 1);
  EXPECT_EQ(seen.closed, 1);
  EXPECT_EQ(seen.name, "Sunset");
  EXPECT_EQ(seen.description, "warm");

  // The base icon has left the library: it comes back as the stand-in.
  const std::string star = app.BaseIcons.Item(0)->ID().AsString();
  ASSERT_TRUE(app.Cnn.Execute("Delete From Images Where ID = " + star));
  app.Layers.Clear();
  seen = h.ShowLoad({h.ClickRow(1), h.Press("btnLoad")});
  EXPECT_EQ(seen.changed, 1);
  ASSERT_EQ(app.Layers.Count(), 2);
  EXPECT_EQ(app.Layers.Item("_BaseIco")->ID().AsLong(), app.DummyID);
  EXPECT_EQ(app.BaseIcons.Item(0)->ID().AsLong(), app.DummyID);
  EXPECT_EQ(app.Layers.Item(0)->ColorItem().Color(), 0x0000FF);  // the lock is as it was

  // A damaged entry: the reason is told, the design on the canvas stays.
  const Lines standIn = Shape(app);
  ASSERT_TRUE(app.Cnn.Execute("Update LayerEntries Set Content = '{\"Key\":' Where Layer_ID = " +
                              std::to_string(id) + " And OrdIndex = 1"));
  std::string report;
  seen = h.ShowLoad({h.ClickRow(1), h.Press("btnLoad"), h.Answer("btnOk", &report), h.Press("btnClose")});
  EXPECT_EQ(report.rfind("Error while loading: Sunset: layer entry 2 ", 0), 0u) << report;
  EXPECT_EQ(seen.changed, 0);
  EXPECT_EQ(seen.closed, 1);
  EXPECT_EQ(Shape(app), standIn);
}

TEST(TemplateDialogs, DeleteAsksAndRemovesTheTemplateWithItsEntries) {
  TemplateHost h;
  BuildDesign(h.app());
  ASSERT_TRUE(WriteCurrentLayerList(h.app(), "Alpha", "", {}));
  ASSERT_TRUE(WriteCurrentLayerList(h.app(), "Beta", "", {}));
  const int alpha = FindDesign(h.app(), "Alpha");
  std::string question;
  int afterNo = 0, afterYes = 0;
  std::string left;
  const auto list = [&] { return h.Loader().vlstTemplates; };
  h.ShowLoad({h.ClickRow(0), h.Press("btnDelete"), h.Answer("btnNo", &question),
              [&] { afterNo = list()->ListCount(); }, h.Press("btnDelete"), h.Answer("btnYes", nullptr),
              [&] {
                afterYes = list()->ListCount();
                WidgetState state;
                h.Loader().W_ReportState(state);
                left = state.caption.value_or("");
              },
              h.Press("btnClose")});
  EXPECT_EQ(question, "Delete the selected template?");
  EXPECT_EQ(afterNo, 2);
  EXPECT_EQ(afterYes, 1);
  EXPECT_EQ(left, "Beta");
  EXPECT_EQ(FindDesign(h.app(), "Alpha"), 0);
  EXPECT_EQ(EntriesOf(h.studio, alpha), 0);
  EXPECT_GT(FindDesign(h.app(), "Beta"), 0);
}

TEST(TemplateDialogs, ExportThenImportIntoAFreshLibraryGivesTheSameEntriesAndADamagedFileWritesNothing) {
  TemplateHost h;
  TempDir files;
  BuildDesign(h.app());
  ASSERT_TRUE(WriteCurrentLayerList(h.app(), "Sunset", "warm", Picture(0x00FF00)));
  const DesignFile original = *ReadDesign(h.app(), FindDesign(h.app(), "Sunset"));
  const std::string folder = files.Path(), path = files / "Sunset.tpl";

  // From the load dialog's button, into a folder of the user's choice.
  std::string target;
  h.ShowLoad({h.ClickRow(0), h.Press("btnExport"),
              [&] {
                auto* exporter = h.Hosted<cwExportTemplate>();
                exporter->setFolder(folder);
                target = exporter->TargetPath();
              },
              h.Press("btnExport"), h.Press("btnClose")});
  EXPECT_EQ(target, path);
  ASSERT_TRUE(FileExists(path));
  EXPECT_EQ(cConfig(h.app().Cnn, h.app().AppPath).TemplatePath(), folder);
  const Bytes written = ReadAllBytes(path);

  // An existing file is replaced only on Yes.
  WriteAllBytes(path, ToBytes("kept"));
  std::string question;
  {
    auto exporter = std::make_unique<cwExportTemplate>();
    exporter->setLayer_ID(FindDesign(h.app(), "Sunset"));
    EXPECT_EQ(exporter->Folder(), folder);  // where the last export went
    h.Show(std::move(exporter), cwExportTemplate::kWidth, cwExportTemplate::kHeight,
           {h.Press("btnExport"), h.Answer("btnNo", &question), h.Press("btnCancel")});
  }
  EXPECT_EQ(question, "This name already exists. Overwrite?");
  EXPECT_EQ(ReadAllBytes(path), ToBytes("kept"));
  WriteAllBytes(path, written);

  // A template without layers would be refused by every import: it is not written.
  h.app().Layers.Clear();
  ASSERT_TRUE(WriteCurrentLayerList(h.app(), "Empty", "", {}));
  std::string refusal;
  {
    auto exporter = std::make_unique<cwExportTemplate>();
    exporter->setLayer_ID(FindDesign(h.app(), "Empty"));
    h.Show(std::move(exporter), cwExportTemplate::kWidth, cwExportTemplate::kHeight,
           {h.Press("btnExport"), h.Answer("btnOk", &refusal), h.Press("btnCancel")});
  }
  EXPECT_EQ(refusal,
            "This template cannot be exported, because it could not be imported again: the template has no "
            "layer entries (\"Content\")");
  EXPECT_FALSE(FileExists(files / "Empty.tpl"));

  // Another library: a damaged file is refused and writes nothing.
  StartedApp fresh;
  ASSERT_TRUE(fresh.Start());
  TemplateHost::UseEnglish(*fresh.app);
  const long long designs = fresh.Count("Select Count(*) From Layer");
  WriteAllBytes(files / "Broken.tpl", Bytes(written.begin(), written.begin() + written.size() / 2));
  std::string report;
  {
    auto importer = std::make_unique<cwImportTemplate>();
    importer->setFilePath(files / "Broken.tpl");
    h.Show(std::move(importer), cwImportTemplate::kWidth, cwImportTemplate::kHeight,
           {h.Press("btnImport"), h.Answer("btnOk", &report), h.Press("btnCancel")});
  }
  EXPECT_EQ(report.rfind("Invalid file: ", 0), 0u) << report;
  EXPECT_EQ(fresh.Count("Select Count(*) From Layer"), designs);
  EXPECT_EQ(fresh.Count("Select Count(*) From LayerEntries"), 0);

  // The good file, from the load dialog: named after the file, confirmed,
  // and the list shows it selected.
  std::string confirmation, name;
  int listed = 0, selected = 0;
  h.ShowLoad({h.Press("btnImport"),
              [&] {
                h.Hosted<cwImportTemplate>()->setFilePath(path);
                name = h.Hosted<cwImportTemplate>()->Name();
              },
              h.Press("btnImport"), h.Answer("btnOk", &confirmation),
              [&] {
                listed = h.Loader().vlstTemplates->ListCount();
                selected = h.Loader().SelectedID();
              },
              h.Press("btnClose")});
  EXPECT_EQ(name, "Sunset");
  EXPECT_EQ(confirmation, "The template has been imported.");
  EXPECT_EQ(listed, designs + 1);
  const int id = FindDesign(*fresh.app, "Sunset");
  ASSERT_GT(id, 0);
  EXPECT_EQ(selected, id);
  const DesignFile imported = *ReadDesign(*fresh.app, id);
  EXPECT_EQ(imported.Contents, original.Contents);
  EXPECT_EQ(imported.Description, "warm");
  EXPECT_EQ(imported.Opacity, 80);
  EXPECT_TRUE(imported.UseOpacity);
  EXPECT_EQ(imported.Image, original.Image);

  // The same name in another case asks; No leaves the one there.
  question.clear();
  {
    auto importer = std::make_unique<cwImportTemplate>();
    importer->setFilePath(path);
    h.Show(std::move(importer), cwImportTemplate::kWidth, cwImportTemplate::kHeight,
           {h.Type("txtName", "SUNSET"), h.Press("btnImport"), h.Answer("btnNo", &question),
            h.Press("btnCancel")});
  }
  EXPECT_EQ(question, "This name already exists. Overwrite?");
  EXPECT_EQ(fresh.Count("Select Count(*) From Layer"), designs + 1);
  EXPECT_EQ(ReadDesign(*fresh.app, id)->Name, "Sunset");
}
