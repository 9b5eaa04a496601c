// The one executable: the studio, or a command of the headless command line.

#include <chrono>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "app/AppContext.h"
#include "app/modStartup.h"
#include "app/ui/DemoWidgetsForm.h"
#include "app/ui/modMessages.h"
#include "cli/CommandLine.h"
#include "cli/CommandOptions.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/ImageList.h"
#include "platform/SvgRenderer.h"
#include "platform/ui/Automation.h"
#include "platform/ui/SdlBackend.h"
#include "platform/ui/UiTheme.h"
#include "widgets/cThemeQuillaron.h"

namespace {

const auto started = std::chrono::steady_clock::now();

// Scripts larger than this are not scripts a person wrote.
constexpr std::size_t kMostScriptBytes = 4 << 20;

bool IsStudioOption(const std::string& word) {
  for (const char* o : {"--demo-widgets", "--automate", "--real-window"}) {
    if (word == o || word.rfind(std::string(o) + "=", 0) == 0) return true;
  }
  return false;
}

// quillaron [--app-dir DIR] [--demo-widgets] [--screenshot FILE | --automate SCRIPT [--real-window]]:
// the studio, today the stock widgets' demonstration form. --screenshot
// saves what the real window shows and closes it; --automate runs a script
// against it, headless unless --real-window asks for SDL's windows.
int Studio(const std::vector<std::string>& args) {
  static constexpr qds::OptionRule kKnown[] = {{"--app-dir", true},
                                               {"--demo-widgets", false},
                                               {"--screenshot", true},
                                               {"--automate", true},
                                               {"--real-window", false}};
  const qds::CommandArgs read = qds::ReadCommandArgs(args, kKnown, 0);
  std::string error = read.error;
  if (error.empty() && read.Has("--screenshot") && read.Has("--automate"))
    error = "--screenshot and --automate cannot be given together (a script takes its own screenshots)";
  if (error.empty() && read.Has("--real-window") && !read.Has("--automate"))
    error = "--real-window goes with --automate";
  for (const char* valued : {"--app-dir", "--screenshot", "--automate"}) {
    if (error.empty() && read.Has(valued) && read.Get(valued).empty())
      error = std::string(valued) + " needs a value";
  }
  if (!error.empty()) {
    std::cerr << "quillaron: " << error << "\n";
    return 2;
  }
  const std::string appDir =
      read.Has("--app-dir") ? qds::WithTrailingSlash(read.Get("--app-dir")) : qds::ExecutableFolder();
  std::string script;
  if (read.Has("--automate")) {
    try {
      script = qds::ReadAllText(read.Get("--automate"), kMostScriptBytes);
    } catch (const qds::AppError& e) {
      std::cerr << "quillaron: script " << read.Get("--automate") << ": " << e.Description() << "\n";
      return 1;
    }
  }
  const std::string screenshot = read.Get("--screenshot");
  const bool automate = read.Has("--automate");
  try {
    qds::SdlBackend* sdl = nullptr;
    std::unique_ptr<qds::UiBackend> backend;
    if (!automate || read.Has("--real-window")) {
      sdl = new qds::SdlBackend;
      backend.reset(sdl);
    } else {
      backend = std::make_unique<qds::HeadlessBackend>();
    }
    qds::PlatformRoot root{std::move(backend)};
    // The settings and texts the message boxes need; without a library the
    // demonstration still runs, and errors are printed instead of shown.
    std::string folder = appDir;
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    qds::ScopedAppContext app(folder);
    if (qds::OpenSettingsAndTexts(*app)) qds::InstallErrorMessages();
    qds::SetCurrentTheme(std::make_shared<qds::cThemeQuillaron>());
    qds::SvgRenderer renderer;
    qds::ImageList images(renderer);
    images.AddFromFile(appDir + "DocAndImages/Quillaron.svg", "Logo", 128, 128);
    root.setImages(&images);
    qds::DemoWidgetsForm form;
    if (sdl) {
      sdl->OnFirstFrame = [&] {
        const double ms =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - started).count();
        std::cerr << "first frame after " << ms << " ms\n";
        if (!screenshot.empty()) {
          root.DeferredInvoke([&] {
            qds::WriteAllBytes(screenshot, sdl->WindowPng(form));
            form.Close();
          });
        }
      };
    }
    form.Show();
    if (automate) return qds::RunAutomation(root, script, std::cerr);
    root.RunMessageLoop();
    return 0;
  } catch (const qds::AppError& e) {
    std::cerr << "quillaron: " << e.Description() << "\n";
    return 1;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  for (const std::string& a : args) {
    if (IsStudioOption(a)) return Studio(args);
  }
  return qds::RunCommand(qds::ParseCommandLine(args), std::cout, std::cerr);
}
