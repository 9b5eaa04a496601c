#pragma once
// One layer of a design: an SVG document with the identity of its library
// row, its colour filter, its blend operator and a bag of named settings.
// This holds what the start-up and the library lists need; the effects,
// clips, gradients and the colour filters are added on top of it.

#include <cstdint>
#include <memory>
#include <string>

#include "platform/Bytes.h"
#include "platform/JsonBag.h"
#include "platform/Value.h"

namespace qds {

class cSVGItem {
 public:
  // Colour filter codes.
  static constexpr int FilterColor = 0, FilterOriginal = -1, FilterGray = -2, FilterReplace = -3,
                       FilterColorize = -4, FilterHSL = -5, FilterGradient = -6;

  cSVGItem();

  // Keeps the values; a settings text shorter than 3 characters or not
  // beginning with "{" starts an empty bag.
  void Init(const Value& id, const Bytes& svgBytes, const std::string& friendlyName, bool visible = true,
            int filter = FilterOriginal, int fillOptions = 2, const std::string& settings = {});

  const Value& ID() const { return id_; }
  void setID(const Value& id) { id_ = id; }
  const std::string& FriendlyName() const { return friendlyName_; }
  void setFriendlyName(const std::string& name) { friendlyName_ = name; }
  const Bytes& SvgBytes() const { return svgBytes_; }
  void setSvgBytes(const Bytes& bytes) { svgBytes_ = bytes; }
  bool Visible() const { return visible_; }
  void setVisible(bool v) { visible_ = v; }
  int Filter() const { return filter_; }
  int FillOptions() const { return fillOptions_; }

  std::string Style() const { return settings_.GetString("Style"); }
  void setStyle(const std::string& v) { settings_.Set("Style", v); }
  std::string Theme() const { return settings_.GetString("Theme"); }
  void setTheme(const std::string& v) { settings_.Set("Theme", v); }

  std::string Settings() const { return settings_.ToString(); }
  void setSettings(const std::string& text);

  bool IsResource = false;

 private:
  Value id_;
  std::string friendlyName_;
  Bytes svgBytes_;
  bool visible_ = true;
  int filter_ = FilterOriginal;
  int fillOptions_ = 2;
  JsonBag settings_;
};

using SVGItemPtr = std::shared_ptr<cSVGItem>;

}  // namespace qds
