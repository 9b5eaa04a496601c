#include "cli/CommandLine.h"

#include <unistd.h>

#include <functional>
#include <iostream>
#include <ostream>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modStartup.h"
#include "cli/CommandOptions.h"
#include "cli/DesignCommands.h"
#include "cli/ExportCommand.h"
#include "platform/Error.h"
#include "platform/Files.h"

namespace qds {

namespace {

void PrintHelp(std::ostream& out) {
  out << "Quillaron Design Studio " << QDS_VERSION << "\n"
      << "\n"
      << "Usage: quillaron [--app-dir DIR] [COMMAND ...]\n"
      << "\n"
      << "Commands:\n"
      << "  init            start without a window: open the library, fill it on\n"
      << "                  the first start, and tell what it holds\n"
      << "  design list | show NAME | save NAME --from FILE.json [--replace]\n"
      << "         delete NAME | export-tpl NAME --out FILE.tpl [--replace]\n"
      << "         import-tpl FILE.tpl [--name NAME] [--replace]\n"
      << "                  saved designs, as JSON and as template files\n"
      << "  export --design NAME --out DIR [options]\n"
      << "                  write a design for each icon as PNG, JPG, BMP, ICO or SVG\n"
      << "                  files (quillaron export --help)\n"
      << "\n"
      << "Options:\n"
      << "  --app-dir DIR   use DIR as the application folder instead of the\n"
      << "                  folder of the executable\n"
      << "  --help          show this help\n"
      << "  --version       show the version\n"
      << "\n"
      << "A value follows its option as the next word or after \"=\" (--app-dir=DIR).\n"
      << "Options a command does not know, and options given twice, are refused.\n";
}

// Runs `body` on a program started without a window; 1 when it cannot start.
int Started(const CommandLine& cmd, std::ostream& err, const std::function<int(AppContext&)>& body) {
  ScopedAppContext app(cmd.appDir ? *cmd.appDir : ExecutableFolder());
  app->ShowMessage = [&err](const std::string& text) { err << text << "\n"; };
  if (!StartWithoutWindow(*app)) return 1;
  ReportCorrected(err, app->Config->CorrectedSettings(), "the settings");
  return body(*app);
}

int Init(AppContext& app, std::ostream& out) {
  const auto count = [&](const char* sql) { return app.Cnn.Query(sql).Fields(0).AsLong(); };
  out << "Library: " << count("Select Count(*) From Images") << " icons, "
      << count("Select Count(*) From Styles") << " styles, " << count("Select Count(*) From Themes")
      << " themes\n";
  return 0;
}

}  // namespace

std::string WithReason(std::string text, const std::string& why) {
  while (!text.empty() && (text.back() == '.' || text.back() == ' ')) text.pop_back();
  return why.empty() ? text : text + ": " + why;
}

void ReportCorrected(std::ostream& err, int count, const std::string& what) {
  if (count <= 0) return;
  err << "quillaron: " << count << (count == 1 ? " value of " : " values of ") << what
      << (count == 1 ? " was" : " were") << " out of range and " << (count == 1 ? "is" : "are") << " used at "
      << (count == 1 ? "its limit" : "their limits") << "\n";
}

CommandLine ParseCommandLine(const std::vector<std::string>& args) {
  // Options of the program itself may stand anywhere; after the command,
  // those it does not know are the command's own.
  static constexpr OptionRule kKnown[] = {{"--app-dir", true}, {"--help", false}, {"--version", false}};
  CommandLine cmd;
  std::vector<std::string> rest;
  for (const std::string& a : args) {
    if (a == "-h")
      cmd.help = true;
    else
      rest.push_back(a);
  }
  CommandArgs read = ReadCommandArgs(rest, kKnown, rest.size(), UnknownOptions::PassAfterFirstWord);
  if (!read.error.empty()) {
    cmd.error = read.error;
    return cmd;
  }
  if (read.Has("--app-dir")) {
    if (read.Get("--app-dir").empty()) {
      cmd.error = "--app-dir needs a value";
      return cmd;
    }
    cmd.appDir = read.Get("--app-dir");
  }
  cmd.help = cmd.help || read.Has("--help");
  cmd.version = read.Has("--version");
  cmd.words = std::move(read.words);
  if (!cmd.words.empty() && cmd.words.front() == "help") {
    cmd.help = true;
    cmd.words.erase(cmd.words.begin());
  }
  // No command begins with "-": "-version" is a mistyped option.
  if (!cmd.words.empty() && cmd.words.front().size() > 1 && cmd.words.front()[0] == '-') {
    cmd.error = UnknownOption(cmd.words.front(), kKnown);
  }
  return cmd;
}

int RunCommand(const CommandLine& cmd, std::ostream& out, std::ostream& err) {
  if (!cmd.error.empty()) {
    err << "quillaron: " << cmd.error << "\n";
    PrintHelp(err);
    return 2;
  }
  if (cmd.version) {
    out << "Quillaron Design Studio " << QDS_VERSION << "\n";
    return 0;
  }
  if ((cmd.help && cmd.words.empty()) || cmd.words.empty()) {
    PrintHelp(out);
    return 0;
  }
  const std::string& what = cmd.words.front();
  try {
    if (what == "init") {
      // init takes nothing more; what follows it is a mistake, not passed over.
      const CommandArgs read = ReadCommandArgs({cmd.words.begin() + 1, cmd.words.end()}, {}, 0);
      if (!read.error.empty()) {
        err << "quillaron init: " << read.error << "\n";
        return 2;
      }
      if (cmd.help) {
        PrintHelp(out);
        return 0;
      }
      return Started(cmd, err, [&](AppContext& app) { return Init(app, out); });
    }
    if (what == "export") {
      const std::vector<std::string> rest(cmd.words.begin() + 1, cmd.words.end());
      if (cmd.help) {
        PrintExportHelp(out);
        return 0;
      }
      // A wrong command line is refused before the library is opened.
      if (!CheckExportArgs(rest, err)) return 2;
      const bool terminal = &out == &std::cout && ::isatty(STDOUT_FILENO);
      return Started(cmd, err,
                     [&](AppContext& app) { return RunExportCommand(app, rest, out, err, terminal); });
    }
    if (what == "design") {
      const std::vector<std::string> rest(cmd.words.begin() + 1, cmd.words.end());
      if (cmd.help) {
        PrintDesignHelp(out);
        return 0;
      }
      if (!CheckDesignArgs(rest, err)) return 2;
      return Started(cmd, err, [&](AppContext& app) { return RunDesignCommand(app, rest, out, err); });
    }
  } catch (...) {
    ReportError(CurrentError("quillaron " + what));
    return 1;
  }
  err << "quillaron: unknown command \"" << cmd.words.front() << "\"\n";
  PrintHelp(err);
  return 2;
}

}  // namespace qds
