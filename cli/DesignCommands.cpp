#include "cli/DesignCommands.h"

#include <algorithm>
#include <optional>
#include <ostream>
#include <span>
#include <string_view>

#include "app/AppContext.h"
#include "app/modTexts.h"
#include "cli/CommandLine.h"
#include "cli/CommandOptions.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"
#include "store/modTemplates.h"

namespace qds {

namespace {

// What each sub-command takes: how many words after its own name, and which
// options.
struct SubCommand {
  std::string_view name;
  std::size_t words;
  std::span<const OptionRule> options;
};

constexpr OptionRule kSaveOptions[] = {{"--from", true}, {"--replace", false}};
constexpr OptionRule kExportTplOptions[] = {{"--out", true}, {"--replace", false}};
constexpr OptionRule kImportTplOptions[] = {{"--name", true}, {"--replace", false}};
constexpr SubCommand kSubCommands[] = {{"list", 0, {}},
                                       {"show", 1, {}},
                                       {"save", 1, kSaveOptions},
                                       {"delete", 1, {}},
                                       {"export-tpl", 1, kExportTplOptions},
                                       {"import-tpl", 1, kImportTplOptions}};

// The user's words for a message key, with the key itself as a last resort.
std::string Say(AppContext& app, const std::string& key) {
  const std::string text = LanguageText(app, key).Text;
  return text.empty() ? key : text;
}

int Usage(std::ostream& err) {
  PrintDesignHelp(err);
  return 2;
}

// The words after "design", the sub-command first, read against what that
// sub-command takes; nullopt after telling `err` what is wrong.
std::optional<CommandArgs> ReadDesignArgs(const std::vector<std::string>& in, std::ostream& err) {
  const auto sub = std::find_if(std::begin(kSubCommands), std::end(kSubCommands),
                                [&](const SubCommand& c) { return !in.empty() && c.name == in[0]; });
  if (sub == std::end(kSubCommands)) {
    Usage(err);
    return std::nullopt;
  }
  const CommandArgs a = ReadCommandArgs(in, sub->options, sub->words + 1);
  if (!a.error.empty()) {
    err << "quillaron design " << sub->name << ": " << a.error << "\n";
    return std::nullopt;
  }
  if (a.words.size() < sub->words + 1) {
    Usage(err);
    return std::nullopt;
  }
  return a;
}

// Names are stored trimmed, so they are checked trimmed: blanks alone are no name.
bool NameIsBlank(const std::string& name, const char* what, std::ostream& err) {
  if (!TrimBlanks(name).empty()) return false;
  err << "quillaron design: " << what << " is " << (name.empty() ? "empty" : "blank") << "\n";
  return true;
}

// Writes the design unless a design of that name exists and may not be replaced.
int Store(AppContext& app, const std::string& given, DesignFile design, bool replace, std::ostream& out,
          std::ostream& err) {
  const std::string name(TrimBlanks(given));
  if (NameIsBlank(given, "the design name", err)) return 1;
  if (FindDesign(app, name) != 0 && !replace) {
    err << "a design named \"" << name << "\" exists; add --replace to overwrite it\n";
    return 1;
  }
  // Stored within their limits, so that every later read finds them there.
  const int corrected = CorrectDesign(design);
  bool existed = false;
  const int id = StoreDesign(app, name, design, replace, &existed);
  if (existed) {
    err << name
        << ": another program saved a design of this name just now; nothing was changed (--replace)\n";
    return 1;
  }
  if (id == 0) {
    err << Say(app, "SaveError") << ": " << app.Cnn.ErrorText() << "\n";
    return 1;
  }
  ReportCorrected(err, corrected, "the design");
  out << name << "\n";
  return 0;
}

}  // namespace

void PrintDesignHelp(std::ostream& out) {
  out << "usage: quillaron design list | show NAME | save NAME --from FILE.json [--replace] | delete NAME\n"
         "                       | export-tpl NAME --out FILE.tpl [--replace]\n"
         "                       | import-tpl FILE.tpl [--name NAME] [--replace]\n";
}

bool CheckDesignArgs(const std::vector<std::string>& args, std::ostream& err) {
  return ReadDesignArgs(args, err).has_value();
}

int RunDesignCommand(AppContext& app, const std::vector<std::string>& in, std::ostream& out,
                     std::ostream& err) {
  const std::optional<CommandArgs> given = ReadDesignArgs(in, err);
  if (!given) return 2;
  const CommandArgs& a = *given;
  const std::string& what = a.words[0];
  const std::string name = a.words.size() > 1 ? a.words[1] : std::string();

  if (what == "list") {
    for (DbRecordset rs = app.Cnn.Query("Select Name From Layer Order By Name COLLATE NOCASE"); !rs.Eof();
         rs.MoveNext()) {
      out << rs.Fields(0).AsString() << "\n";
    }
    return 0;
  }

  if (what == "import-tpl") {
    if (NameIsBlank(name, "the template file name", err)) return 1;
    if (a.Has("--name") && NameIsBlank(a.Get("--name"), "the design name", err)) return 1;
    std::optional<DesignFile> design;
    std::string why;
    try {
      design = ReadTemplateBytes(ReadAllBytes(name, kMaxDesignFileBytes), &why);
    } catch (const AppError& e) {
      err << e.Description() << "\n";
      return 1;
    }
    if (!design) {
      err << name << ": " << WithReason(Say(app, "InvalidFile"), why) << "\n";
      return 1;
    }
    if (!a.Has("--name") && TrimBlanks(BaseNameOf(name)).empty()) {
      err << name << ": the file name gives no design name; give one with --name\n";
      return 1;
    }
    return Store(app, a.Has("--name") ? a.Get("--name") : BaseNameOf(name), *design, a.Has("--replace"), out,
                 err);
  }
  if (NameIsBlank(name, "the design name", err)) return 1;
  if (what == "save") {
    if (!a.Has("--from")) return Usage(err);
    std::optional<DesignFile> design;
    std::string why;
    try {
      design = ReadDesignJson(ReadAllText(a.Get("--from"), kMaxDesignFileBytes), &why);
    } catch (const AppError& e) {
      err << e.Description() << "\n";
      return 1;
    }
    if (!design) {
      err << a.Get("--from") << ": " << WithReason(Say(app, "InvalidFile"), why) << "\n";
      return 1;
    }
    return Store(app, name, *design, a.Has("--replace"), out, err);
  }

  const int id = FindDesign(app, name);
  if (id == 0) {
    err << "quillaron: no design is named \"" << name << "\"\n";
    return 1;
  }
  // The design as the library holds it, its values checked on the way.
  std::optional<DesignFile> design;
  if (what == "show" || what == "export-tpl") {
    try {
      design = ReadDesign(app, id);
    } catch (const AppError& e) {
      err << e.Description() << "\n";
      return 1;
    }
    ReportCorrected(err, CorrectDesign(*design), "the design");
  }
  if (what == "show") {
    out << DesignJson(*design, true) << "\n";
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
    // Refused here rather than by the import on another machine; the file
    // is written whole or not at all.
    if (const std::string why = TemplateProblem(*design); !why.empty()) {
      err << path << ": not written, the design \"" << design->Name
          << "\" cannot be imported as it is: " << why << "\n";
      return 1;
    }
    try {
      WriteAllBytes(path, TemplateBytes(*design));
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
