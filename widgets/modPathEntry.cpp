#include "widgets/modPathEntry.h"

#include <cstdlib>

#include "app/AppContext.h"
#include "app/modTexts.h"

namespace qds {

std::string ExpandTypedPath(const std::string& typed, const std::string& base) {
  std::string path = typed;
  if (path == "~" || path.rfind("~/", 0) == 0) {
    const char* home = std::getenv("HOME");
    path = std::string(home ? home : "") + path.substr(1);
  }
  if (path.empty() || path[0] != '/') path = JoinFolder(base, path);
  return path;
}

std::string JoinFolder(const std::string& folder, const std::string& name) {
  if (folder.empty() || folder.back() == '/') return folder + name;
  return folder + "/" + name;
}

std::string DialogText(const std::string& key, const std::string& fallback) {
  std::string text = HasApp() ? LanguageText(key).Text : std::string();
  return text.empty() ? fallback : text;
}

}  // namespace qds
