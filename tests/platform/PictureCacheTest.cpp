#include <gtest/gtest.h>

#include "platform/DrawingSurface.h"
#include "platform/PictureCache.h"

using namespace qds;

TEST(PictureCache, NeverHoldsMoreBytesThanItsBound) {
  // Room for two 64 by 64 pictures (16 KiB each), not three.
  PictureCache cache(40 * 1024);
  cache.Add("a", DrawingSurface::Create(64, 64));
  cache.Add("b", DrawingSurface::Create(64, 64), 3);
  EXPECT_EQ(cache.Count(), 2);
  EXPECT_EQ(cache.Find("b")->Pad, 3);
  cache.Add("b", DrawingSurface::Create(64, 64));  // the same key again takes no more room
  EXPECT_EQ(cache.Count(), 2);
  EXPECT_EQ(cache.Bytes(), 2u * 64 * 64 * 4);
  cache.Add("c", DrawingSurface::Create(64, 64));  // over the bound: emptied first
  EXPECT_EQ(cache.Count(), 1);
  EXPECT_TRUE(cache.Exists("c"));
  EXPECT_EQ(cache.Find("a"), nullptr);
  cache.Add("huge", DrawingSurface::Create(200, 200));  // larger than the bound: not kept
  EXPECT_FALSE(cache.Exists("huge"));
  EXPECT_TRUE(cache.Exists("c"));
  EXPECT_LE(cache.Bytes(), cache.MaxBytes());
  cache.SetMaxBytes(1024);
  EXPECT_EQ(cache.Count(), 0);
  EXPECT_EQ(cache.Bytes(), 0u);
}
