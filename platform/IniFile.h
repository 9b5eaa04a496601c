#pragma once
// A small reader of INI files ("[SVG]" then "RemoveClipPath=J"). Section and
// key names compare without regard to ASCII case, as they always have for
// such files; values are returned as written, without surrounding blanks.

#include <map>
#include <string>
#include <string_view>

namespace qds {

class IniFile {
 public:
  IniFile() = default;
  // A missing or unreadable file gives an empty reader, never an error.
  static IniFile Load(const std::string& path);
  static IniFile FromText(std::string_view text);

  bool Has(std::string_view section, std::string_view key) const;
  std::string Get(std::string_view section, std::string_view key, const std::string& def = {}) const;

 private:
  std::map<std::string, std::string> values_;  // "section\nkey", both lower case
};

}  // namespace qds
