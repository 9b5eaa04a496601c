// The one executable: the studio, or a command of the headless command line.

#include <chrono>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modDesktopEntry.h"
#include "app/modStartup.h"
#include "app/ui/DemoWidgetsForm.h"
#include "app/ui/cfMain.h"
#include "app/ui/cfWelcome.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/cwTitleBar.h"
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
#include "platform/ui/WindowPlacement.h"
#include "store/LibrarySchema.h"
#include "store/modLibrary.h"
#include "widgets/cThemeQuillaron.h"

namespace {

const auto started = std::chrono::steady_clock::now();

// Scripts larger than this are not scripts a person wrote.
constexpr std::size_t kMostScriptBytes = 4 << 20;

bool IsStudioOption(const std::string& word) {
  for (const char* o : {"--demo-widgets", "--automate", "--real-window", "--screenshot"}) {
    if (word == o || word.rfind(std::string(o) + "=", 0) == 0) return true;
  }
  return false;
}

// No command at all, or only the application folder: the studio.
bool StartsStudio(const std::vector<std::string>& args) {
  if (args.empty()) return true;
  if (args.size() == 2 && args[0] == "--app-dir") return true;
  if (args.size() == 1 && args[0].rfind("--app-dir=", 0) == 0) return true;
  for (const std::string& a : args) {
    if (IsStudioOption(a)) return true;
  }
  return false;
}

double MsSinceStart() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - started).count();
}

// Where the studio is at: its windows, and what it was asked to do.
struct StudioRun {
  qds::PlatformRoot& root;
  qds::SdlBackend* sdl;
  std::string screenshot;
  bool automate;
  std::string script;
};

// Shows `form` and runs the loop, or the script, until it is closed. The
// first picture on a real screen is timed, and taken when asked.
int RunForm(StudioRun& run, qds::cfForm& form) {
  if (run.sdl) {
    run.sdl->OnFirstFrame = [&] {
      std::cerr << "first frame after " << MsSinceStart() << " ms\n";
      if (!run.screenshot.empty()) {
        run.root.DeferredInvoke([&] {
          qds::WriteAllBytes(run.screenshot, run.sdl->WindowPng(form));
          form.Close();
        });
      }
    };
  }
  if (!form.Showing()) form.Show();
  if (run.automate) return qds::RunAutomation(run.root, run.script, std::cerr);
  run.root.RunMessageLoop();
  return 0;
}

// The stock widgets' demonstration form, with the settings and texts the
// message boxes need; without a library it still runs, and errors are
// printed instead of shown.
int RunDemo(StudioRun& run, qds::AppContext& app) {
  if (qds::OpenSettingsAndTexts(app)) qds::InstallErrorMessages();
  qds::ImageList& images = app.ImageList();
  images.AddFromFile(app.PathOf("DocAndImages/Quillaron.svg"), "Logo", 128, 128);
  run.root.setImages(&images);
  qds::DemoWidgetsForm form;
  return RunForm(run, form);
}

// The kept window rectangle where it still fits the screens, else the
// default size in the middle of the first screen; maximised as it was left.
void PlaceMainWindow(qds::cfMain& form, qds::AppContext& app, qds::UiBackend& backend) {
  const double zoom = form.Zoom();
  qds::WindowRequest request;
  request.kept = {double(app.Config->WindowLeft()), double(app.Config->WindowTop()),
                  double(app.Config->WindowWidth()), double(app.Config->WindowHeight())};
  request.defaultW = qds::kMainDefaultWidth * zoom, request.defaultH = qds::kMainDefaultHeight * zoom;
  request.minW = form.MinWidth * zoom, request.minH = form.MinHeight * zoom;
  request.gripHeight = qds::cwTitleBar::kHeight * zoom;
  const qds::ScreenArea at = qds::PlaceWindow(request, backend.Screens());
  form.SetScreenRect(at.x, at.y, at.w, at.h);
  if (app.Config->WindowMaximized()) form.setMaximized(true);
}

// The studio: the start of every process-wide object, the first start's
// import under the welcome window, then the main window.
int RunStudio(StudioRun& run, qds::AppContext& app) {
  // Before a window can show them, start-up problems are printed; a real
  // window shows them in the message box as well.
  app.ShowMessage = [&run](const std::string& text) {
    std::cerr << "quillaron: " << text << "\n";
    if (run.sdl) qds::ShowMsgBox(text, qds::MsgStyle::Critical, "Quillaron Design Studio");
  };
  app.DoEvents = [&run] { run.root.DoEvents(); };
  run.root.setImages(&app.ImageList());
  std::unique_ptr<qds::cfWelcome> welcome;
  bool firstStart = false;
  const auto progress = [&](int done, int total) {
    firstStart = true;
    if (!welcome) {
      // The texts are read by now: the welcome speaks the user's language.
      app.ImageList().AddFromFile(app.PathOf("DocAndImages/Quillaron.svg"), "Logo", 100, 100);
      welcome = std::make_unique<qds::cfWelcome>();
      welcome->Show();
    }
    welcome->ShowProgress(done, total);
    run.root.DoEvents();
  };
  if (!qds::StartWithoutWindow(app, progress, false)) return 1;
  if (welcome) welcome->Close();
  welcome.reset();
  qds::InstallErrorMessages();
  if (firstStart) {
    std::string why;
    const std::string exe = qds::ExecutableFolder() + "quillaron";
    if (qds::WriteDesktopEntry(exe, app.AppPath, app.PathOf("DocAndImages/Quillaron.svg"), &why).empty())
      std::cerr << "quillaron: the desktop's menu entry was not written: " << why << "\n";
  }
  qds::cfMain form;
  form.setZoom(app.Config->UserZoom());
  PlaceMainWindow(form, app, run.root.Backend());
  form.Show();
  // The schema upgrade may ask and report; the window is there for it.
  qds::UpdateDB(app);
  form.TitleBarVersion(qds::ProgramVersion());
  return RunForm(run, form);
}

// quillaron [--app-dir DIR] [--demo-widgets] [--screenshot FILE | --automate SCRIPT [--real-window]]:
// the studio, or the stock widgets' demonstration form. --screenshot saves
// what the real window shows and closes it; --automate runs a script
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
    std::string folder = appDir;
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    qds::ScopedAppContext app(folder);
    qds::SetCurrentTheme(std::make_shared<qds::cThemeQuillaron>());
    StudioRun run{root, sdl, read.Get("--screenshot"), automate, script};
    return read.Has("--demo-widgets") ? RunDemo(run, *app) : RunStudio(run, *app);
  } catch (const qds::AppError& e) {
    std::cerr << "quillaron: " << e.Description() << "\n";
    return 1;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (StartsStudio(args)) return Studio(args);
  return qds::RunCommand(qds::ParseCommandLine(args), std::cout, std::cerr);
}
