#include "board/person/spawn.h"

#include "base/text.h"
#include "board/serving/spawning.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillpost::board {

namespace {

/// What a signal handler can be given: who is told, and what came before anybody was.
struct Passing {
  std::atomic<pid_t> pid = 0;
  std::atomic<int> waiting = 0;
};

Passing& passing() {
  static Passing state;
  return state;
}

extern "C" void passOn(int signal) {
  const pid_t pid = passing().pid;
  if (pid > 0) {
    ::kill(pid, signal);
  } else {
    passing().waiting = signal;
  }
}

constexpr int passedOn[] = {SIGTERM, SIGHUP};
/// The terminal sends the first two to every program in it; the last is told by a failed write.
constexpr int leftToOthers[] = {SIGINT, SIGQUIT, SIGPIPE};

}  // namespace

std::optional<Spawned> spawn(const Program& program, std::string& why) {
  posix_spawn_file_actions_t files;
  posix_spawnattr_t attributes;
  ::posix_spawn_file_actions_init(&files);
  ::posix_spawnattr_init(&attributes);
  sigset_t usual;
  sigemptyset(&usual);  // which is a macro on some systems
  for (const int signal : passedOn) sigaddset(&usual, signal);
  for (const int signal : leftToOthers) sigaddset(&usual, signal);
  ::posix_spawnattr_setsigdefault(&attributes, &usual);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

  Pipe in;
  Pipe out;
  Spawned spawned;
  if (program.streams == Streams::piped) {
    ::posix_spawn_file_actions_adddup2(&files, in.reading.get(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&files, out.writing.get(), STDOUT_FILENO);
    spawned.input = std::move(in.writing);
    spawned.output = std::move(out.reading);
  }
  const std::vector<char*> words = pointersTo(program.words);
  const std::vector<char*> variables = pointersTo(program.variables);
  const int failed = ::posix_spawnp(&spawned.pid, words.front(), &files, &attributes, words.data(),
                                    variables.data());
  ::posix_spawn_file_actions_destroy(&files);
  ::posix_spawnattr_destroy(&attributes);
  if (failed == 0) return spawned;
  why = text::cat("cannot run ", program.words.front(), ": ",
                  std::strerror(failed));  // NOLINT(concurrency-mt-unsafe): there is one thread
  return std::nullopt;
}

int waitFor(pid_t pid) {
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0)
    if (errno != EINTR) return cannotRun;
  constexpr int bySignal = 128;
  return WIFSIGNALED(status) ? bySignal + WTERMSIG(status) : WEXITSTATUS(status);
}

void outliveSignals() {
  struct sigaction action {};
  action.sa_handler = passOn;
  for (const int signal : passedOn) ::sigaction(signal, &action, nullptr);
  action.sa_handler = SIG_IGN;
  for (const int signal : leftToOthers) ::sigaction(signal, &action, nullptr);
}

void passTo(pid_t pid) {
  passing().pid = pid;
  const int waiting = passing().waiting.exchange(0);
  if (pid > 0 && waiting != 0) ::kill(pid, waiting);
}

}  // namespace quillpost::board
