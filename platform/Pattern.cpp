#include "platform/Pattern.h"

#include <cairo.h>

#include "platform/DrawingSurface.h"
#include "platform/Path.h"

namespace qds {

Pattern Pattern::Solid(std::int64_t colour, double alpha) {
  const Rgb c = ToRgb(colour);
  return Pattern(cairo_pattern_create_rgba(c.r, c.g, c.b, alpha));
}

Pattern Pattern::Linear(double x0, double y0, double x1, double y1) {
  return Pattern(cairo_pattern_create_linear(x0, y0, x1, y1));
}

Pattern Pattern::Radial(double cx0, double cy0, double r0, double cx1, double cy1, double r1) {
  return Pattern(cairo_pattern_create_radial(cx0, cy0, r0, cx1, cy1, r1));
}

Pattern Pattern::ForSurface(const SurfacePtr& surface) {
  Pattern p(cairo_pattern_create_for_surface(surface->Native()));
  p.surface_ = surface;
  return p;
}

Pattern Pattern::Adopt(cairo_pattern_t* p) {
  return Pattern(p);
}

Pattern::Pattern(const Pattern& other) : p_(cairo_pattern_reference(other.p_)), surface_(other.surface_) {}

Pattern& Pattern::operator=(const Pattern& other) {
  if (this != &other) {
    cairo_pattern_t* old = p_;
    p_ = cairo_pattern_reference(other.p_);
    surface_ = other.surface_;
    cairo_pattern_destroy(old);
  }
  return *this;
}

Pattern::~Pattern() {
  cairo_pattern_destroy(p_);
}

void Pattern::AddColorStop(double offset, std::int64_t colour, double alpha) {
  const Rgb c = ToRgb(colour);
  cairo_pattern_add_color_stop_rgba(p_, offset, c.r, c.g, c.b, alpha);
}

int Pattern::ColorStopCount() const {
  int n = 0;
  return cairo_pattern_get_color_stop_count(p_, &n) == CAIRO_STATUS_SUCCESS ? n : 0;
}

void Pattern::SetExtend(Extend extend) {
  cairo_pattern_set_extend(p_, static_cast<cairo_extend_t>(extend));
}

void Pattern::SetFilter(int filter) {
  cairo_pattern_set_filter(p_, static_cast<cairo_filter_t>(filter));
}

void Pattern::SetMatrix(const Matrix& m) {
  const cairo_matrix_t cm{m.xx, m.yx, m.xy, m.yy, m.x0, m.y0};
  cairo_pattern_set_matrix(p_, &cm);
}

Path::~Path() {
  cairo_path_destroy(p_);
}

bool Path::Empty() const {
  return !p_ || p_->status != CAIRO_STATUS_SUCCESS || p_->num_data == 0;
}

void Path::ForEach(const std::function<void(PathOp, const double*, int)>& visit) const {
  if (Empty()) return;
  double xy[6];
  for (int i = 0; i < p_->num_data; i += p_->data[i].header.length) {
    const cairo_path_data_t* d = &p_->data[i];
    const int points = d->header.length - 1;
    for (int k = 0; k < points && k < 3; ++k) {
      xy[2 * k] = d[k + 1].point.x;
      xy[2 * k + 1] = d[k + 1].point.y;
    }
    visit(static_cast<PathOp>(d->header.type), xy, d->header.type == CAIRO_PATH_CLOSE_PATH ? 0 : points);
  }
}

}  // namespace qds
