#pragma once

// The person's commands as they are typed, against a board that is served by a real process.

#include "base/text.h"
#include "board/real_seats.h"
#include "harness/paths.h"
#include "harness/process.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost::board {

/// What came of a command.
struct Said {
  int status = -1;
  std::string output;
  std::string errors;
};

/// Types a command at a board's directory and gives what came of it.
inline Said typed(const std::string& directory, std::vector<std::string> arguments,
                  std::map<std::string, std::string> variables = {}, std::string_view input = {}) {
  arguments.insert(arguments.begin(), {"--dir", directory});
  variables.try_emplace("PATH", "/usr/bin:/bin:/usr/sbin");
  testing::Process process({testing::boardProgram(), std::move(arguments), std::move(variables)});
  if (!input.empty()) process.write(input);
  process.closeInput();
  Said said;
  said.output = process.restOfOutput();
  said.errors = process.errors();
  said.status = process.waitForExit().value_or(-1);
  return said;
}

/// An ssh that runs its commands on this machine, with $THERE for their PATH, and carries a socket
/// by a link to it.
inline constexpr std::string_view sshToHere = R"(#!/bin/sh
mode=run
while [ $# -gt 0 ]; do
  case $1 in
    -M) mode=master; shift ;;
    -S | -o) shift 2 ;;
    -O) mode=$2; shift 2 ;;
    -R) carried=$2; shift 2 ;;
    -t | -T) shift ;;
    *) break ;;
  esac
done
host=$1; shift
[ "$mode" = forward ] && { [ "$host" != walled ] || exit 1; exec ln -s "${carried#*:}" "${carried%%:*}"; }
[ "$host" = nowhere ] && exit 255
PATH=$THERE exec sh -c "$*"
)";

/// A served board with one thread, "main", which a person commands.
class CommandedBoard {
 public:
  CommandedBoard() : process_({testing::boardProgram(), {"serve", "--dir", dir_.path()}, {}}) {
    const Instant deadline = SteadyClock().now() + realPatience;
    while (type({"thread", "main"}).status != 0 && isBefore(deadline)) continue;
  }

  Said type(std::vector<std::string> arguments, std::map<std::string, std::string> variables = {},
            std::string_view input = {}) const {
    return typed(dir_.path(), std::move(arguments), std::move(variables), input);
  }

  /// Ends it in order; gives its exit status.
  int stop() {
    process_.signal(SIGTERM);
    return process_.waitForExit().value_or(-1);
  }

  const testing::TempDir& directory() const { return dir_; }
  testing::Process& process() { return process_; }

 private:
  testing::TempDir dir_;
  testing::Process process_;
};

}  // namespace quillpost::board
