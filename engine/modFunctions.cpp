#include "engine/modFunctions.h"

#include <algorithm>

#include "app/AppContext.h"
#include "engine/cSVGItem.h"
#include "engine/modParser.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/TextUtil.h"
#include "platform/XmlDocument.h"

namespace qds {

namespace {

// Translate and scale from the layer's 256-unit icon space to where the
// layer is drawn on the target, so that a cut or a bound lines up with the
// picture.
void PlaceLayer(DrawingContext& ctx, const cSVGItem& layer, double W, double H) {
  const LayerPlacement p = layer.Placement(std::min(W, H));
  ctx.Translate(p.tx, p.ty);
  ctx.Scale(p.zS / 256, p.zS / 256);
}

void Collect(const XmlNode& node, std::vector<XmlNode>& found) {
  for (const XmlNode& child : node.Children()) {
    if (AsciiLower(child.Name()) == "clippath" && AsciiLower(child.Attribute("id").substr(0, 4)) == "clip") {
      found.push_back(child);
    }
    Collect(child, found);
  }
}

void Groups(const XmlNode& node, const std::string& value, std::vector<XmlNode>& found) {
  for (const XmlNode& child : node.Children()) {
    if (child.Name() == "g" && AsciiLower(child.Attribute("clip-path")) == value) found.push_back(child);
    Groups(child, value, found);
  }
}

// The first layer from the top, other than `key` itself, whose field names `key`.
std::string EffectKeyBy(const AppContext& app, const std::string& key,
                        std::string (cSVGItem::*field)() const) {
  if (key.empty()) return {};
  for (const auto& e : app.Layers) {
    if (e.Key != key && ((*e.Item).*field)() == key) return e.Key;
  }
  return {};
}

}  // namespace

std::string EffectKeyBySymbolKey(const AppContext& app, const std::string& key) {
  return EffectKeyBy(app, key, &cSVGItem::EffSymbolKey);
}

std::string EffectKeyByBGKey(const AppContext& app, const std::string& key) {
  return EffectKeyBy(app, key, &cSVGItem::EffBGKey);
}

void EffectReplaceSymbolKey(AppContext& app, const std::string& oldKey, const std::string& newKey) {
  const std::string effect = EffectKeyBySymbolKey(app, oldKey);
  if (!effect.empty()) app.Layers.Item(effect)->setEffSymbolKey(newKey);
}

bool DeleteEffectItems(AppContext& app, const std::string& key, bool alsoBackground) {
  const std::string effect = EffectKeyBySymbolKey(app, key);
  if (!effect.empty()) app.Layers.Remove(effect);
  if (alsoBackground) {
    const std::string bounded = EffectKeyByBGKey(app, key);
    if (!bounded.empty()) {
      const SVGItemPtr& layer = app.Layers.Item(bounded);
      layer->setEffBGKey("");
      layer->SettingsRefresh();
    }
  }
  return !effect.empty();
}

void RefreshIconClips(AppContext& app) {
  for (const auto& e : app.Layers) {
    if (!e.Item->ClipIOverlayKey().empty()) e.Item->RefreshClipWithIcon();
  }
}

bool SetIconClipPath(DrawingContext& ctx, const std::string& key, double W, double H) {
  ItemCollection& layers = App().Layers;
  if (!layers.Exists(key)) return false;
  ctx.Save();
  PlaceLayer(ctx, *layers.Item(key), W, H);
  return true;
}

bool SetBGPath(DrawingContext& ctx, const std::string& key, double W, double H) {
  ItemCollection& layers = App().Layers;
  if (!layers.Exists(key)) return false;
  const cSVGItem& layer = *layers.Item(key);
  const KeyedCollection<PathPtr> paths = GetCairoPathsFromSVG(layer.XML());
  if (paths.Count() == 0) return false;
  // The copy must be taken in the caller's space, not the layer's: a path
  // copies out in the coordinates of the transformation then in force.
  const Matrix callers = ctx.GetMatrix();
  ctx.Save();
  ctx.NewPath();
  PlaceLayer(ctx, layer, W, H);
  for (const auto& e : paths) ctx.AppendPath(*e.Item);
  ctx.SetMatrix(callers);
  const PathPtr outline = ctx.CopyPath(true, 0.1);
  ctx.NewPath();
  ctx.Restore();
  ctx.AppendPath(*outline);
  return true;
}

PathPtr ConstructPath(int form, double x, double y, double dx, double dy, double radius) {
  SurfacePtr surface = DrawingSurface::Create(1, 1);
  DrawingContext ctx(surface);
  if (form == 0 || form == 1) {
    ctx.Ellipse(x + dx / 2, y + dy / 2, dx / 2, dy / 2);
  } else if (form == 2 || form == 3) {
    ctx.RoundedRectangle(x, y, dx, dy, radius);
  }
  return ctx.CopyPath(true, 0.5);
}

std::string RemoveClipPaths(const std::string& text) {
  XmlDocument doc;
  if (!doc.Load(text)) return text;
  std::vector<XmlNode> clips;
  Collect(doc.Root(), clips);
  for (const XmlNode& clip : clips) {
    const std::string value = AsciiLower("url(#" + clip.Attribute("id") + ")");
    std::vector<XmlNode> groups;
    Groups(doc.Root(), value, groups);
    for (XmlNode g : groups) {
      g.RemoveAttribute("clip-path");
      g.RemoveAttribute("clip-rule");
    }
    if (groups.empty()) continue;
    XmlNode parent = clip.Parent();
    parent.RemoveChild(clip);
    if (parent.Children().empty() && !parent.Parent().IsNull()) parent.Parent().RemoveChild(parent);
  }
  return doc.Serialize();
}

}  // namespace qds
