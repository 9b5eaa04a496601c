// The one executable: the studio, or a command of the headless command line.

#include <iostream>
#include <string>
#include <vector>

#include "cli/CommandLine.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  return qds::RunCommand(qds::ParseCommandLine(args), std::cout, std::cerr);
}
