#pragma once
// Little-endian writer and bounds-checked reader for the program's own binary
// layouts. The reader never reads past its buffer: every short or impossible
// field raises AppError(InvalidData) naming what was being read.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Bytes.h"

namespace qds {

class ByteWriter {
 public:
  void U8(std::uint8_t v) { out_.push_back(v); }
  void U32(std::uint32_t v);
  void I64(std::int64_t v);
  void F64(double v);
  void Raw(const void* data, std::size_t size);
  // A u32 length followed by the bytes.
  void Blob(const void* data, std::size_t size);
  void Text(std::string_view s) { Blob(s.data(), s.size()); }
  const Bytes& Data() const { return out_; }
  Bytes Take() { return std::move(out_); }

 private:
  Bytes out_;
};

class ByteReader {
 public:
  ByteReader(const Bytes& data, std::string what) : ByteReader(data.data(), data.size(), std::move(what)) {}
  ByteReader(const std::uint8_t* data, std::size_t size, std::string what)
      : data_(data), size_(size), what_(std::move(what)) {}

  std::uint8_t U8();
  std::uint32_t U32();
  std::int64_t I64();
  double F64();
  std::string Text();
  Bytes Blob();
  void Expect(std::string_view magic);
  std::size_t Remaining() const { return size_ - pos_; }
  void ExpectEnd();
  [[noreturn]] void Fail(const std::string& why) const;

 private:
  const std::uint8_t* Take(std::size_t n);
  std::uint32_t Length();

  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t pos_ = 0;
  std::string what_;
};

}  // namespace qds
