// Builds the databases the studio ships with:
//   Library.db    styles, themes, palettes, the settings row, the version,
//                 and every library icon as compressed staging batches
//   Resources.db  the interface icons, the languages and their texts
// from the icon sets under node_modules and the tables under tools/data.
// Every icon is normalised on the way in: drawn onto a 256 by 256 vector
// surface, whose SVG text (paths with percent colours) is what is stored.
//
// Usage: quillaron-datagen --icons DIR --data DIR --out DIR

#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "platform/DbRecordset.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/SvgRenderer.h"
#include "platform/TextUtil.h"
#include "store/LibrarySchema.h"
#include "tools/datagen/Palettes.h"
#include "tools/datagen/Shapes.h"

using namespace qds;
using Json = nlohmann::json;

namespace {

constexpr int kBatchRows = 250;

struct Options {
  std::string icons, data, out;
};

class Normaliser {
 public:
  Bytes operator()(const std::string& svg, const std::string& what) {
    const SvgHandlePtr doc = renderer_.Parse(ToBytes(svg));
    if (!doc) throw std::runtime_error("cannot read " + what);
    SurfacePtr surface = DrawingSurface::Create(256, 256, SurfaceKind::Svg);
    {
      DrawingContext ctx(surface);
      if (!renderer_.Render(ctx, *doc, 0, 0, 256, 256)) throw std::runtime_error("cannot draw " + what);
    }
    return surface->SvgDocumentBytes();
  }

 private:
  SvgRenderer renderer_{4};
};

// One Iconify set: icons.json, and the categories of metadata.json.
struct IconSet {
  Json icons;
  int width = 16, height = 16;
  std::map<std::string, std::string> categoryOf;
  std::map<std::string, std::vector<std::string>> aliasesOf;

  explicit IconSet(const std::string& folder) {
    icons = Json::parse(ReadAllText(folder + "/icons.json"));
    width = icons.value("width", 16);
    height = icons.value("height", 16);
    if (icons.contains("aliases")) {
      for (const auto& [alias, a] : icons["aliases"].items()) {
        if (a.contains("parent")) aliasesOf[a["parent"].get<std::string>()].push_back(alias);
      }
    }
    if (FileExists(folder + "/metadata.json")) {
      const Json meta = Json::parse(ReadAllText(folder + "/metadata.json"));
      if (meta.contains("categories")) {
        for (const auto& [category, names] : meta["categories"].items()) {
          for (const auto& n : names) categoryOf.emplace(n.get<std::string>(), category);
        }
      }
    }
  }

  bool Has(const std::string& name) const { return icons["icons"].contains(name) || Parent(name) != name; }

  std::string Parent(const std::string& name) const {
    if (icons.contains("aliases") && icons["aliases"].contains(name)) {
      return icons["aliases"][name].value("parent", name);
    }
    return name;
  }

  std::string Svg(const std::string& requested) const {
    const Json& icon = icons["icons"].at(Parent(requested));
    const int w = icon.value("width", width), h = icon.value("height", height);
    return R"(<svg xmlns="http://www.w3.org/2000/svg" width=")" + std::to_string(w) + R"(" height=")" +
           std::to_string(h) + R"(" viewBox="0 0 )" + std::to_string(w) + " " + std::to_string(h) + R"(">)" +
           icon["body"].get<std::string>() + "</svg>";
  }
};

std::vector<std::vector<std::string>> ReadTsv(const std::string& path) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream in(ReadAllText(path));
  std::string line;
  bool header = true;
  while (std::getline(in, line)) {
    if (header) {
      header = false;
      continue;
    }
    if (line.empty()) continue;
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (;;) {
      const std::size_t tab = line.find('\t', start);
      fields.push_back(line.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
      if (tab == std::string::npos) break;
      start = tab + 1;
    }
    rows.push_back(std::move(fields));
  }
  return rows;
}

// "\n" in a text table stands for a line break.
std::string Unescape(const std::string& s) {
  std::string out;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\\' && i + 1 < s.size() && s[i + 1] == 'n') {
      out += '\n';
      ++i;
    } else {
      out += s[i];
    }
  }
  return out;
}

std::string Words(const std::string& name) {
  std::string out;
  for (char c : name) out += (c == '-' || c == '_') ? ' ' : c;
  return out;
}

void Check(DbConnection& cnn, bool ok) {
  if (!ok) throw std::runtime_error("SQL failed: " + cnn.ErrorText());
}

// Builds a database beside its final name and renames it into place, so a
// failed run never leaves half a database where the program looks for one.
void WriteDatabase(const std::string& path, bool (*schema)(DbConnection&),
                   const std::function<void(DbConnection&)>& fill) {
  const std::string temp = path + ".tmp";
  std::remove(temp.c_str());
  {
    DbConnection cnn = DbConnection::Open(temp);
    Check(cnn, schema(cnn));
    Check(cnn, cnn.BeginTrans());
    fill(cnn);
    Check(cnn, cnn.CommitTrans());
    Check(cnn, cnn.Execute("VACUUM"));
  }
  if (std::rename(temp.c_str(), path.c_str()) != 0) throw std::runtime_error("cannot write " + path);
}

void WriteResources(DbConnection& cnn, const std::vector<std::pair<std::string, Bytes>>& resources) {
  DbRecordset res = cnn.Query("Select * From Resources Where 1=0");
  for (const auto& [name, svg] : resources) {
    res.AddNew();
    res.Fields("Name") = name;
    res.Fields("SVG") = svg;
    res.Update();
  }
}

// The icons of the library, in the column order of Images.
struct Row {
  std::string name;
  Bytes svg;
  int style, theme;
  bool overlay;
  std::string synonyms;
};

class Library {
 public:
  std::vector<Row> rows;
  std::vector<std::string> styles, themes;

  int Style(const std::string& name) { return Id(styles, name); }
  int Theme(const std::string& name) { return Id(themes, name); }

 private:
  static int Id(std::vector<std::string>& names, const std::string& name) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (names[i] == name) return static_cast<int>(i) + 1;
    }
    names.push_back(name);
    return static_cast<int>(names.size());
  }
};

// Icons that make sense as small overlays on other icons.
bool IsOverlay(const std::string& base) {
  static const std::set<std::string> names = {"add-circle",
                                              "checkbox-circle",
                                              "close-circle",
                                              "error-warning",
                                              "information",
                                              "question",
                                              "star",
                                              "heart-3",
                                              "lock",
                                              "time",
                                              "download",
                                              "upload",
                                              "refresh",
                                              "search",
                                              "settings-3",
                                              "forbid",
                                              "alarm-warning",
                                              "shield-check",
                                              "notification",
                                              "flag",
                                              "bookmark",
                                              "pushpin",
                                              "thumb-up",
                                              "fire",
                                              "user",
                                              "cloud",
                                              "link",
                                              "edit",
                                              "delete-bin",
                                              "arrow-up-circle",
                                              "arrow-down-circle",
                                              "arrow-left-circle",
                                              "arrow-right-circle",
                                              "play-circle",
                                              "pause-circle",
                                              "stop-circle",
                                              "check",
                                              "close",
                                              "add",
                                              "subtract",
                                              "flashlight"};
  return names.count(base) > 0;
}

// Flat Color has no categories: borrow them from the Remix icon of the same
// name, else from a word of the name.
std::string FlatColorTheme(const std::string& name, const IconSet& remix) {
  for (const char* suffix : {"-line", "-fill"}) {
    const auto it = remix.categoryOf.find(name + suffix);
    if (it != remix.categoryOf.end()) return it->second;
  }
  static const std::vector<std::pair<const char*, const char*>> words = {
      {"chart", "Business"},       {"business", "Business"},   {"money", "Finance"},
      {"currency", "Finance"},     {"document", "Document"},   {"file", "Document"},
      {"folder", "Document"},      {"print", "Device"},        {"phone", "Device"},
      {"mobile", "Device"},        {"camera", "Media"},        {"video", "Media"},
      {"music", "Media"},          {"image", "Media"},         {"photo", "Media"},
      {"calendar", "Business"},    {"clock", "System"},        {"setting", "System"},
      {"lock", "System"},          {"key", "System"},          {"data", "Development"},
      {"server", "Development"},   {"bug", "Development"},     {"android", "Logos"},
      {"google", "Logos"},         {"person", "User & Faces"}, {"user", "User & Faces"},
      {"manager", "User & Faces"}, {"home", "Buildings"},      {"factory", "Buildings"},
      {"shop", "Buildings"},       {"sms", "Communication"},   {"message", "Communication"},
      {"phone", "Communication"},  {"globe", "Map"},           {"planner", "Business"},
      {"idea", "Others"}};
  for (const auto& [word, theme] : words) {
    if (name.find(word) != std::string::npos) return theme;
  }
  return "Others";
}

void AddGenerated(Library& lib, Normaliser& normalise, const std::vector<datagen::GeneratedIcon>& icons,
                  const std::string& style) {
  for (const auto& g : icons) {
    lib.rows.push_back(
        {g.name, normalise(g.svg, g.name), lib.Style(style), lib.Theme(g.theme), false, g.synonyms});
  }
}

void BuildLibrary(const Options& o, Normaliser& normalise,
                  const std::vector<std::pair<std::string, Bytes>>& resources) {
  Library lib;
  // The built-in styles come first, in this order; "Quillaron" is style 1.
  for (const char* s : {"Quillaron", "Slimline", "Shapes", "Flat", "Design Elements", "Flat Color"})
    lib.Style(s);

  const IconSet remix(o.icons + "/ri");
  std::set<std::string> categories;
  for (const auto& [name, category] : remix.categoryOf) categories.insert(category);
  for (const auto& c : categories) lib.Theme(c);  // the library's themes lead the list

  AddGenerated(lib, normalise, datagen::QuillaronShapes(), "Quillaron");
  for (const auto& [name, icon] : remix.icons["icons"].items()) {
    const bool fill = name.size() > 5 && name.compare(name.size() - 5, 5, "-fill") == 0;
    const bool line = name.size() > 5 && name.compare(name.size() - 5, 5, "-line") == 0;
    if (!fill && !line) continue;
    const std::string base = name.substr(0, name.size() - 5);
    const auto category = remix.categoryOf.find(name);
    std::string synonyms = Words(base);
    const auto aliases = remix.aliasesOf.find(name);
    if (aliases != remix.aliasesOf.end()) {
      for (const auto& a : aliases->second) synonyms += " " + Words(a.substr(0, a.size() - 5));
    }
    lib.rows.push_back({base, normalise(remix.Svg(name), name), lib.Style(fill ? "Flat" : "Slimline"),
                        lib.Theme(category == remix.categoryOf.end() ? "Others" : category->second),
                        IsOverlay(base), synonyms});
  }
  const IconSet flat(o.icons + "/flat-color-icons");
  for (const auto& [name, icon] : flat.icons["icons"].items()) {
    lib.rows.push_back({name, normalise(flat.Svg(name), name), lib.Style("Flat Color"),
                        lib.Theme(FlatColorTheme(name, remix)), false, Words(name)});
  }
  AddGenerated(lib, normalise, datagen::GeometricShapes(), "Shapes");
  AddGenerated(lib, normalise, datagen::DesignElements(), "Design Elements");

  WriteDatabase(o.out + "/Library.db", CreateLibrarySchema, [&](DbConnection& cnn) {
    DbRecordset styles = cnn.Query("Select * From Styles Where 1=0");
    for (const auto& s : lib.styles) {
      styles.AddNew();
      styles.Fields("Name") = s;
      styles.Update();
    }
    DbRecordset themes = cnn.Query("Select * From Themes Where 1=0");
    for (const auto& t : lib.themes) {
      themes.AddNew();
      themes.Fields("Name") = t;
      themes.Update();
    }
    datagen::WritePalettes(cnn);
    Check(cnn, cnn.Execute(R"(Insert Into Config (Settings) Values ('{"Language_ID":2}'))"));
    Check(cnn, cnn.Execute("Insert Into DBVersion (Version) Values ('" + SqlText(ProgramVersion()) + "')"));
    WriteResources(cnn, resources);

    // The icons reach Images only through the staging table, in batches.
    const DbRecordset columns = cnn.Query("Select * From Images Where 1=0");
    std::vector<std::string> names;
    for (int i = 0; i < columns.FieldCount(); ++i) names.push_back(columns.FieldName(i));
    DbRecordset staging = cnn.Query("Select * From TmpImageBlobs Where 1=0");
    for (std::size_t first = 0; first < lib.rows.size(); first += kBatchRows) {
      DbRecordset batch = DbRecordset::Create(names);
      for (std::size_t i = first; i < std::min(lib.rows.size(), first + kBatchRows); ++i) {
        const Row& r = lib.rows[i];
        batch.AddNew();
        batch.Fields("ID") = static_cast<long long>(i + 1);
        batch.Fields("Name") = r.name;
        batch.Fields("SVG") = r.svg;
        batch.Fields("Styles_ID") = r.style;
        batch.Fields("Themes_ID") = r.theme;
        batch.Fields("Overlay") = r.overlay;
        batch.Fields("Zoom") = 100;
        batch.Fields("OffsetX") = 0;
        batch.Fields("OffsetY") = 0;
        batch.Fields("Custom") = false;
        batch.Fields("Synonyms") = r.synonyms;
        batch.Update();
      }
      staging.AddNew();
      staging.Fields("Content") = GzipCompress(batch.Serialize(), 9);
      staging.Update();
    }
  });
  std::cout << "Library.db: " << lib.rows.size() << " icons in " << lib.styles.size() << " styles and "
            << lib.themes.size() << " themes\n";
}

std::vector<std::pair<std::string, Bytes>> InterfaceIcons(const Options& o, Normaliser& normalise) {
  const IconSet tabler(o.icons + "/tabler");
  std::vector<std::pair<std::string, Bytes>> out;
  for (const auto& row : ReadTsv(o.data + "/resources.tsv")) {
    if (row.size() < 2) throw std::runtime_error("resources.tsv: a row without a source");
    const std::string& name = row[0];
    const std::string& source = row[1];
    std::string svg;
    if (source == "own") {
      svg = ReadAllText(o.data + "/" + name + ".svg");
    } else if (tabler.Has(source)) {
      svg = tabler.Svg(source);
    } else {
      throw std::runtime_error("resources.tsv: no icon \"" + source + "\" for " + name);
    }
    out.emplace_back(name, normalise(svg, name));
  }
  return out;
}

void BuildResources(const Options& o, const std::vector<std::pair<std::string, Bytes>>& resources) {
  int count = 0;
  WriteDatabase(o.out + "/Resources.db", CreateResourcesSchema, [&](DbConnection& cnn) {
    WriteResources(cnn, resources);
    DbRecordset languages = cnn.Query("Select * From Language Where 1=0");
    for (const auto& row : ReadTsv(o.data + "/languages.tsv")) {
      languages.AddNew();
      languages.Fields("ID") = std::stoi(row.at(0));
      languages.Fields("Language") = row.at(1);
      languages.Update();
    }
    DbRecordset texts = cnn.Query("Select * From Texts Where 1=0");
    for (const auto& row : ReadTsv(o.data + "/texts.tsv")) {
      if (row.size() < 3) throw std::runtime_error("texts.tsv: a row with fewer than three fields");
      texts.AddNew();
      texts.Fields("Language_ID") = std::stoi(row[0]);
      texts.Fields("Name") = row[1];
      texts.Fields("Text") = Unescape(row[2]);
      texts.Fields("Tooltip") = row.size() > 3 ? Unescape(row[3]) : std::string();
      texts.Update();
      ++count;
    }
  });
  std::cout << "Resources.db: " << resources.size() << " interface icons, " << count << " texts\n";
}

}  // namespace

int main(int argc, char** argv) {
  Options o;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string flag = argv[i];
    if (flag == "--icons") o.icons = argv[i + 1];
    if (flag == "--data") o.data = argv[i + 1];
    if (flag == "--out") o.out = argv[i + 1];
  }
  if (o.icons.empty() || o.data.empty() || o.out.empty()) {
    std::cerr << "usage: quillaron-datagen --icons DIR --data DIR --out DIR\n";
    return 2;
  }
  try {
    CreateDirectories(o.out);
    Normaliser normalise;
    const auto resources = InterfaceIcons(o, normalise);
    BuildResources(o, resources);
    BuildLibrary(o, normalise, resources);
  } catch (const AppError& e) {
    std::cerr << "quillaron-datagen: " << e.Description() << "\n";
    return 1;
  } catch (const std::exception& e) {
    std::cerr << "quillaron-datagen: " << e.what() << "\n";
    return 1;
  }
  return 0;
}
