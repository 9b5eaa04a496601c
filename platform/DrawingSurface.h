#pragma once
// A picture to draw on: a 32-bit ARGB pixel surface (premultiplied alpha),
// or a vector surface that writes an SVG document.

#include <cstdint>
#include <string>
#include <utility>

#include "platform/Bytes.h"
#include "platform/Drawing.h"

typedef struct _cairo_surface cairo_surface_t;

namespace qds {

// Direct access to the pixels of an image surface, without a copy. Rows are
// Stride() bytes apart; a pixel is 4 bytes B, G, R, A in memory, or one
// native 32-bit integer 0xAARRGGBB (negative when alpha has its top bit).
// Drawing done before the view was taken is visible in it; changes made
// through it are handed back to the surface when the view goes.
class PixelView {
 public:
  ~PixelView();
  PixelView(const PixelView&) = delete;
  PixelView& operator=(const PixelView&) = delete;

  std::uint8_t* Bytes() const { return data_; }
  std::int32_t* Longs() const { return reinterpret_cast<std::int32_t*>(data_); }
  int Width() const { return width_; }
  int Height() const { return height_; }
  int Stride() const { return stride_; }
  std::int32_t At(int x, int y) const { return Longs()[y * (stride_ / 4) + x]; }

 private:
  friend class DrawingSurface;
  PixelView(cairo_surface_t* s);
  cairo_surface_t* s_;
  std::uint8_t* data_;
  int width_, height_, stride_;
};

class DrawingSurface {
 public:
  // Image surfaces start fully transparent. Sizes below 1 are made 1.
  static SurfacePtr Create(int width, int height, SurfaceKind kind = SurfaceKind::Image);
  // Raise AppError(InvalidData) for bytes that are not a readable PNG.
  static SurfacePtr FromPngBytes(const qds::Bytes& png);
  static SurfacePtr FromPngFile(const std::string& path);

  ~DrawingSurface();
  DrawingSurface(const DrawingSurface&) = delete;
  DrawingSurface& operator=(const DrawingSurface&) = delete;

  int Width() const { return width_; }
  int Height() const { return height_; }
  SurfaceKind Kind() const { return kind_; }

  // A new surface of the same kind of target with colour and alpha content.
  SurfacePtr CreateSimilar(int width, int height) const;
  // An image surface with the same pixels, to change or hand to another thread.
  SurfacePtr Copy() const;

  // Image surfaces only.
  PixelView Pixels();
  qds::Bytes ToPngBytes() const;  // 8-bit RGBA, alpha kept
  // JPEG and BMP have no alpha: pixels are written as they would show over
  // black, so fill the background first. Both write atomically.
  qds::Bytes ToJpegBytes(int quality) const;  // quality 10..100
  void WriteJpeg(const std::string& path, int quality) const;
  qds::Bytes ToBmpBytes() const;  // 24-bit, bottom-up rows
  void WriteBmp(const std::string& path) const;
  void WritePng(const std::string& path) const;

  // Blurs a copy. The result is larger by `pad` on every side, so that the
  // blur can spread beyond the picture's edge. Three passes of a box of
  // width 2h+1 in each direction, h = radius/3 rounded and at least 1, on
  // premultiplied pixels: the spread is exactly pad = 3h pixels each way and
  // the shape is close to a Gaussian of sigma = sqrt(h(h+1)) ~ radius/3.
  // A radius below 0.5 gives an unblurred copy and a pad of 0.
  std::pair<SurfacePtr, int> Blur(double radius) const;

  // The SVG document drawn so far. This finishes the document: later
  // drawing on the surface has no effect. Empty for image surfaces.
  qds::Bytes SvgDocumentBytes();

  cairo_surface_t* Native() const { return s_; }

 private:
  struct SvgSink;
  DrawingSurface(cairo_surface_t* s, int width, int height, SurfaceKind kind);
  void RequireImage(const char* operation) const;

  cairo_surface_t* s_;
  int width_, height_;
  SurfaceKind kind_;
  std::unique_ptr<SvgSink> svg_;
};

// The picture drawn on a new transparent surface of the given size with the
// best filter: the same pixels as DrawingContext::DrawSurface with
// Filter::Best would give, made several times faster for reductions.
SurfacePtr ResizeBest(const SurfacePtr& picture, int width, int height);
namespace detail {
// With `vector` false, without the processor's vector instructions (tests
// check both ways against the library).
SurfacePtr ResizeBest(const SurfacePtr& picture, int width, int height, bool vector);
}  // namespace detail

}  // namespace qds
