#include "cli/ExportCommand.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <optional>
#include <ostream>

#include "app/AppContext.h"
#include "app/modTexts.h"
#include "cli/CommandLine.h"
#include "cli/CommandOptions.h"
#include "engine/cLayersEntries.h"
#include "export/cIcoResWriter.h"
#include "export/modExport.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"
#include "platform/Value.h"
#include "store/modDB.h"
#include "store/modTemplates.h"

namespace qds {

namespace {

// Every option of export, and whether a value follows it.
constexpr OptionRule kExportOptions[] = {{"--design", true},
                                         {"--design-file", true},
                                         {"--out", true},
                                         {"--format", true},
                                         {"--size", true},
                                         {"--adjust-size", false},
                                         {"--ico-sizes", true},
                                         {"--ids", true},
                                         {"--style", true},
                                         {"--theme", true},
                                         {"--search", true},
                                         {"--prefix", true},
                                         {"--delimiter", true},
                                         {"--name", true},
                                         {"--ext", true},
                                         {"--no-size-ext", false},
                                         {"--remove-blank", false},
                                         {"--rename-duplicates", false},
                                         {"--overwrite", false},
                                         {"--quality", true},
                                         {"--bg", true},
                                         {"--folder-per-format", false},
                                         {"--folder-per-size", false},
                                         {"--percent-colours", false},
                                         {"--help", false}};

std::optional<CommandArgs> ReadExportArgs(const std::vector<std::string>& args, std::ostream& err) {
  const CommandArgs read = ReadCommandArgs(args, kExportOptions, 0);
  if (read.error.empty()) return read;
  err << "quillaron export: " << read.error << " (see quillaron export --help)\n";
  return std::nullopt;
}

struct Fail {
  std::string message;
};

std::string Say(AppContext& app, const std::string& key) {
  const std::string text = LanguageText(app, key).Text;
  return text.empty() ? key : text;
}

int Number(const std::string& flag, const std::string& text, int min, int max) {
  // Strictly whole: "3.5" is refused, not rounded, and "99999999999999999999"
  // gets this message too.
  const std::optional<std::int64_t> v = WholeNumber(text);
  if (v && *v >= min && *v <= max) return static_cast<int>(*v);
  throw Fail{flag + " takes a whole number from " + std::to_string(min) + " to " + std::to_string(max) +
             ", not \"" + text + "\""};
}

// A list of library IDs, checked so that nothing else reaches the query.
std::string IdList(const std::string& text) {
  std::string out;
  for (const std::string& part : SplitSizes(text)) {
    out += (out.empty() ? "" : ",") + std::to_string(Number("--ids", part, 1, 2147483647));
  }
  return out;
}

int IdOf(AppContext& app, const char* table, const std::string& name) {
  // The style "Quillaron" holds the studio's own shapes and is hidden wherever
  // a user picks a style.
  if (table[0] == 'S' && EqualsNoCase(name, "Quillaron"))
    throw Fail{"\"" + name + "\" holds the studio's own shapes, not a library style"};
  DbRecordset rs = app.Cnn.Query(std::string("Select ID From ") + table + " Where Name = '" + SqlText(name) +
                                 "' COLLATE NOCASE");
  if (rs.Eof())
    throw Fail{std::string("there is no ") + (table[0] == 'S' ? "style" : "theme") + " \"" + name + "\""};
  return static_cast<int>(rs.Fields(0).AsLong());
}

class CommandLineObserver : public ExportObserver {
 public:
  CommandLineObserver(AppContext& app, std::ostream& out, std::ostream& err, bool terminal, bool overwrite)
      : app_(app), out_(out), err_(err), terminal_(terminal), overwrite_(overwrite) {}
  void Progress(int done, int total, const std::string&) override {
    if (!terminal_ || total == 0) return;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    const int width = 30, filled = done * width / total;
    char rate[32];
    std::snprintf(rate, sizeof rate, "%.1f/s", seconds > 0 ? done / seconds : 0.0);
    out_ << "\r[" << std::string(filled, '#') << std::string(width - filled, '.') << "] " << done << "/"
         << total << "  " << rate << std::flush;
  }
  int AskOverwrite(const std::string&) override { return overwrite_ ? Answer::YesToAll : Answer::No; }
  void Message(const std::string& key, const std::string& detail) override {
    if (terminal_) out_ << "\n";
    // A file that failed: its path and the reason say it all.
    if (key == "SaveError" && !detail.empty()) {
      err_ << "quillaron export: " << detail << "\n";
      return;
    }
    err_ << (detail.empty() ? "" : detail + ": ") << Say(app_, key) << "\n";
  }
  double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  AppContext& app_;
  std::ostream& out_;
  std::ostream& err_;
  bool terminal_, overwrite_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace

void PrintExportHelp(std::ostream& out) {
  out << "Usage: quillaron [--app-dir DIR] export (--design NAME | --design-file FILE.json) --out DIR "
         "[options]\n"
         "\n"
         "Draws a saved design for each base icon and writes one file per icon.\n"
         "A value follows its option as the next word or after \"=\" (--size=64x64);\n"
         "each option is given once, and numbers are whole numbers.\n"
         "\n"
         "  --design NAME          a design saved in the library\n"
         "  --design-file FILE     a design file (JSON), used without saving it\n"
         "  --out DIR              the folder to write to; it must exist\n"
         "  --format F             PNG (default), JPG, BMP, ICO or SVG\n"
         "  --size WxH             picture size, default 256x256 (ICO is always 256)\n"
         "  --adjust-size          trim the transparent margins\n"
         "  --ico-sizes LIST       sizes of an ICO file, default 16,20,24,32,40,48,64,256;\n"
         "                         the last one is stored as PNG\n"
         "  --ids 1,2,3            the base icons by library ID\n"
         "  --style S              the base icons of a library style\n"
         "  --theme T              the base icons of a theme\n"
         "  --search TEXT          the base icons whose name or synonyms hold TEXT\n"
         "                         --ids, --style, --theme and --search together take\n"
         "                         the icons that match all of them; without any, the\n"
         "                         icons saved with the design\n"
         "  --prefix TEXT          put before every name\n"
         "  --delimiter TEXT       between the parts of a name, default _\n"
         "  --name base|overlay|TEXT   the name part, default base\n"
         "  --ext base|overlay|none|TEXT  the part after the name, default none\n"
         "  --no-size-ext          no size at the end of the name\n"
         "  --remove-blank         remove blanks from names\n"
         "  --rename-duplicates    add -Duplicate1, -Duplicate2 ... to names that exist\n"
         "  --overwrite            replace existing files (else they are skipped and counted)\n"
         "  --quality N            JPG quality, 10 to 100, default 90\n"
         "  --bg RRGGBB            background of JPG and BMP, default FFFFFF\n"
         "  --folder-per-format    write into a sub-folder per format\n"
         "  --folder-per-size      write into a sub-folder per size\n"
         "  --percent-colours      keep SVG colours in per cent\n";
}

bool CheckExportArgs(const std::vector<std::string>& args, std::ostream& err) {
  return ReadExportArgs(args, err).has_value();
}

int RunExportCommand(AppContext& app, const std::vector<std::string>& args, std::ostream& out,
                     std::ostream& err, bool terminal) {
  const std::optional<CommandArgs> given = ReadExportArgs(args, err);
  if (!given) return 2;
  std::map<std::string, std::string> opt = given->options;
  if (opt.count("--help")) {
    PrintExportHelp(out);
    return 0;
  }
  const auto has = [&](const char* o) { return opt.count(o) > 0; };
  try {
    ExportOptions o;
    o.Format = has("--format") ? opt["--format"] : "PNG";
    for (char& c : o.Format) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (o.Format != "PNG" && o.Format != "JPG" && o.Format != "BMP" && o.Format != "ICO" &&
        o.Format != "SVG") {
      throw Fail{"unknown format \"" + opt["--format"] + "\": PNG, JPG, BMP, ICO or SVG"};
    }
    o.Width = o.Height = 256;
    if (has("--size")) {
      const std::string size = opt["--size"];
      const std::size_t x = size.find_first_of("xX");
      if (x == std::string::npos) throw Fail{"--size takes WxH, such as 64x64"};
      o.Width = Number("--size", size.substr(0, x), 1, 8192);
      o.Height = Number("--size", size.substr(x + 1), 1, 8192);
    }
    if (has("--ico-sizes")) {
      for (const std::string& s : SplitSizes(opt["--ico-sizes"])) Number("--ico-sizes", s, 1, 1024);
      o.IcoSizes = opt["--ico-sizes"];
    }
    if (!has("--out")) throw Fail{"--out DIR is needed"};
    o.Folder = opt["--out"];
    o.AdjustSize = has("--adjust-size");
    o.Prefix = opt["--prefix"];
    if (has("--delimiter")) o.Delimiter = opt["--delimiter"];
    const auto part = [&](const char* flag, ExportOptions::Part def, std::string& text) {
      if (!has(flag)) return def;
      const std::string v = opt[flag];
      if (v == "base") return ExportOptions::Part::Base;
      if (v == "overlay") return ExportOptions::Part::Overlay;
      if (v == "none") return ExportOptions::Part::None;
      text = v;
      return ExportOptions::Part::Text;
    };
    o.NamePart = part("--name", ExportOptions::Part::Base, o.NameText);
    o.ExtPart = part("--ext", ExportOptions::Part::None, o.ExtText);
    o.SizeExt = !has("--no-size-ext");
    o.RemoveBlank = has("--remove-blank");
    o.RenameDuplicates = has("--rename-duplicates");
    if (has("--quality")) o.JPGQuality = Number("--quality", opt["--quality"], 10, 100);
    if (has("--bg")) {
      const std::string hex = opt["--bg"];
      if (hex.size() != 6 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
        throw Fail{"--bg takes six hexadecimal digits RRGGBB"};
      }
      const auto v = std::stoul(hex, nullptr, 16);
      o.BackgroundColor = ((v & 0xFF) << 16) | (v & 0xFF00) | ((v >> 16) & 0xFF);
    }
    o.CreateFolderFormat = has("--folder-per-format");
    o.CreateFolderSize = has("--folder-per-size");
    o.ColorsinPerc = has("--percent-colours");
    if (o.Folder.empty()) throw Fail{"--out is empty: give the folder to write to"};
    if (FileExists(o.Folder)) throw Fail{"--out " + o.Folder + " is a file, not a folder"};
    if (!FolderExists(o.Folder)) {
      err << o.Folder << ": " << Say(app, "FolderMissing") << "\n";
      return 1;
    }
    // Every file stays in --out: no part of a name may lead elsewhere.
    for (const auto& [flag, part] : {std::pair<const char*, const std::string&>{"--prefix", o.Prefix},
                                     {"--delimiter", o.Delimiter},
                                     {"--name", o.NameText},
                                     {"--ext", o.ExtText}}) {
      if (const std::string problem = NamePartProblem(part); !problem.empty())
        throw Fail{std::string(flag) + " \"" + part + "\": " + problem};
    }

    // The design, from the library or from a file.
    if (has("--design") == has("--design-file"))
      throw Fail{"give either --design NAME or --design-file FILE"};
    DesignFile design;
    if (has("--design")) {
      if (TrimBlanks(opt["--design"]).empty()) throw Fail{"the design name is empty"};
      const int id = FindDesign(app, opt["--design"]);
      if (id == 0) throw Fail{"no design is named \"" + opt["--design"] + "\""};
      design = *ReadDesign(app, id);
    } else {
      std::string why;
      const std::optional<DesignFile> read =
          ReadDesignJson(ReadAllText(opt["--design-file"], kMaxDesignFileBytes), &why);
      if (!read) throw Fail{opt["--design-file"] + ": " + WithReason(Say(app, "InvalidFile"), why)};
      design = *read;
    }
    // Other base icons than the design's own become its base entry's icons.
    if (has("--ids") || has("--style") || has("--theme") || has("--search")) {
      const int style = has("--style") ? IdOf(app, "Styles", opt["--style"]) : 0;
      const int theme = has("--theme") ? IdOf(app, "Themes", opt["--theme"]) : 0;
      // Given together, the choices narrow each other down.
      std::string condition;
      if (has("--ids")) condition = "[Images].ID In (" + IdList(opt["--ids"]) + ")";
      if (has("--search")) {
        // What the user typed is looked for as it stands: "%" and "_" too.
        const std::string t = SqlLikeText(opt["--search"]);
        condition += std::string(condition.empty() ? "" : " And ") + "([Images].Name like '%" + t +
                     "%' escape '\\' or [Images].Synonyms like '%" + t + "%' escape '\\')";
      }
      ItemCollection chosen;
      AddBaseSVGs(app, style, theme, condition, chosen);
      if (chosen.Empty()) throw Fail{"no library icon matches"};
      std::string ids;
      for (const auto& e : chosen) ids += (ids.empty() ? "" : ",") + e.Item->ID().AsString();
      bool hasBaseEntry = false;
      for (std::string& content : design.Contents) {
        cLayersEntries entry;
        if (!entry.setContent(content) || !entry.IsBaseEntry()) continue;
        entry.setImageIDs(ids);
        content = entry.Content();
        hasBaseEntry = true;
      }
      if (!hasBaseEntry) throw Fail{"the design has no base layer to take the icons"};
    }
    DesignLoadReport loaded;
    if (!FillLayersFromEntries(app, design.Contents, &loaded)) {
      throw Fail{Say(app, "LoadError") + ": " + loaded.Error};
    }
    if (loaded.MissingIcons > 0) {
      err << "quillaron export: " << loaded.MissingIcons
          << " icon(s) of the design are no longer in the library and show as the stand-in icon\n";
    }
    ReportCorrected(err, design.Clamped + loaded.Corrected, "the design");
    if (loaded.SkippedEntries > 0) {
      err << "quillaron export: " << loaded.SkippedEntries << " layer(s) of the design were left out\n";
    }
    // A design without a base layer is drawn once; one with it, once per icon.
    o.ExportHasBaseIcons =
        std::any_of(design.Contents.begin(), design.Contents.end(), [](const std::string& c) {
          cLayersEntries entry;
          return entry.setContent(c) && entry.IsBaseEntry();
        });
    if (app.Layers.Empty()) throw Fail{"the design has nothing to draw"};
    app.DesignOpacity = design.Opacity;
    app.DesignOpacityOn = design.UseOpacity;

    if (app.Layers.Exists("_Overlay") && app.Layers.Item("_Overlay")->UseAsOverlay()) {
      const std::string style = SqlText(app.Layers.Item("_Overlay")->Style());
      AddBaseSVGs(app, 0, 0, "Overlay=-1 and [Styles].Name='" + style + "'", app.OverlayLayers);
      o.ExportHasOverlayIcons = true;
    }

    CommandLineObserver observer(app, out, err, terminal, has("--overwrite"));
    const ExportResult r = RunExport(app, o, observer);
    if (terminal && r.Images > 0) out << "\n";
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.1f", observer.Seconds());
    out << r.Written << " files written, " << r.Skipped << " skipped (existed)";
    if (r.Collisions > 0) out << ", " << r.Collisions << " name collisions within this run";
    if (r.Failed > 0) out << ", " << r.Failed << " failed";
    out << ", " << seconds << " s\n";
    if (r.Collisions > 0) {
      // Names are made of the icon's name, an overlay's and texts: nothing
      // tells two styles or themes apart but a prefix per run.
      err << "quillaron export: " << r.Collisions
          << " icon(s) had the name of an earlier icon of this run and were not written: add "
             "--rename-duplicates, or export each style or theme on its own with its own --prefix\n";
    }
    // Any file that failed, or a run that ended early, fails the command.
    return r.Error.empty() && r.Failed == 0 ? 0 : 1;
  } catch (const Fail& f) {
    err << "quillaron export: " << f.message << "\n";
    return 1;
  } catch (const AppError& e) {
    err << "quillaron export: " << e.Description() << "\n";
    return 1;
  }
}

}  // namespace qds
