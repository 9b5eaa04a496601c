#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <thread>

#include "cli/CommandLine.h"
#include "export/modExport.h"
#include "platform/Files.h"
#include "platform/XmlDocument.h"
#include "store/modTemplates.h"
#include "tests/export/LargeAllocationFailure.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/Pixels.h"
#include "tests/support/StartedApp.h"

using namespace qds;

namespace {

struct Recorder : ExportObserver {
  std::vector<std::string> written, messages, details;
  std::vector<std::string> captions;
  int answer = Answer::No;
  int asked = 0;
  void Progress(int, int, const std::string& caption) override { captions.push_back(caption); }
  int AskOverwrite(const std::string&) override {
    ++asked;
    return answer;
  }
  void Message(const std::string& key, const std::string& detail) override {
    messages.push_back(key);
    details.push_back(detail);
  }
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

// The mean difference of the red, green and blue bytes of two pictures of one size.
double MeanError(GdkPixbuf* a, GdkPixbuf* b) {
  const int w = gdk_pixbuf_get_width(a), h = gdk_pixbuf_get_height(a);
  EXPECT_EQ(w, gdk_pixbuf_get_width(b));
  EXPECT_EQ(h, gdk_pixbuf_get_height(b));
  double sum = 0;
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      const guchar* p =
          gdk_pixbuf_get_pixels(a) + y * gdk_pixbuf_get_rowstride(a) + x * gdk_pixbuf_get_n_channels(a);
      const guchar* q =
          gdk_pixbuf_get_pixels(b) + y * gdk_pixbuf_get_rowstride(b) + x * gdk_pixbuf_get_n_channels(b);
      for (int c = 0; c < 3; ++c) sum += std::abs(p[c] - q[c]);
    }
  }
  return sum / (3.0 * w * h);
}

int FilesIn(const std::string& folder) {
  int n = 0;
  for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(folder)) ++n;
  return n;
}

// A design file whose base layer holds the library icons `ids`.
void WriteDesign(const std::string& path, const std::string& ids, const std::string& settings = "{}") {
  WriteUtf8Text(path, R"({"Description":"","Entries":[{"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":")" +
                          ids + R"(","Settings":")" + settings + R"("}]})");
}

struct Cli {
  int rc;
  std::string out, err;
};

Cli RunCli(const StartedApp& s, std::vector<std::string> args) {
  args.insert(args.begin(), {"--app-dir", s.folder.Folder()});
  std::ostringstream o, e;
  const int rc = RunCommand(ParseCommandLine(args), o, e);
  return {rc, o.str(), e.str()};
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
  tall.BackgroundColor = 0x3080C0;  // BBGGRR: three different channels
  Recorder r;
  ASSERT_EQ(RunExport(*s.app, tall, r).Written, 3);
  GdkPixbuf* pb = Open(out / "heart-3.bmp");
  ASSERT_TRUE(pb);
  EXPECT_EQ(gdk_pixbuf_get_width(pb), 32);
  EXPECT_EQ(gdk_pixbuf_get_height(pb), 64);
  // The background in two opposite corners, red first as the reader gives it.
  for (const auto& [x, y] : {std::pair{0, 0}, std::pair{31, 63}}) {
    const guchar* px =
        gdk_pixbuf_get_pixels(pb) + y * gdk_pixbuf_get_rowstride(pb) + x * gdk_pixbuf_get_n_channels(pb);
    EXPECT_EQ((std::vector<int>{px[0], px[1], px[2]}), (std::vector<int>{0xC0, 0x80, 0x30})) << x << "," << y;
  }
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
  // The opacity ends the opening tag of the first surface group.
  const std::size_t group = text.find("<g id=\"surface");
  ASSERT_NE(group, std::string::npos);
  const std::string groupTag = text.substr(group, text.find('>', group) - group);
  EXPECT_TRUE(groupTag.ends_with(" opacity=\"0.5\"")) << groupTag;
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

TEST_F(Export, AMissingFolderStopsTheRunAndAFolderInTheWayFailsOnlyItsFile) {
  Design(false);
  ExportOptions o = Options("PNG", 16, 16);
  o.Folder = out / "missing";
  Recorder r;
  EXPECT_EQ(RunExport(*s.app, o, r).Error, "FolderMissing");
  EXPECT_EQ(r.messages, std::vector<std::string>{"FolderMissing"});
  EXPECT_TRUE(r.written.empty());

  // The second file cannot be written: it is reported by its path, and the
  // others are written.
  o.Folder = out.Path();
  CreateDirectories(out / "lock_16.png/inside");  // a folder where a file should go
  Recorder f;
  const ExportResult result = RunExport(*s.app, o, f);
  EXPECT_EQ(result.Error, "SaveError");
  EXPECT_TRUE(result.Completed);
  EXPECT_EQ(result.Failed, 1);
  EXPECT_EQ(result.Written, 2);
  EXPECT_EQ(f.written, (std::vector<std::string>{"heart-3_16.png", "star_16.png"}));
  ASSERT_EQ(f.details.size(), 1u);
  EXPECT_EQ(f.details[0], out / "lock_16.png: a folder has this name");
  EXPECT_TRUE(FolderExists(out / "lock_16.png/inside"));
  EXPECT_EQ(FilesIn(out.Path()), 3) << "a temporary file was left";

  // The command line says so in its summary and fails.
  WriteDesign(out / "d.json", s.app->BaseIcons.Item(1)->ID().AsString());
  const Cli cli =
      RunCli(s, {"export", "--design-file", out / "d.json", "--out", out.Path(), "--size", "16x16"});
  EXPECT_EQ(cli.rc, 1);
  EXPECT_NE(cli.out.find("0 files written, 0 skipped (existed), 1 failed"), std::string::npos) << cli.out;
  EXPECT_NE(cli.err.find("quillaron export: " + out / "lock_16.png: a folder has this name\n"),
            std::string::npos)
      << cli.err;
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
  // A design whose base layer has no icon left writes nothing and says so;
  // a design without a base layer is drawn once.
  const auto entry = [](const std::string& key, const std::string& ids) {
    return "{" + key + R"(,"ImageIDs":")" + ids + R"(","Settings":"{}","ColorFilter":-1})";
  };
  const std::string base = R"("Key":"_BaseIco","IsBaseEntry":true)", plain = R"("Key":"Icon")";
  const auto design = [&](const std::string& entries) {
    WriteUtf8Text(out / "d.json", R"({"Description":"","Entries":[)" + entries + "]}");
  };
  design(entry(base, "") + "," + entry(plain, lock));
  CreateDirectories(out / "none");
  std::ostringstream o, e;
  EXPECT_EQ(RunCommand(ParseCommandLine({"--app-dir", s.folder.Folder(), "export", "--design-file",
                                         out / "d.json", "--out", out / "none"}),
                       o, e),
            1);
  EXPECT_NE(e.str().find("There is nothing to export"), std::string::npos) << e.str();
  EXPECT_EQ(FilesIn(out / "none"), 0);
  design(entry(plain, lock));
  ASSERT_EQ(run({"--name", "plain", "--no-size-ext"}, &text), 0) << text;
  EXPECT_TRUE(FileExists(out / "files/plain.png"));
  design(entry(base, lock));

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

TEST_F(Export, NoBaseIconsMeansNothingIsWrittenAndTheRunSaysSo) {
  Design(false);
  s.app->BaseIcons.Clear();  // every icon of the design has gone from the library
  Recorder r;
  const ExportResult result = RunExport(*s.app, Options("PNG", 32, 32), r);
  EXPECT_EQ(result.Error, "NothingToExport");
  EXPECT_EQ(r.messages, std::vector<std::string>{"NothingToExport"});
  EXPECT_EQ(result.Images, 0);
  EXPECT_EQ(FilesIn(out.Path()), 0);
}

TEST_F(Export, AWriteThatRunsOutOfMemoryEndsInSaveErrorAndLeavesNoFile) {
  if (!LargeAllocationFailure::Available()) GTEST_SKIP() << "the sanitizer runtime owns operator new";
  Design(false);
  ExportOptions o = Options("ICO", 64, 64);
  o.IcoSizes = "1024,16";  // a bitmap of 4 MB, where drawing the design takes far less
  Recorder r;
  ExportResult result;
  {
    const LargeAllocationFailure noMemory(3'000'000);
    result = RunExport(*s.app, o, r);
  }
  EXPECT_EQ(result.Error, "SaveError");
  EXPECT_FALSE(result.Completed);
  EXPECT_EQ(result.Written, 0);
  EXPECT_EQ(r.messages, std::vector<std::string>{"SaveError"});
  EXPECT_EQ(r.details, std::vector<std::string>{out / "heart-3.ico: Out of memory"});
  EXPECT_EQ(FilesIn(out.Path()), 0);
}

TEST_F(Export, JpegQualityChangesTheFileAndLowerQualityStraysFurther) {
  Design(false);
  ExportOptions o = Options("BMP", 96, 96);
  o.SizeExt = false;
  o.BackgroundColor = 0x40A0E0;
  Recorder r;
  ASSERT_EQ(RunExport(*s.app, o, r).Written, 3);
  GdkPixbuf* picture = Open(out / "heart-3.bmp");
  ASSERT_TRUE(picture);
  o.Format = "JPG";
  std::vector<Bytes> files;
  std::vector<double> errors;
  for (int quality : {95, 60, 20}) {
    o.JPGQuality = quality;
    o.Prefix = "q" + std::to_string(quality);
    ASSERT_EQ(RunExport(*s.app, o, r).Written, 3);
    const std::string path = out / (o.Prefix + "_heart-3.jpg");
    files.push_back(ReadAllBytes(path));
    GdkPixbuf* jpeg = Open(path);
    ASSERT_TRUE(jpeg);
    errors.push_back(MeanError(picture, jpeg));
    g_object_unref(jpeg);
  }
  g_object_unref(picture);
  EXPECT_TRUE(files[0] != files[1]) << "quality 95 and 60 wrote the same file";
  EXPECT_TRUE(files[1] != files[2]) << "quality 60 and 20 wrote the same file";
  EXPECT_LT(errors[0], errors[1]) << "quality 95 against 60";
  EXPECT_LT(errors[1], errors[2]) << "quality 60 against 20";
}

TEST_F(Export, ATrimmedSvgOfAWideLowPictureKeepsItsOwnWidthAndHeight) {
  // A bar 192 by 64 in the middle of a square icon: at 64 pixels it spans
  // 48 by 16 from (8, 24).
  auto bar = std::make_shared<cSVGItem>();
  bar->Init(
      Value(1),
      ToBytes(R"(<svg xmlns="http://www.w3.org/2000/svg" width="256" height="256" viewBox="0 0 256 256">)"
              R"(<rect x="32" y="96" width="192" height="64" fill="#ff0000"/></svg>)"),
      "bar");
  s.app->Layers.Add(bar, "bar");
  ExportOptions o = Options("SVG", 64, 64);
  o.AdjustSize = true;
  o.ExportHasBaseIcons = false;
  o.NamePart = ExportOptions::Part::Text;
  o.NameText = "bar";
  o.SizeExt = false;
  Recorder r;
  ASSERT_EQ(RunExport(*s.app, o, r).Written, 1);
  const std::string text = ReadAllText(out / "bar.svg");
  std::smatch w, h, box;
  ASSERT_TRUE(std::regex_search(text, w, std::regex(R"re(<svg[^>]* width="([^"]*)")re")))
      << text.substr(0, 300);
  ASSERT_TRUE(std::regex_search(text, h, std::regex(R"re(<svg[^>]* height="([^"]*)")re")));
  ASSERT_TRUE(std::regex_search(text, box, std::regex(R"re(<svg[^>]* viewBox="([^"]*)")re")));
  EXPECT_EQ(w[1], "48");
  EXPECT_EQ(h[1], "16");
  EXPECT_EQ(box[1], "8 24 48 16");
}

namespace {

// The export command in a process of its own, as a user would start it; it
// waits for the pipe `go` to close before it begins, so that several start
// at once. Its output goes to `log`.
pid_t StartCommand(const std::vector<std::string>& args, const std::string& log, const int* go = nullptr) {
  const pid_t pid = ::fork();
  if (pid != 0) return pid;
  if (go) {
    char byte;
    ::close(go[1]);
    (void)!::read(go[0], &byte, 1);
  }
  std::ostringstream o, e;
  const int rc = RunCommand(ParseCommandLine(args), o, e);
  std::ofstream(log) << o.str() << e.str();
  ::_exit(rc);
}

int WaitFor(pid_t pid) {
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int Count(const std::string& text, const std::string& what) {
  std::smatch m;
  return std::regex_search(text, m, std::regex("(\\d+) " + what)) ? std::stoi(m[1]) : -1;
}

int FilesBelow(const std::string& folder) {
  int n = 0;
  for (const auto& e : std::filesystem::recursive_directory_iterator(folder)) n += e.is_regular_file();
  return n;
}

}  // namespace

TEST_F(Export, NoNameLeadsOutOfTheOutputFolder) {
  TempDir files;
  WriteDesign(files / "d.json", LibraryLayer(*s.app, "lock", "Flat")->ID().AsString());
  CreateDirectories(out / "a/b");
  for (const std::vector<std::string>& bad : {std::vector<std::string>{"--prefix", "../ESCAPED"},
                                              {"--name", "../../X"},
                                              {"--name", ".."},
                                              {"--ext", "../.."},
                                              {"--delimiter", "/"},
                                              {"--prefix", "."}}) {
    const Cli cli =
        RunCli(s, {"export", "--design-file", files / "d.json", "--out", out / "a/b", bad[0], bad[1]});
    EXPECT_EQ(cli.rc, 1) << bad[1];
    EXPECT_NE(
        cli.err.find("quillaron export: " + bad[0] + " \"" + bad[1] + "\": a part of a file name must not"),
        std::string::npos)
        << cli.err;
  }
  EXPECT_EQ(FilesBelow(out.Path()), 0);

  // A name from elsewhere (an icon's name, say) that would lead out is
  // refused by the writer: that file fails, the run goes on.
  Design(false);
  s.app->BaseIcons.Item(1)->setFriendlyName("../../lock");
  ExportOptions o = Options("PNG", 16, 16);
  o.Folder = out / "a/b";
  Recorder r;
  const ExportResult result = RunExport(*s.app, o, r);
  EXPECT_EQ(result.Written, 2);
  EXPECT_EQ(result.Failed, 1);
  ASSERT_EQ(r.details.size(), 1u);
  EXPECT_EQ(
      r.details[0],
      out / "a/b/../../lock_16.png: a file name must not be empty, \".\" or \"..\", nor hold \"/\" or NUL");
  EXPECT_EQ(FilesBelow(out.Path()), 2);
  EXPECT_EQ(FilesIn(out / "a/b"), 2);
}

TEST_F(Export, ParallelRunsIntoOneFolderWriteExactlyTheFilesTheyReport) {
  TempDir logs;
  WriteDesign(logs / "d.json", LibraryLayer(*s.app, "lock", "Flat")->ID().AsString());
  // Three runs over the same fifty names, started at the same moment.
  const auto race = [&](const std::string& folder, const std::vector<std::string>& extra) {
    CreateDirectories(folder);
    int go[2];
    EXPECT_EQ(::pipe(go), 0);
    std::vector<pid_t> runs;
    for (int i = 0; i < 3; ++i) {
      std::vector<std::string> args = {"--app-dir",     s.folder.Folder(), "export", "--design-file",
                                       logs / "d.json", "--out",           folder,   "--style",
                                       "Flat",          "--search",        "arrow",  "--size",
                                       "256x256"};
      args.insert(args.end(), extra.begin(), extra.end());
      runs.push_back(StartCommand(args, logs / std::to_string(i), go));
    }
    ::close(go[0]);
    ::close(go[1]);  // all three read the end of the pipe and start
    int written = 0, skipped = 0;
    for (std::size_t i = 0; i < runs.size(); ++i) {
      EXPECT_EQ(WaitFor(runs[i]), 0);
      const std::string log = ReadAllText(logs / std::to_string(i));
      written += Count(log, "files written");
      skipped += Count(log, "skipped");
    }
    return std::pair{written, skipped};
  };
  const auto [renamed, none] = race(out / "renamed", {"--rename-duplicates"});
  EXPECT_EQ(renamed, 150);
  EXPECT_EQ(none, 0);
  EXPECT_EQ(FilesIn(out / "renamed"), renamed);

  // Without renaming, each name goes to one run; the others hear it exists.
  const auto [written, skipped] = race(out / "plain", {});
  EXPECT_EQ(written, 50);
  EXPECT_EQ(skipped, 100);
  EXPECT_EQ(FilesIn(out / "plain"), 50);
}

TEST_F(Export, AKilledRunLeavesNoHiddenFilesAndTheLongestNamesAreWritten) {
  TempDir logs;
  WriteDesign(logs / "d.json", LibraryLayer(*s.app, "lock", "Flat")->ID().AsString());
  // Every name that appears in the folder while the run writes is seen.
  const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  ASSERT_GE(watch, 0);
  ASSERT_GE(::inotify_add_watch(watch, out.Path().c_str(), IN_CREATE | IN_MOVED_TO), 0);
  const pid_t run = StartCommand({"--app-dir", s.folder.Folder(), "export", "--design-file", logs / "d.json",
                                  "--out", out.Path(), "--style", "Flat", "--size", "512x512"},
                                 logs / "log");
  // Killed in the middle, once a few files are there.
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (FilesIn(out.Path()) < 5 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  ::kill(run, SIGKILL);
  EXPECT_EQ(WaitFor(run), -1) << "the run ended before it was killed";
  std::vector<std::string> seen;
  alignas(inotify_event) char buffer[64 * 1024];
  for (ssize_t n; (n = ::read(watch, buffer, sizeof buffer)) > 0;) {
    for (char* at = buffer; at < buffer + n;) {
      const auto* event = reinterpret_cast<const inotify_event*>(at);
      if (event->len > 0) seen.emplace_back(event->name);
      at += sizeof(inotify_event) + event->len;
    }
  }
  ::close(watch);
  EXPECT_GE(seen.size(), 5u);
  for (const std::string& name : seen) EXPECT_NE(name.front(), '.') << name << " appeared in the folder";
  for (const auto& e : std::filesystem::directory_iterator(out.Path())) {
    const std::string name = e.path().filename().string();
    EXPECT_NE(name.front(), '.') << name << " was left behind";
    GdkPixbuf* pb = Open(e.path().string());
    EXPECT_TRUE(pb) << name << " is not a whole picture";
    if (pb) g_object_unref(pb);
  }

  // A name of 248 bytes, and one longer than the file system takes, which
  // fails alone.
  TempDir files;
  Design(false);
  ExportOptions o = Options("PNG", 16, 16);
  o.Folder = files.Path();
  o.Prefix = std::string(233, 'p');  // + "_heart-3_16.png"
  Recorder r;
  ExportResult result = RunExport(*s.app, o, r);
  EXPECT_EQ(result.Written, 3) << (r.details.empty() ? "" : r.details[0]);
  EXPECT_TRUE(FileExists(files / (o.Prefix + "_heart-3_16.png")));
  o.Prefix = std::string(241, 'q');  // 256 bytes with heart-3, 252 with lock and star
  Recorder longer;
  result = RunExport(*s.app, o, longer);
  EXPECT_EQ(result.Written, 2);
  EXPECT_EQ(result.Failed, 1);
  EXPECT_TRUE(result.Completed);
  ASSERT_EQ(longer.details.size(), 1u);
  EXPECT_NE(longer.details[0].find("_heart-3_16.png: the name is longer than the file system allows"),
            std::string::npos)
      << longer.details[0];
  EXPECT_EQ(FilesIn(files.Path()), 5);
}

TEST_F(Export, ATrimmedDesignWithNothingVisibleFailsForEachFileInEveryFormat) {
  auto empty = std::make_shared<cSVGItem>();
  empty->Init(
      Value(1),
      ToBytes(R"(<svg xmlns="http://www.w3.org/2000/svg" width="256" height="256" viewBox="0 0 256 256">)"
              R"(<rect width="10" height="10" fill="#ff0000" opacity="0"/></svg>)"),
      "empty");
  s.app->Layers.Add(empty, "empty");
  for (const char* format : {"SVG", "PNG"}) {
    ExportOptions o = Options(format, 64, 64);
    o.AdjustSize = true;
    o.ExportHasBaseIcons = false;
    o.NamePart = ExportOptions::Part::Text;
    o.NameText = "empty";
    Recorder r;
    const ExportResult result = RunExport(*s.app, o, r);
    EXPECT_EQ(result.Written, 0) << format;
    EXPECT_EQ(result.Failed, 1) << format;
    EXPECT_EQ(result.Error, "SaveError");
    EXPECT_EQ(r.details,
              std::vector<std::string>{out / ("empty_64." + AsciiLower(format)) +
                                       ": nothing is left to write: the picture is fully transparent"});
  }
  EXPECT_EQ(FilesIn(out.Path()), 0);
}

TEST_F(Export, IconsOfOneNameInOneRunAreToldApartFromFilesThatExisted) {
  for (const auto& [name, style] : {std::pair{"lock", "Flat"}, {"lock", "Slimline"}, {"star", "Flat"}}) {
    SVGItemPtr icon = LibraryLayer(*s.app, name, style);
    s.app->BaseIcons.Add(icon, icon->ID().AsString());
  }
  s.app->Layers.Add(s.app->BaseIcons.Item(0)->Clone(), "_BaseIco");
  WriteAllBytes(out / "star_32.png", Bytes{1});
  ExportOptions o = Options("PNG", 32, 32);
  Recorder r;
  ExportResult result = RunExport(*s.app, o, r);
  EXPECT_EQ(result.Written, 1);
  EXPECT_EQ(result.Skipped, 1);
  EXPECT_EQ(result.Collisions, 1);
  EXPECT_EQ(r.asked, 1) << "only the file of an earlier run is asked about";
  const Bytes flat = ReadAllBytes(out / "lock_32.png");

  // Overwriting replaces files of earlier runs, never a file of this one.
  Recorder all;
  all.answer = Answer::YesToAll;
  result = RunExport(*s.app, o, all);
  EXPECT_EQ(result.Written, 2);
  EXPECT_EQ(result.Collisions, 1);
  EXPECT_TRUE(ReadAllBytes(out / "lock_32.png") == flat) << "the second lock replaced the first";
  EXPECT_NE(ReadAllBytes(out / "star_32.png"), Bytes{1});

  // Renaming writes both.
  o.RenameDuplicates = true;
  Recorder renamed;
  result = RunExport(*s.app, o, renamed);
  EXPECT_EQ(result.Collisions, 0);
  EXPECT_EQ(renamed.written, (std::vector<std::string>{"lock_32-Duplicate1.png", "lock_32-Duplicate2.png",
                                                       "star_32-Duplicate1.png"}));

  // The command line's summary tells the two apart and says what to do.
  const std::string ids = s.app->BaseIcons.Item(0)->ID().AsString() + "," +
                          s.app->BaseIcons.Item(1)->ID().AsString() + "," +
                          s.app->BaseIcons.Item(2)->ID().AsString();
  WriteDesign(out / "d.json", ids);
  CreateDirectories(out / "cli");
  WriteAllBytes(out / "cli/star_32.png", Bytes{1});
  const Cli cli =
      RunCli(s, {"export", "--design-file", out / "d.json", "--out", out / "cli", "--size", "32x32"});
  EXPECT_EQ(cli.rc, 0);
  EXPECT_NE(cli.out.find("1 files written, 1 skipped (existed), 1 name collisions within this run"),
            std::string::npos)
      << cli.out;
  EXPECT_NE(
      cli.err.find("add --rename-duplicates, or export each style or theme on its own with its own --prefix"),
      std::string::npos)
      << cli.err;
}

TEST_F(Export, TheCommandLineNamesTheValueAndTheReasonOfWhatIsWrong) {
  const std::string lock = LibraryLayer(*s.app, "lock", "Flat")->ID().AsString();
  const std::string design = out / "d.json";
  WriteDesign(design, lock);
  CreateDirectories(out / "files");
  EXPECT_EQ(RunCli(s, {"export", "--design-file", design, "--out", ""}).err,
            "quillaron export: --out is empty: give the folder to write to\n");
  EXPECT_EQ(RunCli(s, {"export", "--design-file", design, "--out", design}).err,
            "quillaron export: --out " + design + " is a file, not a folder\n");
  // A setting far out of range is drawn at its limit, and the user is told.
  WriteDesign(design, lock, R"({\"Opacity\":1e300})");
  Cli cli = RunCli(s, {"export", "--design-file", design, "--out", out / "files", "--size", "16x16"});
  EXPECT_EQ(cli.rc, 0);
  EXPECT_EQ(cli.err, "quillaron: 1 value of the design was out of range and is used at its limit\n");
  EXPECT_EQ(FilesIn(out / "files"), 1);

  WriteDesign(design, lock);
  ASSERT_EQ(RunCli(s, {"design", "save", "mine", "--from", design}).rc, 0);
  EXPECT_EQ(RunCli(s, {"design", "save", "mine", "--from", design}).err,
            "a design named \"mine\" exists; add --replace to overwrite it\n");
  WriteAllBytes(out / "mine.tpl", Bytes{1});
  EXPECT_EQ(RunCli(s, {"design", "export-tpl", "mine", "--out", out / "mine.tpl"}).err,
            out / "mine.tpl" + ": the file exists; add --replace to overwrite it\n");
  cli = RunCli(s, {"design", "export-tpl", "mine", "--out", out / "no folder/mine.tpl"});
  EXPECT_EQ(cli.rc, 1);
  EXPECT_EQ(cli.err, "Error while saving: " + out / "no folder/: No such file or directory\n");
}
