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

// Writes through NewFile and replaces the target in one step, so a reader
// sees the old file or the new one, never a torn one. On failure (a full
// disk, a missing folder) the target is unchanged and no temporary file is
// left behind.
void WriteAllBytes(const std::string& path, const Bytes& data);
void WriteUtf8Text(const std::string& path, std::string_view text);

// A name that stays in its folder: not empty, no "/" or NUL, not "." or "..".
bool IsPlainFileName(std::string_view name);

// A file whose content is written and flushed to disk before it has a name,
// then named in one step. Nobody sees part of it; a process killed before
// naming it leaves nothing behind; and of two writers (threads or processes)
// that want one name, one gets it and the other hears that it is taken,
// instead of one replacing the other's file.
//
// Where the file system has unnamed files (O_TMPFILE), the content has no
// name at all until it is named. Elsewhere it waits under a short hidden
// temporary name, which a killed process can leave behind.
//
// Errors raise AppError with a message "<path>: <reason>"; a name that
// cannot be used in the folder (not a plain name, too long, a folder's) has
// the number ErrNo::BadFileName, so that a caller can pass over that one file.
class NewFile {
 public:
  // TemporaryName always takes the way of file systems without unnamed files.
  enum class Way { Unnamed, TemporaryName };
  NewFile(const std::string& folder, const Bytes& data, Way way = Way::Unnamed);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // Gives the file this name unless the name is taken: false then, and
  // nothing has changed. Can be tried again with another name.
  bool Claim(const std::string& name);
  // Gives the file this name, replacing a file of that name in one step.
  void Replace(const std::string& name);

 private:
  // From `data`, or from the unnamed file when that cannot be linked.
  void WriteTemporary(const Bytes* data);
  void Release() noexcept;
  int LinkUnnamed(const std::string& name);
  int LinkTemporary(const std::string& name);
  void CheckName(const std::string& name) const;
  [[noreturn]] void Fail(int err, const std::string& name) const;

  std::string folder_;
  int dir_ = -1;
  int unnamed_ = -1;  // the unnamed file, until it has a name
  std::string temp_;  // the temporary name, on the other way
  bool named_ = false;
};

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
