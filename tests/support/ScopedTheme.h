#pragma once
// Installs a theme for one test and puts the built-in one back afterwards,
// so that no other test draws in it.

#include <memory>
#include <utility>

#include "platform/ui/UiTheme.h"

class ScopedTheme {
 public:
  explicit ScopedTheme(std::shared_ptr<const qds::UiTheme> theme) { qds::SetCurrentTheme(std::move(theme)); }
  ~ScopedTheme() { qds::SetCurrentTheme(nullptr); }
  ScopedTheme(const ScopedTheme&) = delete;
  ScopedTheme& operator=(const ScopedTheme&) = delete;
};
