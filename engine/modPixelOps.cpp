#include "engine/modPixelOps.h"

#include <cmath>
#include <unordered_set>

#include "app/AppContext.h"
#include "engine/cSVGItem.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/SvgRenderer.h"
#include "platform/Value.h"

namespace qds {

namespace {

// Marks the inside of a traced outline so that it is not traced again.
constexpr std::int32_t kTraced = -61185;          // 0xFFFF10FF
constexpr std::int64_t kTracedColour = 0xFF10FF;  // the same as a colour value
// The background of a long shadow: rgb(252,252,252), opaque.
constexpr std::int32_t kDummy = -197380;
constexpr int kMaxSteps = 100000;
constexpr std::size_t kMaxMargins = 4096;

void Clear(const SurfacePtr& s) {
  DrawingContext ctx(s);
  ctx.SetOperator(Op::Clear);
  ctx.Paint();
}

std::int64_t PointKey(int x, int y) {
  return (static_cast<std::int64_t>(x) << 32) | static_cast<std::uint32_t>(y);
}

}  // namespace

Margins GetInnerDimensions(const SurfacePtr& scratch, const Bytes& svg, double& scale, double angle,
                           bool keep) {
  if (!keep) {
    Clear(scratch);
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
  if (!keep) Clear(scratch);
  return m;
}

Margins MeasureMargins(const Bytes& svg, double angle, int width, int height, double* scale,
                       SurfacePtr* drawn) {
  AppContext& app = App();
  const std::string key = ContentHash(svg) + "|" + FormatDouble(angle) + "|" + std::to_string(width) + "x" +
                          std::to_string(height);
  auto it = app.MarginCache.find(key);
  if (it == app.MarginCache.end()) {
    if (app.MarginCache.size() >= kMaxMargins) app.MarginCache.clear();
    // A new surface is clear already, and nobody else sees it afterwards:
    // draw, then measure what is there.
    SurfacePtr scratch = DrawingSurface::Create(width, height);
    {
      DrawingContext ctx(scratch);
      app.SvgRenderer->Render(ctx, svg, 0, 0, width, height, angle);
    }
    double s = 0;
    const Margins m = GetInnerDimensions(scratch, svg, s, angle, true);
    it = app.MarginCache.emplace(key, std::array<double, 5>{m.Left, m.Top, m.Right, m.Bottom, s}).first;
    if (drawn) *drawn = scratch;
  }
  const auto& v = it->second;
  if (scale && v[4] != 0) *scale = v[4];
  return {v[0], v[1], v[2], v[3]};
}

std::string CachedSurfaceKey(const cSVGItem& item, int side) {
  return ContentHash(item.SvgBytes()) + item.FriendlyName() + "_" + std::to_string(side);
}

Bytes ResizeSVG(const Bytes& svg, int width, int height, bool fit, bool scale, bool vector) {
  SurfacePtr surface = DrawingSurface::Create(width, height, vector ? SurfaceKind::Svg : SurfaceKind::Image);
  try {
    DrawingContext ctx(surface);
    if (scale || fit) {
      double f = 1;
      const Margins m = MeasureMargins(svg, 0, width, height, &f);
      ctx.Translate(width / 2.0, height / 2.0);
      ctx.Scale(f, f);
      ctx.Translate(-width / 2.0 - m.Left + (m.Left + m.Right) / 2,
                    -height / 2.0 - m.Top + (m.Top + m.Bottom) / 2);
    }
    App().SvgRenderer->Render(ctx, svg, 0, 0, width, height, 0);
  } catch (...) {
    // What was drawn so far is the answer.
  }
  return vector ? surface->SvgDocumentBytes() : surface->ToPngBytes();
}

SurfacePtr GetCachedSurface(cSVGItem& item, PictureCache& cache, int side, int maxEntries,
                            const std::string& backKey, double border, bool gray) {
  const std::string key = CachedSurfaceKey(item, side);
  if (cache.Count() > maxEntries) cache.Clear();
  const PictureCache::Entry* present = cache.Find(key);
  if (item.Angle() == 0 && present) return present->Surface;
  const std::string style = item.Style();
  if (gray && !present && (style == "Slimline" || style == "Strokes" || style == "Shapes")) {
    // Line icons stay readable on a dark list.
    item.setFilter(cSVGItem::FilterColor);
    item.setColorItem(cColorItem(0xCCCCCC));
  }
  SurfacePtr surface = DrawingSurface::Create(side, side);
  DrawingContext ctx(surface);
  if (!backKey.empty()) {
    if (const SurfacePtr back = App().ImageList().Get(backKey)) ctx.DrawSurface(back, 0, 0, side, side);
  }
  App().SvgRenderer->Render(ctx, item.SvgBytes(), border, border, side - 2 * border, side - 2 * border,
                            item.Angle());
  if (item.Angle() == 0) cache.Add(key, surface);
  return surface;
}

std::optional<cPoint> GetNextPoint(const cPoint& point, const std::int32_t* pixels, int width, int height,
                                   int& direction) {
  // The three neighbours tested per direction: (dx, dy), the first one
  // turning the walk to its left.
  static constexpr int tests[4][3][2] = {{{-1, 1}, {-1, 0}, {-1, -1}},
                                         {{-1, -1}, {0, -1}, {1, -1}},
                                         {{1, -1}, {1, 0}, {1, 1}},
                                         {{1, 1}, {0, 1}, {-1, 1}}};
  static constexpr int turnLeft[4] = {3, 0, 1, 2};
  // A coordinate that would leave the array keeps the value of the test
  // before (0 at the first): the walk runs on margins of empty pixels.
  int tx = 0, ty = 0;
  const auto step = [](int v, int d, int upper, int previous) {
    if (d < 0) return v > 0 ? v - 1 : previous;
    if (d > 0) return v < upper ? v + 1 : previous;
    return v;
  };
  for (int round = 0; round < 4; ++round) {
    for (int t = 0; t < 3; ++t) {
      tx = step(point.X, tests[direction][t][0], width - 1, tx);
      ty = step(point.Y, tests[direction][t][1], height - 1, ty);
      if (pixels[static_cast<std::size_t>(ty) * width + tx] != 0) {
        if (t == 0) direction = turnLeft[direction];
        return cPoint{tx, ty};
      }
    }
    direction = (direction + 1) % 4;
  }
  return std::nullopt;
}

PathPtr PathFromIcon(DrawingContext& ctx) {
  const SurfacePtr& surface = ctx.Surface();
  const int w = surface->Width(), h = surface->Height();
  std::vector<std::vector<cPoint>> outlines;
  std::unordered_set<std::int64_t> seen;
  int steps = 0, startRow = 0;
  for (;;) {
    cPoint start{-1, -1};
    bool traced = false;
    {
      const PixelView v = surface->Pixels();
      const std::int32_t* px = v.Longs();
      for (int y = startRow; y < h && start.X < 0; ++y) {
        for (int x = 0; x < w; ++x) {
          const std::int32_t p = px[static_cast<std::size_t>(y) * w + x];
          if (p != 0 && p != kTraced && !seen.count(PointKey(x, y))) {
            start = {x, y};
            startRow = y;
            break;
          }
        }
      }
      if (start.X < 0) break;
      seen.insert(PointKey(start.X, start.Y));
      std::vector<cPoint> walk{start};
      cPoint at = start;
      // The start is the first ink of its row with none above it, so the
      // walk sets out to the right along the top edge and goes round the
      // outside clockwise.
      int direction = 2;
      while (steps < kMaxSteps) {
        ++steps;
        const std::optional<cPoint> next = GetNextPoint(at, px, w, h, direction);
        if (!next || (next->X == start.X && next->Y == start.Y)) break;
        at = *next;
        seen.insert(PointKey(at.X, at.Y));
        walk.push_back(at);
      }
      // More than one new point makes an outline.
      if (walk.size() > 2) {
        outlines.push_back(std::move(walk));
        traced = true;
      }
    }
    if (traced) {
      // Paint the inside so that it is not traced again; without antialias,
      // so that every touched pixel has exactly the marking colour.
      DrawingContext mark(surface);
      mark.SetAntialias(false);
      const std::vector<cPoint>& o = outlines.back();
      mark.MoveTo(o[0].X, o[0].Y);
      for (std::size_t i = 1; i < o.size(); ++i) mark.LineTo(o[i].X, o[i].Y);
      mark.ClosePath();
      mark.SetSourceColor(kTracedColour);
      mark.SetLineWidth(3);
      mark.Fill(true);
      mark.Stroke();
    }
    if (steps >= kMaxSteps) break;
  }
  if (outlines.empty()) return nullptr;
  ctx.Save();
  ctx.ResetMatrix();
  ctx.NewPath();
  for (const auto& o : outlines) {
    ctx.MoveTo(o[0].X, o[0].Y);
    for (std::size_t i = 1; i < o.size(); ++i) ctx.LineTo(o[i].X, o[i].Y);
    ctx.ClosePath();
  }
  PathPtr path = ctx.CopyPath(false, 0.1);
  ctx.NewPath();
  ctx.Restore();
  return path;
}

PathPtr GetPathFromIcon(const cSVGItem& item) {
  const double F = App().PathFieldSize > 0 ? App().PathFieldSize : 1024;
  const double pad = static_cast<double>(RoundHalfEven((item.ClipIOffset() + 40) / 256.0 * F));
  const int side = static_cast<int>(F + 2 * pad);
  SurfacePtr surface = DrawingSurface::Create(side, side);
  DrawingContext ctx(surface);
  App().SvgRenderer->Render(ctx, item.SvgBytes(), pad, pad, F, F, item.Angle());
  PathPtr outline = PathFromIcon(ctx);
  if (!outline) return nullptr;
  Clear(surface);
  ctx.SetSourceColor(0xFF0000, 1);
  ctx.AppendPath(*outline);
  ctx.Fill(true);
  ctx.SetLineWidth(item.ClipIOffset() / 256.0 * F);
  ctx.Stroke();  // the icon grows by the clip distance
  outline = PathFromIcon(ctx);
  if (!outline) return nullptr;
  Clear(surface);
  ctx.NewPath();
  ctx.ResetMatrix();
  ctx.Translate(-pad * 256 / F, -pad * 256 / F);
  ctx.Scale(256 / F, 256 / F);
  ctx.AppendPath(*outline);
  ctx.ClosePath();
  // Copied in the untransformed space, so that it lies in 256 units.
  ctx.ResetMatrix();
  return ctx.CopyPath(false, 0.1);
}

PathPtr GetShadowPathFromShape(const std::string& symbolKey, const std::string& backgroundKey, double angle,
                               double W, double H) {
  AppContext& app = App();
  if (!app.Layers.Exists(symbolKey)) return nullptr;
  SVGItemPtr background;
  if (app.Layers.Exists(backgroundKey)) {
    background = app.Layers.Item(backgroundKey)->Clone();
  } else {
    for (const auto& e : app.ShapeItems) {
      if (e.Item->FriendlyName() == "Filled_Rectangle") background = e.Item->Clone();
    }
  }
  const SVGItemPtr symbol = app.Layers.Item(symbolKey)->Clone();
  const int sw = static_cast<int>(1.5 * W), sh = static_cast<int>(1.5 * H);
  SurfacePtr surface = DrawingSurface::Create(sw, sh);
  DrawingContext ctx(surface);
  ctx.Translate(W / 2, H / 2);
  ctx.Rotate(90 - angle);
  ctx.Translate(-W / 2, -H / 2);
  // Placed exactly as the canvas draws them, so that the shadow leaves the
  // symbol's edges and no other place.
  const auto draw = [&](const cSVGItem& item) {
    const LayerPlacement p = item.Placement(std::min(W, H));
    app.SvgRenderer->Render(ctx, item.SvgBytes(), p.tx, p.ty, p.zS, p.zS, item.Angle());
  };
  if (background) {
    background->setFilter(cSVGItem::FilterColor);
    background->setColorItem(cColorItem(kDummy));
    draw(*background);
    // Drawn without antialias: every pixel either the dummy colour or none.
    // Only the W by H corner is read below, so only it is sorted.
    PixelView v = surface->Pixels();
    const int maxX = std::min(static_cast<int>(W), sw), maxY = std::min(static_cast<int>(H), sh);
    for (int y = 0; y < maxY; ++y) {
      std::int32_t* row = v.Longs() + static_cast<std::size_t>(y) * sw;
      for (int x = 0; x < maxX; ++x) row[x] = (static_cast<std::uint32_t>(row[x]) >> 24) >= 128 ? kDummy : 0;
    }
  }
  draw(*symbol);
  const Matrix rotated = ctx.GetMatrix();
  ctx.ResetMatrix();
  ctx.NewPath();
  {
    const PixelView v = surface->Pixels();
    const std::int32_t* px = v.Longs();
    const int maxX = std::min(static_cast<int>(W), sw), maxY = std::min(static_cast<int>(H), sh);
    const auto at = [&](int x, int y) { return px[static_cast<std::size_t>(y) * sw + x]; };
    int y = 0;
    for (;;) {
      std::vector<int> rows;
      int lastX = 0;
      for (; y < maxY; ++y) {
        int hit = -1;
        for (int x = 0; x < maxX; ++x) {
          if (at(x, y) != 0 && at(x, y) != kDummy) {
            hit = x;
            break;
          }
        }
        if (hit < 0) {
          if (!rows.empty()) break;  // the segment ends here
          continue;
        }
        if (rows.empty()) {
          ctx.MoveTo(hit + 1, y);
        } else {
          ctx.LineTo(hit + 1, y);
        }
        rows.push_back(y);
        lastX = hit + 1;
      }
      if (rows.empty()) break;
      // Back up the segment along the background's far edge.
      for (auto r = rows.rbegin(); r != rows.rend(); ++r) {
        for (int x = maxX - 1; x >= 0; --x) {
          const std::int32_t p = at(x, *r);
          if (p == kDummy) {
            lastX = x + 1;
            break;
          }
          if (p != 0) break;  // the symbol: keep the last x known
        }
        ctx.LineTo(lastX, *r);
      }
      ctx.ClosePath();
    }
  }
  ctx.ClosePath();
  ctx.SetMatrix(rotated);
  const PathPtr path = ctx.CopyPath(false, 0.1);
  return path->Empty() ? nullptr : path;
}

}  // namespace qds
