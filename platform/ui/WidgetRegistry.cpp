#include "platform/ui/WidgetRegistry.h"

#include <map>

namespace qds {

namespace {

// Made on first use: classes join while static objects are being built,
// in an order no one chooses.
std::map<std::string, WidgetMaker>& Registry() {
  static std::map<std::string, WidgetMaker> registry;
  return registry;
}

}  // namespace

bool JoinWidgetRegistry(const std::string& className, WidgetMaker make) {
  Registry().emplace(className, make);
  return true;
}

std::unique_ptr<Widget> CreateWidget(const std::string& className) {
  const auto it = Registry().find(className);
  return it == Registry().end() ? nullptr : it->second();
}

std::vector<std::string> RegisteredWidgetClasses() {
  std::vector<std::string> names;
  for (const auto& [name, make] : Registry()) names.push_back(name);
  return names;
}

}  // namespace qds
