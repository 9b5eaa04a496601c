#include <gtest/gtest.h>

#include <sstream>

#include "app/modTexts.h"
#include "cli/CommandLine.h"
#include "engine/modRenderDesign.h"
#include "platform/DrawingContext.h"
#include "platform/Files.h"
#include "store/modDB.h"
#include "store/modTemplates.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/StartedApp.h"

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
  old.Add(Value(R"({"Key":"1"})"), "Content");
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
  EXPECT_NE(err.find(LanguageText(*s.app, "InvalidFile").Text), std::string::npos);
  EXPECT_EQ(run({"show", "nobody"}, &out, &err), 1);
  ASSERT_EQ(run({"delete", "copy"}), 0);
  EXPECT_EQ(s.Count("Select Count(*) From Layer"), 2);
  EXPECT_EQ(run({"frobnicate", "x"}), 2);
}
