#pragma once
// A private folder for one test, removed with everything in it afterwards.
// Its name has a space and non-ASCII letters on purpose: every path the
// program builds must cope with them.

#include <cstdlib>
#include <filesystem>
#include <string>

class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "qds test Ördner XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
    path_ += '/';
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  // The folder, with a trailing "/".
  const std::string& Path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + name; }

 private:
  std::string path_;
};
