#pragma once
// Runs the program's windows under an automation script, headless, and
// reads what the script dumped.

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>

#include "platform/Files.h"
#include "tests/support/TempDir.h"

struct ScriptRun {
  int code = -1;
  std::string err;
};

// Runs SCRIPT in `dir`, where its files go, on the application folder
// `appDir` (none: the program's own), with the program's options `options`
// and the environment settings `env` ("NAME=value ..."), headless.
inline ScriptRun RunScript(const TempDir& dir, const std::string& script, const std::string& appDir,
                           const std::string& options, const std::string& env = {}) {
  qds::WriteUtf8Text(dir / "script.txt", script);
  const std::string command = "cd '" + dir.Path() + "' && " + env + " '" + QDS_APP_EXE + "' " +
                              (appDir.empty() ? std::string() : "--app-dir '" + appDir + "' ") + options +
                              " --automate script.txt 2> err.txt > out.txt";
  const int status = std::system(command.c_str());
  ScriptRun r;
  r.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  r.err = qds::ReadAllText(dir / "err.txt");
  return r;
}

// The demonstration form of the stock widgets.
inline ScriptRun RunDemoScript(const TempDir& dir, const std::string& script,
                               const std::string& appDir = {}) {
  return RunScript(dir, script, appDir, "--demo-widgets");
}

// The studio's main window; the desktop's menu entry goes under `dir`.
inline ScriptRun RunStudioScript(const TempDir& dir, const std::string& script, const std::string& appDir,
                                 const std::string& env = {}) {
  return RunScript(dir, script, appDir, "", "XDG_DATA_HOME='" + dir.Path() + "/xdg' " + env);
}

inline nlohmann::json LoadDump(const TempDir& dir, const std::string& name) {
  return nlohmann::json::parse(qds::ReadAllText(dir / name));
}

// The dump's object of the widget with that path on the named form.
inline nlohmann::json WidgetOf(const nlohmann::json& dump, const std::string& form, const std::string& path) {
  for (const nlohmann::json& f : dump["forms"]) {
    if (f["name"] != form) continue;
    for (const nlohmann::json& w : f["widgets"]) {
      if (w["path"] == path) return w;
    }
  }
  return nlohmann::json();
}
