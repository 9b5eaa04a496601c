#include "engine/cSVGItem.h"

namespace qds {

cSVGItem::cSVGItem() = default;

void cSVGItem::Init(const Value& id, const Bytes& svgBytes, const std::string& friendlyName, bool visible,
                    int filter, int fillOptions, const std::string& settings) {
  id_ = id;
  svgBytes_ = svgBytes;
  friendlyName_ = friendlyName;
  visible_ = visible;
  filter_ = filter;
  fillOptions_ = fillOptions;
  setSettings(settings);
}

void cSVGItem::setSettings(const std::string& text) {
  if (text.size() < 3 || text.front() != '{' || !settings_.Parse(text)) settings_.Clear();
}

}  // namespace qds
