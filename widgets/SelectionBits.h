#pragma once
// Which rows of a list are selected, one bit per row: a list of a million
// rows costs 125 KB, and selecting all of them is one fill.

#include <algorithm>
#include <cstdint>
#include <vector>

namespace qds {

class SelectionBits {
 public:
  bool Get(int row) const {
    const std::size_t byte = static_cast<std::size_t>(row) >> 3;
    return row >= 0 && byte < bytes_.size() && (bytes_[byte] >> (row & 7) & 1);
  }
  // Grows when a higher row is touched.
  void Set(int row, bool on) {
    if (row < 0) return;
    const std::size_t byte = static_cast<std::size_t>(row) >> 3;
    if (byte >= bytes_.size()) {
      if (!on) return;
      bytes_.resize(byte + 1, 0);
    }
    const auto bit = static_cast<std::uint8_t>(1u << (row & 7));
    bytes_[byte] = on ? (bytes_[byte] | bit) : (bytes_[byte] & ~bit);
  }
  // Room for `rows` rows; the bits of rows past them are dropped.
  void Resize(int rows) {
    const int n = rows < 0 ? 0 : rows;
    bytes_.resize((static_cast<std::size_t>(n) + 7) / 8, 0);
    if (n % 8 != 0) bytes_.back() &= static_cast<std::uint8_t>((1u << (n % 8)) - 1);
  }
  void SetAll(int rows) {
    bytes_.assign((static_cast<std::size_t>(rows < 0 ? 0 : rows) + 7) / 8, 0xFF);
    Resize(rows);
  }
  void Clear() { std::fill(bytes_.begin(), bytes_.end(), 0); }
  // The selected rows, ascending; whole empty bytes are passed over.
  std::vector<int> Rows() const {
    std::vector<int> rows;
    for (std::size_t i = 0; i < bytes_.size(); ++i) {
      for (unsigned b = bytes_[i], bit = 0; b; b >>= 1, ++bit) {
        if (b & 1) rows.push_back(static_cast<int>(i * 8 + bit));
      }
    }
    return rows;
  }
  std::size_t Bytes() const { return bytes_.size(); }

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace qds
