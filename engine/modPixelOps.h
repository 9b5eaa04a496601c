#pragma once
// Routines that look at rendered pixels: measuring an icon, tracing its
// outline into a path, and the long-shadow shape.

#include <string>

#include "platform/Bytes.h"
#include "platform/Drawing.h"
#include "platform/Path.h"

namespace qds {

class cSVGItem;

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

// The outline of a layer's icon at its clip distance, for a clip with an
// icon; none when nothing can be traced.
PathPtr GetPathFromIcon(const cSVGItem& item);

// The long shadow of the symbol layer over the background layer at `angle`
// degrees, on a W by H canvas; none when the keys are missing.
PathPtr GetShadowPathFromShape(const std::string& symbolKey, const std::string& backgroundKey, double angle,
                               double width, double height);

}  // namespace qds
