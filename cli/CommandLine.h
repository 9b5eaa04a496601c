#pragma once
// The headless command line: `quillaron COMMAND ...` runs without a window.

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace qds {

struct CommandLine {
  std::optional<std::string> appDir;  // --app-dir DIR
  std::vector<std::string> words;     // the command and its arguments
  bool help = false;
  bool version = false;
  std::string error;  // set when the arguments cannot be read
};

CommandLine ParseCommandLine(const std::vector<std::string>& args);

// Runs a parsed command; returns the process exit code (0 success, 1 the
// command failed, 2 the command line was wrong).
int RunCommand(const CommandLine& cmd, std::ostream& out, std::ostream& err);

// Says how many values of `what` (a design, the settings) were out of their
// limits and are used at them instead; nothing when there were none.
// A message of the Texts table followed by its reason: "Invalid file: line 2 ...".
std::string WithReason(std::string text, const std::string& why);

void ReportCorrected(std::ostream& err, int count, const std::string& what);

}  // namespace qds
