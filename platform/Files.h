#pragma once

#include <cstdint>
// File and folder helpers. Paths are UTF-8 strings with "/" separators.
// Failures raise AppError with the classic numbers (53 file not found,
// 75 access error, 76 path not found) and a message that names the path.

#include <string>
#include <string_view>
#include <vector>

#include "platform/Bytes.h"

namespace qds {

bool FileExists(const std::string& path);
bool FolderExists(const std::string& path);

// Makes every missing level of `path`; a level that cannot be made is passed
// over (the next one then fails too, and the caller sees the folder missing).
// Returns the path with a trailing "/".
std::string CreateDirectories(const std::string& path);

// The whole file; one larger than `maxBytes` is refused unread (a device
// such as /dev/zero is refused once it passes the bound).
Bytes ReadAllBytes(const std::string& path, std::size_t maxBytes = SIZE_MAX);
std::string ReadAllText(const std::string& path, std::size_t maxBytes = SIZE_MAX);

// Writes to a temporary file beside the target, flushes it to disk and
// renames it over the target, so a reader sees the old file or the new one,
// never a torn one. On failure (a full disk, a missing folder) the target is
// unchanged and no temporary file is left behind.
void WriteAllBytes(const std::string& path, const Bytes& data);
void WriteUtf8Text(const std::string& path, std::string_view text);

// Names (not paths) of the files in `folder` that match any pattern of a
// ";"-separated list such as "*.svg; *svgz", compared without regard to case,
// sorted by name the same way. Folders are not listed; a missing folder
// gives an empty list.
std::vector<std::string> ListFolder(const std::string& folder, std::string_view patterns);

// The user's desktop folder: the XDG desktop directory, else ~/Desktop.
std::string DesktopFolder();
std::string HomeFolder();

// The folder of the running executable, with a trailing "/".
std::string ExecutableFolder();

std::string WithTrailingSlash(std::string path);
std::string JoinPath(std::string_view folder, std::string_view name);
std::string FileNameOf(std::string_view path);  // "a/b.svg" -> "b.svg"
std::string BaseNameOf(std::string_view path);  // "a/b.svg" -> "b"
std::string FolderOf(std::string_view path);    // "a/b.svg" -> "a/"

}  // namespace qds
