#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace qds {

struct AppContext;

// quillaron design list | show NAME | save NAME --from FILE.json [--replace]
//                | delete NAME | export-tpl NAME --out FILE.tpl [--replace]
//                | import-tpl FILE.tpl [--name NAME] [--replace]
// `args` are the words after "design". Returns the exit code.
int RunDesignCommand(AppContext& app, const std::vector<std::string>& args, std::ostream& out,
                     std::ostream& err);
void PrintDesignHelp(std::ostream& out);
// Reads the words after "design" against what its sub-command takes, without
// the library; false when they are wrong, after telling `err` why.
bool CheckDesignArgs(const std::vector<std::string>& args, std::ostream& err);

}  // namespace qds
