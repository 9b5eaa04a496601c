#include "platform/DrawingSurface.h"

#include <cairo-svg.h>
#include <cairo.h>
#include <jpeglib.h>
#include <png.h>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <vector>

#include "platform/Error.h"
#include "platform/Files.h"

namespace qds {

struct DrawingSurface::SvgSink {
  qds::Bytes data;
  bool finished = false;
};

namespace {

cairo_status_t AppendToBytes(void* closure, const unsigned char* data, unsigned int length) {
  auto* out = static_cast<qds::Bytes*>(closure);
  out->insert(out->end(), data, data + length);
  return CAIRO_STATUS_SUCCESS;
}

struct PngReader {
  const qds::Bytes* bytes;
  std::size_t pos = 0;
};

cairo_status_t ReadFromBytes(void* closure, unsigned char* data, unsigned int length) {
  auto* r = static_cast<PngReader*>(closure);
  if (length > r->bytes->size() - r->pos) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(data, r->bytes->data() + r->pos, length);
  r->pos += length;
  return CAIRO_STATUS_SUCCESS;
}

// libjpeg reports errors through a callback that must not return; it jumps
// back to the one place below that set up the jump, where nothing with a
// destructor is alive.
struct JpegError {
  jpeg_error_mgr mgr;
  std::jmp_buf jump;
  char message[JMSG_LENGTH_MAX];
};

void JpegErrorExit(j_common_ptr cinfo) {
  auto* err = reinterpret_cast<JpegError*>(cinfo->err);
  (*cinfo->err->format_message)(cinfo, err->message);
  std::longjmp(err->jump, 1);
}

// Returns false with the library's message on failure.
bool EncodeJpeg(const std::uint8_t* pixels, int width, int height, int stride, int quality,
                unsigned char** out, unsigned long* outSize, char* message) {
  jpeg_compress_struct cinfo;
  JpegError err;
  cinfo.err = jpeg_std_error(&err.mgr);
  err.mgr.error_exit = JpegErrorExit;
  if (setjmp(err.jump)) {
    std::strcpy(message, err.message);
    jpeg_destroy_compress(&cinfo);
    return false;
  }
  jpeg_create_compress(&cinfo);
  jpeg_mem_dest(&cinfo, out, outSize);
  cinfo.image_width = static_cast<JDIMENSION>(width);
  cinfo.image_height = static_cast<JDIMENSION>(height);
  cinfo.input_components = 4;
  cinfo.in_color_space = JCS_EXT_BGRX;  // cairo's little-endian ARGB32, alpha ignored
  jpeg_set_defaults(&cinfo);
  jpeg_set_quality(&cinfo, quality, TRUE);
  jpeg_start_compress(&cinfo, TRUE);
  while (cinfo.next_scanline < cinfo.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(pixels + static_cast<std::size_t>(cinfo.next_scanline) * stride);
    jpeg_write_scanlines(&cinfo, &row, 1);
  }
  jpeg_finish_compress(&cinfo);
  jpeg_destroy_compress(&cinfo);
  return true;
}

// libpng, like libjpeg, reports errors by a jump back to the one place that
// set it up; nothing with a destructor lives between the two.
void PngWrite(png_structp png, png_bytep data, png_size_t length) {
  auto* out = static_cast<qds::Bytes*>(png_get_io_ptr(png));
  out->insert(out->end(), data, data + length);
}

bool EncodePng(const std::uint8_t* pixels, int width, int height, int stride, std::uint8_t* row,
               qds::Bytes& out) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  if (!png) return false;
  png_infop info = png_create_info_struct(png);
  if (!info || setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    return false;
  }
  png_set_write_fn(png, &out, PngWrite, nullptr);
  png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
               PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  // Icons are flat colours with clean edges: unfiltered rows compress
  // better than any row filter, and cost far less time to write.
  png_set_filter(png, 0, PNG_FILTER_NONE);
  png_set_compression_level(png, 6);
  png_write_info(png, info);
  for (int y = 0; y < height; ++y) {
    const std::uint8_t* src = pixels + static_cast<std::size_t>(y) * stride;
    for (int x = 0; x < width; ++x) {
      // Stored premultiplied as B, G, R, A; PNG wants straight R, G, B, A.
      const unsigned a = src[4 * x + 3];
      for (int c = 0; c < 3; ++c) {
        const unsigned v = src[4 * x + 2 - c];
        row[4 * x + c] = static_cast<std::uint8_t>(a ? (v * 255 + a / 2) / a : 0);
      }
      row[4 * x + 3] = static_cast<std::uint8_t>(a);
    }
    png_write_row(png, row);
  }
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return true;
}

void PutU16(qds::Bytes& b, std::uint32_t v) {
  b.push_back(static_cast<std::uint8_t>(v));
  b.push_back(static_cast<std::uint8_t>(v >> 8));
}
void PutU32(qds::Bytes& b, std::uint32_t v) {
  PutU16(b, v & 0xFFFF);
  PutU16(b, v >> 16);
}

// One box pass along a line of `n` pixels `step` values apart, four channels
// at once: each output is the sum of the 2h+1 inputs around it, with zeros
// beyond the ends.
template <class Sum>
void BoxLine(const Sum* in, Sum* out, int n, std::size_t step, int h) {
  // Four running sums, one per channel, kept apart so that they stay in registers.
  Sum s0 = 0, s1 = 0, s2 = 0, s3 = 0;
  for (int i = 0; i < std::min(h, n); ++i) {
    const Sum* p = in + i * step;
    s0 += p[0], s1 += p[1], s2 += p[2], s3 += p[3];
  }
  for (int i = 0; i < n; ++i) {
    if (i + h < n) {
      const Sum* p = in + (i + h) * step;
      s0 += p[0], s1 += p[1], s2 += p[2], s3 += p[3];
    }
    Sum* o = out + i * step;
    o[0] = s0, o[1] = s1, o[2] = s2, o[3] = s3;
    if (i - h >= 0) {
      const Sum* p = in + (i - h) * step;
      s0 -= p[0], s1 -= p[1], s2 -= p[2], s3 -= p[3];
    }
  }
}

// The same box down every column at once, a whole row of sums at a time,
// which reads memory in order: the same sums as BoxLine per column.
// sum[x] += line[x] (or -=) over a row, four or two sums per instruction
// where the processor has SSE2; the same integers either way.
template <class Sum, bool Subtract>
void AddRow(Sum* sum, const Sum* line, std::size_t n) {
  std::size_t x = 0;
#ifdef __SSE2__
  constexpr std::size_t lanes = 16 / sizeof(Sum);
  for (; x + lanes <= n; x += lanes) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(sum + x));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(line + x));
    __m128i r;
    if constexpr (sizeof(Sum) == 4) {
      r = Subtract ? _mm_sub_epi32(a, b) : _mm_add_epi32(a, b);
    } else {
      r = Subtract ? _mm_sub_epi64(a, b) : _mm_add_epi64(a, b);
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(sum + x), r);
  }
#endif
  for (; x < n; ++x) sum[x] = Subtract ? sum[x] - line[x] : sum[x] + line[x];
}

// The same box down every column at once, a whole row of sums at a time,
// which reads memory in order: the same sums as BoxLine per column.
template <class Sum>
void BoxColumns(const Sum* in, Sum* out, int rows, std::size_t row, int h, std::vector<Sum>& sums) {
  sums.assign(row, 0);
  Sum* sum = sums.data();
  for (int i = 0; i < std::min(h, rows); ++i) AddRow<Sum, false>(sum, in + static_cast<std::size_t>(i) * row, row);
  for (int i = 0; i < rows; ++i) {
    if (i + h < rows) AddRow<Sum, false>(sum, in + static_cast<std::size_t>(i + h) * row, row);
    std::copy(sum, sum + row, out + static_cast<std::size_t>(i) * row);
    if (i - h >= 0) AddRow<Sum, true>(sum, in + static_cast<std::size_t>(i - h) * row, row);
  }
}

// Three passes of the box each way over the picture's bytes, in place.
// Sums are kept whole and divided only at the very end, so the passes
// commute exactly and a symmetric picture blurs symmetrically. `Sum` must
// hold 255 * (2h+1)^6.
template <class Sum>
void BoxBlur(std::uint8_t* data, int w, int ht, int stride, int h) {
  const std::size_t row = static_cast<std::size_t>(w) * 4;
  // Kept between calls: fresh megabytes for every blur cost more in page
  // faults than the blur itself.
  thread_local std::vector<Sum> a, b, sums;
  a.resize(row * ht);
  b.resize(row * ht);
  for (int y = 0; y < ht; ++y) {
    for (std::size_t x = 0; x < row; ++x) a[y * row + x] = data[static_cast<std::size_t>(y) * stride + x];
  }
  for (int pass = 0; pass < 3; ++pass) {
    for (int y = 0; y < ht; ++y) BoxLine(&a[y * row], &b[y * row], w, 4, h);
    BoxColumns(b.data(), a.data(), ht, row, h, sums);
  }
  // Six passes of a box of 2h+1 multiplied every value by (2h+1)^6. The
  // rounded quotient is taken in doubles, which is quicker and the same:
  // sums stay far below 2^53, a whole quotient divides exactly, and any
  // other lies at least 1/divisor below the next whole number, far more
  // than the rounding of one division.
  std::uint64_t divisor = 1;
  for (int i = 0; i < 6; ++i) divisor *= static_cast<std::uint64_t>(2 * h + 1);
  const double half = static_cast<double>(divisor / 2), by = static_cast<double>(divisor);
  for (int y = 0; y < ht; ++y) {
    const Sum* sum = &a[static_cast<std::size_t>(y) * row];
    std::uint8_t* out8 = data + static_cast<std::size_t>(y) * stride;
    for (std::size_t x = 0; x < row; ++x) {
      const double v = std::floor((static_cast<double>(sum[x]) + half) / by);
      out8[x] = static_cast<std::uint8_t>(std::min(v, 255.0));
    }
  }
  if (a.size() > (std::size_t{1} << 22)) {
    // A very large blur gives its memory back rather than keep it for good.
    std::vector<Sum>().swap(a);
    std::vector<Sum>().swap(b);
  }
}

}  // namespace

PixelView::PixelView(cairo_surface_t* s)
    : s_(s),
      data_(cairo_image_surface_get_data(s)),
      width_(cairo_image_surface_get_width(s)),
      height_(cairo_image_surface_get_height(s)),
      stride_(cairo_image_surface_get_stride(s)) {}

PixelView::~PixelView() {
  cairo_surface_mark_dirty(s_);
}

DrawingSurface::DrawingSurface(cairo_surface_t* s, int width, int height, SurfaceKind kind)
    : s_(s), width_(width), height_(height), kind_(kind) {}

DrawingSurface::~DrawingSurface() {
  cairo_surface_destroy(s_);
}

SurfacePtr DrawingSurface::Create(int width, int height, SurfaceKind kind) {
  width = std::max(1, width);
  height = std::max(1, height);
  if (kind == SurfaceKind::Svg) {
    auto sink = std::make_unique<SvgSink>();
    cairo_surface_t* s = cairo_svg_surface_create_for_stream(AppendToBytes, &sink->data, width, height);
    cairo_svg_surface_set_document_unit(s, CAIRO_SVG_UNIT_PT);
    SurfacePtr surface(new DrawingSurface(s, width, height, kind));
    surface->svg_ = std::move(sink);
    return surface;
  }
  cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
  if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(s);
    Raise(ErrNo::OutOfMemory,
          "Cannot make a picture of " + std::to_string(width) + " x " + std::to_string(height) + " pixels",
          "DrawingSurface");
  }
  return SurfacePtr(new DrawingSurface(s, width, height, kind));
}

SurfacePtr DrawingSurface::FromPngBytes(const qds::Bytes& png) {
  PngReader reader{&png};
  cairo_surface_t* s = cairo_image_surface_create_from_png_stream(ReadFromBytes, &reader);
  if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
    const std::string why = cairo_status_to_string(cairo_surface_status(s));
    cairo_surface_destroy(s);
    Raise(ErrNo::InvalidData, "The picture is not a readable PNG: " + why, "DrawingSurface.FromPngBytes");
  }
  const int w = cairo_image_surface_get_width(s), h = cairo_image_surface_get_height(s);
  if (cairo_image_surface_get_format(s) == CAIRO_FORMAT_ARGB32)
    return SurfacePtr(new DrawingSurface(s, w, h, SurfaceKind::Image));
  // Opaque and grey PNGs come back in other formats; every image surface of
  // ours is ARGB32 so that pixel views read the same everywhere.
  SurfacePtr out = Create(w, h);
  cairo_t* cr = cairo_create(out->s_);
  cairo_set_source_surface(cr, s, 0, 0);
  cairo_paint(cr);
  cairo_destroy(cr);
  cairo_surface_destroy(s);
  return out;
}

SurfacePtr DrawingSurface::FromPngFile(const std::string& path) {
  return FromPngBytes(ReadAllBytes(path));
}

SurfacePtr DrawingSurface::CreateSimilar(int width, int height) const {
  width = std::max(1, width);
  height = std::max(1, height);
  if (kind_ == SurfaceKind::Image) return Create(width, height);
  cairo_surface_t* s = cairo_surface_create_similar(s_, CAIRO_CONTENT_COLOR_ALPHA, width, height);
  return SurfacePtr(new DrawingSurface(s, width, height, SurfaceKind::Svg));
}

SurfacePtr DrawingSurface::Copy() const {
  RequireImage("Copy");
  SurfacePtr copy = Create(width_, height_);
  cairo_surface_flush(s_);
  const unsigned char* from = cairo_image_surface_get_data(s_);
  const int fromStride = cairo_image_surface_get_stride(s_);
  unsigned char* to = cairo_image_surface_get_data(copy->s_);
  const int toStride = cairo_image_surface_get_stride(copy->s_);
  for (int y = 0; y < height_; ++y) {
    std::memcpy(to + static_cast<std::ptrdiff_t>(y) * toStride, from + static_cast<std::ptrdiff_t>(y) * fromStride,
                static_cast<std::size_t>(width_) * 4);
  }
  cairo_surface_mark_dirty(copy->s_);
  return copy;
}

void DrawingSurface::RequireImage(const char* operation) const {
  if (kind_ != SurfaceKind::Image) {
    Raise(ErrNo::InvalidArgument, std::string(operation) + " needs a pixel surface", "DrawingSurface");
  }
}

PixelView DrawingSurface::Pixels() {
  RequireImage("A pixel view");
  cairo_surface_flush(s_);
  return PixelView(s_);
}

qds::Bytes DrawingSurface::ToPngBytes() const {
  RequireImage("PNG encoding");
  cairo_surface_flush(s_);
  qds::Bytes out;
  std::vector<std::uint8_t> row(static_cast<std::size_t>(width_) * 4);
  if (!EncodePng(cairo_image_surface_get_data(s_), width_, height_, cairo_image_surface_get_stride(s_),
                 row.data(), out)) {
    Raise(ErrNo::OutOfMemory, "The picture could not be encoded as PNG", "DrawingSurface.ToPngBytes");
  }
  return out;
}

void DrawingSurface::WritePng(const std::string& path) const {
  WriteAllBytes(path, ToPngBytes());
}

qds::Bytes DrawingSurface::ToJpegBytes(int quality) const {
  RequireImage("JPEG encoding");
  cairo_surface_flush(s_);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  char message[JMSG_LENGTH_MAX] = {};
  const bool ok =
      EncodeJpeg(cairo_image_surface_get_data(s_), width_, height_, cairo_image_surface_get_stride(s_),
                 std::clamp(quality, 10, 100), &buffer, &size, message);
  qds::Bytes out;
  if (ok) out.assign(buffer, buffer + size);
  std::free(buffer);
  if (!ok)
    Raise(ErrNo::InvalidData, std::string("JPEG encoding failed: ") + message, "DrawingSurface.ToJpegBytes");
  return out;
}

void DrawingSurface::WriteJpeg(const std::string& path, int quality) const {
  WriteAllBytes(path, ToJpegBytes(quality));
}

qds::Bytes DrawingSurface::ToBmpBytes() const {
  RequireImage("BMP encoding");
  cairo_surface_flush(s_);
  const std::uint32_t rowBytes = (static_cast<std::uint32_t>(width_) * 3 + 3) & ~3u;
  const std::uint32_t imageBytes = rowBytes * static_cast<std::uint32_t>(height_);
  qds::Bytes b;
  b.reserve(54 + imageBytes);
  // BITMAPFILEHEADER
  b.push_back('B');
  b.push_back('M');
  PutU32(b, 54 + imageBytes);
  PutU32(b, 0);
  PutU32(b, 54);
  // BITMAPINFOHEADER: positive height means rows stored bottom-up.
  PutU32(b, 40);
  PutU32(b, static_cast<std::uint32_t>(width_));
  PutU32(b, static_cast<std::uint32_t>(height_));
  PutU16(b, 1);   // planes
  PutU16(b, 24);  // bits per pixel
  PutU32(b, 0);   // no compression
  PutU32(b, imageBytes);
  PutU32(b, 3780);  // 96 dpi in pixels per metre
  PutU32(b, 3780);
  PutU32(b, 0);
  PutU32(b, 0);
  const std::uint8_t* data = cairo_image_surface_get_data(s_);
  const int stride = cairo_image_surface_get_stride(s_);
  for (int y = height_ - 1; y >= 0; --y) {
    const std::uint8_t* row = data + static_cast<std::size_t>(y) * stride;
    for (int x = 0; x < width_; ++x) {
      b.push_back(row[4 * x]);
      b.push_back(row[4 * x + 1]);
      b.push_back(row[4 * x + 2]);
    }
    for (std::uint32_t pad = static_cast<std::uint32_t>(width_) * 3; pad < rowBytes; ++pad) b.push_back(0);
  }
  return b;
}

void DrawingSurface::WriteBmp(const std::string& path) const {
  WriteAllBytes(path, ToBmpBytes());
}

std::pair<SurfacePtr, int> DrawingSurface::Blur(double radius) const {
  RequireImage("Blur");
  cairo_surface_flush(s_);
  const int h = radius < 0.5 ? 0 : std::max(1, static_cast<int>(std::lround(radius / 3)));
  const int pad = 3 * h;
  SurfacePtr out = Create(width_ + 2 * pad, height_ + 2 * pad);
  cairo_t* cr = cairo_create(out->s_);
  cairo_set_source_surface(cr, s_, pad, pad);
  cairo_paint(cr);
  cairo_destroy(cr);
  if (h == 0) return {out, 0};

  cairo_surface_flush(out->s_);
  std::uint8_t* data = cairo_image_surface_get_data(out->s_);
  const int stride = cairo_image_surface_get_stride(out->s_);
  // Small boxes sum in 32 bits, which halves the memory the passes stream through.
  if (255.0 * std::pow(2 * h + 1, 6) < 4294967295.0) {
    BoxBlur<std::uint32_t>(data, out->width_, out->height_, stride, h);
  } else {
    BoxBlur<std::uint64_t>(data, out->width_, out->height_, stride, h);
  }
  cairo_surface_mark_dirty(out->s_);
  return {out, pad};
}

qds::Bytes DrawingSurface::SvgDocumentBytes() {
  if (!svg_) return {};
  if (!svg_->finished) {
    cairo_surface_finish(s_);
    svg_->finished = true;
  }
  return svg_->data;
}

}  // namespace qds
