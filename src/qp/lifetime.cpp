#include "qp/lifetime.h"

#include "base/files.h"
#include "base/text.h"

#include <algorithm>
#include <csignal>
#include <optional>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace quillpost {
namespace {

constexpr pid_t firstProcess = 1;
// Deeper than any shell in a harness in a shell; ends the walk where the system's answers circle.
constexpr int mostAncestors = 32;

ProcessFacts factsOf(pid_t pid) {
  const std::optional<std::string> line =
      files::readSmallText(text::cat("/proc/", int64_t{pid}, "/stat"));
  return line ? readProcessLine(*line) : ProcessFacts();
}

/// Whether the process was started with that variable; false where the system does not tell.
bool wasStartedWith(pid_t pid, const std::string& variable) {
  const std::optional<std::string> all =
      files::readSmallText(text::cat("/proc/", int64_t{pid}, "/environ"));
  if (!all) return false;
  const std::vector<std::string_view> variables = text::split(*all, '\0');
  return std::ranges::find(variables, variable) != variables.end();
}

/// Whether it is one of those that take in the children of processes that have gone.
bool takesOrphans(pid_t pid) {
  if (pid == firstProcess) return true;
  const ProcessFacts facts = factsOf(pid);
  return facts.parent == firstProcess && facts.name == "systemd";
}

bool isAlive(const ProcessMark& process) {
  const ProcessFacts now = factsOf(process.pid);
  return now.startedAt == process.startedAt && !now.isEnded;
}

}  // namespace

ProcessFacts readProcessLine(std::string_view line) {
  // The name stands in parentheses and may hold any character, a ")" too.
  const std::size_t open = line.find('(');
  const std::size_t close = line.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return {};
  constexpr std::size_t stateAt = 1;
  constexpr std::size_t parentAt = 2;
  constexpr std::size_t startAt = 20;
  const std::vector<std::string_view> fields = text::split(line.substr(close + 1), ' ');
  if (fields.size() <= startAt) return {};
  const std::optional<int64_t> parent = text::parseInteger(fields[parentAt]);
  if (!parent) return {};
  return {.parent = static_cast<pid_t>(*parent),
          .name = std::string(line.substr(open + 1, close - open - 1)),
          .startedAt = std::string(fields[startAt]),
          .isEnded = fields[stateAt] == "Z" || fields[stateAt] == "X"};
}

ProcessLifetime::ProcessLifetime(std::string_view sessionID)
    : seatVariable_(text::cat("QUILLPOST_SESSION_ID=", sessionID)) {}

void ProcessLifetime::begin() {
  std::signal(SIGHUP, SIG_DFL);
  parent_ = ::getppid();
  rememberTerminals();
  rememberAncestors();
  // Started by something that ended at once, as setsid does in a shell at a terminal: whoever
  // started that cannot be found any more, so nothing would ever end this. In a container the
  // first process may be the shell itself, which is of the same session.
  isOrphan_ = takesOrphans(parent_) && !wasStartedWith(parent_, seatVariable_) &&
              ::getsid(parent_) != ::getsid(0);
}

void ProcessLifetime::rememberTerminals() {
  terminal_ = UniqueFd(::open("/dev/tty", O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  standardTerminals_.clear();
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (::isatty(fd) == 1) standardTerminals_.push_back(fd);
}

void ProcessLifetime::rememberAncestors() {
  ancestors_.clear();
  pid_t process = parent_;
  for (int i = 0; i < mostAncestors; ++i) {
    process = factsOf(process).parent;
    if (process <= firstProcess || !wasStartedWith(process, seatVariable_)) return;
    ancestors_.push_back({process, factsOf(process).startedAt});
  }
}

bool ProcessLifetime::hasLostTerminal() const {
  const auto isLost = [](int fd) { return ::isatty(fd) != 1; };
  return (terminal_ && isLost(terminal_.get())) || std::ranges::any_of(standardTerminals_, isLost);
}

bool ProcessLifetime::isOver() {
  wasOver_ = wasOver_ || isOrphan_ || ::getppid() != parent_ || hasLostTerminal() || isUnread() ||
             !std::ranges::all_of(ancestors_, isAlive);
  return wasOver_;
}

bool ProcessLifetime::isUnread() const {
  pollfd output{.fd = STDOUT_FILENO, .events = 0, .revents = 0};
  return ::poll(&output, 1, 0) > 0 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

}  // namespace quillpost
