#pragma once
// Placing layer outlines on a context for clips, building clip forms, and
// removing clip definitions from exported SVG text.

#include <string>

#include "platform/Path.h"

namespace qds {

class DrawingContext;
struct AppContext;

// The effect layer drawn from the layer `key`, and the effect layer whose
// background shape is `key`: the key of the first from the top, "" when
// there is none.
std::string EffectKeyBySymbolKey(const AppContext& app, const std::string& key);
std::string EffectKeyByBGKey(const AppContext& app, const std::string& key);
// The effect of `oldKey` follows its symbol to `newKey`.
void EffectReplaceSymbolKey(AppContext& app, const std::string& oldKey, const std::string& newKey);
// Removes the effect layer of `key`; with `alsoBackground` the effect that
// `key` bounded loses its background and is drawn anew. True when the stack
// lost a layer.
bool DeleteEffectItems(AppContext& app, const std::string& key, bool alsoBackground);

// Every layer cut by another layer's icon gets its cut traced, where it is
// missing or out of date: after a load, an undo, or a new icon in a layer.
void RefreshIconClips(AppContext& app);

// Saves the context and moves it so that a path in the layer's 256-unit
// icon space lands where the layer is drawn on a W by H target. False, with
// nothing changed, when Layers has no such key.
bool SetIconClipPath(DrawingContext& ctx, const std::string& key, double W, double H);

// Makes the current path the outline of a background layer in target
// coordinates, ready to clip with. False when the key or its paths are
// missing.
bool SetBGPath(DrawingContext& ctx, const std::string& key, double W, double H);

// A clip form as a flat path: forms 0 and 1 an ellipse, 2 and 3 a rounded
// rectangle.
PathPtr ConstructPath(int form, double x, double y, double dx, double dy, double radius);

// The document without its clip paths: every clipPath whose id begins with
// "clip" and is used by a group goes, with the group's clip attributes.
// Text that cannot be read comes back unchanged.
std::string RemoveClipPaths(const std::string& text);

}  // namespace qds
