#include "engine/modRenderDesign.h"

#include "app/AppContext.h"
#include "engine/cSVGItem.h"
#include "platform/DrawingContext.h"

namespace qds {

void RenderDesign(AppContext& app, DrawingContext& ctx, double side) {
  for (int i = app.Layers.Count() - 1; i >= 0; --i) {
    const SVGItemPtr layer = app.Layers.Item(i);
    if (layer->Visible()) layer->RenderTo(ctx, side, side);
  }
}

}  // namespace qds
