#pragma once
// The design the benchmarks draw: six layers that use most of what a layer
// can do. From the top: a text, an overlay with a gradient filter, the base
// icon with a form clip, its glow, its long shadow over a background shape.

#include <memory>
#include <string>

#include "app/AppContext.h"
#include "engine/cSVGItem.h"
#include "tests/support/LibraryLayers.h"

// Replaces the design's layers by the six, with `base` as the base icon.
inline void BuildTypicalDesign(qds::AppContext& app, qds::SVGItemPtr base) {
  using namespace qds;
  app.Layers.Clear();
  SVGItemPtr bg = LibraryLayer(app, "Background_Rounded_Square_Blue", "Design Elements");
  base->setZoomPercent(60);
  base->setClipExists(true);
  base->setClipInverted(false);
  SVGItemPtr badge = LibraryLayer(app, "star", "Flat");
  badge->setZoomPercent(30);
  badge->setPos(3);
  badge->setFilter(cSVGItem::FilterGradient);
  badge->GradStopsAdd(0, 0xFFFFFF, 1, 0);
  badge->GradStopsAdd(1, 0x00C0FF, 1, 1);
  const auto effect = [](int type, const std::string& name) {
    auto e = std::make_shared<cSVGItem>();
    e->Init(Value("0101260000" + name), {}, name, nullptr, true, cSVGItem::FilterColor);
    e->setEffType(type);
    e->setEffSymbolKey("_BaseIco");
    e->setEffBGKey("bg");
    return e;
  };
  SVGItemPtr text = std::make_shared<cSVGItem>();
  text->Init(Value("0101260000Text"), {}, "Text", nullptr, true, cSVGItem::FilterColor);
  text->setTextContent("Qd");
  text->setZoomPercent(30);
  text->setPos(9);
  SVGItemPtr shadow = effect(1, "LS");
  SVGItemPtr glow = effect(5, "GL");
  glow->setEffBlur(3);
  app.Layers.Add(text, "text");
  app.Layers.Add(badge, "badge");
  app.Layers.Add(base, "_BaseIco");
  app.Layers.Add(glow, "glow");
  app.Layers.Add(shadow, "ls");
  app.Layers.Add(bg, "bg");
  text->SettingsRefresh();
  text->setColorItem(cColorItem(0xFFFFFF));
  shadow->SettingsRefresh();
  shadow->setColorItem(cColorItem(0));
  shadow->setOpacity(30);
  glow->SettingsRefresh();
  glow->setColorItem(cColorItem(0x00FFFF));
}
