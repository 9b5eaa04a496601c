#pragma once
// Drawing state bound to one surface: transformation, path, source, clip,
// operator and font. Angles of Rotate are in degrees; arcs take radians.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Drawing.h"
#include "platform/Path.h"
#include "platform/Pattern.h"

typedef struct _cairo cairo_t;

namespace qds {

// Text alignment in a box. Horizontal: 0 left, 1 right, 2 centre.
// Vertical: 2 bottom, 3 centre, any other value top.
namespace TextAlign {
constexpr int Left = 0, Right = 1, Center = 2;
constexpr int Top = 0, Bottom = 2, Middle = 3;
}  // namespace TextAlign

struct TextSize {
  double width, height;
};

class DrawingContext {
 public:
  explicit DrawingContext(SurfacePtr target);
  ~DrawingContext();
  DrawingContext(const DrawingContext&) = delete;
  DrawingContext& operator=(const DrawingContext&) = delete;

  const SurfacePtr& Surface() const { return target_; }

  void Save();
  void Restore();
  // How many Saves are not yet restored: lets a caller put the state back
  // after drawing code that failed half way.
  int SaveDepth() const { return saveDepth_; }

  Matrix GetMatrix() const;
  void SetMatrix(const Matrix& m);
  void ResetMatrix();
  void Translate(double x, double y);
  void Scale(double sx, double sy);
  void Rotate(double degrees);

  int Operator() const;
  void SetOperator(int cairoOperator);  // raises for numbers cairo does not know
  bool Antialias() const;
  void SetAntialias(bool on);
  qds::FillRule FillRule() const;
  void SetFillRule(qds::FillRule rule);
  double LineWidth() const;
  void SetLineWidth(double width);
  void SetDash(const std::vector<double>& dashes, double offset = 0);  // empty: solid

  // Path.
  void MoveTo(double x, double y);
  void RelMoveTo(double dx, double dy);
  void LineTo(double x, double y);
  void RelLineTo(double dx, double dy);
  void CurveTo(double x1, double y1, double x2, double y2, double x3, double y3);
  void RelCurveTo(double dx1, double dy1, double dx2, double dy2, double dx3, double dy3);
  // The elliptical arc of SVG path data ("A" and "a"): radii, rotation of
  // the x axis in degrees, the two flags, and the end point. Radii that are
  // too small are scaled up as SVG requires; a zero radius draws a line.
  void SvgArcTo(double rx, double ry, double xAxisRotation, bool largeArc, bool sweep, double x, double y);
  void RelSvgArcTo(double rx, double ry, double xAxisRotation, bool largeArc, bool sweep, double dx,
                   double dy);
  void Arc(double cx, double cy, double r, double angle1, double angle2);
  void ArcNegative(double cx, double cy, double r, double angle1, double angle2);
  void Ellipse(double cx, double cy, double rx, double ry);
  void Rectangle(double x, double y, double w, double h);
  void RoundedRectangle(double x, double y, double w, double h, double radius);
  void ClosePath();
  std::optional<std::pair<double, double>> CurrentPoint() const;
  void NewPath();  // clears the path
  void AppendPath(const Path& path);
  // A copy of the current path; `flat` turns curves into lines within
  // `tolerance` (in device pixels).
  PathPtr CopyPath(bool flat = false, double tolerance = 0.1) const;

  // Painting.
  void Fill(bool preserve = false);
  void Stroke(bool preserve = false);
  void Clip(bool preserve = false);
  void ResetClip();
  void Paint(double alpha = 1);
  void SetSourceColor(std::int64_t colour, double alpha = 1);  // 0xBBGGRR
  void SetSource(const Pattern& pattern);
  void SetSourceSurface(const SurfacePtr& surface, double x, double y);
  Pattern Source() const;
  void Mask(const Pattern& mask);
  void MaskSurface(const SurfacePtr& surface, double x, double y);
  void PushGroup();
  Pattern PopGroup();  // to a pattern
  void PopGroupToSource();
  // Draws a whole surface scaled into the box (x, y, w, h).
  void DrawSurface(const SurfacePtr& surface, double x, double y, double w, double h,
                   int filter = Filter::Good, double alpha = 1);

  // Text. Sizes are points at 96 dpi. Text is laid out with pango and added
  // as outlines, so that an SVG surface receives plain path elements.
  void SelectFont(const std::string& name, double size, std::int64_t colour = 0, bool bold = false,
                  bool italic = false, bool underline = false);
  // Whether text may wrap at the width of its box; off for a new context.
  // Wrapping is asked for here, by the code that lays out a block of text,
  // and not by the layout flag alone: a text layer hands that flag the
  // negation of its underline, and an underline must not break a line.
  void SetWordWrap(bool on) { wordWrap_ = on; }
  bool WordWrap() const { return wordWrap_; }
  // Adds the text's outlines to the path and fills them with the font's
  // colour. The text wraps at the box width when word wrap is on and
  // singleLine is false; otherwise it stays on its lines. The character at
  // byte `underlinedAt`, if any, is underlined (an access key).
  void DrawText(double x, double y, double w, double h, std::string_view text, bool singleLine = true,
                int hAlign = TextAlign::Left, int vAlign = TextAlign::Top, int underlinedAt = -1);
  // The same outlines added to the path only.
  void TextPath(double x, double y, double w, double h, std::string_view text, bool singleLine = true,
                int hAlign = TextAlign::Left, int vAlign = TextAlign::Top, int underlinedAt = -1);
  TextSize MeasureText(std::string_view text) const;
  // As DrawText lays it out in a box `width` wide: wrapped when word wrap is on.
  TextSize MeasureText(std::string_view text, double width) const;
  // Where a caret stands in one line of text drawn from x = 0: before each
  // character (code point) and after the last, so one more entry than the
  // text has characters. Measured in one layout, so kerning and clusters
  // count as they do when the line is drawn whole.
  std::vector<double> CaretPositions(std::string_view text) const;

  cairo_t* Native() const { return cr_; }

 private:
  SurfacePtr target_;
  cairo_t* cr_;
  int saveDepth_ = 0;
  std::string fontName_ = "Liberation Sans";
  double fontSize_ = 10;
  std::int64_t fontColour_ = 0;
  bool bold_ = false, italic_ = false, underline_ = false;
  bool wordWrap_ = false;
};

// Family names of the installed fonts, sorted without regard to case.
std::vector<std::string> InstalledFontFamilies();
// The family fontconfig gives for "sans" on this desktop; empty when it
// finds none.
std::string DefaultSansFamily();

}  // namespace qds
