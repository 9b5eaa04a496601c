#pragma once
// A quick reader and painter for the plain documents cairo's SVG surface
// writes: an svg root with a view box, groups, and paths of absolute M, L, C
// and Z commands painted with solid colours. Pages of icon thumbnails are
// mostly these, and librsvg spends most of its time reading them.
//
// Reading is strict: anything outside that form (another element or
// attribute, a property or value not listed below, relative commands,
// compressed bytes, anything the XML reader would take but libxml2 might
// not) gives no document, and the caller draws through librsvg instead.
// Drawing makes the very cairo calls librsvg 2.54 makes for the same
// document, with numbers read and rounded the way it reads them, so the
// pixels are the same.

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/Bytes.h"

namespace qds {

class DrawingContext;

class PlainSvg {
 public:
  // Null for bytes that are not a plain document.
  static std::optional<PlainSvg> Read(const Bytes& bytes);

  // Draws into the box (x, y, w, h) as librsvg's render_document does: the
  // view box scaled to fit, kept in proportion and centred. False, with
  // nothing drawn, for an empty box or a context it cannot draw on.
  bool Draw(DrawingContext& ctx, double x, double y, double w, double h) const;

 private:
  friend class PlainSvgReader;

  // A solid colour with its opacity folded into alpha, 8 bits a channel.
  struct Paint {
    bool on = false;
    std::uint8_t r = 0, g = 0, b = 0, a = 255;
  };
  // Cairo's numbers for the line cap and join.
  enum class Cap : std::uint8_t { Butt, Round };
  enum class Join : std::uint8_t { Miter, Round, Bevel };

  struct Shape {
    std::uint32_t firstVerb = 0, endVerb = 0, firstPoint = 0;
    Paint fill{true};
    Paint stroke;
    bool evenOdd = false;
    double lineWidth = 1, miterLimit = 4;
    Cap cap = Cap::Butt;
    Join join = Join::Miter;
    bool hasMatrix = false;
    std::array<double, 6> matrix{};  // xx, yx, xy, yy, x0, y0
  };

  PlainSvg() = default;

  std::array<double, 4> viewBox_{};  // x, y, width, height
  std::vector<Shape> shapes_;
  std::vector<char> verbs_;     // 'M', 'L', 'C', 'Z'
  std::vector<double> points_;  // two numbers for M and L, six for C
};

}  // namespace qds
