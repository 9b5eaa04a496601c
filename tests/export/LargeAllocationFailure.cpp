#include "tests/export/LargeAllocationFailure.h"

#include <atomic>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define QDS_OWN_OPERATOR_NEW 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QDS_OWN_OPERATOR_NEW 0
#endif
#endif
#ifndef QDS_OWN_OPERATOR_NEW
#define QDS_OWN_OPERATOR_NEW 1
#endif

namespace {
std::atomic<std::size_t> failFrom{0};  // 0: nothing fails
}

LargeAllocationFailure::LargeAllocationFailure(std::size_t bytes) {
  failFrom = bytes;
}
LargeAllocationFailure::~LargeAllocationFailure() {
  failFrom = 0;
}
bool LargeAllocationFailure::Available() {
  return QDS_OWN_OPERATOR_NEW != 0;
}

#if QDS_OWN_OPERATOR_NEW
// The other forms of new and delete of the standard library come down to
// these two.
void* operator new(std::size_t size) {
  const std::size_t limit = failFrom.load();
  if (limit != 0 && size >= limit) throw std::bad_alloc();
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}
#endif
