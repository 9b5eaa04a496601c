#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <sstream>

#include "cli/CommandLine.h"
#include "export/modExport.h"
#include "platform/Files.h"
#include "platform/XmlDocument.h"
#include "store/modTemplates.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/Pixels.h"
#include "tests/support/StartedApp.h"

using namespace qds;

namespace {

struct Recorder : ExportObserver {
  std::vector<std::string> written, messages;
  std::vector<std::string> captions;
  int answer = Answer::No;
  int asked = 0;
  void Progress(int, int, const std::string& caption) override { captions.push_back(caption); }
  int AskOverwrite(const std::string&) override {
    ++asked;
    return answer;
  }
  void Message(const std::string& key, const std::string&) override { messages.push_back(key); }
  void ImageDone(const std::string& path, bool ok) override {
    if (ok) written.push_back(FileNameOf(path));
  }
};

struct Export : ::testing::Test {
  StartedApp s;
  TempDir out;
  void SetUp() override { ASSERT_TRUE(StartWithoutWindow(*s.app)); }
  // A base layer over three base icons, optionally with an overlay layer
  // cycling through two overlays.
  void Design(bool overlays) {
    AppContext& app = *s.app;
    for (const char* n : {"heart-3", "lock", "star"}) {
      SVGItemPtr icon = LibraryLayer(app, n, "Flat");
      app.BaseIcons.Add(icon, icon->ID().AsString());
    }
    SVGItemPtr base = app.BaseIcons.Item(0)->Clone();
    base->setFilter(cSVGItem::FilterColor);
    base->setColorItem(cColorItem(0x0000FF));
    if (overlays) {
      for (const char* n : {"add-circle", "close-circle"}) {
        SVGItemPtr icon = LibraryLayer(app, n, "Flat");
        app.OverlayLayers.Add(icon, icon->ID().AsString());
      }
      SVGItemPtr overlay = app.OverlayLayers.Item(0)->Clone();
      overlay->setUseAsOverlay(true);
      overlay->setZoomPercent(40);
      overlay->setPos(9);
      app.Layers.Add(overlay, "_Overlay");
    }
    app.Layers.Add(base, "_BaseIco");
  }
  ExportOptions Options(const std::string& format, int w, int h) {
    ExportOptions o;
    o.Format = format;
    o.Width = w;
    o.Height = h;
    o.Folder = out.Path();
    return o;
  }
};

GdkPixbuf* Open(const std::string& path) {
  GError* error = nullptr;
  GdkPixbuf* pb = gdk_pixbuf_new_from_file(path.c_str(), &error);
  if (error) g_error_free(error);
  return pb;
}

}  // namespace

TEST_F(Export, ThreeBaseIconsTimesTwoOverlaysInOrderWithTheirNames) {
  Design(true);
  ExportOptions o = Options("PNG", 48, 48);
  o.ExportHasOverlayIcons = true;
  o.ExtPart = ExportOptions::Part::Overlay;
  o.Prefix = "my set";
  o.RemoveBlank = true;
  Recorder r;
  const ExportResult result = RunExport(*s.app, o, r);
  EXPECT_TRUE(result.Completed);
  EXPECT_EQ(result.Written, 6);
  EXPECT_EQ(r.written,
            (std::vector<std::string>{"myset_heart-3_add-circle_48.png", "myset_lock_add-circle_48.png",
                                      "myset_star_add-circle_48.png", "myset_heart-3_close-circle_48.png",
                                      "myset_lock_close-circle_48.png", "myset_star_close-circle_48.png"}));
  EXPECT_EQ(r.captions.front(), "0 %");
  EXPECT_EQ(r.captions.back(), "100%");
  EXPECT_EQ(r.captions[1], "17%");
  GdkPixbuf* pb = Open(out / "myset_lock_close-circle_48.png");
  ASSERT_TRUE(pb);
  EXPECT_EQ(gdk_pixbuf_get_width(pb), 48);
  g_object_unref(pb);

  // Existing files: "No" keeps them and goes on; yes-to-all asks once.
  Recorder again;
  EXPECT_EQ(RunExport(*s.app, o, again).Skipped, 6);
  EXPECT_EQ(again.asked, 6);
  Recorder all;
  all.answer = Answer::YesToAll;
  EXPECT_EQ(RunExport(*s.app, o, all).Written, 6);
  EXPECT_EQ(all.asked, 1);
  Recorder cancel;
  cancel.answer = Answer::Cancel;
  const ExportResult stopped = RunExport(*s.app, o, cancel);
  EXPECT_FALSE(stopped.Completed);
  EXPECT_EQ(stopped.Images, 0);
}

TEST_F(Export, NamesFoldersAndDuplicates) {
  ExportOptions o = Options("JPG", 32, 64);
  o.Delimiter = "";
  o.ExtPart = ExportOptions::Part::Text;
  o.ExtText = "v2";
  EXPECT_EQ(Update_Name(o, "heart", "", out.Path()), "heartv232x64.jpg");
  o.Format = "ICO";
  o.NamePart = ExportOptions::Part::Text;
  EXPECT_EQ(Update_Name(o, "heart", "", out.Path()), "Namev2.ico");  // an empty name text reads "Name"
  o.CreateFolderFormat = o.CreateFolderSize = true;
  EXPECT_EQ(GetFolderName(o), out.Path() + "ICO");  // no size folder for icons
  o.Format = "PNG";
  EXPECT_EQ(GetFolderName(o), out.Path() + "PNG/32x64");

  WriteAllBytes(out / "a.png", Bytes{1});
  WriteAllBytes(out / "a-Duplicate1.png", Bytes{1});
  EXPECT_EQ(UniqueName(out.Path(), "a.png"), "a-Duplicate2.png");
  ExportOptions d = Options("PNG", 16, 16);
  d.SizeExt = false;
  d.RenameDuplicates = true;
  EXPECT_EQ(Update_Name(d, "a", "", out.Path()), "a-Duplicate2.png");

  const std::string svg = R"(<svg width="8pt"><g id="surface12" clip-path="x"><path/></g></svg>)";
  EXPECT_EQ(AddAlphaToSVG(svg, 0.5),
            R"(<svg width="8pt"><g id="surface12" clip-path="x" opacity="0.5"><path/></g></svg>)");
  EXPECT_EQ(AddAlphaToSVG("<svg/>", 0.5), "<svg/>");
}

TEST_F(Export, CroppingTrimmingBackgroundsAndSvgText) {
  Design(false);
  // 32 by 64: drawn at 64, the middle 32 columns kept.
  ExportOptions tall = Options("BMP", 32, 64);
  tall.SizeExt = false;
  tall.BackgroundColor = 0x00FF00;
  Recorder r;
  ASSERT_EQ(RunExport(*s.app, tall, r).Written, 3);
  GdkPixbuf* pb = Open(out / "heart-3.bmp");
  ASSERT_TRUE(pb);
  EXPECT_EQ(gdk_pixbuf_get_width(pb), 32);
  EXPECT_EQ(gdk_pixbuf_get_height(pb), 64);
  const guchar* px = gdk_pixbuf_get_pixels(pb);
  EXPECT_EQ(px[1], 255);  // the green background in the corner
  g_object_unref(pb);

  // Trimmed to the ink: a JPG is filled only after the trim.
  ExportOptions trim = Options("JPG", 128, 128);
  trim.AdjustSize = true;
  trim.SizeExt = false;
  ASSERT_EQ(RunExport(*s.app, trim, r).Written, 3);
  pb = Open(out / "star.jpg");
  ASSERT_TRUE(pb);
  EXPECT_LT(gdk_pixbuf_get_width(pb), 128);
  EXPECT_GT(gdk_pixbuf_get_width(pb), 64);
  g_object_unref(pb);

  // SVG: numeric colours, the size in pixels, a design opacity on the first group.
  s.app->DesignOpacity = 50;
  s.app->DesignOpacityOn = true;
  ExportOptions vec = Options("SVG", 64, 64);
  ASSERT_EQ(RunExport(*s.app, vec, r).Written, 3);
  const std::string text = ReadAllText(out / "lock_64.svg");
  EXPECT_NE(text.find("width=\"64\""), std::string::npos) << text.substr(0, 300);
  EXPECT_NE(text.find("height=\"64\""), std::string::npos);
  EXPECT_NE(text.find("viewBox=\"0 0 64 64\""), std::string::npos);
  EXPECT_NE(text.find("opacity=\"0.5\""), std::string::npos);
  EXPECT_NE(text.find("fill:rgb(255,0,0)"), std::string::npos);
  XmlDocument doc;
  EXPECT_TRUE(doc.Load(text));
  EXPECT_TRUE(s.app->SvgRenderer->Parse(ToBytes(text)));
  vec.ColorsinPerc = true;
  vec.Width = 32;  // cut to 32 by 64 in the view box
  vec.Height = 64;
  Recorder again;
  again.answer = Answer::YesToAll;
  ASSERT_EQ(RunExport(*s.app, vec, again).Written, 3);
  const std::string cut = ReadAllText(out / "lock_32x64.svg");
  EXPECT_NE(cut.find("viewBox=\"16 0 32 64\""), std::string::npos) << cut.substr(0, 300);
  EXPECT_NE(cut.find("rgb(100%,0%,0%)"), std::string::npos);
}

TEST_F(Export, AMissingFolderOrAnUnwritableTargetStopsCleanly) {
  Design(false);
  ExportOptions o = Options("PNG", 16, 16);
  o.Folder = out / "missing";
  Recorder r;
  EXPECT_EQ(RunExport(*s.app, o, r).Error, "FolderMissing");
  EXPECT_EQ(r.messages, std::vector<std::string>{"FolderMissing"});
  EXPECT_TRUE(r.written.empty());

  // The second file cannot be written: the first stays, the run stops.
  o.Folder = out.Path();
  CreateDirectories(out / "lock_16.png");  // a folder where a file should go
  Recorder f;
  const ExportResult result = RunExport(*s.app, o, f);
  EXPECT_EQ(result.Error, "SaveError");
  EXPECT_EQ(f.written, std::vector<std::string>{"heart-3_16.png"});
  EXPECT_TRUE(FileExists(out / "heart-3_16.png"));
  EXPECT_FALSE(FileExists(out / "star_16.png"));
  for (const auto& e : std::filesystem::directory_iterator(out.Path())) {
    EXPECT_EQ(e.path().filename().string().find(".png."), std::string::npos) << "a temporary file was left";
  }
}

TEST_F(Export, TheCommandLineExportsADesignFileInEveryFormat) {
  const std::string lock = std::to_string(LibraryLayer(*s.app, "lock", "Flat")->ID().AsLong());
  WriteUtf8Text(out / "d.json",
                R"({"Description":"","Entries":[{"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":")" + lock +
                    R"(","Settings":"{}","ColorFilter":-1}]})");
  CreateDirectories(out / "files");
  const auto run = [&](std::vector<std::string> args, std::string* text = nullptr) {
    args.insert(args.begin(), {"--app-dir", s.folder.Folder(), "export", "--design-file", out / "d.json",
                               "--out", out / "files"});
    std::ostringstream o, e;
    const int rc = RunCommand(ParseCommandLine(args), o, e);
    if (text) *text = o.str() + e.str();
    return rc;
  };
  std::string text;
  for (const char* format : {"PNG", "JPG", "BMP", "ICO"}) {
    ASSERT_EQ(run({"--format", format, "--size", "40x40"}, &text), 0) << text;
    EXPECT_NE(text.find("1 files written, 0 skipped"), std::string::npos) << text;
  }
  for (const char* file : {"lock_40.png", "lock_40.jpg", "lock_40.bmp", "lock.ico"}) {
    GdkPixbuf* pb = Open(out / ("files/" + std::string(file)));
    ASSERT_TRUE(pb) << file;
    const int width = gdk_pixbuf_get_width(pb);
    if (std::string(file) == "lock.ico") {
      // The reader picks one of the default sizes for itself.
      EXPECT_NE(std::string(",16,20,24,32,40,48,64,256,").find("," + std::to_string(width) + ","),
                std::string::npos);
    } else {
      EXPECT_EQ(width, 40) << file;
    }
    g_object_unref(pb);
  }
  EXPECT_EQ(run({"--size", "40x40"}, &text), 0);
  EXPECT_NE(text.find("0 files written, 1 skipped"), std::string::npos);
  EXPECT_EQ(run({"--search", "heart-3", "--style", "Slimline", "--no-size-ext", "--prefix", "p"}, &text), 0);
  EXPECT_TRUE(FileExists(out / "files/p_heart-3.png"));
  for (const std::vector<std::string>& bad : {std::vector<std::string>{"--size", "0x16"},
                                              {"--format", "TIFF"},
                                              {"--format", "ICO", "--ico-sizes", "16,x"},
                                              {"--ids", "1;2"},
                                              {"--style", "No Such Style"},
                                              {"--bg", "red"}}) {
    EXPECT_EQ(run(bad, &text), 1) << bad[0];
    EXPECT_NE(text.find("quillaron export:"), std::string::npos) << text;
  }
}
