#pragma once
// Small text helpers shared by the platform. Case folding is ASCII only:
// keys, field names, file patterns and settings names are ASCII, and folding
// other letters would make lookups depend on the locale.

#include <string>
#include <string_view>

namespace qds {

inline char AsciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string AsciiLower(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = AsciiLower(c);
  return out;
}

inline bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
  }
  return true;
}

// Orders names the way people read lists: without regard to case, then
// by bytes so that the order is total.
inline bool LessNoCase(const std::string& a, const std::string& b) {
  const std::string la = AsciiLower(a), lb = AsciiLower(b);
  return la != lb ? la < lb : a < b;
}

// Without surrounding blanks, tabs and carriage returns.
inline std::string_view TrimBlanks(std::string_view s) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  while (!s.empty() && blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && blank(s.back())) s.remove_suffix(1);
  return s;
}

}  // namespace qds
