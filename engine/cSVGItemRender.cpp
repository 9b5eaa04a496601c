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
  KeyedCollection<std::pair<SurfacePtr, int>>& cache = App().BlurCache;
  const std::string key =
      cacheKey + "|blur" + std::to_string(b) + "|" + std::to_string(static_cast<int>(targetW));
  if (!cacheKey.empty() && cache.Exists(key)) return cache.Item(key);
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
    cache.Add({out, pad}, key);
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

void cSVGItem::RenderTo(DrawingContext& ctx, double width, double height, bool showCentre) {
  AppContext& app = App();
  // 1. Opacity: the design's own, when it is in force, for plain layers.
  const double Z = ZoomPercent() / 100;
  const double O =
      EffType() == 0 && app.DesignOpacityOn ? 100 : static_cast<double>(RoundHalfEven(Opacity()));
  // 2, 3. A square of side S; the margins of the picture at this size.
  const double S = std::min(width, height);
  const double zS = S * Z;
  SurfacePtr measured;
  const Margins m =
      MeasureMargins(svgBytes_, Angle(), static_cast<int>(S), static_cast<int>(S), nullptr, &measured);
  // At full zoom and no turn, the picture just measured is exactly the one
  // the raster cache would draw next: keep it instead of drawing it twice.
  if (measured && Angle() == 0 && static_cast<int>(zS) == static_cast<int>(S) &&
      ctx.Surface()->Kind() == SurfaceKind::Image) {
    const std::string key = CachedSurfaceKey(*this, static_cast<int>(zS));
    if (app.RenderCache.Count() <= kRenderCacheLimit && !app.RenderCache.Exists(key)) {
      app.RenderCache.Add(measured, key);
    }
  }
  const double L = m.Left * Z, T = m.Top * Z, R = m.Right * Z, B = m.Bottom * Z;

  // 4. The background that bounds a wall shadow.
  bool backgroundClip = false;
  if (EffType() == 2 && !EffBGKey().empty()) backgroundClip = SetBGPath(ctx, EffBGKey(), S, S);

  // 5. The gradient, painted through the icon as a mask.
  bool gradient = false;
  if (filter_ == FilterGradient && GradStopsCount() > 0) {
    double outX, outY;
    GetOffsetXY(Pos(), L, T, R, B, zS, zS, S, S, outX, outY);
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
      ctx.SetSource(*pattern);
      gradient = true;
    }
  }

  // 6. Clips: a form, or the outline of another layer's icon.
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

  // 7, 8. Into place.
  ctx.Save();
  const double d = Distance() / 100;
  double tx = 0, ty = 0;
  switch (Pos()) {
    case 0:
      tx = (S - zS) / 2 + OffSetx() / 100 * S + MoveX / 100 * S;
      ty = (S - zS) / 2 + OffSetY() / 100 * S + MoveY / 100 * S;
      break;
    case 1:
      tx = d * S - L, ty = d * S - T;
      break;
    case 2:
      tx = (S - zS) / 2 - (L - R) / 2, ty = d * S - T;
      break;
    case 3:
      tx = (S - zS) - d * S + R, ty = d * S - T;
      break;
    case 4:
      tx = d * S - L, ty = (S - zS) / 2 - (T - B) / 2;
      break;
    case 5:
      tx = (S - zS) / 2 - (L - R) / 2, ty = (S - zS) / 2 - (T - B) / 2;
      break;
    case 6:
      tx = (S - zS) - d * S + R, ty = (S - zS) / 2 - (T - B) / 2;
      break;
    case 7:
      tx = d * S - L, ty = (S - zS) - d * S + B;
      break;
    case 8:
      tx = (S - zS) / 2 - (L - R) / 2, ty = (S - zS) - d * S + B;
      break;
    case 9:
      tx = (S - zS) - d * S + R, ty = (S - zS) - d * S + B;
      break;
    default:
      break;
  }
  ctx.Translate(tx, ty);
  const Matrix placed = ctx.GetMatrix();
  const double cx = zS / 2 + placed.x0, cy = zS / 2 + placed.y0;

  const auto reflect = [&](const SurfacePtr& a, const Matrix& kept) {
    // The mask that fades the reflection out.
    const double y0 = kept.y0 + T;
    Pattern mask =
        Pattern::Linear(0, y0, 0, (a->Height() - T - B) * EffHeightPerc() / 100 / 100 * ZoomPercent() + y0);
    mask.AddColorStop(0, 0xFFFFFF, EffOpacity1() / 100);
    mask.AddColorStop(1, 0xFFFFFF, EffOpacity2() / 100);
    ctx.SetSourceSurface(a, 0, 0);
    ctx.Mask(mask);
  };

  if (ctx.Surface()->Kind() == SurfaceKind::Svg) {
    // 10. The vector branch: the document itself goes into the file.
    if (clipPending) ctx.Clip();
    if (O != 100) ctx.PushGroup();
    if (!gradient && EffType() != 4) {
      if (EffBlur() <= 0) {
        app.SvgRenderer->Render(ctx, svgBytes_, 0, 0, zS, zS, Angle());
      } else {
        const SurfacePtr picture =
            GetCachedSurface(*this, app.RenderCache, static_cast<int>(zS), kRenderCacheLimit);
        const auto [blurred, p] = BlurSurface(picture, S, S, {});
        ctx.DrawSurface(blurred, -(p / 3.0 + p), -(p / 3.0 + p), p / 3.0 + p + S, p / 3.0 + p + S,
                        Filter::Good, 1);
      }
    } else {
      SurfacePtr group = ctx.Surface()->CreateSimilar(static_cast<int>(width), static_cast<int>(height));
      {
        DrawingContext gc(group);
        gc.SetMatrix(placed);
        app.SvgRenderer->Render(gc, svgBytes_, 0, 0, zS, zS, Angle());
      }
      if (EffType() == 4) {
        const Matrix kept = ctx.GetMatrix();
        ctx.ResetMatrix();
        reflect(group, kept);
        ctx.SetMatrix(kept);
      } else {
        const Matrix kept = ctx.GetMatrix();
        ctx.ResetMatrix();
        ctx.MaskSurface(group, 0, 0);
        ctx.SetMatrix(kept);
      }
    }
    if (O != 100) {
      ctx.PopGroupToSource();
      ctx.Paint(O / 100);
    }
    if (formClip) ctx.ResetClip();
    ctx.Restore();
    if (formClip) {
      ctx.PushGroup();
      RenderLine(ctx, linePath, lineW, lineColour, S, S);
      ctx.PopGroupToSource();
      ctx.Paint(O / 100);
    }
  } else {
    // 10. The raster branch, the normal case.
    ctx.SetOperator(fillOptions_);
    if (clipPending) ctx.Clip();
    const int side = static_cast<int>(zS);
    const std::string key = CachedSurfaceKey(*this, side);
    const SurfacePtr picture = GetCachedSurface(*this, app.RenderCache, side, kRenderCacheLimit);
    if (O != 100) ctx.PushGroup();
    if (!gradient && EffType() != 4) {
      if (EffBlur() > 0) {
        const auto [blurred, p] = BlurSurface(picture, S, S, Angle() == 0 ? key : std::string());
        ctx.DrawSurface(blurred, -(p / 3.0 + p), -(p / 3.0 + p), p / 3.0 + p + S, p / 3.0 + p + S,
                        Filter::Good, 1);
      } else {
        ctx.DrawSurface(picture, 0, 0, zS, zS, Filter::Good, 1);
      }
    } else if (EffType() == 4) {
      SurfacePtr a = ctx.Surface()->CreateSimilar(ctx.Surface()->Width(), ctx.Surface()->Height());
      {
        DrawingContext ac(a);
        ac.SetMatrix(ctx.GetMatrix());
        if (gradient) ac.SetSource(ctx.Source());
        if (Angle() != 0) {
          ac.Translate(zS / 2, zS / 2);
          ac.Rotate(Angle());
          ac.Translate(-zS / 2, -zS / 2);
        }
        if (gradient) {
          ac.Scale(zS / picture->Width(), zS / picture->Height());
          ac.MaskSurface(picture, 0, 0);
        } else {
          ac.DrawSurface(picture, 0, 0, zS, zS, Filter::Good, 1);
        }
      }
      const Matrix kept = ctx.GetMatrix();
      ctx.ResetMatrix();
      reflect(a, kept);
      ctx.SetMatrix(kept);
    } else {
      ctx.MaskSurface(picture, 0, 0);
    }
    if (O != 100) {
      ctx.PopGroupToSource();
      ctx.Paint(O / 100);
    }
    if ((EffType() == 2 && !EffBGKey().empty()) || formClip) ctx.ResetClip();
    if (app.ShowsSelectionFrame && app.ShowsSelectionFrame(*this)) {
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
      ctx.PushGroup();
      RenderLine(ctx, linePath, lineW * 1.3, lineColour, S, S);
      ctx.PopGroupToSource();
      ctx.Paint(O / 100);
    }
  }
  // 11. The canvas marks the centre of the selected layer.
  if (showCentre && app.ShowCentre) app.ShowCentre(*this, cx, cy);
}

}  // namespace qds
