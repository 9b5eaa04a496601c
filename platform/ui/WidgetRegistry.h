#pragma once
// Widgets by their class name, for code that is told which widget to make
// (the content of a drop-down, a tool window around a named widget). Each
// widget class joins in its own source file, so the registry never lags
// behind the classes:
//
//   QDS_JOIN_WIDGET_REGISTRY(cwTree);

#include <memory>
#include <string>
#include <vector>

#include "platform/ui/Widget.h"

namespace qds {

using WidgetMaker = std::unique_ptr<Widget> (*)();

// Answers true so that it can initialise a static; a name that has
// joined already keeps its first maker.
bool JoinWidgetRegistry(const std::string& className, WidgetMaker make);
// A new widget of the class; null for a name that never joined.
std::unique_ptr<Widget> CreateWidget(const std::string& className);
std::vector<std::string> RegisteredWidgetClasses();

#define QDS_JOIN_WIDGET_REGISTRY(Class)                                                 \
  [[maybe_unused]] static const bool Class##JoinedRegistry = ::qds::JoinWidgetRegistry( \
      #Class, [] { return std::unique_ptr<::qds::Widget>(std::make_unique<Class>()); })

}  // namespace qds
