#pragma once
// Compares a rendered picture with tests/data/golden/NAME.png. A pixel
// matches when every channel is within `tolerance`; a few antialiased edge
// pixels (maxOffFraction of all) may differ by more. On a mismatch the
// actual picture is saved as NAME.actual.png beside the expected one.
// Run with QDS_UPDATE_GOLDEN=1 to write the expected pictures anew; look at
// every one of them before committing.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/DrawingSurface.h"
#include "platform/Files.h"

inline ::testing::AssertionResult MatchesGolden(const qds::SurfacePtr& actual, const std::string& name,
                                                int tolerance = 3, double maxOffFraction = 0.002) {
  const std::string folder = std::string(QDS_TEST_DATA) + "/golden/";
  const std::string expectedPath = folder + name + ".png";
  qds::CreateDirectories(folder);
  if (const char* update = std::getenv("QDS_UPDATE_GOLDEN"); update && *update == '1') {
    actual->WritePng(expectedPath);
    return ::testing::AssertionSuccess() << "wrote " << expectedPath;
  }
  if (!qds::FileExists(expectedPath)) {
    actual->WritePng(folder + name + ".actual.png");
    return ::testing::AssertionFailure() << "no golden picture " << expectedPath;
  }
  const qds::SurfacePtr expected = qds::DrawingSurface::FromPngFile(expectedPath);
  if (expected->Width() != actual->Width() || expected->Height() != actual->Height()) {
    actual->WritePng(folder + name + ".actual.png");
    return ::testing::AssertionFailure() << name << ": size " << actual->Width() << "x" << actual->Height()
                                         << ", expected " << expected->Width() << "x" << expected->Height();
  }
  // Compare through PNG on both sides, so that both went through the same
  // un-premultiplying.
  const qds::SurfacePtr a = qds::DrawingSurface::FromPngBytes(actual->ToPngBytes());
  const qds::PixelView pa = a->Pixels();
  const qds::PixelView pe = expected->Pixels();
  int off = 0, worst = 0;
  for (int y = 0; y < pa.Height(); ++y) {
    for (int x = 0; x < pa.Width(); ++x) {
      for (int c = 0; c < 4; ++c) {
        const int d =
            std::abs(pa.Bytes()[y * pa.Stride() + 4 * x + c] - pe.Bytes()[y * pe.Stride() + 4 * x + c]);
        worst = std::max(worst, d);
        if (d > tolerance) {
          ++off;
          break;
        }
      }
    }
  }
  if (off > maxOffFraction * pa.Width() * pa.Height()) {
    actual->WritePng(folder + name + ".actual.png");
    return ::testing::AssertionFailure() << name << ": " << off << " pixels differ (worst channel by "
                                         << worst << "); see " << folder << name << ".actual.png";
  }
  return ::testing::AssertionSuccess();
}
