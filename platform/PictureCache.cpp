#include "platform/PictureCache.h"

#include "platform/DrawingSurface.h"

namespace qds {

namespace {

std::size_t SizeOf(const SurfacePtr& s) {
  return s ? static_cast<std::size_t>(s->Width()) * static_cast<std::size_t>(s->Height()) * 4 : 0;
}

}  // namespace

const PictureCache::Entry* PictureCache::Find(const std::string& key) const {
  const auto it = map_.find(key);
  return it == map_.end() ? nullptr : &it->second;
}

void PictureCache::Add(const std::string& key, SurfacePtr surface, int pad) {
  const std::size_t size = SizeOf(surface);
  if (size > maxBytes_) return;
  const auto old = map_.find(key);
  if (old != map_.end()) {
    bytes_ -= SizeOf(old->second.Surface);
    map_.erase(old);
  }
  if (bytes_ + size > maxBytes_) Clear();
  map_.emplace(key, Entry{std::move(surface), pad});
  bytes_ += size;
}

void PictureCache::Clear() {
  map_.clear();
  bytes_ = 0;
}

void PictureCache::SetMaxBytes(std::size_t maxBytes) {
  maxBytes_ = maxBytes;
  if (bytes_ > maxBytes_) Clear();
}

}  // namespace qds
