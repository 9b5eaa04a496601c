#pragma once
// Drawing a whole design: what the canvas and the export both do.

namespace qds {

class DrawingContext;
struct AppContext;

// Every visible layer of Layers, from the last index to the first (the top
// layer is index 0), onto one context, into a square of side `side`.
void RenderDesign(AppContext& app, DrawingContext& ctx, double side);

}  // namespace qds
