#include "board/serving/spawned_processes.h"

#include "base/files.h"
#include "base/text.h"
#include "base/unicode.h"
#include "board/serving/spawning.h"
#include "board/serving/system.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/prctl.h>
#include <sys/syscall.h>
#else
#include <spawn.h>
#include <sys/sysctl.h>
#endif

namespace quillpost::board {

namespace {

/// Where the handler writes, since one can be given nothing.
int& newsWriter() {
  static int descriptor = -1;
  return descriptor;
}

extern "C" void childHasChanged(int) {
  const int before = errno;
  const ssize_t ignored = ::write(newsWriter(), "", 1);
  static_cast<void>(ignored);
  errno = before;
}

/// What a program finds as it usually is, whatever this one does with it.
constexpr int usualSignals[] = {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE, SIGCHLD};

bool isProgram(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         ::access(path.c_str(), X_OK) == 0;
}

/// The program that a launch means: as its PATH has it, or from its directory when a path is given.
/// Empty when there is none.
std::string programOf(const Launch& launch) {
  const std::string& word = launch.words.front();
  constexpr std::string_view name = "PATH=";
  const auto from = [&](std::string_view path) {
    return path.starts_with('/') ? std::string(path) : files::joinPath(launch.directory, path);
  };
  if (word.find('/') != std::string::npos) return isProgram(from(word)) ? from(word) : "";
  for (const std::string& variable : launch.variables) {
    if (!variable.starts_with(name)) continue;
    for (const std::string_view place :
         text::split(std::string_view(variable).substr(name.size()), ':')) {
      std::string path = files::joinPath(from(place), word);
      if (isProgram(path)) return path;
    }
  }
  return {};
}

/// All that a new process needs, so that nothing is to be made any more once it is there.
struct Ready {
  std::string program;
  std::vector<char*> words, variables;
  const char* directory;
  int input;
  int output;
};

#if defined(__linux__)

/// What the new process does until it is the program: system calls alone, since it lives in this
/// program's memory until then. Gives the error of the call that failed.
int become(const Ready& ready, pid_t board) {
  struct sigaction usual {};
  usual.sa_handler = SIG_DFL;
  for (const int signal : usualSignals) ::sigaction(signal, &usual, nullptr);
  if (::setsid() < 0) return errno;
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  // The board may have ended before that was asked for.
  if (::getppid() != board) return ESRCH;
  if (::dup2(ready.input, STDIN_FILENO) < 0) return errno;
  for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
    if (::dup2(ready.output, stream) < 0) return errno;
#if defined(SYS_close_range)
  // What somebody else opened before the board began is no business of the program's.
  ::syscall(SYS_close_range, STDERR_FILENO + 1, ~0U, 0);
#endif
  if (::chdir(ready.directory) != 0) return errno;
  sigset_t none;
  sigemptyset(&none);  // which is a macro on some systems
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::execve(ready.program.c_str(), ready.words.data(), ready.variables.data());
  return errno;
}

/// Starts it: its number, or none and the error.
pid_t launchReady(const Ready& ready, int& error) {
  // A handler that ran in the new process would act on this one's memory.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  ::sigprocmask(SIG_SETMASK, &all, &before);
  const pid_t board = ::getpid();
  volatile int failed = 0;
  const pid_t pid = ::vfork();  // NOLINT(clang-analyzer-security.insecureAPI.vfork)
  if (pid == 0) {
    failed = become(ready, board);  // NOLINT(clang-analyzer-unix.Vfork): as it says above it
    ::_exit(cannotRun);
  }
  error = pid < 0 ? errno : failed;
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
  if (pid > 0 && error != 0) ::waitpid(pid, nullptr, 0);
  return error == 0 ? pid : -1;
}

#else

pid_t launchReady(const Ready& ready, int& error) {
  posix_spawn_file_actions_t files;
  posix_spawnattr_t attributes;
  ::posix_spawn_file_actions_init(&files);
  ::posix_spawnattr_init(&attributes);
  ::posix_spawn_file_actions_adddup2(&files, ready.input, STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&files, ready.output, STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&files, ready.output, STDERR_FILENO);
  ::posix_spawn_file_actions_addchdir_np(&files, ready.directory);
  sigset_t usual;
  sigset_t none;
  sigemptyset(&usual);
  sigemptyset(&none);
  for (const int signal : usualSignals) sigaddset(&usual, signal);
  ::posix_spawnattr_setsigdefault(&attributes, &usual);
  ::posix_spawnattr_setsigmask(&attributes, &none);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_CLOEXEC_DEFAULT |
                                              POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  pid_t pid = -1;
  error = ::posix_spawn(&pid, ready.program.c_str(), &files, &attributes, ready.words.data(),
                        ready.variables.data());
  ::posix_spawn_file_actions_destroy(&files);
  ::posix_spawnattr_destroy(&attributes);
  return error == 0 ? pid : -1;
}

#endif

}  // namespace

#if defined(__linux__)

std::string startOf(int64_t pid) {
  const std::string line = files::readSmallText(text::cat("/proc/", pid, "/stat")).value_or("");
  // The name before it may hold anything, brackets and blanks too.
  const std::size_t name = line.rfind(") ");
  if (name == std::string::npos) return {};
  constexpr std::size_t startField = 19;
  const std::vector<std::string_view> fields =
      text::split(std::string_view(line).substr(name + 2), ' ');
  if (fields.size() <= startField) return {};
  const std::string machine = files::readSmallText("/proc/sys/kernel/random/boot_id").value_or("");
  return text::cat(unicode::trim(machine), " ", fields[startField]);
}

#else

std::string startOf(int64_t pid) {
  std::array<int, 4> name = {CTL_KERN, KERN_PROC, KERN_PROC_PID, static_cast<int>(pid)};
  kinfo_proc found{};
  std::size_t size = sizeof found;
  if (::sysctl(name.data(), name.size(), &found, &size, nullptr, 0) != 0 || size == 0) return {};
  const timeval& start = found.kp_proc.p_starttime;
  return text::cat(start.tv_sec, ".", start.tv_usec);
}

#endif

SpawnedProcesses::SpawnedProcesses() {
  Pipe pipe;
  for (const UniqueFd* end : {&pipe.reading, &pipe.writing})
    ::fcntl(end->get(), F_SETFL, O_NONBLOCK);
  reading_ = std::move(pipe.reading);
  writing_ = std::move(pipe.writing);
  newsWriter() = writing_.get();
  struct sigaction action {};
  action.sa_handler = childHasChanged;
  action.sa_flags = SA_RESTART | SA_NOCLDSTOP;
  ::sigaction(SIGCHLD, &action, nullptr);
}

SpawnedProcesses::~SpawnedProcesses() {
  struct sigaction usual {};
  usual.sa_handler = SIG_DFL;
  ::sigaction(SIGCHLD, &usual, nullptr);
  newsWriter() = -1;
}

std::optional<Started> SpawnedProcesses::start(const Launch& launch, std::string& why) {
  Pipe pipe;
  const UniqueFd nothing = aboveStandard(UniqueFd(::open("/dev/null", O_RDONLY | O_CLOEXEC)));
  Ready ready{programOf(launch),
              pointersTo(launch.words),
              pointersTo(launch.variables),
              launch.directory.c_str(),
              nothing.get(),
              pipe.writing.get()};
  int error = ready.program.empty() ? ENOENT : 0;
  if (!pipe.writing || !nothing) error = EMFILE;
  const pid_t pid = error == 0 ? launchReady(ready, error) : -1;
  if (pid < 0) {
    errno = error;
    why = text::cat("cannot run ", launch.words.front(), " in ", launch.directory, ": ", reason());
    return std::nullopt;
  }
  killed_.erase(pid);
  ::fcntl(pipe.reading.get(), F_SETFL, O_NONBLOCK);
  return Started{{pid, startOf(pid)}, std::move(pipe.reading)};
}

Sight SpawnedProcesses::look(const ProcessMark& mark) {
  using State = Sight::State;
  const auto pid = static_cast<pid_t>(mark.pid);
  if (pid <= 0) return {State::gone};
  siginfo_t info{};
  const int options = WEXITED | WNOHANG | WNOWAIT;
  if (::waitid(P_PID, static_cast<id_t>(pid), &info, options) != 0) {
    // None of this board's children, then.
    const bool isThat = !mark.start.empty() && startOf(pid) == mark.start;
    return {isThat ? State::running : State::gone};
  }
  if (info.si_pid != pid) return {State::running};
  constexpr int bySignal = 128;
  const Sight sight{State::ended,
                    info.si_code == CLD_EXITED ? info.si_status : bySignal + info.si_status};
  if (!killed_.contains(pid)) return sight;
  ::waitpid(pid, nullptr, WNOHANG);
  killed_.erase(pid);
  return {State::gone, sight.status};
}

void SpawnedProcesses::signal(const ProcessMark& mark, int number) {
  const auto pid = static_cast<pid_t>(mark.pid);
  if (pid <= 0 || mark.start.empty() || startOf(pid) != mark.start) return;
  ::kill(-pid, number);
  if (number == SIGKILL) killed_.insert(pid);
}

}  // namespace quillpost::board
