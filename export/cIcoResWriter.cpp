#include "export/cIcoResWriter.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>

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

Bytes cIcoResWriter::AlphaIcoBytes(const SurfacePtr& surface, const std::vector<std::string>& sizes,
                                   unsigned threads) {
  std::vector<int> sides;
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
    sides.push_back(static_cast<int>(size));
  }
  // Every picture is made, each from the source with the best filter, before
  // the first byte is written. The sizes are independent, so they are shared
  // out among the processor's cores; each worker draws from its own copy of
  // the source, and the pixels are the same as when drawn one after another.
  const std::size_t n = sides.size();
  std::vector<Bytes> images(n);
  std::atomic<std::size_t> next{0};
  std::exception_ptr failed;
  std::mutex failedLock;
  // Takes sizes until none is left; the first failure is kept for the caller.
  const auto work = [&](const SurfacePtr& source) {
    try {
      for (std::size_t i = next++; i < n; i = next++) {
        const SurfacePtr picture = ResizeBest(source, sides[i], sides[i]);
        images[i] = i + 1 == n ? picture->ToPngBytes() : BitmapImage(picture);
      }
    } catch (...) {
      const std::lock_guard<std::mutex> lock(failedLock);
      if (!failed) failed = std::current_exception();
    }
  };
  const std::size_t wanted = threads ? threads : std::max(1u, std::thread::hardware_concurrency());
  const std::size_t helpers = n > 1 ? std::min(n, wanted) - 1 : 0;
  std::vector<std::thread> workers;
  {
    // Joined however this block is left: a joinable thread that is destroyed
    // ends the program.
    struct JoinAll {
      std::vector<std::thread>& t;
      ~JoinAll() {
        for (std::thread& w : t) w.join();
      }
    } joinAll{workers};
    try {
      workers.reserve(helpers);
      for (std::size_t t = 0; t < helpers; ++t)
        workers.emplace_back([&, copy = surface->Copy()] { work(copy); });
    } catch (...) {
      // No thread, or no memory for one: the threads that run, this one
      // among them, take the sizes that are left.
    }
    work(surface);
  }
  if (failed) std::rethrow_exception(failed);

  Bytes directory;
  PutU16(directory, 0);
  PutU16(directory, 1);
  PutU16(directory, static_cast<std::uint32_t>(n));
  std::uint32_t offset = static_cast<std::uint32_t>(6 + 16 * n);
  for (std::size_t i = 0; i < n; ++i) {
    DirectoryEntry(directory, sides[i], sides[i], static_cast<std::uint32_t>(images[i].size()), offset);
    offset += static_cast<std::uint32_t>(images[i].size());
  }
  for (const Bytes& image : images) directory.insert(directory.end(), image.begin(), image.end());
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
