#pragma once
// One layer of a design: an SVG document as bytes, the identity of the
// library row it came from, its colour filter, its blend operator, and a bag
// of named settings saying where the layer stands, how large it is drawn and
// which text, effect, clip, colour-replacement and gradient values it has.
//
// The bag holds only what was set at least once, in the order of first
// assignment; a getter answers the default for an absent key.

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "colour/cColorItem.h"
#include "platform/Bytes.h"
#include "platform/Collection.h"
#include "platform/Drawing.h"
#include "platform/JsonBag.h"
#include "platform/Path.h"
#include "platform/Pattern.h"
#include "platform/SettingsSchema.h"
#include "platform/Value.h"

namespace qds {

class cSVGItem;
class DrawingContext;
using SVGItemPtr = std::shared_ptr<cSVGItem>;

// A stored blend operator as one the layer menu offers; any other number
// (a damaged design or template) draws as "Over".
int BlendOperator(long long stored);

// Where a layer's picture lands in a square of side S: the zoomed side zS,
// the transparent margins of the visible picture at that zoom, and the
// translation of the picture's zS box inside the square.
struct LayerPlacement {
  double S = 0, zS = 0;
  double L = 0, T = 0, R = 0, B = 0;
  double tx = 0, ty = 0;
};

// The layer's settings: property, bag key, kind, default, lowest and highest
// value (for text the longest, in bytes), and whether the setter does more
// than store the value. Settings read from a design or template are brought
// into these limits once (CheckLayerSettings), setters keep them there, and
// the drawing code relies on them: a zoom of 1e9 would ask for a picture of
// 1e9 pixels, a clip width of 1e10 for a line that never ends.
#define QDS_LAYER_SETTINGS(X)                                                     \
  X(double, Width, "Width", Number, 256, 1, 1024, Plain)                          \
  X(double, Height, "Height", Number, 256, 1, 1024, Plain)                        \
  X(int, Angle, "Angle", Whole, 0, -360, 360, Plain)                              \
  X(bool, IsOverlay, "IsOverlay", Flag, false, 0, 1, Plain)                       \
  X(bool, UseAsOverlay, "UseAsOverlay", Flag, false, 0, 1, Plain)                 \
  /* Setting an offset also sets Pos and Distance to 0. */                        \
  X(double, OffSetx, "OffsetX", Number, 0, -1000, 1000, Own)                      \
  X(double, OffSetY, "OffsetY", Number, 0, -1000, 1000, Own)                      \
  X(double, Opacity, "Opacity", Number, 100, 0, 100, Plain)                       \
  /* Setting Distance or Pos also sets the offsets to 0. */                       \
  X(double, Distance, "Distance", Number, 0, 0, 100, Own)                         \
  X(double, ZoomPercent, "ZoomPercent", Number, 100, 1, 200, Plain)               \
  X(int, Pos, "Pos", Whole, 0, 0, 9, Own)                                         \
  X(std::string, Style, "Style", Text, "", 0, 256, Plain)                         \
  X(std::string, Theme, "Theme", Text, "", 0, 256, Plain)                         \
  X(std::string, TextContent, "TextContent", Text, "", 0, 4096, Plain)            \
  X(std::string, TextFontName, "TextFontName", Text, "Arial", 0, 256, Plain)      \
  X(int, TextFontSize, "TextFontSize", Whole, 60, 1, 512, Plain)                  \
  X(bool, TextFontBold, "TextFontBold", Flag, false, 0, 1, Plain)                 \
  X(bool, TextFontItalic, "TextFontItalic", Flag, false, 0, 1, Plain)             \
  X(bool, TextFontUnderline, "TextFontUnderline", Flag, false, 0, 1, Plain)       \
  X(int, EffType, "EffType", Whole, 0, 0, 5, Plain)                               \
  X(double, EffBlur, "EffBlur", Number, 0, 0, 100, Plain)                         \
  /* Setting an effect offset also sets Pos and Distance to 0. */                 \
  X(double, EffOffsetX, "EffOffsetX", Number, 0, -1000, 1000, Own)                \
  X(double, EffOffsetY, "EffOffsetY", Number, 0, -1000, 1000, Own)                \
  X(std::string, EffSymbolKey, "EffSymbolKey", Text, "", 0, 256, Plain)           \
  X(std::string, EffBGKey, "EffBGKey", Text, "", 0, 256, Plain)                   \
  X(double, EffHeightPerc, "EffHeightPerc", Number, 30, 0, 200, Plain)            \
  X(double, EffOpacity1, "EffOpacity1", Number, 100, 0, 100, Plain)               \
  X(double, EffOpacity2, "EffOpacity2", Number, 0, 0, 100, Plain)                 \
  X(bool, EffIsLine, "EffIsLine", Flag, false, 0, 1, Plain)                       \
  X(double, EffLineWidth, "EffLineWidth", Number, 3, 0, 128, Plain)               \
  X(bool, EffIsDash, "EffIsDash", Flag, false, 0, 1, Plain)                       \
  X(double, EffDashValue1, "EffDashValue1", Number, 40, 0.5, 256, Plain)          \
  X(double, EffDashValue2, "EffDashValue2", Number, 20, 0.5, 256, Plain)          \
  X(double, LSAngle, "LSAngle", Number, 135, -360, 360, Plain)                    \
  X(bool, LSGradient, "LSGradient", Flag, false, 0, 1, Plain)                     \
  X(std::string, ClipIBaseKey, "ClipIBaseKey", Text, "", 0, 256, Plain)           \
  X(std::string, ClipIOverlayKey, "ClipIOverlayKey", Text, "", 0, 256, Plain)     \
  X(int, ClipIOffset, "ClipIOffset", Whole, 20, 0, 128, Plain)                    \
  X(bool, ClipExists, "ClipExists", Flag, false, 0, 1, Plain)                     \
  X(double, ClipX, "ClipX", Number, 0.3515625, -1, 2, Plain)                      \
  X(double, ClipY, "ClipY", Number, 0.3515625, -1, 2, Plain)                      \
  X(double, ClipDX, "ClipDX", Number, 0.80078125, 0, 2, Plain)                    \
  X(double, ClipDY, "ClipDY", Number, 0.80078125, 0, 2, Plain)                    \
  X(double, ClipBorderRadius, "ClipBorderRadius", Number, 0.1171875, 0, 1, Plain) \
  X(int, ClipShapeForms, "ClipShapeForms", Whole, 1, 0, 3, Plain)                 \
  X(bool, ClipInverted, "ClipInverted", Flag, true, 0, 1, Plain)                  \
  X(int, ClipColor, "ClipColor", Whole, -1, -1, 0xFFFFFF, Plain)                  \
  X(double, ClipOpacity, "ClipOpacity", Number, 100, 0, 100, Plain)               \
  X(bool, ClipVisible, "ClipVisible", Flag, true, 0, 1, Plain)                    \
  X(bool, RCUseTheme, "RCUseTheme", Flag, false, 0, 1, Plain)                     \
  X(std::string, RCOldColorString, "RCOldColor", Text, "", 0, 65536, Plain)       \
  X(std::string, RCNewColorString, "RCNewColor", Text, "", 0, 65536, Plain)       \
  X(int, EffGlowColor, "EffGlowColor", Whole, 0xFFFFFF, -1, 0xFFFFFF, Plain)      \
  X(bool, EffIsGlow, "EffIsGlow", Flag, false, 0, 1, Plain)                       \
  X(bool, GradRadial, "GradRadial", Flag, false, 0, 1, Plain)                     \
  /* 360 is stored as 0; one turn is taken off or added. */                       \
  X(double, GradAngleDeg, "GradAngleDeg", Number, 0, -360, 720, Own)              \
  X(double, GradPointCX, "GradPointCX", Number, 0.1, -1, 2, Plain)                \
  X(double, GradPointCY, "GradPointCY", Number, 0.1, -1, 2, Plain)                \
  X(bool, GradInvert, "GradInvert", Flag, false, 0, 1, Plain)

// The table above as data, for checking a bag read from elsewhere.
std::span<const SettingRule> LayerSettings();
// Brings a layer's settings into their limits, the gradient stops too.
// Answers how many values had to be changed.
int CheckLayerSettings(JsonBag& bag);

class cSVGItem {
 public:
  // Colour filter codes.
  static constexpr int FilterColor = 0, FilterOriginal = -1, FilterGray = -2, FilterReplace = -3,
                       FilterColorize = -4, FilterHSL = -5, FilterGradient = -6;

  // Public fields.
  bool HasPrevIcon = false;
  bool HasNextIcon = false;
  float ListMouseX = 0;
  float ListMouseY = 0;
  bool IsResource = false;
  double MoveX = 0;
  double MoveY = 0;

  cSVGItem() = default;

  void Init(const Value& id, const Bytes& svgBytes, const std::string& friendlyName,
            const cColorItem* colorItem = nullptr, bool visible = true, int filter = FilterOriginal,
            int fillOptions = 2, const std::string& settings = {}, bool applyColor = false,
            PathPtr initPath = nullptr);
  SVGItemPtr Clone(bool applyColor = false) const;
  // Back to the library document, or the derived picture rebuilt.
  void ResetSVGBYtes();

  const cColorItem& ColorItem() const { return colorItem_; }
  // Recolours the document by the filter, starting from the library
  // document for every filter but the plain colour.
  void setColorItem(const cColorItem& colour);

  const Value& ID() const { return id_; }
  void setID(const Value& id) { id_ = id; }
  const std::string& FriendlyName() const { return friendlyName_; }
  void setFriendlyName(const std::string& name) { friendlyName_ = name; }
  bool Visible() const { return visible_; }
  void setVisible(bool v) { visible_ = v; }
  int FillOptions() const { return fillOptions_; }
  void setFillOptions(int v) { fillOptions_ = BlendOperator(v); }
  int Filter() const { return filter_; }
  void setFilter(int filter);  // a new value re-applies the colour
  bool Rebuilding() const { return rebuilding_; }

  // The document as our vector surface writes it (percent colours).
  std::string XML() const;
  void setXML(const std::string& text) { svgBytes_ = ToBytes(text); }
  const Bytes& SvgBytes() const { return svgBytes_; }
  void setSvgBytes(const Bytes& bytes);  // re-applies the colour unless the filter is -1

  // A snap position as free-position percentages of the canvas.
  void GetOffsetXY(int pos, double left, double top, double right, double bottom, double zoomedW,
                   double zoomedH, double canvasW, double canvasH, double& outX, double& outY) const;
  // Measures the layer on a canvas of W by H (0: the design's canvas) and
  // turns a snap position into a free one, for good.
  void CalcOffSet(double canvasW, double canvasH, double& zoomedW, double& zoomedH, double& left,
                  double& top);
  void SetNewOffSet();
  // The library document (Images, or Resources for interface icons).
  Bytes GetSVGBytes() const;

  // Draws the layer into the square of side Min(width, height) at the top
  // left of the context, where its settings place it.
  void RenderTo(DrawingContext& ctx, double width, double height, bool showCentre = false);
  // Where RenderTo puts the picture in a square of side `side`. Everything
  // that must line up with the drawn layer asks this. `measured` receives
  // the picture drawn to measure it, when one had to be drawn.
  LayerPlacement Placement(double side, SurfacePtr* measured = nullptr) const;

  int SelectionIndex() const;
  void setSelectionIndex(int index);

  std::string Settings() const { return bag_.ToString(); }
  // Reads a stored bag, bringing its values into their limits.
  void setSettings(const std::string& text);
  // How many values the last setSettings had to bring into their limits.
  int CorrectedSettings() const { return correctedSettings_; }
  // Rebuilds the pictures that derive from other values: text, clip with an
  // icon, glow, outline, long shadow, wall shadow, reflection.
  void SettingsRefresh();

  const PathPtr& InitPath() const { return initPath_; }
  const PathPtr& ClipIPath() const { return clipIPath_; }
  void setClipIPath(PathPtr p) { clipIPath_ = std::move(p); }
  const Value& ClipIOverlayID() const { return clipIOverlayId_; }
  // 0 makes the next refresh trace the cutting icon again.
  void setClipIOverlayID(const Value& id) { clipIOverlayId_ = id; }
  // Traces the outline of the layer that cuts this one, when that layer's
  // icon, picture or turn, or this layer's clip distance, has changed.
  void RefreshClipWithIcon();

#define QDS_GET_Number(Key, Def) bag_.GetDouble(Key, Def)
#define QDS_GET_Whole(Key, Def) bag_.GetLong(Key, Def)
#define QDS_GET_Flag(Key, Def) bag_.GetBool(Key, Def)
#define QDS_GET_Text(Key, Def) bag_.GetString(Key, Def)
#define QDS_SET_Plain(Type, Name, Key)         \
  void set##Name(Type v) {                     \
    SetChecked(bag_, LayerSettings(), Key, v); \
  }
#define QDS_SET_Own(Type, Name, Key) void set##Name(Type v);
#define QDS_ACCESSORS(Type, Name, Key, Kind, Def, Min, Max, Setter) \
  Type Name() const {                                               \
    return static_cast<Type>(QDS_GET_##Kind(Key, Def));             \
  }                                                                 \
  QDS_SET_##Setter(Type, Name, Key)

  QDS_LAYER_SETTINGS(QDS_ACCESSORS)
#undef QDS_ACCESSORS
#undef QDS_SET_Own
#undef QDS_SET_Plain
#undef QDS_GET_Text
#undef QDS_GET_Flag
#undef QDS_GET_Whole
#undef QDS_GET_Number

  // The replacement's colours as collections of colour values.
  Collection RCOldColor() const {
    return ColorList(RCOldColorString());
  }
  void setRCOldColor(const Collection* colours) {
    setRCOldColorString(JoinColors(colours));
  }
  Collection RCNewColor() const {
    return ColorList(RCNewColorString());
  }
  void setRCNewColor(const Collection* colours) {
    setRCNewColorString(JoinColors(colours));
  }

  // Gradient stops, kept in the bag as [{"Offset":..,"Color":..,"Alpha":..}].
  int GradStopsCount() const;
  void GradStopsAdd(double offset, std::int64_t color, double alpha, int index);
  void GradStopsSet(int index, double offset, std::int64_t color, double alpha);
  cColorStop GradStopsItem(int index) const;
  void GradStopsRemove(int index);
  void GradCloneIntoMeFrom(const cSVGItem& source);

 private:
  static Collection ColorList(const std::string& text);
  static std::string JoinColors(const Collection* colours);
  JsonBag::Json& GradStops();  // made on first use
  void ReApply();
  void CopyClipFrom(const cSVGItem& symbol);
  // Takes the picture of the effect's symbol; answers the symbol's clone.
  SVGItemPtr FollowSymbol();
  // Writes `key` and sets the two keys it overrides to 0.
  void SetOverriding(const char* key, double v, const char* cleared1, const char* cleared2);
  void RenderLine(DrawingContext& ctx, const PathPtr& path, double lineWidth, std::int64_t colour, double W,
                  double H) const;
  std::pair<SurfacePtr, int> BlurSurface(const SurfacePtr& surface, double targetW, double targetH,
                                         const std::string& cacheKey) const;
  // The gradient of the filter -6, in the square's own space; none when the
  // layer has no stops or an angle without a pattern.
  std::optional<Pattern> GradientPattern(const LayerPlacement& p) const;
  void RefreshText();
  bool RefreshGlow();
  void RefreshLine();
  bool RefreshLongShadow();
  bool RefreshWallShadow();
  bool RefreshReflection();

  PathPtr initPath_;
  Value clipIOverlayId_;
  PathPtr clipIPath_;
  std::string clipISource_;  // what clipIPath_ was traced from
  Value id_;
  std::string friendlyName_;
  Bytes svgBytes_;
  cColorItem colorItem_;
  int filter_ = FilterOriginal;
  int fillOptions_ = 2;
  bool visible_ = true;
  bool rebuilding_ = false;
  int correctedSettings_ = 0;
  JsonBag bag_;
};

// True when the ID is a number (a library row), also as text.
bool IsNumericID(const Value& id);

// Outlines may be drawn for flat icons and for text.
bool LineAllowed(const std::string& style, const std::string& theme, const std::string& textContent);

}  // namespace qds
