#include "engine/modPixelOps.h"

#include "app/AppContext.h"
#include "engine/cSVGItem.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/SvgRenderer.h"

namespace qds {

Margins GetInnerDimensions(const SurfacePtr& scratch, const Bytes& svg, double& scale, double angle,
                           bool keep) {
  const auto clear = [&] {
    DrawingContext ctx(scratch);
    ctx.SetOperator(Op::Clear);
    ctx.Paint();
  };
  if (!keep) {
    clear();
    DrawingContext ctx(scratch);
    App().SvgRenderer->Render(ctx, svg, 0, 0, scratch->Width(), scratch->Height(), angle);
  }
  const int width = scratch->Width(), height = scratch->Height();
  int top = -1, bottomRow = -1;
  int leftByte = 4 * width - 3, rightByte = 0;
  {
    const PixelView v = scratch->Pixels();
    const std::uint8_t* data = v.Bytes();
    for (int y = 0; y < height; ++y) {
      const std::uint8_t* row = data + static_cast<std::size_t>(y) * v.Stride();
      for (int x = 0; x < 4 * width; x += 4) {
        if (row[x + 3] == 0) continue;
        if (top < 0) top = y;
        if (x < leftByte) leftByte = x;
        break;  // the first ink of a row is its leftmost
      }
    }
    for (int y = height - 1; y >= 0 && top >= 0; --y) {
      const std::uint8_t* row = data + static_cast<std::size_t>(y) * v.Stride();
      for (int x = 4 * width - 4; x >= leftByte; x -= 4) {
        if (row[x + 3] == 0) continue;
        if (bottomRow < 0) bottomRow = y;
        if (x > rightByte) rightByte = x;
        break;
      }
    }
  }
  Margins m;
  m.Left = leftByte / 4.0;
  m.Top = top;
  m.Right = width - rightByte / 4.0 - 1;
  m.Bottom = height - bottomRow - 1;
  if (m.Top + m.Bottom <= m.Left + m.Right) {
    if (m.Top + m.Bottom < height) scale = height / (height - m.Top - m.Bottom);
  } else if (m.Left + m.Right < width) {
    scale = width / (width - m.Left - m.Right);
  }
  if (!keep) clear();
  return m;
}

PathPtr GetPathFromIcon(const cSVGItem&) {
  // The border tracer that makes this outline arrives with the raster
  // routines; until then a clip with an icon has no path and is skipped.
  return nullptr;
}

PathPtr GetShadowPathFromShape(const std::string&, const std::string&, double, double, double) {
  // Built from the traced symbol with the raster routines; until then a
  // long-shadow layer keeps the picture it has.
  return nullptr;
}

}  // namespace qds
