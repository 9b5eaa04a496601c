#pragma once
// Programs and X servers of a test's own: the studio under a virtual
// display, with the tools that ask the display about its windows.

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

namespace {

pid_t Spawn(const std::vector<std::string>& argv, const std::vector<std::string>& extraEnv) {
  std::vector<char*> args;
  for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
  args.push_back(nullptr);
  std::vector<std::string> envStore(extraEnv);
  for (char** e = environ; *e; ++e) envStore.emplace_back(*e);
  std::vector<char*> env;
  for (std::string& e : envStore) env.push_back(e.data());
  env.push_back(nullptr);
  pid_t pid = 0;
  return posix_spawn(&pid, argv[0].c_str(), nullptr, nullptr, args.data(), env.data()) == 0 ? pid : -1;
}

// Waits for the process within `seconds`; its exit code, or -1 when it had to be killed.
int Wait(pid_t pid, int seconds) {
  for (int i = 0; i < seconds * 20; ++i) {
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) == pid) return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  kill(pid, SIGKILL);
  waitpid(pid, nullptr, 0);
  return -1;
}

// Whether the process still runs; it is not reaped, so Wait still gets its code.
bool Running(pid_t pid) {
  siginfo_t info{};
  return waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == 0;
}

// An X server of the test's own, on a display number nobody uses, ended
// with the test.
struct VirtualDisplay {
  static constexpr const char* kXvfb = "/usr/bin/Xvfb";
  std::string name;
  std::string screen = "1024x768x24";
  pid_t server = -1;
  bool Up() {
    int display = 90 + static_cast<int>(getpid() % 400);
    while (std::filesystem::exists("/tmp/.X11-unix/X" + std::to_string(display))) ++display;
    name = ":" + std::to_string(display);
    server = Spawn({kXvfb, name, "-screen", "0", screen, "-nolisten", "tcp"}, {});
    const std::string socket = "/tmp/.X11-unix/X" + std::to_string(display);
    for (int i = 0; server > 0 && i < 100 && !std::filesystem::exists(socket); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return server > 0 && std::filesystem::exists(socket);
  }
  ~VirtualDisplay() {
    if (server <= 0) return;
    kill(server, SIGTERM);
    Wait(server, 10);
  }
};

// What a command prints; nothing when it cannot run.
std::string Output(const std::string& command) {
  std::string out;
  if (FILE* p = ::popen(command.c_str(), "r")) {
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, p)) > 0;) out.append(buffer, n);
    ::pclose(p);
  }
  return out;
}

}  // namespace
