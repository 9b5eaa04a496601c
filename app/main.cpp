// The one executable: the studio, or a command of the headless command line.

#include <chrono>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "app/ui/DemoWidgetsForm.h"
#include "cli/CommandLine.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/ImageList.h"
#include "platform/SvgRenderer.h"
#include "platform/ui/SdlBackend.h"

namespace {

const auto started = std::chrono::steady_clock::now();

// quillaron --demo-widgets [--screenshot FILE]: the stock widgets in a real
// window; with --screenshot, what the window shows is saved and it closes.
int DemoWidgets(const std::vector<std::string>& args) {
  std::string screenshot;
  for (std::size_t i = 0; i + 1 < args.size(); ++i) {
    if (args[i] == "--screenshot") screenshot = args[i + 1];
  }
  try {
    auto* backend = new qds::SdlBackend;
    qds::PlatformRoot root{std::unique_ptr<qds::UiBackend>(backend)};
    qds::SvgRenderer renderer;
    qds::ImageList images(renderer);
    images.AddFromFile(qds::ExecutableFolder() + "DocAndImages/Quillaron.svg", "Logo", 128, 128);
    root.setImages(&images);
    qds::DemoWidgetsForm form;
    backend->OnFirstFrame = [&] {
      const double ms =
          std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - started).count();
      std::cerr << "first frame after " << ms << " ms\n";
      if (!screenshot.empty()) {
        root.DeferredInvoke([&] {
          qds::WriteAllBytes(screenshot, backend->WindowPng(form));
          form.Close();
        });
      }
    };
    form.Show();
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
    if (a == "--demo-widgets") return DemoWidgets(args);
  }
  return qds::RunCommand(qds::ParseCommandLine(args), std::cout, std::cerr);
}
