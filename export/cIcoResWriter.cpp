#include "export/cIcoResWriter.h"

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"
#include "platform/Value.h"

namespace qds {

namespace {

void PutU16(Bytes& b, std::uint32_t v) {
  b.push_back(static_cast<std::uint8_t>(v));
  b.push_back(static_cast<std::uint8_t>(v >> 8));
}
void PutU32(Bytes& b, std::uint32_t v) {
  PutU16(b, v & 0xFFFF);
  PutU16(b, v >> 16);
}

void DirectoryEntry(Bytes& b, int w, int h, std::uint32_t length, std::uint32_t offset) {
  b.push_back(static_cast<std::uint8_t>(w & 0xFF));  // 256 becomes 0
  b.push_back(static_cast<std::uint8_t>(h & 0xFF));
  b.push_back(0);
  b.push_back(0);
  PutU16(b, 1);
  PutU16(b, 32);
  PutU32(b, length);
  PutU32(b, offset);
}

Bytes BitmapImage(const SurfacePtr& s) {
  const int w = s->Width(), h = s->Height();
  const int maskRow = ((w + 31) & ~31) / 8;
  Bytes b;
  b.reserve(40 + static_cast<std::size_t>(w) * h * 4 + static_cast<std::size_t>(h) * maskRow);
  PutU32(b, 40);
  PutU32(b, static_cast<std::uint32_t>(w));
  PutU32(b, static_cast<std::uint32_t>(2 * h));
  PutU16(b, 1);
  PutU16(b, 32);
  PutU32(b, 0);
  PutU32(b, static_cast<std::uint32_t>(w * h * 4));
  PutU32(b, 0), PutU32(b, 0), PutU32(b, 0), PutU32(b, 0);
  Bytes mask(static_cast<std::size_t>(h) * maskRow, 0);
  const PixelView v = s->Pixels();
  for (int y = h - 1; y >= 0; --y) {
    const std::uint8_t* row = v.Bytes() + static_cast<std::size_t>(y) * v.Stride();
    b.insert(b.end(), row, row + 4 * w);
    for (int x = 0; x < w; ++x) {
      // Only a pixel with alpha exactly 0 counts as transparent.
      if (row[4 * x + 3] == 0)
        mask[static_cast<std::size_t>(h - 1 - y) * maskRow + x / 8] |= 1 << (7 - x % 8);
    }
  }
  b.insert(b.end(), mask.begin(), mask.end());
  return b;
}

}  // namespace

std::vector<std::string> SplitSizes(const std::string& list) {
  std::vector<std::string> out;
  std::size_t start = 0;
  for (;;) {
    const std::size_t comma = list.find(',', start);
    out.emplace_back(
        TrimBlanks(list.substr(start, comma == std::string::npos ? std::string::npos : comma - start)));
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return out;
}

Bytes cIcoResWriter::SimplePngIcoBytes(const SurfacePtr& surface) {
  const Bytes png = surface->ToPngBytes();
  Bytes b;
  PutU16(b, 0);
  PutU16(b, 1);
  PutU16(b, 1);
  DirectoryEntry(b, surface->Width(), surface->Height(), static_cast<std::uint32_t>(png.size()), 22);
  b.insert(b.end(), png.begin(), png.end());
  return b;
}

void cIcoResWriter::SaveSurfaceToSimplePngIco(const SurfacePtr& surface, const std::string& fileName) const {
  WriteAllBytes(fileName, SimplePngIcoBytes(surface));
}

Bytes cIcoResWriter::AlphaIcoBytes(const SurfacePtr& surface, const std::vector<std::string>& sizes) {
  // Every picture is made before the first byte is written.
  std::vector<SurfacePtr> pictures;
  for (const std::string& text : sizes) {
    std::int64_t size = 0;
    try {
      size = Value(text).AsLong();
    } catch (const AppError&) {
      Raise(ErrNo::TypeMismatch, "\"" + text + "\" is no icon size", "cIcoResWriter");
    }
    if (text.empty() || size < 1 || size > 4096) {
      Raise(ErrNo::InvalidArgument, "\"" + text + "\" is no icon size", "cIcoResWriter");
    }
    const int s = static_cast<int>(size);
    SurfacePtr picture = DrawingSurface::Create(s, s);
    DrawingContext ctx(picture);
    ctx.DrawSurface(surface, 0, 0, s, s, Filter::Best, 1.0);
    pictures.push_back(picture);
  }
  const std::size_t n = pictures.size();
  Bytes directory, images;
  PutU16(directory, 0);
  PutU16(directory, 1);
  PutU16(directory, static_cast<std::uint32_t>(n));
  const std::uint32_t first = static_cast<std::uint32_t>(6 + 16 * n);
  for (std::size_t i = 0; i < n; ++i) {
    const Bytes image = i + 1 == n ? pictures[i]->ToPngBytes() : BitmapImage(pictures[i]);
    DirectoryEntry(directory, pictures[i]->Width(), pictures[i]->Height(),
                   static_cast<std::uint32_t>(image.size()),
                   first + static_cast<std::uint32_t>(images.size()));
    images.insert(images.end(), image.begin(), image.end());
  }
  directory.insert(directory.end(), images.begin(), images.end());
  return directory;
}

void cIcoResWriter::SaveSurfaceToAlphaIco(const SurfacePtr& surface, const std::string& fileName,
                                          const std::vector<std::string>& sizes) const {
  WriteAllBytes(fileName, AlphaIcoBytes(surface, sizes));
}

void cIcoResWriter::WriteSurfaceAsResource(const SurfacePtr&, const std::string& fileName) const {
  Raise(static_cast<int>(0x80040000u), "Couldn't open for resource-writing -> File: " + fileName,
        "cIcoResWriter");
}

}  // namespace qds
