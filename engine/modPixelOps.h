#pragma once
// Routines that look at rendered pixels: measuring an icon, tracing its
// outline into a path, the raster cache, and the long-shadow shape.

#include <optional>
#include <string>

#include "colour/cColorItem.h"
#include "platform/Bytes.h"
#include "platform/Drawing.h"
#include "platform/ImageList.h"
#include "platform/KeyedCollection.h"
#include "platform/Path.h"
#include "platform/PictureCache.h"

namespace qds {

class cSVGItem;
class DrawingContext;

struct Margins {
  double Left = 0, Top = 0, Right = 0, Bottom = 0;
};

// The transparent margins of a document drawn over the whole of `scratch`
// at `angle` (with `keep`, of what the surface already shows). A blank
// picture gives Top -1, Left width - 0.75, Right width - 1, Bottom height.
// `scale` becomes the factor by which the picture could fill the square,
// set by the tighter direction; it stays when the picture fills already.
Margins GetInnerDimensions(const SurfacePtr& scratch, const Bytes& svg, double& scale, double angle,
                           bool keep = false);

// The same measurement on a fresh width by height scratch surface,
// remembered by the document's content, the angle and the size. When it
// had to draw, `drawn` receives the picture it measured.
Margins MeasureMargins(const Bytes& svg, double angle, int width, int height, double* scale = nullptr,
                       SurfacePtr* drawn = nullptr);

// The key of a layer's picture of side `side` in the raster cache.
std::string CachedSurfaceKey(const cSVGItem& item, int side);

// A new document of W by H with the picture; with `fit` (or `scale`) the
// picture is scaled to fill the square, centred. `vector` makes the result
// an SVG surface's document; otherwise it is a PNG of the picture.
Bytes ResizeSVG(const Bytes& svg, int width, int height, bool fit, bool scale, bool vector = true);

// The layer as a picture of side `side`, from `cache` when it is there. The
// cache empties wholly when it holds more than `maxEntries` (or passes its
// byte bound). Turned layers are drawn anew each time and never kept.
SurfacePtr GetCachedSurface(cSVGItem& item, PictureCache& cache, int side, int maxEntries,
                            const std::string& backKey = {}, double border = 0, bool gray = false);

// The outline of a layer's icon grown by its clip distance, in 256 units;
// none for an empty picture.
PathPtr GetPathFromIcon(const cSVGItem& item);
// Traces every ink region of the context's surface into one path.
PathPtr PathFromIcon(DrawingContext& ctx);
// One step of the border walk; none when no neighbour is set.
std::optional<cPoint> GetNextPoint(const cPoint& point, const std::int32_t* pixels, int width, int height,
                                   int& direction);

// The long shadow of the symbol layer over the background layer (or the
// shape "Filled_Rectangle") at `angle` degrees on a W by H canvas.
PathPtr GetShadowPathFromShape(const std::string& symbolKey, const std::string& backgroundKey, double angle,
                               double width, double height);

}  // namespace qds
