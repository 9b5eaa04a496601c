#include "platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <pwd.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>

#include "platform/Error.h"
#include "platform/TextUtil.h"

namespace qds {

namespace {

[[noreturn]] void RaiseErrno(int err, const std::string& what, const std::string& path, const char* source) {
  int number = ErrNo::FileAccess;
  if (err == ENOENT) number = ErrNo::FileNotFound;
  if (err == ENOTDIR) number = ErrNo::PathNotFound;
  std::string text = what + " \"" + path + "\": " + std::strerror(err);
  if (err == ENOSPC) text = what + " \"" + path + "\": the disk is full";
  Raise(number, text, source);
}

// Owns a file descriptor.
class Fd {
 public:
  explicit Fd(int fd) : fd_(fd) {}
  ~Fd() { Close(); }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  int get() const { return fd_; }
  int Close() {
    const int rc = fd_ >= 0 ? ::close(fd_) : 0;
    fd_ = -1;
    return rc;
  }

 private:
  int fd_;
};

}  // namespace

bool FileExists(const std::string& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool FolderExists(const std::string& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::string CreateDirectories(const std::string& path) {
  const std::string full = WithTrailingSlash(path);
  for (std::size_t at = full.find('/', 1); at != std::string::npos; at = full.find('/', at + 1)) {
    const std::string level = full.substr(0, at);
    if (!FolderExists(level)) ::mkdir(level.c_str(), 0755);
  }
  return full;
}

Bytes ReadAllBytes(const std::string& path, std::size_t maxBytes) {
  const Fd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (fd.get() < 0) RaiseErrno(errno, "Cannot read", path, "ReadAllBytes");
  struct stat st {};
  if (::fstat(fd.get(), &st) == 0 && S_ISDIR(st.st_mode))
    RaiseErrno(EISDIR, "Cannot read", path, "ReadAllBytes");
  // Devices and pipes say nothing of their size: the bound is also kept
  // while reading.
  const auto tooLarge = [&] {
    Raise(ErrNo::FileAccess,
          path + " is larger than " + std::to_string(maxBytes / (1024 * 1024)) + " MB and is not read",
          "ReadAllBytes");
  };
  if (st.st_size > 0 && static_cast<std::uint64_t>(st.st_size) > maxBytes) tooLarge();
  Bytes out;
  if (st.st_size > 0) out.reserve(static_cast<std::size_t>(st.st_size));
  std::uint8_t chunk[64 * 1024];
  for (;;) {
    const ssize_t n = ::read(fd.get(), chunk, sizeof chunk);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) RaiseErrno(errno, "Cannot read", path, "ReadAllBytes");
    if (n == 0) break;
    if (out.size() + static_cast<std::size_t>(n) > maxBytes) tooLarge();
    out.insert(out.end(), chunk, chunk + n);
  }
  return out;
}

std::string ReadAllText(const std::string& path, std::size_t maxBytes) {
  return ToString(ReadAllBytes(path, maxBytes));
}

void WriteAllBytes(const std::string& path, const Bytes& data) {
  NewFile(FolderOf(path), data).Replace(FileNameOf(path));
}

bool IsPlainFileName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
         name.find('\0') == std::string_view::npos;
}

namespace {

// Writes all of `data`; 0 or the error.
int WriteAll(int fd, const Bytes& data) {
  std::size_t done = 0;
  while (done < data.size()) {
    const ssize_t n = ::write(fd, data.data() + done, data.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return errno;
    done += static_cast<std::size_t>(n);
  }
  return ::fsync(fd) == 0 ? 0 : errno;
}

// Copies all of the file `from` to `to`; 0 or the error.
int CopyAll(int from, int to) {
  if (::lseek(from, 0, SEEK_SET) != 0) return errno;
  Bytes chunk(64 * 1024);
  for (;;) {
    const ssize_t n = ::read(from, chunk.data(), chunk.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return errno;
    if (n == 0) break;
    for (ssize_t done = 0; done < n;) {
      const ssize_t w = ::write(to, chunk.data() + done, static_cast<std::size_t>(n - done));
      if (w < 0 && errno == EINTR) continue;
      if (w < 0) return errno;
      done += w;
    }
  }
  return ::fsync(to) == 0 ? 0 : errno;
}

// A short hidden name: its length does not grow with the target's, so a
// target of the longest name the file system takes can still be written.
std::string TemporaryName() {
  static const char digits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
  std::uint8_t random[10];
  if (::getrandom(random, sizeof random, 0) != static_cast<ssize_t>(sizeof random)) {
    // No entropy to be had: the time and the process still make a name
    // that a retry on EEXIST gets past.
    const auto t = static_cast<std::uint64_t>(::clock()) ^ (static_cast<std::uint64_t>(::getpid()) << 20);
    for (std::size_t i = 0; i < sizeof random; ++i) random[i] = static_cast<std::uint8_t>(t >> (i * 6));
  }
  std::string name = ".qds-";
  for (const std::uint8_t r : random) name += digits[r % 36];
  return name;
}

// Errors that say a way of linking is not there, rather than that the name
// or the folder is wrong.
bool NotPermitted(int err) {
  return err == EPERM || err == EACCES || err == ENOENT || err == EOPNOTSUPP || err == ENOSYS ||
         err == EXDEV || err == EINVAL;
}

}  // namespace

NewFile::NewFile(const std::string& folder, const Bytes& data, Way way)
    : folder_(WithTrailingSlash(folder.empty() ? "." : folder)) {
  try {
    dir_ = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir_ < 0) Fail(errno, "");
    if (way == Way::Unnamed) {
      // Readable too: should it turn out that it cannot be linked, its
      // content is copied to a temporary name.
      unnamed_ = ::openat(dir_, ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
      if (unnamed_ < 0 && errno != EOPNOTSUPP && errno != EISDIR) Fail(errno, "");
    }
    if (unnamed_ < 0) {
      WriteTemporary(&data);
    } else if (const int err = WriteAll(unnamed_, data)) {
      Fail(err, "");
    }
  } catch (...) {
    Release();
    throw;
  }
}

NewFile::~NewFile() {
  Release();
}

void NewFile::Release() noexcept {
  if (!temp_.empty()) ::unlinkat(dir_, temp_.c_str(), 0);
  temp_.clear();
  if (unnamed_ >= 0) ::close(unnamed_);
  unnamed_ = -1;
  if (dir_ >= 0) ::close(dir_);
  dir_ = -1;
}

void NewFile::WriteTemporary(const Bytes* data) {
  for (int tries = 0;; ++tries) {
    std::string name = TemporaryName();
    const int fd = ::openat(dir_, name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    if (fd < 0 && errno == EEXIST && tries < 100) continue;
    if (fd < 0) Fail(errno, "");
    temp_ = std::move(name);  // removed by Release whatever happens now
    const int err = data ? WriteAll(fd, *data) : CopyAll(unnamed_, fd);
    if (::close(fd) != 0 && err == 0) Fail(errno, "");
    if (err) Fail(err, "");
    break;
  }
  if (unnamed_ >= 0) ::close(unnamed_);
  unnamed_ = -1;
}

// 0, or the error of linking the unnamed file as `name`; -1 when this
// system lets no unnamed file be linked.
int NewFile::LinkUnnamed(const std::string& name) {
  // AT_EMPTY_PATH asks for a capability on older kernels; the /proc way
  // does not, but needs /proc.
  if (::linkat(unnamed_, "", dir_, name.c_str(), AT_EMPTY_PATH) == 0) return 0;
  if (!NotPermitted(errno)) return errno;
  const std::string self = "/proc/self/fd/" + std::to_string(unnamed_);
  if (::linkat(AT_FDCWD, self.c_str(), dir_, name.c_str(), AT_SYMLINK_FOLLOW) == 0) return 0;
  if (!NotPermitted(errno)) return errno;
  // ENOENT may also mean that the folder has gone: the temporary file
  // written now then fails and says so.
  return -1;
}

// 0, or the error of giving the temporary file the name `name`, which must
// not exist.
int NewFile::LinkTemporary(const std::string& name) {
  if (::linkat(dir_, temp_.c_str(), dir_, name.c_str(), 0) == 0) {
    ::unlinkat(dir_, temp_.c_str(), 0);
    temp_.clear();
    return 0;
  }
  if (errno == EEXIST || !NotPermitted(errno)) return errno;
  // No hard links (FAT, some network file systems): a rename that refuses
  // to replace does the same.
  if (::renameat2(dir_, temp_.c_str(), dir_, name.c_str(), RENAME_NOREPLACE) == 0) {
    temp_.clear();
    return 0;
  }
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // Neither: this file system cannot claim a name in one step, and a look
  // before the rename is the best there is.
  struct stat st {};
  if (::fstatat(dir_, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  if (::renameat(dir_, temp_.c_str(), dir_, name.c_str()) != 0) return errno;
  temp_.clear();
  return 0;
}

bool NewFile::Claim(const std::string& name) {
  CheckName(name);
  for (int tries = 0; tries < 3; ++tries) {
    int err = -1;
    if (unnamed_ >= 0) err = LinkUnnamed(name);
    if (err == -1) {
      if (unnamed_ >= 0) WriteTemporary(nullptr);
      err = LinkTemporary(name);
    }
    if (err == 0) {
      named_ = true;
      if (unnamed_ >= 0) ::close(unnamed_);
      unnamed_ = -1;
      return true;
    }
    if (err != EEXIST) Fail(err, name);
    struct stat st {};
    if (::fstatat(dir_, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
      if (errno == ENOENT) continue;  // gone again in the meantime
      Fail(errno, name);
    }
    if (S_ISDIR(st.st_mode)) Fail(EISDIR, name);
    return false;
  }
  return false;
}

void NewFile::Replace(const std::string& name) {
  CheckName(name);
  // A rename needs a name to move: the unnamed file gets a temporary one,
  // for as short a time as it takes.
  while (unnamed_ >= 0 && temp_.empty()) {
    const std::string temp = TemporaryName();
    const int err = LinkUnnamed(temp);
    if (err == EEXIST) continue;
    if (err == -1) {
      WriteTemporary(nullptr);
      break;
    }
    if (err != 0) Fail(err, name);
    temp_ = temp;
    break;
  }
  if (::renameat(dir_, temp_.c_str(), dir_, name.c_str()) != 0) Fail(errno, name);
  temp_.clear();
  named_ = true;
  if (unnamed_ >= 0) ::close(unnamed_);
  unnamed_ = -1;
}

void NewFile::CheckName(const std::string& name) const {
  if (named_) Raise(ErrNo::InvalidArgument, folder_ + name + ": the file already has a name", "NewFile");
  if (!IsPlainFileName(name)) {
    Raise(ErrNo::BadFileName,
          folder_ + name + ": a file name must not be empty, \".\" or \"..\", nor hold \"/\" or NUL",
          "NewFile");
  }
}

void NewFile::Fail(int err, const std::string& name) const {
  const std::string path = name.empty() ? folder_ : folder_ + name;
  int number = ErrNo::FileAccess;
  std::string reason = std::strerror(err);
  if (err == ENOENT) number = ErrNo::FileNotFound;
  if (err == ENOTDIR) number = ErrNo::PathNotFound;
  if (err == ENOSPC) reason = "the disk is full";
  if (!name.empty() && (err == EISDIR || err == ENOTEMPTY || err == EEXIST)) {
    number = ErrNo::BadFileName;
    reason = "a folder has this name";
  }
  if (err == ENAMETOOLONG) {
    number = ErrNo::BadFileName;
    reason = "the name is longer than the file system allows";
  }
  Raise(number, path + ": " + reason, "NewFile");
}

void WriteUtf8Text(const std::string& path, std::string_view text) {
  WriteAllBytes(path, ToBytes(text));
}

std::vector<std::string> ListFolder(const std::string& folder, std::string_view patterns) {
  std::vector<std::string> wanted;
  std::size_t start = 0;
  while (start <= patterns.size()) {
    const std::size_t end = std::min(patterns.find(';', start), patterns.size());
    const std::string_view p = TrimBlanks(patterns.substr(start, end - start));
    if (!p.empty()) wanted.emplace_back(p);
    start = end + 1;
  }
  std::vector<std::string> names;
  DIR* dir = ::opendir(folder.c_str());
  if (!dir) return names;
  while (const dirent* e = ::readdir(dir)) {
    const std::string name = e->d_name;
    if (name == "." || name == "..") continue;
    if (!FileExists(JoinPath(folder, name))) continue;
    for (const auto& p : wanted) {
      if (::fnmatch(p.c_str(), name.c_str(), FNM_CASEFOLD) == 0) {
        names.push_back(name);
        break;
      }
    }
  }
  ::closedir(dir);
  std::sort(names.begin(), names.end(), LessNoCase);
  return names;
}

std::string HomeFolder() {
  if (const char* home = std::getenv("HOME"); home && *home) return home;
  if (const passwd* pw = ::getpwuid(::getuid()); pw && pw->pw_dir) return pw->pw_dir;
  return "/";
}

std::string DesktopFolder() {
  // The same file that xdg-user-dir reads: XDG_DESKTOP_DIR="$HOME/Desktop".
  const std::string home = HomeFolder();
  const char* configHome = std::getenv("XDG_CONFIG_HOME");
  const std::string config = configHome && *configHome ? configHome : home + "/.config";
  std::ifstream in(config + "/user-dirs.dirs");
  std::string line;
  while (std::getline(in, line)) {
    const std::string_view prefix = "XDG_DESKTOP_DIR=\"";
    if (line.compare(0, prefix.size(), prefix) != 0) continue;
    const std::size_t close = line.rfind('"');
    if (close <= prefix.size()) break;
    std::string value = line.substr(prefix.size(), close - prefix.size());
    if (value.compare(0, 5, "$HOME") == 0) value = home + value.substr(5);
    // A desktop set to the home folder itself means "none configured".
    if (!value.empty() && value.front() == '/' && WithTrailingSlash(value) != WithTrailingSlash(home)) {
      return value;
    }
    break;
  }
  return home + "/Desktop";
}

std::string ExecutableFolder() {
  std::string buf(4096, '\0');
  const ssize_t n = ::readlink("/proc/self/exe", buf.data(), buf.size());
  if (n <= 0) return "./";
  buf.resize(static_cast<std::size_t>(n));
  return FolderOf(buf);
}

std::string WithTrailingSlash(std::string path) {
  if (path.empty() || path.back() != '/') path += '/';
  return path;
}

std::string JoinPath(std::string_view folder, std::string_view name) {
  if (folder.empty()) return std::string(name);
  std::string out(folder);
  if (out.back() != '/') out += '/';
  out += name;
  return out;
}

std::string FileNameOf(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string BaseNameOf(std::string_view path) {
  std::string name = FileNameOf(path);
  const std::size_t dot = name.rfind('.');
  if (dot != std::string::npos && dot > 0) name.resize(dot);
  return name;
}

std::string FolderOf(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? std::string("./") : std::string(path.substr(0, slash + 1));
}

}  // namespace qds
