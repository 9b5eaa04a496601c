#pragma once
// The seven colours of the program's own theme. Index 4 is the accent colour
// with which the interface icons are tinted.

#include <cstdint>

namespace qds {

constexpr int kQuillaronPaletteSize = 7;

inline std::int64_t QuillaronPaletteColor(int index) {
  static constexpr std::int64_t palette[kQuillaronPaletteSize] = {0x323232, 0xDDDDDD, 0x555555, 0x444444,
                                                                  0xC38C00, 0x777777, 0x595959};
  return index >= 0 && index < kQuillaronPaletteSize ? palette[index] : 0;
}

}  // namespace qds
