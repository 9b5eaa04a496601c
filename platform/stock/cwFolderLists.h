#pragma once
// Lists of real folders and files: the folder list showing the way down to its folder and the folders in
// it, the file list the files of a folder that match a pattern.

#include <functional>
#include <string>
#include <vector>

#include "platform/stock/cwListBase.h"

namespace qds {

class cwDirList : public cwListBase {
 public:
  cwDirList();
  const std::string& Path() const { return path_; }
  // False, with the list as it was, when the folder cannot be read.
  bool setPath(const std::string& path);
  void Rescan();
  // The folder a row stands for, whole: a row shows only the last name.
  const std::string& RowFolder(int index) const { return targets_.at(index); }
  // The folder changed; also bubbled as "Change".
  std::function<void()> Change;

 protected:
  void Activated(int index) override;

 private:
  std::string path_;
  std::vector<std::string> targets_;  // the folder each row stands for
};

class cwFileList : public cwListBase {
 public:
  cwFileList() : cwListBase("cwFileList") {}
  const std::string& Path() const { return path_; }
  bool setPath(const std::string& path);
  // Wildcards separated by ';', matched without regard to case: "*.svg;*.png".
  std::string Pattern = "*";
  void Rescan();
  // The selected file's name, or empty.
  std::string FileName() const { return ListIndex() < 0 ? std::string() : List(ListIndex()); }
  // Also bubbled as "DblClick".
  std::function<void()> DblClick;

 protected:
  void Activated(int index) override;

 private:
  std::string path_;
};

// Whether `name` matches a wildcard of '*' and '?', ignoring case.
bool WildcardMatch(std::string_view pattern, std::string_view name);

}  // namespace qds
