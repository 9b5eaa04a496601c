#include "platform/IniFile.h"

#include "platform/Bytes.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"

namespace qds {

namespace {

std::string Key(std::string_view section, std::string_view key) {
  return AsciiLower(TrimBlanks(section)) + '\n' + AsciiLower(TrimBlanks(key));
}

}  // namespace

IniFile IniFile::Load(const std::string& path) {
  if (!FileExists(path)) return IniFile();
  try {
    return FromText(ReadAllText(path));
  } catch (...) {
    return IniFile();
  }
}

IniFile IniFile::FromText(std::string_view text) {
  IniFile ini;
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  std::string section;
  while (!text.empty()) {
    const std::size_t eol = text.find('\n');
    std::string_view line = TrimBlanks(text.substr(0, eol));
    text = eol == std::string_view::npos ? std::string_view() : text.substr(eol + 1);
    if (line.empty() || line.front() == ';' || line.front() == '#') continue;
    if (line.front() == '[') {
      const std::size_t close = line.find(']');
      section =
          std::string(line.substr(1, close == std::string_view::npos ? std::string_view::npos : close - 1));
      continue;
    }
    const std::size_t eq = line.find('=');
    if (eq == std::string_view::npos) continue;
    std::string_view value = TrimBlanks(line.substr(eq + 1));
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
      value = value.substr(1, value.size() - 2);
    // The first of two equal keys counts, as with the system's own reader.
    ini.values_.emplace(Key(section, line.substr(0, eq)), std::string(value));
  }
  return ini;
}

bool IniFile::Has(std::string_view section, std::string_view key) const {
  return values_.count(Key(section, key)) > 0;
}

std::string IniFile::Get(std::string_view section, std::string_view key, const std::string& def) const {
  const auto it = values_.find(Key(section, key));
  return it == values_.end() ? def : it->second;
}

}  // namespace qds
