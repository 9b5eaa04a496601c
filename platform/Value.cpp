#include "platform/Value.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "platform/Error.h"
#include "platform/KeyedCollection.h"
#include "platform/TextUtil.h"

namespace qds {

namespace {

[[noreturn]] void Mismatch(const std::string& what) {
  Raise(ErrNo::TypeMismatch, "Type mismatch: " + what, "Value");
}

bool ParseDouble(std::string_view s, double& out) {
  s = TrimBlanks(s);
  if (s.empty()) return false;
  if (s.front() == '+') s.remove_prefix(1);
  const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), out);
  return ec == std::errc() && end == s.data() + s.size() && std::isfinite(out);
}

}  // namespace

std::int64_t RoundHalfEven(double d) {
  if (!std::isfinite(d) || d >= 9.2233720368547758e18 || d < -9.2233720368547758e18) {
    Raise(ErrNo::Overflow, FormatDouble(d) + " is beyond the range of whole numbers", "Value");
  }
  return static_cast<std::int64_t>(std::nearbyint(d));  // default mode rounds to even
}

std::string FormatDouble(double d) {
  if (std::isnan(d)) return "NaN";
  if (std::isinf(d)) return d > 0 ? "Infinity" : "-Infinity";
  if (d == 0) return "0";
  char buf[64];
  const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, d);
  (void)ec;
  return std::string(buf, end);
}

std::int64_t Value::AsLong() const {
  switch (GetKind()) {
    case Kind::Empty:
      return 0;
    case Kind::Bool:
      return std::get<bool>(v_) ? -1 : 0;
    case Kind::Integer:
      return std::get<std::int64_t>(v_);
    case Kind::Double:
      return RoundHalfEven(std::get<double>(v_));
    case Kind::String: {
      const std::string_view s = TrimBlanks(std::get<std::string>(v_));
      std::int64_t n = 0;
      const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), n);
      if (ec == std::errc() && end == s.data() + s.size() && !s.empty()) return n;
      double d = 0;
      if (ParseDouble(s, d)) return RoundHalfEven(d);
      if (EqualsNoCase(s, "true")) return -1;
      if (EqualsNoCase(s, "false")) return 0;
      Mismatch("\"" + std::string(s) + "\" is not a number");
    }
    default:
      Mismatch("not a number");
  }
}

double Value::AsDouble() const {
  switch (GetKind()) {
    case Kind::Double:
      return std::get<double>(v_);
    case Kind::String: {
      double d = 0;
      if (ParseDouble(std::get<std::string>(v_), d)) return d;
      return static_cast<double>(AsLong());
    }
    default:
      return static_cast<double>(AsLong());
  }
}

bool Value::AsBool() const {
  switch (GetKind()) {
    case Kind::Bool:
      return std::get<bool>(v_);
    case Kind::Double:
      return std::get<double>(v_) != 0;
    default:
      return AsLong() != 0;
  }
}

std::string Value::AsString() const {
  switch (GetKind()) {
    case Kind::Empty:
      return {};
    case Kind::Bool:
      return std::get<bool>(v_) ? "True" : "False";
    case Kind::Integer:
      return std::to_string(std::get<std::int64_t>(v_));
    case Kind::Double:
      return FormatDouble(std::get<double>(v_));
    case Kind::String:
      return std::get<std::string>(v_);
    case Kind::Bytes:
      return ToString(std::get<qds::Bytes>(v_));
    case Kind::Collection:
      break;
  }
  Mismatch("a collection is not text");
}

Bytes Value::AsBytes() const {
  switch (GetKind()) {
    case Kind::Empty:
      return {};
    case Kind::Bytes:
      return std::get<qds::Bytes>(v_);
    case Kind::String:
      return ToBytes(std::get<std::string>(v_));
    default:
      Mismatch("not a byte array");
  }
}

CollectionPtr Value::AsCollection() const {
  if (GetKind() != Kind::Collection) Mismatch("not a collection");
  return std::get<CollectionPtr>(v_);
}

bool Value::operator==(const Value& other) const {
  if (GetKind() == Kind::Collection && other.GetKind() == Kind::Collection) {
    const CollectionPtr& a = std::get<CollectionPtr>(v_);
    const CollectionPtr& b = std::get<CollectionPtr>(other.v_);
    if (a == b) return true;
    return a && b && *a == *b;
  }
  return v_ == other.v_;
}

}  // namespace qds
