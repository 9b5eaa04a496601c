#include <gtest/gtest.h>

#include <sstream>

#include "app/modTexts.h"
#include "cli/CommandLine.h"
#include "engine/modFunctions.h"
#include "engine/modHistory.h"
#include "engine/modRenderDesign.h"
#include "export/modExport.h"
#include "platform/DrawingContext.h"
#include "platform/Files.h"
#include "store/modDB.h"
#include "store/modTemplates.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/StartedApp.h"
#include "tests/support/TempDir.h"

using namespace qds;

namespace {

struct Design : ::testing::Test {
  StartedApp s;
  void SetUp() override { ASSERT_TRUE(StartWithoutWindow(*s.app)); }
  int IdOf(const std::string& name, const std::string& style = "Flat") {
    return static_cast<int>(LibraryLayer(*s.app, name, style)->ID().AsLong());
  }
  // Two base icons, an overlay with a colour filter, a text layer over all.
  void Build() {
    AppContext& app = *s.app;
    app.Layers.Clear();
    app.BaseIcons.Clear();
    // In name order, as a loaded design has them: the base layer shows the first.
    for (const char* n : {"heart-3", "star"}) {
      SVGItemPtr icon = LibraryLayer(app, n, "Flat");
      app.BaseIcons.Add(icon, icon->ID().AsString());
    }
    SVGItemPtr base = app.BaseIcons.Item(0)->Clone();
    base->setZoomPercent(70);
    SVGItemPtr overlay = LibraryLayer(app, "lock", "Flat");
    overlay->setPos(9);
    overlay->setZoomPercent(40);
    overlay->setFilter(cSVGItem::FilterColor);
    overlay->setColorItem(cColorItem(0x0000FF));
    auto text = std::make_shared<cSVGItem>();
    text->Init(Value("231126000000Text"), {}, "Text", nullptr, true, cSVGItem::FilterOriginal);
    text->setTextContent("Q'd");
    text->setZoomPercent(30);
    text->setPos(1);
    text->SettingsRefresh();
    app.Layers.Add(text, "231126000000Text");
    app.Layers.Add(overlay, std::to_string(IdOf("lock")));
    app.Layers.Add(base, "_BaseIco");
    app.DesignOpacity = 80;
    app.DesignOpacityOn = true;
  }
  Bytes Png() {
    SurfacePtr surface = DrawingSurface::Create(128, 128);
    DrawingContext ctx(surface);
    RenderDesign(*s.app, ctx, 128);
    return surface->ToPngBytes();
  }
};

}  // namespace

TEST_F(Design, SavesAndLoadsRowsOverwritesByNameAndSurvivesDeletedIcons) {
  Build();
  const Bytes before = Png();
  ASSERT_TRUE(WriteCurrentLayerList(*s.app, " Children's Set ", "three layers", ToBytes("thumb")));
  const int id = FindDesign(*s.app, "CHILDREN'S SET");  // case does not matter, a quote is fine
  ASSERT_GT(id, 0);
  DbRecordset rows =
      s.app->Cnn.Query("Select OrdIndex, Content From LayerEntries Where Layer_ID=" + std::to_string(id) +
                       " Order By OrdIndex");
  ASSERT_EQ(rows.RecordCount(), 3);
  EXPECT_EQ(rows.Fields(0).AsLong(), 0);
  cLayersEntries base;
  rows.MoveLast();
  ASSERT_TRUE(base.setContent(rows.Fields(1).AsString()));
  EXPECT_TRUE(base.IsBaseEntry());
  EXPECT_EQ(base.ImageIDs(), std::to_string(IdOf("heart-3")) + "," + std::to_string(IdOf("star")));
  for (const char* key : {"\"ColorFilter\"", "\"Visible\"", "\"FillOptions\"", "\"R\"", "\"L\""}) {
    EXPECT_NE(rows.Fields(1).AsString().find(key), std::string::npos) << key;
  }

  // Loading rebuilds the same stack, and it draws the same.
  s.app->Layers.Clear();
  s.app->BaseIcons.Clear();
  ASSERT_TRUE(FillCurrentLayerList(*s.app, id));
  ASSERT_EQ(s.app->Layers.Count(), 3);
  EXPECT_EQ(s.app->Layers.KeyByIndex(0), "231126000000Text");
  EXPECT_EQ(s.app->Layers.KeyByIndex(2), "_BaseIco");
  EXPECT_EQ(s.app->BaseIcons.Count(), 2);
  EXPECT_EQ(s.app->Layers.Item(1)->ColorItem().Color(), 0x0000FF);
  EXPECT_EQ(s.app->Layers.Item(1)->Pos(), 9);
  EXPECT_EQ(Png(), before);

  // Saving again under the same name keeps the ID and replaces the entries.
  s.app->Layers.Remove("231126000000Text");
  s.app->Layers.RemoveAt(0);
  ASSERT_TRUE(WriteCurrentLayerList(*s.app, "children's set", "", {}));
  EXPECT_EQ(FindDesign(*s.app, "Children's Set"), id);
  EXPECT_EQ(s.Count("Select Count(*) From Layer"), 1);
  EXPECT_EQ(s.Count("Select Count(*) From LayerEntries Where Layer_ID=" + std::to_string(id)), 1);

  // An empty design is a row without entries.
  s.app->Layers.Clear();
  ASSERT_TRUE(WriteCurrentLayerList(*s.app, "Empty", "", {}));
  EXPECT_EQ(s.Count("Select Count(*) From LayerEntries Where Layer_ID=" +
                    std::to_string(FindDesign(*s.app, "Empty"))),
            0);

  // Icons deleted from the library come back as the stand-in icon.
  ASSERT_TRUE(s.app->Cnn.Execute("Delete From Images Where ID In (" + std::to_string(IdOf("star")) + "," +
                                 std::to_string(IdOf("heart-3")) + ")"));
  ASSERT_TRUE(FillCurrentLayerList(*s.app, id));
  ASSERT_EQ(s.app->Layers.Count(), 1);
  EXPECT_EQ(s.app->Layers.Item("_BaseIco")->ID().AsLong(), s.app->DummyID);
  EXPECT_EQ(s.app->BaseIcons.Count(), 1);  // both gone: one stand-in
}

TEST_F(Design, TemplatesTravelToAFreshLibraryAndDrawTheSame) {
  Build();
  const Bytes before = Png();
  ASSERT_TRUE(WriteCurrentLayerList(*s.app, "Travel", "to another library", ToBytes("\x89PNG")));
  const Bytes tpl = TemplateBytes(*ReadDesign(*s.app, FindDesign(*s.app, "Travel")));

  StartedApp other;
  ASSERT_TRUE(StartWithoutWindow(*other.app));
  const std::optional<DesignFile> read = ReadTemplateBytes(tpl);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->Description, "to another library");
  EXPECT_EQ(read->Opacity, 80);
  EXPECT_TRUE(read->UseOpacity);
  const int id = StoreDesign(*other.app, "travel", *read);
  ASSERT_GT(id, 0);
  ASSERT_TRUE(FillCurrentLayerList(*other.app, id));
  SurfacePtr surface = DrawingSurface::Create(128, 128);
  DrawingContext ctx(surface);
  RenderDesign(*other.app, ctx, 128);
  EXPECT_EQ(surface->ToPngBytes(), before);  // pixel for pixel

  // The readable file says the same, but for the thumbnail it leaves out.
  std::optional<DesignFile> json = ReadDesignJson(DesignJson(*read));
  ASSERT_TRUE(json);
  EXPECT_TRUE(json->Image.empty());
  json->Image = read->Image;
  EXPECT_EQ(TemplateBytes(*json), tpl);
}

TEST_F(Design, DamagedFilesAreInvalidAndWriteNothing) {
  Build();
  ASSERT_TRUE(WriteCurrentLayerList(*s.app, "Good", "", {}));
  const Bytes tpl = TemplateBytes(*ReadDesign(*s.app, FindDesign(*s.app, "Good")));
  for (std::size_t cut : {std::size_t{0}, std::size_t{5}, tpl.size() / 2, tpl.size() - 1}) {
    EXPECT_FALSE(ReadTemplateBytes(Bytes(tpl.begin(), tpl.begin() + cut))) << cut;
  }
  EXPECT_FALSE(ReadTemplateBytes(ToBytes("not a collection at all")));

  // A template without entries has no "Content" and is refused.
  DesignFile empty;
  EXPECT_FALSE(ReadTemplateBytes(TemplateBytes(empty)));
  // An entry that is not a layer entry.
  DesignFile odd;
  odd.Contents = {"[1,2]"};
  EXPECT_FALSE(ReadTemplateBytes(TemplateBytes(odd)));
  // Older files without opacity keys read with the defaults.
  Collection old(KeyMode::AllowDuplicates);
  old.Add(Value(Bytes()), "Image");
  old.Add(Value("old"), "Description");
  old.Add(Value(R"({"Key":"1","ImageIDs":"1"})"), "Content");
  const auto oldRead = ReadTemplateBytes(SerializeCollection(old));
  ASSERT_TRUE(oldRead);
  EXPECT_EQ(oldRead->Opacity, 100);
  EXPECT_FALSE(oldRead->UseOpacity);

  for (const char* bad :
       {"", "{}", R"({"Description":"x","Entries":{}})", R"({"Description":"x","Entries":[1]})",
        R"({"Entries":[]})", "{\"Description\":\"x\",\"Entries\":[{}"}) {
    EXPECT_FALSE(ReadDesignJson(bad)) << bad;
  }
  EXPECT_TRUE(ReadDesignJson(R"({"Description":"","Entries":[]})"));
  EXPECT_EQ(s.Count("Select Count(*) From Layer"), 1);

  // Each refusal says where and why.
  const auto whyJson = [](const std::string& text) {
    std::string why;
    EXPECT_FALSE(ReadDesignJson(text, &why)) << text;
    return why;
  };
  const std::string base = R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":"12"})";
  for (const auto& [text, said] : std::vector<std::pair<std::string, std::string>>{
           {"{\n  \"Description\": \"x\",\n  \"Entries\": [,]\n}", "not valid JSON at line 3, column 15"},
           {"[]", "not a JSON object but an array"},
           {R"({"Description":"x"})", "Entries is missing"},
           {R"({"Description":"x","Entries":{}})", "Entries is not a list"},
           {R"({"Entries":[]})", "Description is missing"},
           {R"({"Description":"x","Entries":[)" + base + "," + base + ",7]}", "Entries[2] is not an object"},
           {R"({"Description":"x","Entries":[{}]})", "Entries[0] has no key"},
           {R"({"Description":"x","Entries":[{"Key":"5","ImageIDs":"5","Settings":"[1]"}]})",
            "Entries[0] (5) has settings that are not a JSON object but an array"},
           {R"({"Description":"x","Entries":[{"Key":"5","ImageIDs":"5","Settings":"{\"Pos\":"}]})",
            "Entries[0] (5) has settings that are not valid JSON at line 1, column 8"},
           {R"({"Description":"x","Entries":[{"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":"12,x"}]})",
            "Entries[0] (_BaseIco) has an icon ID that is not a whole number: \"x\""},
           {R"({"Description":"x","Opacity":"half","Entries":[]})", "Opacity is not a number but \"half\""},
           {R"({"Description":"x","UseOpacity":[],"Entries":[]})", "UseOpacity is not true or false"},
           {R"({"Description":7,"Entries":[]})", "Description is not a text"}}) {
    EXPECT_NE(whyJson(text).find(said), std::string::npos) << whyJson(text) << "\n  for: " << text;
  }
  std::string why;
  EXPECT_FALSE(ReadTemplateBytes(Bytes(tpl.begin(), tpl.begin() + tpl.size() / 2), &why));
  EXPECT_NE(why.find("not a template: Damaged collection"), std::string::npos) << why;
  EXPECT_FALSE(ReadTemplateBytes(TemplateBytes(odd), &why));
  EXPECT_EQ(why, "layer entry 1 is not a JSON object but an array");
  EXPECT_FALSE(ReadTemplateBytes(TemplateBytes(empty), &why));
  EXPECT_NE(why.find("no layer entries"), std::string::npos) << why;
}

TEST_F(Design, ValuesOutOfRangeAreSetToTheirLimitsAndTheUserIsTold) {
  TempDir files;
  const auto run = [&](std::vector<std::string> args, std::string* err) {
    args.insert(args.begin(), {"--app-dir", s.folder.Folder()});
    std::ostringstream o, e;
    const int rc = RunCommand(ParseCommandLine(args), o, e);
    *err = e.str();
    return rc;
  };
  const std::string told = "1 value of the design was out of range and is used at its limit";
  const std::string star = std::to_string(IdOf("star"));
  DesignFile d;
  d.Contents = {R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":")" + star + R"(","Settings":"{}"})"};

  // A template whose opacity is the largest int64 was read as -1.
  Collection c(KeyMode::AllowDuplicates);
  c.Add(Value(Bytes()), "Image");
  c.Add(Value(""), "Description");
  c.Add(Value(static_cast<long long>(INT64_MAX)), "Opacity");
  c.Add(Value(true), "UseOpacity");
  c.Add(Value(d.Contents[0]), "Content");
  WriteAllBytes(files / "max.tpl", SerializeCollection(c));
  std::string err;
  ASSERT_EQ(run({"design", "import-tpl", files / "max.tpl"}, &err), 0) << err;
  EXPECT_NE(err.find(told), std::string::npos) << err;
  EXPECT_EQ(s.Count("Select Opacity From Layer Where Name = 'max'"), 100);

  for (const auto& [opacity, expected, clamped] :
       std::vector<std::tuple<std::string, int, int>>{{"-50", 0, 1},
                                                      {"1e300", 100, 1},
                                                      {"99.6", 100, 0},
                                                      {"100.4", 100, 1},
                                                      {"null", 100, 0},
                                                      {"0", 0, 0}}) {
    std::string why;
    const auto read = ReadDesignJson(R"({"Description":"","Opacity":)" + opacity + R"(,"Entries":[]})", &why);
    ASSERT_TRUE(read) << why;
    EXPECT_EQ(read->Opacity, expected) << opacity;
    EXPECT_EQ(read->Clamped, clamped) << opacity;
  }

  // A row of the library out of range is exported at its limit, not as a
  // negative opacity.
  ASSERT_GT(StoreDesign(*s.app, "Faded", d), 0);
  ASSERT_TRUE(s.app->Cnn.Execute("Update Layer Set Opacity = -50, UseOpacity = -1 Where Name = 'Faded'"));
  const std::optional<DesignFile> row = ReadDesign(*s.app, FindDesign(*s.app, "Faded"));
  ASSERT_TRUE(row);
  EXPECT_EQ(row->Opacity, 0);
  EXPECT_TRUE(row->UseOpacity);
  EXPECT_EQ(row->Clamped, 1);
  CreateDirectories(files / "out");
  ASSERT_EQ(run({"export", "--design", "Faded", "--format", "SVG", "--out", files / "out"}, &err), 0) << err;
  EXPECT_NE(err.find(told), std::string::npos) << err;
  const std::string svg = ReadAllText(files / "out/star_256.svg");
  EXPECT_EQ(svg.find("opacity=\"-"), std::string::npos);
  ASSERT_EQ(run({"design", "show", "faded"}, &err), 0);
  EXPECT_NE(err.find(told), std::string::npos) << err;

  // A value of the wrong kind is no number to clamp: the design says so.
  ASSERT_TRUE(s.app->Cnn.Execute("Update Layer Set Opacity = 'half' Where Name = 'Faded'"));
  EXPECT_EQ(run({"design", "export-tpl", "Faded", "--out", files / "f.tpl"}, &err), 1);
  EXPECT_NE(err.find("\"Faded\""), std::string::npos) << err;
  EXPECT_NE(err.find("Opacity is not a number but \"half\""), std::string::npos) << err;
  EXPECT_FALSE(FileExists(files / "f.tpl"));
}

TEST_F(Design, ATemplateThatImportWouldRefuseIsNotWritten) {
  TempDir files;
  const auto run = [&](std::vector<std::string> args, std::string* err) {
    args.insert(args.begin(), {"--app-dir", s.folder.Folder(), "design"});
    std::ostringstream o, e;
    const int rc = RunCommand(ParseCommandLine(args), o, e);
    *err = e.str();
    return rc;
  };
  const std::string star = std::to_string(IdOf("star")), lock = std::to_string(IdOf("lock"));
  DesignFile d;
  d.Contents = {R"({"Key":")" + lock + R"(","ImageIDs":")" + lock + R"(","Settings":"{\"Pos\":5}"})",
                R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":")" + star + R"(","Settings":"{}"})"};
  const int id = StoreDesign(*s.app, "Damaged", d);
  ASSERT_GT(id, 0);
  const std::string target = files / "d.tpl";
  WriteUtf8Text(target, "an older export, kept");
  const auto damage = [&](int ordIndex, const std::string& content) {
    ASSERT_TRUE(s.app->Cnn.Execute("Update LayerEntries Set Content = '" + SqlText(content) +
                                   "' Where Layer_ID = " + std::to_string(id) +
                                   " And OrdIndex = " + std::to_string(ordIndex)));
  };
  std::string err;
  for (const auto& [ordIndex, content, said] : std::vector<std::tuple<int, std::string, std::string>>{
           {1, R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":")" + star + R"(,abc"})",
            "layer entry 2 (_BaseIco) has an icon ID that is not a whole number: \"abc\""},
           {0, R"({"Key":")" + lock + R"(","ImageIDs":")" + lock + R"(","Settings":"Pos=5"})",
            "layer entry 1 (" + lock + ") has settings that are not valid JSON at line 1, column 1"},
           {0, R"({"Key":")" + lock + R"(","ImageIDs":"lock"})",
            "layer entry 1 (" + lock + ") names no library icon"},
           {0, R"({"Key":)", "layer entry 1 is not valid JSON at line 1, column 8"}}) {
    damage(ordIndex, content);
    EXPECT_EQ(run({"export-tpl", "Damaged", "--out", target, "--replace"}, &err), 1) << said;
    EXPECT_NE(err.find(said), std::string::npos) << err;
    EXPECT_NE(err.find(target + ": not written"), std::string::npos) << err;
    EXPECT_EQ(ReadAllText(target), "an older export, kept");
  }
  EXPECT_EQ(ListFolder(files.Path(), "*"),
            std::vector<std::string>{"d.tpl"});  // no half-written file beside it
  // Shown, the damaged entry is the text it is, not an empty layer.
  std::ostringstream shown, ignored;
  ASSERT_EQ(RunCommand(ParseCommandLine({"--app-dir", s.folder.Folder(), "design", "show", "Damaged"}), shown,
                       ignored),
            0);
  EXPECT_NE(shown.str().find(R"("{\"Key\":")"), std::string::npos) << shown.str();

  // Once repaired it travels, and the import takes what the export wrote.
  damage(0, d.Contents[0]);
  damage(1, d.Contents[1]);
  ASSERT_EQ(run({"export-tpl", "Damaged", "--out", target, "--replace"}, &err), 0) << err;
  ASSERT_EQ(run({"import-tpl", target, "--name", "Repaired"}, &err), 0) << err;
}

TEST_F(Design, TheCommandLineListsShowsSavesExportsImportsAndDeletes) {
  TempDir files;
  const std::string app = s.folder.Folder();
  const auto run = [&](std::vector<std::string> args, std::string* out = nullptr,
                       std::string* err = nullptr) {
    args.insert(args.begin(), {"--app-dir", app, "design"});
    std::ostringstream o, e;
    const int rc = RunCommand(ParseCommandLine(args), o, e);
    if (out) *out = o.str();
    if (err) *err = e.str();
    return rc;
  };
  std::string out, err;
  ASSERT_EQ(run({"list"}, &out), 0);
  EXPECT_EQ(out, "");

  const std::string lock = std::to_string(IdOf("lock"));
  WriteUtf8Text(files / "d.json",
                R"({"Name":"ignored","Description":"from a script","Opacity":60,"UseOpacity":true,)"
                R"("Entries":[{"Key":")" +
                    lock + R"(","ImageIDs":")" + lock + R"(","Settings":"{\"Pos\":5}","ColorFilter":-1}]})");
  ASSERT_EQ(run({"save", "Script's", "--from", files / "d.json"}, &out, &err), 0) << err;
  EXPECT_EQ(run({"save", "SCRIPT'S", "--from", files / "d.json"}, &out, &err), 1);  // exists
  EXPECT_NE(err.find("--replace"), std::string::npos);
  ASSERT_EQ(run({"save", "SCRIPT'S", "--from", files / "d.json", "--replace"}), 0);
  ASSERT_EQ(run({"list"}, &out), 0);
  EXPECT_EQ(out, "SCRIPT'S\n");
  // The name is looked for again inside the write, where no other program
  // can take it meanwhile: without leave to replace, nothing changes.
  bool existed = false;
  EXPECT_EQ(StoreDesign(*s.app, "script's", DesignFile{}, false, &existed), 0);
  EXPECT_TRUE(existed);
  EXPECT_EQ(s.Count("Select Count(*) From LayerEntries"), 1);

  ASSERT_EQ(run({"show", "script's"}, &out), 0);
  EXPECT_NE(out.find("\"Description\": \"from a script\""), std::string::npos) << out;
  EXPECT_NE(out.find("\"Opacity\": 60"), std::string::npos);

  ASSERT_EQ(run({"export-tpl", "script's", "--out", files / "s.tpl"}), 0);
  EXPECT_EQ(run({"export-tpl", "script's", "--out", files / "s.tpl"}), 1);  // no overwrite without asking
  ASSERT_EQ(run({"import-tpl", files / "s.tpl"}, &out, &err), 0) << err;
  EXPECT_EQ(out, "s\n");  // named after the file
  ASSERT_EQ(run({"import-tpl", files / "s.tpl", "--name", "Copy"}), 0);
  ASSERT_EQ(run({"list"}, &out), 0);
  EXPECT_EQ(out, "Copy\ns\nSCRIPT'S\n");

  WriteUtf8Text(files / "bad.tpl", "garbage");
  EXPECT_EQ(run({"import-tpl", files / "bad.tpl"}, &out, &err), 1);
  // The message and its reason, without a full stop between them.
  std::string said = LanguageText(*s.app, "InvalidFile").Text;
  ASSERT_EQ(said.back(), '.');
  said.back() = ':';
  EXPECT_NE(err.find(said + " not a template"), std::string::npos) << err;
  EXPECT_EQ(run({"show", "nobody"}, &out, &err), 1);
  ASSERT_EQ(run({"delete", "copy"}), 0);
  EXPECT_EQ(s.Count("Select Count(*) From Layer"), 2);
  EXPECT_EQ(run({"frobnicate", "x"}), 2);
}

namespace {

// Share of pixels in which two pictures differ by more than a little.
double Differing(const SurfacePtr& a, const SurfacePtr& b) {
  int off = 0;
  const PixelView va = a->Pixels(), vb = b->Pixels();
  for (int y = 0; y < a->Height(); ++y) {
    for (int x = 0; x < a->Width(); ++x) {
      const std::uint8_t* p = va.Bytes() + y * va.Stride() + 4 * x;
      const std::uint8_t* q = vb.Bytes() + y * vb.Stride() + 4 * x;
      for (int c = 0; c < 4; ++c) {
        if (std::abs(p[c] - q[c]) > 48) {
          ++off;
          break;
        }
      }
    }
  }
  return off / static_cast<double>(a->Width() * a->Height());
}

}  // namespace

TEST_F(Design, AnIconClipSurvivesSavingLoadingExportAndUndo) {
  AppContext& app = *s.app;
  const auto build = [&](bool clip) {
    app.Layers.Clear();
    app.BaseIcons.Clear();
    SVGItemPtr icon = LibraryLayer(app, "star", "Flat");
    app.BaseIcons.Add(icon, icon->ID().AsString());
    SVGItemPtr base = icon->Clone();
    base->setZoomPercent(60);
    base->setPos(5);
    SVGItemPtr bg = LibraryLayer(app, "Background_Rounded_Square_Blue", "Design Elements");
    if (clip) {
      bg->setClipIOverlayKey("_BaseIco");
      bg->setClipIOffset(14);
      base->setClipIBaseKey(bg->ID().AsString());
    }
    app.Layers.Add(base, "_BaseIco");
    app.Layers.Add(bg, bg->ID().AsString());
    if (clip) bg->SettingsRefresh();
  };
  const auto picture = [&] {
    SurfacePtr surface = DrawingSurface::Create(128, 128);
    DrawingContext ctx(surface);
    RenderDesign(app, ctx, 128);
    return surface;
  };
  build(false);
  const SurfacePtr uncut = picture();
  build(true);
  const SurfacePtr cut = picture();
  ASSERT_GT(Differing(cut, uncut), 0.03) << "the cut must show around the star";
  const std::string bgKey = app.Layers.KeyByIndex(1);

  // Saved and loaded: the cut is traced again.
  ASSERT_TRUE(WriteCurrentLayerList(app, "Cut", "", {}));
  const int id = static_cast<int>(s.Count("Select ID From Layer Where Name = 'Cut'"));
  app.Layers.Clear();
  ASSERT_TRUE(FillCurrentLayerList(app, id));
  EXPECT_TRUE(app.Layers.Item(bgKey)->ClipIPath());
  EXPECT_LT(Differing(picture(), cut), 0.002);

  // Undone: snapshots hold no traced cut, yet the restored stack shows it.
  SetHistory(app, HistoryMode::Clear);
  app.Layers.Item(bgKey)->setOpacity(40);
  AddToHistory(app);
  SetHistory(app, HistoryMode::Undo);
  EXPECT_TRUE(app.Layers.Item(bgKey)->ClipIPath());
  EXPECT_LT(Differing(picture(), cut), 0.002);

  // A wider clip distance, or a new cutting icon, traces the cut anew.
  app.Layers.Item(bgKey)->setClipIOffset(30);
  app.Layers.Item(bgKey)->SettingsRefresh();
  const SurfacePtr wider = picture();
  EXPECT_GT(Differing(wider, cut), 0.01);
  SVGItemPtr heart = LibraryLayer(app, "heart-3", "Flat");
  app.Layers.Item("_BaseIco")->setID(heart->ID());
  app.Layers.Item("_BaseIco")->setXML(ToString(heart->SvgBytes()));
  RefreshIconClips(app);
  EXPECT_GT(Differing(picture(), wider), 0.01);

  // Exported without overlays: each base icon cuts with its own outline.
  app.Layers.Item(bgKey)->setClipIOffset(14);
  RefreshIconClips(app);
  const SurfacePtr heartCut = picture();
  app.BaseIcons.Add(heart, heart->ID().AsString());
  TempDir out;
  ExportOptions o;
  o.Format = "PNG";
  o.Width = o.Height = 128;
  o.Folder = out.Path();
  ExportObserver quiet;
  ASSERT_EQ(RunExport(app, o, quiet).Written, 2);
  EXPECT_LT(Differing(DrawingSurface::FromPngFile(out / "star_128.png"), cut), 0.002);
  EXPECT_LT(Differing(DrawingSurface::FromPngFile(out / "heart-3_128.png"), heartCut), 0.002);
}

TEST_F(Design, AnUnreadableDesignLeavesThePresentOneAndSaysWhy) {
  AppContext& app = *s.app;
  Build();
  const SVGItemPtr top = app.Layers.Item(0);
  const int count = app.Layers.Count();
  const std::string star = std::to_string(IdOf("star"));
  const std::string good = R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":")" + star + R"("})";
  DesignLoadReport report;
  EXPECT_FALSE(FillLayersFromEntries(app, {good, "{\"Key\":", good}, &report));
  EXPECT_NE(report.Error.find("layer entry 2"), std::string::npos) << report.Error;
  EXPECT_FALSE(FillLayersFromEntries(app, {good, R"({"Key":"7","ImageIDs":"seven"})"}, &report));
  EXPECT_NE(report.Error.find("seven"), std::string::npos) << report.Error;
  EXPECT_FALSE(FillLayersFromEntries(app, {R"({"ImageIDs":"1"})"}, &report));
  EXPECT_NE(report.Error.find("no key"), std::string::npos) << report.Error;
  EXPECT_EQ(app.Layers.Count(), count);
  EXPECT_EQ(app.Layers.Item(0), top);
  EXPECT_EQ(app.BaseIcons.Count(), 2);

  // Gone icons and repeated keys are loaded around, and counted; a blend
  // operator nobody offers draws as "Over" instead of failing the picture.
  ASSERT_TRUE(FillLayersFromEntries(app,
                                    {R"({"Key":"9","ImageIDs":"987654","FillOptions":99})", good,
                                     R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":")" + star + R"("})"},
                                    &report))
      << report.Error;
  EXPECT_EQ(report.MissingIcons, 1);
  EXPECT_EQ(report.SkippedEntries, 1);
  EXPECT_EQ(app.Layers.Count(), 2);
  EXPECT_EQ(app.Layers.Item("9")->ID().AsLong(), app.DummyID);
  EXPECT_EQ(app.Layers.Item("9")->FillOptions(), Op::Over);
  EXPECT_NO_THROW(Png());
}

TEST_F(Design, BlankNamesAndWildcardsAreTakenAsTyped) {
  TempDir files;
  const std::string app = s.folder.Folder();
  const auto run = [&](std::vector<std::string> args, std::string* err = nullptr) {
    args.insert(args.begin(), {"--app-dir", app});
    std::ostringstream o, e;
    const int rc = RunCommand(ParseCommandLine(args), o, e);
    if (err) *err = e.str();
    return rc;
  };
  const std::string star = std::to_string(IdOf("star")), lock = std::to_string(IdOf("lock"));
  std::string err;
  WriteUtf8Text(files / "d.json", R"({"Description":"","Entries":[{"Key":"_BaseIco","IsBaseEntry":true,)"
                                  R"("ImageIDs":")" +
                                      star + R"(","Settings":"{}","ColorFilter":-1}]})");
  EXPECT_EQ(run({"design", "save", "   ", "--from", files / "d.json"}, &err), 1);
  EXPECT_EQ(err, "quillaron design: the design name is blank\n");
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"design", "save", "", "--from", files / "d.json"},
        std::vector<std::string>{"design", "show", ""}, std::vector<std::string>{"design", "delete", ""},
        std::vector<std::string>{"design", "export-tpl", "", "--out", files / "x.tpl"},
        std::vector<std::string>{"design", "import-tpl", files / "x.tpl", "--name", ""}}) {
    EXPECT_EQ(run(args, &err), 1) << args[1];
    EXPECT_EQ(err, "quillaron design: the design name is empty\n") << args[1];
  }
  EXPECT_EQ(s.Count("Select Count(*) From Layer"), 0);
  ASSERT_EQ(run({"design", "save", "  d1 ", "--from", files / "d.json"}), 0);
  EXPECT_EQ(s.Count("Select Count(*) From Layer Where Name = 'd1'"), 1);

  // "%" and "_" are looked for as characters, not as patterns.
  CreateDirectories(files / "out");
  for (const char* wildcard : {"%", "st_r", "s%r"}) {
    EXPECT_EQ(run({"export", "--design", "d1", "--out", files / "out", "--search", wildcard}, &err), 1)
        << wildcard;
    EXPECT_NE(err.find("no library icon matches"), std::string::npos) << err;
  }
  ASSERT_EQ(run({"export", "--design", "d1", "--out", files / "out", "--search", "Filled_Circle"}, &err), 0)
      << err;
  // Icons and a search together: the icons that match the search.
  ASSERT_EQ(run({"export", "--design", "d1", "--out", files / "out", "--ids", star + "," + lock, "--search",
                 "lock", "--style", "Flat"},
                &err),
            0)
      << err;
  EXPECT_TRUE(FileExists(files / "out/lock_256.png"));
  EXPECT_FALSE(FileExists(files / "out/star_256.png"));
  EXPECT_EQ(
      run({"export", "--design", "d1", "--out", files / "out", "--ids", star, "--search", "lock"}, &err), 1);

  // A file without end is refused once it passes the bound, and nothing is kept.
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"design", "save", "zero", "--from", "/dev/zero"},
        std::vector<std::string>{"design", "import-tpl", "/dev/zero"},
        std::vector<std::string>{"export", "--design-file", "/dev/zero", "--out", files / "out"}}) {
    EXPECT_EQ(run(args, &err), 1) << args[1];
    EXPECT_NE(err.find("larger than 64 MB"), std::string::npos) << err;
  }
  EXPECT_EQ(s.Count("Select Count(*) From Layer"), 1);
}
