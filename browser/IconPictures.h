#pragma once
// Library icons as the grids show them: drawn from their SVG at the cell's
// side the first time they show, and kept in RenderCache by ID and side,
// so that scrolling back to them costs a copy, and a cell that never
// shows costs nothing.

#include <string>

#include "platform/Bytes.h"
#include "platform/Drawing.h"

namespace qds {

struct AppContext;

std::string IconPictureKey(int id, int side);
// The icon's picture, side by side pixels; a document that cannot be drawn
// gives an empty picture, which is kept too, so it is not tried again.
SurfacePtr IconPicture(AppContext& app, int id, const Bytes& svg, int side);

}  // namespace qds
