#pragma once

// Programs that a command runs.

#include "base/unique_fd.h"

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace quillpost::board {

/// A program that runs.
struct Spawned {
  pid_t pid = -1;
  /// Its standard input and output, when they are pipes.
  UniqueFd input, output;
};

/// Whether a program has the standard streams of this one, or pipes for the first two.
enum class Streams { inherited, piped };

/// What is to be run: words of which the first is looked for on the PATH of this program, and all
/// its variables as NAME=VALUE.
struct Program {
  std::vector<std::string> words;
  std::vector<std::string> variables;
  Streams streams = Streams::inherited;
};

/// Starts it. Nothing when it cannot be found or started: then `why` says so.
std::optional<Spawned> spawn(const Program& program, std::string& why);

/// Waits until it has ended: its status, or 128 and the number of the signal that ended it.
int waitFor(pid_t pid);

/// From now on what would end this program is passed on to the one that `passTo` names, and no
/// longer ends this one: what the terminal sends reaches both anyway, and is left to the other.
void outliveSignals();

/// Names the program that gets the signals; one that came before is passed on at once.
void passTo(pid_t pid);

}  // namespace quillpost::board
