#include <gtest/gtest.h>

#include "platform/Bytes.h"
#include "platform/Error.h"

using namespace qds;

TEST(Bytes, ContentHashIsStableAndTellsContentsApart) {
  const std::string svg = "<svg width=\"256pt\"/>";
  EXPECT_EQ(ContentHash(svg), ContentHash(ToBytes(svg)));
  EXPECT_EQ(ContentHash(svg).size(), 32u);
  EXPECT_NE(ContentHash(svg), ContentHash(svg + " "));
  EXPECT_NE(ContentHash(""), ContentHash(std::string(1, '\0')));
  // Cache keys written on one machine must mean the same on another.
  EXPECT_EQ(ContentHash("Quillaron"), ContentHash(std::string("Quillaron")));
  EXPECT_EQ(ContentHash(""), "99aa06d3014798d86001c324468d497f");
}

TEST(Bytes, Utf8DecodesRoundTripsAndReplacesMalformedSequences) {
  const std::string text = "Grüße, 图标 😀";
  EXPECT_TRUE(IsValidUtf8(text));
  EXPECT_EQ(DecodeUtf8(text).size(), 11u);
  EXPECT_EQ(EncodeUtf8(DecodeUtf8(text)), text);
  const std::u16string utf16 = Utf8ToUtf16(text);
  EXPECT_EQ(utf16.size(), 12u);  // the emoji takes a surrogate pair
  EXPECT_EQ(Utf16ToUtf8(utf16), text);

  for (const std::string bad : {"\xC0\xAF", "\xED\xA0\x80", "\xE2\x82", "\xF4\x90\x80\x80", "\xFF"}) {
    EXPECT_FALSE(IsValidUtf8(bad));
    const std::u32string decoded = DecodeUtf8("a" + bad + "b");
    EXPECT_EQ(decoded.front(), U'a');
    EXPECT_EQ(decoded.back(), U'b');
    EXPECT_EQ(decoded[1], U'\xFFFD');
  }
  EXPECT_EQ(Utf16ToUtf8(u"x\xD800y"), "x\xEF\xBF\xBDy");  // a lone surrogate
}

TEST(Bytes, GzipRoundTripsAndRefusesDamagedStreams) {
  std::string svg;
  for (int i = 0; i < 200; ++i) svg += "<path d=\"M" + std::to_string(i) + " 0L10 10Z\"/>";
  const Bytes plain = ToBytes(svg);
  const Bytes packed = GzipCompress(plain);
  EXPECT_TRUE(IsGzip(packed));
  EXPECT_LT(packed.size(), plain.size() / 4);
  EXPECT_EQ(GzipDecompress(packed), plain);
  EXPECT_EQ(GzipDecompress(GzipCompress(Bytes())), Bytes());

  // Concatenated members read as one stream, as gzip itself reads them.
  Bytes two = GzipCompress(ToBytes("ab"));
  const Bytes more = GzipCompress(ToBytes("cd"));
  two.insert(two.end(), more.begin(), more.end());
  EXPECT_EQ(ToString(GzipDecompress(two)), "abcd");

  const auto fails = [](const Bytes& b, std::size_t limit = std::size_t{1} << 30) {
    try {
      GzipDecompress(b, limit);
    } catch (const AppError& e) {
      return e.Number() == ErrNo::InvalidData;
    }
    return false;
  };
  EXPECT_TRUE(fails(plain));                                       // no gzip at all
  EXPECT_TRUE(fails(Bytes(packed.begin(), packed.end() - 1)));     // truncated
  EXPECT_TRUE(fails(Bytes(packed.begin(), packed.begin() + 12)));  // cut in the header
  Bytes corrupt = packed;
  corrupt[corrupt.size() - 6] ^= 0x01;  // the checksum no longer matches
  EXPECT_TRUE(fails(corrupt));
  Bytes trailing = packed;
  trailing.push_back('x');
  EXPECT_TRUE(fails(trailing));
  EXPECT_TRUE(fails(packed, 100));  // expands past the allowed size
}
