#include "harness/process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillpost::testing {
namespace {

constexpr int couldNotStart = 127;
constexpr int signalBase = 128;

struct Pipe {
  UniqueFd reader, writer;
};

Pipe makePipe() {
  std::array<int, 2> ends{-1, -1};
  if (::pipe(ends.data()) != 0) ADD_FAILURE() << "no pipe could be made";
  for (const int fd : ends) ::fcntl(fd, F_SETFD, FD_CLOEXEC);
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

/// Keeps a write to a closed pipe from ending the test, without a change that the programs it
/// starts would inherit: the signal is held back while this lives, and taken at its end.
class BrokenPipeHeldBack {
 public:
  BrokenPipeHeldBack() {
    sigemptyset(&broken_);  // which is a macro on some systems
    sigaddset(&broken_, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &broken_, &before_);
  }
  ~BrokenPipeHeldBack() {
    sigset_t pending;
    sigemptyset(&pending);
    ::sigpending(&pending);
    int taken = 0;
    if (sigismember(&pending, SIGPIPE) == 1) ::sigwait(&broken_, &taken);
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  BrokenPipeHeldBack(const BrokenPipeHeldBack&) = delete;
  BrokenPipeHeldBack& operator=(const BrokenPipeHeldBack&) = delete;

 private:
  sigset_t broken_{};
  sigset_t before_{};
};

/// Pointers to the texts, ended by a null pointer, as the system wants them.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// Starts the program with these descriptors as its standard streams. Gives -1 when it cannot.
pid_t spawn(const Command& command, int input, int output, int errors) {
  std::vector<std::string> arguments = {command.program};
  arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
  std::vector<std::string> variables;
  for (const auto& [name, value] : command.environment) variables.push_back(name + "=" + value);

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
  // What these tests were started by may ignore signals, as a shell does for its background.
  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  for (const int signal : {SIGINT, SIGQUIT, SIGHUP, SIGTERM}) sigaddset(&defaults, signal);
  ::posix_spawnattr_setsigdefault(&attributes, &defaults);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  pid_t pid = -1;
  const int error = ::posix_spawn(&pid, command.program.c_str(), &actions, &attributes,
                                  pointersTo(arguments).data(), pointersTo(variables).data());
  ::posix_spawnattr_destroy(&attributes);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error == 0) return pid;
  ADD_FAILURE() << "could not start " << command.program << ": " << std::strerror(error);
  return -1;
}

}  // namespace

Process::Process(const Command& command) {
  Pipe input = makePipe(), output = makePipe(), errors = makePipe(), wake = makePipe();
  pid_ = spawn(command, input.reader.get(), output.writer.get(), errors.writer.get());
  input_ = std::move(input.writer);
  output_.fd = std::move(output.reader);
  errors_.fd = std::move(errors.reader);
  wakeReader_ = std::move(wake.reader);
  wakeWriter_ = std::move(wake.writer);
  if (pid_ < 0) {
    status_ = couldNotStart;
    output_.ended = errors_.ended = true;
    return;
  }
  output_.reader = std::thread([this] { readAll(output_); });
  errors_.reader = std::thread([this] { readAll(errors_); });
  waiter_ = std::thread([this] { awaitExit(); });
}

Process::~Process() {
  signal(SIGKILL);
  closeInput();
  wakeWriter_ = UniqueFd();  // a grandchild may still hold the streams open
  for (std::thread* thread : {&output_.reader, &errors_.reader, &waiter_}) {
    if (thread->joinable()) thread->join();
  }
}

bool Process::write(std::string_view bytes) {
  const BrokenPipeHeldBack heldBack;
  while (!bytes.empty()) {
    const ssize_t count = ::write(input_.get(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool Process::writeLine(std::string_view line) { return write(std::string(line) + "\n"); }

void Process::closeInput() { input_ = UniqueFd(); }

void Process::closeOutput() {
  std::unique_lock lock(mutex_);
  output_.ended = true;
  lock.unlock();
  // One byte is enough: the reader of the other stream sees that it is not meant and leaves it.
  while (::write(wakeWriter_.get(), "!", 1) < 0 && errno == EINTR) {
  }
  if (output_.reader.joinable()) output_.reader.join();
  char taken = 0;
  while (::read(wakeReader_.get(), &taken, 1) < 0 && errno == EINTR) {
  }
  output_.fd = UniqueFd();
}

void Process::signal(int number) {
  // Under the lock, because the process is given up by its number only there.
  const std::lock_guard lock(mutex_);
  if (!status_) ::kill(pid_, number);
}

std::optional<std::string> Process::readLine(Duration patience) {
  std::unique_lock lock(mutex_);
  std::string& bytes = output_.bytes;
  const auto ready = [&] { return output_.ended || bytes.find('\n') != std::string::npos; };
  if (!changed_.wait_for(lock, patience, ready)) return std::nullopt;
  if (bytes.empty()) return std::nullopt;
  const std::size_t end = std::min(bytes.find('\n'), bytes.size());
  std::string line = bytes.substr(0, end);
  bytes.erase(0, end + 1);
  return line;
}

std::optional<int> Process::waitForExit(Duration patience) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, patience, [&] { return status_.has_value(); });
  return status_;
}

std::string Process::restOfOutput(Duration patience) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, patience, [&] { return output_.ended; });
  return std::exchange(output_.bytes, "");
}

std::string Process::errors(Duration patience) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, patience, [&] { return errors_.ended; });
  return errors_.bytes;
}

std::optional<std::size_t> Process::openDescriptors() const {
  const std::lock_guard lock(mutex_);
  if (status_) return std::nullopt;
  std::error_code error;
  const std::filesystem::directory_iterator entries("/proc/" + std::to_string(pid_) + "/fd", error);
  if (error) return std::nullopt;
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::optional<std::size_t> Process::residentBytes() const {
  const std::lock_guard lock(mutex_);
  if (status_) return std::nullopt;
  std::ifstream file("/proc/" + std::to_string(pid_) + "/statm");
  std::size_t allPages = 0, residentPages = 0;
  if (!(file >> allPages >> residentPages)) return std::nullopt;
  return residentPages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

void Process::readAll(Stream& stream) {
  std::array<char, 65536> chunk{};
  while (true) {
    std::array<pollfd, 2> wanted = {{{.fd = stream.fd.get(), .events = POLLIN, .revents = 0},
                                     {.fd = wakeReader_.get(), .events = POLLIN, .revents = 0}}};
    if (::poll(wanted.data(), wanted.size(), -1) < 0 && errno != EINTR) break;
    if (wanted[0].revents == 0 && (wanted[1].revents & POLLHUP) != 0) break;
    {
      const std::lock_guard lock(mutex_);
      if (stream.ended) return;
    }
    if (wanted[0].revents == 0) continue;
    const ssize_t count = ::read(stream.fd.get(), chunk.data(), chunk.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    const std::lock_guard lock(mutex_);
    stream.bytes.append(chunk.data(), static_cast<std::size_t>(count));
    changed_.notify_all();
  }
  const std::lock_guard lock(mutex_);
  stream.ended = true;
  changed_.notify_all();
}

void Process::awaitExit() {
  siginfo_t unused{};
  // First without taking it off the system's list, so that its number stays its own until the
  // status is known to everybody who might signal it.
  while (::waitid(P_PID, static_cast<id_t>(pid_), &unused, WEXITED | WNOWAIT) < 0 &&
         errno == EINTR) {
  }
  const std::lock_guard lock(mutex_);
  int status = 0;
  while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  status_ = WIFSIGNALED(status) ? signalBase + WTERMSIG(status) : WEXITSTATUS(status);
  changed_.notify_all();
}

Ending endOf(Process& process) {
  const std::optional<int> status = process.waitForExit();
  return {status, process.restOfOutput(), process.errors()};
}

Ending runToEnd(const Command& command, std::string_view input) {
  Process process(command);
  process.write(input);
  process.closeInput();
  return endOf(process);
}

}  // namespace quillpost::testing
