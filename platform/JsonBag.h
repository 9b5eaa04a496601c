#pragma once
// A settings bag: one JSON object whose members keep the order in which they
// were first assigned. Layer settings, tool presets and the application
// settings are all stored as the text of one of these.
//
// Whole-valued numbers are written without a point ({"Pos":5,"Distance":4}),
// whatever way they were set or read. Text that is not a JSON object is
// reported by Parse's result, never thrown through the caller.

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace qds {

class JsonBag {
 public:
  using Json = nlohmann::ordered_json;

  JsonBag() : j_(Json::object()) {}

  // Replaces the content with the parse of `text`. On failure the bag is
  // left empty and LastError() says why, for a message that names the text:
  // "not valid JSON at line 2, column 5: syntax error ...", "not a JSON
  // object but an array".
  bool Parse(std::string_view text);
  static JsonBag FromText(std::string_view text, bool* ok = nullptr);
  const std::string& LastError() const { return error_; }

  // Compact, or indented by `indent` spaces for people to read.
  std::string ToString(int indent = -1) const;

  int Count() const { return static_cast<int>(j_.size()); }
  bool Has(std::string_view key) const;
  void Remove(std::string_view key);
  void Clear() { j_ = Json::object(); }
  std::vector<std::string> Keys() const;

  // Getters convert what they find the way the old runtime converted
  // variants (text "5" reads as 5, true as -1); a missing key, null or a
  // value that cannot be converted gives the default.
  double GetDouble(std::string_view key, double def = 0) const;
  std::int64_t GetLong(std::string_view key, std::int64_t def = 0) const;
  bool GetBool(std::string_view key, bool def = false) const;
  std::string GetString(std::string_view key, const std::string& def = {}) const;
  JsonBag GetObject(std::string_view key) const;  // empty when absent or no object

  void Set(std::string_view key, double v);
  void Set(std::string_view key, int v) { Set(key, static_cast<long long>(v)); }
  void Set(std::string_view key, long v) { Set(key, static_cast<long long>(v)); }
  void Set(std::string_view key, long long v);
  void Set(std::string_view key, bool v);
  void Set(std::string_view key, const char* v) { Set(key, std::string(v)); }
  void Set(std::string_view key, std::string_view v) { Set(key, std::string(v)); }
  void Set(std::string_view key, const std::string& v);
  void Set(std::string_view key, const JsonBag& v);

  Json& Raw() { return j_; }
  const Json& Raw() const { return j_; }

  bool operator==(const JsonBag& other) const { return ToString() == other.ToString(); }

 private:
  const Json* Find(std::string_view key) const;

  Json j_;
  std::string error_;
};

}  // namespace qds
