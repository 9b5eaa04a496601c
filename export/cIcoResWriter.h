#pragma once
// Windows icon files from one picture. Every size is drawn directly from
// the source with the best filter. In a multi-size file the last size of
// the list is stored as PNG, whatever it is; the others are 32-bit bitmaps
// (colour rows bottom-up as stored, premultiplied) with a 1-bit mask of the
// fully transparent pixels.

#include <string>
#include <vector>

#include "platform/Bytes.h"
#include "platform/Drawing.h"

namespace qds {

class cIcoResWriter {
 public:
  // One PNG image at the surface's own size.
  static Bytes SimplePngIcoBytes(const SurfacePtr& surface);
  void SaveSurfaceToSimplePngIco(const SurfacePtr& surface, const std::string& fileName) const;
  // One image per size, in the order given. A size that is no number or
  // below 1 raises an AppError before anything is written. The sizes are
  // drawn on up to `threads` threads (0: one per core); the bytes are the
  // same whatever the number, and fewer threads than asked for only cost time.
  static Bytes AlphaIcoBytes(const SurfacePtr& surface, const std::vector<std::string>& sizes,
                             unsigned threads = 0);
  void SaveSurfaceToAlphaIco(const SurfacePtr& surface, const std::string& fileName,
                             const std::vector<std::string>& sizes) const;
  // Icon resources are a Windows executable's; this system has none.
  void WriteSurfaceAsResource(const SurfacePtr& surface, const std::string& fileName) const;
};

// "16,32,48,256" to its parts.
std::vector<std::string> SplitSizes(const std::string& list);

}  // namespace qds
