#include "engine/modParser.h"

#include <algorithm>
#include <cmath>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/XmlDocument.h"

namespace qds {

namespace {

std::uint8_t CommandCode(char c) {
  switch (c) {
    case 'M':
      return PathCode::Move;
    case 'm':
      return PathCode::RelMove;
    case 'L':
      return PathCode::Line;
    case 'l':
      return PathCode::RelLine;
    case 'A':
      return PathCode::Arc;
    case 'a':
      return PathCode::RelArc;
    case 'H':
      return PathCode::HLine;
    case 'h':
      return PathCode::RelHLine;
    case 'V':
      return PathCode::VLine;
    case 'v':
      return PathCode::RelVLine;
    case 'C':
      return PathCode::Curve;
    case 'c':
      return PathCode::RelCurve;
    case 'S':
      return PathCode::Smooth;
    case 's':
      return PathCode::RelSmooth;
    case 'Q':
      return PathCode::Quad;
    case 'q':
      return PathCode::RelQuad;
    case 'Z':
    case 'z':
      return PathCode::Close;
    default:
      return 0;
  }
}

// The number being read.
struct Number {
  bool active = false;  // a digit or sign has been seen
  bool digits = false;  // a digit has been seen
  bool fraction = false;
  bool exponent = false;
  bool expNegative = false;
  double sign = 1;
  double integer = 0;
  double frac = 0;
  double scale = 1;
  int exp = 0;

  double Value() const {
    double v = (frac / scale + integer) * sign;
    if (exp != 0) v = expNegative ? v / std::pow(10.0, exp) : v * std::pow(10.0, exp);
    return v;
  }
};

}  // namespace

void ParsePoints(std::string_view d, std::vector<float>& numbers, std::vector<std::uint8_t>& codes) {
  numbers.clear();
  codes.clear();
  std::uint8_t pending = 0;
  Number n;
  const auto push = [&](double value, std::uint8_t code) {
    // Damaged data must not hand infinities to the drawing: no icon needs
    // coordinates beyond a million units.
    if (!std::isfinite(value)) value = 0;
    value = std::clamp(value, -1e6, 1e6);
    numbers.push_back(static_cast<float>(value));
    codes.push_back(code);
  };
  const auto finish = [&] {
    if (n.active && n.digits) {
      push(n.Value(), pending);
      pending = 0;
    }
    n = Number();
  };
  for (char c : d) {
    if (c >= '0' && c <= '9') {
      const int digit = c - '0';
      n.active = true;
      if (n.exponent) {
        if (n.exp < 1000) n.exp = n.exp * 10 + digit;
      } else if (n.fraction) {
        if (n.scale < 1e9) {
          n.frac = n.frac * 10 + digit;
          n.scale *= 10;
        }
        n.digits = true;
      } else {
        n.integer = n.integer * 10 + digit;
        n.digits = true;
      }
    } else if (c == '.') {
      if (n.exponent) {
        finish();
      }
      // A further point in the same number only starts the scale again.
      n.active = true;
      n.fraction = true;
      n.scale = 1;
    } else if (c == '-') {
      if (n.exponent && n.exp == 0 && !n.expNegative) {
        n.expNegative = true;
      } else if (n.active) {
        finish();  // a minus after the number begun starts the next one
        n.active = true;
        n.sign = -1;
      } else {
        n.active = true;
        n.sign = -1;
      }
    } else if ((c == 'e' || c == 'E') && n.digits && !n.exponent) {
      n.exponent = true;
    } else {
      finish();
      if (const std::uint8_t code = CommandCode(c)) {
        if (code == PathCode::Close) {
          push(0, PathCode::Close);
          pending = 0;
        } else {
          pending = code;
        }
      }
    }
  }
  finish();
}

void RenderPath(DrawingContext& ctx, const std::vector<float>& n, const std::vector<std::uint8_t>& codes) {
  const std::size_t count = std::min(n.size(), codes.size());
  if (count < 2) return;
  std::uint8_t code = 0;
  double lastX = 0, lastY = 0;  // the last control point, for smooth curves
  const auto current = [&] {
    const auto p = ctx.CurrentPoint();
    return p ? *p : std::make_pair(0.0, 0.0);
  };
  std::size_t i = 0;
  while (i < count) {
    if (codes[i] != 0) {
      code = codes[i];
    } else if (code == PathCode::Move) {
      code = PathCode::Line;
    } else if (code == PathCode::RelMove) {
      code = PathCode::RelLine;
    }
    const auto need = [&](std::size_t k) { return i + k <= count; };
    switch (code) {
      case PathCode::Move:
        if (!need(2)) return;
        ctx.MoveTo(n[i], n[i + 1]);
        i += 2;
        break;
      case PathCode::RelMove:
        if (!need(2)) return;
        if (i == 0) {
          ctx.MoveTo(n[i], n[i + 1]);
        } else {
          ctx.RelMoveTo(n[i], n[i + 1]);
        }
        i += 2;
        break;
      case PathCode::Line:
        if (!need(2)) return;
        ctx.LineTo(n[i], n[i + 1]);
        i += 2;
        break;
      case PathCode::RelLine:
        if (!need(2)) return;
        ctx.RelLineTo(n[i], n[i + 1]);
        i += 2;
        break;
      case PathCode::Arc:
      case PathCode::RelArc:
        if (!need(7)) return;
        if (code == PathCode::Arc) {
          ctx.SvgArcTo(n[i], n[i + 1], n[i + 2], n[i + 3] != 0, n[i + 4] != 0, n[i + 5], n[i + 6]);
        } else {
          ctx.RelSvgArcTo(n[i], n[i + 1], n[i + 2], n[i + 3] != 0, n[i + 4] != 0, n[i + 5], n[i + 6]);
        }
        i += 7;
        break;
      case PathCode::HLine:
        ctx.LineTo(n[i], current().second);
        i += 1;
        break;
      case PathCode::RelHLine:
        ctx.RelLineTo(n[i], 0);
        i += 1;
        break;
      case PathCode::VLine:
        ctx.LineTo(current().first, n[i]);
        i += 1;
        break;
      case PathCode::RelVLine:
        ctx.RelLineTo(0, n[i]);
        i += 1;
        break;
      case PathCode::Curve:
        if (!need(6)) return;
        ctx.CurveTo(n[i], n[i + 1], n[i + 2], n[i + 3], n[i + 4], n[i + 5]);
        lastX = n[i + 2], lastY = n[i + 3];
        i += 6;
        break;
      case PathCode::RelCurve: {
        if (!need(6)) return;
        const auto [cx, cy] = current();
        ctx.RelCurveTo(n[i], n[i + 1], n[i + 2], n[i + 3], n[i + 4], n[i + 5]);
        lastX = n[i + 2] + cx, lastY = n[i + 3] + cy;
        i += 6;
        break;
      }
      case PathCode::Smooth: {
        if (!need(4)) return;
        const auto [cx, cy] = current();
        ctx.CurveTo(2 * cx - lastX, 2 * cy - lastY, n[i], n[i + 1], n[i + 2], n[i + 3]);
        lastX = n[i], lastY = n[i + 1];
        i += 4;
        break;
      }
      case PathCode::RelSmooth: {
        if (!need(4)) return;
        const auto [cx, cy] = current();
        ctx.RelCurveTo(cx - lastX, cy - lastY, n[i], n[i + 1], n[i + 2], n[i + 3]);
        lastX = n[i] + cx, lastY = n[i + 1] + cy;
        i += 4;
        break;
      }
      case PathCode::Quad:
        // A quadratic drawn by this cubic, not by the exact conversion.
        if (!need(4)) return;
        ctx.CurveTo(n[i], n[i + 1], n[i + 2], n[i + 3], n[i + 2], n[i + 3]);
        i += 4;
        break;
      case PathCode::RelQuad:
        if (!need(4)) return;
        ctx.RelCurveTo(n[i], n[i + 1], n[i + 2], n[i + 3], n[i + 2], n[i + 3]);
        i += 4;
        break;
      case PathCode::Close:
        ctx.ClosePath();
        i += 1;
        break;
      default:
        i += 1;  // numbers before any command
        break;
    }
  }
}

KeyedCollection<PathPtr> GetCairoPathsFromSVG(std::string_view svg) {
  KeyedCollection<PathPtr> paths;
  SvgDocument doc;
  if (!doc.Parse(svg)) return paths;
  SurfacePtr surface = DrawingSurface::Create(1, 1);
  DrawingContext ctx(surface);
  std::vector<float> numbers;
  std::vector<std::uint8_t> codes;
  for (const XmlNode& e : doc.Elements()) {
    if (e.Name() != "path") continue;
    ParsePoints(e.Attribute("d"), numbers, codes);
    ctx.NewPath();
    RenderPath(ctx, numbers, codes);
    paths.Add(ctx.CopyPath(false, 0.1));
  }
  return paths;
}

}  // namespace qds
