#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace qds {

struct AppContext;

// quillaron export --design NAME | --design-file FILE.json  --out DIR ...
// `args` are the words after "export"; `terminal` shows a progress bar.
int RunExportCommand(AppContext& app, const std::vector<std::string>& args, std::ostream& out,
                     std::ostream& err, bool terminal);
void PrintExportHelp(std::ostream& out);
// Reads the words after "export" against the options it knows, without the
// library; false when they are wrong, after telling `err` why.
bool CheckExportArgs(const std::vector<std::string>& args, std::ostream& err);

}  // namespace qds
