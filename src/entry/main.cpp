// The program: an MCP server on standard input and output, or, asked for by its one argument, the
// stop hook. The real doors are made here, and here alone the process writes and ends.

#include "base/clock.h"
#include "base/environment.h"
#include "base/input.h"
#include "base/memory.h"
#include "base/output.h"
#include "bridge/transport.h"
#include "calls/seat.h"
#include "entry/settings.h"
#include "entry/standard_descriptors.h"
#include "entry/stop_hook.h"
#include "mcp/stdio_server.h"

#include <algorithm>
#include <csignal>
#include <span>
#include <string_view>

#include <unistd.h>

namespace quillpost {
namespace {

constexpr std::string_view hookArgument = "--wake-stop-hook";

SocketBridge bridgeFor(const Settings& settings) {
  return SocketBridge({.socketPath = settings.socketPath,
                       .tokenFilePath = settings.tokenFilePath,
                       .startToken = settings.token});
}

int runHook(Seat& seat) {
  FdInput input(STDIN_FILENO);
  drain(input);
  const HookResult result = runStopHook(seat);
  if (!result.line.empty()) {
    // The status is what keeps the agent going, and must come even when nobody reads the line.
    std::signal(SIGPIPE, SIG_IGN);
    FdOutput(STDERR_FILENO).write(result.line);
  }
  return result.status;
}

int runServer(const Seat& seat) {
  FdInput input(STDIN_FILENO);
  FdOutput output(STDOUT_FILENO);
  TeamworkStdioServer server(seat.sessionID, seat.doors, output);
  server.run(input);
  return 0;
}

int run(std::span<char*> arguments) {
  const ProcessEnvironment environment;
  const Settings settings = readSettings({environment});
  SteadyClock clock;
  SocketBridge bridge = bridgeFor(settings);
  Seat seat = {.doors = {.clock = clock, .environment = environment, .bridge = bridge},
               .sessionID = settings.sessionID};
  const bool isHook = std::ranges::find(arguments, hookArgument) != arguments.end();
  return isHook ? runHook(seat) : runServer(seat);
}

}  // namespace
}  // namespace quillpost

int main(int count, char** arguments) {
  quillpost::fillStandardDescriptors();
  quillpost::keepMemoryBetweenCalls();
  try {
    return quillpost::run({arguments, static_cast<std::size_t>(count)});
  } catch (...) {
    // What a library throws when memory runs out; the client sees its input end, the agent stops.
    return 0;
  }
}
