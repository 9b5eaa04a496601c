#pragma once
// Byte arrays and the helpers over them: content hashes for cache keys, UTF-8,
// gzip.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qds {

using Bytes = std::vector<std::uint8_t>;

Bytes ToBytes(std::string_view text);
std::string ToString(const Bytes& bytes);

// A stable 128-bit content hash as 32 lower-case hex digits. The same bytes
// give the same string on every machine and in every run; it is a cache key,
// not a security measure.
std::string ContentHash(const void* data, std::size_t size);
std::string ContentHash(const Bytes& bytes);
std::string ContentHash(std::string_view text);

// UTF-8. Decoding replaces every malformed sequence (overlong forms,
// surrogates, truncated sequences, values past U+10FFFF) by U+FFFD, so text
// from outside never makes the program fail.
bool IsValidUtf8(std::string_view text);
std::u32string DecodeUtf8(std::string_view text);
std::string EncodeUtf8(std::u32string_view codepoints);
std::string EncodeUtf8(char32_t codepoint);
std::u16string Utf8ToUtf16(std::string_view text);
std::string Utf16ToUtf8(std::u16string_view text);

// gzip (RFC 1952). Decompression accepts several concatenated members, as
// gzip itself does, and raises an AppError for anything damaged: a wrong
// header, a bad checksum, a truncated stream, trailing garbage, or output
// larger than maxOutput.
Bytes GzipCompress(const Bytes& data, int level = 6);
Bytes GzipDecompress(const Bytes& data, std::size_t maxOutput = std::size_t{1} << 30);
bool IsGzip(const Bytes& data);

}  // namespace qds
