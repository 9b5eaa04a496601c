#include "app/AppContext.h"

#include <iostream>

#include "app/cConfig.h"
#include "platform/Error.h"

namespace qds {

namespace {
AppContext* current = nullptr;
}  // namespace

AppContext::AppContext(std::string appFolder)
    : AppPath(std::move(appFolder)),
      SvgRenderer(std::make_unique<qds::SvgRenderer>()),
      DrawingRoot(std::make_unique<qds::DrawingRoot>(*SvgRenderer)),
      ShowMessage([](const std::string& text) { std::cerr << text << '\n'; }),
      DoEvents([] {}) {
  while (AppPath.size() > 1 && AppPath.back() == '/') AppPath.pop_back();
}

AppContext::~AppContext() = default;

AppContext& App() {
  if (!current) Raise(ErrNo::InvalidArgument, "The program has not started", "App");
  return *current;
}

bool HasApp() {
  return current != nullptr;
}

ScopedAppContext::ScopedAppContext(std::string appFolder)
    : context_(std::make_unique<AppContext>(std::move(appFolder))), previous_(current) {
  current = context_.get();
}

ScopedAppContext::~ScopedAppContext() {
  current = previous_;
}

}  // namespace qds
