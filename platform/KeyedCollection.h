#pragma once
// An ordered collection whose items may carry string keys: the layer stack,
// the icon lists and every cache of the program are one of these.
//
// Indexes are 0-based. Keys are compared without regard to ASCII case unless
// the collection is made with KeyCompare::Binary; an empty key means "no key".
// In the default mode a key may appear once; KeyMode::AllowDuplicates admits
// equal keys, and a lookup by key then finds the first of them.

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/Error.h"
#include "platform/TextUtil.h"

namespace qds {

enum class KeyMode { Unique, AllowDuplicates };
enum class KeyCompare { Text, Binary };

template <class T>
class KeyedCollection {
 public:
  struct Entry {
    std::string Key;  // empty: the item has no key
    T Item;
  };

  explicit KeyedCollection(KeyMode mode = KeyMode::Unique, KeyCompare compare = KeyCompare::Text)
      : mode_(mode), compare_(compare) {}

  KeyMode Mode() const { return mode_; }
  KeyCompare Compare() const { return compare_; }
  int Count() const { return static_cast<int>(entries_.size()); }
  bool Empty() const { return entries_.empty(); }

  // Appends.
  void Add(T item, std::string_view key = {}) { InsertAt(Count(), std::move(item), key); }
  // Inserts before the item at `before`; -1 or an index past the end appends.
  void AddBefore(T item, std::string_view key, int before) {
    InsertAt(before < 0 || before >= Count() ? Count() : before, std::move(item), key);
  }
  // Inserts after the item at `after`; an index past the end appends, one
  // below 0 puts the item first.
  void AddAfter(T item, std::string_view key, int after) {
    const int at = after < 0 ? 0 : (after >= Count() ? Count() : after + 1);
    InsertAt(at, std::move(item), key);
  }

  T& Item(int index) { return entries_[CheckIndex(index)].Item; }
  const T& Item(int index) const { return entries_[CheckIndex(index)].Item; }
  T& Item(std::string_view key) { return entries_[CheckKey(key)].Item; }
  const T& Item(std::string_view key) const { return entries_[CheckKey(key)].Item; }

  const std::string& KeyByIndex(int index) const { return entries_[CheckIndex(index)].Key; }
  // -1 when no item has the key.
  int IndexByKey(std::string_view key) const { return Find(key); }
  bool Exists(std::string_view key) const { return Find(key) >= 0; }

  void Remove(std::string_view key) { RemoveAt(CheckKey(key)); }
  void RemoveAt(int index) {
    entries_.erase(entries_.begin() + CheckIndex(index));
    indexValid_ = false;
  }
  void Clear() {
    entries_.clear();
    index_.clear();
    indexValid_ = true;
  }
  // Replaces the item of an existing key in place; its position stays.
  void Replace(std::string_view key, T item) { entries_[CheckKey(key)].Item = std::move(item); }

  auto begin() { return entries_.begin(); }
  auto end() { return entries_.end(); }
  auto begin() const { return entries_.begin(); }
  auto end() const { return entries_.end(); }

  bool operator==(const KeyedCollection& other) const {
    if (Count() != other.Count()) return false;
    for (int i = 0; i < Count(); ++i) {
      if (entries_[i].Key != other.entries_[i].Key || !(entries_[i].Item == other.entries_[i].Item)) {
        return false;
      }
    }
    return true;
  }

 private:
  std::string Fold(std::string_view key) const {
    return compare_ == KeyCompare::Text ? AsciiLower(key) : std::string(key);
  }

  // The key index maps a folded key to its first position. Appends keep it
  // current; inserts and removals in the middle only mark it stale, and the
  // next lookup rebuilds it, so bulk edits cost one rebuild.
  void RebuildIndex() const {
    index_.clear();
    for (int i = 0; i < Count(); ++i) {
      if (!entries_[i].Key.empty()) index_.emplace(Fold(entries_[i].Key), i);
    }
    indexValid_ = true;
  }

  int Find(std::string_view key) const {
    if (key.empty()) return -1;
    if (!indexValid_) RebuildIndex();
    const auto it = index_.find(Fold(key));
    return it == index_.end() ? -1 : it->second;
  }

  int CheckIndex(int index) const {
    if (index < 0 || index >= Count()) {
      Raise(ErrNo::OutOfRange,
            "Subscript out of range: index " + std::to_string(index) + " of " + std::to_string(Count()),
            "KeyedCollection");
    }
    return index;
  }

  int CheckKey(std::string_view key) const {
    const int i = Find(key);
    if (i < 0) {
      Raise(ErrNo::InvalidArgument, "No item has the key \"" + std::string(key) + "\"", "KeyedCollection");
    }
    return i;
  }

  void InsertAt(int at, T item, std::string_view key) {
    if (!key.empty() && mode_ == KeyMode::Unique && Find(key) >= 0) {
      Raise(ErrNo::DuplicateKey,
            "This key is already associated with an element of this collection: \"" + std::string(key) + "\"",
            "KeyedCollection");
    }
    const bool append = at == Count();
    entries_.insert(entries_.begin() + at, Entry{std::string(key), std::move(item)});
    if (!append) {
      indexValid_ = false;
    } else if (indexValid_ && !key.empty()) {
      index_.emplace(Fold(key), at);  // keeps an earlier equal key first
    }
  }

  KeyMode mode_;
  KeyCompare compare_;
  std::vector<Entry> entries_;
  mutable std::unordered_map<std::string, int> index_;
  mutable bool indexValid_ = true;
};

}  // namespace qds
