#include "platform/SvgRenderer.h"

#include <cairo.h>
#include <librsvg/rsvg.h>

#include <cmath>

#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/PlainSvg.h"

namespace qds {

namespace {

constexpr double kPi = 3.14159265358979323846;
// A compressed document may not expand past this; no icon comes near it.
constexpr std::size_t kMaxSvgBytes = 64u << 20;

}  // namespace

SvgHandle::SvgHandle(RsvgHandle* h) : h_(h) {
  gdouble w = 0, ht = 0;
  if (rsvg_handle_get_intrinsic_size_in_pixels(h_, &w, &ht)) {
    width_ = w;
    height_ = ht;
    return;
  }
  gboolean hasViewBox = FALSE;
  RsvgRectangle viewBox{};
  rsvg_handle_get_intrinsic_dimensions(h_, nullptr, nullptr, nullptr, nullptr, &hasViewBox, &viewBox);
  if (hasViewBox) {
    width_ = viewBox.width;
    height_ = viewBox.height;
  }
}

SvgHandle::~SvgHandle() {
  g_object_unref(h_);
}

SvgRenderer::SvgRenderer(std::size_t maxCachedDocuments)
    : max_(maxCachedDocuments ? maxCachedDocuments : 1) {}

SvgRenderer::~SvgRenderer() = default;

void SvgRenderer::ClearCache() {
  cache_.clear();
  ages_.clear();
}

SvgHandlePtr SvgRenderer::Parse(const Bytes& bytes, std::string* error) {
  const std::string key = ContentHash(bytes);
  if (auto it = cache_.find(key); it != cache_.end()) {
    ages_.splice(ages_.begin(), ages_, it->second.age);
    if (error) *error = it->second.error;
    return it->second.doc;
  }

  SvgHandlePtr doc;
  std::string why;
  try {
    const Bytes plain = IsGzip(bytes) ? GzipDecompress(bytes, kMaxSvgBytes) : bytes;
    if (plain.empty()) {
      why = "The document is empty";
    } else {
      GError* gerror = nullptr;
      RsvgHandle* h = rsvg_handle_new_from_data(plain.data(), plain.size(), &gerror);
      if (h) {
        rsvg_handle_set_dpi(h, 96);
        doc = std::make_shared<SvgHandle>(h);
      } else {
        why = gerror && gerror->message ? gerror->message : "The document cannot be read";
      }
      if (gerror) g_error_free(gerror);
    }
  } catch (const AppError& e) {
    why = e.Description();
  }

  if (cache_.size() >= max_) {
    cache_.erase(ages_.back());
    ages_.pop_back();
  }
  ages_.push_front(key);
  cache_.emplace(key, Entry{doc, why, ages_.begin()});
  if (error) *error = why;
  return doc;
}

bool SvgRenderer::Render(DrawingContext& ctx, const SvgHandle& doc, double x, double y, double w, double h,
                         double angle) const {
  if (w <= 0 || h <= 0) return false;
  cairo_t* cr = ctx.Native();
  cairo_save(cr);
  if (angle != 0) {
    const double cx = x + w / 2, cy = y + h / 2;
    cairo_translate(cr, cx, cy);
    cairo_rotate(cr, angle * kPi / 180);
    cairo_translate(cr, -cx, -cy);
  }
  const RsvgRectangle viewport{x, y, w, h};
  GError* gerror = nullptr;
  const bool ok = rsvg_handle_render_document(doc.Native(), cr, &viewport, &gerror);
  if (gerror) g_error_free(gerror);
  cairo_restore(cr);
  return ok;
}

bool SvgRenderer::Render(DrawingContext& ctx, const Bytes& bytes, double x, double y, double w, double h,
                         double angle) {
  const SvgHandlePtr doc = Parse(bytes);
  return doc && Render(ctx, *doc, x, y, w, h, angle);
}

bool SvgRenderer::RenderPicture(DrawingContext& ctx, const Bytes& bytes, double x, double y, double w,
                                double h) {
  if (w <= 0 || h <= 0) return false;
  if (const std::optional<PlainSvg> plain = PlainSvg::Read(bytes); plain && plain->Draw(ctx, x, y, w, h))
    return true;
  return Render(ctx, bytes, x, y, w, h);
}

}  // namespace qds
