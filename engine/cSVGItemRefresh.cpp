// The layer's position arithmetic, its place in the selection lists, and
// the rebuilding of derived pictures.

#include <algorithm>

#include "app/AppContext.h"
#include "engine/cSVGItem.h"
#include "engine/modParser.h"
#include "engine/modPixelOps.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/SvgRenderer.h"

namespace qds {

void cSVGItem::GetOffsetXY(int pos, double L, double T, double R, double B, double zW, double zH, double W,
                           double H, double& outX, double& outY) const {
  if (pos == 0) {
    outX = OffSetx();
    outY = OffSetY();
    return;
  }
  if (pos < 0 || pos > 9) {
    outX = 100 * L / W;
    outY = 100 * T / H;
    return;
  }
  const double d = Distance() / 100;
  const double left = W * d + (zW - W) / 2 - L;
  const double centreX = (L - R) / 2;  // the opposite sign of the drawing, kept on purpose
  const double right = (W - zW) / 2 - W * d + R;
  const double top = H * d + (zH - H) / 2 - T;
  const double centreY = (T - B) / 2;
  const double bottom = (H - zH) / 2 - H * d + B;
  double X = 0, Y = 0;
  switch (pos) {
    case 1:
      X = left, Y = top;
      break;
    case 2:
      X = centreX, Y = top;
      break;
    case 3:
      X = right, Y = top;
      break;
    // Row 4 adds the distance itself, not its share of the width; kept.
    case 4:
      X = Distance() + (zW - W) / 2 - L, Y = centreY;
      break;
    case 5:
      X = centreX, Y = centreY;
      break;
    case 6:
      X = right, Y = centreY;
      break;
    case 7:
      X = left, Y = bottom;
      break;
    case 8:
      X = centreX, Y = bottom;
      break;
    case 9:
      X = right, Y = bottom;
      break;
  }
  outX = 100 * X / W;
  outY = 100 * Y / H;
}

void cSVGItem::CalcOffSet(double W, double H, double& zW, double& zH, double& L, double& T) {
  const double Z = ZoomPercent() / 100;
  if (W == 0) W = App().CanvasWidth;
  if (H == 0) H = App().CanvasHeight;
  double scale = 1;
  const SurfacePtr scratch = DrawingSurface::Create(static_cast<int>(W), static_cast<int>(H));
  const Margins m = GetInnerDimensions(scratch, svgBytes_, scale, Angle());
  L = m.Left * Z;
  T = m.Top * Z;
  const double R = m.Right * Z, B = m.Bottom * Z;
  zW = W * Z;
  zH = H * Z;
  double x, y;
  GetOffsetXY(Pos(), L, T, R, B, zW, zH, W, H, x, y);
  if (Pos() != 0) {
    setOffSetx(x);
    setOffSetY(y);
  }
}

void cSVGItem::SetNewOffSet() {
  if (EffType() != 2) {
    setOffSetx(OffSetx() + MoveX);
    setOffSetY(OffSetY() + MoveY);
  } else {
    ItemCollection& layers = App().Layers;
    if (!layers.Exists(EffSymbolKey())) return;  // the drag stays pending
    const SVGItemPtr symbol = layers.Item(EffSymbolKey())->Clone();
    double zW, zH, L, T;
    symbol->CalcOffSet(0, 0, zW, zH, L, T);
    setOffSetx(OffSetx() + MoveX);
    setOffSetY(OffSetY() + MoveY);
    setEffOffsetX((OffSetx() - symbol->OffSetx()) * 100 / ZoomPercent());
    setEffOffsetY((OffSetY() - symbol->OffSetY()) * 100 / ZoomPercent());
  }
  MoveX = 0;
  MoveY = 0;
}

int cSVGItem::SelectionIndex() const {
  return UseAsOverlay() ? App().OverlayIndex : App().BaseIndex;
}

void cSVGItem::setSelectionIndex(int index) {
  AppContext& app = App();
  index = std::max(index, 0);
  const int count = UseAsOverlay() ? app.OverlayLayers.Count() : app.BaseIcons.Count();
  index = std::min(index, count - 1);
  (UseAsOverlay() ? app.OverlayIndex : app.BaseIndex) = index;
  HasPrevIcon = index >= 1;
  HasNextIcon = index < count - 1;
}

void cSVGItem::CopyClipFrom(const cSVGItem& symbol) {
  if (!symbol.ClipExists() && !ClipExists()) return;
  setClipExists(symbol.ClipExists());
  setClipVisible(symbol.ClipVisible());
  setClipBorderRadius(symbol.ClipBorderRadius());
  setClipDX(symbol.ClipDX());
  setClipDY(symbol.ClipDY());
  setClipInverted(symbol.ClipInverted());
  setClipOpacity(symbol.ClipOpacity());
  setClipShapeForms(symbol.ClipShapeForms());
  setClipX(symbol.ClipX());
  setClipY(symbol.ClipY());
}

void cSVGItem::SettingsRefresh() {
  const std::string settings = Settings();
  if (settings.size() < 2 || settings.front() != '{') return;
  RefreshText();
  RefreshClipWithIcon();
  // A missing symbol ends the refresh at its step.
  if (!RefreshGlow()) return;
  RefreshLine();
  if (!RefreshLongShadow()) return;
  if (!RefreshWallShadow()) return;
  RefreshReflection();
}

void cSVGItem::RefreshText() {
  if (TextContent().empty()) return;
  SurfacePtr surface = DrawingSurface::Create(256, 256, SurfaceKind::Svg);
  {
    DrawingContext ctx(surface);
    ctx.SelectFont(TextFontName(), TextFontSize(), 0, TextFontBold(), TextFontItalic(), TextFontUnderline());
    // Large type gets a larger box about the same centre. The layout flag
    // follows the underline, as stored designs expect; word wrap stays off,
    // so a long text is one line with or without its underline.
    const bool large = TextFontSize() >= 101;
    ctx.DrawText(large ? -128 : 0, large ? -128 : 0, large ? 512 : 256, large ? 512 : 256, TextContent(),
                 !TextFontUnderline(), TextAlign::Center, TextAlign::Middle);
    ctx.Fill();
  }
  svgBytes_ = surface->SvgDocumentBytes();
  ReApply();
}

void cSVGItem::RefreshClipWithIcon() {
  ItemCollection& layers = App().Layers;
  if (ClipIOverlayKey().empty() || !layers.Exists(ClipIOverlayKey())) return;
  const cSVGItem& cutter = *layers.Item(ClipIOverlayKey());
  // Tracing is slow: only a new icon, picture, turn or distance needs it.
  const std::string source = ContentHash(cutter.SvgBytes()) + "|" + std::to_string(cutter.Angle()) + "|" +
                             std::to_string(ClipIOffset());
  if (cutter.ID() == clipIOverlayId_ && source == clipISource_ && clipIPath_) return;
  const SVGItemPtr overlay = cutter.Clone();
  overlay->setClipIOffset(ClipIOffset());
  clipIPath_ = GetPathFromIcon(*overlay);
  clipIOverlayId_ = overlay->ID();
  clipISource_ = source;
}

SVGItemPtr cSVGItem::FollowSymbol() {
  const SVGItemPtr symbol = App().Layers.Item(EffSymbolKey())->Clone();
  double zW, zH, L, T;
  symbol->CalcOffSet(0, 0, zW, zH, L, T);  // a snap position becomes an offset
  id_ = symbol->ID();
  svgBytes_ = symbol->SvgBytes();
  setStyle(symbol->Style());
  setTheme(symbol->Theme());
  setAngle(symbol->Angle());
  ReApply();
  setZoomPercent(symbol->ZoomPercent());
  return symbol;
}

bool cSVGItem::RefreshGlow() {
  if (EffType() != 5) return true;
  if (!App().Layers.Exists(EffSymbolKey())) return false;
  const SVGItemPtr symbol = FollowSymbol();
  setOffSetx(symbol->OffSetx());
  setOffSetY(symbol->OffSetY());
  CopyClipFrom(*symbol);
  return true;
}

void cSVGItem::RefreshLine() {
  if (!EffIsLine() || !LineAllowed(Style(), Theme(), TextContent())) return;
  const KeyedCollection<PathPtr> paths = GetCairoPathsFromSVG(ToString(svgBytes_));
  if (paths.Count() == 0) return;
  // The outline is stroked on a square larger by the line width, then that
  // square is drawn into 256 units: composed here as one transformation.
  const double w = EffLineWidth();
  SurfacePtr surface = DrawingSurface::Create(256, 256, SurfaceKind::Svg);
  {
    DrawingContext ctx(surface);
    ctx.Scale(256 / (256 + w), 256 / (256 + w));
    ctx.Translate(w / 2, w / 2);
    for (const auto& e : paths) ctx.AppendPath(*e.Item);
    ctx.SetSourceColor(0, 1);
    ctx.SetLineWidth(w);
    if (EffIsDash()) ctx.SetDash({EffDashValue1(), EffDashValue2()}, 0);
    ctx.Stroke();
  }
  svgBytes_ = surface->SvgDocumentBytes();
  ReApply();
}

bool cSVGItem::RefreshLongShadow() {
  if (EffType() != 1) return true;
  SurfacePtr surface = DrawingSurface::Create(256, 256, SurfaceKind::Svg);
  if (!App().Layers.Exists(EffSymbolKey())) return false;
  const PathPtr path = GetShadowPathFromShape(EffSymbolKey(), EffBGKey(), LSAngle(), 512, 512);
  if (path) {
    {
      DrawingContext ctx(surface);
      ctx.Scale(0.5, 0.5);
      ctx.AppendPath(*path);
      ctx.Fill();
    }
    svgBytes_ = surface->SvgDocumentBytes();
    ReApply();
  }
  return true;
}

bool cSVGItem::RefreshWallShadow() {
  if (EffType() != 2) return true;
  if (!App().Layers.Exists(EffSymbolKey())) return false;
  const SVGItemPtr symbol = FollowSymbol();
  setOffSetx(symbol->OffSetx() + EffOffsetX() / 100 * ZoomPercent());
  setOffSetY(symbol->OffSetY() + EffOffsetY() / 100 * ZoomPercent());
  CopyClipFrom(*symbol);
  return true;
}

bool cSVGItem::RefreshReflection() {
  if (EffType() != 4) return true;
  ItemCollection& layers = App().Layers;
  if (!layers.Exists(EffSymbolKey())) return false;
  const SVGItemPtr symbol = layers.Item(EffSymbolKey())->Clone();
  setZoomPercent(symbol->ZoomPercent());
  id_ = symbol->ID();
  svgBytes_ = symbol->SvgBytes();
  setStyle(symbol->Style());
  setTheme(symbol->Theme());
  const double C = App().CanvasHeight;
  double zW, zH, L, T;
  symbol->CalcOffSet(C, C, zW, zH, L, T);  // the height for both sides, deliberately
  double scale = 1;
  const SurfacePtr scratch = DrawingSurface::Create(static_cast<int>(C), static_cast<int>(C));
  const Margins m = GetInnerDimensions(scratch, symbol->SvgBytes(), scale, 0);
  const double f = 1 - (m.Top / C + m.Bottom / C);
  const double P = EffHeightPerc() / 100;
  setOffSetx(symbol->OffSetx());
  setOffSetY(((P + 1) * (f * 0.5) + EffOffsetY() / 256) * ZoomPercent() + symbol->OffSetY());
  SurfacePtr surface = DrawingSurface::Create(256, 256, SurfaceKind::Svg);
  {
    DrawingContext ctx(surface);
    ctx.Translate(0, (P + 1) * 128);
    ctx.Scale(1, -P);
    App().SvgRenderer->Render(ctx, svgBytes_, 0, 0, 256, 256, 0);
  }
  svgBytes_ = surface->SvgDocumentBytes();
  filter_ = symbol->Filter();
  if (filter_ == FilterGradient) {
    GradCloneIntoMeFrom(*symbol);
    if (GradAngleDeg() == 0) {
      setGradAngleDeg(180);
    } else if (GradAngleDeg() == 180) {
      setGradAngleDeg(0);
    }
  }
  if (filter_ == FilterReplace) {
    setRCOldColorString(symbol->RCOldColorString());
    setRCNewColorString(symbol->RCNewColorString());
  }
  ReApply();
  return true;
}

}  // namespace qds
