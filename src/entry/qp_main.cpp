// The command line's program. The real doors are made here, and here alone the process writes and
// ends.

#include "base/clock.h"
#include "base/environment.h"
#include "base/files.h"
#include "base/input.h"
#include "base/memory.h"
#include "base/output.h"
#include "base/unicode.h"
#include "bridge/transport.h"
#include "entry/settings.h"
#include "entry/standard_descriptors.h"
#include "qp/run.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/time.h>
#include <unistd.h>

namespace quillpost {
namespace {

/// A command that a person waits for without having asked: how long the board may take there.
struct HurriedCommand {
  std::string_view name;
  timeval patience;
};

constexpr HurriedCommand hurriedCommands[] = {
    // Longer than a board on this machine takes, and no wait for a person who typed a tab.
    {"__complete", {.tv_sec = 0, .tv_usec = 200'000}},
    // A commit goes on without a board that is too busy to say who holds what.
    {"guard", {.tv_sec = 2, .tv_usec = 0}},
};

/// The time that the board has for a line; nothing for one that waits as long as need be.
std::optional<timeval> patienceFor(const std::vector<std::string>& words) {
  for (const HurriedCommand& command : hurriedCommands)
    if (!words.empty() && words.front() == command.name) return command.patience;
  return std::nullopt;
}

/// Ends this process, with nothing to complain of, when it has taken so long. What was printed by
/// then stays.
void endAfter(timeval patience) {
  std::signal(SIGALRM, [](int /*signal*/) { ::_exit(0); });
  const itimerval timer = {.it_interval = {}, .it_value = patience};
  ::setitimer(ITIMER_REAL, &timer, nullptr);
}

/// The app, found when it is first needed, and looked for anew while it does not answer: one that
/// starts anew may have another socket.
class FoundBridge final : public Bridge {
 public:
  /// With a patience the process ends when that is over.
  FoundBridge(const Environment& environment, std::optional<timeval> patience)
      : environment_(environment), patience_(patience) {}

  std::string currentToken() override {
    // From the first look on, and not anew with the next one.
    if (patience_) endAfter(*std::exchange(patience_, std::nullopt));
    return found().currentToken();
  }

  Exchange send(const TeamworkRequest& request) override {
    Exchange exchange = found().send(request);
    if (!exchange.response && !environment_.get("QUILLPOST_COLLAB_SOCKET")) bridge_.reset();
    return exchange;
  }

  /// Where it is looked for.
  Places places() {
    found();
    return {.socketPath = settings_.socketPath,
            .tokenFilePath = settings_.tokenFilePath,
            .hasStartToken = !settings_.token.empty()};
  }

 private:
  SocketBridge& found() {
    if (!bridge_) {
      settings_ = readSettings({environment_});
      bridge_.emplace(SocketBridge::Access{.socketPath = settings_.socketPath,
                                           .tokenFilePath = settings_.tokenFilePath,
                                           .startToken = settings_.token});
    }
    return *bridge_;
  }

  const Environment& environment_;
  std::optional<timeval> patience_;
  Settings settings_;
  std::optional<SocketBridge> bridge_;
};

/// Standard input to its end; nothing when it is no text, or a larger one than a small file.
std::optional<std::string> readStandardInput() {
  FdInput input(STDIN_FILENO);
  constexpr std::size_t pieceBytes = 65'536;
  const auto piece = std::make_unique_for_overwrite<char[]>(pieceBytes);
  std::string whole;
  while (const std::size_t count = input.read({piece.get(), pieceBytes})) {
    whole.append(piece.get(), count);
    if (whole.size() > files::smallFileLimit) return std::nullopt;
  }
  if (!unicode::isValid(whole)) return std::nullopt;
  return whole;
}

Console consoleFor(FdOutput& output, FdOutput& errors, const Environment& environment) {
  const bool isTerminal = ::isatty(STDOUT_FILENO) == 1;
  const bool isPlain = !environment.get("NO_COLOR").value_or("").empty() ||
                       environment.get("TERM").value_or("dumb") == "dumb";
  return {.output = output,
          .errors = errors,
          .isTerminal = isTerminal,
          .hasColour = isTerminal && !isPlain};
}

int runCommandLine(const std::vector<std::string>& words) {
  const ProcessEnvironment environment;
  const std::string sessionID = environment.get("QUILLPOST_SESSION_ID").value_or("");
  SteadyClock clock;
  FoundBridge bridge(environment, patienceFor(words));
  ProcessLifetime lifetime(sessionID);
  FdOutput output(STDOUT_FILENO);
  FdOutput errors(STDERR_FILENO);
  const Status status =
      runLine(words, {.doors = {.clock = clock, .environment = environment, .bridge = bridge},
                      .sessionID = sessionID,
                      .memory = memoryPlaces(environment),
                      .lifetime = lifetime,
                      .console = consoleFor(output, errors, environment),
                      .texts = {.input = readStandardInput, .file = files::readSmallText},
                      .places = [&bridge] { return bridge.places(); }});
  return static_cast<int>(status);
}

}  // namespace
}  // namespace quillpost

int main(int count, char** arguments) {
  quillpost::fillStandardDescriptors();
  quillpost::keepMemoryBetweenCalls();
  try {
    return quillpost::runCommandLine({arguments + std::min(count, 1), arguments + count});
  } catch (...) {
    // What a library throws when memory runs out.
    return static_cast<int>(quillpost::Status::noBoard);
  }
}
