#include "board/serving/spawned_processes.h"

#include "base/files.h"
#include "base/text.h"
#include "base/unicode.h"
#include "board/serving/spawning.h"
#include "board/serving/system.h"

#include <algorithm>
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

/// Why a launch is not even to be tried: the error that the system would give. 0 when it is.
int errorOf(const Launch& launch, const std::string& program) {
  struct stat status {};
  if (::stat(launch.directory.c_str(), &status) != 0) return errno;
  if (!S_ISDIR(status.st_mode)) return ENOTDIR;
  if (::access(launch.directory.c_str(), X_OK) != 0) return errno;
  return program.empty() ? ENOENT : 0;
}

std::string cannotRunIn(const Launch& launch, int error) {
  errno = error;
  return text::cat("cannot run ", launch.words.front(), " in ", launch.directory, ": ", reason());
}

/// All that a new process needs.
struct Ready {
  const Launch& launch;
  std::string program;
  std::vector<char*> words, variables;
  int input;
  int output;
  int gate;
};

/// Closes all that the new process has of this one's but its streams and its gate: one that waits
/// there holds none of the board's files, sockets and gates. What somebody else opened before the
/// board began is no business of the program's either.
void closeAllBut(int gate) {
  constexpr int first = STDERR_FILENO + 1;
#if defined(SYS_close_range)
  const bool isBelow = gate == first || ::syscall(SYS_close_range, first, gate - 1, 0) == 0;
  if (isBelow && ::syscall(SYS_close_range, gate + 1, ~0U, 0) == 0) return;
#endif
  // The board's own are closed when the program begins, and others' are low numbers.
  constexpr int most = 65536;
  const int end = std::min(::getdtablesize(), most);
  for (int descriptor = first; descriptor < end; ++descriptor)
    if (descriptor != gate) ::close(descriptor);
}

/// Whether the gate is opened; otherwise whoever would have opened it is gone.
bool passes(int gate) {
  char opened = 0;
  ssize_t count = 0;
  do {
    count = ::read(gate, &opened, 1);
  } while (count < 0 && errno == EINTR);
  return count == 1;
}

/// What the new process does until it is the program, which it is only behind its gate.
[[noreturn]] void become(const Ready& ready) {
  struct sigaction usual {};
  usual.sa_handler = SIG_DFL;
  for (const int signal : usualSignals) ::sigaction(signal, &usual, nullptr);
  ::setsid();
#if defined(__linux__)
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
#endif
  ::dup2(ready.input, STDIN_FILENO);
  for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) ::dup2(ready.output, stream);
  closeAllBut(ready.gate);
  sigset_t none;
  sigemptyset(&none);  // which is a macro on some systems
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  if (!passes(ready.gate)) ::_exit(cannotRun);
  if (::chdir(ready.launch.directory.c_str()) == 0) {
    ::execve(ready.program.c_str(), ready.words.data(), ready.variables.data());
  }
  // Nobody waits for this any more, but what it writes is read.
  const std::string why = cannotRunIn(ready.launch, errno) + "\n";
  const ssize_t ignored = ::write(STDERR_FILENO, why.data(), why.size());
  static_cast<void>(ignored);
  ::_exit(cannotRun);
}

/// Starts it up to its gate: its number, or none and the error.
pid_t launchReady(const Ready& ready, int& error) {
  // A handler of this program's that ran in the new process would write into its pipes.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  ::sigprocmask(SIG_SETMASK, &all, &before);
  const pid_t pid = ::fork();
  if (pid == 0) become(ready);
  error = pid < 0 ? errno : 0;
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
  return pid;
}

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
  Pipe output;
  Pipe gate;
  const UniqueFd nothing = aboveStandard(UniqueFd(::open("/dev/null", O_RDONLY | O_CLOEXEC)));
  const Ready ready{
      launch,        programOf(launch),    pointersTo(launch.words), pointersTo(launch.variables),
      nothing.get(), output.writing.get(), gate.reading.get()};
  int error = errorOf(launch, ready.program);
  if (!output.writing || !gate.writing || !nothing) error = EMFILE;
  const pid_t pid = error == 0 ? launchReady(ready, error) : -1;
  if (pid < 0) {
    why = cannotRunIn(launch, error);
    return std::nullopt;
  }
  killed_.erase(pid);
  ::fcntl(output.reading.get(), F_SETFL, O_NONBLOCK);
  return Started{{pid, startOf(pid)}, Gate(std::move(gate)), std::move(output.reading)};
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
