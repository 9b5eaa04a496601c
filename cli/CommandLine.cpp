#include "cli/CommandLine.h"

#include <ostream>

#include "app/AppContext.h"
#include "app/modStartup.h"
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
      << "\n"
      << "Options:\n"
      << "  --app-dir DIR   use DIR as the application folder instead of the\n"
      << "                  folder of the executable\n"
      << "  --help          show this help\n"
      << "  --version       show the version\n";
}

int Init(const CommandLine& cmd, std::ostream& out, std::ostream& err) {
  ScopedAppContext app(cmd.appDir ? *cmd.appDir : ExecutableFolder());
  app->ShowMessage = [&err](const std::string& text) { err << text << "\n"; };
  if (!StartWithoutWindow(*app)) return 1;
  const auto count = [&](const char* sql) { return app->Cnn.Query(sql).Fields(0).AsLong(); };
  out << "Library: " << count("Select Count(*) From Images") << " icons, "
      << count("Select Count(*) From Styles") << " styles, " << count("Select Count(*) From Themes")
      << " themes\n";
  return 0;
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& args) {
  CommandLine cmd;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--app-dir") {
      if (i + 1 >= args.size()) {
        cmd.error = "--app-dir needs a folder";
        return cmd;
      }
      cmd.appDir = args[++i];
    } else if (a.rfind("--app-dir=", 0) == 0) {
      cmd.appDir = a.substr(10);
    } else if (a == "--help" || a == "-h" || (cmd.words.empty() && a == "help")) {
      cmd.help = true;
    } else if (a == "--version") {
      cmd.version = true;
    } else if (a.size() > 1 && a[0] == '-' && cmd.words.empty()) {
      cmd.error = "unknown option " + a;
      return cmd;
    } else {
      cmd.words.push_back(a);
    }
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
  if (cmd.help || cmd.words.empty()) {
    PrintHelp(out);
    return 0;
  }
  if (cmd.words.front() == "init") return Init(cmd, out, err);
  err << "quillaron: unknown command \"" << cmd.words.front() << "\"\n";
  PrintHelp(err);
  return 2;
}

}  // namespace qds
