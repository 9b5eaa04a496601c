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
#include <string>

#include "colour/cColorItem.h"
#include "platform/Bytes.h"
#include "platform/Collection.h"
#include "platform/Drawing.h"
#include "platform/JsonBag.h"
#include "platform/Path.h"
#include "platform/Pattern.h"
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
  void setSettings(const std::string& text);
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

#define QDS_BAG(Type, Name, Key, Getter, Def)        \
  Type Name() const {                                \
    return static_cast<Type>(bag_.Getter(Key, Def)); \
  }                                                  \
  void set##Name(Type v) {                           \
    bag_.Set(Key, v);                                \
  }

  QDS_BAG(double, Width, "Width", GetDouble, 256)
  QDS_BAG(double, Height, "Height", GetDouble, 256)
  QDS_BAG(int, Angle, "Angle", GetLong, 0)
  QDS_BAG(bool, IsOverlay, "IsOverlay", GetBool, false)
  QDS_BAG(bool, UseAsOverlay, "UseAsOverlay", GetBool, false)
  double OffSetx() const {
    return bag_.GetDouble("OffsetX", 0);
  }
  void setOffSetx(double v);  // also Pos and Distance to 0
  double OffSetY() const {
    return bag_.GetDouble("OffsetY", 0);
  }
  void setOffSetY(double v);
  QDS_BAG(double, Opacity, "Opacity", GetDouble, 100)
  double Distance() const {
    return bag_.GetDouble("Distance", 0);
  }
  void setDistance(double v);  // also the offsets to 0
  QDS_BAG(double, ZoomPercent, "ZoomPercent", GetDouble, 100)
  int Pos() const {
    return static_cast<int>(bag_.GetLong("Pos", 0));
  }
  void setPos(int v);  // also the offsets to 0
  QDS_BAG(std::string, Style, "Style", GetString, "")
  QDS_BAG(std::string, Theme, "Theme", GetString, "")
  QDS_BAG(std::string, TextContent, "TextContent", GetString, "")
  QDS_BAG(std::string, TextFontName, "TextFontName", GetString, "Arial")
  QDS_BAG(int, TextFontSize, "TextFontSize", GetLong, 60)
  QDS_BAG(bool, TextFontBold, "TextFontBold", GetBool, false)
  QDS_BAG(bool, TextFontItalic, "TextFontItalic", GetBool, false)
  QDS_BAG(bool, TextFontUnderline, "TextFontUnderline", GetBool, false)
  QDS_BAG(int, EffType, "EffType", GetLong, 0)
  QDS_BAG(double, EffBlur, "EffBlur", GetDouble, 0)
  double EffOffsetX() const {
    return bag_.GetDouble("EffOffsetX", 0);
  }
  void setEffOffsetX(double v);  // also Pos and Distance to 0
  double EffOffsetY() const {
    return bag_.GetDouble("EffOffsetY", 0);
  }
  void setEffOffsetY(double v);
  QDS_BAG(std::string, EffSymbolKey, "EffSymbolKey", GetString, "")
  QDS_BAG(std::string, EffBGKey, "EffBGKey", GetString, "")
  QDS_BAG(double, EffHeightPerc, "EffHeightPerc", GetDouble, 30)
  QDS_BAG(double, EffOpacity1, "EffOpacity1", GetDouble, 100)
  QDS_BAG(double, EffOpacity2, "EffOpacity2", GetDouble, 0)
  QDS_BAG(bool, EffIsLine, "EffIsLine", GetBool, false)
  QDS_BAG(double, EffLineWidth, "EffLineWidth", GetDouble, 3)
  QDS_BAG(bool, EffIsDash, "EffIsDash", GetBool, false)
  QDS_BAG(double, EffDashValue1, "EffDashValue1", GetDouble, 40)
  QDS_BAG(double, EffDashValue2, "EffDashValue2", GetDouble, 20)
  QDS_BAG(double, LSAngle, "LSAngle", GetDouble, 135)
  QDS_BAG(bool, LSGradient, "LSGradient", GetBool, false)
  QDS_BAG(std::string, ClipIBaseKey, "ClipIBaseKey", GetString, "")
  QDS_BAG(std::string, ClipIOverlayKey, "ClipIOverlayKey", GetString, "")
  QDS_BAG(int, ClipIOffset, "ClipIOffset", GetLong, 20)
  QDS_BAG(bool, ClipExists, "ClipExists", GetBool, false)
  QDS_BAG(double, ClipX, "ClipX", GetDouble, 0.3515625)
  QDS_BAG(double, ClipY, "ClipY", GetDouble, 0.3515625)
  QDS_BAG(double, ClipDX, "ClipDX", GetDouble, 0.80078125)
  QDS_BAG(double, ClipDY, "ClipDY", GetDouble, 0.80078125)
  QDS_BAG(double, ClipBorderRadius, "ClipBorderRadius", GetDouble, 0.1171875)
  QDS_BAG(int, ClipShapeForms, "ClipShapeForms", GetLong, 1)
  QDS_BAG(bool, ClipInverted, "ClipInverted", GetBool, true)
  QDS_BAG(int, ClipColor, "ClipColor", GetLong, -1)
  QDS_BAG(double, ClipOpacity, "ClipOpacity", GetDouble, 100)
  QDS_BAG(bool, ClipVisible, "ClipVisible", GetBool, true)
  QDS_BAG(bool, RCUseTheme, "RCUseTheme", GetBool, false)
  QDS_BAG(std::string, RCOldColorString, "RCOldColor", GetString, "")
  QDS_BAG(std::string, RCNewColorString, "RCNewColor", GetString, "")
  QDS_BAG(int, EffGlowColor, "EffGlowColor", GetLong, 0xFFFFFF)
  QDS_BAG(bool, EffIsGlow, "EffIsGlow", GetBool, false)
  QDS_BAG(bool, GradRadial, "GradRadial", GetBool, false)
  double GradAngleDeg() const {
    return bag_.GetDouble("GradAngleDeg", 0);
  }
  void setGradAngleDeg(double v);  // 360 is 0; one turn taken off or added
  QDS_BAG(double, GradPointCX, "GradPointCX", GetDouble, 0.1)
  QDS_BAG(double, GradPointCY, "GradPointCY", GetDouble, 0.1)
  QDS_BAG(bool, GradInvert, "GradInvert", GetBool, false)
#undef QDS_BAG

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
  JsonBag bag_;
};

// True when the ID is a number (a library row), also as text.
bool IsNumericID(const Value& id);

// Outlines may be drawn for flat icons and for text.
bool LineAllowed(const std::string& style, const std::string& theme, const std::string& textContent);

}  // namespace qds
