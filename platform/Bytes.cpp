#include "platform/Bytes.h"

#include <xxhash.h>
#include <zlib.h>

#include <algorithm>
#include <cstdio>

#include "platform/Error.h"

namespace qds {

Bytes ToBytes(std::string_view text) {
  return Bytes(text.begin(), text.end());
}

std::string ToString(const Bytes& bytes) {
  return std::string(bytes.begin(), bytes.end());
}

std::string ContentHash(const void* data, std::size_t size) {
  // XXH3-128 is specified to give the same value on every platform and
  // version from 0.8 on, and is fast enough to key caches on every draw.
  const XXH128_hash_t h = XXH3_128bits(data, size);
  char out[33];
  std::snprintf(out, sizeof out, "%016llx%016llx", static_cast<unsigned long long>(h.high64),
                static_cast<unsigned long long>(h.low64));
  return std::string(out, 32);
}

std::string ContentHash(const Bytes& bytes) {
  return ContentHash(bytes.data(), bytes.size());
}

std::string ContentHash(std::string_view text) {
  return ContentHash(text.data(), text.size());
}

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Decodes one code point at text[i]; advances i past what it consumed. A
// malformed sequence consumes one byte and yields U+FFFD.
char32_t DecodeOne(std::string_view text, std::size_t& i, bool& ok) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const unsigned char b0 = byte(i);
  ok = true;
  if (b0 < 0x80) {
    ++i;
    return b0;
  }
  int len = 0;
  char32_t cp = 0;
  char32_t min = 0;
  if ((b0 & 0xE0) == 0xC0) {
    len = 2, cp = b0 & 0x1F, min = 0x80;
  } else if ((b0 & 0xF0) == 0xE0) {
    len = 3, cp = b0 & 0x0F, min = 0x800;
  } else if ((b0 & 0xF8) == 0xF0) {
    len = 4, cp = b0 & 0x07, min = 0x10000;
  } else {
    ok = false;
    ++i;
    return kReplacement;
  }
  if (i + len > text.size()) {
    ok = false;
    ++i;
    return kReplacement;
  }
  for (int k = 1; k < len; ++k) {
    const unsigned char b = byte(i + k);
    if ((b & 0xC0) != 0x80) {
      ok = false;
      ++i;
      return kReplacement;
    }
    cp = (cp << 6) | (b & 0x3F);
  }
  if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
    ok = false;
    ++i;
    return kReplacement;
  }
  i += len;
  return cp;
}

}  // namespace

bool IsValidUtf8(std::string_view text) {
  std::size_t i = 0;
  bool ok = true;
  while (i < text.size()) {
    DecodeOne(text, i, ok);
    if (!ok) return false;
  }
  return true;
}

std::u32string DecodeUtf8(std::string_view text) {
  std::u32string out;
  out.reserve(text.size());
  std::size_t i = 0;
  bool ok = true;
  while (i < text.size()) out.push_back(DecodeOne(text, i, ok));
  return out;
}

std::string EncodeUtf8(char32_t cp) {
  std::string out;
  if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) cp = kReplacement;
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
  return out;
}

std::string EncodeUtf8(std::u32string_view codepoints) {
  std::string out;
  out.reserve(codepoints.size());
  for (char32_t cp : codepoints) out += EncodeUtf8(cp);
  return out;
}

std::u16string Utf8ToUtf16(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (char32_t cp : DecodeUtf8(text)) {
    if (cp >= 0x10000) {
      cp -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(cp));
    }
  }
  return out;
}

std::string Utf16ToUtf8(std::u16string_view text) {
  std::u32string cps;
  cps.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t u = text[i];
    if (u >= 0xD800 && u <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
      cps.push_back(0x10000 + ((char32_t(u) - 0xD800) << 10) + (char32_t(text[i + 1]) - 0xDC00));
      ++i;
    } else if (u >= 0xD800 && u <= 0xDFFF) {
      cps.push_back(kReplacement);  // lone surrogate
    } else {
      cps.push_back(u);
    }
  }
  return EncodeUtf8(cps);
}

namespace {

// Owns a z_stream so that every exit path ends it.
class ZStream {
 public:
  explicit ZStream(bool inflating) : inflating_(inflating) {}
  ~ZStream() {
    if (!started_) return;
    if (inflating_) {
      inflateEnd(&z);
    } else {
      deflateEnd(&z);
    }
  }
  ZStream(const ZStream&) = delete;
  ZStream& operator=(const ZStream&) = delete;
  void Started() { started_ = true; }
  z_stream z{};

 private:
  bool inflating_;
  bool started_ = false;
};

}  // namespace

bool IsGzip(const Bytes& data) {
  return data.size() >= 2 && data[0] == 0x1F && data[1] == 0x8B;
}

Bytes GzipCompress(const Bytes& data, int level) {
  ZStream s(false);
  // 15 window bits + 16 asks zlib for a gzip wrapper instead of a zlib one.
  if (deflateInit2(&s.z, level, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    Raise(ErrNo::OutOfMemory, "Compression could not start", "GzipCompress");
  }
  s.Started();
  Bytes out(deflateBound(&s.z, data.size()) + 32);
  s.z.next_in = const_cast<Bytef*>(data.data());
  s.z.avail_in = static_cast<uInt>(data.size());
  s.z.next_out = out.data();
  s.z.avail_out = static_cast<uInt>(out.size());
  if (deflate(&s.z, Z_FINISH) != Z_STREAM_END) {
    Raise(ErrNo::InvalidData, "Compression failed", "GzipCompress");
  }
  out.resize(s.z.total_out);
  return out;
}

Bytes GzipDecompress(const Bytes& data, std::size_t maxOutput) {
  const auto damaged = [](const std::string& why) -> void {
    Raise(ErrNo::InvalidData, "Damaged compressed data: " + why, "GzipDecompress");
  };
  if (!IsGzip(data)) damaged("no gzip header");
  ZStream s(true);
  if (inflateInit2(&s.z, 15 + 16) != Z_OK) {
    Raise(ErrNo::OutOfMemory, "Decompression could not start", "GzipDecompress");
  }
  s.Started();
  Bytes out;
  out.reserve(std::min<std::size_t>(data.size() * 4, maxOutput));
  std::uint8_t chunk[64 * 1024];
  s.z.next_in = const_cast<Bytef*>(data.data());
  s.z.avail_in = static_cast<uInt>(data.size());
  for (;;) {
    s.z.next_out = chunk;
    s.z.avail_out = sizeof chunk;
    const int rc = inflate(&s.z, Z_NO_FLUSH);
    const std::size_t produced = sizeof chunk - s.z.avail_out;
    if (out.size() + produced > maxOutput) damaged("expands past the allowed size");
    out.insert(out.end(), chunk, chunk + produced);
    if (rc == Z_STREAM_END) {
      if (s.z.avail_in == 0) break;
      // Another member follows; anything else after the end is garbage.
      const std::size_t at = data.size() - s.z.avail_in;
      if (data.size() - at < 2 || data[at] != 0x1F || data[at + 1] != 0x8B) {
        damaged("trailing bytes after the end");
      }
      if (inflateReset(&s.z) != Z_OK) damaged("cannot read the next member");
      continue;
    }
    if (rc == Z_OK) continue;
    if (rc == Z_BUF_ERROR && s.z.avail_in == 0) damaged("truncated stream");
    damaged(s.z.msg ? s.z.msg : "inflate error " + std::to_string(rc));
  }
  return out;
}

}  // namespace qds
