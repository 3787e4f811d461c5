#include "harness/terminal.h"

#include "base/text.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillpost::testing {
namespace {

/// The other end of a window, which is made before the process that uses it.
UniqueFd openWindow(std::string& path) {
  UniqueFd window(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  std::array<char, 256> name{};
  const bool isOpen = window && ::grantpt(window.get()) == 0 && ::unlockpt(window.get()) == 0 &&
                      ::ptsname_r(window.get(), name.data(), name.size()) == 0;
  EXPECT_TRUE(isOpen) << "no pseudo-terminal";
  path = name.data();
  return window;
}

/// In the new process: makes the terminal its own and becomes the shell.
[[noreturn]] void becomeShell(const char* path, char* const* arguments, char* const* variables) {
  ::setsid();
  const int terminal = ::open(path, O_RDWR);
  ::ioctl(terminal, TIOCSCTTY, 0);
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(terminal, fd);
  if (terminal > STDERR_FILENO) ::close(terminal);
  ::execve("/bin/bash", arguments, variables);
  ::_exit(127);
}

}  // namespace

Terminal::Terminal(Kind kind, const std::map<std::string, std::string>& environment) {
  std::string path;
  window_ = openWindow(path);
  std::vector<std::string> words = {"bash", "--norc", "--noprofile"};
  if (kind == Kind::interactive) words.emplace_back("-i");
  std::vector<std::string> assigned;
  for (const auto& [name, value] : environment) assigned.push_back(text::cat(name, "=", value));
  std::vector<char*> arguments, variables;
  for (std::string& word : words) arguments.push_back(word.data());
  for (std::string& variable : assigned) variables.push_back(variable.data());
  arguments.push_back(nullptr);
  variables.push_back(nullptr);
  shell_ = ::fork();
  if (shell_ == 0) becomeShell(path.c_str(), arguments.data(), variables.data());
}

Terminal::~Terminal() {
  close();
  killShell();
}

void Terminal::type(std::string_view line) const {
  const std::string typed = text::cat(line, "\n");
  EXPECT_EQ(::write(window_.get(), typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
}

void Terminal::close() { window_ = UniqueFd(); }

void Terminal::killShell() {
  if (shell_ <= 0) return;
  ::kill(shell_, SIGKILL);
  while (::waitpid(shell_, nullptr, 0) < 0 && errno == EINTR) {
  }
  shell_ = -1;
}

bool isRunning(pid_t pid) {
  if (::kill(pid, 0) != 0) return false;
  const std::string line = readFile(text::cat("/proc/", int64_t{pid}, "/stat"));
  const std::size_t name = line.rfind(')');
  return name == std::string::npos || line.substr(name + 1, 3) != " Z ";
}

}  // namespace quillpost::testing
