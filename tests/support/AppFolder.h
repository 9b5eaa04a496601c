#pragma once
// A private application folder as a new installation has it: a fresh copy
// of the shipped databases, the settings file and the logo.

#include <filesystem>
#include <string>

#include "tests/support/TempDir.h"

class AppFolder : public TempDir {
 public:
  AppFolder() {
    namespace fs = std::filesystem;
    const fs::path root(Path());
    for (const char* sub : {"Database", "Dat", "DocAndImages", "NewIconsDatabase"})
      fs::create_directories(root / sub);
    fs::copy_file(fs::path(QDS_SHIPPED_DIR) / "Library.db", root / "Database/Library.db");
    fs::copy_file(fs::path(QDS_SHIPPED_DIR) / "Resources.db", root / "Database/Resources.db");
    fs::copy_file(fs::path(QDS_SOURCE_DATA) / "Quillaron.ini", root / "Dat/Quillaron.ini");
    fs::copy_file(fs::path(QDS_SOURCE_DATA) / "Quillaron.svg", root / "DocAndImages/Quillaron.svg");
  }
  // The folder without its trailing "/", as the program keeps it.
  std::string Folder() const { return Path().substr(0, Path().size() - 1); }
  std::string Library() const { return Path() + "Database/Library.db"; }
};
