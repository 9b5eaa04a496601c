#include "browser/IconPictures.h"

#include <algorithm>

#include "app/AppContext.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"

namespace qds {

std::string IconPictureKey(int id, int side) {
  return "Icon#" + std::to_string(id) + "@" + std::to_string(side);
}

SurfacePtr IconPicture(AppContext& app, int id, const Bytes& svg, int side) {
  side = std::clamp(side, 1, 1024);
  const std::string key = IconPictureKey(id, side);
  if (const PictureCache::Entry* kept = app.RenderCache.Find(key)) return kept->Surface;
  SurfacePtr picture = DrawingSurface::Create(side, side);
  {
    DrawingContext ctx(picture);
    app.SvgRenderer->RenderPicture(ctx, svg, 0, 0, side, side);
  }
  app.RenderCache.Add(key, picture);
  return picture;
}

}  // namespace qds
