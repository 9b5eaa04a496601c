#pragma once
// A program context on its own fresh application folder, with the messages
// it shows collected. Start() runs the start-up that needs no window.

#include <string>
#include <vector>

#include "app/AppContext.h"
#include "app/modStartup.h"
#include "tests/support/AppFolder.h"

struct StartedApp {
  AppFolder folder;
  qds::ScopedAppContext app{folder.Folder()};
  std::vector<std::string> messages;

  StartedApp() {
    app->ShowMessage = [this](const std::string& m) { messages.push_back(m); };
  }
  bool Start() { return qds::InitGlobals(*app); }
  long long Count(const std::string& sql) { return app->Cnn.Query(sql).Fields(0).AsLong(); }
};
