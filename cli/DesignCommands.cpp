#include "cli/DesignCommands.h"

#include <algorithm>
#include <map>
#include <ostream>

#include "app/AppContext.h"
#include "app/modTexts.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"
#include "store/modTemplates.h"

namespace qds {

namespace {

// Positional words and "--flag value" / "--switch" options.
struct Args {
  std::vector<std::string> words;
  std::map<std::string, std::string> options;
  bool Has(const std::string& o) const { return options.count(o) > 0; }
  std::string Get(const std::string& o) const { return Has(o) ? options.at(o) : std::string(); }
};

Args Split(const std::vector<std::string>& in) {
  Args a;
  for (std::size_t i = 0; i < in.size(); ++i) {
    if (in[i] == "--replace") {
      a.options["--replace"] = "";
    } else if (in[i].rfind("--", 0) == 0 && i + 1 < in.size()) {
      a.options[in[i]] = in[i + 1];
      ++i;
    } else {
      a.words.push_back(in[i]);
    }
  }
  return a;
}

// The user's words for a message key, with the key itself as a last resort.
std::string Say(AppContext& app, const std::string& key) {
  const std::string text = LanguageText(app, key).Text;
  return text.empty() ? key : text;
}

int Usage(std::ostream& err) {
  err << "usage: quillaron design list | show NAME | save NAME --from FILE.json [--replace] | delete NAME\n"
         "                       | export-tpl NAME --out FILE.tpl [--replace]\n"
         "                       | import-tpl FILE.tpl [--name NAME] [--replace]\n";
  return 2;
}

// Writes the design unless a design of that name exists and may not be replaced.
int Store(AppContext& app, const std::string& given, const DesignFile& design, bool replace,
          std::ostream& out, std::ostream& err) {
  // The name is stored trimmed, so it is checked trimmed: blanks alone are no name.
  const std::string name(TrimBlanks(given));
  if (name.empty()) {
    err << Say(app, "NameMissing") << "\n";
    return 1;
  }
  if (FindDesign(app, name) != 0 && !replace) {
    err << "a design named \"" << name << "\" exists; add --replace to overwrite it\n";
    return 1;
  }
  const int id = StoreDesign(app, name, design);
  if (id == 0) {
    err << Say(app, "SaveError") << ": " << app.Cnn.ErrorText() << "\n";
    return 1;
  }
  out << name << "\n";
  return 0;
}

}  // namespace

int RunDesignCommand(AppContext& app, const std::vector<std::string>& in, std::ostream& out,
                     std::ostream& err) {
  const Args a = Split(in);
  if (a.words.empty()) return Usage(err);
  const std::string& what = a.words[0];
  const std::string name = a.words.size() > 1 ? a.words[1] : std::string();
  static const char* const known[] = {"list", "show", "save", "delete", "export-tpl", "import-tpl"};
  if (std::find(std::begin(known), std::end(known), what) == std::end(known)) return Usage(err);

  if (what == "list") {
    for (DbRecordset rs = app.Cnn.Query("Select Name From Layer Order By Name COLLATE NOCASE"); !rs.Eof();
         rs.MoveNext()) {
      out << rs.Fields(0).AsString() << "\n";
    }
    return 0;
  }
  if (a.words.size() < 2) return Usage(err);

  if (what == "import-tpl") {
    std::optional<DesignFile> design;
    try {
      design = ReadTemplateBytes(ReadAllBytes(name, kMaxDesignFileBytes));
    } catch (const AppError& e) {
      err << e.Description() << "\n";
      return 1;
    }
    if (!design) {
      err << name << ": " << Say(app, "InvalidFile") << "\n";
      return 1;
    }
    return Store(app, a.Has("--name") ? a.Get("--name") : BaseNameOf(name), *design, a.Has("--replace"), out,
                 err);
  }
  if (what == "save") {
    if (!a.Has("--from")) return Usage(err);
    std::optional<DesignFile> design;
    try {
      design = ReadDesignJson(ReadAllText(a.Get("--from"), kMaxDesignFileBytes));
    } catch (const AppError& e) {
      err << e.Description() << "\n";
      return 1;
    }
    if (!design) {
      err << a.Get("--from") << ": " << Say(app, "InvalidFile") << "\n";
      return 1;
    }
    return Store(app, name, *design, a.Has("--replace"), out, err);
  }

  const int id = FindDesign(app, name);
  if (id == 0) {
    err << "quillaron: no design is named \"" << name << "\"\n";
    return 1;
  }
  if (what == "show") {
    out << DesignJson(*ReadDesign(app, id), true) << "\n";
    return 0;
  }
  if (what == "delete") {
    if (!DeleteDesign(app, id)) {
      err << app.Cnn.ErrorText() << "\n";
      return 1;
    }
    return 0;
  }
  if (what == "export-tpl") {
    const std::string path = a.Get("--out");
    if (path.empty()) return Usage(err);
    if (FileExists(path) && !a.Has("--replace")) {
      err << path << ": the file exists; add --replace to overwrite it\n";
      return 1;
    }
    try {
      WriteAllBytes(path, TemplateBytes(*ReadDesign(app, id)));
    } catch (const AppError& e) {
      err << Say(app, "SaveError") << ": " << e.Description() << "\n";
      return 1;
    }
    out << path << "\n";
    return 0;
  }
  return Usage(err);
}

}  // namespace qds
