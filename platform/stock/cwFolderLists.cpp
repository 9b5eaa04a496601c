#include "platform/stock/cwFolderLists.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "platform/ui/WidgetRegistry.h"

namespace qds {

namespace fs = std::filesystem;

namespace {

bool LessIgnoringCase(const std::string& a, const std::string& b) {
  return std::lexicographical_compare(
      a.begin(), a.end(), b.begin(), b.end(),
      [](unsigned char x, unsigned char y) { return std::tolower(x) < std::tolower(y); });
}

// The entries of a folder, folders or files, sorted; false when it cannot be read.
bool ReadFolder(const fs::path& folder, bool folders, std::vector<std::string>& names) {
  std::error_code ec;
  fs::directory_iterator it(folder, fs::directory_options::skip_permission_denied, ec);
  if (ec) return false;
  for (; it != fs::directory_iterator(); it.increment(ec)) {
    if (ec) return false;
    const std::string name = it->path().filename().string();
    if (name.empty() || name[0] == '.') continue;  // hidden, as the desktop hides them
    std::error_code typeError;
    if (folders ? it->is_directory(typeError) : it->is_regular_file(typeError)) names.push_back(name);
  }
  std::sort(names.begin(), names.end(), LessIgnoringCase);
  return true;
}

}  // namespace

bool WildcardMatch(std::string_view pattern, std::string_view name) {
  // Greedy matching with one remembered star: linear for any pattern.
  size_t p = 0, n = 0, star = std::string_view::npos, resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == '?' || std::tolower(static_cast<unsigned char>(pattern[p])) ==
                                                        std::tolower(static_cast<unsigned char>(name[n])))) {
      ++p, ++n;
    } else if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

cwDirList::cwDirList() : cwListBase("cwDirList") {
  std::error_code ec;
  setPath(fs::current_path(ec).string());
}

bool cwDirList::setPath(const std::string& path) {
  std::error_code ec;
  const fs::path folder = fs::weakly_canonical(fs::absolute(path, ec), ec);
  std::vector<std::string> inside;
  if (ec || !fs::is_directory(folder, ec) || !ReadFolder(folder, true, inside)) return false;

  // The way down from the root, then what the folder holds.
  std::vector<fs::path> chain;
  for (fs::path p = folder; !p.empty(); p = p.parent_path()) {
    chain.insert(chain.begin(), p);
    if (p == p.root_path()) break;
  }
  std::vector<Row> rows;
  targets_.clear();
  for (size_t i = 0; i < chain.size(); ++i) {
    const std::string name =
        chain[i] == chain[i].root_path() ? chain[i].string() : chain[i].filename().string();
    rows.push_back({name, static_cast<int>(i), true});
    targets_.push_back(chain[i].string());
  }
  const int selected = static_cast<int>(rows.size()) - 1;
  for (const std::string& name : inside) {
    rows.push_back({name, static_cast<int>(chain.size()), true});
    targets_.push_back((folder / name).string());
  }
  const bool changed = folder.string() != path_;
  path_ = folder.string();
  SetRows(std::move(rows), selected);
  if (changed) {
    RaiseEvent(Change, "Change");
  }
  return true;
}

void cwDirList::Rescan() {
  setPath(path_);
}

void cwDirList::Activated(int index) {
  setPath(targets_.at(index));
}

bool cwFileList::setPath(const std::string& path) {
  std::error_code ec;
  if (!fs::is_directory(path, ec)) return false;
  path_ = path;
  Rescan();
  return true;
}

void cwFileList::Rescan() {
  const std::string keep = FileName();
  std::vector<std::string> names;
  ReadFolder(path_, false, names);
  std::vector<std::string> patterns;
  for (size_t start = 0; start <= Pattern.size();) {
    const size_t end = std::min(Pattern.find(';', start), Pattern.size());
    if (end > start) patterns.push_back(Pattern.substr(start, end - start));
    start = end + 1;
  }
  std::vector<Row> rows;
  int selected = -1;
  for (const std::string& name : names) {
    if (std::none_of(patterns.begin(), patterns.end(),
                     [&](const std::string& p) { return WildcardMatch(p, name); })) {
      continue;
    }
    if (name == keep) selected = static_cast<int>(rows.size());
    rows.push_back({name, 0, false});
  }
  SetRows(std::move(rows), selected);
}

void cwFileList::Activated(int) {
  RaiseEvent(DblClick, "DblClick");
}

QDS_JOIN_WIDGET_REGISTRY(cwDirList);
QDS_JOIN_WIDGET_REGISTRY(cwFileList);

}  // namespace qds
