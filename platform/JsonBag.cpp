#include "platform/JsonBag.h"

#include <cmath>

#include "platform/Value.h"

namespace qds {

namespace {

// Deeper text is refused before parsing: writing or destroying a very deep
// tree recurses, and no settings string of ours nests more than a few levels.
constexpr int kMaxDepth = 256;

bool TooDeep(std::string_view text) {
  int depth = 0;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (inString) {
      if (c == '\\') {
        ++i;
      } else if (c == '"') {
        inString = false;
      }
    } else if (c == '"') {
      inString = true;
    } else if (c == '{' || c == '[') {
      if (++depth > kMaxDepth) return true;
    } else if (c == '}' || c == ']') {
      --depth;
    }
  }
  return false;
}

bool IsWhole(double d) {
  return std::isfinite(d) && std::trunc(d) == d && std::fabs(d) < 9007199254740992.0;
}

// Turns every whole-valued double into an integer so that it is written
// without a point.
void Normalise(JsonBag::Json& j) {
  if (j.is_number_float()) {
    const double d = j.get<double>();
    if (IsWhole(d)) j = static_cast<std::int64_t>(d);
  } else if (j.is_structured()) {
    for (auto& item : j) Normalise(item);
  }
}

Value ToValue(const JsonBag::Json& j) {
  if (j.is_boolean()) return Value(j.get<bool>());
  if (j.is_number_integer()) return Value(static_cast<long long>(j.get<std::int64_t>()));
  if (j.is_number_unsigned()) return Value(static_cast<double>(j.get<std::uint64_t>()));
  if (j.is_number_float()) return Value(j.get<double>());
  if (j.is_string()) return Value(j.get<std::string>());
  return Value();
}

}  // namespace

bool JsonBag::Parse(std::string_view text) {
  j_ = Json::object();
  error_.clear();
  if (TooDeep(text)) {
    error_ = "nested more than " + std::to_string(kMaxDepth) + " levels deep";
    return false;
  }
  Json parsed;
  try {
    parsed = Json::parse(text.begin(), text.end());
  } catch (const Json::exception& e) {
    // The parser's own words say where and what: "parse error at line 3,
    // column 7: syntax error while parsing object - unexpected '}'; ...".
    std::string why = e.what();
    const std::size_t tag = why.find("] ");
    if (why.rfind("[json.exception.", 0) == 0 && tag != std::string::npos) why.erase(0, tag + 2);
    if (why.rfind("parse error at ", 0) == 0) why.erase(0, 15);
    error_ = "not valid JSON at " + why;
    return false;
  }
  if (!parsed.is_object()) {
    error_ = std::string("not a JSON object but ") + (parsed.is_array() ? "an array" : "a single value");
    return false;
  }
  j_ = std::move(parsed);
  return true;
}

JsonBag JsonBag::FromText(std::string_view text, bool* ok) {
  JsonBag bag;
  const bool parsed = bag.Parse(text);
  if (ok) *ok = parsed;
  return bag;
}

std::string JsonBag::ToString(int indent) const {
  Json copy = j_;
  Normalise(copy);
  return copy.dump(indent, ' ', false, Json::error_handler_t::replace);
}

const JsonBag::Json* JsonBag::Find(std::string_view key) const {
  const auto it = j_.find(key);
  return it == j_.end() ? nullptr : &*it;
}

bool JsonBag::Has(std::string_view key) const {
  return Find(key) != nullptr;
}

void JsonBag::Remove(std::string_view key) {
  j_.erase(std::string(key));
}

std::vector<std::string> JsonBag::Keys() const {
  std::vector<std::string> keys;
  for (const auto& [k, v] : j_.items()) keys.push_back(k);
  return keys;
}

double JsonBag::GetDouble(std::string_view key, double def) const {
  const Json* j = Find(key);
  if (!j || j->is_null() || j->is_structured()) return def;
  try {
    return ToValue(*j).AsDouble();
  } catch (...) {
    return def;
  }
}

std::int64_t JsonBag::GetLong(std::string_view key, std::int64_t def) const {
  const Json* j = Find(key);
  if (!j || j->is_null() || j->is_structured()) return def;
  try {
    return ToValue(*j).AsLong();
  } catch (...) {
    return def;
  }
}

bool JsonBag::GetBool(std::string_view key, bool def) const {
  const Json* j = Find(key);
  if (!j || j->is_null() || j->is_structured()) return def;
  try {
    return ToValue(*j).AsBool();
  } catch (...) {
    return def;
  }
}

std::string JsonBag::GetString(std::string_view key, const std::string& def) const {
  const Json* j = Find(key);
  if (!j || j->is_null()) return def;
  if (j->is_structured()) return j->dump(-1, ' ', false, Json::error_handler_t::replace);
  return ToValue(*j).AsString();
}

JsonBag JsonBag::GetObject(std::string_view key) const {
  JsonBag bag;
  const Json* j = Find(key);
  if (j && j->is_object()) bag.j_ = *j;
  return bag;
}

void JsonBag::Set(std::string_view key, double v) {
  if (IsWhole(v)) {
    j_[std::string(key)] = static_cast<std::int64_t>(v);
  } else {
    j_[std::string(key)] = v;
  }
}

void JsonBag::Set(std::string_view key, long long v) {
  j_[std::string(key)] = static_cast<std::int64_t>(v);
}

void JsonBag::Set(std::string_view key, bool v) {
  j_[std::string(key)] = v;
}

void JsonBag::Set(std::string_view key, const std::string& v) {
  j_[std::string(key)] = v;
}

void JsonBag::Set(std::string_view key, const JsonBag& v) {
  j_[std::string(key)] = v.j_;
}

}  // namespace qds
