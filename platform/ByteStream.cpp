#include "platform/ByteStream.h"

#include <cstring>

#include "platform/Error.h"

namespace qds {

void ByteWriter::U32(std::uint32_t v) {
  for (int i = 0; i < 4; ++i) out_.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
}

void ByteWriter::I64(std::int64_t v) {
  const auto u = static_cast<std::uint64_t>(v);
  for (int i = 0; i < 8; ++i) out_.push_back(static_cast<std::uint8_t>(u >> (8 * i)));
}

void ByteWriter::F64(double v) {
  std::int64_t bits;
  std::memcpy(&bits, &v, sizeof bits);
  I64(bits);
}

void ByteWriter::Raw(const void* data, std::size_t size) {
  const auto* p = static_cast<const std::uint8_t*>(data);
  out_.insert(out_.end(), p, p + size);
}

void ByteWriter::Blob(const void* data, std::size_t size) {
  if (size > 0xFFFFFFFFu) Raise(ErrNo::Overflow, "A value is too large to serialise", "ByteWriter");
  U32(static_cast<std::uint32_t>(size));
  Raw(data, size);
}

void ByteReader::Fail(const std::string& why) const {
  Raise(ErrNo::InvalidData, "Damaged " + what_ + ": " + why + " at byte " + std::to_string(pos_), what_);
}

const std::uint8_t* ByteReader::Take(std::size_t n) {
  if (n > Remaining()) Fail("unexpected end of data");
  const std::uint8_t* p = data_ + pos_;
  pos_ += n;
  return p;
}

std::uint8_t ByteReader::U8() {
  return *Take(1);
}

std::uint32_t ByteReader::U32() {
  const std::uint8_t* p = Take(4);
  return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 |
         std::uint32_t{p[3]} << 24;
}

std::int64_t ByteReader::I64() {
  const std::uint8_t* p = Take(8);
  std::uint64_t u = 0;
  for (int i = 7; i >= 0; --i) u = (u << 8) | p[i];
  return static_cast<std::int64_t>(u);
}

double ByteReader::F64() {
  const std::int64_t bits = I64();
  double d;
  std::memcpy(&d, &bits, sizeof d);
  return d;
}

std::uint32_t ByteReader::Length() {
  const std::uint32_t n = U32();
  if (n > Remaining()) Fail("a length of " + std::to_string(n) + " runs past the end");
  return n;
}

std::string ByteReader::Text() {
  const std::uint32_t n = Length();
  const std::uint8_t* p = Take(n);
  return std::string(reinterpret_cast<const char*>(p), n);
}

Bytes ByteReader::Blob() {
  const std::uint32_t n = Length();
  const std::uint8_t* p = Take(n);
  return Bytes(p, p + n);
}

void ByteReader::Expect(std::string_view magic) {
  if (Remaining() < magic.size() || std::memcmp(data_ + pos_, magic.data(), magic.size()) != 0) {
    Fail("not the expected format");
  }
  pos_ += magic.size();
}

void ByteReader::ExpectEnd() {
  if (Remaining() != 0) Fail(std::to_string(Remaining()) + " bytes after the end");
}

}  // namespace qds
