#pragma once
// The process-wide cache of named pictures: interface icons, patterns,
// backgrounds and the rendered rows of lists. Adding under a key that is
// already there replaces its picture; a missing key reads as null, which
// every caller must cope with.

#include <string>
#include <string_view>

#include "platform/Bytes.h"
#include "platform/Drawing.h"
#include "platform/KeyedCollection.h"

namespace qds {

class SvgRenderer;

class ImageList {
 public:
  explicit ImageList(SvgRenderer& renderer) : renderer_(renderer) {}

  // A PNG or SVG file. Width and height 0 take the picture's own size (an
  // SVG without one comes out 256 by 256). False when the file is missing
  // or unreadable; nothing is added then.
  bool AddFromFile(const std::string& path, std::string_view key, int width = 0, int height = 0);
  // PNG or SVG bytes (plain or compressed), told apart by their content.
  bool AddFromBytes(const Bytes& bytes, std::string_view key, int width = 0, int height = 0);
  void AddSurface(std::string_view key, SurfacePtr surface);

  bool Exists(std::string_view key) const { return items_.Exists(key); }
  SurfacePtr Get(std::string_view key) const;  // null when absent
  void Remove(std::string_view key);
  int Count() const { return items_.Count(); }
  void Clear() { items_.Clear(); }

 private:
  SvgRenderer& renderer_;
  KeyedCollection<SurfacePtr> items_;
};

// What a theme tells the drawing side: its palette. The widget kit's theme
// implements it.
class VisualTheme {
 public:
  virtual ~VisualTheme() = default;
  virtual std::int64_t PaletteColor(int index) const = 0;
};

// The factory of pictures: surfaces, solid patterns, the image cache and the
// current theme.
class DrawingRoot {
 public:
  explicit DrawingRoot(SvgRenderer& renderer) : images_(renderer) {}

  SurfacePtr MakeSurface(int width, int height) const;
  ImageList& Images() { return images_; }
  const std::shared_ptr<VisualTheme>& Theme() const { return theme_; }
  void SetTheme(std::shared_ptr<VisualTheme> theme) { theme_ = std::move(theme); }

 private:
  ImageList images_;
  std::shared_ptr<VisualTheme> theme_;
};

}  // namespace qds
