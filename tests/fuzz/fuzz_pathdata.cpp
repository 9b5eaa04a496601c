// Path data comes from user SVG files. Any text must parse into paired
// finite numbers and codes, draw without fault, and copy out as a path.

#include <cmath>
#include <cstdlib>

#include "engine/modFunctions.h"
#include "engine/modParser.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "tests/fuzz/SeedWriter.h"

std::vector<qds::Bytes> FuzzSeeds() {
  return {
      qds::ToBytes("M10 20 30 40"),
      qds::ToBytes("m1,1 2,2z M0 0H4V3h-1v-1z"),
      qds::ToBytes("M0 0A5 5 30 1 0 10 0a5 5 0 1 1 10 0"),
      qds::ToBytes("M1e2,1E-2 1.5.5 10-5"),
      qds::ToBytes("M0 0C1 1 2 1 3 0S5 -1 6 0s1 1 2 2Q1 2 3 4q1 1 2 2T5 5"),
      qds::ToBytes(R"svg(<svg><defs><clipPath id="clip1"/></defs><g clip-path="url(#clip1)"/></svg>)svg")};
}

QDS_FUZZ_INITIALIZE

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::vector<float> numbers;
  std::vector<std::uint8_t> codes;
  qds::ParsePoints(text, numbers, codes);
  if (numbers.size() != codes.size()) std::abort();
  for (float n : numbers) {
    if (!std::isfinite(n)) std::abort();
  }
  static const qds::SurfacePtr surface = qds::DrawingSurface::Create(4, 4);
  qds::DrawingContext ctx(surface);
  qds::RenderPath(ctx, numbers, codes);
  (void)ctx.CopyPath(true, 0.5);
  ctx.Fill();
  (void)qds::RemoveClipPaths(std::string(text));
  return 0;
}
