#include "platform/PlainSvg.h"

#include <cairo.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <pugixml.hpp>
#include <string_view>

#include "platform/DrawingContext.h"

// This file is built with -ffp-contract=off: a fused multiply-add would round
// differently from librsvg and cairo, which never fuse, and move an edge by a
// shade.

namespace qds {

namespace {

using std::string_view;

constexpr string_view kSvgNamespace = "http://www.w3.org/2000/svg";
constexpr string_view kXlinkNamespace = "http://www.w3.org/1999/xlink";
// Groups nest no deeper than this; cairo writes one.
constexpr int kMaxDepth = 32;
// Far above any icon, and far below where libxml2 and librsvg start to
// refuse documents for their size or their number of elements.
constexpr std::size_t kMaxBytes = std::size_t{1} << 20;

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

void SkipSpaces(string_view& s) {
  while (!s.empty() && IsSpace(s.front())) s.remove_prefix(1);
}

string_view Trim(string_view s) {
  SkipSpaces(s);
  while (!s.empty() && IsSpace(s.back())) s.remove_suffix(1);
  return s;
}

bool Eat(string_view& s, string_view word) {
  if (!s.starts_with(word)) return false;
  s.remove_prefix(word.size());
  return true;
}

// A number as librsvg's CSS reader takes it in styles and attributes: the
// digits summed one at a time in double precision (not always the nearest
// double), later narrowed to float by the caller. Exponents are refused:
// cairo never writes them.
bool CssNumber(string_view& s, double& value) {
  std::size_t i = 0;
  double sign = 1;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) sign = s[i++] == '-' ? -1 : 1;
  bool digits = false;
  double integral = 0;
  while (i < s.size() && IsDigit(s[i])) {
    integral = integral * 10 + (s[i++] - '0');
    digits = true;
  }
  double fractional = 0;
  if (i + 1 < s.size() && s[i] == '.' && IsDigit(s[i + 1])) {
    ++i;
    double factor = 0.1;
    while (i < s.size() && IsDigit(s[i])) {
      fractional += (s[i++] - '0') * factor;
      factor *= 0.1;
    }
    digits = true;
  }
  if (!digits || (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == '.'))) return false;
  value = sign * (integral + fractional);
  s.remove_prefix(i);
  return true;
}

// A whole value that is one finite number, at float precision.
bool CssFloat(string_view s, double& value) {
  double n = 0;
  if (!CssNumber(s, n) || !s.empty()) return false;
  const float f = static_cast<float>(n);
  if (!std::isfinite(f)) return false;
  value = f;
  return true;
}

// A length in user units: a number alone or in px. Others need the DPI or
// the viewport, which this reader does not take on.
bool CssLength(string_view s, double& value) {
  if (s.ends_with("px")) s.remove_suffix(2);
  return CssFloat(s, value) && value >= 0;
}

// An rgb() percentage as an 8-bit channel, the way librsvg's colour parser
// makes one: the fraction narrowed to float, times 255 in float, rounded half
// away from zero.
std::uint8_t PercentChannel(double percent) {
  const float unit = static_cast<float>(percent / 100.);
  const float scaled = std::round(unit * 255.0f);
  return static_cast<std::uint8_t>(std::min(std::max(scaled, 0.0f), 255.0f));
}

// fill-opacity and stroke-opacity fold into the colour's 8-bit alpha.
std::uint8_t OpacityAlpha(double opacity) {
  return static_cast<std::uint8_t>(std::clamp(std::round(255.0 * opacity), 0.0, 255.0));
}

// A number of path data as librsvg's own lexer takes it, then converted to
// the nearest double, as Rust's parser does.
bool PathNumber(string_view& s, double& value) {
  std::size_t i = 0;
  const bool plus = !s.empty() && s[0] == '+';
  if (!s.empty() && (s[0] == '+' || s[0] == '-')) ++i;
  std::size_t digits = 0;
  for (; i < s.size() && IsDigit(s[i]); ++i) ++digits;
  if (i < s.size() && s[i] == '.') {
    for (++i; i < s.size() && IsDigit(s[i]); ++i) ++digits;
  }
  if (digits == 0) return false;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    ++i;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    std::size_t exponent = 0;
    for (; i < s.size() && IsDigit(s[i]); ++i) ++exponent;
    if (exponent == 0) return false;
  }
  // "1.5.5" is two numbers to librsvg; refused rather than guessed at.
  if (i < s.size() && s[i] == '.') return false;
  const char* end = s.data() + i;
  const auto [stop, error] = std::from_chars(s.data() + (plus ? 1 : 0), end, value);
  if (error != std::errc() || stop != end || !std::isfinite(value)) return false;
  s.remove_prefix(i);
  return true;
}

bool StartsNumber(string_view s) {
  return !s.empty() && (IsDigit(s[0]) || s[0] == '+' || s[0] == '-' || s[0] == '.');
}

// Spaces and at most one comma between two numbers.
bool SkipSeparator(string_view& s) {
  SkipSpaces(s);
  const bool comma = Eat(s, ",");
  SkipSpaces(s);
  return comma;
}

// An affine transformation, named as cairo and librsvg name the parts.
struct Affine {
  double xx, yx, xy, yy, x0, y0;
};

// t1 then t2, computed term by term as librsvg's Transform::multiply does.
Affine Multiply(const Affine& t1, const Affine& t2) {
  return {t1.xx * t2.xx + t1.yx * t2.xy,         t1.xx * t2.yx + t1.yx * t2.yy,
          t1.xy * t2.xx + t1.yy * t2.xy,         t1.xy * t2.yx + t1.yy * t2.yy,
          t1.x0 * t2.xx + t1.y0 * t2.xy + t2.x0, t1.x0 * t2.yx + t1.y0 * t2.yy + t2.y0};
}

bool Invertible(const Affine& t) {
  const double det = t.xx * t.yy - t.xy * t.yx;
  return det != 0 && std::isfinite(det) && std::isfinite(t.x0) && std::isfinite(t.y0);
}

cairo_matrix_t ToCairo(const Affine& t) {
  return {t.xx, t.yx, t.xy, t.yy, t.x0, t.y0};
}

}  // namespace

class PlainSvgReader {
 public:
  using Shape = PlainSvg::Shape;
  using Paint = PlainSvg::Paint;

  static std::optional<PlainSvg> Read(const Bytes& bytes);

 private:
  explicit PlainSvgReader(PlainSvg& doc) : doc_(doc) {}

  bool Root(const pugi::xml_node& svg);
  bool Children(const pugi::xml_node& parent, int depth);
  bool PathElement(const pugi::xml_node& path);
  bool PathData(string_view d);
  static bool Declaration(const pugi::xml_node& decl);
  static bool Style(string_view style, Shape& shape);
  static bool Colour(string_view v, Paint& paint);
  static bool Matrix(string_view v, Shape& shape);

  PlainSvg& doc_;
};

std::optional<PlainSvg> PlainSvg::Read(const Bytes& bytes) {
  return PlainSvgReader::Read(bytes);
}

std::optional<PlainSvg> PlainSvgReader::Read(const Bytes& bytes) {
  if (bytes.size() > kMaxBytes) return std::nullopt;
  // Plain ASCII without references: no encodings or entities for the two XML
  // readers to disagree on, and no control characters libxml2 would refuse.
  for (const std::uint8_t b : bytes) {
    if (b >= 0x80 || b == '&' || (b < 0x20 && b != '\t' && b != '\n' && b != '\r')) return std::nullopt;
  }
  // Everything that is not an element or the declaration is kept, so that
  // it can be refused: comments, CDATA, doctypes, processing instructions,
  // and text outside the root, which pugixml would otherwise drop and
  // libxml2 refuses.
  const unsigned flags = pugi::parse_declaration | pugi::parse_doctype | pugi::parse_pi |
                         pugi::parse_comments | pugi::parse_cdata | pugi::parse_wconv_attribute |
                         pugi::parse_eol | pugi::parse_fragment;
  pugi::xml_document xml;
  if (bytes.empty() || !xml.load_buffer(bytes.data(), bytes.size(), flags, pugi::encoding_utf8))
    return std::nullopt;

  PlainSvg doc;
  PlainSvgReader reader(doc);
  const string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  pugi::xml_node root;
  for (const pugi::xml_node& node : xml.children()) {
    if (node.type() == pugi::node_declaration) {
      // Only at the very start, where libxml2 takes it too.
      if (node != xml.first_child() || !text.starts_with("<?xml") || !Declaration(node)) return std::nullopt;
    } else if (node.type() == pugi::node_element && !root) {
      root = node;
    } else {
      return std::nullopt;
    }
  }
  if (!root || !reader.Root(root)) return std::nullopt;
  return doc;
}

bool PlainSvgReader::Declaration(const pugi::xml_node& decl) {
  // version, then encoding, then standalone, in XML's own order.
  pugi::xml_attribute a = decl.first_attribute();
  if (!a || string_view(a.name()) != "version" || string_view(a.value()) != "1.0") return false;
  a = a.next_attribute();
  if (a && string_view(a.name()) == "encoding") {
    const string_view e = a.value();
    if (e != "UTF-8" && e != "utf-8") return false;
    a = a.next_attribute();
  }
  if (a && string_view(a.name()) == "standalone") {
    const string_view s = a.value();
    if (s != "yes" && s != "no") return false;
    a = a.next_attribute();
  }
  return !a;
}

bool PlainSvgReader::Root(const pugi::xml_node& svg) {
  if (string_view(svg.name()) != "svg") return false;
  enum : unsigned { kXmlns = 1, kXlink = 2, kVersion = 4, kWidth = 8, kHeight = 16, kViewBox = 32 };
  unsigned seen = 0;
  for (const pugi::xml_attribute& a : svg.attributes()) {
    const string_view name = a.name(), value = a.value();
    unsigned bit = 0;
    if (name == "xmlns") {
      bit = kXmlns;
      if (value != kSvgNamespace) return false;
    } else if (name == "xmlns:xlink") {
      bit = kXlink;
      if (value != kXlinkNamespace) return false;
    } else if (name == "version") {
      bit = kVersion;
      if (value.find('<') != string_view::npos) return false;
    } else if (name == "width" || name == "height") {
      // Unused when drawing into a box, but a bad one is an error to librsvg.
      bit = name == "width" ? kWidth : kHeight;
      string_view v = Trim(value);
      if (v.ends_with("pt") || v.ends_with("px")) v.remove_suffix(2);
      double n = 0;
      if (!CssFloat(v, n) || !(n > 0)) return false;
    } else if (name == "viewBox") {
      bit = kViewBox;
      string_view v = Trim(value);
      for (int i = 0; i < 4; ++i) {
        if (i > 0) {
          if (v.empty() || (!IsSpace(v[0]) && v[0] != ',')) return false;
          SkipSeparator(v);
        }
        double n = 0;
        if (!CssNumber(v, n)) return false;
        const float f = static_cast<float>(n);
        if (!std::isfinite(f)) return false;
        doc_.viewBox_[i] = f;
      }
      // A box so thin that librsvg calls it empty is left to librsvg.
      if (!v.empty() || !(doc_.viewBox_[2] >= 0.01) || !(doc_.viewBox_[3] >= 0.01)) return false;
    } else {
      return false;
    }
    if (seen & bit) return false;
    seen |= bit;
  }
  if (!(seen & kXmlns) || !(seen & kViewBox)) return false;
  return Children(svg, 0);
}

bool PlainSvgReader::Children(const pugi::xml_node& parent, int depth) {
  if (depth > kMaxDepth) return false;
  for (const pugi::xml_node& child : parent.children()) {
    if (child.type() != pugi::node_element) return false;
    const string_view name = child.name();
    if (name == "path") {
      if (!PathElement(child)) return false;
    } else if (name == "g") {
      bool id = false;
      for (const pugi::xml_attribute& a : child.attributes()) {
        if (string_view(a.name()) != "id" || id || string_view(a.value()).find('<') != string_view::npos)
          return false;
        id = true;
      }
      if (!Children(child, depth + 1)) return false;
    } else {
      return false;
    }
  }
  return true;
}

bool PlainSvgReader::PathElement(const pugi::xml_node& path) {
  if (path.first_child()) return false;
  Shape shape;
  string_view d;
  bool seenD = false, seenStyle = false, seenId = false;
  for (const pugi::xml_attribute& a : path.attributes()) {
    const string_view name = a.name(), value = a.value();
    if (name == "d" && !seenD) {
      seenD = true;
      d = value;
    } else if (name == "style" && !seenStyle) {
      seenStyle = true;
      if (!Style(value, shape)) return false;
    } else if (name == "transform" && !shape.hasMatrix) {
      if (!Matrix(value, shape)) return false;
    } else if (name == "id" && !seenId) {
      seenId = true;
      if (value.find('<') != string_view::npos) return false;
    } else {
      return false;
    }
  }
  if (!seenD) return false;
  shape.firstVerb = static_cast<std::uint32_t>(doc_.verbs_.size());
  shape.firstPoint = static_cast<std::uint32_t>(doc_.points_.size());
  if (!PathData(d)) return false;
  shape.endVerb = static_cast<std::uint32_t>(doc_.verbs_.size());
  doc_.shapes_.push_back(shape);
  return true;
}

bool PlainSvgReader::PathData(string_view d) {
  SkipSpaces(d);
  if (!d.starts_with("M")) return false;
  while (!d.empty()) {
    const char command = d.front();
    d.remove_prefix(1);
    if (command == 'Z') {
      doc_.verbs_.push_back('Z');
    } else if (command == 'M' || command == 'L' || command == 'C') {
      const int count = command == 'C' ? 6 : 2;
      char verb = command;
      SkipSpaces(d);
      for (;;) {
        for (int k = 0; k < count; ++k) {
          if (k > 0) SkipSeparator(d);
          double v = 0;
          if (!PathNumber(d, v)) return false;
          doc_.points_.push_back(v);
        }
        doc_.verbs_.push_back(verb);
        // More sets of numbers repeat the command; after a move, as lines.
        if (verb == 'M') verb = 'L';
        string_view rest = d;
        const bool comma = SkipSeparator(rest);
        if (!StartsNumber(rest)) {
          if (comma) return false;
          break;
        }
        d = rest;
      }
    } else {
      return false;
    }
    SkipSpaces(d);
  }
  return true;
}

bool PlainSvgReader::Style(string_view style, Shape& shape) {
  // Comments, !important, escapes, strings, blocks and at-rules are all
  // outside what cairo writes.
  if (style.find_first_of("!/\\\"'{}@<") != string_view::npos) return false;
  enum : unsigned {
    kFill = 1,
    kFillRule = 2,
    kFillOpacity = 4,
    kStroke = 8,
    kStrokeWidth = 16,
    kCap = 32,
    kJoin = 64,
    kMiter = 128,
    kStrokeOpacity = 256
  };
  unsigned seen = 0;
  double fillOpacity = 1, strokeOpacity = 1;
  while (!style.empty()) {
    const std::size_t semicolon = style.find(';');
    const string_view declaration = Trim(style.substr(0, semicolon));
    style.remove_prefix(semicolon == string_view::npos ? style.size() : semicolon + 1);
    if (declaration.empty()) continue;
    const std::size_t colon = declaration.find(':');
    if (colon == string_view::npos) return false;
    const string_view name = Trim(declaration.substr(0, colon));
    const string_view value = Trim(declaration.substr(colon + 1));
    unsigned bit = 0;
    bool ok = false;
    if (name == "fill") {
      bit = kFill;
      ok = Colour(value, shape.fill);
    } else if (name == "stroke") {
      bit = kStroke;
      ok = Colour(value, shape.stroke);
    } else if (name == "fill-rule") {
      bit = kFillRule;
      ok = value == "nonzero" || value == "evenodd";
      shape.evenOdd = value == "evenodd";
    } else if (name == "fill-opacity" || name == "stroke-opacity") {
      const bool fill = name == "fill-opacity";
      bit = fill ? kFillOpacity : kStrokeOpacity;
      double& o = fill ? fillOpacity : strokeOpacity;
      ok = CssFloat(value, o);
      o = std::clamp(o, 0.0, 1.0);
    } else if (name == "stroke-width") {
      bit = kStrokeWidth;
      ok = CssLength(value, shape.lineWidth);
    } else if (name == "stroke-linecap") {
      // "square" is left out: librsvg adds a tiny line to empty sub-paths for it.
      bit = kCap;
      ok = value == "butt" || value == "round";
      shape.cap = value == "round" ? PlainSvg::Cap::Round : PlainSvg::Cap::Butt;
    } else if (name == "stroke-linejoin") {
      bit = kJoin;
      ok = value == "miter" || value == "round" || value == "bevel";
      shape.join = value == "round"   ? PlainSvg::Join::Round
                   : value == "bevel" ? PlainSvg::Join::Bevel
                                      : PlainSvg::Join::Miter;
    } else if (name == "stroke-miterlimit") {
      bit = kMiter;
      ok = CssFloat(value, shape.miterLimit) && shape.miterLimit >= 1;
    }
    if (!ok || (seen & bit)) return false;
    seen |= bit;
  }
  shape.fill.a = OpacityAlpha(fillOpacity);
  shape.stroke.a = OpacityAlpha(strokeOpacity);
  return true;
}

bool PlainSvgReader::Colour(string_view v, Paint& paint) {
  if (v == "none") {
    paint.on = false;
    return true;
  }
  if (!Eat(v, "rgb(")) return false;
  std::uint8_t channel[3];
  for (int i = 0; i < 3; ++i) {
    SkipSpaces(v);
    double percent = 0;
    if (!CssNumber(v, percent) || !Eat(v, "%")) return false;
    SkipSpaces(v);
    if (i < 2 && !Eat(v, ",")) return false;
    channel[i] = PercentChannel(percent);
  }
  if (v != ")") return false;
  paint.on = true;
  paint.r = channel[0];
  paint.g = channel[1];
  paint.b = channel[2];
  return true;
}

bool PlainSvgReader::Matrix(string_view v, Shape& shape) {
  // Only the one form cairo writes: matrix(xx,yx,xy,yy,x0,y0).
  v = Trim(v);
  if (!Eat(v, "matrix(")) return false;
  for (int i = 0; i < 6; ++i) {
    SkipSpaces(v);
    double n = 0;
    if (!CssNumber(v, n)) return false;
    const float f = static_cast<float>(n);
    if (!std::isfinite(f)) return false;
    shape.matrix[i] = f;
    SkipSpaces(v);
    if (i < 5 && !Eat(v, ",")) return false;
  }
  const auto& m = shape.matrix;
  if (v != ")" || !Invertible({m[0], m[1], m[2], m[3], m[4], m[5]})) return false;
  shape.hasMatrix = true;
  return true;
}

bool PlainSvg::Draw(DrawingContext& ctx, double x, double y, double w, double h) const {
  if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(w) || !std::isfinite(h)) return false;
  cairo_t* cr = ctx.Native();
  if (cairo_status(cr) != CAIRO_STATUS_SUCCESS) return false;

  // librsvg moves the origin to the box's corner, and sees a viewport from
  // there to the far corner.
  cairo_matrix_t user;
  cairo_get_matrix(cr, &user);
  const Affine start = Multiply({1, 0, 0, 1, x, y}, {user.xx, user.yx, user.xy, user.yy, user.x0, user.y0});
  const double vpw = (x + w) - x, vph = (y + h) - y;

  // The view box fitted into it, in proportion and centred.
  const double vbx = viewBox_[0], vby = viewBox_[1];
  const double vbw = (vbx + viewBox_[2]) - vbx, vbh = (vby + viewBox_[3]) - vby;
  const double factor = std::min(vpw / vbw, vph / vbh);
  const double fitW = vbw * factor, fitH = vbh * factor;
  const double fitX = 0.0 + (vpw - fitW) / 2.0, fitY = 0.0 + (vph - fitH) / 2.0;
  const double sx = ((fitX + fitW) - fitX) / vbw, sy = ((fitY + fitH) - fitY) / vbh;
  const Affine fit =
      Multiply({1, 0, 0, 1, -vbx, -vby}, Multiply({sx, 0, 0, sy, 0, 0}, {1, 0, 0, 1, fitX, fitY}));
  // A box librsvg would call empty, or a transformation cairo would refuse,
  // is left to librsvg.
  if (!(vpw >= 0.01) || !(vph >= 0.01) || !Invertible(start) || !Invertible(fit)) return false;

  cairo_save(cr);
  const cairo_matrix_t startMatrix = ToCairo(start), fitMatrix = ToCairo(fit);
  cairo_set_matrix(cr, &startMatrix);
  cairo_transform(cr, &fitMatrix);
  for (const Shape& s : shapes_) {
    cairo_save(cr);
    if (s.hasMatrix) {
      const auto& m = s.matrix;
      const cairo_matrix_t own{m[0], m[1], m[2], m[3], m[4], m[5]};
      cairo_transform(cr, &own);
    }
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_DEFAULT);
    cairo_set_line_width(cr, s.lineWidth);
    cairo_set_miter_limit(cr, s.miterLimit);
    cairo_set_line_cap(cr, s.cap == Cap::Round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(cr, s.join == Join::Round   ? CAIRO_LINE_JOIN_ROUND
                            : s.join == Join::Bevel ? CAIRO_LINE_JOIN_BEVEL
                                                    : CAIRO_LINE_JOIN_MITER);
    cairo_set_dash(cr, nullptr, 0, 0);
    cairo_set_fill_rule(cr, s.evenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    cairo_new_path(cr);
    const double* p = points_.data() + s.firstPoint;
    for (std::uint32_t i = s.firstVerb; i < s.endVerb; ++i) {
      switch (verbs_[i]) {
        case 'M':
          cairo_move_to(cr, p[0], p[1]);
          p += 2;
          break;
        case 'L':
          cairo_line_to(cr, p[0], p[1]);
          p += 2;
          break;
        case 'C':
          cairo_curve_to(cr, p[0], p[1], p[2], p[3], p[4], p[5]);
          p += 6;
          break;
        default:
          cairo_close_path(cr);
          break;
      }
    }
    // Colours as librsvg hands them to cairo: each 8-bit channel over 255 in
    // float.
    const auto channel = [](std::uint8_t c) { return static_cast<double>(static_cast<float>(c) / 255.0f); };
    for (const Paint* paint : {&s.fill, &s.stroke}) {
      if (!paint->on) continue;
      cairo_set_source_rgba(cr, channel(paint->r), channel(paint->g), channel(paint->b), channel(paint->a));
      if (paint == &s.fill)
        cairo_fill_preserve(cr);
      else
        cairo_stroke_preserve(cr);
    }
    cairo_new_path(cr);
    cairo_restore(cr);
  }
  cairo_restore(cr);
  return cairo_status(cr) == CAIRO_STATUS_SUCCESS;
}

}  // namespace qds
