// A layer's settings text comes from saved designs, templates and presets.
// Any text must leave a layer that answers every setting, writes settings
// that read back the same, holds every value within its limits, and takes
// gradient and colour-list edits.

#include <cstdlib>

#include "engine/cLayersEntries.h"
#include "engine/cSVGItem.h"
#include "tests/fuzz/SeedWriter.h"

std::vector<qds::Bytes> FuzzSeeds() {
  return {
      qds::ToBytes(
          R"({"Pos":5,"OffsetX":0,"OffsetY":0,"Distance":4,"GradStops":[{"Offset":0,"Color":255,"Alpha":1}]})"),
      qds::ToBytes(
          R"({"TextContent":"Ab","TextFontSize":"120","EffIsLine":true,"RCOldColor":"1, 2,x","RCNewColor":"3,4"})"),
      qds::ToBytes(R"({"GradStops":{"a":1},"Angle":1e300,"ClipX":null})"),
      qds::ToBytes(R"({"ClipExists":true,"ClipDX":1e10,"ZoomPercent":-1e308,"EffBlur":3e9,"Style":[1]})"),
      qds::ToBytes("{}")};
}

QDS_FUZZ_INITIALIZE

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  qds::cSVGItem item;
  item.Init(qds::Value(), {}, "fuzz", nullptr, true, qds::cSVGItem::FilterOriginal, 2, text);
  (void)item.Angle();
  (void)item.Pos();
  (void)item.ZoomPercent();
  (void)item.TextFontSize();
  (void)item.ClipShapeForms();
  (void)item.EffGlowColor();
  (void)item.RCOldColor();
  (void)item.RCNewColor();
  for (int i = 0; i < item.GradStopsCount(); ++i) (void)item.GradStopsItem(i);
  const std::string once = item.Settings();
  // Whatever came in, what the drawing code reads is within its limits.
  const qds::JsonBag read = qds::JsonBag::FromText(once);
  for (const qds::SettingRule& rule : qds::LayerSettings()) {
    const auto& raw = read.Raw();
    const auto it = raw.find(rule.key);
    if (it == raw.end() || it->is_null()) continue;
    if (rule.kind == qds::SettingKind::Number || rule.kind == qds::SettingKind::Whole) {
      if (!it->is_number()) std::abort();
      const double v = it->get<double>();
      if (!(v >= rule.min && v <= rule.max)) std::abort();
    } else if (rule.kind == qds::SettingKind::Text) {
      if (!it->is_string() || it->get<std::string>().size() > rule.max) std::abort();
    } else if (!it->is_boolean()) {
      std::abort();
    }
  }
  qds::cSVGItem again;
  again.Init(qds::Value(), {}, "fuzz", nullptr, true, qds::cSVGItem::FilterOriginal, 2, once);
  if (again.Settings() != once) std::abort();
  item.GradStopsAdd(0.5, 255, 1, 1);
  item.setGradAngleDeg(item.GradAngleDeg());
  item.setOffSetx(1);
  qds::cLayersEntries entry;
  entry.setContent(text);
  (void)entry.r();
  (void)entry.ColorFilter();
  return 0;
}
