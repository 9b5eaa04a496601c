#include "platform/ImageList.h"

#include <cstring>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/SvgRenderer.h"

namespace qds {

namespace {

bool IsPng(const Bytes& b) {
  return b.size() >= 8 && std::memcmp(b.data(), "\x89PNG\r\n\x1a\n", 8) == 0;
}

}  // namespace

bool ImageList::AddFromFile(const std::string& path, std::string_view key, int width, int height) {
  if (!FileExists(path)) return false;
  try {
    return AddFromBytes(ReadAllBytes(path), key, width, height);
  } catch (const AppError&) {
    return false;
  }
}

bool ImageList::AddFromBytes(const Bytes& bytes, std::string_view key, int width, int height) {
  SurfacePtr picture;
  if (IsPng(bytes)) {
    try {
      picture = DrawingSurface::FromPngBytes(bytes);
    } catch (const AppError&) {
      return false;
    }
    if ((width > 0 && width != picture->Width()) || (height > 0 && height != picture->Height())) {
      picture = ResizeBest(picture, width > 0 ? width : picture->Width(), height > 0 ? height : picture->Height());
    }
  } else {
    const SvgHandlePtr doc = renderer_.Parse(bytes);
    if (!doc) return false;
    const int w = width > 0 ? width : (doc->Width() >= 1 ? static_cast<int>(doc->Width() + 0.5) : 256);
    const int h = height > 0 ? height : (doc->Height() >= 1 ? static_cast<int>(doc->Height() + 0.5) : 256);
    picture = DrawingSurface::Create(w, h);
    DrawingContext ctx(picture);
    if (!renderer_.Render(ctx, *doc, 0, 0, w, h)) return false;
  }
  AddSurface(key, picture);
  return true;
}

void ImageList::AddSurface(std::string_view key, SurfacePtr surface) {
  if (items_.Exists(key)) {
    items_.Replace(key, std::move(surface));
  } else {
    items_.Add(std::move(surface), key);
  }
}

SurfacePtr ImageList::Get(std::string_view key) const {
  const int i = items_.IndexByKey(key);
  return i < 0 ? nullptr : items_.Item(i);
}

void ImageList::Remove(std::string_view key) {
  if (items_.Exists(key)) items_.Remove(key);
}

SurfacePtr DrawingRoot::MakeSurface(int width, int height) const {
  return DrawingSurface::Create(width, height);
}

}  // namespace qds
