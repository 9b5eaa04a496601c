#pragma once
// One loosely typed value: what a collection item, a recordset field or a
// settings entry holds. Conversions follow the forgiving rules users of the
// old runtime expect: numbers from text, text from numbers, -1 for true.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "platform/Bytes.h"

namespace qds {

template <class T>
class KeyedCollection;
class Value;
using Collection = KeyedCollection<Value>;
using CollectionPtr = std::shared_ptr<Collection>;

class Value {
 public:
  // The order of the alternatives is the Kind; it is also stored in bytes.
  enum class Kind { Empty = 0, Bool, Integer, Double, String, Bytes, Collection };

  Value() = default;
  Value(bool v) : v_(v) {}
  Value(int v) : v_(std::int64_t{v}) {}
  Value(unsigned v) : v_(std::int64_t{v}) {}
  Value(long v) : v_(std::int64_t{v}) {}
  Value(long long v) : v_(std::int64_t{v}) {}
  Value(unsigned long v) : v_(static_cast<std::int64_t>(v)) {}
  Value(double v) : v_(v) {}
  Value(const char* v) : v_(std::string(v)) {}
  Value(std::string_view v) : v_(std::string(v)) {}
  Value(std::string v) : v_(std::move(v)) {}
  Value(qds::Bytes v) : v_(std::move(v)) {}
  Value(CollectionPtr v) : v_(std::move(v)) {}

  Kind GetKind() const { return static_cast<Kind>(v_.index()); }
  bool IsEmpty() const { return GetKind() == Kind::Empty; }
  bool IsNumber() const { return GetKind() == Kind::Integer || GetKind() == Kind::Double; }

  // Conversions. Empty converts to 0, false, "" and no bytes. A value that
  // cannot be converted (text that is no number, a collection as text)
  // raises a type mismatch.
  std::int64_t AsLong() const;  // doubles round half to even
  double AsDouble() const;
  bool AsBool() const;  // numbers: not 0; text: "true"/"false" or a number
  std::string AsString() const;
  qds::Bytes AsBytes() const;  // text gives its UTF-8 bytes
  CollectionPtr AsCollection() const;

  // Direct access for code that has checked the kind.
  template <class T>
  const T& Get() const {
    return std::get<T>(v_);
  }

  bool operator==(const Value& other) const;

 private:
  std::variant<std::monostate, bool, std::int64_t, double, std::string, qds::Bytes, CollectionPtr> v_;
};

// Shortest text that reads back as the same double; whole values have no point.
std::string FormatDouble(double d);

// Round half to even, as the old runtime's integer conversion does.
std::int64_t RoundHalfEven(double d);

}  // namespace qds
