#include "colour/cColorItem.h"

#include "colour/modColorFunctions.h"
#include "platform/Value.h"

namespace qds {

std::int64_t cColorItem::Color() const {
  if (IsEmptyRGB()) return -1;
  const auto channel = [](const Channel& c) { return c ? RoundHalfEven(*c) : 0; };
  return channel(r_) + 256 * channel(g_) + 65536 * channel(b_);
}

void cColorItem::setColor(std::int64_t colour) {
  if (colour == -1) {
    InitColor();
    return;
  }
  std::uint8_t r, g, b;
  SplitColorToRGB(colour, r, g, b);
  r_ = r, g_ = g, b_ = b;
  int h;
  std::uint8_t s, l;
  RGB2HSL(r, g, b, h, s, l);
  h_ = h, s_ = s, l_ = l;
}

bool cColorItem::Equal(const cColorItem& other) const {
  return Color() == other.Color() && r_ == other.r_ && g_ == other.g_ && b_ == other.b_ && h_ == other.h_ &&
         s_ == other.s_ && l_ == other.l_;
}

}  // namespace qds
