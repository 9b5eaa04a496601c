#pragma once
// One colour with RGB and HSL views, each channel possibly empty. Channels
// are independent stores; only the Color setter keeps them in step. r, G, B
// run 0..255 and may hold a fraction after colourising; H 0..359 and s, l
// 0..100, or deltas when the item describes a shift.

#include <cstdint>
#include <optional>

namespace qds {

using Channel = std::optional<double>;

class cColorItem {
 public:
  cColorItem() = default;
  explicit cColorItem(std::int64_t colour) { setColor(colour); }

  cColorItem Clone() const { return *this; }

  const Channel& r() const { return r_; }
  const Channel& G() const { return g_; }
  const Channel& B() const { return b_; }
  const Channel& H() const { return h_; }
  const Channel& s() const { return s_; }
  const Channel& l() const { return l_; }
  void setr(Channel v) { r_ = v; }
  void setG(Channel v) { g_ = v; }
  void setB(Channel v) { b_ = v; }
  void setH(Channel v) { h_ = v; }
  void sets(Channel v) { s_ = v; }
  void setl(Channel v) { l_ = v; }

  void InitRGB() { r_ = g_ = b_ = std::nullopt; }
  void InitColor() {
    InitRGB();
    h_ = s_ = l_ = std::nullopt;
  }

  // 0xBBGGRR from the RGB channels (each rounded, an empty one as 0), or -1
  // when all three are empty.
  std::int64_t Color() const;
  // Fills r, G, B and the matching H, s, l; -1 empties every channel.
  void setColor(std::int64_t colour);

  bool IsEmptyRGB() const { return !r_ && !g_ && !b_; }
  bool Equal(const cColorItem& other) const;

 private:
  Channel r_, g_, b_, h_, s_, l_;
};

// The old and the new colour of one replacement pair.
class cReplaceColorItem {
 public:
  const cColorItem& OldColorItem() const { return old_; }
  void setOldColorItem(const cColorItem& c) { old_ = c; }
  const cColorItem& NewColorItem() const { return new_; }
  void setNewColorItem(const cColorItem& c) { new_ = c; }

 private:
  cColorItem old_, new_;
};

// One stop of a colour slider or gradient.
struct cColorStop {
  double Offset = 0;   // 0..1
  double Opacity = 1;  // 0..1
  std::int32_t Color = 0;
};

struct cPoint {
  std::int32_t X = 0;
  std::int32_t Y = 0;
};

}  // namespace qds
