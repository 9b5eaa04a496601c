#pragma once
// Out of memory on demand: while a LargeAllocationFailure lives, every single
// allocation through operator new of at least `bytes` throws std::bad_alloc,
// as it would on a machine whose memory has run out. Smaller allocations
// still succeed, so the code under test keeps running up to the big one.

#include <cstddef>

class LargeAllocationFailure {
 public:
  explicit LargeAllocationFailure(std::size_t bytes);
  ~LargeAllocationFailure();
  LargeAllocationFailure(const LargeAllocationFailure&) = delete;
  LargeAllocationFailure& operator=(const LargeAllocationFailure&) = delete;

  // False in sanitizer builds, whose runtime owns operator new.
  static bool Available();
};
