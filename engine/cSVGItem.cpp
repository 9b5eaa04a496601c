#include "engine/cSVGItem.h"

#include <algorithm>

#include "app/AppContext.h"
#include "engine/modColorRewrite.h"
#include "platform/DbRecordset.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/SvgRenderer.h"
#include "platform/TextUtil.h"

namespace qds {

bool IsNumericID(const Value& id) {
  if (id.IsNumber()) return true;
  if (id.GetKind() != Value::Kind::String || TrimBlanks(id.Get<std::string>()).empty()) return false;
  try {
    id.AsDouble();
    return true;
  } catch (...) {
    return false;
  }
}

int BlendOperator(long long stored) {
  // Over, Add, and the separable and non-separable blend modes of the menu.
  for (const int op :
       {Op::Over, Op::Add, Op::Multiply, Op::Screen, Op::Overlay, Op::Darken, Op::Lighten, Op::ColorDodge,
        Op::ColorBurn, Op::HardLight, Op::SoftLight, Op::Difference, Op::Exclusion}) {
    if (stored == op) return op;
  }
  return Op::Over;
}

bool LineAllowed(const std::string& style, const std::string& theme, const std::string& textContent) {
  return !textContent.empty() || style == "Slimline" || style == "Shapes" || style == "Flat" ||
         (style == "Quillaron" && theme == "Shapes");
}

void cSVGItem::Init(const Value& id, const Bytes& svgBytes, const std::string& friendlyName,
                    const cColorItem* colorItem, bool visible, int filter, int fillOptions,
                    const std::string& settings, bool applyColor, PathPtr initPath) {
  initPath_ = std::move(initPath);
  id_ = id;
  svgBytes_ = svgBytes;
  fillOptions_ = BlendOperator(fillOptions);
  friendlyName_ = friendlyName;
  colorItem_ = colorItem ? colorItem->Clone() : cColorItem();
  filter_ = filter;
  visible_ = visible;
  if (settings.size() < 3 || settings.front() != '{') {
    bag_.Clear();
    correctedSettings_ = 0;
  } else {
    setSettings(settings);
  }
  if (applyColor && filter_ != FilterOriginal) setColorItem(colorItem_);
}

SVGItemPtr cSVGItem::Clone(bool applyColor) const {
  auto copy = std::make_shared<cSVGItem>();
  copy->Init(id_, svgBytes_, friendlyName_, &colorItem_, visible_, filter_, fillOptions_, Settings(),
             applyColor, initPath_);
  return copy;
}

void cSVGItem::setSettings(const std::string& text) {
  // Text that begins with "{" but is broken leaves an empty bag: whatever
  // the parser made of it replaces the old settings.
  if (!bag_.Parse(text)) bag_.Clear();
  correctedSettings_ = CheckLayerSettings(bag_);
}

void cSVGItem::setColorItem(const cColorItem& colour) {
  cColorItem kept = colour.Clone();
  if (filter_ != FilterColor && !EffIsLine()) ResetSVGBYtes();
  if (filter_ == FilterOriginal || filter_ == FilterGray || filter_ == FilterReplace ||
      filter_ == FilterGradient) {
    kept.InitColor();
  } else if (filter_ == FilterHSL) {
    kept.InitRGB();  // the H, S, L deltas stay
  }
  colorItem_ = kept;
  if (filter_ != FilterColor && filter_ != FilterGray && filter_ != FilterReplace &&
      filter_ != FilterColorize && filter_ != FilterHSL) {
    return;
  }
  const std::string text = IsResource ? XML() : ToString(svgBytes_);
  setXML(RewriteColors(text, *this, colorItem_));
}

void cSVGItem::setFilter(int filter) {
  if (filter == filter_) return;
  filter_ = filter;
  setColorItem(colorItem_);
}

void cSVGItem::setSvgBytes(const Bytes& bytes) {
  svgBytes_ = bytes;
  if (filter_ != FilterOriginal) setColorItem(colorItem_);
}

std::string cSVGItem::XML() const {
  SurfacePtr surface = DrawingSurface::Create(256, 256, SurfaceKind::Svg);
  {
    DrawingContext ctx(surface);
    App().SvgRenderer->Render(ctx, svgBytes_, 0, 0, 256, 256, 0);
  }
  return ToString(surface->SvgDocumentBytes());
}

Bytes cSVGItem::GetSVGBytes() const {
  if (!IsNumericID(id_)) return {};
  const std::string table = IsResource ? "Resources" : "Images";
  DbRecordset rs = App().Cnn.Query("Select * From " + table + " where ID=" + std::to_string(id_.AsLong()));
  if (rs.Eof()) return {};
  rs.MoveFirst();
  return rs.Fields("SVG").AsBytes();
}

void cSVGItem::ResetSVGBYtes() {
  if (!EffSymbolKey().empty() || !TextContent().empty() || EffIsLine()) {
    rebuilding_ = true;
    SettingsRefresh();
  } else {
    svgBytes_ = GetSVGBytes();
  }
  rebuilding_ = false;
}

void cSVGItem::ReApply() {
  if (filter_ != FilterOriginal && !rebuilding_) setColorItem(colorItem_.Clone());
}

namespace {

#define QDS_RULE(Type, Name, Key, Kind, Def, Min, Max, Setter) QDS_SETTING_RULE(Kind, Key, Def, Min, Max),
constexpr SettingRule kLayerSettings[] = {QDS_LAYER_SETTINGS(QDS_RULE)};
#undef QDS_RULE

// A gradient stop: where it sits, its colour (0xBBGGRR) and its alpha.
constexpr SettingRule kStopSettings[] = {
    {"Offset", SettingKind::Number, 0, 0, 1, {}},
    {"Color", SettingKind::Whole, 0, 0, 0xFFFFFF, {}},
    {"Alpha", SettingKind::Number, 1, 0, 1, {}},
};
// More stops than anyone draws by hand; a file may not ask for millions.
constexpr std::size_t kMaxGradStops = 65536;

}  // namespace

std::span<const SettingRule> LayerSettings() {
  return kLayerSettings;
}

int CheckLayerSettings(JsonBag& bag) {
  int changed = CheckSettings(bag, kLayerSettings);
  if (!bag.Has("GradStops")) return changed;
  JsonBag::Json& stops = bag.Raw()["GradStops"];
  if (!stops.is_array()) {
    bag.Remove("GradStops");
    return changed + 1;
  }
  if (stops.size() > kMaxGradStops) {
    changed += static_cast<int>(stops.size() - kMaxGradStops);
    stops.erase(stops.begin() + kMaxGradStops, stops.end());
  }
  for (std::size_t i = 0; i < stops.size();) {
    if (!stops[i].is_object()) {
      stops.erase(stops.begin() + static_cast<std::ptrdiff_t>(i));
      ++changed;
      continue;
    }
    JsonBag stop;
    stop.Raw() = std::move(stops[i]);
    changed += CheckSettings(stop, kStopSettings);
    stops[i++] = std::move(stop.Raw());
  }
  return changed;
}

void cSVGItem::SetOverriding(const char* key, double v, const char* cleared1, const char* cleared2) {
  SetChecked(bag_, kLayerSettings, key, v);
  bag_.Set(cleared1, 0);
  bag_.Set(cleared2, 0);
}

void cSVGItem::setOffSetx(double v) {
  SetOverriding("OffsetX", v, "Pos", "Distance");
}
void cSVGItem::setOffSetY(double v) {
  SetOverriding("OffsetY", v, "Pos", "Distance");
}
void cSVGItem::setDistance(double v) {
  SetOverriding("Distance", v, "OffsetX", "OffsetY");
}
void cSVGItem::setPos(int v) {
  SetOverriding("Pos", v, "OffsetX", "OffsetY");
}
void cSVGItem::setEffOffsetX(double v) {
  SetOverriding("EffOffsetX", v, "Pos", "Distance");
}
void cSVGItem::setEffOffsetY(double v) {
  SetOverriding("EffOffsetY", v, "Pos", "Distance");
}

void cSVGItem::setGradAngleDeg(double v) {
  if (v == 360) {
    v = 0;
  } else if (v > 360) {
    v -= 360;
  } else if (v < 0) {
    v += 360;
  }
  SetChecked(bag_, kLayerSettings, "GradAngleDeg", v);
}

Collection cSVGItem::ColorList(const std::string& text) {
  Collection out;
  if (text.empty()) return out;
  std::size_t start = 0;
  for (;;) {
    const std::size_t comma = text.find(',', start);
    const std::string part(
        TrimBlanks(text.substr(start, comma == std::string::npos ? std::string::npos : comma - start)));
    // A value that is no number (a damaged preset) reads as no colour, so
    // that the old and new lists stay paired and nothing matches it.
    long long colour = -1;
    try {
      colour = static_cast<std::int32_t>(Value(part).AsLong());
    } catch (const AppError&) {
    }
    out.Add(Value(colour));
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return out;
}

std::string cSVGItem::JoinColors(const Collection* colours) {
  std::string out;
  if (!colours) return out;
  for (const auto& e : *colours) {
    if (!out.empty()) out += ",";
    out += std::to_string(e.Item.AsLong());
  }
  return out;
}

JsonBag::Json& cSVGItem::GradStops() {
  JsonBag::Json& j = bag_.Raw();
  if (!j.contains("GradStops") || !j["GradStops"].is_array()) j["GradStops"] = JsonBag::Json::array();
  return j["GradStops"];
}

int cSVGItem::GradStopsCount() const {
  const JsonBag::Json& j = bag_.Raw();
  return j.contains("GradStops") && j["GradStops"].is_array() ? static_cast<int>(j["GradStops"].size()) : 0;
}

void cSVGItem::GradStopsAdd(double offset, std::int64_t color, double alpha, int index) {
  JsonBag::Json& stops = GradStops();
  const int at = std::clamp(index, 0, static_cast<int>(stops.size()));
  JsonBag stop;
  stop.Set("Offset", offset);
  stop.Set("Color", static_cast<long long>(color));
  stop.Set("Alpha", alpha);
  CheckSettings(stop, kStopSettings);
  stops.insert(stops.begin() + at, stop.Raw());
}

void cSVGItem::GradStopsSet(int index, double offset, std::int64_t color, double alpha) {
  JsonBag::Json& stops = GradStops();
  if (index < 0 || index >= static_cast<int>(stops.size())) return;
  JsonBag stop;
  stop.Raw() = stops[index];
  stop.Set("Offset", offset);
  stop.Set("Color", static_cast<long long>(color));
  stop.Set("Alpha", alpha);
  CheckSettings(stop, kStopSettings);
  stops[index] = stop.Raw();
}

cColorStop cSVGItem::GradStopsItem(int index) const {
  if (index < 0 || index >= GradStopsCount()) return {};
  JsonBag stop;
  stop.Raw() = bag_.Raw()["GradStops"][index];
  return {stop.GetDouble("Offset"), stop.GetDouble("Alpha", 1),
          static_cast<std::int32_t>(stop.GetLong("Color"))};
}

void cSVGItem::GradStopsRemove(int index) {
  JsonBag::Json& stops = GradStops();
  if (index >= 0 && index < static_cast<int>(stops.size())) stops.erase(stops.begin() + index);
}

void cSVGItem::GradCloneIntoMeFrom(const cSVGItem& source) {
  setGradPointCX(source.GradPointCX());
  setGradPointCY(source.GradPointCY());
  setGradRadial(source.GradRadial());
  setGradAngleDeg(source.GradAngleDeg());
  setGradInvert(source.GradInvert());
  GradStops() = JsonBag::Json::array();
  for (int i = source.GradStopsCount() - 1; i >= 0; --i) {
    const cColorStop s = source.GradStopsItem(i);
    GradStopsAdd(s.Offset, s.Color, s.Opacity, 0);
  }
}

}  // namespace qds
