#include "platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
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
  std::string temp = FolderOf(path) + "." + FileNameOf(path) + ".XXXXXX";
  Fd fd(::mkstemp(temp.data()));
  if (fd.get() < 0) RaiseErrno(errno, "Cannot write", path, "WriteAllBytes");
  const auto fail = [&](int err) {
    ::unlink(temp.c_str());
    RaiseErrno(err, "Cannot write", path, "WriteAllBytes");
  };
  // mkstemp makes the file private; give it the mode a new file would get.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(fd.get(), 0666 & ~mask);
  std::size_t done = 0;
  while (done < data.size()) {
    const ssize_t n = ::write(fd.get(), data.data() + done, data.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) fail(errno);
    done += static_cast<std::size_t>(n);
  }
  if (::fsync(fd.get()) != 0) fail(errno);
  if (fd.Close() != 0) fail(errno);
  if (::rename(temp.c_str(), path.c_str()) != 0) fail(errno);
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
