#pragma once
// A keyed store of rendered pictures bounded by the memory they take. When a
// new picture would pass the bound the whole store is emptied rather than
// the oldest entry: entries are keyed by content and size, so a full store
// mostly holds pictures of a size nobody asks for any more (a zoom slider,
// an export at another size). Callers may bound the count as well.

#include <cstddef>
#include <string>
#include <unordered_map>

#include "platform/Drawing.h"

namespace qds {

class PictureCache {
 public:
  struct Entry {
    SurfacePtr Surface;
    int Pad = 0;  // the border a blurred picture grew by
  };

  explicit PictureCache(std::size_t maxBytes) : maxBytes_(maxBytes) {}

  // Null when the key is not there.
  const Entry* Find(const std::string& key) const;
  bool Exists(const std::string& key) const { return map_.count(key) != 0; }
  // Keeps the picture unless it alone is larger than the whole budget.
  void Add(const std::string& key, SurfacePtr surface, int pad = 0);
  void Clear();

  int Count() const { return static_cast<int>(map_.size()); }
  std::size_t Bytes() const { return bytes_; }
  std::size_t MaxBytes() const { return maxBytes_; }
  void SetMaxBytes(std::size_t maxBytes);

 private:
  std::unordered_map<std::string, Entry> map_;
  std::size_t bytes_ = 0;
  std::size_t maxBytes_;
};

}  // namespace qds
