#pragma once
// The error number that a call raises, or 0 when it raises none.

#include <functional>

#include "platform/Error.h"

inline int ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const qds::AppError& e) {
    return e.Number();
  }
  return 0;
}
