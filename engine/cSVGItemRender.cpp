// Drawing one layer onto a context: position, zoom, rotation, gradient,
// clips, blur, reflection, opacity and blend operator.

#include <algorithm>
#include <cmath>

#include "app/AppContext.h"
#include "engine/cSVGItem.h"
#include "engine/modFunctions.h"
#include "engine/modPixelOps.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/SvgRenderer.h"

namespace qds {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kRenderCacheLimit = 128;

// The whole target as a rectangle running against the clip path, so that
// the winding rule keeps the outside.
void AddReversedTarget(DrawingContext& ctx, double width, double height) {
  ctx.MoveTo(0, 0);
  ctx.LineTo(0, height);
  ctx.RelLineTo(width, 0);
  ctx.RelLineTo(0, -height);
  ctx.ClosePath();
}

// The line of a clip form, copied flat.
PathPtr FormLine(int form, double X, double Y, double DX, double DY, double Rd, double w) {
  SurfacePtr scratch = DrawingSurface::Create(1, 1);
  DrawingContext ctx(scratch);
  if (form == 1) {
    ctx.Arc(X + DX / 2, Y + DY / 2, DX * 0.5 * 0.8, 0.75 * kPi, 1.75 * kPi);
  } else if (form == 3) {
    const double q = Rd * 0.64;
    const double x1 = X + 1.5 * w, x2 = X + DX - 1.5 * w, y1 = Y + 1.5 * w, y2 = y1 + q;
    ctx.MoveTo(x1, Y + DY - 1.5 * w);
    ctx.LineTo(x1, y2);
    ctx.Arc(x1 + q, y2, q, kPi, 1.5 * kPi);
    ctx.LineTo(x2, y1);
  } else {
    return nullptr;
  }
  return ctx.CopyPath(true, 0.01);
}

}  // namespace

std::pair<SurfacePtr, int> cSVGItem::BlurSurface(const SurfacePtr& surface, double targetW, double targetH,
                                                 const std::string& cacheKey) const {
  const int b = static_cast<int>(EffBlur());
  const double f = b != 0 ? b / 256.0 : 1 / 256.0;
  const double w = surface->Width();
  // Blurring is the slowest step of a frame and its result depends only on
  // the picture and the radius: keep it.
  PictureCache& cache = App().BlurCache;
  const std::string key =
      cacheKey + "|blur" + std::to_string(b) + "|" + std::to_string(static_cast<int>(targetW));
  if (!cacheKey.empty()) {
    if (const PictureCache::Entry* kept = cache.Find(key)) return {kept->Surface, kept->Pad};
  }
  // The blur lands on a canvas as large as the target plus the blur.
  SurfacePtr out =
      DrawingSurface::Create(static_cast<int>(f * w + targetW), static_cast<int>(f * w + targetH));
  const auto [blurred, pad] = surface->Blur(f * w);
  {
    DrawingContext ctx(out);
    ctx.SetSourceSurface(blurred, 0, 0);
    ctx.Paint();
  }
  if (!cacheKey.empty()) {
    if (cache.Count() > kRenderCacheLimit) cache.Clear();
    cache.Add(key, out, pad);
  }
  return {out, pad};
}

void cSVGItem::RenderLine(DrawingContext& ctx, const PathPtr& path, double lineWidth, std::int64_t colour,
                          double W, double H) const {
  if (!path) return;
  const std::int64_t c = colour == -1 ? 0 : colour;
  if (EffType() != 2 || EffBlur() <= 0) {
    if (EffType() == 2) {
      ctx.Translate(EffOffsetX() / 100 * ZoomPercent() / 100 * W,
                    EffOffsetY() / 100 * ZoomPercent() / 100 * H);
    }
    ctx.AppendPath(*path);
    ctx.SetLineWidth(lineWidth);
    ctx.SetSourceColor(c, 1);
    ctx.Stroke();
    return;
  }
  SurfacePtr line = DrawingSurface::Create(static_cast<int>(W), static_cast<int>(H));
  {
    DrawingContext lc(line);
    lc.AppendPath(*path);
    lc.SetLineWidth(lineWidth);
    lc.SetSourceColor(c, 1);
    lc.Stroke();
  }
  ctx.Translate(EffOffsetX() / 100 * ZoomPercent() / 100 * W, EffOffsetY() / 100 * ZoomPercent() / 100 * H);
  const auto [blurred, p] = BlurSurface(line, W, H, {});
  ctx.DrawSurface(blurred, -(p / 3.0 + p), -(p / 3.0 + p), p / 3.0 + p + W, p / 3.0 + p + H, Filter::Good, 1);
}

LayerPlacement cSVGItem::Placement(double side, SurfacePtr* measured) const {
  LayerPlacement p;
  const double Z = ZoomPercent() / 100;
  const double S = side, zS = side * Z;
  const Margins m =
      MeasureMargins(svgBytes_, Angle(), static_cast<int>(S), static_cast<int>(S), nullptr, measured);
  const double L = m.Left * Z, T = m.Top * Z, R = m.Right * Z, B = m.Bottom * Z;
  p.S = S, p.zS = zS, p.L = L, p.T = T, p.R = R, p.B = B;
  // A snap position puts the visible picture, not its box, at the edge or
  // in the centre.
  const double d = Distance() / 100;
  const double left = d * S - L, centreX = (S - zS) / 2 - (L - R) / 2, right = (S - zS) - d * S + R;
  const double top = d * S - T, centreY = (S - zS) / 2 - (T - B) / 2, bottom = (S - zS) - d * S + B;
  const int pos = Pos();
  if (pos == 0) {
    p.tx = (S - zS) / 2 + OffSetx() / 100 * S + MoveX / 100 * S;
    p.ty = (S - zS) / 2 + OffSetY() / 100 * S + MoveY / 100 * S;
  } else if (pos >= 1 && pos <= 9) {
    // The snap positions are a 3 by 3 grid counted row by row.
    const double columns[] = {left, centreX, right}, rows[] = {top, centreY, bottom};
    p.tx = columns[(pos - 1) % 3];
    p.ty = rows[(pos - 1) / 3];
  }
  return p;
}

std::optional<Pattern> cSVGItem::GradientPattern(const LayerPlacement& p) const {
  if (filter_ != FilterGradient || GradStopsCount() == 0) return std::nullopt;
  const double S = p.S, zS = p.zS;
  double outX, outY;
  GetOffsetXY(Pos(), p.L, p.T, p.R, p.B, zS, zS, S, S, outX, outY);
  const double gx = outX / 100 * S + MoveX / 100 * S, gy = outY / 100 * S + MoveY / 100 * S;
  const double left = (S - zS) / 2 + gx, right = left + zS, top = (S - zS) / 2 + gy, bottom = top + zS;
  std::optional<Pattern> pattern;
  if (!GradRadial()) {
    const double a = GradAngleDeg();
    if (a == 0) pattern = Pattern::Linear(0, top, 0, bottom);
    if (a == 90) pattern = Pattern::Linear(left, 0, right, 0);
    if (a == 180) pattern = Pattern::Linear(0, bottom, 0, top);
    if (a == 270) pattern = Pattern::Linear(right, 0, left, 0);
  } else {
    const double fx = GradPointCX() * S + gx, fy = GradPointCY() * S + gy;
    const double cx = S / 2 + gx, cy = S / 2 + gy;
    const double r =
        (std::min(std::fabs(0.5 - GradPointCX()), std::fabs(0.5 - GradPointCY())) + 1.42) * zS * 0.5;
    pattern = GradInvert() ? Pattern::Radial(fx, fy, 0, cx, cy, r) : Pattern::Radial(cx, cy, r, fx, fy, 0);
  }
  if (pattern) {
    for (int i = 0; i < GradStopsCount(); ++i) {
      const cColorStop stop = GradStopsItem(i);
      pattern->AddColorStop(stop.Offset, stop.Color, stop.Opacity);
    }
  }
  return pattern;
}

void cSVGItem::RenderTo(DrawingContext& ctx, double width, double height, bool showCentre) {
  AppContext& app = App();
  const bool vector = ctx.Surface()->Kind() == SurfaceKind::Svg;
  // Opacity: the design's own, when it is in force, for plain layers.
  const double O =
      EffType() == 0 && app.DesignOpacityOn ? 100 : static_cast<double>(RoundHalfEven(Opacity()));
  // A layer always draws into a square, placed by its settings.
  const double S = std::min(width, height);
  SurfacePtr measured;
  const LayerPlacement p = Placement(S, &measured);
  const double zS = p.zS;
  const int side = static_cast<int>(zS);
  // At full zoom and no turn, the picture just measured is exactly the one
  // the raster cache would draw next: keep it instead of drawing it twice.
  if (measured && !vector && Angle() == 0 && side == static_cast<int>(S)) {
    const std::string key = CachedSurfaceKey(*this, side);
    if (app.RenderCache.Count() <= kRenderCacheLimit && !app.RenderCache.Exists(key)) {
      app.RenderCache.Add(key, measured);
    }
  }

  // The background that bounds a wall shadow.
  bool backgroundClip = false;
  if (EffType() == 2 && !EffBGKey().empty()) backgroundClip = SetBGPath(ctx, EffBGKey(), S, S);

  const std::optional<Pattern> gradient = GradientPattern(p);

  // Clips: a form, or the outline of another layer's icon.
  bool formClip = false, iconClip = false;
  PathPtr linePath;
  double lineW = 0;
  std::int64_t lineColour = -1;
  if (ClipIOverlayKey().empty() || !ClipVisible()) {
    if (ClipExists() && ClipVisible()) {
      const double X = ClipX() * S, Y = ClipY() * S, DX = ClipDX() * S, DY = ClipDY() * S;
      const double Rd = ClipBorderRadius() * S;
      const int form = ClipShapeForms();
      lineColour = ClipColor() == -1 ? colorItem_.Color() : ClipColor();
      const PathPtr clip = ConstructPath(form, X, Y, DX, DY, Rd);
      ctx.SetFillRule(FillRule::Winding);
      lineW = DX * 0.5 * 0.2 * 0.5;
      linePath = FormLine(form, X, Y, DX, DY, Rd, lineW);
      ctx.AppendPath(*clip);
      if (ClipInverted()) AddReversedTarget(ctx, width, height);
      formClip = true;
    }
  } else if (clipIPath_ && app.Layers.Exists(ClipIOverlayKey())) {
    if (SetIconClipPath(ctx, ClipIOverlayKey(), S, S)) {
      ctx.AppendPath(*clipIPath_);
      ctx.Restore();
      ctx.SetFillRule(FillRule::EvenOdd);
      AddReversedTarget(ctx, width, height);
      ctx.SetFillRule(FillRule::Winding);
      iconClip = true;
    }
  }
  const bool clipPending = formClip || iconClip || backgroundClip;

  ctx.Save();
  const Matrix square = ctx.GetMatrix();
  ctx.Translate(p.tx, p.ty);
  const Matrix placed = ctx.GetMatrix();
  const double cx = zS / 2 + placed.x0, cy = zS / 2 + placed.y0;

  // The one thing a file of vectors and a picture do differently: an SVG
  // target receives the document itself, a picture the cached raster (which
  // is drawn at the layer's angle already).
  SurfacePtr picture;
  if (!vector) picture = GetCachedSurface(*this, app.RenderCache, side, kRenderCacheLimit);
  const auto drawPicture = [&] {
    if (vector) {
      app.SvgRenderer->Render(ctx, svgBytes_, 0, 0, zS, zS, Angle());
    } else {
      ctx.DrawSurface(picture, 0, 0, zS, zS, Filter::Good, 1);
    }
  };
  // The picture, painted through the gradient when the layer has one. The
  // gradient lies in the square's space, not in the placed box's.
  const auto drawInk = [&] {
    if (!gradient) {
      drawPicture();
      return;
    }
    ctx.PushGroup();
    drawPicture();
    const Pattern ink = ctx.PopGroup();
    ctx.SetMatrix(square);
    ctx.SetSource(*gradient);
    ctx.SetMatrix(placed);
    ctx.Mask(ink);
  };

  if (!vector) ctx.SetOperator(fillOptions_);
  if (clipPending) ctx.Clip();
  if (O != 100) ctx.PushGroup();
  if (EffType() == 4) {
    // A reflection fades out downwards, measured on the target.
    ctx.PushGroup();
    drawInk();
    const Pattern reflection = ctx.PopGroup();
    ctx.SetSource(reflection);
    ctx.ResetMatrix();
    const double y0 = placed.y0 + p.T;
    const double Ha = ctx.Surface()->Height();
    Pattern fade =
        Pattern::Linear(0, y0, 0, (Ha - p.T - p.B) * EffHeightPerc() / 100 / 100 * ZoomPercent() + y0);
    fade.AddColorStop(0, 0xFFFFFF, EffOpacity1() / 100);
    fade.AddColorStop(1, 0xFFFFFF, EffOpacity2() / 100);
    ctx.Mask(fade);
    ctx.SetMatrix(placed);
  } else if (!gradient && EffBlur() > 0) {
    // A blur is a picture in either target.
    const SurfacePtr raster =
        picture ? picture : GetCachedSurface(*this, app.RenderCache, side, kRenderCacheLimit);
    const auto [blurred, pad] =
        BlurSurface(raster, S, S, Angle() == 0 ? CachedSurfaceKey(*this, side) : std::string());
    const double at = -(pad / 3.0 + pad);
    ctx.DrawSurface(blurred, at, at, pad / 3.0 + pad + S, pad / 3.0 + pad + S, Filter::Good, 1);
  } else {
    drawInk();
  }
  if (O != 100) {
    ctx.PopGroupToSource();
    ctx.Paint(O / 100);
  }
  if (backgroundClip || formClip) ctx.ResetClip();
  if (!vector && app.ShowsSelectionFrame && app.ShowsSelectionFrame(*this)) {
    ctx.SetLineWidth(1);
    ctx.Rectangle(0, 0, zS, zS);
    ctx.SetSourceColor(0);
    ctx.SetDash({4, 4}, 0);
    ctx.Stroke(true);
    ctx.SetSourceColor(0xFFFFFF);
    ctx.SetDash({4, 4}, 4);
    ctx.Stroke();
  }
  ctx.Restore();
  if (formClip) {
    // The line of a form is drawn a little heavier on pictures, as the
    // canvas shows it.
    ctx.PushGroup();
    RenderLine(ctx, linePath, vector ? lineW : lineW * 1.3, lineColour, S, S);
    ctx.PopGroupToSource();
    ctx.Paint(O / 100);
  }
  // The canvas marks the centre of the selected layer.
  if (showCentre && app.ShowCentre) app.ShowCentre(*this, cx, cy);
}

}  // namespace qds
