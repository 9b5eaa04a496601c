#pragma once
// The lists of the demonstration form: a plain list of 100,000 rows and a
// grid of every icon of the library, both with ranges, Ctrl and Shift, and
// drag. What they do is told in a line for the status bar.

#include <functional>
#include <string>
#include <vector>

#include "platform/Bytes.h"
#include "platform/ui/Widget.h"

namespace qds {

class cwVListNew;

class DemoListsPanel : public Widget {
 public:
  static constexpr int kRows = 100000;
  static constexpr int kCell = 48;

  DemoListsPanel();
  // A line for the status bar: a drag, a drop, a double click, Delete.
  std::function<void(const std::string& line)> Tell;

 private:
  struct Icon {
    int id = 0;
    std::string name;
    Bytes svg;
  };
  // Every icon of the open library, by name; none without one.
  void LoadIcons();
  void Say(const std::string& line) const {
    if (Tell) Tell(line);
  }
  std::string Count(const cwVListNew& list) const;

  cwVListNew* rows_ = nullptr;
  cwVListNew* icons_ = nullptr;
  std::vector<Icon> library_;
};

}  // namespace qds
