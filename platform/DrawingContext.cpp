#include "platform/DrawingContext.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "platform/Bytes.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/TextUtil.h"

namespace qds {

namespace {

constexpr double kPi = 3.14159265358979323846;

// Owns a GObject reference.
template <class T>
struct GObjectPtr {
  T* p;
  explicit GObjectPtr(T* p) : p(p) {}
  ~GObjectPtr() {
    if (p) g_object_unref(p);
  }
  GObjectPtr(const GObjectPtr&) = delete;
  GObjectPtr& operator=(const GObjectPtr&) = delete;
};

// Angle from vector u to vector v, signed, as in the SVG arc conversion.
double VectorAngle(double ux, double uy, double vx, double vy) {
  const double dot = ux * vx + uy * vy;
  const double len = std::hypot(ux, uy) * std::hypot(vx, vy);
  double a = std::acos(std::clamp(dot / len, -1.0, 1.0));
  if (ux * vy - uy * vx < 0) a = -a;
  return a;
}

}  // namespace

DrawingContext::DrawingContext(SurfacePtr target)
    : target_(std::move(target)), cr_(cairo_create(target_->Native())) {}

DrawingContext::~DrawingContext() {
  cairo_destroy(cr_);
}

void DrawingContext::Save() {
  cairo_save(cr_);
  ++saveDepth_;
}
void DrawingContext::Restore() {
  if (saveDepth_ == 0) return;  // more restores than saves would put cairo in an error state
  cairo_restore(cr_);
  --saveDepth_;
}

Matrix DrawingContext::GetMatrix() const {
  cairo_matrix_t m;
  cairo_get_matrix(cr_, &m);
  return {m.xx, m.yx, m.xy, m.yy, m.x0, m.y0};
}

void DrawingContext::SetMatrix(const Matrix& m) {
  const cairo_matrix_t cm{m.xx, m.yx, m.xy, m.yy, m.x0, m.y0};
  cairo_set_matrix(cr_, &cm);
}

void DrawingContext::ResetMatrix() {
  cairo_identity_matrix(cr_);
}
void DrawingContext::Translate(double x, double y) {
  cairo_translate(cr_, x, y);
}
void DrawingContext::Scale(double sx, double sy) {
  cairo_scale(cr_, sx, sy);
}
void DrawingContext::Rotate(double degrees) {
  cairo_rotate(cr_, degrees * kPi / 180);
}

int DrawingContext::Operator() const {
  return cairo_get_operator(cr_);
}

void DrawingContext::SetOperator(int op) {
  if (op < Op::Clear || op > Op::HslLuminosity) {
    Raise(ErrNo::InvalidArgument, "There is no blend operator " + std::to_string(op), "DrawingContext");
  }
  cairo_set_operator(cr_, static_cast<cairo_operator_t>(op));
}

bool DrawingContext::Antialias() const {
  return cairo_get_antialias(cr_) != CAIRO_ANTIALIAS_NONE;
}
void DrawingContext::SetAntialias(bool on) {
  cairo_set_antialias(cr_, on ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
}

FillRule DrawingContext::FillRule() const {
  return cairo_get_fill_rule(cr_) == CAIRO_FILL_RULE_EVEN_ODD ? FillRule::EvenOdd : FillRule::Winding;
}
void DrawingContext::SetFillRule(qds::FillRule rule) {
  cairo_set_fill_rule(cr_, rule == FillRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
}

double DrawingContext::LineWidth() const {
  return cairo_get_line_width(cr_);
}
void DrawingContext::SetLineWidth(double width) {
  cairo_set_line_width(cr_, width);
}

void DrawingContext::SetDash(const std::vector<double>& dashes, double offset) {
  cairo_set_dash(cr_, dashes.data(), static_cast<int>(dashes.size()), offset);
}

void DrawingContext::MoveTo(double x, double y) {
  cairo_move_to(cr_, x, y);
}
void DrawingContext::RelMoveTo(double dx, double dy) {
  if (!cairo_has_current_point(cr_)) cairo_move_to(cr_, 0, 0);
  cairo_rel_move_to(cr_, dx, dy);
}
void DrawingContext::LineTo(double x, double y) {
  cairo_line_to(cr_, x, y);
}
void DrawingContext::RelLineTo(double dx, double dy) {
  if (!cairo_has_current_point(cr_)) cairo_move_to(cr_, 0, 0);
  cairo_rel_line_to(cr_, dx, dy);
}
void DrawingContext::CurveTo(double x1, double y1, double x2, double y2, double x3, double y3) {
  cairo_curve_to(cr_, x1, y1, x2, y2, x3, y3);
}
void DrawingContext::RelCurveTo(double dx1, double dy1, double dx2, double dy2, double dx3, double dy3) {
  if (!cairo_has_current_point(cr_)) cairo_move_to(cr_, 0, 0);
  cairo_rel_curve_to(cr_, dx1, dy1, dx2, dy2, dx3, dy3);
}

// The endpoint-to-centre conversion of the SVG arc, then cairo's circular
// arc in a space rotated and scaled into the ellipse.
void DrawingContext::SvgArcTo(double rx, double ry, double xAxisRotation, bool largeArc, bool sweep, double x,
                              double y) {
  double x1 = 0, y1 = 0;
  if (cairo_has_current_point(cr_)) {
    cairo_get_current_point(cr_, &x1, &y1);
  } else {
    cairo_move_to(cr_, 0, 0);
  }
  if (x1 == x && y1 == y) return;
  rx = std::fabs(rx);
  ry = std::fabs(ry);
  if (rx == 0 || ry == 0 || !std::isfinite(rx) || !std::isfinite(ry)) {
    cairo_line_to(cr_, x, y);
    return;
  }
  const double phi = xAxisRotation * kPi / 180;
  const double cosPhi = std::cos(phi), sinPhi = std::sin(phi);
  const double dx2 = (x1 - x) / 2, dy2 = (y1 - y) / 2;
  const double x1p = cosPhi * dx2 + sinPhi * dy2;
  const double y1p = -sinPhi * dx2 + cosPhi * dy2;
  const double lambda = (x1p * x1p) / (rx * rx) + (y1p * y1p) / (ry * ry);
  if (lambda > 1) {
    const double s = std::sqrt(lambda);
    rx *= s;
    ry *= s;
  }
  const double num = rx * rx * ry * ry - rx * rx * y1p * y1p - ry * ry * x1p * x1p;
  const double den = rx * rx * y1p * y1p + ry * ry * x1p * x1p;
  double coef = den == 0 ? 0 : std::sqrt(std::max(0.0, num / den));
  if (largeArc == sweep) coef = -coef;
  const double cxp = coef * rx * y1p / ry;
  const double cyp = -coef * ry * x1p / rx;
  const double cx = cosPhi * cxp - sinPhi * cyp + (x1 + x) / 2;
  const double cy = sinPhi * cxp + cosPhi * cyp + (y1 + y) / 2;
  const double theta1 = VectorAngle(1, 0, (x1p - cxp) / rx, (y1p - cyp) / ry);
  double delta = VectorAngle((x1p - cxp) / rx, (y1p - cyp) / ry, (-x1p - cxp) / rx, (-y1p - cyp) / ry);
  if (!sweep && delta > 0) delta -= 2 * kPi;
  if (sweep && delta < 0) delta += 2 * kPi;

  cairo_matrix_t saved;
  cairo_get_matrix(cr_, &saved);
  cairo_translate(cr_, cx, cy);
  cairo_rotate(cr_, phi);
  cairo_scale(cr_, rx, ry);
  if (sweep) {
    cairo_arc(cr_, 0, 0, 1, theta1, theta1 + delta);
  } else {
    cairo_arc_negative(cr_, 0, 0, 1, theta1, theta1 + delta);
  }
  cairo_set_matrix(cr_, &saved);
  // Land exactly on the end point, whatever the rounding of the arc.
  cairo_line_to(cr_, x, y);
}

void DrawingContext::RelSvgArcTo(double rx, double ry, double xAxisRotation, bool largeArc, bool sweep,
                                 double dx, double dy) {
  double x = 0, y = 0;
  if (cairo_has_current_point(cr_)) cairo_get_current_point(cr_, &x, &y);
  SvgArcTo(rx, ry, xAxisRotation, largeArc, sweep, x + dx, y + dy);
}

void DrawingContext::Arc(double cx, double cy, double r, double a1, double a2) {
  cairo_arc(cr_, cx, cy, r, a1, a2);
}

void DrawingContext::ArcNegative(double cx, double cy, double r, double a1, double a2) {
  cairo_arc_negative(cr_, cx, cy, r, a1, a2);
}

void DrawingContext::Ellipse(double cx, double cy, double rx, double ry) {
  if (rx <= 0 || ry <= 0) return;
  cairo_matrix_t saved;
  cairo_get_matrix(cr_, &saved);
  cairo_new_sub_path(cr_);
  cairo_translate(cr_, cx, cy);
  cairo_scale(cr_, rx, ry);
  cairo_arc(cr_, 0, 0, 1, 0, 2 * kPi);
  cairo_set_matrix(cr_, &saved);
  cairo_close_path(cr_);
}

void DrawingContext::Rectangle(double x, double y, double w, double h) {
  cairo_rectangle(cr_, x, y, w, h);
}

void DrawingContext::RoundedRectangle(double x, double y, double w, double h, double radius) {
  const double r = std::clamp(radius, 0.0, std::min(std::fabs(w), std::fabs(h)) / 2);
  if (r <= 0) {
    cairo_rectangle(cr_, x, y, w, h);
    return;
  }
  cairo_new_sub_path(cr_);
  cairo_arc(cr_, x + w - r, y + r, r, -kPi / 2, 0);
  cairo_arc(cr_, x + w - r, y + h - r, r, 0, kPi / 2);
  cairo_arc(cr_, x + r, y + h - r, r, kPi / 2, kPi);
  cairo_arc(cr_, x + r, y + r, r, kPi, 3 * kPi / 2);
  cairo_close_path(cr_);
}

void DrawingContext::ClosePath() {
  cairo_close_path(cr_);
}

std::optional<std::pair<double, double>> DrawingContext::CurrentPoint() const {
  if (!cairo_has_current_point(cr_)) return std::nullopt;
  double x, y;
  cairo_get_current_point(cr_, &x, &y);
  return std::make_pair(x, y);
}

void DrawingContext::NewPath() {
  cairo_new_path(cr_);
}

void DrawingContext::AppendPath(const Path& path) {
  if (!path.Empty()) cairo_append_path(cr_, path.Native());
}

PathPtr DrawingContext::CopyPath(bool flat, double tolerance) const {
  const double old = cairo_get_tolerance(cr_);
  cairo_set_tolerance(cr_, tolerance > 0 ? tolerance : 0.1);
  cairo_path_t* p = flat ? cairo_copy_path_flat(cr_) : cairo_copy_path(cr_);
  cairo_set_tolerance(cr_, old);
  return std::make_shared<Path>(p);
}

void DrawingContext::Fill(bool preserve) {
  preserve ? cairo_fill_preserve(cr_) : cairo_fill(cr_);
}
void DrawingContext::Stroke(bool preserve) {
  preserve ? cairo_stroke_preserve(cr_) : cairo_stroke(cr_);
}
void DrawingContext::Clip(bool preserve) {
  preserve ? cairo_clip_preserve(cr_) : cairo_clip(cr_);
}
void DrawingContext::ResetClip() {
  cairo_reset_clip(cr_);
}

void DrawingContext::Paint(double alpha) {
  alpha >= 1 ? cairo_paint(cr_) : cairo_paint_with_alpha(cr_, std::max(0.0, alpha));
}

void DrawingContext::SetSourceColor(std::int64_t colour, double alpha) {
  const Rgb c = ToRgb(colour);
  cairo_set_source_rgba(cr_, c.r, c.g, c.b, alpha);
}

void DrawingContext::SetSource(const Pattern& pattern) {
  cairo_set_source(cr_, pattern.Native());
}

void DrawingContext::SetSourceSurface(const SurfacePtr& surface, double x, double y) {
  cairo_set_source_surface(cr_, surface->Native(), x, y);
}

Pattern DrawingContext::Source() const {
  return Pattern::Adopt(cairo_pattern_reference(cairo_get_source(cr_)));
}

void DrawingContext::Mask(const Pattern& mask) {
  cairo_mask(cr_, mask.Native());
}

void DrawingContext::MaskSurface(const SurfacePtr& surface, double x, double y) {
  cairo_mask_surface(cr_, surface->Native(), x, y);
}

void DrawingContext::PushGroup() {
  cairo_push_group(cr_);
}

Pattern DrawingContext::PopGroup() {
  return Pattern::Adopt(cairo_pop_group(cr_));
}

void DrawingContext::PopGroupToSource() {
  cairo_pop_group_to_source(cr_);
}

void DrawingContext::DrawSurface(const SurfacePtr& surface, double x, double y, double w, double h,
                                 int filter, double alpha) {
  if (!surface || w <= 0 || h <= 0) return;
  cairo_save(cr_);
  cairo_translate(cr_, x, y);
  cairo_scale(cr_, w / surface->Width(), h / surface->Height());
  cairo_set_source_surface(cr_, surface->Native(), 0, 0);
  cairo_pattern_set_filter(cairo_get_source(cr_), static_cast<cairo_filter_t>(filter));
  // Only the picture's own box: operators such as SOURCE must not clear
  // what lies around it.
  cairo_rectangle(cr_, 0, 0, surface->Width(), surface->Height());
  cairo_clip(cr_);
  alpha >= 1 ? cairo_paint(cr_) : cairo_paint_with_alpha(cr_, std::max(0.0, alpha));
  cairo_restore(cr_);
}

void DrawingContext::SelectFont(const std::string& name, double size, std::int64_t colour, bool bold,
                                bool italic, bool underline) {
  fontName_ = name.empty() ? "Liberation Sans" : name;
  fontSize_ = size > 0 ? size : 10;
  fontColour_ = colour;
  bold_ = bold;
  italic_ = italic;
  underline_ = underline;
}

namespace {

// A layout for the context's font. Hinting is off so that outlines scale
// with the design and come out the same at every size and on every machine.
PangoLayout* MakeLayout(cairo_t* cr, const std::string& name, double size, bool bold, bool italic,
                        bool underline, std::string_view text, int underlinedAt = -1) {
  PangoLayout* layout = pango_cairo_create_layout(cr);
  PangoContext* pc = pango_layout_get_context(layout);
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(pc, options);
  cairo_font_options_destroy(options);
  pango_cairo_context_set_resolution(pc, 96);
  pango_context_set_round_glyph_positions(pc, FALSE);
  pango_layout_context_changed(layout);

  PangoFontDescription* desc = pango_font_description_new();
  pango_font_description_set_family(desc, name.c_str());
  pango_font_description_set_size(desc, static_cast<int>(std::lround(size * PANGO_SCALE)));
  pango_font_description_set_weight(desc, bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  pango_font_description_set_style(desc, italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
  pango_layout_set_font_description(layout, desc);
  pango_font_description_free(desc);
  // Pango wants valid UTF-8; text from outside may not be.
  const bool valid = IsValidUtf8(text);
  const std::string clean = valid ? std::string(text) : EncodeUtf8(DecodeUtf8(text));
  pango_layout_set_text(layout, clean.c_str(), static_cast<int>(clean.size()));
  // One character alone may be underlined, where its byte index still holds.
  const bool marked = valid && underlinedAt >= 0 && underlinedAt < static_cast<int>(clean.size());
  if (underline || marked) {
    PangoAttrList* attrs = pango_attr_list_new();
    PangoAttribute* attr = pango_attr_underline_new(PANGO_UNDERLINE_SINGLE);
    if (!underline) {
      attr->start_index = static_cast<guint>(underlinedAt);
      attr->end_index = static_cast<guint>(g_utf8_next_char(clean.c_str() + underlinedAt) - clean.c_str());
    }
    pango_attr_list_insert(attrs, attr);
    pango_layout_set_attributes(layout, attrs);
    pango_attr_list_unref(attrs);
  }
  return layout;
}

}  // namespace

void DrawingContext::TextPath(double x, double y, double w, double h, std::string_view text, bool singleLine,
                              int hAlign, int vAlign, int underlinedAt) {
  if (text.empty()) return;
  GObjectPtr<PangoLayout> layout(
      MakeLayout(cr_, fontName_, fontSize_, bold_, italic_, underline_, text, underlinedAt));
  const bool wrap = wordWrap_ && !singleLine && w > 0;
  if (wrap) {
    pango_layout_set_width(layout.p, static_cast<int>(w * PANGO_SCALE));
    pango_layout_set_wrap(layout.p, PANGO_WRAP_WORD_CHAR);
  }
  pango_layout_set_alignment(layout.p, hAlign == TextAlign::Right    ? PANGO_ALIGN_RIGHT
                                       : hAlign == TextAlign::Center ? PANGO_ALIGN_CENTER
                                                                     : PANGO_ALIGN_LEFT);
  PangoRectangle ink, logical;
  pango_layout_get_extents(layout.p, &ink, &logical);
  const double tw = static_cast<double>(logical.width) / PANGO_SCALE;
  const double th = static_cast<double>(logical.height) / PANGO_SCALE;
  // A wrapped layout is as wide as the box and aligns its own lines.
  double left = x - static_cast<double>(logical.x) / PANGO_SCALE;
  if (!wrap) {
    if (hAlign == TextAlign::Right) left += w - tw;
    if (hAlign == TextAlign::Center) left += (w - tw) / 2;
  }
  double top = y;
  if (vAlign == TextAlign::Bottom) top += h - th;
  if (vAlign == TextAlign::Middle) top += (h - th) / 2;
  cairo_move_to(cr_, left, top);
  pango_cairo_layout_path(cr_, layout.p);
}

void DrawingContext::DrawText(double x, double y, double w, double h, std::string_view text, bool singleLine,
                              int hAlign, int vAlign, int underlinedAt) {
  TextPath(x, y, w, h, text, singleLine, hAlign, vAlign, underlinedAt);
  cairo_pattern_t* source = cairo_pattern_reference(cairo_get_source(cr_));
  SetSourceColor(fontColour_);
  cairo_fill(cr_);
  cairo_set_source(cr_, source);
  cairo_pattern_destroy(source);
}

TextSize DrawingContext::MeasureText(std::string_view text) const {
  GObjectPtr<PangoLayout> layout(MakeLayout(cr_, fontName_, fontSize_, bold_, italic_, underline_, text));
  PangoRectangle logical;
  pango_layout_get_extents(layout.p, nullptr, &logical);
  return {static_cast<double>(logical.width) / PANGO_SCALE,
          static_cast<double>(logical.height) / PANGO_SCALE};
}

TextSize DrawingContext::MeasureText(std::string_view text, double width) const {
  GObjectPtr<PangoLayout> layout(MakeLayout(cr_, fontName_, fontSize_, bold_, italic_, underline_, text));
  if (wordWrap_ && width > 0) {
    pango_layout_set_width(layout.p, static_cast<int>(width * PANGO_SCALE));
    pango_layout_set_wrap(layout.p, PANGO_WRAP_WORD_CHAR);
  }
  PangoRectangle logical;
  pango_layout_get_extents(layout.p, nullptr, &logical);
  return {static_cast<double>(logical.width) / PANGO_SCALE,
          static_cast<double>(logical.height) / PANGO_SCALE};
}

std::vector<double> DrawingContext::CaretPositions(std::string_view text) const {
  GObjectPtr<PangoLayout> layout(MakeLayout(cr_, fontName_, fontSize_, bold_, italic_, underline_, text));
  // The layout's own text: invalid input was cleaned on the way in.
  const char* laid = pango_layout_get_text(layout.p);
  std::vector<double> widths(static_cast<std::size_t>(g_utf8_strlen(laid, -1)), 0.0);
  PangoLayoutLine* line = pango_layout_get_line_readonly(layout.p, 0);
  std::vector<int> runWidths;
  for (GSList* run = line ? line->runs : nullptr; run; run = run->next) {
    auto* glyphs = static_cast<PangoGlyphItem*>(run->data);
    const int count = glyphs->item->num_chars;
    runWidths.assign(static_cast<std::size_t>(count), 0);
    // A cluster of several characters (a ligature) shares its width evenly.
    pango_glyph_item_get_logical_widths(glyphs, laid, runWidths.data());
    const long first = g_utf8_pointer_to_offset(laid, laid + glyphs->item->offset);
    for (int i = 0; i < count; ++i) {
      const std::size_t at = static_cast<std::size_t>(first + i);
      if (at < widths.size())
        widths[at] = static_cast<double>(runWidths[static_cast<std::size_t>(i)]) / PANGO_SCALE;
    }
  }
  std::vector<double> positions(widths.size() + 1, 0.0);
  for (std::size_t i = 0; i < widths.size(); ++i) positions[i + 1] = positions[i] + widths[i];
  return positions;
}

std::vector<std::string> InstalledFontFamilies() {
  PangoFontFamily** families = nullptr;
  int n = 0;
  pango_font_map_list_families(pango_cairo_font_map_get_default(), &families, &n);
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) names.emplace_back(pango_font_family_get_name(families[i]));
  g_free(families);
  std::sort(names.begin(), names.end(), LessNoCase);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

std::string DefaultSansFamily() {
  struct PatternDeleter {
    void operator()(FcPattern* p) const { FcPatternDestroy(p); }
  };
  using PatternPtr = std::unique_ptr<FcPattern, PatternDeleter>;
  // What "fc-match sans" answers: the desktop's own choice, after its
  // configuration's substitutions.
  const PatternPtr wanted(FcNameParse(reinterpret_cast<const FcChar8*>("sans")));
  if (!wanted || !FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern)) return {};
  FcDefaultSubstitute(wanted.get());
  FcResult result = FcResultNoMatch;
  const PatternPtr match(FcFontMatch(nullptr, wanted.get(), &result));
  FcChar8* family = nullptr;
  if (!match || FcPatternGetString(match.get(), FC_FAMILY, 0, &family) != FcResultMatch || !family) return {};
  return reinterpret_cast<const char*>(family);
}

}  // namespace qds
