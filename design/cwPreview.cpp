#include "design/cwPreview.h"

#include <algorithm>
#include <cmath>

#include "design/cwCanvas.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/Form.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

cwPreview::cwPreview() : Widget("cwPreview") {}

void cwPreview::setCanvas(cwCanvas* canvas) {
  canvas_ = canvas;
  AskForSide();
  Refresh();
}

void cwPreview::AskForSide() {
  if (!canvas_) return;
  // One device pixel of the picture for each of the screen.
  const double zoom = Form() ? Form()->Zoom() : 1.0;
  const int side = static_cast<int>(std::lround(std::min(Width(), Height()) * zoom));
  if (side > 0) canvas_->setPreviewSide(side);
}

void cwPreview::W_Resize() {
  AskForSide();
}

void cwPreview::W_Paint(DrawingContext& ctx, double w, double h) {
  const SurfacePtr picture = canvas_ ? canvas_->PreviewSurface() : nullptr;
  const double side = std::min(w, h);
  if (picture && side > 0) {
    ctx.DrawSurface(picture, (w - side) / 2, (h - side) / 2, side, side, Filter::Good);
  }
  ctx.SetLineWidth(1);
  ctx.SetSourceColor(StockColor(Palette::Border));
  ctx.Rectangle(0.5, 0.5, w - 1, h - 1);
  ctx.Stroke();
}

void cwPreview::W_ReportState(WidgetState& state) const {
  state.checked = canvas_ && canvas_->PreviewSurface() != nullptr;
}

QDS_JOIN_WIDGET_REGISTRY(cwPreview);

}  // namespace qds
