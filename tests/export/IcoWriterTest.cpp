#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <system_error>
#include <thread>

#include "export/cIcoResWriter.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "tests/support/TempDir.h"

using namespace qds;

namespace {

// A reader of our own for the fields of an icon file.
struct IcoReader {
  const Bytes& b;
  unsigned U8(std::size_t at) const { return b.at(at); }
  unsigned U16(std::size_t at) const { return U8(at) | U8(at + 1) << 8; }
  unsigned U32(std::size_t at) const { return U16(at) | U16(at + 2) << 16; }
  unsigned Count() const { return U16(4); }
  struct Entry {
    unsigned w, h, planes, bits, length, offset;
  };
  Entry At(int i) const {
    const std::size_t e = 6 + 16 * i;
    return {U8(e), U8(e + 1), U16(e + 4), U16(e + 6), U32(e + 8), U32(e + 12)};
  }
  bool IsPng(const Entry& e) const { return U32(e.offset) == 0x474E5089; }
};

SurfacePtr Picture(int side) {
  SurfacePtr s = DrawingSurface::Create(side, side);
  DrawingContext ctx(s);
  ctx.SetSourceColor(0x0000FF);
  ctx.Rectangle(side / 4.0, side / 4.0, side / 2.0, side / 2.0);
  ctx.Fill();
  return s;
}

}  // namespace

TEST(IcoWriter, FourSizesLayOutAsTabled) {
  const Bytes ico = cIcoResWriter::AlphaIcoBytes(Picture(256), {"16", "32", "48", "256"});
  const IcoReader r{ico};
  EXPECT_EQ(r.U16(0), 0u);
  EXPECT_EQ(r.U16(2), 1u);
  ASSERT_EQ(r.Count(), 4u);
  const unsigned lengths[] = {1128, 4264, 9640};
  unsigned offset = 70;
  for (int i = 0; i < 3; ++i) {
    const auto e = r.At(i);
    EXPECT_EQ(e.w, (i + 1) * 16u);
    EXPECT_EQ(e.planes, 1u);
    EXPECT_EQ(e.bits, 32u);
    EXPECT_EQ(e.length, lengths[i]);
    EXPECT_EQ(e.offset, offset);
    EXPECT_FALSE(r.IsPng(e));
    EXPECT_EQ(r.U32(e.offset), 40u);          // bitmap header
    EXPECT_EQ(r.U32(e.offset + 8), 2 * e.w);  // colour rows and mask rows
    EXPECT_EQ(r.U32(e.offset + 20), e.w * e.w * 4);
    offset += e.length;
  }
  const auto last = r.At(3);
  EXPECT_EQ(last.w, 0u);  // 256 is written as 0
  EXPECT_EQ(last.h, 0u);
  EXPECT_EQ(last.offset, offset);
  EXPECT_TRUE(r.IsPng(last));
  EXPECT_EQ(ico.size(), last.offset + last.length);

  // Colour rows bottom-up as stored; the mask marks only alpha 0.
  const auto e16 = r.At(0);
  const std::size_t colours = e16.offset + 40;
  EXPECT_EQ(r.U8(colours + 3), 0u);                       // bottom-left pixel: clear
  EXPECT_EQ(r.U8(colours + (16 * 8 + 8) * 4 + 3), 255u);  // the middle: the square
  EXPECT_EQ(r.U8(colours + (16 * 8 + 8) * 4 + 2), 255u);  // red as stored (B, G, R, A)
  const std::size_t mask = colours + 16 * 16 * 4;
  EXPECT_EQ(r.U8(mask), 0xFFu);  // a clear row: all set
  // The middle row: the square covers pixels 4 to 11; scaled down with the
  // best filter, 3 and 12 take a little of it, which counts as ink.
  EXPECT_EQ(r.U8(mask + 8 * 4), 0xE0u);
  EXPECT_EQ(r.U8(mask + 8 * 4 + 1), 0x07u);
  EXPECT_EQ(r.U8(mask + 8 * 4 + 2), 0u);  // the padding to 32 bits stays 0
}

TEST(IcoWriter, OrderDecidesThePngOneSizeAndTransparentPictures) {
  const Bytes unsorted = cIcoResWriter::AlphaIcoBytes(Picture(64), {"256", "16"});
  const IcoReader u{unsorted};
  EXPECT_FALSE(u.IsPng(u.At(0)));
  EXPECT_EQ(u.At(0).w, 0u);  // a bitmap of byte width 0
  EXPECT_EQ(u.At(0).length, 40u + 256 * 256 * 4 + 256 * 32);
  EXPECT_TRUE(u.IsPng(u.At(1)));

  const Bytes single = cIcoResWriter::AlphaIcoBytes(Picture(64), {"48"});
  const IcoReader s{single};
  EXPECT_EQ(s.Count(), 1u);
  EXPECT_EQ(s.At(0).offset, 22u);
  EXPECT_TRUE(s.IsPng(s.At(0)));
  EXPECT_EQ(cIcoResWriter::AlphaIcoBytes(Picture(64), {}).size(), 6u);  // no sizes: a header alone

  // Size 20: mask rows of 4 bytes; a clear picture sets every bit inside it
  // and none of the padding. A pixel of alpha 1 counts as ink.
  SurfacePtr clear = DrawingSurface::Create(20, 20);
  {
    PixelView v = clear->Pixels();
    v.Longs()[19 * 20 + 0] = 0x01000001;  // bottom-left pixel, alpha 1
  }
  const Bytes ico = cIcoResWriter::AlphaIcoBytes(clear, {"20", "16"});
  const IcoReader c{ico};
  EXPECT_EQ(c.At(0).length, 40u + 20 * 20 * 4 + 20 * 4);
  const std::size_t mask = c.At(0).offset + 40 + 20 * 20 * 4;
  EXPECT_EQ(c.U8(mask), 0x7Fu);              // the alpha-1 pixel stays clear in the mask
  EXPECT_EQ(c.U8(c.At(0).offset + 40), 1u);  // and its colour bytes are written as stored
  EXPECT_EQ(c.U8(mask + 4), 0xFFu);
  EXPECT_EQ(c.U8(mask + 6), 0xF0u);  // 20 pixels: 4 bits of the third byte
  EXPECT_EQ(c.U8(mask + 7), 0u);

  EXPECT_THROW(cIcoResWriter::AlphaIcoBytes(Picture(8), {"16", "x"}), AppError);
  EXPECT_THROW(cIcoResWriter::AlphaIcoBytes(Picture(8), {"0"}), AppError);
  EXPECT_THROW(cIcoResWriter::AlphaIcoBytes(Picture(8), {""}), AppError);

  const Bytes png = cIcoResWriter::SimplePngIcoBytes(Picture(32));
  const IcoReader p{png};
  EXPECT_EQ(p.Count(), 1u);
  EXPECT_EQ(p.At(0).w, 32u);
  EXPECT_EQ(p.At(0).offset, 22u);
  EXPECT_EQ(p.At(0).length, png.size() - 22);

  try {
    cIcoResWriter().WriteSurfaceAsResource(Picture(8), "app.exe");
    FAIL();
  } catch (const AppError& e) {
    EXPECT_EQ(static_cast<unsigned>(e.Number()), 0x80040000u);
    EXPECT_EQ(e.Description(), "Couldn't open for resource-writing -> File: app.exe");
  }
}

TEST(IcoWriter, AStandardReaderOpensTheFile) {
  TempDir dir;
  cIcoResWriter().SaveSurfaceToAlphaIco(Picture(256), dir / "x.ico", SplitSizes("16, 32,48,256"));
  GError* error = nullptr;
  GdkPixbuf* pb = gdk_pixbuf_new_from_file((dir / "x.ico").c_str(), &error);
  ASSERT_TRUE(pb) << (error ? error->message : "");
  // The reader picks an entry by its own rules; whichever, it is one of ours.
  const int side = gdk_pixbuf_get_width(pb);
  EXPECT_EQ(gdk_pixbuf_get_height(pb), side);
  EXPECT_TRUE(side == 16 || side == 32 || side == 48 || side == 256) << side;
  g_object_unref(pb);
  const Bytes ico = ReadAllBytes(dir / "x.ico");
  const IcoReader r{ico};
  ASSERT_EQ(r.Count(), 4u);
  const unsigned sides[] = {16, 32, 48, 0};  // 256 is written as 0
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(r.At(i).w, sides[i]) << i;
    EXPECT_EQ(r.At(i).h, sides[i]) << i;
  }
}

TEST(IcoWriter, AnyNumberOfThreadsWritesTheSameBytesEvenWhenNoneCanStart) {
  // Soft edges and half-transparent ink, so that every size has its own pixels.
  SurfacePtr picture = DrawingSurface::Create(300, 300);
  {
    DrawingContext ctx(picture);
    ctx.SetSourceColor(0x2080F0, 0.6);
    ctx.Arc(150, 150, 120, 0, 6.2832);
    ctx.Fill();
    ctx.SetSourceColor(0x00FF00);
    ctx.Rectangle(40.5, 200.25, 90, 33.3);
    ctx.Fill();
  }
  const std::vector<std::string> sizes = SplitSizes("16,20,24,32,40,48,64,72,96,128,256");
  const Bytes alone = cIcoResWriter::AlphaIcoBytes(picture, sizes, 1);
  ASSERT_EQ(IcoReader{alone}.Count(), sizes.size());
  EXPECT_EQ(cIcoResWriter::AlphaIcoBytes(picture, sizes, 4), alone);
  EXPECT_EQ(cIcoResWriter::AlphaIcoBytes(picture, sizes, 64), alone);
  EXPECT_EQ(cIcoResWriter::AlphaIcoBytes(picture, sizes), alone);

  // No new thread gets a stack: the writer finishes on its own thread.
  pthread_attr_t before, huge;
  ASSERT_EQ(pthread_getattr_default_np(&before), 0);
  ASSERT_EQ(pthread_getattr_default_np(&huge), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&huge, std::size_t{1} << 60), 0);
  ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
  bool refused = false;
  try {
    std::thread([] {}).join();
  } catch (const std::system_error&) {
    refused = true;
  }
  Bytes starved;
  if (refused) starved = cIcoResWriter::AlphaIcoBytes(picture, sizes, 4);
  EXPECT_EQ(pthread_setattr_default_np(&before), 0);
  pthread_attr_destroy(&huge);
  pthread_attr_destroy(&before);
  ASSERT_TRUE(refused) << "a thread started although it could have no stack";
  EXPECT_EQ(starved, alone);
}
