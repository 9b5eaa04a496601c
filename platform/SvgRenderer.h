#pragma once
// Parses SVG documents (plain, or gzip-compressed as .svgz) and renders them
// into a context. Parsed documents are cached by the hash of their bytes, so
// drawing the same icon again costs only the rendering; documents that fail
// to parse are remembered too, and never parsed twice.

#include <list>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/Bytes.h"

typedef struct _RsvgHandle RsvgHandle;

namespace qds {

class DrawingContext;

// One parsed document.
class SvgHandle {
 public:
  explicit SvgHandle(RsvgHandle* h);
  ~SvgHandle();
  SvgHandle(const SvgHandle&) = delete;
  SvgHandle& operator=(const SvgHandle&) = delete;

  // The document's own size in pixels: its width and height, else its view
  // box, else 0 by 0.
  double Width() const { return width_; }
  double Height() const { return height_; }
  RsvgHandle* Native() const { return h_; }

 private:
  RsvgHandle* h_;
  double width_ = 0, height_ = 0;
};

using SvgHandlePtr = std::shared_ptr<const SvgHandle>;

class SvgRenderer {
 public:
  explicit SvgRenderer(std::size_t maxCachedDocuments = 512);
  ~SvgRenderer();

  // Null, with the reason in `error`, for bytes that are no usable SVG.
  SvgHandlePtr Parse(const Bytes& bytes, std::string* error = nullptr);

  // Renders into the box (x, y, w, h), keeping the document's aspect ratio,
  // turned by `angle` degrees about the box's centre. False when the
  // document cannot be drawn; nothing is drawn then and nothing is thrown.
  bool Render(DrawingContext& ctx, const SvgHandle& doc, double x, double y, double w, double h,
              double angle = 0) const;
  bool Render(DrawingContext& ctx, const Bytes& bytes, double x, double y, double w, double h,
              double angle = 0);

  // Draws the document into the box like Render, through a quick path for
  // the plain documents cairo writes (groups of paths in solid colours), and
  // through librsvg for everything else. For pictures on image surfaces; the
  // result is the same pixels either way. Plain documents are read anew each
  // time and never enter the cache.
  bool RenderPicture(DrawingContext& ctx, const Bytes& bytes, double x, double y, double w, double h);

  std::size_t CachedDocuments() const { return cache_.size(); }
  void ClearCache();

 private:
  struct Entry {
    SvgHandlePtr doc;  // null for a document that failed
    std::string error;
    std::list<std::string>::iterator age;
  };
  std::size_t max_;
  std::unordered_map<std::string, Entry> cache_;
  std::list<std::string> ages_;  // most recently used first
};

}  // namespace qds
