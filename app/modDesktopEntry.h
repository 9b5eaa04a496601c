#pragma once
// The freedesktop entry that lists the studio in the desktop's menu of
// programs, written on the first start.

#include <string>

namespace qds {

// The folder of the user's menu entries: $XDG_DATA_HOME/applications, or
// ~/.local/share/applications when that is unset or not absolute.
std::string ApplicationsFolder();

// The entry's text: the program started as `executable` (with --app-dir
// `appFolder` when that is not the executable's own folder), the icon at
// `iconPath`. Paths with spaces, quotes or '%' are quoted as the format
// asks, so the menu starts the right file.
std::string DesktopEntryText(const std::string& executable, const std::string& appFolder,
                             const std::string& iconPath);

// Writes quillaron-design-studio.desktop into ApplicationsFolder(),
// making the folder when needed. The path written, or "" with `why` set.
std::string WriteDesktopEntry(const std::string& executable, const std::string& appFolder,
                              const std::string& iconPath, std::string* why = nullptr);

constexpr const char* kDesktopEntryName = "quillaron-design-studio.desktop";

}  // namespace qds
