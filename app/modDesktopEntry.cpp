#include "app/modDesktopEntry.h"

#include <cstdlib>

#include "platform/Error.h"
#include "platform/Files.h"

namespace qds {

namespace {

// One argument of the Exec key: quoted when it holds anything the format
// reserves, with '"', '`', '$' and '\' escaped inside the quotes; '%' is
// doubled everywhere, as it starts a field code.
std::string ExecArgument(const std::string& arg) {
  bool quote = arg.empty();
  std::string inner;
  for (char c : arg) {
    if (c == '%') {
      inner += "%%";
      continue;
    }
    if (std::string_view(" \t\n\"'\\><~|&;$*?#()`").find(c) != std::string_view::npos) quote = true;
    if (c == '"' || c == '`' || c == '$' || c == '\\') inner += '\\';
    inner += c;
  }
  return quote ? "\"" + inner + "\"" : inner;
}

// A value of the file escapes its own backslashes and line breaks once more.
std::string EntryValue(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\\')
      out += "\\\\";
    else if (c == '\n')
      out += "\\n";
    else if (c == '\r')
      out += "\\r";
    else
      out += c;
  }
  return out;
}

std::string WithoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace

std::string ApplicationsFolder() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data && data[0] == '/') return WithTrailingSlash(data) + "applications/";
  return WithTrailingSlash(HomeFolder()) + ".local/share/applications/";
}

std::string DesktopEntryText(const std::string& executable, const std::string& appFolder,
                             const std::string& iconPath) {
  std::string exec = ExecArgument(executable);
  if (WithoutTrailingSlash(appFolder) != WithoutTrailingSlash(FolderOf(executable)))
    exec += " --app-dir " + ExecArgument(WithoutTrailingSlash(appFolder));
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Version=1.0\n"
         "Name=Quillaron Design Studio\n"
         "GenericName=Icon Designer\n"
         "Comment=Design whole icon sets from a library of SVG icons\n"
         "Exec=" +
         EntryValue(exec) +
         "\n"
         "Icon=" +
         EntryValue(iconPath) +
         "\n"
         "Terminal=false\n"
         "Categories=Graphics;VectorGraphics;\n"
         "StartupWMClass=quillaron\n";
}

std::string WriteDesktopEntry(const std::string& executable, const std::string& appFolder,
                              const std::string& iconPath, std::string* why) {
  const std::string folder = ApplicationsFolder();
  try {
    CreateDirectories(folder);
    const std::string path = folder + kDesktopEntryName;
    WriteUtf8Text(path, DesktopEntryText(executable, appFolder, iconPath));
    return path;
  } catch (const AppError& e) {
    if (why) *why = folder + ": " + e.Description();
    return {};
  }
}

}  // namespace qds
